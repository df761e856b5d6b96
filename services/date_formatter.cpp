#include "services/date_formatter.h"

#include <array>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include <unicode/basictz.h>
#include <unicode/gregocal.h>
#include <unicode/smpdtfmt.h>
#include <unicode/tztrans.h>

#include "kxui/frame/errors.h"
#include "kxui/frame/failure.h"
#include "services/date_layout.h"
#include "services/icu_support.h"
#include "services/time_zones.h"

namespace kxui::services {
namespace {

constexpr std::string_view kSource = "KxLocale03.DateFormatter";
constexpr int64_t kMinSeconds = -59011459200;  // 0100-01-01 00:00:00, as Date allows
constexpr int64_t kMaxSeconds = 253402300799;  // 9999-12-31 23:59:59
constexpr int64_t kDay = 86400;

void check_range(Date date) {
  if (date.seconds() < kMinSeconds || date.seconds() > kMaxSeconds) {
    fail(err::kInvalidProcedureCall, kSource, "date outside the years 100 to 9999");
  }
}

int64_t floor_div(int64_t a, int64_t b) { return a / b - ((a % b != 0) && ((a < 0) != (b < 0))); }

// The short pattern with every two-letter year ("yy") widened to "yyyy"; quoted
// literals are left alone.
icu::UnicodeString four_digit_years(const icu::UnicodeString& pattern) {
  icu::UnicodeString out;
  bool quoted = false;
  for (int32_t i = 0; i < pattern.length();) {
    UChar c = pattern.charAt(i);
    if (c == u'\'') quoted = !quoted;
    if (quoted || c != u'y') {
      out.append(c);
      ++i;
      continue;
    }
    int32_t run = 0;
    while (i + run < pattern.length() && pattern.charAt(i + run) == u'y') ++run;
    for (int32_t k = run == 2 ? 4 : run; k > 0; --k) out.append(u'y');
    i += run;
  }
  return out;
}

std::unique_ptr<icu::DateFormat> build_format(int32_t locale_id, int32_t style) {
  const icu::Locale& loc = detail::locale_for(locale_id, kSource);
  std::unique_ptr<icu::DateFormat> df(icu::DateFormat::createDateInstance(
      style == 1 ? icu::DateFormat::kShort : icu::DateFormat::kMedium, loc));
  if (!df) fail(err::kInvalidProcedureCall, kSource, "no date format for the locale");
  if (style == 1) {
    auto* sdf = dynamic_cast<icu::SimpleDateFormat*>(df.get());
    if (!sdf) fail(err::kInvalidProcedureCall, kSource, "no date pattern for the locale");
    icu::UnicodeString pattern;
    sdf->applyPattern(four_digit_years(sdf->toPattern(pattern)));
  }
  // Dates are civil: format them as UTC so no zone shifts them, and keep the Gregorian
  // rules before 1582 too (ICU switches to the Julian calendar there by default).
  df->setTimeZone(*icu::TimeZone::getGMT());
  if (auto* greg = dynamic_cast<const icu::GregorianCalendar*>(df->getCalendar())) {
    std::unique_ptr<icu::GregorianCalendar> cal(greg->clone());
    UErrorCode status = U_ZERO_ERROR;
    cal->setGregorianChange(U_DATE_MIN, status);
    detail::check(status, kSource, "calendar");
    df->adoptCalendar(cal.release());
  }
  return df;
}

uint64_t format_key(int32_t locale_id, int32_t style) {
  return (static_cast<uint64_t>(static_cast<uint32_t>(locale_id)) << 8) | static_cast<uint32_t>(style);
}

// An ICU date format and, when its check days printed the same bytes, the layout that
// prints its texts without ICU.
struct Format {
  std::unique_ptr<icu::DateFormat> icu;
  std::optional<detail::DateLayout> layout;
};

// Date formats mutate their calendar while formatting, so each thread has its own.
Format& format_for(int32_t locale_id, int32_t style) {
  thread_local std::unordered_map<uint64_t, Format> formats;
  const uint64_t key = format_key(locale_id, style);
  auto it = formats.find(key);
  if (it != formats.end()) return it->second;
  Format f{build_format(locale_id, style), std::nullopt};
  if (auto* sdf = dynamic_cast<icu::SimpleDateFormat*>(f.icu.get())) {
    f.layout = detail::DateLayout::learn(*sdf);
  }
  return formats.emplace(key, std::move(f)).first->second;
}

// Direct-mapped and per thread: a colliding day replaces the one before it, so the
// cache stays at kSlots entries whatever the input.
class DayTextCache {
 public:
  std::string* find(uint64_t key, int64_t day) {
    Slot& s = slot(key, day);
    return s.key == key && s.day == day ? &s.text : nullptr;
  }
  void put(uint64_t key, int64_t day, const std::string& text) {
    Slot& s = slot(key, day);
    s.key = key;
    s.day = day;
    s.text = text;
  }

