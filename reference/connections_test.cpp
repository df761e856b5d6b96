// The tier's connections: calls from several threads on a pool of PostgreSQL connections
// (one SQLite connection), calls inside calls on their caller's connection; and a
// connection cut under the tier (a server restart, a dropped connection): the next call
// reconnects, a change cut before COMMIT runs once more and is saved once, and a change
// whose COMMIT was cut is reported instead of being repeated.
#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "reference/errors.h"
#include "reference/test_fixture.h"

namespace kxui::reference {
namespace {

using ::testing::HasSubstr;

class Reconnect : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!testing::on_postgres()) GTEST_SKIP() << "SQLite has no connection to lose";
    scratch_ = std::make_unique<testing::ScratchDatabase>(tmp_.path, "kx.db");
    db_ = Database::Open(scratch_->url());
  }

  // Ends the server process behind `sql` from a connection of its own, as an administrator
  // or a server restart does, and waits until it is gone.
  static void cut(soci::session& sql) {
    int pid = 0;
    sql << "SELECT pg_backend_pid()", soci::into(pid);
    soci::session admin("postgresql", parse_connection_string(testing::server_url()).connect);
    int ended = 0;
    admin << "SELECT pg_terminate_backend(:p, 10000)::int", soci::use(pid), soci::into(ended);
    ASSERT_EQ(ended, 1) << "backend " << pid << " still running";
  }
  int backend_pid() {
    return db_->read([](soci::session& sql) {
      int pid = 0;
      sql << "SELECT pg_backend_pid()", soci::into(pid);
      return pid;
    });
  }
  int borgs_named(const std::string& name) {
    return db_->read([&](soci::session& sql) {
      int n = 0;
      sql << "SELECT COUNT(*) FROM borgs WHERE name = :n", soci::use(name), soci::into(n);
      return n;
    });
  }
  static void add_borg(soci::session& sql, const std::string& name) {
    sql << "INSERT INTO borgs (name, currency_code) VALUES (:n, 'USD')", soci::use(name);
  }

  // A kept statement counting borgs; `prepares` counts how often it was prepared.
  struct CountBorgs : Database::PreparedState {
    int count = 0;
  };
  int kept_count() {
    return db_->read([&](soci::session&) {
      CountBorgs& q = db_->prepared<CountBorgs>("count borgs", [&](soci::session& sql,
                                                                   CountBorgs& st) {
        ++prepares_;
        st.statement = std::make_unique<soci::statement>(
            (sql.prepare << "SELECT COUNT(*) FROM borgs", soci::into(st.count)));
      });
      q.statement->execute(true);
      return q.count;
    });
  }

  testing::TempDir tmp_;
  std::unique_ptr<testing::ScratchDatabase> scratch_;
  DatabasePtr db_;
  int prepares_ = 0;
};

int32_t refusal_of(const std::function<void()>& fn, std::string* text = nullptr) {
  try {
    fn();
  } catch (const Failure& f) {
    if (text) *text = f.description();
    return f.number();
  }
  return 0;
}

TEST_F(Reconnect, TheFirstCallAfterAnIdleConnectionWasCutSucceeds) {
  ASSERT_EQ(kept_count(), 0);
  struct Case {
    const char* first_call;
    std::function<void()> call;
    int borgs_after;
  } cases[] = {
      {"read", [&] { EXPECT_EQ(borgs_named("none"), 0); }, 0},
      {"kept statement", [&] { EXPECT_EQ(kept_count(), 0); }, 0},
      {"change", [&] { db_->write([](soci::session& sql) { add_borg(sql, "after cut"); }); }, 1},
      {"change with a result",
       [&] {
         const int id = db_->write([](soci::session& sql) {
           int borg = 0;
           sql << "INSERT INTO borgs (name, currency_code) VALUES ('returned', 'USD') "
                  "RETURNING borg_id",
               soci::into(borg);
           return borg;
         });
         EXPECT_GT(id, 0);
       },
       2},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.first_call);
    const int before = backend_pid();
    db_->read([](soci::session& sql) { cut(sql); });
    c.call();
    EXPECT_NE(backend_pid(), before) << "a new connection serves the call";
    // Kept statements are prepared afresh on the new connection and count right.
    EXPECT_EQ(kept_count(), c.borgs_after);
  }
  EXPECT_EQ(borgs_named("after cut"), 1);
  EXPECT_EQ(borgs_named("returned"), 1);
  // Once for the first connection, then once after each cut.
  EXPECT_EQ(prepares_, 1 + 4);
}

