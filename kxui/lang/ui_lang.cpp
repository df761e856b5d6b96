#include "kxui/lang/ui_lang.h"

namespace kxui {

UILang::UILang(std::shared_ptr<Runtime> runtime) : Facade("UILang", std::move(runtime)) {}

}  // namespace kxui
