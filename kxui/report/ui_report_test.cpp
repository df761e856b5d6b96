// UIReport against gmock report objects: the catalogue page, parameters, and report
// files with their data source, parameter values and refusals.
#include "kxui/report/ui_report.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "kxui/business/progids.h"
#include "kxui/testing/fake_services.h"
#include "kxui/testing/mock_report.h"

namespace kxui {
namespace {

using namespace ::testing;
using kxui::testing::ErrorIs;
using kxui::testing::MockReport;
using kxui::testing::MockReportData;
using kxui::testing::MockReportParam;
using Values = std::vector<Variant>;

constexpr int32_t validation(int32_t message) { return int32_t(0x80040000u + uint32_t(message)); }

Variant array(Values v) { return Variant(Array::of(std::move(v))); }

// Values equal one by one, Null matching Null (Variant equality never matches Null).
auto SameValues(Values expected) {
  return Truly([expected](const Values& actual) {
    if (actual.size() != expected.size()) return false;
    for (size_t i = 0; i < actual.size(); ++i) {
      const bool both_null = actual[i].is_null() && expected[i].is_null();
      if (!both_null && !(actual[i] == expected[i])) return false;
    }
    return true;
  });
}

class UIReportTest : public Test {
 protected:
  std::shared_ptr<kxui::testing::TestEnv> env = kxui::testing::TestEnv::make();
  kxui::testing::FakeServices fakes = kxui::testing::FakeServices::install(*env);
  std::shared_ptr<BasicSession> session = kxui::testing::make_session();
  std::shared_ptr<NiceMock<MockReport>> report = std::make_shared<NiceMock<MockReport>>();
  std::shared_ptr<NiceMock<MockReportParam>> params = std::make_shared<NiceMock<MockReportParam>>();
  std::shared_ptr<NiceMock<MockReportData>> data = std::make_shared<NiceMock<MockReportData>>();
  UIReport ui{env->runtime};
  Variant file_name = Variant("name in"), file = Variant("file in");

  // Parameters: From (required, no default), Borg (optional, default 7), Status
  // (required, default "open").
  RecordsetPtr definitions = kxui::testing::make_recordset(
      {{"ParamName", adVarWChar, 20}, {"Required", adBoolean}, {"DefaultValue", adVariant}},
      {{"From", true, Variant::null()}, {"Borg", false, int32_t{7}}, {"Status", true, "open"}});
  RecordsetPtr rows =
      kxui::testing::make_recordset({{"PONum", adInteger}, {"Supplier", adVarWChar, 30}},
                                    {{int32_t{1}, "Acme, Inc."}, {int32_t{2}, "Beta"}});

