// UILangExt: Localization for resource families whose ProgID prefix the caller supplies.
#pragma once

#include <memory>

#include "kxui/frame/facade.h"

namespace kxui {

class UILangExt : public Facade {
 public:
  explicit UILangExt(std::shared_ptr<Runtime> runtime = Runtime::process());
};

}  // namespace kxui
