// UIRcv: Receiving: order items, receipts, the receiving list and receipt submission.
//
// Every operation obtains "KxRcv03.POReceipt" through the ClassFactory (GetReceiptHdr
// also "KxUtility03.AppIni" and "KxUtility03.Utils", GetReceiveListPage "KxUtility03.AppIni"),
// one per call, hands it a parameter array ending with p_CustomData (a copy: nothing the
// business object writes into the array comes back) and releases it before returning.
// Amounts and dates are formatted by the CurrencyFormatter and DateFormatter, created
// directly by class; SubmitReceipt reads typed numbers with the CurrencyFormatter's
// ParseNumber.
//
// Every operation clears Success on entry and sets it when it succeeds. On failure it
// records the error under "UIRcv::<operation>", writes it to the log, and returns Nothing
// (0 for SubmitReceipt). A "business failure" below is a False Success() of the business
// object: its own error (number, source, description) is recorded. A Null quantity or
// date fails the whole operation (94); no partial result is returned.
//
// Rebuilt results carry the business object's columns first, then the display columns
// named at each operation, in that order (all wide text of the width given), and are
// positioned at their first row.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "kxui/frame/byref.h"
#include "kxui/frame/facade.h"
#include "kxui/frame/recordset.h"

namespace kxui {

struct DisplayColumn;
namespace business {
class POReceipt;
}  // namespace business

class UIRcv : public Facade {
 public:
  explicit UIRcv(std::shared_ptr<Runtime> runtime = Runtime::process());

  // True when the last operation succeeded. (Failures of this class clear it, so every
  // operation maintains it.)
  bool Success() const noexcept { return success_; }

  // The order's lines with "UIDisplay_OrderQty" and "UIDisplay_ReceivedToDateQty"
  // (100 each), amounts in the user's locale.
  RecordsetPtr GetPOItemsRs(const SessionPtr& p_Session, int32_t p_POID,
                            ByRef<Variant> p_CustomData = {}) noexcept;

  // The receipt entry form's header: the first row of the business header only, then
  // "ReceiveMonth", "ReceiveDay" (2), "ReceiveYear" (4), the same three for "DocCreate"
  // and "Current" (the server's current date), and "UIDisplay_CartonCnt" (50). Months
  // and days have no leading zero; years have four digits. Outside zone 15 the three
  // dates, and the copied "ReceiveDate" and "DocCreateDate", are in the user's zone. The
  // "DateFormat" setting is read but shapes nothing here. Nothing when the business
  // object returns no row (3021).
  RecordsetPtr GetReceiptHdr(const SessionPtr& p_Session, int32_t p_POID,
                             ByRef<Variant> p_CustomData = {}) noexcept;

  // The receipts recorded for an order with "UIDisplay_CartonCnt" (100).
  RecordsetPtr GetReceiptHdrListRs(const SessionPtr& p_Session, int32_t p_POID,
                                   ByRef<Variant> p_CustomData = {}) noexcept;

  // The lines of one receipt with "UIDisplay_OrderQty", "UIDisplay_ReceivedQty" and
  // "UIDisplay_PackingSlipQty" (100 each).
  RecordsetPtr GetReceiptItemListRs(const SessionPtr& p_Session, int32_t p_ReceiptID,
                                    ByRef<Variant> p_CustomData = {}) noexcept;

  // The receiving form's lines with "UIDisplay_OrderQty", "UIDisplay_ReceivedToDateQty",
  // "UIDisplay_ReceivedQty" and "UIDisplay_PackingSlipQty" (50 each). The last two are
  // the form's inputs: with p_ReceiveAll, what is still outstanding on the line (never
  // below 0) formatted as an amount; without, the literal "0".
  RecordsetPtr GetReceiptItems(const SessionPtr& p_Session, int32_t p_POID, bool p_ReceiveAll,
                               ByRef<Variant> p_CustomData = {}) noexcept;

  // One page of the orders awaiting receipt (filters passed on unchanged), with
  // "UIDisplay_CreateDate" (100; in the user's zone, locale and "DateFormat" style) and
  // the five paging columns. Page 0 is the first page; a page past the end or a negative
  // page gives the last.
  RecordsetPtr GetReceiveListPage(const SessionPtr& p_Session, const std::string& p_SortBy,
                                  const std::string& p_StatusList, const std::string& p_PONumber,
                                  const std::string& p_UserName, const std::string& p_BorgName,
                                  int32_t p_Page, ByRef<Variant> p_CustomData = {}) noexcept;

  // Records a receipt from the form GetReceiptHdr and GetReceiptItems produced, with the
  // user's typed texts in their "UIDisplay_" columns. The texts are read as numbers in
  // the user's locale and written into the caller's record sets: the header's carton
  // count into "CartonCnt" (rounded, halves to even), then line by line from the first
  // "ReceivedQty" and "PackingSlipQty". The first failed check ends the call with its
  // message (number 0x80040000 + message, text from Error's message table); rows before
  // it keep the numbers written into them, later rows are not read, the line cursor
  // stays where it stopped, and the business object is not created. In order:
  //   11612 carton count not a number;
  //   per line: 11613 received quantity not a number; 11608 packing slip quantity not a
  //   number; 11609 packing slip quantity below 0; 11610 a negative received quantity
  //   taking back more than "ReceivedToDateQty"; 11611 a negative received quantity
  //   whose "Comments" is exactly "" (blanks or Null pass).
  // A Null typed value is not a message but a conversion failure (94). An empty line set
  // goes straight to the business object. Returns the new receipt's id; 0 on failure.
  int32_t SubmitReceipt(const SessionPtr& p_Session, const RecordsetPtr& p_Header,
                        const RecordsetPtr& p_LineItems,
                        ByRef<Variant> p_CustomData = {}) noexcept;

 private:
  using ListCall = RecordsetPtr (business::POReceipt::*)(const SessionPtr&, Array&);

  // The views' common frame: the user's locale, one business call with `params`, its
  // Success checked, the result rebuilt with `columns` over every row.
  RecordsetPtr rebuilt_view(const SessionPtr& session, ListCall call, Array params,
                            std::span<const DisplayColumn> columns);

  // The frame's operation pattern with Success maintained; a failure is also logged.
  template <class R, class Body>
  R run(std::string_view source, R failure_value, Body&& body) noexcept {
    R result = guarded(source, std::move(failure_value), std::forward<Body>(body),
                       Track::kSuccess);
    if (!success_) LogError();
    return result;
  }
};

}  // namespace kxui