TEST_F(Reconnect, AChangeCutBeforeCommitRunsOnceMoreAndIsSavedOnce) {
  kept_count();
  // What inside the change first meets the cut connection.
  struct Case {
    const char* name;
    std::function<void(soci::session&)> next;
  } cases[] = {
      {"a statement", [](soci::session& sql) { sql << "SELECT 1"; }},
      {"a nested read", [&](soci::session&) { borgs_named("x"); }},
      {"a kept statement", [&](soci::session&) { kept_count(); }},
      {"a nested change", [&](soci::session&) {
         db_->write([](soci::session& sql) { add_borg(sql, "nested"); });
       }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    int attempts = 0;
    const std::string name = c.name;
    db_->write([&](soci::session& sql) {
      ++attempts;
      add_borg(sql, name);
      if (attempts == 1) cut(sql);
      c.next(sql);
    });
    EXPECT_EQ(attempts, 2);
    EXPECT_EQ(borgs_named(name), 1);
  }
  EXPECT_EQ(borgs_named("nested"), 1) << "the nested change is part of the one saved";
}

TEST_F(Reconnect, LostCommitsAndRepeatedCutsAreReportedNotRepeated) {
  struct Case {
    const char* name;
    int cut_on_attempts;  // cut on every attempt up to this one
    bool cut_last;        // cut as the change's last act, so COMMIT meets it
    int attempts;
    const char* text;
  } cases[] = {
      {"commit cut", 1, true, 1, "may or may not have been saved"},
      {"cut twice", 2, false, 2, "cannot be reached while saving a change"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    int attempts = 0;
    std::string text;
    const std::string name = c.name;
    const int32_t number = refusal_of(
        [&] {
          db_->write([&](soci::session& sql) {
            ++attempts;
            add_borg(sql, name);
            if (attempts > c.cut_on_attempts) return;
            cut(sql);
            if (!c.cut_last) sql << "SELECT 1";
          });
        },
        &text);
    EXPECT_EQ(number, error_number(Refusal::kDatabaseError));
    EXPECT_THAT(text, HasSubstr(c.text));
    EXPECT_EQ(attempts, c.attempts);
    // The server rolled back what it never saw committed; the next call works again.
    EXPECT_EQ(borgs_named(name), 0);
  }
  db_->write([](soci::session& sql) { add_borg(sql, "afterwards"); });
  EXPECT_EQ(borgs_named("afterwards"), 1);
}

TEST_F(Reconnect, ANewConnectionKeepsTheSessionSettings) {
  DatabaseOptions options;
  options.read_only = true;
  auto ro = Database::Open(scratch_->url(), options);
  ro->read([](soci::session& sql) { cut(sql); });
  std::string text;
  EXPECT_EQ(refusal_of([&] { ro->write([](soci::session& sql) { add_borg(sql, "ro"); }); },
                       &text),
            error_number(Refusal::kDatabaseReadOnly))
      << text;
  EXPECT_EQ(borgs_named("ro"), 0);
  // A business refusal is not taken for a lost connection: the change runs once.
  int attempts = 0;
  EXPECT_EQ(refusal_of([&] {
              db_->write([&](soci::session&) {
                ++attempts;
                refuse(Refusal::kNotFound, "no such thing");
              });
            }),
            error_number(Refusal::kNotFound));
  EXPECT_EQ(attempts, 1);
}

int backend_pid(soci::session& sql) {
  if (!testing::on_postgres()) return 0;
  int pid = 0;
  sql << "SELECT pg_backend_pid()", soci::into(pid);
  return pid;
}

TEST(Connections, ThreadsShareAPoolOfConnections) {
  testing::TempDir tmp;
  testing::ScratchDatabase scratch(tmp.path, "kx.db");
  const bool sqlite = !testing::on_postgres();
  struct Case {
    int pool, threads;
    size_t together;  // calls running at the same time, at most and at last
  } cases[] = {
      {3, 3, sqlite ? 1u : 3u},
      {2, 5, sqlite ? 1u : 2u},
      {1, 3, 1u},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE("pool of " + std::to_string(c.pool) + ", " + std::to_string(c.threads) +
                 " threads");
    DatabaseOptions options;
    options.connections = c.pool;
    auto db = Database::Open(scratch.url(), options);
    std::mutex m;
    std::condition_variable changed;
    size_t inside = 0, most = 0;
    std::set<int> pids;
    std::vector<std::thread> threads;
    for (int t = 0; t < c.threads; ++t) {
      threads.emplace_back([&] {
        db->read([&](soci::session& sql) {
          const int pid = backend_pid(sql);
          std::unique_lock<std::mutex> lock(m);
          pids.insert(pid);
          most = std::max(most, ++inside);
          changed.notify_all();
          // Each call stays until as many run as the pool allows (or gives up after a while).
          changed.wait_for(lock, std::chrono::seconds(5), [&] { return most >= c.together; });
          --inside;
        });
      });
    }
    for (std::thread& t : threads) t.join();
    EXPECT_EQ(most, c.together);
    EXPECT_EQ(db->connections_open(), c.together);
    if (!sqlite) {
      EXPECT_EQ(pids.size(), c.together) << "each connection its own server process";
    }
  }
}

TEST(Connections, CallsInsideACallUseItsConnection) {
  testing::TempDir tmp;
  testing::ScratchDatabase scratch(tmp.path, "kx.db");
  DatabaseOptions options;
  options.connections = 4;
  auto db = Database::Open(scratch.url(), options);
  struct CountBorgs : Database::PreparedState {
    int count = 0;
  };
  auto kept_count = [&] {
    return db->read([&](soci::session&) {
      CountBorgs& q = db->prepared<CountBorgs>("count", [](soci::session& sql, CountBorgs& st) {
        st.statement = std::make_unique<soci::statement>(
            (sql.prepare << "SELECT COUNT(*) FROM borgs", soci::into(st.count)));
      });
      q.statement->execute(true);
      return q.count;
    });
  };
  db->write([&](soci::session& sql) {
    sql << "INSERT INTO borgs (name, currency_code) VALUES ('uncommitted', 'USD')";
    const int outer_pid = backend_pid(sql);
    // Only the change's own connection sees its row before COMMIT.
    EXPECT_EQ(db->read([](soci::session& inner) {
                int n = 0;
                inner << "SELECT COUNT(*) FROM borgs", soci::into(n);
                return n;
              }),
              1);
    EXPECT_EQ(kept_count(), 1);
    EXPECT_EQ(db->read([](soci::session& inner) { return backend_pid(inner); }), outer_pid);
    db->write([](soci::session& inner) {
      inner << "INSERT INTO borgs (name, currency_code) VALUES ('nested', 'USD')";
    });
    EXPECT_EQ(kept_count(), 2);
  });
  EXPECT_EQ(db->connections_open(), 1u);
  EXPECT_EQ(kept_count(), 2);
  // A kept statement needs a call to belong to; outside one it is refused, not guessed.
  EXPECT_EQ(refusal_of([&] {
              db->prepared<CountBorgs>("count", [](soci::session&, CountBorgs&) {});
            }),
            error_number(Refusal::kDatabaseError));
  DatabaseOptions too_many;
  too_many.connections = 1001;
  EXPECT_EQ(refusal_of([&] { Database::Open(scratch.url(), too_many); }),
            error_number(Refusal::kInvalidArgument));
}

}  // namespace
}  // namespace kxui::reference
