#include "services/currency_formatter.h"

#include <gtest/gtest.h>

#include <limits>

#include "services/test_support.h"

namespace kxui::services {
namespace {

using testing::failure_of;
using testing::show_spaces;

constexpr int32_t kEnUS = 1033, kEnGB = 2057, kDeDE = 1031, kFrFR = 1036, kItIT = 1040,
                  kEsES = 3082, kNlNL = 1043, kJaJP = 1041, kZhCN = 2052;

struct Case {
  int32_t locale;
  const char* currency;
  double amount;
  const char* expected;
};

TEST(CurrencyFormatterTest, FormatsMoneyInEachLocalesPatternWithTheCurrencysDecimals) {
  const Case cases[] = {
      {kEnUS, "USD", 1234.5, "$1,234.50"},
      {kEnUS, "USD", -1234.5, "-$1,234.50"},
      {kEnUS, "EUR", 1234.5, "€1,234.50"},
      {kEnGB, "GBP", 1234.5, "£1,234.50"},
      {kDeDE, "EUR", 1234.5, "1.234,50\u00A0€"},
      {kFrFR, "EUR", 1234.5, "1\u202F234,50\u00A0€"},
      {kItIT, "EUR", 1234.5, "1.234,50\u00A0€"},
      {kEsES, "EUR", 1234.5, "1234,50\u00A0€"},  // Spanish groups from five digits
      {kEsES, "EUR", 12345.5, "12.345,50\u00A0€"},
      {kNlNL, "EUR", 1234.5, "€\u00A01.234,50"},
      {kJaJP, "JPY", 1234.5, "￥1,235"},
      {kZhCN, "CNY", 1234.5, "¥1,234.50"},
      {kEnUS, "usd", 0.125, "$0.13"},  // ties away from zero, code in any case
      {kEnUS, "USD", 2.675, "$2.68"},  // the decimal the double stands for, not its binary
      {kEnUS, "USD", -0.001, "$0.00"},  // no minus sign on a zero
      {kEnUS, "JPY", 0.5, "¥1"},
      {kEnUS, "KWD", 1.2345, "KWD\u00A01.235"},  // three decimals
  };
  IcuCurrencyFormatter f;
  for (const Case& c : cases) {
    SCOPED_TRACE(std::to_string(c.locale) + " " + c.currency + " " + std::to_string(c.amount));
    EXPECT_EQ(show_spaces(f.FormatCurrencyAmount(c.locale, c.currency, c.amount)),
              show_spaces(c.expected));
  }
}

TEST(CurrencyFormatterTest, FormatsAmountsWithUpToFourDecimalsAndNoTrailingZeros) {
  const Case cases[] = {
      {kEnUS, "", 1234.5, "1,234.5"},
      {kEnUS, "", 1234, "1,234"},
      {kEnUS, "", 0.12345, "0.1235"},
      {kEnUS, "", -2.00004, "-2"},
      {kEnUS, "", -0.00001, "0"},
      {kDeDE, "", 1234567.891, "1.234.567,891"},
      {kFrFR, "", 1234.5, "1\u202F234,5"},
      {kEnGB, "", 0.1, "0.1"},
      {kJaJP, "", 1e6, "1,000,000"},
  };
  IcuCurrencyFormatter f;
  for (const Case& c : cases) {
    SCOPED_TRACE(std::to_string(c.locale) + " " + std::to_string(c.amount));
    EXPECT_EQ(show_spaces(f.FormatAmount(c.locale, c.amount)), show_spaces(c.expected));
  }
}

TEST(CurrencyFormatterTest, UnknownLocaleCurrencyOrAmountFailsNamingIt) {
  IcuCurrencyFormatter f;
  Failure e = failure_of([&] { f.FormatCurrencyAmount(99999, "USD", 1); });
  EXPECT_EQ(e.number(), 5);
  EXPECT_EQ(e.source(), "KxLocale03.CurrencyFormatter");
  EXPECT_NE(e.description().find("99999"), std::string::npos) << e.description();

  for (const char* code : {"XYZ", "", "US", "USDX", "U$D"}) {
    SCOPED_TRACE(code);
    e = failure_of([&] { f.FormatCurrencyAmount(kEnUS, code, 1); });
    EXPECT_EQ(e.number(), 5);
    EXPECT_NE(e.description().find(std::string("'") + code + "'"), std::string::npos)
        << e.description();
  }
  EXPECT_EQ(failure_of([&] { f.FormatAmount(0, 1); }).number(), 5);  // 0 maps to no locale
  EXPECT_EQ(failure_of([&] { f.FormatAmount(-1, 1); }).number(), 5);
  EXPECT_EQ(failure_of([&] { f.FormatAmount(kEnUS, std::numeric_limits<double>::quiet_NaN()); })
                .number(),
            5);
  EXPECT_EQ(failure_of([&] {
              f.FormatCurrencyAmount(kEnUS, "USD", std::numeric_limits<double>::infinity());
            }).number(),
            5);
  double n = 0;
  EXPECT_EQ(failure_of([&] { f.ParseNumber(99999, "1", n); }).number(), 5);
}

struct ParseCase {
  int32_t locale;
  const char* text;
  bool ok;
  double value;
};

TEST(CurrencyFormatterTest, ParsesOnlyWholeNumbersInTheLocalesConventions) {
  const ParseCase cases[] = {
      {kDeDE, "2,5", true, 2.5},
      {kDeDE, "1.234,5", true, 1234.5},
      {kDeDE, " \t1.234,5 \r\n", true, 1234.5},
      {kDeDE, "1234", true, 1234},
      {kDeDE, "2.5", false, 0},
      {kDeDE, "1.2.3", false, 0},
      {kEnUS, "2,5", false, 0},  // a misplaced grouping separator is refused, not read as 25
      {kEnUS, "12,34", false, 0},
      {kEnUS, "1,234.5", true, 1234.5},
      {kEnUS, "2.5", true, 2.5},
      {kEnUS, "1.2.3", false, 0},
      {kEnUS, "-3", true, -3},
      {kEnUS, "-0", true, 0},
      {kEnUS, "\u00A07\u00A0", true, 7},
      {kEnUS, "abc", false, 0},
      {kEnUS, "", false, 0},
      {kEnUS, "   ", false, 0},
      {kEnUS, "5 x", false, 0},
      {kEnUS, "50%", false, 0},
      {kEnUS, "$5", false, 0},
      {kEnUS, "1e999", false, 0},  // not a finite double
      {kFrFR, "1 234,5", true, 1234.5},  // a typed space groups like ICU's own
      {kFrFR, "1\u202F234,5", true, 1234.5},
      {kFrFR, "1,234.5", false, 0},
      {kJaJP, "1,234", true, 1234},
  };
  IcuCurrencyFormatter f;
  for (const ParseCase& c : cases) {
    SCOPED_TRACE(std::to_string(c.locale) + " '" + c.text + "'");
    double n = -42;
    EXPECT_EQ(f.ParseNumber(c.locale, c.text, n), c.ok);
    EXPECT_EQ(n, c.ok ? c.value : -42);  // untouched on failure
  }
}

TEST(CurrencyFormatterTest, FormattedAmountsParseBack) {
  IcuCurrencyFormatter f;
  for (int32_t locale : {kEnUS, kEnGB, kDeDE, kFrFR, kItIT, kEsES, kNlNL, kJaJP, kZhCN}) {
    for (double v : {0.0, 1.5, -1234.25, 1234567.0625}) {
      SCOPED_TRACE(std::to_string(locale) + " " + std::to_string(v));
      double back = 0;
      ASSERT_TRUE(f.ParseNumber(locale, f.FormatAmount(locale, v), back));
      EXPECT_EQ(back, v);
    }
  }
}

}  // namespace
}  // namespace kxui::services
