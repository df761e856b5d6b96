#include "kxui/catalog/ui_cat.h"

namespace kxui {

UICat::UICat(std::shared_ptr<Runtime> runtime) : Facade("UICat", std::move(runtime)) {}

}  // namespace kxui
