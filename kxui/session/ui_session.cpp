#include "kxui/session/ui_session.h"

namespace kxui {

UISession::UISession(std::shared_ptr<Runtime> runtime) : Facade("UISession", std::move(runtime)) {}

}  // namespace kxui
