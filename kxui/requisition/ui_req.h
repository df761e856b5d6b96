// UIReq: Requisitions: the list, header, items and lifecycle of a user's requisitions.
//
// Every operation creates its business objects ("KxReq03.Requisition", and where stated
// "KxReq03.Templates" and "KxUtility03.AppIni") through the ClassFactory, one per call,
// and releases them before it returns. On failure an operation records the error under
// "UIReq::<operation>" (SubmitReq: "Requisition::SubmitReq") and returns its failure
// value: False, or Nothing for record sets. In/out arguments are written only when the
// operation succeeds; after a failure they hold what the caller passed (p_CustomData,
// handed to the business object, is the business object's to write). None of these
// operations changes Success.
//
// A "business failure" below is a False answer of the business object: its own error
// (number, source, description) is recorded.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kxui/frame/byref.h"
#include "kxui/frame/facade.h"
#include "kxui/frame/recordset.h"
#include "kxui/frame/services.h"

namespace kxui {

namespace business {
class Requisition;
class RequisitionLineItem;
}  // namespace business

class UIReq : public Facade {
 public:
  explicit UIReq(std::shared_ptr<Runtime> runtime = Runtime::process());

  // True when the last operation that maintains it succeeded.
  bool Success() const noexcept { return success_; }

  // --- List, header and status ------------------------------------------------------

  // One page of the user's requisitions: the business list's columns, then
  // "UIDisplay_CreateDate" and "UIDisplay_SubmitDate" (the dates in the user's zone,
  // locale and date style) and the five paging columns. Page 0 is the first page; a page
  // past the end or a negative page gives the last. Positioned at its first row; Nothing
  // on failure (a Null date included).
  RecordsetPtr GetListPage(const SessionPtr& p_Session, const std::string& p_sUserName,
                           const std::string& p_sBorgName, const std::string& p_sSortBy,
                           const std::string& p_sStatusList, int32_t p_lPage,
                           ByRef<Variant> p_CustomData = {}) noexcept;

  // For p_ReqID > 0 loads the requisition (unlocked) and puts its name, as text, in
  // m_ReqName; for p_ReqID <= 0 loads nothing and m_ReqName keeps the caller's value.
  // True when m_ReqName then holds a non-empty text; False otherwise (no error recorded
  // for that) or on failure.
  bool GetReqName(const SessionPtr& p_Session, int32_t p_ReqID, ByRef<Variant> m_ReqName,
                  ByRef<Variant> p_CustomData = {}) noexcept;

  // Renames a requisition. True; False on a business failure.
  bool UpdateReqName(const SessionPtr& p_Session, int32_t p_ReqID, const std::string& p_ReqName,
                     ByRef<Variant> p_CustomData = {}) noexcept;

  // The status identifier and number of items (Int32) and whether that status allows
  // editing (Boolean). True; False on a business failure.
  bool GetReqStatus(const SessionPtr& p_Session, int32_t p_lReqID, ByRef<Variant> p_lReqStatusID,
                    ByRef<Variant> p_lNumberOfItems, ByRef<Variant> p_bEditable,
                    ByRef<Variant> p_CustomData = {}) noexcept;

  // The three totals in the session's currency, formatted for the user's locale. True;
  // False on a business failure.
  bool GetReqTotals(const SessionPtr& p_Session, int32_t p_lReqID, ByRef<Variant> p_sSubTotal,
                    ByRef<Variant> p_sEstimatedTax, ByRef<Variant> p_sTotal,
                    ByRef<Variant> p_CustomData = {}) noexcept;

  // Loads the requisition locked for the session; gives its justification and whether
  // its status allows editing. True; False when the load fails (a business failure).
  bool GetHeaderJustification(const SessionPtr& p_Session, int32_t p_lReqID,
                              ByRef<Variant> p_sJustification, ByRef<Variant> p_bEditable,
                              ByRef<Variant> p_CustomData = {}) noexcept;

