// UICat: Catalog categories and part listing.
#pragma once

#include <memory>

#include "kxui/frame/facade.h"

namespace kxui {

class UICat : public Facade {
 public:
  explicit UICat(std::shared_ptr<Runtime> runtime = Runtime::process());

  // True when the last operation that maintains it succeeded.
  bool Success() const noexcept { return success_; }
};

}  // namespace kxui
