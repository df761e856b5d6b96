// UIUtility: Configuration values, GUIDs and the settings list.
#pragma once

#include <memory>

#include "kxui/frame/facade.h"

namespace kxui {

class UIUtility : public Facade {
 public:
  explicit UIUtility(std::shared_ptr<Runtime> runtime = Runtime::process());

  // True when the last operation that maintains it succeeded.
  bool Success() const noexcept { return success_; }
};

}  // namespace kxui
