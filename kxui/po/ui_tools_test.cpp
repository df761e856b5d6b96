// UITools against gmock business objects and scripted supplier-exchange objects.
#include "kxui/po/ui_tools.h"

#include <deque>

#include "kxui/business/progids.h"
#include "kxui/business/supplier_exchange.h"
#include "kxui/testing/fake_services.h"
#include "kxui/testing/mock_po.h"

namespace kxui {
namespace {

using namespace ::testing;
using testing::ErrorIs;
using testing::make_recordset;
using testing::make_response;
using testing::ScriptedDispatch;
namespace sx = supplier;

constexpr int32_t kBusinessError = 0x7002;
using Line = business::Requisition::QuickCheckLine;

// The properties written on a quick-check item, in dispatch-id order.
std::map<int32_t, Variant> props_of(const Variant& item) {
  return std::dynamic_pointer_cast<ScriptedDispatch>(item.to_object())->props;
}

class UIToolsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    env->provide(progid::PurchaseOrder, po);
    env->provide(progid::POStatus, statuses);
    env->provide(progid::POLog, log);
    env->provide(progid::ReconcileOrder, order);
    env->provide(progid::ReconcileItems, lines);
    env->provide(progid::Requisition, req);
    env->provide(progid::Utils, utils);
    env->provide(progid::CursorDataAccess, data);
    env->provide(sx::kSupplierQuery, query);
    env->provide(sx::kRequestHeader, std::make_shared<ScriptedDispatch>());
    env->provide_fn(sx::kQuickCheckItem, [this] {
      items_made.push_back(std::make_shared<ScriptedDispatch>());
      return items_made.back();
    });
    ON_CALL(*po, LoadPO).WillByDefault(Return(true));
    ON_CALL(*po, Header()).WillByDefault(Return(header));
    ON_CALL(*order, LoadOrder).WillByDefault(Return(true));
    ON_CALL(*order, SaveOrder).WillByDefault(Return(true));
    ON_CALL(*req, Load).WillByDefault(Return(true));
    ON_CALL(*req, Save).WillByDefault(Return(true));
    ON_CALL(*req, ReqCurrencyCode()).WillByDefault(Return("USD"));
    ON_CALL(*statuses, MapSupplierStatus).WillByDefault(Return(true));
    ON_CALL(*data, RunSP).WillByDefault(Return(
        make_recordset({{"CustomerName", adVarWChar, 50}}, {{Variant("Harbor Clinic")}})));
    header->po_num = "PO-0042";
    header->supplier_id = 31;
    header->currency_code = "EUR";
    session->borg_id = 12;
    session->ebo_id = 3;
    // Each send takes the next scripted answer: whether the supplier answered, and the
    // responses it gives back.
    for (int32_t dispid : {sx::query::kSendOrderStatus, sx::query::kSendQuickCheck}) {
      query->handlers[dispid] = [this, dispid](std::span<Variant> args) {
        if (answers.empty()) return Variant(false);
        auto [ok, responses] = answers.front();
        answers.pop_front();
        const int out = dispid == sx::query::kSendQuickCheck ? sx::qc_arg::kResponses
                                                             : sx::status_arg::kResponses;
        args[static_cast<size_t>(out)] = Variant(std::move(responses));
        return Variant(ok);
      };
    }
  }
  // Queues an answer with one response per (price, quantity).
  void answer(bool ok, std::vector<std::pair<double, double>> per_line = {}) {
    Array responses(0, static_cast<int32_t>(per_line.size()) - 1);
    for (size_t i = 0; i < per_line.size(); ++i) {
      responses.at(static_cast<int32_t>(i)) =
          Variant(make_response(Variant(per_line[i].first), Variant(per_line[i].second)));
    }
    answers.emplace_back(ok, Variant(std::move(responses)));
  }
  void answer_status(const char* code) {
    Array responses(0, 0);
    responses.at(0) = Variant(make_response(Variant(), Variant(), Variant(code)));
    answers.emplace_back(true, Variant(std::move(responses)));
  }
  // The arguments of every send, in order.
  std::vector<std::vector<Variant>> sends() const {
    std::vector<std::vector<Variant>> out;
    for (const auto& c : query->calls) {
      if (c.dispid == sx::query::kSendOrderStatus || c.dispid == sx::query::kSendQuickCheck) {
        out.push_back(c.args);
      }
    }
    return out;
  }
  ErrorInfoPtr error() { return ui.Error(); }

