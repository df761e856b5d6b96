// RefRequisition: loading, the list, header, status, totals and log; RefTemplates.
#include "reference/requisition.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>
#include <sstream>
#include <vector>

#include "kxui/frame/text.h"
#include "reference/errors.h"
#include "reference/list_source.h"
#include "reference/req_store.h"
#include "reference/rows.h"

namespace kxui::reference {

namespace {

constexpr const char* kReqLocks = "req_locks";
// The list filters on up to this many statuses, each bound as its own parameter.
constexpr int kStatusSlots = 12;
constexpr int kUnusedStatus = -9999;

std::string lower(std::string_view s) { return kxui::text::lower_ascii(s); }

// The ORDER BY of a caller's sort text: one of the known columns, optionally followed by
// ASC or DESC. The clause is always one of these constants, never the caller's text.
std::string order_clause(const std::string& sort_by) {
  static const std::pair<const char*, const char*> kColumns[] = {
      {"reqid", "r.req_id"},           {"reqname", "r.req_name"},
      {"reqstatusid", "r.status_id"},  {"createdate", "r.create_date"},
      {"submitdate", "r.submit_date"}, {"requisitionername", "u.full_name"}};
  std::istringstream in(lower(sort_by));
  std::string column, direction;
  in >> column >> direction;
  if (column.empty()) return "r.create_date DESC, r.req_id DESC";
  for (const auto& [name, expr] : kColumns) {
    if (column != name) continue;
    if (direction.empty() || direction == "asc") return std::string(expr) + ", r.req_id";
    if (direction == "desc") return std::string(expr) + " DESC, r.req_id DESC";
  }
  refuse(Refusal::kInvalidArgument, "The requisition list cannot be sorted by \"" + sort_by + "\".");
}

std::vector<int> status_slots(const std::string& status_list) {
  std::vector<int> slots;
  std::stringstream in(status_list);
  std::string item;
  while (std::getline(in, item, ',')) {
    item.erase(0, item.find_first_not_of(" \t"));
    item.erase(item.find_last_not_of(" \t") + 1);
    if (item.empty()) continue;
    try {
      size_t used = 0;
      const int v = std::stoi(item, &used);
      if (used != item.size()) throw std::invalid_argument(item);
      slots.push_back(v);
    } catch (const std::exception&) {
      refuse(Refusal::kInvalidArgument, "\"" + item + "\" in the status list is not a status.");
    }
  }
  if (slots.size() > kStatusSlots) {
    refuse(Refusal::kInvalidArgument, "The status list names more than 12 statuses.");
  }
  return slots;
}

// SubmitDate of a requisition never submitted is its creation date: pages turn every date
// of a list into text, and an empty one would fail the whole list.
constexpr Column kListColumns[] = {
    {"ReqID", Kind::kInt},          {"ReqName", Kind::kText, 100},
    {"ReqStatusID", Kind::kInt},    {"RequisitionerName", Kind::kText, 100},
    {"BorgName", Kind::kText, 100}, {"CreateDate", Kind::kDate},
    {"SubmitDate", Kind::kDate},    {"NumberOfItems", Kind::kInt},
    {"CurrencyCode", Kind::kText, 3}};

}  // namespace

bool RefRequisition::Load(const SessionPtr& session, int32_t req_id, bool lock, Variant&) {
  return answer("Load", false, [&] {
    const Session& s = session_of(session);
    auto header = std::make_shared<RefHeader>();
    db().write([&](soci::session& sql) {
      load_req(sql, req_id, s);
      std::string create_date;
      sql << "SELECT r.req_id, r.req_name, r.status_id, r.justification, b.name, u.full_name, "
             "r.create_date FROM requisitions r JOIN borgs b ON b.borg_id = r.borg_id "
             "JOIN users u ON u.sys_user_id = r.requisitioner_id WHERE r.req_id = :id",
          soci::use(req_id), soci::into(header->req_id), soci::into(header->name),
          soci::into(header->status), soci::into(header->justification),
          soci::into(header->borg_name), soci::into(header->requisitioner_name),
          soci::into(create_date);
      header->create_date = parse_date_text(create_date);
      if (lock) take_lock(sql, db(), kReqLocks, req_id, s);
    });
    header_ = std::move(header);
    return true;
  });
}

namespace {

// One row of a requisition list, as both list statements read it.
struct ListRow {
  int req_id = 0, status = 0, items = 0;
  std::string name, requisitioner, borg_name, created, submitted, currency;
  void bind_row(soci::statement& st) {
    st.exchange(soci::into(req_id));
    st.exchange(soci::into(name));
    st.exchange(soci::into(status));
    st.exchange(soci::into(requisitioner));
    st.exchange(soci::into(borg_name));
    st.exchange(soci::into(created));
    st.exchange(soci::into(submitted));
    st.exchange(soci::into(items));
    st.exchange(soci::into(currency));
  }
};

// What a list is filtered on, held by value: a list read on demand outlives the call.
// Another user's requisitions are listed only where they belong to the caller's
// organisation (`caller_borg`); the caller's own, wherever they are.
struct ListFilter {
  std::string login, borg;
  int self = 0, all = 0, caller_borg = 0;
  std::array<int, kStatusSlots> slots{};
};

// The list statement, prepared once per sort order, with the variables bound to it.
struct ListStatement : Database::PreparedState, ListRow {
  ListFilter f;
};

void prepare_list(soci::session& sql, ListStatement& s, const std::string& order) {
  std::string query =
      "SELECT r.req_id, r.req_name, r.status_id, u.full_name, b.name, r.create_date, "
      "COALESCE(r.submit_date, r.create_date), "
      "(SELECT COUNT(*) FROM req_lines l WHERE l.req_id = r.req_id), r.currency_code "
      "FROM requisitions r JOIN users u ON u.sys_user_id = r.requisitioner_id "
      "JOIN borgs b ON b.borg_id = r.borg_id "
      "WHERE ((:login = '' AND r.requisitioner_id = :self) OR LOWER(u.login_id) = :login2) "
      "AND (r.requisitioner_id = :self2 OR r.borg_id = :caller_borg) "
      "AND (:borg = '' OR b.name = :borg2) AND (:all = 1 OR r.status_id IN (";
  for (int i = 0; i < kStatusSlots; ++i) query += (i ? ", :s" : ":s") + std::to_string(i);
  query += ")) ORDER BY " + order;
  ListFilter& f = s.f;
  prepare_statement(sql, s, query, [&s, &f](soci::statement& st) {
    st.exchange(soci::use(f.login));
    st.exchange(soci::use(f.self));
    st.exchange(soci::use(f.login));
    st.exchange(soci::use(f.self));
    st.exchange(soci::use(f.caller_borg));
    st.exchange(soci::use(f.borg));
    st.exchange(soci::use(f.borg));
    st.exchange(soci::use(f.all));
    for (int& slot : f.slots) st.exchange(soci::use(slot));
    s.bind_row(st);
  });
}

// One requisitioner's list: the filter on the requisitions alone, with only the
// conditions the call sets, so that the index on (requisitioner, create date) serves the
// list order by itself. `bound` limits the window's keys to one side of a create date:
// where a window deep in a create-date list starts is found from the kept counts.
enum class Bound { kNone, kFrom, kUpTo };

struct Shape {
  bool borg = false;
  bool statuses = false;
  bool others = false;  // another user's list: only what is in the caller's organisation
  Bound bound = Bound::kNone;
  std::string key() const {
    return std::string(borg ? " borg" : "") + (statuses ? " status" : "") +
           (others ? " others" : "") +
           (bound == Bound::kFrom ? " from" : bound == Bound::kUpTo ? " upto" : "");
  }
};

// The conditions on `table` (the requisitions, or their kept counts: both carry the
// requisitioner, organisation and status).
std::string one_user_filter(const Shape& shape, const std::string& table) {
  std::string where = "WHERE " + table + ".requisitioner_id = :uid";
  if (shape.borg) {
    where += " AND " + table + ".borg_id IN (SELECT b.borg_id FROM borgs b WHERE b.name = :borg)";
  }
  if (shape.others) where += " AND " + table + ".borg_id = :caller_borg";
  if (shape.statuses) {
    where += " AND " + table + ".status_id IN (";
    for (int i = 0; i < kStatusSlots; ++i) where += (i ? ", :s" : ":s") + std::to_string(i);
    where += ")";
  }
  return where;
}

struct OneUserStatement : Database::PreparedState {
  ListFilter filter;
  int uid = 0;
  void bind_filter(soci::statement& st, const Shape& shape) {
    st.exchange(soci::use(uid));
    if (shape.borg) st.exchange(soci::use(filter.borg));
    if (shape.others) st.exchange(soci::use(filter.caller_borg));
    if (shape.statuses) {
      for (int& slot : filter.slots) st.exchange(soci::use(slot));
    }
  }
  void set(const ListFilter& f, int user) {
    filter = f;
    uid = user;
  }
};

// The list's length, summed from the kept yearly counts.
struct CountStatement : OneUserStatement {
  long long count = 0;
};

void prepare_count(soci::session& sql, CountStatement& s, const Shape& shape) {
  prepare_statement(sql, s,
                    "SELECT COALESCE(SUM(c.n), 0) FROM req_list_counts c " +
                        one_user_filter(shape, "c") + " AND c.level = 0",
                    [&](soci::statement& st) {
                      s.bind_filter(st, shape);
                      st.exchange(soci::into(s.count));
                    });
}

// The kept counts of one level within [from, to], period by period in list order.
struct PeriodStatement : OneUserStatement {
  int level = 0;
  std::string from, to, period;
  long long n = 0;
};

void prepare_periods(soci::session& sql, PeriodStatement& s, const Shape& shape, bool descending) {
  const std::string query =
      "SELECT c.period, SUM(c.n) FROM req_list_counts c " + one_user_filter(shape, "c") +
      " AND c.level = :level AND c.period >= :from AND c.period <= :to GROUP BY c.period "
      "ORDER BY c.period" + (descending ? " DESC" : "");
  prepare_statement(sql, s, query, [&](soci::statement& st) {
    s.bind_filter(st, shape);
    st.exchange(soci::use(s.level));
    st.exchange(soci::use(s.from));
    st.exchange(soci::use(s.to));
    st.exchange(soci::into(s.period));
    st.exchange(soci::into(s.n));
  });
}

struct PageStatement : OneUserStatement, ListRow, WindowBounds {
  std::string bound;
};

// The keys of the window in list order, then their rows. All rows are one user's, so a
// sort on the requisitioner's name is a sort on the key alone.
void prepare_page(soci::session& sql, PageStatement& s, const std::string& order,
                  const Shape& shape) {
  std::string key_order = order;
  for (const char* by_name : {"u.full_name DESC, ", "u.full_name, "}) {
    if (key_order.rfind(by_name, 0) == 0) key_order.erase(0, std::string(by_name).size());
  }
  const char* bound = shape.bound == Bound::kFrom   ? " AND r.create_date >= :bound"
                      : shape.bound == Bound::kUpTo ? " AND r.create_date <= :bound"
                                                    : "";
  const std::string query =
      "SELECT r.req_id, r.req_name, r.status_id, u.full_name, b.name, r.create_date, "
      "COALESCE(r.submit_date, r.create_date), "
      "(SELECT COUNT(*) FROM req_lines l WHERE l.req_id = r.req_id), r.currency_code "
      "FROM (SELECT r.req_id FROM requisitions r " +
      one_user_filter(shape, "r") + bound + " ORDER BY " + key_order +
      " LIMIT :n OFFSET :o) k JOIN requisitions r ON r.req_id = k.req_id "
      "JOIN users u ON u.sys_user_id = r.requisitioner_id "
      "JOIN borgs b ON b.borg_id = r.borg_id ORDER BY " +
      order;
  prepare_statement(sql, s, query, [&](soci::statement& st) {
    s.bind_filter(st, shape);
    if (shape.bound != Bound::kNone) st.exchange(soci::use(s.bound));
    s.bind_window(st);
    s.bind_row(st);
  });
}

// Where row `first` of a create-date list lies: the day it was created on and how many
// rows of the list come before it from that day on (from its end, descending). Walks the
// kept counts year, month, then day; nothing when the list is shorter.
struct Position {
  std::string day;
  int64_t offset = 0;
};

std::optional<Position> find_position(const DatabasePtr& db, const ListFilter& filter, int uid,
                                      Shape shape, bool descending, int64_t first) {
  shape.bound = Bound::kNone;
  PeriodStatement& q = db->prepared<PeriodStatement>(
      std::string("requisition periods") + (descending ? " desc" : "") + shape.key(),
      [&](soci::session& s, PeriodStatement& st) { prepare_periods(s, st, shape, descending); });
  q.set(filter, uid);
  std::string period;
  int64_t left = first;
  // A year runs "YYYY-01".."YYYY-12", a month "YYYY-MM-01".."YYYY-MM-31".
  const std::pair<const char*, const char*> within[] = {{"0000", "9999"}, {"-01", "-12"}, {"-01", "-31"}};
  for (int level = 0; level < 3; ++level) {
    q.level = level;
    q.from = level == 0 ? within[0].first : period + within[level].first;
    q.to = level == 0 ? within[0].second : period + within[level].second;
    q.statement->execute(false);
    bool found = false;
    while (q.statement->fetch()) {
      if (found) continue;  // stepped to its end, so it holds no read snapshot
      if (left < q.n) {
        period = q.period;
        found = true;
      } else {
        left -= q.n;
      }
    }
    if (!found) return std::nullopt;
  }
  return Position{period, left};
}

RecordsetPtr one_user_list(const DatabasePtr& db, const ListFilter& filter, int uid,
                           const std::string& order) {
  const Shape shape{!filter.borg.empty(), filter.all == 0, uid != filter.self, Bound::kNone};
  const bool by_created = order.rfind("r.create_date", 0) == 0;
  const bool descending = order.find(" DESC") != std::string::npos;
  auto count = [db, filter, uid, shape](soci::session&) -> int64_t {
    CountStatement& q = db->prepared<CountStatement>(
        "requisition count" + shape.key(),
        [&shape](soci::session& s, CountStatement& st) { prepare_count(s, st, shape); });
    q.set(filter, uid);
    return run_count(*q.statement, q.count);
  };
  auto fetch = [db, filter, uid, order, shape, by_created, descending](
                   soci::session&, int64_t first, int64_t rows, std::vector<Variant>& out) {
    Shape window = shape;
    std::string bound;
    int64_t offset = first;
    // Deep in a create-date list the window starts at its day, found from the kept counts,
    // rather than by skipping every row before it.
    if (by_created && first > 0) {
      const std::optional<Position> at = find_position(db, filter, uid, shape, descending, first);
      if (!at) return;
      window.bound = descending ? Bound::kUpTo : Bound::kFrom;
      bound = at->day + (descending ? " 23:59:59" : " 00:00:00");
      offset = at->offset;
    }
    PageStatement& q = db->prepared<PageStatement>(
        "requisition page " + order + window.key(),
        [&](soci::session& s, PageStatement& st) { prepare_page(s, st, order, window); });
    q.set(filter, uid);
    q.bound = bound;
    q.run_window(*q.statement, offset, rows, [&] {
      out.emplace_back(int32_t{q.req_id});
      out.emplace_back(q.name);
      out.emplace_back(int32_t{q.status});
      out.emplace_back(q.requisitioner);
      out.emplace_back(q.borg_name);
      out.emplace_back(parse_date_text(q.created));
      out.emplace_back(parse_date_text(q.submitted));
      out.emplace_back(int32_t{q.items});
      out.emplace_back(q.currency);
    });
  };
  return open_on_demand(kListColumns, std::make_shared<QueryRowSource>(db, count, fetch));
}

}  // namespace

RecordsetPtr RefRequisition::GetRequisitionList(const SessionPtr& session,
                                                const std::string& user_name,
                                                const std::string& borg_name,
                                                const std::string& sort_by,
                                                const std::string& status_list, Variant&) {
  return answer("GetRequisitionList", RecordsetPtr(), [&] {
    const Session& s = session_of(session);
    const std::string order = order_clause(sort_by);
    std::vector<int> slots = status_slots(status_list);
    const int all_statuses = slots.empty() ? 1 : 0;
    slots.resize(kStatusSlots, kUnusedStatus);
    ListFilter filter{lower(user_name), borg_name, s.SysUserID(), all_statuses, s.BorgID(), {}};
    std::copy(slots.begin(), slots.end(), filter.slots.begin());
    const std::optional<int> one = db().read(
        [&](soci::session& sql) { return single_user(sql, filter.login, filter.self); });
    if (one) return one_user_list(db_ptr(), filter, *one, order);
    return db().read([&](soci::session&) {
      ListStatement& q = db().prepared<ListStatement>(
          "requisition list " + order,
          [&](soci::session& sql, ListStatement& st) { prepare_list(sql, st, order); });
      q.f = filter;
      RecordsetPtr rs = make_recordset(kListColumns);
      q.statement->execute(false);
      while (q.statement->fetch()) {
        rs->AddNew();
        rs->set_value(0, Variant(int32_t{q.req_id}));
        rs->set_value(1, Variant(q.name));
        rs->set_value(2, Variant(int32_t{q.status}));
        rs->set_value(3, Variant(q.requisitioner));
        rs->set_value(4, Variant(q.borg_name));
        rs->set_value(5, Variant(parse_date_text(q.created)));
        rs->set_value(6, Variant(parse_date_text(q.submitted)));
        rs->set_value(7, Variant(int32_t{q.items}));
        rs->set_value(8, Variant(q.currency));
        rs->Update();
      }
      if (rs->RecordCount() > 0) rs->MoveFirst();
      return rs;
    });
  });
}

bool RefRequisition::UpdateReqName(const SessionPtr& session, int32_t req_id,
                                   const std::string& name, Variant&) {
  return answer("UpdateReqName", false, [&] {
    const Session& s = session_of(session);
    if (name.empty()) refuse(Refusal::kInvalidArgument, "A requisition needs a name.");
    require_length(name, 100, "A requisition name");
    db().write([&](soci::session& sql) {
      const ReqRow req = load_req(sql, req_id, s);
      require_requisitioner(req, s, "rename");
      require_editable(req, "renamed");
      require_not_locked_by_other(sql, db(), kReqLocks, req_id, s);
      sql << "UPDATE requisitions SET req_name = :n WHERE req_id = :id", soci::use(name),
          soci::use(req_id);
      log_req(sql, db(), req_id, s.SysUserID(), "Renamed", name);
    });
    return true;
  });
}

bool RefRequisition::GetReqStatus(const SessionPtr& session, int32_t req_id, int32_t& status_id,
                                  int32_t& number_of_items, Variant&) {
  return answer("GetReqStatus", false, [&] {
    const Session& s = session_of(session);
    db().read([&](soci::session& sql) {
      const ReqRow req = load_req(sql, req_id, s);
      int count = 0;
      sql << "SELECT COUNT(*) FROM req_lines WHERE req_id = :id", soci::use(req_id),
          soci::into(count);
      status_id = req.status;
      number_of_items = count;
    });
    return true;
  });
}

bool RefRequisition::GetReqTotals(const SessionPtr& session, int32_t req_id,
                                  const std::string& currency_code, Currency& sub_total,
                                  Currency& estimated_tax, Currency& total, Variant&) {
  return answer("GetReqTotals", false, [&] {
    const Session& s = session_of(session);
    const Totals t = db().read([&](soci::session& sql) {
      load_req(sql, req_id, s);
      return req_totals(sql, db(), req_id, currency_code);
    });
    sub_total = t.sub_total;
    estimated_tax = t.tax;
    total = t.total;
    return true;
  });
}

bool RefRequisition::Save(const SessionPtr& session, Variant&) {
  return answer("Save", false, [&] {
    const Session& s = session_of(session);
    if (!header_) refuse(Refusal::kInvalidArgument, "No requisition is loaded to be saved.");
    // Approvers see the justification in a column of 256 characters.
    require_length(header_->justification, 256, "A justification");
    db().write([&](soci::session& sql) {
      const ReqRow req = load_req(sql, header_->req_id, s);
      require_editable(req, "changed");
      if (!holds_lock(sql, db(), kReqLocks, req.req_id, s)) {
        refuse(Refusal::kLockNotHeld, "Requisition " + std::to_string(req.req_id) +
                                          " must be locked by this session to be saved.");
      }
      sql << "UPDATE requisitions SET justification = :j WHERE req_id = :id",
          soci::use(header_->justification), soci::use(req.req_id);
      log_req(sql, db(), req.req_id, s.SysUserID(), "Changed", "Justification");
      store_quick_check_prices(sql, s.SysUserID());
    });
    quick_check_prices_.clear();
    return true;
  });
}

RecordsetPtr RefRequisition::GetLog(const SessionPtr& session, const std::string& filter,
                                    Variant&) {
  // The contract throws; the error is kept in GetError as well.
  return answer_or_throw("GetLog", [&] {
    session_of(session);
    if (!header_) refuse(Refusal::kInvalidArgument, "No requisition is loaded.");
    static constexpr Column kColumns[] = {{"LogID", Kind::kInt},
                                          {"DateLogged", Kind::kDate},
                                          {"UserName", Kind::kText, 100},
                                          {"Action", Kind::kText, 50},
                                          {"Comments", Kind::kText, 2000}};
    return db().read([&](soci::session& sql) {
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT g.log_id, g.date_logged, u.full_name, g.action, g.comments "
                          "FROM req_log g JOIN users u ON u.sys_user_id = g.sys_user_id "
                          "WHERE g.req_id = :id AND (:f = '' OR g.action = :f2) "
                          "ORDER BY g.log_id",
           soci::use(header_->req_id), soci::use(filter), soci::use(filter));
      return to_recordset(rows, kColumns);
    });
  });
}

