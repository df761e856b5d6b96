// RefRequisition: locks, submission, copies, cancelling, deleting and templates.
#include "reference/errors.h"
#include "reference/req_store.h"
#include "reference/requisition.h"
#include "reference/route.h"
#include "reference/rows.h"

namespace kxui::reference {

namespace {

constexpr const char* kReqLocks = "req_locks";
constexpr int32_t kCopyAll = 0, kCopyHeaderOnly = 1;
constexpr int32_t kPersonalTemplate = 1, kSharedTemplate = 2;

}  // namespace

void RefRequisition::LockRequisition(const SessionPtr& session, int32_t req_id, Variant&) {
  answer("LockRequisition", false, [&] {
    const Session& s = session_of(session);
    db().write([&](soci::session& sql) {
      load_req(sql, req_id, s);
      take_lock(sql, db(), kReqLocks, req_id, s);
    });
    return true;
  });
}

void RefRequisition::IsLockValid(const SessionPtr& session, int32_t req_id, Variant&) {
  answer("IsLockValid", false, [&] {
    const Session& s = session_of(session);
    db().read([&](soci::session& sql) {
      load_req(sql, req_id, s);
      if (!holds_lock(sql, db(), kReqLocks, req_id, s)) {
        refuse(Refusal::kLockNotHeld, "This session no longer holds the lock on requisition " +
                                          std::to_string(req_id) + ".");
      }
    });
    return true;
  });
}

bool RefRequisition::ReleaseLocks(const SessionPtr& session, Variant&) {
  return answer("ReleaseLocks", false, [&] {
    const Session& s = session_of(session);
    db().write([&](soci::session& sql) { release_locks(sql, kReqLocks, s); });
    return true;
  });
}

bool RefRequisition::SubmitRequisition(const SessionPtr& session, int32_t req_id,
                                       bool workflow_flag, int32_t& number_of_pos, Variant&) {
  return answer("SubmitRequisition", false, [&] {
    const Session& s = session_of(session);
    const int32_t orders = db().write([&](soci::session& sql) {
      const ReqRow req = load_req(sql, req_id, s);
      require_requisitioner(req, s, "submit");
      require_editable(req, "submitted");
      require_not_locked_by_other(sql, db(), kReqLocks, req_id, s);
      int lines = 0, incomplete = 0;
      sql << "SELECT COUNT(*), COALESCE(SUM(1 - complete), 0) FROM req_lines WHERE req_id = :r",
          soci::use(req_id), soci::into(lines), soci::into(incomplete);
      if (lines == 0) {
        refuse(Refusal::kNoItems, "Requisition " + std::to_string(req_id) + " has no items to submit.");
      }
      if (incomplete > 0) {
        refuse(Refusal::kInvalidArgument, "Requisition " + std::to_string(req_id) + " has " +
                                              std::to_string(incomplete) + " incomplete item(s).");
      }
      // Steps of an earlier round (before a rejection or withdrawal) are history, kept in
      // the log. True keeps the route the page built and edited; False builds it afresh.
      sql << "DELETE FROM approval_steps WHERE req_id = :r AND status_id NOT IN (:w, :p)",
          soci::use(req_id), soci::use(step_status::kWaiting), soci::use(step_status::kPending);
      int existing = 0;
      sql << "SELECT COUNT(*) FROM approval_steps WHERE req_id = :r", soci::use(req_id),
          soci::into(existing);
      if (!workflow_flag || existing == 0) build_route(sql, db(), req_id, false);
      const std::string now = date_text(db().now());
      sql << "UPDATE requisitions SET status_id = :s, submit_date = :d WHERE req_id = :r",
          soci::use(req_status::kSubmitted), soci::use(now), soci::use(req_id);
      log_req(sql, db(), req_id, s.SysUserID(), "Submitted", "");
      sql << "DELETE FROM req_locks WHERE req_id = :r", soci::use(req_id);
      return start_route(sql, db(), req_id);
    });
    number_of_pos = orders;
    return true;
  });
}

bool RefRequisition::CopyRequisition(const SessionPtr& session, int32_t req_id,
                                     const std::string& name, int32_t& new_req_id,
                                     int32_t& number_of_items, int32_t& number_of_items_copied,
                                     int32_t flag, Variant&) {
  return answer("CopyRequisition", false, [&] {
    const Session& s = session_of(session);
    if (flag != kCopyAll && flag != kCopyHeaderOnly) {
      refuse(Refusal::kInvalidArgument, "Copy mode " + std::to_string(flag) + " is not known.");
    }
    if (name.empty()) refuse(Refusal::kInvalidArgument, "A requisition needs a name.");
    require_length(name, 100, "A requisition name");
    int new_id = 0, items = 0, copied = 0;
    db().write([&](soci::session& sql) {
      load_req(sql, req_id, s);
      const int user = s.SysUserID();
      const std::string now = date_text(db().now());
      sql << "INSERT INTO requisitions (req_name, status_id, requisitioner_id, borg_id, "
             "justification, currency_code, create_date) SELECT :n, :s, :u, borg_id, "
             "justification, currency_code, :d FROM requisitions WHERE req_id = :r "
             "RETURNING req_id",
          soci::use(name), soci::use(req_status::kOpen), soci::use(user), soci::use(now),
          soci::use(req_id), soci::into(new_id);
      sql << "SELECT COUNT(*) FROM req_lines WHERE req_id = :r", soci::use(req_id),
          soci::into(items);
      if (flag == kCopyAll) {
        // Catalog lines whose part has left the catalog are not copied.
        sql << "INSERT INTO req_lines (req_id, line_num, part_id, supplier_id, supplier_name, "
               "supplier_part_num, supplier_part_num_ext, qty, uom_id, mfr_id, mfr_name, "
               "commodity_id, commodity_alias, unit_price, currency_code, part_desc, is_special, "
               "smart_form_id, complete) SELECT :n, line_num, part_id, supplier_id, "
               "supplier_name, supplier_part_num, supplier_part_num_ext, qty, uom_id, mfr_id, "
               "mfr_name, commodity_id, commodity_alias, unit_price, currency_code, part_desc, "
               "is_special, smart_form_id, complete FROM req_lines l WHERE l.req_id = :r AND "
               "(l.is_special = 1 OR EXISTS (SELECT 1 FROM parts p WHERE p.part_id = l.part_id))",
            soci::use(new_id), soci::use(req_id);
        sql << "SELECT COUNT(*) FROM req_lines WHERE req_id = :r", soci::use(new_id),
            soci::into(copied);
      }
      log_req(sql, db(), new_id, user, "Created", "Copy of requisition " + std::to_string(req_id));
    });
    new_req_id = new_id;
    number_of_items = items;
    number_of_items_copied = copied;
    return true;
  });
}

bool RefRequisition::CancelRequisition(const SessionPtr& session, int32_t req_id, Variant&) {
  return answer("CancelRequisition", false, [&] {
    const Session& s = session_of(session);
    db().write([&](soci::session& sql) {
      const ReqRow req = load_req(sql, req_id, s);
      require_requisitioner(req, s, "cancel");
      if (!req_status::editable(req.status) && req.status != req_status::kSubmitted) {
        refuse(Refusal::kWrongStatus, "Requisition " + std::to_string(req_id) + " is " +
                                          req_status::name(req.status) +
                                          " and cannot be cancelled.");
      }
      require_not_locked_by_other(sql, db(), kReqLocks, req_id, s);
      cancel_route(sql, db(), req_id);
      sql << "UPDATE requisitions SET status_id = :s WHERE req_id = :r",
          soci::use(req_status::kCancelled), soci::use(req_id);
      log_req(sql, db(), req_id, s.SysUserID(), "Cancelled", "");
    });
    return true;
  });
}

bool RefRequisition::DeleteRequisition(const SessionPtr& session, int32_t req_id, Variant&) {
  return answer("DeleteRequisition", false, [&] {
    const Session& s = session_of(session);
    db().write([&](soci::session& sql) {
      const ReqRow req = load_req(sql, req_id, s);
      require_requisitioner(req, s, "delete");
      if (!req_status::editable(req.status) && req.status != req_status::kCancelled) {
        refuse(Refusal::kWrongStatus, "Requisition " + std::to_string(req_id) + " is " +
                                          req_status::name(req.status) +
                                          " and cannot be deleted.");
      }
      require_not_locked_by_other(sql, db(), kReqLocks, req_id, s);
      sql << "DELETE FROM requisitions WHERE req_id = :r", soci::use(req_id);
    });
    return true;
  });
}

bool RefRequisition::MarkAsTemplate(const SessionPtr& session, int32_t req_id,
                                    int32_t template_type, Variant&) {
  return answer("MarkAsTemplate", false, [&] {
    const Session& s = session_of(session);
    if (template_type != kPersonalTemplate && template_type != kSharedTemplate) {
      refuse(Refusal::kInvalidArgument,
             "Template type " + std::to_string(template_type) + " is not known.");
    }
    db().write([&](soci::session& sql) {
      const ReqRow req = load_req(sql, req_id, s);
      require_requisitioner(req, s, "make a template of");
      require_editable(req, "made a template");
      sql << "UPDATE requisitions SET template_type = :t WHERE req_id = :r",
          soci::use(template_type), soci::use(req_id);
      log_req(sql, db(), req_id, s.SysUserID(), "Marked as template", "");
    });
    return true;
  });
}

}  // namespace kxui::reference
