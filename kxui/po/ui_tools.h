// UITools: Order status and quick price and availability checks.
#pragma once

#include <memory>

#include "kxui/frame/facade.h"

namespace kxui {

class UITools : public Facade {
 public:
  explicit UITools(std::shared_ptr<Runtime> runtime = Runtime::process());
};

}  // namespace kxui
