#include "kxui/report/ui_report.h"

namespace kxui {

UIReport::UIReport(std::shared_ptr<Runtime> runtime) : Facade("UIReport", std::move(runtime)) {}

}  // namespace kxui
