#include "reference/cost_distribs.h"

#include <cmath>
#include <vector>

#include "reference/errors.h"
#include "reference/purchase_order.h"
#include "reference/req_store.h"
#include "reference/rows.h"

namespace kxui::reference {

namespace {

std::vector<std::string> split(const std::string& text, const std::string& delimiter) {
  if (delimiter.empty()) refuse(Refusal::kInvalidArgument, "The list delimiter is empty.");
  std::vector<std::string> out;
  if (text.empty()) return out;
  size_t start = 0;
  for (size_t at = text.find(delimiter); at != std::string::npos;
       start = at + delimiter.size(), at = text.find(delimiter, start)) {
    out.push_back(text.substr(start, at - start));
  }
  out.push_back(text.substr(start));
  return out;
}

double number_of(std::string item, const char* what) {
  item.erase(0, item.find_first_not_of(" \t"));
  item.erase(item.find_last_not_of(" \t") + 1);
  size_t used = 0;
  double v = 0;
  try {
    v = std::stod(item, &used);
  } catch (const std::exception&) {
    used = 0;
  }
  if (item.empty() || used != item.size() || !std::isfinite(v)) {
    refuse(Refusal::kInvalidArgument, "\"" + item + "\" is not " + what + ".");
  }
  return v;
}

}  // namespace

RecordsetPtr RefPOCostDistribs::GetListCostCenter(const SessionPtr& session, int32_t po_id,
                                                  Variant&) {
  return answer("GetListCostCenter", RecordsetPtr(), [&] {
    const Session& s = session_of(session);
    static constexpr Column kColumns[] = {{"CostCenterID", Kind::kInt},
                                          {"CostCenterCode", Kind::kText, 20},
                                          {"CostCenterName", Kind::kText, 100}};
    return db().read([&](soci::session& sql) {
      const PORow po = load_order(sql, po_id, s);
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT c.cost_center_id, c.code, c.name FROM cost_centers c "
                          "JOIN requisitions r ON r.borg_id = c.borg_id WHERE r.req_id = :r "
                          "ORDER BY c.code",
           soci::use(po.req_id));
      return to_recordset(rows, kColumns);
    });
  });
}

RecordsetPtr RefPOCostDistribs::GetListCostDistribs(const SessionPtr& session, int32_t po_id,
                                                    int32_t line_number, Variant&) {
  return answer("GetListCostDistribs", RecordsetPtr(), [&] {
    const Session& s = session_of(session);
    static constexpr Column kColumns[] = {{"LineNum", Kind::kInt},
                                          {"CostCenterID", Kind::kInt},
                                          {"CostCenterName", Kind::kText, 100},
                                          {"Percent", Kind::kDouble}};
    return db().read([&](soci::session& sql) {
      load_order(sql, po_id, s);
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT d.line_num, d.cost_center_id, c.name, d.percent FROM "
                          "po_cost_distribs d JOIN cost_centers c ON c.cost_center_id = "
                          "d.cost_center_id WHERE d.po_id = :p AND d.line_num = :l ORDER BY c.code",
           soci::use(po_id), soci::use(line_number));
      return to_recordset(rows, kColumns);
    });
  });
}

bool RefPOCostDistribs::SaveCostDistribs(const SessionPtr& session, int32_t po_id,
                                         int32_t line_number, const std::string& cost_center_ids,
                                         const std::string& percents,
                                         const std::string& delimiter, Variant&) {
  return answer("SaveCostDistribs", false, [&] {
    const Session& s = session_of(session);
    const std::vector<std::string> ids = split(cost_center_ids, delimiter),
                                   shares = split(percents, delimiter);
    if (ids.size() != shares.size() || ids.empty()) {
      refuse(Refusal::kInvalidArgument, "Each cost centre needs one percentage.");
    }
    std::vector<std::pair<int, double>> split_rows;
    double sum = 0;
    for (size_t i = 0; i < ids.size(); ++i) {
      const double id = number_of(ids[i], "a cost centre");
      const double share = number_of(shares[i], "a percentage");
      if (share <= 0 || share > 100) {
        refuse(Refusal::kInvalidArgument, "A percentage must be above 0 and at most 100.");
      }
      split_rows.emplace_back(static_cast<int>(id), share);
      sum += share;
    }
    if (std::fabs(sum - 100.0) > 1e-6) {
      refuse(Refusal::kInvalidArgument, "The percentages add up to " + std::to_string(sum) +
                                            ", not 100.");
    }
    db().write([&](soci::session& sql) {
      const PORow po = load_order(sql, po_id, s);
      require_changeable(sql, db(), po, s, "changing its cost split");
      int line = 0;
      sql << "SELECT COUNT(*) FROM po_lines WHERE po_id = :p AND line_num = :l", soci::use(po_id),
          soci::use(line_number), soci::into(line);
      if (!line) refuse(Refusal::kNotFound, "Order " + std::to_string(po_id) + " has no line " +
                                                std::to_string(line_number) + ".");
      sql << "DELETE FROM po_cost_distribs WHERE po_id = :p AND line_num = :l", soci::use(po_id),
          soci::use(line_number);
      for (const auto& [center, share] : split_rows) {
        int ok = 0;
        sql << "SELECT COUNT(*) FROM cost_centers c JOIN requisitions r ON r.borg_id = "
               "c.borg_id WHERE r.req_id = :r AND c.cost_center_id = :c",
            soci::use(po.req_id), soci::use(center), soci::into(ok);
        if (!ok) refuse(Refusal::kNotFound, "Cost centre " + std::to_string(center) +
                                                " is not one of the order's organisation.");
        sql << "INSERT INTO po_cost_distribs (po_id, line_num, cost_center_id, percent) "
               "VALUES (:p, :l, :c, :s)",
            soci::use(po_id), soci::use(line_number), soci::use(center), soci::use(share);
      }
      log_po(sql, db(), po_id, s.SysUserID(), "Change",
             "Line " + std::to_string(line_number) + " cost split changed", "");
    });
    return true;
  });
}

}  // namespace kxui::reference