  std::shared_ptr<testing::TestEnv> env = testing::TestEnv::make();
  testing::FakeServices fakes = testing::FakeServices::install(*env);
  std::shared_ptr<BasicSession> session = testing::make_session();
  std::shared_ptr<testing::MockPurchaseOrder> po =
      std::make_shared<NiceMock<testing::MockPurchaseOrder>>();
  std::shared_ptr<testing::MockPOStatus> statuses =
      std::make_shared<NiceMock<testing::MockPOStatus>>();
  std::shared_ptr<testing::MockPOLog> log = std::make_shared<NiceMock<testing::MockPOLog>>();
  std::shared_ptr<testing::MockReconcileOrder> order =
      std::make_shared<NiceMock<testing::MockReconcileOrder>>();
  std::shared_ptr<testing::FakeReconcileItems> lines =
      std::make_shared<testing::FakeReconcileItems>();
  std::shared_ptr<testing::MockQuickCheckRequisition> req =
      std::make_shared<NiceMock<testing::MockQuickCheckRequisition>>();
  std::shared_ptr<testing::MockUtils> utils = std::make_shared<NiceMock<testing::MockUtils>>();
  std::shared_ptr<testing::MockCursorDataAccess> data =
      std::make_shared<NiceMock<testing::MockCursorDataAccess>>();
  std::shared_ptr<ScriptedDispatch> query = std::make_shared<ScriptedDispatch>();
  std::vector<std::shared_ptr<ScriptedDispatch>> items_made;
  std::deque<std::pair<bool, Variant>> answers;
  std::shared_ptr<testing::FakePOHeader> header = std::make_shared<testing::FakePOHeader>();
  UITools ui{env->runtime};
};

TEST_F(UIToolsTest, CreationFailureIsRecordedUnderItsClass) {
  env->runtime->Unregister(progid::KxError);
  UITools other(env->runtime);
  EXPECT_EQ(other.Error()->Source().rfind("UITools::Class_Initialize ", 0), 0u)
      << other.Error()->Source();
}

TEST_F(UIToolsTest, FormatNumber) {
  session->locale_id = 1031;
  EXPECT_EQ(ui.FormatNumber(session, 2.5), "2.5@1031");
  env->runtime->Unregister(service_class::kCurrencyFormatter);
  EXPECT_EQ(ui.FormatNumber(session, 2.5), "");
  EXPECT_EQ(error()->Number(), err::kCannotCreateObject);
  EXPECT_EQ(error()->Source().rfind("UITools::FormatNumber ", 0), 0u) << error()->Source();
}

TEST_F(UIToolsTest, OrderStatusMapsTheSupplierCodeAndStoresIt) {
  answer_status("  SHP ");
  EXPECT_CALL(*po, LoadPO(SessionPtr(session), 8, false, _)).Times(2);
  EXPECT_CALL(*data, RunSP(SessionPtr(session), "Cat_BorgAccount_Sel_CustName",
                           std::vector<Variant>{Variant(12), Variant(3)}, _))
      .Times(2);
  EXPECT_CALL(*statuses, MapSupplierStatus(SessionPtr(session), "SHP", _, _))
      .Times(2)
      .WillRepeatedly(DoAll(SetArgReferee<2>(6), Return(true)));
  EXPECT_CALL(*po, SetPOStatus(SessionPtr(session), 8, 6, _)).WillOnce(Return(true));
  int32_t po_id = 8;
  EXPECT_TRUE(ui.OrderStatus(session, po_id));
  EXPECT_EQ(query->prop(sx::query::kStatusPOID), Variant(8));
  EXPECT_EQ(query->prop(sx::query::kStatusPONum), Variant("PO-0042"));
  EXPECT_EQ(query->prop(sx::query::kStatusSupplierID), Variant(31));
  ASSERT_EQ(sends().size(), 1u);
  const auto all_sends = sends();
  const auto& args = all_sends[0];
  ASSERT_EQ(args.size(), 7u);
  EXPECT_TRUE(args[sx::status_arg::kHeader].is_object());
  EXPECT_EQ(args[sx::status_arg::kDate].kind(), Variant::Kind::Date);
  EXPECT_EQ(args[sx::status_arg::kFixedValue], Variant(95000));
  EXPECT_EQ(args[sx::status_arg::kRequestType], Variant(2));
  EXPECT_EQ(args[sx::status_arg::kCustomer], Variant("Harbor Clinic"));
  EXPECT_EQ(args[sx::status_arg::kRefKey], Variant("refid"));

  // The stored status's answer is the result, without an error of its own.
  answer_status("SHP");
  EXPECT_CALL(*po, SetPOStatus).WillOnce(Return(false));
  EXPECT_FALSE(ui.OrderStatus(session, po_id));
  EXPECT_EQ(error()->Number(), 0);
}

