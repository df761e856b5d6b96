#include "kxui/common/ui_com.h"

namespace kxui {

UICom::UICom(std::shared_ptr<Runtime> runtime) : Facade("UICom", std::move(runtime)) {}

}  // namespace kxui
