// Class registration: makes the façade classes creatable by name ("KxUI03.UIReq", ...)
// in a runtime. The table in registration.cpp is the one list of the classes.
#pragma once

#include <memory>
#include <span>
#include <string_view>

#include "kxui/frame/object.h"
#include "kxui/frame/runtime.h"

namespace kxui::server {

inline constexpr std::string_view kLibraryName = "KxUI03";

struct ServedClass {
  std::string_view name;  // the creatable name, "KxUI03." + the class name
  ObjectPtr (*make)(std::shared_ptr<Runtime> rt);
};

// Every class the module serves.
std::span<const ServedClass> served_classes() noexcept;

// Registers every class in `rt`; the instances it creates use `rt` too.
void register_classes(const std::shared_ptr<Runtime>& rt);
// Removes them again.
void unregister_classes(Runtime& rt);

}  // namespace kxui::server
