// Purchase orders: the list, one order with its lines, log and cost distribution, the
// supplier checks (order status, quick check) and reconciliation; attachments; reports.
#include "apps/portal/portal.h"
#include "reference/errors.h"

namespace portal {

using kxui::RecordsetPtr;
using kxui::Variant;

namespace {

const std::pair<const char*, const char*> kPOFilters[] = {
    {"All", ""}, {"Open", "1,2,3"}, {"Partly received", "4"}, {"Received", "5"}, {"Closed", "6,7"}};

void po_list(Ctx& c) {
  const std::string status = c.param("status"), number = c.param("number");
  std::string body = "<div class=\"card filters\">Show: ";
  for (const auto& [label, list] : kPOFilters) {
    body += "<a class=\"" + std::string(status == list ? "on" : "") + "\" href=\"/pos?status=" +
            url_encode(list) + "\">" + esc(label) + "</a>";
  }
  body += "<form class=\"inline\" method=\"get\" action=\"/pos\"> · <label for=\"number\" "
          "style=\"min-width:0\">Order no.</label> <input id=\"number\" name=\"number\" size=\"12\" "
          "value=\"" + esc(number) + "\"> <button class=\"secondary\">Find</button></form></div>";
  auto po = c.hub().PO();
  RecordsetPtr rs = po->GetPOListPage(c.session(), c.param("sort"), status, number, "", "",
                                      c.int_param("page"));
  if (!rs) return c.render("Purchase orders", body, "", failure_text(*po));
  body += table(*rs, {{"Order", "PONum", Column::kLink, "/po/", "POID"},
                      {"Name", "POName"},
                      {"Supplier", "SupplierName"},
                      {"Status", "StatusName", Column::kBadge},
                      {"Created", "UIDisplay_CreateDate"},
                      {"Total", "UIDisplay_TotalAmtDue", Column::kNumber}},
                "No purchase orders yet.");
  body += pager(*rs, "/pos?status=" + url_encode(status) + "&number=" + url_encode(number) + "&");
  c.render("Purchase orders", body);
}

}  // namespace

// The files of an owner (1 requisition, 3 order) with download, delete and upload.
std::string attachments_block(Ctx& c, int32_t option, int32_t id) {
  auto attach = c.hub().Attach();
  const std::string base = "/attach/" + std::to_string(option) + "/" + std::to_string(id);
  std::string out = "<h2>Attachments</h2>";
  RecordsetPtr files = attach->GetAttachmentListRs(c.session(), option, id, 0);
  if (!files) return out + "<div class=\"error\">" + esc(failure_text(*attach)) + "</div>";
  if (files->RecordCount() == 0) out += "<p class=\"empty\">No files attached.</p>";
  else {
    out += "<table><thead><tr><th>File</th><th class=\"num\">Size</th><th>Attached</th><th></th>"
           "</tr></thead><tbody>";
    for (files->MoveFirst(); !files->IsEOF(); files->MoveNext()) {
      const std::string file_id = field(*files, "AttachmentID");
      out += "<tr><td><a href=\"" + base + "/" + esc(file_id) + "\">" +
             esc(field(*files, "FileName")) + "</a></td><td class=\"num\">" +
             esc(field(*files, "UIDisplay_FileSize")) + "</td><td>" +
             esc(field(*files, "UIDisplay_DateAttached")) + "</td><td>" +
             button_form(base + "/" + file_id + "/delete", "Remove", c.csrf(), {}, "secondary") +
             "</td></tr>";
    }
    out += "</tbody></table>";
  }
  return out + "<form method=\"post\" enctype=\"multipart/form-data\" action=\"" + base +
         "\" class=\"card\">" + csrf_field(c.csrf()) +
         "<input type=\"file\" name=\"file\"> <button class=\"secondary\">Attach</button></form>";
}

namespace {

void po_page(Ctx& c, const std::string& error = "", int status = 200) {
  const int32_t id = c.path_int(1);
  const auto s = c.session();
  auto po = c.hub().PO();
  Variant number, borg, supplier, receive_status;
  if (!po->GetPOHeaderInfo(s, id, number, borg, supplier, receive_status)) {
    return c.render("Purchase order", "<p><a href=\"/pos\">Back to the list</a></p>", "",
                    failure_text(*po), refusal_status(*po, 404));
  }
  const std::string base = "/po/" + std::to_string(id);
  Variant name, submitter, created, cost, justification, currency;
  RecordsetPtr log = po->GetLogPurchaseOrder(s, id, name, submitter, created, cost, justification,
                                             currency);
  std::string body = "<div class=\"card\"><p><b>" + esc(text_of(number)) + "</b> · " +
                     esc(text_of(supplier)) + " · " + badge(text_of(receive_status)) + "</p>";
  if (log) {
    body += "<p>Created " + esc(text_of(created)) + " by " + esc(text_of(submitter)) +
            " · total <b id=\"pototal\">" + esc(text_of(cost)) + "</b></p>";
  }
  body += "</div><div class=\"card actions\">" +
          button_form(base + "/status", "Ask the supplier for the order status", c.csrf()) +
          button_form(base + "/quickcheck", "Quick check prices and stock", c.csrf(), {}, "secondary") +
          "<a href=\"" + base + "/reconcile\">Reconcile</a> · <a href=\"/receive/" +
          std::to_string(id) + "\">Receive</a> · <a href=\"/receipts/" + std::to_string(id) +
          "\">Receipts</a></div>";
  RecordsetPtr items = po->GetItemsRs(s, id);
  body += "<h2>Lines</h2>";
  body += items ? table(*items, {{"Line", "LineNum", Column::kNumber},
                                 {"Item", "ShortDesc"},
                                 {"Quantity", "UIDisplay_OrderQty", Column::kNumber},
                                 {"Unit price", "UIDisplay_UnitPrice", Column::kNumber},
                                 {"Tax", "UIDisplay_SalesTaxAmt", Column::kNumber},
                                 {"Amount", "UIDisplay_ActualPrice", Column::kNumber},
                                 {"Deliver by", "UIDisplay_DeliverByDate"},
                                 {"Cost split", "LineNum", Column::kView, base + "/costs?line=", "LineNum"}})
                : "<div class=\"error\">" + esc(failure_text(*po)) + "</div>";
  body += attachments_block(c, 3, id);
  body += "<h2>History</h2>";
  body += log ? table(*log, {{"When", "UIDisplay_DateLogged"}, {"Who", "UserName"},
                             {"What", "LogType"}, {"Details", "Description"}})
              : "<div class=\"error\">" + esc(failure_text(*po)) + "</div>";
  c.render("Purchase order " + text_of(number), body, "", error, status);
}

void costs_page(Ctx& c, const std::string& error = "", int status = 200) {
  const int32_t id = c.path_int(1), line = c.int_param("line", 1);
  auto po = c.hub().PO();
  const std::string base = "/po/" + std::to_string(id);
  std::string body = "<p><a href=\"" + base + "\">Back to the order</a></p>";
  RecordsetPtr split = po->GetListCostDistribs(c.session(), id, line);
  body += "<h2>Line " + std::to_string(line) + "</h2>";
  body += split ? table(*split, {{"Cost centre", "CostCenterCode"}, {"Name", "CostCenterName"},
                                 {"Share %", "Percentage", Column::kNumber}},
                        "Not split: the whole line goes to the order's cost centre.")
                : "<div class=\"error\">" + esc(failure_text(*po)) + "</div>";
  RecordsetPtr centres = po->GetListCostCenter(c.session(), id);
  if (centres && centres->RecordCount() > 0) {
    body += "<form method=\"post\" action=\"" + base + "/costs?line=" + std::to_string(line) +
            "\" class=\"card\">" + csrf_field(c.csrf()) + "<p>Shares in percent; they must add up "
            "to 100.</p>";
    for (centres->MoveFirst(); !centres->IsEOF(); centres->MoveNext()) {
      body += "<div class=\"row\"><label>" + esc(field(*centres, "Code")) + " " +
              esc(field(*centres, "Description")) + "</label><input name=\"cc" +
              esc(field(*centres, "CostCenterID")) + "\" size=\"6\"></div>";
    }
    body += "<button>Save split</button></form>";
  }
  c.render("Cost distribution", body, "", error, status);
}

void reconcile_page(Ctx& c, const std::string& error = "", int status = 200) {
  const int32_t id = c.path_int(1);
  auto recon = c.hub().ReconPO();
  const std::string base = "/po/" + std::to_string(id);
  std::string body = "<p><a href=\"" + base + "\">Back to the order</a></p>";
  RecordsetPtr header = recon->GetRecPOHeader(c.session(), id);
  if (!header) {
    return c.render("Reconcile", body, "", failure_text(*recon), refusal_status(*recon, 422));
  }
  header->MoveFirst();
  body += "<div class=\"card\"><p>" + esc(field(*header, "PONum")) + " · " +
          esc(field(*header, "Supplier")) + "</p><p>Subtotal " + esc(field(*header, "SubTotal")) +
          " · tax " + esc(field(*header, "TotalTaxAmt")) + " · total <b>" +
          esc(field(*header, "TotalAmtDue")) + "</b></p></div>";
  RecordsetPtr items = recon->GetItemsRs(c.session(), id);
  body += items ? table(*items, {{"Line", "LineNum", Column::kNumber},
                                 {"Item", "ShortDesc"},
                                 {"Ordered", "UIDisplay_OrderQty", Column::kNumber},
                                 {"Back order", "UIDisplay_BackOrderQty", Column::kNumber},
                                 {"In stock", "UIDisplay_InStockQty", Column::kNumber},
                                 {"Unit price", "UIDisplay_UnitPrice", Column::kNumber},
                                 {"Actual", "UIDisplay_ActualPrice", Column::kNumber}})
                : "<div class=\"error\">" + esc(failure_text(*recon)) + "</div>";
  body += "<div class=\"actions\">" + button_form(base + "/reconcile", "Send the reconciled order", c.csrf()) +
          "</div>";
  c.render("Reconcile order", body, "", error, status);
}

}  // namespace

void Portal::mount_orders(httplib::Server& s) {
  get(s, "/pos", po_list);
  get(s, R"(/po/(\d+))", [](Ctx& c) { po_page(c); });
  post(s, R"(/po/(\d+)/status)", [](Ctx& c) {
    auto tools = c.hub().Tools();
    int32_t id = c.path_int(1);
    if (tools->OrderStatus(c.session(), id)) {
      return c.redirect("/po/" + std::to_string(id), "The order status was updated.");
    }
    po_page(c, failure_text(*tools), 422);
  });
  post(s, R"(/po/(\d+)/quickcheck)", [](Ctx& c) {
    auto tools = c.hub().Tools();
    std::string type = "PO";
    int32_t id = c.path_int(1);
    if (tools->QuickCheck(c.session(), type, id)) {
      return c.redirect("/po/" + std::to_string(id) + "/reconcile", "Prices and stock checked.");
    }
    po_page(c, tools->Error() && tools->Error()->Number() != 0
                   ? failure_text(*tools)
                   : "The supplier did not answer the quick check.",
            422);
  });
  get(s, R"(/po/(\d+)/costs)", [](Ctx& c) { costs_page(c); });
  post(s, R"(/po/(\d+)/costs)", [](Ctx& c) {
    auto po = c.hub().PO();
    const int32_t id = c.path_int(1), line = c.int_param("line", 1);
    std::string ids, shares;
    for (const auto& [key, value] : c.req.params) {
      if (key.rfind("cc", 0) != 0 || value.empty()) continue;
      ids += (ids.empty() ? "" : ";") + key.substr(2);
      shares += (shares.empty() ? "" : ";") + value;
    }
    if (po->SaveCostDistribs(c.session(), id, line, ids, shares, ";")) {
      return c.redirect("/po/" + std::to_string(id) + "/costs?line=" + std::to_string(line),
                        "Split saved.");
    }
    costs_page(c, failure_text(*po), 422);
  });
  get(s, R"(/po/(\d+)/reconcile)", [](Ctx& c) { reconcile_page(c); });
  post(s, R"(/po/(\d+)/reconcile)", [](Ctx& c) {
    auto recon = c.hub().ReconPO();
    const int32_t id = c.path_int(1);
    if (recon->SubmitRecPO(c.session(), id)) {
      return c.redirect("/po/" + std::to_string(id), "The reconciled order was sent.");
    }
    reconcile_page(c, failure_text(*recon), 422);
  });

  get(s, R"(/attach/([13])/(\d+)/(\d+))", [](Ctx& c) {
    auto attach = c.hub().Attach();
    Variant name, content;
    if (!attach->GetAttachment(c.session(), c.path_int(1), c.path_int(2), 0, c.path_int(3), name,
                               content)) {
      return c.render("Attachment", "", "", failure_text(*attach), refusal_status(*attach, 404));
    }
    // Always a download: a stored file never renders as a page of this site.
    std::string file = text_of(name);
    for (char& ch : file) {
      if (ch == '"' || ch == '\\' || static_cast<unsigned char>(ch) < 0x20) ch = '_';
    }
    c.res.set_header("Content-Disposition", "attachment; filename=\"" + file + "\"");
    c.res.set_content(text_of(content), "application/octet-stream");
  });
  post(s, R"(/attach/([13])/(\d+))", [](Ctx& c) {
    auto attach = c.hub().Attach();
    const int32_t option = c.path_int(1), id = c.path_int(2);
    const std::string back = option == 1 ? "/req/" + std::to_string(id) : "/po/" + std::to_string(id);
    if (!c.req.has_file("file")) return c.redirect(back, "Choose a file first.");
    const httplib::MultipartFormData file = c.req.get_file_value("file");
    Variant new_id;
    if (attach->AddAttachment(c.session(), option, id, 0, file.filename, file.content, new_id)) {
      return c.redirect(back, "File attached.");
    }
    c.render("Attachment", "<p><a href=\"" + back + "\">Back</a></p>", "", failure_text(*attach),
             refusal_status(*attach, 422));
  });
  post(s, R"(/attach/([13])/(\d+)/(\d+)/delete)", [](Ctx& c) {
    auto attach = c.hub().Attach();
    const int32_t option = c.path_int(1), id = c.path_int(2);
    const std::string back = option == 1 ? "/req/" + std::to_string(id) : "/po/" + std::to_string(id);
    if (attach->DeleteAttachment(c.session(), option, id, 0, c.path_int(3))) {
      return c.redirect(back, "File removed.");
    }
    c.render("Attachment", "<p><a href=\"" + back + "\">Back</a></p>", "", failure_text(*attach),
             refusal_status(*attach, 422));
  });

  get(s, "/reports", [](Ctx& c) {
    auto report = c.hub().Report();
    RecordsetPtr list = report->GetReportListPage(c.session(), c.int_param("page"));
    if (!list) return c.render("Reports", "", "", failure_text(*report));
    std::string body;
    if (list->RecordCount() == 0) body = "<p class=\"empty\">No reports.</p>";
    for (list->MoveFirst(); list->RecordCount() > 0 && !list->IsEOF(); list->MoveNext()) {
      const std::string id = field(*list, "ReportID");
      body += "<form class=\"card\" method=\"get\" action=\"/report/" + esc(id) + "\"><h2>" +
              esc(field(*list, "ReportName")) + "</h2>";
      RecordsetPtr params = report->GetReportParamsRs(c.session(), std::stoi(id));
      if (params && params->RecordCount() > 0) {
        for (params->MoveFirst(); !params->IsEOF(); params->MoveNext()) {
          const std::string p = field(*params, "ParamName");
          const std::string box = "r" + id + "-" + p;
          body += "<div class=\"row\"><label for=\"" + esc(box) + "\">" +
                  esc(readable_heading(p)) + "</label><input id=\"" + esc(box) + "\" name=\"p_" +
                  esc(p) + "\" value=\"" + esc(field(*params, "DefaultValue")) + "\"></div>";
        }
      }
      body += "<button name=\"show\" value=\"1\">Show</button> "
              "<button class=\"secondary\">Download CSV</button></form>";
    }
    c.render("Reports", body + pager(*list, "/reports?"));
  });
  get(s, R"(/report/(\d+))", [](Ctx& c) {
    auto report = c.hub().Report();
    const int32_t id = c.path_int(1);
    RecordsetPtr params = report->GetReportParamsRs(c.session(), id);
    if (!params) return c.render("Report", "", "", failure_text(*report), 404);
    std::vector<Variant> values;
    for (params->MoveFirst(); params->RecordCount() > 0 && !params->IsEOF(); params->MoveNext()) {
      values.emplace_back(c.param(("p_" + field(*params, "ParamName")).c_str()));
    }
    Variant name, file;
    const Variant args = values.empty() ? Variant() : Variant(kxui::Array::of(values));
    if (!report->GenerateReport(c.session(), id, args, "CSV", name, file)) {
      return c.render("Report", "<p><a href=\"/reports\">Back to the reports</a></p>", "",
                      failure_text(*report), 422);
    }
    if (c.param("show") == "1") {
      // The same file as a page: the link below downloads what the table shows.
      std::string download = "/report/" + std::to_string(id) + "?";
      for (const auto& [key, value] : c.req.params) {
        if (key != "show") download += url_encode(key) + "=" + url_encode(value) + "&";
      }
      download.pop_back();
      return c.render("Report",
                      "<p><a href=\"/reports\">Back to the reports</a> · <a href=\"" +
                          esc(download) + "\">Download CSV</a></p>" +
                          text_table(csv_rows(text_of(file)), "The report has no rows."));
    }
    std::string file_name = text_of(name);
    for (char& ch : file_name) {
      if (ch == '"' || ch == '\\' || static_cast<unsigned char>(ch) < 0x20) ch = '_';
    }
    c.res.set_header("Content-Disposition", "attachment; filename=\"" + file_name + "\"");
    c.res.set_content(text_of(file), "text/csv; charset=utf-8");
  });
}

}  // namespace portal
