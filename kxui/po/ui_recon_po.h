// UIReconPO: reconciliation of a PO against its supplier's answer. The reconcile order
// ("KxRecPO03.ReconcileOrder", a working copy of the PO kept by the business tier
// between calls) is shown with its quantities, edited line by line and submitted.
//
// Business objects come from the ClassFactory, one per call ("KxRecPO03.ReconcileOrder";
// AddAltItem also "KxPO03.PurchaseOrder", "KxPO03.POItem", "KxPO03.POItems"); the
// CurrencyFormatter is created directly. On failure an operation records the error
// under its source text and returns False, Nothing or "0": "UIReconPO::<operation>",
// except UpdateItemsQtys ("UIReq::UpdateItemsQtys") and GetItemsRs ("UIReq::GetItemsRs").
// A failure the class's creation meets is recorded under "UIWF::Class_Initialize". A
// business object's failure, where an operation reports it, is recorded with its number
// and description and an empty source of its own. Quantity rules are the business
// tier's: nothing typed is checked here. None of these operations changes Success.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kxui/frame/byref.h"
#include "kxui/frame/facade.h"
#include "kxui/frame/recordset.h"

namespace kxui {

class UIReconPO : public Facade {
 public:
  explicit UIReconPO(std::shared_ptr<Runtime> runtime = Runtime::process());

  // Adds the part at 1-based position p_lAltPosition of the record set p_rsAltItems as
  // the alternative of line p_lLineNum. The new line takes the row's "ActualUnitPrice"
  // as both its actual unit price and its unit price, and its other values from the
  // row's columns. A position outside the rows, or a missing column, fails before the
  // business tier is asked. True; False on failure.
  bool AddAltItem(const SessionPtr& p_oSession, int32_t p_lPOID, int32_t p_lLineNum,
                  int32_t p_lAltPosition, const Variant& p_rsAltItems,
                  ByRef<Variant> p_CustomData = {}) noexcept;

  // Marks line p_lLineNum deleted and saves the order; the save's answer is the result
  // (a False save records nothing).
  bool DeleteItem(const SessionPtr& p_objSession, int32_t p_lPOID, int32_t p_lLineNum,
                  ByRef<Variant> p_CustomData = {}) noexcept;

  // Marks every line deleted and saves the order; the save's answer is the result. An
  // order that cannot be loaded gives False without recording anything.
  bool DeleteItems(const SessionPtr& p_objSession, int32_t p_lPOID,
                   ByRef<Variant> p_CustomData = {}) noexcept;

  // The amount as money in p_sCurrCode for locale p_lLocale; "0" when it cannot be
  // formatted.
  std::string GetFormatCurrency(int32_t p_lLocale, const std::string& p_sCurrCode,
                                double p_dUnitPrice, ByRef<Variant> p_CustomData = {}) noexcept;

  // Hands the three parallel arrays to the business tier unchanged; its answer is the
  // result.
  bool UpdateItemsQtys(const SessionPtr& p_Session, int32_t p_POID, const Variant& p_LineNumbers,
                       const Variant& p_ShippedQtys, const Variant& p_BackOrderQtys,
                       ByRef<Variant> p_CustomData = {}) noexcept;

  // One row: "PONum", "Supplier" (text 100), "SupplierID" (integer), "CurrencyCode"
  // (text 10), and "SubTotal", "TotalTaxAmt", "TotalAmtDue" as money texts (50) in the
  // order's currency and the user's locale.
  RecordsetPtr GetRecPOHeader(const SessionPtr& p_Session, int32_t p_POID,
                              ByRef<Variant> p_CustomData = {}) noexcept;

  // The order's lines (0: all) with "UIDisplay_UnitPrice", "UIDisplay_ActualPrice"
  // (money in the row's currency), "UIDisplay_OrderQty", "UIDisplay_BackOrderQty",
  // "UIDisplay_ShippedQty", "UIDisplay_InStockQty", "UIDisplay_POOrderQty" and
  // "UIDisplay_POBackOrderQty" (numbers), all text 100, in the user's locale; an order
  // without lines gives an open, empty record set with those columns.
  RecordsetPtr GetItemsRs(const SessionPtr& p_Session, int32_t p_POID, int32_t p_LineNumber = 0,
                          ByRef<Variant> p_CustomData = {}) noexcept;

  // Submits the reconciled order; the business tier's answer is the result.
  bool SubmitRecPO(const SessionPtr& p_Session, int32_t p_POID,
                   ByRef<Variant> p_CustomData = {}) noexcept;
};

}  // namespace kxui
