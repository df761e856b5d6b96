#include "reference/req_store.h"

#include <map>
#include <vector>

#include "reference/errors.h"
#include "reference/rows.h"
#include "reference/session.h"

namespace kxui::reference {

namespace req_status {

bool editable(int32_t status) {
  return status == -1 || status == kOpen || status == kRejected || status == kWithdrawn;
}

const char* name(int32_t status) {
  switch (status) {
    case kOpen: return "Open";
    case kSubmitted: return "Submitted";
    case kRejected: return "Rejected";
    case kWithdrawn: return "Withdrawn";
    case kApproved: return "Approved";
    case kCancelled: return "Cancelled";
    default: return "Unknown";
  }
}

}  // namespace req_status

ReqRow find_req(soci::session& sql, int32_t req_id) {
  ReqRow r;
  soci::indicator ind = soci::i_ok;
  sql << "SELECT req_id, req_name, status_id, requisitioner_id, borg_id, currency_code "
         "FROM requisitions WHERE req_id = :id",
      soci::use(req_id), soci::into(r.req_id, ind), soci::into(r.name), soci::into(r.status),
      soci::into(r.requisitioner_id), soci::into(r.borg_id), soci::into(r.currency_code);
  if (!sql.got_data()) {
    refuse(Refusal::kNotFound, "Requisition " + std::to_string(req_id) + " does not exist.");
  }
  return r;
}

ReqRow load_req(soci::session& sql, int32_t req_id, const Session& caller) {
  ReqRow r = find_req(sql, req_id);
  if (r.borg_id != caller.BorgID()) {
    refuse(Refusal::kNotAllowed, "Requisition " + std::to_string(req_id) +
                                     " belongs to another organisation.");
  }
  return r;
}

void require_editable(const ReqRow& req, const std::string& action) {
  if (!req_status::editable(req.status)) {
    refuse(Refusal::kNotEditable, "Requisition " + std::to_string(req.req_id) + " is " +
                                      req_status::name(req.status) + " and cannot be " + action +
                                      ".");
  }
}

void require_requisitioner(const ReqRow& req, const Session& session, const std::string& action) {
  if (req.requisitioner_id != session.SysUserID()) {
    refuse(Refusal::kNotAllowed, "Only the requisitioner may " + action + " requisition " +
                                     std::to_string(req.req_id) + ".");
  }
}

namespace {

std::string key_column(const char* table) {
  return std::string(table) == "po_locks" ? "po_id" : "req_id";
}

}  // namespace

int32_t lock_holder(const Session& session) {
  // The default value is the EBO, shared by every session of a user there: a session of
  // this tier is told apart by its own row, negated so that it never meets the default
  // value of another kind of session.
  const auto* own = dynamic_cast<const RefKxSession*>(&session);
  if (own && own->SessionID() != 0) return -own->SessionID();
  return session.Value();
}

void require_not_locked_by_other(soci::session& sql, Database& db, const char* table, int32_t id,
                                 const Session& session) {
  const std::string now = date_text(db.now());
  int user = 0, sess = 0;
  std::string expires;
  sql << "SELECT sys_user_id, session_id, expires FROM " + std::string(table) + " WHERE " +
             key_column(table) + " = :id AND expires > :now",
      soci::use(id), soci::use(now), soci::into(user), soci::into(sess), soci::into(expires);
  if (!sql.got_data()) return;
  if (user == session.SysUserID() && sess == lock_holder(session)) return;
  refuse(Refusal::kLocked, (key_column(table) == "po_id" ? "Order " : "Requisition ") +
                               std::to_string(id) + " is being edited by " + user_name(sql, user) +
                               " until " + expires + " (UTC).");
}

void take_lock(soci::session& sql, Database& db, const char* table, int32_t id,
               const Session& session) {
  require_not_locked_by_other(sql, db, table, id, session);
  const std::string expires = date_text(
      Date::from_seconds(db.now().seconds() + int64_t{60} * db.options().lock_minutes));
  const int user = session.SysUserID(), sess = lock_holder(session);
  const std::string now = date_text(db.now());
  // An expired lock of another session is taken over, a live one never: the condition is
  // part of the one statement, so a session that took the lock since the check above
  // (another process) keeps it, and this statement changes nothing.
  const std::string t(table);
  soci::statement st =
      (sql.prepare << "INSERT INTO " + t + " (" + key_column(table) +
                          ", sys_user_id, session_id, expires) VALUES (:id, :u, :s, :e) "
                          "ON CONFLICT (" + key_column(table) +
                          ") DO UPDATE SET sys_user_id = excluded.sys_user_id, "
                          "session_id = excluded.session_id, expires = excluded.expires WHERE " +
                          t + ".expires <= :now OR (" + t + ".sys_user_id = excluded.sys_user_id AND " +
                          t + ".session_id = excluded.session_id)",
       soci::use(id), soci::use(user), soci::use(sess), soci::use(expires), soci::use(now));
  st.execute(true);
  if (st.get_affected_rows() == 0) require_not_locked_by_other(sql, db, table, id, session);
}

bool holds_lock(soci::session& sql, Database& db, const char* table, int32_t id,
                const Session& session) {
  const std::string now = date_text(db.now());
  const int user = session.SysUserID(), sess = lock_holder(session);
  int count = 0;
  sql << "SELECT COUNT(*) FROM " + std::string(table) + " WHERE " + key_column(table) +
             " = :id AND sys_user_id = :u AND session_id = :s AND expires > :now",
      soci::use(id), soci::use(user), soci::use(sess), soci::use(now), soci::into(count);
  return count > 0;
}

void release_locks(soci::session& sql, const char* table, const Session& session) {
  const int user = session.SysUserID(), sess = lock_holder(session);
  sql << "DELETE FROM " + std::string(table) + " WHERE sys_user_id = :u AND session_id = :s",
      soci::use(user), soci::use(sess);
}

void log_req(soci::session& sql, Database& db, int32_t req_id, int32_t user_id,
             const std::string& action, const std::string& comments) {
  const std::string now = date_text(db.now());
  sql << "INSERT INTO req_log (req_id, date_logged, sys_user_id, action, comments) "
         "VALUES (:r, :d, :u, :a, :c)",
      soci::use(req_id), soci::use(now), soci::use(user_id), soci::use(action),
      soci::use(comments);
}

namespace {

double rate_at(soci::session& sql, const std::string& code, const std::string& at) {
  double rate = 0;
  soci::indicator ind = soci::i_ok;
  sql << "SELECT rate FROM currency_rates WHERE currency_code = :c AND effective_date <= :d "
         "ORDER BY effective_date DESC LIMIT 1",
      soci::use(code), soci::use(at), soci::into(rate, ind);
  if (!sql.got_data() || ind == soci::i_null) return 0;
  return rate;
}

}  // namespace

double convert_currency(soci::session& sql, double amount, const std::string& from,
                        const std::string& to, Date at) {
  if (from == to) return amount;
  const std::string day = date_text(at);
  const double from_rate = rate_at(sql, from, day), to_rate = rate_at(sql, to, day);
  if (from_rate <= 0 || to_rate <= 0) {
    refuse(Refusal::kNoRate, "No exchange rate from " + from + " to " + to + " is known on " +
                                 day.substr(0, 10) + ".");
  }
  return amount / from_rate * to_rate;
}

Totals req_totals(soci::session& sql, Database& db, int32_t req_id, const std::string& currency) {
  const ReqRow req = find_req(sql, req_id);
  double tax_rate = 0;
  sql << "SELECT tax_rate FROM borgs WHERE borg_id = :b", soci::use(req.borg_id),
      soci::into(tax_rate);
  soci::rowset<soci::row> lines =
      (sql.prepare << "SELECT qty, unit_price, currency_code FROM req_lines WHERE req_id = :r",
       soci::use(req_id));
  const Date today = db.now();
  double sub_total = 0;
  for (const soci::row& line : lines) {
    const double amount = *get_double(line, 0) * static_cast<double>(*get_int(line, 1)) /
                          static_cast<double>(Currency::kScale);
    sub_total += convert_currency(sql, amount, text_of(line, 2), currency, today);
  }
  Totals t;
  t.sub_total = Currency::from_double(sub_total);
  t.tax = Currency::from_double(t.sub_total.to_double() * tax_rate);
  t.total = Currency::from_scaled(t.sub_total.scaled + t.tax.scaled);
  return t;
}

int32_t create_orders(soci::session& sql, Database& db, int32_t req_id) {
  const std::string now = date_text(db.now());
  soci::rowset<soci::row> lines =
      (sql.prepare << "SELECT line_num, supplier_id, supplier_name, part_id, part_desc, qty, "
                      "unit_price, currency_code FROM req_lines WHERE req_id = :r "
                      "ORDER BY line_num",
       soci::use(req_id));
  // One order per supplier (special requests without a supplier are grouped by name).
  std::map<std::string, int32_t> orders;
  std::map<int32_t, int32_t> next_line;
  for (const soci::row& line : lines) {
    const auto supplier = get_int(line, 1);
    const std::string supplier_name = text_of(line, 2);
    const std::string key = supplier ? "#" + std::to_string(*supplier) : "n" + supplier_name;
    auto [it, fresh] = orders.try_emplace(key, 0);
    if (fresh) {
      std::string name = supplier_name;
      if (supplier) {
        const int supplier_id = *supplier;
        sql << "SELECT name FROM suppliers WHERE supplier_id = :s", soci::use(supplier_id),
            soci::into(name);
      }
      soci::indicator sup_ind = supplier ? soci::i_ok : soci::i_null;
      int sup_id = supplier ? static_cast<int>(*supplier) : 0;
      const std::string currency = text_of(line, 7);
      sql << "INSERT INTO purchase_orders (req_id, supplier_id, supplier_name, status_id, "
             "create_date, currency_code) VALUES (:r, :s, :n, 1, :d, :c) RETURNING po_id",
          soci::use(req_id), soci::use(sup_id, sup_ind), soci::use(name), soci::use(now),
          soci::use(currency), soci::into(it->second);
    }
    const int po_id = it->second;
    const int po_line = ++next_line[po_id];
    const int req_line = int_of(line, 0);
    const auto part = get_int(line, 3);
    int part_id = part ? static_cast<int>(*part) : 0;
    soci::indicator part_ind = part ? soci::i_ok : soci::i_null;
    const std::string desc = text_of(line, 4), currency = text_of(line, 7);
    const double qty = *get_double(line, 5);
    const long long price = *get_int(line, 6);
    sql << "INSERT INTO po_lines (po_id, line_num, req_line_num, part_id, description, qty, "
           "unit_price, currency_code) VALUES (:p, :l, :rl, :pt, :d, :q, :u, :c)",
        soci::use(po_id), soci::use(po_line), soci::use(req_line), soci::use(part_id, part_ind),
        soci::use(desc), soci::use(qty), soci::use(price), soci::use(currency);
  }
  return static_cast<int32_t>(orders.size());
}

void require_length(const std::string& text, size_t max, const std::string& what) {
  size_t chars = 0;
  for (unsigned char c : text) chars += (c & 0xC0) != 0x80;
  if (chars > max) {
    refuse(Refusal::kInvalidArgument, what + " may have at most " + std::to_string(max) +
                                          " characters; " + std::to_string(chars) + " were given.");
  }
}

std::string user_name(soci::session& sql, int32_t user_id) {
  std::string name;
  sql << "SELECT full_name FROM users WHERE sys_user_id = :u", soci::use(user_id),
      soci::into(name);
  if (!sql.got_data()) refuse(Refusal::kNotFound, "User " + std::to_string(user_id) + " does not exist.");
  return name;
}

}  // namespace kxui::reference
