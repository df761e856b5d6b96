// UIReconPO against gmock business objects and the predictable locale fakes.
#include "kxui/po/ui_recon_po.h"

#include "kxui/business/progids.h"
#include "kxui/testing/fake_services.h"
#include "kxui/testing/mock_po.h"

namespace kxui {
namespace {

using namespace ::testing;
using testing::ErrorIs;
using testing::make_recordset;

constexpr int32_t kBusinessError = 0x7003;
using Set = std::vector<std::pair<std::string, Variant>>;

// Alternatives offered for a line: one row per part number, "ActualUnitPrice" 9.5 + n.
RecordsetPtr alternatives(int rows) {
  std::vector<std::vector<Variant>> data;
  for (int32_t n = 1; n <= rows; ++n) {
    data.push_back({Variant(Currency::from_double(9.5 + n)), Variant("BP-" + std::to_string(n)),
                    Variant("Chairs"), Variant(440), Variant("EUR"), Variant("Mfr"),
                    Variant("Task chair"), Variant(900 + n), Variant(31), Variant("SP-9"),
                    Variant("b"), Variant(1), Variant("EA")});
  }
  return make_recordset({{"ActualUnitPrice", adCurrency},
                         {"BuyerPartNum", adVarWChar, 20},
                         {"CommodityName", adVarWChar, 20},
                         {"CommodityID", adInteger},
                         {"ActualCurrencyCode", adVarWChar, 3},
                         {"MfrName", adVarWChar, 20},
                         {"ShortDesc", adVarWChar, 20},
                         {"PartID", adInteger},
                         {"SupplierID", adInteger},
                         {"SupplierPartNum", adVarWChar, 20},
                         {"SupplierPartNumExt", adVarWChar, 20},
                         {"Taxable", adInteger},
                         {"UnitofMeasure", adVarWChar, 5}},
                        data);
}

class UIReconPOTest : public ::testing::Test {
 protected:
  void SetUp() override {
    env->provide(progid::ReconcileOrder, order);
    env->provide(progid::PurchaseOrder, po);
    env->provide(progid::POItem, item);
    env->provide(progid::POItems, collection);
    ON_CALL(*order, Items()).WillByDefault(Return(lines));
    ON_CALL(*order, Succeeded()).WillByDefault(Return(true));
    ON_CALL(*order, LoadOrder).WillByDefault(Return(true));
    ON_CALL(*order, LoadOrderHeader).WillByDefault(Return(true));
    ON_CALL(*order, OrderHeader()).WillByDefault(Return(header));
    order->fail_with(kBusinessError, "ReconcileOrder", "order is locked");
  }
  void add_lines(int n) {
    for (int i = 0; i < n; ++i) lines->items.push_back(std::make_shared<testing::FakeReconcileItem>());
  }
  std::vector<bool> deleted() const {
    std::vector<bool> out;
    for (const auto& l : lines->items) out.push_back(l->deleted);
    return out;
  }
  ErrorInfoPtr error() { return ui.Error(); }

