// Requisitions: the list, one requisition with its lines, log and workflow map, and the
// lifecycle actions on it.
#include "apps/portal/portal.h"

namespace portal {

using kxui::RecordsetPtr;
using kxui::Variant;

namespace {

// The list's status filters: label and the status list the façade takes.
const std::pair<const char*, const char*> kFilters[] = {
    {"All", ""}, {"Open", "1,3,4"}, {"Submitted", "2"}, {"Approved", "5"}, {"Cancelled", "7"}};
// The orders people pick from: label and the sort text the façade takes.
const std::pair<const char*, const char*> kSorts[] = {
    {"Newest first", ""},   {"Oldest first", "CreateDate"}, {"Number", "ReqID"},
    {"Name", "ReqName"},    {"Status", "ReqStatusID"}};

// The sortable columns: clicking a heading sorts by it, clicking it again reverses.
struct SortableColumn {
  const char* source;
  const char* ascending;
  const char* descending;
};
constexpr SortableColumn kSortable[] = {
    {"ReqID", "ReqID", "ReqID DESC"},
    {"ReqName", "ReqName", "ReqName DESC"},
    {"ReqStatusID", "ReqStatusID", "ReqStatusID DESC"},
    {"RequisitionerName", "RequisitionerName", "RequisitionerName DESC"},
    {"UIDisplay_CreateDate", "CreateDate", ""},
    {"UIDisplay_SubmitDate", "SubmitDate", "SubmitDate DESC"}};

void list_page(Ctx& c) {
  const std::string status = c.param("status"), sort = c.param("sort");
  const std::string base = "/reqs?status=" + url_encode(status) + "&sort=";
  std::string body = "<div class=\"card filters\">Show: ";
  for (const auto& [label, list] : kFilters) {
    body += "<a class=\"" + std::string(status == list ? "on" : "") + "\" href=\"/reqs?status=" +
            url_encode(list) + "&amp;sort=" + esc(url_encode(sort)) + "\">" + esc(label) + "</a>";
  }
  body += " · Sort: ";
  for (const auto& [label, key] : kSorts) {
    body += "<a class=\"" + std::string(sort == key ? "on" : "") + "\" href=\"" +
            esc(base + url_encode(key)) + "\">" + esc(label) + "</a>";
  }
  body += "</div>";
  auto req = c.hub().Req();
  RecordsetPtr rs = req->GetListPage(c.session(), "", "", sort, status, c.int_param("page"));
  if (!rs) return c.render("Requisitions", body, "", failure_text(*req));
  std::vector<Column> columns = {{"No.", "ReqID", Column::kNumber},
                                 {"Name", "ReqName", Column::kLink, "/req/", "ReqID"},
                                 {"Status", "ReqStatusID", Column::kReqStatus},
                                 {"Requisitioner", "RequisitionerName"},
                                 {"Created", "UIDisplay_CreateDate"},
                                 {"Submitted", "UIDisplay_SubmitDate"},
                                 {"Items", "NumberOfItems", Column::kNumber}};
  for (Column& col : columns) {
    if (col.source == "UIDisplay_SubmitDate") {
      col.shown_if = [](const kxui::Recordset& row) {
        return req_was_submitted(field_int(row, "ReqStatusID"));
      };
    }
    for (const SortableColumn& k : kSortable) {
      if (col.source != k.source) continue;
      const bool up = sort == k.ascending, down = sort == k.descending;
      col.heading_link = base + url_encode(up ? k.descending : k.ascending);
      col.heading_mark = up ? "▲" : down ? "▼" : "";
    }
  }
  body += table(*rs, columns, "You have no requisitions here yet.");
  body += pager(*rs, base + url_encode(sort) + "&");
  c.render("Requisitions", body);
}

std::string text_form(const std::string& action, const std::string& csrf, const char* name,
                      const std::string& value, const char* label, const char* button,
                      bool area = false) {
  std::string out = "<form method=\"post\" action=\"" + esc(action) + "\">" + csrf_field(csrf) +
                    "<div class=\"row\"><label for=\"" + name + "\">" + label + "</label>";
  out += area ? "<textarea id=\"" + std::string(name) + "\" name=\"" + name +
                    "\" rows=\"3\" cols=\"60\">" + esc(value) + "</textarea>"
              : "<input id=\"" + std::string(name) + "\" name=\"" + name + "\" value=\"" +
                    esc(value) + "\" size=\"40\">";
  return out + " <button>" + button + "</button></div></form>";
}

void req_page(Ctx& c, const std::string& error = "", int status = 200) {
  const int32_t id = c.path_int(1);
  auto req = c.hub().Req();
  const auto session = c.session();
  Variant status_id, items, editable_v, sub, tax, total;
  if (!req->GetReqStatus(session, id, status_id, items, editable_v)) {
    return c.render("Requisition", "<p><a href=\"/reqs\">Back to the list</a></p>", "",
                    failure_text(*req), refusal_status(*req, 404));
  }
  const bool editable = editable_v.to_bool();
  const int32_t st = status_id.try_to_int32().value_or(0);
  Variant name, requisitioner, created, cost, justification, currency;
  RecordsetPtr log = req->GetLogRequisition(session, id, name, requisitioner, created, cost,
                                            justification, currency);
  if (!log) return c.render("Requisition", "", "", failure_text(*req), 500);
  req->GetReqTotals(session, id, sub, tax, total);
  RecordsetPtr lines = req->GetItemsRs(session, id);
  const std::string lines_error = lines ? "" : failure_text(*req);
  const std::string base = "/req/" + std::to_string(id);

  std::string body = "<div class=\"card\"><p>" + badge(req_status_name(st)) + " · No. " +
                     std::to_string(id) + " · requested by " + esc(text_of(requisitioner)) +
                     " · created " + esc(text_of(created)) + "</p>";
  body += "<table class=\"totals\" style=\"width:auto;border:none\"><tr><td>Subtotal</td><td "
          "class=\"num\" id=\"subtotal\">" + esc(text_of(sub)) + "</td></tr><tr><td>Tax</td><td "
          "class=\"num\">" + esc(text_of(tax)) + "</td></tr><tr><td><b>Total</b></td><td "
          "class=\"num\" id=\"total\"><b>" + esc(text_of(total)) + "</b></td></tr></table>";
  if (editable) {
    body += text_form(base + "/name", c.csrf(), "name", text_of(name), "Name", "Rename");
    body += text_form(base + "/justification", c.csrf(), "justification", text_of(justification),
                      "Justification", "Save", true);
  } else {
    body += "<p><b>Justification:</b> " + esc(text_of(justification)) + "</p>";
  }
  body += "</div><div class=\"card actions\">";
  if (editable) {
    body += "<a href=\"" + base + "/add\">Add items</a> ";
    body += button_form(base + "/submit", "Submit for approval", c.csrf());
    body += button_form(base + "/delete", "Delete", c.csrf(), {}, "danger");
  }
  if (st == 2) body += button_form(base + "/cancel", "Cancel", c.csrf(), {}, "danger");
  body += button_form(base + "/copy", "Copy", c.csrf(), {{"name", "Copy of " + text_of(name)}}, "secondary");
  body += button_form(base + "/template", "Save as template", c.csrf(), {{"name", text_of(name)}}, "secondary");
  if (st == 2) body += "<a href=\"" + base + "/route\">Add approvers or reviewers</a>";
  body += "</div><h2>Items</h2>";
  if (lines) {
    std::string rows;
    if (lines->RecordCount() == 0) rows = "<p class=\"empty\">No items yet.</p>";
    else {
      rows = "<table><thead><tr><th>Line</th><th>Item</th><th>Supplier</th><th class=\"num\">"
             "Quantity</th><th>Unit</th><th class=\"num\">Unit price</th><th class=\"num\">"
             "Amount</th>" + std::string(editable ? "<th></th>" : "") + "</tr></thead><tbody>";
      for (lines->MoveFirst(); !lines->IsEOF(); lines->MoveNext()) {
        const std::string line = field(*lines, "LineNum");
        rows += "<tr><td>" + esc(line) + "</td><td>" + esc(field(*lines, "Description")) +
                "</td><td>" + esc(field(*lines, "SupplierName")) + "</td><td class=\"num\">";
        if (editable) {
          rows += "<form class=\"inline\" method=\"post\" action=\"" + base + "/line/" + esc(line) +
                  "/qty\">" + csrf_field(c.csrf()) + "<input name=\"qty\" size=\"6\" value=\"" +
                  esc(field(*lines, "UIDisplay_OrderQty")) + "\"> <button class=\"secondary\">"
                  "Set</button></form>";
        } else {
          rows += esc(field(*lines, "UIDisplay_OrderQty"));
        }
        rows += "</td><td>" + esc(field(*lines, "UOMID")) + "</td><td class=\"num\">" +
                esc(field(*lines, "UIDisplay_UnitPrice")) + "</td><td class=\"num\">" +
                esc(field(*lines, "UIDisplay_ExtendedPrice")) + "</td>";
        if (editable) {
          rows += "<td>" + button_form(base + "/line/" + line + "/delete", "Remove", c.csrf(), {},
                                       "secondary") + "</td>";
        }
        rows += "</tr>";
      }
      rows += "</tbody></table>";
    }
    body += rows;
  } else {
    body += "<div class=\"error\">" + esc(lines_error) + "</div>";
  }
  body += attachments_block(c, 1, id);
  if (st == 5) {
    auto po = c.hub().PO();
    RecordsetPtr pos = po->GetPOsByRequisition(session, id);
    body += "<h2>Purchase orders</h2>";
    body += pos ? table(*pos, {{"Order", "PONum", Column::kLink, "/po/", "POID"},
                               {"Supplier", "SupplierName"},
                               {"Status", "StatusName", Column::kBadge},
                               {"Total", "UIDisplay_TotalAmtDue", Column::kNumber}})
                : "<div class=\"error\">" + esc(failure_text(*po)) + "</div>";
  }
  Variant map;
  auto wf = c.hub().WF();
  // The map is markup the business tier builds, escaping every name it prints.
  body += "<h2>Workflow</h2><div class=\"card\">";
  body += wf->BuildDataStructure(session, id, "H", 0, map, "system-ui") ? text_of(map)
                                                                         : esc(failure_text(*wf));
  body += "</div><h2>History</h2>";
  body += table(*log, {{"When", "UIDisplay_DateLogged"}, {"Who", "UserName"},
                       {"What", "Action"}, {"Comments", "Comments"}});
  // Viewing holds no lock: the approvers must be able to act while the page is open.
  req->ReleaseLock(session);
  c.render(text_of(name).empty() ? "Requisition " + std::to_string(id) : text_of(name), body,
           "", error, status);
}

// Runs one action on the requisition of the path; on failure the page shows its message.
void act(Ctx& c, bool ok, kxui::Facade& f, const std::string& done,
         const std::string& to = "") {
  const int32_t id = c.path_int(1);
  c.hub().Req()->ReleaseLock(c.session());
  if (ok) return c.redirect(to.empty() ? "/req/" + std::to_string(id) : to, done);
  req_page(c, failure_text(f), 422);
}

}  // namespace

void Portal::mount_requisitions(httplib::Server& s) {
  get(s, "/reqs", list_page);
  get(s, R"(/req/(\d+))", [](Ctx& c) { req_page(c); });
  post(s, R"(/req/(\d+)/name)", [](Ctx& c) {
    auto req = c.hub().Req();
    act(c, req->UpdateReqName(c.session(), c.path_int(1), c.param("name")), *req, "Renamed.");
  });
  post(s, R"(/req/(\d+)/justification)", [](Ctx& c) {
    auto req = c.hub().Req();
    act(c, req->SetHeaderJustification(c.session(), c.path_int(1), c.param("justification")),
        *req, "Justification saved.");
  });
  post(s, R"(/req/(\d+)/submit)", [](Ctx& c) {
    auto req = c.hub().Req();
    int32_t orders = 0;
    act(c, req->SubmitReq(c.session(), c.path_int(1), false, orders), *req,
        "Submitted for approval.");
  });
  post(s, R"(/req/(\d+)/cancel)", [](Ctx& c) {
    auto req = c.hub().Req();
    act(c, req->CancelReq(c.session(), c.path_int(1)), *req, "Cancelled.");
  });
  post(s, R"(/req/(\d+)/delete)", [](Ctx& c) {
    auto req = c.hub().Req();
    act(c, req->DeleteReq(c.session(), c.path_int(1)), *req, "Deleted.", "/reqs");
  });
  post(s, R"(/req/(\d+)/copy)", [](Ctx& c) {
    auto req = c.hub().Req();
    Variant new_id, total, copied;
    const bool ok = req->CopyReq(c.session(), c.path_int(1), c.param("name"), new_id, total, copied);
    act(c, ok, *req, "Copied " + text_of(copied) + " of " + text_of(total) + " items.",
        "/req/" + text_of(new_id));
  });
  post(s, R"(/req/(\d+)/template)", [](Ctx& c) {
    auto req = c.hub().Req();
    act(c, req->CreateTemplate(c.session(), c.path_int(1), c.param("name"), 1), *req,
        "Saved as a template.", "/templates");
  });
  post(s, R"(/req/(\d+)/line/(\d+)/qty)", [](Ctx& c) {
    auto req = c.hub().Req();
    act(c, req->UpdateItemQty(c.session(), c.path_int(1), c.path_int(2), c.param("qty")), *req,
        "Quantity changed.");
  });
  post(s, R"(/req/(\d+)/line/(\d+)/delete)", [](Ctx& c) {
    auto req = c.hub().Req();
    act(c, req->DeleteItem(c.session(), c.path_int(1), c.path_int(2)), *req, "Item removed.");
  });
  get(s, "/templates", [](Ctx& c) {
    auto req = c.hub().Req();
    Variant list;
    std::string body;
    if (!req->GetTemplateList(c.session(), 1, c.int_param("page"), list)) {
      return c.render("Templates", "", "", failure_text(*req));
    }
    auto rs = list.as<kxui::Recordset>();
    body += "<p class=\"muted\">Copy a template to start a new requisition from it.</p>";
    if (rs) {
      body += table(*rs, {{"Name", "ReqName", Column::kLink, "/req/", "ReqID"},
                          {"Owner", "OwnerName"},
                          {"Items", "NumberOfItems", Column::kNumber}},
                    "No templates yet: open a requisition and choose \"Save as template\".");
      body += pager(*rs, "/templates?");
    }
    c.render("Templates", body);
  });
}

}  // namespace portal
