#include "kxui/session/ui_session.h"

#include "kxui/business/kx_session.h"
#include "kxui/business/progids.h"
#include "kxui/business/purchase_order.h"
#include "kxui/business/requisition.h"

namespace kxui {

UISession::UISession(std::shared_ptr<Runtime> runtime) : Facade("UISession", std::move(runtime)) {
  try {
    session_ = create<business::KxSession>(progid::KxSession);
    security_ = create_direct<business::SecurityObject>(business::security_class::kSecurity);
  } catch (...) {
    record_current_failure("UISession::Class_Initialize");
  }
}

UISession::~UISession() = default;

std::shared_ptr<UIAttach> UISession::Attach() noexcept {
  return facade_slot(attach_, "UISession::Attach");
}
std::shared_ptr<UICat> UISession::Cat() noexcept { return facade_slot(cat_, "UISession::Cat"); }
std::shared_ptr<UICom> UISession::Com() noexcept { return facade_slot(com_, "UISession::Com"); }
std::shared_ptr<UILang> UISession::Lang() noexcept {
  return facade_slot(lang_, "UISession::Lang");
}

std::shared_ptr<business::LoginObject> UISession::Login() noexcept {
  return guarded("UISession::Login", std::shared_ptr<business::LoginObject>(), [&] {
    if (!login_) login_ = create_direct<business::LoginObject>(business::security_class::kLogin);
    return login_;
  });
}

std::shared_ptr<UIPO> UISession::PO() noexcept { return facade_slot(po_, "UISession::PO"); }
std::shared_ptr<UIRcv> UISession::Rcv() noexcept { return facade_slot(rcv_, "UISession::Rcv"); }
std::shared_ptr<UIReconPO> UISession::ReconPO() noexcept {
  return facade_slot(recon_po_, "UISession::ReconPO");
}
std::shared_ptr<UIReport> UISession::Report() noexcept {
  return facade_slot(report_, "UISession::Report");
}
std::shared_ptr<UIReq> UISession::Req() noexcept { return facade_slot(req_, "UISession::Req"); }
std::shared_ptr<UISearch> UISession::Search() noexcept {
  return facade_slot(search_, "UISession::Search");
}
std::shared_ptr<UISF> UISession::SF() noexcept { return facade_slot(sf_, "UISession::SF"); }
std::shared_ptr<UITools> UISession::Tools() noexcept {
  return facade_slot(tools_, "UISession::Tools");
}
std::shared_ptr<UIUtility> UISession::Utility() noexcept {
  return facade_slot(utility_, "UISession::Utility");
}
std::shared_ptr<UIWF> UISession::WF() noexcept { return facade_slot(wf_, "UISession::WF"); }

// The caller's session is the one whose locks go, as in every business call.
bool UISession::ReleaseReqPOLock(const SessionPtr& p_Session,
                                 ByRef<Variant> p_CustomData) noexcept {
  return guarded("UISession::ReleaseReqPOLock", false, [&] {
    auto req = create<business::Requisition>(progid::Requisition);
    auto po = create<business::PurchaseOrder>(progid::PurchaseOrder);
    check(req, req->ReleaseSessionLocks(p_Session, *p_CustomData));
    check(po, po->ReleaseSessionLocks(p_Session, *p_CustomData));
    return true;
  });
}

}  // namespace kxui
