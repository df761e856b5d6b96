// The schema as numbered migrations, applied in order on open and never edited once
// released: a change to the schema is a new migration at the end of the list.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "reference/soci_include.h"

namespace kxui::reference {

enum class Backend;

struct Migration {
  int32_t version;
  const char* name;
  std::function<void(soci::session&, Backend)> apply;
};

const std::vector<Migration>& migrations();

// The locales the tier offers: LCID, name, language and country.
struct LocaleInfo {
  int32_t locale_id;
  const char* name;
  const char* lang_code;
  const char* country_code;
  const char* description;
};
inline constexpr LocaleInfo kLocales[] = {
    {1033, "en-US", "en", "US", "English (United States)"},
    {1031, "de-DE", "de", "DE", "Deutsch (Deutschland)"},
    {1036, "fr-FR", "fr", "FR", "Français (France)"},
};

}  // namespace kxui::reference
