// RefPurchaseOrder (all but ReleaseSessionLocks), the order log and the status map.
#include "reference/purchase_order.h"

#include <optional>
#include <set>
#include <sstream>

#include "kxui/frame/text.h"
#include "reference/errors.h"
#include "reference/list_source.h"
#include "reference/req_store.h"
#include "reference/rows.h"
#include "reference/services.h"

namespace kxui::reference {

namespace {

constexpr const char* kPOLocks = "po_locks";

// One row per order, in the column order of kSummaryColumns: the columns, and the joins
// they are read through once `o` is the order.
constexpr const char* kSummarySelect =
    "SELECT o.po_id, 'PO-' || CAST(o.po_id AS VARCHAR(20)), r.req_name, o.req_id, "
    "o.supplier_name, o.status_id, s.name, o.create_date, o.create_date, "
    "COALESCE((SELECT CAST(ROUND(SUM(l.qty * l.unit_price) * (1 + b.tax_rate)) AS BIGINT) "
    "FROM po_lines l WHERE l.po_id = o.po_id), 0), o.currency_code, u.full_name, b.name ";
constexpr const char* kSummaryJoins =
    "JOIN requisitions r ON r.req_id = o.req_id "
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
    return order_list(db_ptr(), s, text_arg(user_name), text_arg(borg_name), po_number,
                      text_arg(sort_by), parse_status_list(text_arg(status_list)));
  });
}

namespace {

// What an order list is filtered on, held by value: a list read on demand outlives the
// call. The statuses travel as one text ",2,4," so that the statement's text does not
// depend on how many were asked for. Orders are listed only where their requisition
// belongs to the caller's organisation (`caller_borg`).
struct OrderFilter {
  std::string login, borg, number, statuses;
  int self = 0, caller_borg = 0;
};

// Which conditions a list's statements hold: only those the call sets, and for one user's
// orders the user's id, so that the index from a user to the orders in list order serves
// the count and the windows by itself.
struct OrderShape {
  bool one_user = false, borg = false, number = false, statuses = false;
  std::string key() const {
    return std::string(one_user ? " one" : " any") + (borg ? " borg" : "") +
           (number ? " number" : "") + (statuses ? " status" : "");
  }
};

// The list's FROM and WHERE, with the orders as `o`.
std::string order_filter(const OrderShape& shape) {
  std::string from = "FROM purchase_orders o ";
  std::string where = "WHERE o.borg_id = :caller_borg AND ";
  if (shape.one_user) {
    where += "o.requisitioner_id = :uid";
  } else {
    from += "JOIN users u ON u.sys_user_id = o.requisitioner_id ";
    where += "((:login = '' AND o.requisitioner_id = :self) OR LOWER(u.login_id) = :login2)";
  }
  if (shape.borg) where += " AND o.borg_id IN (SELECT b.borg_id FROM borgs b WHERE b.name = :borg)";
  if (shape.number) where += " AND LOWER('PO-' || CAST(o.po_id AS VARCHAR(20))) = :num";
  if (shape.statuses) {
    where += " AND :st LIKE ('%,' || CAST(o.status_id AS VARCHAR(11)) || ',%')";
  }
  return from + where;
}

// A kept list statement with the filter it is bound to.
struct OrderListStatement : Database::PreparedState {
  OrderFilter filter;
  int uid = 0;
  void bind_filter(soci::statement& st, const OrderShape& shape) {
    st.exchange(soci::use(filter.caller_borg));
    if (shape.one_user) {
      st.exchange(soci::use(uid));
    } else {
      st.exchange(soci::use(filter.login));
      st.exchange(soci::use(filter.self));
      st.exchange(soci::use(filter.login));
    }
    if (shape.borg) st.exchange(soci::use(filter.borg));
    if (shape.number) st.exchange(soci::use(filter.number));
    if (shape.statuses) st.exchange(soci::use(filter.statuses));
  }
  void set(const OrderFilter& f, int user) {
    filter = f;
    uid = user;
  }
};

struct OrderCount : OrderListStatement {
  long long count = 0;
};

// One row of the list as the window statement reads it.
struct OrderRow {
  int po_id = 0, req_id = 0, status = 0;
  long long total = 0;
  std::string po_num, name, supplier, status_name, created, ordered_on, currency,
      requisitioner, borg;
  void bind_row(soci::statement& st) {
    st.exchange(soci::into(po_id));
    st.exchange(soci::into(po_num));
    st.exchange(soci::into(name));
    st.exchange(soci::into(req_id));
    st.exchange(soci::into(supplier));
    st.exchange(soci::into(status));
    st.exchange(soci::into(status_name));
    st.exchange(soci::into(created));
    st.exchange(soci::into(ordered_on));
    st.exchange(soci::into(total));
    st.exchange(soci::into(currency));
    st.exchange(soci::into(requisitioner));
    st.exchange(soci::into(borg));
  }
  void append_to(std::vector<Variant>& out) const {
    out.emplace_back(int32_t{po_id});
    out.emplace_back(po_num);
    out.emplace_back(name);
    out.emplace_back(int32_t{req_id});
    out.emplace_back(supplier);
    out.emplace_back(int32_t{status});
    out.emplace_back(status_name);
    out.emplace_back(parse_date_text(created));
    out.emplace_back(parse_date_text(ordered_on));
    out.emplace_back(Currency::from_scaled(total));
    out.emplace_back(currency);
    out.emplace_back(requisitioner);
    out.emplace_back(borg);
  }
};

struct OrderWindow : OrderListStatement, OrderRow, WindowBounds {};

// The keys of the window in list order, then their rows; every sort is on the order's
// own columns, ending on its id.
void prepare_order_window(soci::session& sql, OrderWindow& s, const std::string& order,
                          const OrderShape& shape) {
  const std::string query = std::string(kSummarySelect) + "FROM (SELECT o.po_id " +
                            order_filter(shape) + " ORDER BY " + order +
                            " LIMIT :n OFFSET :o) k JOIN purchase_orders o ON o.po_id = k.po_id " +
                            kSummaryJoins + "ORDER BY " + order;
  prepare_statement(sql, s, query, [&](soci::statement& st) {
    s.bind_filter(st, shape);
    s.bind_window(st);
    s.bind_row(st);
  });
}

void prepare_order_count(soci::session& sql, OrderCount& s, const OrderShape& shape) {
  prepare_statement(sql, s, "SELECT COUNT(*) " + order_filter(shape),
                    [&](soci::statement& st) {
                      s.bind_filter(st, shape);
                      st.exchange(soci::into(s.count));
                    });
}

}  // namespace

