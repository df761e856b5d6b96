// gmock doubles of the report objects ("KxReport03.*").
#pragma once

#include <gmock/gmock.h>

#include "kxui/business/report.h"
#include "kxui/testing/test_runtime.h"

namespace kxui::testing {

class MockReport : public business::Report, public FakeBusinessObject {
 public:
  MOCK_METHOD(RecordsetPtr, GetReportList, (const SessionPtr&, Variant&), (override));
  MOCK_METHOD(bool, Load, (const SessionPtr&, int32_t, Variant&), (override));
  MOCK_METHOD(std::string, ReportName, (), (override));
  MOCK_METHOD(std::string, ReportClass, (), (override));
  MOCK_METHOD(bool, Success, (), (override));
};

class MockReportParam : public business::ReportParam, public FakeBusinessObject {
 public:
  MOCK_METHOD(RecordsetPtr, GetReportParams, (const SessionPtr&, int32_t, Variant&), (override));
  MOCK_METHOD(bool, Success, (), (override));
};

class MockReportData : public business::ReportData, public FakeBusinessObject {
 public:
  MOCK_METHOD(RecordsetPtr, GetReportData,
              (const SessionPtr&, const std::vector<Variant>&, Variant&), (override));
  MOCK_METHOD(bool, Success, (), (override));
};

}  // namespace kxui::testing
