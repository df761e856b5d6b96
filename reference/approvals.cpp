// The approvers' and reviewers' work lists, one approval step and the lines it covers.
#include <algorithm>
#include <cctype>
#include <sstream>

#include "kxui/frame/text.h"
#include "reference/errors.h"
#include "reference/req_store.h"
#include "reference/route.h"
#include "reference/rows.h"
#include "reference/workflow.h"

namespace kxui::reference {

namespace {

// ORDER BY for a work list: one of `known` (lower-case name, expression), optionally
// followed by ASC or DESC; the clause is always built from the constants.
std::string work_list_order(const std::string& sort_by,
                            std::initializer_list<std::pair<const char*, const char*>> known,
                            const char* fallback) {
  std::istringstream in(kxui::text::lower_ascii(sort_by));
  std::string column, direction;
  in >> column >> direction;
  if (column.empty()) return fallback;
  for (const auto& [name, expr] : known) {
    if (column != name) continue;
    if (direction.empty() || direction == "asc") return std::string(expr) + ", r.req_id";
    if (direction == "desc") return std::string(expr) + " DESC, r.req_id DESC";
  }
  refuse(Refusal::kInvalidArgument, "The list cannot be sorted by \"" + sort_by + "\".");
}

class RefApprovalItem : public business::ApprovalItem {
 public:
  explicit RefApprovalItem(int32_t line) : line_(line) {}
  int32_t LineNum() override { return line_; }

 private:
  int32_t line_;
};

}  // namespace

RecordsetPtr RefApprovals::GetApproverList(const SessionPtr& session, const std::string& sort_by,
                                           Variant&) {
  result_code_ = 0;
  auto rs = answer("GetApproverList", RecordsetPtr(), [&] {
    const Session& s = session_of(session);
    static constexpr Column kColumns[] = {
        {"ReqID", Kind::kInt},           {"SeqNum", Kind::kInt},
        {"ReqName", Kind::kText, 100},   {"RequisitionerName", Kind::kText, 100},
        {"ReqBorgName", Kind::kText, 100}, {"ApproverID", Kind::kInt},
        {"ApproverName", Kind::kText, 100}, {"ApprovalTypeID", Kind::kInt},
        {"ApproveBeginDate", Kind::kDate}, {"ReqCreateDate", Kind::kDate},
        {"CurrencyCode", Kind::kText, 3}};
    const std::string order =
        work_list_order(sort_by,
                        {{"reqid", "r.req_id"},
                         {"reqname", "r.req_name"},
                         {"approvebegindate", "a.received_date"},
                         {"reqcreatedate", "r.create_date"}},
                        "a.received_date, r.req_id");
    const int user = s.SysUserID();
    const std::string now = date_text(db().now());
    return db().read([&](soci::session& sql) {
      // The user's own steps, and those of users who delegated to the user for today.
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT r.req_id, a.seq_num, r.req_name, u.full_name, b.name, "
                          "a.approver_id, ap.full_name, a.step_type, a.received_date, "
                          "r.create_date, r.currency_code FROM approval_steps a "
                          "JOIN requisitions r ON r.req_id = a.req_id "
                          "JOIN users u ON u.sys_user_id = r.requisitioner_id "
                          "JOIN users ap ON ap.sys_user_id = a.approver_id "
                          "JOIN borgs b ON b.borg_id = r.borg_id "
                          "WHERE a.status_id = :p AND (a.approver_id = :u OR EXISTS (SELECT 1 "
                          "FROM delegations d JOIN borgs db ON db.borg_id = d.borg_id WHERE "
                          "d.sys_user_id = a.approver_id AND d.delegatee_id = :u2 AND "
                          "d.enabled = 1 AND db.delegation_enabled = 1 AND d.start_date <= :n "
                          "AND d.end_date >= :n2)) ORDER BY " + order,
           soci::use(step_status::kPending), soci::use(user), soci::use(user), soci::use(now),
           soci::use(now));
      return to_recordset(rows, kColumns);
    });
  });
  if (rs && rs->RecordCount() == 0) {
    // An empty list is told apart from a failure by its result code.
    success_ = false;
    result_code_ = kNoData;
    GetError()->SetNumber(error_number(Refusal::kNoData));
    GetError()->SetSource("Approvals::GetApproverList");
    GetError()->SetDescription("No requisitions are waiting for your approval.");
  }
  return rs;
}

RecordsetPtr RefApprovalReview::finish(RecordsetPtr rs, const char* empty_text) {
  if (rs && rs->RecordCount() == 0) {
    success_ = false;
    result_code_ = kNoData;
    GetError()->SetNumber(error_number(Refusal::kNoData));
    GetError()->SetSource("ApprovalReview");
    GetError()->SetDescription(empty_text);
  }
  return rs;
}

