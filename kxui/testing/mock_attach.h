// gmock double of the attachment objects ("KxAttach03.*"; all four share one contract).
#pragma once

#include <gmock/gmock.h>

#include "kxui/business/attachment.h"
#include "kxui/testing/test_runtime.h"

namespace kxui::testing {

class MockAttachment : public business::Attachment, public FakeBusinessObject {
 public:
  MOCK_METHOD(RecordsetPtr, GetAttachmentList, (const SessionPtr&, int32_t, int32_t, Variant&),
              (override));
  MOCK_METHOD(bool, AddAttachment,
              (const SessionPtr&, int32_t, int32_t, const std::string&, const std::string&,
               int32_t&, Variant&),
              (override));
  MOCK_METHOD(bool, GetAttachment,
              (const SessionPtr&, int32_t, int32_t, int32_t, std::string&, std::string&, Variant&),
              (override));
  MOCK_METHOD(bool, DeleteAttachment, (const SessionPtr&, int32_t, int32_t, int32_t, Variant&),
              (override));
  MOCK_METHOD(bool, Success, (), (override));
};

}  // namespace kxui::testing
