// Currency, Date, and the invariant text and serial forms of numbers and dates.
#include <cctype>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>

#include "kxui/frame/errors.h"
#include "kxui/frame/failure.h"
#include "kxui/frame/variant.h"
#include "kxui/frame/variant_text.h"

namespace kxui {
namespace {

constexpr int64_t kDay = 86400;
// 1970-01-01 as a day serial.
constexpr int64_t kEpochSerial = 25569;
constexpr double kPow10[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10};

int64_t floor_div(int64_t a, int64_t b) {
  int64_t q = a / b;
  return (a % b != 0 && (a < 0) != (b < 0)) ? q - 1 : q;
}

// Seconds since 1970 of a civil date-time, or nullopt when it does not exist.
std::optional<int64_t> civil_seconds(int y, int m, int d, int hh, int mi, int ss) {
  if (y < 100 || y > 9999 || m < 1 || m > 12 || d < 1 || d > 31) return std::nullopt;
  if (hh < 0 || hh > 23 || mi < 0 || mi > 59 || ss < 0 || ss > 59) return std::nullopt;
  std::chrono::year_month_day ymd{std::chrono::year{y}, std::chrono::month{unsigned(m)},
                                  std::chrono::day{unsigned(d)}};
  if (!ymd.ok()) return std::nullopt;
  int64_t days = std::chrono::sys_days{ymd}.time_since_epoch().count();
  return days * kDay + hh * 3600 + mi * 60 + ss;
}

const int64_t kMinSeconds = *civil_seconds(100, 1, 1, 0, 0, 0);
const int64_t kMaxSeconds = *civil_seconds(9999, 12, 31, 23, 59, 59);

struct Civil {
  int year;
  int month;
  int day;
  int64_t second_of_day;
};

// Outside the supported years the calendar arithmetic would overflow: no date there
// is ever read.
int64_t in_range(int64_t s) {
  if (s < kMinSeconds || s > kMaxSeconds) fail(err::kOverflow);
  return s;
}

Civil split(int64_t s) {
  in_range(s);
  int64_t days = floor_div(s, kDay);
  std::chrono::year_month_day ymd{std::chrono::sys_days{std::chrono::days{days}}};
  return Civil{int(ymd.year()), int(unsigned(ymd.month())), int(unsigned(ymd.day())),
               s - days * kDay};
}

// Fifteen significant digits of v: the digits as an integer, and the decimal exponent
// of the first one.
struct Digits15 {
  bool negative;
  int64_t mantissa;
  int exponent;
};

Digits15 digits15(double v) {
  char buf[48];
  auto res = std::to_chars(buf, buf + sizeof buf, v, std::chars_format::scientific, 14);
  Digits15 out{false, 0, 0};
  const char* p = buf;
  if (*p == '-') {
    out.negative = true;
    ++p;
  }
  for (; p < res.ptr && *p != 'e'; ++p) {
    if (*p != '.') out.mantissa = out.mantissa * 10 + (*p - '0');
  }
  ++p;  // 'e'
  bool neg_exp = *p == '-';
  ++p;  // sign
  std::from_chars(p, res.ptr, out.exponent);
  if (neg_exp) out.exponent = -out.exponent;
  return out;
}

// The integer nearest to v * 10^digits, ties to even. A tie is judged on v's 15-digit
// decimal form, so 1.23445 counts as a tie although its binary value is slightly less.
double round_scaled(double v, int digits) {
  double x = v * kPow10[digits];
  if (!std::isfinite(x) || std::fabs(x) >= 1e15) return std::nearbyint(x);
  double frac = std::fabs(x - std::trunc(x));
  if (std::fabs(frac - 0.5) > std::fabs(x) * 1e-14 + 1e-15) return std::nearbyint(x);
  Digits15 d = digits15(v);
  int k = d.exponent - 14 + digits;  // x == mantissa * 10^k
  if (k >= 0) return std::nearbyint(x);
  if (k < -15) return d.negative ? -0.0 : 0.0;
  int64_t p = 1;
  for (int i = 0; i < -k; ++i) p *= 10;
  int64_t q = d.mantissa / p;
  int64_t twice_rem = (d.mantissa % p) * 2;
  if (twice_rem > p || (twice_rem == p && (q & 1) != 0)) ++q;
  double r = static_cast<double>(q);
  return d.negative ? -r : r;
}

}  // namespace

Currency Currency::from_double(double v) {
  double r = std::isnan(v) ? v : round_scaled(v, 4);
  if (!(r >= -9223372036854775808.0 && r < 9223372036854775808.0)) fail(err::kOverflow);
  return Currency{static_cast<int64_t>(r)};
}

Date Date::from_civil(int year, int month, int day, int hour, int minute, int second) {
  auto s = civil_seconds(year, month, day, hour, minute, second);
  if (!s) fail(err::kInvalidProcedureCall);
  return Date(*s);
}

int Date::year() const { return split(seconds_).year; }
int Date::month() const { return split(seconds_).month; }
int Date::day() const { return split(seconds_).day; }
int Date::hour() const { return int(split(seconds_).second_of_day / 3600); }
int Date::minute() const { return int(split(seconds_).second_of_day / 60 % 60); }
int Date::second() const { return int(split(seconds_).second_of_day % 60); }
Date Date::date_part() const { return Date(floor_div(in_range(seconds_), kDay) * kDay); }

namespace detail {

std::optional<double> parse_number(std::string_view text) {
  std::string t = conv::trim(text);
  size_t i = 0;
  bool negative = false;
  if (i < t.size() && (t[i] == '+' || t[i] == '-')) negative = t[i++] == '-';
  size_t start = i;
  size_t digits = 0;
  while (i < t.size() && std::isdigit(static_cast<unsigned char>(t[i]))) ++i, ++digits;
  if (i < t.size() && t[i] == '.') {
    ++i;
    while (i < t.size() && std::isdigit(static_cast<unsigned char>(t[i]))) ++i, ++digits;
  }
  if (digits == 0) return std::nullopt;
  bool negative_exponent = false;
  if (i < t.size() && (t[i] == 'e' || t[i] == 'E')) {
    ++i;
    if (i < t.size() && (t[i] == '+' || t[i] == '-')) negative_exponent = t[i++] == '-';
    size_t exp_start = i;
    while (i < t.size() && std::isdigit(static_cast<unsigned char>(t[i]))) ++i;
    if (i == exp_start) return std::nullopt;
  }
  if (i != t.size()) return std::nullopt;
  // from_chars takes no '+' in the exponent and none in front.
  std::string body = t.substr(start);
  if (auto plus = body.find('+'); plus != std::string::npos) body.erase(plus, 1);
  double value = 0;
  auto res = std::from_chars(body.data(), body.data() + body.size(), value,
                             std::chars_format::general);
  if (res.ec == std::errc::result_out_of_range) {
    if (!negative_exponent) fail(err::kOverflow);
    value = 0;  // underflow
  }
  return negative ? -value : value;
}

std::string format_double(double v) {
  if (v == 0) return "0";
  if (std::isnan(v)) return "NaN";
  if (std::isinf(v)) return v > 0 ? "Infinity" : "-Infinity";
  Digits15 d = digits15(v);
  std::string digits = std::to_string(d.mantissa);  // always 15 digits
  while (digits.size() > 1 && digits.back() == '0') digits.pop_back();
  std::string out = d.negative ? "-" : "";
  int e = d.exponent;
  if (e >= 15 || e < -11) {
    out += digits[0];
    if (digits.size() > 1) out += '.' + digits.substr(1);
    out += e < 0 ? "E-" : "E+";
    out += std::to_string(e < 0 ? -e : e);
  } else if (e >= 0) {
    size_t int_len = size_t(e) + 1;
    if (digits.size() <= int_len) {
      out += digits + std::string(int_len - digits.size(), '0');
    } else {
      out += digits.substr(0, int_len) + '.' + digits.substr(int_len);
    }
  } else {
    out += "0." + std::string(size_t(-e - 1), '0') + digits;
  }
  return out;
}

std::string format_currency(Currency c) {
  uint64_t mag = c.scaled < 0 ? 0 - static_cast<uint64_t>(c.scaled) : uint64_t(c.scaled);
  std::string out = c.scaled < 0 ? "-" : "";
  out += std::to_string(mag / Currency::kScale);
  uint64_t frac = mag % Currency::kScale;
  if (frac != 0) {
    char buf[8];
    std::snprintf(buf, sizeof buf, "%04u", static_cast<unsigned>(frac));
    std::string f = buf;
    while (f.back() == '0') f.pop_back();
    out += '.' + f;
  }
  return out;
}

std::string format_date(Date d) {
  Civil c = split(d.seconds());
  char buf[48];
  if (c.second_of_day == 0) {
    std::snprintf(buf, sizeof buf, "%04d-%02d-%02d", c.year, c.month, c.day);
  } else {
    std::snprintf(buf, sizeof buf, "%04d-%02d-%02d %02d:%02d:%02d", c.year, c.month, c.day,
                  int(c.second_of_day / 3600), int(c.second_of_day / 60 % 60),
                  int(c.second_of_day % 60));
  }
  return buf;
}

double date_to_serial(Date d) {
  int64_t s = in_range(d.seconds()) + kEpochSerial * kDay;
  int64_t days = floor_div(s, kDay);
  double frac = static_cast<double>(s - days * kDay) / kDay;
  return days >= 0 ? double(days) + frac : double(days) - frac;
}

Date date_from_serial(double serial) {
  if (!(std::fabs(serial) < 1e7)) fail(err::kOverflow);
  double whole = std::trunc(serial);
  int64_t time = std::llround(std::fabs(serial - whole) * kDay);
  int64_t s = (static_cast<int64_t>(whole) - kEpochSerial) * kDay + time;
  if (s < kMinSeconds || s > kMaxSeconds) fail(err::kOverflow);
  return Date::from_seconds(s);
}

}  // namespace detail

namespace conv {

double round_half_even(double v, int digits) {
  if (digits < 0 || digits > 10) fail(err::kInvalidProcedureCall);
  if (!std::isfinite(v)) return v;
  return round_scaled(v, digits) / kPow10[digits];
}

std::string trim(std::string_view s) {
  auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
  size_t b = 0, e = s.size();
  while (b < e && blank(s[b])) ++b;
  while (e > b && blank(s[e - 1])) --e;
  return std::string(s.substr(b, e - b));
}

Date date_from_text(std::string_view s) {
  std::string t = trim(s);
  auto num = [&](size_t pos, size_t len, int& out) {
    out = 0;
    for (size_t i = pos; i < pos + len; ++i) {
      if (!std::isdigit(static_cast<unsigned char>(t[i]))) return false;
      out = out * 10 + (t[i] - '0');
    }
    return true;
  };
  int y = 0, m = 0, d = 0, hh = 0, mi = 0, ss = 0;
  bool ok = (t.size() == 10 || t.size() == 19) && num(0, 4, y) && t[4] == '-' &&
            num(5, 2, m) && t[7] == '-' && num(8, 2, d);
  if (ok && t.size() == 19) {
    ok = (t[10] == ' ' || t[10] == 'T') && num(11, 2, hh) && t[13] == ':' &&
         num(14, 2, mi) && t[16] == ':' && num(17, 2, ss);
  }
  std::optional<int64_t> secs;
  if (ok) secs = civil_seconds(y, m, d, hh, mi, ss);
  if (!secs) fail(err::kTypeMismatch);
  return Date::from_seconds(*secs);
}

Date date_part(const Variant& v) { return v.to_date().date_part(); }

size_t utf8_length(std::string_view s) {
  size_t n = 0;
  for (unsigned char c : s) n += (c & 0xC0) != 0x80;
  return n;
}

}  // namespace conv
}  // namespace kxui
