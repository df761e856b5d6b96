// UIReq: locking, submitting, copying, cancelling and deleting requisitions, and
// templates. The locks themselves live in the business tier; nothing is kept here.
#include "kxui/requisition/ui_req.h"

#include "kxui/business/progids.h"
#include "kxui/business/requisition.h"
#include "kxui/business/templates.h"
#include "kxui/frame/display.h"
#include "kxui/frame/paging.h"
#include "kxui/frame/settings.h"

namespace kxui {

namespace {

// The business tier's copy mode used for both plain copies and templates.
constexpr int32_t kCopyFlag = 0;

}  // namespace

bool UIReq::ReqLock(const SessionPtr& p_Session, int32_t p_ReqID,
                    ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReq::ReqLock", false, [&] {
    auto req = create<business::Requisition>(progid::Requisition);
    req->LockRequisition(p_Session, p_ReqID, *p_CustomData);
    check(*req, req->Success());
    return true;
  });
}

bool UIReq::IsValidLock(const SessionPtr& p_Session, int32_t p_ReqID,
                        ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReq::IsValidLock", false, [&] {
    auto req = create<business::Requisition>(progid::Requisition);
    req->IsLockValid(p_Session, p_ReqID, *p_CustomData);
    check(*req, req->Success());
    return true;
  });
}

bool UIReq::ReleaseLock(const SessionPtr& p_Session, ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReq::ReleaseLock", false, [&] {
    auto req = create<business::Requisition>(progid::Requisition);
    check(*req, req->ReleaseLocks(p_Session, *p_CustomData));
    return true;
  });
}

bool UIReq::SubmitReq(const SessionPtr& p_Session, int32_t p_ReqID, bool p_WorkFlowFlag,
                      ByRef<int32_t> p_NumberofPOs, ByRef<Variant> p_CustomData) noexcept {
  // The source names the business class; pages and logs know this text.
  return guarded("Requisition::SubmitReq", false, [&] {
    auto req = create<business::Requisition>(progid::Requisition);
    int32_t number_of_pos = *p_NumberofPOs;
    check(*req,
          req->SubmitRequisition(p_Session, p_ReqID, p_WorkFlowFlag, number_of_pos, *p_CustomData));
    *p_NumberofPOs = number_of_pos;
    return true;
  });
}

bool UIReq::CopyReq(const SessionPtr& p_Session, int32_t p_lReqID, const std::string& p_sReqName,
                    ByRef<Variant> p_lNewReqID, ByRef<Variant> p_lNumberOfItems,
                    ByRef<Variant> p_lNumberOfItemsCopied, ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReq::CopyReq", false, [&] {
    auto req = create<business::Requisition>(progid::Requisition);
    int32_t new_id = 0, items = 0, copied = 0;
    check(*req, req->CopyRequisition(p_Session, p_lReqID, p_sReqName, new_id, items, copied,
                                     kCopyFlag, *p_CustomData));
    *p_lNewReqID = Variant(new_id);
    *p_lNumberOfItems = Variant(items);
    *p_lNumberOfItemsCopied = Variant(copied);
    return true;
  });
}

bool UIReq::CancelReq(const SessionPtr& p_Session, int32_t p_lReqID,
                      ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReq::CancelReq", false, [&] {
    auto req = create<business::Requisition>(progid::Requisition);
    check(*req, req->CancelRequisition(p_Session, p_lReqID, *p_CustomData));
    return true;
  });
}

bool UIReq::DeleteReq(const SessionPtr& p_Session, int32_t p_lReqID,
                      ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReq::DeleteReq", false, [&] {
    auto req = create<business::Requisition>(progid::Requisition);
    check(*req, req->DeleteRequisition(p_Session, p_lReqID, *p_CustomData));
    return true;
  });
}

bool UIReq::CreateTemplate(const SessionPtr& p_Session, int32_t p_lReqID,
                           const std::string& p_sName, int32_t p_lTemplateType,
                           ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReq::CreateTemplate", false, [&] {
    auto req = create<business::Requisition>(progid::Requisition);
    int32_t new_id = 0, items = 0, copied = 0;
    check(*req, req->CopyRequisition(p_Session, p_lReqID, p_sName, new_id, items, copied, kCopyFlag,
                                     *p_CustomData));
    // No copy, no template: the business tier said so without calling it a failure.
    if (new_id == 0) return false;
    check(*req, req->MarkAsTemplate(p_Session, new_id, p_lTemplateType, *p_CustomData));
    return true;
  });
}

bool UIReq::GetTemplateList(const SessionPtr& p_Session, int32_t p_ReqStatusID,
                            int32_t p_lPageNum, ByRef<Variant> rsTemplateList,
                            ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReq::GetTemplateList", false, [&] {
    auto ini = create<AppIni>(progid::AppIni);
    auto templates = create<business::Templates>(progid::Templates);
    RecordsetPtr list = templates->GetTemplateList(p_Session, p_ReqStatusID, *p_CustomData);
    Recordset& source = require(list);
    const int32_t page_size = read_page_size(*ini, p_Session, *p_CustomData);
    // The caller holds the opened empty page from here on, even when paging then fails;
    // no display columns, so no display context and no session member is read.
    RecordsetPtr page = open_display_target(source, {}, true);
    *rsTemplateList = Variant(page);
    const PagingWindow window = compute_paging_window(source.RecordCount(), page_size, p_lPageNum);
    fill_display_rows(source, *page, {}, nullptr, window);
    return true;
  });
}

}  // namespace kxui
