// UIRcv: Receiving: order items, receipts, the receiving list and receipt submission.
#pragma once

#include <memory>

#include "kxui/frame/facade.h"

namespace kxui {

class UIRcv : public Facade {
 public:
  explicit UIRcv(std::shared_ptr<Runtime> runtime = Runtime::process());
};

}  // namespace kxui