  void SetUp() override {
    env->provide(progid::Report, report);
    env->provide(progid::ReportParam, params);
    env->provide(progid::AR_PO, data);
    report->fail_with(70, "Report", "not allowed");
    params->fail_with(71, "ReportParam", "no params");
    data->fail_with(72, "AR_PO", "query failed");
    ON_CALL(*report, Success).WillByDefault(Return(true));
    ON_CALL(*report, Load).WillByDefault(Return(true));
    ON_CALL(*report, ReportClass).WillByDefault(Return("AR_PO"));
    ON_CALL(*report, ReportName).WillByDefault(Return("Orders by month"));
    ON_CALL(*params, Success).WillByDefault(Return(true));
    ON_CALL(*params, GetReportParams).WillByDefault(Return(definitions));
    ON_CALL(*data, Success).WillByDefault(Return(true));
    ON_CALL(*data, GetReportData).WillByDefault(Return(rows));
  }
  // With the in/outs as a page passes them.
  bool generate(const Variant& values, const std::string& format = "CSV") {
    file_name = Variant("name in"), file = Variant("file in");
    return ui.GenerateReport(session, 40, values, format, file_name, file);
  }
  void expect_outs_untouched() {
    EXPECT_EQ((Values{file_name, file}), (Values{Variant("name in"), Variant("file in")}));
  }
};

TEST_F(UIReportTest, GetReportListPagePagesTheUsersReports) {
  std::vector<Values> list;
  for (int32_t i = 1; i <= 7; ++i) list.push_back({i, "Report " + std::to_string(i)});
  const auto catalogue = kxui::testing::make_recordset(
      {{"ReportID", adInteger}, {"ReportName", adVarWChar, 30}}, list);
  Variant custom = Variant("ctx");
  EXPECT_CALL(*report, GetReportList(Eq(session), Ref(custom))).WillRepeatedly(Return(catalogue));
  fakes.ini->set("Page Size", "Paging", "Dunmere", "3");
  const std::pair<int32_t, Values> pages[] = {
      {0, {1, 3, 1, 7, 1, 3}}, {2, {4, 3, 2, 7, 4, 6}}, {5, {7, 3, 3, 7, 7, 7}}};
  for (const auto& [page, first_row] : pages) {
    SCOPED_TRACE(page);
    RecordsetPtr rs = ui.GetReportListPage(session, page, custom);
    ASSERT_NE(rs, nullptr) << ui.Error()->Description();
    ASSERT_EQ(rs->GetFields().Count(), 7);
    Values row = {rs->value(0)};
    for (int32_t i = 2; i < 7; ++i) row.push_back(rs->value(i));
    EXPECT_EQ(row, first_row);
  }
  EXPECT_CALL(*report, Success).WillOnce(Return(false));
  EXPECT_EQ(ui.GetReportListPage(session, 1, custom), nullptr);
  EXPECT_THAT(ui.Error(), ErrorIs(70, "UIReport::GetReportListPage Report"));
}

TEST_F(UIReportTest, GetReportParamsRsGivesTheReportsParameters) {
  EXPECT_CALL(*params, GetReportParams(Eq(session), 40, _)).WillRepeatedly(Return(definitions));
  EXPECT_EQ(ui.GetReportParamsRs(session, 40), definitions);
  EXPECT_CALL(*params, Success).WillOnce(Return(false));
  EXPECT_EQ(ui.GetReportParamsRs(session, 40), nullptr);
  EXPECT_THAT(ui.Error(), ErrorIs(71, "UIReport::GetReportParamsRs ReportParam"));
  // Nothing with success is no list either.
  EXPECT_CALL(*params, Success).WillOnce(Return(true));
  EXPECT_CALL(*params, GetReportParams).WillOnce(Return(nullptr));
  EXPECT_EQ(ui.GetReportParamsRs(session, 40), nullptr);
  EXPECT_THAT(ui.Error(), ErrorIs(91, "UIReport::GetReportParamsRs "));
}

TEST_F(UIReportTest, GenerateReportWritesTheDataSourcesRowsAsCsv) {
  Variant custom = Variant("ctx");
  {
    InSequence order;
    EXPECT_CALL(*report, Load(Eq(session), 40, Ref(custom))).WillOnce(Return(true));
    EXPECT_CALL(*params, GetReportParams(Eq(session), 40, Ref(custom)));
    EXPECT_CALL(*data, GetReportData(Eq(session), Values{"2024-01-01", 7, "open"}, Ref(custom)));
  }
  ASSERT_TRUE(ui.GenerateReport(session, 40, array({"2024-01-01"}), "csv", file_name, file, custom))
      << ui.Error()->Description();
  EXPECT_EQ(file, Variant("PONum,Supplier\r\n1,\"Acme, Inc.\"\r\n2,Beta\r\n"));
  EXPECT_EQ(file_name, Variant("Orders_by_month.csv"));
}

TEST_F(UIReportTest, GenerateReportFillsDefaultsAndRefusesMissingRequiredValues) {
  struct Case {
    const char* name;
    Variant given;
    std::optional<Values> passed;  // none: refused with `error`
    int32_t error = 0;
  };
  const Case cases[] = {
      {"trailing values take their defaults", array({"2024-01-01"}),
       Values{"2024-01-01", 7, "open"}},
      {"Missing takes the default", array({"d", Variant::missing(), "closed"}),
       Values{"d", 7, "closed"}},
      {"an optional value may be Null", array({"d", Variant::null()}),
       Values{"d", Variant::null(), "open"}},
      {"a required value without default", Variant::missing(), {}, validation(11661)},
      {"a blank required value", array({"  "}), {}, validation(11661)},
      {"Null for a required value with a default",
       array({"d", 7, Variant::null()}),
       {},
       validation(11661)},
      {"more values than parameters", array({"d", 7, "open", 1}), {}, 5},
      {"not an array", Variant("d"), {}, 13},
      {"a two-dimensional array", Variant(Array({0, 1}, {0, 1})), {}, 13},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    if (c.passed) {
      EXPECT_CALL(*data, GetReportData(_, SameValues(*c.passed), _));
      EXPECT_TRUE(generate(c.given)) << ui.Error()->Description();
    } else {
      EXPECT_CALL(*data, GetReportData).Times(0);
      EXPECT_FALSE(generate(c.given));
      EXPECT_THAT(ui.Error(), ErrorIs(c.error, "UIReport::GenerateReport "));
      expect_outs_untouched();
    }
    Mock::VerifyAndClearExpectations(data.get());
  }
  EXPECT_FALSE(generate(array({"d", 7, "open", 1})));
  EXPECT_THAT(ui.Error()->Description(), HasSubstr("(more values than the report has parameters)"));
  EXPECT_FALSE(generate(Variant::missing()));
  EXPECT_EQ(ui.Error()->Description(), "A required report parameter has no value.");

  // Reports with one parameter and with none.
  const auto one = kxui::testing::make_recordset(
      {{"ParamName", adVarWChar, 20}, {"Required", adBoolean}, {"DefaultValue", adVariant}},
      {{"Year", false, int32_t{2024}}});
  const auto none = kxui::testing::make_recordset(
      {{"ParamName", adVarWChar, 20}, {"Required", adBoolean}, {"DefaultValue", adVariant}});
  EXPECT_CALL(*params, GetReportParams).WillOnce(Return(one)).WillOnce(Return(none));
  EXPECT_CALL(*data, GetReportData(_, SameValues({int32_t{2024}}), _));
  EXPECT_TRUE(generate(Variant::missing()));
  EXPECT_CALL(*data, GetReportData(_, IsEmpty(), _));
  EXPECT_TRUE(generate(Variant()));
}

TEST_F(UIReportTest, GenerateReportCreatesOnlyTheSixDataSources) {
  const std::pair<const char*, std::string_view> known[] = {
      {"AR_PO", progid::AR_PO},
      {"AR_POByBorg", progid::AR_POByBorg},
      {"AR_POByCommodity", progid::AR_POByCommodity},
      {"AR_POReceipts", progid::AR_POReceipts},
      {"AR_PrivByBorg", progid::AR_PrivByBorg},
      {"AR_Req", progid::AR_Req},
  };
  for (const auto& [report_class, id] : known) {
    SCOPED_TRACE(report_class);
    env->provide(id, data);
    EXPECT_CALL(*report, ReportClass).WillOnce(Return(report_class));
    const int before = env->count(id);
    EXPECT_TRUE(generate(array({"d"}))) << ui.Error()->Description();
    EXPECT_EQ(env->count(id) - before, 1);
  }
  for (const char* report_class : {"Report", "AppIni", "KxReport03.AR_PO", "ar_po", ""}) {
    SCOPED_TRACE(report_class);
    EXPECT_CALL(*report, ReportClass).WillOnce(Return(report_class));
    EXPECT_FALSE(generate(array({"d"})));
    EXPECT_THAT(ui.Error(), ErrorIs(429, "UIReport::GenerateReport UIReport"));
    EXPECT_THAT(ui.Error()->Description(),
                HasSubstr("(no report data source \"" + std::string(report_class) + "\")"));
    expect_outs_untouched();
  }
}

TEST_F(UIReportTest, GenerateReportRefusals) {
  struct Case {
    const char* name;
    std::function<void()> arrange;
    std::string format;
    int32_t number;
    const char* source;
  };
  const Case cases[] = {
      {"PDF", [] {}, "PDF", validation(11660), "UIReport::GenerateReport "},
      {"padded", [] {}, "CSV ", validation(11660), "UIReport::GenerateReport "},
      {"empty format", [] {}, "", validation(11660), "UIReport::GenerateReport "},
      {"load refused", [&] { EXPECT_CALL(*report, Load).WillOnce(Return(false)); }, "CSV", 70,
       "UIReport::GenerateReport Report"},
      {"parameters refused", [&] { EXPECT_CALL(*params, Success).WillOnce(Return(false)); }, "CSV",
       71, "UIReport::GenerateReport ReportParam"},
      {"data refused", [&] { EXPECT_CALL(*data, Success).WillOnce(Return(false)); }, "CSV", 72,
       "UIReport::GenerateReport AR_PO"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    c.arrange();
    EXPECT_FALSE(generate(array({"d"}), c.format));
    EXPECT_THAT(ui.Error(), ErrorIs(c.number, c.source));
    expect_outs_untouched();
    Mock::VerifyAndClearExpectations(report.get());
    Mock::VerifyAndClearExpectations(params.get());
    Mock::VerifyAndClearExpectations(data.get());
  }
  EXPECT_EQ(env->count(progid::Report), 3);  // a bad format is refused before any object
}

}  // namespace
}  // namespace kxui
