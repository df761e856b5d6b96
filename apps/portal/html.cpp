#include "apps/portal/html.h"

#include "reference/html_text.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

namespace portal {

using kxui::Recordset;
using kxui::Variant;

std::string esc(std::string_view text) { return kxui::reference::escape_html(text); }

std::string text_of(const Variant& v) {
  if (v.is_empty() || v.is_null()) return "";
  try {
    return v.to_string();
  } catch (...) {
    return "";
  }
}

std::string field(const Recordset& rs, std::string_view column) {
  if (rs.IsEOF() || rs.IsBOF()) return "";
  const auto index = rs.GetFields().find(column);
  if (!index) return "";
  return text_of(rs.value(*index));
}

int32_t field_int(const Recordset& rs, std::string_view column) {
  if (rs.IsEOF() || rs.IsBOF()) return 0;
  const auto index = rs.GetFields().find(column);
  if (!index) return 0;
  return rs.value(*index).try_to_int32().value_or(0);
}

std::string url_encode(std::string_view text) {
  std::string out;
  for (unsigned char c : text) {
    if (std::isalnum(c) || c == '-' || c == '_' || c == '.' || c == '~') {
      out += static_cast<char>(c);
    } else {
      char buf[4];
      std::snprintf(buf, sizeof buf, "%%%02X", c);
      out += buf;
    }
  }
  return out;
}

const char* req_status_name(int32_t status) {
  switch (status) {
    case 1: return "Open";
    case 2: return "Submitted";
    case 3: return "Rejected";
    case 4: return "Withdrawn";
    case 5: return "Approved";
    case 7: return "Cancelled";
    default: return "Unknown";
  }
}

bool req_was_submitted(int32_t status) { return status != 1 && status != -1; }

std::string badge(std::string_view status) {
  std::string css;
  for (char c : status) {
    if (std::isalpha(static_cast<unsigned char>(c))) css += static_cast<char>(std::tolower(c));
  }
  return "<span class=\"badge b-" + esc(css) + "\">" + esc(status) + "</span>";
}

std::string table(Recordset& rs, const std::vector<Column>& columns, std::string_view empty) {
  if (rs.RecordCount() == 0) return "<p class=\"empty\">" + esc(empty) + "</p>";
  std::string out = "<table><thead><tr>";
  for (const Column& c : columns) {
    out += c.kind == Column::kNumber ? "<th class=\"num\">" : "<th>";
    out += c.heading_link.empty()
               ? esc(c.heading)
               : "<a class=\"sort\" href=\"" + esc(c.heading_link) + "\">" + esc(c.heading) + "</a>";
    out += c.heading_mark.empty() ? "</th>" : " " + esc(c.heading_mark) + "</th>";
  }
  out += "</tr></thead><tbody>";
  for (rs.MoveFirst(); !rs.IsEOF(); rs.MoveNext()) {
    out += "<tr>";
    for (const Column& c : columns) {
      if (c.shown_if && !c.shown_if(rs)) {
        out += c.kind == Column::kNumber ? "<td class=\"num\"></td>" : "<td></td>";
        continue;
      }
      const std::string value = field(rs, c.source);
      switch (c.kind) {
        case Column::kText: out += "<td>" + esc(value) + "</td>"; break;
        case Column::kNumber: out += "<td class=\"num\">" + esc(value) + "</td>"; break;
        case Column::kBadge: out += "<td>" + badge(value) + "</td>"; break;
        case Column::kReqStatus:
          out += "<td>" + badge(req_status_name(field_int(rs, c.source))) + "</td>";
          break;
        case Column::kView:
          out += "<td><a href=\"" + esc(c.link + url_encode(field(rs, c.link_key))) + "\">View</a></td>";
          break;
        case Column::kLink:
          out += "<td><a href=\"" + esc(c.link + url_encode(field(rs, c.link_key))) + "\">" +
                 esc(value.empty() ? "(unnamed)" : value) + "</a></td>";
          break;
      }
    }
    out += "</tr>";
  }
  return out + "</tbody></table>";
}

namespace {

// Headings of the columns and parameters the reports carry.
constexpr std::pair<std::string_view, std::string_view> kHeadings[] = {
    {"ApprovalLimit", "Approval limit"}, {"BorgID", "Organisation"},
    {"BorgName", "Organisation"},        {"CreateDate", "Created"},
    {"CurrencyCode", "Currency"},        {"DelegateName", "Delegate"},
    {"FromDate", "From"},                {"LineCount", "Lines"},
    {"LineNum", "Line"},                 {"LoginID", "Sign-in name"},
    {"ManagerName", "Manager"},          {"OrderCount", "Orders"},
    {"OrderedQty", "Ordered"},           {"POID", "Order"},
    {"PackingSlipQty", "Packing slip"},  {"ReceiptID", "Receipt"},
    {"ReceiveDate", "Received on"},      {"ReceivedBy", "Received by"},
    {"ReceivedQty", "Received"},         {"ReceivedTotal", "Received total"},
    {"ReqID", "Requisition"},            {"ReqName", "Requisition name"},
    {"SpendingLimit", "Spending limit"}, {"StatusID", "Status"},
    {"SubmitDate", "Submitted"},         {"SupplierName", "Supplier"},
    {"ToDate", "To"},                    {"UserName", "User"}};

bool is_upper(char c) { return c >= 'A' && c <= 'Z'; }
bool is_lower(char c) { return c >= 'a' && c <= 'z'; }

}  // namespace

std::string readable_heading(std::string_view column) {
  constexpr std::string_view kDisplay = "UIDisplay_";
  if (column.substr(0, kDisplay.size()) == kDisplay) column.remove_prefix(kDisplay.size());
  for (const auto& [name, heading] : kHeadings) {
    if (name == column) return std::string(heading);
  }
  // Words at underscores and at each change from lower case to upper case; a word in
  // capitals (an abbreviation such as ID) keeps them, the others are lower case after
  // the first.
  std::vector<std::string> words(1);
  for (size_t i = 0; i < column.size(); ++i) {
    const char c = column[i];
    if (c == '_' || c == ' ') {
      if (!words.back().empty()) words.emplace_back();
      continue;
    }
    const bool starts = is_upper(c) && !words.back().empty() &&
                        (is_lower(words.back().back()) ||
                         (i + 1 < column.size() && is_lower(column[i + 1])));
    if (starts) words.emplace_back();
    words.back() += c;
  }
  std::string out;
  for (std::string& word : words) {
    if (word.empty()) continue;
    const bool abbreviation = word.size() > 1 && std::all_of(word.begin(), word.end(), [](char c) {
                                return is_upper(c) || (c >= '0' && c <= '9');
                              });
    const bool id = word == "id";
    if (id) word = "ID";
    if (!abbreviation && !id) {
      for (char& c : word) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
      if (out.empty()) word[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(word[0])));
    }
    out += (out.empty() ? "" : " ") + word;
  }
  return out.empty() ? std::string(column) : out;
}

