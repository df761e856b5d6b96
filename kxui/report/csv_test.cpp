// Report files as CSV: quoting, value texts and download names.
#include "kxui/report/detail/csv.h"

#include <gtest/gtest.h>

#include "kxui/testing/fake_services.h"

namespace kxui::detail {
namespace {

TEST(CsvTest, FieldsAreQuotedOnlyWhenTheyMustBe) {
  const std::pair<Variant, std::string> cases[] = {
      {Variant("plain"), "plain"},
      {Variant("a,b"), "\"a,b\""},
      {Variant("say \"hi\""), "\"say \"\"hi\"\"\""},
      {Variant("\""), "\"\"\"\""},
      {Variant("two\nlines"), "\"two\nlines\""},
      {Variant("cr\rhere"), "\"cr\rhere\""},
      {Variant(" padded "), " padded "},
      {Variant(""), ""},
      {Variant::null(), ""},
      {Variant(), ""},
      {Variant("=SUM(A1:A9)"), "'=SUM(A1:A9)"},
      {Variant("+1"), "'+1"},
      {Variant("-x,y"), "\"'-x,y\""},
      {Variant("@cmd"), "'@cmd"},
      {Variant("\tTab"), "'\tTab"},
      {Variant("a=b"), "a=b"},
      {Variant("~home"), "~home"},
      {Variant(int32_t{-5}), "-5"},
      {Variant(-2.5), "-2.5"},
      {Variant(Currency::from_double(1234.5)), "1234.5"},
      {Variant(true), "True"},
      {Variant(Date::from_civil(2024, 3, 5, 9, 30, 0)), "2024-03-05 09:30:00"},
      {Variant(Date::from_civil(2024, 3, 5)), "2024-03-05"},
  };
  for (const auto& [value, expected] : cases) {
    SCOPED_TRACE(expected);
    EXPECT_EQ(csv_field(value), expected);
  }
}

TEST(CsvTest, GoldenFile) {
  auto rs = testing::make_recordset(
      {{"PONum", adInteger},
       {"Supplier, Name", adVarWChar, 50},
       {"Total", adCurrency},
       {"Ordered", adDate},
       {"Note", adVarWChar, 50, adFldIsNullable}},
      {{Variant(int32_t{1001}), Variant("Acme"), Variant(Currency::from_double(99.5)),
        Variant(Date::from_civil(2024, 1, 31, 17, 5, 0)), Variant("ok")},
       {Variant(int32_t{1002}), Variant("Smith, Jones & \"Co\""),
        Variant(Currency::from_double(-3)), Variant(Date::from_civil(2024, 2, 1)), Variant::null()},
       {Variant(int32_t{1003}), Variant("Line\r\nBreak"), Variant(Currency::from_double(0)),
        Variant(Date::from_civil(2024, 2, 2, 0, 0, 1)), Variant("=1+1")}});
  EXPECT_EQ(csv_text(*rs),
            "PONum,\"Supplier, Name\",Total,Ordered,Note\r\n"
            "1001,Acme,99.5,2024-01-31 17:05:00,ok\r\n"
            "1002,\"Smith, Jones & \"\"Co\"\"\",-3,2024-02-01,\r\n"
            "1003,\"Line\r\nBreak\",0,2024-02-02 00:00:01,'=1+1\r\n");
  EXPECT_TRUE(rs->IsEOF());
  // A report without rows is its header line.
  auto empty = testing::make_recordset({{"A", adInteger}, {"B", adVarWChar, 5}});
  EXPECT_EQ(csv_text(*empty), "A,B\r\n");
  auto one = testing::make_recordset({{"A", adInteger}}, {{Variant(int32_t{1})}});
  EXPECT_EQ(csv_text(*one), "A\r\n1\r\n");
}

TEST(CsvTest, DownloadNamesKeepOnlySafeCharacters) {
  const std::pair<std::string, std::string> cases[] = {
      {"Orders by month", "Orders_by_month.csv"},
      {"PO-2024_Q1.v2", "PO-2024_Q1.v2.csv"},
      {"../../etc/passwd", ".._.._etc_passwd.csv"},
      {"a\r\nContent-Type: x", "a__Content-Type__x.csv"},
      {"Résumé", "R__sum__.csv"},
      {"", "report.csv"},
      {"..", "report.csv"},
      {"  ", "report.csv"},
  };
  for (const auto& [name, expected] : cases) {
    SCOPED_TRACE(name);
    EXPECT_EQ(download_name(name, ".csv"), expected);
  }
}

}  // namespace
}  // namespace kxui::detail
