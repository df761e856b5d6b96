#include "kxui/workflow/ui_wf.h"

namespace kxui {

UIWF::UIWF(std::shared_ptr<Runtime> runtime) : Facade("UIWF", std::move(runtime)) {}

}  // namespace kxui
