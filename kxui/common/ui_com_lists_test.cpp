// UICom's plain lists and address records, against gmock business objects.
#include <functional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "kxui/business/progids.h"
#include "kxui/common/ui_com.h"
#include "kxui/testing/fake_services.h"
#include "kxui/testing/mock_common.h"

namespace kxui {
namespace {

using namespace ::testing;
using namespace kxui::testing;

template <class T>
std::shared_ptr<T> nice() {
  return std::make_shared<NiceMock<T>>();
}

class UIComListsTest : public Test {
 protected:
  void SetUp() override {
    session->locale_id = 2057;
    env->provide(progid::BillTo, bill_to);
    env->provide(progid::ShipTo, ship_to);
    env->provide(progid::Commodity, commodity);
    env->provide(progid::CurrencyCodes, currencies);
    env->provide(progid::Mfr, mfr);
    env->provide(progid::Borg, borg);
    env->provide(progid::UOM, uom);
    env->provide(progid::PaymentMethod, payment);
    env->provide(progid::ShipMethod, shipping);
    env->provide(progid::ReceiptItemStatus, statuses);
    env->provide(progid::SysUser, sys_user);
    env->provide(progid::Locale, locales);
    env->provide(progid::TimeZone, zones);
    env->provide(progid::CostCenter, cost_centers);
  }

  std::shared_ptr<TestEnv> env = TestEnv::make();
  FakeServices fakes = FakeServices::install(*env);
  std::shared_ptr<BasicSession> session = make_session();
  SessionPtr s = session;
  Variant custom{"custom"};
  RecordsetPtr list = make_recordset({{"ID", adInteger}}, {{Variant(1)}});

