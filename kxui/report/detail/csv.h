// Report files as comma-separated text.
#pragma once

#include <string>
#include <string_view>

#include "kxui/frame/recordset.h"
#include "kxui/frame/variant.h"

namespace kxui::detail {

// One field: Null and Empty give nothing; dates, numbers and Booleans their invariant
// text ("2024-03-05 09:30:00", "12.5", "True"). Text that a spreadsheet would run as a
// formula (starting with "=", "+", "-", "@", a tab or a carriage return) gets a leading
// "'". A field holding a comma, a quote, a carriage return or a line feed is put in
// quotes, with its quotes doubled.
std::string csv_field(const Variant& value);

// The header line of column names, then one line per row from the first; every line
// ends with "\r\n". The record set is left past its last row.
std::string csv_text(Recordset& rs);

// A name safe to offer as a download: letters, digits, "-", "_" and "." kept, every
// other byte "_", then `extension`; "report" when nothing is left.
std::string download_name(std::string_view name, std::string_view extension);

}  // namespace kxui::detail