RecordsetPtr order_list(const DatabasePtr& db, const Session& s, const std::string& user_name,
                        const std::string& borg, const std::string& po_number,
                        const std::string& sort_by, const std::set<int32_t>& statuses) {
  OrderFilter filter{text::lower_ascii(user_name), borg, text::lower_ascii(po_number), "",
                     s.SysUserID(), s.BorgID()};
  for (int32_t status : statuses) filter.statuses += "," + std::to_string(status);
  if (!filter.statuses.empty()) filter.statuses += ",";
  const std::string order = order_clause(sort_by);
  const std::optional<int> one =
      db->read([&](soci::session& sql) { return single_user(sql, filter.login, filter.self); });
  const OrderShape shape{one.has_value(), !filter.borg.empty(), !filter.number.empty(),
                         !filter.statuses.empty()};
  const int uid = one.value_or(0);
  auto count = [db, filter, uid, shape](soci::session&) -> int64_t {
    OrderCount& q = db->prepared<OrderCount>(
        "order count" + shape.key(),
        [&shape](soci::session& sql, OrderCount& st) { prepare_order_count(sql, st, shape); });
    q.set(filter, uid);
    return run_count(*q.statement, q.count);
  };
  auto fetch = [db, filter, uid, shape, order](soci::session&, int64_t first, int64_t rows,
                                               std::vector<Variant>& out) {
    OrderWindow& q = db->prepared<OrderWindow>(
        "order window " + order + shape.key(), [&](soci::session& sql, OrderWindow& st) {
          prepare_order_window(sql, st, order, shape);
        });
    q.set(filter, uid);
    q.run_window(*q.statement, first, rows, [&q, &out] { q.append_to(out); });
  };
  return open_on_demand(kSummaryColumns, std::make_shared<QueryRowSource>(db, count, fetch));
}

RecordsetPtr RefPurchaseOrder::GetPOsByReq(const SessionPtr& session, int32_t req_id, Variant&) {
  return answer("GetPOsByReq", RecordsetPtr(), [&] {
    const Session& s = session_of(session);
    return db().read([&](soci::session& sql) {
      load_req(sql, req_id, s);
      soci::rowset<soci::row> rows =
          (sql.prepare << std::string(kSummarySelect) + "FROM purchase_orders o " +
                              kSummaryJoins + "WHERE o.req_id = :r ORDER BY o.po_id",
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
