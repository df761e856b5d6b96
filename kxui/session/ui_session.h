// UISession: The session hub: the Session, and one façade of every kind per user.
#pragma once

#include <memory>

#include "kxui/frame/facade.h"

namespace kxui {

class UISession : public Facade {
 public:
  explicit UISession(std::shared_ptr<Runtime> runtime = Runtime::process());
};

}  // namespace kxui
