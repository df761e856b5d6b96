// UICom's HTML option lists: the exact markup of both forms, selection, Null handling,
// unescaped values, and failures.
#include <functional>
#include <map>

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
using Rows = std::vector<std::vector<Variant>>;

const Variant kNull = Variant::null();
constexpr int32_t kNullable = adFldIsNullable;

RecordsetPtr commodities(const Rows& rows) {
  return make_recordset(
      {{"CommodityID", adInteger, 0, kNullable}, {"Description", adVarWChar, 100, kNullable}},
      rows);
}
RecordsetPtr currencies(const Rows& rows) {
  return make_recordset(
      {{"CurrencyCode", adVarWChar, 10, kNullable}, {"CurrencyName", adVarWChar, 50, kNullable}},
      rows);
}
RecordsetPtr mfrs(const Rows& rows) {
  return make_recordset({{"MfrID", adInteger, 0, kNullable}, {"Name", adVarWChar, 100, kNullable}},
                        rows);
}
RecordsetPtr suppliers(const Rows& rows) {
  return make_recordset(
      {{"SupplierID", adInteger, 0, kNullable}, {"Name", adVarWChar, 100, kNullable}}, rows);
}
// Description first: columns are found by name, wherever they are.
RecordsetPtr units(const Rows& rows) {
  Rows swapped;
  for (const auto& row : rows) swapped.push_back({row.at(1), row.at(0)});
  return make_recordset(
      {{"VeltrixDesc", adVarWChar, 100, kNullable}, {"UOMID", adVarWChar, 10, kNullable}}, swapped);
}
// A list the business tier left on its last row.
RecordsetPtr at_last(RecordsetPtr rs) {
  rs->MoveLast();
  return rs;
}

class UIComOptionsTest : public Test {
 protected:
  void SetUp() override {
    env->provide(progid::Commodity, commodity);
    env->provide(progid::CurrencyCodes, currency);
    env->provide(progid::Mfr, mfr);
    env->provide(progid::Borg, borg);
    env->provide(progid::UOM, uom);
    for (auto* obj : std::initializer_list<FakeBusinessObject*>{commodity.get(), currency.get(),
                                                                mfr.get(), borg.get(), uom.get()}) {
      obj->fail_with(80, "Tier", "list refused");
    }
    ON_CALL(*commodity, Success()).WillByDefault(Return(true));
    ON_CALL(*currency, Success()).WillByDefault(Return(true));
    ON_CALL(*mfr, Success()).WillByDefault(Return(true));
    ON_CALL(*borg, Success()).WillByDefault(Return(true));
    ON_CALL(*uom, Success()).WillByDefault(Return(true));
  }

  struct Op {
    // Expects the operation's own business call, with the caller's custom data, and
    // answers `rs`.
    std::function<void(RecordsetPtr rs)> give;
    // Calls the operation with `selected` (Missing: omitted).
    std::function<bool(std::string& ret, const Variant& selected)> call;
  };

  // The six operations by name.
  std::map<std::string, Op> ops() {
    auto& c = custom;
    auto text = [&](auto method) {
      return [this, method](std::string& ret, const Variant& sel) {
        return sel.is_missing() ? (ui.*method)(s, ret, "", custom)
                                : (ui.*method)(s, ret, sel.to_string(), custom);
      };
    };
    return {
        {"GetCommodityList2",
         {[&](RecordsetPtr rs) {
            EXPECT_CALL(*commodity, GetChildren(s, 0, 3, 3, true, true, 0, Ref(c)))
                .WillOnce(Return(rs));
          },
          text(&UICom::GetCommodityList2)}},
        {"GetCurrencyList2",
         {[&](RecordsetPtr rs) {
            EXPECT_CALL(*currency, GetCurrencyList(s, Ref(c))).WillOnce(Return(rs));
          },
          text(&UICom::GetCurrencyList2)}},
        {"GetCurrencyListByBorg",
         {[&](RecordsetPtr rs) {
            EXPECT_CALL(*currency, GetCurrencyListByBorg(s, Ref(c))).WillOnce(Return(rs));
          },
          text(&UICom::GetCurrencyListByBorg)}},
        {"GetMfrList2",
         {[&](RecordsetPtr rs) { EXPECT_CALL(*mfr, GetMfrList(s, Ref(c))).WillOnce(Return(rs)); },
          text(&UICom::GetMfrList2)}},
        {"GetSupplierList2",
         {[&](RecordsetPtr rs) {
            EXPECT_CALL(*borg, GetSupplierList(s, Ref(c))).WillOnce(Return(rs));
          },
          [this](std::string& ret, const Variant& sel) {
            return sel.is_missing() ? ui.GetSupplierList2(s, ret, 0, custom)
                                    : ui.GetSupplierList2(s, ret, sel.to_int32(), custom);
          }}},
        {"GetUOMList2",
         {[&](RecordsetPtr rs) {
            EXPECT_CALL(*uom, GetUOMDescList(s, Ref(c))).WillOnce(Return(rs));
          },
          text(&UICom::GetUOMList2)}},
    };
  }

