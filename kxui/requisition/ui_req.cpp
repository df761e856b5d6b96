#include "kxui/requisition/ui_req.h"

namespace kxui {

UIReq::UIReq(std::shared_ptr<Runtime> runtime) : Facade("UIReq", std::move(runtime)) {}

}  // namespace kxui
