// "KxRcv03.POReceipt": receipts against purchase orders in the business tier.
//
// One object per call. Every operation takes the Session and a parameter array indexed
// from 0 whose last element is always the caller's custom data (the other elements are
// listed at each operation); the object may write into the array, but the UI tier reads
// nothing back from it. Every operation answers through Success(): when that reads False
// the reason is in GetError and the result is meaningless.
#pragma once

#include <cstdint>

#include "kxui/business/business_object.h"
#include "kxui/frame/recordset.h"
#include "kxui/frame/session.h"
#include "kxui/frame/variant.h"

namespace kxui::business {

class POReceipt : public virtual BusinessObject {
 public:
  // Whether the last operation succeeded.
  virtual bool Success() = 0;

  // Orders awaiting receipt, with at least the date column "CreateDate" (zone 15).
  // Params: 0 sort key, 1 status list, 2 PO number, 3 user name, 4 organisation name
  // (strings whose syntax is the business tier's), 5 custom data.
  virtual RecordsetPtr GetReceiveList(const SessionPtr& session, Array& params) = 0;
  // The lines of an order, with "OrderQty" and "ReceivedToDateQty".
  // Params: 0 PO id (Int32), 1 custom data.
  virtual RecordsetPtr GetPOItems(const SessionPtr& session, Array& params) = 0;
  // The receipt header form of an order: one row with "CartonCnt", "ReceiveDate" and
  // "DocCreateDate" (dates in zone 15). Params: 0 PO id (Int32), 1 custom data.
  virtual RecordsetPtr GetReceiptHdr(const SessionPtr& session, Array& params) = 0;
  // The receipts recorded for an order, with "CartonCnt".
  // Params: 0 PO id (Int32), 1 custom data.
  virtual RecordsetPtr GetReceiptHdrList(const SessionPtr& session, Array& params) = 0;
  // The receiving form's lines, with "OrderQty", "ReceivedToDateQty", "ReceivedQty",
  // "PackingSlipQty" and "Comments". Params: 0 PO id (Int32), 1 receive-all flag
  // (Boolean), 2 custom data.
  virtual RecordsetPtr GetReceiptItems(const SessionPtr& session, Array& params) = 0;
  // The lines of one receipt, with "OrderQty", "ReceivedQty" and "PackingSlipQty".
  // Params: 0 receipt id (Int32), 1 custom data.
  virtual RecordsetPtr GetReceiptItemList(const SessionPtr& session, Array& params) = 0;
  // Records a receipt from the filled-in header and line forms (their data columns
  // already hold the numbers the user typed) and returns the new receipt's id.
  // Params: 0 custom data.
  virtual int32_t SubmitReceipt(const SessionPtr& session, const RecordsetPtr& header,
                                const RecordsetPtr& line_items, Array& params) = 0;
};

}  // namespace kxui::business