  std::shared_ptr<MockBillTo> bill_to = nice<MockBillTo>();
  std::shared_ptr<MockShipTo> ship_to = nice<MockShipTo>();
  std::shared_ptr<MockCommodity> commodity = nice<MockCommodity>();
  std::shared_ptr<MockCurrencyCodes> currencies = nice<MockCurrencyCodes>();
  std::shared_ptr<MockMfr> mfr = nice<MockMfr>();
  std::shared_ptr<MockBorg> borg = nice<MockBorg>();
  std::shared_ptr<MockUOM> uom = nice<MockUOM>();
  std::shared_ptr<MockPaymentMethod> payment = nice<MockPaymentMethod>();
  std::shared_ptr<MockShipMethod> shipping = nice<MockShipMethod>();
  std::shared_ptr<MockReceiptItemStatus> statuses = nice<MockReceiptItemStatus>();
  std::shared_ptr<MockSysUser> sys_user = nice<MockSysUser>();
  std::shared_ptr<MockLocale> locales = nice<MockLocale>();
  std::shared_ptr<MockTimeZone> zones = nice<MockTimeZone>();
  std::shared_ptr<MockCostCenter> cost_centers = nice<MockCostCenter>();
  UICom ui{env->runtime};
};

// Each plain list: the exact business call with the caller's own custom data, the
// result handed back as it is, and a False Success() recorded under the list's source
// (GetUserBorgList has no Success() to ask).
TEST_F(UIComListsTest, PlainListsPassTheBusinessListThrough) {
  struct Case {
    std::string source;
    FakeBusinessObject* obj;
    // Expects the business call and answers `rs`; Success() answers `ok`.
    std::function<void(RecordsetPtr rs, bool ok)> expect;
    std::function<RecordsetPtr()> call;
  };
  auto& c = custom;
  const Case cases[] = {
      {"GetBillToList", bill_to.get(),
       [&](RecordsetPtr rs, bool ok) {
         EXPECT_CALL(*bill_to, GetBillToList(s, 31, Ref(c))).WillOnce(Return(rs));
         EXPECT_CALL(*bill_to, Success()).WillOnce(Return(ok));
       },
       [&] { return ui.GetBillToList(s, 31, c); }},
      {"GetShipToList", ship_to.get(),
       [&](RecordsetPtr rs, bool ok) {
         EXPECT_CALL(*ship_to, GetShipToList(s, 32, Ref(c))).WillOnce(Return(rs));
         EXPECT_CALL(*ship_to, Success()).WillOnce(Return(ok));
       },
       [&] { return ui.GetShipToList(s, 32, c); }},
      {"GetCommodityList", commodity.get(),
       [&](RecordsetPtr rs, bool ok) {
         EXPECT_CALL(*commodity, GetChildren(s, 0, 3, 3, true, false, 0, Ref(c)))
             .WillOnce(Return(rs));
         EXPECT_CALL(*commodity, Success()).WillOnce(Return(ok));
       },
       [&] { return ui.GetCommodityList(s, c); }},
      {"GetCurrencyList", currencies.get(),
       [&](RecordsetPtr rs, bool ok) {
         EXPECT_CALL(*currencies, GetCurrencyList(s, Ref(c))).WillOnce(Return(rs));
         EXPECT_CALL(*currencies, Success()).WillOnce(Return(ok));
       },
       [&] { return ui.GetCurrencyList(s, c); }},
      {"GetMfrList", mfr.get(),
       [&](RecordsetPtr rs, bool ok) {
         EXPECT_CALL(*mfr, GetMfrList(s, Ref(c))).WillOnce(Return(rs));
         EXPECT_CALL(*mfr, Success()).WillOnce(Return(ok));
       },
       [&] { return ui.GetMfrList(s, c); }},
      {"GetSupplierList", borg.get(),
       [&](RecordsetPtr rs, bool ok) {
         EXPECT_CALL(*borg, GetSupplierList(s, Ref(c))).WillOnce(Return(rs));
         EXPECT_CALL(*borg, Success()).WillOnce(Return(ok));
       },
       [&] { return ui.GetSupplierList(s, c); }},
      {"GetUOMList", uom.get(),
       [&](RecordsetPtr rs, bool ok) {
         EXPECT_CALL(*uom, GetUOMList(s, Ref(c))).WillOnce(Return(rs));
         EXPECT_CALL(*uom, Success()).WillOnce(Return(ok));
       },
       [&] { return ui.GetUOMList(s, c); }},
      {"GetPaymentMethodList", payment.get(),
       [&](RecordsetPtr rs, bool ok) {
         EXPECT_CALL(*payment, GetPaymentMethodList(s, 41, 42, Ref(c))).WillOnce(Return(rs));
         EXPECT_CALL(*payment, Success()).WillOnce(Return(ok));
       },
       [&] { return ui.GetPaymentMethodList(s, 41, 42, c); }},
      {"GetShipMethodList", shipping.get(),
       [&](RecordsetPtr rs, bool ok) {
         EXPECT_CALL(*shipping, GetShipMethodList(s, 43, Ref(c))).WillOnce(Return(rs));
         EXPECT_CALL(*shipping, Success()).WillOnce(Return(ok));
       },
       [&] { return ui.GetShipMethodList(s, 43, c); }},
      {"GetReceiptItemStatusList", statuses.get(),
       [&](RecordsetPtr rs, bool ok) {
         EXPECT_CALL(*statuses, GetReceiptItemStatusList(s, Ref(c))).WillOnce(Return(rs));
         EXPECT_CALL(*statuses, Success()).WillOnce(Return(ok));
       },
       [&] { return ui.GetReceiptItemStatusList(s, c); }},
      {"GetUserBorgList", nullptr,
       [&](RecordsetPtr rs, bool) {
         EXPECT_CALL(*sys_user, GetUserBorgList(s, Ref(c))).WillOnce(Return(rs));
       },
       [&] { return ui.GetUserBorgList(s, c); }},
  };
  for (const Case& t : cases) {
    SCOPED_TRACE(t.source);
    t.expect(list, true);
    EXPECT_EQ(t.call(), list);
    if (!t.obj) continue;
    t.obj->fail_with(70, "Tier", "list refused");
    t.expect(list, false);
    EXPECT_EQ(t.call(), nullptr);
    EXPECT_THAT(ui.Error(), ErrorIs(70, "UICom::" + t.source + " Tier"));
    EXPECT_EQ(ui.Error()->Description(), "list refused");
  }
  EXPECT_EQ(env->count(progid::Commodity), 2) << "one object per call";
  EXPECT_TRUE(env->log->written.empty()) << "list failures are not logged";
}

TEST_F(UIComListsTest, AThrowingBusinessCallIsRecordedUnderTheListsSource) {
  EXPECT_CALL(*sys_user, GetUserBorgList).WillOnce(Throw(Failure(3021, "Tier", "no row")));
  EXPECT_EQ(ui.GetUserBorgList(s), nullptr);
  EXPECT_THAT(ui.Error(), ErrorIs(3021, "UICom::GetUserBorgList Tier"));
}

// The Boolean lists store the list, even an empty one, and answer whether it has a
// row; no Success() is asked and an empty list records nothing. A Nothing list fails
// and leaves the out argument alone.
TEST_F(UIComListsTest, BooleanListsStoreTheListAndTellWhetherItHasRows) {
  struct Case {
    std::string source;
    std::function<void(RecordsetPtr)> answer;
    std::function<bool(RecordsetPtr&)> call;
  };
  auto& c = custom;
  const Case cases[] = {
      {"GetLocaleList",
       [&](RecordsetPtr rs) {
         EXPECT_CALL(*locales, GetLocaleList(s, Ref(c))).WillOnce(Return(rs));
       },
       [&](RecordsetPtr& out) { return ui.GetLocaleList(s, out, c); }},
      {"GetTimeZoneList",
       [&](RecordsetPtr rs) {
         EXPECT_CALL(*zones, GetTimeZoneList(s, Ref(c))).WillOnce(Return(rs));
       },
       [&](RecordsetPtr& out) { return ui.GetTimeZoneList(s, out, c); }},
      {"GetBorgCostCenters",
       [&](RecordsetPtr rs) {
         EXPECT_CALL(*cost_centers, GetBorgCostCenters(s, 77, Ref(c))).WillOnce(Return(rs));
       },
       [&](RecordsetPtr& out) { return ui.GetBorgCostCenters(s, 77, out, c); }},
  };
  const RecordsetPtr empty = make_recordset({{"ID", adInteger}});
  const RecordsetPtr at_end = make_recordset({{"ID", adInteger}}, {{Variant(1)}});
  at_end->MoveNext();
  for (const Case& t : cases) {
    SCOPED_TRACE(t.source);
    RecordsetPtr out;
    t.answer(list);
    EXPECT_TRUE(t.call(out));
    EXPECT_EQ(out, list);

    t.answer(empty);
    EXPECT_FALSE(t.call(out));
    EXPECT_EQ(out, empty);
    t.answer(at_end);
    EXPECT_FALSE(t.call(out)) << "a list already at EOF counts as none";
    EXPECT_EQ(ui.Error()->Number(), 0) << "no rows is not an error";

    t.answer(nullptr);
    EXPECT_FALSE(t.call(out));
    EXPECT_EQ(out, at_end);
    EXPECT_THAT(ui.Error(), ErrorIs(err::kObjectNotSet, "UICom::" + t.source + " "));
    env->last_error()->number = 0;
  }
}

class MockAddressFormatter : public AddressFormatter {
 public:
  using Lines = std::array<std::string, kLines>;
  MOCK_METHOD(Lines, FormatAddressLines, (int32_t, const AddressParts&), (override));
};

// The columns as "Name type size, ...".
std::string layout_of(const Recordset& rs) {
  std::string out;
  for (int32_t i = 0; i < rs.GetFields().Count(); ++i) {
    const FieldInfo& f = rs.GetFields().info(i);
    out += (i ? ", " : "") + f.name + " " + std::to_string(f.type) + " " +
           std::to_string(f.defined_size);
  }
  return out;
}

std::vector<Variant> row_of(const Recordset& rs) {
  std::vector<Variant> row;
  for (int32_t i = 0; i < rs.GetFields().Count(); ++i) row.push_back(rs.value(i));
  return row;
}

template <class M>
void fill_record(M& m) {
  AddressParts a;
  a.line1 = "1 Main St";
  a.city = "Leeds";
  a.postal_code = "LS1 4AP";
  ON_CALL(m, ID()).WillByDefault(Return(9.0));
  ON_CALL(m, Address()).WillByDefault(Return(a));
  ON_CALL(m, ContactName()).WillByDefault(Return("Ann Lee"));
  ON_CALL(m, Telephone()).WillByDefault(Return("0113 496 0000"));
  ON_CALL(m, Email()).WillByDefault(Return(std::string(80, 'e')));
  ON_CALL(m, Fax()).WillByDefault(Return("0113 496 0001"));
  ON_CALL(m, ContactLocation()).WillByDefault(Return(std::string(35, 'L')));
}

// The address records: columns in order with their types and sizes, the values of the
// loaded record, and the display address laid out for the session's locale.
TEST_F(UIComListsTest, AddressRecordsHoldOneFormattedRow) {
  auto formatter = std::make_shared<NiceMock<MockAddressFormatter>>();
  env->provide(service_class::kAddressFormatter, formatter);
  ON_CALL(*formatter, FormatAddressLines(2057, Truly([](const AddressParts& p) {
                                           return p.line1 == "1 Main St" && p.city == "Leeds" &&
                                                  p.postal_code == "LS1 4AP";
                                         })))
      .WillByDefault(Return(MockAddressFormatter::Lines{" 1 Main St ", "  ", "Leeds LS1 4AP"}));
  fill_record(*bill_to);
  fill_record(*ship_to);
  ON_CALL(*ship_to, Taxable()).WillByDefault(Return(true));
  EXPECT_CALL(*bill_to, Load(s, 12, Ref(custom))).WillOnce(Return(true));
  EXPECT_CALL(*ship_to, Load(s, 13, Ref(custom))).WillOnce(Return(true));

  const std::vector<Variant> values = {Variant(9.0),
                                       Variant("1 Main St\r\nLeeds LS1 4AP\r\n"),
                                       Variant("Ann Lee"),
                                       Variant("0113 496 0000"),
                                       Variant(std::string(80, 'e')),
                                       Variant("0113 496 0001"),
                                       Variant(std::string(35, 'L'))};
  auto bill = ui.GetBillToData(s, 12, custom);
  ASSERT_NE(bill, nullptr) << ui.Error()->Description();
  EXPECT_EQ(layout_of(*bill),
            "BillToID 5 0, DisplayBillToAddress 202 300, BillToContactName 202 35, "
            "BillToTelephone 202 35, BillToEmail 202 80, BillToFax 202 35, "
            "BillToContactLocation 202 35");
  EXPECT_EQ(bill->RecordCount(), 1);
  EXPECT_EQ(row_of(*bill), values);

  auto ship = ui.GetShipToData(s, 13, custom);
  ASSERT_NE(ship, nullptr) << ui.Error()->Description();
  EXPECT_EQ(layout_of(*ship),
            "ShipToID 5 0, DisplayShipToAddress 202 300, ShipToContactName 202 35, "
            "ShipToTelephone 202 35, ShipToEmail 202 80, ShipToFax 202 35, "
            "ShipToContactLocation 202 35, Taxable 11 0");
  std::vector<Variant> ship_values = values;
  ship_values.push_back(Variant(true));
  EXPECT_EQ(row_of(*ship), ship_values);
}

TEST_F(UIComListsTest, AddressRecordFailures) {
  fill_record(*bill_to);
  fill_record(*ship_to);
  bill_to->fail_with(11, "BillTo", "no such address");
  ship_to->fail_with(12, "ShipTo", "no such address");
  ON_CALL(*bill_to, Load).WillByDefault(Return(false));
  EXPECT_EQ(ui.GetBillToData(s, 5), nullptr);
  EXPECT_THAT(ui.Error(), ErrorIs(11, "UICom::GetBillToData BillTo"));
  ON_CALL(*ship_to, Load).WillByDefault(Return(false));
  EXPECT_EQ(ui.GetShipToData(s, 5), nullptr);
  EXPECT_THAT(ui.Error(), ErrorIs(12, "UICom::GetShipToData ShipTo"));

  ON_CALL(*ship_to, Load).WillByDefault(Return(true));
  ON_CALL(*ship_to, Fax()).WillByDefault(Return(std::string(36, 'f')));
  EXPECT_EQ(ui.GetShipToData(s, 5), nullptr) << "never cut to fit";
  EXPECT_EQ(ui.Error()->Source().rfind("UICom::GetShipToData ", 0), 0u);
  EXPECT_TRUE(env->log->written.empty());
}

}  // namespace
}  // namespace kxui
