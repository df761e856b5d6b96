// The approvers' and reviewers' side through UIWF: work lists, the lines a step covers,
// previews, rejection, and delegation bounded by its dates.
#include <gmock/gmock.h>

#include "kxui/requisition/ui_req.h"
#include "kxui/workflow/ui_wf.h"
#include "reference/errors.h"
#include "reference/test_fixture.h"

namespace kxui::reference {
namespace {

using ::testing::HasSubstr;
using testing::Fixture;
using testing::make_fixture;

// A submitted requisition of Alice's: `pens` pens, routed to Bob.
int32_t submitted(Fixture& f, UIReq& ui, const char* pens = "1") {
  auto alice = f.session(f.ids.alice);
  Variant req_id(int32_t{0}), line, form;
  EXPECT_TRUE(ui.AddItemFastAdd(alice, req_id, f.ids.supplier, "P-100", "", pens, "", line, form));
  EXPECT_TRUE(ui.AddItemFavorite(alice, req_id, f.ids.ream, "1", line, form));
  int32_t pos = 0;
  EXPECT_TRUE(ui.SubmitReq(alice, req_id.to_int32(), false, pos)) << ui.Error()->Description();
  return req_id.to_int32();
}

std::vector<int32_t> ints(const RecordsetPtr& rs, const char* column) {
  std::vector<int32_t> out;
  if (!rs || rs->RecordCount() == 0) return out;
  for (rs->MoveFirst(); !rs->IsEOF(); rs->MoveNext()) {
    out.push_back(rs->GetFields()[column].Value().to_int32());
  }
  return out;
}

TEST(WorkLists, ApproversSeeWhatWaitsForThem) {
  auto f = make_fixture();
  UIReq ui(f->runtime);
  UIWF wf(f->runtime);
  auto bob = f->session(f->ids.bob), carol = f->session(f->ids.carol);
  // An empty work list is a page without rows, not a failure.
  RecordsetPtr none = wf.GetApproverListPage(bob, "", 0);
  ASSERT_TRUE(none) << wf.Error()->Description();
  EXPECT_EQ(none->RecordCount(), 0);
  EXPECT_TRUE(wf.Success());

  const int32_t first = submitted(*f, ui);
  f->advance_minutes(60 * 24);
  const int32_t second = submitted(*f, ui);
  EXPECT_EQ(ints(wf.GetApproverListPage(bob, "", 0), "ReqID"), (std::vector<int32_t>{first, second}));
  EXPECT_EQ(ints(wf.GetApproverListPage(bob, "ReqID DESC", 0), "ReqID"),
            (std::vector<int32_t>{second, first}));
  EXPECT_EQ(ints(wf.GetApproverListPage(carol, "", 0), "ReqID"), std::vector<int32_t>{});
  EXPECT_FALSE(wf.GetApproverListPage(bob, "Total", 0));
  EXPECT_THAT(wf.Error()->Description(), HasSubstr("cannot be sorted by \"Total\""));

  // The step covers both lines; once Bob approves, the request leaves his list.
  RecordsetPtr lines = wf.GetApprovalItemsRs(bob, first, 1);
  ASSERT_TRUE(lines) << wf.Error()->Description();
  EXPECT_EQ(ints(lines, "LineNum"), (std::vector<int32_t>{1, 2}));
  ASSERT_TRUE(wf.Approve(bob, first, 1, ""));
  EXPECT_EQ(ints(wf.GetApproverListPage(bob, "", 0), "ReqID"), std::vector<int32_t>{second});
  EXPECT_FALSE(wf.GetApprovalItemsRs(bob, first, 7));
  EXPECT_THAT(wf.Error()->Description(), HasSubstr("has no approval step 7"));
}

TEST(WorkLists, ReviewersAndTheirComments) {
  auto f = make_fixture();
  UIReq ui(f->runtime);
  UIWF wf(f->runtime);
  auto alice = f->session(f->ids.alice), dave = f->session(f->ids.dave);
  const int32_t rid = submitted(*f, ui);
  ASSERT_TRUE(wf.AddReviewer(alice, rid, f->ids.dave, f->ids.acme));
  ASSERT_TRUE(wf.AddReviewer(alice, rid, f->ids.erin, f->ids.acme));
  ASSERT_TRUE(wf.AddComments(dave, rid, "  Looks fine  "));
  RecordsetPtr list = wf.GetReviewerListPage(dave, "", 0);
  ASSERT_TRUE(list) << wf.Error()->Description();
  EXPECT_EQ(list->GetFields()["UIDisplay_CommentsLength"].Value(), Variant(int32_t{10}));
  RecordsetPtr all = wf.GetReviewListRs(alice, rid, 0);
  EXPECT_EQ(ints(all, "ReviewerID"), (std::vector<int32_t>{f->ids.dave, f->ids.erin}));
  RecordsetPtr daves = wf.GetReviewListRs(alice, rid, f->ids.dave);
  ASSERT_TRUE(daves);
  EXPECT_EQ(daves->GetFields()["Comments"].Value(), Variant(std::string("  Looks fine  ")));
  Variant name, requisitioner, created, cost, justification, currency;
  RecordsetPtr log = ui.GetLogRequisition(alice, rid, name, requisitioner, created, cost,
                                          justification, currency);
  ASSERT_TRUE(log);
  std::vector<std::string> entries;
  for (log->MoveFirst(); !log->IsEOF(); log->MoveNext()) {
    entries.push_back(log->GetFields()["Action"].Value().to_string() + ": " +
                      log->GetFields()["Comments"].Value().to_string());
  }
  EXPECT_THAT(entries, ::testing::ElementsAre(
                           ::testing::_, ::testing::_, ::testing::_, "Submitted: ",
                           "Reviewer added: Dave Adhoc", "Reviewer added: Erin Standin",
                           "Comment:   Looks fine  "));
  EXPECT_FALSE(wf.AddComments(dave, rid, ""));
  EXPECT_THAT(wf.Error()->Description(), HasSubstr("no comment"));
}

TEST(WorkLists, PreviewCountsWithoutStoring) {
  auto f = make_fixture();
  UIReq ui(f->runtime);
  UIWF wf(f->runtime);
  auto alice = f->session(f->ids.alice);
  Variant req_id(int32_t{0}), line, form;
  ASSERT_TRUE(ui.AddItemFavorite(alice, req_id, f->ids.ream, "15", line, form));  // 1,650 with tax
  const int32_t rid = req_id.to_int32();
  ASSERT_TRUE(wf.BuildApprovalProcess(alice, rid, true));
  EXPECT_EQ(wf.GetApprovalCount(alice, rid), 0);
  ASSERT_TRUE(wf.BuildApprovalProcess(alice, rid, false));
  EXPECT_EQ(wf.GetApprovalCount(alice, rid), 2) << "Bob, then Carol above Bob's limit";
  // With the page's route kept, an ad-hoc approver added before submission stays.
  ASSERT_TRUE(wf.AddBeforeApprovalChain(alice, rid, f->ids.dave, f->ids.acme));
  EXPECT_EQ(wf.GetApprovalCount(alice, rid), 4) << "Dave's chain: Dave, then Carol";
  int32_t pos = 0;
  ASSERT_TRUE(ui.SubmitReq(alice, rid, true, pos));
  EXPECT_EQ(wf.GetApprovalCount(alice, rid), 4);
  ASSERT_TRUE(wf.Approve(f->session(f->ids.dave), rid, 3, ""));
  EXPECT_FALSE(wf.AddBefore(alice, rid, 3, f->ids.erin, f->ids.acme));
  EXPECT_EQ(wf.Error()->Number(), error_number(Refusal::kAlreadyActed));
}

TEST(WorkLists, DelegationHoldsOnlyWhileItIsValid) {
  auto f = make_fixture();
  UIReq ui(f->runtime);
  UIWF wf(f->runtime);
  auto bob = f->session(f->ids.bob), erin = f->session(f->ids.erin);
  const int32_t rid = submitted(*f, ui);
  struct Case {
    const char* what;
    Date from, to;
    bool enabled, borg_allows, may_act;
  } cases[] = {
      {"not yet begun", Date::from_civil(2026, 3, 3), Date::from_civil(2026, 3, 9), true, true, false},
      {"already ended", Date::from_civil(2026, 2, 1), Date::from_civil(2026, 3, 1), true, true, false},
      {"switched off", Date::from_civil(2026, 3, 1), Date::from_civil(2026, 3, 9), false, true, false},
      {"organisation forbids it", Date::from_civil(2026, 3, 1), Date::from_civil(2026, 3, 9), true,
       false, false},
      {"in force", Date::from_civil(2026, 3, 1), Date::from_civil(2026, 3, 9), true, true, true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    f->db->write([&](soci::session& sql) {
      sql << "UPDATE borgs SET delegation_enabled = 1";
    });
    ASSERT_TRUE(wf.SaveBorgDelegationData(bob, f->ids.acme, f->ids.bob, f->ids.erin, c.from, c.to,
                                          c.enabled))
        << wf.Error()->Description();
    const int allows = c.borg_allows ? 1 : 0;
    f->db->write([&](soci::session& sql) {
      sql << "UPDATE borgs SET delegation_enabled = :a", soci::use(allows);
    });
    EXPECT_EQ(ints(wf.GetApproverListPage(erin, "", 0), "ReqID").size(), c.may_act ? 1u : 0u);
    EXPECT_EQ(wf.Approve(erin, rid, 1, ""), c.may_act);
  }
  EXPECT_TRUE(wf.CheckDelegationEnabled(bob));
}

TEST(WorkLists, OnlyWaitingRequisitionsAreWithdrawnOrCounted) {
  auto f = make_fixture();
  UIReq ui(f->runtime);
  UIWF wf(f->runtime);
  auto alice = f->session(f->ids.alice);
  Variant req_id(int32_t{0}), line, form;
  ASSERT_TRUE(ui.AddItemFastAdd(alice, req_id, f->ids.supplier, "P-100", "", "1", "", line, form));
  EXPECT_FALSE(wf.Cancel(alice, req_id.to_int32()));
  EXPECT_EQ(wf.Error()->Description(), "Requisition " + std::to_string(req_id.to_int32()) +
                                           " is Open and is not waiting for approval.");
  EXPECT_EQ(wf.GetApprovalCount(alice, 999), 0);
  EXPECT_FALSE(wf.Success());
  EXPECT_EQ(wf.Error()->Number(), error_number(Refusal::kNotFound));
}

TEST(WorkLists, RejectionEndsTheRound) {
  auto f = make_fixture();
  UIReq ui(f->runtime);
  UIWF wf(f->runtime);
  auto alice = f->session(f->ids.alice), bob = f->session(f->ids.bob);
  const int32_t rid = submitted(*f, ui, "1");
  ASSERT_TRUE(wf.AddAfter(alice, rid, 1, f->ids.dave, f->ids.acme));
  ASSERT_TRUE(wf.Reject(bob, rid, 1, "No"));
  int waiting = -1;
  f->db->read([&](soci::session& sql) {
    sql << "SELECT COUNT(*) FROM approval_steps WHERE req_id = :r AND status_id IN (1, 2)",
        soci::use(rid), soci::into(waiting);
  });
  EXPECT_EQ(waiting, 0);
  EXPECT_EQ(ints(wf.GetApproverListPage(f->session(f->ids.dave), "", 0), "ReqID").size(), 0u);
  Variant name, requisitioner, created, cost, justification, currency;
  RecordsetPtr log = ui.GetLogRequisition(alice, rid, name, requisitioner, created, cost,
                                          justification, currency);
  ASSERT_TRUE(log);
  log->MoveLast();
  EXPECT_EQ(log->GetFields()["Action"].Value(), Variant(std::string("Rejected")));
  EXPECT_EQ(log->GetFields()["Comments"].Value(), Variant(std::string("Step 1: No")));
}

}  // namespace
}  // namespace kxui::reference
