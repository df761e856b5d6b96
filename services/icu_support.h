// Shared ICU plumbing of the locale services: locale identifiers, UTF-8 conversion and
// the failures the services raise.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <unicode/locid.h>
#include <unicode/unistr.h>
#include <unicode/utypes.h>

namespace kxui::services::detail {

// The ICU locale of a numeric locale identifier (1033 -> en_US), taken from ICU's own
// identifier table and remembered process-wide. Throws Failure 5 from `source`
// naming the identifier when ICU does not know it (identifiers that only map to the
// root locale, such as 0, count as unknown). The reference stays valid for the life of
// the process.
const icu::Locale& locale_for(int32_t locale_id, std::string_view source);

std::string to_utf8(const icu::UnicodeString& s);
icu::UnicodeString from_utf8(std::string_view s);

// Throws Failure 5 from `source` with `detail` and the ICU status name when `status`
// is an error; returns otherwise.
void check(UErrorCode status, std::string_view source, std::string_view detail);

}  // namespace kxui::services::detail
