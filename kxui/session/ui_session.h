// UISession: the session hub a page keeps for a user. It holds the user's Session and
// security object, hands out one instance of every other façade, each created on first
// request with the hub's own runtime and kept for the hub's life (so its Error and
// Success persist across the page's calls), and releases the requisition and order
// locks of a session.
//
// Created with the hub: its error object, then "KxUtility03.KxSession" through the
// ClassFactory, then the security object "KxSecurity03.Security" directly by class. A
// failure there is recorded under "UISession::Class_Initialize" and leaves the objects
// not yet created empty. Failures are recorded under "UISession::<member>". There is no
// Success property.
#pragma once

#include <memory>
#include <string_view>

#include "kxui/attach/ui_attach.h"
#include "kxui/business/security_objects.h"
#include "kxui/catalog/ui_cat.h"
#include "kxui/catalog/ui_search.h"
#include "kxui/catalog/ui_sf.h"
#include "kxui/common/ui_com.h"
#include "kxui/frame/byref.h"
#include "kxui/frame/facade.h"
#include "kxui/lang/ui_lang.h"
#include "kxui/po/ui_po.h"
#include "kxui/po/ui_recon_po.h"
#include "kxui/po/ui_tools.h"
#include "kxui/receiving/ui_rcv.h"
#include "kxui/report/ui_report.h"
#include "kxui/requisition/ui_req.h"
#include "kxui/utility/ui_utility.h"
#include "kxui/workflow/ui_wf.h"

namespace kxui {

class UISession : public Facade {
 public:
  explicit UISession(std::shared_ptr<Runtime> runtime = Runtime::process());
  ~UISession() override;

  // The objects created with the hub (Nothing when their creation failed).
  std::shared_ptr<business::SecurityObject> Security() const noexcept { return security_; }
  SessionPtr Session() const noexcept { return session_; }

  // The kept façades: the same instance on every read. Nothing only when one cannot be
  // created (out of memory), recorded under "UISession::<property>"; the next read then
  // tries again.
  std::shared_ptr<UIAttach> Attach() noexcept;
  std::shared_ptr<UICat> Cat() noexcept;
  std::shared_ptr<UICom> Com() noexcept;
  std::shared_ptr<UILang> Lang() noexcept;
  // The security library's login object, "KxSecurity03.Login", created directly by class
  // on the first read and kept. Nothing when it cannot be created (recorded under
  // "UISession::Login"); the next read then tries again.
  std::shared_ptr<business::LoginObject> Login() noexcept;
  std::shared_ptr<UIPO> PO() noexcept;
  std::shared_ptr<UIRcv> Rcv() noexcept;
  std::shared_ptr<UIReconPO> ReconPO() noexcept;
  std::shared_ptr<UIReport> Report() noexcept;
  std::shared_ptr<UIReq> Req() noexcept;
  std::shared_ptr<UISearch> Search() noexcept;
  std::shared_ptr<UISF> SF() noexcept;
  std::shared_ptr<UITools> Tools() noexcept;
  std::shared_ptr<UIUtility> Utility() noexcept;
  std::shared_ptr<UIWF> WF() noexcept;

  // Releases the requisition locks ("KxReq03.Requisition") and then the purchase-order
  // locks ("KxPO03.PurchaseOrder") that p_Session holds; both objects are obtained
  // through the ClassFactory before either is asked. True when both answer True. A False
  // answer records that object's own error and returns False; when the requisition
  // step fails the order locks are not released.
  bool ReleaseReqPOLock(const SessionPtr& p_Session, ByRef<Variant> p_CustomData = {}) noexcept;

 private:
  // The kept instance of a façade, created with the hub's runtime on first request.
  template <class T>
  std::shared_ptr<T> facade_slot(std::shared_ptr<T>& slot, std::string_view source) noexcept {
    return guarded(source, std::shared_ptr<T>(), [&] {
      if (!slot) slot = std::make_shared<T>(runtime_ptr());
      return slot;
    });
  }

  SessionPtr session_;
  std::shared_ptr<business::SecurityObject> security_;
  std::shared_ptr<UIAttach> attach_;
  std::shared_ptr<UICat> cat_;
  std::shared_ptr<UICom> com_;
  std::shared_ptr<UILang> lang_;
  std::shared_ptr<business::LoginObject> login_;
  std::shared_ptr<UIPO> po_;
  std::shared_ptr<UIRcv> rcv_;
  std::shared_ptr<UIReconPO> recon_po_;
  std::shared_ptr<UIReport> report_;
  std::shared_ptr<UIReq> req_;
  std::shared_ptr<UISearch> search_;
  std::shared_ptr<UISF> sf_;
  std::shared_ptr<UITools> tools_;
  std::shared_ptr<UIUtility> utility_;
  std::shared_ptr<UIWF> wf_;
};

}  // namespace kxui
