// The receiving views against a gmock POReceipt and the fake locale services.
#include "kxui/receiving/ui_rcv.h"

#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "kxui/business/progids.h"
#include "kxui/testing/fake_services.h"
#include "kxui/testing/mock_receiving.h"
#include "kxui/testing/row_sources.h"

namespace kxui {
namespace {

using namespace ::testing;
using kxui::testing::ErrorIs;
using kxui::testing::make_recordset;
using Values = std::vector<Variant>;
using Names = std::vector<std::string>;
using Calls = std::vector<std::pair<std::string, Values>>;

Date at(int y, int mo, int d, int h, int mi = 0) { return Date::from_civil(y, mo, d, h, mi); }

// The appended columns after the first `from`, as "Name:size" (all wide text).
Names appended(const Recordset& rs, int32_t from) {
  Names out;
  for (int32_t i = from; i < rs.GetFields().Count(); ++i) {
    const Field f = rs.GetFields().Item(i);
    out.push_back(f.Name() + ":" + std::to_string(f.DefinedSize()) +
                  (f.Type() == adVarWChar ? "" : " not text"));
  }
  return out;
}

Values row_from(const Recordset& rs, int32_t from) {
  Values out;
  for (int32_t i = from; i < rs.GetFields().Count(); ++i) out.push_back(rs.value(i));
  return out;
}

// Lines as every line view gets them: half a unit outstanding on the first, the second
// over-received.
RecordsetPtr quantities() {
  return make_recordset({{"LineID", adInteger}, {"OrderQty", adDouble},
                         {"ReceivedToDateQty", adDouble}, {"ReceivedQty", adDouble},
                         {"PackingSlipQty", adDouble}, {"CartonCnt", adDouble}},
                        {{1, 4.5, 4.0, 3.0, 2.0, 7.0}, {2, 2.0, 5.0, 1.0, 1.0, 0.0}});
}
constexpr int32_t kQuantityColumns = 6;

class UIRcvTest : public Test {
 protected:
  std::shared_ptr<kxui::testing::TestEnv> env = kxui::testing::TestEnv::make();
  kxui::testing::FakeServices fakes = kxui::testing::FakeServices::install(*env);
  std::shared_ptr<NiceMock<kxui::testing::MockPOReceipt>> rcv =
      std::make_shared<NiceMock<kxui::testing::MockPOReceipt>>();
  std::shared_ptr<NiceMock<kxui::testing::MockUtils>> utils =
      std::make_shared<NiceMock<kxui::testing::MockUtils>>();
  std::shared_ptr<BasicSession> session = kxui::testing::make_session();
  UIRcv ui{env->runtime};
  Variant custom = Variant("page data");
  // Each business call answers with a fresh record set from this.
  std::function<RecordsetPtr()> make_source = quantities;
  Calls calls;  // business operations with their parameter arrays, in order

