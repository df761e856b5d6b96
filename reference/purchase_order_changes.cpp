// RefPurchaseOrder's changes and checks: copy, deletes, status, locks; the order log and
// the supplier-status map.
#include <algorithm>
#include <cctype>

#include "reference/errors.h"
#include "reference/purchase_order.h"
#include "reference/req_store.h"
#include "reference/rows.h"
#include "reference/services.h"

namespace kxui::reference {

namespace {

constexpr const char* kPOLocks = "po_locks";

constexpr Column kStatusColumns[] = {{"POID", Kind::kInt},          {"POStatusID", Kind::kInt},
                                     {"StatusName", Kind::kText, 50}, {"StatusDate", Kind::kDate},
                                     {"CanEdit", Kind::kBool},      {"LockedByOther", Kind::kBool}};

}  // namespace

PORow load_order(soci::session& sql, int32_t po_id, const Session& caller) {
  PORow po;
  sql << "SELECT o.po_id, o.req_id, o.status_id, r.borg_id FROM purchase_orders o "
         "JOIN requisitions r ON r.req_id = o.req_id WHERE o.po_id = :p",
      soci::use(po_id), soci::into(po.po_id), soci::into(po.req_id), soci::into(po.status),
      soci::into(po.borg_id);
  if (!sql.got_data()) refuse(Refusal::kNotFound, "Order " + std::to_string(po_id) + " does not exist.");
  if (po.borg_id != caller.BorgID()) {
    refuse(Refusal::kNotAllowed, "Order " + std::to_string(po_id) + " belongs to another organisation.");
  }
  return po;
}

void require_changeable(soci::session& sql, Database& db, const PORow& po, const Session& s,
                        const std::string& action) {
  if (po.status != po_status::kOpen) {
    refuse(Refusal::kWrongStatus, "Order " + std::to_string(po.po_id) + " is no longer open; " +
                                      action + " is not allowed.");
  }
  require_not_locked_by_other(sql, db, kPOLocks, po.po_id, s);
}

bool locked_by_other(soci::session& sql, Database& db, int32_t po_id, const Session& s) {
  try {
    require_not_locked_by_other(sql, db, kPOLocks, po_id, s);
    return false;
  } catch (const Failure& f) {
    if (f.number() != error_number(Refusal::kLocked)) throw;
    return true;
  }
}

bool RefPurchaseOrder::CopyToRequisition(const SessionPtr& session, int32_t po_id,
                                         const std::string& req_name, int32_t& new_req_id,
                                         int32_t& total_items, int32_t& items_copied, Variant&) {
  return answer("CopyToRequisition", false, [&] {
    const Session& s = session_of(session);
    if (req_name.find_first_not_of(" \t") == std::string::npos) {
      refuse(Refusal::kInvalidArgument, "The new requisition needs a name.");
    }
    require_length(req_name, 100, "The requisition name");
    int32_t id = 0, total = 0, copied = 0;
    db().write([&](soci::session& sql) {
      const PORow po = load_order(sql, po_id, s);
      const int user = s.SysUserID();
      int borg = 0;
      std::string currency;
      sql << "SELECT borg_id, currency_code FROM users WHERE sys_user_id = :u", soci::use(user),
          soci::into(borg), soci::into(currency);
      if (!sql.got_data()) refuse(Refusal::kNotFound, "User " + std::to_string(user) + " does not exist.");
      const std::string now = date_text(db().now());
      sql << "INSERT INTO requisitions (req_name, status_id, requisitioner_id, borg_id, "
             "currency_code, create_date) VALUES (:n, :s, :u, :b, :c, :d) RETURNING req_id",
          soci::use(req_name), soci::use(req_status::kOpen), soci::use(user), soci::use(borg),
          soci::use(currency), soci::use(now), soci::into(id);
      sql << "SELECT COUNT(*) FROM po_lines WHERE po_id = :p", soci::use(po_id), soci::into(total);
      // A line whose requisition line is gone has nothing to copy its details from.
      sql << "INSERT INTO req_lines (req_id, line_num, part_id, supplier_id, supplier_name, "
             "supplier_part_num, supplier_part_num_ext, qty, uom_id, mfr_id, mfr_name, "
             "commodity_id, commodity_alias, unit_price, currency_code, part_desc, is_special, "
             "smart_form_id, complete) "
             "SELECT :r, l.line_num, rl.part_id, rl.supplier_id, rl.supplier_name, "
             "rl.supplier_part_num, rl.supplier_part_num_ext, l.qty, rl.uom_id, rl.mfr_id, "
             "rl.mfr_name, rl.commodity_id, rl.commodity_alias, l.unit_price, l.currency_code, "
             "rl.part_desc, rl.is_special, rl.smart_form_id, rl.complete FROM po_lines l "
             "JOIN req_lines rl ON rl.req_id = :src AND rl.line_num = l.req_line_num "
             "WHERE l.po_id = :p",
          soci::use(id), soci::use(po.req_id), soci::use(po_id);
      sql << "SELECT COUNT(*) FROM req_lines WHERE req_id = :r", soci::use(id), soci::into(copied);
      log_req(sql, db(), id, user, "Created", "Copied from order PO-" + std::to_string(po_id));
    });
    new_req_id = id;
    total_items = total;
    items_copied = copied;
    return true;
  });
}

bool RefPurchaseOrder::DeletePO(const SessionPtr& session, int32_t po_id, Variant&) {
  return answer("DeletePO", false, [&] {
    const Session& s = session_of(session);
    db().write([&](soci::session& sql) {
      const PORow po = load_order(sql, po_id, s);
      require_requisitioner(load_req(sql, po.req_id, s), s, "deleting its order");
      require_changeable(sql, db(), po, s, "deleting it");
      sql << "DELETE FROM purchase_orders WHERE po_id = :p", soci::use(po_id);
    });
    return true;
  });
}

bool RefPurchaseOrder::DeleteLines(const SessionPtr& session,
                                   const std::shared_ptr<business::POItems>& items, int32_t,
                                   Variant&) {
  return answer("DeleteLines", false, [&] {
    const Session& s = session_of(session);
    auto list = std::dynamic_pointer_cast<RefPOItems>(items);
    if (!list || list->items.empty()) refuse(Refusal::kNoItems, "No order lines were named.");
    db().write([&](soci::session& sql) {
      for (const auto& entry : list->items) {
        auto item = std::dynamic_pointer_cast<RefPOItem>(entry);
        if (!item) refuse(Refusal::kInvalidArgument, "An order line is not one of this tier's.");
        const PORow po = load_order(sql, item->po_id, s);
        require_changeable(sql, db(), po, s, "deleting a line");
        int existed = 0;
        sql << "SELECT COUNT(*) FROM po_lines WHERE po_id = :p AND line_num = :l",
            soci::use(item->po_id), soci::use(item->line_num), soci::into(existed);
        if (existed == 0) {
          refuse(Refusal::kNotFound, "Order " + std::to_string(item->po_id) + " has no line " +
                                         std::to_string(item->line_num) + ".");
        }
        sql << "DELETE FROM po_lines WHERE po_id = :p AND line_num = :l", soci::use(item->po_id),
            soci::use(item->line_num);
        log_po(sql, db(), item->po_id, s.SysUserID(), "Change",
               "Line " + std::to_string(item->line_num) + " deleted", "");
      }
    });
    return true;
  });
}

RecordsetPtr RefPurchaseOrder::GetStatusRecord(const SessionPtr& session, int32_t po_id, Variant&) {
  return answer("GetStatusRecord", RecordsetPtr(), [&] {
    const Session& s = session_of(session);
    return db().read([&](soci::session& sql) {
      const PORow po = load_order(sql, po_id, s);
      const bool other = locked_by_other(sql, db(), po_id, s);
      const bool can_edit = po.status == po_status::kOpen && !other;
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT o.po_id, o.status_id, s.name, "
                          "COALESCE(o.status_date, o.create_date), 0, 0 FROM purchase_orders o "
                          "JOIN po_statuses s ON s.po_status_id = o.status_id WHERE o.po_id = :p",
           soci::use(po_id));
      RecordsetPtr rs = make_recordset(kStatusColumns);
      for (const soci::row& row : rows) {
        append_row(*rs, kStatusColumns, row, [&](Recordset& r) {
          r.set_value(4, Variant(can_edit));
          r.set_value(5, Variant(other));
        });
      }
      if (rs->RecordCount() > 0) rs->MoveFirst();
      return rs;
    });
  });
}

