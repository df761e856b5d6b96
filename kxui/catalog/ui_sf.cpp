#include "kxui/catalog/ui_sf.h"

namespace kxui {

UISF::UISF(std::shared_ptr<Runtime> runtime) : Facade("UISF", std::move(runtime)) {}

}  // namespace kxui
