#include "reference/account_records.h"

#include <array>

#include "reference/errors.h"

namespace kxui::reference {

namespace {

std::optional<int32_t> nullable(int value, soci::indicator ind) {
  if (ind == soci::i_null) return std::nullopt;
  return value;
}

// Refuses an identifier of another organisation; 0 means none.
void require_of_borg(soci::session& sql, const char* table, const char* key, int32_t id,
                     int32_t borg_id, const char* what) {
  if (id == 0) return;
  int found = 0;
  sql << "SELECT COUNT(*) FROM " << table << " WHERE " << key << " = :i AND borg_id = :b",
      soci::use(id), soci::use(borg_id), soci::into(found);
  if (found == 0) {
    refuse(Refusal::kNotFound, std::string(what) + " " + std::to_string(id) +
                                   " is not one of the organisation's.");
  }
}

}  // namespace

void RefUserRecord::SetSysUserID(int32_t sys_user_id) {
  int zone = 0, locale = 0;
  const bool found = db_->read([&](soci::session& sql) {
    sql << "SELECT time_zone_id, locale_id FROM users WHERE sys_user_id = :u",
        soci::use(sys_user_id), soci::into(zone), soci::into(locale);
    return sql.got_data();
  });
  if (!found) refuse(Refusal::kNotFound, "User " + std::to_string(sys_user_id) + " does not exist.");
  user_ = sys_user_id;
  time_zone_id_ = zone;
  locale_id_ = locale;
}

Variant RefUserRecord::TimeZoneID() {
  if (!user_) refuse(Refusal::kInvalidArgument, "No user is selected.");
  return Variant(time_zone_id_);
}

void RefUserRecord::Save() {
  if (!user_) refuse(Refusal::kInvalidArgument, "No user is selected.");
  db_->write([&](soci::session& sql) {
    int zones = 0, locales = 0;
    sql << "SELECT COUNT(*) FROM time_zones WHERE time_zone_id = :z", soci::use(time_zone_id_),
        soci::into(zones);
    sql << "SELECT COUNT(*) FROM locales WHERE locale_id = :l", soci::use(locale_id_),
        soci::into(locales);
    if (zones == 0) refuse(Refusal::kInvalidArgument, "The time zone is not known.");
    if (locales == 0) refuse(Refusal::kInvalidArgument, "The locale is not known.");
    sql << "UPDATE users SET time_zone_id = :z, locale_id = :l WHERE sys_user_id = :u",
        soci::use(time_zone_id_), soci::use(locale_id_), soci::use(*user_);
  });
}

void RefBorgUserRecord::Fetch(int32_t borg_id, int32_t sys_user_id) {
  db_->read([&](soci::session& sql) {
    long long approval = 0;
    sql << "SELECT approval_limit FROM users WHERE sys_user_id = :u AND borg_id = :b",
        soci::use(sys_user_id), soci::use(borg_id), soci::into(approval);
    if (!sql.got_data()) refuse(Refusal::kNotFound, "The user is not one of the organisation's.");
    int bill = 0, ship = 0, cc = 0;
    long long spending = 0;
    soci::indicator bill_ind = soci::i_null, ship_ind = soci::i_null, cc_ind = soci::i_null;
    sql << "SELECT bill_to_id, ship_to_id, cost_center_id, spending_limit FROM borg_users "
           "WHERE borg_id = :b AND sys_user_id = :u",
        soci::use(borg_id), soci::use(sys_user_id), soci::into(bill, bill_ind),
        soci::into(ship, ship_ind), soci::into(cc, cc_ind), soci::into(spending);
    if (!sql.got_data()) {
      bill_ind = ship_ind = cc_ind = soci::i_null;
      spending = 0;
    }
    bill_to_ = nullable(bill, bill_ind);
    ship_to_ = nullable(ship, ship_ind);
    cost_center_ = nullable(cc, cc_ind);
    spending_.scaled = spending;
    approval_.scaled = approval;
    return 0;
  });
  fetched_ = true;
}

void RefBorgUserRecord::require_fetched() const {
  if (!fetched_) refuse(Refusal::kInvalidArgument, "No organisation user is fetched.");
}

double RefBorgUserRecord::SpendingLimit() {
  require_fetched();
  return spending_.to_double();
}

double RefBorgUserRecord::ApprovalLimit() {
  require_fetched();
  return approval_.to_double();
}

namespace {

constexpr std::array<std::string_view, 9> kBorgUserMembers = {
    "setEboID", "setBorgID", "setSysUserID", "setSysUserIDBU", "fetch",
    "setBillToID", "setShipToID", "setCostCenterID", "Update"};

int32_t arg(std::span<Variant> args, size_t i) {
  if (i >= args.size()) fail(err::kInvalidProcedureCall);
  return args[i].to_int32();
}

}  // namespace

int32_t RefBorgUser::GetIDOfName(std::string_view name) {
  for (size_t i = 0; i < kBorgUserMembers.size(); ++i) {
    // Late-bound names compare without case.
    const std::string_view m = kBorgUserMembers[i];
    if (m.size() == name.size() &&
        std::equal(m.begin(), m.end(), name.begin(), [](char a, char b) {
          return (a | 0x20) == (b | 0x20);
        })) {
      return static_cast<int32_t>(i + 1);
    }
  }
  fail(err::kNoSuchMember);
}

Variant RefBorgUser::Invoke(int32_t dispid, std::span<Variant> args) {
  switch (dispid) {
    case 1: ebo_id_ = arg(args, 0); break;
    case 2: borg_id_ = arg(args, 0); break;
    case 3: sys_user_id_ = arg(args, 0); break;
    case 4: borg_user_id_ = arg(args, 0); break;
    case 5: {
      RefBorgUserRecord record(db_);
      record.Fetch(arg(args, 0), arg(args, 1));
      borg_id_ = arg(args, 0);
      borg_user_id_ = arg(args, 1);
      bill_to_ = record.BillToID().is_null() ? 0 : record.BillToID().to_int32();
      ship_to_ = record.ShipToID().is_null() ? 0 : record.ShipToID().to_int32();
      cost_center_ = record.CostCenterID().is_null() ? 0 : record.CostCenterID().to_int32();
      fetched_ = true;
      break;
    }
    case 6: bill_to_ = arg(args, 0); break;
    case 7: ship_to_ = arg(args, 0); break;
    case 8: cost_center_ = arg(args, 0); break;
    case 9: update(); break;
    default: fail(err::kNoSuchMember);
  }
  return Variant();
}

void RefBorgUser::update() {
  if (!fetched_) refuse(Refusal::kInvalidArgument, "No organisation user is fetched.");
  db_->write([&](soci::session& sql) {
    require_of_borg(sql, "bill_tos", "bill_to_id", bill_to_, borg_id_, "Bill-to address");
    require_of_borg(sql, "ship_tos", "ship_to_id", ship_to_, borg_id_, "Ship-to address");
    require_of_borg(sql, "cost_centers", "cost_center_id", cost_center_, borg_id_,
                    "Cost centre");
    soci::indicator b = bill_to_ ? soci::i_ok : soci::i_null,
                    s = ship_to_ ? soci::i_ok : soci::i_null,
                    c = cost_center_ ? soci::i_ok : soci::i_null;
    sql << "INSERT INTO borg_users (borg_id, sys_user_id, bill_to_id, ship_to_id, "
           "cost_center_id, modified_by) VALUES (:b, :u, :bt, :st, :cc, :m) ON CONFLICT "
           "(borg_id, sys_user_id) DO UPDATE SET bill_to_id = excluded.bill_to_id, "
           "ship_to_id = excluded.ship_to_id, cost_center_id = excluded.cost_center_id, "
           "modified_by = excluded.modified_by",
        soci::use(borg_id_), soci::use(borg_user_id_), soci::use(bill_to_, b),
        soci::use(ship_to_, s), soci::use(cost_center_, c), soci::use(sys_user_id_);
  });
}

void RefEboRecord::SetEboID(int32_t ebo_id) {
  Row row;
  const bool found = db_->read([&](soci::session& sql) {
    sql << "SELECT e.news, l.lang_code, l.country_code FROM ebos e JOIN locales l ON "
           "l.locale_id = e.locale_id WHERE e.ebo_id = :e",
        soci::use(ebo_id), soci::into(row.news), soci::into(row.lang), soci::into(row.country);
    return sql.got_data();
  });
  if (!found) refuse(Refusal::kNotFound, "EBO " + std::to_string(ebo_id) + " does not exist.");
  row_ = std::move(row);
}

const RefEboRecord::Row& RefEboRecord::require() const {
  if (!row_) refuse(Refusal::kInvalidArgument, "No EBO is selected.");
  return *row_;
}

std::string RefBorgRecord::News() {
  if (!borg_id_) refuse(Refusal::kInvalidArgument, "No organisation is selected.");
  return db_->read([&](soci::session& sql) {
    std::string body;
    sql << "SELECT body FROM news WHERE borg_id = :b ORDER BY posted DESC, news_id DESC "
           "LIMIT 1",
        soci::use(*borg_id_), soci::into(body);
    return sql.got_data() ? body : std::string();
  });
}

std::string RefHostRecord::News() {
  return db_->read([&](soci::session& sql) {
    std::string news;
    sql << "SELECT news FROM hosts WHERE host_id = :h", soci::use(host_id_), soci::into(news);
    if (!sql.got_data()) refuse(Refusal::kNotFound, "The host does not exist.");
    return news;
  });
}

}  // namespace kxui::reference
