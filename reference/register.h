// One call that makes every business object of the reference tier creatable by ProgID
// in a runtime, all over one database.
#pragma once

#include <string>
#include <vector>

#include "kxui/frame/runtime.h"
#include "reference/database.h"

namespace kxui::reference {

struct RegisterOptions {
  // Also serve "KxUtility03.AppIni" from the settings table and "KxUtility03.NTLog" /
  // "KxClassFactory.NTLog" into the event_log table, in place of the default services.
  bool table_settings = false;
  bool table_log = false;
};

// Registers (replacing what was there) every ProgID RegisteredProgIDs lists; each
// creation is a new object over `db`. The per-locale resource objects are those of the
// locales table ("KxLang_<lang>_<country>03.Resource").
void Register(Runtime& runtime, const DatabasePtr& db, const RegisterOptions& options = {});

// The business ProgIDs Register makes creatable, the per-locale resources included.
std::vector<std::string> RegisteredProgIDs(Database& db);

}  // namespace kxui::reference
