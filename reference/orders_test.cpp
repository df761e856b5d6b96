// Orders through the façades over a fresh database file: an approved requisition's order
// listed and shown with its lines, its lock, status and log; line and order deletion
// refused or done in one piece; copying back into a requisition.
#include <gmock/gmock.h>

#include "kxui/business/progids.h"
#include "kxui/business/purchase_order.h"
#include "kxui/po/ui_po.h"
#include "kxui/requisition/ui_req.h"
#include "kxui/workflow/ui_wf.h"
#include "reference/errors.h"
#include "reference/purchase_order.h"
#include "reference/order_fixture.h"

namespace kxui::reference {
namespace {

using ::testing::HasSubstr;
using testing::column_values;
using testing::count_lines;
using testing::Ordered;

TEST(Orders, AnApprovedRequisitionsOrderIsListedAndShownWithItsLines) {
  Ordered o;
  ASSERT_GT(o.po_id, 0);
  auto alice = o.f->session(o.f->ids.alice);
  UIPO ui(o.f->runtime);

  RecordsetPtr by_req = ui.GetPOsByRequisition(alice, o.req_id);
  ASSERT_TRUE(by_req) << ui.Error()->Description();
  EXPECT_EQ(column_values(*by_req, "POID"), std::vector<std::string>{std::to_string(o.po_id)});
  // 207.50 and 10% tax.
  EXPECT_EQ(column_values(*by_req, "UIDisplay_TotalAmtDue"), std::vector<std::string>{"$228.25"});
  EXPECT_EQ(column_values(*by_req, "UIDisplay_CreateDate"), std::vector<std::string>{"3/2/2026"});

  o.f->db->write([&](soci::session& sql) {
    sql << "UPDATE parts SET lead_days = 5 WHERE part_id = :p", soci::use(o.f->ids.ream);
  });
  RecordsetPtr lines = ui.GetItemsRs(alice, o.po_id);
  ASSERT_TRUE(lines) << ui.Error()->Description();
  EXPECT_EQ(column_values(*lines, "LineNum"), (std::vector<std::string>{"1", "2"}));
  EXPECT_EQ(column_values(*lines, "UIDisplay_UnitPrice"),
            (std::vector<std::string>{"$2.50", "$100.00"}));
  EXPECT_EQ(column_values(*lines, "UIDisplay_SalesTaxAmt"),
            (std::vector<std::string>{"$0.75", "$20.00"}));
  EXPECT_EQ(column_values(*lines, "UIDisplay_ActualPrice"),
            (std::vector<std::string>{"$7.50", "$200.00"}));
  EXPECT_EQ(column_values(*lines, "UIDisplay_DeliverByDate"),
            (std::vector<std::string>{"3/2/2026", "3/7/2026"}));
  RecordsetPtr second = ui.GetItemsRs(alice, o.po_id, 2);
  ASSERT_TRUE(second);
  EXPECT_EQ(column_values(*second, "ShortDesc"), std::vector<std::string>{"Copy paper, 5 reams"});

  Variant num, borg, supplier, status;
  ASSERT_TRUE(ui.GetPOHeaderInfo(alice, o.po_id, num, borg, supplier, status))
      << ui.Error()->Description();
  EXPECT_EQ(num, Variant("PO-" + std::to_string(o.po_id)));
  EXPECT_EQ(borg, Variant("Acme"));
  EXPECT_EQ(supplier, Variant("Office Supplies Inc"));
  EXPECT_EQ(status, Variant("Open"));

  EXPECT_EQ(column_values(*lines, "PartID"),
            (std::vector<std::string>{std::to_string(o.f->ids.pen), std::to_string(o.f->ids.ream)}));
  auto po = create_as<business::PurchaseOrder>(*o.f->runtime, progid::PurchaseOrder);
  Variant cd;
  EXPECT_FALSE(po->LoadPO(alice, o.po_id + 100, false, cd));
  EXPECT_EQ(po->GetError()->Source(), "PurchaseOrder::LoadPO");
  EXPECT_EQ(po->GetError()->Number(), error_number(Refusal::kNotFound));
  EXPECT_FALSE(ui.GetItemsRs(alice, o.po_id + 100));
  EXPECT_EQ(ui.Error()->Number(), error_number(Refusal::kNotFound));
}

// The list: whose orders, which statuses and numbers, and refused sort keys.
TEST(Orders, TheListFiltersByUserStatusAndNumber) {
  Ordered o;
  auto alice = o.f->session(o.f->ids.alice);
  UIPO ui(o.f->runtime);
  const std::string mine = std::to_string(o.po_id);
  struct Case {
    const char *status_list, *po_number, *user;
    std::vector<std::string> ids;
    const char* sort = "CreateDate DESC";
  };
  const std::string number = "po-" + mine;
  const Case cases[] = {
      {"", "", "", {mine}},
      {"1", "", "", {mine}},
      {"2,3", "", "", {}},
      {"3,1", "", "", {mine}},
      {"11", "", "", {}},
      {"-1, 7", "", "", {}},
      {"", number.c_str(), "", {mine}},
      {"", "PO-999", "", {}},
      {"", "", "bob", {}},
      {"", "", "ALICE", {mine}},
      {" 1 , 2", "", "", {mine}, "ReqID DESC"},
      {"", "", "", {mine}, "postatusid"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.status_list) + "|" + c.po_number + "|" + c.user);
    RecordsetPtr page = ui.GetPOListPage(alice, c.sort, c.status_list, c.po_number,
                                         c.user, "", 0);
    ASSERT_TRUE(page) << ui.Error()->Description();
    EXPECT_EQ(column_values(*page, "POID"), c.ids);
  }
  EXPECT_FALSE(ui.GetPOListPage(alice, "po_id; DROP TABLE po_lines", "", "", "", "", 0));
  EXPECT_THAT(ui.Error()->Description(), HasSubstr("cannot be sorted"));
  EXPECT_FALSE(ui.GetPOListPage(alice, "", "1,x", "", "", "", 0));
  EXPECT_THAT(ui.Error()->Description(), HasSubstr("\"x\""));
}

TEST(Orders, TheLockDecidesWhoEditsUntilItExpires) {
  Ordered o;
  auto alice = o.f->session(o.f->ids.alice), bob = o.f->session(o.f->ids.bob);
  UIPO ui(o.f->runtime);
  Variant read_only, editable;
  ASSERT_TRUE(ui.POIsReadOnly(alice, o.po_id, read_only)) << ui.Error()->Description();
  EXPECT_EQ(read_only, Variant(false));
  ASSERT_TRUE(ui.POIsReadOnly(bob, o.po_id, read_only)) << ui.Error()->Description();
  EXPECT_EQ(read_only, Variant(true)) << "a locked order opens read-only for the other session";
  EXPECT_TRUE(ui.IsValidLock(alice, o.po_id));
  EXPECT_FALSE(ui.IsValidLock(bob, o.po_id));
  EXPECT_EQ(ui.Error()->Number(), error_number(Refusal::kLockNotHeld));
  ASSERT_TRUE(ui.GetPOStatus(alice, o.po_id, editable));
  EXPECT_EQ(editable, Variant(true));
  ASSERT_TRUE(ui.GetPOStatus(bob, o.po_id, editable));
  EXPECT_EQ(editable, Variant(false));
  EXPECT_FALSE(ui.DeleteItem(bob, o.po_id, 1));
  EXPECT_EQ(ui.Error()->Number(), error_number(Refusal::kLocked));
  EXPECT_EQ(count_lines(*o.f->db, o.po_id), 2);

  o.f->advance_minutes(31);
  EXPECT_FALSE(ui.IsValidLock(alice, o.po_id));
  ASSERT_TRUE(ui.POIsReadOnly(bob, o.po_id, read_only));
  EXPECT_EQ(read_only, Variant(false)) << "an expired lock is taken over";
  ASSERT_TRUE(ui.Reset(bob));
  EXPECT_FALSE(ui.IsValidLock(bob, o.po_id));
}

TEST(Orders, DeletingLinesIsLoggedAndAllOrNothing) {
  Ordered o;
  auto alice = o.f->session(o.f->ids.alice);
  UIPO ui(o.f->runtime);
  // One good line and one that does not exist: nothing is deleted.
  auto items = create_as<business::POItems>(*o.f->runtime, progid::POItems);
  for (int32_t line : {1, 9}) {
    auto item = create_as<business::POItem>(*o.f->runtime, progid::POItem);
    item->SetPOID(o.po_id);
    item->SetLineNum(line);
    items->Add(item);
  }
  auto po = create_as<business::PurchaseOrder>(*o.f->runtime, progid::PurchaseOrder);
  Variant cd;
  EXPECT_FALSE(po->DeleteLines(alice, items, 0, cd));
  EXPECT_THAT(po->GetError()->Description(), HasSubstr("has no line 9"));
  EXPECT_EQ(count_lines(*o.f->db, o.po_id), 2);

  ASSERT_TRUE(ui.DeleteItem(alice, o.po_id, 2)) << ui.Error()->Description();
  EXPECT_EQ(count_lines(*o.f->db, o.po_id), 1);
  Variant name, submitter, created, cost, justification, currency;
  RecordsetPtr log = ui.GetLogPurchaseOrder(alice, o.po_id, name, submitter, created, cost,
                                            justification, currency);
  ASSERT_TRUE(log) << ui.Error()->Description();
  EXPECT_EQ(column_values(*log, "Description"), std::vector<std::string>{"Line 2 deleted"});
  EXPECT_EQ(column_values(*log, "UIDisplay_DateLogged"), std::vector<std::string>{"3/2/2026"});
  EXPECT_EQ(submitter, Variant("Alice Asker"));
  EXPECT_EQ(cost, Variant("$8.25"));
  EXPECT_EQ(currency, Variant("USD"));

  Variant new_req, total, copied;
  ASSERT_TRUE(ui.CopyPO(alice, o.po_id, "Pens again", new_req, total, copied))
      << ui.Error()->Description();
  EXPECT_NE(new_req.to_int32(), o.req_id);
  EXPECT_EQ(total, Variant(int32_t{1}));
  EXPECT_EQ(copied, Variant(int32_t{1}));
  UIReq req(o.f->runtime);
  Variant status, count, can_edit;
  ASSERT_TRUE(req.GetReqStatus(alice, new_req.to_int32(), status, count, can_edit));
  EXPECT_EQ(status, Variant(int32_t{1}));
  EXPECT_EQ(count, Variant(int32_t{1}));
  EXPECT_FALSE(ui.CopyPO(alice, o.po_id, "  ", new_req, total, copied));

  EXPECT_FALSE(ui.DeletePO(o.f->session(o.f->ids.bob), o.po_id)) << "only the requisitioner";
  ASSERT_TRUE(ui.DeletePO(alice, o.po_id)) << ui.Error()->Description();
  EXPECT_EQ(count_lines(*o.f->db, o.po_id), 0);
  EXPECT_FALSE(ui.GetPOStatus(alice, o.po_id, can_edit));
  EXPECT_EQ(ui.Error()->Number(), error_number(Refusal::kNotFound));
}

// A line's cost split over the organisation's cost centres: lists checked as a whole,
// a refused split keeps the stored one.
TEST(Orders, CostSplitsAddUpToAHundredPercent) {
  Ordered o;
  auto alice = o.f->session(o.f->ids.alice);
  int32_t ops = 0, it = 0, other = 0;
  o.f->db->write([&](soci::session& sql) {
    sql << "INSERT INTO cost_centers (borg_id, code, name) VALUES (:b, 'C1', 'Operations') "
           "RETURNING cost_center_id", soci::use(o.f->ids.acme), soci::into(ops);
    sql << "INSERT INTO cost_centers (borg_id, code, name) VALUES (:b, 'C2', 'IT') "
           "RETURNING cost_center_id", soci::use(o.f->ids.acme), soci::into(it);
    sql << "INSERT INTO cost_centers (borg_id, code, name) VALUES (:b, 'C9', 'Elsewhere') "
           "RETURNING cost_center_id", soci::use(o.f->ids.berg), soci::into(other);
  });
  UIPO ui(o.f->runtime);
  RecordsetPtr centers = ui.GetListCostCenter(alice, o.po_id);
  ASSERT_TRUE(centers);
  EXPECT_EQ(column_values(*centers, "CostCenterName"), (std::vector<std::string>{"Operations", "IT"}));

  const std::string a = std::to_string(ops), b = std::to_string(it), c = std::to_string(other);
  ASSERT_TRUE(ui.SaveCostDistribs(alice, o.po_id, 1, a + ";" + b, "60;40"))
      << ui.Error()->Description();
  struct Case {
    std::string ids, percents, delimiter;
    const char* why;
  };
  const Case refused[] = {
      {a + ";" + b, "60;30", ";", "add up to"},
      {a + ";" + b, "100", ";", "one percentage"},
      {a + ";" + c, "50;50", ";", "not one of the order's organisation"},
      {a + ";" + b, "60;x", ";", "\"x\" is not a percentage"},
      {a + "|" + b, "150|-50", "|", "above 0"},
  };
  auto distribs = create_as<business::POCostDistribs>(*o.f->runtime, progid::POCostDistribs);
  Variant cd;
  for (const Case& r : refused) {
    SCOPED_TRACE(r.ids + " " + r.percents);
    EXPECT_FALSE(distribs->SaveCostDistribs(alice, o.po_id, 1, r.ids, r.percents, r.delimiter, cd));
    EXPECT_THAT(distribs->GetError()->Description(), HasSubstr(r.why));
  }
  RecordsetPtr split = ui.GetListCostDistribs(alice, o.po_id, 1);
  ASSERT_TRUE(split);
  EXPECT_EQ(column_values(*split, "Percent"), (std::vector<std::string>{"60", "40"}));
  EXPECT_EQ(column_values(*split, "CostCenterName"), (std::vector<std::string>{"Operations", "IT"}));
}

// A supplier's status codes map to order statuses; a status set from outside closes the
// order to changes and is logged.
TEST(Orders, SupplierStatusesMapAndCloseTheOrder) {
  Ordered o;
  auto alice = o.f->session(o.f->ids.alice);
  auto map = create_as<business::POStatus>(*o.f->runtime, progid::POStatus);
  Variant cd;
  const std::pair<const char*, int32_t> codes[] = {
      {"ack", po_status::kAcknowledged}, {"SHIPPED", po_status::kPartlyReceived},
      {"Delivered", po_status::kReceived}, {"CANCELLED", po_status::kCancelled}};
  for (const auto& [code, expected] : codes) {
    SCOPED_TRACE(code);
    int32_t id = 0;
    ASSERT_TRUE(map->MapSupplierStatus(alice, code, id, cd)) << map->GetError()->Description();
    EXPECT_EQ(id, expected);
  }
  int32_t id = -1;
  EXPECT_FALSE(map->MapSupplierStatus(alice, "LOST", id, cd));
  EXPECT_EQ(id, -1);
  EXPECT_EQ(map->GetError()->Source(), "POStatus::MapSupplierStatus");

  auto po = create_as<business::PurchaseOrder>(*o.f->runtime, progid::PurchaseOrder);
  EXPECT_FALSE(po->SetPOStatus(alice, o.po_id, 42, cd));
  ASSERT_TRUE(po->SetPOStatus(alice, o.po_id, po_status::kAcknowledged, cd))
      << po->GetError()->Description();
  UIPO ui(o.f->runtime);
  Variant editable;
  ASSERT_TRUE(ui.GetPOStatus(alice, o.po_id, editable));
  EXPECT_EQ(editable, Variant(false));
  EXPECT_FALSE(ui.DeletePO(alice, o.po_id));
  EXPECT_EQ(ui.Error()->Number(), error_number(Refusal::kWrongStatus));
  EXPECT_EQ(count_lines(*o.f->db, o.po_id), 2);

  auto log = create_as<business::POLog>(*o.f->runtime, progid::POLog);
  ASSERT_TRUE(log->WriteLog(alice, o.po_id, "Error", "Supplier unreachable", "E1", cd));
  EXPECT_FALSE(log->WriteLog(alice, o.po_id + 100, "Error", "x", "", cd));
  RecordsetPtr errors = po->GetPOLog(alice, o.po_id, "Error", cd);
  ASSERT_TRUE(errors);
  EXPECT_EQ(column_values(*errors, "Code"), std::vector<std::string>{"E1"});
  RecordsetPtr all = po->GetPOLog(alice, o.po_id, "", cd);
  ASSERT_TRUE(all);
  EXPECT_EQ(column_values(*all, "Description"),
            (std::vector<std::string>{"Status set to Acknowledged", "Supplier unreachable"}));
}

}  // namespace
}  // namespace kxui::reference
