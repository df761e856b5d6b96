#include "kxui/common/detail/option_list.h"

#include <optional>
#include <vector>

namespace kxui::detail {

namespace {
// Null joins text as nothing.
std::string text_of(const Variant& v) { return v.is_null() ? std::string() : v.to_string(); }
}  // namespace

void append_option(std::string& out, OptionForm form, bool selected, std::string_view value,
                   std::string_view text) {
  const bool quoted = form == OptionForm::kQuoted;
  out += selected ? "<OPTION Selected VALUE=" : "<OPTION VALUE=";
  if (quoted) out += '"';
  out += value;
  out += quoted ? "\">" : ">";
  out += text;
  out += "</OPTION>";
}

std::string build_option_list(Recordset& rs, const OptionList& list, const KeyMatch& matches) {
  std::string out;
  if (rs.IsBOF() && rs.IsEOF()) return out;
  rs.MoveFirst();
  const Fields& fields = rs.GetFields();
  const int32_t value_col = fields.index_of(list.value_column);
  const int32_t text_col = fields.index_of(list.text_column);
  const int32_t desc_col =
      list.description_column.empty() ? -1 : fields.index_of(list.description_column);
  std::vector<int32_t> key_cols;
  for (std::string_view key : list.key_columns) {
    if (!key.empty()) key_cols.push_back(fields.index_of(key));
  }

  std::string text;
  while (!rs.IsEOF()) {
    bool selected = false;
    for (int32_t col : key_cols) {
      const Variant& key = rs.value(col);
      if (!key.is_null() && matches(key)) selected = true;
    }
    text = text_of(rs.value(text_col));
    if (desc_col >= 0) {
      text += '-';
      text += text_of(rs.value(desc_col));
    }
    append_option(out, list.form, selected, text_of(rs.value(value_col)), text);
    rs.MoveNext();
  }
  return out;
}

KeyMatch text_key(std::string selected) {
  return [selected = std::move(selected)](const Variant& key) {
    return key.try_to_string() == selected;
  };
}

KeyMatch number_key(int32_t selected) {
  return [selected](const Variant& key) {
    const std::optional<double> n = key.try_to_double();
    return n.has_value() && *n == selected;
  };
}

}  // namespace kxui::detail
