// The default DateFormatter: dates for display in the user's locale and conversions
// between the zones of services/time_zones.h, both over ICU.
#pragma once

#include <cstdint>
#include <string>

#include "kxui/frame/services.h"

namespace kxui::services {

// Keeps no state of its own: ICU date formats and zones are built once per thread and
// reused (they are not safe to share between threads), and formatted day texts are
// remembered per (locale, style, day) in a bounded per-thread cache, since the dates of
// a list repeat the same days. Safe to use from several threads.
//
// Failures are Failure 5 from "KxLocale03.DateFormatter" naming the culprit: a locale
// identifier ICU does not know, a style other than 1 or 2, a zone identifier missing
// from the table, a date outside the years 100 to 9999.
class IcuDateFormatter : public DateFormatter {
 public:
  // `cache_day_texts` false formats every call afresh (for measuring the cache).
  // Day texts are laid out from the locale's pattern, digits and month names by calendar
  // arithmetic (the same bytes, proven per locale and style when the format is built;
  // any that differ stay with ICU), and a zone's offset is remembered for the span
  // between two of its transitions; `fast_paths` false asks ICU for every text and
  // offset, for comparing the two.
  explicit IcuDateFormatter(bool cache_day_texts = true, bool fast_paths = true)
      : cache_day_texts_(cache_day_texts), fast_paths_(fast_paths) {}

  // The date part of `date` (its time is ignored), on the proleptic Gregorian calendar
  // unless the locale uses another one. Style 1: the locale's short numeric date with a
  // four-digit year (1033 "3/5/2024", 1031 "05.03.2024"); style 2: the locale's medium
  // date (1033 "Mar 5, 2024", 1036 "5 mars 2024").
  std::string FormatDateValue(int32_t locale_id, int32_t style, Date date) override;

  // The wall time in `to_zone` of the instant that reads `date` in `from_zone`, with
  // daylight saving as ICU's zone data has it. A wall time that does not exist in
  // `from_zone` (skipped when clocks go forward) is read with the offset in force just
  // before the change, so 02:30 on a spring-forward night in New York is 07:30 UTC
  // (03:30 daylight time); a wall time that occurs twice (clocks going back) is its
  // first occurrence, so 01:30 on that night in New York is 05:30 UTC.
  Date ConvertTimeZone(int32_t from_zone, Date date, int32_t to_zone) override;

 private:
  bool cache_day_texts_;
  bool fast_paths_;
};

}  // namespace kxui::services