  // Loads the requisition locked for the session, sets its justification and saves it.
  // True after the save. False without recording an error when the load answers False
  // (nothing is saved); False on a failed save (a business failure).
  bool SetHeaderJustification(const SessionPtr& p_Session, int32_t p_lReqID,
                              const std::string& p_sJustification,
                              ByRef<Variant> p_CustomData = {}) noexcept;

  // Loads the requisition locked for the session and returns its log entries (every
  // row, with "UIDisplay_DateLogged"). The header values come out as text: name,
  // requisitioner, creation date for display, total formatted in the session's
  // currency, justification, and that currency's code. Nothing on failure (a failed
  // load or totals request included).
  RecordsetPtr GetLogRequisition(const SessionPtr& p_Session, int32_t p_lReqID,
                                 ByRef<Variant> p_ReqName, ByRef<Variant> p_Requisitioner,
                                 ByRef<Variant> p_CreateDate, ByRef<Variant> p_Cost,
                                 ByRef<Variant> p_sJustification, ByRef<Variant> p_CurrencyCode,
                                 ByRef<Variant> p_CustomData = {}) noexcept;

  // --- Adding and updating items ---------------------------------------------------
  //
  // Quantities and prices are text typed on the page, read in the user's locale before
  // anything is stored: a quantity or price that does not read as a number fails with
  // its validation message (number 0x80040000 + message, text from Error's message
  // table). Quantities are rounded to four decimals, halves to even; negative and zero
  // quantities are the business tier's to judge. p_ReqID carries in the requisition to
  // add to (any value that converts to a 32-bit integer; 0 lets the business tier choose)
  // and, with p_LineNum and p_SmartFormID, carries out the new line's identity as Int32
  // values — only on success.

  // A catalog line by supplier and supplier part number, in the session's currency.
  // An unreadable quantity fails with message 11602.
  bool AddItemFastAdd(const SessionPtr& p_Session, ByRef<Variant> p_ReqID, int32_t p_SupplierID,
                      const std::string& p_SupplierPartNum, const std::string& p_SupplierPartNumExt,
                      const std::string& p_OrderQty, const std::string& p_UOMID,
                      ByRef<Variant> p_LineNum, ByRef<Variant> p_SmartFormID,
                      ByRef<Variant> p_CustomData = {}) noexcept;

  // A favourite part of the user. An unreadable quantity fails with message 11603.
  bool AddItemFavorite(const SessionPtr& p_Session, ByRef<Variant> p_ReqID, int32_t p_PartBaseID,
                       const std::string& p_OrderQty, ByRef<Variant> p_LineNum,
                       ByRef<Variant> p_SmartFormID, ByRef<Variant> p_CustomData = {}) noexcept;

  // A part outside the catalog, with an estimated unit price in p_CurrencyCode. The price
  // (p_UnitPrice as text; a value without a text form counts as unreadable, as does an
  // amount outside the money range) is checked first: message 11600; then the quantity:
  // message 11601.
  bool AddItemSpecialRequest(const SessionPtr& p_Session, ByRef<Variant> p_ReqID,
                             int32_t p_SupplierID, const std::string& p_SupplierName,
                             const std::string& p_SupplierPartNum,
                             const std::string& p_SupplierPartNumExt,
                             const std::string& p_OrderQty, const std::string& p_UOMID,
                             int32_t p_MfrID, const std::string& p_MfrName, int32_t p_CommodityID,
                             const std::string& p_CommodityAlias, const Variant& p_UnitPrice,
                             const std::string& p_CurrencyCode, const std::string& p_PartDesc,
                             ByRef<Variant> p_LineNum, ByRef<Variant> p_SmartFormID,
                             ByRef<Variant> p_CustomData = {}) noexcept;

  // Rewrites every value of the existing special-request line p_LineNum of p_ReqID,
  // validated as for AddItemSpecialRequest but with messages 11604 (price) and 11605
  // (quantity). True; False on a validation or business failure.
  bool UpdateSpecialRequestItem(const SessionPtr& p_Session, int32_t p_ReqID, int32_t p_LineNum,
                                int32_t p_SupplierID, const std::string& p_SupplierName,
                                const std::string& p_SupplierPartNum,
                                const std::string& p_SupplierPartNumExt,
                                const std::string& p_OrderQty, const std::string& p_UOMID,
                                int32_t p_MfrID, const std::string& p_MfrName,
                                int32_t p_CommodityID, const std::string& p_CommodityAlias,
                                const Variant& p_UnitPrice, const std::string& p_CurrencyCode,
                                const std::string& p_PartDesc,
                                ByRef<Variant> p_CustomData = {}) noexcept;

