#include "services/date_layout.h"

#include <chrono>
#include <cstring>
#include <random>

#include <unicode/decimfmt.h>
#include <unicode/dtfmtsym.h>

namespace kxui::services::detail {
namespace {

constexpr int64_t kDayMs = 86400000;

std::string utf8(const icu::UnicodeString& s) {
  std::string out;
  s.toUTF8String(out);
  return out;
}

int64_t day_of(int y, unsigned m, unsigned d) {
  using namespace std::chrono;
  return sys_days{year_month_day{year{y}, month{m}, day{d}}}.time_since_epoch().count();
}

// Days whose texts must come out the same both ways: every month of years at the edges
// of the range, of centuries and of the calendar reform, with one- and two-digit days,
// and random days between the years 100 and 9999.
std::vector<int64_t> check_days() {
  std::vector<int64_t> days;
  for (int y : {100, 999, 1000, 1582, 1600, 1899, 1900, 1969, 1970, 1999, 2000, 2024, 2038, 9999}) {
    for (unsigned m = 1; m <= 12; ++m) {
      for (unsigned d : {1u, 9u, 10u, 28u}) days.push_back(day_of(y, m, d));
    }
  }
  std::mt19937_64 rng(15);
  std::uniform_int_distribution<int64_t> any(day_of(100, 1, 1), day_of(9999, 12, 31));
  for (int i = 0; i < 200; ++i) days.push_back(any(rng));
  return days;
}

}  // namespace

std::optional<DateLayout> DateLayout::learn(icu::SimpleDateFormat& f) {
  DateLayout layout;
  if (!layout.learn_pattern(f)) return std::nullopt;
  static const std::vector<int64_t> checks = check_days();
  for (int64_t day : checks) {
    icu::UnicodeString text;
    f.format(static_cast<UDate>(day * kDayMs), text);
    if (layout.format(day) != utf8(text)) return std::nullopt;
  }
  return layout;
}

bool DateLayout::learn_pattern(icu::SimpleDateFormat& f) {
  if (std::strcmp(f.getCalendar()->getType(), "gregorian") != 0) return false;
  const auto* numbers = dynamic_cast<const icu::DecimalFormat*>(f.getNumberFormat());
  if (!numbers) return false;
  for (int d = 0; d < 10; ++d) {
    digits_[d] = utf8(numbers->getDecimalFormatSymbols()->getConstDigitSymbol(d));
  }
  const icu::DateFormatSymbols* symbols = f.getDateFormatSymbols();
  icu::UnicodeString pattern;
  f.toPattern(pattern);
  icu::UnicodeString literal;
  auto flush = [&] {
    if (!literal.isEmpty()) parts_.push_back(Part{Kind::kLiteral, 0, utf8(literal)});
    literal.remove();
  };
  bool quoted = false;
  for (int32_t i = 0; i < pattern.length();) {
    const UChar c = pattern.charAt(i);
    if (c == u'\'') {
      // '' is a quote, in or out of a quoted run.
      if (i + 1 < pattern.length() && pattern.charAt(i + 1) == u'\'') {
        literal.append(c);
        i += 2;
      } else {
        quoted = !quoted;
        ++i;
      }
      continue;
    }
    const bool letter = (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
    if (quoted || !letter) {
      literal.append(c);
      ++i;
      continue;
    }
    int run = 0;
    while (i + run < pattern.length() && pattern.charAt(i + run) == c) ++run;
    i += run;
    flush();
    if (c == u'y') {
      parts_.push_back(Part{run == 2 ? Kind::kTwoDigitYear : Kind::kYear, run == 2 ? 2 : run, {}});
    } else if (c == u'd' && run <= 2) {
      parts_.push_back(Part{Kind::kDay, run, {}});
    } else if ((c == u'M' || c == u'L') && run <= 2) {
      parts_.push_back(Part{Kind::kMonth, run, {}});
    } else if ((c == u'M' || c == u'L') && run <= 5) {
      const auto context = c == u'M' ? icu::DateFormatSymbols::FORMAT : icu::DateFormatSymbols::STANDALONE;
      const auto width = run == 3   ? icu::DateFormatSymbols::ABBREVIATED
                         : run == 4 ? icu::DateFormatSymbols::WIDE
                                    : icu::DateFormatSymbols::NARROW;
      int32_t count = 0;
      const icu::UnicodeString* names = symbols->getMonths(count, context, width);
      if (!names || count < 12) return false;
      std::array<std::string, 12> table;
      for (int m = 0; m < 12; ++m) table[m] = utf8(names[m]);
      parts_.push_back(Part{Kind::kMonthName, static_cast<int>(month_names_.size()), {}});
      month_names_.push_back(std::move(table));
    } else {
      return false;  // weekdays, eras and the rest stay with ICU
    }
  }
  flush();
  return !quoted;
}

void DateLayout::number(int value, int width, std::string& out) const {
  char buf[12];
  int n = 0;
  do {
    buf[n++] = static_cast<char>(value % 10);
    value /= 10;
  } while (value > 0);
  for (int pad = width - n; pad > 0; --pad) out += digits_[0];
  while (n > 0) out += digits_[static_cast<size_t>(buf[--n])];
}

std::string DateLayout::format(int64_t day) const {
  using namespace std::chrono;
  const year_month_day ymd{sys_days{days{day}}};
  const int y = int(ymd.year());
  const int m = int(unsigned(ymd.month()));
  const int d = int(unsigned(ymd.day()));
  std::string out;
  out.reserve(32);
  for (const Part& p : parts_) {
    switch (p.kind) {
      case Kind::kLiteral: out += p.text; break;
      case Kind::kYear: number(y, p.width, out); break;
      case Kind::kTwoDigitYear: number(y % 100, 2, out); break;
      case Kind::kMonth: number(m, p.width, out); break;
      case Kind::kMonthName: out += month_names_[static_cast<size_t>(p.width)][static_cast<size_t>(m - 1)]; break;
      case Kind::kDay: number(d, p.width, out); break;
    }
  }
  return out;
}

}  // namespace kxui::services::detail
