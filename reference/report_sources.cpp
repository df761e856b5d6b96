#include "reference/report_sources.h"

#include "reference/errors.h"
#include "reference/rows.h"

namespace kxui::reference {

namespace {

bool blank(const std::vector<Variant>& params, size_t i) {
  if (i >= params.size()) return true;
  const Variant& v = params[i];
  if (v.is_null() || v.is_empty() || v.is_missing()) return true;
  return v.is_string() && v.get_string().find_first_not_of(' ') == std::string::npos;
}

}  // namespace

std::optional<std::string> report_date_param(const std::vector<Variant>& params, size_t i) {
  if (blank(params, i)) return std::nullopt;
  std::optional<Date> d;
  try {
    d = params[i].to_date();
  } catch (const Failure&) {
    refuse(Refusal::kInvalidArgument,
           "Report parameter " + std::to_string(i + 1) + " is not a date.");
  }
  return date_text(*d);
}

ReportDateRange report_date_range(const std::vector<Variant>& params, size_t first) {
  const std::optional<std::string> from = report_date_param(params, first);
  if (!from) refuse(Refusal::kInvalidArgument, "The report needs a start date.");
  const std::optional<std::string> to = report_date_param(params, first + 1);
  // The end day counts whole: compare with its date part only.
  return {*from, to ? to->substr(0, 10) + " 23:59:59" : "9999-12-31 23:59:59"};
}

int32_t report_borg(soci::session& sql, const Session& s, const std::vector<Variant>& params,
                    size_t i) {
  if (blank(params, i)) return s.BorgID();
  const std::optional<int32_t> given = params[i].try_to_int32();
  if (!given) refuse(Refusal::kInvalidArgument, "The organisation is given by its number.");
  const int32_t borg = *given;
  const int32_t user = s.SysUserID();
  int known = 0, member = 0;
  sql << "SELECT COUNT(*) FROM borgs WHERE borg_id = :b", soci::use(borg), soci::into(known);
  if (known == 0) {
    refuse(Refusal::kNotFound, "Organisation " + std::to_string(borg) + " does not exist.");
  }
  sql << "SELECT (SELECT COUNT(*) FROM users WHERE sys_user_id = :u AND borg_id = :b) + "
         "(SELECT COUNT(*) FROM borg_users WHERE sys_user_id = :u2 AND borg_id = :b2)",
      soci::use(user), soci::use(borg), soci::use(user), soci::use(borg), soci::into(member);
  if (member == 0) {
    refuse(Refusal::kNotAllowed,
           "Reports on organisation " + std::to_string(borg) + " are for its members only.");
  }
  return borg;
}

RecordsetPtr RefPOReceiptsReport::GetReportData(const SessionPtr& session,
                                                const std::vector<Variant>& params, Variant&) {
  return answer("GetReportData", RecordsetPtr(), [&] {
    const int32_t borg = session_of(session).BorgID();
    const ReportDateRange range = report_date_range(params, 0);
    static constexpr Column kColumns[] = {
        {"ReceiptID", Kind::kInt},         {"POID", Kind::kInt},
        {"LineNum", Kind::kInt},           {"Description", Kind::kText, 255},
        {"ReceiveDate", Kind::kDate},      {"ReceivedBy", Kind::kText, 100},
        {"OrderedQty", Kind::kDouble},     {"ReceivedQty", Kind::kDouble},
        {"PackingSlipQty", Kind::kDouble}, {"Comments", Kind::kText, 2000}};
    return db().read([&](soci::session& sql) {
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT c.receipt_id, c.po_id, rl.line_num, COALESCE(l.description, "
                          "''), c.receive_date, u.full_name, COALESCE(l.qty, 0), rl.received_qty, "
                          "rl.packing_slip_qty, rl.comments FROM receipts c "
                          "JOIN receipt_lines rl ON rl.receipt_id = c.receipt_id "
                          "JOIN purchase_orders o ON o.po_id = c.po_id "
                          "JOIN requisitions r ON r.req_id = o.req_id "
                          "JOIN users u ON u.sys_user_id = c.received_by "
                          "LEFT JOIN po_lines l ON l.po_id = c.po_id AND l.line_num = rl.line_num "
                          "WHERE r.borg_id = :b AND c.receive_date >= :f AND c.receive_date <= :t "
                          "ORDER BY c.receipt_id, rl.line_num",
           soci::use(borg), soci::use(range.from), soci::use(range.until));
      return to_recordset(rows, kColumns);
    });
  });
}

RecordsetPtr RefPOByBorgReport::GetReportData(const SessionPtr& session,
                                              const std::vector<Variant>& params, Variant&) {
  return answer("GetReportData", RecordsetPtr(), [&] {
    const Session& s = session_of(session);
    const ReportDateRange range = report_date_range(params, 1);
    static constexpr Column kColumns[] = {
        {"BorgName", Kind::kText, 100}, {"SupplierName", Kind::kText, 100},
        {"CurrencyCode", Kind::kText, 3}, {"OrderCount", Kind::kInt},
        {"Total", Kind::kMoney},        {"ReceivedTotal", Kind::kMoney}};
    return db().read([&](soci::session& sql) {
      const int32_t borg = report_borg(sql, s, params, 0);
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT b.name, o.supplier_name, o.currency_code, "
                          "COUNT(DISTINCT o.po_id), "
                          "CAST(COALESCE(SUM(ROUND(l.qty * l.unit_price)), 0) AS BIGINT), "
                          "CAST(COALESCE(SUM(ROUND(l.received_qty * l.unit_price)), 0) AS BIGINT) "
                          "FROM purchase_orders o JOIN requisitions r ON r.req_id = o.req_id "
                          "JOIN borgs b ON b.borg_id = r.borg_id "
                          "LEFT JOIN po_lines l ON l.po_id = o.po_id "
                          "WHERE r.borg_id = :b AND o.create_date >= :f AND o.create_date <= :t "
                          "GROUP BY b.name, o.supplier_name, o.currency_code ORDER BY 2, 3",
           soci::use(borg), soci::use(range.from), soci::use(range.until));
      return to_recordset(rows, kColumns);
    });
  });
}

