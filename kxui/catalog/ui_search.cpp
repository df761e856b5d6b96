#include "kxui/catalog/ui_search.h"

namespace kxui {

UISearch::UISearch(std::shared_ptr<Runtime> runtime) : Facade("UISearch", std::move(runtime)) {}

}  // namespace kxui
