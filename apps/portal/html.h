// HTML building for the portal's pages. Every text that reaches a page goes through
// esc(); the only unescaped markup is the portal's own and the option fragments the
// library builds from the portal's own reference data (see raw()).
#pragma once

#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "kxui/frame/recordset.h"
#include "kxui/frame/variant.h"

namespace portal {

// `text` with & < > " ' replaced by entities: safe in element content and quoted attributes.
std::string esc(std::string_view text);
// A value as the page shows it: "" for Empty and Null, the invariant text otherwise.
std::string text_of(const kxui::Variant& v);
// The value of `column` in the current row, "" when the set has no such column.
std::string field(const kxui::Recordset& rs, std::string_view column);
// The same as an integer, 0 when absent or not a number.
int32_t field_int(const kxui::Recordset& rs, std::string_view column);
// `text` percent-encoded for a query string value.
std::string url_encode(std::string_view text);

// One column of a rendered record set: its heading and how a cell is made from a row.
struct Column {
  enum Kind { kText, kLink, kBadge, kNumber, kReqStatus, kView };  // kView: a link reading "View"
  Column(std::string heading_text, std::string source_column, Kind k = kText,
         std::string link_prefix = "", std::string link_column = "")
      : heading(std::move(heading_text)), source(std::move(source_column)), kind(k),
        link(std::move(link_prefix)), link_key(std::move(link_column)) {}
  std::string heading;
  std::string source;  // the record set's column
  Kind kind;
  std::string link;    // for kLink: a prefix the row's `link_key` value is appended to
  std::string link_key;
  // When set, a row's cell is left empty unless this holds for the row.
  std::function<bool(const kxui::Recordset&)> shown_if;
  std::string heading_link;  // when set, the heading is a link (a sort control)
  std::string heading_mark;  // shown after the heading, e.g. the current sort direction
};

// The heading people read for a record set column or report parameter: the portal's own
// label for a known name, otherwise the name in words ("UIDisplay_SubmitDate" -> "Submit
// date", "req_id" -> "Req ID"). Not escaped: pass it through esc() like any text.
std::string readable_heading(std::string_view column);

// The rows of a report file (comma-separated, fields with a comma, quote or line break in
// quotes with their quotes doubled, "\r\n" or "\n" line ends); the first is its header.
std::vector<std::vector<std::string>> csv_rows(std::string_view text);

// A table of rows whose first is the header, its headings made readable; `empty` when
// there is no row below the header.
std::string text_table(const std::vector<std::vector<std::string>>& rows,
                       std::string_view empty = "Nothing to show.");

// A table of every row of `rs` (from its first), or `empty` when it has none.
std::string table(kxui::Recordset& rs, const std::vector<Column>& columns,
                  std::string_view empty = "Nothing to show.");

// The display name of a requisition status.
const char* req_status_name(int32_t status);
// Whether a requisition in `status` was ever submitted: an open one never was, and the
// list then carries its creation date where the submit date would be.
bool req_was_submitted(int32_t status);

// A status badge: the class follows the status name so colours stay consistent.
std::string badge(std::string_view status);

// Paging controls from the five paging columns of a list page; `base` is the page's URL
// with its query so far (ending in '?' or '&').
std::string pager(kxui::Recordset& rs, std::string_view base);

// A page: the layout with navigation (when `user` is not empty), the flash/error boxes
// and `body`.
struct PageParts {
  std::string title;
  std::string user;     // signed-in user's display name; empty on the sign-in page
  std::string csrf;     // for the sign-out form
  std::string notice;   // shown in a green box
  std::string error;    // shown in a red box
  std::string body;
};
std::string page(const PageParts& parts);

// The hidden CSRF field every POST form carries.
std::string csrf_field(std::string_view token);
// A POST form holding only a button (and hidden fields), for one-click actions.
std::string button_form(std::string_view action, std::string_view label, std::string_view csrf,
                        std::initializer_list<std::pair<std::string, std::string>> hidden = {},
                        std::string_view css = "");

}  // namespace portal