RecordsetPtr RefPrivByBorgReport::GetReportData(const SessionPtr& session,
                                                const std::vector<Variant>& params, Variant&) {
  return answer("GetReportData", RecordsetPtr(), [&] {
    const Session& s = session_of(session);
    const std::string now = date_text(db().now());
    static constexpr Column kColumns[] = {
        {"LoginID", Kind::kText, 50},       {"UserName", Kind::kText, 100},
        {"Active", Kind::kBool},            {"ManagerName", Kind::kText, 100},
        {"ApprovalLimit", Kind::kMoney},    {"SpendingLimit", Kind::kMoney},
        {"CurrencyCode", Kind::kText, 3},   {"DelegateName", Kind::kText, 100}};
    return db().read([&](soci::session& sql) {
      const int32_t borg = report_borg(sql, s, params, 0);
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT u.login_id, u.full_name, u.active, m.full_name, "
                          "u.approval_limit, COALESCE(bu.spending_limit, 0), b.currency_code, "
                          "dl.full_name FROM users u JOIN borgs b ON b.borg_id = :b "
                          "LEFT JOIN users m ON m.sys_user_id = u.manager_id "
                          "LEFT JOIN borg_users bu ON bu.borg_id = b.borg_id AND "
                          "bu.sys_user_id = u.sys_user_id "
                          "LEFT JOIN delegations d ON d.sys_user_id = u.sys_user_id AND "
                          "d.borg_id = b.borg_id AND d.enabled = 1 AND b.delegation_enabled = 1 "
                          "AND d.start_date <= :n AND d.end_date >= :n2 "
                          "LEFT JOIN users dl ON dl.sys_user_id = d.delegatee_id "
                          "WHERE u.borg_id = :b2 ORDER BY u.full_name, u.login_id",
           soci::use(borg), soci::use(now), soci::use(now), soci::use(borg));
      return to_recordset(rows, kColumns);
    });
  });
}

}  // namespace kxui::reference