  void SetUp() override {
    env->provide(progid::POReceipt, rcv);
    env->provide(progid::Utils, utils);
    rcv->fail_with(99, "Receipt", "refused");
    session->locale_id = 1031;
    ON_CALL(*rcv, Success).WillByDefault(Return(true));
    auto answer = [this](const char* op) {
      return [this, op](const SessionPtr& s, Array& params) {
        EXPECT_EQ(s, session);
        calls.emplace_back(op, params.values());
        return make_source();
      };
    };
    ON_CALL(*rcv, GetPOItems).WillByDefault(answer("GetPOItems"));
    ON_CALL(*rcv, GetReceiptHdrList).WillByDefault(answer("GetReceiptHdrList"));
    ON_CALL(*rcv, GetReceiptItemList).WillByDefault(answer("GetReceiptItemList"));
    ON_CALL(*rcv, GetReceiptItems).WillByDefault(answer("GetReceiptItems"));
    ON_CALL(*rcv, GetReceiptHdr).WillByDefault(answer("GetReceiptHdr"));
    ON_CALL(*rcv, GetReceiveList).WillByDefault(answer("GetReceiveList"));
    ON_CALL(*utils, GetServerDate).WillByDefault(Return(Variant(at(2024, 11, 9, 22, 15))));
  }
};

struct ViewCase {
  const char* op;
  std::function<RecordsetPtr(UIRcv&, const SessionPtr&, Variant&)> call;
  Values params;  // before the custom data
  Names columns;
  Values first, second;
};

TEST_F(UIRcvTest, LineViewsPassTheirParametersAndAppendAmountsInTheUsersLocale) {
  const ViewCase cases[] = {
      {"GetPOItems", [](UIRcv& u, auto& s, Variant& c) { return u.GetPOItemsRs(s, 7, c); }, {7},
       {"UIDisplay_OrderQty:100", "UIDisplay_ReceivedToDateQty:100"},
       {"4.5@1031", "4@1031"}, {"2@1031", "5@1031"}},
      {"GetReceiptHdrList",
       [](UIRcv& u, auto& s, Variant& c) { return u.GetReceiptHdrListRs(s, 8, c); }, {8},
       {"UIDisplay_CartonCnt:100"}, {"7@1031"}, {"0@1031"}},
      {"GetReceiptItemList",
       [](UIRcv& u, auto& s, Variant& c) { return u.GetReceiptItemListRs(s, 31, c); }, {31},
       {"UIDisplay_OrderQty:100", "UIDisplay_ReceivedQty:100", "UIDisplay_PackingSlipQty:100"},
       {"4.5@1031", "3@1031", "2@1031"}, {"2@1031", "1@1031", "1@1031"}},
      // Everything outstanding offered; the over-received line offers a formatted 0.
      {"GetReceiptItems",
       [](UIRcv& u, auto& s, Variant& c) { return u.GetReceiptItems(s, 9, true, c); }, {9, true},
       {"UIDisplay_OrderQty:50", "UIDisplay_ReceivedToDateQty:50", "UIDisplay_ReceivedQty:50",
        "UIDisplay_PackingSlipQty:50"},
       {"4.5@1031", "4@1031", "0.5@1031", "0.5@1031"}, {"2@1031", "5@1031", "0@1031", "0@1031"}},
      // Nothing offered: a bare "0", whatever the locale.
      {"GetReceiptItems",
       [](UIRcv& u, auto& s, Variant& c) { return u.GetReceiptItems(s, 9, false, c); },
       {9, false},
       {"UIDisplay_OrderQty:50", "UIDisplay_ReceivedToDateQty:50", "UIDisplay_ReceivedQty:50",
        "UIDisplay_PackingSlipQty:50"},
       {"4.5@1031", "4@1031", "0", "0"}, {"2@1031", "5@1031", "0", "0"}},
  };
  for (const ViewCase& c : cases) {
    SCOPED_TRACE(std::string(c.op) + " " + c.columns.back());
    calls.clear();
    Values params = c.params;
    params.push_back(custom);
    RecordsetPtr rs = c.call(ui, session, custom);
    ASSERT_NE(rs, nullptr) << ui.Error()->Description();
    EXPECT_TRUE(ui.Success());
    EXPECT_EQ(calls, (Calls{{c.op, params}}));
    EXPECT_EQ(appended(*rs, kQuantityColumns), c.columns);
    ASSERT_EQ(rs->RecordCount(), 2);
    EXPECT_EQ(rs->AbsolutePosition(), 1);
    Values first{1, 4.5, 4.0, 3.0, 2.0, 7.0};
    first.insert(first.end(), c.first.begin(), c.first.end());
    EXPECT_EQ(row_from(*rs, 0), first);
    rs->MoveNext();
    EXPECT_EQ(row_from(*rs, kQuantityColumns), c.second);
    EXPECT_EQ(rcv.use_count(), 2) << "released after the call";
  }
}

// Every operation: a False Success from the business object is recorded under the
// operation with the object's own source, logged, clears Success, and yields nothing;
// a missing session fails before the business object is obtained.
TEST_F(UIRcvTest, BusinessFailuresAreRecordedLoggedAndYieldNothing) {
  auto empty_lines = make_recordset({{"ReceivedQty", adDouble}});
  auto header = make_recordset({{"CartonCnt", adInteger}, {"UIDisplay_CartonCnt", adVarWChar, 50}},
                               {{0, "2"}});
  SessionPtr s;
  const std::pair<const char*, std::function<bool()>> cases[] = {
      {"GetPOItemsRs", [&] { return ui.GetPOItemsRs(s, 7) != nullptr; }},
      {"GetReceiptHdr", [&] { return ui.GetReceiptHdr(s, 7) != nullptr; }},
      {"GetReceiptHdrListRs", [&] { return ui.GetReceiptHdrListRs(s, 7) != nullptr; }},
      {"GetReceiptItemListRs", [&] { return ui.GetReceiptItemListRs(s, 7) != nullptr; }},
      {"GetReceiptItems", [&] { return ui.GetReceiptItems(s, 7, true) != nullptr; }},
      {"GetReceiveListPage",
       [&] { return ui.GetReceiveListPage(s, "", "", "", "", "", 0) != nullptr; }},
      {"SubmitReceipt", [&] { return ui.SubmitReceipt(s, header, empty_lines) != 0; }},
  };
  ON_CALL(*rcv, SubmitReceipt).WillByDefault(Return(4711));
  make_source = [] {
    return make_recordset({{"OrderQty", adDouble}, {"ReceivedToDateQty", adDouble},
                           {"ReceivedQty", adDouble}, {"PackingSlipQty", adDouble},
                           {"CartonCnt", adDouble}, {"ReceiveDate", adDate},
                           {"DocCreateDate", adDate}, {"CreateDate", adDate}},
                          {{1.0, 1.0, 1.0, 1.0, 1.0, at(2024, 1, 2, 3), at(2024, 1, 2, 3),
                            at(2024, 1, 2, 3)}});
  };
  for (const auto& [op, call] : cases) {
    SCOPED_TRACE(op);
    const std::string where = std::string("UIRcv::") + op;
    s = session;
    ON_CALL(*rcv, Success).WillByDefault(Return(true));
    ASSERT_TRUE(call()) << ui.Error()->Description();
    EXPECT_TRUE(ui.Success());
    EXPECT_TRUE(env->log->written.empty()) << "a success is not logged";

    ON_CALL(*rcv, Success).WillByDefault(Return(false));
    EXPECT_FALSE(call());
    EXPECT_FALSE(ui.Success());
    EXPECT_THAT(ui.Error(), ErrorIs(99, where + " Receipt"));
    EXPECT_EQ(ui.Error()->Description(), "refused");
    ASSERT_EQ(env->log->written.size(), 1u);
    EXPECT_EQ(env->log->written[0].message, where + " Receipt :: refused");
    EXPECT_EQ(env->log->written[0].type, 1);
    EXPECT_EQ(rcv.use_count(), 2) << "released after the call";

    // Without a session nothing reaches the business tier.
    s = nullptr;
    const int created = env->count(progid::POReceipt);
    EXPECT_FALSE(call());
    EXPECT_THAT(ui.Error(), ErrorIs(91, where + " "));
    EXPECT_EQ(env->count(progid::POReceipt), created);
    env->log->written.clear();
  }
  // Creation failures are recorded under the class's own name.
  env->fail_error_creation = true;
  UIRcv broken(env->runtime);
  EXPECT_THAT(broken.Error(), ErrorIs(429, "UIRcv::Class_Initialize KxUtility03.KxError"));
}

// A Null where a number or date is shown fails the whole call with the conversion
// error; a Null in a column the view does not format is copied as it stands.
TEST_F(UIRcvTest, NullQuantitiesFailTheWholeView) {
  const std::tuple<const char*, int32_t, std::function<RecordsetPtr()>, int32_t> cases[] = {
      {"UIRcv::GetPOItemsRs ", 2, [&] { return ui.GetPOItemsRs(session, 7); }, 94},
      {"UIRcv::GetReceiptHdrListRs ", 5, [&] { return ui.GetReceiptHdrListRs(session, 7); }, 94},
      {"UIRcv::GetReceiptItemListRs ", 4, [&] { return ui.GetReceiptItemListRs(session, 7); }, 94},
      {"UIRcv::GetReceiptItems ", 1, [&] { return ui.GetReceiptItems(session, 7, false); }, 94},
      {"UIRcv::GetReceiptItems ", 2, [&] { return ui.GetReceiptItems(session, 7, true); }, 94},
      {"UIRcv::GetReceiptItems ", 3, [&] { return ui.GetReceiptItems(session, 7, true); }, 0},
      {"UIRcv::GetPOItemsRs ", 4, [&] { return ui.GetPOItemsRs(session, 7); }, 0},
  };
  for (const auto& [where, null_column, call, number] : cases) {
    SCOPED_TRACE(std::string(where) + std::to_string(null_column));
    make_source = [column = null_column] {
      RecordsetPtr rs = quantities();
      rs->MoveLast();
      rs->set_value(column, Variant::null());
      rs->MoveFirst();
      return rs;
    };
    ui.Error()->SetNumber(0);
    RecordsetPtr rs = call();
    EXPECT_EQ(rs == nullptr, number != 0);
    EXPECT_EQ(ui.Success(), number == 0);
    if (number != 0) {
      EXPECT_THAT(ui.Error(), ErrorIs(number, where));
    }
  }
}

TEST_F(UIRcvTest, AnOrderWithNoLinesGivesAnEmptyResultWithItsColumns) {
  make_source = [] { return make_recordset({{"OrderQty", adDouble}, {"ReceivedToDateQty", adDouble}}); };
  RecordsetPtr rs = ui.GetPOItemsRs(session, 7);
  ASSERT_NE(rs, nullptr) << ui.Error()->Description();
  EXPECT_EQ(rs->RecordCount(), 0);
  EXPECT_EQ(appended(*rs, 2), (Names{"UIDisplay_OrderQty:100", "UIDisplay_ReceivedToDateQty:100"}));
}

// The header form splits its dates in the user's zone: stored 2024-03-05 21:00,
// 2024-01-01 01:00 and the server's 2024-11-09 22:15 (all zone 15).
TEST_F(UIRcvTest, ReceiptHeaderSplitsItsDatesInTheUsersZone) {
  const std::tuple<int32_t, Values, Date, Date> cases[] = {
      {15, {"3", "5", "2024", "1", "1", "2024", "11", "9", "2024"}, at(2024, 3, 5, 21),
       at(2024, 1, 1, 1)},
      // Three hours east: the receive and current dates move to the next day.
      {18, {"3", "6", "2024", "1", "1", "2024", "11", "10", "2024"}, at(2024, 3, 6, 0),
       at(2024, 1, 1, 4)},
      // Two hours west: the document date moves back into the previous year.
      {13, {"3", "5", "2024", "12", "31", "2023", "11", "9", "2024"}, at(2024, 3, 5, 19),
       at(2023, 12, 31, 23)},
  };
  fakes.ini->set("DateFormat", "UI", "Dunmere", "1");
  for (const auto& [zone, parts, receive_date, doc_date] : cases) {
    SCOPED_TRACE(zone);
    session->time_zone_id = zone;
    fakes.dates->conversions = 0;
    fakes.ini->reads.clear();
    make_source = [] {
      return make_recordset({{"ReceiptID", adInteger}, {"CartonCnt", adDouble},
                             {"ReceiveDate", adDate}, {"DocCreateDate", adDate}},
                            {{1, 3.0, at(2024, 3, 5, 21), at(2024, 1, 1, 1)},
                             {2, 9.0, at(2025, 1, 1, 1), at(2025, 1, 1, 1)}});
    };
    calls.clear();
    EXPECT_CALL(*utils, GetServerDate(Eq(session), Ref(custom)));
    RecordsetPtr rs = ui.GetReceiptHdr(session, 7, custom);
    ASSERT_NE(rs, nullptr) << ui.Error()->Description();
    EXPECT_EQ(appended(*rs, 4),
              (Names{"ReceiveMonth:2", "ReceiveDay:2", "ReceiveYear:4", "DocCreateMonth:2",
                     "DocCreateDay:2", "DocCreateYear:4", "CurrentMonth:2", "CurrentDay:2",
                     "CurrentYear:4", "UIDisplay_CartonCnt:50"}));
    EXPECT_EQ(rs->RecordCount(), 1) << "only the first row";
    Values expected = {1, 3.0, receive_date, doc_date};
    expected.insert(expected.end(), parts.begin(), parts.end());
    expected.push_back("3@1031");
    EXPECT_EQ(row_from(*rs, 0), expected);
    EXPECT_EQ(fakes.dates->conversions, zone == 15 ? 0 : 3);
    EXPECT_EQ(fakes.ini->reads, Names{"DateFormat"});
    EXPECT_EQ(calls, (Calls{{"GetReceiptHdr", {7, custom}}}));
    Mock::VerifyAndClearExpectations(utils.get());
  }
}

TEST_F(UIRcvTest, ReceiptHeaderFailsWithoutARowOrWithANullDate) {
  // The record set reports a missing row; a Null fails the language's conversion.
  const std::tuple<const char*, std::vector<Values>, Variant, int32_t> cases[] = {
      {"no header row", {}, Variant(at(2024, 1, 1, 0)), 3021},
      {"Null receive date", {{1.0, Variant::null(), at(2024, 1, 1, 0)}},
       Variant(at(2024, 1, 1, 0)), 94},
      {"Null document date", {{1.0, at(2024, 1, 1, 0), Variant::null()}},
       Variant(at(2024, 1, 1, 0)), 94},
      {"Null carton count", {{Variant::null(), at(2024, 1, 1, 0), at(2024, 1, 1, 0)}},
       Variant(at(2024, 1, 1, 0)), 94},
      {"Null server date", {{1.0, at(2024, 1, 1, 0), at(2024, 1, 1, 0)}}, Variant::null(), 94},
  };
  for (const auto& [name, rows, now, number] : cases) {
    SCOPED_TRACE(name);
    make_source = [rows = rows] {
      return make_recordset(
          {{"CartonCnt", adDouble}, {"ReceiveDate", adDate}, {"DocCreateDate", adDate}}, rows);
    };
    ON_CALL(*utils, GetServerDate).WillByDefault(Return(now));
    EXPECT_EQ(ui.GetReceiptHdr(session, 7), nullptr);
    EXPECT_FALSE(ui.Success());
    EXPECT_THAT(ui.Error(), ErrorIs(number, number == 3021 ? "UIRcv::GetReceiptHdr Recordset"
                                                           : "UIRcv::GetReceiptHdr "));
  }
}

TEST_F(UIRcvTest, ReceiveListPagePassesTheFiltersAndPagesWithDatesInTheUsersZone) {
  std::vector<Values> rows;
  for (int32_t i = 1; i <= 45; ++i) rows.push_back({i, at(2024, 3, i % 28 + 1, 23)});
  make_source = [rows] { return make_recordset({{"POID", adInteger}, {"CreateDate", adDate}}, rows); };
  fakes.ini->set("DateFormat", "UI", "Dunmere", "1");
  fakes.ini->set("Page Size", "Paging", "Dunmere", "20");
  session->time_zone_id = 16;  // one hour east: 23:00 is the next day
  // Page: rows, then the first row's id, display date and paging columns.
  const std::tuple<int32_t, int32_t, Values> cases[] = {
      {0, 20, {1, "1031/1/2024-03-03", 20, 1, 45, 1, 20}},
      {2, 20, {21, "1031/1/2024-03-23", 20, 2, 45, 21, 40}},
      {9, 5, {41, "1031/1/2024-03-15", 20, 3, 45, 41, 45}},
      {-1, 5, {41, "1031/1/2024-03-15", 20, 3, 45, 41, 45}},
  };
  for (const auto& [page, count, first] : cases) {
    SCOPED_TRACE(page);
    fakes.ini->reads.clear();
    calls.clear();
    RecordsetPtr rs =
        ui.GetReceiveListPage(session, "PONumber", "1,2", "PO-9", "alice", "Works", page, custom);
    ASSERT_NE(rs, nullptr) << ui.Error()->Description();
    EXPECT_EQ(appended(*rs, 2),
              (Names{"UIDisplay_CreateDate:100", "UIDisplay_PageSize:0 not text",
                     "UIDisplay_CurrentPage:0 not text", "UIDisplay_TotalRecords:0 not text",
                     "UIDisplay_StartRecord:0 not text", "UIDisplay_EndRecord:0 not text"}));
    EXPECT_EQ(rs->RecordCount(), count);
    Values row = row_from(*rs, 0);
    row.erase(row.begin() + 1);  // the stored date
    EXPECT_EQ(row, first);
    EXPECT_EQ(fakes.ini->reads, (Names{"DateFormat", "Page Size"}));
    EXPECT_EQ(calls,
              (Calls{{"GetReceiveList", {"PONumber", "1,2", "PO-9", "alice", "Works", custom}}}));
  }
}

// Over a long list read on demand, a page reads its own rows and no others: at most one
// block of the record set, reaching into the page.
TEST_F(UIRcvTest, ReceiveListPageReadsOnlyItsRowsOfAListReadOnDemand) {
  constexpr int64_t kBlock = 64;
  // Past the end of a list that fills its last page, the rule shows one row more.
  struct Case {
    int32_t page, first_id, count;
  } const cases[] = {{0, 1, 20}, {2, 21, 20}, {250, 4981, 20}, {500, 9981, 20}, {900, 9980, 21}};
  fakes.ini->set("Page Size", "Paging", "Dunmere", "20");
  std::vector<std::vector<Variant>> rows;
  for (int32_t i = 1; i <= 10000; ++i) rows.push_back({Variant(i), Variant(at(2024, 3, 2, 23, 0))});
  std::shared_ptr<testing::VectorRowSource> source;
  make_source = [&] {
    source = std::make_shared<testing::VectorRowSource>(rows);
    auto list = std::make_shared<Recordset>();
    list->GetFields().Append("POID", adInteger);
    list->GetFields().Append("CreateDate", adDate);
    list->Open(source);
    list->MoveFirst();
    return list;
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.page);
    RecordsetPtr rs = ui.GetReceiveListPage(session, "", "", "", "", "", c.page, custom);
    ASSERT_NE(rs, nullptr) << ui.Error()->Description();
    ASSERT_EQ(rs->RecordCount(), c.count);
    EXPECT_EQ(rs->value(0), Variant(c.first_id));
    EXPECT_LE(source->rows_read, kBlock);
    for (int64_t first : source->firsts) {
      EXPECT_GT(first + kBlock, c.first_id - 1);
      EXPECT_LE(first, c.first_id + c.count - 2);
    }
  }
}

}  // namespace
}  // namespace kxui
