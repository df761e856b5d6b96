// The HTML option fragment of the "...List2" operations: one option per row, in the
// list's order, with no separator. Values and texts go in as stored, unescaped: the
// fragment is only safe when the reference data is trusted.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "kxui/frame/recordset.h"
#include "kxui/frame/variant.h"

namespace kxui::detail {

// Pages depend on both forms: VALUE="v"> and VALUE=v>.
enum class OptionForm { kQuoted, kUnquoted };

// Tells whether a key value selects its row.
using KeyMatch = std::function<bool(const Variant& key)>;

struct OptionList {
  OptionForm form;
  std::string_view value_column;
  // The shown text is text_column's value, then "-" and description_column's value when
  // that is given.
  std::string_view text_column;
  std::string_view description_column;
  // A row is selected when any of these columns (an empty name is skipped) matches.
  std::array<std::string_view, 2> key_columns;
};

// Appends one option.
void append_option(std::string& out, OptionForm form, bool selected, std::string_view value,
                   std::string_view text);

// The options of every row of `rs` from its first; "" for an empty list. Columns are
// looked up once, and only when there is a row. Null keys never match; Null values and
// texts add nothing.
std::string build_option_list(Recordset& rs, const OptionList& list, const KeyMatch& matches);

// Keys equal to `selected` by their text form.
KeyMatch text_key(std::string selected);
// Keys equal to `selected` as numbers (numeric text included).
KeyMatch number_key(int32_t selected);

}  // namespace kxui::detail
