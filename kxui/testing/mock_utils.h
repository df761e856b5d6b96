// gmock double of "KxUtility03.Utils", shared by every area that reads the server's
// clock or converts currencies.
#pragma once

#include <string>

#include <gmock/gmock.h>

#include "kxui/business/utils.h"
#include "kxui/testing/test_runtime.h"

namespace kxui::testing {

class MockUtils : public business::Utils, public FakeBusinessObject {
 public:
  MOCK_METHOD(Variant, GetServerDate, (const SessionPtr&, Variant&), (override));
  MOCK_METHOD(bool, ConvertCurrency,
              (const SessionPtr&, double, const std::string&, const std::string&, const Variant&,
               double&, Variant&),
              (override));
};

}  // namespace kxui::testing
