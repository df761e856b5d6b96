// Every operation that opens one requisition or order by its id refuses another
// organisation's document and changes nothing; colleagues keep working on it.
#include <functional>
#include <map>

#include <gmock/gmock.h>

#include "kxui/business/approvals.h"
#include "kxui/business/po_receipt.h"
#include "kxui/business/progids.h"
#include "kxui/business/purchase_order.h"
#include "kxui/business/reconcile.h"
#include "kxui/business/req_cost_distribs.h"
#include "kxui/business/requisition.h"
#include "kxui/business/smart_form.h"
#include "kxui/business/workflow.h"
#include "reference/errors.h"
#include "reference/order_fixture.h"

namespace kxui::reference::testing {
namespace {

using Counts = std::map<std::string, int>;

// Rows per table that any refused operation could have written to.
Counts row_counts(Database& db) {
  static const char* const kTables[] = {
      "requisitions", "req_lines",      "req_log",           "req_locks",
      "approval_steps", "reviewers",    "req_cost_distribs", "smart_form_values",
      "purchase_orders", "po_lines",    "po_log",            "po_locks",
      "po_cost_distribs", "receipts",   "receipt_lines",     "recon_lines"};
  Counts out;
  db.read([&](soci::session& sql) {
    for (const char* table : kTables) {
      int n = 0;
      sql << "SELECT COUNT(*) FROM " << table, soci::into(n);
      out[table] = n;
    }
  });
  return out;
}

template <class T>
std::shared_ptr<T> make(Fixture& f, std::string_view progid) {
  return create_as<T>(*f.runtime, progid);
}

TEST(Organisations, AnotherOrganisationsDocumentsAreRefusedByEveryOperation) {
  Ordered o;
  Fixture& f = *o.f;
  auto alice = f.session(f.ids.alice), frank = f.session(f.ids.frank);
  const int32_t rid = o.req_id, po = o.po_id;
  int receipt = 0;
  f.db->write([&](soci::session& sql) {
    sql << "INSERT INTO receipts (po_id, receive_date, doc_create_date, carton_cnt, received_by, "
           "create_date) VALUES (:p, '2026-03-02 09:00:00', '2026-03-02 09:00:00', 1, :u, "
           "'2026-03-02 09:00:00') RETURNING receipt_id",
        soci::use(po), soci::use(f.ids.alice), soci::into(receipt);
  });

  auto req = make<business::Requisition>(f, progid::Requisition);
  auto wf = make<business::Workflow>(f, progid::Workflow);
  auto diagram = make<business::Diagram>(f, progid::Diagram);
  auto review = make<business::ApprovalReview>(f, progid::ApprovalReview);
  auto approval = make<business::Approval>(f, progid::Approval);
  auto approval_items = make<business::ApprovalItems>(f, progid::ApprovalItems);
  auto req_costs = make<business::ReqCostDistribs>(f, progid::ReqCostDistribs);
  auto forms = make<business::SFormReqItem>(f, progid::SFormReqItem);
  auto order = make<business::PurchaseOrder>(f, progid::PurchaseOrder);
  auto po_log = make<business::POLog>(f, progid::POLog);
  auto po_costs = make<business::POCostDistribs>(f, progid::POCostDistribs);
  auto rcv = make<business::POReceipt>(f, progid::POReceipt);
  auto recon_items = make<business::ReconcileItems>(f, progid::ReconcileItems);
  auto recon = make<business::ReconcileOrder>(f, progid::ReconcileOrder);

  // What a page of Alice's organisation would hand over: her order's receipt form, a line
  // of her order, a value for a form field.
  Array hdr_args = Array::of({Variant(po)});
  RecordsetPtr receipt_hdr = rcv->GetReceiptHdr(alice, hdr_args);
  Array item_args = Array::of({Variant(po), Variant(true)});
  RecordsetPtr receipt_lines = rcv->GetReceiptItems(alice, item_args);
  ASSERT_TRUE(receipt_hdr && receipt_lines) << rcv->GetError()->Description();
  auto po_line = make<business::POItem>(f, progid::POItem);
  po_line->SetPOID(po);
  po_line->SetLineNum(1);
  po_line->SetShortDesc("Alternative pen");
  auto po_lines = make<business::POItems>(f, progid::POItems);
  po_lines->Add(po_line);
  const Variant names(Array::of({Variant(std::string("QuoteNumber"))}));
  const Variant values(Array::of({Variant(std::string("Q-1"))}));
  const std::vector<business::CostDistrib> split = {{1, 100.0}};

  Variant cd, html;
  int32_t n = 0, m = 0, k = 0, status = 0;
  int16_t steps = 0;
  Currency c1, c2, c3;
  std::string text;
  const Counts before = row_counts(*f.db);

  struct Case {
    const char* operation;
    std::shared_ptr<business::BusinessObject> object;
    std::function<bool()> call;
  };
  const Case cases[] = {
      // One requisition by its id.
      {"Requisition.Load", req, [&] { return req->Load(frank, rid, false, cd); }},
      {"Requisition.Load with a lock", req, [&] { return req->Load(frank, rid, true, cd); }},
      {"Requisition.UpdateReqName", req, [&] { return req->UpdateReqName(frank, rid, "Mine", cd); }},
      {"Requisition.GetReqStatus", req, [&] { return req->GetReqStatus(frank, rid, status, n, cd); }},
      {"Requisition.GetReqTotals", req,
       [&] { return req->GetReqTotals(frank, rid, "EUR", c1, c2, c3, cd); }},
      {"Requisition.LockRequisition", req,
       [&] { req->LockRequisition(frank, rid, cd); return req->Success(); }},
      {"Requisition.IsLockValid", req,
       [&] { req->IsLockValid(frank, rid, cd); return req->Success(); }},
      {"Requisition.SubmitRequisition", req,
       [&] { return req->SubmitRequisition(frank, rid, false, n, cd); }},
      {"Requisition.CopyRequisition", req,
       [&] { return req->CopyRequisition(frank, rid, "Copy", n, m, k, 0, cd); }},
      {"Requisition.CancelRequisition", req, [&] { return req->CancelRequisition(frank, rid, cd); }},
      {"Requisition.DeleteRequisition", req, [&] { return req->DeleteRequisition(frank, rid, cd); }},
      {"Requisition.MarkAsTemplate", req, [&] { return req->MarkAsTemplate(frank, rid, 1, cd); }},
      {"Requisition.GetItems", req, [&] { return req->GetItems(frank, rid, cd) != nullptr; }},
      {"Requisition.GetItem", req, [&] { return req->GetItem(frank, rid, 1, cd) != nullptr; }},
      {"Requisition.UpdateItemQty", req, [&] { return req->UpdateItemQty(frank, rid, 1, 9, cd); }},
      {"Requisition.DeleteItem", req, [&] { return req->DeleteItem(frank, rid, 1, cd); }},
      {"Requisition.CompleteItem", req, [&] { return req->CompleteItem(frank, rid, 1, cd); }},
      {"Requisition.CommitSpecialRequestItem into it", req,
       [&] {
         auto item = req->NewLineItem();
         item->SetReqID(rid);
         item->SetSupplierName("Print shop");
         item->SetOrderQty(Variant(1.0));
         item->SetUOMID("EA");
         item->SetCurrencyCode("USD");
         item->SetPartDesc("Cards");
         return req->CommitSpecialRequestItem(frank, "", cd);
       }},
      // Its route, reviews and approvals.
      {"Workflow.AddAfter", wf, [&] { return wf->AddAfter(frank, rid, 1, f.ids.frank, f.ids.berg, cd); }},
      {"Workflow.AddAfterApprovalChain", wf,
       [&] { return wf->AddAfterApprovalChain(frank, rid, f.ids.frank, f.ids.berg, cd); }},
      {"Workflow.AddReviewer", wf, [&] { return wf->AddReviewer(frank, rid, f.ids.frank, f.ids.berg, cd); }},
      {"Workflow.AddComments", wf, [&] { return wf->AddComments(frank, rid, "Hello", cd); }},
      {"Workflow.Approve", wf, [&] { return wf->Approve(frank, rid, 1, "", cd); }},
      {"Workflow.Reject", wf, [&] { return wf->Reject(frank, rid, 1, "", cd); }},
      {"Workflow.Cancel", wf, [&] { return wf->Cancel(frank, rid, cd); }},
      {"Workflow.BuildApprovalProcess", wf,
       [&] { return wf->BuildApprovalProcess(frank, rid, true, steps, cd); }},
      {"Workflow.GetApprovalCount", wf, [&] { return wf->GetApprovalCount(frank, rid, cd) > 0 || wf->Success(); }},
      {"Workflow.GetApproverSearchResults", wf,
       [&] { return wf->GetApproverSearchResults(frank, rid, "", "", cd) != nullptr; }},
      {"Diagram.BuildDataStructure", diagram,
       [&] { return diagram->BuildDataStructure(frank, rid, "H", 1, html, "Arial", cd); }},
      {"ApprovalReview.GetReviewList", review,
       [&] { return review->GetReviewList(frank, rid, 0, cd) != nullptr; }},
      {"Approval.Load", approval, [&] { return approval->Load(frank, rid, 1, cd); }},
      {"ApprovalItems.Load", approval_items, [&] { return approval_items->Load(frank, rid, 1, cd); }},
      // Its lines' cost split and form values.
      {"ReqCostDistribs.GetCostDistribs", req_costs,
       [&] { return req_costs->GetCostDistribs(frank, rid, 1, cd) != nullptr; }},
      {"ReqCostDistribs.SaveCostDistribs", req_costs,
       [&] { return req_costs->SaveCostDistribs(frank, rid, 1, split, cd); }},
      {"SFormReqItem.GetReqLineValues", forms,
       [&] { return forms->GetReqLineValues(frank, rid, 1, 1, cd) != nullptr; }},
      {"SFormReqItem.SaveReqLineValues", forms,
       [&] { return forms->SaveReqLineValues(frank, rid, 1, 1, names, values, cd); }},
      {"SFormReqItem.GetPOLineValues", forms,
       [&] { return forms->GetPOLineValues(frank, po, 1, 1, cd) != nullptr; }},
      {"SFormReqItem.SavePOLineValues", forms,
       [&] { return forms->SavePOLineValues(frank, po, 1, 1, names, values, cd); }},
      // One order by its id.
      {"PurchaseOrder.LoadPO", order, [&] { return order->LoadPO(frank, po, false, cd); }},
      {"PurchaseOrder.LoadPO with a lock", order, [&] { return order->LoadPO(frank, po, true, cd); }},
      {"PurchaseOrder.GetPOItems", order, [&] { return order->GetPOItems(frank, po, 0, cd) != nullptr; }},
      {"PurchaseOrder.GetPOsByReq", order, [&] { return order->GetPOsByReq(frank, rid, cd) != nullptr; }},
      {"PurchaseOrder.GetPOLog", order, [&] { return order->GetPOLog(frank, po, "", cd) != nullptr; }},
      {"PurchaseOrder.CopyToRequisition", order,
       [&] { return order->CopyToRequisition(frank, po, "Copy", n, m, k, cd); }},
      {"PurchaseOrder.DeletePO", order, [&] { return order->DeletePO(frank, po, cd); }},
      {"PurchaseOrder.DeleteLines", order, [&] { return order->DeleteLines(frank, po_lines, 0, cd); }},
      {"PurchaseOrder.GetStatusRecord", order,
       [&] { return order->GetStatusRecord(frank, po, cd) != nullptr; }},
      {"PurchaseOrder.IsValidLock", order, [&] { return order->IsValidLock(frank, po, cd); }},
      {"PurchaseOrder.SetPOStatus", order, [&] { return order->SetPOStatus(frank, po, 7, cd); }},
      {"POLog.WriteLog", po_log, [&] { return po_log->WriteLog(frank, po, "Note", "x", "", cd); }},
      {"POCostDistribs.GetListCostCenter", po_costs,
       [&] { return po_costs->GetListCostCenter(frank, po, cd) != nullptr; }},
      {"POCostDistribs.GetListCostDistribs", po_costs,
       [&] { return po_costs->GetListCostDistribs(frank, po, 1, cd) != nullptr; }},
      {"POCostDistribs.SaveCostDistribs", po_costs,
       [&] { return po_costs->SaveCostDistribs(frank, po, 1, "1", "100", ";", cd); }},
      // Its receipts.
      {"POReceipt.GetPOItems", rcv,
       [&] { Array a = Array::of({Variant(po)}); return rcv->GetPOItems(frank, a) != nullptr; }},
      {"POReceipt.GetReceiptHdr", rcv,
       [&] { Array a = Array::of({Variant(po)}); return rcv->GetReceiptHdr(frank, a) != nullptr; }},
      {"POReceipt.GetReceiptHdrList", rcv,
       [&] { Array a = Array::of({Variant(po)}); return rcv->GetReceiptHdrList(frank, a) != nullptr; }},
      {"POReceipt.GetReceiptItems", rcv,
       [&] {
         Array a = Array::of({Variant(po), Variant(true)});
         return rcv->GetReceiptItems(frank, a) != nullptr;
       }},
      {"POReceipt.GetReceiptItemList", rcv,
       [&] {
         Array a = Array::of({Variant(int32_t{receipt})});
         return rcv->GetReceiptItemList(frank, a) != nullptr;
       }},
      {"POReceipt.SubmitReceipt", rcv,
       [&] { Array a; return rcv->SubmitReceipt(frank, receipt_hdr, receipt_lines, a) != 0; }},
      // Its reconciliation.
      {"ReconcileItems.Load", recon_items, [&] { return recon_items->Load(frank, po, cd); }},
      {"ReconcileOrder.LoadOrder", recon, [&] { return recon->LoadOrder(frank, po, 0, cd); }},
      {"ReconcileOrder.GetOrderItems", recon,
       [&] { return recon->GetOrderItems(frank, po, 0, cd) != nullptr; }},
      {"ReconcileOrder.AddAlternateItem", recon,
       [&] { return recon->AddAlternateItem(frank, po, 0, po_lines, cd); }},
      {"ReconcileOrder.UpdateQuantities", recon,
       [&] {
         const Variant lines(Array::of({Variant(int32_t{1})})), qty(Array::of({Variant(1.0)})),
             none(Array::of({Variant(0.0)}));
         return recon->UpdateQuantities(frank, po, lines, qty, none, cd);
       }},
      {"ReconcileOrder.SubmitOrder", recon, [&] { return recon->SubmitOrder(frank, po, cd); }},
      {"ReconcileOrder.LoadOrderHeader", recon,
       [&] { return recon->LoadOrderHeader(frank, po, "", cd); }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.operation);
    EXPECT_FALSE(c.call());
    EXPECT_EQ(c.object->GetError()->Number(), error_number(Refusal::kNotAllowed))
        << c.object->GetError()->Description();
    EXPECT_THAT(c.object->GetError()->Description(), ::testing::HasSubstr("another organisation"));
  }
  EXPECT_EQ(row_counts(*f.db), before) << "a refusal writes nothing";
  EXPECT_TRUE(req->Load(alice, rid, false, cd)) << "the owner still opens it";
  EXPECT_TRUE(order->LoadPO(alice, po, false, cd)) << order->GetError()->Description();
}

TEST(Organisations, DocumentsThatDoNotExistAreStillNotFound) {
  Ordered o;
  Fixture& f = *o.f;
  auto frank = f.session(f.ids.frank);
  auto req = make<business::Requisition>(f, progid::Requisition);
  auto order = make<business::PurchaseOrder>(f, progid::PurchaseOrder);
  Variant cd;
  EXPECT_FALSE(req->Load(frank, o.req_id + 100, false, cd));
  EXPECT_EQ(req->GetError()->Number(), error_number(Refusal::kNotFound));
  EXPECT_FALSE(order->LoadPO(frank, o.po_id + 100, false, cd));
  EXPECT_EQ(order->GetError()->Number(), error_number(Refusal::kNotFound));
}

// Lists name other users' documents only within the caller's organisation.
// Naming another user lists only what of theirs is in the caller's organisation.
TEST(Organisations, ListsByUserStayInTheCallersOrganisation) {
  Ordered o;
  Fixture& f = *o.f;
  auto order = make<business::PurchaseOrder>(f, progid::PurchaseOrder);
  auto rcv = make<business::POReceipt>(f, progid::POReceipt);
  auto req = make<business::Requisition>(f, progid::Requisition);
  // One requisition of alice's in Berg besides those in Acme.
  int32_t in_acme = 0;
  f.db->write([&](soci::session& sql) {
    sql << "INSERT INTO requisitions (req_name, status_id, requisitioner_id, borg_id, "
           "currency_code, create_date) VALUES ('In Berg', 1, :u, :b, 'EUR', "
           "'2026-01-02 03:04:05')",
        soci::use(f.ids.alice), soci::use(f.ids.berg);
    sql << "SELECT COUNT(*) FROM requisitions WHERE requisitioner_id = :u AND borg_id = :b",
        soci::use(f.ids.alice), soci::use(f.ids.acme), soci::into(in_acme);
  });
  ASSERT_GT(in_acme, 0);
  Variant cd;
  const Variant alice(std::string("alice")), blank(std::string(""));
  struct Case {
    const char* who;
    int32_t user;
    int32_t orders, requisitions;
  } cases[] = {{"a colleague", f.ids.bob, 1, in_acme}, {"another organisation", f.ids.frank, 0, 1}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.who);
    RecordsetPtr list = order->GetPOList(f.session(c.user), alice, blank, "", blank, blank, cd);
    ASSERT_TRUE(list) << order->GetError()->Description();
    EXPECT_EQ(list->RecordCount(), c.orders);
    Array args = Array::of({blank, blank, blank, alice, blank});
    RecordsetPtr receivable = rcv->GetReceiveList(f.session(c.user), args);
    ASSERT_TRUE(receivable) << rcv->GetError()->Description();
    EXPECT_EQ(receivable->RecordCount(), c.orders);
    for (const char* sort : {"", "ReqID"}) {  // counted from the kept counts, then not
      RecordsetPtr reqs = req->GetRequisitionList(f.session(c.user), "alice", "", sort, "", cd);
      ASSERT_TRUE(reqs) << req->GetError()->Description();
      EXPECT_EQ(reqs->RecordCount(), c.requisitions) << sort;
      for (int32_t i = 1; i <= reqs->RecordCount(); ++i) {
        reqs->SetAbsolutePosition(i);
        EXPECT_EQ(reqs->value(4).to_string(), c.user == f.ids.frank ? "Berg" : "Acme");
      }
    }
  }
  // Her own list keeps both.
  RecordsetPtr own = req->GetRequisitionList(f.session(f.ids.alice), "", "", "", "", cd);
  ASSERT_TRUE(own);
  EXPECT_EQ(own->RecordCount(), in_acme + 1);
}

// Approvers, reviewers and their stand-ins are the requisition's colleagues: they open it,
// and nobody from outside can be made one.
TEST(Organisations, ColleaguesOnTheRouteKeepWorkingAndOutsidersCannotJoinIt) {
  auto f = make_fixture();
  auto alice = f->session(f->ids.alice), bob = f->session(f->ids.bob),
       carol = f->session(f->ids.carol);
  auto req = make<business::Requisition>(*f, progid::Requisition);
  auto wf = make<business::Workflow>(*f, progid::Workflow);
  auto review = make<business::ApprovalReview>(*f, progid::ApprovalReview);
  auto approval = make<business::Approval>(*f, progid::Approval);
  Variant cd;
  int32_t line_req = 0, line = 0, form = 0, orders = 0;
  ASSERT_TRUE(req->AddFavoriteItem(alice, f->ids.ream, 1, line_req, line, form, cd))
      << req->GetError()->Description();
  ASSERT_TRUE(req->SubmitRequisition(alice, line_req, false, orders, cd))
      << req->GetError()->Description();

  struct Refused {
    const char* name;
    std::function<bool()> call;
    Refusal why;
  } refused[] = {
      {"an approver from another organisation",
       [&] { return wf->AddAfter(alice, line_req, 1, f->ids.frank, f->ids.berg, cd); },
       Refusal::kNotAllowed},
      {"an approval chain from another organisation",
       [&] { return wf->AddParallelApprovalChain(alice, line_req, f->ids.frank, f->ids.berg, cd); },
       Refusal::kNotAllowed},
      {"a reviewer from another organisation",
       [&] { return wf->AddReviewer(alice, line_req, f->ids.frank, f->ids.berg, cd); },
       Refusal::kNotAllowed},
      {"an outsider passed off as a colleague",
       [&] { return wf->AddReviewer(alice, line_req, f->ids.frank, f->ids.acme, cd); },
       Refusal::kNotFound},
  };
  for (const Refused& c : refused) {
    SCOPED_TRACE(c.name);
    EXPECT_FALSE(c.call());
    EXPECT_EQ(wf->GetError()->Number(), error_number(c.why)) << wf->GetError()->Description();
  }

  ASSERT_TRUE(wf->AddReviewer(alice, line_req, f->ids.carol, f->ids.acme, cd))
      << wf->GetError()->Description();
  EXPECT_TRUE(req->Load(carol, line_req, false, cd)) << "the reviewer opens it";
  EXPECT_TRUE(review->GetReviewList(carol, line_req, f->ids.carol, cd))
      << review->GetError()->Description();
  EXPECT_TRUE(wf->AddComments(carol, line_req, "Looks fine", cd)) << wf->GetError()->Description();
  EXPECT_TRUE(req->Load(bob, line_req, true, cd)) << "the approver opens it";
  EXPECT_TRUE(approval->Load(bob, line_req, 1, cd)) << approval->GetError()->Description();
  EXPECT_TRUE(wf->Approve(bob, line_req, 1, "", cd)) << wf->GetError()->Description();
}

}  // namespace
}  // namespace kxui::reference::testing