TEST_F(UIToolsTest, OrderStatusNotAnsweredIsLoggedAndFailsWith11614) {
  const std::string long_text(300, 'x');
  query->handlers[sx::query::kErrorText] = [&](std::span<Variant>) { return Variant(long_text); };
  query->handlers[sx::query::kErrorCode] = [](std::span<Variant>) {
    return Variant("E-TIMEOUT-0000000000001");
  };
  answer(false);
  EXPECT_CALL(*log, WriteLog(SessionPtr(session), 8, "Error", std::string(255, 'x'),
                             "E-TIMEOUT-0000000000", _));
  EXPECT_CALL(*po, SetPOStatus).Times(0);
  int32_t po_id = 8;
  EXPECT_FALSE(ui.OrderStatus(session, po_id));
  EXPECT_THAT(error(), ErrorIs(static_cast<int32_t>(0x80042D5E), "UITools::OrderStatus "));
  EXPECT_EQ(error()->Description(), "Unable to perform order status check.");
}

TEST_F(UIToolsTest, OrderStatusBusinessFailures) {
  struct Case {
    const char* name;
    std::function<void()> arrange;
  } const cases[] = {
      {"PO not loaded", [&] {
         po->fail_with(kBusinessError, "PurchaseOrder", "no such PO");
         EXPECT_CALL(*po, LoadPO).WillOnce(Return(false));
       }},
      {"unknown status code", [&] {
         answer_status("??");
         statuses->fail_with(kBusinessError, "POStatus", "no such PO");
         EXPECT_CALL(*statuses, MapSupplierStatus).WillOnce(Return(false));
       }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    c.arrange();
    EXPECT_CALL(*po, SetPOStatus).Times(0);
    int32_t po_id = 8;
    EXPECT_FALSE(ui.OrderStatus(session, po_id));
    EXPECT_THAT(error(), ErrorIs(kBusinessError, "UITools::OrderStatus "));
    EXPECT_EQ(error()->Description(), "no such PO");
    Mock::VerifyAndClearExpectations(po.get());
  }
}

TEST_F(UIToolsTest, CustomerNameLookupFailsQuietly) {
  struct Case {
    const char* name;
    RecordsetPtr rows;
    int32_t number;
  } const cases[] = {
      {"no row", make_recordset({{"CustomerName", adVarWChar, 50}}), 0},
      {"no such column", make_recordset({{"Name", adVarWChar, 50}}, {{Variant("x")}}),
       err::kItemNotFound},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    error()->SetNumber(0);
    query->calls.clear();
    EXPECT_CALL(*data, RunSP).WillOnce(Return(c.rows));
    answer_status("SHP");
    EXPECT_CALL(*po, SetPOStatus).WillOnce(Return(true));
    int32_t po_id = 8;
    EXPECT_TRUE(ui.OrderStatus(session, po_id));
    EXPECT_EQ(sends().at(0)[sx::status_arg::kCustomer], Variant(""));
    EXPECT_EQ(error()->Number(), c.number);
    if (c.number) {
      EXPECT_EQ(error()->Source().rfind("UITools::GetCustName ", 0), 0u);
    }
  }
}

TEST_F(UIToolsTest, QuickCheckAsksForEveryReconcileLineAndStoresTheAnswers) {
  for (int32_t n = 1; n <= 2; ++n) {
    auto line = std::make_shared<testing::FakeReconcileItem>();
    line->line_num = n;
    line->part_num = " P-" + std::to_string(n) + " ";
    line->part_num_ext = " x ";
    line->uom = " BX ";
    line->shipped_qty = 4.0 * n;
    line->supplier_id = 40 + n;
    lines->items.push_back(line);
  }
  struct Case {
    std::string doc_type;
    bool checked;
  } const cases[] = {{"po", true}, {"PO", true}, {"Req", false}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.doc_type);
    query->calls.clear();
    items_made.clear();
    if (c.checked) {
      answer(true, {{12.25, 7}, {3.5, 0}});
      EXPECT_CALL(*order, LoadOrder(SessionPtr(session), 8, 0, _));
      EXPECT_CALL(*po, LoadPO(SessionPtr(session), 8, false, _));
      EXPECT_CALL(*order, SaveOrder(SessionPtr(session), _));
    } else {
      EXPECT_CALL(*order, SaveOrder).Times(0);
    }
    std::string doc_type = c.doc_type;
    int32_t doc_id = 8;
    EXPECT_EQ(ui.QuickCheck(session, doc_type, doc_id), c.checked);
    Mock::VerifyAndClearExpectations(order.get());
    if (!c.checked) {
      EXPECT_TRUE(sends().empty());
      continue;
    }
    ASSERT_EQ(sends().size(), 1u);
    const auto all_sends = sends();
    const auto& args = all_sends[0];
    ASSERT_EQ(args.size(), 10u);
    EXPECT_EQ(args[sx::qc_arg::kSupplierID], Variant(42));
    EXPECT_EQ(args[sx::qc_arg::kCurrency], Variant("EUR"));
    EXPECT_EQ(args[sx::qc_arg::kCustomer], Variant("Harbor Clinic"));
    EXPECT_EQ(args[sx::qc_arg::kRefKey], Variant("refid"));
    EXPECT_EQ(args[sx::qc_arg::kFixedValue], Variant(95000));
    const Array& sent = args[sx::qc_arg::kItems].array();
    ASSERT_EQ(sent.size(), 2u);
    EXPECT_EQ(props_of(sent.at(1)),
              (std::map<int32_t, Variant>{{sx::item::kSupplierPartNum, Variant("P-2")},
                                          {sx::item::kSupplierPartNumExt, Variant("x")},
                                          {sx::item::kQuantity, Variant(8.0)},
                                          {sx::item::kLineNum, Variant(2)},
                                          {sx::item::kUOM, Variant("BX")},
                                          {sx::item::kBuyerSystem, Variant("Veltrix")}}));
    EXPECT_EQ(lines->items[0]->unit_price, Variant(Currency::from_double(12.25)));
    EXPECT_EQ(lines->items[0]->actual_unit_price, Variant(Currency::from_double(12.25)));
    EXPECT_EQ(lines->items[0]->in_stock_qty, Variant(7.0));
    EXPECT_EQ(lines->items[1]->actual_unit_price, Variant(Currency::from_double(3.5)));
    EXPECT_EQ(lines->items[1]->in_stock_qty, Variant(0.0));
  }
}

