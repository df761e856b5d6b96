// Small text rules shared by the frame, the façades and the default services.
#pragma once

#include <string>
#include <string_view>

namespace kxui::text {

// ASCII letters to lower case; every other byte (UTF-8 sequences included) as it is.
constexpr char ascii_lower(char c) noexcept {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// The one case-insensitive compare of names (ProgIDs, columns, settings, languages):
// ASCII letters only, so that no locale changes what a name matches.
constexpr bool iequals(std::string_view a, std::string_view b) noexcept {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (ascii_lower(a[i]) != ascii_lower(b[i])) return false;
  }
  return true;
}

inline std::string lower_ascii(std::string_view s) {
  std::string out(s);
  for (char& c : out) c = ascii_lower(c);
  return out;
}

// Leading and trailing spaces removed: "blank" means the space character only, so tabs
// and line breaks a user typed are kept.
inline std::string trim_spaces(std::string_view s) {
  const size_t first = s.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return std::string(s.substr(first, s.find_last_not_of(' ') - first + 1));
}

}  // namespace kxui::text
