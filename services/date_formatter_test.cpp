#include "services/date_formatter.h"

#include <atomic>
#include <thread>

#include "services/currency_formatter.h"
#include "services/test_support.h"
#include "services/time_zones.h"

namespace kxui::services {

using testing::Fails;

constexpr int32_t kUTC = 15, kNewYork = 8, kBerlin = 17, kSydney = 30, kKolkata = 26;

Date at(int y, int mo, int d, int h = 0, int mi = 0, int s = 0) {
  return Date::from_civil(y, mo, d, h, mi, s);
}

TEST(DateFormatterTest, FormatsShortDatesWithFourDigitYearsAndMediumDates) {
  const std::tuple<int32_t, const char*, const char*> cases[] = {
      {1033, "3/5/2024", "Mar 5, 2024"},   {1031, "05.03.2024", "05.03.2024"},
      {1036, "05/03/2024", "5 mars 2024"}, {1041, "2024/03/05", "2024/03/05"},
      {2052, "2024/3/5", "2024年3月5日"},  {2057, "05/03/2024", "5 Mar 2024"}};
  IcuDateFormatter f;
  for (const auto& [locale, style1, style2] : cases) {
    EXPECT_EQ(f.FormatDateValue(locale, 1, at(2024, 3, 5, 23, 59, 59)), style1) << locale;
    EXPECT_EQ(f.FormatDateValue(locale, 2, at(2024, 3, 5)), style2) << locale;
  }
  EXPECT_EQ(f.FormatDateValue(1033, 1, at(100, 1, 1)), "1/1/0100");  // proleptic Gregorian
  EXPECT_EQ(f.FormatDateValue(1033, 2, at(9999, 12, 31, 23, 59, 59)), "Dec 31, 9999");
}

TEST(DateFormatterTest, BadStyleLocaleDateOrZoneFailsNamingIt) {
  constexpr char kSource[] = "KxLocale03.DateFormatter";
  IcuDateFormatter f;
  const Date d = at(2024, 1, 1), too_early = Date::from_seconds(at(100, 1, 1).seconds() - 1);
  f.FormatDateValue(1033, 1, d);  // a cached day must not hide an unknown locale
  EXPECT_THAT([&] { f.FormatDateValue(4096, 1, d); }, Fails(5, kSource, "identifier 4096"));
  EXPECT_THAT([&] { f.FormatDateValue(1033, 3, d); }, Fails(5, kSource, "style 3"));
  EXPECT_THAT([&] { f.FormatDateValue(1033, 1, too_early); }, Fails(5, kSource, "years"));
  EXPECT_THAT([&] { f.ConvertTimeZone(0, d, kUTC); }, Fails(5, kSource, "time zone 0"));
  EXPECT_THAT([&] { f.ConvertTimeZone(kUTC, d, 99); }, Fails(5, kSource, "time zone 99"));
}

TEST(DateFormatterTest, ConvertsBetweenZonesWithDaylightSaving) {
  const std::tuple<const char*, int32_t, Date, int32_t, Date> cases[] = {
      {"NY summer", kNewYork, at(2024, 7, 1, 8), kUTC, at(2024, 7, 1, 12)},
      {"half-hour zone", kUTC, at(2024, 1, 1), kKolkata, at(2024, 1, 1, 5, 30)},
      {"zone to zone", kBerlin, at(2024, 7, 1, 14), kSydney, at(2024, 7, 1, 22)},
      // Spring forward: 02:00-03:00 does not exist; read with the offset before (EST).
      {"NY gap to UTC", kNewYork, at(2024, 3, 10, 2, 30), kUTC, at(2024, 3, 10, 7, 30)},
      {"UTC into NY after gap", kUTC, at(2024, 3, 10, 7, 30), kNewYork, at(2024, 3, 10, 3, 30)},
      // Fall back: 01:00-02:00 happens twice; the first (daylight) occurrence is taken.
      {"NY overlap to UTC", kNewYork, at(2024, 11, 3, 1, 30), kUTC, at(2024, 11, 3, 5, 30)},
      {"UTC second occurrence", kUTC, at(2024, 11, 3, 6, 30), kNewYork, at(2024, 11, 3, 1, 30)}};
  IcuDateFormatter f;
  for (const auto& [what, from, in, to, out] : cases) {
    EXPECT_EQ(f.ConvertTimeZone(from, in, to).seconds(), out.seconds()) << what;
  }
  for (const TimeZoneInfo& z : kTimeZones) {  // ICU knows every zone of the table
    EXPECT_NO_THROW(f.ConvertTimeZone(z.id, at(2024, 7, 10, 12), kUTC)) << z.iana_name;
  }
}

// Two threads formatting at once each get their own locale's texts, and the per-thread
// day-text cache (more days than it holds, each seen twice) always agrees with ICU.
TEST(DateFormatterTest, ThreadsAndTheDayTextCacheGiveTheRightTexts) {
  IcuCurrencyFormatter money;
  std::atomic<int> wrong = 0;
  auto run = [&](int32_t locale, const char* date, const char* currency, const char* amount) {
    IcuDateFormatter cached, fresh(false);  // the second reaches ICU every time
    for (int i = 0; i < 12000; ++i) {
      const Date day = Date::from_seconds((i % 6000 - 1333) * 259200LL + 3600 * (i % 24));
      const int32_t other = i % 2 ? 1033 : locale, style = i / 2 % 2 + 1;
      wrong +=
          fresh.FormatDateValue(locale, 2, at(2024, 3, 5)) != date ||
          cached.FormatDateValue(other, style, day) != fresh.FormatDateValue(other, style, day) ||
          money.FormatCurrencyAmount(locale, currency, 1234.5) != amount;
    }
  };
  {
    std::jthread a(run, 1031, "05.03.2024", "EUR", "1.234,50\u00A0€");
    std::jthread b(run, 1041, "2024/03/05", "JPY", "￥1,235");
  }
  EXPECT_EQ(wrong, 0);
}

}  // namespace kxui::services