RecordsetPtr RefApprovalReview::GetReviewerList(const SessionPtr& session,
                                                const std::string& sort_by, Variant&) {
  result_code_ = 0;
  auto rs = answer("GetReviewerList", RecordsetPtr(), [&] {
    const Session& s = session_of(session);
    static constexpr Column kColumns[] = {
        {"ReqID", Kind::kInt},          {"ReqName", Kind::kText, 100},
        {"RequisitionerName", Kind::kText, 100}, {"ReqStatusID", Kind::kInt},
        {"ReqCreateDate", Kind::kDate}, {"AddedByName", Kind::kText, 100},
        {"Comments", Kind::kText, 2000}};
    const std::string order = work_list_order(
        sort_by, {{"reqid", "r.req_id"}, {"reqname", "r.req_name"}, {"reqcreatedate", "r.create_date"}},
        "r.create_date DESC, r.req_id DESC");
    const int user = s.SysUserID();
    return db().read([&](soci::session& sql) {
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT r.req_id, r.req_name, u.full_name, r.status_id, r.create_date, "
                          "a.full_name, v.comments FROM reviewers v "
                          "JOIN requisitions r ON r.req_id = v.req_id "
                          "JOIN users u ON u.sys_user_id = r.requisitioner_id "
                          "JOIN users a ON a.sys_user_id = v.added_by "
                          "WHERE v.reviewer_id = :u ORDER BY " + order,
           soci::use(user));
      return to_recordset(rows, kColumns);
    });
  });
  return finish(std::move(rs), "No requisitions are waiting for your review.");
}

RecordsetPtr RefApprovalReview::GetReviewList(const SessionPtr& session, int32_t req_id,
                                              int32_t reviewer_id, Variant&) {
  result_code_ = 0;
  auto rs = answer("GetReviewList", RecordsetPtr(), [&] {
    const Session& s = session_of(session);
    static constexpr Column kColumns[] = {
        {"ReviewerID", Kind::kInt},     {"ReviewerName", Kind::kText, 100},
        {"AddedDate", Kind::kDate},     {"ReviewedDate", Kind::kDate},
        {"Comments", Kind::kText, 2000}};
    return db().read([&](soci::session& sql) {
      load_req(sql, req_id, s);
      // Reviewer 0: every review of the requisition.
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT v.reviewer_id, u.full_name, v.added_date, v.reviewed_date, "
                          "v.comments FROM reviewers v JOIN users u ON u.sys_user_id = "
                          "v.reviewer_id WHERE v.req_id = :r AND (:v = 0 OR v.reviewer_id = :v2) "
                          "ORDER BY v.added_date, v.reviewer_id",
           soci::use(req_id), soci::use(reviewer_id), soci::use(reviewer_id));
      return to_recordset(rows, kColumns);
    });
  });
  return finish(std::move(rs), "The requisition has no reviews.");
}

bool RefApprovalItems::Load(const SessionPtr& session, int32_t req_id, int32_t seq_num, Variant&) {
  result_code_ = 0;
  items_.clear();
  std::vector<std::shared_ptr<business::ApprovalItem>> items;
  const bool ok = answer("Load", false, [&] {
    const Session& s = session_of(session);
    db().read([&](soci::session& sql) {
      load_req(sql, req_id, s);
      int step = 0;
      sql << "SELECT COUNT(*) FROM approval_steps WHERE req_id = :r AND seq_num = :q",
          soci::use(req_id), soci::use(seq_num), soci::into(step);
      if (step == 0) {
        refuse(Refusal::kNotFound, "Requisition " + std::to_string(req_id) +
                                       " has no approval step " + std::to_string(seq_num) + ".");
      }
      // Every step covers every line of its requisition.
      soci::rowset<int> lines =
          (sql.prepare << "SELECT line_num FROM req_lines WHERE req_id = :r ORDER BY line_num",
           soci::use(req_id));
      for (int line : lines) items.push_back(std::make_shared<RefApprovalItem>(line));
    });
    if (items.empty()) {
      result_code_ = kNoData;
      refuse(Refusal::kNoData, "Approval step " + std::to_string(seq_num) + " covers no items.");
    }
    return true;
  });
  items_ = std::move(items);
  return ok;
}

bool RefApproval::Load(const SessionPtr& session, int32_t req_id, int32_t seq_num, Variant&) {
  return answer("Load", false, [&] {
    const Session& s = session_of(session);
    db().read([&](soci::session& sql) {
      load_req(sql, req_id, s);
      int type = 0;
      std::string received;
      soci::indicator received_ind = soci::i_ok;
      sql << "SELECT step_type, status_id, approver_id, received_date FROM approval_steps "
             "WHERE req_id = :r AND seq_num = :q",
          soci::use(req_id), soci::use(seq_num), soci::into(type), soci::into(status_),
          soci::into(approver_), soci::into(received, received_ind);
      if (!sql.got_data()) {
        refuse(Refusal::kNotFound, "Requisition " + std::to_string(req_id) +
                                       " has no approval step " + std::to_string(seq_num) + ".");
      }
      type_desc_ = step_type::name(type);
      received_ = received_ind == soci::i_null ? Variant::null()
                                               : Variant(parse_date_text(received));
    });
    return true;
  });
}

}  // namespace kxui::reference
