#include "kxui/po/ui_recon_po.h"

namespace kxui {

UIReconPO::UIReconPO(std::shared_ptr<Runtime> runtime) : Facade("UIReconPO", std::move(runtime)) {}

}  // namespace kxui
