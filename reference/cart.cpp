// The requisition's cart members and the favourites list.
#include "reference/cart.h"

#include "reference/errors.h"
#include "reference/req_store.h"
#include "reference/requisition.h"
#include "reference/rows.h"

namespace kxui::reference {

namespace {

constexpr const char* kReqLocks = "req_locks";

constexpr Column kLineColumns[] = {
    {"LineNum", Kind::kInt},           {"PartID", Kind::kInt},
    {"SupplierID", Kind::kInt},        {"SupplierName", Kind::kText, 100},
    {"SupplierPartNum", Kind::kText, 50}, {"Description", Kind::kText, 255},
    {"OrderQty", Kind::kDouble},       {"UOMID", Kind::kText, 10},
    {"UnitPrice", Kind::kMoney},       {"CurrencyCode", Kind::kText, 3},
    {"IsSpecialRequest", Kind::kBool}, {"SmartFormID", Kind::kInt}};

const char* const kLineSelect =
    "SELECT line_num, part_id, supplier_id, supplier_name, supplier_part_num, part_desc, qty, "
    "uom_id, unit_price, currency_code, is_special, smart_form_id FROM req_lines "
    "WHERE req_id = :r";

// Loads the requisition for a line change: editable, not locked by another session.
ReqRow for_change(soci::session& sql, Database& db, int32_t req_id, const Session& s,
                  int32_t line_num, const std::string& action) {
  ReqRow req = load_req(sql, req_id, s);
  require_editable(req, action);
  require_not_locked_by_other(sql, db, kReqLocks, req_id, s);
  int found = 0;
  sql << "SELECT COUNT(*) FROM req_lines WHERE req_id = :r AND line_num = :l", soci::use(req_id),
      soci::use(line_num), soci::into(found);
  if (found == 0) {
    refuse(Refusal::kNotFound, "The requisition has no line " + std::to_string(line_num) + ".");
  }
  return req;
}

}  // namespace

RecordsetPtr RefRequisition::GetItems(const SessionPtr& session, int32_t req_id, Variant&) {
  return answer("GetItems", RecordsetPtr(), [&] {
    const Session& s = session_of(session);
    return db().read([&](soci::session& sql) {
      load_req(sql, req_id, s);
      soci::rowset<soci::row> rows =
          (sql.prepare << kLineSelect << " ORDER BY line_num", soci::use(req_id));
      return to_recordset(rows, kLineColumns);
    });
  });
}

RecordsetPtr RefRequisition::GetItem(const SessionPtr& session, int32_t req_id, int32_t line_num,
                                     Variant&) {
  return answer("GetItem", RecordsetPtr(), [&] {
    const Session& s = session_of(session);
    RecordsetPtr rs = db().read([&](soci::session& sql) {
      load_req(sql, req_id, s);
      soci::rowset<soci::row> rows =
          (sql.prepare << kLineSelect << " AND line_num = :l", soci::use(req_id),
           soci::use(line_num));
      return to_recordset(rows, kLineColumns);
    });
    if (rs->RecordCount() == 0) {
      refuse(Refusal::kNotFound, "The requisition has no line " + std::to_string(line_num) + ".");
    }
    return rs;
  });
}

bool RefRequisition::UpdateItemQty(const SessionPtr& session, int32_t req_id, int32_t line_num,
                                   double qty, Variant&) {
  return answer("UpdateItemQty", false, [&] {
    const Session& s = session_of(session);
    if (!(qty > 0)) refuse(Refusal::kInvalidArgument, "The quantity must be more than 0.");
    return db().write([&](soci::session& sql) {
      for_change(sql, db(), req_id, s, line_num, "change a line's quantity");
      sql << "UPDATE req_lines SET qty = :q WHERE req_id = :r AND line_num = :l", soci::use(qty),
          soci::use(req_id), soci::use(line_num);
      log_req(sql, db(), req_id, s.SysUserID(), "Quantity changed",
              "Line " + std::to_string(line_num));
      return true;
    });
  });
}

bool RefRequisition::DeleteItem(const SessionPtr& session, int32_t req_id, int32_t line_num,
                                Variant&) {
  return answer("DeleteItem", false, [&] {
    const Session& s = session_of(session);
    return db().write([&](soci::session& sql) {
      for_change(sql, db(), req_id, s, line_num, "remove a line");
      sql << "DELETE FROM req_lines WHERE req_id = :r AND line_num = :l", soci::use(req_id),
          soci::use(line_num);
      log_req(sql, db(), req_id, s.SysUserID(), "Line removed", "Line " + std::to_string(line_num));
      return true;
    });
  });
}

bool RefRequisition::ReleaseSessionLocks(const SessionPtr& session, Variant&) {
  return answer("ReleaseSessionLocks", false, [&] {
    const Session& s = session_of(session);
    db().write([&](soci::session& sql) { release_locks(sql, kReqLocks, s); });
    return true;
  });
}

RecordsetPtr RefFavoriteItems::GetFavoriteList(const SessionPtr& session, Variant&) {
  return answer("GetFavoriteList", RecordsetPtr(), [&] {
    const int32_t user = session_of(session).SysUserID();
    static constexpr Column kColumns[] = {
        {"PartBaseID", Kind::kInt},        {"SupplierName", Kind::kText, 100},
        {"SupplierPartNum", Kind::kText, 50}, {"Description", Kind::kText, 255},
        {"UOMID", Kind::kText, 10},        {"UnitPrice", Kind::kMoney},
        {"CurrencyCode", Kind::kText, 3}};
    return db().read([&](soci::session& sql) {
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT p.part_id, s.name, p.supplier_part_num, p.description, "
                          "p.uom_id, p.unit_price, p.currency_code FROM favorites f JOIN parts "
                          "p ON p.part_id = f.part_id JOIN suppliers s ON s.supplier_id = "
                          "p.supplier_id WHERE f.sys_user_id = :u ORDER BY p.description",
           soci::use(user));
      return to_recordset(rows, kColumns);
    });
  });
}

}  // namespace kxui::reference
