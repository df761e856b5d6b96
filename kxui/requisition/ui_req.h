// UIReq: Requisitions: the list, header, items and lifecycle of a user's requisitions.
#pragma once

#include <memory>

#include "kxui/frame/facade.h"

namespace kxui {

class UIReq : public Facade {
 public:
  explicit UIReq(std::shared_ptr<Runtime> runtime = Runtime::process());

  // True when the last operation that maintains it succeeded.
  bool Success() const noexcept { return success_; }
};

}  // namespace kxui
