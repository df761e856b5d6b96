#include "reference/database.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <new>
#include <random>
#include <thread>

#include <soci/postgresql/soci-postgresql.h>
#include <soci/sqlite3/soci-sqlite3.h>

#include "reference/errors.h"
#include "reference/schema.h"

namespace kxui::reference {

namespace {

// Serialization failure and deadlock: the change lost to a concurrent one and may run again.
bool is_conflict_state(std::string_view state) { return state == "40001" || state == "40P01"; }

// SQLite's primary result codes that deserve their own text.
constexpr int kSqliteBusy = 5, kSqliteLocked = 6, kSqliteReadOnly = 8, kSqliteCorrupt = 11,
              kSqliteFull = 13, kSqliteCantOpen = 14, kSqliteConstraint = 19, kSqliteNotADb = 26;

[[noreturn]] void raise_sqlite(int code, std::string_view what, const std::string& detail) {
  const std::string tail = " while " + std::string(what) + " (" + detail + ")";
  switch (code & 0xff) {
    case kSqliteBusy:
    case kSqliteLocked:
      refuse(Refusal::kDatabaseBusy,
             "The database is busy with another change; try again in a moment" + tail);
    case kSqliteReadOnly:
      refuse(Refusal::kDatabaseReadOnly, "The database cannot be written to" + tail);
    case kSqliteCorrupt:
    case kSqliteNotADb:
      refuse(Refusal::kDatabaseCorrupt, "The database file is damaged or not a database" + tail);
    case kSqliteFull:
      refuse(Refusal::kDatabaseFull, "The disk holding the database is full" + tail);
    case kSqliteCantOpen:
      refuse(Refusal::kDatabaseReadOnly, "The database file cannot be opened" + tail);
    case kSqliteConstraint:
      refuse(Refusal::kConstraint, "The change contradicts the stored data" + tail);
    default:
      refuse(Refusal::kDatabaseError, "The database failed" + tail);
  }
}

[[noreturn]] void raise_postgres(const std::string& state, std::string_view what,
                                 const std::string& detail) {
  const std::string tail = " while " + std::string(what) + " (" + detail + ")";
  const std::string_view cls = std::string_view(state).substr(0, 2);
  if (is_conflict_state(state) || state == "55P03" || state == "57014") {
    refuse(Refusal::kDatabaseBusy,
           "The database is busy with another change; try again in a moment" + tail);
  }
  if (cls == "23") refuse(Refusal::kConstraint, "The change contradicts the stored data" + tail);
  if (state == "25006") refuse(Refusal::kDatabaseReadOnly, "The database cannot be written to" + tail);
  if (state == "42501") refuse(Refusal::kDatabaseReadOnly, "The database refuses the change" + tail);
  if (state == "53100") refuse(Refusal::kDatabaseFull, "The disk holding the database is full" + tail);
  if (state == "XX001" || state == "XX002") {
    refuse(Refusal::kDatabaseCorrupt, "The database is damaged" + tail);
  }
  if (cls == "08" || cls == "57") {
    refuse(Refusal::kDatabaseError, "The database cannot be reached" + tail);
  }
  refuse(Refusal::kDatabaseError, "The database failed" + tail);
}

}  // namespace

ConnectionTarget parse_connection_string(const std::string& url) {
  const std::string_view text = url;
  for (std::string_view prefix : {"postgresql://", "postgres://"}) {
    if (!text.starts_with(prefix)) continue;
    const std::string_view rest = text.substr(prefix.size());
    // "key=value" pairs go to libpq as they are; anything else is a URI libpq reads whole.
    if (rest.find('=') != std::string_view::npos &&
        rest.find_first_of("@/") > rest.find('=')) {
      return {Backend::kPostgres, std::string(rest)};
    }
    return {Backend::kPostgres, url};
  }
  for (std::string_view prefix : {"sqlite3://", "sqlite://", "sqlite3:", "sqlite:"}) {
    if (text.starts_with(prefix)) return {Backend::kSqlite, std::string(text.substr(prefix.size()))};
  }
  return {Backend::kSqlite, url};
}

void raise_database_error(std::string_view what) {
  try {
    throw;
  } catch (const Failure&) {
    throw;
  } catch (const std::bad_alloc&) {
    throw;  // the caller's out-of-memory report, not a database fault
  } catch (const soci::sqlite3_soci_error& e) {
    raise_sqlite(e.result(), what, e.get_error_message());
  } catch (const soci::postgresql_soci_error& e) {
    raise_postgres(e.sqlstate(), what, e.get_error_message());
  } catch (const soci::soci_error& e) {
    const std::string tail = " while " + std::string(what) + " (" + e.get_error_message() + ")";
    switch (e.get_error_category()) {
      case soci::soci_error::constraint_violation:
        refuse(Refusal::kConstraint, "The change contradicts the stored data" + tail);
      case soci::soci_error::connection_error:
        refuse(Refusal::kDatabaseError, "The database cannot be reached" + tail);
      case soci::soci_error::no_privilege:
        refuse(Refusal::kDatabaseReadOnly, "The database refuses the change" + tail);
      default:
        refuse(Refusal::kDatabaseError, "The database failed" + tail);
    }
  } catch (const std::exception& e) {
    refuse(Refusal::kDatabaseError,
           "The database failed while " + std::string(what) + " (" + e.what() + ")");
  }
}

Database::Database(Backend backend, DatabaseOptions options, std::string connect)
    : backend_(backend), options_(std::move(options)), connect_(std::move(connect)) {
  if (backend_ == Backend::kSqlite || options_.connections < 1) options_.connections = 1;
  connections_.reserve(static_cast<size_t>(options_.connections));
  idle_.reserve(static_cast<size_t>(options_.connections));
}

Database::~Database() = default;

std::shared_ptr<Database> Database::Open(const std::string& url, DatabaseOptions options) {
  const ConnectionTarget target = parse_connection_string(url);
  if (options.connections > 1000) {
    refuse(Refusal::kInvalidArgument, "At most 1000 database connections, not " +
                                          std::to_string(options.connections));
  }
  std::shared_ptr<Database> db(new Database(target.backend, std::move(options), target.connect));
  Connection* first = db->connections_.emplace_back(db->open_connection()).get();
  db->idle_.push_back(first);
  db->migrate();
  return db;
}

std::unique_ptr<Database::Connection> Database::open_connection() {
  auto c = std::make_unique<Connection>();
  soci::session& sql = c->sql;
  try {
    if (backend_ == Backend::kSqlite) {
      sql.open(soci::sqlite3, "db=\"" + connect_ + "\" timeout=" +
                                  std::to_string(options_.busy_timeout_ms / 1000 + 1) +
                                  (options_.read_only ? " readonly=1" : ""));
      sql << "PRAGMA busy_timeout = " + std::to_string(options_.busy_timeout_ms);
      sql << "PRAGMA foreign_keys = ON";
      // Turning a new file to WAL can answer busy without waiting, while another program
      // opens it at the same moment: try again until the busy timeout has passed.
      std::string mode;
      for (int waited = 0;; waited += 10) {
        try {
          sql << "PRAGMA journal_mode = WAL", soci::into(mode);
          break;
        } catch (const soci::soci_error&) {
          if (waited >= options_.busy_timeout_ms) throw;
          std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
      }
    } else {
      sql.open(soci::postgresql, connect_);
      configure_session(sql);
    }
  } catch (...) {
    raise_database_error("opening the database");
  }
  return c;
}

// The connections each thread holds, innermost last: calls on one thread nest.
std::vector<std::pair<const Database*, Database::Connection*>>& Database::holdings() {
  thread_local std::vector<std::pair<const Database*, Connection*>> held;
  return held;
}

Database::Lease::Lease(Database& db) : db_(db) {
  auto& held = holdings();
  for (const auto& [owner, connection] : held) {
    if (owner == &db) {
      connection_ = connection;
      return;
    }
  }
  std::unique_lock<std::mutex> lock(db.pool_mutex_);
  for (;;) {
    if (!db.idle_.empty()) {
      connection_ = db.idle_.back();
      db.idle_.pop_back();
      break;
    }
    if (db.connections_.size() + db.opening_ < static_cast<size_t>(db.options_.connections)) {
      // Opened outside the mutex: a slow server holds up only the caller that needs it.
      ++db.opening_;
      lock.unlock();
      std::unique_ptr<Connection> fresh;
      try {
        fresh = db.open_connection();
      } catch (...) {
        lock.lock();
        --db.opening_;
        db.given_back_.notify_one();
        throw;
      }
      lock.lock();
      --db.opening_;
      connection_ = db.connections_.emplace_back(std::move(fresh)).get();
      break;
    }
    db.given_back_.wait(lock);
  }
  lock.unlock();
  outermost_ = true;
  try {
    held.emplace_back(&db, connection_);
  } catch (...) {
    std::lock_guard<std::mutex> relock(db.pool_mutex_);
    db.idle_.push_back(connection_);
    db.given_back_.notify_one();
    throw;
  }
}

Database::Lease::~Lease() {
  if (!outermost_) return;
  holdings().pop_back();
  {
    std::lock_guard<std::mutex> lock(db_.pool_mutex_);
    db_.idle_.push_back(connection_);  // room reserved for every connection: cannot throw
  }
  db_.given_back_.notify_one();
}

Database::Connection& Database::held() {
  for (const auto& [owner, connection] : holdings()) {
    if (owner == this) return *connection;
  }
  refuse(Refusal::kDatabaseError, "A kept statement was used outside a database call");
}

size_t Database::connections_open() {
  std::lock_guard<std::mutex> lock(pool_mutex_);
  return connections_.size();
}

Date Database::now() const {
  if (options_.clock) return options_.clock();
  const auto secs = std::chrono::duration_cast<std::chrono::seconds>(
                        std::chrono::system_clock::now().time_since_epoch())
                        .count();
  return Date::from_seconds(secs);
}

void Database::configure_session(soci::session& sql) {
  if (backend_ != Backend::kPostgres) return;
  // Quiet notices ("table exists, skipping") stay out of the client's stderr.
  sql << "SET client_min_messages = warning";
  if (options_.read_only) sql << "SET SESSION CHARACTERISTICS AS TRANSACTION READ ONLY";
}

bool Database::lost_connection(Connection& c) noexcept {
  if (backend_ != Backend::kPostgres) return false;
  // Only a database error can mean the connection broke; a business refusal cannot.
  bool database_error = false;
  try {
    throw;
  } catch (const soci::soci_error&) {
    database_error = true;
  } catch (const Failure& f) {
    // A statement's error turned into a business error inside the call.
    database_error = f.number() == error_number(Refusal::kDatabaseError);
  } catch (...) {
  }
  // libpq marks the connection bad once it sees it closed; a live one answers a ping.
  if (database_error && !c.lost && !c.sql.is_connected()) c.lost = true;
  return database_error && c.lost;
}

void Database::reopen_if_lost(Connection& c) {
  if (!c.lost) return;
  // Statements go before the connection they were prepared on; the new one prepares its own.
  c.prepared.clear();
  try {
    c.sql.reconnect();
    configure_session(c.sql);
  } catch (...) {
    raise_database_error("connecting to the database again");
  }
  c.lost = false;
}

void Database::raise_lost_commit() {
  refuse(Refusal::kDatabaseError,
         "The connection to the database was lost while saving a change; it may or may not "
         "have been saved, so check before doing it again");
}

void Database::begin(Connection& c) {
  // SQLite: the write lock from the start, so two changes never interleave. PostgreSQL:
  // serializable, so a change that read what a concurrent one wrote fails at once
  // (and runs again) instead of deciding on stale data.
  c.sql << (backend_ == Backend::kSqlite ? "BEGIN IMMEDIATE" : "BEGIN ISOLATION LEVEL SERIALIZABLE");
}

void Database::commit(Connection& c) { c.sql << "COMMIT"; }

void Database::rollback(Connection& c) noexcept {
  try {
    c.sql << "ROLLBACK";
  } catch (...) {
    // The database already ended the transaction (or the connection is gone).
  }
}

bool Database::retry_conflict(int attempt) noexcept {
  if (backend_ != Backend::kPostgres || attempt >= options_.conflict_attempts) return false;
  bool conflict = false;
  try {
    throw;
  } catch (const soci::postgresql_soci_error& e) {
    conflict = is_conflict_state(e.sqlstate());
  } catch (const Failure& f) {
    // A statement's error already turned into a business error inside the change.
    conflict = f.number() == error_number(Refusal::kDatabaseBusy);
  } catch (...) {
  }
  if (!conflict) return false;
  // Randomized, growing pauses keep the colliding changes from meeting again.
  thread_local std::minstd_rand random(std::random_device{}());
  const int ceiling_ms = 1 << std::min(attempt, 6);
  std::this_thread::sleep_for(std::chrono::microseconds(
      std::uniform_int_distribution<int>(100, ceiling_ms * 1000)(random)));
  return true;
}

int32_t Database::schema_version() {
  return read([](soci::session& sql) {
    int version = 0;
    soci::indicator ind = soci::i_ok;
    sql << "SELECT MAX(version) FROM schema_version", soci::into(version, ind);
    return ind == soci::i_null ? 0 : version;
  });
}

std::vector<int32_t> Database::applied_versions() {
  return read([](soci::session& sql) {
    std::vector<int32_t> out;
    soci::rowset<int> rows = (sql.prepare << "SELECT version FROM schema_version ORDER BY version");
    for (int v : rows) out.push_back(v);
    return out;
  });
}

void Database::migrate() {
  // One connection for the whole migration: the advisory lock belongs to it.
  Lease lease(*this);
  soci::session& session = lease.connection().sql;
  const std::vector<Migration>& all = options_.migrations ? *options_.migrations : migrations();
  std::vector<int32_t> applied;
  bool has_table = true;
  try {
    applied = applied_versions();
  } catch (const Failure& f) {
    // A new database has no version table yet; any other failure (a damaged file) counts.
    if (f.number() != error_number(Refusal::kDatabaseError)) throw;
    has_table = false;
  }
  const int32_t known = all.empty() ? 0 : all.back().version;
  if (!applied.empty() && applied.back() > known) {
    refuse(Refusal::kSchemaTooNew, "The database was written by a newer program (schema " +
                                       std::to_string(applied.back()) +
                                       ", this program knows " + std::to_string(known) + ")");
  }
  auto is_applied = [&](int32_t version) {
    return std::binary_search(applied.begin(), applied.end(), version);
  };
  // Each version on its own: one missing below the highest applied (a migration merged
  // from another line of work) is applied too. An up-to-date database is opened
  // without writing, so read-only files open.
  if (has_table && std::all_of(all.begin(), all.end(),
                               [&](const Migration& m) { return is_applied(m.version); })) {
    return;
  }
  // PostgreSQL: one program at a time migrates this schema; the others wait here and
  // then find the versions recorded. SQLite's write lock does the same per step.
  const bool postgres = backend_ == Backend::kPostgres;
  if (postgres) {
    try {
      session << "SELECT pg_advisory_lock(20531, hashtext(current_schema()))";
    } catch (...) {
      raise_database_error("waiting for another program's migration");
    }
  }
  try {
    write([&](soci::session& sql) {
      sql << "CREATE TABLE IF NOT EXISTS schema_version (version INTEGER PRIMARY KEY, "
             "name VARCHAR(100) NOT NULL, applied VARCHAR(19) NOT NULL)";
    });
    for (const Migration& m : all) {
      if (is_applied(m.version)) continue;
      // Each step with its version row in one transaction: a failed step leaves the
      // previous schema intact, and a step another program applied meanwhile is skipped.
      write([&](soci::session& sql) {
        int done = 0;
        sql << "SELECT COUNT(*) FROM schema_version WHERE version = :v", soci::use(m.version),
            soci::into(done);
        if (done > 0) return;
        m.apply(sql, backend_);
        const std::string applied_at = date_text(now()), name(m.name);
        sql << "INSERT INTO schema_version (version, name, applied) VALUES (:v, :n, :a)",
            soci::use(m.version), soci::use(name), soci::use(applied_at);
      });
    }
  } catch (...) {
    if (postgres) unlock_migrations(session);
    throw;
  }
  if (postgres) unlock_migrations(session);
}

void Database::unlock_migrations(soci::session& sql) noexcept {
  try {
    sql << "SELECT pg_advisory_unlock(20531, hashtext(current_schema()))";
  } catch (...) {
    // The lock goes with the connection anyway.
  }
}

std::string date_text(Date d) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%04d-%02d-%02d %02d:%02d:%02d", d.year(), d.month(), d.day(),
                d.hour(), d.minute(), d.second());
  return buf;
}

Date parse_date_text(const std::string& text) {
  int y = 0, mo = 0, d = 0, h = 0, mi = 0, s = 0;
  if (std::sscanf(text.c_str(), "%d-%d-%d %d:%d:%d", &y, &mo, &d, &h, &mi, &s) < 3) {
    refuse(Refusal::kDatabaseCorrupt, "A stored date cannot be read: \"" + text + "\"");
  }
  return Date::from_civil(y, mo, d, h, mi, s);
}

}  // namespace kxui::reference
