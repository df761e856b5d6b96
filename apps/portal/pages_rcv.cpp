// Receiving: the orders awaiting receipt, the receipt form with each message next to its
// field, and the receipts of an order.
#include "apps/portal/portal.h"

namespace portal {

using kxui::RecordsetPtr;
using kxui::Variant;

namespace {

// The message numbers of the receipt form's checks (0x80040000 + message) and the field
// each belongs to.
constexpr int32_t kMessageBase = static_cast<int32_t>(0x80040000u);
constexpr int32_t kCartonMessage = 11612;
constexpr int32_t kLineMessages[] = {11613, 11608, 11609, 11610, 11611};

void receiving_list(Ctx& c) {
  auto rcv = c.hub().Rcv();
  RecordsetPtr rs = rcv->GetReceiveListPage(c.session(), c.param("sort"), c.param("status"),
                                            c.param("number"), "", "", c.int_param("page"));
  if (!rs) return c.render("Receiving", "", "", failure_text(*rcv));
  std::string body = table(*rs, {{"Order", "PONum", Column::kLink, "/receive/", "POID"},
                                 {"Supplier", "SupplierName"},
                                 {"Status", "StatusName", Column::kBadge},
                                 {"Requisitioner", "RequisitionerName"},
                                 {"Created", "UIDisplay_CreateDate"},
                                 {"Receipts", "POID", Column::kView, "/receipts/", "POID"}},
                           "No orders are waiting to be received.");
  c.render("Receiving", body + pager(*rs, "/receiving?"));
}

struct FormState {
  RecordsetPtr header, lines;
  std::string carton_error;
  int32_t error_line = -1;
  std::string line_error;
};

void receipt_form(Ctx& c, FormState& f, const std::string& error = "", int status = 200) {
  const int32_t id = c.path_int(1);
  f.header->MoveFirst();
  std::string body = "<p><a href=\"/po/" + std::to_string(id) + "\">The order</a> · <a href=\"/receipts/" +
                     std::to_string(id) + "\">Earlier receipts</a> · <a href=\"/receive/" +
                     std::to_string(id) + "?all=1\">Fill in everything outstanding</a></p>";
  body += "<form method=\"post\" action=\"/receive/" + std::to_string(id) + "\" class=\"card\">" +
          csrf_field(c.csrf()) + "<input type=\"hidden\" name=\"once\" value=\"" +
          c.portal.store().issue_form_token(c.user.sid) + "\"><p><b>" + esc(field(*f.header, "PONum")) + "</b> · " +
          esc(field(*f.header, "SupplierName")) + " · received on " +
          esc(field(*f.header, "CurrentMonth")) + "/" + esc(field(*f.header, "CurrentDay")) + "/" +
          esc(field(*f.header, "CurrentYear")) + "</p><div class=\"row\"><label for=\"cartons\">"
          "Cartons</label><input id=\"cartons\" name=\"cartons\" size=\"6\" value=\"" +
          esc(field(*f.header, "UIDisplay_CartonCnt")) + "\">";
  if (!f.carton_error.empty()) {
    body += "<span class=\"fielderr\" id=\"cartons-error\">" + esc(f.carton_error) + "</span>";
  }
  body += "</div><table><thead><tr><th>Line</th><th>Item</th><th class=\"num\">Ordered</th>"
          "<th class=\"num\">Received so far</th><th>Received now</th><th>Packing slip</th>"
          "<th>Comments</th></tr></thead><tbody>";
  if (f.lines->RecordCount() > 0) {
    for (f.lines->MoveFirst(); !f.lines->IsEOF(); f.lines->MoveNext()) {
      const std::string line = field(*f.lines, "LineNum");
      body += "<tr><td>" + esc(line) + "</td><td>" + esc(field(*f.lines, "ShortDesc")) +
              "</td><td class=\"num\">" + esc(field(*f.lines, "UIDisplay_OrderQty")) +
              "</td><td class=\"num\">" + esc(field(*f.lines, "UIDisplay_ReceivedToDateQty")) +
              "</td><td><input name=\"rq" + esc(line) + "\" size=\"6\" value=\"" +
              esc(field(*f.lines, "UIDisplay_ReceivedQty")) + "\"></td><td><input name=\"ps" +
              esc(line) + "\" size=\"6\" value=\"" + esc(field(*f.lines, "UIDisplay_PackingSlipQty")) +
              "\"></td><td><input name=\"cm" + esc(line) + "\" size=\"24\" value=\"" +
              esc(field(*f.lines, "Comments")) + "\">";
      if (field_int(*f.lines, "LineNum") == f.error_line) {
        body += "<span class=\"fielderr\" id=\"line-error\">" + esc(f.line_error) + "</span>";
      }
      body += "</td></tr>";
    }
  }
  body += "</tbody></table><div class=\"row\"><button id=\"receive\">Record receipt</button></div></form>";
  c.render("Receive order " + field(*f.header, "PONum"), body, "", error, status);
}

bool load_form(Ctx& c, FormState& f, bool all) {
  auto rcv = c.hub().Rcv();
  f.header = rcv->GetReceiptHdr(c.session(), c.path_int(1));
  if (f.header) f.lines = rcv->GetReceiptItems(c.session(), c.path_int(1), all);
  if (f.header && f.lines) return true;
  c.render("Receive", "<p><a href=\"/receiving\">Back to receiving</a></p>", "", failure_text(*rcv),
           refusal_status(*rcv, 404));
  return false;
}

void submit_receipt(Ctx& c) {
  // Each form records at most one receipt: a second click or a reload sends its token again.
  if (!c.portal.store().consume_form_token(c.user.sid, c.param("once"))) {
    const std::string id = std::to_string(c.path_int(1));
    return c.render("Receive", "<p><a href=\"/receipts/" + id + "\">See the receipts</a> · "
                    "<a href=\"/receive/" + id + "\">Open a new receipt form</a></p>", "",
                    "This receipt form was already sent or has expired; nothing was recorded "
                    "this time.", 409);
  }
  FormState f;
  if (!load_form(c, f, false)) return;
  // The typed texts go into the form's display columns; the library reads them.
  f.header->MoveFirst();
  (*f.header)["UIDisplay_CartonCnt"].SetValue(Variant(c.param("cartons")));
  if (f.lines->RecordCount() > 0) {
    for (f.lines->MoveFirst(); !f.lines->IsEOF(); f.lines->MoveNext()) {
      const std::string line = field(*f.lines, "LineNum");
      (*f.lines)["UIDisplay_ReceivedQty"].SetValue(Variant(c.param(("rq" + line).c_str())));
      (*f.lines)["UIDisplay_PackingSlipQty"].SetValue(Variant(c.param(("ps" + line).c_str())));
      (*f.lines)["Comments"].SetValue(Variant(c.param(("cm" + line).c_str())));
    }
  }
  auto rcv = c.hub().Rcv();
  const int32_t receipt = rcv->SubmitReceipt(c.session(), f.header, f.lines);
  if (receipt > 0) {
    return c.redirect("/receipts/" + std::to_string(c.path_int(1)),
                      "Receipt " + std::to_string(receipt) + " recorded.");
  }
  const int32_t number = rcv->Error()->Number();
  const std::string message = rcv->Error()->Description();
  // The cursor stays on the line whose value was refused.
  const int32_t failed_line = f.lines->IsEOF() || f.lines->IsBOF() ? -1 : field_int(*f.lines, "LineNum");
  if (number == kMessageBase + kCartonMessage) {
    f.carton_error = message;
  } else {
    for (int32_t m : kLineMessages) {
      if (number == kMessageBase + m) {
        f.error_line = failed_line;
        f.line_error = message;
      }
    }
  }
  receipt_form(c, f, failure_text(*rcv), 422);
}

void receipts_page(Ctx& c) {
  auto rcv = c.hub().Rcv();
  const int32_t id = c.path_int(1);
  RecordsetPtr list = rcv->GetReceiptHdrListRs(c.session(), id);
  if (!list) {
    return c.render("Receipts", "", "", failure_text(*rcv), refusal_status(*rcv, 404));
  }
  std::string body = "<p><a href=\"/receive/" + std::to_string(id) + "\">Record another receipt</a>"
                     " · <a href=\"/po/" + std::to_string(id) + "\">The order</a></p>";
  if (list->RecordCount() == 0) body += "<p class=\"empty\">Nothing received yet.</p>";
  std::vector<std::pair<std::string, std::string>> receipts;
  for (list->MoveFirst(); list->RecordCount() > 0 && !list->IsEOF(); list->MoveNext()) {
    receipts.emplace_back(field(*list, "ReceiptID"),
                          "Receipt " + field(*list, "ReceiptID") + " · " +
                              field(*list, "UIDisplay_CartonCnt") + " cartons · by " +
                              field(*list, "ReceivedByName"));
  }
  for (const auto& [receipt, title] : receipts) {
    body += "<h2>" + esc(title) + "</h2>";
    RecordsetPtr lines = rcv->GetReceiptItemListRs(c.session(), std::stoi(receipt));
    body += lines ? table(*lines, {{"Line", "LineNum", Column::kNumber},
                                   {"Item", "ShortDesc"},
                                   {"Ordered", "UIDisplay_OrderQty", Column::kNumber},
                                   {"Received", "UIDisplay_ReceivedQty", Column::kNumber},
                                   {"Packing slip", "UIDisplay_PackingSlipQty", Column::kNumber},
                                   {"Comments", "Comments"}})
                  : "<div class=\"error\">" + esc(failure_text(*rcv)) + "</div>";
  }
  c.render("Receipts", body);
}

}  // namespace

void Portal::mount_receiving(httplib::Server& s) {
  get(s, "/receiving", receiving_list);
  get(s, R"(/receive/(\d+))", [](Ctx& c) {
    FormState f;
    if (load_form(c, f, c.param("all") == "1")) receipt_form(c, f);
  });
  post(s, R"(/receive/(\d+))", submit_receipt);
  get(s, R"(/receipts/(\d+))", receipts_page);
}

}  // namespace portal
