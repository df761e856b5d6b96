// RefPurchaseOrder (all but ReleaseSessionLocks), the order log and the status map.
#include "reference/purchase_order.h"

#include <set>
#include <sstream>

#include "kxui/frame/text.h"
#include "reference/errors.h"
#include "reference/req_store.h"
#include "reference/rows.h"
#include "reference/services.h"

namespace kxui::reference {

namespace {

constexpr const char* kPOLocks = "po_locks";

// One row per order, in the column order of kSummaryColumns.
constexpr const char* kSummary =
    "SELECT o.po_id, 'PO-' || CAST(o.po_id AS VARCHAR(20)), r.req_name, o.req_id, "
    "o.supplier_name, o.status_id, s.name, o.create_date, o.create_date, "
    "COALESCE((SELECT CAST(ROUND(SUM(l.qty * l.unit_price) * (1 + b.tax_rate)) AS BIGINT) "
    "FROM po_lines l WHERE l.po_id = o.po_id), 0), o.currency_code, u.full_name, b.name "
    "FROM purchase_orders o JOIN requisitions r ON r.req_id = o.req_id "
    "JOIN users u ON u.sys_user_id = r.requisitioner_id JOIN borgs b ON b.borg_id = r.borg_id "
    "JOIN po_statuses s ON s.po_status_id = o.status_id ";

constexpr Column kSummaryColumns[] = {
    {"POID", Kind::kInt},           {"PONum", Kind::kText, 30},
    {"POName", Kind::kText, 100},   {"ReqID", Kind::kInt},
    {"SupplierName", Kind::kText, 100}, {"POStatusID", Kind::kInt},
    {"StatusName", Kind::kText, 50}, {"CreateDate", Kind::kDate},
    {"OrderedOnDate", Kind::kDate}, {"TotalAmtDue", Kind::kMoney},
    {"CurrencyCode", Kind::kText, 3}, {"RequisitionerName", Kind::kText, 100},
    {"BorgName", Kind::kText, 100}};

constexpr Column kItemColumns[] = {
    {"LineNum", Kind::kInt},         {"ReqLineNum", Kind::kInt},
    {"PartID", Kind::kInt},          {"ShortDesc", Kind::kText, 255},
    {"OrderQty", Kind::kDouble},     {"UnitPrice", Kind::kMoney},
    {"SalesTaxAmt", Kind::kMoney},   {"ActualPrice", Kind::kMoney},
    {"CurrencyCode", Kind::kText, 3}, {"DeliverByDate", Kind::kDate},
    {"POStatusDate", Kind::kDate}};

constexpr Column kLogColumns[] = {{"DateLogged", Kind::kDate},
                                  {"LogType", Kind::kText, 50},
                                  {"Description", Kind::kText, 2000},
                                  {"Code", Kind::kText, 50},
                                  {"UserName", Kind::kText, 100}};

// The ORDER BY of a caller's sort text, always one of these constants.
std::string order_clause(const std::string& sort_by) {
  static const std::pair<const char*, const char*> kColumns[] = {
      {"poid", "o.po_id"},           {"ponum", "o.po_id"},
      {"createdate", "o.create_date"}, {"suppliername", "o.supplier_name"},
      {"postatusid", "o.status_id"}, {"reqid", "o.req_id"}};
  std::istringstream in(text::lower_ascii(sort_by));
  std::string column, direction;
  in >> column >> direction;
  if (column.empty()) return "o.create_date DESC, o.po_id DESC";
  for (const auto& [name, expr] : kColumns) {
    if (column != name) continue;
    if (direction.empty() || direction == "asc") return std::string(expr) + ", o.po_id";
    if (direction == "desc") return std::string(expr) + " DESC, o.po_id DESC";
  }
  refuse(Refusal::kInvalidArgument, "The order list cannot be sorted by \"" + sort_by + "\".");
}

}  // namespace

std::set<int32_t> parse_status_list(const std::string& list) {
  std::set<int32_t> out;
  std::stringstream in(list);
  std::string item;
  while (std::getline(in, item, ',')) {
    item.erase(0, item.find_first_not_of(" \t"));
    item.erase(item.find_last_not_of(" \t") + 1);
    if (item.empty()) continue;
    size_t used = 0;
    int v = 0;
    try {
      v = std::stoi(item, &used);
    } catch (const std::exception&) {
      used = 0;
    }
    if (used != item.size()) {
      refuse(Refusal::kInvalidArgument, "\"" + item + "\" in the status list is not a status.");
    }
    out.insert(v);
  }
  return out;
}

namespace {

std::string text_arg(const Variant& v) {
  return v.is_empty() || v.is_null() || v.is_missing() ? std::string() : v.to_string();
}

}  // namespace

bool RefPurchaseOrder::LoadPO(const SessionPtr& session, int32_t po_id, bool lock, Variant&) {
  return answer("LoadPO", false, [&] {
    const Session& s = session_of(session);
    auto h = std::make_shared<RefPOHeader>();
    db().write([&](soci::session& sql) {
      const PORow po = load_order(sql, po_id, s);
      std::string created;
      long long total = 0;
      soci::indicator sup_ind = soci::i_ok;
      sql << "SELECT o.po_id, r.req_name, u.full_name, o.create_date, r.justification, "
             "o.currency_code, b.name, o.supplier_id, o.supplier_name, s.name, "
             "COALESCE((SELECT CAST(ROUND(SUM(l.qty * l.unit_price) * (1 + b.tax_rate)) AS "
             "BIGINT) FROM po_lines l WHERE l.po_id = o.po_id), 0) "
             "FROM purchase_orders o JOIN requisitions r ON r.req_id = o.req_id "
             "JOIN users u ON u.sys_user_id = r.requisitioner_id "
             "JOIN borgs b ON b.borg_id = r.borg_id "
             "JOIN po_statuses s ON s.po_status_id = o.status_id WHERE o.po_id = :p",
          soci::use(po_id), soci::into(h->po_id), soci::into(h->po_name), soci::into(h->submitter),
          soci::into(created), soci::into(h->justification), soci::into(h->currency_code),
          soci::into(h->borg_name), soci::into(h->supplier_id, sup_ind),
          soci::into(h->supplier_name), soci::into(h->receive_status), soci::into(total);
      if (sup_ind != soci::i_ok) h->supplier_id = 0;
      h->po_num = "PO-" + std::to_string(po_id);
      h->create_date = parse_date_text(created);
      h->total = Currency::from_scaled(total);
      // A lock held elsewhere is no failure: the order opens read-only.
      if (lock && !locked_by_other(sql, db(), po_id, s)) take_lock(sql, db(), kPOLocks, po_id, s);
      h->read_only = po.status != po_status::kOpen || !holds_lock(sql, db(), kPOLocks, po_id, s);
    });
    header_ = std::move(h);
    return true;
  });
}

RecordsetPtr RefPurchaseOrder::GetPOItems(const SessionPtr& session, int32_t po_id,
                                          int32_t line_number, Variant&) {
  return answer("GetPOItems", RecordsetPtr(), [&] {
    const Session& s = session_of(session);
    return db().read([&](soci::session& sql) {
      load_order(sql, po_id, s);
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT l.line_num, l.req_line_num, l.part_id, l.description, l.qty, "
                          "l.unit_price, CAST(ROUND(l.qty * l.unit_price * b.tax_rate) AS BIGINT), "
                          "CAST(ROUND(l.qty * l.unit_price) AS BIGINT), l.currency_code, "
                          "o.create_date, COALESCE(o.status_date, o.create_date), "
                          "COALESCE(p.lead_days, 0) FROM po_lines l "
                          "JOIN purchase_orders o ON o.po_id = l.po_id "
                          "LEFT JOIN parts p ON p.part_id = l.part_id "
                          "JOIN requisitions r ON r.req_id = o.req_id "
                          "JOIN borgs b ON b.borg_id = r.borg_id "
                          "WHERE l.po_id = :p AND (:n = 0 OR l.line_num = :n2) ORDER BY l.line_num",
           soci::use(po_id), soci::use(line_number), soci::use(line_number));
      // Due the part's lead time after the order was placed (special requests: that day).
      RecordsetPtr rs = make_recordset(kItemColumns);
      for (const soci::row& row : rows) {
        const int64_t lead_days = get_int(row, 11).value_or(0);
        append_row(*rs, kItemColumns, row, [&](Recordset& r) {
          const Date placed = r["DeliverByDate"].Value().to_date();
          r.set_value(9, Variant(Date::from_seconds(placed.seconds() + lead_days * 86400)));
        });
      }
      if (rs->RecordCount() > 0) rs->MoveFirst();
      return rs;
    });
  });
}

