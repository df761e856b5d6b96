// "KxRcv03.POReceipt" over the receipts tables. An order is receivable while it is not
// yet fully received, closed or cancelled. A receipt records its non-zero lines, adds
// them to the lines' received quantities and moves the order to partly or fully
// received, all in one change. A negative quantity corrects earlier receipts: it needs
// a comment and cannot take back more than was received; no line goes above its order.
#pragma once

#include "kxui/business/po_receipt.h"
#include "reference/object_base.h"

namespace kxui::reference {

class RefPOReceipt : public business::POReceipt, public RefObject {
 public:
  explicit RefPOReceipt(DatabasePtr db) : RefObject(std::move(db), "POReceipt") {}
  bool Success() override { return success_; }
  RecordsetPtr GetReceiveList(const SessionPtr& session, Array& params) override;
  RecordsetPtr GetPOItems(const SessionPtr& session, Array& params) override;
  RecordsetPtr GetReceiptHdr(const SessionPtr& session, Array& params) override;
  RecordsetPtr GetReceiptHdrList(const SessionPtr& session, Array& params) override;
  RecordsetPtr GetReceiptItems(const SessionPtr& session, Array& params) override;
  RecordsetPtr GetReceiptItemList(const SessionPtr& session, Array& params) override;
  int32_t SubmitReceipt(const SessionPtr& session, const RecordsetPtr& header,
                        const RecordsetPtr& line_items, Array& params) override;
};

}  // namespace kxui::reference
