// Date texts without a formatting call: the pattern of one ICU date format (literals,
// year, month as a number or a name, day) applied to a day by calendar arithmetic, with
// the format's own digits and month names.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <unicode/smpdtfmt.h>

namespace kxui::services::detail {

class DateLayout {
 public:
  // The layout of `f` (a Gregorian format in UTC), or nothing when its pattern has a
  // field the layout does not print or the texts of a set of check days differ from
  // ICU's own in any byte: such formats stay with ICU.
  static std::optional<DateLayout> learn(icu::SimpleDateFormat& f);

  // The UTF-8 text of the day `day` (days since 1970-01-01), years 100 to 9999.
  std::string format(int64_t day) const;

 private:
  enum class Kind : uint8_t { kLiteral, kYear, kTwoDigitYear, kMonth, kMonthName, kDay };
  struct Part {
    Kind kind;
    int width;          // minimum digits; for a month name, its table
    std::string text;   // a literal
  };
  DateLayout() = default;
  bool learn_pattern(icu::SimpleDateFormat& f);
  void number(int value, int width, std::string& out) const;

  std::vector<Part> parts_;
  std::array<std::string, 10> digits_;
  std::vector<std::array<std::string, 12>> month_names_;
};

}  // namespace kxui::services::detail
