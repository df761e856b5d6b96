#include "reference/seed_parts.h"

#include <algorithm>

#include "reference/purchase_order.h"
#include "reference/seed.h"

namespace kxui::reference::seed_parts {

namespace {

struct Address {
  const char *line1, *city, *state, *postal, *country, *contact, *phone;
};

// Per organisation in order of creation: head office, then a plant or a branch.
const Address kAddresses[][2] = {
    {{"100 Main Street", "Springfield", "IL", "62701", "US", "Accounts Payable", "+1 217 555 0100"},
     {"4 Harbor Road", "Portland", "OR", "97201", "US", "Receiving Dock", "+1 503 555 0144"}},
    {{"Industriestraße 12", "Stuttgart", "", "70565", "DE", "Buchhaltung", "+49 711 555 210"},
     {"Am Hafen 3", "Hamburg", "", "20457", "DE", "Warenannahme", "+49 40 555 3321"}},
    {{"12 rue de la République", "Lyon", "", "69002", "FR", "Comptabilité", "+33 4 55 55 01 02"},
     {"8 quai des Chartrons", "Bordeaux", "", "33000", "FR", "Réception", "+33 5 55 55 07 08"}},
};

const std::pair<const char*, const char*> kCostCenters[] = {
    {"CC1", "Operations"}, {"CC2", "Finance"}, {"CC3", "IT"}, {"CC4", "Facilities"}};

std::vector<int32_t> ids(soci::session& sql, const std::string& query) {
  std::vector<int32_t> out;
  soci::rowset<int> rows = (sql.prepare << query);
  for (int id : rows) out.push_back(id);
  return out;
}

// The identifiers `query` selects for one organisation (bound as ":b").
std::vector<int32_t> ids_of(soci::session& sql, const std::string& query, int borg) {
  std::vector<int32_t> out;
  soci::rowset<int> rows = (sql.prepare << query, soci::use(borg));
  for (int id : rows) out.push_back(id);
  return out;
}

std::string days_after(const std::string& stored, int days, Date limit) {
  const int64_t at = parse_date_text(stored).seconds() + int64_t{days} * 86400;
  return date_text(Date::from_seconds(std::min(at, limit.seconds())));
}

void addresses(soci::session& sql, const std::vector<int32_t>& borgs) {
  for (size_t b = 0; b < borgs.size(); ++b) {
    for (const Address& a : kAddresses[b % 3]) {
      const std::string line1 = a.line1, city = a.city, state = a.state, postal = a.postal,
                        country = a.country, contact = a.contact, phone = a.phone;
      const std::string email = "office" + std::to_string(borgs[b]) + "@example.com";
      sql << "INSERT INTO bill_tos (borg_id, line1, city, state, postal_code, country_code, "
             "contact_name, telephone, email) VALUES (:b, :l, :c, :s, :p, :k, :n, :t, :e)",
          soci::use(borgs[b]), soci::use(line1), soci::use(city), soci::use(state),
          soci::use(postal), soci::use(country), soci::use(contact), soci::use(phone),
          soci::use(email);
      const int taxable = country == "US" ? 1 : 0;
      sql << "INSERT INTO ship_tos (borg_id, line1, city, state, postal_code, country_code, "
             "contact_name, telephone, taxable) VALUES (:b, :l, :c, :s, :p, :k, :n, :t, :x)",
          soci::use(borgs[b]), soci::use(line1), soci::use(city), soci::use(state),
          soci::use(postal), soci::use(country), soci::use(contact), soci::use(phone),
          soci::use(taxable);
    }
    for (const auto& center : kCostCenters) {
      const std::string code(center.first), name(center.second);
      sql << "INSERT INTO cost_centers (borg_id, code, name) VALUES (:b, :c, :n)",
          soci::use(borgs[b]), soci::use(code), soci::use(name);
    }
  }
}

// Each member: the organisation's first bill-to, ship-to alternating, a cost centre in
// turn and a spending limit from the approval limit; every third user stores a card.
void members(soci::session& sql) {
  struct Member {
    int user, borg;
    long long approval;
    std::string name;
  };
  std::vector<Member> people;
  soci::rowset<soci::row> rows =
      (sql.prepare << "SELECT sys_user_id, borg_id, approval_limit, full_name FROM users "
                      "ORDER BY sys_user_id");
  for (const soci::row& r : rows) {
    people.push_back({r.get<int>(0), r.get<int>(1), static_cast<long long>(r.get<long long>(2)),
                      r.get<std::string>(3)});
  }
  for (size_t i = 0; i < people.size(); ++i) {
    const Member& m = people[i];
    const std::vector<int32_t> bills =
        ids_of(sql, "SELECT bill_to_id FROM bill_tos WHERE borg_id = :b ORDER BY 1", m.borg);
    const std::vector<int32_t> ships =
        ids_of(sql, "SELECT ship_to_id FROM ship_tos WHERE borg_id = :b ORDER BY 1", m.borg);
    const std::vector<int32_t> centers = ids_of(
        sql, "SELECT cost_center_id FROM cost_centers WHERE borg_id = :b ORDER BY 1", m.borg);
    const int bill = bills.at(0), ship = ships.at(i % ships.size()),
              center = centers.at(i % centers.size());
    const long long spending = std::max<long long>(m.approval * 2, 2500LL * 10000);
    sql << "INSERT INTO borg_users (borg_id, sys_user_id, bill_to_id, ship_to_id, "
           "cost_center_id, spending_limit) VALUES (:b, :u, :bt, :st, :cc, :l)",
        soci::use(m.borg), soci::use(m.user), soci::use(bill), soci::use(ship),
        soci::use(center), soci::use(spending);
    if (i % 3 == 0) {
      const std::string last4 = std::to_string(1000 + (m.user * 37) % 9000);
      const std::string expires = "2028-0" + std::to_string(1 + i % 9) + "-01 00:00:00";
      const int method = 2 + static_cast<int>(i % 2);
      sql << "INSERT INTO user_payment_methods (sys_user_id, payment_method_id, card_holder, "
             "card_last4, cc_expiration, priority) VALUES (:u, :m, :h, :l, :e, 1)",
          soci::use(m.user), soci::use(method), soci::use(m.name), soci::use(last4),
          soci::use(expires);
    }
  }
}

}  // namespace

void Accounts(Database& db) {
  const std::string today = date_text(db.now());
  const std::string week_ago = date_text(Date::from_seconds(db.now().seconds() - 7 * 86400));
  const std::string next_week = date_text(Date::from_seconds(db.now().seconds() + 7 * 86400));
  db.write([&](soci::session& sql) {
    const std::vector<int32_t> borgs = ids(sql, "SELECT borg_id FROM borgs ORDER BY borg_id");
    addresses(sql, borgs);
    members(sql);
    // Suppliers take purchase orders; every other one cards too, and ships its own ways.
    sql << "INSERT INTO supplier_payment_methods (supplier_id, payment_method_id) "
           "SELECT supplier_id, 1 FROM suppliers";
    sql << "INSERT INTO supplier_payment_methods (supplier_id, payment_method_id) "
           "SELECT supplier_id, 2 FROM suppliers WHERE supplier_id % 2 = 0";
    sql << "INSERT INTO ship_methods (supplier_id, name) SELECT supplier_id, 'Freight' "
           "FROM suppliers WHERE supplier_id % 4 = 1";
    sql << "INSERT INTO ship_methods (supplier_id, name) SELECT supplier_id, 'Courier' "
           "FROM suppliers WHERE supplier_id % 4 = 2";
    // The first manager of each organisation (the second user) is away this week.
    for (int32_t borg : borgs) {
      const std::vector<int32_t> managers =
          ids_of(sql, "SELECT sys_user_id FROM users WHERE borg_id = :b AND manager_id IS NOT "
                      "NULL AND approval_limit > 0 ORDER BY sys_user_id", borg);
      if (managers.size() < 2) continue;
      sql << "INSERT INTO delegations (sys_user_id, borg_id, delegatee_id, start_date, "
             "end_date, enabled) VALUES (:u, :b, :d, :s, :e, 1)",
          soci::use(managers[0]), soci::use(borg), soci::use(managers[1]), soci::use(week_ago),
          soci::use(next_week);
    }
    // Some requisitioners browse only part of the catalogue.
    sql << "INSERT INTO user_commodities (sys_user_id, commodity_id) SELECT u.sys_user_id, "
           "c.commodity_id FROM users u JOIN commodities c ON c.parent_id IS NULL "
           "WHERE u.sys_user_id % 7 = 3 AND c.commodity_id % 2 = 1";
    const std::string host_news = "Scheduled maintenance on Sunday, 02:00-04:00 UTC.";
    const std::string ebo_news = "Welcome to the purchasing portal (" + today.substr(0, 10) + ").";
    sql << "UPDATE hosts SET news = :n", soci::use(host_news);
    sql << "UPDATE ebos SET news = :n", soci::use(ebo_news);
  });
}

void Documents(Database& db) {
  const Date now = db.now();
  db.write([&](soci::session& sql) {
    // Two thirds of the first lines of every fourth requisition on its first cost centre.
    sql << "INSERT INTO req_cost_distribs (req_id, line_num, cost_center_id, percentage) "
           "SELECT l.req_id, l.line_num, bu.cost_center_id, 66.6667 FROM req_lines l "
           "JOIN requisitions r ON r.req_id = l.req_id JOIN borg_users bu ON "
           "bu.borg_id = r.borg_id AND bu.sys_user_id = r.requisitioner_id "
           "WHERE l.line_num = 1 AND r.req_id % 4 = 0 AND bu.cost_center_id IS NOT NULL";
    sql << "INSERT INTO req_cost_distribs (req_id, line_num, cost_center_id, percentage) "
           "SELECT d.req_id, d.line_num, (SELECT MIN(c.cost_center_id) FROM cost_centers c "
           "JOIN requisitions r ON r.borg_id = c.borg_id WHERE r.req_id = d.req_id AND "
           "c.cost_center_id <> d.cost_center_id), 33.3333 FROM req_cost_distribs d";
    sql << "INSERT INTO po_cost_distribs (po_id, line_num, cost_center_id, percent) "
           "SELECT l.po_id, l.line_num, bu.cost_center_id, 100 FROM po_lines l "
           "JOIN purchase_orders o ON o.po_id = l.po_id JOIN requisitions r ON "
           "r.req_id = o.req_id JOIN borg_users bu ON bu.borg_id = r.borg_id AND "
           "bu.sys_user_id = r.requisitioner_id WHERE o.po_id % 3 = 0 AND "
           "bu.cost_center_id IS NOT NULL";

    // Files (stored hex-encoded): a quote on every fifth requisition ("Quote #1024\n"), a
    // confirmation on every fourth order ("Confirmed").
    sql << "INSERT INTO attachments (owner_kind, owner_id, line_num, file_name, file_size, "
           "content_hex, date_attached, sys_user_id) SELECT 1, req_id, 0, 'quote.txt', 12, "
           "'51756f74652023313032340a', create_date, requisitioner_id FROM requisitions "
           "WHERE req_id % 5 = 0";
    sql << "INSERT INTO attachments (owner_kind, owner_id, line_num, file_name, file_size, "
           "content_hex, date_attached, sys_user_id) SELECT 3, o.po_id, 0, "
           "'confirmation.txt', 9, '436f6e6669726d6564', o.create_date, r.requisitioner_id "
           "FROM purchase_orders o JOIN requisitions r ON r.req_id = o.req_id "
           "WHERE o.po_id % 4 = 0";

    // Receipts: in full three days after ordering, or in part with a box sent back.
    struct Order {
      int po_id, user;
      std::string created;
    };
    std::vector<Order> orders;
    soci::rowset<soci::row> rows =
        (sql.prepare << "SELECT o.po_id, r.requisitioner_id, o.create_date FROM "
                        "purchase_orders o JOIN requisitions r ON r.req_id = o.req_id "
                        "ORDER BY o.po_id");
    for (const soci::row& r : rows) {
      orders.push_back({r.get<int>(0), r.get<int>(1), r.get<std::string>(2)});
    }
    int receipt = 0;
    for (const Order& o : orders) {
      const int kind = o.po_id % 3;
      if (kind == 2) {
        if (o.po_id % 2 == 0) {
          sql << "UPDATE purchase_orders SET status_id = :s, status_date = :d WHERE po_id = :p",
              soci::use(po_status::kSent), soci::use(o.created), soci::use(o.po_id);
        }
        continue;
      }
      const std::string received = days_after(o.created, 3, now);
      const int cartons = 1 + o.po_id % 4;
      sql << "INSERT INTO receipts (po_id, receive_date, doc_create_date, carton_cnt, "
             "received_by, create_date) VALUES (:p, :r, :d, :c, :u, :n) RETURNING receipt_id",
          soci::use(o.po_id), soci::use(received), soci::use(received), soci::use(cartons),
          soci::use(o.user), soci::use(received), soci::into(receipt);
      if (kind == 0) {
        sql << "INSERT INTO receipt_lines (receipt_id, line_num, received_qty, packing_slip_qty) "
               "SELECT :r, line_num, qty, qty FROM po_lines WHERE po_id = :p",
            soci::use(receipt), soci::use(o.po_id);
        sql << "UPDATE po_lines SET received_qty = qty WHERE po_id = :p", soci::use(o.po_id);
      } else {
        sql << "INSERT INTO receipt_lines (receipt_id, line_num, received_qty, packing_slip_qty) "
               "SELECT :r, line_num, qty, qty FROM po_lines WHERE po_id = :p AND line_num = 1",
            soci::use(receipt), soci::use(o.po_id);
        const std::string later = days_after(o.created, 4, now);
        int correction = 0;
        sql << "INSERT INTO receipts (po_id, receive_date, doc_create_date, carton_cnt, "
               "received_by, create_date) VALUES (:p, :r, :d, 0, :u, :n) RETURNING receipt_id",
            soci::use(o.po_id), soci::use(later), soci::use(later), soci::use(o.user),
            soci::use(later), soci::into(correction);
        sql << "INSERT INTO receipt_lines (receipt_id, line_num, received_qty, packing_slip_qty, "
               "comments) VALUES (:r, 1, -1, 0, 'Damaged in transit')",
            soci::use(correction);
        sql << "UPDATE po_lines SET received_qty = qty - 1 WHERE po_id = :p AND line_num = 1",
            soci::use(o.po_id);
      }
      // Received in full only when every line came whole.
      int open_lines = 0;
      sql << "SELECT COUNT(*) FROM po_lines WHERE po_id = :p AND received_qty < qty",
          soci::use(o.po_id), soci::into(open_lines);
      const int status = open_lines == 0 ? po_status::kReceived : po_status::kPartlyReceived;
      sql << "UPDATE purchase_orders SET status_id = :s, status_date = :d WHERE po_id = :p",
          soci::use(status), soci::use(received), soci::use(o.po_id);
      log_po(sql, db, o.po_id, o.user, "Receipt", "Receipt " + std::to_string(receipt) + " recorded",
             "");
    }
    // One supplier's exchange is down, so quick checks against it fail as in real life.
    sql << "INSERT INTO sim_supplier_outages (supplier_id, error_code, error_text) "
           "SELECT MAX(supplier_id), 'E503', 'The supplier''s service is unavailable.' "
           "FROM suppliers";
  });
}

}  // namespace kxui::reference::seed_parts

namespace kxui::reference {

std::vector<std::pair<std::string, int64_t>> TableRowCounts(Database& db) {
  return db.read([&](soci::session& sql) {
    std::vector<std::string> tables;
    const std::string list =
        db.backend() == Backend::kSqlite
            ? "SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE "
              "'sqlite%' ORDER BY name"
            : "SELECT table_name FROM information_schema.tables WHERE table_schema = "
              "current_schema() AND table_type = 'BASE TABLE' ORDER BY table_name";
    soci::rowset<std::string> names = (sql.prepare << list);
    for (const std::string& name : names) tables.push_back(name);
    std::vector<std::pair<std::string, int64_t>> out;
    for (const std::string& table : tables) {
      // The name comes from the catalogue, not from input.
      long long n = 0;
      sql << "SELECT COUNT(*) FROM " + table, soci::into(n);
      out.emplace_back(table, n);
    }
    return out;
  });
}

}  // namespace kxui::reference