  // --- Lifecycle ---------------------------------------------------------------------
  // Each is one business request; True when it succeeds, False on a business failure.

  // Locks a requisition for the session (the business tier holds the lock).
  bool ReqLock(const SessionPtr& p_Session, int32_t p_ReqID,
               ByRef<Variant> p_CustomData = {}) noexcept;
  // True while the session's lock on the requisition holds; False (a business failure
  // with the business tier's reason) when it does not.
  bool IsValidLock(const SessionPtr& p_Session, int32_t p_ReqID,
                   ByRef<Variant> p_CustomData = {}) noexcept;
  // Releases every requisition lock the business tier holds for the session.
  bool ReleaseLock(const SessionPtr& p_Session, ByRef<Variant> p_CustomData = {}) noexcept;
  // Submits a requisition. p_NumberofPOs carries in the caller's value (0 when omitted)
  // and out the number of purchase orders the business tier reports. Records failures
  // under "Requisition::SubmitReq".
  bool SubmitReq(const SessionPtr& p_Session, int32_t p_ReqID, bool p_WorkFlowFlag = false,
                 ByRef<int32_t> p_NumberofPOs = {}, ByRef<Variant> p_CustomData = {}) noexcept;
  // Copies a requisition under a new name; the new identifier, the number of items and
  // the number copied come out as Int32 values.
  bool CopyReq(const SessionPtr& p_Session, int32_t p_lReqID, const std::string& p_sReqName,
               ByRef<Variant> p_lNewReqID, ByRef<Variant> p_lNumberOfItems,
               ByRef<Variant> p_lNumberOfItemsCopied, ByRef<Variant> p_CustomData = {}) noexcept;
  bool CancelReq(const SessionPtr& p_Session, int32_t p_lReqID,
                 ByRef<Variant> p_CustomData = {}) noexcept;
  bool DeleteReq(const SessionPtr& p_Session, int32_t p_lReqID,
                 ByRef<Variant> p_CustomData = {}) noexcept;
  // Copies a requisition under p_sName and marks the copy as a template of
  // p_lTemplateType. False without recording an error when the copy yields no new
  // requisition (identifier 0); then nothing is marked.
  bool CreateTemplate(const SessionPtr& p_Session, int32_t p_lReqID, const std::string& p_sName,
                      int32_t p_lTemplateType, ByRef<Variant> p_CustomData = {}) noexcept;
  // One page of the templates whose requisition status is p_ReqStatusID, with the five
  // paging columns (page numbers as for GetListPage), put in rsTemplateList as a record
  // set positioned at its first row. True; False on failure. rsTemplateList is replaced
  // by the opened empty page once the list and "Page Size" are read, so a later failure
  // (a page size of 0) leaves that empty page there; an earlier one leaves it untouched.
  bool GetTemplateList(const SessionPtr& p_Session, int32_t p_ReqStatusID, int32_t p_lPageNum,
                       ByRef<Variant> rsTemplateList, ByRef<Variant> p_CustomData = {}) noexcept;

  // --- Cart, item details, favourites, cost distribution ---
  //
  // Money on the cart is shown in the session's currency: each line's "UnitPrice" is
  // converted from the line's "CurrencyCode" at the server's date ("KxUtility03.Utils"),
  // a line already in the session's currency without a conversion call. A line whose
  // price cannot be converted (no rate, or no price at all) fails the whole result with
  // its message; a partial cart is never shown. The rebuilt results add, in this order,
  // "UIDisplay_OrderQty" (text 50, the quantity in the user's locale),
  // "UIDisplay_UnitPrice" and "UIDisplay_ExtendedPrice" (text 100, the converted price
  // and price times quantity, formatted in the session's currency).
  // GetItemsRs and GetItemDetails maintain Success (cleared on entry, set on success);
  // the other operations here leave it alone.

