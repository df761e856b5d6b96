// UIReconPO: Reconciliation of purchase orders against a supplier's answer.
#pragma once

#include <memory>

#include "kxui/frame/facade.h"

namespace kxui {

class UIReconPO : public Facade {
 public:
  explicit UIReconPO(std::shared_ptr<Runtime> runtime = Runtime::process());
};

}  // namespace kxui
