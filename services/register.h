// One call that makes the default platform services creatable in a runtime.
#pragma once

#include <filesystem>
#include <string>

#include "kxui/frame/runtime.h"

namespace kxui::services {

struct ServiceOptions {
  // Where the <application>.ini files live.
  std::filesystem::path ini_directory = ".";
  // The name entries carry in the system log (the program name when empty).
  std::string syslog_ident;
};

// Registers (replacing what was there):
//   "KxUtility03.KxError"                 KxErrorInfo, a new one per creation
//   "KxUtility03.AppIni"                  IniAppIni over options.ini_directory, new per creation
//   "KxUtility03.NTLog", "KxClassFactory.NTLog"   SyslogLog, new per creation
//   "KxUtility03.UserGUID"                RandomUserGUID, new per creation
//   "KxLocale03.DateFormatter", "KxLocale03.CurrencyFormatter",
//   "KxLocale03.AddressFormatter"         the ICU locale services; they are stateless,
//                                         so every creation returns one shared instance
// No ClassFactory is registered: façades fall back to one over their own runtime.
void RegisterDefaultServices(Runtime& runtime, const ServiceOptions& options);

}  // namespace kxui::services
