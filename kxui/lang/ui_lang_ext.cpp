#include "kxui/lang/ui_lang_ext.h"

namespace kxui {

UILangExt::UILangExt(std::shared_ptr<Runtime> runtime) : Facade("UILangExt", std::move(runtime)) {}

}  // namespace kxui