std::vector<std::vector<std::string>> csv_rows(std::string_view text) {
  std::vector<std::vector<std::string>> rows;
  std::vector<std::string> row;
  std::string field;
  bool quoted = false, any = false;
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (quoted) {
      if (c != '"') {
        field += c;
      } else if (i + 1 < text.size() && text[i + 1] == '"') {
        field += '"';
        ++i;
      } else {
        quoted = false;
      }
      continue;
    }
    any = true;
    if (c == '"') {
      quoted = true;
    } else if (c == ',') {
      row.push_back(std::move(field));
      field.clear();
    } else if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') {
      continue;
    } else if (c == '\n') {
      row.push_back(std::move(field));
      field.clear();
      rows.push_back(std::move(row));
      row.clear();
      any = false;
    } else {
      field += c;
    }
  }
  if (any || quoted || !row.empty() || !field.empty()) {
    row.push_back(std::move(field));
    rows.push_back(std::move(row));
  }
  return rows;
}

std::string text_table(const std::vector<std::vector<std::string>>& rows, std::string_view empty) {
  if (rows.size() < 2) return "<p class=\"empty\">" + esc(empty) + "</p>";
  std::string out = "<table><thead><tr>";
  for (const std::string& name : rows[0]) out += "<th>" + esc(readable_heading(name)) + "</th>";
  out += "</tr></thead><tbody>";
  for (size_t r = 1; r < rows.size(); ++r) {
    out += "<tr>";
    for (size_t i = 0; i < rows[0].size(); ++i) {
      out += "<td>" + esc(i < rows[r].size() ? rows[r][i] : "") + "</td>";
    }
    out += "</tr>";
  }
  return out + "</tbody></table>";
}

