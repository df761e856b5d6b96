// UIPO: Purchase orders: lists, views and edits.
#pragma once

#include <memory>

#include "kxui/frame/facade.h"

namespace kxui {

class UIPO : public Facade {
 public:
  explicit UIPO(std::shared_ptr<Runtime> runtime = Runtime::process());
};

}  // namespace kxui
