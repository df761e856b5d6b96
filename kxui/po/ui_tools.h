// UITools: order status and quick price and availability checks, through the supplier-
// exchange library, and a number formatted for the user's locale.
//
// Business objects come from the ClassFactory ("KxPO03.PurchaseOrder", "KxCom03.POStatus",
// "KxPO03.POLog", "KxRecPO03.ReconcileOrder", "KxRecPO03.ReconcileItems",
// "KxReq03.Requisition", "KxUtility03.Utils", "KxUtility03.CursorDataAccess"); the
// supplier-exchange objects and the CurrencyFormatter are created directly by class. On
// failure an operation records the error under "UITools::<operation>" and returns False
// or "". A business object's failure is recorded with its number and description and an
// empty source of its own. Requests to a supplier carry the customer name of the
// session's organisation; when that lookup fails it is recorded under
// "UITools::GetCustName" and the request goes out with "".
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kxui/frame/byref.h"
#include "kxui/frame/facade.h"

namespace kxui {

class UITools : public Facade {
 public:
  explicit UITools(std::shared_ptr<Runtime> runtime = Runtime::process());

  // nNumber as a plain number in the user's locale; "" on failure.
  std::string FormatNumber(const SessionPtr& p_Session, double nNumber,
                           ByRef<Variant> p_CustomData = {}) noexcept;

  // Asks the PO's supplier for the order's status and stores the PO status it maps to.
  // The result is the business tier's answer to storing it. When the supplier cannot
  // answer, the supplier's error text (cut to 255 characters) and code (cut to 20) go to
  // the PO's log as an "Error" entry, and the call fails with message 11614 ("Unable to
  // perform order status check."). p_lPOID is only read.
  bool OrderStatus(const SessionPtr& p_Session, ByRef<int32_t> p_lPOID,
                   ByRef<Variant> p_CustomData = {}) noexcept;

  // Asks the supplier for today's unit price and available quantity of every line of the
  // PO under reconciliation (p_sDocType "PO" in any case; other types are not checked
  // and give False) and stores them on the reconcile lines (the price as unit and actual
  // unit price, the quantity as in-stock quantity), then saves the reconcile order. True
  // when the supplier answered and the order was saved; False without an error when the
  // supplier did not answer. The in/out arguments are only read.
  bool QuickCheck(const SessionPtr& p_Session, ByRef<std::string> p_sDocType,
                  ByRef<int32_t> p_lDocID, ByRef<Variant> p_CustomData = {}) noexcept;

  // Asks the supplier about each line of requisition p_lDocID, one request per line,
  // stores the answered prices on the lines and saves the requisition when any was
  // answered. vQCValues receives a two-dimensional array (0 To 3, 0 To lines): for line
  // i, (0, i) the unit price converted to the requisition's currency, (1, i) the
  // available quantity, (2, i) whether the supplier answered, (3, i) Empty; an
  // unanswered line has 0, 0, False; the last column is always Empty, so callers stop at
  // the number of lines. A price that cannot be converted fails the call with message
  // 11607. True; False on failure, vQCValues untouched.
  bool QuickCheckReq(const SessionPtr& p_Session, int32_t p_lDocID, ByRef<Variant> vQCValues,
                     ByRef<Variant> p_CustomData = {}) noexcept;

  // Sends a fixed two-line quick check without a Session, to test the link to the
  // supplier system. When it answers, vReturnArray receives a (0 To 1, 0 To 1) array:
  // (0, i) the available quantity and (1, i) the unit price of line i + 1. The result is
  // the supplier's answer; vReturnArray is untouched when it is False or on failure.
  bool QuickCheckTest(ByRef<Variant> vReturnArray, ByRef<Variant> p_CustomData = {}) noexcept;

 private:
  // The customer name of the session's organisation ("" when it has none, or on failure).
  std::string GetCustName(const SessionPtr& session, Variant& custom_data) noexcept;

  // A QuickCheckItem for one line; texts are trimmed.
  std::shared_ptr<Dispatch> new_quick_check_item(int32_t line_num, const std::string& part_num,
                                                 const std::string& part_num_ext,
                                                 const std::string& uom, double quantity);
  // Sends a quick check for `items` and returns whether the supplier answered; the
  // answers, one per item, are then in `responses`.
  bool send_quick_check(Dispatch& query, int32_t supplier_id, const std::string& customer,
                        const std::string& currency, Array items, Variant& responses);
};

}  // namespace kxui
