// UILang: Localization: resource objects of the user's locale, strings and placeholders.
#pragma once

#include <memory>

#include "kxui/frame/facade.h"

namespace kxui {

class UILang : public Facade {
 public:
  explicit UILang(std::shared_ptr<Runtime> runtime = Runtime::process());
};

}  // namespace kxui
