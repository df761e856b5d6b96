// One user's requisition list, read on demand, against the statement that reads the
// whole list at once: same rows, same order, for every sort and filter, however the
// cursor walks.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "kxui/business/progids.h"
#include "kxui/business/requisition.h"
#include "kxui/frame/errors.h"
#include "kxui/frame/failure.h"
#include "reference/database.h"
#include "reference/schema.h"
#include "reference/rows.h"
#include "reference/test_fixture.h"

namespace kxui::reference {
namespace {

using testing::make_fixture;

constexpr Column kColumns[] = {
    {"ReqID", Kind::kInt},          {"ReqName", Kind::kText, 100},
    {"ReqStatusID", Kind::kInt},    {"RequisitionerName", Kind::kText, 100},
    {"BorgName", Kind::kText, 100}, {"CreateDate", Kind::kDate},
    {"SubmitDate", Kind::kDate},    {"NumberOfItems", Kind::kInt},
    {"CurrencyCode", Kind::kText, 3}};

// 150 requisitions of alice in both organisations over three years, with repeated dates,
// names and statuses so that the key decides ties; a few of bob's, which no list of hers
// shows.
void add_requisitions(Database& db, int32_t alice, int32_t bob, int32_t acme, int32_t berg) {
  db.write([&](soci::session& sql) {
    std::string name, created, submitted;
    int status = 0, user = 0, borg = 0;
    soci::indicator submitted_ind = soci::i_ok;
    soci::statement insert =
        (sql.prepare << "INSERT INTO requisitions (req_name, status_id, requisitioner_id, "
                        "borg_id, currency_code, create_date, submit_date) VALUES (:n, :s, :u, "
                        ":b, 'USD', :c, :d)",
         soci::use(name), soci::use(status), soci::use(user), soci::use(borg), soci::use(created),
         soci::use(submitted, submitted_ind));
    for (int i = 0; i < 160; ++i) {
      user = i < 150 ? alice : bob;
      name = "Req " + std::to_string(i % 7);
      status = 1 + i % 5;
      borg = i % 4 == 0 ? berg : acme;
      created = "202" + std::to_string(3 + i / 5 % 3) + "-0" + std::to_string(1 + i % 9) + "-1" +
                std::to_string(i % 3) + " 08:00:00";
      submitted = "2025-10-0" + std::to_string(1 + i % 8) + " 09:30:00";
      submitted_ind = i % 6 == 0 ? soci::i_null : soci::i_ok;
      insert.execute(true);
    }
  });
}

// The whole list by the statement that reads every row, ordered as `order` says.
RecordsetPtr whole_list(Database& db, int32_t user, const std::string& borg,
                        const std::string& statuses, const std::string& order) {
  return db.read([&](soci::session& sql) {
    const std::string query =
        "SELECT r.req_id, r.req_name, r.status_id, u.full_name, b.name, r.create_date, "
        "COALESCE(r.submit_date, r.create_date), "
        "(SELECT COUNT(*) FROM req_lines l WHERE l.req_id = r.req_id), r.currency_code "
        "FROM requisitions r JOIN users u ON u.sys_user_id = r.requisitioner_id "
        "JOIN borgs b ON b.borg_id = r.borg_id WHERE r.requisitioner_id = :u "
        "AND (:borg = '' OR b.name = :borg2)" +
        (statuses.empty() ? std::string() : " AND r.status_id IN (" + statuses + ")") +
        " ORDER BY " + order;
    soci::rowset<soci::row> rows =
        (sql.prepare << query, soci::use(user), soci::use(borg), soci::use(borg));
    return to_recordset(rows, kColumns);
  });
}

TEST(OnDemandList, SameRowsAsTheWholeListForEverySortAndFilter) {
  auto f = make_fixture();
  add_requisitions(*f->db, f->ids.alice, f->ids.bob, f->ids.acme, f->ids.berg);
  auto alice = f->session(f->ids.alice);
  auto tier = create_as<business::Requisition>(*f->runtime, progid::Requisition);

  struct Sort {
    const char* by;
    const char* order;
  };
  const Sort sorts[] = {
      {"", "r.create_date DESC, r.req_id DESC"},
      {"ReqID", "r.req_id"},
      {"reqid desc", "r.req_id DESC"},
      {"CreateDate", "r.create_date, r.req_id"},
      {"SubmitDate DESC", "r.submit_date DESC, r.req_id DESC"},
      {"ReqName", "r.req_name, r.req_id"},
      {"ReqStatusID DESC", "r.status_id DESC, r.req_id DESC"},
      {"RequisitionerName", "u.full_name, r.req_id"},
  };
  struct Filter {
    const char* login;
    const char* borg;
    const char* statuses;
  };
  const Filter filters[] = {{"", "", ""},         {"ALICE", "", ""},        {"", "Berg", ""},
                            {"", "", "2, 4"},       {"alice", "Acme", "1, 3,5"}, {"", "Nowhere", ""}};
  for (const Sort& sort : sorts) {
    for (const Filter& filter : filters) {
      SCOPED_TRACE(std::string(sort.by) + " / " + filter.login + " / " + filter.borg + " / " +
                   filter.statuses);
      Variant cd;
      RecordsetPtr list =
          tier->GetRequisitionList(alice, filter.login, filter.borg, sort.by, filter.statuses, cd);
      ASSERT_TRUE(list) << tier->GetError()->Description();
      RecordsetPtr whole =
          whole_list(*f->db, f->ids.alice, filter.borg, filter.statuses, sort.order);
      const int32_t n = whole->RecordCount();
      EXPECT_EQ(list->AbsolutePosition(), n > 0 ? 1 : adPosUnknown);
      testing::expect_same_rows(*list, *whole);
    }
  }
}

// The counts kept for the list, against the same counts taken from the requisitions.
void expect_counts_kept(Database& db) {
  auto rows = [&](const std::string& query) {
    std::vector<std::string> out;
    db.read([&](soci::session& sql) {
      soci::rowset<std::string> rs = sql.prepare << query;
      out.assign(rs.begin(), rs.end());
    });
    return out;
  };
  auto text = [](const char* e) { return std::string("CAST(") + e + " AS VARCHAR(20))"; };
  auto row = [&](const char* level, const char* period, const char* n) {
    return text("requisitioner_id") + " || '/' || " + text(level) + " || '/' || " + period +
           " || '/' || " + text("status_id") + " || '/' || " + text("borg_id") + " || '=' || " +
           text(n);
  };
  const std::vector<std::string> kept = rows("SELECT " + row("level", "period", "n") +
                                             " FROM req_list_counts WHERE n <> 0 ORDER BY 1");
  std::string counted;
  for (const char* level : {"0", "1", "2"}) {
    const std::string period = std::string("substr(create_date, 1, ") +
                               (level[0] == '0' ? "4" : level[0] == '1' ? "7" : "10") + ")";
    counted += std::string(counted.empty() ? "" : " UNION ALL ") + "SELECT " +
               row(level, period.c_str(), "COUNT(*)") +
               " FROM requisitions GROUP BY requisitioner_id, " + period + ", status_id, borg_id";
  }
  EXPECT_EQ(kept, rows(counted + " ORDER BY 1"));
}

// Whatever changes a requisition, the counts a list is counted and positioned by follow.
TEST(OnDemandList, KeptCountsFollowEveryChange) {
  auto f = make_fixture();
  add_requisitions(*f->db, f->ids.alice, f->ids.bob, f->ids.acme, f->ids.berg);
  const std::string alice = std::to_string(f->ids.alice), bob = std::to_string(f->ids.bob);
  const std::string berg = std::to_string(f->ids.berg);
  const std::string some = " WHERE req_id IN (SELECT req_id FROM requisitions WHERE "
                           "requisitioner_id = " + alice + " AND status_id = 2)";
  const std::pair<const char*, std::string> changes[] = {
      {"as added", ""},
      {"a new one", "INSERT INTO requisitions (req_name, status_id, requisitioner_id, borg_id, "
                    "currency_code, create_date) VALUES ('New', 1, " + alice + ", " + berg +
                        ", 'USD', '2026-11-23 10:00:00')"},
      {"status", "UPDATE requisitions SET status_id = 6" + some},
      {"requisitioner", "UPDATE requisitions SET requisitioner_id = " + bob +
                            " WHERE req_id IN (SELECT req_id FROM requisitions WHERE "
                            "requisitioner_id = " + alice + " AND status_id = 3)"},
      {"organisation", "UPDATE requisitions SET borg_id = " + berg + " WHERE status_id = 4"},
      {"created in another year", "UPDATE requisitions SET create_date = '2019-12-31 23:59:59'"
                                  " WHERE status_id = 5"},
      {"name only", "UPDATE requisitions SET req_name = 'Renamed', status_id = status_id"},
      {"deleted", "DELETE FROM requisitions WHERE status_id = 6"},
  };
  for (const auto& step : changes) {
    SCOPED_TRACE(step.first);
    if (!step.second.empty()) f->db->write([&](soci::session& sql) { sql << step.second; });
    expect_counts_kept(*f->db);
  }
  // And the lists read through them still match the requisitions.
  auto tier = create_as<business::Requisition>(*f->runtime, progid::Requisition);
  const std::pair<const char*, const char*> sorts[] = {
      {"CreateDate", "r.create_date, r.req_id"},
      {"CreateDate DESC", "r.create_date DESC, r.req_id DESC"}};
  for (const auto& [sort, order] : sorts) {
    SCOPED_TRACE(sort);
    Variant cd;
    RecordsetPtr list = tier->GetRequisitionList(f->session(f->ids.bob), "", "", sort, "", cd);
    ASSERT_TRUE(list) << tier->GetError()->Description();
    RecordsetPtr whole = whole_list(*f->db, f->ids.bob, "", "", order);
    testing::expect_same_rows(*list, *whole);
  }
}

// A database kept from before the counts were kept gains them from its requisitions.
TEST(OnDemandList, CountsAreTakenWhenTheSchemaGainsThem) {
  testing::TempDir dir;
  testing::ScratchDatabase scratch(dir.path, "counts.db");
  std::vector<Migration> before;
  for (const Migration& m : migrations()) {
    if (m.version < 9) before.push_back(m);
  }
  ASSERT_EQ(migrations().at(before.size()).version, 9) << "the counts came with version 9";
  {
    DatabaseOptions options;
    options.migrations = &before;
    auto db = Database::Open(scratch.url(), options);
    db->write([&](soci::session& sql) {
      sql << "INSERT INTO borgs (borg_id, name, currency_code) VALUES (1, 'Acme', 'USD')";
      sql << "INSERT INTO users (sys_user_id, borg_id, login_id, full_name, password_hash, "
             "locale_id, time_zone_id, currency_code) SELECT 1, 1, 'a', 'A', 'x', MIN(l.locale_id), "
             "MIN(z.time_zone_id), 'USD' FROM locales l, time_zones z";
      for (int i = 0; i < 40; ++i) {
        const std::string created = "202" + std::to_string(i % 4) + "-0" +
                                    std::to_string(1 + i % 7) + "-01 12:00:00";
        const int status = 1 + i % 3;
        sql << "INSERT INTO requisitions (req_name, status_id, requisitioner_id, borg_id, "
               "currency_code, create_date) VALUES ('R', :s, 1, 1, 'USD', :c)",
            soci::use(status), soci::use(created);
      }
    });
  }
  auto db = Database::Open(scratch.url());
  EXPECT_EQ(db->schema_version(), migrations().back().version);
  expect_counts_kept(*db);
}

// A list whose rows change after it was counted fails on the rows it can no longer read,
// rather than showing other rows in their place.
TEST(OnDemandList, RowsGoneAfterTheCountFailTheRead) {
  auto f = make_fixture();
  add_requisitions(*f->db, f->ids.alice, f->ids.bob, f->ids.acme, f->ids.berg);
  auto tier = create_as<business::Requisition>(*f->runtime, progid::Requisition);
  Variant cd;
  RecordsetPtr list = tier->GetRequisitionList(f->session(f->ids.alice), "", "", "ReqID", "", cd);
  ASSERT_TRUE(list);
  ASSERT_EQ(list->RecordCount(), 150);
  testing::expect_rows_gone_fail_the_read(*list, [&] {
    f->db->write([&](soci::session& sql) {
      sql << "DELETE FROM requisitions WHERE req_id IN (SELECT req_id FROM requisitions "
             "WHERE requisitioner_id = :u ORDER BY req_id DESC LIMIT 10)",
          soci::use(f->ids.alice);
    });
  });
}

}  // namespace
}  // namespace kxui::reference
