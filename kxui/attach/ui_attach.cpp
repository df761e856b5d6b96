#include "kxui/attach/ui_attach.h"

namespace kxui {

UIAttach::UIAttach(std::shared_ptr<Runtime> runtime) : Facade("UIAttach", std::move(runtime)) {}

}  // namespace kxui
