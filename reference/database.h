// Database: the reference tier's one connection, over SQLite or PostgreSQL through SOCI.
// Opening applies the schema migrations; every change runs in one transaction that is
// rolled back on any failure; database errors come out as Failures with a clear text.
// Concurrent changes, from this process or another one on the same database, are
// serialized by the database itself: SQLite takes its write lock when a change begins,
// PostgreSQL runs changes serializable and replays one that lost a conflict.
#pragma once

#include <cstdint>
#include <functional>
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

  // Runs `fn(session)` alone on the connection and in one transaction: committed when it
  // returns, rolled back when it throws. Database errors become Failures. On PostgreSQL
  // a change that collides with a concurrent one is rolled back and `fn` runs again, so
  // `fn` must leave nothing outside the database changed except what it assigns.
  // When the PostgreSQL connection turns out broken (the server restarted, the connection
  // was cut), the outermost call reconnects and runs the change once more if it failed
  // before COMMIT was sent; a connection lost during COMMIT is reported, never repeated.
  template <class Fn>
  auto write(Fn&& fn) -> decltype(fn(std::declval<soci::session&>()));
  // Runs `fn(session)` alone on the connection, outside a transaction of its own; once
  // more on a new connection when the PostgreSQL one turns out broken.
  template <class Fn>
  auto read(Fn&& fn) -> decltype(fn(std::declval<soci::session&>()));

  // A statement prepared once per connection, held with the variables it is bound to.
  struct PreparedState {
    virtual ~PreparedState() = default;
    std::unique_ptr<soci::statement> statement;
  };
  // The state S (a PreparedState) kept under `key`: `prepare` builds its statement,
  // bound to S's own members, the first time; later calls reuse it. Call inside read()
  // or write(), which keep the connection to one caller at a time. A reconnect drops
  // every kept state, so hold none across calls.
  template <class S>
  S& prepared(const std::string& key, const std::function<void(soci::session&, S&)>& prepare) {
    std::unique_ptr<PreparedState>& slot = prepared_slot(key);
    if (!slot) {
      auto state = std::make_unique<S>();
      prepare(sql_, *state);
      slot = std::move(state);
    }
    return static_cast<S&>(*slot);
  }

  ~Database();

 private:
  Database(Backend backend, DatabaseOptions options);
  void begin();
  void commit();
  void rollback() noexcept;
  // After a failed attempt (the exception in flight): whether to run the change again.
  bool retry_conflict(int attempt) noexcept;
  // After a failed call (the exception in flight): whether the PostgreSQL connection broke
  // under it. If so, its kept statements are dropped and the next call reconnects.
  bool lost_connection() noexcept;
  // Reconnects a connection found broken. Throws Failure when the server cannot be reached.
  void reopen_if_lost();
  // Per connection: quiet notices, and the read-only mode when asked for.
  void configure_session();
  [[noreturn]] static void raise_lost_commit();
  struct CallDepth {
    explicit CallDepth(int& n) : n_(n) { ++n_; }
    ~CallDepth() { --n_; }
    CallDepth(const CallDepth&) = delete;
    CallDepth& operator=(const CallDepth&) = delete;
    int& n_;
  };
  void migrate();
  void unlock_migrations() noexcept;
  std::vector<int32_t> applied_versions();
  std::unique_ptr<PreparedState>& prepared_slot(const std::string& key);

  Backend backend_;
  DatabaseOptions options_;
  std::recursive_mutex mutex_;
  int depth_ = 0;  // nested write() calls join the outer transaction
  int calls_ = 0;  // read() and write() calls in progress on this thread, nested
  bool lost_ = false;  // the connection broke; the next outermost call reconnects
  soci::session sql_;
  struct Cache;
  std::unique_ptr<Cache> cache_;
};

using DatabasePtr = std::shared_ptr<Database>;

// Raises the Failure that stands for a database error (the exception in flight).
[[noreturn]] void raise_database_error(std::string_view what);

template <class Fn>
auto Database::write(Fn&& fn) -> decltype(fn(std::declval<soci::session&>())) {
  // The mutex keeps this one connection to one thread at a time; it orders nothing
  // between connections, which is the database's job.
  std::lock_guard<std::recursive_mutex> guard(mutex_);
  if (depth_ > 0) return fn(sql_);
  // Only the outermost call may open the connection again: an inner one would pull the
  // connection, its transaction and its statements from under its caller.
  const bool outermost = calls_ == 0;
  CallDepth call(calls_);
  bool reconnected = !outermost;
  for (int attempt = 1;; ++attempt) {
    try {
      if (outermost) reopen_if_lost();
      begin();
    } catch (...) {
      // Nothing was sent that could have changed anything: the change may run again.
      if (lost_connection() && !reconnected) {
        reconnected = true;
        continue;
      }
      raise_database_error("starting a change");
    }
    ++depth_;
    bool committing = false;
    try {
      if constexpr (std::is_void_v<decltype(fn(sql_))>) {
        fn(sql_);
        --depth_;
        committing = true;
        commit();
        return;
      } else {
        auto result = fn(sql_);
        --depth_;
        committing = true;
        commit();
        return result;
      }
    } catch (...) {
      depth_ = 0;
      rollback();
      if (retry_conflict(attempt)) continue;
      if (lost_connection()) {
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
  std::lock_guard<std::recursive_mutex> guard(mutex_);
  const bool outermost = calls_ == 0;
  CallDepth call(calls_);
  for (bool again = outermost;; again = false) {
    try {
      if (outermost) reopen_if_lost();
      return fn(sql_);
    } catch (...) {
      // A read changes nothing: after a lost connection it runs once more on a new one.
      if (lost_connection() && again) continue;
      raise_database_error("reading");
    }
  }
}

// Dates are stored as "yyyy-mm-dd hh:mm:ss" text in zone 15.
std::string date_text(Date d);
Date parse_date_text(const std::string& text);

}  // namespace kxui::reference
