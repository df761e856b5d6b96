// UIPO: purchase orders: the user's PO list, one PO's lines, header, status and log,
// and the few edits a PO allows (delete a line or the PO, copy it into a requisition,
// split a line's cost, find substitute parts).
//
// Every operation creates its business objects ("KxPO03.PurchaseOrder", and where stated
// "KxPO03.POItem", "KxPO03.POItems", "KxPO03.POCostDistribs", "KxCat03.PartSearch",
// "KxUtility03.AppIni", "KxUtility03.Utils") through the ClassFactory, one per call. On
// failure it records the error under "UIPO::<operation>" (GetPOName: "UIReq::GetPOName")
// and returns False, or Nothing for record sets. A "business failure" is a False answer
// (or Succeeded() False) of the business object: its number and description are
// recorded with an empty source of their own. In/out arguments receive their values as
// the operation goes, so after a failure they hold what had been set before it. None of
// these operations changes Success.
//
// Display columns are text of size 100: dates (stored in zone 15) converted to the
// user's zone unless it is 15, cut to the day and formatted in the user's locale and
// "DateFormat" style; money in the row's "CurrencyCode"; quantities as plain numbers.
// A Null or unreadable source value fails the whole call.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kxui/frame/byref.h"
#include "kxui/frame/facade.h"
#include "kxui/frame/recordset.h"

namespace kxui {

namespace business {
class PurchaseOrder;
}  // namespace business

class UIPO : public Facade {
 public:
  explicit UIPO(std::shared_ptr<Runtime> runtime = Runtime::process());

  // --- Views -------------------------------------------------------------------------

  // The lines of a PO (line 0: all) with "UIDisplay_UnitPrice", "UIDisplay_SalesTaxAmt",
  // "UIDisplay_ActualPrice", "UIDisplay_DeliverByDate", "UIDisplay_POStatusDate" and
  // "UIDisplay_OrderQty" appended; a PO without lines gives an open, empty record set
  // with those columns.
  RecordsetPtr GetItemsRs(const SessionPtr& p_objSession, int32_t p_lPOID,
                          int32_t p_lLineNumber = 0, ByRef<Variant> p_CustomData = {}) noexcept;

  // One page of the user's POs with "UIDisplay_CreateDate", "UIDisplay_TotalAmtDue"
  // and the five paging columns ("Page Size" rows, 20 by default; page 0 is the first,
  // a page past the end or a negative page the last).
  RecordsetPtr GetPOListPage(const SessionPtr& p_Session, const std::string& p_SortBy,
                             const std::string& p_StatusList, const std::string& p_PONumber,
                             const std::string& p_UserName, const std::string& p_BorgName,
                             int32_t p_Page, ByRef<Variant> p_CustomData = {}) noexcept;

  // The POs made from a requisition with "UIDisplay_TotalAmtDue", "UIDisplay_CreateDate"
  // and "UIDisplay_OrderedOnDate" appended.
  RecordsetPtr GetPOsByRequisition(const SessionPtr& p_objSession, int32_t p_lReqID,
                                   ByRef<Variant> p_CustomData = {}) noexcept;

  // The PO's log with "UIDisplay_DateLogged"; the header values come out as text: name,
  // submitter, creation date for display, total cost as money in the PO's currency,
  // justification and that currency's code.
  RecordsetPtr GetLogPurchaseOrder(const SessionPtr& p_objSession, int32_t p_lPOID,
                                   ByRef<Variant> p_POName, ByRef<Variant> p_SubmitterName,
                                   ByRef<Variant> p_CreateDate, ByRef<Variant> p_Cost,
                                   ByRef<Variant> p_sJustification, ByRef<Variant> p_CurrencyCode,
                                   ByRef<Variant> p_CustomData = {}) noexcept;

  // Parts of the same commodity, supplier and currency as the supplier part, or Nothing
  // when the part is unknown or its commodity has no parts (nothing is recorded then).
  RecordsetPtr SubstituteItems(const SessionPtr& p_Session, const std::string& p_SupplierPartNum,
                               int32_t p_SupplierID, const std::string& p_CurrencyCode,
                               int32_t p_lDocBorgID = 0,
                               ByRef<Variant> p_CustomData = {}) noexcept;

