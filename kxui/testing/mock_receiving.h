// gmock doubles of the receiving business objects: "KxRcv03.POReceipt" and the server
// clock of "KxUtility03.Utils". GetError reports what a test sets with fail_with.
#pragma once

#include <gmock/gmock.h>

#include "kxui/business/po_receipt.h"
#include "kxui/business/utils.h"
#include "kxui/testing/test_runtime.h"
#include "kxui/testing/mock_utils.h"

namespace kxui::testing {

class MockPOReceipt : public business::POReceipt, public FakeBusinessObject {
 public:
  MOCK_METHOD(bool, Success, (), (override));
  MOCK_METHOD(RecordsetPtr, GetReceiveList, (const SessionPtr&, Array&), (override));
  MOCK_METHOD(RecordsetPtr, GetPOItems, (const SessionPtr&, Array&), (override));
  MOCK_METHOD(RecordsetPtr, GetReceiptHdr, (const SessionPtr&, Array&), (override));
  MOCK_METHOD(RecordsetPtr, GetReceiptHdrList, (const SessionPtr&, Array&), (override));
  MOCK_METHOD(RecordsetPtr, GetReceiptItems, (const SessionPtr&, Array&), (override));
  MOCK_METHOD(RecordsetPtr, GetReceiptItemList, (const SessionPtr&, Array&), (override));
  MOCK_METHOD(int32_t, SubmitReceipt,
              (const SessionPtr&, const RecordsetPtr&, const RecordsetPtr&, Array&), (override));
};

// Matches a parameter array holding exactly these values, indexed from 0.
MATCHER_P(ParamsAre, values, "") {
  if (arg.dims() != 1 || arg.lbound() != 0) return false;
  return arg.values() == values;
}

}  // namespace kxui::testing