bool RefPurchaseOrder::IsValidLock(const SessionPtr& session, int32_t po_id, Variant&) {
  return answer("IsValidLock", false, [&] {
    const Session& s = session_of(session);
    return db().read([&](soci::session& sql) {
      load_order(sql, po_id, s);
      if (!holds_lock(sql, db(), kPOLocks, po_id, s)) {
        refuse(Refusal::kLockNotHeld, "This session no longer holds the lock on order " +
                                          std::to_string(po_id) + ".");
      }
      return true;
    });
  });
}

bool RefPurchaseOrder::Reset(const SessionPtr& session, Variant&) {
  return answer("Reset", false, [&] {
    const Session& s = session_of(session);
    db().write([&](soci::session& sql) { release_locks(sql, kPOLocks, s); });
    header_.reset();
    return true;
  });
}

bool RefPurchaseOrder::SetPOStatus(const SessionPtr& session, int32_t po_id, int32_t po_status_id,
                                   Variant&) {
  return answer("SetPOStatus", false, [&] {
    const Session& s = session_of(session);
    db().write([&](soci::session& sql) {
      load_order(sql, po_id, s);
      std::string name;
      sql << "SELECT name FROM po_statuses WHERE po_status_id = :s", soci::use(po_status_id),
          soci::into(name);
      if (!sql.got_data()) {
        refuse(Refusal::kInvalidArgument, std::to_string(po_status_id) + " is not an order status.");
      }
      const std::string now = date_text(db().now());
      sql << "UPDATE purchase_orders SET status_id = :s, status_date = :d WHERE po_id = :p",
          soci::use(po_status_id), soci::use(now), soci::use(po_id);
      log_po(sql, db(), po_id, s.SysUserID(), "Status", "Status set to " + name,
             std::to_string(po_status_id));
    });
    return true;
  });
}

