#include "kxui/receiving/ui_rcv.h"

namespace kxui {

UIRcv::UIRcv(std::shared_ptr<Runtime> runtime) : Facade("UIRcv", std::move(runtime)) {}

}  // namespace kxui
