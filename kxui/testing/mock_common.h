// gmock doubles of the reference-data and account contracts, and a late-bound object
// that records the members called on it by name.
#pragma once

#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>

#include "kxui/business/account.h"
#include "kxui/business/commodity.h"
#include "kxui/business/reference_data.h"
#include "kxui/business/utils.h"
#include "kxui/frame/runtime.h"
#include "kxui/testing/test_runtime.h"
#include "kxui/testing/mock_utils.h"

namespace kxui::testing {

using S = const SessionPtr&;
using Str = const std::string&;

#define KXUI_ADDRESS_RECORD_MOCKS                              \
  MOCK_METHOD(bool, Load, (S, int32_t, Variant&), (override)); \
  MOCK_METHOD(double, ID, (), (override));                     \
  MOCK_METHOD(AddressParts, Address, (), (override));          \
  MOCK_METHOD(std::string, ContactName, (), (override));       \
  MOCK_METHOD(std::string, Telephone, (), (override));         \
  MOCK_METHOD(std::string, Email, (), (override));             \
  MOCK_METHOD(std::string, Fax, (), (override));               \
  MOCK_METHOD(std::string, ContactLocation, (), (override));   \
  MOCK_METHOD(bool, Success, (), (override))

class MockBillTo : public business::BillTo, public FakeBusinessObject {
 public:
  KXUI_ADDRESS_RECORD_MOCKS;
  MOCK_METHOD(RecordsetPtr, GetBillToList, (S, int32_t, Variant&), (override));
};

class MockShipTo : public business::ShipTo, public FakeBusinessObject {
 public:
  KXUI_ADDRESS_RECORD_MOCKS;
  MOCK_METHOD(RecordsetPtr, GetShipToList, (S, int32_t, Variant&), (override));
  MOCK_METHOD(bool, Taxable, (), (override));
};

#undef KXUI_ADDRESS_RECORD_MOCKS

class MockCommodity : public business::Commodity, public FakeBusinessObject {
 public:
  MOCK_METHOD(RecordsetPtr, GetChildren,
              (S, int32_t, int32_t, int32_t, bool, bool, int32_t, Variant&), (override));
  MOCK_METHOD(RecordsetPtr, GetCommodityPath, (S, int32_t, int32_t, int32_t, Variant&), (override));
  MOCK_METHOD(int32_t, RecordCount, (), (override));
  MOCK_METHOD(bool, Success, (), (override));
};

class MockCurrencyCodes : public business::CurrencyCodes, public FakeBusinessObject {
 public:
  MOCK_METHOD(RecordsetPtr, GetCurrencyList, (S, Variant&), (override));
  MOCK_METHOD(RecordsetPtr, GetCurrencyListByBorg, (S, Variant&), (override));
  MOCK_METHOD(bool, Success, (), (override));
};

class MockMfr : public business::Mfr, public FakeBusinessObject {
 public:
  MOCK_METHOD(RecordsetPtr, GetMfrList, (S, Variant&), (override));
  MOCK_METHOD(bool, Success, (), (override));
};

class MockBorg : public business::Borg, public FakeBusinessObject {
 public:
  MOCK_METHOD(RecordsetPtr, GetSupplierList, (S, Variant&), (override));
  MOCK_METHOD(bool, Success, (), (override));
};

class MockUOM : public business::UOM, public FakeBusinessObject {
 public:
  MOCK_METHOD(RecordsetPtr, GetUOMList, (S, Variant&), (override));
  MOCK_METHOD(RecordsetPtr, GetUOMDescList, (S, Variant&), (override));
  MOCK_METHOD(bool, Success, (), (override));
};

class MockPaymentMethod : public business::PaymentMethod, public FakeBusinessObject {
 public:
  MOCK_METHOD(RecordsetPtr, GetPaymentMethodList, (S, int32_t, int32_t, Variant&), (override));
  MOCK_METHOD(bool, Success, (), (override));
};

class MockShipMethod : public business::ShipMethod, public FakeBusinessObject {
 public:
  MOCK_METHOD(RecordsetPtr, GetShipMethodList, (S, int32_t, Variant&), (override));
  MOCK_METHOD(bool, Success, (), (override));
};

class MockReceiptItemStatus : public business::ReceiptItemStatus, public FakeBusinessObject {
 public:
  MOCK_METHOD(RecordsetPtr, GetReceiptItemStatusList, (S, Variant&), (override));
  MOCK_METHOD(bool, Success, (), (override));
};

class MockSysUser : public business::SysUser, public FakeBusinessObject {
 public:
  MOCK_METHOD(RecordsetPtr, GetUserBorgList, (S, Variant&), (override));
};

class MockLocale : public business::Locale, public FakeBusinessObject {
 public:
  MOCK_METHOD(RecordsetPtr, GetLocaleList, (S, Variant&), (override));
};

class MockTimeZone : public business::TimeZone, public FakeBusinessObject {
 public:
  MOCK_METHOD(RecordsetPtr, GetTimeZoneList, (S, Variant&), (override));
};

class MockCostCenter : public business::CostCenter, public FakeBusinessObject {
 public:
  MOCK_METHOD(RecordsetPtr, GetBorgCostCenters, (S, int32_t, Variant&), (override));
};

class MockUserPaymentMethod : public business::UserPaymentMethod, public FakeBusinessObject {
 public:
  MOCK_METHOD(RecordsetPtr, GetDataBySysUserID, (S, int32_t, Variant&), (override));
  MOCK_METHOD(RecordsetPtr, GetDataBySysUserIDPayMethID, (S, int32_t, int32_t, Variant&),
              (override));
  MOCK_METHOD(bool, Update, (S, int32_t, int32_t, const Variant&, int32_t, Variant&), (override));
  MOCK_METHOD(bool, Success, (), (override));
};

class MockLoginValidator : public business::LoginValidator {
 public:
  MOCK_METHOD(bool, ValidateLogin, (int32_t, Str, Str), (override));
  MOCK_METHOD(Variant, SysUserID, (), (override));
};

class MockUserRecord : public business::UserRecord {
 public:
  MOCK_METHOD(void, SetEboID, (int32_t), (override));
  MOCK_METHOD(void, SetSysUserID, (int32_t), (override));
  MOCK_METHOD(void, SetCreatedBy, (int32_t), (override));
  MOCK_METHOD(void, SetModifiedBy, (int32_t), (override));
  MOCK_METHOD(Variant, TimeZoneID, (), (override));
  MOCK_METHOD(void, SetTimeZoneID, (int32_t), (override));
  MOCK_METHOD(void, SetLocaleID, (int32_t), (override));
  MOCK_METHOD(void, Save, (), (override));
};

class MockBorgUserRecord : public business::BorgUserRecord {
 public:
  MOCK_METHOD(void, SetEboID, (int32_t), (override));
  MOCK_METHOD(void, Fetch, (int32_t, int32_t), (override));
  MOCK_METHOD(Variant, BillToID, (), (override));
  MOCK_METHOD(Variant, ShipToID, (), (override));
  MOCK_METHOD(Variant, CostCenterID, (), (override));
  MOCK_METHOD(double, SpendingLimit, (), (override));
  MOCK_METHOD(double, ApprovalLimit, (), (override));
};

class MockEboRecord : public business::EboRecord {
 public:
  MOCK_METHOD(void, SetEboID, (int32_t), (override));
  MOCK_METHOD(std::string, News, (), (override));
  MOCK_METHOD(std::string, DefaultLangCode, (), (override));
  MOCK_METHOD(std::string, DefaultCountryCode, (), (override));
};

class MockBorgRecord : public business::BorgRecord {
 public:
  MOCK_METHOD(void, SetEboID, (int32_t), (override));
  MOCK_METHOD(void, SetBorgID, (int32_t), (override));
  MOCK_METHOD(std::string, News, (), (override));
};

class MockHostRecord : public business::HostRecord {
 public:
  MOCK_METHOD(int32_t, HostID, (), (override));
  MOCK_METHOD(void, SetHostID, (int32_t), (override));
  MOCK_METHOD(std::string, News, (), (override));
};

// A late-bound object with the members named in `members`; each call is kept as
// "name(arg,arg)" with the arguments' text. Calling `failing` throws 5.
class RecordingDispatch : public Dispatch {
 public:
  explicit RecordingDispatch(std::vector<std::string> members) : members_(std::move(members)) {}

  int32_t GetIDOfName(std::string_view name) override {
    for (size_t i = 0; i < members_.size(); ++i) {
      if (members_[i] == name) return static_cast<int32_t>(i);
    }
    fail(err::kNoSuchMember, "Dispatch", name);
  }
  Variant Invoke(int32_t dispid, std::span<Variant> args) override {
    const std::string& name = members_.at(static_cast<size_t>(dispid));
    std::string call = name + "(";
    for (size_t i = 0; i < args.size(); ++i) call += (i ? "," : "") + args[i].to_string();
    calls.push_back(call + ")");
    if (name == failing) throw Failure(5, "BorgUser", "refused: " + name);
    return Variant();
  }

  std::vector<std::string> calls;
  std::string failing;

 private:
  std::vector<std::string> members_;
};

}  // namespace kxui::testing