  std::shared_ptr<testing::TestEnv> env = testing::TestEnv::make();
  testing::FakeServices fakes = testing::FakeServices::install(*env);
  std::shared_ptr<BasicSession> session = testing::make_session();
  std::shared_ptr<testing::MockReconcileOrder> order =
      std::make_shared<NiceMock<testing::MockReconcileOrder>>();
  std::shared_ptr<testing::MockPurchaseOrder> po =
      std::make_shared<NiceMock<testing::MockPurchaseOrder>>();
  std::shared_ptr<testing::RecordingPOItem> item = std::make_shared<testing::RecordingPOItem>();
  std::shared_ptr<testing::RecordingPOItems> collection =
      std::make_shared<testing::RecordingPOItems>();
  std::shared_ptr<testing::FakeReconcileItems> lines =
      std::make_shared<testing::FakeReconcileItems>();
  std::shared_ptr<testing::FakeReconcileOrderHeader> header =
      std::make_shared<testing::FakeReconcileOrderHeader>();
  UIReconPO ui{env->runtime};
};

TEST_F(UIReconPOTest, CreationFailureIsRecordedUnderTheWorkflowClass) {
  env->runtime->Unregister(progid::KxError);
  UIReconPO other(env->runtime);
  EXPECT_EQ(other.Error()->Source().rfind("UIWF::Class_Initialize ", 0), 0u)
      << other.Error()->Source();
  EXPECT_EQ(other.class_name(), "UIReconPO") << "the name it is registered and logged under";
}

TEST_F(UIReconPOTest, AddAltItemBuildsTheLineFromTheChosenRow) {
  EXPECT_CALL(*po, GetPOItems(SessionPtr(session), 8, 3, _));
  EXPECT_CALL(*order, AddAlternateItem(SessionPtr(session), 8, 0, _, _))
      .WillOnce([&](auto&&, auto, auto, const std::shared_ptr<business::POItems>& items, auto&) {
        EXPECT_EQ(items, collection);
        return true;
      });
  EXPECT_TRUE(ui.AddAltItem(session, 8, 3, 2, Variant(alternatives(3))))
      << error()->Description();
  ASSERT_EQ(collection->items.size(), 1u);
  EXPECT_EQ(collection->items[0], item);
  const Variant price(Currency::from_double(11.5));
  EXPECT_EQ(item->set, (Set{{"ActualUnitPrice", price},
                            {"ExtendedPrice", Variant(Currency{})},
                            {"SalesTaxAmt", Variant(Currency{})},
                            {"BuyerPartNum", Variant("BP-2")},
                            {"CommodityName", Variant("Chairs")},
                            {"CommodityID", Variant(440)},
                            {"ActualCurrencyCode", Variant("EUR")},
                            {"MfrName", Variant("Mfr")},
                            {"ShortDesc", Variant("Task chair")},
                            {"PartID", Variant(902)},
                            {"SupplierID", Variant(31)},
                            {"SupplierPartNum", Variant("SP-9")},
                            {"SupplierPartNumExt", Variant("b")},
                            {"Taxable", Variant(1)},
                            {"UnitPrice", price},
                            {"UnitofMeasure", Variant("EA")}}));
}

TEST_F(UIReconPOTest, AddAltItemFailures) {
  auto missing_column = make_recordset({{"BuyerPartNum", adVarWChar, 20}}, {{Variant("x")}});
  struct Case {
    const char* name;
    int32_t position;
    RecordsetPtr rows;
    bool added;  // the business answer, when asked
    int32_t number;
    bool reaches_business;
  } const cases[] = {
      {"position 0", 0, alternatives(1), true, err::kArgumentOutOfRange, false},
      {"negative position", -1, alternatives(1), true, err::kArgumentOutOfRange, false},
      {"past the last row", 2, alternatives(1), true, err::kArgumentOutOfRange, false},
      {"missing column", 1, missing_column, true, err::kItemNotFound, false},
      {"refused", 1, alternatives(1), false, kBusinessError, true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    env->created.clear();
    if (c.reaches_business) {
      EXPECT_CALL(*order, AddAlternateItem).WillOnce(Return(c.added));
    } else {
      EXPECT_CALL(*order, AddAlternateItem).Times(0);
    }
    EXPECT_FALSE(ui.AddAltItem(session, 8, 3, c.position, Variant(c.rows)));
    EXPECT_EQ(error()->Number(), c.number);
    EXPECT_EQ(error()->Source().rfind("UIReconPO::AddAltItem ", 0), 0u);
    if (c.position != 1) {
      EXPECT_EQ(env->count(progid::PurchaseOrder), 0) << "fails before the PO is read";
    }
    Mock::VerifyAndClearExpectations(order.get());
  }
  EXPECT_EQ(error()->Description(), "order is locked");
}

TEST_F(UIReconPOTest, DeleteItemMarksTheLoadedLineAndSaves) {
  add_lines(1);
  EXPECT_CALL(*order, LoadOrder(SessionPtr(session), 8, 3, _)).WillRepeatedly(Return(false));
  EXPECT_CALL(*order, SaveOrder(SessionPtr(session), _)).WillOnce(Return(true));
  EXPECT_TRUE(ui.DeleteItem(session, 8, 3)) << "the load's answer is not what counts";
  EXPECT_EQ(deleted(), std::vector<bool>{true});

  EXPECT_CALL(*order, SaveOrder).WillOnce(Return(false));
  EXPECT_FALSE(ui.DeleteItem(session, 8, 3));
  EXPECT_EQ(error()->Number(), 0) << "a refused save records nothing";

  lines->items.clear();
  EXPECT_FALSE(ui.DeleteItem(session, 8, 3));
  EXPECT_THAT(error(), ErrorIs(err::kSubscriptOutOfRange, "UIReconPO::DeleteItem "));
}

TEST_F(UIReconPOTest, DeleteItemsMarksEveryLine) {
  struct Case {
    int lines;
    bool loaded, saved, result;
  } const cases[] = {
      {3, true, true, true}, {3, true, false, false}, {0, true, true, true}, {2, false, true, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.lines);
    lines->items.clear();
    add_lines(c.lines);
    EXPECT_CALL(*order, LoadOrder(SessionPtr(session), 8, 0, _)).WillOnce(Return(c.loaded));
    if (c.loaded) {
      EXPECT_CALL(*order, SaveOrder).WillOnce(Return(c.saved));
    } else {
      EXPECT_CALL(*order, SaveOrder).Times(0);
    }
    EXPECT_EQ(ui.DeleteItems(session, 8), c.result);
    EXPECT_EQ(deleted(), std::vector<bool>(static_cast<size_t>(c.lines), c.loaded));
    EXPECT_EQ(error()->Number(), 0);
    Mock::VerifyAndClearExpectations(order.get());
  }
}

TEST_F(UIReconPOTest, GetFormatCurrency) {
  EXPECT_EQ(ui.GetFormatCurrency(1031, "EUR", 4.5), "EUR 4.50@1031");
  struct Rejecting : CurrencyFormatter {
    std::string FormatAmount(int32_t, double) override { return ""; }
    std::string FormatCurrencyAmount(int32_t, const std::string& code, double) override {
      throw Failure(5, "CurrencyFormatter", "unknown currency " + code);
    }
    bool ParseNumber(int32_t, const std::string&, double&) override { return false; }
  };
  env->provide(service_class::kCurrencyFormatter, std::make_shared<Rejecting>());
  EXPECT_EQ(ui.GetFormatCurrency(1031, "XXX", 4.5), "0");
  EXPECT_THAT(error(), ErrorIs(5, "UIReconPO::GetFormatCurrency CurrencyFormatter"));
}

TEST_F(UIReconPOTest, QuantitiesAndSubmitArePassedOn) {
  const Variant line_numbers(Array::of({Variant(1), Variant(2)}));
  const Variant shipped(Array::of({Variant(3.0)}));  // lengths are the business tier's concern
  const Variant back_ordered(Array::of({Variant(0.0), Variant(1.0), Variant(2.0)}));
  EXPECT_CALL(*order, UpdateQuantities(SessionPtr(session), 8, line_numbers, shipped,
                                       back_ordered, _))
      .WillOnce(Return(true))
      .WillOnce(Return(false));
  EXPECT_TRUE(ui.UpdateItemsQtys(session, 8, line_numbers, shipped, back_ordered));
  EXPECT_FALSE(ui.UpdateItemsQtys(session, 8, line_numbers, shipped, back_ordered));
  EXPECT_CALL(*order, SubmitOrder(SessionPtr(session), 8, _))
      .WillOnce(Return(true))
      .WillOnce(Return(false));
  EXPECT_TRUE(ui.SubmitRecPO(session, 8));
  EXPECT_FALSE(ui.SubmitRecPO(session, 8));
  EXPECT_EQ(error()->Number(), 0);
}

// Each operation's own source text, two of them borrowed from the requisition class.
TEST_F(UIReconPOTest, FailuresAreRecordedUnderEachSource) {
  env->runtime->Unregister(progid::ReconcileOrder);
  const Variant none;
  struct Case {
    std::string source;
    std::function<bool()> failed;
  } const cases[] = {
      {"UIReconPO::DeleteItem", [&] { return !ui.DeleteItem(session, 8, 1); }},
      {"UIReconPO::DeleteItems", [&] { return !ui.DeleteItems(session, 8); }},
      {"UIReq::UpdateItemsQtys",
       [&] { return !ui.UpdateItemsQtys(session, 8, none, none, none); }},
      {"UIReconPO::GetRecPOHeader", [&] { return ui.GetRecPOHeader(session, 8) == nullptr; }},
      {"UIReq::GetItemsRs", [&] { return ui.GetItemsRs(session, 8) == nullptr; }},
      {"UIReconPO::SubmitRecPO", [&] { return !ui.SubmitRecPO(session, 8); }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.source);
    EXPECT_TRUE(c.failed());
    EXPECT_EQ(error()->Number(), err::kCannotCreateObject);
    EXPECT_EQ(error()->Source().rfind(c.source + " ", 0), 0u) << error()->Source();
  }
}

TEST_F(UIReconPOTest, RecPOHeaderIsOneFormattedRow) {
  session->locale_id = 1031;
  EXPECT_CALL(*order, LoadOrderHeader(SessionPtr(session), 8, "", _));
  auto rs = ui.GetRecPOHeader(session, 8);
  ASSERT_NE(rs, nullptr) << error()->Description();
  EXPECT_EQ(rs->RecordCount(), 1);
  std::vector<std::string> layout, values;
  for (int32_t i = 0; i < rs->GetFields().Count(); ++i) {
    const Field f = rs->GetFields()[i];
    layout.push_back(f.Name() + ":" + std::to_string(f.Type()) + ":" +
                     std::to_string(f.DefinedSize()));
    values.push_back(f.Value().to_string());
  }
  EXPECT_EQ(layout, (std::vector<std::string>{"PONum:202:100", "Supplier:202:100",
                                              "SupplierID:3:0", "CurrencyCode:202:10",
                                              "SubTotal:202:50", "TotalTaxAmt:202:50",
                                              "TotalAmtDue:202:50"}));
  EXPECT_EQ(values, (std::vector<std::string>{"PO-7", "Acme Tools", "31", "EUR",
                                              "EUR 100.50@1031", "EUR 8.25@1031",
                                              "EUR 108.75@1031"}));

  EXPECT_CALL(*order, LoadOrderHeader).WillOnce(Return(false));
  EXPECT_EQ(ui.GetRecPOHeader(session, 8), nullptr);
  EXPECT_THAT(error(), ErrorIs(kBusinessError, "UIReconPO::GetRecPOHeader "));
}

RecordsetPtr order_lines(int rows) {
  std::vector<std::vector<Variant>> data;
  for (int32_t n = 1; n <= rows; ++n) {
    data.push_back({Variant(Currency::from_double(2)), Variant(Currency::from_double(3)),
                    Variant("CHF"), Variant(1.0 * n), Variant(2.0), Variant(3.0), Variant(4.0),
                    Variant(5.0), Variant(6.0)});
  }
  return make_recordset({{"UnitPrice", adCurrency},
                         {"ActualPrice", adCurrency},
                         {"CurrencyCode", adVarWChar, 3},
                         {"OrderQty", adDouble},
                         {"BackOrderQty", adDouble},
                         {"ShippedQty", adDouble},
                         {"InStockQty", adDouble},
                         {"POOrderQty", adDouble},
                         {"POBackOrderQty", adDouble}},
                        data);
}

TEST_F(UIReconPOTest, ItemsRsAppendsTheEightDisplayColumns) {
  const std::vector<std::string> display = {
      "UIDisplay_UnitPrice",    "UIDisplay_ActualPrice", "UIDisplay_OrderQty",
      "UIDisplay_BackOrderQty", "UIDisplay_ShippedQty",  "UIDisplay_InStockQty",
      "UIDisplay_POOrderQty",   "UIDisplay_POBackOrderQty"};
  for (int rows : {2, 0}) {
    SCOPED_TRACE(rows);
    EXPECT_CALL(*order, GetOrderItems(SessionPtr(session), 8, 4, _))
        .WillOnce(Return(order_lines(rows)));
    auto rs = ui.GetItemsRs(session, 8, 4);
    ASSERT_NE(rs, nullptr) << error()->Description();
    EXPECT_EQ(rs->State(), adStateOpen);
    EXPECT_EQ(rs->RecordCount(), rows);
    ASSERT_EQ(rs->GetFields().Count(), 17);
    for (size_t i = 0; i < display.size(); ++i) {
      const Field f = rs->GetFields()[static_cast<int32_t>(9 + i)];
      EXPECT_EQ(f.Name(), display[i]);
      EXPECT_EQ(f.Type(), adVarWChar);
      EXPECT_EQ(f.DefinedSize(), 100);
    }
    if (rows == 0) continue;
    rs->MoveLast();
    std::vector<std::string> shown;
    for (const auto& name : display) shown.push_back((*rs)[name].Value().to_string());
    EXPECT_EQ(shown, (std::vector<std::string>{"CHF 2.00@1033", "CHF 3.00@1033", "2@1033",
                                               "2@1033", "3@1033", "4@1033", "5@1033",
                                               "6@1033"}));
  }
  EXPECT_CALL(*order, GetOrderItems).WillOnce(Return(order_lines(1)));
  EXPECT_CALL(*order, Succeeded()).WillOnce(Return(false));
  EXPECT_EQ(ui.GetItemsRs(session, 8), nullptr);
  EXPECT_THAT(error(), ErrorIs(kBusinessError, "UIReq::GetItemsRs "));
}

}  // namespace
}  // namespace kxui
