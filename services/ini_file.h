// INI files as the settings reader sees them: parsed once, kept in a process-wide cache
// and parsed again when the file changes on disk.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace kxui::services::detail {

// The settings of one file. Syntax, line by line (blanks around everything ignored):
//   [Section]          starts a section; a repeated header continues the same section
//   name = value       a setting; a value wholly in double quotes loses the quotes
//   ; text  or  # text a comment (only as the whole line: ';' inside a value is data)
// Section and setting names compare case-insensitively (ASCII). When a name occurs
// twice in a section, the first occurrence wins: later ones are ignored, also by the
// settings list, so a line appended at the end never silently overrides one above.
// Lines without '=' and settings before the first header (section "") are kept as
// such: the former are ignored, the latter readable under the empty section name.
class IniData {
 public:
  struct Entry {
    std::string section, name, value;  // as spelled at their first occurrence
  };

  static IniData parse(std::string_view text);

  bool has_section(std::string_view section) const;
  // The value, or nullptr when the section or the name is missing.
  const std::string* find(std::string_view section, std::string_view name) const;
  // Every effective setting in file order (duplicates dropped).
  const std::vector<Entry>& entries() const { return entries_; }

 private:
  std::vector<Entry> entries_;
  std::unordered_set<std::string> sections_;        // lower-cased
  std::unordered_map<std::string, size_t> index_;  // lower-cased section '\n' name
};

enum class LoadStatus { kOk, kMissing, kUnreadable };

// The parsed file at `path`, re-read when its size, modification time or identity
// changed since the cached copy was read. A file rewritten with the same size within
// the file system's timestamp resolution may be missed until its next change.
// `data` is set only with kOk.
LoadStatus load_ini(const std::filesystem::path& path, std::shared_ptr<const IniData>& data);

std::string lower_ascii(std::string_view s);

}  // namespace kxui::services::detail
