#include "kxui/utility/ui_utility.h"

#include "kxui/business/progids.h"
#include "kxui/frame/services.h"

namespace kxui {

UIUtility::UIUtility(std::shared_ptr<Runtime> runtime) : Facade("UIUtility", std::move(runtime)) {}

bool UIUtility::GetAppIniValue(const SessionPtr& p_Session, const std::string& p_Name,
                               const std::string& p_Section, const std::string& p_AppName,
                               ByRef<Variant> p_AppIniValue, ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIUtility::GetAppIniValue", false, [&] {
    auto ini = create<AppIni>(progid::AppIni);
    check(*ini, ini->ReadValue(p_Session, p_Name, p_Section, p_AppName, *p_CustomData));
    *p_AppIniValue = Variant(ini->GetValue());
    return true;
  });
}

std::string UIUtility::CreateUserGUID(ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIUtility::CreateUserGUID", std::string(), [&] {
    return create<UserGUID>(progid::UserGUID)->CreateGUID(*p_CustomData);
  });
}

RecordsetPtr UIUtility::GetList(const SessionPtr& p_Session, ByRef<Variant> p_CustomData) noexcept {
  return guarded(
      "UIUtility::GetList", RecordsetPtr(),
      [&] {
        auto ini = create<AppIni>(progid::AppIni);
        RecordsetPtr list = ini->GetSettingsList(p_Session, *p_CustomData);
        success_ = ini->Success();
        check(*ini, success_);
        return list;
      },
      Track::kSuccess);
}

}  // namespace kxui
