// UIAttach: Attachments of requisitions, requisition lines, orders and order lines.
#pragma once

#include <memory>

#include "kxui/frame/facade.h"

namespace kxui {

class UIAttach : public Facade {
 public:
  explicit UIAttach(std::shared_ptr<Runtime> runtime = Runtime::process());
};

}  // namespace kxui
