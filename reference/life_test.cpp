// The life of a requisition through the session hubs of the people who handle it, over a
// fresh database file: log in, find and add items three ways, attach a quote, submit,
// approve through a route with an ad-hoc approver and a delegate, order, reconcile with
// the supplier's answer, receive with a correction, attach the delivery note and report
// on the receipts. Then the rules that hold between real sessions, and a change that
// fails at its last step leaving nothing behind.
#include <gmock/gmock.h>

#include "kxui/session/ui_session.h"
#include "reference/errors.h"
#include "reference/order_fixture.h"
#include "reference/session.h"

namespace kxui::reference {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using testing::column_values;
using testing::Fixture;
using testing::make_fixture;
using testing::type_receipt;

// A user logged in as a page would: a hub, the login check, a session begun for the user.
struct Person {
  std::unique_ptr<UISession> hub;
  SessionPtr s;
};

Person log_in(Fixture& f, const std::string& login) {
  Person p{std::make_unique<UISession>(f.runtime), nullptr};
  int32_t user = 0;
  EXPECT_TRUE(p.hub->Com()->Login(p.hub->Session(), login, login + "-secret", user))
      << p.hub->Com()->Error()->Description();
  auto session = std::dynamic_pointer_cast<RefKxSession>(p.hub->Session());
  EXPECT_TRUE(session);
  session->Begin(1, user);
  p.s = p.hub->Session();
  return p;
}

int32_t count(Database& db, const std::string& query) {
  return db.read([&](soci::session& sql) {
    int n = 0;
    sql << query, soci::into(n);
    return n;
  });
}

// The value of `column` in the row whose `key` column reads `key_value`.
std::string lookup(Recordset& rs, const char* key, const std::string& key_value,
                   const char* column) {
  for (rs.MoveFirst(); !rs.IsEOF(); rs.MoveNext()) {
    if (rs[key].Value().to_string() == key_value) return rs[column].Value().to_string();
  }
  return "<none>";
}

Variant list(std::vector<Variant> values) { return Variant(Array::of(std::move(values))); }


// Alice's requisition with the pen, twenty boxes of paper and the business cards,
// submitted and routed Bob -> Dave (ad hoc) -> Carol; its identifier.
int32_t submitted_requisition(Fixture& f, Person& alice) {
  UIReq& req = *alice.hub->Req();
  Variant rid(int32_t{0}), line, form;
  EXPECT_TRUE(req.AddItemFastAdd(alice.s, rid, f.ids.supplier, "P-100", "", "3", "EA", line, form))
      << req.Error()->Description();
  EXPECT_TRUE(req.AddItemFavorite(alice.s, rid, f.ids.ream, "20", line, form))
      << req.Error()->Description();
  EXPECT_TRUE(req.AddItemSpecialRequest(alice.s, rid, 0, "Local Print Shop", "BC-1", "", "2",
                                        "EA", 0, "", f.ids.paper, "Cards",
                                        Variant(std::string("5")), "USD", "Business cards",
                                        line, form))
      << req.Error()->Description();
  int32_t pos = 0;
  EXPECT_TRUE(req.SubmitReq(alice.s, rid.to_int32(), false, pos)) << req.Error()->Description();
  EXPECT_TRUE(alice.hub->WF()->AddAfter(alice.s, rid.to_int32(), 1, f.ids.dave, f.ids.acme))
      << alice.hub->WF()->Error()->Description();
  return rid.to_int32();
}

TEST(Life, ARequisitionFromCatalogToReceiptsReport) {
  auto f = make_fixture();
  const testing::Ids& id = f->ids;
  Person alice = log_in(*f, "alice"), bob = log_in(*f, "bob"), carol = log_in(*f, "carol"),
         dave = log_in(*f, "dave"), erin = log_in(*f, "erin");
  {
    UISession stranger(f->runtime);
    int32_t user = -1;
    EXPECT_FALSE(stranger.Com()->Login(stranger.Session(), "alice", "guess", user));
    EXPECT_EQ(user, -1) << "a refused login sets nobody";
  }
  UIReq& req = *alice.hub->Req();

  // Three ways in: a part found in the catalog by keyword, a favourite, a special request.
  RecordsetPtr found = alice.hub->Cat()->ListParts(alice.s, "ballpoint", false, 0, "", "", "",
                                                   0, "", 0, false, "", "", "", "en", "", 0);
  ASSERT_TRUE(found) << alice.hub->Cat()->Error()->Description();
  ASSERT_EQ(found->RecordCount(), 1);
  found->MoveFirst();
  const int32_t found_supplier = (*found)["SupplierID"].Value().to_int32();
  const std::string found_part = (*found)["SupplierPartNum"].Value().to_string();
  Variant rid_v(int32_t{0}), line, form;
  ASSERT_TRUE(req.AddItemFastAdd(alice.s, rid_v, found_supplier, found_part, "", "3", "EA", line,
                                 form))
      << req.Error()->Description();
  const int32_t rid = rid_v.to_int32();
  RecordsetPtr favourites = req.GetFavoritesListPage(alice.s, 0);
  ASSERT_TRUE(favourites) << req.Error()->Description();
  EXPECT_EQ(column_values(*favourites, "Description"), (std::vector<std::string>{"Copy paper, 5 reams"}));
  favourites->MoveFirst();
  ASSERT_TRUE(req.AddItemFavorite(alice.s, rid_v, (*favourites)["PartBaseID"].Value().to_int32(),
                                  "20", line, form))
      << req.Error()->Description();
  ASSERT_TRUE(req.AddItemSpecialRequest(alice.s, rid_v, 0, "Local Print Shop", "BC-1", "", "2",
                                        "EA", 0, "", id.paper, "Cards", Variant(std::string("5")),
                                        "USD", "Business cards", line, form))
      << req.Error()->Description();
  EXPECT_EQ(line, Variant(int32_t{3}));
  Variant sub, tax, total;
  ASSERT_TRUE(req.GetReqTotals(alice.s, rid, sub, tax, total)) << req.Error()->Description();
  EXPECT_EQ(total.to_string(), "$2,219.25") << "2,017.50 and 10% tax";

  // The printer's quote goes with the special-request line, every byte of it.
  UIAttach& attach = *alice.hub->Attach();
  const std::string quote("%PDF-1.4\0\xff quote 77", 17);
  Variant attachment;
  ASSERT_TRUE(attach.AddAttachment(alice.s, 2, rid, 3, "quote.pdf", quote, attachment))
      << attach.Error()->Description();

  // Submitted: over Bob's limit, so Bob then Carol; Dave is added after Bob.
  int32_t pos = 0;
  ASSERT_TRUE(req.SubmitReq(alice.s, rid, false, pos)) << req.Error()->Description();
  UIWF& wf = *alice.hub->WF();
  ASSERT_TRUE(wf.AddAfter(alice.s, rid, 1, id.dave, id.acme)) << wf.Error()->Description();
  EXPECT_EQ(wf.GetApprovalCount(alice.s, rid), 3);
  EXPECT_FALSE(req.UpdateReqName(alice.s, rid, "Renamed"));
  EXPECT_EQ(req.Error()->Number(), error_number(Refusal::kNotEditable));

  // Bob is away: Erin acts for him; Dave and Carol approve their own steps.
  ASSERT_TRUE(bob.hub->WF()->SaveBorgDelegationData(bob.s, id.acme, id.bob, id.erin,
                                                    Date::from_civil(2026, 3, 1),
                                                    Date::from_civil(2026, 3, 9), true))
      << bob.hub->WF()->Error()->Description();
  RecordsetPtr waiting = erin.hub->WF()->GetApproverListPage(erin.s, "", 0);
  ASSERT_TRUE(waiting) << erin.hub->WF()->Error()->Description();
  EXPECT_EQ(column_values(*waiting, "ReqID"), std::vector<std::string>{std::to_string(rid)});
  f->advance_minutes(60);
  ASSERT_TRUE(erin.hub->WF()->Approve(erin.s, rid, 1, "For Bob")) << erin.hub->WF()->Error()->Description();
  ASSERT_TRUE(dave.hub->WF()->Approve(dave.s, rid, 3, "")) << dave.hub->WF()->Error()->Description();
  ASSERT_TRUE(carol.hub->WF()->Approve(carol.s, rid, 2, "Go")) << carol.hub->WF()->Error()->Description();
  EXPECT_FALSE(carol.hub->WF()->Approve(carol.s, rid, 2, ""));
  EXPECT_THAT(carol.hub->WF()->Error()->Description(), HasSubstr("cannot be approved again"));

  // Ordered: one order per supplier, both open.
  UIPO& po = *alice.hub->PO();
  RecordsetPtr orders = po.GetPOsByRequisition(alice.s, rid);
  ASSERT_TRUE(orders) << po.Error()->Description();
  EXPECT_EQ(orders->RecordCount(), 2);
  const int32_t po_id = std::stoi(lookup(*orders, "SupplierName", "Office Supplies Inc", "POID"));
  RecordsetPtr open = po.GetPOListPage(alice.s, "POID", "1", "", "", "", 0);
  ASSERT_TRUE(open) << po.Error()->Description();
  EXPECT_EQ(open->GetFields()["UIDisplay_TotalRecords"].Value(), Variant(int32_t{2}));
  Variant read_only;
  ASSERT_TRUE(po.POIsReadOnly(alice.s, po_id, read_only)) << po.Error()->Description();
  EXPECT_EQ(read_only, Variant(false)) << "Alice holds the order's lock";

  // The supplier answers lower prices and some stock; 15 boxes come now, 5 later.
  f->db->write([&](soci::session& sql) {
    sql << "INSERT INTO sim_part_answers (supplier_id, supplier_part_num, unit_price, "
           "available_qty) VALUES (:s, 'P-100', 22000, 10), (:s2, 'P-200', 950000, 15)",
        soci::use(id.supplier), soci::use(id.supplier);
  });
  std::string doc_type = "PO";
  int32_t doc_id = po_id;
  ASSERT_TRUE(alice.hub->Tools()->QuickCheck(alice.s, doc_type, doc_id))
      << alice.hub->Tools()->Error()->Description();
  UIReconPO& recon = *alice.hub->ReconPO();
  RecordsetPtr recon_items = recon.GetItemsRs(alice.s, po_id);
  ASSERT_TRUE(recon_items) << recon.Error()->Description();
  EXPECT_EQ(column_values(*recon_items, "UIDisplay_UnitPrice"),
            (std::vector<std::string>{"$2.20", "$95.00"}));
  EXPECT_EQ(column_values(*recon_items, "POBackOrderQty"), (std::vector<std::string>{"3", "20"}));
  ASSERT_TRUE(recon.UpdateItemsQtys(alice.s, po_id, list({Variant(1), Variant(2)}),
                                    list({Variant(3.0), Variant(15.0)}),
                                    list({Variant(0.0), Variant(5.0)})))
      << recon.Error()->Description();
  RecordsetPtr recon_header = recon.GetRecPOHeader(alice.s, po_id);
  ASSERT_TRUE(recon_header) << recon.Error()->Description();
  EXPECT_EQ((*recon_header)["TotalAmtDue"].Value(), Variant("$2,097.26"))
      << "3 x 2.20 + 20 x 95.00 and 10% tax";
  ASSERT_TRUE(recon.SubmitRecPO(alice.s, po_id)) << recon.Error()->Description();
  EXPECT_FALSE(recon.SubmitRecPO(alice.s, po_id)) << "a sent order is reconciled no more";

  // Received: all pens and fifteen boxes; then two boxes turn out crushed.
  UIRcv& rcv = *alice.hub->Rcv();
  f->advance_minutes(24 * 60);
  RecordsetPtr header = rcv.GetReceiptHdr(alice.s, po_id);
  RecordsetPtr lines = rcv.GetReceiptItems(alice.s, po_id, false);
  ASSERT_TRUE(header && lines) << rcv.Error()->Description();
  type_receipt(*header, *lines, "2", {{"3", "3"}, {"15", "15"}});
  const int32_t first = rcv.SubmitReceipt(alice.s, header, lines);
  ASSERT_GT(first, 0) << rcv.Error()->Description();
  f->advance_minutes(60);
  RecordsetPtr header2 = rcv.GetReceiptHdr(alice.s, po_id);
  RecordsetPtr lines2 = rcv.GetReceiptItems(alice.s, po_id, false);
  ASSERT_TRUE(header2 && lines2) << rcv.Error()->Description();
  type_receipt(*header2, *lines2, "0", {{"0", "0"}, {"-2", "0"}}, {"", "Two boxes crushed"});
  const int32_t correction = rcv.SubmitReceipt(alice.s, header2, lines2);
  ASSERT_GT(correction, first) << rcv.Error()->Description();
  RecordsetPtr received = rcv.GetPOItemsRs(alice.s, po_id);
  ASSERT_TRUE(received) << rcv.Error()->Description();
  EXPECT_EQ(column_values(*received, "ReceivedToDateQty"), (std::vector<std::string>{"3", "13"}));
  Variant number, borg, supplier, status;
  ASSERT_TRUE(po.GetPOHeaderInfo(alice.s, po_id, number, borg, supplier, status));
  EXPECT_EQ(status, Variant("Partly received"));
  recon_items = recon.GetItemsRs(alice.s, po_id);
  ASSERT_TRUE(recon_items) << recon.Error()->Description();
  EXPECT_EQ(column_values(*recon_items, "POBackOrderQty"), (std::vector<std::string>{"0", "7"}))
      << "what the order still awaits";

  // The delivery note goes with the order; the quote is still with its line.
  ASSERT_TRUE(attach.AddAttachment(alice.s, 3, po_id, 0, "delivery-note.txt", "2 crushed",
                                   attachment))
      << attach.Error()->Description();
  RecordsetPtr files = attach.GetAttachmentListRs(alice.s, 3, po_id, 0);
  ASSERT_TRUE(files) << attach.Error()->Description();
  EXPECT_EQ(column_values(*files, "FileName"), std::vector<std::string>{"delivery-note.txt"});
  RecordsetPtr quotes = attach.GetAttachmentListRs(alice.s, 2, rid, 3);
  ASSERT_TRUE(quotes) << attach.Error()->Description();
  quotes->MoveFirst();
  Variant file_name, content;
  ASSERT_TRUE(attach.GetAttachment(alice.s, 2, rid, 3, (*quotes)["AttachmentID"].Value().to_int32(),
                                   file_name, content))
      << attach.Error()->Description();
  EXPECT_EQ(content.to_string(), quote);

  // The receipts report shows both receipts as they were typed.
  UIReport& reports = *alice.hub->Report();
  Variant report_name, report_file;
  ASSERT_TRUE(reports.GenerateReport(alice.s, 4, Variant(), "csv", report_name, report_file))
      << reports.Error()->Description();
  const std::string p = std::to_string(po_id);
  EXPECT_EQ(report_file.to_string(),
            "ReceiptID,POID,LineNum,Description,ReceiveDate,ReceivedBy,OrderedQty,ReceivedQty,"
            "PackingSlipQty,Comments\r\n" +
                std::to_string(first) + "," + p + ",1,Blue ballpoint pen,2026-03-03 10:00:00,"
                "Alice Asker,3,3,3,\r\n" +
                std::to_string(first) + "," + p + ",2,\"Copy paper, 5 reams\",2026-03-03 "
                "10:00:00,Alice Asker,20,15,15,\r\n" +
                std::to_string(correction) + "," + p + ",2,\"Copy paper, 5 reams\",2026-03-03 "
                "11:00:00,Alice Asker,20,-2,0,Two boxes crushed\r\n");
  EXPECT_EQ(report_name, Variant("Receipts.csv"));

  // The requisition's log tells the story, the delegate's approval naming Bob.
  Variant name, requisitioner, created, cost, justification, currency;
  RecordsetPtr log = req.GetLogRequisition(alice.s, rid, name, requisitioner, created, cost,
                                           justification, currency);
  ASSERT_TRUE(log) << req.Error()->Description();
  EXPECT_THAT(column_values(*log, "Action"),
              ElementsAre("Created", "Item added", "Favourite added", "Special request added",
                          "Submitted", "Approver added", "Approved step", "Approved step",
                          "Approved step", "Approved"));
  EXPECT_THAT(column_values(*log, "Comments")[6], HasSubstr("for Bob Boss"));
}

// Two sessions of one user are two lock holders: what one edits the other may only read,
// until the first lets go.
TEST(Life, TwoSessionsOfOneUserContendForItsLocks) {
  auto f = make_fixture();
  Person here = log_in(*f, "alice"), there = log_in(*f, "alice");
  ASSERT_NE(std::dynamic_pointer_cast<RefKxSession>(here.s)->Token(),
            std::dynamic_pointer_cast<RefKxSession>(there.s)->Token());
  UIReq& req_here = *here.hub->Req();
  UIReq& req_there = *there.hub->Req();
  Variant rid_v(int32_t{0}), line, form;
  ASSERT_TRUE(req_here.AddItemFastAdd(here.s, rid_v, f->ids.supplier, "P-100", "", "1", "EA",
                                      line, form))
      << req_here.Error()->Description();
  const int32_t rid = rid_v.to_int32();

  ASSERT_TRUE(req_here.ReqLock(here.s, rid)) << req_here.Error()->Description();
  EXPECT_FALSE(req_there.ReqLock(there.s, rid));
  EXPECT_EQ(req_there.Error()->Number(), error_number(Refusal::kLocked));
  EXPECT_THAT(req_there.Error()->Description(), HasSubstr("is being edited by Alice Asker"));
  EXPECT_FALSE(req_there.SetHeaderJustification(there.s, rid, "theirs"));
  EXPECT_TRUE(req_here.SetHeaderJustification(here.s, rid, "mine"))
      << req_here.Error()->Description();

  // The hub releases its own session's locks, and only those.
  ASSERT_TRUE(there.hub->ReleaseReqPOLock(there.s)) << there.hub->Error()->Description();
  EXPECT_TRUE(req_here.IsValidLock(here.s, rid));
  ASSERT_TRUE(here.hub->ReleaseReqPOLock(here.s)) << here.hub->Error()->Description();
  EXPECT_TRUE(req_there.ReqLock(there.s, rid)) << req_there.Error()->Description();

  // The same holds for orders: the second session opens the order read-only.
  Person bob = log_in(*f, "bob");
  int32_t pos = 0;
  ASSERT_TRUE(req_there.SubmitReq(there.s, rid, false, pos)) << req_there.Error()->Description();
  ASSERT_TRUE(bob.hub->WF()->Approve(bob.s, rid, 1, "")) << bob.hub->WF()->Error()->Description();
  RecordsetPtr orders = here.hub->PO()->GetPOsByRequisition(here.s, rid);
  ASSERT_TRUE(orders && orders->RecordCount() == 1) << here.hub->PO()->Error()->Description();
  orders->MoveFirst();
  const int32_t po_id = (*orders)["POID"].Value().to_int32();
  Variant read_only;
  ASSERT_TRUE(here.hub->PO()->POIsReadOnly(here.s, po_id, read_only));
  EXPECT_EQ(read_only, Variant(false));
  ASSERT_TRUE(there.hub->PO()->POIsReadOnly(there.s, po_id, read_only));
  EXPECT_EQ(read_only, Variant(true)) << "the other session holds the order";
  EXPECT_FALSE(there.hub->PO()->IsValidLock(there.s, po_id));
}

// The last approval writes the route, the status, the orders and the log in one change:
// when the orders cannot be written, none of it is kept and the approval can be given
// again once the fault is gone.
TEST(Life, AnApprovalThatCannotOrderKeepsNothing) {
  auto f = make_fixture();
  Person alice = log_in(*f, "alice"), bob = log_in(*f, "bob"), carol = log_in(*f, "carol"),
         dave = log_in(*f, "dave");
  const int32_t rid = submitted_requisition(*f, alice);
  ASSERT_TRUE(bob.hub->WF()->Approve(bob.s, rid, 1, "")) << bob.hub->WF()->Error()->Description();
  ASSERT_TRUE(dave.hub->WF()->Approve(dave.s, rid, 3, "")) << dave.hub->WF()->Error()->Description();
  // A fault in the store: order lines for the print shop are refused.
  const bool postgres = f->db->backend() == Backend::kPostgres;
  f->db->write([postgres](soci::session& sql) {
    if (postgres) {
      sql << "CREATE FUNCTION refuse_cards() RETURNS trigger AS $$ BEGIN "
             "IF NEW.description = 'Business cards' THEN RAISE EXCEPTION 'refused by the test' "
             "USING ERRCODE = 'check_violation'; END IF; RETURN NEW; END $$ LANGUAGE plpgsql";
      sql << "CREATE TRIGGER refuse_cards BEFORE INSERT ON po_lines FOR EACH ROW "
             "EXECUTE FUNCTION refuse_cards()";
    } else {
      sql << "CREATE TRIGGER refuse_cards BEFORE INSERT ON po_lines WHEN NEW.description = "
             "'Business cards' BEGIN SELECT RAISE(ABORT, 'refused by the test'); END";
    }
  });
  const auto snapshot = [&] {
    return std::vector<int32_t>{
        count(*f->db, "SELECT COUNT(*) FROM purchase_orders"),
        count(*f->db, "SELECT COUNT(*) FROM po_lines"),
        count(*f->db, "SELECT COUNT(*) FROM req_log"),
        count(*f->db, "SELECT COUNT(*) FROM approval_steps WHERE status_id = 3"),
        count(*f->db, "SELECT status_id FROM requisitions WHERE req_id = " + std::to_string(rid))};
  };
  const std::vector<int32_t> before = snapshot();
  EXPECT_EQ(before[0], 0);
  EXPECT_EQ(before[4], 2) << "submitted";
  UIWF& wf = *carol.hub->WF();
  EXPECT_FALSE(wf.Approve(carol.s, rid, 2, "Go"));
  EXPECT_EQ(wf.Error()->Number(), error_number(Refusal::kConstraint));
  EXPECT_EQ(snapshot(), before);

  f->db->write([postgres](soci::session& sql) {
    sql << (postgres ? "DROP TRIGGER refuse_cards ON po_lines" : "DROP TRIGGER refuse_cards");
  });
  ASSERT_TRUE(wf.Approve(carol.s, rid, 2, "Go")) << wf.Error()->Description();
  const std::vector<int32_t> after = snapshot();
  EXPECT_EQ(after[0], 2);
  EXPECT_EQ(after[4], 5) << "approved";
}

}  // namespace
}  // namespace kxui::reference
