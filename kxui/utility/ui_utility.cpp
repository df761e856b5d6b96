#include "kxui/utility/ui_utility.h"

namespace kxui {

UIUtility::UIUtility(std::shared_ptr<Runtime> runtime) : Facade("UIUtility", std::move(runtime)) {}

}  // namespace kxui
