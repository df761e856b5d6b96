// Several programs on one database: every migration applied once, whoever opens first;
// locks and approvals decided by the database, whichever connection asks.
#include <barrier>
#include <thread>

#include <gmock/gmock.h>

#include "kxui/requisition/ui_req.h"
#include "kxui/workflow/ui_wf.h"
#include "reference/errors.h"
#include "reference/schema.h"
#include "reference/test_fixture.h"

namespace kxui::reference {
namespace {

using ::testing::AnyOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::Fixture;
using testing::make_fixture;

int count_of(Database& db, const std::string& query) {
  return db.read([&](soci::session& sql) {
    int n = 0;
    sql << query, soci::into(n);
    return n;
  });
}

std::vector<int> versions(Database& db) {
  return db.read([](soci::session& sql) {
    soci::rowset<int> rows = (sql.prepare << "SELECT version FROM schema_version ORDER BY version");
    return std::vector<int>(rows.begin(), rows.end());
  });
}

// A step that creates table m<v> holding one row; run twice it fails on the table.
Migration step(int32_t v, std::chrono::milliseconds pause = {}) {
  return {v, "step", [v, pause](soci::session& sql, Backend) {
            const std::string table = "m" + std::to_string(v);
            sql << "CREATE TABLE " + table + " (n INTEGER NOT NULL)";
            sql << "INSERT INTO " + table + " (n) VALUES (1)";
            // Holds the step open so that other programs arrive while it runs.
            std::this_thread::sleep_for(pause);
          }};
}

TEST(Migrations, EveryMissingVersionIsAppliedNotOnlyThoseAboveTheHighest) {
  testing::TempDir tmp;
  testing::ScratchDatabase scratch(tmp.path, "m.db");
  const std::vector<Migration> older = {step(1), step(3)};
  const std::vector<Migration> merged = {step(1), step(2), step(3), step(4)};
  DatabaseOptions options;
  options.migrations = &older;
  EXPECT_THAT(versions(*Database::Open(scratch.url(), options)), ElementsAre(1, 3));

  // Version 2 arrived later below the highest applied one; 4 is new.
  options.migrations = &merged;
  auto db = Database::Open(scratch.url(), options);
  EXPECT_THAT(versions(*db), ElementsAre(1, 2, 3, 4));
  for (const char* table : {"m1", "m2", "m3", "m4"}) {
    EXPECT_EQ(count_of(*db, std::string("SELECT COUNT(*) FROM ") + table), 1) << table;
  }
  EXPECT_EQ(db->schema_version(), 4);
}

TEST(Migrations, AFailedStepKeepsTheEarlierOnesAndRunsAgainOnTheNextOpen) {
  testing::TempDir tmp;
  testing::ScratchDatabase scratch(tmp.path, "m.db");
  const std::vector<Migration> broken = {
      step(1), {2, "broken", [](soci::session& sql, Backend) {
                  sql << "CREATE TABLE m2 (n INTEGER NOT NULL)";
                  sql << "INSERT INTO no_such_table (n) VALUES (1)";
                }}};
  DatabaseOptions options;
  options.migrations = &broken;
  try {
    Database::Open(scratch.url(), options);
    ADD_FAILURE() << "a broken migration was accepted";
  } catch (const Failure& f) {
    EXPECT_EQ(f.number(), error_number(Refusal::kDatabaseError));
  }
  const std::vector<Migration> fixed = {step(1), step(2)};
  options.migrations = &fixed;
  auto db = Database::Open(scratch.url(), options);
  // m2 was created again: the broken step's table went with its transaction.
  EXPECT_THAT(versions(*db), ElementsAre(1, 2));
  EXPECT_EQ(count_of(*db, "SELECT COUNT(*) FROM m2"), 1);
}

// Programs starting together on a new database: each version is applied by exactly one
// of them, and none of them fails.
TEST(Migrations, ProgramsOpeningAtOnceApplyEachVersionOnce) {
  struct Case {
    const char* name;
    std::vector<Migration> steps;
  };
  const std::vector<Migration> mine = {step(1), step(2, std::chrono::milliseconds(150)), step(3)};
  const Case cases[] = {{"steps", mine}, {"the tier's schema", migrations()}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    testing::TempDir tmp;
    testing::ScratchDatabase scratch(tmp.path, "m.db");
    constexpr int kPrograms = 4;
    std::barrier start(kPrograms);
    std::vector<std::string> failures(kPrograms);
    std::vector<std::thread> programs;
    for (int i = 0; i < kPrograms; ++i) {
      programs.emplace_back([&, i] {
        DatabaseOptions options;
        options.migrations = &c.steps;
        options.busy_timeout_ms = 20000;
        start.arrive_and_wait();
        try {
          Database::Open(scratch.url(), options);
        } catch (const Failure& f) {
          failures[i] = f.description();
        }
      });
    }
    for (std::thread& t : programs) t.join();
    for (const std::string& failure : failures) EXPECT_THAT(failure, IsEmpty());
    DatabaseOptions options;
    options.migrations = &c.steps;
    auto db = Database::Open(scratch.url(), options);
    EXPECT_EQ(count_of(*db, "SELECT COUNT(*) FROM schema_version"),
              static_cast<int>(c.steps.size()));
    if (&c == &cases[0]) {
      for (const char* table : {"m1", "m2", "m3"}) {
        EXPECT_EQ(count_of(*db, std::string("SELECT COUNT(*) FROM ") + table), 1) << table;
      }
    } else {
      EXPECT_EQ(count_of(*db, "SELECT COUNT(*) FROM locales"), 3);
    }
  }
}

// A requisition of Alice's with one pen line (2.50), Open.
int32_t new_requisition(Fixture& f, UIReq& ui) {
  Variant req_id(int32_t{0}), line, form;
  EXPECT_TRUE(ui.AddItemFastAdd(f.session(f.ids.alice), req_id, f.ids.supplier, "P-100", "",
                                "1", "EA", line, form))
      << ui.Error()->Description();
  return req_id.to_int32();
}

// Runs `here(0)` and `there(1)` on two threads released together; the results in order.
template <class Fn>
std::array<bool, 2> at_once(Fn&& act) {
  std::barrier start(2);
  std::array<bool, 2> won{};
  auto run = [&](int who) {
    start.arrive_and_wait();
    won[who] = act(who);
  };
  std::thread a(run, 0), b(run, 1);
  a.join();
  b.join();
  return won;
}

// Two connections incrementing one stored number through read-then-write changes: the
// database orders them (or has the loser run again), so no increment is lost.
TEST(Contention, ReadThenWriteChangesLoseNoUpdate) {
  auto f = make_fixture();
  auto options = f->options();
  options.busy_timeout_ms = 20000;
  DatabasePtr dbs[2] = {f->db, Database::Open(f->url, options)};
  f->db->write([](soci::session& sql) {
    sql << "INSERT INTO settings (app_name, section, name, value) VALUES ('T', 'S', 'n', '0')";
  });
  constexpr int kEach = 40;
  std::array<std::string, 2> failures;
  at_once([&](int who) {
    try {
      for (int i = 0; i < kEach; ++i) {
        dbs[who]->write([](soci::session& sql) {
          std::string value;
          sql << "SELECT value FROM settings WHERE app_name = 'T'", soci::into(value);
          const std::string next = std::to_string(std::stoi(value) + 1);
          sql << "UPDATE settings SET value = :v WHERE app_name = 'T'", soci::use(next);
        });
      }
    } catch (const Failure& e) {
      failures[who] = e.description();
    }
    return true;
  });
  EXPECT_THAT(failures, ElementsAre(IsEmpty(), IsEmpty()));
  std::string total;
  f->db->read([&](soci::session& sql) {
    sql << "SELECT value FROM settings WHERE app_name = 'T'", soci::into(total);
  });
  EXPECT_EQ(total, std::to_string(2 * kEach));
}

// A change that read a value another connection changed before it wrote is not allowed
// to decide on the stale value: it runs again, and once out of attempts it is reported
// as busy, with nothing of it kept.
TEST(Contention, AChangeOutOfAttemptsIsReportedAsBusy) {
  if (!testing::on_postgres()) GTEST_SKIP() << "SQLite lets no second writer start";
  auto f = make_fixture();
  auto options = f->options();
  options.conflict_attempts = 1;
  auto first = Database::Open(f->url, options);
  f->db->write([](soci::session& sql) {
    sql << "INSERT INTO settings (app_name, section, name, value) VALUES ('T', 'S', 'n', '0')";
  });
  std::barrier read_done(2), other_done(2);
  std::string failure;
  int32_t number = 0;
  std::thread slow([&] {
    try {
      first->write([&](soci::session& sql) {
        std::string value;
        sql << "SELECT value FROM settings WHERE app_name = 'T'", soci::into(value);
        read_done.arrive_and_wait();
        other_done.arrive_and_wait();
        sql << "UPDATE settings SET value = 'stale' WHERE app_name = 'T'";
      });
    } catch (const Failure& e) {
      number = e.number();
      failure = e.description();
    }
  });
  read_done.arrive_and_wait();
  f->db->write([](soci::session& sql) {
    sql << "UPDATE settings SET value = 'fresh' WHERE app_name = 'T'";
  });
  other_done.arrive_and_wait();
  slow.join();
  EXPECT_EQ(number, error_number(Refusal::kDatabaseBusy));
  EXPECT_THAT(failure, ::testing::HasSubstr("busy with another change"));
  std::string value;
  f->db->read([&](soci::session& sql) {
    sql << "SELECT value FROM settings WHERE app_name = 'T'", soci::into(value);
  });
  EXPECT_EQ(value, "fresh");
}

TEST(Contention, ALockHasOneHolderAcrossProcesses) {
  auto f = make_fixture();
  auto other = testing::other_process(*f);
  UIReq here(f->runtime), there(other.runtime);
  UIReq* uis[2] = {&here, &there};
  for (int round = 0; round < 8; ++round) {
    SCOPED_TRACE(round);
    const int32_t rid = new_requisition(*f, here);
    const auto won = at_once([&](int who) {
      return uis[who]->ReqLock(f->session(f->ids.alice, 10 + who), rid);
    });
    ASSERT_NE(won[0], won[1]) << "both or neither took the lock";
    const int winner = won[0] ? 0 : 1, loser = 1 - winner;
    EXPECT_EQ(uis[loser]->Error()->Number(), error_number(Refusal::kLocked));
    // Each process sees the same holder, and a change from the loser is refused.
    for (UIReq* ui : uis) {
      EXPECT_TRUE(ui->IsValidLock(f->session(f->ids.alice, 10 + winner), rid));
      EXPECT_FALSE(ui->IsValidLock(f->session(f->ids.alice, 10 + loser), rid));
    }
    EXPECT_FALSE(uis[loser]->SetHeaderJustification(f->session(f->ids.alice, 10 + loser), rid,
                                                     "theirs"));
    EXPECT_THAT(uis[loser]->Error()->Number(),
                AnyOf(error_number(Refusal::kLocked), error_number(Refusal::kLockNotHeld)));
    EXPECT_EQ(count_of(*f->db, "SELECT COUNT(*) FROM req_locks WHERE req_id = " +
                                   std::to_string(rid)),
              1);
    // Past its expiry the lock goes to whoever asks next, in either process.
    f->advance_minutes(31);
    EXPECT_TRUE(uis[loser]->ReqLock(f->session(f->ids.alice, 10 + loser), rid))
        << uis[loser]->Error()->Description();
    EXPECT_FALSE(uis[winner]->IsValidLock(f->session(f->ids.alice, 10 + winner), rid));
    for (UIReq* ui : uis) EXPECT_TRUE(ui->ReleaseLock(f->session(f->ids.alice, 10 + loser)));
  }
  EXPECT_EQ(count_of(*f->db, "SELECT COUNT(*) FROM req_locks"), 0) << "every lock released";
}

TEST(Contention, TwoProcessesApprovingOneStepApproveItOnce) {
  auto f = make_fixture();
  auto other = testing::other_process(*f);
  UIReq req(f->runtime);
  UIWF here(f->runtime), there(other.runtime);
  UIWF* wfs[2] = {&here, &there};
  for (int round = 0; round < 6; ++round) {
    SCOPED_TRACE(round);
    const int32_t rid = new_requisition(*f, req);
    int32_t position = 0;
    ASSERT_TRUE(req.SubmitReq(f->session(f->ids.alice), rid, false, position))
        << req.Error()->Description();
    const auto won = at_once([&](int who) {
      return wfs[who]->Approve(f->session(f->ids.bob, 20 + who), rid, 1, "ok");
    });
    ASSERT_NE(won[0], won[1]) << "the step was approved " << (won[0] ? "twice" : "never");
    const int loser = won[0] ? 1 : 0;
    EXPECT_THAT(wfs[loser]->Error()->Number(),
                AnyOf(error_number(Refusal::kAlreadyActed), error_number(Refusal::kWrongStatus)))
        << wfs[loser]->Error()->Description();
    const std::string r = std::to_string(rid);
    EXPECT_EQ(count_of(*f->db, "SELECT COUNT(*) FROM req_log WHERE req_id = " + r +
                                   " AND action = 'Approved step'"),
              1);
    EXPECT_EQ(count_of(*f->db, "SELECT COUNT(*) FROM purchase_orders WHERE req_id = " + r), 1);
  }
}

}  // namespace
}  // namespace kxui::reference
