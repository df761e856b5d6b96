#include "kxui/frame/settings.h"

namespace kxui {

int32_t read_int_setting(AppIni& ini, const SessionPtr& session, const SettingKey& key,
                         Variant& custom_data, int32_t fallback) {
  if (!ini.ReadValue(session, key.name, key.section, key.app, custom_data)) return fallback;
  return Variant(ini.GetValue()).to_int32();
}

int32_t read_date_style(AppIni& ini, const SessionPtr& session, Variant& custom_data) {
  return read_int_setting(ini, session, kDateFormatSetting, custom_data, 2) == 1 ? 1 : 2;
}

}  // namespace kxui