TEST_F(UIToolsTest, QuickCheckWithoutAnAnswerStoresNothing) {
  lines->items.push_back(std::make_shared<testing::FakeReconcileItem>());
  answer(false);
  EXPECT_CALL(*order, SaveOrder).Times(0);
  std::string doc_type = "PO";
  int32_t doc_id = 8;
  EXPECT_FALSE(ui.QuickCheck(session, doc_type, doc_id));
  EXPECT_EQ(error()->Number(), 0);
  EXPECT_TRUE(lines->items[0]->unit_price.is_empty());

}

// Each business object that cannot do its part stops the check with its own error.
TEST_F(UIToolsTest, QuickCheckBusinessFailures) {
  lines->items.push_back(std::make_shared<testing::FakeReconcileItem>());
  struct Case {
    const char* name;
    std::function<void()> arrange;
    const char* description;
  } const cases[] = {
      {"order not loaded", [&] { EXPECT_CALL(*order, LoadOrder).WillOnce(Return(false)); },
       "order"},
      {"PO not loaded", [&] { EXPECT_CALL(*po, LoadPO).WillOnce(Return(false)); }, "po"},
      {"lines not loaded", [&] { lines->load_result = false; }, "lines"},
      {"order not saved", [&] {
         answer(true, {{1, 1}});
         EXPECT_CALL(*order, SaveOrder).WillOnce(Return(false));
       }, "order"},
  };
  order->fail_with(kBusinessError, "ReconcileOrder", "order");
  po->fail_with(kBusinessError, "PurchaseOrder", "po");
  lines->fail_with(kBusinessError, "ReconcileItems", "lines");
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    lines->load_result = true;
    c.arrange();
    std::string doc_type = "PO";
    int32_t doc_id = 8;
    EXPECT_FALSE(ui.QuickCheck(session, doc_type, doc_id));
    EXPECT_THAT(error(), ErrorIs(kBusinessError, "UITools::QuickCheck "));
    EXPECT_EQ(error()->Description(), c.description);
    Mock::VerifyAndClearExpectations(order.get());
    Mock::VerifyAndClearExpectations(po.get());
  }
  EXPECT_EQ(lines->loaded, (std::vector<int32_t>{8, 8}));
}

