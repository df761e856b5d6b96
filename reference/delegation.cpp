// RefBorgDelegation and RefDiagram.
#include <map>

#include "reference/errors.h"
#include "reference/html_text.h"
#include "reference/req_store.h"
#include "reference/route.h"
#include "reference/rows.h"
#include "reference/workflow.h"

namespace kxui::reference {

// A user who never delegated loads an empty delegation (nobody, not enabled) with True:
// False is kept for failures, so that callers can still ask whether the organisation
// allows delegation before the first one is saved.
bool RefBorgDelegation::Load(const SessionPtr& session, Variant&) {
  return answer("Load", false, [&] {
    const Session& s = session_of(session);
    const int user = s.SysUserID();
    db().read([&](soci::session& sql) {
      int borg = 0, allowed = 0;
      sql << "SELECT u.borg_id, b.delegation_enabled FROM users u JOIN borgs b ON b.borg_id = "
             "u.borg_id WHERE u.sys_user_id = :u",
          soci::use(user), soci::into(borg), soci::into(allowed);
      if (!sql.got_data()) refuse(Refusal::kNotFound, "User " + std::to_string(user) + " does not exist.");
      borg_id_ = borg;
      sys_user_id_ = user;
      delegation_enabled_ = allowed != 0;
      delegatee_id_ = 0;
      delegatee_name_.clear();
      delegatee_login_.clear();
      start_ = end_ = Date();
      enabled_ = false;
      int delegatee = 0, enabled = 0;
      std::string start, end;
      sql << "SELECT delegatee_id, start_date, end_date, enabled FROM delegations "
             "WHERE sys_user_id = :u",
          soci::use(user), soci::into(delegatee), soci::into(start), soci::into(end),
          soci::into(enabled);
      if (!sql.got_data()) return;
      delegatee_id_ = delegatee;
      start_ = parse_date_text(start);
      end_ = parse_date_text(end);
      enabled_ = enabled != 0;
      sql << "SELECT full_name, login_id FROM users WHERE sys_user_id = :d", soci::use(delegatee),
          soci::into(delegatee_name_), soci::into(delegatee_login_);
    });
    return true;
  });
}

bool RefBorgDelegation::Save(const SessionPtr& session, Variant&) {
  return answer("Save", false, [&] {
    const Session& s = session_of(session);
    if (sys_user_id_ != s.SysUserID()) {
      refuse(Refusal::kNotAllowed, "A delegation can only be saved by the user who delegates.");
    }
    if (delegatee_id_ == sys_user_id_) {
      refuse(Refusal::kInvalidArgument, "A user cannot delegate to himself or herself.");
    }
    if (end_ < start_) {
      refuse(Refusal::kInvalidArgument, "The delegation ends before it starts.");
    }
    db().write([&](soci::session& sql) {
      int allowed = 0, member = 0;
      sql << "SELECT delegation_enabled FROM borgs WHERE borg_id = :b", soci::use(borg_id_),
          soci::into(allowed);
      if (!sql.got_data()) {
        refuse(Refusal::kNotFound, "Organisation " + std::to_string(borg_id_) + " does not exist.");
      }
      if (!allowed && enabled_) {
        refuse(Refusal::kNotAllowed, "The organisation does not allow delegation.");
      }
      sql << "SELECT COUNT(*) FROM users WHERE sys_user_id = :d AND borg_id = :b AND active = 1",
          soci::use(delegatee_id_), soci::use(borg_id_), soci::into(member);
      if (!member) {
        refuse(Refusal::kNotFound, "User " + std::to_string(delegatee_id_) +
                                       " is not an active member of the organisation.");
      }
      const std::string start = date_text(start_), end = date_text(end_);
      const int enabled = enabled_ ? 1 : 0;
      sql << "INSERT INTO delegations (sys_user_id, borg_id, delegatee_id, start_date, end_date, "
             "enabled) VALUES (:u, :b, :d, :s, :e, :en) ON CONFLICT (sys_user_id) DO UPDATE SET "
             "borg_id = excluded.borg_id, delegatee_id = excluded.delegatee_id, start_date = "
             "excluded.start_date, end_date = excluded.end_date, enabled = excluded.enabled",
          soci::use(sys_user_id_), soci::use(borg_id_), soci::use(delegatee_id_),
          soci::use(start), soci::use(end), soci::use(enabled);
    });
    return true;
  });
}

RecordsetPtr RefBorgDelegation::GetDelegateSearchResults(const SessionPtr& session,
                                                         const std::string& search_name,
                                                         const std::string& search_login,
                                                         Variant&) {
  return answer("GetDelegateSearchResults", RecordsetPtr(), [&] {
    const Session& s = session_of(session);
    static constexpr Column kColumns[] = {{"SysUserID", Kind::kInt},
                                          {"FullName", Kind::kText, 100},
                                          {"LoginID", Kind::kText, 50}};
    const std::string name = "%" + search_name + "%", login = "%" + search_login + "%";
    const int user = s.SysUserID();
    return db().read([&](soci::session& sql) {
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT u.sys_user_id, u.full_name, u.login_id FROM users u "
                          "JOIN users me ON me.borg_id = u.borg_id WHERE me.sys_user_id = :me "
                          "AND u.sys_user_id <> :me2 AND u.active = 1 AND "
                          "LOWER(u.full_name) LIKE LOWER(:n) AND LOWER(u.login_id) LIKE LOWER(:l) "
                          "ORDER BY u.full_name",
           soci::use(user), soci::use(user), soci::use(name), soci::use(login));
      return to_recordset(rows, kColumns);
    });
  });
}

