#include "services/ini_file.h"

#include <sys/stat.h>

#include <cerrno>
#include <fstream>
#include <map>
#include <mutex>
#include <sstream>

#include "kxui/frame/text.h"
#include "kxui/frame/variant.h"

namespace kxui::services::detail {

std::string lower_ascii(std::string_view s) { return text::lower_ascii(s); }

namespace {

std::string key_of(std::string_view section, std::string_view name) {
  std::string key = lower_ascii(section);
  key += '\n';
  key += lower_ascii(name);
  return key;
}

}  // namespace

IniData IniData::parse(std::string_view text) {
  IniData data;
  if (text.substr(0, 3) == "\xEF\xBB\xBF") text.remove_prefix(3);  // UTF-8 mark
  std::string section;
  while (!text.empty()) {
    size_t eol = text.find('\n');
    std::string line = conv::trim(text.substr(0, eol));
    text.remove_prefix(eol == std::string_view::npos ? text.size() : eol + 1);
    if (line.empty() || line[0] == ';' || line[0] == '#') continue;
    if (line[0] == '[') {
      size_t close = line.find(']');
      if (close == std::string::npos) continue;  // not a header: ignored
      section = conv::trim(std::string_view(line).substr(1, close - 1));
      data.sections_.insert(lower_ascii(section));
      continue;
    }
    size_t eq = line.find('=');
    if (eq == std::string::npos) continue;
    std::string name = conv::trim(std::string_view(line).substr(0, eq));
    std::string value = conv::trim(std::string_view(line).substr(eq + 1));
    if (name.empty()) continue;
    if (value.size() >= 2 && value.front() == '"' && value.back() == '"') {
      value = value.substr(1, value.size() - 2);
    }
    data.sections_.insert(lower_ascii(section));
    auto [it, inserted] = data.index_.try_emplace(key_of(section, name), data.entries_.size());
    if (inserted) data.entries_.push_back({section, std::move(name), std::move(value)});
  }
  return data;
}

bool IniData::has_section(std::string_view section) const {
  return sections_.count(lower_ascii(section)) != 0;
}

const std::string* IniData::find(std::string_view section, std::string_view name) const {
  auto it = index_.find(key_of(section, name));
  return it == index_.end() ? nullptr : &entries_[it->second].value;
}

namespace {

struct Stamp {
  dev_t device = 0;
  ino_t inode = 0;
  off_t size = 0;
  int64_t mtime_ns = 0;
  bool operator==(const Stamp&) const = default;
};

struct Cached {
  Stamp stamp;
  std::shared_ptr<const IniData> data;
};

struct Cache {
  std::mutex mutex;
  std::map<std::string, Cached> files;
};

Cache& cache() {
  static auto* c = new Cache;  // never destroyed: threads may outlive main
  return *c;
}

}  // namespace

LoadStatus load_ini(const std::filesystem::path& path, std::shared_ptr<const IniData>& data) {
  struct stat st {};
  if (::stat(path.c_str(), &st) != 0) {
    return errno == ENOENT || errno == ENOTDIR ? LoadStatus::kMissing : LoadStatus::kUnreadable;
  }
  if (!S_ISREG(st.st_mode)) return LoadStatus::kMissing;
  const Stamp stamp{st.st_dev, st.st_ino, st.st_size,
                    int64_t{st.st_mtim.tv_sec} * 1000000000 + st.st_mtim.tv_nsec};
  Cache& c = cache();
  {
    std::lock_guard lock(c.mutex);
    auto it = c.files.find(path.string());
    if (it != c.files.end() && it->second.stamp == stamp) {
      data = it->second.data;
      return LoadStatus::kOk;
    }
  }
  // Read outside the lock; a change racing with the read shows as a new stamp next time.
  std::ifstream in(path, std::ios::binary);
  if (!in) return LoadStatus::kUnreadable;
  std::ostringstream text;
  text << in.rdbuf();
  if (in.bad()) return LoadStatus::kUnreadable;
  auto parsed = std::make_shared<const IniData>(IniData::parse(text.str()));
  std::lock_guard lock(c.mutex);
  c.files[path.string()] = Cached{stamp, parsed};
  data = std::move(parsed);
  return LoadStatus::kOk;
}

}  // namespace kxui::services::detail
