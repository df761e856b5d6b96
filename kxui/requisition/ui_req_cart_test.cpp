// The cart, item details, quantity updates, deletion, favourites and cost distribution,
// against gmock business objects.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "kxui/business/progids.h"
#include "kxui/requisition/ui_req.h"
#include "kxui/testing/fake_services.h"
#include "kxui/testing/mock_cart.h"

namespace kxui {
namespace {

using namespace ::testing;
using kxui::testing::ErrorIs;
using kxui::testing::cart::MockCartRequisition;
using kxui::testing::cart::MockFavoriteItems;
using kxui::testing::cart::MockReqCostDistribs;
using kxui::testing::cart::MockUtils;
using Texts = std::vector<std::string>;
using Values = std::vector<Variant>;
using Shares = std::vector<business::CostDistrib>;

constexpr int32_t validation(int32_t message) { return int32_t(0x80040000u + uint32_t(message)); }

const Date kServerDate = Date::from_civil(2024, 6, 30, 12, 0, 0);

// Cart lines: LineNum, OrderQty, UnitPrice, CurrencyCode.
RecordsetPtr lines(const std::vector<Values>& rows) {
  return kxui::testing::make_recordset({{"LineNum", adInteger},
                                        {"OrderQty", adDouble},
                                        {"UnitPrice", adCurrency, 0, adFldIsNullable},
                                        {"CurrencyCode", adVarWChar, 3}},
                                       rows);
}

// Every row's values of the named columns, joined with "|".
Texts column_texts(const RecordsetPtr& rs, const Texts& names) {
  Texts out;
  if (!rs) return out;
  for (rs->MoveFirst(); !rs->IsEOF(); rs->MoveNext()) {
    std::string row;
    for (const std::string& n : names)
      row += (row.empty() ? "" : "|") + (*rs)[n].Value().to_string();
    out.push_back(row);
  }
  return out;
}

std::string layout(const RecordsetPtr& rs) {
  std::string out;
  for (int32_t i = 0; i < rs->GetFields().Count(); ++i) {
    const Field f = rs->GetFields()[i];
    out += (i ? "," : "") + f.Name() + ":" + std::to_string(f.DefinedSize());
  }
  return out;
}

class UIReqCartTest : public Test {
 protected:
  std::shared_ptr<kxui::testing::TestEnv> env = kxui::testing::TestEnv::make();
  kxui::testing::FakeServices fakes = kxui::testing::FakeServices::install(*env);
  std::shared_ptr<NiceMock<MockCartRequisition>> req =
      std::make_shared<NiceMock<MockCartRequisition>>();
  std::shared_ptr<StrictMock<MockUtils>> utils = std::make_shared<StrictMock<MockUtils>>();
  std::shared_ptr<BasicSession> session = kxui::testing::make_session();
  UIReq ui{env->runtime};

