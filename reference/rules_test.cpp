// The rules the tier enforces, seen through the façades: locks owned by sessions with an
// expiry, status transitions, copies and templates.
#include <gmock/gmock.h>

#include "kxui/business/progids.h"
#include "kxui/business/reconcile.h"
#include "kxui/po/ui_po.h"
#include "kxui/po/ui_recon_po.h"
#include "kxui/requisition/ui_req.h"
#include "kxui/workflow/ui_wf.h"
#include "reference/errors.h"
#include "reference/order_fixture.h"
#include "reference/test_fixture.h"

namespace kxui::reference {
namespace {

using ::testing::HasSubstr;
using testing::Fixture;
using testing::make_fixture;

// A requisition of Alice's with one pen line (2.50), Open.
int32_t new_requisition(Fixture& f, UIReq& ui, int32_t session_id = 1) {
  Variant req_id(int32_t{0}), line, form;
  EXPECT_TRUE(ui.AddItemFastAdd(f.session(f.ids.alice, session_id), req_id, f.ids.supplier,
                                "P-100", "", "1", "EA", line, form))
      << ui.Error()->Description();
  return req_id.to_int32();
}

int32_t status_of(UIReq& ui, const SessionPtr& s, int32_t rid) {
  Variant status, items, editable;
  EXPECT_TRUE(ui.GetReqStatus(s, rid, status, items, editable)) << ui.Error()->Description();
  return status.to_int32();
}

TEST(Rules, TwoSessionsContendForOneLock) {
  auto f = make_fixture();
  UIReq ui(f->runtime);
  const int32_t rid = new_requisition(*f, ui);
  auto first = f->session(f->ids.alice, 1), second = f->session(f->ids.alice, 2);

  ASSERT_TRUE(ui.ReqLock(first, rid));
  EXPECT_FALSE(ui.ReqLock(second, rid));
  EXPECT_EQ(ui.Error()->Number(), error_number(Refusal::kLocked));
  EXPECT_THAT(ui.Error()->Description(),
              HasSubstr("is being edited by Alice Asker until 2026-03-02 09:30:00"));
  EXPECT_THAT(ui.Error()->Source(), HasSubstr("Requisition::LockRequisition"));
  EXPECT_TRUE(ui.IsValidLock(first, rid));
  EXPECT_FALSE(ui.IsValidLock(second, rid));
  EXPECT_EQ(ui.Error()->Number(), error_number(Refusal::kLockNotHeld));

  // The holder edits; the other session is kept out of every change.
  EXPECT_TRUE(ui.SetHeaderJustification(first, rid, "mine"));
  EXPECT_FALSE(ui.SetHeaderJustification(second, rid, "theirs"));
  Variant req_id(rid), line, form;
  EXPECT_FALSE(ui.AddItemFastAdd(second, req_id, f->ids.supplier, "P-100", "", "1", "EA", line, form));
  EXPECT_EQ(ui.Error()->Number(), error_number(Refusal::kLocked));
  Variant status, items, editable;
  ASSERT_TRUE(ui.GetReqStatus(first, rid, status, items, editable));
  EXPECT_EQ(items, Variant(int32_t{1}));

  // Renewing keeps the lock; past its expiry the other session may take it over.
  f->advance_minutes(20);
  ASSERT_TRUE(ui.ReqLock(first, rid));
  f->advance_minutes(20);
  EXPECT_FALSE(ui.ReqLock(second, rid));
  f->advance_minutes(11);
  EXPECT_FALSE(ui.IsValidLock(first, rid));
  ASSERT_TRUE(ui.ReqLock(second, rid));
  EXPECT_FALSE(ui.ReqLock(first, rid));

  // Releasing frees only the releasing session's locks.
  ASSERT_TRUE(ui.ReleaseLock(first));
  EXPECT_TRUE(ui.IsValidLock(second, rid));
  ASSERT_TRUE(ui.ReleaseLock(second));
  EXPECT_TRUE(ui.ReqLock(first, rid));
}

TEST(Rules, StatusTransitionsAreRefusedWithClearErrors) {
  auto f = make_fixture();
  UIReq ui(f->runtime);
  UIWF wf(f->runtime);
  auto alice = f->session(f->ids.alice), bob = f->session(f->ids.bob),
       dave = f->session(f->ids.dave);
  const int32_t empty = new_requisition(*f, ui);
  const int32_t rid = new_requisition(*f, ui);
  int32_t pos = 0;
  // An empty requisition has nothing to submit.
  f->db->write([&](soci::session& sql) {
    sql << "DELETE FROM req_lines WHERE req_id = :r", soci::use(empty);
  });
  EXPECT_FALSE(ui.SubmitReq(alice, empty, false, pos));
  EXPECT_EQ(ui.Error()->Number(), error_number(Refusal::kNoItems));
  EXPECT_EQ(ui.Error()->Source(), "Requisition::SubmitReq Requisition::SubmitRequisition");
  ASSERT_TRUE(ui.SubmitReq(alice, rid, false, pos)) << ui.Error()->Description();

  struct Case {
    const char* what;
    std::function<bool()> call;
    ErrorInfoPtr error;
    Refusal expected;
    const char* text;
  } cases[] = {
      {"add an item",
       [&] {
         Variant req_id(rid), line, form;
         return ui.AddItemFastAdd(alice, req_id, f->ids.supplier, "P-100", "", "1", "EA", line, form);
       },
       ui.Error(), Refusal::kNotEditable, "is Submitted and cannot be changed"},
      {"rename", [&] { return ui.UpdateReqName(alice, rid, "New"); }, ui.Error(),
       Refusal::kNotEditable, "cannot be renamed"},
      {"submit again", [&] { return ui.SubmitReq(alice, rid, false, pos); }, ui.Error(),
       Refusal::kNotEditable, "cannot be submitted"},
      {"delete", [&] { return ui.DeleteReq(alice, rid); }, ui.Error(), Refusal::kWrongStatus,
       "cannot be deleted"},
      {"rebuild the route", [&] { return wf.BuildApprovalProcess(alice, rid, false); },
       wf.Error(), Refusal::kNotEditable, "cannot be given a new approval route"},
      {"withdraw someone else's", [&] { return wf.Cancel(bob, rid); }, wf.Error(),
       Refusal::kNotAllowed, "Only the requisitioner may withdraw"},
      {"approve another's step", [&] { return wf.Approve(dave, rid, 1, ""); }, wf.Error(),
       Refusal::kNotAllowed, "Dave Adhoc may not act on approval step 1"},
      {"approve a missing step", [&] { return wf.Approve(bob, rid, 9, ""); }, wf.Error(),
       Refusal::kNotFound, "has no approval step 9"},
      {"add an approver from elsewhere", [&] { return wf.AddAfter(alice, rid, 1, f->ids.frank, f->ids.acme); },
       wf.Error(), Refusal::kNotFound, "is not an active member"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_FALSE(c.call());
    EXPECT_EQ(c.error->Number(), error_number(c.expected));
    EXPECT_THAT(c.error->Description(), HasSubstr(c.text));
  }
  EXPECT_EQ(status_of(ui, alice, rid), 2);

  // Rejected: editable again, not approvable, and it can go round once more.
  ASSERT_TRUE(wf.Reject(bob, rid, 1, "Too many pens")) << wf.Error()->Description();
  EXPECT_EQ(status_of(ui, alice, rid), 3);
  EXPECT_FALSE(wf.Approve(bob, rid, 1, ""));
  EXPECT_THAT(wf.Error()->Description(), HasSubstr("is Rejected and cannot be approved."));
  ASSERT_TRUE(ui.SubmitReq(alice, rid, false, pos)) << ui.Error()->Description();
  EXPECT_EQ(wf.GetApprovalCount(alice, rid), 1);

  // Withdrawn by its requisitioner, then cancelled: nothing changes it any more.
  ASSERT_TRUE(wf.Cancel(alice, rid)) << wf.Error()->Description();
  EXPECT_EQ(status_of(ui, alice, rid), 4);
  ASSERT_TRUE(ui.CancelReq(alice, rid));
  EXPECT_EQ(status_of(ui, alice, rid), 7);
  EXPECT_FALSE(ui.CancelReq(alice, rid));
  EXPECT_THAT(ui.Error()->Description(), HasSubstr("is Cancelled and cannot be cancelled"));
  EXPECT_TRUE(ui.DeleteReq(alice, rid));
  Variant status, items, editable;
  EXPECT_FALSE(ui.GetReqStatus(alice, rid, status, items, editable));
  EXPECT_EQ(ui.Error()->Number(), error_number(Refusal::kNotFound));
}

TEST(Rules, RouteChangesPlaceApproversWhereAsked) {
  auto f = make_fixture();
  UIReq ui(f->runtime);
  UIWF wf(f->runtime);
  auto alice = f->session(f->ids.alice);
  const int32_t rid = new_requisition(*f, ui);
  int32_t pos = 0;
  ASSERT_TRUE(ui.SubmitReq(alice, rid, false, pos));  // route: Bob
  ASSERT_TRUE(wf.AddBefore(alice, rid, 1, f->ids.dave, f->ids.acme));
  ASSERT_TRUE(wf.AddParallelApprovalChain(alice, rid, f->ids.erin, f->ids.acme));
  ASSERT_TRUE(wf.AddAfterApprovalChain(alice, rid, f->ids.carol, f->ids.acme));
  ASSERT_TRUE(wf.AddReviewer(alice, rid, f->ids.carol, f->ids.acme));
  EXPECT_FALSE(wf.AddReviewer(alice, rid, f->ids.carol, f->ids.acme));
  EXPECT_THAT(wf.Error()->Description(), HasSubstr("already reviews"));

  // Stage by stage: Dave beside Erin (whose chain is Erin, then Bob beside Bob), then
  // Carol. The map shows each stage as a column.
  Variant html;
  ASSERT_TRUE(wf.BuildDataStructure(alice, rid, "H", 2, html, "Arial")) << wf.Error()->Description();
  EXPECT_EQ(html.to_string(),
            "<table class=\"workflow\" style=\"font-family: 'Arial'\"><caption>Requisition of "
            "2026-03-02</caption><tr><td><div class=\"step current\">Dave Adhoc<br>Ad-hoc "
            "approval (Pending)</div><div class=\"step\">Erin Standin<br>Parallel approval "
            "(Pending)</div></td><td><div class=\"step\">Bob Boss<br>Approval (Waiting)</div><div "
            "class=\"step\">Bob Boss<br>Parallel approval (Waiting)</div></td><td><div "
            "class=\"step\">Carol Chief<br>Approval chain (Waiting)</div></td></tr></table>");
  RecordsetPtr header = wf.GetHeaderRs(alice, rid, 3);
  ASSERT_TRUE(header) << wf.Error()->Description();
  EXPECT_EQ(header->GetFields()["ApprovalTypeDesc"].Value(), Variant(std::string("Parallel approval")));
  EXPECT_EQ(header->GetFields()["ApprovalStatusID"].Value(), Variant(std::string("2")));
  RecordsetPtr carols = wf.GetReviewerListPage(f->session(f->ids.carol), "", 0);
  ASSERT_TRUE(carols) << wf.Error()->Description();
  EXPECT_EQ(carols->RecordCount(), 1);
}

TEST(Rules, CopiesAndTemplates) {
  auto f = make_fixture();
  UIReq ui(f->runtime);
  auto alice = f->session(f->ids.alice), bob = f->session(f->ids.bob);
  const int32_t rid = new_requisition(*f, ui);
  Variant copy, items, copied;
  ASSERT_TRUE(ui.CopyReq(alice, rid, "Again", copy, items, copied));
  EXPECT_NE(copy.to_int32(), rid);
  EXPECT_EQ(items, Variant(int32_t{1}));
  EXPECT_EQ(copied, Variant(int32_t{1}));
  Variant name;
  ASSERT_TRUE(ui.GetReqName(alice, copy.to_int32(), name));
  EXPECT_EQ(name, Variant(std::string("Again")));

  ASSERT_TRUE(ui.CreateTemplate(alice, rid, "Mine", 1));
  ASSERT_TRUE(ui.CreateTemplate(alice, rid, "Shared", 2));
  EXPECT_FALSE(ui.CreateTemplate(alice, rid, "Odd", 3));
  EXPECT_THAT(ui.Error()->Description(), HasSubstr("Template type 3 is not known"));
  struct Case {
    SessionPtr who;
    std::vector<std::string> names;
  } cases[] = {{alice, {"Mine", "Shared"}}, {bob, {"Shared"}}};
  for (const Case& c : cases) {
    Variant list;
    ASSERT_TRUE(ui.GetTemplateList(c.who, 1, 0, list)) << ui.Error()->Description();
    auto rs = list.as<Recordset>();
    std::vector<std::string> names;
    for (rs->MoveFirst(); !rs->IsEOF(); rs->MoveNext()) {
      names.push_back(rs->GetFields()["ReqName"].Value().to_string());
    }
    EXPECT_EQ(names, c.names);
  }
}

// An order changes only while it is open: once sent, every change is refused with the
// same clear error and leaves the order, its lines and its log as they were.
TEST(Rules, ASentOrderIsNoLongerChanged) {
  testing::Ordered o;
  auto alice = o.f->session(o.f->ids.alice);
  UIPO po(o.f->runtime);
  UIReconPO recon(o.f->runtime);
  UIReq req(o.f->runtime);
  ASSERT_TRUE(recon.SubmitRecPO(alice, o.po_id)) << recon.Error()->Description();
  const auto log_entries = [&] {
    return o.f->db->read([&](soci::session& sql) {
      int n = 0;
      sql << "SELECT COUNT(*) FROM po_log WHERE po_id = :p", soci::use(o.po_id), soci::into(n);
      return n;
    });
  };
  const int logged = log_entries();
  const Variant one_line(Array::of({Variant(int32_t{1})}));
  const Variant one_qty(Array::of({Variant(1.0)}));
  const Variant none(Array::of({Variant(0.0)}));
  // The reconciliation page only learns False from its façade; the others record why.
  struct Case {
    const char* what;
    std::function<bool()> call;
    ErrorInfoPtr error;
    bool recorded = true;
  } cases[] = {
      {"delete a line", [&] { return po.DeleteItem(alice, o.po_id, 1); }, po.Error()},
      {"delete the order", [&] { return po.DeletePO(alice, o.po_id); }, po.Error()},
      {"split a line", [&] { return po.SaveCostDistribs(alice, o.po_id, 1, "1", "100"); },
       po.Error()},
      {"change quantities",
       [&] { return recon.UpdateItemsQtys(alice, o.po_id, one_line, one_qty, none); },
       recon.Error(), false},
      {"submit the reconciliation again", [&] { return recon.SubmitRecPO(alice, o.po_id); },
       recon.Error(), false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    c.error->SetNumber(0);
    EXPECT_FALSE(c.call());
    if (!c.recorded) {
      EXPECT_EQ(c.error->Number(), 0);
      continue;
    }
    EXPECT_EQ(c.error->Number(), error_number(Refusal::kWrongStatus));
    EXPECT_THAT(c.error->Description(), HasSubstr("is no longer open"));
  }
  auto order = create_as<business::ReconcileOrder>(*o.f->runtime, progid::ReconcileOrder);
  Variant cd;
  EXPECT_FALSE(order->UpdateQuantities(alice, o.po_id, one_line, one_qty, none, cd));
  EXPECT_THAT(order->GetError()->Description(), HasSubstr("is no longer open"));
  EXPECT_FALSE(order->SubmitOrder(alice, o.po_id, cd));
  EXPECT_THAT(order->GetError()->Description(), HasSubstr("is no longer open"));
  EXPECT_EQ(testing::count_lines(*o.f->db, o.po_id), 2);
  EXPECT_EQ(log_entries(), logged);
  // Its requisition, approved into the order, is not cancelled under it.
  EXPECT_FALSE(req.CancelReq(alice, o.req_id));
  EXPECT_THAT(req.Error()->Description(), HasSubstr("cannot be cancelled"));
}

}  // namespace
}  // namespace kxui::reference