  std::shared_ptr<TestEnv> env = TestEnv::make();
  SessionPtr s = make_session();
  Variant custom{"custom"};
  std::shared_ptr<MockCommodity> commodity = std::make_shared<NiceMock<MockCommodity>>();
  std::shared_ptr<MockCurrencyCodes> currency = std::make_shared<NiceMock<MockCurrencyCodes>>();
  std::shared_ptr<MockMfr> mfr = std::make_shared<NiceMock<MockMfr>>();
  std::shared_ptr<MockBorg> borg = std::make_shared<NiceMock<MockBorg>>();
  std::shared_ptr<MockUOM> uom = std::make_shared<NiceMock<MockUOM>>();
  UICom ui{env->runtime};
};

TEST_F(UIComOptionsTest, GoldenMarkup) {
  struct Case {
    const char* op;
    RecordsetPtr rows;
    Variant selected;
    std::string expected;
  } const cases[] = {
      {"GetCommodityList2",
       commodities({{Variant(5), Variant("Paper")}, {Variant(7), Variant("Toner")}}), Variant("7"),
       R"(<OPTION VALUE="5">Paper</OPTION><OPTION Selected VALUE="7">Toner</OPTION>)"},
      {"GetCurrencyList2",
       currencies({{Variant("USD"), Variant("US Dollar")}, {Variant("EUR"), kNull}}),
       Variant("EUR"),
       R"(<OPTION VALUE="USD">USD-US Dollar</OPTION><OPTION Selected VALUE="EUR">EUR-</OPTION>)"},
      {"GetCurrencyListByBorg",
       currencies({{Variant("US D"), Variant("Odd")}, {Variant("GBP"), Variant("Pound")}}),
       Variant("GBP"),
       "<OPTION VALUE=US D>US D-Odd</OPTION><OPTION Selected VALUE=GBP>GBP-Pound</OPTION>"},
      // Several rows match: each is selected; the manufacturer's ID selects too.
      {"GetMfrList2",
       mfrs({{Variant(1), Variant("Acme")},
             {Variant(2), Variant("Bolt")},
             {Variant(3), Variant("Acme")}}),
       Variant("Acme"),
       R"(<OPTION Selected VALUE="Acme">Acme</OPTION><OPTION VALUE="Bolt">Bolt</OPTION>)"
       R"(<OPTION Selected VALUE="Acme">Acme</OPTION>)"},
      {"GetMfrList2", mfrs({{Variant(1), Variant("Acme")}, {Variant(2), Variant("Bolt")}}),
       Variant("2"),
       R"(<OPTION VALUE="Acme">Acme</OPTION><OPTION Selected VALUE="Bolt">Bolt</OPTION>)"},
      {"GetMfrList2", mfrs({{Variant(4), kNull}}), Variant("4"),
       R"(<OPTION Selected VALUE=""></OPTION>)"},
      // Null keys never match, not even the omitted selection's 0.
      {"GetSupplierList2",
       suppliers({{Variant(10), Variant("A")}, {Variant(11), kNull}, {kNull, Variant("C")}}),
       Variant(11),
       "<OPTION VALUE=10>A</OPTION><OPTION Selected VALUE=11></OPTION>"
       "<OPTION VALUE=>C</OPTION>"},
      {"GetSupplierList2", suppliers({{Variant(0), Variant("Zero")}, {kNull, Variant("N")}}),
       Variant::missing(), "<OPTION Selected VALUE=0>Zero</OPTION><OPTION VALUE=>N</OPTION>"},
      {"GetCommodityList2", commodities({{kNull, Variant("Loose")}}), Variant(""),
       R"(<OPTION VALUE="">Loose</OPTION>)"},
      {"GetUOMList2", units({{Variant("EA"), Variant("Each")}, {Variant("BX"), Variant("Box")}}),
       Variant("bx"), R"(<OPTION VALUE="EA">EA-Each</OPTION><OPTION VALUE="BX">BX-Box</OPTION>)"},
      {"GetUOMList2", at_last(units({{Variant("EA"), Variant("Each")}, {Variant("BX"), kNull}})),
       Variant("EA"),
       R"(<OPTION Selected VALUE="EA">EA-Each</OPTION><OPTION VALUE="BX">BX-</OPTION>)"},
      // Omitted: nothing equals the empty text.
      {"GetCurrencyList2", currencies({{Variant("USD"), Variant("US Dollar")}}), Variant::missing(),
       R"(<OPTION VALUE="USD">USD-US Dollar</OPTION>)"},
      {"GetCurrencyListByBorg", currencies({{Variant("USD"), Variant("US Dollar")}}),
       Variant::missing(), "<OPTION VALUE=USD>USD-US Dollar</OPTION>"},
      {"GetCommodityList2", commodities({{Variant(5), Variant("Paper")}}), Variant::missing(),
       R"(<OPTION VALUE="5">Paper</OPTION>)"},
      {"GetMfrList2", mfrs({{Variant(1), Variant("Acme")}}), Variant::missing(),
       R"(<OPTION VALUE="Acme">Acme</OPTION>)"},
      {"GetUOMList2", units({{Variant("EA"), Variant("Each")}}), Variant::missing(),
       R"(<OPTION VALUE="EA">EA-Each</OPTION>)"},
      // Values and texts go in byte for byte, unescaped.
      {"GetCommodityList2",
       commodities({{Variant(1), Variant(R"(say "hi" <b>)")},
                    {Variant(2), Variant("</OPTION><script>x()</script>")}}),
       Variant("2"),
       R"(<OPTION VALUE="1">say "hi" <b></OPTION>)"
       R"(<OPTION Selected VALUE="2"></OPTION><script>x()</script></OPTION>)"},
      {"GetUOMList2", units({{Variant(R"(E"A)"), Variant("<i>")}}), Variant(R"(E"A)"),
       R"(<OPTION Selected VALUE="E"A">E"A-<i></OPTION>)"},
      {"GetMfrList2", mfrs({{Variant(1), Variant(R"("><script>)")}}), Variant(R"("><script>)"),
       R"(<OPTION Selected VALUE=""><script>">"><script></OPTION>)"},
      {"GetSupplierList2", suppliers({{Variant(3), Variant("</OPTION><script>")}}), Variant(3),
       "<OPTION Selected VALUE=3></OPTION><script></OPTION>"},
      {"GetCurrencyListByBorg", currencies({{Variant("<X\""), Variant("</OPTION><script>")}}),
       Variant("<X\""), "<OPTION Selected VALUE=<X\"><X\"-</OPTION><script></OPTION>"},
  };
  auto table = ops();
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.op) + " selecting " +
                 (c.selected.is_missing() ? "nothing" : c.selected.to_string()));
    const Op& op = table.at(c.op);
    op.give(c.rows);
    std::string ret = "stale";
    EXPECT_TRUE(op.call(ret, c.selected)) << ui.Error()->Description();
    EXPECT_EQ(ret, c.expected);
  }
  EXPECT_EQ(env->last_error()->number, 0);
}

TEST_F(UIComOptionsTest, EmptyListGivesEmptyTextAndTrue) {
  for (auto& [name, op] : ops()) {
    SCOPED_TRACE(name);
    op.give(make_recordset({}));  // no columns either: none is looked up
    std::string ret = "stale";
    EXPECT_TRUE(op.call(ret, Variant("1")));
    EXPECT_EQ(ret, "");
  }
  EXPECT_EQ(env->last_error()->number, 0);
}

// A business failure, or no list at all, leaves p_RetVal alone and records the error
// under the operation's source; option lists do not log.
TEST_F(UIComOptionsTest, FailuresLeaveTheFragmentUnchanged) {
  ON_CALL(*commodity, Success()).WillByDefault(Return(false));
  ON_CALL(*currency, Success()).WillByDefault(Return(false));
  ON_CALL(*mfr, Success()).WillByDefault(Return(false));
  ON_CALL(*borg, Success()).WillByDefault(Return(false));
  ON_CALL(*uom, Success()).WillByDefault(Return(false));
  for (auto& [name, op] : ops()) {
    SCOPED_TRACE(name);
    op.give(units({{Variant("EA"), Variant("Each")}}));
    std::string ret = "stale";
    EXPECT_FALSE(op.call(ret, Variant("1")));
    EXPECT_EQ(ret, "stale");
    EXPECT_THAT(ui.Error(), ErrorIs(80, "UICom::" + name + " Tier"));
  }
  ON_CALL(*uom, Success()).WillByDefault(Return(true));
  EXPECT_CALL(*uom, GetUOMDescList).WillOnce(Return(nullptr));
  std::string ret = "stale";
  EXPECT_FALSE(ui.GetUOMList2(s, ret));
  EXPECT_EQ(ret, "stale");
  EXPECT_THAT(ui.Error(), ErrorIs(err::kObjectNotSet, "UICom::GetUOMList2 "));
  EXPECT_TRUE(env->log->written.empty());
}

}  // namespace
}  // namespace kxui
