// Fakes of the platform services with predictable output, so tests can assert exact
// display texts without depending on a locale library:
//   FormatDateValue(1033, 2, 2024-03-05)      -> "1033/2/2024-03-05"
//   ConvertTimeZone(15, d, z)                 -> d shifted by (z - 15) hours
//   FormatCurrencyAmount(1033, "USD", 12.5)   -> "USD 12.50@1033"
//   FormatAmount(1033, 2.5)                   -> "2.5@1033"
//   ParseNumber: '.' decimals; locale 1031 (German) uses ',' — strict, blanks allowed.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "kxui/frame/services.h"
#include "kxui/testing/fault_injection.h"
#include "kxui/testing/test_runtime.h"

namespace kxui::testing {

class FakeAppIni : public AppIni, public FakeBusinessObject {
 public:
  ErrorInfoPtr GetError() override { return FakeBusinessObject::GetError(); }
  bool ReadValue(const SessionPtr& session, const std::string& name, const std::string& section,
                 const std::string& app_name, Variant& custom_data) override;
  std::string GetValue() override {
    fault::point("AppIni::GetValue");
    return value_;
  }
  RecordsetPtr GetSettingsList(const SessionPtr& session, Variant& custom_data) override;
  bool Success() override {
    fault::point("AppIni::Success");
    return success;
  }

  void set(const std::string& name, const std::string& section, const std::string& app,
           std::string value) {
    values[{name, section, app}] = std::move(value);
  }
  std::map<std::tuple<std::string, std::string, std::string>, std::string> values;
  std::vector<std::string> reads;  // names asked for, in order
  RecordsetPtr settings_list;
  bool success = true;

 private:
  std::string value_;
};

class FakeDateFormatter : public DateFormatter {
 public:
  std::string FormatDateValue(int32_t locale_id, int32_t style, Date date) override;
  Date ConvertTimeZone(int32_t from_zone, Date date, int32_t to_zone) override;
  int conversions = 0;
  int formats = 0;
};

class FakeCurrencyFormatter : public CurrencyFormatter {
 public:
  std::string FormatAmount(int32_t locale_id, double amount) override;
  std::string FormatCurrencyAmount(int32_t locale_id, const std::string& currency_code,
                                   double amount) override;
  bool ParseNumber(int32_t locale_id, const std::string& text, double& number) override;
  std::vector<std::string> parsed;  // texts asked for, in order
};

class FakeAddressFormatter : public AddressFormatter {
 public:
  std::array<std::string, kLines> FormatAddressLines(int32_t locale_id,
                                                     const AddressParts& parts) override;
};

// The fakes, registered in an env: the AppIni by ProgID, the locale services by class.
struct FakeServices {
  std::shared_ptr<FakeAppIni> ini = std::make_shared<FakeAppIni>();
  std::shared_ptr<FakeDateFormatter> dates = std::make_shared<FakeDateFormatter>();
  std::shared_ptr<FakeCurrencyFormatter> money = std::make_shared<FakeCurrencyFormatter>();
  std::shared_ptr<FakeAddressFormatter> addresses = std::make_shared<FakeAddressFormatter>();

  static FakeServices install(TestEnv& env);
};

// A record set with the given columns (name, type, defined size), opened, with rows
// added from `rows` (one vector per row, in column order).
RecordsetPtr make_recordset(const std::vector<FieldInfo>& columns,
                            const std::vector<std::vector<Variant>>& rows = {});

}  // namespace kxui::testing
