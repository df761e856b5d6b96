// Reconciling an order with the simulated supplier's answer through UITools and
// UIReconPO over a fresh database file: prices and stock from the supplier, quantities
// changed, totals, submission into the order, and refusals that change nothing.
#include <gmock/gmock.h>

#include "kxui/business/progids.h"
#include "kxui/business/reconcile.h"
#include "kxui/po/ui_po.h"
#include "kxui/po/ui_recon_po.h"
#include "kxui/po/ui_tools.h"
#include "reference/order_fixture.h"

namespace kxui::reference {
namespace {

using testing::column_values;
using testing::Ordered;

void exec(Database& db, const std::string& text) {
  db.write([&](soci::session& sql) { sql << text; });
}

Variant list(std::vector<Variant> values) { return Variant(Array::of(std::move(values))); }

struct Reconciling : Ordered {
  SessionPtr alice = f->session(f->ids.alice);
  // Pens now 2.20 (10 in stock), paper 95.00 (1 in stock).
  void supplier_answers() {
    const std::string s = std::to_string(f->ids.supplier);
    exec(*f->db, "INSERT INTO sim_part_answers (supplier_id, supplier_part_num, unit_price, "
                 "available_qty) VALUES (" + s + ", 'P-100', 22000, 10), (" + s +
                     ", 'P-200', 950000, 1)");
  }
  bool quick_check() {
    UITools tools(f->runtime);
    std::string type = "PO";
    int32_t id = po_id;
    const bool ok = tools.QuickCheck(alice, type, id);
    if (!ok) last_error = tools.Error()->Description();
    return ok;
  }
  std::string last_error;
};

TEST(Reconcile, TheSuppliersAnswerIsReconciledIntoTheOrder) {
  Reconciling r;
  r.supplier_answers();
  ASSERT_TRUE(r.quick_check()) << r.last_error;
  UIReconPO ui(r.f->runtime);
  RecordsetPtr items = ui.GetItemsRs(r.alice, r.po_id);
  ASSERT_TRUE(items) << ui.Error()->Description();
  EXPECT_EQ(column_values(*items, "UIDisplay_UnitPrice"),
            (std::vector<std::string>{"$2.20", "$95.00"}));
  EXPECT_EQ(column_values(*items, "UIDisplay_InStockQty"), (std::vector<std::string>{"10", "1"}));
  EXPECT_EQ(column_values(*items, "UIDisplay_ShippedQty"), (std::vector<std::string>{"3", "2"}));

  // One box of paper now, one later.
  ASSERT_TRUE(ui.UpdateItemsQtys(r.alice, r.po_id, list({Variant(1), Variant(2)}),
                                 list({Variant(3.0), Variant(1.0)}),
                                 list({Variant(0.0), Variant(1.0)})))
      << ui.Error()->Description();
  RecordsetPtr header = ui.GetRecPOHeader(r.alice, r.po_id);
  ASSERT_TRUE(header) << ui.Error()->Description();
  // 3 x 2.20 + 2 x 95.00, and 10% tax.
  EXPECT_EQ((*header)["SubTotal"].Value(), Variant("$196.60"));
  EXPECT_EQ((*header)["TotalTaxAmt"].Value(), Variant("$19.66"));
  EXPECT_EQ((*header)["TotalAmtDue"].Value(), Variant("$216.26"));
  EXPECT_EQ((*header)["Supplier"].Value(), Variant("Office Supplies Inc"));

  // A negative quantity on the second line refuses the whole update.
  EXPECT_FALSE(ui.UpdateItemsQtys(r.alice, r.po_id, list({Variant(1), Variant(2)}),
                                  list({Variant(1.0), Variant(-1.0)}),
                                  list({Variant(0.0), Variant(0.0)})));
  items = ui.GetItemsRs(r.alice, r.po_id);
  ASSERT_TRUE(items);
  EXPECT_EQ(column_values(*items, "ShippedQty"), (std::vector<std::string>{"3", "1"}));

  ASSERT_TRUE(ui.SubmitRecPO(r.alice, r.po_id)) << ui.Error()->Description();
  UIPO po(r.f->runtime);
  RecordsetPtr lines = po.GetItemsRs(r.alice, r.po_id);
  ASSERT_TRUE(lines) << po.Error()->Description();
  EXPECT_EQ(column_values(*lines, "OrderQty"), (std::vector<std::string>{"3", "2"}));
  EXPECT_EQ(column_values(*lines, "UIDisplay_UnitPrice"),
            (std::vector<std::string>{"$2.20", "$95.00"}));
  Variant num, borg, supplier, status;
  ASSERT_TRUE(po.GetPOHeaderInfo(r.alice, r.po_id, num, borg, supplier, status));
  EXPECT_EQ(status, Variant("Sent"));
  // Sent: no longer reconciled.
  EXPECT_FALSE(ui.SubmitRecPO(r.alice, r.po_id));
}

TEST(Reconcile, DeletedLinesLeaveTheOrderAndTheLastOneCannot) {
  Reconciling r;
  UIReconPO ui(r.f->runtime);
  ASSERT_TRUE(ui.DeleteItem(r.alice, r.po_id, 1)) << ui.Error()->Description();
  RecordsetPtr items = ui.GetItemsRs(r.alice, r.po_id);
  ASSERT_TRUE(items);
  EXPECT_EQ(column_values(*items, "LineNum"), std::vector<std::string>{"2"});
  ASSERT_TRUE(ui.DeleteItems(r.alice, r.po_id)) << ui.Error()->Description();
  // The page only learns False; the business object says why.
  EXPECT_FALSE(ui.SubmitRecPO(r.alice, r.po_id));
  auto order = create_as<business::ReconcileOrder>(*r.f->runtime, progid::ReconcileOrder);
  Variant cd;
  EXPECT_FALSE(order->SubmitOrder(r.alice, r.po_id, cd));
  EXPECT_THAT(order->GetError()->Description(), ::testing::HasSubstr("at least one line"));
  EXPECT_EQ(testing::count_lines(*r.f->db, r.po_id), 2) << "the refused submission kept the order";
}

TEST(Reconcile, ASupplierThatDoesNotKnowAPartChangesNoPrice) {
  Reconciling r;
  exec(*r.f->db, "INSERT INTO sim_part_answers (supplier_id, supplier_part_num, unit_price, "
                 "available_qty) VALUES (" + std::to_string(r.f->ids.supplier) +
                     ", 'P-100', 22000, 10)");
  EXPECT_FALSE(r.quick_check());
  UIReconPO ui(r.f->runtime);
  RecordsetPtr items = ui.GetItemsRs(r.alice, r.po_id);
  ASSERT_TRUE(items) << ui.Error()->Description();
  EXPECT_EQ(column_values(*items, "UIDisplay_UnitPrice"),
            (std::vector<std::string>{"$2.50", "$100.00"}));
}

// What is still owed on each line of the order: ordered less received, never below nothing.
TEST(Reconcile, BackOrderedIsWhatTheOrderStillAwaits) {
  Reconciling r;
  UIReconPO ui(r.f->runtime);
  struct Case {
    double pens_received, paper_received;
    std::vector<std::string> back_ordered;
  } cases[] = {
      {0, 0, {"3", "2"}},
      {1, 2, {"2", "0"}},
      {3, 0.5, {"0", "1.5"}},
      {5, 2, {"0", "0"}},  // more came than was ordered: nothing is owed
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::to_string(c.pens_received) + "/" + std::to_string(c.paper_received));
    r.f->db->write([&](soci::session& sql) {
      sql << "UPDATE po_lines SET received_qty = :q WHERE po_id = :p AND line_num = 1",
          soci::use(c.pens_received), soci::use(r.po_id);
      sql << "UPDATE po_lines SET received_qty = :q WHERE po_id = :p AND line_num = 2",
          soci::use(c.paper_received), soci::use(r.po_id);
    });
    RecordsetPtr items = ui.GetItemsRs(r.alice, r.po_id);
    ASSERT_TRUE(items) << ui.Error()->Description();
    EXPECT_EQ(column_values(*items, "POBackOrderQty"), c.back_ordered);
    EXPECT_EQ(column_values(*items, "POOrderQty"), (std::vector<std::string>{"3", "2"}));
  }
}

}  // namespace
}  // namespace kxui::reference
