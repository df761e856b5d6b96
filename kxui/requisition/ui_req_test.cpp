#include "kxui/requisition/ui_req.h"

#include <functional>
#include <tuple>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "kxui/business/progids.h"
#include "kxui/business/requisition.h"
#include "kxui/business/templates.h"
#include "kxui/testing/fake_services.h"

namespace kxui {
namespace {

using namespace ::testing;
using kxui::testing::ErrorIs;
using S = const SessionPtr&;
using Str = const std::string&;
using Names = std::vector<std::string>;
using Values = std::vector<Variant>;

// Members the tests leave alone keep the business tier's default (error 438), so an
// unexpected call shows up in Error.
class MockRequisition : public business::Requisition, public kxui::testing::FakeBusinessObject {
 public:
  MOCK_METHOD(bool, Load, (S, int32_t, bool, Variant&), (override));
  MOCK_METHOD(std::shared_ptr<business::RequisitionHeader>, Header, (), (override));
  MOCK_METHOD(bool, Success, (), (override));
  MOCK_METHOD(RecordsetPtr, GetRequisitionList, (S, Str, Str, Str, Str, Variant&), (override));
  MOCK_METHOD(bool, GetReqStatus, (S, int32_t, int32_t&, int32_t&, Variant&), (override));
  MOCK_METHOD(bool, GetReqTotals, (S, int32_t, Str, Currency&, Currency&, Currency&, Variant&),
              (override));
  MOCK_METHOD(std::shared_ptr<business::RequisitionLineItem>, NewLineItem, (), (override));
  MOCK_METHOD(bool, CommitItem, (S, Str, Variant&), (override));
  MOCK_METHOD(bool, CommitSpecialRequestItem, (S, Str, Variant&), (override));
  MOCK_METHOD(bool, CompleteItem, (S, int32_t, int32_t, Variant&), (override));
  MOCK_METHOD(bool, UpdateSpecialRequestItem, (S, Variant&), (override));
  MOCK_METHOD(bool, AddFavoriteItem, (S, int32_t, double, int32_t&, int32_t&, int32_t&, Variant&),
              (override));
  MOCK_METHOD(bool, SubmitRequisition, (S, int32_t, bool, int32_t&, Variant&), (override));
  MOCK_METHOD(bool, CopyRequisition,
              (S, int32_t, Str, int32_t&, int32_t&, int32_t&, int32_t, Variant&), (override));
  MOCK_METHOD(bool, MarkAsTemplate, (S, int32_t, int32_t, Variant&), (override));
  MOCK_METHOD(RecordsetPtr, GetLog, (S, Str, Variant&), (override));
  MOCK_METHOD(bool, UpdateReqName, (S, int32_t, Str, Variant&), (override));
  MOCK_METHOD(bool, Save, (S, Variant&), (override));
  MOCK_METHOD(void, LockRequisition, (S, int32_t, Variant&), (override));
  MOCK_METHOD(void, IsLockValid, (S, int32_t, Variant&), (override));
  MOCK_METHOD(bool, ReleaseLocks, (S, Variant&), (override));
  MOCK_METHOD(bool, CancelRequisition, (S, int32_t, Variant&), (override));
  MOCK_METHOD(bool, DeleteRequisition, (S, int32_t, Variant&), (override));
};

class MockTemplates : public business::Templates, public kxui::testing::FakeBusinessObject {
 public:
  MOCK_METHOD(RecordsetPtr, GetTemplateList, (S, int32_t, Variant&), (override));
};

struct FakeHeader : business::RequisitionHeader {
  std::string ReqName() override { return name; }
  int32_t ReqStatusID() override { return status; }
  std::string Justification() override { return justification; }
  void SetJustification(const std::string& text) override { justification = text; }
  Variant CreateDate() override { return created; }
  std::string BorgName() override { return "Works"; }
  std::string RequisitionerName() override { return "Ann Lee"; }
  std::string name = "Office chairs";
  std::string justification = "Needed for Q3";
  int32_t status = 1;
  Variant created = Variant::null();
};

// A line item that keeps every value written to it, in order.
struct FakeItem : business::RequisitionLineItem {
  Names names;
  Values values;
  int32_t req = 0, line = 0, form = 0;
  void put(const char* name, Variant v) { names.push_back(name), values.push_back(std::move(v)); }
  int32_t ReqID() override { return req; }
  void SetReqID(int32_t v) override { put("ReqID", req = v); }
  int32_t LineNum() override { return line; }
  void SetLineNum(int32_t v) override { put("LineNum", line = v); }
  int32_t SmartFormID() override { return form; }
  void SetSupplierID(int32_t v) override { put("SupplierID", v); }
  void SetSupplierName(const std::string& v) override { put("SupplierName", v); }
  void SetSupplierPartNum(const std::string& v) override { put("SupplierPartNum", v); }
  void SetSupplierPartNumExt(const std::string& v) override { put("SupplierPartNumExt", v); }
  void SetOrderQty(const Variant& v) override { put("OrderQty", v); }
  void SetUOMID(const std::string& v) override { put("UOMID", v); }
  void SetMfrID(int32_t v) override { put("MfrID", v); }
  void SetMfrName(const std::string& v) override { put("MfrName", v); }
  void SetCommodityID(int32_t v) override { put("CommodityID", v); }
  void SetCommodityAlias(const std::string& v) override { put("CommodityAlias", v); }
  void SetUnitPrice(Currency v) override { put("UnitPrice", v); }
  void SetCurrencyCode(const std::string& v) override { put("CurrencyCode", v); }
  void SetPartDesc(const std::string& v) override { put("PartDesc", v); }
  void SetIsSpecialRequest(bool v) override { put("IsSpecialRequest", v); }
};

constexpr int32_t validation(int32_t message) { return int32_t(0x80040000u + uint32_t(message)); }

class UIReqTest : public Test {
 protected:
  std::shared_ptr<kxui::testing::TestEnv> env = kxui::testing::TestEnv::make();
  kxui::testing::FakeServices fakes = kxui::testing::FakeServices::install(*env);
  std::shared_ptr<NiceMock<MockRequisition>> req = std::make_shared<NiceMock<MockRequisition>>();
  std::shared_ptr<FakeHeader> header = std::make_shared<FakeHeader>();
  std::shared_ptr<FakeItem> item = std::make_shared<FakeItem>();
  std::shared_ptr<BasicSession> session = kxui::testing::make_session();
  UIReq ui{env->runtime};
  // The three in/outs of an added line as a page passes them.
  Variant req_id = Variant(int32_t{12}), line = Variant("line in"), form = Variant("form in");

