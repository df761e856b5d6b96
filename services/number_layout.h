// Number texts without a formatting call: the layout of one ICU number formatter (its
// affixes, digits, marks, grouping and decimals), learned from what that formatter printed
// for probe values, then applied to any double with plain arithmetic.
#pragma once

#include <array>
#include <optional>
#include <string>

#include <unicode/numberformatter.h>

namespace kxui::services::detail {

class NumberLayout {
 public:
  // The layout of `f` (a formatter with ties away from zero and no sign on zero), or
  // nothing when the texts it gives for a set of check values differ from ICU's own in
  // any byte: such formatters stay with ICU.
  static std::optional<NumberLayout> learn(const icu::number::LocalizedNumberFormatter& f);

  // The UTF-8 text of a finite `value`, as `f` would print it.
  std::string format(double value) const;

 private:
  NumberLayout() = default;
  bool learn_from(const icu::number::LocalizedNumberFormatter& f);

  std::string prefix_[2], suffix_[2];  // [0] positive (and zero), [1] negative
  std::array<std::string, 10> digits_;
  size_t digit_bytes_ = 1;
  std::string group_, decimal_;
  int primary_ = 0, secondary_ = 0, min_grouping_ = 1;  // primary_ 0: no grouping
  int min_fraction_ = 0, max_fraction_ = 0;
};

}  // namespace kxui::services::detail
