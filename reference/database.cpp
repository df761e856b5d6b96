#include "reference/database.h"

#include <chrono>
#include <cstdio>
#include <map>
#include <new>

#include <soci/sqlite3/soci-sqlite3.h>

#include "reference/errors.h"
#include "reference/schema.h"

namespace kxui::reference {

struct Database::Cache {
  std::map<std::string, std::unique_ptr<Database::PreparedState>> states;
};

namespace {

constexpr std::string_view kSqlitePrefix = "sqlite3://";
constexpr std::string_view kPostgresPrefix = "postgresql://";

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

}  // namespace

void raise_database_error(std::string_view what) {
  try {
    throw;
  } catch (const Failure&) {
    throw;
  } catch (const std::bad_alloc&) {
    throw;  // the caller's out-of-memory report, not a database fault
  } catch (const soci::sqlite3_soci_error& e) {
    raise_sqlite(e.result(), what, e.get_error_message());
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

Database::Database(Backend backend, DatabaseOptions options)
    : backend_(backend), options_(std::move(options)), cache_(std::make_unique<Cache>()) {}

Database::~Database() {
  // Statements go before the session they were prepared on.
  cache_.reset();
}

std::shared_ptr<Database> Database::Open(const std::string& url, DatabaseOptions options) {
  std::string_view rest = url;
  Backend backend = Backend::kSqlite;
  if (rest.starts_with(kPostgresPrefix)) {
    backend = Backend::kPostgres;
    rest.remove_prefix(kPostgresPrefix.size());
  } else if (rest.starts_with(kSqlitePrefix)) {
    rest.remove_prefix(kSqlitePrefix.size());
  }
  std::shared_ptr<Database> db(new Database(backend, std::move(options)));
  std::lock_guard<std::recursive_mutex> guard(db->mutex_);
  try {
    if (backend == Backend::kSqlite) {
      db->sql_.open(soci::sqlite3, "db=\"" + std::string(rest) + "\" timeout=" +
                                       std::to_string(db->options_.busy_timeout_ms / 1000 + 1) +
                                       (db->options_.read_only ? " readonly=1" : ""));
      db->sql_ << "PRAGMA busy_timeout = " + std::to_string(db->options_.busy_timeout_ms);
      db->sql_ << "PRAGMA foreign_keys = ON";
      std::string mode;
      db->sql_ << "PRAGMA journal_mode = WAL", soci::into(mode);
    } else {
      // Loaded by name when first used: building needs neither the PostgreSQL client
      // headers nor its backend, and SQLite-only hosts never load them.
      db->sql_.open("postgresql", std::string(rest));
    }
  } catch (...) {
    raise_database_error("opening the database");
  }
  db->migrate();
  return db;
}

Date Database::now() const {
  if (options_.clock) return options_.clock();
  const auto secs = std::chrono::duration_cast<std::chrono::seconds>(
                        std::chrono::system_clock::now().time_since_epoch())
                        .count();
  return Date::from_seconds(secs);
}

void Database::begin() {
  sql_ << (backend_ == Backend::kSqlite ? "BEGIN IMMEDIATE" : "BEGIN");
}

void Database::commit() { sql_ << "COMMIT"; }

void Database::rollback() noexcept {
  try {
    sql_ << "ROLLBACK";
  } catch (...) {
    // The database already ended the transaction (or the connection is gone).
  }
}

int32_t Database::schema_version() {
  return read([](soci::session& sql) {
    int version = 0;
    soci::indicator ind = soci::i_ok;
    sql << "SELECT MAX(version) FROM schema_version", soci::into(version, ind);
    return ind == soci::i_null ? 0 : version;
  });
}

void Database::migrate() {
  int32_t current = 0;
  bool has_table = true;
  try {
    current = schema_version();
  } catch (const Failure& f) {
    // A new file has no version table yet; any other failure (a damaged file) counts.
    if (f.number() != error_number(Refusal::kDatabaseError)) throw;
    has_table = false;
  }
  const auto& all = migrations();
  // An up-to-date database is opened without writing, so read-only files open too.
  if (has_table && current >= all.back().version) {
    if (current > all.back().version) {
      refuse(Refusal::kSchemaTooNew, "The database was written by a newer program (schema " +
                                         std::to_string(current) + ", this program knows " +
                                         std::to_string(all.back().version) + ")");
    }
    return;
  }
  write([&](soci::session& sql) {
    sql << "CREATE TABLE IF NOT EXISTS schema_version (version INTEGER PRIMARY KEY, "
           "name VARCHAR(100) NOT NULL, applied VARCHAR(19) NOT NULL)";
  });
  current = schema_version();
  for (const Migration& m : all) {
    if (m.version <= current) continue;
    // Each step with its version row in one transaction: a failed step leaves the
    // previous schema intact, and two programs opening at once apply it once.
    write([&](soci::session& sql) {
      int done = 0;
      sql << "SELECT COUNT(*) FROM schema_version WHERE version = :v", soci::use(m.version),
          soci::into(done);
      if (done > 0) return;
      m.apply(sql, backend_);
      const std::string applied = date_text(now()), name(m.name);
      sql << "INSERT INTO schema_version (version, name, applied) VALUES (:v, :n, :a)",
          soci::use(m.version), soci::use(name), soci::use(applied);
    });
  }
}

std::unique_ptr<Database::PreparedState>& Database::prepared_slot(const std::string& key) {
  return cache_->states[key];
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