  void SetUp() override {
    env->provide(progid::Requisition, req);
    env->provide(progid::Utils, utils);
    req->fail_with(99, "Requisition", "refused");
    ON_CALL(*req, Success).WillByDefault(Return(true));
  }
  // Rates: EUR -> USD 1.5 at the server date; anything else has no rate.
  void expect_rates() {
    EXPECT_CALL(*utils, GetServerDate(Eq(session), _)).WillOnce(Return(Variant(kServerDate)));
    EXPECT_CALL(*utils, ConvertCurrency(Eq(session), _, _, "USD", Variant(kServerDate), _, _))
        .WillRepeatedly(Invoke(
            [](auto&, double amount, const std::string& from, auto&, auto&, double& out, auto&) {
              out = amount * 1.5;
              return from == "EUR";
            }));
  }
};

const Texts kCartColumns = {"LineNum", "UIDisplay_OrderQty", "UIDisplay_UnitPrice",
                            "UIDisplay_ExtendedPrice"};

TEST_F(UIReqCartTest, GetItemsRsShowsEveryLineInTheSessionsCurrency) {
  struct Case {
    const char* name;
    std::vector<Values> rows;
    bool converts;  // whether a rate is needed
    Texts expected;
  };
  const Case cases[] = {
      {"all in the session's currency: no conversion asked for",
       {{1, 2.0, Currency::from_double(10), "USD"}, {2, 0.5, Currency::from_double(3), "usd"}},
       false,
       {"1|2@1033|USD 10.00@1033|USD 20.00@1033", "2|0.5@1033|USD 3.00@1033|USD 1.50@1033"}},
      {"foreign prices converted once at the server date",
       {{1, 3.0, Currency::from_double(4), "EUR"},
        {2, 1.0, Currency::from_double(7), "USD"},
        {3, 2.0, Currency::from_double(1), "EUR"}},
       true,
       {"1|3@1033|USD 6.00@1033|USD 18.00@1033", "2|1@1033|USD 7.00@1033|USD 7.00@1033",
        "3|2@1033|USD 1.50@1033|USD 3.00@1033"}},
      {"an empty cart", {}, false, {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_CALL(*req, GetItems(Eq(session), 12, _)).WillOnce(Return(lines(c.rows)));
    if (c.converts) expect_rates();
    const int created_before = env->count(progid::Utils);
    RecordsetPtr rs = ui.GetItemsRs(session, 12);
    ASSERT_NE(rs, nullptr) << ui.Error()->Description();
    EXPECT_TRUE(ui.Success());
    EXPECT_EQ(layout(rs),
              "LineNum:0,OrderQty:0,UnitPrice:0,CurrencyCode:3,UIDisplay_OrderQty:50,"
              "UIDisplay_UnitPrice:100,UIDisplay_ExtendedPrice:100");
    EXPECT_EQ(column_texts(rs, kCartColumns), c.expected);
    EXPECT_EQ(env->count(progid::Utils) - created_before, c.converts ? 1 : 0);
    Mock::VerifyAndClearExpectations(utils.get());
  }
  // One conversion per foreign line, not one per money column.
  EXPECT_CALL(*req, GetItems).WillOnce(Return(lines({{1, 3.0, Currency::from_double(4), "EUR"}})));
  EXPECT_CALL(*utils, GetServerDate).WillOnce(Return(Variant(kServerDate)));
  EXPECT_CALL(*utils, ConvertCurrency(_, 4.0, "EUR", "USD", _, _, _))
      .WillOnce(DoAll(SetArgReferee<5>(6.0), Return(true)));
  EXPECT_NE(ui.GetItemsRs(session, 12), nullptr);
}

TEST_F(UIReqCartTest, APriceThatCannotBeConvertedFailsTheCartWithItsMessage) {
  struct Case {
    const char* name;
    Values row;
    bool asks_rate;
  };
  const Case cases[] = {
      {"no rate for the line's currency", {2, 1.0, Currency::from_double(5), "GBP"}, true},
      {"a line without a price", {2, 1.0, Variant::null(), "USD"}, false},
      {"a code differing only in its first letter",
       {2, 1.0, Currency::from_double(5), "ZSD"},
       true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    expect_rates();
    EXPECT_CALL(*req, GetItems)
        .WillOnce(Return(lines({{1, 1.0, Currency::from_double(4), "EUR"}})))
        .WillOnce(Return(lines({{1, 1.0, Currency::from_double(4), "EUR"}, c.row})));
    ASSERT_NE(ui.GetItemsRs(session, 12), nullptr);  // Success is set, to be cleared below
    ASSERT_TRUE(ui.Success());
    Mock::VerifyAndClearExpectations(utils.get());
    expect_rates();
    EXPECT_EQ(ui.GetItemsRs(session, 12), nullptr);
    EXPECT_FALSE(ui.Success());
    EXPECT_THAT(ui.Error(), ErrorIs(validation(11606), "UIReq::GetItemsRs "));
    EXPECT_EQ(ui.Error()->Description(), "Unable to convert unit price to local currency.");

    EXPECT_CALL(*req, GetItem(Eq(session), 12, 2, _)).WillOnce(Return(lines({c.row})));
    if (c.asks_rate) expect_rates();
    EXPECT_EQ(ui.GetItemDetails(session, 12, 2), nullptr);
    EXPECT_FALSE(ui.Success());
    EXPECT_THAT(ui.Error(), ErrorIs(validation(11607), "UIReq::GetItemDetails "));
    Mock::VerifyAndClearExpectations(utils.get());
  }
}

TEST_F(UIReqCartTest, GetItemDetailsShowsOneLineAndKeepsSuccess) {
  EXPECT_CALL(*req, GetItem(Eq(session), 12, 4, _))
      .WillOnce(Return(lines({{4, 2.0, Currency::from_double(4), "EUR"}})));
  expect_rates();
  RecordsetPtr rs = ui.GetItemDetails(session, 12, 4);
  EXPECT_TRUE(ui.Success());
  EXPECT_EQ(column_texts(rs, kCartColumns), Texts{"4|2@1033|USD 6.00@1033|USD 12.00@1033"});

  // A business refusal: its own error, Success cleared; other operations leave it alone.
  EXPECT_CALL(*req, Success).WillRepeatedly(Return(false));
  EXPECT_CALL(*req, GetItem).WillOnce(Return(lines({})));
  EXPECT_EQ(ui.GetItemDetails(session, 12, 4), nullptr);
  EXPECT_THAT(ui.Error(), ErrorIs(99, "UIReq::GetItemDetails Requisition"));
  EXPECT_FALSE(ui.Success());
  EXPECT_CALL(*req, GetItems).WillOnce(Return(lines({})));
  EXPECT_EQ(ui.GetItemsRs(session, 12), nullptr);
  EXPECT_THAT(ui.Error(), ErrorIs(99, "UIReq::GetItemsRs Requisition"));

  EXPECT_CALL(*req, Success).WillRepeatedly(Return(true));
  EXPECT_CALL(*req, GetItems).WillOnce(Return(lines({})));
  ASSERT_NE(ui.GetItemsRs(session, 12), nullptr);
  EXPECT_CALL(*req, DeleteItem).WillOnce(Return(false));
  EXPECT_FALSE(ui.DeleteItem(session, 12, 4));
  EXPECT_TRUE(ui.Success());
}

TEST_F(UIReqCartTest, UpdateItemQtyStoresTheParsedRoundedQuantity) {
  struct Case {
    int32_t locale;
    const char* typed;
    std::optional<double> stored;  // none: refused before the business call
  };
  const Case cases[] = {
      {1033, "1.23456", 1.2346}, {1031, "2,5", 2.5}, {1033, "0.00005", 0.0},
      {1033, "2,5", {}},         {1033, "abc", {}},  {1033, "", {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.typed);
    session->locale_id = c.locale;
    if (c.stored) {
      EXPECT_CALL(*req, UpdateItemQty(Eq(session), 12, 3, *c.stored, _)).WillOnce(Return(true));
      EXPECT_TRUE(ui.UpdateItemQty(session, 12, 3, c.typed)) << ui.Error()->Description();
    } else {
      EXPECT_CALL(*req, UpdateItemQty).Times(0);
      EXPECT_FALSE(ui.UpdateItemQty(session, 12, 3, c.typed));
      EXPECT_THAT(ui.Error(), ErrorIs(validation(11605), "UIReq::UpdateItemQty "));
      EXPECT_EQ(ui.Error()->Description(), "Order Quantity is an invalid number.");
    }
    Mock::VerifyAndClearExpectations(req.get());
  }
  session->locale_id = 1033;
  EXPECT_CALL(*req, UpdateItemQty).WillOnce(Return(false));
  EXPECT_FALSE(ui.UpdateItemQty(session, 12, 3, "4"));
  EXPECT_THAT(ui.Error(), ErrorIs(99, "UIReq::UpdateItemQty Requisition"));
}

TEST_F(UIReqCartTest, DeleteItemRemovesTheNamedLine) {
  Variant custom = Variant("ctx");
  EXPECT_CALL(*req, DeleteItem(Eq(session), 12, 3, Ref(custom))).WillOnce(Return(true));
  EXPECT_TRUE(ui.DeleteItem(session, 12, 3, custom));
  EXPECT_CALL(*req, DeleteItem(Eq(session), 12, 4, _)).WillOnce(Return(false));
  EXPECT_FALSE(ui.DeleteItem(session, 12, 4));
  EXPECT_THAT(ui.Error(), ErrorIs(99, "UIReq::DeleteItem Requisition"));
}

TEST_F(UIReqCartTest, GetFavoritesListPageShowsPricesInTheirOwnCurrencyOnePageAtATime) {
  auto favorites = std::make_shared<NiceMock<MockFavoriteItems>>();
  env->provide(progid::FavoriteItems, favorites);
  favorites->fail_with(42, "FavoriteItems", "no favourites");
  std::vector<Values> rows;
  for (int32_t i = 1; i <= 5; ++i)
    rows.push_back({i, Currency::from_double(i), i % 2 ? "EUR" : "USD"});
  const auto list = kxui::testing::make_recordset(
      {{"PartBaseID", adInteger}, {"UnitPrice", adCurrency}, {"CurrencyCode", adVarWChar, 3}},
      rows);
  EXPECT_CALL(*favorites, GetFavoriteList(Eq(session), _)).WillRepeatedly(Return(list));
  ON_CALL(*favorites, Success).WillByDefault(Return(true));
  fakes.ini->set("Page Size", "Paging", "Dunmere", "2");
  const std::pair<int32_t, Texts> pages[] = {
      {0, {"1|EUR 1.00@1033|1|5|1|2", "2|USD 2.00@1033|1|5|1|2"}},
      {2, {"3|EUR 3.00@1033|2|5|3|4", "4|USD 4.00@1033|2|5|3|4"}},
      {7, {"5|EUR 5.00@1033|3|5|5|5"}},
  };
  for (const auto& [page, expected] : pages) {
    SCOPED_TRACE(page);
    RecordsetPtr rs = ui.GetFavoritesListPage(session, page);
    ASSERT_NE(rs, nullptr) << ui.Error()->Description();
    EXPECT_EQ(column_texts(
                  rs, {"PartBaseID", "UIDisplay_UnitPrice", "UIDisplay_CurrentPage",
                       "UIDisplay_TotalRecords", "UIDisplay_StartRecord", "UIDisplay_EndRecord"}),
              expected);
  }
  EXPECT_EQ(layout(ui.GetFavoritesListPage(session, 1)),
            "PartBaseID:0,UnitPrice:0,CurrencyCode:3,UIDisplay_UnitPrice:100,"
            "UIDisplay_PageSize:0,UIDisplay_CurrentPage:0,UIDisplay_TotalRecords:0,"
            "UIDisplay_StartRecord:0,UIDisplay_EndRecord:0");
  EXPECT_EQ(env->count(progid::Requisition), 0);
  EXPECT_CALL(*favorites, Success).WillRepeatedly(Return(false));
  EXPECT_EQ(ui.GetFavoritesListPage(session, 1), nullptr);
  EXPECT_THAT(ui.Error(), ErrorIs(42, "UIReq::GetFavoritesListPage FavoriteItems"));
}

TEST_F(UIReqCartTest, AMissingSessionFailsWithoutACrash) {
  auto favorites = std::make_shared<NiceMock<MockFavoriteItems>>();
  auto distribs = std::make_shared<NiceMock<MockReqCostDistribs>>();
  env->provide(progid::FavoriteItems, favorites);
  env->provide(progid::ReqCostDistribs, distribs);
  const auto cart = [] { return lines({{1, 1.0, Currency::from_double(4), "EUR"}}); };
  ON_CALL(*req, GetItems).WillByDefault(InvokeWithoutArgs(cart));
  ON_CALL(*req, GetItem).WillByDefault(InvokeWithoutArgs(cart));
  ON_CALL(*favorites, Success).WillByDefault(Return(true));
  ON_CALL(*favorites, GetFavoriteList).WillByDefault(InvokeWithoutArgs(cart));
  ON_CALL(*distribs, Success).WillByDefault(Return(true));
  ON_CALL(*distribs, GetCostDistribs).WillByDefault(InvokeWithoutArgs(cart));
  const SessionPtr none;
  const std::pair<const char*, std::function<bool()>> ops[] = {
      {"UIReq::GetItemsRs ", [&] { return ui.GetItemsRs(none, 12) != nullptr; }},
      {"UIReq::GetItemDetails ", [&] { return ui.GetItemDetails(none, 12, 1) != nullptr; }},
      {"UIReq::UpdateItemQty ", [&] { return ui.UpdateItemQty(none, 12, 1, "2"); }},
      {"UIReq::GetFavoritesListPage ", [&] { return ui.GetFavoritesListPage(none, 1) != nullptr; }},
      {"UIReq::GetCostDistribsRs ", [&] { return ui.GetCostDistribsRs(none, 12, 1) != nullptr; }},
      {"UIReq::SaveCostDistribs ",
       [&] {
         return ui.SaveCostDistribs(none, 12, 1, Variant(Array::of({Variant(int32_t{7})})),
                                    Variant(Array::of({Variant("100")})));
       }},
  };
  for (const auto& [source, op] : ops) {
    SCOPED_TRACE(source);
    EXPECT_FALSE(op());
    EXPECT_THAT(ui.Error(), ErrorIs(91, source));
  }
}

class CostDistribTest : public UIReqCartTest {
 protected:
  std::shared_ptr<NiceMock<MockReqCostDistribs>> distribs =
      std::make_shared<NiceMock<MockReqCostDistribs>>();
  void SetUp() override {
    UIReqCartTest::SetUp();
    env->provide(progid::ReqCostDistribs, distribs);
    distribs->fail_with(77, "ReqCostDistribs", "locked");
    ON_CALL(*distribs, Success).WillByDefault(Return(true));
  }
  static Variant array(Values v) { return Variant(Array::of(std::move(v))); }
};

TEST_F(CostDistribTest, GetCostDistribsRsShowsEveryShareInTheUsersLocale) {
  const auto shares = kxui::testing::make_recordset(
      {{"CostCenterID", adInteger}, {"Percentage", adDouble}}, {{7, 62.5}, {9, 37.5}});
  EXPECT_CALL(*distribs, GetCostDistribs(Eq(session), 12, 3, _)).WillOnce(Return(shares));
  RecordsetPtr rs = ui.GetCostDistribsRs(session, 12, 3);
  EXPECT_EQ(column_texts(rs, {"CostCenterID", "UIDisplay_Percentage"}),
            (Texts{"7|62.5@1033", "9|37.5@1033"}));
  EXPECT_EQ(layout(rs), "CostCenterID:0,Percentage:0,UIDisplay_Percentage:50");

  EXPECT_CALL(*distribs, GetCostDistribs).WillOnce(Return(shares));
  EXPECT_CALL(*distribs, Success).WillOnce(Return(false));
  EXPECT_EQ(ui.GetCostDistribsRs(session, 12, 3), nullptr);
  EXPECT_THAT(ui.Error(), ErrorIs(77, "UIReq::GetCostDistribsRs ReqCostDistribs"));
}

TEST_F(CostDistribTest, SaveCostDistribsChecksEveryShareBeforeStoring) {
  struct Case {
    const char* name;
    Variant ids, percentages;
    std::optional<Shares> saved;  // none: refused with `error`
    int32_t error = 0;
  };
  const Case cases[] = {
      {"two shares, typed in the locale", array({7, 9}), array({"62.5", " 37.5 "}),
       Shares{{7, 62.5}, {9, 37.5}}},
      {"thirds rounded to four decimals", array({1, 2, 3}),
       array({"33.33331", "33.33331", "33.33338"}),
       Shares{{1, 33.3333}, {2, 33.3333}, {3, 33.3334}}},
      {"no split", Variant::missing(), Variant::missing(), Shares{}},
      {"one whole share given as a number", array({4}), array({100.0}), Shares{{4, 100}}},
      {"unreadable", array({7, 9}), array({"50", "fifty"}), {}, validation(11670)},
      {"zero", array({7, 9}), array({"100", "0"}), {}, validation(11670)},
      {"negative", array({7, 9}), array({"150", "-50"}), {}, validation(11670)},
      {"above 100", array({7}), array({"100.5"}), {}, validation(11670)},
      {"Null", array({7}), array({Variant::null()}), {}, validation(11670)},
      {"rounding leaves it short",
       array({1, 2, 3}),
       array({"33.33333", "33.33333", "33.33334"}),
       {},
       validation(11671)},
      {"short of 100", array({7, 9}), array({"60", "30"}), {}, validation(11671)},
      {"just over 100", array({7, 9}), array({"60", "40.0001"}), {}, validation(11671)},
      {"lengths differ", array({7, 9}), array({"100"}), {}, 5},
      {"not an array", Variant(int32_t{7}), array({"100"}), {}, 13},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    if (c.saved) {
      EXPECT_CALL(*distribs, SaveCostDistribs(Eq(session), 12, 3, *c.saved, _))
          .WillOnce(Return(true));
      EXPECT_TRUE(ui.SaveCostDistribs(session, 12, 3, c.ids, c.percentages))
          << ui.Error()->Description();
    } else {
      EXPECT_CALL(*distribs, SaveCostDistribs).Times(0);
      EXPECT_FALSE(ui.SaveCostDistribs(session, 12, 3, c.ids, c.percentages));
      EXPECT_THAT(ui.Error(), ErrorIs(c.error, "UIReq::SaveCostDistribs "));
    }
    Mock::VerifyAndClearExpectations(distribs.get());
  }
  EXPECT_CALL(*distribs, SaveCostDistribs).WillOnce(Return(false));
  EXPECT_FALSE(ui.SaveCostDistribs(session, 12, 3, array({7}), array({"100"})));
  EXPECT_THAT(ui.Error(), ErrorIs(77, "UIReq::SaveCostDistribs ReqCostDistribs"));
}

}  // namespace
}  // namespace kxui
