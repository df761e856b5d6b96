#include "kxui/po/ui_tools.h"

namespace kxui {

UITools::UITools(std::shared_ptr<Runtime> runtime) : Facade("UITools", std::move(runtime)) {}

}  // namespace kxui