void log_po(soci::session& sql, Database& db, int32_t po_id, int32_t user_id,
            const std::string& log_type, const std::string& description, const std::string& code) {
  if (log_type.empty()) refuse(Refusal::kInvalidArgument, "A log entry needs a type.");
  require_length(log_type, 50, "The log type");
  require_length(description, 2000, "The log text");
  require_length(code, 50, "The log code");
  const std::string now = date_text(db.now());
  sql << "INSERT INTO po_log (po_id, date_logged, sys_user_id, log_type, description, code) "
         "VALUES (:p, :d, :u, :t, :x, :c)",
      soci::use(po_id), soci::use(now), soci::use(user_id), soci::use(log_type),
      soci::use(description), soci::use(code);
}

bool RefPOLog::WriteLog(const SessionPtr& session, int32_t po_id, const std::string& log_type,
                        const std::string& description, const std::string& code, Variant&) {
  return answer("WriteLog", false, [&] {
    const Session& s = session_of(session);
    db().write([&](soci::session& sql) {
      load_order(sql, po_id, s);
      log_po(sql, db(), po_id, s.SysUserID(), log_type, description, code);
    });
    return true;
  });
}

bool RefPOStatus::MapSupplierStatus(const SessionPtr& session, const std::string& status_code,
                                    int32_t& po_status_id, Variant&) {
  return answer("MapSupplierStatus", false, [&] {
    session_of(session);
    std::string code = status_code;
    for (char& c : code) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    int id = 0;
    db().read([&](soci::session& sql) {
      sql << "SELECT po_status_id FROM supplier_status_codes WHERE status_code = :c",
          soci::use(code), soci::into(id);
      if (!sql.got_data()) {
        refuse(Refusal::kNotFound, "The supplier status \"" + status_code + "\" is not known.");
      }
    });
    po_status_id = id;
    return true;
  });
}

}  // namespace kxui::reference