  // Every line of a requisition, rebuilt as above, positioned at its first row.
  // Nothing on failure; a price that cannot be converted fails with message 11606.
  RecordsetPtr GetItemsRs(const SessionPtr& p_Session, int32_t p_lReqID,
                          ByRef<Variant> p_CustomData = {}) noexcept;

  // One line of a requisition, rebuilt as above. Nothing on failure; a price that cannot
  // be converted fails with message 11607.
  RecordsetPtr GetItemDetails(const SessionPtr& p_Session, int32_t p_lReqID, int32_t p_lLineNum,
                              ByRef<Variant> p_CustomData = {}) noexcept;

  // Sets the quantity of a line from text typed in the user's locale, rounded to four
  // decimals (halves to even); text that does not read as a number fails with message
  // 11605 before anything is stored. True; False on a validation or business failure.
  bool UpdateItemQty(const SessionPtr& p_Session, int32_t p_lReqID, int32_t p_lLineNum,
                     const std::string& p_sOrderQty, ByRef<Variant> p_CustomData = {}) noexcept;

  // Removes a line. True; False on a business failure.
  bool DeleteItem(const SessionPtr& p_Session, int32_t p_lReqID, int32_t p_lLineNum,
                  ByRef<Variant> p_CustomData = {}) noexcept;

  // One page of the user's favourite parts ("KxReq03.FavoriteItems") with
  // "UIDisplay_UnitPrice" (the price in the row's own currency) and the five paging
  // columns; pages as for GetListPage. Nothing on failure.
  RecordsetPtr GetFavoritesListPage(const SessionPtr& p_Session, int32_t p_lPage,
                                    ByRef<Variant> p_CustomData = {}) noexcept;

  // The cost-centre shares of a line ("KxReq03.ReqCostDistribs"), every row, with
  // "UIDisplay_Percentage" (text 50, in the user's locale). Nothing on failure.
  RecordsetPtr GetCostDistribsRs(const SessionPtr& p_Session, int32_t p_lReqID,
                                 int32_t p_lLineNum, ByRef<Variant> p_CustomData = {}) noexcept;

  // Replaces the shares of a line: p_CostCenterIDs and p_Percentages are arrays of equal
  // length (both omitted or empty: no split), the percentages typed in the user's locale.
  // Every percentage must read as a number above 0 and at most 100 (message 11670) and,
  // rounded to four decimals, together make 100 (message 11671); arrays of different
  // lengths fail with error 5. All is checked before anything is stored. True; False on
  // a validation or business failure.
  bool SaveCostDistribs(const SessionPtr& p_Session, int32_t p_lReqID, int32_t p_lLineNum,
                        const Variant& p_CostCenterIDs, const Variant& p_Percentages,
                        ByRef<Variant> p_CustomData = {}) noexcept;

 private:
  // Whether a requisition status allows editing: -1, 1, 3 and 4 do.
  static bool isEditable(int32_t status_id) noexcept;

  // The user's number typed on a page, read in the session's locale; raises `invalid`
  // when it does not read as a finite number.
  double parse_input(CurrencyFormatter& parser, const SessionPtr& session, int32_t locale_id,
                     const std::string& text, const msg::Message& invalid);
  // A typed quantity rounded to four decimals, halves to even.
  double parse_quantity(CurrencyFormatter& parser, const SessionPtr& session, int32_t locale_id,
                        const std::string& text, const msg::Message& invalid);
  // A typed estimated price as money; values without a text form, or beyond the money
  // range, raise `invalid` too.
  Currency parse_price(CurrencyFormatter& parser, const SessionPtr& session, int32_t locale_id,
                       const Variant& price, const msg::Message& invalid);
  // The second storing step of a new line, then its identity into the three in/outs.
  static void complete_and_report(business::Requisition& req, business::RequisitionLineItem& item,
                                  const SessionPtr& session, Variant& custom_data,
                                  Variant& req_id, Variant& line_num, Variant& smart_form_id);
};

}  // namespace kxui