  // Which storing step refuses: 1 the first (the favourite's only one), 2 CompleteItem.
  int refuse_step = 0;

  // Bool members answer False unless a test says otherwise; storing a line puts it on
  // requisition 55 as line 3 with smart form 900, written even when the step then refuses.
  void SetUp() override {
    env->provide(progid::Requisition, req);
    req->fail_with(99, "Requisition", "refused");
    ON_CALL(*req, Header).WillByDefault(Return(header));
    ON_CALL(*req, NewLineItem).WillByDefault(Return(item));
    auto commit = [this] { return item->req = 55, item->line = 3, refuse_step != 1; };
    ON_CALL(*req, CommitItem).WillByDefault(InvokeWithoutArgs(commit));
    ON_CALL(*req, CommitSpecialRequestItem).WillByDefault(InvokeWithoutArgs(commit));
    ON_CALL(*req, CompleteItem).WillByDefault(InvokeWithoutArgs([this] {
      return item->form = 900, refuse_step != 2;
    }));
    ON_CALL(*req, AddFavoriteItem)
        .WillByDefault(DoAll(SetArgReferee<3>(55), SetArgReferee<4>(3), SetArgReferee<5>(900),
                             InvokeWithoutArgs([this] { return refuse_step == 0; })));
  }

  bool fast_add(const std::string& qty) {
    return ui.AddItemFastAdd(session, req_id, 8, "P-100", "X", qty, "EA", line, form);
  }
  bool favorite(Str qty) { return ui.AddItemFavorite(session, req_id, 4711, qty, line, form); }
  bool special(const Variant& price, const std::string& qty) {
    return ui.AddItemSpecialRequest(session, req_id, 8, "Acme", "SR-1", "", qty, "BX", 21, "Maker",
                                    33, "Paper", price, "EUR", "Blue paper", line, form);
  }
  bool update_special(const Variant& price, const std::string& qty) {
    return ui.UpdateSpecialRequestItem(session, 12, 2, 8, "Acme", "SR-1", "", qty, "BX", 21,
                                       "Maker", 33, "Paper", price, "EUR", "Blue paper");
  }
  void expect_in_outs(const Variant& r, const Variant& l, const Variant& f) {
    EXPECT_EQ((Values{req_id, line, form}), (Values{r, l, f}));
  }
};

TEST_F(UIReqTest, EditableStatusesAreMinusOneOneThreeAndFour) {
  ON_CALL(*req, Load).WillByDefault(Return(true));
  for (auto [status, editable] :
       {std::pair{-1, true}, {1, true}, {3, true}, {4, true}, {0, false}, {2, false}, {5, false}}) {
    SCOPED_TRACE(status);
    EXPECT_CALL(*req, GetReqStatus(_, 8, _, _, _))
        .WillOnce(DoAll(SetArgReferee<2>(status), SetArgReferee<3>(6), Return(true)));
    Variant status_out, items, editable_out;
    ASSERT_TRUE(ui.GetReqStatus(session, 8, status_out, items, editable_out));
    EXPECT_EQ((Values{status_out, items, editable_out}), (Values{status, 6, editable}));
    header->status = status;
    ASSERT_TRUE(ui.GetHeaderJustification(session, 8, status_out, editable_out));
    EXPECT_EQ(editable_out, Variant(editable));
  }
}

TEST_F(UIReqTest, GetListPageAddsDisplayAndPagingColumnsAndClampsThePage) {
  std::vector<Values> rows;
  for (int32_t i = 1; i <= 45; ++i) {
    const Date day = Date::from_civil(2024, 3, 1 + i % 28, 9, 0, 0);
    rows.push_back({i, day, day});
  }
  const auto list = kxui::testing::make_recordset(
      {{"ReqID", adInteger}, {"CreateDate", adDate}, {"SubmitDate", adDate}}, rows);
  EXPECT_CALL(*req, GetRequisitionList(Eq(session), "alice", "Works", "CreateDate", "1,3", _))
      .WillRepeatedly(Return(list));
  ON_CALL(*req, Success).WillByDefault(Return(true));
  // Both settings differ from their defaults (20 rows, date style 2).
  fakes.ini->set("Page Size", "Paging", "Dunmere", "10");
  fakes.ini->set("DateFormat", "UI", "Dunmere", "1");
  // Per page: its row count, then the first row's display dates and paging values.
  const std::tuple<int32_t, int32_t, Values> cases[] = {
      {0, 10, {"1033/1/2024-03-02", "1033/1/2024-03-02", 10, 1, 45, 1, 10}},
      {2, 10, {"1033/1/2024-03-12", "1033/1/2024-03-12", 10, 2, 45, 11, 20}},
      {9, 5, {"1033/1/2024-03-14", "1033/1/2024-03-14", 10, 5, 45, 41, 45}},
      {-1, 5, {"1033/1/2024-03-14", "1033/1/2024-03-14", 10, 5, 45, 41, 45}}};
  for (const auto& [page, count, first_row] : cases) {
    SCOPED_TRACE(page);
    auto rs = ui.GetListPage(session, "alice", "Works", "CreateDate", "1,3", page);
    ASSERT_NE(rs, nullptr) << ui.Error()->Description();
    std::string columns;
    Values row;
    for (int32_t i = 0; i < rs->GetFields().Count(); ++i) {
      columns += rs->GetFields().Item(i).Name() + ",";
      if (i >= 3) row.push_back(rs->value(i));
    }
    EXPECT_EQ(columns,
              "ReqID,CreateDate,SubmitDate,UIDisplay_CreateDate,UIDisplay_SubmitDate,"
              "UIDisplay_PageSize,UIDisplay_CurrentPage,UIDisplay_TotalRecords,"
              "UIDisplay_StartRecord,UIDisplay_EndRecord,");
    EXPECT_EQ(row, first_row);
    EXPECT_EQ(rs->RecordCount(), count);
  }
}

TEST_F(UIReqTest, GetReqNameLoadsOnlyForAPositiveId) {
  EXPECT_CALL(*req, Load(_, 7, false, _)).WillOnce(Return(true));
  Variant name = Variant("");
  EXPECT_FALSE(ui.GetReqName(session, 0, name));
  EXPECT_EQ(ui.Error()->Number(), 0) << "an empty name is not an error";
  name = Variant("Kept");
  EXPECT_TRUE(ui.GetReqName(session, 0, name));
  EXPECT_EQ(name, Variant("Kept"));
  EXPECT_TRUE(ui.GetReqName(session, 7, name));
  EXPECT_EQ(name, Variant("Office chairs"));
}

TEST_F(UIReqTest, GetReqTotalsFormatsInTheSessionsCurrencyAndLocale) {
  session->currency_code = "EUR";
  session->locale_id = 1031;
  EXPECT_CALL(*req, GetReqTotals(_, 4, "EUR", _, _, _, _))
      .WillOnce(DoAll(SetArgReferee<3>(Currency::from_double(100.5)),
                      SetArgReferee<4>(Currency::from_double(8.04)),
                      SetArgReferee<5>(Currency::from_double(108.54)), Return(true)));
  Variant sub, tax, total;
  ASSERT_TRUE(ui.GetReqTotals(session, 4, sub, tax, total));
  EXPECT_EQ((Values{sub, tax, total}),
            (Values{"EUR 100.50@1031", "EUR 8.04@1031", "EUR 108.54@1031"}));
}

// A False answer is recorded under the operation and the business object's own source;
// in/outs keep what was passed, and the business object is released.
TEST_F(UIReqTest, BusinessFailuresAreRecordedUnderTheOperation) {
  Variant out, v2, v3;
  const std::pair<const char*, std::function<bool()>> cases[] = {
      {"UIReq::GetListPage", [&] { return ui.GetListPage(session, "", "", "", "", 0) != nullptr; }},
      {"UIReq::GetReqName", [&] { return ui.GetReqName(session, 7, out); }},
      {"UIReq::GetReqStatus", [&] { return ui.GetReqStatus(session, 5, out, v2, v3); }},
      {"UIReq::GetReqTotals", [&] { return ui.GetReqTotals(session, 5, out, v2, v3); }},
      {"UIReq::CopyReq", [&] { return ui.CopyReq(session, 5, "Copy", out, v2, v3); }},
      {"Requisition::SubmitReq", [&] { return ui.SubmitReq(session, 5); }},
      {"UIReq::GetHeaderJustification",
       [&] { return ui.GetHeaderJustification(session, 5, out, v2); }},
      {"UIReq::GetLogRequisition",
       [&] { return ui.GetLogRequisition(session, 5, out, v2, v3, v3, v3, v3) != nullptr; }},
      {"UIReq::CreateTemplate", [&] { return ui.CreateTemplate(session, 5, "T", 1); }},
  };
  for (const auto& [source, call] : cases) {
    SCOPED_TRACE(source);
    out = Variant("as passed");
    EXPECT_FALSE(call());
    EXPECT_THAT(ui.Error(), ErrorIs(99, std::string(source) + " Requisition"));
    EXPECT_EQ(out, Variant("as passed"));
    EXPECT_EQ(req.use_count(), 2) << "released after the call";
  }
}

TEST_F(UIReqTest, LifecyclePassesItsArgumentsAndReportsTheResults) {
  EXPECT_CALL(*req, SubmitRequisition(_, 11, true, Eq(1), _))
      .WillOnce(DoAll(SetArgReferee<3>(3), Return(true)));
  int32_t pos = 1;
  EXPECT_TRUE(ui.SubmitReq(session, 11, true, pos));
  EXPECT_EQ(pos, 3);

  // Both copy paths use copy mode 0.
  EXPECT_CALL(*req, CopyRequisition(_, 30, "Chairs", _, _, _, 0, _))
      .WillRepeatedly(
          DoAll(SetArgReferee<3>(31), SetArgReferee<4>(4), SetArgReferee<5>(3), Return(true)));
  EXPECT_CALL(*req, MarkAsTemplate(_, 31, 2, _)).WillOnce(Return(true));
  Variant new_id, items, copied;
  ASSERT_TRUE(ui.CopyReq(session, 30, "Chairs", new_id, items, copied));
  EXPECT_EQ((Values{new_id, items, copied}), (Values{31, 4, 3}));
  EXPECT_TRUE(ui.CreateTemplate(session, 30, "Chairs", 2));

  // Neither is a failure: Error keeps what an earlier call left, and nothing is marked
  // or saved.
  ui.Error()->SetNumber(77);
  EXPECT_CALL(*req, CopyRequisition).WillOnce(DoAll(SetArgReferee<3>(0), Return(true)));
  EXPECT_FALSE(ui.CreateTemplate(session, 30, "Chairs", 2));
  EXPECT_FALSE(ui.SetHeaderJustification(session, 3, "y"));  // Load answers False
  EXPECT_EQ(ui.Error()->Number(), 77);
}

TEST_F(UIReqTest, FastAddReadsTheLocalesQuantityFillsTheLineAndReportsItsIdentity) {
  session->locale_id = 1031;
  session->currency_code = "CHF";
  EXPECT_CALL(*req, CommitItem(_, "", _));
  EXPECT_CALL(*req, CompleteItem(_, 55, 3, _));
  ASSERT_TRUE(fast_add("1,23456")) << ui.Error()->Description();
  EXPECT_EQ(item->names, (Names{"ReqID", "SupplierID", "SupplierPartNum", "SupplierPartNumExt",
                                "OrderQty", "UOMID", "CurrencyCode", "IsSpecialRequest"}));
  EXPECT_EQ(item->values, (Values{12, 8, "P-100", "X", 1.2346, "EA", "CHF", false}));
  expect_in_outs(55, 3, 900);
  EXPECT_EQ(req.use_count(), 2) << "released after the call";
}

TEST_F(UIReqTest, FavoriteQuantityIsRoundedToFourDecimals) {
  EXPECT_CALL(*req, AddFavoriteItem(_, 4711, 7.0, Eq(12), _, _, _));
  ASSERT_TRUE(favorite(" 7.00004 "));
  expect_in_outs(55, 3, 900);
}

// Typed input is read before anything reaches the business tier.
TEST_F(UIReqTest, UnreadableInputIsRejectedBeforeAnythingIsStored) {
  session->locale_id = 1031;
  env->last_error()->translation = "Eingabe ungültig";
  // Storing would succeed and write the in/outs, so anything stored shows below.
  const std::tuple<const char*, std::function<bool()>, int32_t> cases[] = {
      {"UIReq::AddItemFastAdd ", [&] { return fast_add("2.5"); }, 11602},
      {"UIReq::AddItemFavorite ", [&] { return favorite("zwei"); }, 11603},
      {"UIReq::AddItemSpecialRequest ", [&] { return special(Variant("4,20"), ""); }, 11601},
      {"UIReq::AddItemSpecialRequest ", [&] { return special(Variant("teuer"), "x"); }, 11600},
      {"UIReq::AddItemSpecialRequest ", [&] { return special(Variant::null(), "1"); }, 11600},
      {"UIReq::AddItemSpecialRequest ", [&] { return special(Variant("1e300"), "1"); }, 11600},
      {"UIReq::UpdateSpecialRequestItem ", [&] { return update_special("4,2", "1e3"); }, 11605},
      {"UIReq::UpdateSpecialRequestItem ", [&] { return update_special("abc", "x"); }, 11604},
  };
  for (const auto& [source, call, message] : cases) {
    SCOPED_TRACE(message);
    EXPECT_FALSE(call());
    EXPECT_THAT(ui.Error(), ErrorIs(validation(message), source));
    EXPECT_EQ(ui.Error()->Description(), "Eingabe ungültig");
    expect_in_outs(12, "line in", "form in");
  }
}

TEST_F(UIReqTest, SpecialRequestsWriteEveryValueInOrder) {
  session->locale_id = 1031;
  const Currency price = Currency::from_scaled(123400);
  ASSERT_TRUE(special(Variant("12,34"), "3"));
  Names names = {
      "ReqID",          "SupplierID", "SupplierName", "SupplierPartNum", "SupplierPartNumExt",
      "OrderQty",       "UOMID",      "MfrID",        "MfrName",         "CommodityID",
      "CommodityAlias", "UnitPrice",  "CurrencyCode", "PartDesc",        "IsSpecialRequest"};
  EXPECT_EQ(item->names, names);
  EXPECT_EQ(item->values, (Values{12, 8, "Acme", "SR-1", "", 3.0, "BX", 21, "Maker", 33, "Paper",
                                  price, "EUR", "Blue paper", true}));
  expect_in_outs(55, 3, 900);

  item->names.clear(), item->values.clear();
  EXPECT_CALL(*req, UpdateSpecialRequestItem).WillOnce(Return(true));
  ASSERT_TRUE(update_special(Variant("12,34"), "3"));
  names.insert(names.begin() + 1, "LineNum");
  EXPECT_EQ(item->names, names);
  EXPECT_EQ(Values(item->values.begin(), item->values.begin() + 2), (Values{12, 2}));
}

TEST_F(UIReqTest, ARefusalAtEitherStoringStepLeavesTheInOutsAsPassed) {
  const std::pair<const char*, std::function<bool()>> cases[] = {
      {"UIReq::AddItemFastAdd", [&] { return fast_add("1"); }},
      {"UIReq::AddItemSpecialRequest", [&] { return special(Variant("1"), "1"); }},
      {"UIReq::AddItemFavorite", [&] { return favorite("1"); }},
  };
  for (refuse_step = 1; refuse_step <= 2; ++refuse_step) {
    for (const auto& [source, call] : cases) {
      SCOPED_TRACE(std::string(source) + " refused at step " + std::to_string(refuse_step));
      EXPECT_FALSE(call());
      EXPECT_THAT(ui.Error(), ErrorIs(99, std::string(source) + " Requisition"));
      expect_in_outs(12, "line in", "form in");
    }
  }
}


TEST_F(UIReqTest, GetLogRequisitionFillsTheHeaderAndRebuildsTheLog) {
  header->created = Variant(Date::from_civil(2024, 3, 5, 23, 0, 0));
  session->time_zone_id = 16;  // one hour east: the next day
  ON_CALL(*req, Load(_, 7, true, _)).WillByDefault(Return(true));
  EXPECT_CALL(*req, GetReqTotals(_, 7, "USD", _, _, _, _))
      .WillOnce(DoAll(SetArgReferee<3>(Currency::from_double(1)),
                      SetArgReferee<4>(Currency::from_double(2)),
                      SetArgReferee<5>(Currency::from_double(9.5)), Return(true)));
  Date logged = Date::from_civil(2024, 3, 6, 8, 0, 0);
  EXPECT_CALL(*req, GetLog(_, "", _))
      .WillOnce(Return(kxui::testing::make_recordset({{"DateLogged", adDate, 0, adFldUnspecified}},
                                                     {{Variant(logged)}, {Variant(logged)}})));
  Variant name, who, created, cost, why, currency;
  auto log = ui.GetLogRequisition(session, 7, name, who, created, cost, why, currency);
  ASSERT_NE(log, nullptr) << ui.Error()->Description();
  EXPECT_EQ((Values{name, who, created, cost, why, currency}),
            (Values{"Office chairs", "Ann Lee", "1033/2/2024-03-06", "USD 9.50@1033",
                    "Needed for Q3", "USD"}));
  EXPECT_EQ(log->RecordCount(), 2);
  EXPECT_EQ((*log)["UIDisplay_DateLogged"].Value().to_string(), "1033/2/2024-03-06");
}

// Writes a reply into the custom data (the last argument) and answers `result`.
auto answer(bool result) {
  return [result](auto&&... args) {
    std::get<sizeof...(args) - 1>(std::tie(args...)) = Variant("from business");
    return result;
  };
}

// The one-request operations: each passes the session, its own arguments and the
// caller's custom data (by reference) to its own request, and reports a refusal under
// its own source. The two lock tests read the answer from Success.
TEST_F(UIReqTest, OneRequestOperationsPassTheirArgumentsAndReportRefusals) {
  const Variant custom_in = Variant(int32_t{77});
  const auto lock_answer = [&](bool r) {
    EXPECT_CALL(*req, Success()).WillOnce(Return(r));
    return [](auto&, auto, Variant& custom) { custom = Variant("from business"); };
  };
  const std::tuple<const char*, std::function<void(bool)>, std::function<bool(Variant&)>> cases[] =
      {
          {"UIReq::ReqLock",
           [&](bool r) {
             EXPECT_CALL(*req, LockRequisition(Eq(session), 7, Eq(custom_in)))
                 .WillOnce(lock_answer(r));
           },
           [&](Variant& c) { return ui.ReqLock(session, 7, c); }},
          {"UIReq::IsValidLock",
           [&](bool r) {
             EXPECT_CALL(*req, IsLockValid(Eq(session), 7, Eq(custom_in))).WillOnce(lock_answer(r));
           },
           [&](Variant& c) { return ui.IsValidLock(session, 7, c); }},
          {"UIReq::ReleaseLock",
           [&](bool r) {
             EXPECT_CALL(*req, ReleaseLocks(Eq(session), Eq(custom_in))).WillOnce(answer(r));
           },
           [&](Variant& c) { return ui.ReleaseLock(session, c); }},
          {"UIReq::CancelReq",
           [&](bool r) {
             EXPECT_CALL(*req, CancelRequisition(Eq(session), 7, Eq(custom_in)))
                 .WillOnce(answer(r));
           },
           [&](Variant& c) { return ui.CancelReq(session, 7, c); }},
          {"UIReq::DeleteReq",
           [&](bool r) {
             EXPECT_CALL(*req, DeleteRequisition(Eq(session), 7, Eq(custom_in)))
                 .WillOnce(answer(r));
           },
           [&](Variant& c) { return ui.DeleteReq(session, 7, c); }},
          {"UIReq::UpdateReqName",
           [&](bool r) {
             EXPECT_CALL(*req, UpdateReqName(Eq(session), 7, "Desks", Eq(custom_in)))
                 .WillOnce(answer(r));
           },
           [&](Variant& c) { return ui.UpdateReqName(session, 7, "Desks", c); }},
      };
  for (const auto& [source, expect, call] : cases) {
    for (bool result : {true, false}) {
      SCOPED_TRACE(std::string(source) + (result ? " granted" : " refused"));
      ui.Error()->SetNumber(0);
      expect(result);
      Variant custom = custom_in;
      EXPECT_EQ(call(custom), result);
      EXPECT_EQ(custom, Variant("from business"));
      if (result) {
        EXPECT_EQ(ui.Error()->Number(), 0);
      } else {
        EXPECT_THAT(ui.Error(), ErrorIs(99, std::string(source) + " Requisition"));
      }
      Mock::VerifyAndClearExpectations(req.get());
    }
  }
}

// Read with the lock; written by loading with the lock, setting the text, then saving.
TEST_F(UIReqTest, JustificationIsReadLockedAndSavedAfterItIsSet) {
  header->status = 2;
  EXPECT_CALL(*req, Load(_, 3, true, _)).WillRepeatedly(Return(true));
  Variant text, editable;
  ASSERT_TRUE(ui.GetHeaderJustification(session, 3, text, editable));
  EXPECT_EQ((Values{text, editable}), (Values{"Needed for Q3", false}));

  std::string saved;
  EXPECT_CALL(*req, Save(Eq(session), _))
      .WillOnce([&](auto&, auto&) { return saved = header->justification, true; })
      .WillOnce(Return(false));
  EXPECT_TRUE(ui.SetHeaderJustification(session, 3, "Two more desks"));
  EXPECT_EQ(saved, "Two more desks");
  EXPECT_FALSE(ui.SetHeaderJustification(session, 3, "Three"));
  EXPECT_THAT(ui.Error(), ErrorIs(99, "UIReq::SetHeaderJustification Requisition"));
}

// A session whose members cannot be read: operations that must not read them use it.
struct UnreadableSession : BasicSession {
  int32_t LocaleID() const override { throw Failure(5, "Session", "not here"); }
  int32_t TimeZoneID() const override { throw Failure(5, "Session", "not here"); }
};

TEST_F(UIReqTest, GetTemplateListPagesTheTemplatesWithoutDisplayColumns) {
  auto templates = std::make_shared<NiceMock<MockTemplates>>();
  env->provide(progid::Templates, templates);
  std::vector<std::vector<Variant>> rows;
  for (int32_t i = 1; i <= 25; ++i) rows.push_back({Variant(i)});
  EXPECT_CALL(*templates, GetTemplateList(_, 3, _))
      .WillRepeatedly(Return(kxui::testing::make_recordset({{"ID", adInteger}}, rows)));
  const SessionPtr unreadable = std::make_shared<UnreadableSession>();
  fakes.ini->set("Page Size", "Paging", "Dunmere", "10");
  // Per page: rows, then the first row's ID and its five paging values.
  const std::tuple<int32_t, int32_t, Values> cases[] = {
      {0, 10, {1, 10, 1, 25, 1, 10}},
      {2, 10, {11, 10, 2, 25, 11, 20}},
      {-1, 5, {21, 10, 3, 25, 21, 25}},
  };
  for (const auto& [page_num, count, first_row] : cases) {
    SCOPED_TRACE(page_num);
    Variant page = Variant("in");
    ASSERT_TRUE(ui.GetTemplateList(unreadable, 3, page_num, page)) << ui.Error()->Description();
    auto rs = page.as<Recordset>();
    EXPECT_EQ(rs->RecordCount(), count);
    Values row;
    for (int32_t i = 0; i < rs->GetFields().Count(); ++i) row.push_back(rs->value(i));
    EXPECT_EQ(row, first_row);
  }
}

// The page is handed over once the list and "Page Size" are read: a failure after that
// leaves the opened empty page, one before it the caller's value.
TEST_F(UIReqTest, GetTemplateListHandsOverThePageBeforePaging) {
  auto templates = std::make_shared<NiceMock<MockTemplates>>();
  env->provide(progid::Templates, templates);
  ON_CALL(*templates, GetTemplateList)
      .WillByDefault(Return(kxui::testing::make_recordset({{"ID", adInteger}}, {{1}, {2}})));
  const std::tuple<const char*, int32_t, int32_t> cases[] = {
      {"0", 11, 6},   // division by zero while paging: the empty page is there
      {"x", 13, 0},   // unreadable setting: nothing handed over
  };
  for (const auto& [size, number, columns] : cases) {
    SCOPED_TRACE(size);
    fakes.ini->set("Page Size", "Paging", "Dunmere", size);
    Variant page = Variant("in");
    EXPECT_FALSE(ui.GetTemplateList(session, 3, 0, page));
    EXPECT_THAT(ui.Error(), ErrorIs(number, "UIReq::GetTemplateList "));
    if (columns == 0) {
      EXPECT_EQ(page, Variant("in"));
      continue;
    }
    auto rs = page.as<Recordset>();
    ASSERT_NE(rs, nullptr);
    EXPECT_EQ(rs->GetFields().Count(), columns);
    EXPECT_EQ(rs->RecordCount(), 0);
  }
  ON_CALL(*templates, GetTemplateList).WillByDefault(Return(nullptr));
  Variant page = Variant("in");
  EXPECT_FALSE(ui.GetTemplateList(session, 3, 0, page));
  EXPECT_EQ(page, Variant("in"));
}

// A copy reported as done without its figures counts as no copy: the outputs are 0 and no
// template is marked.
TEST_F(UIReqTest, CopiesWithoutFiguresGiveZeroAndMarkNothing) {
  EXPECT_CALL(*req, CopyRequisition).WillRepeatedly(Return(true));
  EXPECT_CALL(*req, MarkAsTemplate).Times(0);
  Variant new_id = Variant("?"), items = Variant("?"), copied = Variant("?");
  ASSERT_TRUE(ui.CopyReq(session, 30, "Chairs", new_id, items, copied));
  EXPECT_EQ((Values{new_id, items, copied}), (Values{0, 0, 0}));
  EXPECT_FALSE(ui.CreateTemplate(session, 30, "Chairs", 2));
  // A favourite stored without its line and form reports 0 for both.
  EXPECT_CALL(*req, AddFavoriteItem).WillOnce(Return(true));
  ASSERT_TRUE(favorite("1"));
  expect_in_outs(12, 0, 0);
}

TEST_F(UIReqTest, CreationFailuresAreRecordedUnderTheClassName) {
  env->fail_error_creation = true;
  EXPECT_THAT(UIReq(env->runtime).Error(),
              ErrorIs(429, "UIReq::Class_Initialize KxUtility03.KxError"));
}

}  // namespace
}  // namespace kxui
