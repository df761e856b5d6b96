// The default AppIni ("KxUtility03.AppIni"): settings in INI files, one per application
// (<application>.ini, e.g. Dunmere.ini) in one directory. See services/ini_file.h for
// the file syntax, case rules and which of two duplicate settings wins.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "kxui/frame/services.h"
#include "services/kx_error.h"

namespace kxui::services {

// Error numbers reported through GetError (source "KxUtility03.AppIni"; descriptions
// name the file, section and setting, never the directory).
inline constexpr int32_t kIniFileNotFound = 53;      // no <application>.ini, or no directory
inline constexpr int32_t kIniAccessError = 75;       // the file or directory cannot be read
inline constexpr int32_t kIniSettingNotFound = 5;    // section or name missing, bad app name

class IniAppIni : public AppIni {
 public:
  explicit IniAppIni(std::filesystem::path directory);

  // True when the file, its section and the name exist; GetValue then returns the
  // value. False otherwise, with the reason in GetError; GetValue keeps the text of the
  // last successful read. The application name picks the file: "<app>.ini", matched
  // case-insensitively when no file has that exact name; names with path separators or
  // dot-only names are rejected. Changes to the file are seen by the next read.
  bool ReadValue(const SessionPtr& session, const std::string& name, const std::string& section,
                 const std::string& app_name, Variant& custom_data) override;
  std::string GetValue() override { return value_; }

  // An open record set of (application, section, name, value), all text, one row per
  // effective setting of every *.ini file of the directory (file names in byte order,
  // then file order), positioned on its first row. Nothing, with Success False and the
  // reason in GetError, when the directory or one of the files cannot be read; an empty
  // directory gives an empty record set.
  RecordsetPtr GetSettingsList(const SessionPtr& session, Variant& custom_data) override;

  // Whether the last ReadValue or GetSettingsList succeeded (False before either).
  bool Success() override { return success_; }
  ErrorInfoPtr GetError() override { return error_; }

 private:
  bool fail_with(int32_t number, std::string description);

  std::filesystem::path directory_;
  std::shared_ptr<KxErrorInfo> error_ = std::make_shared<KxErrorInfo>();
  std::string value_;
  bool success_ = false;
};

}  // namespace kxui::services
