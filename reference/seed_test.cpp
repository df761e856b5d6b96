// The seed: a small data set reaches every status through the business rules, and a
// database that already holds data is refused.
#include <gmock/gmock.h>

#include "reference/errors.h"
#include "reference/seed.h"
#include "reference/test_fixture.h"

namespace kxui::reference {
namespace {

TEST(Seed, SmallDataSetCoversEveryStatus) {
  testing::TempDir tmp;
  testing::ScratchDatabase scratch(tmp.path, "seed.db");
  auto db = Database::Open(scratch.url());
  SeedOptions options;
  options.users_per_borg = 6;
  options.parts = 60;
  options.requisitions_per_user = 7;
  options.bench_rows = 12;
  const SeedCounts c = Seed(*db, options);
  EXPECT_EQ(c.borgs, 3);
  EXPECT_EQ(c.users, 18);
  EXPECT_EQ(c.commodities, 8 + 40 + 160);
  EXPECT_EQ(c.parts, 60);
  EXPECT_EQ(c.requisitions, 3 * 2 * 7 + 12);
  EXPECT_GT(c.orders, 0);
  std::vector<int> statuses;
  int templates = 0, pending = 0, zones = 0, locales = 0, bench = 0;
  db->read([&](soci::session& sql) {
    soci::rowset<int> rows = (sql.prepare << "SELECT DISTINCT status_id FROM requisitions "
                                             "ORDER BY status_id");
    statuses.assign(rows.begin(), rows.end());
    sql << "SELECT COUNT(*) FROM requisitions WHERE template_type IS NOT NULL", soci::into(templates);
    sql << "SELECT COUNT(*) FROM approval_steps WHERE status_id = 2", soci::into(pending);
    sql << "SELECT COUNT(DISTINCT time_zone_id) FROM users", soci::into(zones);
    sql << "SELECT COUNT(DISTINCT locale_id) FROM users", soci::into(locales);
    sql << "SELECT COUNT(*) FROM requisitions r JOIN users u ON u.sys_user_id = "
           "r.requisitioner_id WHERE u.login_id = 'bench'", soci::into(bench);
  });
  EXPECT_EQ(statuses, (std::vector<int>{1, 2, 3, 4, 5, 7}));
  EXPECT_GT(templates, 0);
  EXPECT_GT(pending, 0);
  EXPECT_GE(zones, 5);
  EXPECT_EQ(locales, 3);
  EXPECT_EQ(bench, 12);
  EXPECT_EQ(VerifyPassword(*db, "u2_3", "u2_3-pw").has_value(), true);

  // A submit date is the date of a submission: none on a requisition never submitted, one
  // on every requisition that was, the bulk-written benchmark rows included.
  struct DateRule {
    const char* what;
    const char* query;  // counts what breaks the rule
  } rules[] = {
      {"open requisitions have no submit date",
       "SELECT COUNT(*) FROM requisitions WHERE status_id IN (-1, 1) AND submit_date IS NOT NULL"},
      {"requisitions logged without a submission have no submit date",
       "SELECT COUNT(*) FROM requisitions r WHERE r.submit_date IS NOT NULL AND EXISTS (SELECT 1 "
       "FROM req_log g WHERE g.req_id = r.req_id) AND NOT EXISTS (SELECT 1 FROM req_log g WHERE "
       "g.req_id = r.req_id AND g.action = 'Submitted')"},
      {"waiting, rejected, withdrawn and approved requisitions have one",
       "SELECT COUNT(*) FROM requisitions WHERE status_id IN (2, 3, 4, 5) AND submit_date IS NULL"},
  };
  for (const DateRule& rule : rules) {
    SCOPED_TRACE(rule.what);
    int broken = -1;
    db->read([&](soci::session& sql) { sql << rule.query, soci::into(broken); });
    EXPECT_EQ(broken, 0);
  }
  int open_bench = 0;
  db->read([&](soci::session& sql) {
    sql << "SELECT COUNT(*) FROM requisitions r JOIN users u ON u.sys_user_id = "
           "r.requisitioner_id WHERE u.login_id = 'bench' AND r.status_id = 1",
        soci::into(open_bench);
  });
  EXPECT_GT(open_bench, 0) << "the rule above is checked on benchmark rows too";
  try {
    Seed(*db, options);
    ADD_FAILURE() << "seeded twice";
  } catch (const Failure& f) {
    EXPECT_EQ(f.number(), error_number(Refusal::kInvalidArgument));
  }
}

// The order side is seeded too: every organisation has its customer name and cost
// centres, and the simulated supplier answers for every part.
TEST(Seed, OrderSideAnswersForEveryPart) {
  testing::TempDir tmp;
  testing::ScratchDatabase scratch(tmp.path, "seed.db");
  auto db = Database::Open(scratch.url());
  SeedOptions options;
  options.users_per_borg = 4;
  options.parts = 30;
  options.requisitions_per_user = 2;
  Seed(*db, options);
  int accounts = 0, centers = 0, answers = 0, cheaper = 0;
  db->read([&](soci::session& sql) {
    sql << "SELECT COUNT(*) FROM borg_accounts", soci::into(accounts);
    sql << "SELECT COUNT(*) FROM cost_centers", soci::into(centers);
    sql << "SELECT COUNT(*) FROM sim_part_answers", soci::into(answers);
    sql << "SELECT COUNT(*) FROM sim_part_answers a JOIN parts p ON p.supplier_id = "
           "a.supplier_id AND p.supplier_part_num = a.supplier_part_num WHERE a.unit_price < "
           "p.unit_price", soci::into(cheaper);
  });
  EXPECT_EQ(accounts, 3);
  EXPECT_EQ(centers, 12);
  EXPECT_EQ(answers, 30);
  EXPECT_EQ(cheaper, 30);
}

// Every table a page reads holds rows, and the rows agree with each other: receipts add
// up to what each order line received, splits to a hundred percent, every member has the
// organisation's defaults and every special request the values its form requires.
TEST(Seed, EveryTableHoldsConsistentRows) {
  testing::TempDir tmp;
  auto db = Database::Open("sqlite3://" + (tmp.path / "seed.db").string());
  SeedOptions options;
  options.users_per_borg = 6;
  options.parts = 60;
  options.requisitions_per_user = 7;
  Seed(*db, options);
  std::vector<std::string> empty;
  for (const auto& [table, rows] : TableRowCounts(*db)) {
    if (rows == 0) empty.push_back(table);
  }
  // Working state only: sessions, locks, reconciliation copies, the table log and the web
  // portal's own state.
  EXPECT_THAT(empty, ::testing::ElementsAre("event_log", "po_locks", "portal_form_tokens",
                                            "portal_login_failures", "portal_sessions",
                                            "recon_lines", "req_locks", "sessions"));
  const auto count = [&](const std::string& query) {
    return db->read([&](soci::session& sql) {
      int n = -1;
      sql << query, soci::into(n);
      return n;
    });
  };
  struct Check {
    const char* what;
    const char* query;  // counts what breaks the rule
  } checks[] = {
      {"receipts add up to the received quantity",
       "SELECT COUNT(*) FROM po_lines l WHERE ABS(l.received_qty - COALESCE((SELECT "
       "SUM(rl.received_qty) FROM receipt_lines rl JOIN receipts r ON r.receipt_id = "
       "rl.receipt_id WHERE r.po_id = l.po_id AND rl.line_num = l.line_num), 0)) > 0.00001"},
      {"received orders are received in full",
       "SELECT COUNT(*) FROM purchase_orders o WHERE o.status_id = 5 AND EXISTS (SELECT 1 FROM "
       "po_lines l WHERE l.po_id = o.po_id AND l.received_qty < l.qty)"},
      {"requisition splits make a hundred percent",
       "SELECT COUNT(*) FROM (SELECT req_id, line_num FROM req_cost_distribs GROUP BY req_id, "
       "line_num HAVING ABS(SUM(percentage) - 100) > 0.0001) t"},
      {"every user is a member with defaults",
       "SELECT COUNT(*) FROM users u LEFT JOIN borg_users b ON b.sys_user_id = u.sys_user_id "
       "AND b.borg_id = u.borg_id WHERE b.bill_to_id IS NULL OR b.ship_to_id IS NULL OR "
       "b.cost_center_id IS NULL"},
      {"special requests carry their form's required value",
       "SELECT COUNT(*) FROM req_lines l WHERE l.is_special = 1 AND NOT EXISTS (SELECT 1 FROM "
       "smart_form_values v WHERE v.owner_kind = 1 AND v.owner_id = l.req_id AND v.line_num = "
       "l.line_num AND v.field_name = 'Justification')"},
      {"stored files are as long as they say",
       "SELECT COUNT(*) FROM attachments WHERE LENGTH(content_hex) <> 2 * file_size"},
      {"goods come after they were ordered",
       "SELECT COUNT(*) FROM receipts r JOIN purchase_orders o ON o.po_id = r.po_id "
       "WHERE r.receive_date < o.create_date"},
  };
  for (const Check& c : checks) EXPECT_EQ(count(c.query), 0) << c.what;
  EXPECT_GT(count("SELECT COUNT(*) FROM receipt_lines WHERE received_qty < 0"), 0)
      << "corrections are among the receipts";
  EXPECT_GT(count("SELECT COUNT(*) FROM reviewers"), 0);
  EXPECT_GT(count("SELECT COUNT(*) FROM req_lines WHERE is_special = 1"), 0);
  EXPECT_EQ(count("SELECT COUNT(*) FROM delegations"), 3) << "one manager away per organisation";
}

// The benchmark user's orders, alongside its requisitions: one user, every order status,
// each order with a line, and every order kept under its requisition's requisitioner.
TEST(Seed, BenchOrdersBelongToTheBenchUser) {
  testing::TempDir tmp;
  testing::ScratchDatabase scratch(tmp.path, "seed.db");
  auto db = Database::Open(scratch.url());
  SeedOptions options;
  options.users_per_borg = 5;
  options.parts = 20;
  options.requisitions_per_user = 0;
  options.bench_rows = 5;
  options.bench_orders = 30;
  Seed(*db, options);
  const auto count = [&](const std::string& query) {
    int n = -1;
    db->read([&](soci::session& sql) { sql << query, soci::into(n); });
    return n;
  };
  struct Check {
    const char* what;
    const char* query;
    int expected;
  };
  const Check checks[] = {
      {"one bench user", "SELECT COUNT(*) FROM users WHERE login_id = 'bench'", 1},
      {"its orders",
       "SELECT COUNT(*) FROM purchase_orders o JOIN users u ON u.sys_user_id = "
       "o.requisitioner_id WHERE u.login_id = 'bench'",
       30},
      {"and its requisitions, ordered or not",
       "SELECT COUNT(*) FROM requisitions r JOIN users u ON u.sys_user_id = "
       "r.requisitioner_id WHERE u.login_id = 'bench'",
       35},
      {"every order status", "SELECT COUNT(DISTINCT status_id) FROM purchase_orders", 7},
      {"orders without a line", "SELECT COUNT(*) FROM purchase_orders o WHERE NOT EXISTS "
                                "(SELECT 1 FROM po_lines l WHERE l.po_id = o.po_id)", 0},
      {"orders under another requisitioner",
       "SELECT COUNT(*) FROM purchase_orders o JOIN requisitions r ON r.req_id = o.req_id "
       "WHERE o.requisitioner_id IS NULL OR o.requisitioner_id <> r.requisitioner_id",
       0},
  };
  for (const Check& c : checks) EXPECT_EQ(count(c.query), c.expected) << c.what;
}

}  // namespace
}  // namespace kxui::reference
