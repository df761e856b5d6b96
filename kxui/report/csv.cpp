#include "kxui/report/detail/csv.h"

namespace kxui::detail {

namespace {

std::string quoted(std::string_view text) {
  if (text.find_first_of(",\"\r\n") == std::string_view::npos) return std::string(text);
  std::string out = "\"";
  for (char c : text) {
    out += c;
    if (c == '"') out += '"';
  }
  return out + "\"";
}

}  // namespace

std::string csv_field(const Variant& value) {
  if (value.is_null() || value.is_empty()) return {};
  std::string text = value.to_string();
  // Only text can be a formula; a negative number stays a number.
  if (value.is_string() && !text.empty() &&
      std::string_view("=+-@\t\r").find(text[0]) != std::string_view::npos) {
    text.insert(0, "'");
  }
  return quoted(text);
}

std::string csv_text(Recordset& rs) {
  const Fields& fields = rs.GetFields();
  const int32_t width = fields.Count();
  std::string out;
  for (int32_t i = 0; i < width; ++i) {
    if (i) out += ',';
    out += quoted(fields.info(i).name);
  }
  out += "\r\n";
  if (rs.RecordCount() == 0) return out;
  for (rs.MoveFirst(); !rs.IsEOF(); rs.MoveNext()) {
    for (int32_t i = 0; i < width; ++i) {
      if (i) out += ',';
      out += csv_field(rs.value(i));
    }
    out += "\r\n";
  }
  return out;
}

std::string download_name(std::string_view name, std::string_view extension) {
  std::string out;
  for (unsigned char c : name) {
    const bool kept = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                      c == '-' || c == '_' || c == '.';
    out += kept ? static_cast<char>(c) : '_';
  }
  if (out.find_first_not_of("._") == std::string::npos) out = "report";
  return out + std::string(extension);
}

}  // namespace kxui::detail
