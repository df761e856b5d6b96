// For the reference tier's tests: a fresh database with a small, known organisation,
// a runtime with the default services and the reference tier registered, and a clock the
// test moves. The database is a file by default; when KXREF_DB_URL names a PostgreSQL
// server, every test gets a schema of its own there instead.
#pragma once

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "kxui/frame/errors.h"
#include "kxui/frame/failure.h"
#include "kxui/frame/recordset.h"
#include "kxui/frame/runtime.h"
#include "kxui/frame/session.h"
#include "reference/database.h"
#include "reference/register.h"
#include "reference/services.h"
#include "reference/users.h"
#include "services/register.h"

namespace kxui::reference::testing {

// A directory of its own per test, removed afterwards.
inline std::filesystem::path fresh_dir() {
  static std::atomic<int> counter{0};
  auto dir = std::filesystem::temp_directory_path() /
             ("kxref_" + std::to_string(::getpid()) + "_" + std::to_string(counter++));
  std::filesystem::remove_all(dir);
  std::filesystem::create_directories(dir);
  return dir;
}

// A fresh directory removed with the object.
struct TempDir {
  std::filesystem::path path = fresh_dir();
  ~TempDir() {
    std::error_code ec;
    std::filesystem::remove_all(path, ec);
  }
};

// The PostgreSQL server the tests run against, or "" for SQLite files.
inline std::string server_url() {
  const char* url = std::getenv("KXREF_DB_URL");
  return url && parse_connection_string(url).backend == Backend::kPostgres ? url : "";
}

inline bool on_postgres() { return !server_url().empty(); }

// A database of its own: `file` in `dir` on SQLite; on PostgreSQL a fresh schema that
// every connection opened with url() works in, dropped with the object.
class ScratchDatabase {
 public:
  ScratchDatabase(const std::filesystem::path& dir, const std::string& file) {
    const std::string server = server_url();
    if (server.empty()) {
      url_ = "sqlite3://" + (dir / file).string();
      return;
    }
    static std::atomic<int> counter{0};
    schema_ = "kxt_" + std::to_string(::getpid()) + "_" + std::to_string(counter++);
    admin_ = parse_connection_string(server).connect;
    {
      soci::session admin("postgresql", admin_);
      admin << "SET client_min_messages = warning";
      admin << "DROP SCHEMA IF EXISTS " + schema_ + " CASCADE";
      admin << "CREATE SCHEMA " + schema_;
    }
    // libpq passes "options" to the server: every connection starts in the schema.
    url_ = admin_ == server ? server + (server.find('?') == std::string::npos ? "?" : "&") +
                                  "options=-csearch_path%3D" + schema_
                            : "postgresql://" + admin_ + " options=-csearch_path=" + schema_;
  }
  ScratchDatabase(const ScratchDatabase&) = delete;
  ScratchDatabase& operator=(const ScratchDatabase&) = delete;
  ~ScratchDatabase() {
    if (schema_.empty()) return;
    try {
      soci::session admin("postgresql", admin_);
      admin << "SET client_min_messages = warning";
      admin << "SET lock_timeout = '10s'";
      admin << "DROP SCHEMA " + schema_ + " CASCADE";
    } catch (const std::exception& e) {
      ADD_FAILURE() << "schema " << schema_ << " not dropped: " << e.what();
    }
  }
  const std::string& url() const { return url_; }

 private:
  std::string url_, schema_, admin_;
};

// Who is who in the fixture's organisation "Acme" (USD, 10% tax): alice asks, bob is her
// manager (limit 1,000), carol his (limit 100,000); dave approves ad hoc, erin stands in
// for bob; frank works for "Berg" (EUR).
struct Ids {
  int32_t acme = 0, berg = 0;
  int32_t alice = 0, bob = 0, carol = 0, dave = 0, erin = 0, frank = 0;
  int32_t office = 0, writing = 0, paper = 0, supplier = 0, euro_supplier = 0;
  int32_t pen = 0, ream = 0, desk = 0;
};

struct Fixture {
  std::filesystem::path dir;
  std::unique_ptr<ScratchDatabase> scratch;
  std::string url;
  std::shared_ptr<int64_t> clock = std::make_shared<int64_t>(0);
  DatabasePtr db;
  std::shared_ptr<Runtime> runtime = std::make_shared<Runtime>();
  Ids ids;

  DatabaseOptions options() const {
    DatabaseOptions o;
    o.clock = [c = clock] { return Date::from_seconds(*c); };
    return o;
  }
  ~Fixture() {
    runtime.reset();
    db.reset();
    scratch.reset();
    std::error_code ec;
    std::filesystem::remove_all(dir, ec);
  }
  void advance_minutes(int64_t minutes) { *clock += minutes * 60; }

