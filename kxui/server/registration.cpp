#include "kxui/server/registration.h"

#include <memory>

#include "kxui/attach/ui_attach.h"
#include "kxui/catalog/ui_cat.h"
#include "kxui/catalog/ui_search.h"
#include "kxui/catalog/ui_sf.h"
#include "kxui/common/ui_com.h"
#include "kxui/lang/ui_lang.h"
#include "kxui/lang/ui_lang_ext.h"
#include "kxui/po/ui_po.h"
#include "kxui/po/ui_recon_po.h"
#include "kxui/po/ui_tools.h"
#include "kxui/receiving/ui_rcv.h"
#include "kxui/report/ui_report.h"
#include "kxui/requisition/ui_req.h"
#include "kxui/session/ui_session.h"
#include "kxui/utility/ui_utility.h"
#include "kxui/workflow/ui_wf.h"

namespace kxui::server {

namespace {

template <class T>
ObjectPtr make(std::shared_ptr<Runtime> rt) {
  return std::make_shared<T>(std::move(rt));
}

// A new class: its header above and one line here.
constexpr ServedClass kClasses[] = {
    {"KxUI03.UIWF", &make<UIWF>},
    {"KxUI03.UIUtility", &make<UIUtility>},
    {"KxUI03.UITools", &make<UITools>},
    {"KxUI03.UIAttach", &make<UIAttach>},
    {"KxUI03.UIRcv", &make<UIRcv>},
    {"KxUI03.UIReq", &make<UIReq>},
    {"KxUI03.UISearch", &make<UISearch>},
    {"KxUI03.UISF", &make<UISF>},
    {"KxUI03.UIReport", &make<UIReport>},
    {"KxUI03.UIPO", &make<UIPO>},
    {"KxUI03.UILang", &make<UILang>},
    {"KxUI03.UICat", &make<UICat>},
    {"KxUI03.UISession", &make<UISession>},
    {"KxUI03.UICom", &make<UICom>},
    {"KxUI03.UILangExt", &make<UILangExt>},
    {"KxUI03.UIReconPO", &make<UIReconPO>},
};

}  // namespace

std::span<const ServedClass> served_classes() noexcept { return kClasses; }

void register_classes(const std::shared_ptr<Runtime>& rt) {
  // A weak reference: the registry lives in the runtime, which must not own itself.
  std::weak_ptr<Runtime> weak = rt;
  for (const ServedClass& c : kClasses) {
    rt->Register(c.name, [weak, make = c.make]() -> ObjectPtr {
      auto runtime = weak.lock();
      return runtime ? make(std::move(runtime)) : nullptr;
    });
  }
}

void unregister_classes(Runtime& rt) {
  for (const ServedClass& c : kClasses) rt.Unregister(c.name);
}

}  // namespace kxui::server