RecordsetPtr RefPurchaseOrder::GetPOList(const SessionPtr& session, const Variant& user_name,
                                         const Variant& borg_name, const std::string& po_number,
                                         const Variant& sort_by, const Variant& status_list,
                                         Variant&) {
  return answer("GetPOList", RecordsetPtr(), [&] {
    const Session& s = session_of(session);
    return db().read([&](soci::session& sql) {
      return order_list(sql, s, text_arg(user_name), text_arg(borg_name), po_number,
                        text_arg(sort_by), parse_status_list(text_arg(status_list)));
    });
  });
}

RecordsetPtr order_list(soci::session& sql, const Session& s, const std::string& user_name,
                        const std::string& borg, const std::string& po_number,
                        const std::string& sort_by, const std::set<int32_t>& statuses) {
  const std::string login = text::lower_ascii(user_name);
  const std::string number = text::lower_ascii(po_number);
  // The statuses travel as one bound text ",2,4," so that the statement's text does not
  // depend on how many were asked for.
  std::string status_text;
  for (int32_t status : statuses) status_text += "," + std::to_string(status);
  if (!status_text.empty()) status_text += ",";
  const std::string query =
      std::string(kSummary) +
      "WHERE r.borg_id = :caller_borg AND ((:login = '' AND r.requisitioner_id = :self) OR "
      "LOWER(u.login_id) = :login2) "
      "AND (:borg = '' OR b.name = :borg2) AND (:num = '' OR LOWER('PO-' || "
      "CAST(o.po_id AS VARCHAR(20))) = :num2) AND (:st = '' OR :st2 LIKE ('%,' || "
      "CAST(o.status_id AS VARCHAR(11)) || ',%')) ORDER BY " +
      order_clause(sort_by);
  const int self = s.SysUserID(), caller_borg = s.BorgID();
  // Another user's orders are listed by name only within the caller's organisation.
  soci::rowset<soci::row> rows =
      (sql.prepare << query, soci::use(caller_borg), soci::use(login), soci::use(self),
       soci::use(login),
       soci::use(borg), soci::use(borg), soci::use(number), soci::use(number),
       soci::use(status_text), soci::use(status_text));
  return to_recordset(rows, kSummaryColumns);
}

