// Approval work: the approvers' and reviewers' lists, approving and rejecting with
// comments, adding approvers, reviewers and chains, and delegation.
#include "apps/portal/portal.h"

namespace portal {

using kxui::RecordsetPtr;
using kxui::Variant;

namespace {

constexpr const char* kDelegationLink =
    "<p><a href=\"/delegation\">Hand your approvals to someone else while you are away</a></p>";

void approvals_page(Ctx& c) {
  auto wf = c.hub().WF();
  RecordsetPtr rs = wf->GetApproverListPage(c.session(), c.param("sort"), c.int_param("page"));
  if (!rs) {
    if (wf->Success()) {
      return c.render("Approvals", std::string(kDelegationLink) + "<p class=\"empty\">Nothing waits for you.</p>");
    }
    return c.render("Approvals", "", "", failure_text(*wf));
  }
  std::string body = "<table><thead><tr><th>No.</th><th>Name</th><th>Requisitioner</th>"
                     "<th>Organisation</th><th>Waiting since</th><th>Created</th></tr></thead><tbody>";
  if (rs->RecordCount() == 0) {
    return c.render("Approvals", std::string(kDelegationLink) +
                                     "<p class=\"empty\">Nothing waits for your approval.</p>");
  }
  for (rs->MoveFirst(); !rs->IsEOF(); rs->MoveNext()) {
    body += "<tr><td>" + esc(field(*rs, "ReqID")) + "</td><td><a href=\"/approve/" +
            esc(field(*rs, "ReqID")) + "/" + esc(field(*rs, "SeqNum")) + "\">" +
            esc(field(*rs, "ReqName")) + "</a></td><td>" + esc(field(*rs, "RequisitionerName")) +
            "</td><td>" + esc(field(*rs, "ReqBorgName")) + "</td><td>" +
            esc(field(*rs, "UIDisplay_ReceivedDate")) + "</td><td>" +
            esc(field(*rs, "UIDisplay_CreateDate")) + "</td></tr>";
  }
  body += "</tbody></table>" + pager(*rs, "/approvals?");
  c.render("Approvals", kDelegationLink + body);
}

void reviews_page(Ctx& c) {
  auto wf = c.hub().WF();
  RecordsetPtr rs = wf->GetReviewerListPage(c.session(), c.param("sort"), c.int_param("page"));
  if (!rs) {
    if (wf->Success()) return c.render("Reviews", "<p class=\"empty\">Nothing to review.</p>");
    return c.render("Reviews", "", "", failure_text(*wf));
  }
  std::string body = table(*rs, {{"No.", "ReqID", Column::kNumber},
                                 {"Name", "ReqName", Column::kLink, "/review/", "ReqID"},
                                 {"Requisitioner", "RequisitionerName"},
                                 {"Status", "ReqStatusID", Column::kReqStatus},
                                 {"Asked by", "AddedByName"},
                                 {"Created", "UIDisplay_CreateDate"},
                                 {"Your comments", "Comments"}},
                           "Nobody asked you to review a requisition.");
  c.render("Reviews", body + pager(*rs, "/reviews?"));
}

// The requisition as an approver or reviewer sees it: header, lines and route.
std::string approver_view(Ctx& c, int32_t id, int32_t seq) {
  auto wf = c.hub().WF();
  RecordsetPtr header = wf->GetHeaderRs(c.session(), id, seq, false);
  if (!header) return "<div class=\"error\">" + esc(failure_text(*wf)) + "</div>";
  header->MoveFirst();
  std::string out = "<div class=\"card\"><p><b>" + esc(field(*header, "ReqName")) + "</b> from " +
                    esc(field(*header, "RequisitionerName")) + " (" +
                    esc(field(*header, "ReqBorgName")) + "), created " +
                    esc(field(*header, "CreateDate")) + "</p><p><b>Justification:</b> " +
                    esc(field(*header, "Justification")) + "</p>";
  auto req = c.hub().Req();
  Variant sub, tax, total;
  if (req->GetReqTotals(c.session(), id, sub, tax, total)) {
    out += "<p><b>Total:</b> <span id=\"total\">" + esc(text_of(total)) + "</span></p>";
  }
  out += "</div>";
  RecordsetPtr lines = req->GetItemsRs(c.session(), id);
  out += lines ? table(*lines, {{"Line", "LineNum", Column::kNumber},
                                {"Item", "Description"},
                                {"Supplier", "SupplierName"},
                                {"Quantity", "UIDisplay_OrderQty", Column::kNumber},
                                {"Unit", "UOMID"},
                                {"Unit price", "UIDisplay_UnitPrice", Column::kNumber},
                                {"Amount", "UIDisplay_ExtendedPrice", Column::kNumber}})
               : "<div class=\"error\">" + esc(failure_text(*req)) + "</div>";
  Variant map;
  // The map is markup the business tier builds, escaping every name it prints.
  if (wf->BuildDataStructure(c.session(), id, "H", static_cast<int16_t>(seq), map, "system-ui")) {
    out += "<h2>Workflow</h2><div class=\"card\">" + text_of(map) + "</div>";
  }
  req->ReleaseLock(c.session());
  return out;
}

void approve_page(Ctx& c, const std::string& error = "", int status = 200) {
  const int32_t id = c.path_int(1), seq = c.path_int(2);
  std::string body = approver_view(c, id, seq);
  body += "<div class=\"card\"><form method=\"post\" action=\"/approve/" + std::to_string(id) +
          "/" + std::to_string(seq) + "\">" + csrf_field(c.csrf()) +
          "<div class=\"row\"><label for=\"comments\">Comments</label><textarea id=\"comments\" "
          "name=\"comments\" rows=\"3\" cols=\"60\">" + esc(c.param("comments")) +
          "</textarea></div><div class=\"row\"><button name=\"action\" value=\"approve\" "
          "id=\"approve\">Approve</button> <button name=\"action\" value=\"reject\" "
          "class=\"danger\" id=\"reject\">Reject</button></div></form></div>";
  c.render("Approve requisition " + std::to_string(id), body, "", error, status);
}

void route_page(Ctx& c, const std::string& error = "", int status = 200) {
  const int32_t id = c.path_int(1);
  const std::string base = "/req/" + std::to_string(id) + "/route";
  std::string body = "<p><a href=\"/req/" + std::to_string(id) + "\">Back to the requisition</a></p>"
                     "<form method=\"get\" action=\"" + base + "\" class=\"card\"><label for=\"name\">"
                     "Find a person</label><input id=\"name\" name=\"name\" value=\"" +
                     esc(c.param("name")) + "\"> <button>Search</button></form>";
  auto wf = c.hub().WF();
  const int32_t steps = wf->GetApprovalCount(c.session(), id);
  if (!c.param("name").empty()) {
    RecordsetPtr people = wf->GetApproverSearchResultsRs(c.session(), id, c.param("name"), "");
    if (!people) {
      body += "<div class=\"error\">" + esc(failure_text(*wf)) + "</div>";
    } else if (people->RecordCount() == 0) {
      body += "<p class=\"empty\">Nobody found.</p>";
    } else {
      body += "<table><thead><tr><th>Name</th><th>User</th><th>Organisation</th><th>Add as"
              "</th></tr></thead><tbody>";
      for (people->MoveFirst(); !people->IsEOF(); people->MoveNext()) {
        const std::string user = field(*people, "SysUserID"), borg = field(*people, "BorgID");
        body += "<tr><td>" + esc(field(*people, "FullName")) + "</td><td>" +
                esc(field(*people, "LoginID")) + "</td><td>" + esc(field(*people, "BorgName")) +
                "</td><td class=\"actions\">";
        for (const auto& [kind, label] :
             {std::pair<const char*, const char*>{"after", "Approver at the end"},
              {"before", "Approver first"}, {"chain", "Approval chain after"},
              {"parallel", "Parallel chain"}, {"reviewer", "Reviewer"}}) {
          body += button_form(base, label, c.csrf(), {{"kind", kind}, {"user", user}, {"borg", borg}},
                              "secondary");
        }
        body += "</td></tr>";
      }
      body += "</tbody></table>";
    }
  }
  Variant map;
  if (wf->BuildDataStructure(c.session(), id, "H", 0, map, "system-ui")) {
    // The map is markup the business tier builds, escaping every name it prints.
    body += "<h2>Current route (" + std::to_string(steps) + " steps)</h2><div class=\"card\">" +
            text_of(map) + "</div>";
  }
  c.render("Approvers and reviewers", body, "", error, status);
}

void delegation_page(Ctx& c, const std::string& error = "", int status = 200) {
  auto wf = c.hub().WF();
  Variant borg, user, delegatee, name, login, start, end, enabled;
  std::string body;
  // The form is offered even where the organisation forbids delegation: saving then
  // gives the tier's own reason.
  const bool allowed = wf->CheckDelegationEnabled(c.session());
  if (!wf->GetBorgDelegationData(c.session(), borg, user, delegatee, name, login, start, end,
                                 enabled)) {
    delegatee = name = start = end = enabled = Variant();
  }
  if (!allowed) body += "<p class=\"muted\">Your organisation does not allow delegation.</p>";
  auto date_input = [](const Variant& v) {
    if (v.is_empty() || v.is_null()) return std::string();
    const std::string t = text_of(v);
    return t.substr(0, 10);
  };
  body += "<div class=\"card\"><p>Currently: " +
          (text_of(name).empty() ? std::string("nobody") : esc(text_of(name))) + "</p>"
          "<form method=\"post\" action=\"/delegation\">" + csrf_field(c.csrf()) +
          "<div class=\"row\"><label for=\"delegate\">Delegate (user no.)</label><input "
          "id=\"delegate\" name=\"delegate\" value=\"" + esc(text_of(delegatee)) + "\"></div>"
          "<div class=\"row\"><label for=\"start\">From (yyyy-mm-dd)</label><input id=\"start\" "
          "name=\"start\" value=\"" + esc(date_input(start)) + "\"></div><div class=\"row\">"
          "<label for=\"end\">Until (yyyy-mm-dd)</label><input id=\"end\" name=\"end\" value=\"" +
          esc(date_input(end)) + "\"></div><div class=\"row\"><label for=\"enabled\">Active</label>"
          "<input type=\"checkbox\" id=\"enabled\" name=\"enabled\" value=\"1\"" +
          (enabled.is_empty() || enabled.is_null() || !enabled.to_bool() ? "" : " checked") +
          "></div><div class=\"row\"><button>Save</button></div></form></div>";
  if (!c.param("name").empty()) {
    RecordsetPtr people = wf->GetDelegateSearchResultsRs(c.session(), c.param("name"), "");
    body += people ? table(*people, {{"No.", "SysUserID"}, {"Name", "FullName"}, {"User", "LoginID"}})
                   : "<div class=\"error\">" + esc(failure_text(*wf)) + "</div>";
  }
  body += "<form method=\"get\" action=\"/delegation\" class=\"card\"><label for=\"name\">Find a "
          "person</label><input id=\"name\" name=\"name\"> <button>Search</button></form>";
  c.render("Delegation", body, "", error, status);
}

}  // namespace

void Portal::mount_workflow(httplib::Server& s) {
  get(s, "/approvals", approvals_page);
  get(s, "/reviews", reviews_page);
  get(s, R"(/approve/(\d+)/(\d+))", [](Ctx& c) { approve_page(c); });
  post(s, R"(/approve/(\d+)/(\d+))", [](Ctx& c) {
    auto wf = c.hub().WF();
    const int32_t id = c.path_int(1), seq = c.path_int(2);
    const bool reject = c.param("action") == "reject";
    const bool ok = reject ? wf->Reject(c.session(), id, seq, c.param("comments"))
                           : wf->Approve(c.session(), id, seq, c.param("comments"));
    if (ok) return c.redirect("/approvals", reject ? "Rejected." : "Approved.");
    approve_page(c, failure_text(*wf), 422);
  });
  get(s, R"(/review/(\d+))", [](Ctx& c) {
    const int32_t id = c.path_int(1);
    std::string body = approver_view(c, id, -1);
    body += "<div class=\"card\"><form method=\"post\" action=\"/review/" + std::to_string(id) +
            "\">" + csrf_field(c.csrf()) + "<div class=\"row\"><label for=\"comments\">Your "
            "comments</label><textarea id=\"comments\" name=\"comments\" rows=\"3\" cols=\"60\">"
            "</textarea></div><button>Send comments</button></form></div>";
    c.render("Review requisition " + std::to_string(id), body);
  });
  post(s, R"(/review/(\d+))", [](Ctx& c) {
    auto wf = c.hub().WF();
    if (wf->AddComments(c.session(), c.path_int(1), c.param("comments"))) {
      return c.redirect("/reviews", "Comments sent.");
    }
    c.render("Review", "", "", failure_text(*wf), 422);
  });
  get(s, R"(/req/(\d+)/route)", [](Ctx& c) { route_page(c); });
  post(s, R"(/req/(\d+)/route)", [](Ctx& c) {
    auto wf = c.hub().WF();
    const int32_t id = c.path_int(1), user = c.int_param("user"), borg = c.int_param("borg");
    const std::string kind = c.param("kind");
    const auto s = c.session();
    bool ok = false;
    if (kind == "after") ok = wf->AddAfter(s, id, wf->GetApprovalCount(s, id), user, borg);
    else if (kind == "before") ok = wf->AddBefore(s, id, 1, user, borg);
    else if (kind == "chain") ok = wf->AddAfterApprovalChain(s, id, user, borg);
    else if (kind == "parallel") ok = wf->AddParallelApprovalChain(s, id, user, borg);
    else if (kind == "reviewer") ok = wf->AddReviewer(s, id, user, borg);
    else return route_page(c, "Choose what to add the person as.", 400);
    c.hub().Req()->ReleaseLock(s);
    if (ok) return c.redirect("/req/" + std::to_string(id) + "/route", "Added.");
    route_page(c, failure_text(*wf), 422);
  });
  get(s, "/delegation", [](Ctx& c) { delegation_page(c); });
  post(s, "/delegation", [](Ctx& c) {
    auto wf = c.hub().WF();
    const auto s = c.session();
    kxui::Date start, end;
    try {
      start = Variant(c.param("start")).to_date();
      end = Variant(c.param("end")).to_date();
    } catch (const kxui::Failure&) {
      return delegation_page(c, "Give both dates as yyyy-mm-dd.", 422);
    }
    if (wf->SaveBorgDelegationData(s, s->BorgID(), s->SysUserID(), c.int_param("delegate"), start,
                                   end, c.param("enabled") == "1")) {
      return c.redirect("/delegation", "Delegation saved.");
    }
    delegation_page(c, failure_text(*wf), 422);
  });
}

}  // namespace portal