 private:
  static constexpr unsigned kBits = 12;
  struct Slot {
    uint64_t key = ~uint64_t{0};
    int64_t day = 0;
    std::string text;
  };
  Slot& slot(uint64_t key, int64_t day) {
    uint64_t h = key * 0x9E3779B97F4A7C15ull ^ static_cast<uint64_t>(day) * 0xC2B2AE3D27D4EB4Full;
    return slots_[h >> (64 - kBits)];
  }
  std::vector<Slot> slots_ = std::vector<Slot>(size_t{1} << kBits);
};

DayTextCache& day_texts() {
  thread_local DayTextCache cache;
  return cache;
}

// A zone of the table, per thread, with the offsets of the last few spans between two of
// its transitions that were asked for: a list's dates mostly fall in a handful of them.
struct Zone {
  struct Span {
    int64_t begin = 0, end = 0;  // UTC milliseconds, end excluded
    int64_t offset = 0;
  };
  std::unique_ptr<icu::BasicTimeZone> icu;
  std::array<Span, 8> spans;
  size_t next = 0;  // the span replaced next

  int64_t offset_at(int64_t utc_ms, bool remember) {
    if (remember) {
      for (const Span& s : spans) {
        if (utc_ms >= s.begin && utc_ms < s.end) return s.offset;
      }
    }
    UErrorCode status = U_ZERO_ERROR;
    int32_t raw = 0, dst = 0;
    icu->getOffset(static_cast<UDate>(utc_ms), false, raw, dst, status);
    detail::check(status, kSource, "time zone offset");
    if (remember) {
      Span& s = spans[next++ % spans.size()];
      icu::TimeZoneTransition t;
      s.begin = icu->getPreviousTransition(static_cast<UDate>(utc_ms), true, t)
                    ? static_cast<int64_t>(t.getTime())
                    : INT64_MIN;
      s.end = icu->getNextTransition(static_cast<UDate>(utc_ms), false, t)
                  ? static_cast<int64_t>(t.getTime())
                  : INT64_MAX;
      s.offset = int64_t{raw} + dst;
    }
    return int64_t{raw} + dst;
  }
};

// The zone of a table identifier, per thread; nullptr for UTC, which needs no ICU.
Zone* zone_for(int32_t id) {
  const TimeZoneInfo* info = find_time_zone(id);
  if (!info) fail(err::kInvalidProcedureCall, kSource, "unknown time zone " + std::to_string(id));
  if (info->iana_name == "Etc/UTC") return nullptr;
  thread_local std::array<Zone, std::size(kTimeZones)> zones;
  Zone& zone = zones[static_cast<size_t>(info - kTimeZones)];
  if (!zone.icu) {
    std::unique_ptr<icu::TimeZone> tz(
        icu::TimeZone::createTimeZone(detail::from_utf8(info->iana_name)));
    auto* basic = dynamic_cast<icu::BasicTimeZone*>(tz.get());
    if (!basic || *tz == icu::TimeZone::getUnknown()) {
      fail(err::kInvalidProcedureCall, kSource,
           "time zone " + std::string(info->iana_name) + " missing from ICU's data");
    }
    tz.release();
    zone.icu.reset(basic);
  }
  return &zone;
}

}  // namespace

std::string IcuDateFormatter::FormatDateValue(int32_t locale_id, int32_t style, Date date) {
  if (style != 1 && style != 2) {
    fail(err::kInvalidProcedureCall, kSource, "unknown date style " + std::to_string(style));
  }
  check_range(date);
  const int64_t day = floor_div(date.seconds(), kDay);
  const uint64_t key = format_key(locale_id, style);
  if (cache_day_texts_) {
    if (const std::string* text = day_texts().find(key, day)) return *text;
  }
  Format& format = format_for(locale_id, style);
  std::string text;
  if (fast_paths_ && format.layout) {
    text = format.layout->format(day);
  } else {
    icu::UnicodeString out;
    format.icu->format(static_cast<UDate>(day * kDay) * 1000.0, out);
    text = detail::to_utf8(out);
  }
  if (cache_day_texts_) day_texts().put(key, day, text);
  return text;
}

Date IcuDateFormatter::ConvertTimeZone(int32_t from_zone, Date date, int32_t to_zone) {
  Zone* from = zone_for(from_zone);
  Zone* to = zone_for(to_zone);
  check_range(date);
  if (from_zone == to_zone) return date;
  int64_t utc_ms = date.seconds() * 1000;
  if (from) {
    UErrorCode status = U_ZERO_ERROR;
    int32_t raw = 0, dst = 0;
    from->icu->getOffsetFromLocal(static_cast<UDate>(utc_ms), UCAL_TZ_LOCAL_FORMER,
                                  UCAL_TZ_LOCAL_FORMER, raw, dst, status);
    detail::check(status, kSource, "time zone offset");
    utc_ms -= int64_t{raw} + dst;
  }
  const int64_t local_ms = to ? utc_ms + to->offset_at(utc_ms, fast_paths_) : utc_ms;
  return Date::from_seconds(floor_div(local_ms, 1000));
}

}  // namespace kxui::services