std::string pager(Recordset& rs, std::string_view base) {
  if (rs.RecordCount() == 0) return "";
  rs.MoveFirst();
  const int32_t size = field_int(rs, "UIDisplay_PageSize");
  const int32_t total = field_int(rs, "UIDisplay_TotalRecords");
  const int32_t first = field_int(rs, "UIDisplay_StartRecord");
  const int32_t last = field_int(rs, "UIDisplay_EndRecord");
  if (size <= 0) return "";
  const int32_t pages = (total + size - 1) / size;
  const int32_t current = (first - 1) / size;  // 0-based, as the façades count pages
  auto link = [&](int32_t p, const std::string& label, bool on) {
    if (!on) return "<span class=\"off\">" + esc(label) + "</span>";
    return "<a href=\"" + esc(std::string(base) + "page=" + std::to_string(p)) + "\">" +
           esc(label) + "</a>";
  };
  std::string out = "<nav class=\"pager\">" + link(0, "« First", current > 0) +
                    link(current - 1, "‹ Previous", current > 0);
  out += "<span>Rows " + std::to_string(first) + "–" + std::to_string(last) + " of " +
         std::to_string(total) + " · page " + std::to_string(current + 1) + " of " +
         std::to_string(pages) + "</span>";
  out += link(current + 1, "Next ›", current + 1 < pages) +
         link(pages - 1, "Last »", current + 1 < pages) + "</nav>";
  return out;
}

