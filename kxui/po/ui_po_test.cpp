// UIPO against gmock business objects and the predictable locale fakes.
#include "kxui/po/ui_po.h"

#include <map>

#include "kxui/business/progids.h"
#include "kxui/frame/paging.h"
#include "kxui/testing/fake_services.h"
#include "kxui/testing/mock_po.h"
#include "kxui/testing/row_sources.h"

namespace kxui {
namespace {

using namespace ::testing;
using testing::ErrorIs;
using testing::make_recordset;

constexpr int32_t kBusinessError = 0x7001;

// The columns as "Name type[size], ...".
std::string layout_of(const Recordset& rs) {
  static const std::map<DataTypeEnum, std::string> kTypes = {
      {adInteger, " int"}, {adDate, " date"}, {adVarWChar, " text"},
      {adCurrency, " money"}, {adDouble, " double"}, {adBoolean, " bool"}};
  std::string out;
  for (int32_t i = 0; i < rs.GetFields().Count(); ++i) {
    const Field& f = rs.GetFields()[i];
    out += (i ? ", " : "") + f.Name() + kTypes.at(f.Type()) +
           (f.DefinedSize() ? std::to_string(f.DefinedSize()) : "");
  }
  return out;
}

// The values of a column, row by row.
std::vector<std::string> column(Recordset& rs, const std::string& name) {
  std::vector<std::string> out;
  for (rs.MoveFirst(); !rs.IsEOF(); rs.MoveNext()) out.push_back(rs[name].Value().to_string());
  return out;
}

Date at(int day, int hour = 0, int minute = 0) { return Date::from_civil(2024, 3, day, hour, minute); }

RecordsetPtr po_lines(std::vector<std::vector<Variant>> rows) {
  return make_recordset({{"LineNum", adInteger},
                         {"UnitPrice", adCurrency},
                         {"SalesTaxAmt", adCurrency},
                         {"ActualPrice", adCurrency},
                         {"CurrencyCode", adVarWChar, 3},
                         {"DeliverByDate", adDate, 0, adFldIsNullable},
                         {"POStatusDate", adDate},
                         {"OrderQty", adDouble}},
                        rows);
}
std::vector<Variant> po_line(int32_t n, const char* currency, Variant deliver_by) {
  return {Variant(n), Variant(Currency::from_double(12.5)), Variant(Currency::from_double(1)),
          Variant(Currency::from_double(25)), Variant(currency), std::move(deliver_by),
          Variant(at(2, 8)), Variant(2.5)};
}

RecordsetPtr po_list(int n) {
  std::vector<std::vector<Variant>> rows;
  for (int32_t i = 1; i <= n; ++i) {
    rows.push_back({Variant(i), Variant(at(1 + i % 28, 10)), Variant(Currency::from_double(i)),
                    Variant("USD")});
  }
  return make_recordset({{"POID", adInteger},
                         {"CreateDate", adDate},
                         {"TotalAmtDue", adCurrency},
                         {"CurrencyCode", adVarWChar, 3}},
                        rows);
}

class UIPOTest : public ::testing::Test {
 protected:
  void SetUp() override {
    env->provide(progid::PurchaseOrder, po);
    env->provide(progid::Utils, utils);
    env->provide(progid::PartSearch, search);
    env->provide(progid::POCostDistribs, distribs);
    env->provide_fn(progid::POItem, [this] {
      items_made.push_back(std::make_shared<testing::RecordingPOItem>());
      return items_made.back();
    });
    env->provide(progid::POItems, collection);
    ON_CALL(*po, Succeeded()).WillByDefault(Return(true));
    ON_CALL(*po, LoadPO).WillByDefault(Return(true));
    ON_CALL(*po, Header()).WillByDefault(Return(header));
    ON_CALL(*search, Success()).WillByDefault(Return(true));
    header->po_name = "Office chairs";
    header->submitter_name = "Ann Lee";
    header->create_date = Variant(at(5, 23, 30));
    header->justification = "New floor";
    header->currency_code = "EUR";
    header->total_cost = Currency::from_double(1234.5);
    header->po_num = "PO-0042";
    header->borg_name = "Finance";
    header->supplier_name = "Acme Tools";
    header->receive_status_desc = "Partly received";
  }
  // The error recorded by the façade under test.
  ErrorInfoPtr error() { return ui.Error(); }
  void fail_po() {
    po->fail_with(kBusinessError, "PurchaseOrder", "PO is locked");
  }

