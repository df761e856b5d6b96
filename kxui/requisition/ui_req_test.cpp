#include "kxui/requisition/ui_req.h"

#include <functional>

#include <gtest/gtest.h>

#include "kxui/business/progids.h"
#include "kxui/testing/fake_requisition.h"
#include "kxui/testing/fake_services.h"

namespace kxui {
namespace {

using testing::ErrorIs;
using testing::FakeRequisition;
using testing::FakeTemplates;
using testing::make_recordset;

class UIReqTest : public ::testing::Test {
 protected:
  std::shared_ptr<testing::TestEnv> env = testing::TestEnv::make();
  testing::FakeServices fakes = testing::FakeServices::install(*env);
  std::shared_ptr<FakeRequisition> req = std::make_shared<FakeRequisition>();
  std::shared_ptr<BasicSession> session = testing::make_session();
  UIReq ui{env->runtime};

  void SetUp() override { env->provide(progid::Requisition, req); }

  // n requisitions, ReqID 1..n, created and submitted on consecutive days.
  static RecordsetPtr requisitions(int n) {
    std::vector<std::vector<Variant>> rows;
    for (int i = 1; i <= n; ++i) {
      Date d = Date::from_civil(2024, 3, 1 + i % 28, 9, 0, 0);
      rows.push_back({Variant(int32_t{i}), Variant(d), Variant(d)});
    }
    return make_recordset({{"ReqID", adInteger, 0, adFldUnspecified},
                           {"CreateDate", adDate, 0, adFldIsNullable},
                           {"SubmitDate", adDate, 0, adFldIsNullable}},
                          rows);
  }
  static std::vector<int32_t> ints(Recordset& rs, int32_t from_col) {
    std::vector<int32_t> out;
    for (int32_t c = from_col; c < rs.GetFields().Count(); ++c) out.push_back(rs.value(c).to_int32());
    return out;
  }
};

TEST_F(UIReqTest, EditableStatusesAreMinusOneOneThreeAndFour) {
  for (auto [status, editable] : {std::pair{-1, true}, {1, true}, {3, true}, {4, true},
                                  {0, false}, {2, false}, {5, false}}) {
    SCOPED_TRACE(status);
    req->status_id = status;
    req->number_of_items = 6;
    Variant status_out, items_out, editable_out;
    ASSERT_TRUE(ui.GetReqStatus(session, 8, status_out, items_out, editable_out));
    EXPECT_EQ(status_out, Variant(int32_t{status}));
    EXPECT_EQ(items_out, Variant(int32_t{6}));
    EXPECT_EQ(editable_out, Variant(editable));

    req->header->status_id = status;
    Variant justification, editable_header;
    ASSERT_TRUE(ui.GetHeaderJustification(session, 8, justification, editable_header));
    EXPECT_EQ(editable_header, Variant(editable));
  }
}

TEST_F(UIReqTest, GetListPagePassesTheFiltersAndCopiesOnlyThePage) {
  req->list = requisitions(45);
  fakes.ini->set("Page Size", "Paging", "Dunmere", "20");
  fakes.ini->set("DateFormat", "UI", "Dunmere", "1");
  Variant custom;
  auto first = ui.GetListPage(session, "alice", "Works", "CreateDate", "1,3", 0, custom);
  ASSERT_NE(first, nullptr) << ui.Error()->Description();
  ASSERT_NE(req->find("GetRequisitionList"), nullptr);
  EXPECT_EQ(req->find("GetRequisitionList")->args,
            (std::vector<Variant>{"alice", "Works", "CreateDate", "1,3", Variant()}));
  EXPECT_EQ(req->sessions.front(), session);

  const char* names[] = {"ReqID", "CreateDate", "SubmitDate", "UIDisplay_CreateDate",
                         "UIDisplay_SubmitDate", "UIDisplay_PageSize", "UIDisplay_CurrentPage",
                         "UIDisplay_TotalRecords", "UIDisplay_StartRecord", "UIDisplay_EndRecord"};
  ASSERT_EQ(first->GetFields().Count(), 10);
  for (int32_t i = 0; i < 10; ++i) EXPECT_EQ(first->GetFields().Item(i).Name(), names[i]);
  EXPECT_EQ(first->RecordCount(), 20);
  EXPECT_EQ((*first)["ReqID"].Value(), Variant(int32_t{1}));
  EXPECT_EQ((*first)["UIDisplay_SubmitDate"].Value(), Variant("1033/1/2024-03-02"));
  EXPECT_EQ(ints(*first, 5), (std::vector<int32_t>{20, 1, 45, 1, 20}));

  auto past_end = ui.GetListPage(session, "alice", "Works", "CreateDate", "1,3", 9);
  ASSERT_NE(past_end, nullptr);
  EXPECT_EQ(past_end->RecordCount(), 5);
  EXPECT_EQ((*past_end)["ReqID"].Value(), Variant(int32_t{41}));
  EXPECT_EQ(ints(*past_end, 5), (std::vector<int32_t>{20, 3, 45, 41, 45}));
  EXPECT_FALSE(ui.Success()) << "GetListPage does not maintain Success";
}

TEST_F(UIReqTest, GetListPageFailsOnARefusedList) {
  req->list = requisitions(3);
  req->refuse("GetRequisitionList", 70, "no access");
  EXPECT_EQ(ui.GetListPage(session, "", "", "", "", 0), nullptr);
  EXPECT_THAT(ui.Error(), ErrorIs(70, "UIReq::GetListPage Requisition"));
  EXPECT_EQ(env->count(progid::AppIni), 0) << "nothing is read after a refused list";
}

TEST_F(UIReqTest, GetReqNameLoadsOnlyForAPositiveId) {
  Variant name = Variant("");
  EXPECT_FALSE(ui.GetReqName(session, 0, name));
  EXPECT_EQ(ui.Error()->Number(), 0) << "an empty name is not an error";
  name = Variant("Kept");
  EXPECT_TRUE(ui.GetReqName(session, 0, name));
  EXPECT_EQ(name, Variant("Kept"));
  EXPECT_EQ(req->find("Load"), nullptr);

  EXPECT_TRUE(ui.GetReqName(session, 7, name));
  EXPECT_EQ(name, Variant("Office chairs"));
  EXPECT_EQ(req->find("Load")->args, (std::vector<Variant>{int32_t{7}, false, Variant::missing()}));

  req->header->name = "";
  EXPECT_FALSE(ui.GetReqName(session, 7, name));
  EXPECT_EQ(name, Variant(""));
  req->refuse("Load", 3021, "no such requisition");
  name = Variant("before");
  EXPECT_FALSE(ui.GetReqName(session, 7, name));
  EXPECT_EQ(name, Variant("before"));
  EXPECT_THAT(ui.Error(), ErrorIs(3021, "UIReq::GetReqName Requisition"));
}

TEST_F(UIReqTest, GetReqTotalsFormatsInTheSessionsCurrencyAndLocale) {
  session->currency_code = "EUR";
  session->locale_id = 1031;
  req->sub_total = Currency::from_double(100.5);
  req->estimated_tax = Currency::from_double(8.04);
  req->total = Currency::from_double(108.54);
  Variant sub, tax, total;
  ASSERT_TRUE(ui.GetReqTotals(session, 4, sub, tax, total));
  EXPECT_EQ(req->find("GetReqTotals")->args[1], Variant("EUR"));
  EXPECT_EQ(sub, Variant("EUR 100.50@1031"));
  EXPECT_EQ(tax, Variant("EUR 8.04@1031"));
  EXPECT_EQ(total, Variant("EUR 108.54@1031"));
  EXPECT_EQ(env->count(service_class::kCurrencyFormatter), 1);

  req->refuse("GetReqTotals", 5, "no rate");
  sub = Variant("as passed");
  EXPECT_FALSE(ui.GetReqTotals(session, 4, sub, tax, total));
  EXPECT_EQ(sub, Variant("as passed"));
  EXPECT_THAT(ui.Error(), ErrorIs(5, "UIReq::GetReqTotals Requisition"));
}

TEST_F(UIReqTest, SetHeaderJustificationSavesOnlyALoadedRequisition) {
  EXPECT_TRUE(ui.SetHeaderJustification(session, 3, "Broken chairs"));
  EXPECT_EQ(req->call_names(), (std::vector<std::string>{"Load", "Save"}));
  EXPECT_EQ(req->find("Load")->args[1], Variant(true)) << "loaded with its lock";
  EXPECT_EQ(req->find("Save")->args[0], Variant("Broken chairs"));

  req->refuse("Save", 40, "stale");
  EXPECT_FALSE(ui.SetHeaderJustification(session, 3, "x"));
  EXPECT_THAT(ui.Error(), ErrorIs(40, "UIReq::SetHeaderJustification Requisition"));

  req->refuse("Load", 41, "locked by another user");
  req->calls.clear();
  ui.Error()->SetNumber(0);
  EXPECT_FALSE(ui.SetHeaderJustification(session, 3, "y"));
  EXPECT_EQ(req->call_names(), (std::vector<std::string>{"Load"}));
  EXPECT_EQ(ui.Error()->Number(), 0) << "a refused load is not recorded";
}

TEST_F(UIReqTest, GetLogRequisitionGivesHeaderTextsAndTheDatedLog) {
  session->time_zone_id = 17;  // two hours east of the stored zone
  req->total = Currency::from_double(12.5);
  req->log = make_recordset({{"DateLogged", adDate, 0, adFldUnspecified},
                             {"Entry", adVarWChar, 50, adFldUnspecified}},
                            {{Variant(Date::from_civil(2024, 4, 1, 23, 0, 0)), Variant("Created")},
                             {Variant(Date::from_civil(2024, 4, 2, 8, 0, 0)), Variant("Submitted")}});
  Variant name, requisitioner, created, cost, justification, currency;
  auto log = ui.GetLogRequisition(session, 9, name, requisitioner, created, cost, justification,
                                  currency);
  ASSERT_NE(log, nullptr) << ui.Error()->Description();
  EXPECT_EQ(req->call_names(), (std::vector<std::string>{"Load", "GetReqTotals", "GetLog"}));
  EXPECT_EQ(req->find("GetLog")->args[0], Variant(""));
  EXPECT_EQ(name, Variant("Office chairs"));
  EXPECT_EQ(requisitioner, Variant("Pat Doe"));
  EXPECT_EQ(created, Variant("1033/2/2024-03-06"));
  EXPECT_EQ(cost, Variant("USD 12.50@1033"));
  EXPECT_EQ(currency, Variant("USD"));
  ASSERT_EQ(log->RecordCount(), 2);
  EXPECT_EQ((*log)["UIDisplay_DateLogged"].Value(), Variant("1033/2/2024-04-02"));

  req->refuse("GetReqTotals", 6, "overflow");
  name = Variant("as passed");
  EXPECT_EQ(ui.GetLogRequisition(session, 9, name, requisitioner, created, cost, justification,
                                 currency),
            nullptr);
  EXPECT_EQ(name, Variant("as passed"));
  EXPECT_THAT(ui.Error(), ErrorIs(6, "UIReq::GetLogRequisition Requisition"));
}

// Thin operations: the request, its arguments, and the source of a refusal.
TEST_F(UIReqTest, ThinOperationsRecordRefusalsUnderTheirSource) {
  struct Case {
    const char* member;
    const char* source;
    std::function<bool()> call;
    std::vector<Variant> args;
  };
  const Case cases[] = {
      {"UpdateReqName", "UIReq::UpdateReqName", [&] { return ui.UpdateReqName(session, 5, "New"); },
       {int32_t{5}, "New"}},
      {"LockRequisition", "UIReq::ReqLock", [&] { return ui.ReqLock(session, 5); }, {int32_t{5}}},
      {"IsLockValid", "UIReq::IsValidLock", [&] { return ui.IsValidLock(session, 5); },
       {int32_t{5}}},
      {"ReleaseLocks", "UIReq::ReleaseLock", [&] { return ui.ReleaseLock(session); }, {}},
      {"SubmitRequisition", "Requisition::SubmitReq", [&] { return ui.SubmitReq(session, 5); },
       {int32_t{5}, false, int32_t{0}}},
      {"CancelRequisition", "UIReq::CancelReq", [&] { return ui.CancelReq(session, 5); },
       {int32_t{5}}},
      {"DeleteRequisition", "UIReq::DeleteReq", [&] { return ui.DeleteReq(session, 5); },
       {int32_t{5}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.member);
    req->calls.clear();
    EXPECT_TRUE(c.call());
    ASSERT_EQ(req->call_names(), std::vector<std::string>{c.member});
    std::vector<Variant> args = c.args;
    args.push_back(Variant::missing());  // p_CustomData omitted
    EXPECT_EQ(req->calls[0].args, args);

    req->refuse(c.member, 99, "refused");
    EXPECT_FALSE(c.call());
    EXPECT_THAT(ui.Error(), ErrorIs(99, std::string(c.source) + " Requisition"));
  }
}

TEST_F(UIReqTest, SubmitReqPassesTheFlagAndReportsTheOrderCount) {
  req->number_of_pos = 3;
  int32_t pos = 1;
  Variant custom = Variant("ctx");
  req->custom_reply = Variant("reply");
  EXPECT_TRUE(ui.SubmitReq(session, 11, true, pos, custom));
  EXPECT_EQ(req->find("SubmitRequisition")->args,
            (std::vector<Variant>{int32_t{11}, true, int32_t{1}, "ctx"}));
  EXPECT_EQ(pos, 3);
  EXPECT_EQ(custom, Variant("reply")) << "custom data is the caller's variable";

  req->refuse("SubmitRequisition", 12, "no approver");
  pos = 1;
  EXPECT_FALSE(ui.SubmitReq(session, 11, true, pos));
  EXPECT_EQ(pos, 1);
}

TEST_F(UIReqTest, CopiesUseFlagZeroAndATemplateNeedsANewRequisition) {
  req->copy_new_req_id = 31;
  req->copy_items = 4;
  req->copy_copied = 3;
  Variant new_id, items, copied;
  ASSERT_TRUE(ui.CopyReq(session, 30, "Copy of chairs", new_id, items, copied));
  EXPECT_EQ(req->find("CopyRequisition")->args,
            (std::vector<Variant>{int32_t{30}, "Copy of chairs", int32_t{0}, Variant::missing()}));
  EXPECT_EQ(new_id, Variant(int32_t{31}));
  EXPECT_EQ(items, Variant(int32_t{4}));
  EXPECT_EQ(copied, Variant(int32_t{3}));

  req->calls.clear();
  EXPECT_TRUE(ui.CreateTemplate(session, 30, "Chairs template", 2));
  EXPECT_EQ(req->find("CopyRequisition")->args[2], Variant(int32_t{0}));
  EXPECT_EQ(req->find("MarkAsTemplate")->args,
            (std::vector<Variant>{int32_t{31}, int32_t{2}, Variant::missing()}));

  req->refuse("DeleteRequisition", 77, "an earlier failure");
  ui.DeleteReq(session, 1);
  req->copy_new_req_id = 0;
  req->calls.clear();
  EXPECT_FALSE(ui.CreateTemplate(session, 30, "Chairs template", 2));
  EXPECT_EQ(req->call_names(), std::vector<std::string>{"CopyRequisition"});
  EXPECT_THAT(ui.Error(), ErrorIs(77, "UIReq::DeleteReq Requisition")) << "Error untouched";
}

TEST_F(UIReqTest, GetTemplateListPagesTheTemplatesIntoTheInOut) {
  auto templates = std::make_shared<FakeTemplates>();
  env->provide(progid::Templates, templates);
  templates->list = requisitions(45);
  fakes.ini->set("Page Size", "Paging", "Dunmere", "20");
  Variant page;
  ASSERT_TRUE(ui.GetTemplateList(session, 6, 0, page));
  EXPECT_EQ(env->created, (std::vector<std::string>{"factory:KxUtility03.KxError",
                                                    "factory:KxUtility03.AppIni",
                                                    "factory:KxReq03.Templates"}));
  EXPECT_EQ(templates->find("GetTemplateList")->args,
            (std::vector<Variant>{int32_t{6}, Variant::missing()}));
  auto rs = page.as<Recordset>();
  ASSERT_EQ(rs->GetFields().Count(), 8);
  EXPECT_EQ(rs->GetFields().Item(3).Name(), "UIDisplay_PageSize");
  EXPECT_EQ(rs->RecordCount(), 20);
  EXPECT_EQ(ints(*rs, 3), (std::vector<int32_t>{20, 1, 45, 1, 20}));

  ASSERT_TRUE(ui.GetTemplateList(session, 6, -1, page));
  EXPECT_EQ(ints(*page.as<Recordset>(), 3), (std::vector<int32_t>{20, 3, 45, 41, 45}));

  templates->list = nullptr;
  page = Variant("as passed");
  EXPECT_FALSE(ui.GetTemplateList(session, 6, 0, page));
  EXPECT_EQ(page, Variant("as passed"));
  EXPECT_THAT(ui.Error(), ErrorIs(91, "UIReq::GetTemplateList "));
}

TEST_F(UIReqTest, BusinessObjectsAreReleasedOnSuccessAndFailure) {
  std::vector<std::weak_ptr<FakeRequisition>> made;
  bool refuse = false;
  env->provide_fn(progid::Requisition, [&]() -> ObjectPtr {
    auto r = std::make_shared<FakeRequisition>();
    if (refuse) r->refuse("CommitItem");
    made.push_back(r);
    return r;
  });
  Variant req_id = Variant(int32_t{0}), line, form;
  EXPECT_TRUE(ui.AddItemFastAdd(session, req_id, 1, "P-1", "", "2", "EA", line, form));
  refuse = true;
  EXPECT_FALSE(ui.AddItemFastAdd(session, req_id, 1, "P-1", "", "2", "EA", line, form));
  EXPECT_TRUE(ui.CancelReq(session, 5));
  ASSERT_EQ(made.size(), 3u);
  for (const auto& w : made) EXPECT_TRUE(w.expired());
}

}  // namespace
}  // namespace kxui
