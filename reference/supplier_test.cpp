// The simulated supplier through UITools over a fresh database file: a quick check of a
// requisition's prices (answered, converted, and refused lines), and order statuses
// answered, unknown or during an outage.
#include <gmock/gmock.h>

#include "kxui/po/ui_po.h"
#include "kxui/po/ui_tools.h"
#include "reference/order_fixture.h"

namespace kxui::reference {
namespace {

using testing::column_values;
using testing::Ordered;

void exec(Database& db, const std::string& text) {
  db.write([&](soci::session& sql) { sql << text; });
}

long long line_price(Database& db, int32_t req_id, int32_t line) {
  return db.read([&](soci::session& sql) {
    long long p = 0;
    sql << "SELECT unit_price FROM req_lines WHERE req_id = :r AND line_num = :l",
        soci::use(req_id), soci::use(line), soci::into(p);
    return p;
  });
}

TEST(Supplier, AQuickCheckStoresAnsweredPricesAndConvertsThem) {
  auto f = testing::make_fixture();
  auto alice = f->session(f->ids.alice);
  UIReq req(f->runtime);
  Variant rid(int32_t{0}), line, form;
  ASSERT_TRUE(req.AddItemFastAdd(alice, rid, f->ids.supplier, "P-100", "", "3", "EA", line, form));
  ASSERT_TRUE(req.AddItemFastAdd(alice, rid, f->ids.euro_supplier, "D-1", "", "1", "EA", line, form));
  ASSERT_TRUE(req.AddItemFavorite(alice, rid, f->ids.ream, "1", line, form));
  const int32_t req_id = rid.to_int32();
  // Pens now 2.00 USD, the desk 300 EUR; the paper is not offered any more.
  exec(*f->db, "INSERT INTO sim_part_answers (supplier_id, supplier_part_num, unit_price, "
               "available_qty) VALUES (" + std::to_string(f->ids.supplier) + ", 'P-100', 20000, 50), (" +
               std::to_string(f->ids.euro_supplier) + ", 'D-1', 3000000, 4)");

  UITools ui(f->runtime);
  Variant values;
  ASSERT_TRUE(ui.QuickCheckReq(alice, req_id, values)) << ui.Error()->Description();
  const Array& a = values.array();
  struct Expected {
    double price, available;
    bool answered;
  };
  // The desk's euros are dollars at 0.5 EUR per USD.
  const Expected expected[] = {{2.0, 50, true}, {600.0, 4, true}, {0, 0, false}};
  for (int32_t i = 0; i < 3; ++i) {
    SCOPED_TRACE(i);
    EXPECT_DOUBLE_EQ(a.at(0, i).to_double(), expected[i].price);
    EXPECT_DOUBLE_EQ(a.at(1, i).to_double(), expected[i].available);
    EXPECT_EQ(a.at(2, i).to_bool(), expected[i].answered);
  }
  // Stored in the supplier's currency; the unanswered line keeps its price.
  EXPECT_EQ(line_price(*f->db, req_id, 1), 20000);
  EXPECT_EQ(line_price(*f->db, req_id, 2), 3000000);
  EXPECT_EQ(line_price(*f->db, req_id, 3), 1000000);
}

TEST(Supplier, OrderStatusAnswersSetTheStatusOrAreLogged) {
  struct Case {
    const char* name;
    const char* answer;  // nullptr: the supplier knows no such order
    bool outage;
    bool result;
    const char* status;
    std::vector<std::string> log;
  };
  const Case cases[] = {
      {"shipped", "SHIPPED", false, true, "Partly received", {"Status set to Partly received"}},
      {"delivered", "delivered ", false, true, "Received", {"Status set to Received"}},
      {"unknown order", nullptr, false, false, "Open", {"No order PO-@ is known."}},
      {"outage", "ACK", true, false, "Open", {"Maintenance until noon"}},
      {"unmapped code", "LOST", false, false, "Open", {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Ordered o;
    auto alice = o.f->session(o.f->ids.alice);
    const std::string po = std::to_string(o.po_id);
    if (c.answer) {
      exec(*o.f->db, "INSERT INTO sim_order_answers (po_id, status_code) VALUES (" + po + ", '" +
                         c.answer + "')");
    }
    if (c.outage) {
      exec(*o.f->db, "INSERT INTO sim_supplier_outages (supplier_id, error_code, error_text) "
                     "VALUES (" + std::to_string(o.f->ids.supplier) +
                         ", 'DOWN', 'Maintenance until noon')");
    }
    UITools tools(o.f->runtime);
    int32_t po_id = o.po_id;
    EXPECT_EQ(tools.OrderStatus(alice, po_id), c.result) << tools.Error()->Description();
    UIPO ui(o.f->runtime);
    Variant num, borg, supplier, status;
    ASSERT_TRUE(ui.GetPOHeaderInfo(alice, o.po_id, num, borg, supplier, status));
    EXPECT_EQ(status, Variant(c.status));
    Variant name, submitter, created, cost, justification, currency;
    RecordsetPtr log = ui.GetLogPurchaseOrder(alice, o.po_id, name, submitter, created, cost,
                                              justification, currency);
    ASSERT_TRUE(log) << ui.Error()->Description();
    std::vector<std::string> want = c.log;
    for (std::string& w : want) {
      if (const size_t at = w.find('@'); at != std::string::npos) w.replace(at, 1, po);
    }
    EXPECT_EQ(column_values(*log, "Description"), want);
  }
}

}  // namespace
}  // namespace kxui::reference
