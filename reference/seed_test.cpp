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

}  // namespace
}  // namespace kxui::reference
