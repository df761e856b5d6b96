// UISF: Smart forms: extra fields of requisition and order lines.
#pragma once

#include <memory>

#include "kxui/frame/facade.h"

namespace kxui {

class UISF : public Facade {
 public:
  explicit UISF(std::shared_ptr<Runtime> runtime = Runtime::process());
};

}  // namespace kxui
