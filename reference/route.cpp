#include "reference/route.h"

#include "reference/errors.h"
#include "reference/req_store.h"
#include "reference/rows.h"

namespace kxui::reference {

namespace step_type {
const char* name(int32_t type) {
  switch (type) {
    case kRule: return "Approval";
    case kAdHoc: return "Ad-hoc approval";
    case kChain: return "Approval chain";
    case kParallel: return "Parallel approval";
    default: return "Approval";
  }
}
}  // namespace step_type

std::vector<int32_t> approval_chain(soci::session& sql, int32_t approver_id, Currency total) {
  std::vector<int32_t> chain;
  int next = approver_id;
  // Bounded by the number of users: a manager cycle in the data cannot loop forever.
  for (int guard = 0; guard < 1000 && next != 0; ++guard) {
    int manager = 0;
    long long limit = 0;
    soci::indicator manager_ind = soci::i_ok;
    sql << "SELECT manager_id, approval_limit FROM users WHERE sys_user_id = :u AND active = 1",
        soci::use(next), soci::into(manager, manager_ind), soci::into(limit);
    if (!sql.got_data()) {
      refuse(Refusal::kNotFound, "User " + std::to_string(next) + " cannot approve: no such active user.");
    }
    chain.push_back(next);
    if (limit >= total.scaled || manager_ind == soci::i_null) break;
    next = manager;
  }
  return chain;
}

namespace {

Currency borg_total(soci::session& sql, Database& db, int32_t req_id) {
  const ReqRow req = find_req(sql, req_id);
  std::string currency;
  sql << "SELECT currency_code FROM borgs WHERE borg_id = :b", soci::use(req.borg_id),
      soci::into(currency);
  return req_totals(sql, db, req_id, currency).total;
}

}  // namespace

void insert_steps(soci::session& sql, int32_t req_id, const std::vector<int32_t>& approvers,
                  int32_t first_stage, int32_t type, bool shift) {
  const int count = static_cast<int>(approvers.size());
  if (shift) {
    sql << "UPDATE approval_steps SET stage = stage + :n WHERE req_id = :r AND stage >= :s",
        soci::use(count), soci::use(req_id), soci::use(first_stage);
  }
  int seq = 0;
  sql << "SELECT COALESCE(MAX(seq_num), 0) FROM approval_steps WHERE req_id = :r",
      soci::use(req_id), soci::into(seq);
  int stage = first_stage;
  for (int approver : approvers) {
    ++seq;
    sql << "INSERT INTO approval_steps (req_id, seq_num, stage, approver_id, approver_borg_id, "
           "step_type, status_id) SELECT :r, :q, :s, sys_user_id, borg_id, :t, :w FROM users "
           "WHERE sys_user_id = :a",
        soci::use(req_id), soci::use(seq), soci::use(stage), soci::use(type),
        soci::use(step_status::kWaiting), soci::use(approver);
    ++stage;
  }
}

int32_t build_route(soci::session& sql, Database& db, int32_t req_id, bool preview) {
  const ReqRow req = find_req(sql, req_id);
  int manager = 0;
  soci::indicator ind = soci::i_ok;
  sql << "SELECT manager_id FROM users WHERE sys_user_id = :u", soci::use(req.requisitioner_id),
      soci::into(manager, ind);
  std::vector<int32_t> chain;
  if (ind != soci::i_null) chain = approval_chain(sql, manager, borg_total(sql, db, req_id));
  if (preview) return static_cast<int32_t>(chain.size());
  sql << "DELETE FROM approval_steps WHERE req_id = :r AND status_id IN (:w, :p)",
      soci::use(req_id), soci::use(step_status::kWaiting), soci::use(step_status::kPending);
  int last = 0;
  sql << "SELECT COALESCE(MAX(stage), 0) FROM approval_steps WHERE req_id = :r",
      soci::use(req_id), soci::into(last);
  insert_steps(sql, req_id, chain, last + 1, step_type::kRule, false);
  return static_cast<int32_t>(chain.size());
}

int32_t current_stage(soci::session& sql, int32_t req_id) {
  int stage = 0;
  sql << "SELECT COALESCE(MIN(stage), 0) FROM approval_steps WHERE req_id = :r AND "
         "status_id IN (:w, :p)",
      soci::use(req_id), soci::use(step_status::kWaiting), soci::use(step_status::kPending),
      soci::into(stage);
  return stage;
}

int32_t start_route(soci::session& sql, Database& db, int32_t req_id) {
  const int stage = current_stage(sql, req_id);
  if (stage == 0) {
    sql << "UPDATE requisitions SET status_id = :s WHERE req_id = :r",
        soci::use(req_status::kApproved), soci::use(req_id);
    const ReqRow req = find_req(sql, req_id);
    log_req(sql, db, req_id, req.requisitioner_id, "Approved", "");
    return create_orders(sql, db, req_id);
  }
  const std::string now = date_text(db.now());
  sql << "UPDATE approval_steps SET status_id = :p, received_date = :d WHERE req_id = :r AND "
         "stage = :s AND status_id = :w",
      soci::use(step_status::kPending), soci::use(now), soci::use(req_id), soci::use(stage),
      soci::use(step_status::kWaiting);
  return 0;
}

void cancel_route(soci::session& sql, Database& db, int32_t req_id) {
  const std::string now = date_text(db.now());
  sql << "UPDATE approval_steps SET status_id = :c, acted_date = :d WHERE req_id = :r AND "
         "status_id IN (:w, :p)",
      soci::use(step_status::kCancelled), soci::use(now), soci::use(req_id),
      soci::use(step_status::kWaiting), soci::use(step_status::kPending);
}

}  // namespace kxui::reference
