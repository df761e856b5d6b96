// The locale services print numbers and dates without ICU where they can; ICU stays the
// oracle. Random values go through both paths of the same service and every byte must
// agree. KXUI_DIFFERENTIAL_VALUES sets how many values each test draws (a bounded
// number by default; `make differential` runs a million and more).
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <unicode/gregocal.h>
#include <unicode/numberformatter.h>

#include "services/currency_formatter.h"
#include "services/date_formatter.h"
#include "services/date_layout.h"
#include "services/icu_support.h"
#include "services/number_layout.h"

namespace kxui::services {
namespace {

int64_t value_count() {
  const char* n = std::getenv("KXUI_DIFFERENTIAL_VALUES");
  return n && *n ? std::atoll(n) : 100000;
}

// en-US, de-DE, fr-FR, fr-CH, hi-IN, ja-JP, ar-EG, es-ES, en-GB, nl-NL, zh-CN, pt-BR,
// ru-RU, de-CH, en-IN, it-IT, sv-SE, pl-PL, he-IL, fa-IR, ko-KR, th-TH.
constexpr int32_t kLocales[] = {1033, 1031, 1036, 4108, 1081, 1041, 3073, 3082, 2057, 1043, 2052,
                                1046, 1049, 2055, 16393, 1040, 1053, 1045, 1037, 1065, 1042, 1054};
// Currencies of 0, 2, 3 and 4 decimals, symbols before and after, letters and signs.
const char* const kCurrencies[] = {"USD", "EUR", "JPY", "KWD", "CLF", "INR", "CHF", "EGP",
                                   "GBP", "CNY", "BRL", "RUB", "SEK", "PLN", "ILS", "IRR",
                                   "KRW", "THB", "BHD", "XAF", "ISK", "CAD", "MXN", "VND"};

// Amounts as pages hold them: 0-4 decimals over every magnitude, negatives, ties on the
// last decimal, and now and then something huge or tiny.
double random_amount(std::mt19937_64& rng) {
  std::uniform_int_distribution<int> kind(0, 19), decimals(0, 4), magnitude(-2, 15);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  double v;
  switch (kind(rng)) {
    case 0: v = std::pow(10.0, unit(rng) * 300); break;            // huge
    case 1: v = std::pow(10.0, -unit(rng) * 300); break;           // tiny
    case 2: v = std::round(unit(rng) * 1e6) / 1e3 + 0.0005; break;  // a tie at three decimals
    case 3: v = std::round(unit(rng) * 1e7) / 1e4 + 0.00005; break; // a tie at four
    case 4: v = std::round(unit(rng) * 1e4) / 100 + 0.005; break;   // a tie at two
    case 5: v = std::floor(unit(rng) * 1e4) + 0.5; break;           // a tie at none
    default: {
      const double scale = std::pow(10.0, decimals(rng));
      v = std::round(unit(rng) * std::pow(10.0, magnitude(rng)) * scale) / scale;
    }
  }
  return unit(rng) < 0.3 ? -v : v;
}

TEST(DifferentialTest, MoneyAndAmountsPrintAsIcuDoes) {
  IcuCurrencyFormatter fast, icu(false);
  std::mt19937_64 rng(1);
  const int64_t n = value_count();
  const int64_t pairs = std::size(kLocales) * (std::size(kCurrencies) + 1);
  int64_t failures = 0;
  for (int64_t i = 0; i < n && failures < 20; ++i) {
    const int64_t pair = i % pairs;
    const int32_t locale = kLocales[pair % std::size(kLocales)];
    const size_t c = static_cast<size_t>(pair / std::size(kLocales));
    const double v = random_amount(rng);
    const bool plain = c == std::size(kCurrencies);
    const std::string got = plain ? fast.FormatAmount(locale, v)
                                  : fast.FormatCurrencyAmount(locale, kCurrencies[c], v);
    const std::string want = plain ? icu.FormatAmount(locale, v)
                                   : icu.FormatCurrencyAmount(locale, kCurrencies[c], v);
    if (got != want) {
      ++failures;
      ADD_FAILURE() << locale << " " << (plain ? "amount" : kCurrencies[c]) << " "
                    << std::to_string(v) << " (" << v << "): '" << got << "', ICU '" << want << "'";
    }
  }
}

// Days as lists hold them, mostly recent, and any day from the year 100 to 9999.
int64_t random_day(std::mt19937_64& rng) {
  std::uniform_int_distribution<int> kind(0, 3);
  std::uniform_int_distribution<int64_t> any(Date::from_civil(100, 1, 1).seconds() / 86400,
                                             Date::from_civil(9999, 12, 31).seconds() / 86400);
  std::uniform_int_distribution<int64_t> recent(Date::from_civil(1990, 1, 1).seconds() / 86400,
                                                Date::from_civil(2040, 1, 1).seconds() / 86400);
  return kind(rng) == 0 ? any(rng) : recent(rng);
}

TEST(DifferentialTest, DatesPrintAsIcuDoes) {
  IcuDateFormatter fast(false), icu(false, false);
  std::mt19937_64 rng(2);
  const int64_t n = value_count();
  int64_t failures = 0;
  for (int64_t i = 0; i < n && failures < 20; ++i) {
    const int32_t locale = kLocales[i % std::size(kLocales)];
    const int32_t style = 1 + static_cast<int32_t>(i / std::size(kLocales) % 2);
    // Any time of the day: only its date is printed.
    const Date d = Date::from_seconds(random_day(rng) * 86400 + static_cast<int64_t>(rng() % 86400));
    const std::string got = fast.FormatDateValue(locale, style, d);
    const std::string want = icu.FormatDateValue(locale, style, d);
    if (got != want) {
      ++failures;
      ADD_FAILURE() << locale << " style " << style << " " << d.seconds() << ": '" << got
                    << "', ICU '" << want << "'";
    }
  }
}

// Stored times converted to every zone, at random over the centuries, in the weeks of
// the usual daylight-saving changes, and as a list walks them in order (so remembered
// offsets are crossed by transitions).
TEST(DifferentialTest, ZoneConversionsMatchIcu) {
  IcuDateFormatter fast(false), icu(false, false);
  std::mt19937_64 rng(3);
  std::uniform_int_distribution<int> zone(1, 31), year(1900, 2100), kind(0, 2), spring_or_fall(0, 1);
  std::uniform_int_distribution<int> day_in_weeks(0, 44), second(0, 86399);
  const int64_t n = value_count();
  int64_t failures = 0;
  auto compare = [&](int32_t to, Date stored) {
    const Date got = fast.ConvertTimeZone(15, stored, to);
    const Date want = icu.ConvertTimeZone(15, stored, to);
    if (got != want && ++failures <= 20) {
      ADD_FAILURE() << "zone " << to << " " << stored.seconds() << ": " << got.seconds()
                    << ", ICU " << want.seconds();
    }
  };
  for (int64_t i = 0; i < n / 2; ++i) {
    const int k = kind(rng);
    int64_t s;
    if (k == 0) {
      s = random_day(rng) * 86400 + second(rng);
    } else {
      // From March 1 or October 1, six weeks on.
      s = Date::from_civil(year(rng), spring_or_fall(rng) ? 3 : 10, 1).seconds() +
          int64_t{day_in_weeks(rng)} * 86400 + second(rng);
    }
    compare(zone(rng), Date::from_seconds(s));
  }
  const int64_t step = 17 * 60 + 13;
  const int64_t per_zone = n / 2 / 31;
  for (int32_t to = 1; to <= 31; ++to) {
    int64_t s = Date::from_civil(1960 + to * 3, 1, 1).seconds();
    for (int64_t i = 0; i < per_zone; ++i, s += step) compare(to, Date::from_seconds(s));
  }
}

// The comparison above proves nothing if every formatter stayed with ICU: the layouts
// must be learned for the locales pages use most, Indian grouping and Arabic digits and
// marks included.
TEST(DifferentialTest, NumberLayoutsAreLearnedForCommonLocales) {
  for (int32_t locale : {1033, 1031, 1036, 4108, 1081, 1041, 3073, 3082, 2052}) {
    for (const char* currency : {"", "USD", "EUR", "JPY", "KWD", "INR"}) {
      const auto base = icu::number::NumberFormatter::withLocale(
                            detail::locale_for(locale, "test"))
                            .roundingMode(UNUM_ROUND_HALFUP)
                            .sign(UNUM_SIGN_NEGATIVE);
      UErrorCode status = U_ZERO_ERROR;
      const auto f = *currency ? base.unit(icu::CurrencyUnit(icu::StringPiece(currency), status))
                               : base.precision(icu::number::Precision::minMaxFraction(0, 4));
      EXPECT_TRUE(detail::NumberLayout::learn(f).has_value()) << locale << " " << currency;
    }
  }
}

TEST(DifferentialTest, DateLayoutsAreLearnedForCommonLocales) {
  for (int32_t locale : {1033, 1031, 1036, 4108, 1081, 1041, 3073, 3082, 2052, 1049, 1037}) {
    for (auto style : {icu::DateFormat::kShort, icu::DateFormat::kMedium}) {
      std::unique_ptr<icu::DateFormat> df(
          icu::DateFormat::createDateInstance(style, detail::locale_for(locale, "test")));
      df->setTimeZone(*icu::TimeZone::getGMT());
      // Proleptic Gregorian, as the service sets its formats.
      auto* greg = dynamic_cast<const icu::GregorianCalendar*>(df->getCalendar());
      ASSERT_NE(greg, nullptr) << locale;
      std::unique_ptr<icu::GregorianCalendar> cal(greg->clone());
      UErrorCode status = U_ZERO_ERROR;
      cal->setGregorianChange(U_DATE_MIN, status);
      df->adoptCalendar(cal.release());
      auto* sdf = dynamic_cast<icu::SimpleDateFormat*>(df.get());
      ASSERT_NE(sdf, nullptr);
      EXPECT_TRUE(detail::DateLayout::learn(*sdf).has_value()) << locale << " " << style;
    }
  }
}

}  // namespace
}  // namespace kxui::services