std::vector<Line> three_lines() {
  return {{1, 41, " A-1 ", "", "EA", 2, "EUR"},
          {2, 41, "A-2", "", "EA", 1, "EUR"},
          {3, 42, "B-7", "9", "BX", 5, "GBP"}};
}

TEST_F(UIToolsTest, QuickCheckReqFillsOneColumnPerLineAndConvertsPrices) {
  EXPECT_CALL(*req, Load(SessionPtr(session), 77, true, _));
  EXPECT_CALL(*req, QuickCheckLines()).WillOnce(Return(three_lines()));
  answer(true, {{10, 4}});
  answer(false);
  answer(true, {{20, 9}});
  EXPECT_CALL(*req, SetQuickCheckPrice(0, Currency::from_double(10)));
  EXPECT_CALL(*req, SetQuickCheckPrice(2, Currency::from_double(20)));
  EXPECT_CALL(*req, Save(SessionPtr(session), _)).WillOnce(Return(true));
  const Variant server_date(Date::from_civil(2024, 3, 5));
  EXPECT_CALL(*utils, GetServerDate).WillOnce(Return(server_date));
  EXPECT_CALL(*utils, ConvertCurrency(SessionPtr(session), 10.0, "EUR", "USD", server_date, _, _))
      .WillOnce(DoAll(SetArgReferee<5>(11.0), Return(true)));
  EXPECT_CALL(*utils, ConvertCurrency(SessionPtr(session), 20.0, "GBP", "USD", server_date, _, _))
      .WillOnce(DoAll(SetArgReferee<5>(25.0), Return(true)));
  Variant values;
  ASSERT_TRUE(ui.QuickCheckReq(session, 77, values)) << error()->Description();
  const Array& a = values.array();
  EXPECT_EQ(a.dims(), 2);
  EXPECT_EQ(std::vector<int32_t>({a.lbound(1), a.ubound(1), a.lbound(2), a.ubound(2)}),
            std::vector<int32_t>({0, 3, 0, 3}));
  const std::vector<std::vector<Variant>> expected = {
      {Variant(11.0), Variant(4.0), Variant(true), Variant()},
      {Variant(0.0), Variant(0.0), Variant(false), Variant()},
      {Variant(25.0), Variant(9.0), Variant(true), Variant()},
      {Variant(), Variant(), Variant(), Variant()},
  };
  for (int32_t j = 0; j < 4; ++j) {
    for (int32_t i = 0; i < 4; ++i) {
      EXPECT_EQ(a.at(i, j), expected[j][i]) << i << "," << j;
    }
  }
  // One request per line, each for that line's supplier and currency.
  ASSERT_EQ(sends().size(), 3u);
  EXPECT_EQ(sends()[2][sx::qc_arg::kSupplierID], Variant(42));
  EXPECT_EQ(sends()[2][sx::qc_arg::kCurrency], Variant("GBP"));
  EXPECT_EQ(sends()[0][sx::qc_arg::kItems].array().size(), 1u);
  EXPECT_EQ(props_of(sends()[0][sx::qc_arg::kItems].array().at(0)).at(sx::item::kSupplierPartNum),
            Variant("A-1"));
  EXPECT_EQ(props_of(sends()[2][sx::qc_arg::kItems].array().at(0)).at(sx::item::kQuantity),
            Variant(5.0));
}

