#include "services/currency_formatter.h"

#include <cmath>

#include "services/test_support.h"

namespace kxui::services {
using testing::Fails;

constexpr char kSource[] = "KxLocale03.CurrencyFormatter";

// Ties away from zero on the decimal the double stands for (2.675), no minus sign on a
// zero, the currency's own decimals (KWD), codes in any case, Spanish grouping from five
// digits.
TEST(CurrencyFormatterTest, FormatsMoneyInEachLocalesPattern) {
  const std::tuple<int32_t, const char*, double, const char*> cases[] = {
      {1033, "USD", 1234.5, "$1,234.50"},      {1033, "USD", -1234.5, "-$1,234.50"},
      {1033, "usd", 0.125, "$0.13"},           {1033, "USD", 2.675, "$2.68"},
      {1033, "USD", -0.001, "$0.00"},          {1033, "KWD", 1.2345, "KWD\u00A01.235"},
      {2057, "GBP", 1234.5, "£1,234.50"},      {1031, "EUR", 1234.5, "1.234,50\u00A0€"},
      {3082, "EUR", 1234.5, "1234,50\u00A0€"}, {1043, "EUR", 1234.5, "€\u00A01.234,50"},
      {1041, "JPY", 1234.5, "￥1,235"},        {2052, "CNY", 1234.5, "¥1,234.50"}};
  IcuCurrencyFormatter f;
  for (const auto& [locale, currency, amount, expected] : cases) {
    EXPECT_EQ(f.FormatCurrencyAmount(locale, currency, amount), expected) << locale << currency;
  }
}

// Up to four decimals, no trailing zeros, ties away from zero.
TEST(CurrencyFormatterTest, FormatsAmountsInTheLocalesConventions) {
  IcuCurrencyFormatter f;
  EXPECT_EQ(f.FormatAmount(1033, 0.12345), "0.1235");
  EXPECT_EQ(f.FormatAmount(1033, -2.00004), "-2");
  EXPECT_EQ(f.FormatAmount(1031, 1234567.891), "1.234.567,891");
  EXPECT_EQ(f.FormatAmount(1036, -1234.5), "-1\u202F234,5");
  EXPECT_EQ(f.FormatAmount(3082, 12345.25), "12.345,25");
}

// NAN marks a text that must be refused, `number` left as it was: a misplaced grouping mark
// (not read as 25), anything around the number, a number beyond a double.
TEST(CurrencyFormatterTest, ParsesOnlyWholeNumbersInTheLocalesConventions) {
  const std::tuple<int32_t, const char*, double> cases[] = {
      {1031, "2,5", 2.5},         {1031, "\t1.234,5\n", 1234.5},
      {1033, "1,234.5", 1234.5},  {1036, "-1\u202F234,5", -1234.5},
      {1033, "\u00A07\u00A0", 7}, {1036, "1 234,5", 1234.5},
      {1031, "2.5", NAN},         {1031, "1.2.3", NAN},
      {1033, "2,5", NAN},         {1033, "1.2.3", NAN},
      {1033, "abc", NAN},         {1033, "", NAN},
      {1033, "   ", NAN},         {1033, "5 x", NAN},
      {1033, "50%", NAN},         {1033, "$5", NAN},
      {1033, "1e999", NAN},       {1036, "1,234.5", NAN}};
  IcuCurrencyFormatter f;
  for (const auto& [locale, text, value] : cases) {
    double n = -42;
    EXPECT_EQ(f.ParseNumber(locale, text, n), !std::isnan(value)) << locale << " '" << text << "'";
    EXPECT_EQ(n, std::isnan(value) ? -42 : value) << locale << " '" << text << "'";
  }
}

TEST(CurrencyFormatterTest, UnknownLocaleCurrencyOrAmountFailsNamingIt) {
  IcuCurrencyFormatter f;
  EXPECT_THAT([&] { f.FormatCurrencyAmount(99999, "USD", 1); }, Fails(5, kSource, "99999"));
  EXPECT_THAT([&] { f.FormatAmount(0, 1); }, Fails(5, kSource, "identifier 0"));
  EXPECT_THAT([&] { f.FormatCurrencyAmount(1033, "XYZ", 1); }, Fails(5, kSource, "'XYZ'"));
  EXPECT_THAT([&] { f.FormatAmount(1033, NAN); }, Fails(5, kSource, ""));
}

}  // namespace kxui::services
