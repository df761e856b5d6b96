// UIReport: Report pick lists, parameters and report files.
#pragma once

#include <memory>

#include "kxui/frame/facade.h"

namespace kxui {

class UIReport : public Facade {
 public:
  explicit UIReport(std::shared_ptr<Runtime> runtime = Runtime::process());
};

}  // namespace kxui
