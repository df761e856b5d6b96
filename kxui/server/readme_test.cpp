// Keeps README.md's table of classes true: for every class the module serves, the
// ProgIDs and default services its sources create (its own header and sources, and those
// of its bases other than Facade) and its number of public operations. Adding a class
// needs only its row; a wrong or missing row fails with the row as it should read.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "kxui/server/registration.h"
#include "services/register.h"

namespace kxui::server {
namespace {

namespace fs = std::filesystem;
const fs::path kRoot = KXUI_SOURCE_DIR;

std::string read_file(const fs::path& p) {
  std::ifstream in(p, std::ios::binary);
  std::stringstream ss;
  ss << in.rdbuf();
  return ss.str();
}

// The text with comments blanked out; string and character literals kept.
std::string strip_comments(const std::string& s) {
  std::string out;
  out.reserve(s.size());
  for (size_t i = 0; i < s.size(); ++i) {
    if (s[i] == '"' || s[i] == '\'') {
      const char q = s[i];
      out += s[i];
      for (++i; i < s.size() && s[i] != q; ++i) {
        if (s[i] == '\\' && i + 1 < s.size()) out += s[i++];
        out += s[i];
      }
      if (i < s.size()) out += s[i];
    } else if (s.compare(i, 2, "//") == 0) {
      while (i < s.size() && s[i] != '\n') ++i;
      out += '\n';
    } else if (s.compare(i, 2, "/*") == 0) {
      const size_t end = s.find("*/", i + 2);
      i = end == std::string::npos ? s.size() : end + 1;
      out += ' ';
    } else {
      out += s[i];
    }
  }
  return out;
}

// The `inline constexpr <type> Name = "text";` constants of a header.
std::map<std::string, std::string> constants(const fs::path& header) {
  std::map<std::string, std::string> result;
  const std::string text = strip_comments(read_file(header));
  const std::regex re(R"re(inline constexpr [^=;]*\b(\w+) = "([^"]+)";)re");
  for (std::sregex_iterator it(text.begin(), text.end(), re), end; it != end; ++it)
    result[(*it)[1]] = (*it)[2];
  return result;
}

struct ClassInfo {
  std::set<std::string> names;  // ProgIDs and service class names created
  int operations = 0;
};

class SourceTree {
 public:
  SourceTree() {
    for (const auto& e : fs::recursive_directory_iterator(kRoot / "kxui")) {
      const std::string rel = fs::relative(e.path(), kRoot).generic_string();
      const std::string ext = e.path().extension().string();
      if (ext != ".h" && ext != ".cpp") continue;
      if (rel.ends_with("_test.cpp") || rel.starts_with("kxui/testing/") ||
          rel.starts_with("kxui/server/") || rel.starts_with("kxui/frame/"))
        continue;
      auto& files = ext == ".h" ? headers_ : sources_;
      files[e.path().stem().string()].push_back(strip_comments(read_file(e.path())));
    }
    progids_ = constants(kRoot / "kxui/business/progids.h");
    services_ = constants(kRoot / "kxui/frame/services.h");
  }

  ClassInfo info(const std::string& cls) const {
    ClassInfo info;
    collect(cls, info);
    return info;
  }

 private:
  void collect(const std::string& cls, ClassInfo& info) const {
    const std::regex def(R"(\bclass\s+)" + cls + R"(\b(\s+final)?\s*(:([^{;]*))?\{)");
    for (const auto& [stem, texts] : headers_) {
      for (const std::string& text : texts) {
        std::smatch m;
        if (!std::regex_search(text, m, def)) continue;
        info.operations += public_operations(text, m.position(0) + m.length(0));
        scan(text, info);
        for (const std::string& src : sources_of(stem)) scan(src, info);
        const std::string bases = m[3];
        const std::regex base(R"((\w+)\s*(,|$))");
        for (std::sregex_iterator it(bases.begin(), bases.end(), base), end; it != end; ++it) {
          if ((*it)[1] != "Facade") collect((*it)[1], info);
        }
        return;
      }
    }
    ADD_FAILURE() << "no definition of class " << cls;
  }

  // Sources named after the header (ui_req.cpp, ui_req_items.cpp), unless a longer
  // header name claims them (ui_lang_ext.cpp is not UILang's).
  std::vector<std::string> sources_of(const std::string& stem) const {
    std::vector<std::string> result;
    auto matches = [](const std::string& file, const std::string& s) {
      return file == s || file.starts_with(s + "_");
    };
    for (const auto& [file, texts] : sources_) {
      if (!matches(file, stem)) continue;
      bool claimed = false;
      for (const auto& h : headers_) {
        if (h.first.size() > stem.size() && matches(file, h.first)) claimed = true;
      }
      if (!claimed) result.insert(result.end(), texts.begin(), texts.end());
    }
    return result;
  }

  // Members declared "noexcept;" in the public sections of the class body from `pos`.
  static int public_operations(const std::string& text, size_t pos) {
    int depth = 1, count = 0;
    bool is_public = false;
    const std::regex access(R"(^\s*(public|protected|private)\s*:)");
    const std::regex op(R"(\)\s*(const\s*)?noexcept\s*;)");
    std::string line;
    for (size_t i = pos; i < text.size() && depth > 0; ++i) {
      const char c = text[i];
      if (c == '{') ++depth;
      if (c == '}') --depth;
      if (c != '\n') {
        line += c;
        continue;
      }
      std::smatch m;
      if (depth == 1 && std::regex_search(line, m, access)) is_public = m[1] == "public";
      if (is_public && depth == 1 && std::regex_search(line, op)) ++count;
      line.clear();
    }
    return count;
  }

  void scan(const std::string& text, ClassInfo& info) const {
    auto each = [&](const char* pattern, auto add) {
      const std::regex re(pattern);
      for (std::sregex_iterator it(text.begin(), text.end(), re), end; it != end; ++it) add(*it);
    };
    each(R"(\bprogid::(\w+))", [&](const std::smatch& m) { info.names.insert(progids_.at(m[1])); });
    each(R"(\bservice_class::(\w+))",
         [&](const std::smatch& m) { info.names.insert(services_.at(m[1])); });
    each(R"re("(Kx\w*03\.\w+)")re", [&](const std::smatch& m) { info.names.insert(m[1]); });
    // The frame's display helpers create the locale services on the caller's behalf.
    const std::pair<const char*, const char*> helpers[] = {
        {R"(\b(date_display|date_text|dates)\s*\()", "kDateFormatter"},
        {R"(\b(money_text|amount_text|money)\s*\()", "kCurrencyFormatter"},
        {R"(\bFormatAddress\s*\()", "kAddressFormatter"},
    };
    for (const auto& [pattern, service] : helpers) {
      if (std::regex_search(text, std::regex(pattern))) info.names.insert(services_.at(service));
    }
  }

  std::map<std::string, std::vector<std::string>> headers_, sources_;
  std::map<std::string, std::string> progids_, services_;
};

struct Row {
  std::set<std::string> business, services;
  int operations = -1;
  std::string line;
};

// Rows "| `UIReq` | 22 | `KxReq03.Requisition`, ... | `KxUtility03.AppIni`, ... |".
// Names with "<" are patterns (composed ProgIDs) the scan cannot see; they are skipped.
std::map<std::string, Row> readme_rows() {
  std::map<std::string, Row> rows;
  std::istringstream in(read_file(kRoot / "README.md"));
  const std::regex row(R"(^\|\s*`(UI\w+)`\s*\|\s*(\d+)\s*\|([^|]*)\|([^|]*)\|\s*$)");
  const std::regex name("`([^`]+)`");
  for (std::string line; std::getline(in, line);) {
    std::smatch m;
    if (!std::regex_match(line, m, row)) continue;
    Row& r = rows[m[1]];
    r.line = line;
    r.operations = std::stoi(m[2]);
    for (auto [cell, set] : {std::pair{m.str(3), &r.business}, std::pair{m.str(4), &r.services}}) {
      for (std::sregex_iterator it(cell.begin(), cell.end(), name), end; it != end; ++it) {
        if ((*it)[1].str().find('<') == std::string::npos) set->insert((*it)[1]);
      }
    }
  }
  return rows;
}

std::string cell(const std::set<std::string>& names) {
  if (names.empty()) return "—";
  std::string out;
  for (const std::string& n : names) out += (out.empty() ? "`" : ", `") + n + "`";
  return out;
}

TEST(Readme, ClassTableMatchesTheSources) {
  const SourceTree tree;
  const std::map<std::string, Row> rows = readme_rows();
  // Whatever the default services register is a service; anything else a business object.
  Runtime defaults;
  services::RegisterDefaultServices(defaults, {});

  std::set<std::string> served;
  for (const ServedClass& c : served_classes()) {
    const std::string cls(c.name.substr(c.name.find('.') + 1));
    served.insert(cls);
    SCOPED_TRACE(cls);
    const ClassInfo info = tree.info(cls);
    Row expected;
    expected.operations = info.operations;
    for (const std::string& n : info.names) {
      (defaults.IsRegistered(n) ? expected.services : expected.business).insert(n);
    }
    const std::string want = "| `" + cls + "` | " + std::to_string(info.operations) + " | " +
                             cell(expected.business) + " | " + cell(expected.services) + " |";
    auto it = rows.find(cls);
    if (it == rows.end()) {
      ADD_FAILURE() << "README.md lacks the row\n" << want;
      continue;
    }
    EXPECT_EQ(it->second.operations, expected.operations) << "README.md should read\n" << want;
    EXPECT_EQ(it->second.business, expected.business) << "README.md should read\n" << want;
    EXPECT_EQ(it->second.services, expected.services) << "README.md should read\n" << want;
  }
  for (const auto& [cls, row] : rows) {
    EXPECT_TRUE(served.count(cls)) << "README.md lists a class the module does not serve: " << cls;
  }
}

}  // namespace
}  // namespace kxui::server