namespace {

const char* status_text(int32_t status) {
  switch (status) {
    case step_status::kWaiting: return "Waiting";
    case step_status::kPending: return "Pending";
    case step_status::kApproved: return "Approved";
    case step_status::kRejected: return "Rejected";
    default: return "Cancelled";
  }
}

}  // namespace

bool RefDiagram::BuildDataStructure(const SessionPtr& session, int32_t req_id,
                                    const std::string& mode, int16_t seq_num,
                                    Variant& html_result, const std::string& font_face, Variant&) {
  return answer("BuildDataStructure", false, [&] {
    const Session& s = session_of(session);
    // Stage -> the cells of its steps.
    std::map<int, std::string> stages;
    std::string title;
    db().read([&](soci::session& sql) {
      const ReqRow req = load_req(sql, req_id, s);
      title = req.name;
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT a.stage, a.seq_num, u.full_name, a.step_type, a.status_id "
                          "FROM approval_steps a JOIN users u ON u.sys_user_id = a.approver_id "
                          "WHERE a.req_id = :r ORDER BY a.stage, a.seq_num",
           soci::use(req_id));
      for (const soci::row& row : rows) {
        const int seq = int_of(row, 1);
        std::string& cell = stages[int_of(row, 0)];
        cell += std::string("<div class=\"step") + (seq == seq_num ? " current" : "") + "\">" +
                escape_html(text_of(row, 2)) + "<br>" + step_type::name(int_of(row, 3)) + " (" +
                status_text(int_of(row, 4)) + ")</div>";
      }
    });
    const bool vertical = mode == "V" || mode == "v";
    std::string html = "<table class=\"workflow\" style=\"font-family: '" + escape_html(font_face) +
                       "'\"><caption>" + escape_html(title) + "</caption>";
    if (stages.empty()) html += "<tr><td>No approval required</td></tr>";
    if (!vertical && !stages.empty()) html += "<tr>";
    for (const auto& [stage, cells] : stages) {
      html += vertical ? "<tr><td>" + cells + "</td></tr>" : "<td>" + cells + "</td>";
    }
    if (!vertical && !stages.empty()) html += "</tr>";
    html += "</table>";
    html_result = Variant(std::move(html));
    return true;
  });
}

}  // namespace kxui::reference
