#include "kxui/po/ui_po.h"

namespace kxui {

UIPO::UIPO(std::shared_ptr<Runtime> runtime) : Facade("UIPO", std::move(runtime)) {}

}  // namespace kxui
