#include "kxui/lang/ui_lang_ext.h"

#include "kxui/business/progids.h"

namespace kxui {

UILangExt::UILangExt(std::shared_ptr<Runtime> runtime)
    : LangFacade("UILangExt", std::move(runtime)) {}

bool UILangExt::GetOptionResourceObject(const SessionPtr& p_objSession,
                                        const std::string& p_sProgidPrefix) noexcept {
  drop_resource();
  try_select([&] {
    std::string lang = lang_code_of(p_objSession);
    std::string country = country_code_of(p_objSession);
    return detail::resource_progid(p_sProgidPrefix + lang + "_" + country);
  });
  if (!resource_) try_select([&] { return detail::resource_progid(p_sProgidPrefix); });
  return select_fallback("UILang::GetOptionResourceObject", progid::Resource,
                         Creation::kFactory);
}

std::string UILangExt::LoadString(int16_t p_StringID, const std::string& p_DefaultString,
                                  const Variant& p_Args) noexcept {
  return load_string(p_StringID, p_DefaultString, p_Args);
}

std::string UILangExt::FormatMsgText(int16_t p_StringID, const std::string& p_DefaultString,
                                     const Variant& p_Args) noexcept {
  return format_msg_text(p_StringID, p_DefaultString, p_Args);
}

}  // namespace kxui
