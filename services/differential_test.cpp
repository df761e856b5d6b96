// The locale services print numbers and dates without ICU where they can; ICU stays the
// oracle. Random values go through both paths of the same service and every byte must
// agree. KXUI_DIFFERENTIAL_VALUES sets how many values each test draws (a bounded
// number by default; `make differential` runs a million and more).
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include <unicode/numberformatter.h>

#include "services/currency_formatter.h"
#include "services/date_formatter.h"
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

// The comparison above proves nothing if every formatter stayed with ICU: the layouts
// must be learned for the locales pages use most, Indian grouping and Arabic digits and
// marks included.
TEST(DifferentialTest, LayoutsAreLearnedForCommonLocales) {
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

}  // namespace
}  // namespace kxui::services