namespace {

constexpr const char* kStyle = R"css(
*{box-sizing:border-box}body{margin:0;font:15px/1.45 system-ui,sans-serif;color:#1d2733;background:#f3f5f8}
header{background:#1f3a5f;color:#fff;padding:0 24px;display:flex;align-items:center;gap:20px;flex-wrap:wrap}
header .brand{font-weight:700;font-size:18px;padding:12px 0}header nav a{color:#dbe6f3;text-decoration:none;margin-right:14px}
header nav a:hover{color:#fff;text-decoration:underline}header .who{margin-left:auto;display:flex;gap:10px;align-items:center}
header .who button{background:transparent;color:#dbe6f3;border:1px solid #7d93b0;padding:3px 10px}
main{max-width:1180px;margin:22px auto;padding:0 20px}h1{font-size:22px;margin:4px 0 16px}h2{font-size:17px;margin:22px 0 8px}
.card{background:#fff;border:1px solid #dde3ea;border-radius:6px;padding:16px 18px;margin-bottom:16px}
table{width:100%;border-collapse:collapse;background:#fff;border:1px solid #dde3ea}
th,td{text-align:left;padding:7px 10px;border-bottom:1px solid #e8ecf1;vertical-align:top}th{background:#eef2f7;font-weight:600;font-size:13px}
td.num,th.num{text-align:right}tr:hover td{background:#f8fafc}
a{color:#1d5fa8}.badge{display:inline-block;padding:1px 8px;border-radius:10px;font-size:12px;background:#e4e8ee;color:#333}
.b-open,.b-sent{background:#e3effd;color:#134d8c}.b-submitted,.b-pending,.b-acknowledged,.b-partlyreceived{background:#fff3d6;color:#7a5500}
.b-approved,.b-received,.b-closed{background:#dcf5e3;color:#1b6b34}.b-rejected,.b-cancelled{background:#fde2e2;color:#8c1d1d}
.notice{background:#e3f6e8;border:1px solid #9fd6ad;padding:10px 14px;border-radius:6px;margin-bottom:14px}
.error{background:#fde8e8;border:1px solid #e7a3a3;padding:10px 14px;border-radius:6px;margin-bottom:14px;color:#7d1414}
.fielderr{color:#a31515;font-size:13px;margin-left:8px}
form.inline{display:inline}label{display:inline-block;min-width:190px;font-weight:600;font-size:13px}
input,select,textarea{font:inherit;padding:5px 8px;border:1px solid #b9c3cf;border-radius:4px}
button{font:inherit;padding:5px 14px;border-radius:4px;border:1px solid #1f3a5f;background:#1f3a5f;color:#fff;cursor:pointer}
button.secondary{background:#fff;color:#1f3a5f}button.danger{background:#a32020;border-color:#a32020}
.row{margin:6px 0}.grid{display:grid;grid-template-columns:repeat(auto-fit,minmax(260px,1fr));gap:16px}
.pager{margin:10px 0;display:flex;gap:12px;align-items:center}.pager .off{color:#9aa5b1}
.totals td{border:none;padding:2px 10px}.muted{color:#66717d}.empty{color:#66717d;font-style:italic}
.filters a{margin-right:10px}.filters a.on{font-weight:700;text-decoration:none;color:#1d2733}
.login{max-width:380px;margin:70px auto}.actions form{display:inline-block;margin:0 6px 6px 0}
ul.tree{list-style:none;padding-left:16px}table.workflow{border:none;width:auto}table.workflow td{border:none}
table.workflow caption{text-align:left;color:#66717d;padding-bottom:6px}.step{border:1px solid #b9c3cf;border-radius:6px;padding:6px 10px;margin:4px;background:#f8fafc;font-size:13px}
.step.current{border-color:#1f3a5f;background:#e3effd}pre.news{white-space:pre-wrap;font:inherit;margin:0}
)css";

}  // namespace

std::string csrf_field(std::string_view token) {
  return "<input type=\"hidden\" name=\"csrf\" value=\"" + esc(token) + "\">";
}

std::string button_form(std::string_view action, std::string_view label, std::string_view csrf,
                        std::initializer_list<std::pair<std::string, std::string>> hidden,
                        std::string_view css) {
  std::string out = "<form class=\"inline\" method=\"post\" action=\"" + esc(action) + "\">" +
                    csrf_field(csrf);
  for (const auto& h : hidden) {
    out += "<input type=\"hidden\" name=\"" + esc(h.first) + "\" value=\"" + esc(h.second) + "\">";
  }
  out += "<button";
  if (!css.empty()) out += " class=\"" + esc(css) + "\"";
  return out + ">" + esc(label) + "</button></form>";
}

std::string page(const PageParts& p) {
  std::string out = "<!DOCTYPE html><html lang=\"en\"><head><meta charset=\"utf-8\">"
                    "<meta name=\"viewport\" content=\"width=device-width,initial-scale=1\">"
                    "<title>" + esc(p.title) + " · Procurement</title><style>" + kStyle +
                    "</style></head><body><header><span class=\"brand\">Procurement</span>";
  if (!p.user.empty()) {
    out += "<nav><a href=\"/\">Home</a><a href=\"/reqs\">Requisitions</a>"
           "<a href=\"/req/0/add\">New requisition</a><a href=\"/templates\">Templates</a>"
           "<a href=\"/approvals\">Approvals</a><a href=\"/reviews\">Reviews</a>"
           "<a href=\"/pos\">Orders</a><a href=\"/receiving\">Receiving</a>"
           "<a href=\"/reports\">Reports</a><a href=\"/prefs\">Preferences</a></nav>"
           "<div class=\"who\"><span>" + esc(p.user) + "</span>" +
           button_form("/logout", "Sign out", p.csrf) + "</div>";
  }
  out += "</header><main><h1>" + esc(p.title) + "</h1>";
  if (!p.notice.empty()) out += "<div class=\"notice\">" + esc(p.notice) + "</div>";
  if (!p.error.empty()) out += "<div class=\"error\" role=\"alert\">" + esc(p.error) + "</div>";
  return out + p.body + "</main></body></html>";
}

}  // namespace portal
