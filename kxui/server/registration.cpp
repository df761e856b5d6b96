#include "kxui/server/registration.h"

#include <functional>
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
Runtime::Creator creator_of(const std::shared_ptr<Runtime>& rt) {
  // A weak reference: the registry lives in the runtime, which must not own itself.
  std::weak_ptr<Runtime> weak = rt;
  return [weak]() -> ObjectPtr {
    auto runtime = weak.lock();
    if (!runtime) return nullptr;
    return std::make_shared<T>(runtime);
  };
}

}  // namespace

void register_classes(const std::shared_ptr<Runtime>& rt) {
  rt->Register("KxUI03.UIWF", creator_of<UIWF>(rt));
  rt->Register("KxUI03.UIUtility", creator_of<UIUtility>(rt));
  rt->Register("KxUI03.UITools", creator_of<UITools>(rt));
  rt->Register("KxUI03.UIAttach", creator_of<UIAttach>(rt));
  rt->Register("KxUI03.UIRcv", creator_of<UIRcv>(rt));
  rt->Register("KxUI03.UIReq", creator_of<UIReq>(rt));
  rt->Register("KxUI03.UISearch", creator_of<UISearch>(rt));
  rt->Register("KxUI03.UISF", creator_of<UISF>(rt));
  rt->Register("KxUI03.UIReport", creator_of<UIReport>(rt));
  rt->Register("KxUI03.UIPO", creator_of<UIPO>(rt));
  rt->Register("KxUI03.UILang", creator_of<UILang>(rt));
  rt->Register("KxUI03.UICat", creator_of<UICat>(rt));
  rt->Register("KxUI03.UISession", creator_of<UISession>(rt));
  rt->Register("KxUI03.UICom", creator_of<UICom>(rt));
  rt->Register("KxUI03.UILangExt", creator_of<UILangExt>(rt));
  rt->Register("KxUI03.UIReconPO", creator_of<UIReconPO>(rt));
}

void unregister_classes(Runtime& rt) {
  for (std::string_view name : kClassNames) rt.Unregister(name);
}

}  // namespace kxui::server