  std::shared_ptr<BasicSession> session(int32_t user, int32_t session_id = 1) const {
    auto s = std::make_shared<BasicSession>();
    s->sys_user_id = user;
    s->borg_id = user == ids.frank ? ids.berg : ids.acme;
    s->value = session_id;
    return s;
  }
};

inline void populate(Fixture& f) {
  Database& db = *f.db;
  Ids& i = f.ids;
  db.write([&](soci::session& sql) {
    sql << "INSERT INTO currency_rates (currency_code, effective_date, rate) VALUES "
           "('USD', '2000-01-01 00:00:00', 1.0), ('EUR', '2000-01-01 00:00:00', 0.5), "
           "('GBP', '2000-01-01 00:00:00', 0.25)";
    sql << "INSERT INTO borgs (name, currency_code, tax_rate) VALUES ('Acme', 'USD', 0.1) "
           "RETURNING borg_id", soci::into(i.acme);
    sql << "INSERT INTO borgs (name, currency_code) VALUES ('Berg', 'EUR') RETURNING borg_id",
        soci::into(i.berg);
    sql << "INSERT INTO suppliers (name, currency_code) VALUES ('Office Supplies Inc', 'USD') "
           "RETURNING supplier_id", soci::into(i.supplier);
    sql << "INSERT INTO suppliers (name, currency_code) VALUES ('Bürobedarf AG', 'EUR') "
           "RETURNING supplier_id", soci::into(i.euro_supplier);
    sql << "INSERT INTO commodities (parent_id, code, name) VALUES (NULL, 'OFF', 'Office') "
           "RETURNING commodity_id", soci::into(i.office);
    sql << "INSERT INTO commodities (parent_id, code, name) VALUES (:p, 'WRI', 'Writing') "
           "RETURNING commodity_id", soci::use(i.office), soci::into(i.writing);
    sql << "INSERT INTO commodities (parent_id, code, name) VALUES (:p, 'PAP', 'Paper') "
           "RETURNING commodity_id", soci::use(i.office), soci::into(i.paper);
    sql << "INSERT INTO parts (supplier_id, supplier_part_num, commodity_id, uom_id, unit_price, "
           "currency_code, description, long_desc) VALUES (:s, 'P-100', :c, 'EA', 25000, 'USD', "
           "'Blue ballpoint pen', 'Smooth ink, medium tip') RETURNING part_id",
        soci::use(i.supplier), soci::use(i.writing), soci::into(i.pen);
    sql << "INSERT INTO parts (supplier_id, supplier_part_num, commodity_id, uom_id, unit_price, "
           "currency_code, description) VALUES (:s, 'P-200', :c, 'BX', 1000000, 'USD', "
           "'Copy paper, 5 reams') RETURNING part_id",
        soci::use(i.supplier), soci::use(i.paper), soci::into(i.ream);
    sql << "INSERT INTO parts (supplier_id, supplier_part_num, commodity_id, uom_id, unit_price, "
           "currency_code, description) VALUES (:s, 'D-1', :c, 'EA', 4000000, 'EUR', "
           "'Standing desk') RETURNING part_id",
        soci::use(i.euro_supplier), soci::use(i.office), soci::into(i.desk);
    sql << "INSERT INTO part_texts (part_id, lang_code, description) VALUES (:p, 'de', "
           "'Kugelschreiber blau')", soci::use(i.pen);
  });
  auto user = [&](const char* login, const char* name, int32_t borg, std::optional<int32_t> mgr,
                  double limit) {
    NewUser u;
    u.borg_id = borg;
    u.login_id = login;
    u.full_name = name;
    u.password = std::string(login) + "-secret";
    u.manager_id = mgr;
    u.approval_limit = Currency::from_double(limit);
    return AddUser(db, u, HashCost::kMinimum);
  };
  i.carol = user("carol", "Carol Chief", i.acme, std::nullopt, 100000);
  i.bob = user("bob", "Bob Boss", i.acme, i.carol, 1000);
  i.alice = user("alice", "Alice Asker", i.acme, i.bob, 0);
  i.dave = user("dave", "Dave Adhoc", i.acme, i.carol, 500);
  i.erin = user("erin", "Erin Standin", i.acme, i.bob, 0);
  i.frank = user("frank", "Frank Fremd", i.berg, std::nullopt, 0);
  db.write([&](soci::session& sql) {
    sql << "INSERT INTO favorites (sys_user_id, part_id) VALUES (:u, :p)", soci::use(i.alice),
        soci::use(i.ream);
  });
  put_setting(db, "Dunmere", "Paging", "Page Size", "2");
  put_setting(db, "Dunmere", "UI", "DateFormat", "1");
}

// A fixture over a fresh file: migrated, populated, and registered in its runtime with
// the default services, then the reference tier's settings table.
inline std::unique_ptr<Fixture> make_fixture() {
  auto f = std::make_unique<Fixture>();
  f->dir = fresh_dir();
  f->scratch = std::make_unique<ScratchDatabase>(f->dir, "kx.db");
  f->url = f->scratch->url();
  *f->clock = Date::from_civil(2026, 3, 2, 9, 0, 0).seconds();
  f->db = Database::Open(f->url, f->options());
  populate(*f);
  services::ServiceOptions so;
  so.ini_directory = f->dir;
  services::RegisterDefaultServices(*f->runtime, so);
  RegisterOptions ro;
  ro.table_settings = true;
  Register(*f->runtime, f->db, ro);
  return f;
}

// Another program on the fixture's database: a connection and a runtime of its own,
// sharing only the database (and the test's clock).
struct OtherProcess {
  DatabasePtr db;
  std::shared_ptr<Runtime> runtime = std::make_shared<Runtime>();
};

inline OtherProcess other_process(const Fixture& f, DatabaseOptions options) {
  OtherProcess p;
  p.db = Database::Open(f.url, std::move(options));
  services::ServiceOptions so;
  so.ini_directory = f.dir;
  services::RegisterDefaultServices(*p.runtime, so);
  RegisterOptions ro;
  ro.table_settings = true;
  Register(*p.runtime, p.db, ro);
  return p;
}
inline OtherProcess other_process(const Fixture& f) { return other_process(f, f.options()); }

// Fills the receipt form as a page does: cartons, then per line received and packing-slip
// text, and optional comments.
inline void type_receipt(Recordset& header, Recordset& lines, const std::string& cartons,
                         const std::vector<std::pair<std::string, std::string>>& typed,
                         const std::vector<std::string>& comments = {}) {
  header.MoveFirst();
  header["UIDisplay_CartonCnt"].SetValue(Variant(cartons));
  size_t i = 0;
  for (lines.MoveFirst(); !lines.IsEOF(); lines.MoveNext(), ++i) {
    lines["UIDisplay_ReceivedQty"].SetValue(Variant(typed.at(i).first));
    lines["UIDisplay_PackingSlipQty"].SetValue(Variant(typed.at(i).second));
    if (i < comments.size()) lines["Comments"].SetValue(Variant(comments[i]));
  }
}

// A list read on demand against the same list read whole, cell by cell, the cursor
// visiting a middle stretch, then backwards from the end, then every row forwards: it
// reaches rows in windows of every size the record set reads, across their boundaries,
// and a window that skipped or repeated a row shows another one.
inline void expect_same_rows(Recordset& list, Recordset& whole) {
  ASSERT_EQ(list.RecordCount(), whole.RecordCount());
  const int32_t n = whole.RecordCount();
  std::vector<int32_t> walk;
  for (int32_t p = std::max(1, n / 2); p < n / 2 + 20 && p <= n; ++p) walk.push_back(p);
  for (int32_t p = n; p > n - 70 && p > 0; --p) walk.push_back(p);
  for (int32_t p = 1; p <= n; ++p) walk.push_back(p);
  for (int32_t pos : walk) {
    SCOPED_TRACE(pos);
    list.SetAbsolutePosition(pos);
    whole.SetAbsolutePosition(pos);
    for (int32_t c = 0; c < whole.GetFields().Count(); ++c) {
      ASSERT_EQ(list.value(c), whole.value(c)) << whole.GetFields().info(c).name;
    }
  }
}

// A list read on demand whose last rows `remove` deletes after the list was counted and
// its first rows read: reading its last row fails with "no current record" rather than
// showing another row in its place, and the rows read before stay.
inline void expect_rows_gone_fail_the_read(Recordset& list, const std::function<void()>& remove) {
  const int32_t n = list.RecordCount();
  const Variant first = list.value(0);
  remove();
  list.SetAbsolutePosition(n);
  try {
    (void)list.value(0);
    ADD_FAILURE() << "read a row that is gone";
  } catch (const Failure& e) {
    EXPECT_EQ(e.number(), err::kNoCurrentRecord);
  }
  list.MoveFirst();
  EXPECT_EQ(list.value(0), first) << "rows read before stay";
}

}  // namespace kxui::reference::testing
