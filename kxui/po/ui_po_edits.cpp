// UIPO: the one-request operations (copy, delete, cost split, status, lock, header).
#include "kxui/business/progids.h"
#include "kxui/business/purchase_order.h"
#include "kxui/po/detail/po_shared.h"
#include "kxui/po/ui_po.h"

namespace kxui {

using detail::RaiseBusinessError;

bool UIPO::CopyPO(const SessionPtr& p_Session, int32_t p_POID, const std::string& p_ReqName,
                  ByRef<Variant> p_NewReqID, ByRef<Variant> p_TotalItems,
                  ByRef<Variant> p_ItemsCopied, ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIPO::CopyPO", false, [&] {
    auto po = create<business::PurchaseOrder>(progid::PurchaseOrder);
    int32_t new_req_id = 0, total_items = 0, items_copied = 0;
    if (!po->CopyToRequisition(p_Session, p_POID, p_ReqName, new_req_id, total_items,
                               items_copied, *p_CustomData)) {
      RaiseBusinessError(*po);
    }
    *p_NewReqID = Variant(new_req_id);
    *p_TotalItems = Variant(total_items);
    *p_ItemsCopied = Variant(items_copied);
    return true;
  });
}

bool UIPO::DeleteItem(const SessionPtr& p_objSession, int32_t p_lPOID, int32_t p_lLineNum,
                      ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIPO::DeleteItem", false, [&] {
    auto item = create<business::POItem>(progid::POItem);
    item->SetPOID(p_lPOID);
    item->SetLineNum(p_lLineNum);
    auto items = create<business::POItems>(progid::POItems);
    items->Add(item);
    auto po = create<business::PurchaseOrder>(progid::PurchaseOrder);
    if (!po->DeleteLines(p_objSession, items, p_lLineNum, *p_CustomData)) RaiseBusinessError(*po);
    return true;
  });
}

bool UIPO::DeletePO(const SessionPtr& p_Session, int32_t p_POID,
                    ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIPO::DeletePO", false, [&] {
    auto po = create<business::PurchaseOrder>(progid::PurchaseOrder);
    if (!po->DeletePO(p_Session, p_POID, *p_CustomData)) RaiseBusinessError(*po);
    return true;
  });
}

RecordsetPtr UIPO::GetListCostCenter(const SessionPtr& p_Session, int32_t p_POID,
                                     ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIPO::GetListCostCenter", RecordsetPtr(), [&] {
    auto distribs = create<business::POCostDistribs>(progid::POCostDistribs);
    return distribs->GetListCostCenter(p_Session, p_POID, *p_CustomData);
  });
}

RecordsetPtr UIPO::GetListCostDistribs(const SessionPtr& p_Session, int32_t p_POID,
                                       int32_t p_LineNumber,
                                       ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIPO::GetListCostDistribs", RecordsetPtr(), [&] {
    auto distribs = create<business::POCostDistribs>(progid::POCostDistribs);
    return distribs->GetListCostDistribs(p_Session, p_POID, p_LineNumber, *p_CustomData);
  });
}

bool UIPO::SaveCostDistribs(const SessionPtr& p_Session, int32_t p_POID, int32_t p_LineNumber,
                            const std::string& p_CostCenterID, const std::string& p_Percent,
                            const std::string& p_Delimiter, ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIPO::SaveCostDistribs", false, [&] {
    auto distribs = create<business::POCostDistribs>(progid::POCostDistribs);
    if (!distribs->SaveCostDistribs(p_Session, p_POID, p_LineNumber, p_CostCenterID, p_Percent,
                                    p_Delimiter, *p_CustomData)) {
      RaiseBusinessError(*distribs);
    }
    return true;
  });
}

bool UIPO::GetPOStatus(const SessionPtr& p_objSession, int32_t p_lPOID,
                       ByRef<Variant> p_bEditable, ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIPO::GetPOStatus", false, [&] {
    auto po = create<business::PurchaseOrder>(progid::PurchaseOrder);
    RecordsetPtr status = po->GetStatusRecord(p_objSession, p_lPOID, *p_CustomData);
    if (!status) RaiseBusinessError(*po);
    *p_bEditable = Variant((*status)["CanEdit"].Value().to_bool());
    return true;
  });
}

bool UIPO::IsValidLock(const SessionPtr& p_Session, int32_t p_POID,
                       ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIPO::IsValidLock", false, [&] {
    auto po = create<business::PurchaseOrder>(progid::PurchaseOrder);
    if (!po->IsValidLock(p_Session, p_POID, *p_CustomData)) RaiseBusinessError(*po);
    return true;
  });
}

bool UIPO::Reset(const SessionPtr& p_Session, ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIPO::Reset", false, [&] {
    auto po = create<business::PurchaseOrder>(progid::PurchaseOrder);
    if (!po->Reset(p_Session, *p_CustomData)) RaiseBusinessError(*po);
    return true;
  });
}

bool UIPO::POIsReadOnly(const SessionPtr& p_Session, int32_t p_POID, ByRef<Variant> p_ReadOnly,
                        ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIPO::POIsReadOnly", false, [&] {
    auto po = load_po(p_Session, p_POID, true, *p_CustomData);
    *p_ReadOnly = Variant(require(po->Header()).ReadOnly());
    return true;
  });
}

bool UIPO::GetPOHeaderInfo(const SessionPtr& p_Session, int32_t p_POID, ByRef<Variant> m_PONum,
                           ByRef<Variant> m_BorgName, ByRef<Variant> m_SupplierName,
                           ByRef<Variant> m_ReceiveStatusDesc,
                           ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIPO::GetPOHeaderInfo", false, [&] {
    auto po = load_po(p_Session, p_POID, false, *p_CustomData);
    const auto header_ptr = po->Header();
    business::POHeader& header = require(header_ptr);
    *m_PONum = Variant(header.PONum());
    *m_BorgName = Variant(header.BorgName());
    *m_SupplierName = Variant(header.SupplierName());
    *m_ReceiveStatusDesc = Variant(header.ReceiveStatusDesc());
    return true;
  });
}

}  // namespace kxui
