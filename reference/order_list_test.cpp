// The order list and the receiving list, read on demand, against the statement that reads
// the whole list at once: same rows, same order, for every sort and filter, however the
// cursor walks across the windows it reads.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "kxui/business/po_receipt.h"
#include "kxui/business/progids.h"
#include "kxui/business/purchase_order.h"
#include "kxui/frame/errors.h"
#include "kxui/frame/failure.h"
#include "kxui/frame/text.h"
#include "reference/database.h"
#include "reference/rows.h"
#include "reference/schema.h"
#include "reference/test_fixture.h"

namespace kxui::reference {
namespace {

using testing::Fixture;
using testing::make_fixture;

constexpr Column kColumns[] = {{"POID", Kind::kInt},
                               {"PONum", Kind::kText, 30},
                               {"POName", Kind::kText, 100},
                               {"ReqID", Kind::kInt},
                               {"SupplierName", Kind::kText, 100},
                               {"POStatusID", Kind::kInt},
                               {"StatusName", Kind::kText, 50},
                               {"CreateDate", Kind::kDate},
                               {"OrderedOnDate", Kind::kDate},
                               {"TotalAmtDue", Kind::kMoney},
                               {"CurrencyCode", Kind::kText, 3},
                               {"RequisitionerName", Kind::kText, 100},
                               {"BorgName", Kind::kText, 100}};

// 150 orders of alice, 20 of erin and 10 of bob, each from a requisition of its own in
// either organisation, inserted as any program would (the order's requisitioner is left
// to the database). Dates, suppliers and statuses repeat, so the order's id decides ties.
// Erin's login differs from alice's only in case: "alice" then names them both.
// Returns alice's first order.
int32_t add_orders(Fixture& f) {
  int32_t first = 0;
  f.db->write([&](soci::session& sql) {
    sql << "UPDATE users SET login_id = 'ALICE' WHERE sys_user_id = :u", soci::use(f.ids.erin);
    std::string name, created, supplier, currency;
    int user = 0, borg = 0, status = 0, req_id = 0, po_id = 0, lines = 0;
    long long price = 0;
    soci::statement req =
        (sql.prepare << "INSERT INTO requisitions (req_name, status_id, requisitioner_id, "
                        "borg_id, currency_code, create_date) VALUES (:n, 5, :u, :b, :c, :d) "
                        "RETURNING req_id",
         soci::use(name), soci::use(user), soci::use(borg), soci::use(currency), soci::use(created),
         soci::into(req_id));
    soci::statement order =
        (sql.prepare << "INSERT INTO purchase_orders (req_id, supplier_name, status_id, "
                        "create_date, currency_code) VALUES (:r, :s, :st, :d, :c) "
                        "RETURNING po_id",
         soci::use(req_id), soci::use(supplier), soci::use(status), soci::use(created),
         soci::use(currency), soci::into(po_id));
    soci::statement line =
        (sql.prepare << "INSERT INTO po_lines (po_id, line_num, req_line_num, description, qty, "
                        "unit_price, currency_code) VALUES (:p, :l, :l2, 'Pens', 3, :pr, :c)",
         soci::use(po_id), soci::use(lines), soci::use(lines), soci::use(price),
         soci::use(currency));
    const char* const suppliers[] = {"Office Supplies Inc", "Bürobedarf AG", "Acme Paper"};
    for (int i = 0; i < 180; ++i) {
      user = i < 150 ? f.ids.alice : i < 170 ? f.ids.erin : f.ids.bob;
      borg = i % 4 == 0 ? f.ids.berg : f.ids.acme;
      currency = i % 4 == 0 ? "EUR" : "USD";
      name = "Order " + std::to_string(i % 11);
      created = "2025-0" + std::to_string(1 + i % 9) + "-1" + std::to_string(i % 3) + " 08:00:00";
      supplier = suppliers[i % 3];
      status = 1 + i % 7;
      req.execute(true);
      order.execute(true);
      if (first == 0) first = po_id;
      for (lines = 1; lines <= i % 3; ++lines) {
        price = 10000 * (1 + i % 13);
        line.execute(true);
      }
    }
  });
  return first;
}

// What the list is asked for, and the whole list as it was read before: one statement
// over every row, with the statuses spelled out.
struct Ask {
  std::string login, borg, number, statuses;
};

RecordsetPtr whole_list(Database& db, int32_t self, int32_t caller_borg, const Ask& ask,
                        const std::string& order) {
  const std::string login = text::lower_ascii(ask.login);
  return db.read([&](soci::session& sql) {
    const std::string query =
        "SELECT o.po_id, 'PO-' || CAST(o.po_id AS VARCHAR(20)), r.req_name, o.req_id, "
        "o.supplier_name, o.status_id, s.name, o.create_date, o.create_date, "
        "COALESCE((SELECT CAST(ROUND(SUM(l.qty * l.unit_price) * (1 + b.tax_rate)) AS BIGINT) "
        "FROM po_lines l WHERE l.po_id = o.po_id), 0), o.currency_code, u.full_name, b.name "
        "FROM purchase_orders o JOIN requisitions r ON r.req_id = o.req_id "
        "JOIN users u ON u.sys_user_id = r.requisitioner_id JOIN borgs b ON "
        "b.borg_id = r.borg_id JOIN po_statuses s ON s.po_status_id = o.status_id "
        "WHERE r.borg_id = :cb AND ((:login = '' AND r.requisitioner_id = :self) OR "
        "LOWER(u.login_id) = :login2) AND (:borg = '' OR b.name = :borg2) AND (:num = '' OR "
        "LOWER('PO-' || CAST(o.po_id AS VARCHAR(20))) = LOWER(:num2))" +
        (ask.statuses.empty() ? std::string() : " AND o.status_id IN (" + ask.statuses + ")") +
        " ORDER BY " + order;
    soci::rowset<soci::row> rows =
        (sql.prepare << query, soci::use(caller_borg), soci::use(login), soci::use(self),
         soci::use(login), soci::use(ask.borg), soci::use(ask.borg), soci::use(ask.number),
         soci::use(ask.number));
    return to_recordset(rows, kColumns);
  });
}

struct Sort {
  const char* by;
  const char* order;
};
const Sort kSorts[] = {
    {"", "o.create_date DESC, o.po_id DESC"},
    {"POID", "o.po_id"},
    {"ponum desc", "o.po_id DESC"},
    {"CreateDate", "o.create_date, o.po_id"},
    {"SupplierName DESC", "o.supplier_name DESC, o.po_id DESC"},
    {"POStatusID", "o.status_id, o.po_id"},
    {"ReqID DESC", "o.req_id DESC, o.po_id DESC"},
};

// The asks of both lists: the session user's, another one's by login, two users named
// by one login in different cases, nobody's, and each filter alone and combined.
std::vector<Ask> asks(int32_t first_order) {
  const std::string number = "po-" + std::to_string(first_order + 4);
  return {{"", "", "", ""},          {"bob", "", "", ""},         {"alice", "", "", ""},
          {"nobody", "", "", ""},    {"", "Berg", "", ""},        {"", "", "", "2, 4"},
          {"", "", number, ""},      {"", "Acme", "", "1,3,5,7"}, {"alice", "Berg", "", "7"},
          {"ALICE", "", number, ""}, {"", "Nowhere", "", ""},     {"", "", "PO-0", ""}};
}

using ListCall = std::function<RecordsetPtr(const SessionPtr&, const Ask&, const char* sort,
                                            std::string& error)>;

// Alice asks from either organisation: orders are listed only where their requisition
// belongs to the caller's.
void expect_lists_as_before(Fixture& f, int32_t first_order, const ListCall& call,
                            const std::string& receivable) {
  for (int32_t caller_borg : {f.ids.acme, f.ids.berg}) {
    auto alice = f.session(f.ids.alice);
    alice->borg_id = caller_borg;
    for (const Sort& sort : kSorts) {
      for (const Ask& ask : asks(first_order)) {
        SCOPED_TRACE(std::string(sort.by) + " / " + ask.login + " / " + ask.borg + " / " +
                     ask.number + " / " + ask.statuses);
        std::string error;
        RecordsetPtr list = call(alice, ask, sort.by, error);
        ASSERT_TRUE(list) << error;
        Ask whole_ask = ask;
        if (whole_ask.statuses.empty()) whole_ask.statuses = receivable;
        RecordsetPtr whole = whole_list(*f.db, f.ids.alice, caller_borg, whole_ask, sort.order);
        const int32_t n = whole->RecordCount();
        EXPECT_EQ(list->AbsolutePosition(), n > 0 ? 1 : adPosUnknown);
        testing::expect_same_rows(*list, *whole);
      }
    }
  }
}

ListCall order_list_of(Runtime& runtime) {
  std::shared_ptr<business::PurchaseOrder> tier =
      create_as<business::PurchaseOrder>(runtime, progid::PurchaseOrder);
  return [tier](const SessionPtr& s, const Ask& ask, const char* sort, std::string& error) {
    Variant cd;
    RecordsetPtr rs = tier->GetPOList(s, Variant(ask.login), Variant(ask.borg), ask.number,
                                      Variant(sort), Variant(ask.statuses), cd);
    if (!rs) error = tier->GetError()->Description();
    return rs;
  };
}

TEST(OrderLists, TheOrderListHasTheRowsOfTheWholeListForEverySortAndFilter) {
  auto f = make_fixture();
  const int32_t first = add_orders(*f);
  expect_lists_as_before(*f, first, order_list_of(*f->runtime), "");
}

// Orders written before the database learnt to keep each order's requisitioner are
// listed as before once it has.
TEST(OrderLists, OrdersWrittenBeforeAnUpgradeAreListedAfterIt) {
  auto f = std::make_unique<Fixture>();
  f->dir = testing::fresh_dir();
  f->scratch = std::make_unique<testing::ScratchDatabase>(f->dir, "kx.db");
  f->url = f->scratch->url();
  std::vector<Migration> older;
  for (const Migration& m : migrations()) {
    if (m.version < 10) older.push_back(m);
  }
  DatabaseOptions options = f->options();
  options.migrations = &older;
  f->db = Database::Open(f->url, options);
  testing::populate(*f);
  const int32_t first = add_orders(*f);
  f->db.reset();
  f->db = Database::Open(f->url, f->options());
  ASSERT_EQ(f->db->schema_version(), migrations().back().version);
  services::ServiceOptions so;
  so.ini_directory = f->dir;
  services::RegisterDefaultServices(*f->runtime, so);
  Register(*f->runtime, f->db);
  expect_lists_as_before(*f, first, order_list_of(*f->runtime), "");
}

TEST(OrderLists, TheReceivingListHasTheRowsOfTheWholeListForEverySortAndFilter) {
  auto f = make_fixture();
  const int32_t first = add_orders(*f);
  auto tier = create_as<business::POReceipt>(*f->runtime, progid::POReceipt);
  expect_lists_as_before(
      *f, first,
      [&](const SessionPtr& s, const Ask& ask, const char* sort, std::string& error) {
        Array params = Array::of({Variant(sort), Variant(ask.statuses), Variant(ask.number),
                                  Variant(ask.login), Variant(ask.borg), Variant()});
        RecordsetPtr rs = tier->GetReceiveList(s, params);
        if (!rs) error = tier->GetError()->Description();
        return rs;
      },
      "1,2,3,4");  // an empty status list asks for the orders still to be received
}

// An order keeps its requisitioner's list however it was written: inserted, moved to
// another requisition, or its requisition moved to another organisation.
TEST(OrderLists, AnOrderFollowsItsRequisitionsRequisitioner) {
  auto f = make_fixture();
  const int32_t first = add_orders(*f);
  auto tier = create_as<business::PurchaseOrder>(*f->runtime, progid::PurchaseOrder);
  // The orders a user lists, asking from an organisation.
  const auto ids_of = [&](int32_t user, int32_t borg) {
    auto session = f->session(user);
    session->borg_id = borg;
    Variant cd;
    RecordsetPtr rs =
        tier->GetPOList(session, Variant(""), Variant(""), "", Variant("POID"), Variant(""), cd);
    std::set<int32_t> ids;
    if (!rs) {
      ADD_FAILURE() << tier->GetError()->Description();
      return ids;
    }
    for (int32_t p = 1; p <= rs->RecordCount(); ++p) {
      rs->SetAbsolutePosition(p);
      ids.insert(rs->value(0).to_int32());
    }
    return ids;
  };
  // Every fourth requisition is Berg's, the first among them.
  const int32_t acme = f->ids.acme, berg = f->ids.berg;
  ASSERT_EQ(ids_of(f->ids.alice, berg).size(), 38u);
  ASSERT_EQ(ids_of(f->ids.alice, acme).size(), 112u);
  ASSERT_EQ(ids_of(f->ids.bob, acme).size(), 8u);
  f->db->write([&](soci::session& sql) {
    sql << "UPDATE purchase_orders SET req_id = (SELECT MAX(o.req_id) FROM purchase_orders o) "
           "WHERE po_id = :p",
        soci::use(first);
  });
  EXPECT_EQ(ids_of(f->ids.alice, berg).count(first), 0u);
  EXPECT_EQ(ids_of(f->ids.bob, acme).count(first), 1u) << "the last requisition is bob's, Acme's";
  EXPECT_EQ(ids_of(f->ids.alice, berg).size(), 37u);
  f->db->write([&](soci::session& sql) {
    sql << "UPDATE requisitions SET borg_id = :b WHERE req_id = (SELECT req_id FROM "
           "purchase_orders WHERE po_id = :p)",
        soci::use(berg), soci::use(first);
  });
  EXPECT_EQ(ids_of(f->ids.bob, acme).count(first), 0u);
  EXPECT_EQ(ids_of(f->ids.bob, berg).count(first), 1u) << "listed under its new organisation";
}

// A list whose rows change after it was counted fails on the rows it can no longer read,
// rather than showing other rows in their place.
TEST(OrderLists, RowsGoneAfterTheCountFailTheRead) {
  auto f = make_fixture();
  add_orders(*f);
  auto tier = create_as<business::PurchaseOrder>(*f->runtime, progid::PurchaseOrder);
  Variant cd;
  RecordsetPtr list = tier->GetPOList(f->session(f->ids.alice), Variant(""), Variant(""), "",
                                      Variant("POID"), Variant(""), cd);
  ASSERT_TRUE(list) << tier->GetError()->Description();
  ASSERT_EQ(list->RecordCount(), 112) << "alice's orders from Acme's requisitions";
  testing::expect_rows_gone_fail_the_read(*list, [&] {
    f->db->write([&](soci::session& sql) {
      sql << "DELETE FROM purchase_orders WHERE po_id IN (SELECT po_id FROM purchase_orders "
             "WHERE requisitioner_id = :u ORDER BY po_id DESC LIMIT 10)",
          soci::use(f->ids.alice);
    });
  });
}

}  // namespace
}  // namespace kxui::reference
