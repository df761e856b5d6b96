#include "services/number_layout.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include <unicode/formattedvalue.h>

namespace kxui::services::detail {
namespace {

// One text ICU printed, with where its integer part, decimal mark, fraction and
// grouping marks are.
struct Printed {
  icu::UnicodeString text;
  int32_t integer_begin = -1, integer_end = -1;
  int32_t fraction_begin = -1, fraction_end = -1;
  int32_t decimal_begin = -1, decimal_end = -1;
  std::vector<std::pair<int32_t, int32_t>> groups;

  int32_t number_end() const { return fraction_end >= 0 ? fraction_end : integer_end; }
  std::string utf8(int32_t begin, int32_t end) const {
    std::string out;
    text.tempSubStringBetween(begin, end).toUTF8String(out);
    return out;
  }
};

bool print(const icu::number::LocalizedNumberFormatter& f, double value, Printed& out) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::number::FormattedNumber formatted = f.formatDouble(value, status);
  out = Printed{};
  out.text = formatted.toString(status);
  icu::ConstrainedFieldPosition pos;
  pos.constrainCategory(UFIELD_CATEGORY_NUMBER);
  while (U_SUCCESS(status) && formatted.nextPosition(pos, status)) {
    const int32_t begin = pos.getStart(), end = pos.getLimit();
    switch (pos.getField()) {
      case UNUM_INTEGER_FIELD: out.integer_begin = begin, out.integer_end = end; break;
      case UNUM_FRACTION_FIELD: out.fraction_begin = begin, out.fraction_end = end; break;
      case UNUM_DECIMAL_SEPARATOR_FIELD: out.decimal_begin = begin, out.decimal_end = end; break;
      case UNUM_GROUPING_SEPARATOR_FIELD: out.groups.emplace_back(begin, end); break;
      default: break;
    }
  }
  return U_SUCCESS(status) && out.integer_begin >= 0;
}

std::string icu_text(const icu::number::LocalizedNumberFormatter& f, double value) {
  UErrorCode status = U_ZERO_ERROR;
  std::string out;
  f.formatDouble(value, status).toTempString(status).toUTF8String(out);
  return U_SUCCESS(status) ? out : std::string("\xFF");
}

// Values whose texts must come out the same both ways before a layout is trusted: ties
// on the decimal the double stands for, carries through nines, zeros that lose their
// sign, the extremes of a double, and a spread of random magnitudes and decimals.
std::vector<double> check_values() {
  std::vector<double> v = {0.0, -0.0, 0.5, -0.5, 0.005, 0.00005, 0.00004, 1e-10, -1e-10,
                           1.005, 2.675, 0.125, -0.125, 999.995, 9999.99995, 99999.5,
                           1234.5, -1234.5, 12345.678, 123456.7891, 1e6, 1e15, 1e16,
                           123456789012345678.0, 1e20, 1e100, 1.7976931348623157e308,
                           4.9e-324, -9.995, 0.99995, 0.9999, 7.0, 70.0, 700.0, 7000.0};
  std::mt19937_64 rng(20240305);
  std::uniform_int_distribution<int> magnitude(-6, 18), decimals(0, 5);
  std::uniform_real_distribution<double> mantissa(1.0, 10.0);
  for (int i = 0; i < 400; ++i) {
    const double scale = std::pow(10.0, decimals(rng));
    double x = std::round(mantissa(rng) * std::pow(10.0, magnitude(rng)) * scale) / scale;
    v.push_back(i % 3 == 0 ? -x : x);
  }
  return v;
}

}  // namespace

std::optional<NumberLayout> NumberLayout::learn(const icu::number::LocalizedNumberFormatter& f) {
  NumberLayout layout;
  if (!layout.learn_from(f)) return std::nullopt;
  static const std::vector<double> checks = check_values();
  for (double v : checks) {
    if (layout.format(v) != icu_text(f, v)) return std::nullopt;
  }
  return layout;
}

