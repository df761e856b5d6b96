// Settings the library reads through AppIni, with their defaults. A setting that cannot
// be read (ReadValue False) gives the default; one whose text is not a number fails the
// call (13 Type mismatch), since a wrong number would silently mislead.
#pragma once

#include <cstdint>

#include "kxui/frame/services.h"
#include "kxui/frame/session.h"
#include "kxui/frame/variant.h"

namespace kxui {

struct SettingKey {
  const char* name;
  const char* section;
  const char* app;
};

inline constexpr SettingKey kPageSizeSetting{"Page Size", "Paging", "Dunmere"};
inline constexpr SettingKey kDateFormatSetting{"DateFormat", "UI", "Dunmere"};
inline constexpr int32_t kDefaultPageSize = 20;

// The setting converted to a 32-bit integer; `fallback` when ReadValue returns False.
int32_t read_int_setting(AppIni& ini, const SessionPtr& session, const SettingKey& key,
                         Variant& custom_data, int32_t fallback);

// "Page Size": `fallback` (20 unless the caller has its own) when missing.
inline int32_t read_page_size(AppIni& ini, const SessionPtr& session, Variant& custom_data,
                              int32_t fallback = kDefaultPageSize) {
  return read_int_setting(ini, session, kPageSizeSetting, custom_data, fallback);
}

// "DateFormat": date style 1 when the setting is 1; 2 for any other value or none.
int32_t read_date_style(AppIni& ini, const SessionPtr& session, Variant& custom_data);

}  // namespace kxui
