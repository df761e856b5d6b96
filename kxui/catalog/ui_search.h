// UISearch: Catalog search: part details and views, catalog page size.
#pragma once

#include <memory>

#include "kxui/frame/facade.h"

namespace kxui {

class UISearch : public Facade {
 public:
  explicit UISearch(std::shared_ptr<Runtime> runtime = Runtime::process());
};

}  // namespace kxui
