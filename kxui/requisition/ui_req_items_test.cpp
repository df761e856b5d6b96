#include <functional>

#include <gtest/gtest.h>

#include "kxui/business/progids.h"
#include "kxui/requisition/ui_req.h"
#include "kxui/testing/fake_requisition.h"
#include "kxui/testing/fake_services.h"

namespace kxui {
namespace {

using testing::ErrorIs;
using testing::FakeRequisition;

constexpr int32_t validation(int32_t message) { return int32_t(0x80040000u + uint32_t(message)); }

class UIReqItemsTest : public ::testing::Test {
 protected:
  std::shared_ptr<testing::TestEnv> env = testing::TestEnv::make();
  testing::FakeServices fakes = testing::FakeServices::install(*env);
  std::shared_ptr<FakeRequisition> req = std::make_shared<FakeRequisition>();
  std::shared_ptr<BasicSession> session = testing::make_session();
  UIReq ui{env->runtime};
  // The three in/outs as a page passes them.
  Variant req_id = Variant(int32_t{12});
  Variant line = Variant("line in");
  Variant form = Variant("form in");

  void SetUp() override {
    env->provide(progid::Requisition, req);
    req->stored_req_id = 55;
    req->stored_line_num = 3;
    req->stored_smart_form_id = 900;
  }

