#include "kxui/workflow/ui_wf.h"

#include "kxui/business/progids.h"
#include "kxui/business/workflow.h"

namespace kxui {

namespace {
constexpr const char* kMapErrorText = "Error in creating workflow map";
}  // namespace

UIWF::UIWF(std::shared_ptr<Runtime> runtime) : Facade("UIWF", std::move(runtime)) {}

bool UIWF::BuildDataStructure(const SessionPtr& p_Session, int32_t plngReqID,
                              const std::string& mode, int16_t SeqNum, ByRef<Variant> HTML_Result,
                              const std::string& psFontFace, ByRef<Variant> p_CustomData) noexcept {
  const bool built = guarded(
      "Workflow::BuildDataStructure", false,
      [&] {
        auto diagram = create<business::Diagram>(progid::Diagram);
        check(*diagram, diagram->BuildDataStructure(p_Session, plngReqID, mode, SeqNum,
                                                    *HTML_Result, psFontFace, *p_CustomData));
        return true;
      },
      Track::kSuccess);
  if (!built) {
    // Pages write HTML_Result unconditionally, so a failed map must not leave half a
    // fragment behind.
    try {
      *HTML_Result = Variant(kMapErrorText);
    } catch (...) {
      // Out of memory for a short text: the False result still tells the page.
    }
  }
  return built;
}

}  // namespace kxui