  // For p_POID > 0 loads the PO (unlocked) and puts its name in m_POName; for p_POID <= 0
  // m_POName keeps the caller's value. True when m_POName then holds a non-empty text;
  // False otherwise (no error recorded for that) or on failure.
  bool GetPOName(const SessionPtr& p_Session, int32_t p_POID, ByRef<Variant> m_POName,
                 ByRef<Variant> p_CustomData = {}) noexcept;

  // --- One business request each; True when it succeeds, False on a business failure.

  // Copies the PO into a new requisition; its identifier, the PO's number of lines and
  // the number copied come out as Int32 values.
  bool CopyPO(const SessionPtr& p_Session, int32_t p_POID, const std::string& p_ReqName,
              ByRef<Variant> p_NewReqID, ByRef<Variant> p_TotalItems, ByRef<Variant> p_ItemsCopied,
              ByRef<Variant> p_CustomData = {}) noexcept;
  // Deletes one line of a PO.
  bool DeleteItem(const SessionPtr& p_objSession, int32_t p_lPOID, int32_t p_lLineNum,
                  ByRef<Variant> p_CustomData = {}) noexcept;
  bool DeletePO(const SessionPtr& p_Session, int32_t p_POID,
                ByRef<Variant> p_CustomData = {}) noexcept;
  // The cost centers of a PO, and a line's split over them, as the business tier returns
  // them.
  RecordsetPtr GetListCostCenter(const SessionPtr& p_Session, int32_t p_POID,
                                 ByRef<Variant> p_CustomData = {}) noexcept;
  RecordsetPtr GetListCostDistribs(const SessionPtr& p_Session, int32_t p_POID,
                                   int32_t p_LineNumber, ByRef<Variant> p_CustomData = {}) noexcept;
  // Stores a line's split: p_CostCenterID and p_Percent are parallel lists separated by
  // p_Delimiter, split by the business tier.
  bool SaveCostDistribs(const SessionPtr& p_Session, int32_t p_POID, int32_t p_LineNumber,
                        const std::string& p_CostCenterID, const std::string& p_Percent,
                        const std::string& p_Delimiter = ";",
                        ByRef<Variant> p_CustomData = {}) noexcept;
  // p_bEditable := the Boolean "CanEdit" of the PO's status record.
  bool GetPOStatus(const SessionPtr& p_objSession, int32_t p_lPOID, ByRef<Variant> p_bEditable,
                   ByRef<Variant> p_CustomData = {}) noexcept;
  // True while the session still holds the PO's edit lock.
  bool IsValidLock(const SessionPtr& p_Session, int32_t p_POID,
                   ByRef<Variant> p_CustomData = {}) noexcept;
  bool Reset(const SessionPtr& p_Session, ByRef<Variant> p_CustomData = {}) noexcept;
  // Loads the PO locked for the session (the only operation that locks); p_ReadOnly :=
  // whether it loaded read-only.
  bool POIsReadOnly(const SessionPtr& p_Session, int32_t p_POID, ByRef<Variant> p_ReadOnly,
                    ByRef<Variant> p_CustomData = {}) noexcept;
  // Loads the PO unlocked: its number, organisation, supplier and receiving status.
  bool GetPOHeaderInfo(const SessionPtr& p_Session, int32_t p_POID, ByRef<Variant> m_PONum,
                       ByRef<Variant> m_BorgName, ByRef<Variant> m_SupplierName,
                       ByRef<Variant> m_ReceiveStatusDesc,
                       ByRef<Variant> p_CustomData = {}) noexcept;

 private:
  // A PO loaded through LoadPO; a False load is a business failure.
  std::shared_ptr<business::PurchaseOrder> load_po(const SessionPtr& session, int32_t po_id,
                                                   bool lock, Variant& custom_data);
};

}  // namespace kxui