  bool fast_add(const std::string& qty) {
    return ui.AddItemFastAdd(session, req_id, 8, "P-100", "X", qty, "EA", line, form);
  }
  bool favorite(const std::string& qty) {
    return ui.AddItemFavorite(session, req_id, 4711, qty, line, form);
  }
  bool special(const Variant& price, const std::string& qty) {
    return ui.AddItemSpecialRequest(session, req_id, 8, "Acme", "SR-1", "", qty, "BX", 21,
                                    "Maker", 33, "Paper", price, "EUR", "Blue paper", line, form);
  }
  bool update_special(const Variant& price, const std::string& qty) {
    return ui.UpdateSpecialRequestItem(session, 12, 2, 8, "Acme", "SR-1", "", qty, "BX", 21,
                                       "Maker", 33, "Paper", price, "EUR", "Blue paper");
  }
  void expect_untouched_in_outs() {
    EXPECT_EQ(req_id, Variant(int32_t{12}));
    EXPECT_EQ(line, Variant("line in"));
    EXPECT_EQ(form, Variant("form in"));
  }
};

TEST_F(UIReqItemsTest, FastAddFillsTheLineInOrderAndReportsItsIdentity) {
  session->locale_id = 1031;
  session->currency_code = "CHF";
  ASSERT_TRUE(fast_add("2,5")) << ui.Error()->Description();
  EXPECT_EQ(req->call_names(),
            (std::vector<std::string>{"NewLineItem", "CommitItem", "CompleteItem"}));
  const auto& item = *req->items.at(0);
  EXPECT_EQ(item.written_names(),
            (std::vector<std::string>{"ReqID", "SupplierID", "SupplierPartNum",
                                      "SupplierPartNumExt", "OrderQty", "UOMID", "CurrencyCode",
                                      "IsSpecialRequest"}));
  EXPECT_EQ(item.written("ReqID"), Variant(int32_t{12}));
  EXPECT_EQ(item.written("OrderQty"), Variant(2.5));
  EXPECT_EQ(item.written("CurrencyCode"), Variant("CHF"));
  EXPECT_EQ(item.written("IsSpecialRequest"), Variant(false));
  EXPECT_EQ(req->find("CommitItem")->args[0], Variant(""));
  EXPECT_EQ(req->find("CompleteItem")->args,
            (std::vector<Variant>{int32_t{55}, int32_t{3}, Variant::missing()}));

  EXPECT_EQ(req_id, Variant(int32_t{55}));
  EXPECT_EQ(line, Variant(int32_t{3}));
  EXPECT_EQ(form, Variant(int32_t{900}));
  EXPECT_EQ(env->count(service_class::kCurrencyFormatter), 1);
  EXPECT_EQ(env->created.back(), "direct:KxLocale03.CurrencyFormatter");
}

TEST_F(UIReqItemsTest, QuantitiesAreRoundedToFourDecimals) {
  ASSERT_TRUE(fast_add("1.23456"));
  EXPECT_EQ(req->items.at(0)->written("OrderQty"), Variant(1.2346));
  ASSERT_TRUE(favorite(" 7.00004 "));
  EXPECT_EQ(req->find("AddFavoriteItem")->args,
            (std::vector<Variant>{int32_t{4711}, 7.0, int32_t{55}, Variant::missing()}));
}

TEST_F(UIReqItemsTest, UnreadableQuantitiesAreRejectedBeforeAnythingIsStored) {
  env->last_error()->translation = "Menge ungültig";
  struct Case {
    const char* what;
    std::function<bool()> call;
    int32_t message;
    const char* source;
  };
  const Case cases[] = {
      {"fast add, dot in a comma locale", [&] { return fast_add("2.5"); }, 11602,
       "UIReq::AddItemFastAdd "},
      {"favourite", [&] { return favorite("zwei"); }, 11603, "UIReq::AddItemFavorite "},
      {"special request", [&] { return special(Variant("4,20"), ""); }, 11601,
       "UIReq::AddItemSpecialRequest "},
      {"update", [&] { return update_special(Variant("4,20"), "1e3"); }, 11605,
       "UIReq::UpdateSpecialRequestItem "},
  };
  session->locale_id = 1031;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_FALSE(c.call());
    EXPECT_THAT(ui.Error(), ErrorIs(validation(c.message), c.source));
    EXPECT_EQ(ui.Error()->Description(), "Menge ungültig");
    EXPECT_EQ(env->last_error()->message_numbers_asked.back(), c.message);
    EXPECT_EQ(env->last_error()->params_count_asked, 0);
    EXPECT_TRUE(req->calls.empty());
    expect_untouched_in_outs();
  }
}

TEST_F(UIReqItemsTest, SpecialRequestChecksThePriceFirstAndStoresItAsMoney) {
  session->locale_id = 1031;
  EXPECT_FALSE(special(Variant("zu teuer"), "viel"));
  EXPECT_THAT(ui.Error(), ErrorIs(validation(11600), "UIReq::AddItemSpecialRequest "));
  EXPECT_FALSE(special(Variant::null(), "1"));
  EXPECT_THAT(ui.Error(), ErrorIs(validation(11600), "UIReq::AddItemSpecialRequest "));
  EXPECT_FALSE(special(Variant("1e300"), "1"));
  EXPECT_EQ(ui.Error()->Number(), validation(11600)) << "beyond the money range";
  EXPECT_FALSE(update_special(Variant("abc"), "abc"));
  EXPECT_THAT(ui.Error(), ErrorIs(validation(11604), "UIReq::UpdateSpecialRequestItem "));
  EXPECT_TRUE(req->calls.empty());

  ASSERT_TRUE(special(Variant("12,34"), "3"));
  const auto& item = *req->items.at(0);
  EXPECT_EQ(item.written_names(),
            (std::vector<std::string>{"ReqID", "SupplierID", "SupplierName", "SupplierPartNum",
                                      "SupplierPartNumExt", "OrderQty", "UOMID", "MfrID",
                                      "MfrName", "CommodityID", "CommodityAlias", "UnitPrice",
                                      "CurrencyCode", "PartDesc", "IsSpecialRequest"}));
  EXPECT_EQ(item.written("UnitPrice"), Variant(Currency::from_scaled(123400)));
  EXPECT_EQ(item.written("CurrencyCode"), Variant("EUR")) << "the page's currency";
  EXPECT_EQ(item.written("IsSpecialRequest"), Variant(true));
  EXPECT_EQ(req->call_names(), (std::vector<std::string>{"NewLineItem",
                                                         "CommitSpecialRequestItem",
                                                         "CompleteItem"}));
  EXPECT_EQ(form, Variant(int32_t{900}));
}

TEST_F(UIReqItemsTest, UpdateSpecialRequestRewritesTheNamedLine) {
  ASSERT_TRUE(update_special(Variant("0.5"), "10"));
  EXPECT_EQ(req->call_names(),
            (std::vector<std::string>{"NewLineItem", "UpdateSpecialRequestItem"}));
  const auto& item = *req->items.at(0);
  ASSERT_GE(item.writes.size(), 3u);
  EXPECT_EQ(item.writes[0], (std::pair<std::string, Variant>{"ReqID", int32_t{12}}));
  EXPECT_EQ(item.writes[1], (std::pair<std::string, Variant>{"LineNum", int32_t{2}}));
  EXPECT_EQ(item.writes[2].first, "SupplierID");
  EXPECT_EQ(item.written("UnitPrice"), Variant(Currency::from_scaled(5000)));

  req->refuse("UpdateSpecialRequestItem", 88, "line is on an order");
  EXPECT_FALSE(update_special(Variant("0.5"), "10"));
  EXPECT_THAT(ui.Error(), ErrorIs(88, "UIReq::UpdateSpecialRequestItem Requisition"));
}

TEST_F(UIReqItemsTest, ARefusalAtEitherStoringStepLeavesTheInOutsAsPassed) {
  struct Case {
    const char* member;
    std::function<bool()> call;
    const char* source;
  };
  const Case cases[] = {
      {"CommitItem", [&] { return fast_add("1"); }, "UIReq::AddItemFastAdd Requisition"},
      {"CompleteItem", [&] { return fast_add("1"); }, "UIReq::AddItemFastAdd Requisition"},
      {"CommitSpecialRequestItem", [&] { return special(Variant("1"), "1"); },
       "UIReq::AddItemSpecialRequest Requisition"},
      {"AddFavoriteItem", [&] { return favorite("1"); }, "UIReq::AddItemFavorite Requisition"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.member);
    req = std::make_shared<FakeRequisition>();
    env->provide(progid::Requisition, req);
    req->refuse(c.member, 4242, "supplier blocked");
    EXPECT_FALSE(c.call());
    EXPECT_THAT(ui.Error(), ErrorIs(4242, c.source));
    EXPECT_EQ(ui.Error()->Description(), "supplier blocked");
    expect_untouched_in_outs();
  }
}

TEST_F(UIReqItemsTest, AnUnconvertibleRequisitionIdFailsWithoutStoring) {
  req_id = Variant("twelve");
  EXPECT_FALSE(fast_add("1"));
  EXPECT_THAT(ui.Error(), ErrorIs(13, "UIReq::AddItemFastAdd "));
  EXPECT_EQ(req->call_names(), std::vector<std::string>{"NewLineItem"});
  EXPECT_EQ(req_id, Variant("twelve"));
}

}  // namespace
}  // namespace kxui
