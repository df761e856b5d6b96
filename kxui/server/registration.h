// Class registration: makes the sixteen façade classes creatable by name
// ("KxUI03.UIReq", ...) in a runtime.
#pragma once

#include <array>
#include <string_view>

#include "kxui/frame/runtime.h"

namespace kxui::server {

inline constexpr std::string_view kLibraryName = "KxUI03";

// Every class the module serves, by its creatable name.
inline constexpr std::array<std::string_view, 16> kClassNames = {
    "KxUI03.UIWF",     "KxUI03.UIUtility", "KxUI03.UITools", "KxUI03.UIAttach",
    "KxUI03.UIRcv",    "KxUI03.UIReq",     "KxUI03.UISearch", "KxUI03.UISF",
    "KxUI03.UIReport", "KxUI03.UIPO",      "KxUI03.UILang",  "KxUI03.UICat",
    "KxUI03.UISession", "KxUI03.UICom",    "KxUI03.UILangExt", "KxUI03.UIReconPO",
};

// Registers every class in `rt`; the instances it creates use `rt` too.
void register_classes(const std::shared_ptr<Runtime>& rt);
// Removes them again.
void unregister_classes(Runtime& rt);

}  // namespace kxui::server
