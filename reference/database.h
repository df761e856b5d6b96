// Database: the reference tier's connection to SQLite or PostgreSQL through SOCI (on
// PostgreSQL a small pool of them).
// Opening applies the schema migrations; every change runs in one transaction that is
// rolled back on any failure; database errors come out as Failures with a clear text.
// Concurrent changes, from this process or another one on the same database, are
// serialized by the database itself: SQLite takes its write lock when a change begins,
// PostgreSQL runs changes serializable and replays one that lost a conflict.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "reference/soci_include.h"

#include "kxui/frame/failure.h"
#include "kxui/frame/variant.h"

namespace kxui::reference {

enum class Backend { kSqlite, kPostgres };
struct Migration;

struct DatabaseOptions {
  // How long a requisition or order lock holds without being renewed.
  int32_t lock_minutes = 30;
  // How long SQLite waits for another writer before answering "busy".
  int32_t busy_timeout_ms = 5000;
  // Opens SQLite read-only: reading works, every change fails as "cannot be written to".
  bool read_only = false;
  // The clock, in zone 15 (UTC); tests replace it to move time.
  std::function<Date()> clock;
  // How often a PostgreSQL change that lost a serialization conflict is run again
  // before it is reported as busy.
  int32_t conflict_attempts = 30;
  // The schema to bring the database to; null means the tier's own migrations().
  const std::vector<Migration>* migrations = nullptr;
  // PostgreSQL: how many connections (1 to 1000) calls from different threads may run on
  // at the same time, opened as they are needed. SQLite keeps one: its write lock lets
  // one change through at a time anyway.
  int32_t connections = 1;
};

// Which backend a connection string names, and what is handed to it: "postgresql://..."
// or "postgres://..." (a libpq URI, or "postgresql://" followed by "key=value" pairs)
// opens PostgreSQL; "sqlite:<file>", "sqlite3://<file>" or a bare file name opens SQLite.
struct ConnectionTarget {
  Backend backend = Backend::kSqlite;
  std::string connect;
};
ConnectionTarget parse_connection_string(const std::string& url);

class Database {
 public:
  // Opens the database a connection string names (see parse_connection_string), then
  // brings the schema up to date: every migration not yet recorded is applied in its own
  // transaction, once even when several programs open the database at the same time.
  // Throws Failure (busy, read-only, corrupt, a schema newer than this program, a
  // connection refused) with a clear description.
  static std::shared_ptr<Database> Open(const std::string& url, DatabaseOptions options = {});

  Backend backend() const { return backend_; }
  const DatabaseOptions& options() const { return options_; }
  // The current time in zone 15, whole seconds.
  Date now() const;
  // The highest migration applied.
  int32_t schema_version();

  // Runs `fn(session)` alone on a connection and in one transaction: committed when it
  // returns, rolled back when it throws. Database errors become Failures. On PostgreSQL
  // a change that collides with a concurrent one is rolled back and `fn` runs again, so
  // `fn` must leave nothing outside the database changed except what it assigns.
  // When the PostgreSQL connection turns out broken (the server restarted, the connection
  // was cut), the outermost call reconnects and runs the change once more if it failed
  // before COMMIT was sent; a connection lost during COMMIT is reported, never repeated.
  // Calls inside the call, on the same thread, use the same connection and transaction.
  template <class Fn>
  auto write(Fn&& fn) -> decltype(fn(std::declval<soci::session&>()));
  // Runs `fn(session)` alone on a connection, outside a transaction of its own; once
  // more on a new connection when the PostgreSQL one turns out broken.
  template <class Fn>
  auto read(Fn&& fn) -> decltype(fn(std::declval<soci::session&>()));

  // A statement prepared once per connection, held with the variables it is bound to.
  struct PreparedState {
    virtual ~PreparedState() = default;
    std::unique_ptr<soci::statement> statement;
  };
  // The state S (a PreparedState) kept under `key` on the calling thread's connection:
  // `prepare` builds its statement, bound to S's own members, the first time; later calls
  // reuse it. Call inside read() or write(), which keep the connection to one caller at a
  // time. A reconnect drops every kept state, so hold none across calls.
  template <class S>
  S& prepared(const std::string& key, const std::function<void(soci::session&, S&)>& prepare) {
    Connection& c = held();
    std::unique_ptr<PreparedState>& slot = c.prepared[key];
    if (!slot) {
      auto state = std::make_unique<S>();
      prepare(c.sql, *state);
      slot = std::move(state);
    }
    return static_cast<S&>(*slot);
  }

  // How many connections are open.
  size_t connections_open();

  ~Database();