bool NumberLayout::learn_from(const icu::number::LocalizedNumberFormatter& f) {
  Printed p;
  for (int sign = 0; sign < 2; ++sign) {
    if (!print(f, sign ? -1.0 : 1.0, p)) return false;
    prefix_[sign] = p.utf8(0, p.integer_begin);
    suffix_[sign] = p.utf8(p.number_end(), p.text.length());
    if (sign == 0) min_fraction_ = p.fraction_begin >= 0 ? p.fraction_end - p.fraction_begin : 0;
  }
  if (!print(f, 1.2345678901, p)) return false;
  max_fraction_ = p.fraction_begin >= 0 ? p.fraction_end - p.fraction_begin : 0;
  if (max_fraction_ > 0) {
    if (p.decimal_begin < 0) return false;
    decimal_ = p.utf8(p.decimal_begin, p.decimal_end);
  }
  for (int d = 0; d < 10; ++d) {
    if (!print(f, d, p) || p.integer_end - p.integer_begin != 1) return false;
    digits_[d] = p.utf8(p.integer_begin, p.integer_end);
    // Every digit the same length, so a text's size is known before it is written.
    if (d > 0 && digits_[d].size() != digits_[0].size()) return false;
  }
  digit_bytes_ = digits_[0].size();
  // Group sizes from a fifteen-digit integer: the last group, and the one before it.
  if (!print(f, 123456789012345.0, p)) return false;
  if (!p.groups.empty()) {
    group_ = p.utf8(p.groups[0].first, p.groups[0].second);
    const auto& last = p.groups.back();
    primary_ = p.integer_end - last.second;
    secondary_ = p.groups.size() > 1 ? last.first - p.groups[p.groups.size() - 2].second : primary_;
    if (primary_ <= 0 || secondary_ <= 0) return false;
    // The shortest integer that is grouped tells how many digits a first group needs.
    min_grouping_ = 0;
    double power = 10;
    for (int digits = 2; digits <= 15 && min_grouping_ == 0; ++digits, power *= 10) {
      if (!print(f, power, p)) return false;
      if (!p.groups.empty()) min_grouping_ = digits - primary_;
    }
    if (min_grouping_ <= 0) return false;
  }
  return true;
}

std::string NumberLayout::format(double value) const {
  // The shortest decimal that reads back as the double, as digits and a point position:
  // the value is 0.d1d2d3... times ten to the power `point`.
  char digits[40];
  int count = 0, point = 1;
  const double magnitude = std::fabs(value);
  bool zero = magnitude == 0;
  if (zero) {
    digits[count++] = '0';
  } else {
    char buf[40];
    const auto r = std::to_chars(buf, buf + sizeof buf, magnitude, std::chars_format::scientific);
    const char* p = buf;
    for (; p < r.ptr && *p != 'e'; ++p) {
      if (*p != '.') digits[count++] = *p;
    }
    int exponent = 0;
    std::from_chars(p + 1 + (p[1] == '+'), r.ptr, exponent);
    point = exponent + 1;
  }
  // Ties away from zero at the last decimal shown.
  const int kept = point + max_fraction_;
  if (!zero && kept < count) {
    const bool up = kept >= 0 && digits[kept] >= '5';
    count = kept < 0 ? 0 : kept;
    if (up) {
      int i = count - 1;
      while (i >= 0 && digits[i] == '9') digits[i--] = '0';
      if (i >= 0) {
        ++digits[i];
      } else {
        std::memmove(digits + 1, digits, static_cast<size_t>(count));
        digits[0] = '1';
        ++count;
        ++point;
      }
    }
    zero = count == 0;
  }
  auto digit_at = [&](int i) { return i >= 0 && i < count ? digits[i] - '0' : 0; };
  int fraction = max_fraction_;
  while (fraction > min_fraction_ && digit_at(point + fraction - 1) == 0) --fraction;

  // Written in place into a text sized for the longest outcome, then cut to length.
  const int sign = zero ? 0 : std::signbit(value);
  const int integers = point > 0 ? point : 1;
  const bool grouped = primary_ > 0 && integers >= primary_ + min_grouping_;
  const std::string& prefix = prefix_[sign];
  const std::string& suffix = suffix_[sign];
  std::string out;
  out.resize(prefix.size() + suffix.size() + decimal_.size() +
             static_cast<size_t>(integers + fraction) * (digit_bytes_ + group_.size()));
  char* w = out.data();
  auto put = [&w](const std::string& s) {
    std::memcpy(w, s.data(), s.size());
    w += s.size();
  };
  auto put_digit = [&](int d) {
    if (digit_bytes_ == 1) {
      *w++ = digits_[static_cast<size_t>(d)][0];
    } else {
      put(digits_[static_cast<size_t>(d)]);
    }
  };
  put(prefix);
  for (int i = 0; i < integers; ++i) {
    const int left = integers - i;
    if (grouped && i > 0 &&
        (left == primary_ || (left > primary_ && (left - primary_) % secondary_ == 0))) {
      put(group_);
    }
    put_digit(digit_at(point > 0 ? i : -1));
  }
  if (fraction > 0) {
    put(decimal_);
    for (int j = 0; j < fraction; ++j) put_digit(digit_at(point + j));
  }
  put(suffix);
  out.resize(static_cast<size_t>(w - out.data()));
  return out;
}

}  // namespace kxui::services::detail