  std::shared_ptr<testing::TestEnv> env = testing::TestEnv::make();
  testing::FakeServices fakes = testing::FakeServices::install(*env);
  std::shared_ptr<BasicSession> session = testing::make_session();
  std::shared_ptr<testing::MockPurchaseOrder> po =
      std::make_shared<NiceMock<testing::MockPurchaseOrder>>();
  std::shared_ptr<testing::MockUtils> utils = std::make_shared<NiceMock<testing::MockUtils>>();
  std::shared_ptr<testing::MockPartSearch> search =
      std::make_shared<NiceMock<testing::MockPartSearch>>();
  std::shared_ptr<testing::MockPOCostDistribs> distribs =
      std::make_shared<NiceMock<testing::MockPOCostDistribs>>();
  std::vector<std::shared_ptr<testing::RecordingPOItem>> items_made;
  std::shared_ptr<testing::RecordingPOItems> collection =
      std::make_shared<testing::RecordingPOItems>();
  std::shared_ptr<testing::FakePOHeader> header = std::make_shared<testing::FakePOHeader>();
  UIPO ui{env->runtime};
};

const char* const kItemColumns =
    "LineNum int, UnitPrice money, SalesTaxAmt money, ActualPrice money, CurrencyCode text3, "
    "DeliverByDate date, POStatusDate date, OrderQty double, UIDisplay_UnitPrice text100, "
    "UIDisplay_SalesTaxAmt text100, UIDisplay_ActualPrice text100, "
    "UIDisplay_DeliverByDate text100, UIDisplay_POStatusDate text100, "
    "UIDisplay_OrderQty text100";

TEST_F(UIPOTest, CreationFailureIsRecordedUnderItsClass) {
  env->runtime->Unregister(progid::KxError);
  UIPO other(env->runtime);
  EXPECT_EQ(other.Error()->Source().rfind("UIPO::Class_Initialize ", 0), 0u)
      << other.Error()->Source();
}

TEST_F(UIPOTest, ItemsRsFormatsEveryLineInItsCurrency) {
  EXPECT_CALL(*utils, GetServerDate(SessionPtr(session), _));
  EXPECT_CALL(*po, GetPOItems(SessionPtr(session), 12, 3, _))
      .WillOnce(Return(po_lines({po_line(1, "USD", Variant(at(5, 9))),
                                 po_line(2, "EUR", Variant(at(6, 9)))})));
  Variant custom("ctx");
  auto rs = ui.GetItemsRs(session, 12, 3, custom);
  ASSERT_NE(rs, nullptr) << error()->Description();
  EXPECT_EQ(rs->AbsolutePosition(), 1);
  EXPECT_EQ(layout_of(*rs), kItemColumns);
  EXPECT_EQ(column(*rs, "LineNum"), (std::vector<std::string>{"1", "2"}));
  EXPECT_EQ(column(*rs, "UIDisplay_UnitPrice"),
            (std::vector<std::string>{"USD 12.50@1033", "EUR 12.50@1033"}));
  EXPECT_EQ(column(*rs, "UIDisplay_SalesTaxAmt"),
            (std::vector<std::string>{"USD 1.00@1033", "EUR 1.00@1033"}));
  EXPECT_EQ(column(*rs, "UIDisplay_ActualPrice"),
            (std::vector<std::string>{"USD 25.00@1033", "EUR 25.00@1033"}));
  EXPECT_EQ(column(*rs, "UIDisplay_DeliverByDate"),
            (std::vector<std::string>{"1033/2/2024-03-05", "1033/2/2024-03-06"}));
  EXPECT_EQ(column(*rs, "UIDisplay_POStatusDate"),
            (std::vector<std::string>{"1033/2/2024-03-02", "1033/2/2024-03-02"}));
  EXPECT_EQ(column(*rs, "UIDisplay_OrderQty"), (std::vector<std::string>{"2.5@1033", "2.5@1033"}));
}

TEST_F(UIPOTest, EmptyPOGivesOpenEmptySetWithAllDisplayColumns) {
  EXPECT_CALL(*po, GetPOItems(_, 12, 0, _)).WillOnce(Return(po_lines({})));
  auto rs = ui.GetItemsRs(session, 12);
  ASSERT_NE(rs, nullptr) << error()->Description();
  EXPECT_EQ(rs->State(), adStateOpen);
  EXPECT_EQ(rs->RecordCount(), 0);
  EXPECT_EQ(layout_of(*rs), kItemColumns);
}

// A stamp at 23:30 in zone 15 is the next day for a user two hours ahead, and stays
// unconverted for a user in zone 15.
TEST_F(UIPOTest, DatesConvertFromZone15BeforeTheDayIsTaken) {
  struct Case {
    int32_t zone;
    const char* date_format;  // nullptr: no setting
    const char* shown;
  } const cases[] = {
      {15, nullptr, "1033/2/2024-03-05"},
      {17, nullptr, "1033/2/2024-03-06"},
      {13, nullptr, "1033/2/2024-03-05"},
      {15, "1", "1033/1/2024-03-05"},
      {15, "3", "1033/2/2024-03-05"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::to_string(c.zone) + " " + (c.date_format ? c.date_format : "-"));
    session->time_zone_id = c.zone;
    fakes.ini->values.clear();
    if (c.date_format) fakes.ini->set("DateFormat", "UI", "Dunmere", c.date_format);
    fakes.dates->conversions = 0;
    EXPECT_CALL(*po, GetPOItems).WillOnce(Return(po_lines({po_line(1, "USD", Variant(at(5, 23, 30)))})));
    auto rs = ui.GetItemsRs(session, 12);
    ASSERT_NE(rs, nullptr) << error()->Description();
    EXPECT_EQ((*rs)["UIDisplay_DeliverByDate"].Value(), Variant(c.shown));
    EXPECT_EQ(fakes.dates->conversions > 0, c.zone != 15);
  }
}

TEST_F(UIPOTest, ItemsRsFailures) {
  struct Case {
    const char* name;
    std::function<void()> arrange;
    int32_t number;
    std::string source;
  } const cases[] = {
      {"business failure", [&] {
         fail_po();
         ON_CALL(*po, Succeeded()).WillByDefault(Return(false));
       }, kBusinessError, "UIPO::GetItemsRs "},
      {"Null DeliverByDate", [&] {
         ON_CALL(*po, GetPOItems).WillByDefault(
             Return(po_lines({po_line(1, "USD", Variant::null())})));
       }, err::kInvalidUseOfNull, "UIPO::GetItemsRs "},
      {"DateFormat not a number", [&] {
         fakes.ini->set("DateFormat", "UI", "Dunmere", "abc");
       }, err::kTypeMismatch, "UIPO::GetItemsRs "},
      {"no server date", [&] {
         ON_CALL(*utils, GetServerDate).WillByDefault(
             [](const SessionPtr&, Variant&) -> Variant { throw Failure(77, "Utils", "down"); });
       }, 77, "UIPO::GetItemsRs Utils"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ON_CALL(*po, GetPOItems).WillByDefault(Return(po_lines({po_line(1, "USD", Variant(at(5)))})));
    c.arrange();
    EXPECT_EQ(ui.GetItemsRs(session, 12), nullptr);
    EXPECT_THAT(error(), ErrorIs(c.number, c.source));
    Mock::VerifyAndClearExpectations(po.get());
    ON_CALL(*po, Succeeded()).WillByDefault(Return(true));
    ON_CALL(*utils, GetServerDate).WillByDefault(Return(Variant()));
    fakes.ini->values.clear();
  }
  EXPECT_EQ(error()->Description(), "down");
}

TEST_F(UIPOTest, BusinessFailureKeepsItsNumberAndDescriptionButNotItsSource) {
  fail_po();
  EXPECT_CALL(*po, DeletePO).WillOnce(Return(false));
  EXPECT_FALSE(ui.DeletePO(session, 4));
  EXPECT_THAT(error(), ErrorIs(kBusinessError, "UIPO::DeletePO "));
  EXPECT_EQ(error()->Description(), "PO is locked");
}

// A business object that reports a failure without an error object of its own.
TEST_F(UIPOTest, BusinessFailureWithoutAnErrorObjectIsObjectNotSet) {
  struct Silent : testing::MockPurchaseOrder {
    ErrorInfoPtr GetError() override { return nullptr; }
  };
  auto silent = std::make_shared<NiceMock<Silent>>();
  env->provide(progid::PurchaseOrder, silent);
  EXPECT_FALSE(ui.DeletePO(session, 4));
  EXPECT_THAT(error(), ErrorIs(err::kObjectNotSet, "UIPO::DeletePO "));
}

TEST_F(UIPOTest, ListPagePassesFiltersInTheBusinessOrderAndPages) {
  EXPECT_CALL(*po, GetPOList(SessionPtr(session), Variant("ann"), Variant("Finance"), "PO-9",
                             Variant("PONum"), Variant("1,2"), _))
      .WillOnce(Return(po_list(45)));
  fakes.ini->set("Page Size", "Paging", "Dunmere", "20");
  auto page = ui.GetPOListPage(session, "PONum", "1,2", "PO-9", "ann", "Finance", 2);
  ASSERT_NE(page, nullptr) << error()->Description();
  EXPECT_EQ(layout_of(*page),
            "POID int, CreateDate date, TotalAmtDue money, CurrencyCode text3, "
            "UIDisplay_CreateDate text100, UIDisplay_TotalAmtDue text100, UIDisplay_PageSize int, "
            "UIDisplay_CurrentPage int, UIDisplay_TotalRecords int, UIDisplay_StartRecord int, "
            "UIDisplay_EndRecord int");
  EXPECT_EQ(page->RecordCount(), 20);
  EXPECT_EQ((*page)["POID"].Value(), Variant(21));
  EXPECT_EQ((*page)["UIDisplay_TotalAmtDue"].Value(), Variant("USD 21.00@1033"));
  EXPECT_EQ((*page)["UIDisplay_CreateDate"].Value(), Variant("1033/2/2024-03-22"));
  const std::vector<std::string> paging = {"20", "2", "45", "21", "40"};
  for (size_t i = 0; i < paging.size(); ++i) {
    EXPECT_EQ(column(*page, kPagingColumns[i]), std::vector<std::string>(20, paging[i]));
  }
}

TEST_F(UIPOTest, ListPageBoundsFollowThePagingRule) {
  struct Case {
    int32_t rows;
    const char* page_size;  // nullptr: no setting
    int32_t page, first_id, count, current;
  } const cases[] = {
      {45, nullptr, 0, 1, 20, 1}, {45, nullptr, 9, 41, 5, 3}, {45, nullptr, -1, 41, 5, 3},
      {45, "10", 3, 21, 10, 3},   {0, nullptr, 0, 0, 0, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.page);
    fakes.ini->values.clear();
    if (c.page_size) fakes.ini->set("Page Size", "Paging", "Dunmere", c.page_size);
    EXPECT_CALL(*po, GetPOList).WillOnce(Return(po_list(c.rows)));
    auto page = ui.GetPOListPage(session, "", "", "", "", "", c.page);
    ASSERT_NE(page, nullptr) << error()->Description();
    EXPECT_EQ(page->RecordCount(), c.count);
    if (c.count == 0) continue;
    EXPECT_EQ((*page)["POID"].Value(), Variant(c.first_id));
    EXPECT_EQ((*page)["UIDisplay_CurrentPage"].Value(), Variant(c.current));
  }
}

// Over a long list read on demand, a page reads its own rows and no others: at most one
// block of the record set, reaching into the page.
TEST_F(UIPOTest, ListPageReadsOnlyItsRowsOfAListReadOnDemand) {
  constexpr int64_t kBlock = 64;
  // Past the end of a list that fills its last page, the rule shows one row more.
  struct Case {
    int32_t page, first_id, count;
  } const cases[] = {{0, 1, 20}, {1, 1, 20}, {250, 4981, 20}, {500, 9981, 20}, {900, 9980, 21}};
  fakes.ini->set("Page Size", "Paging", "Dunmere", "20");
  std::vector<std::vector<Variant>> rows;
  for (int32_t i = 1; i <= 10000; ++i) {
    rows.push_back({Variant(i), Variant(at(1 + i % 28, 10)), Variant(Currency::from_double(i)),
                    Variant("USD")});
  }
  for (const Case& c : cases) {
    SCOPED_TRACE(c.page);
    auto source = std::make_shared<testing::VectorRowSource>(rows);
    auto list = std::make_shared<Recordset>();
    list->GetFields().Append("POID", adInteger);
    list->GetFields().Append("CreateDate", adDate);
    list->GetFields().Append("TotalAmtDue", adCurrency);
    list->GetFields().Append("CurrencyCode", adVarWChar, 3);
    list->Open(source);
    list->MoveFirst();
    EXPECT_CALL(*po, GetPOList).WillOnce(Return(list));
    auto page = ui.GetPOListPage(session, "", "", "", "", "", c.page);
    ASSERT_NE(page, nullptr) << error()->Description();
    EXPECT_EQ(column(*page, "POID").front(), std::to_string(c.first_id));
    EXPECT_EQ(page->RecordCount(), c.count);
    EXPECT_LE(source->rows_read, kBlock);
    for (int64_t first : source->firsts) {
      EXPECT_GT(first + kBlock, c.first_id - 1);
      EXPECT_LE(first, c.first_id + c.count - 2);
    }
  }
}

TEST_F(UIPOTest, ListPageBusinessFailure) {
  fail_po();
  EXPECT_CALL(*po, GetPOList).WillOnce(Return(po_list(3)));
  EXPECT_CALL(*po, Succeeded()).WillOnce(Return(false));
  EXPECT_EQ(ui.GetPOListPage(session, "", "", "", "", "", 0), nullptr);
  EXPECT_THAT(error(), ErrorIs(kBusinessError, "UIPO::GetPOListPage "));
}

TEST_F(UIPOTest, POsByRequisitionAppendsAmountThenDates) {
  auto pos = make_recordset({{"POID", adInteger},
                             {"TotalAmtDue", adCurrency},
                             {"CurrencyCode", adVarWChar, 3},
                             {"CreateDate", adDate},
                             {"OrderedOnDate", adDate}},
                            {{Variant(1), Variant(Currency::from_double(9.5)), Variant("GBP"),
                              Variant(at(3)), Variant(at(4))}});
  EXPECT_CALL(*utils, GetServerDate).Times(2);
  EXPECT_CALL(*po, GetPOsByReq(SessionPtr(session), 77, _)).WillOnce(Return(pos));
  auto rs = ui.GetPOsByRequisition(session, 77);
  ASSERT_NE(rs, nullptr) << error()->Description();
  EXPECT_EQ(layout_of(*rs),
            "POID int, TotalAmtDue money, CurrencyCode text3, CreateDate date, OrderedOnDate date, "
            "UIDisplay_TotalAmtDue text100, UIDisplay_CreateDate text100, "
            "UIDisplay_OrderedOnDate text100");
  EXPECT_EQ((*rs)["UIDisplay_TotalAmtDue"].Value(), Variant("GBP 9.50@1033"));
  EXPECT_EQ((*rs)["UIDisplay_CreateDate"].Value(), Variant("1033/2/2024-03-03"));
  EXPECT_EQ((*rs)["UIDisplay_OrderedOnDate"].Value(), Variant("1033/2/2024-03-04"));

  fail_po();
  EXPECT_CALL(*po, GetPOsByReq).WillOnce(Return(pos));
  EXPECT_CALL(*po, Succeeded()).WillOnce(Return(false));
  EXPECT_EQ(ui.GetPOsByRequisition(session, 77), nullptr);
  EXPECT_THAT(error(), ErrorIs(kBusinessError, "UIPO::GetPOsByRequisition "));
}

TEST_F(UIPOTest, LogGivesHeaderTextsAndLogRows) {
  session->time_zone_id = 17;
  EXPECT_CALL(*po, LoadPO(SessionPtr(session), 8, false, _));
  EXPECT_CALL(*po, GetPOLog(SessionPtr(session), 8, "", _))
      .WillOnce(Return(make_recordset({{"DateLogged", adDate}, {"Entry", adVarWChar, 50}},
                                      {{Variant(at(7, 22, 30)), Variant("Created")}})));
  Variant name, submitter, created, cost, justification, currency;
  auto rs = ui.GetLogPurchaseOrder(session, 8, name, submitter, created, cost, justification,
                                   currency);
  ASSERT_NE(rs, nullptr) << error()->Description();
  EXPECT_EQ(layout_of(*rs), "DateLogged date, Entry text50, UIDisplay_DateLogged text100");
  EXPECT_EQ((*rs)["UIDisplay_DateLogged"].Value(), Variant("1033/2/2024-03-08"));
  EXPECT_EQ(name, Variant("Office chairs"));
  EXPECT_EQ(submitter, Variant("Ann Lee"));
  EXPECT_EQ(created, Variant("1033/2/2024-03-06"));  // 23:30 in zone 15, user two hours ahead
  EXPECT_EQ(cost, Variant("EUR 1234.50@1033"));
  EXPECT_EQ(justification, Variant("New floor"));
  EXPECT_EQ(currency, Variant("EUR"));
}

TEST_F(UIPOTest, LogFailuresLeaveWhatWasSetBefore) {
  Variant name("before"), submitter("-"), created("-"), cost("before"), justification("-"),
      currency("-");
  auto call = [&] {
    return ui.GetLogPurchaseOrder(session, 8, name, submitter, created, cost, justification,
                                  currency);
  };
  fail_po();
  EXPECT_CALL(*po, LoadPO).WillOnce(Return(false)).WillRepeatedly(Return(true));
  EXPECT_EQ(call(), nullptr);
  EXPECT_THAT(error(), ErrorIs(kBusinessError, "UIPO::GetLogPurchaseOrder "));
  EXPECT_EQ(name, Variant("before"));
  EXPECT_EQ(currency, Variant("-"));

  EXPECT_CALL(*po, GetPOLog).WillRepeatedly(Return(po_list(1)));
  EXPECT_CALL(*po, Succeeded()).WillOnce(Return(false)).WillRepeatedly(Return(true));
  EXPECT_EQ(call(), nullptr);
  EXPECT_EQ(name, Variant("Office chairs"));
  EXPECT_EQ(cost, Variant("EUR 1234.50@1033"));

  header->create_date = Variant::null();
  EXPECT_EQ(call(), nullptr);
  EXPECT_THAT(error(), ErrorIs(err::kInvalidUseOfNull, "UIPO::GetLogPurchaseOrder "));
}

TEST_F(UIPOTest, POName) {
  struct Case {
    int32_t po_id;
    Variant given;
    bool load_ok;
    bool result;
    Variant after;
  } const cases[] = {
      {0, Variant(""), true, false, Variant("")},
      {0, Variant("kept"), true, true, Variant("kept")},
      {-3, Variant::null(), true, false, Variant::null()},
      {5, Variant("old"), true, true, Variant("Office chairs")},
      {5, Variant("old"), false, false, Variant("old")},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.po_id);
    env->created.clear();
    error()->SetNumber(0);
    error()->SetSource("");
    if (!c.load_ok) fail_po();
    if (c.po_id > 0) {
      EXPECT_CALL(*po, LoadPO(SessionPtr(session), c.po_id, false, _)).WillOnce(Return(c.load_ok));
    }
    Variant name = c.given;
    EXPECT_EQ(ui.GetPOName(session, c.po_id, name), c.result);
    if (c.after.is_null()) {
      EXPECT_TRUE(name.is_null());
    } else {
      EXPECT_EQ(name, c.after);
    }
    EXPECT_EQ(env->count(progid::PurchaseOrder), c.po_id > 0 ? 1 : 0);
    EXPECT_THAT(error(), c.load_ok ? ErrorIs(0, "") : ErrorIs(kBusinessError, "UIReq::GetPOName "));
  }
}

// The catalog search takes every argument by position; these are the two calls.
TEST_F(UIPOTest, SubstituteItemsSearchesThePartThenItsCommodity) {
  session->lang_code = "fr";
  auto part = make_recordset({{"CommodityID", adInteger}}, {{Variant(440)}});
  auto others = make_recordset({{"PartID", adInteger}}, {{Variant(1)}, {Variant(2)}});
  InSequence order;
  auto args = [](int32_t part_num_type, const char* part_num, int32_t commodity) {
    return std::vector<Variant>{Variant(""),     Variant(true),  Variant(part_num_type),
                                Variant(part_num), Variant(""),  Variant(""),
                                Variant(31),     Variant(""),    Variant(commodity),
                                Variant(false),  Variant("CAD"), Variant(""),
                                Variant("CAD"),  Variant("fr"),  Variant(""),
                                Variant(3),      Variant(3),     Variant(1),
                                Variant(3),      Variant(66)};
  };
  EXPECT_CALL(*search, Search(SessionPtr(session), args(1, "SP-1", 0), _)).WillOnce(Return(part));
  EXPECT_CALL(*search, Search(SessionPtr(session), args(0, "", 440), _)).WillOnce(Return(others));
  EXPECT_EQ(ui.SubstituteItems(session, "SP-1", 31, "CAD", 66), others);
}

TEST_F(UIPOTest, SubstituteItemsGivesNothingWithoutASecondList) {
  struct Case {
    const char* name;
    RecordsetPtr first, second;
    bool search_ok;
    int32_t number;
  } const cases[] = {
      {"unknown part", make_recordset({{"CommodityID", adInteger}}), nullptr, true, 0},
      {"commodity has no parts", make_recordset({{"CommodityID", adInteger}}, {{Variant(4)}}),
       make_recordset({{"PartID", adInteger}}), true, 0},
      {"search fails", nullptr, nullptr, false, kBusinessError},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    error()->SetNumber(0);
    search->fail_with(kBusinessError, "PartSearch", "catalog down");
    EXPECT_CALL(*search, Success()).WillRepeatedly(Return(c.search_ok));
    if (c.second) {
      EXPECT_CALL(*search, Search).WillOnce(Return(c.first)).WillOnce(Return(c.second));
    } else {
      EXPECT_CALL(*search, Search).WillOnce(Return(c.first));
    }
    EXPECT_EQ(ui.SubstituteItems(session, "SP-1", 31, "CAD"), nullptr);
    EXPECT_EQ(error()->Number(), c.number);
    if (c.number) {
      EXPECT_THAT(error(), ErrorIs(c.number, "UIPO::SubstituteItems "));
    }
    Mock::VerifyAndClearExpectations(search.get());
  }
}

TEST_F(UIPOTest, CopyPOGivesTheNewRequisition) {
  EXPECT_CALL(*po, CopyToRequisition(SessionPtr(session), 8, "From PO", _, _, _, _))
      .WillOnce([](auto&&, auto, auto&&, int32_t& id, int32_t& total, int32_t& copied, auto&) {
        id = 501;
        total = 4;
        copied = 3;
        return true;
      });
  Variant id, total, copied;
  EXPECT_TRUE(ui.CopyPO(session, 8, "From PO", id, total, copied));
  EXPECT_EQ(id, Variant(501));
  EXPECT_EQ(total, Variant(4));
  EXPECT_EQ(copied, Variant(3));
}

TEST_F(UIPOTest, DeleteItemNamesTheLineInACollection) {
  EXPECT_CALL(*po, DeleteLines(SessionPtr(session), _, 3, _))
      .WillOnce([&](auto&&, const std::shared_ptr<business::POItems>& items, auto, auto&) {
        EXPECT_EQ(items, collection);
        return true;
      });
  EXPECT_TRUE(ui.DeleteItem(session, 8, 3));
  ASSERT_EQ(items_made.size(), 1u);
  ASSERT_EQ(collection->items.size(), 1u);
  EXPECT_EQ(collection->items[0], items_made[0]);
  using Set = std::vector<std::pair<std::string, Variant>>;
  EXPECT_EQ(items_made[0]->set, (Set{{"POID", Variant(8)}, {"LineNum", Variant(3)}}));
}

TEST_F(UIPOTest, StatusAndHeaderReads) {
  EXPECT_CALL(*po, GetStatusRecord(SessionPtr(session), 8, _))
      .WillOnce(Return(make_recordset({{"CanEdit", adBoolean}}, {{Variant(true)}})))
      .WillOnce(Return(make_recordset({{"CanEdit", adBoolean}}, {{Variant(false)}})));
  Variant editable;
  EXPECT_TRUE(ui.GetPOStatus(session, 8, editable));
  EXPECT_EQ(editable, Variant(true));
  EXPECT_TRUE(ui.GetPOStatus(session, 8, editable));
  EXPECT_EQ(editable, Variant(false));

  header->read_only = true;
  EXPECT_CALL(*po, LoadPO(SessionPtr(session), 8, true, _)).WillOnce(Return(true));
  Variant read_only;
  EXPECT_TRUE(ui.POIsReadOnly(session, 8, read_only));
  EXPECT_EQ(read_only, Variant(true));

  EXPECT_CALL(*po, LoadPO(SessionPtr(session), 9, false, _)).WillOnce(Return(true));
  Variant num, borg, supplier, receive;
  EXPECT_TRUE(ui.GetPOHeaderInfo(session, 9, num, borg, supplier, receive));
  EXPECT_EQ(std::vector<Variant>({num, borg, supplier, receive}),
            std::vector<Variant>({Variant("PO-0042"), Variant("Finance"), Variant("Acme Tools"),
                                  Variant("Partly received")}));
}

TEST_F(UIPOTest, CostDistributionIsPassedThrough) {
  auto centers = make_recordset({{"CostCenterID", adInteger}});
  auto split = make_recordset({{"Percent", adDouble}});
  EXPECT_CALL(*distribs, GetListCostCenter(SessionPtr(session), 8, _)).WillOnce(Return(centers));
  EXPECT_CALL(*distribs, GetListCostDistribs(SessionPtr(session), 8, 2, _)).WillOnce(Return(split));
  EXPECT_CALL(*distribs, SaveCostDistribs(SessionPtr(session), 8, 2, "1;2", "60;40", ";", _))
      .WillOnce(Return(true));
  EXPECT_CALL(*distribs, SaveCostDistribs(SessionPtr(session), 8, 2, "1|2", "60|40", "|", _))
      .WillOnce(Return(true));
  EXPECT_EQ(ui.GetListCostCenter(session, 8), centers);
  EXPECT_EQ(ui.GetListCostDistribs(session, 8, 2), split);
  EXPECT_TRUE(ui.SaveCostDistribs(session, 8, 2, "1;2", "60;40"));
  EXPECT_TRUE(ui.SaveCostDistribs(session, 8, 2, "1|2", "60|40", "|"));
}

// Every one-request operation: True when the business tier agrees, else False with the
// business error under the operation's own source; outputs untouched on failure.
TEST_F(UIPOTest, OneRequestOperationsReportRefusals) {
  Variant out("untouched");
  struct Case {
    const char* source;
    std::function<void(bool ok)> expect;
    std::function<bool()> call;
  } const cases[] = {
      {"UIPO::CopyPO", [&](bool ok) { EXPECT_CALL(*po, CopyToRequisition).WillOnce(Return(ok)); },
       [&] { return ui.CopyPO(session, 8, "n", out, out, out); }},
      {"UIPO::DeleteItem", [&](bool ok) { EXPECT_CALL(*po, DeleteLines).WillOnce(Return(ok)); },
       [&] { return ui.DeleteItem(session, 8, 1); }},
      {"UIPO::DeletePO",
       [&](bool ok) { EXPECT_CALL(*po, DeletePO(SessionPtr(session), 8, _)).WillOnce(Return(ok)); },
       [&] { return ui.DeletePO(session, 8); }},
      {"UIPO::SaveCostDistribs",
       [&](bool ok) {
         distribs->fail_with(kBusinessError, "POCostDistribs", "PO is locked");
         EXPECT_CALL(*distribs, SaveCostDistribs).WillOnce(Return(ok));
       },
       [&] { return ui.SaveCostDistribs(session, 8, 1, "1", "100"); }},
      {"UIPO::GetPOStatus",
       [&](bool ok) {
         EXPECT_CALL(*po, GetStatusRecord)
             .WillOnce(Return(ok ? make_recordset({{"CanEdit", adBoolean}}, {{Variant(true)}})
                                 : nullptr));
       },
       [&] { return ui.GetPOStatus(session, 8, out); }},
      {"UIPO::IsValidLock",
       [&](bool ok) {
         EXPECT_CALL(*po, IsValidLock(SessionPtr(session), 8, _)).WillOnce(Return(ok));
       },
       [&] { return ui.IsValidLock(session, 8); }},
      {"UIPO::Reset",
       [&](bool ok) { EXPECT_CALL(*po, Reset(SessionPtr(session), _)).WillOnce(Return(ok)); },
       [&] { return ui.Reset(session); }},
      {"UIPO::POIsReadOnly", [&](bool ok) { EXPECT_CALL(*po, LoadPO).WillOnce(Return(ok)); },
       [&] { return ui.POIsReadOnly(session, 8, out); }},
      {"UIPO::GetPOHeaderInfo", [&](bool ok) { EXPECT_CALL(*po, LoadPO).WillOnce(Return(ok)); },
       [&] { return ui.GetPOHeaderInfo(session, 8, out, out, out, out); }},
  };
  fail_po();
  for (const Case& c : cases) {
    SCOPED_TRACE(c.source);
    out = Variant("untouched");
    c.expect(false);
    EXPECT_FALSE(c.call());
    EXPECT_THAT(error(), ErrorIs(kBusinessError, std::string(c.source) + " "));
    EXPECT_EQ(error()->Description(), "PO is locked");
    EXPECT_EQ(out, Variant("untouched"));
    c.expect(true);
    EXPECT_TRUE(c.call());
  }
}

TEST_F(UIPOTest, CustomDataReachesTheBusinessObject) {
  EXPECT_CALL(*po, Reset(_, _)).WillOnce([](auto&&, Variant& custom) {
    EXPECT_EQ(custom, Variant("page"));
    custom = Variant("answer");
    return true;
  });
  Variant custom("page");
  EXPECT_TRUE(ui.Reset(session, custom));
  EXPECT_EQ(custom, Variant("answer"));
}

}  // namespace
}  // namespace kxui