 private:
  struct Connection {
    soci::session sql;
    // After the session, so that statements go before the session they were prepared on.
    std::map<std::string, std::unique_ptr<PreparedState>> prepared;
    int depth = 0;      // nested write() calls join the outer transaction
    bool lost = false;  // the connection broke; the next outermost call reconnects
  };
  // The calling thread's connection for the length of a call: the one it already holds
  // (a call inside a call), else an idle one, else a new one while the pool has room,
  // else the first one given back.
  class Lease {
   public:
    explicit Lease(Database& db);  // throws Failure when a new connection cannot be opened
    ~Lease();
    Lease(const Lease&) = delete;
    Lease& operator=(const Lease&) = delete;
    Connection& connection() const { return *connection_; }
    // Whether the call holds the connection first: only it may reconnect, since an inner
    // call would pull the connection, its transaction and statements from under its caller.
    bool outermost() const { return outermost_; }

   private:
    Database& db_;
    Connection* connection_ = nullptr;
    bool outermost_ = false;
  };

  Database(Backend backend, DatabaseOptions options, std::string connect);
  std::unique_ptr<Connection> open_connection();
  Connection& held();
  static std::vector<std::pair<const Database*, Connection*>>& holdings();
  void begin(Connection& c);
  void commit(Connection& c);
  void rollback(Connection& c) noexcept;
  // After a failed attempt (the exception in flight): whether to run the change again.
  bool retry_conflict(int attempt) noexcept;
  // After a failed call (the exception in flight): whether the PostgreSQL connection broke
  // under it. If so, the next outermost call on it reconnects.
  bool lost_connection(Connection& c) noexcept;
  // Reconnects a connection found broken, dropping its kept statements. Throws Failure
  // when the server cannot be reached.
  void reopen_if_lost(Connection& c);
  // Per PostgreSQL connection: quiet notices, and the read-only mode when asked for.
  void configure_session(soci::session& sql);
  [[noreturn]] static void raise_lost_commit();
  void migrate();
  void unlock_migrations(soci::session& sql) noexcept;
  std::vector<int32_t> applied_versions();

  Backend backend_;
  DatabaseOptions options_;
  std::string connect_;
  std::mutex pool_mutex_;
  std::condition_variable given_back_;
  std::vector<std::unique_ptr<Connection>> connections_;  // guarded by pool_mutex_
  std::vector<Connection*> idle_;                         // guarded by pool_mutex_
  size_t opening_ = 0;  // connections being opened outside the mutex; guarded by it
};

using DatabasePtr = std::shared_ptr<Database>;

// Raises the Failure that stands for a database error (the exception in flight).
[[noreturn]] void raise_database_error(std::string_view what);

template <class Fn>
auto Database::write(Fn&& fn) -> decltype(fn(std::declval<soci::session&>())) {
  Lease lease(*this);
  Connection& c = lease.connection();
  if (c.depth > 0) return fn(c.sql);
  bool reconnected = !lease.outermost();
  for (int attempt = 1;; ++attempt) {
    try {
      if (lease.outermost()) reopen_if_lost(c);
      begin(c);
    } catch (...) {
      // Nothing was sent that could have changed anything: the change may run again.
      if (lost_connection(c) && !reconnected) {
        reconnected = true;
        continue;
      }
      raise_database_error("starting a change");
    }
    ++c.depth;
    bool committing = false;
    try {
      if constexpr (std::is_void_v<decltype(fn(c.sql))>) {
        fn(c.sql);
        --c.depth;
        committing = true;
        commit(c);
        return;
      } else {
        auto result = fn(c.sql);
        --c.depth;
        committing = true;
        commit(c);
        return result;
      }
    } catch (...) {
      c.depth = 0;
      rollback(c);
      if (retry_conflict(attempt)) continue;
      if (lost_connection(c)) {
        // Lost before COMMIT was sent, the server rolled the change back: run it once more.
        // Lost during COMMIT, nobody knows whether it was saved: running it again could
        // do it twice, so the caller hears that the outcome is unknown.
        if (committing) raise_lost_commit();
        if (!reconnected) {
          reconnected = true;
          continue;
        }
      }
      raise_database_error("saving a change");
    }
  }
}

template <class Fn>
auto Database::read(Fn&& fn) -> decltype(fn(std::declval<soci::session&>())) {
  Lease lease(*this);
  Connection& c = lease.connection();
  for (bool again = lease.outermost();; again = false) {
    try {
      if (lease.outermost()) reopen_if_lost(c);
      return fn(c.sql);
    } catch (...) {
      // A read changes nothing: after a lost connection it runs once more on a new one.
      if (lost_connection(c) && again) continue;
      raise_database_error("reading");
    }
  }
}

// Dates are stored as "yyyy-mm-dd hh:mm:ss" text in zone 15.
std::string date_text(Date d);
Date parse_date_text(const std::string& text);

}  // namespace kxui::reference
