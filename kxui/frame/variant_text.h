// Internal helpers shared by the Variant sources: number and date text in the invariant
// form, and the day-serial form of dates (days since 1899-12-30, time as the fraction).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "kxui/frame/variant.h"

namespace kxui::detail {

// Optional sign, digits with an optional '.', optional exponent; blanks around are
// ignored. nullopt when the text is not a number; 6 Overflow when it is too large.
std::optional<double> parse_number(std::string_view text);

// Up to 15 significant digits, no trailing zeros, "1E+15" form from 1e15 up and below
// 1e-11; "0" for both zeros.
std::string format_double(double v);
std::string format_currency(Currency c);
// "yyyy-mm-dd hh:mm:ss", or "yyyy-mm-dd" at midnight. Like every reading of a date's
// parts, 6 Overflow outside years 100..9999.
std::string format_date(Date d);

// The day serial of a date. Before 1899-12-30 the fraction counts forwards from the
// (negative) whole day, as the classic form does: 1899-12-29 06:00 is -1.25. 6 Overflow
// outside years 100..9999.
double date_to_serial(Date d);
// The inverse, rounded to the second; 6 Overflow outside years 100..9999 or for NaN.
Date date_from_serial(double serial);

}  // namespace kxui::detail
