// UIWF: Approval workflow: actions, approver chains, work lists, delegation and the workflow map.
#pragma once

#include <memory>

#include "kxui/frame/facade.h"

namespace kxui {

class UIWF : public Facade {
 public:
  explicit UIWF(std::shared_ptr<Runtime> runtime = Runtime::process());

  // True when the last operation that maintains it succeeded.
  bool Success() const noexcept { return success_; }
};

}  // namespace kxui
