#include "reference/req_cost_distribs.h"

#include <cmath>
#include <set>

#include "reference/errors.h"
#include "reference/req_store.h"
#include "reference/rows.h"

namespace kxui::reference {

namespace {

void require_line(soci::session& sql, const ReqRow& req, int32_t line_num) {
  int found = 0;
  sql << "SELECT COUNT(*) FROM req_lines WHERE req_id = :r AND line_num = :l",
      soci::use(req.req_id), soci::use(line_num), soci::into(found);
  if (found == 0) {
    refuse(Refusal::kNotFound, "The requisition has no line " + std::to_string(line_num) + ".");
  }
}

}  // namespace

RecordsetPtr RefReqCostDistribs::GetCostDistribs(const SessionPtr& session, int32_t req_id,
                                                 int32_t line_num, Variant&) {
  return answer("GetCostDistribs", RecordsetPtr(), [&] {
    const Session& s = session_of(session);
    static constexpr Column kColumns[] = {{"CostCenterID", Kind::kInt},
                                          {"Code", Kind::kText, 20},
                                          {"Description", Kind::kText, 100},
                                          {"Percentage", Kind::kDouble}};
    return db().read([&](soci::session& sql) {
      require_line(sql, load_req(sql, req_id, s), line_num);
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT d.cost_center_id, c.code, c.name, d.percentage FROM "
                          "req_cost_distribs d JOIN cost_centers c ON c.cost_center_id = "
                          "d.cost_center_id WHERE d.req_id = :r AND d.line_num = :l ORDER BY "
                          "c.code",
           soci::use(req_id), soci::use(line_num));
      return to_recordset(rows, kColumns);
    });
  });
}

bool RefReqCostDistribs::SaveCostDistribs(const SessionPtr& session, int32_t req_id,
                                          int32_t line_num,
                                          const std::vector<business::CostDistrib>& distribs,
                                          Variant&) {
  return answer("SaveCostDistribs", false, [&] {
    const Session& s = session_of(session);
    double sum = 0;
    std::set<int32_t> seen;
    for (const business::CostDistrib& d : distribs) {
      if (!(d.percentage > 0 && d.percentage <= 100)) {
        refuse(Refusal::kInvalidArgument, "A share must be more than 0 and at most 100 percent.");
      }
      if (!seen.insert(d.cost_center_id).second) {
        refuse(Refusal::kInvalidArgument, "A cost centre may be named only once.");
      }
      sum += d.percentage;
    }
    // Shares carry four decimals; their sum is compared at that precision.
    if (!distribs.empty() && std::llround(sum * 10000) != 1000000) {
      refuse(Refusal::kInvalidArgument, "The shares must add up to 100 percent.");
    }
    return db().write([&](soci::session& sql) {
      const ReqRow req = load_req(sql, req_id, s);
      require_line(sql, req, line_num);
      require_editable(req, "split a line's cost");
      require_not_locked_by_other(sql, db(), "req_locks", req_id, s);
      sql << "DELETE FROM req_cost_distribs WHERE req_id = :r AND line_num = :l",
          soci::use(req_id), soci::use(line_num);
      for (const business::CostDistrib& d : distribs) {
        int ok = 0;
        sql << "SELECT COUNT(*) FROM cost_centers WHERE cost_center_id = :c AND borg_id = :b",
            soci::use(d.cost_center_id), soci::use(req.borg_id), soci::into(ok);
        if (ok == 0) {
          refuse(Refusal::kNotFound, "Cost centre " + std::to_string(d.cost_center_id) +
                                         " is not one of the organisation's.");
        }
        const double pct = d.percentage;
        sql << "INSERT INTO req_cost_distribs (req_id, line_num, cost_center_id, percentage) "
               "VALUES (:r, :l, :c, :p)",
            soci::use(req_id), soci::use(line_num), soci::use(d.cost_center_id), soci::use(pct);
      }
      return true;
    });
  });
}

}  // namespace kxui::reference