RecordsetPtr RefTemplates::GetTemplateList(const SessionPtr& session, int32_t req_status_id,
                                           Variant&) {
  return answer_or_throw("GetTemplateList", [&] {
    const Session& s = session_of(session);
    static constexpr Column kColumns[] = {
        {"ReqID", Kind::kInt},       {"ReqName", Kind::kText, 100},
        {"TemplateType", Kind::kInt}, {"OwnerName", Kind::kText, 100},
        {"NumberOfItems", Kind::kInt}, {"CreateDate", Kind::kDate}};
    const int user = s.SysUserID(), borg = s.BorgID();
    // Personal templates (type 1) of the user, shared ones (type 2) of the organisation.
    return db().read([&](soci::session& sql) {
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT r.req_id, r.req_name, r.template_type, u.full_name, "
                          "(SELECT COUNT(*) FROM req_lines l WHERE l.req_id = r.req_id), "
                          "r.create_date FROM requisitions r "
                          "JOIN users u ON u.sys_user_id = r.requisitioner_id "
                          "WHERE r.template_type IS NOT NULL AND r.status_id = :st AND "
                          "(r.requisitioner_id = :u OR (r.template_type = 2 AND r.borg_id = :b)) "
                          "ORDER BY r.req_name, r.req_id",
           soci::use(req_status_id), soci::use(user), soci::use(borg));
      return to_recordset(rows, kColumns);
    });
  });
}

}  // namespace kxui::reference
