#include "services/app_ini.h"

#include <algorithm>
#include <system_error>
#include <vector>

#include "kxui/frame/recordset.h"
#include "services/ini_file.h"

namespace kxui::services {
namespace {

namespace fs = std::filesystem;
constexpr std::string_view kSource = "KxUtility03.AppIni";

bool is_ini(const fs::path& p) { return detail::lower_ascii(p.extension().string()) == ".ini"; }

bool valid_app_name(const std::string& app) {
  return !app.empty() && app.find_first_of("/\\") == std::string::npos &&
         app.find('\0') == std::string::npos &&
         app.find_first_not_of('.') != std::string::npos;
}

// "<app>.ini" in `dir`, or the file whose name matches it ignoring case.
fs::path file_of(const fs::path& dir, const std::string& app) {
  fs::path exact = dir / (app + ".ini");
  std::error_code ec;
  if (fs::exists(exact, ec)) return exact;
  const std::string wanted = detail::lower_ascii(app + ".ini");
  for (const auto& entry : fs::directory_iterator(dir, ec)) {
    if (detail::lower_ascii(entry.path().filename().string()) == wanted) return entry.path();
  }
  return exact;
}

int32_t text_size(const std::vector<std::string>& texts) {
  size_t longest = 255;
  for (const std::string& t : texts) longest = std::max(longest, t.size());
  return static_cast<int32_t>(longest);
}

}  // namespace

IniAppIni::IniAppIni(std::filesystem::path directory) : directory_(std::move(directory)) {}

bool IniAppIni::fail_with(int32_t number, std::string description) {
  error_->Set(number, std::string(kSource), std::move(description));
  success_ = false;
  return false;
}

bool IniAppIni::ReadValue(const SessionPtr&, const std::string& name, const std::string& section,
                          const std::string& app_name, Variant&) {
  if (!valid_app_name(app_name)) {
    return fail_with(kIniSettingNotFound, "Invalid application name '" + app_name + "'");
  }
  const fs::path file = file_of(directory_, app_name);
  const std::string file_name = file.filename().string();
  std::shared_ptr<const detail::IniData> data;
  switch (detail::load_ini(file, data)) {
    case detail::LoadStatus::kMissing:
      return fail_with(kIniFileNotFound, "Settings file " + file_name + " not found");
    case detail::LoadStatus::kUnreadable:
      return fail_with(kIniAccessError, "Settings file " + file_name + " cannot be read");
    case detail::LoadStatus::kOk:
      break;
  }
  if (!data->has_section(section)) {
    return fail_with(kIniSettingNotFound,
                     "Section [" + section + "] not found in " + file_name);
  }
  const std::string* value = data->find(section, name);
  if (!value) {
    return fail_with(kIniSettingNotFound,
                     "Setting '" + name + "' not found in section [" + section + "] of " + file_name);
  }
  value_ = *value;
  success_ = true;
  return true;
}

RecordsetPtr IniAppIni::GetSettingsList(const SessionPtr&, Variant&) {
  std::error_code ec;
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(directory_, ec)) {
    if (is_ini(entry.path()) && entry.is_regular_file(ec)) files.push_back(entry.path());
  }
  if (ec) {
    fail_with(ec == std::errc::no_such_file_or_directory ? kIniFileNotFound : kIniAccessError,
              "Settings directory cannot be listed: " + ec.message());
    return nullptr;
  }
  std::sort(files.begin(), files.end());

  std::vector<std::string> columns[4];
  for (const fs::path& file : files) {
    std::shared_ptr<const detail::IniData> data;
    const detail::LoadStatus status = detail::load_ini(file, data);
    if (status == detail::LoadStatus::kMissing) continue;  // removed while listing
    if (status == detail::LoadStatus::kUnreadable) {
      fail_with(kIniAccessError, "Settings file " + file.filename().string() + " cannot be read");
      return nullptr;
    }
    const std::string app = file.stem().string();
    for (const auto& e : data->entries()) {
      columns[0].push_back(app);
      columns[1].push_back(e.section);
      columns[2].push_back(e.name);
      columns[3].push_back(e.value);
    }
  }

  auto rs = std::make_shared<Recordset>();
  const char* names[4] = {"application", "section", "name", "value"};
  for (int c = 0; c < 4; ++c) rs->GetFields().Append(names[c], adVarWChar, text_size(columns[c]));
  rs->Open();
  for (size_t r = 0; r < columns[0].size(); ++r) {
    rs->AddNew();
    for (int c = 0; c < 4; ++c) rs->set_value(c, Variant(std::move(columns[c][r])));
  }
  rs->Update();
  if (rs->RecordCount() > 0) rs->MoveFirst();
  success_ = true;
  return rs;
}

}  // namespace kxui::services
