#include "services/date_formatter.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <thread>
#include <vector>

#include "services/currency_formatter.h"
#include "services/test_support.h"
#include "services/time_zones.h"

namespace kxui::services {
namespace {

using testing::failure_of;

constexpr int32_t kUTC = 15, kNewYork = 8, kBerlin = 17, kSydney = 30, kKolkata = 26,
                  kStJohns = 11;

Date at(int y, int mo, int d, int h = 0, int mi = 0, int s = 0) {
  return Date::from_civil(y, mo, d, h, mi, s);
}

struct FormatCase {
  int32_t locale;
  const char* style1;
  const char* style2;
};

TEST(DateFormatterTest, FormatsShortDatesWithFourDigitYearsAndMediumDates) {
  const FormatCase cases[] = {
      {1033, "3/5/2024", "Mar 5, 2024"},      {2057, "05/03/2024", "5 Mar 2024"},
      {1031, "05.03.2024", "05.03.2024"},     {1036, "05/03/2024", "5 mars 2024"},
      {1040, "05/03/2024", "5 mar 2024"},     {3082, "5/3/2024", "5 mar 2024"},
      {1043, "05-03-2024", "5 mrt 2024"},     {1041, "2024/03/05", "2024/03/05"},
      {2052, "2024/3/5", "2024年3月5日"},
  };
  IcuDateFormatter f;
  for (const FormatCase& c : cases) {
    SCOPED_TRACE(c.locale);
    EXPECT_EQ(f.FormatDateValue(c.locale, 1, at(2024, 3, 5)), c.style1);
    EXPECT_EQ(f.FormatDateValue(c.locale, 2, at(2024, 3, 5, 23, 59, 59)), c.style2);
  }
  // Civil dates far from today: proleptic Gregorian, four-digit years.
  EXPECT_EQ(f.FormatDateValue(1033, 2, at(1500, 1, 1)), "Jan 1, 1500");
  EXPECT_EQ(f.FormatDateValue(1033, 1, at(100, 1, 1)), "1/1/0100");
  EXPECT_EQ(f.FormatDateValue(1033, 1, at(9999, 12, 31, 23, 59, 59)), "12/31/9999");
  EXPECT_EQ(f.FormatDateValue(1033, 2, at(1969, 12, 31, 12)), "Dec 31, 1969");
}

TEST(DateFormatterTest, DayTextCacheNeverMixesLocalesStylesOrDays) {
  IcuDateFormatter cached, fresh(false);
  // More days than the cache holds, in two locales and both styles, visited twice.
  for (int pass = 0; pass < 2; ++pass) {
    for (int d = 0; d < 6000; d += 1 + pass) {
      const Date date = Date::from_seconds(int64_t{d} * 86400 * 3 - 86400LL * 4000 + 3600 * (d % 24));
      for (int32_t locale : {1033, 1031}) {
        for (int32_t style : {1, 2}) {
          ASSERT_EQ(cached.FormatDateValue(locale, style, date),
                    fresh.FormatDateValue(locale, style, date))
              << locale << " " << style << " " << d;
        }
      }
    }
  }
}

TEST(DateFormatterTest, BadStyleLocaleOrDateFails) {
  IcuDateFormatter f;
  for (int32_t style : {0, 3, -1}) {
    Failure e = failure_of([&] { f.FormatDateValue(1033, style, at(2024, 1, 1)); });
    EXPECT_EQ(e.number(), 5);
    EXPECT_EQ(e.source(), "KxLocale03.DateFormatter");
  }
  Failure e = failure_of([&] { f.FormatDateValue(99999, 1, at(2024, 1, 1)); });
  EXPECT_EQ(e.number(), 5);
  EXPECT_NE(e.description().find("99999"), std::string::npos) << e.description();
  // Cached texts must not hide an unknown locale on a day seen before.
  EXPECT_EQ(failure_of([&] { f.FormatDateValue(4096, 1, at(2024, 1, 1)); }).number(), 5);
  for (int64_t s : {int64_t{1} << 50, at(100, 1, 1).seconds() - 1}) {
    EXPECT_EQ(failure_of([&] { f.FormatDateValue(1033, 1, Date::from_seconds(s)); }).number(), 5);
  }
}

struct ZoneCase {
  const char* what;
  int32_t from;
  Date in;
  int32_t to;
  Date out;
};

TEST(DateFormatterTest, ConvertsBetweenZonesWithDaylightSaving) {
  const ZoneCase cases[] = {
      {"New York winter", kUTC, at(2024, 1, 15, 12), kNewYork, at(2024, 1, 15, 7)},
      {"New York summer", kUTC, at(2024, 7, 1, 12), kNewYork, at(2024, 7, 1, 8)},
      {"back to UTC", kNewYork, at(2024, 7, 1, 8), kUTC, at(2024, 7, 1, 12)},
      {"across midnight", kUTC, at(2024, 1, 1, 2), kNewYork, at(2023, 12, 31, 21)},
      {"half-hour zone", kUTC, at(2024, 1, 1), kKolkata, at(2024, 1, 1, 5, 30)},
      {"St John's summer", kUTC, at(2024, 7, 1), kStJohns, at(2024, 6, 30, 21, 30)},
      {"zone to zone", kBerlin, at(2024, 7, 1, 14), kSydney, at(2024, 7, 1, 22)},
      {"same zone", kNewYork, at(2024, 3, 10, 2, 30), kNewYork, at(2024, 3, 10, 2, 30)},
      // Spring forward: 02:00-03:00 does not exist; read with the offset before (EST).
      {"NY gap to UTC", kNewYork, at(2024, 3, 10, 2, 30), kUTC, at(2024, 3, 10, 7, 30)},
      {"UTC into NY after gap", kUTC, at(2024, 3, 10, 7, 30), kNewYork, at(2024, 3, 10, 3, 30)},
      {"Berlin gap", kBerlin, at(2024, 3, 31, 2, 30), kUTC, at(2024, 3, 31, 1, 30)},
      // Fall back: 01:00-02:00 happens twice; the first (daylight) occurrence is taken.
      {"NY overlap to UTC", kNewYork, at(2024, 11, 3, 1, 30), kUTC, at(2024, 11, 3, 5, 30)},
      {"UTC first pass", kUTC, at(2024, 11, 3, 5, 30), kNewYork, at(2024, 11, 3, 1, 30)},
      {"UTC second pass", kUTC, at(2024, 11, 3, 6, 30), kNewYork, at(2024, 11, 3, 1, 30)},
      {"Berlin overlap", kBerlin, at(2024, 10, 27, 2, 30), kUTC, at(2024, 10, 27, 0, 30)},
      {"Sydney overlap", kSydney, at(2024, 4, 7, 2, 30), kUTC, at(2024, 4, 6, 15, 30)},
  };
  IcuDateFormatter f;
  for (const ZoneCase& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(f.ConvertTimeZone(c.from, c.in, c.to).seconds(), c.out.seconds());
  }
}

TEST(DateFormatterTest, EveryTableZoneExistsAndRoundTripsThroughUTC) {
  IcuDateFormatter f;
  std::set<int32_t> ids;
  for (const TimeZoneInfo& z : kTimeZones) {
    SCOPED_TRACE(z.iana_name);
    EXPECT_TRUE(ids.insert(z.id).second) << "duplicate id " << z.id;
    for (Date d : {at(2024, 1, 10, 12), at(2024, 7, 10, 12), at(1999, 12, 31, 23, 59, 59)}) {
      EXPECT_EQ(f.ConvertTimeZone(z.id, f.ConvertTimeZone(kUTC, d, z.id), kUTC), d);
    }
  }
  ASSERT_NE(find_time_zone(kStoredTimeZone), nullptr);
  EXPECT_EQ(find_time_zone(kStoredTimeZone)->iana_name, "Etc/UTC");
}

TEST(DateFormatterTest, UnknownZoneFailsNamingIt) {
  IcuDateFormatter f;
  for (auto [from, to] : {std::pair{0, kUTC}, {kUTC, 99}, {-15, -15}}) {
    Failure e = failure_of([&] { f.ConvertTimeZone(from, at(2024, 1, 1), to); });
    EXPECT_EQ(e.number(), 5);
    EXPECT_NE(e.description().find("time zone " + std::to_string(from == kUTC ? to : from)),
              std::string::npos)
        << e.description();
  }
}

// Formatters are created per call but share their ICU objects: two threads formatting
// different locales at once must each get their own locale's text.
TEST(DateFormatterTest, ThreadsFormattingAtOnceGetTheirOwnResults) {
  IcuDateFormatter dates;
  IcuCurrencyFormatter money;
  struct Work {
    int32_t locale, zone;
    const char* currency;
    const char* typed;
    double number;
    std::string date_text, money_text;
  };
  Work work[] = {{1031, kBerlin, "EUR", "1.234,5", 1234.5, "", ""},
                 {1041, 29, "JPY", "1,234", 1234, "", ""}};
  const Date stored = at(2024, 3, 5, 23, 30);
  for (Work& w : work) {
    w.date_text = dates.FormatDateValue(w.locale, 2, dates.ConvertTimeZone(kUTC, stored, w.zone));
    w.money_text = money.FormatCurrencyAmount(w.locale, w.currency, 1234.5);
  }
  ASSERT_EQ(work[0].date_text, "06.03.2024");
  ASSERT_EQ(work[1].date_text, "2024/03/06");
  std::vector<int> mismatches(2, 0);
  std::vector<std::thread> threads;
  for (int t = 0; t < 2; ++t) {
    threads.emplace_back([&, t] {
      IcuDateFormatter fresh(false);  // every call reaches ICU
      const Work& w = work[t];
      for (int i = 0; i < 2000; ++i) {
        const Date local = fresh.ConvertTimeZone(kUTC, stored, w.zone);
        mismatches[t] += fresh.FormatDateValue(w.locale, 2, local) != w.date_text;
        mismatches[t] += dates.FormatDateValue(w.locale, 2, local) != w.date_text;
        mismatches[t] += money.FormatCurrencyAmount(w.locale, w.currency, 1234.5) != w.money_text;
        double n = 0;
        mismatches[t] += !money.ParseNumber(w.locale, w.typed, n) || n != w.number;
      }
    });
  }
  for (auto& th : threads) th.join();
  EXPECT_EQ(mismatches[0], 0);
  EXPECT_EQ(mismatches[1], 0);
}

}  // namespace
}  // namespace kxui::services
