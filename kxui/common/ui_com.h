// UICom: Reference data, option lists, login and the user's account.
#pragma once

#include <memory>

#include "kxui/frame/facade.h"

namespace kxui {

class UICom : public Facade {
 public:
  explicit UICom(std::shared_ptr<Runtime> runtime = Runtime::process());
};

}  // namespace kxui