TEST_F(UIToolsTest, QuickCheckReqFailures) {
  struct Case {
    const char* name;
    std::function<void()> arrange;
    int32_t number;
    const char* description;
  } const cases[] = {
      {"price not convertible", [&] {
         answer(true, {{10, 4}});
         EXPECT_CALL(*utils, ConvertCurrency).WillOnce(Return(false));
       }, static_cast<int32_t>(0x80042D57), "Unable to convert unit price to local currency."},
      {"save refused", [&] {
         answer(true, {{10, 4}});
         req->fail_with(kBusinessError, "Requisition", "locked");
         EXPECT_CALL(*req, Save).WillOnce(Return(false));
       }, kBusinessError, "locked"},
      {"not loaded", [&] {
         req->fail_with(kBusinessError, "Requisition", "gone");
         EXPECT_CALL(*req, Load).WillOnce(Return(false));
       }, kBusinessError, "gone"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ON_CALL(*req, QuickCheckLines()).WillByDefault(Return(std::vector<Line>{three_lines()[0]}));
    c.arrange();
    Variant values("untouched");
    EXPECT_FALSE(ui.QuickCheckReq(session, 77, values));
    EXPECT_THAT(error(), ErrorIs(c.number, "UITools::QuickCheckReq "));
    EXPECT_EQ(error()->Description(), c.description);
    EXPECT_EQ(values, Variant("untouched"));
    Mock::VerifyAndClearExpectations(req.get());
    Mock::VerifyAndClearExpectations(utils.get());
    answers.clear();
  }
}

TEST_F(UIToolsTest, QuickCheckReqWithoutAnswersSavesNothing) {
  EXPECT_CALL(*req, QuickCheckLines()).WillOnce(Return(three_lines()));
  EXPECT_CALL(*req, Save).Times(0);
  EXPECT_CALL(*utils, ConvertCurrency).Times(0);
  Variant values;
  EXPECT_TRUE(ui.QuickCheckReq(session, 77, values));
  EXPECT_EQ(values.array().at(2, 2), Variant(false));
}

TEST_F(UIToolsTest, QuickCheckTestSendsTheFixedTwoLines) {
  answer(true, {{1.5, 10}, {2.5, 20}});
  Variant result;
  ASSERT_TRUE(ui.QuickCheckTest(result)) << error()->Description();
  ASSERT_EQ(sends().size(), 1u);
  const auto all_sends = sends();
  const auto& args = all_sends[0];
  EXPECT_EQ(std::vector<Variant>({args[sx::qc_arg::kFixedValue], args[sx::qc_arg::kSupplierID],
                                  args[sx::qc_arg::kRequestType], args[sx::qc_arg::kCustomer],
                                  args[sx::qc_arg::kCurrency], args[sx::qc_arg::kRefKey]}),
            std::vector<Variant>({Variant(95000), Variant(178), Variant(2), Variant("Dr. Pellam"),
                                  Variant("USD"), Variant("refid")}));
  EXPECT_EQ(args[sx::qc_arg::kDate].kind(), Variant::Kind::Date);
  const Array& sent = args[sx::qc_arg::kItems].array();
  for (int32_t i = 0; i < 2; ++i) {
    EXPECT_EQ(props_of(sent.at(i)),
              (std::map<int32_t, Variant>{{sx::item::kSupplierPartNum,
                                           Variant("Kx000" + std::to_string(i + 1))},
                                          {sx::item::kSupplierPartNumExt, Variant("01")},
                                          {sx::item::kQuantity, Variant(0.0)},
                                          {sx::item::kLineNum, Variant(i + 1)},
                                          {sx::item::kUOM, Variant("EA")},
                                          {sx::item::kBuyerSystem, Variant("Veltrix")}}));
  }
  const Array& a = result.array();
  EXPECT_EQ(std::vector<Variant>({a.at(0, 0), a.at(1, 0), a.at(0, 1), a.at(1, 1)}),
            std::vector<Variant>({Variant(10.0), Variant(1.5), Variant(20.0), Variant(2.5)}));
  EXPECT_EQ(a.ubound(1), 1);
  EXPECT_EQ(a.ubound(2), 1);

  answer(false);
  Variant untouched("-");
  EXPECT_FALSE(ui.QuickCheckTest(untouched));
  EXPECT_EQ(untouched, Variant("-"));
  env->runtime->Unregister(sx::kSupplierQuery);
  EXPECT_FALSE(ui.QuickCheckTest(untouched));
  EXPECT_EQ(error()->Number(), err::kCannotCreateObject);
  EXPECT_EQ(error()->Source().rfind("UITools::QuickCheckTest ", 0), 0u);
}

}  // namespace
}  // namespace kxui
