// RefWorkflow: changes to the approval route and the approvers' actions.
#include "reference/workflow.h"

#include "reference/errors.h"
#include "reference/req_store.h"
#include "reference/route.h"
#include "reference/rows.h"

namespace kxui::reference {

namespace {

struct Step {
  int32_t stage = 0, approver = 0, status = 0;
};

Step load_step(soci::session& sql, int32_t req_id, int32_t seq_num) {
  Step s;
  sql << "SELECT stage, approver_id, status_id FROM approval_steps WHERE req_id = :r AND "
         "seq_num = :q",
      soci::use(req_id), soci::use(seq_num), soci::into(s.stage), soci::into(s.approver),
      soci::into(s.status);
  if (!sql.got_data()) {
    refuse(Refusal::kNotFound, "Requisition " + std::to_string(req_id) + " has no approval step " +
                                   std::to_string(seq_num) + ".");
  }
  return s;
}

// The route of a requisition may change until it is approved, rejected or cancelled.
void require_route_open(const ReqRow& req) {
  if (req.status != req_status::kSubmitted && !req_status::editable(req.status)) {
    refuse(Refusal::kWrongStatus, "Requisition " + std::to_string(req.req_id) + " is " +
                                      req_status::name(req.status) +
                                      " and its approval route cannot change.");
  }
}

void require_member(soci::session& sql, int32_t user_id, int32_t borg_id) {
  int count = 0;
  sql << "SELECT COUNT(*) FROM users WHERE sys_user_id = :u AND borg_id = :b AND active = 1",
      soci::use(user_id), soci::use(borg_id), soci::into(count);
  if (count == 0) {
    refuse(Refusal::kNotFound, "User " + std::to_string(user_id) +
                                   " is not an active member of organisation " +
                                   std::to_string(borg_id) + ".");
  }
}

// Approvers and reviewers come from the requisition's own organisation: only its members
// may open it, so anyone else would be handed a step they could never act on.
void require_colleague(soci::session& sql, const ReqRow& req, int32_t user_id, int32_t borg_id) {
  if (borg_id != req.borg_id) {
    refuse(Refusal::kNotAllowed, "Requisition " + std::to_string(req.req_id) +
                                     " takes approvers and reviewers from its own organisation "
                                     "only.");
  }
  require_member(sql, user_id, borg_id);
}

// After steps were inserted before the current stage, the earliest stage with open steps
// is the one with its approvers; later pending steps wait again.
void restart_current_stage(soci::session& sql, Database& db, int32_t req_id) {
  const int stage = current_stage(sql, req_id);
  if (stage == 0) return;
  sql << "UPDATE approval_steps SET status_id = :w, received_date = NULL WHERE req_id = :r AND "
         "status_id = :p AND stage > :s",
      soci::use(step_status::kWaiting), soci::use(req_id), soci::use(step_status::kPending),
      soci::use(stage);
  start_route(sql, db, req_id);
}

}  // namespace

bool may_act_for(soci::session& sql, Database& db, int32_t user_id, int32_t approver_id) {
  if (user_id == approver_id) return true;
  const std::string now = date_text(db.now());
  int count = 0;
  sql << "SELECT COUNT(*) FROM delegations d JOIN borgs b ON b.borg_id = d.borg_id WHERE "
         "d.sys_user_id = :a AND d.delegatee_id = :u AND d.enabled = 1 AND "
         "b.delegation_enabled = 1 AND d.start_date <= :n AND d.end_date >= :n2",
      soci::use(approver_id), soci::use(user_id), soci::use(now), soci::use(now),
      soci::into(count);
  return count > 0;
}

bool RefWorkflow::add_approvers(const char* member, const SessionPtr& session, int32_t req_id,
                                int32_t seq_num, int32_t approver_id, int32_t approver_borg_id,
                                Place place) {
  return answer(member, false, [&] {
    const Session& s = session_of(session);
    db().write([&](soci::session& sql) {
      const ReqRow req = load_req(sql, req_id, s);
      require_route_open(req);
      require_colleague(sql, req, approver_id, approver_borg_id);
      int last = 0;
      sql << "SELECT COALESCE(MAX(stage), 0) FROM approval_steps WHERE req_id = :r",
          soci::use(req_id), soci::into(last);
      const int current = current_stage(sql, req_id);
      std::vector<int32_t> approvers{approver_id};
      if (place != Place::kAfterStep && place != Place::kBeforeStep) {
        std::string currency;
        sql << "SELECT currency_code FROM borgs WHERE borg_id = :b", soci::use(req.borg_id),
            soci::into(currency);
        approvers = approval_chain(sql, approver_id, req_totals(sql, db(), req_id, currency).total);
      }
      switch (place) {
        case Place::kAfterStep:
        case Place::kBeforeStep: {
          const Step step = load_step(sql, req_id, seq_num);
          if (place == Place::kBeforeStep && step.status != step_status::kWaiting &&
              step.status != step_status::kPending) {
            refuse(Refusal::kAlreadyActed, "Approval step " + std::to_string(seq_num) +
                                               " was already acted on; nobody can be added "
                                               "before it.");
          }
          const int at = place == Place::kAfterStep ? step.stage + 1 : step.stage;
          insert_steps(sql, req_id, approvers, at, step_type::kAdHoc, true);
          break;
        }
        case Place::kChainAfter:
          insert_steps(sql, req_id, approvers, last + 1, step_type::kChain, false);
          break;
        case Place::kChainBefore:
          insert_steps(sql, req_id, approvers, current ? current : last + 1, step_type::kChain,
                       true);
          break;
        case Place::kChainParallel:
          insert_steps(sql, req_id, approvers, current ? current : last + 1,
                       step_type::kParallel, false);
          break;
      }
      log_req(sql, db(), req_id, s.SysUserID(), "Approver added", user_name(sql, approver_id));
      if (req.status == req_status::kSubmitted) restart_current_stage(sql, db(), req_id);
    });
    return true;
  });
}

bool RefWorkflow::AddAfter(const SessionPtr& session, int32_t req_id, int32_t seq_num,
                           int32_t approver_id, int32_t approver_borg_id, Variant&) {
  return add_approvers("AddAfter", session, req_id, seq_num, approver_id, approver_borg_id,
                       Place::kAfterStep);
}
bool RefWorkflow::AddBefore(const SessionPtr& session, int32_t req_id, int32_t seq_num,
                            int32_t approver_id, int32_t approver_borg_id, Variant&) {
  return add_approvers("AddBefore", session, req_id, seq_num, approver_id, approver_borg_id,
                       Place::kBeforeStep);
}
bool RefWorkflow::AddAfterApprovalChain(const SessionPtr& session, int32_t req_id,
                                        int32_t approver_id, int32_t approver_borg_id, Variant&) {
  return add_approvers("AddAfterApprovalChain", session, req_id, 0, approver_id,
                       approver_borg_id, Place::kChainAfter);
}
bool RefWorkflow::AddBeforeApprovalChain(const SessionPtr& session, int32_t req_id,
                                         int32_t approver_id, int32_t approver_borg_id, Variant&) {
  return add_approvers("AddBeforeApprovalChain", session, req_id, 0, approver_id,
                       approver_borg_id, Place::kChainBefore);
}
bool RefWorkflow::AddParallelApprovalChain(const SessionPtr& session, int32_t req_id,
                                           int32_t approver_id, int32_t approver_borg_id,
                                           Variant&) {
  return add_approvers("AddParallelApprovalChain", session, req_id, 0, approver_id,
                       approver_borg_id, Place::kChainParallel);
}

bool RefWorkflow::AddReviewer(const SessionPtr& session, int32_t req_id, int32_t reviewer_id,
                              int32_t reviewer_borg_id, Variant&) {
  return answer("AddReviewer", false, [&] {
    const Session& s = session_of(session);
    db().write([&](soci::session& sql) {
      const ReqRow req = load_req(sql, req_id, s);
      require_route_open(req);
      require_colleague(sql, req, reviewer_id, reviewer_borg_id);
      int already = 0;
      sql << "SELECT COUNT(*) FROM reviewers WHERE req_id = :r AND reviewer_id = :v",
          soci::use(req_id), soci::use(reviewer_id), soci::into(already);
      if (already) {
        refuse(Refusal::kInvalidArgument, user_name(sql, reviewer_id) +
                                              " already reviews requisition " +
                                              std::to_string(req_id) + ".");
      }
      const std::string now = date_text(db().now());
      const int by = s.SysUserID();
      sql << "INSERT INTO reviewers (req_id, reviewer_id, reviewer_borg_id, added_by, added_date) "
             "VALUES (:r, :v, :b, :a, :d)",
          soci::use(req_id), soci::use(reviewer_id), soci::use(reviewer_borg_id), soci::use(by),
          soci::use(now);
      log_req(sql, db(), req_id, by, "Reviewer added", user_name(sql, reviewer_id));
    });
    return true;
  });
}

bool RefWorkflow::AddComments(const SessionPtr& session, int32_t req_id,
                              const std::string& comments, Variant&) {
  return answer("AddComments", false, [&] {
    const Session& s = session_of(session);
    if (comments.empty()) refuse(Refusal::kInvalidArgument, "There is no comment to add.");
    require_length(comments, 2000, "A comment");
    db().write([&](soci::session& sql) {
      load_req(sql, req_id, s);
      const int user = s.SysUserID();
      const std::string now = date_text(db().now());
      // A reviewer's comment is also the review.
      sql << "UPDATE reviewers SET comments = :c, reviewed_date = :d WHERE req_id = :r AND "
             "reviewer_id = :u",
          soci::use(comments), soci::use(now), soci::use(req_id), soci::use(user);
      log_req(sql, db(), req_id, user, "Comment", comments);
    });
    return true;
  });
}

bool RefWorkflow::act(const char* member, const SessionPtr& session, int32_t req_id,
                      int32_t seq_num, const std::string& comments, bool approve) {
  return answer(member, false, [&] {
    const Session& s = session_of(session);
    require_length(comments, 2000, "A comment");
    db().write([&](soci::session& sql) {
      const ReqRow req = load_req(sql, req_id, s);
      const std::string verb = approve ? "approved" : "rejected";
      if (req.status != req_status::kSubmitted) {
        refuse(Refusal::kWrongStatus, "Requisition " + std::to_string(req_id) + " is " +
                                          req_status::name(req.status) + " and cannot be " +
                                          verb + (req.status == req_status::kApproved ? " again." : "."));
      }
      const Step step = load_step(sql, req_id, seq_num);
      if (step.status == step_status::kWaiting) {
        refuse(Refusal::kWrongStatus, "Approval step " + std::to_string(seq_num) +
                                          " is not yet due for approval.");
      }
      if (step.status != step_status::kPending) {
        refuse(Refusal::kAlreadyActed,
               "Approval step " + std::to_string(seq_num) + " was already acted on.");
      }
      const int user = s.SysUserID();
      if (!may_act_for(sql, db(), user, step.approver)) {
        refuse(Refusal::kNotAllowed, user_name(sql, user) + " may not act on approval step " +
                                         std::to_string(seq_num) + " of requisition " +
                                         std::to_string(req_id) + ".");
      }
      const std::string now = date_text(db().now());
      const int status = approve ? step_status::kApproved : step_status::kRejected;
      sql << "UPDATE approval_steps SET status_id = :s, acted_date = :d, acted_by = :u, "
             "comments = :c WHERE req_id = :r AND seq_num = :q",
          soci::use(status), soci::use(now), soci::use(user), soci::use(comments),
          soci::use(req_id), soci::use(seq_num);
      std::string note = "Step " + std::to_string(seq_num);
      if (user != step.approver) note += " for " + user_name(sql, step.approver);
      if (!comments.empty()) note += ": " + comments;
      log_req(sql, db(), req_id, user, approve ? "Approved step" : "Rejected", note);
      if (!approve) {
        cancel_route(sql, db(), req_id);
        sql << "UPDATE requisitions SET status_id = :s WHERE req_id = :r",
            soci::use(req_status::kRejected), soci::use(req_id);
        return;
      }
      int open_in_stage = 0;
      sql << "SELECT COUNT(*) FROM approval_steps WHERE req_id = :r AND stage = :s AND "
             "status_id = :p",
          soci::use(req_id), soci::use(step.stage), soci::use(step_status::kPending),
          soci::into(open_in_stage);
      if (open_in_stage == 0) start_route(sql, db(), req_id);
    });
    return true;
  });
}

bool RefWorkflow::Approve(const SessionPtr& session, int32_t req_id, int32_t seq_num,
                          const std::string& comments, Variant&) {
  return act("Approve", session, req_id, seq_num, comments, true);
}

bool RefWorkflow::Reject(const SessionPtr& session, int32_t req_id, int32_t seq_num,
                         const std::string& comments, Variant&) {
  return act("Reject", session, req_id, seq_num, comments, false);
}

bool RefWorkflow::Cancel(const SessionPtr& session, int32_t req_id, Variant&) {
  return answer("Cancel", false, [&] {
    const Session& s = session_of(session);
    db().write([&](soci::session& sql) {
      const ReqRow req = load_req(sql, req_id, s);
      require_requisitioner(req, s, "withdraw");
      if (req.status != req_status::kSubmitted) {
        refuse(Refusal::kWrongStatus, "Requisition " + std::to_string(req_id) + " is " +
                                          req_status::name(req.status) +
                                          " and is not waiting for approval.");
      }
      cancel_route(sql, db(), req_id);
      sql << "UPDATE requisitions SET status_id = :s WHERE req_id = :r",
          soci::use(req_status::kWithdrawn), soci::use(req_id);
      log_req(sql, db(), req_id, s.SysUserID(), "Withdrawn", "");
    });
    return true;
  });
}

bool RefWorkflow::BuildApprovalProcess(const SessionPtr& session, int32_t req_id, bool preview,
                                       int16_t& approvals_count, Variant&) {
  return answer("BuildApprovalProcess", false, [&] {
    const Session& s = session_of(session);
    const int32_t count = db().write([&](soci::session& sql) {
      const ReqRow req = load_req(sql, req_id, s);
      if (!preview) require_editable(req, "given a new approval route");
      return build_route(sql, db(), req_id, preview);
    });
    approvals_count = static_cast<int16_t>(count);
    return true;
  });
}

int32_t RefWorkflow::GetApprovalCount(const SessionPtr& session, int32_t req_id, Variant&) {
  return answer("GetApprovalCount", 0, [&] {
    const Session& s = session_of(session);
    return db().read([&](soci::session& sql) {
      load_req(sql, req_id, s);
      int count = 0;
      sql << "SELECT COUNT(*) FROM approval_steps WHERE req_id = :r AND status_id <> :c",
          soci::use(req_id), soci::use(step_status::kCancelled), soci::into(count);
      return count;
    });
  });
}

RecordsetPtr RefWorkflow::GetApproverSearchResults(const SessionPtr& session, int32_t req_id,
                                                   const std::string& search_name,
                                                   const std::string& search_login, Variant&) {
  return answer("GetApproverSearchResults", RecordsetPtr(), [&] {
    const Session& s = session_of(session);
    static constexpr Column kColumns[] = {{"SysUserID", Kind::kInt},
                                          {"BorgID", Kind::kInt},
                                          {"FullName", Kind::kText, 100},
                                          {"LoginID", Kind::kText, 50},
                                          {"BorgName", Kind::kText, 100}};
    const std::string name = "%" + search_name + "%", login = "%" + search_login + "%";
    return db().read([&](soci::session& sql) {
      const ReqRow req = load_req(sql, req_id, s);
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT u.sys_user_id, u.borg_id, u.full_name, u.login_id, b.name "
                          "FROM users u JOIN borgs b ON b.borg_id = u.borg_id WHERE "
                          "u.borg_id = :b AND u.active = 1 AND u.sys_user_id <> :r AND "
                          "LOWER(u.full_name) LIKE LOWER(:n) AND LOWER(u.login_id) LIKE LOWER(:l) "
                          "ORDER BY u.full_name",
           soci::use(req.borg_id), soci::use(req.requisitioner_id), soci::use(name),
           soci::use(login));
      return to_recordset(rows, kColumns);
    });
  });
}

}  // namespace kxui::reference