RecordsetPtr RefPurchaseOrder::GetPOsByReq(const SessionPtr& session, int32_t req_id, Variant&) {
  return answer("GetPOsByReq", RecordsetPtr(), [&] {
    const Session& s = session_of(session);
    return db().read([&](soci::session& sql) {
      load_req(sql, req_id, s);
      soci::rowset<soci::row> rows =
          (sql.prepare << std::string(kSummary) + "WHERE o.req_id = :r ORDER BY o.po_id",
           soci::use(req_id));
      return to_recordset(rows, kSummaryColumns);
    });
  });
}

RecordsetPtr RefPurchaseOrder::GetPOLog(const SessionPtr& session, int32_t po_id,
                                        const std::string& filter, Variant&) {
  return answer("GetPOLog", RecordsetPtr(), [&] {
    const Session& s = session_of(session);
    return db().read([&](soci::session& sql) {
      load_order(sql, po_id, s);
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT g.date_logged, g.log_type, g.description, g.code, u.full_name "
                          "FROM po_log g JOIN users u ON u.sys_user_id = g.sys_user_id "
                          "WHERE g.po_id = :p AND (:f = '' OR g.log_type = :f2) ORDER BY g.log_id",
           soci::use(po_id), soci::use(filter), soci::use(filter));
      return to_recordset(rows, kLogColumns);
    });
  });
}

}  // namespace kxui::reference
