// The requisition cart and favourites through UIReq over a fresh database file.
#include <gmock/gmock.h>

#include "kxui/business/progids.h"
#include "kxui/business/req_cost_distribs.h"
#include "kxui/business/requisition.h"
#include "kxui/catalog/ui_sf.h"
#include "kxui/requisition/ui_req.h"
#include "reference/errors.h"
#include "reference/test_fixture.h"

namespace kxui::reference {
namespace {

using ::testing::ElementsAre;
using testing::make_fixture;

std::vector<std::string> column(const RecordsetPtr& rs, const char* name) {
  std::vector<std::string> out;
  if (!rs || rs->RecordCount() == 0) return out;
  for (rs->MoveFirst(); !rs->IsEOF(); rs->MoveNext()) {
    const Variant& v = (*rs)[name].Value();
    out.push_back(v.is_null() ? "<null>" : v.to_string());
  }
  return out;
}

// alice's requisition with three pens (line 1) and the favourite ream (line 2).
int32_t two_line_requisition(testing::Fixture& f, UIReq& req) {
  auto alice = f.session(f.ids.alice);
  Variant req_id(int32_t{0}), line, form;
  EXPECT_TRUE(req.AddItemFastAdd(alice, req_id, f.ids.supplier, "P-100", "", "3", "EA", line, form))
      << req.Error()->Description();
  EXPECT_TRUE(req.AddItemFavorite(alice, req_id, f.ids.ream, "1", line, form))
      << req.Error()->Description();
  return req_id.to_int32();
}

TEST(Cart, LinesAreReadChangedAndRemoved) {
  auto f = make_fixture();
  UIReq req(f->runtime);
  const int32_t rid = two_line_requisition(*f, req);
  auto alice = f->session(f->ids.alice);

  RecordsetPtr items = req.GetItemsRs(alice, rid);
  ASSERT_TRUE(items) << req.Error()->Description();
  EXPECT_THAT(column(items, "LineNum"), ElementsAre("1", "2"));
  EXPECT_THAT(column(items, "OrderQty"), ElementsAre("3", "1"));

  ASSERT_TRUE(req.UpdateItemQty(alice, rid, 1, "2.5")) << req.Error()->Description();
  RecordsetPtr one = req.GetItemDetails(alice, rid, 1);
  ASSERT_TRUE(one) << req.Error()->Description();
  EXPECT_DOUBLE_EQ((*one)["OrderQty"].Value().to_double(), 2.5);
  EXPECT_EQ((*one)["UnitPrice"].Value().to_currency(), Currency::from_double(2.5));

  ASSERT_TRUE(req.DeleteItem(alice, rid, 2)) << req.Error()->Description();
  EXPECT_THAT(column(req.GetItemsRs(alice, rid), "LineNum"), ElementsAre("1"));
  EXPECT_FALSE(req.GetItemDetails(alice, rid, 2));
  EXPECT_EQ(req.Error()->Number(), error_number(Refusal::kNotFound));
}

TEST(Cart, ChangesAreRefusedByTheRequisitionRules) {
  auto f = make_fixture();
  UIReq req(f->runtime);
  const int32_t rid = two_line_requisition(*f, req);
  auto alice = f->session(f->ids.alice), other_tab = f->session(f->ids.alice, 2),
       frank = f->session(f->ids.frank);
  auto ref = create_as<business::Requisition>(*f->runtime, progid::Requisition);
  Variant cd;
  ref->LockRequisition(other_tab, rid, cd);

  struct Case {
    const char* name;
    std::function<bool()> change;
    Refusal why;
  } cases[] = {
      {"quantity while another session holds the lock",
       [&] { return req.UpdateItemQty(alice, rid, 1, "4"); }, Refusal::kLocked},
      {"removal while another session holds the lock",
       [&] { return req.DeleteItem(alice, rid, 1); }, Refusal::kLocked},
      {"another organisation", [&] { return req.DeleteItem(frank, rid, 1); },
       Refusal::kNotAllowed},
      {"a line that does not exist", [&] { return req.UpdateItemQty(other_tab, rid, 9, "1"); },
       Refusal::kNotFound},
      {"a quantity of zero", [&] { return req.UpdateItemQty(other_tab, rid, 1, "0"); },
       Refusal::kInvalidArgument},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_FALSE(c.change());
    EXPECT_EQ(req.Error()->Number(), error_number(c.why));
  }
  EXPECT_THAT(column(req.GetItemsRs(alice, rid), "OrderQty"), ElementsAre("3", "1"))
      << "refusals change nothing";

  // Once the other session's locks are released the change goes through.
  ASSERT_TRUE(ref->ReleaseSessionLocks(other_tab, cd));
  EXPECT_TRUE(req.UpdateItemQty(alice, rid, 1, "4")) << req.Error()->Description();

  int32_t n = 0;
  ASSERT_TRUE(ref->SubmitRequisition(alice, rid, false, n, cd)) << ref->GetError()->Description();
  EXPECT_FALSE(req.DeleteItem(alice, rid, 1)) << "a submitted requisition cannot be edited";
  EXPECT_EQ(req.Error()->Number(), error_number(Refusal::kNotEditable));
}

TEST(Cart, FavouritesAreTheUsersOwn) {
  auto f = make_fixture();
  UIReq req(f->runtime);
  RecordsetPtr page = req.GetFavoritesListPage(f->session(f->ids.alice), 0);
  ASSERT_TRUE(page) << req.Error()->Description();
  EXPECT_THAT(column(page, "PartBaseID"), ElementsAre(std::to_string(f->ids.ream)));
  EXPECT_THAT(column(page, "CurrencyCode"), ElementsAre("USD"));
  page = req.GetFavoritesListPage(f->session(f->ids.bob), 0);
  ASSERT_TRUE(page) << req.Error()->Description();
  EXPECT_TRUE(column(page, "PartBaseID").empty());
}

TEST(Cart, CostSplitsAddUpToAHundredPercent) {
  auto f = make_fixture();
  UIReq req(f->runtime);
  const int32_t rid = two_line_requisition(*f, req);
  auto alice = f->session(f->ids.alice);
  int32_t sales = 0, research = 0, foreign = 0;
  f->db->write([&](soci::session& sql) {
    sql << "INSERT INTO cost_centers (borg_id, code, name) VALUES (:b, 'S', 'Sales') "
           "RETURNING cost_center_id", soci::use(f->ids.acme), soci::into(sales);
    sql << "INSERT INTO cost_centers (borg_id, code, name) VALUES (:b, 'R', 'Research') "
           "RETURNING cost_center_id", soci::use(f->ids.acme), soci::into(research);
    sql << "INSERT INTO cost_centers (borg_id, code, name) VALUES (:b, 'V', 'Vertrieb') "
           "RETURNING cost_center_id", soci::use(f->ids.berg), soci::into(foreign);
  });
  auto ids = [](std::vector<int32_t> v) {
    std::vector<Variant> out;
    for (int32_t i : v) out.emplace_back(i);
    return Variant(Array::of(out));
  };
  auto pcts = [](std::vector<double> v) {
    std::vector<Variant> out;
    for (double d : v) out.emplace_back(d);
    return Variant(Array::of(out));
  };
  ASSERT_TRUE(req.SaveCostDistribs(alice, rid, 1, ids({sales, research}), pcts({62.5, 37.5})))
      << req.Error()->Description();
  RecordsetPtr split = req.GetCostDistribsRs(alice, rid, 1);
  ASSERT_TRUE(split) << req.Error()->Description();
  EXPECT_THAT(column(split, "Code"), ElementsAre("R", "S"));
  EXPECT_THAT(column(split, "Percentage"), ElementsAre("37.5", "62.5"));
  EXPECT_TRUE(column(req.GetCostDistribsRs(alice, rid, 2), "Code").empty()) << "per line";

  struct Case {
    const char* name;
    std::vector<int32_t> centres;
    std::vector<double> shares;
    int32_t error;
  } cases[] = {
      {"a centre twice", {sales, sales}, {50, 50}, error_number(Refusal::kInvalidArgument)},
      {"another organisation's centre", {foreign}, {100}, error_number(Refusal::kNotFound)},
      {"short of 100 (the façade's check)", {sales, research}, {60, 30},
       err::kObjectErrorBase + 11671},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_FALSE(req.SaveCostDistribs(alice, rid, 1, ids(c.centres), pcts(c.shares)));
    EXPECT_EQ(req.Error()->Number(), c.error);
  }
  // The tier guards the sum and the range itself, whoever calls it.
  auto tier = create_as<business::ReqCostDistribs>(*f->runtime, progid::ReqCostDistribs);
  Variant cd;
  const std::vector<std::vector<business::CostDistrib>> bad = {
      {{sales, 60}, {research, 30}}, {{sales, 60}, {research, 40.0001}},
      {{sales, 100}, {research, 0}}, {{sales, 100.5}}};
  for (const auto& split_values : bad) {
    EXPECT_FALSE(tier->SaveCostDistribs(alice, rid, 1, split_values, cd));
    EXPECT_EQ(tier->GetError()->Number(), error_number(Refusal::kInvalidArgument));
  }
  EXPECT_THAT(column(req.GetCostDistribsRs(alice, rid, 1), "Percentage"),
              ElementsAre("37.5", "62.5"))
      << "a refused split leaves the saved one";
  EXPECT_THAT(column(req.GetCostDistribsRs(alice, rid, 1), "CostCenterID"),
              ElementsAre(std::to_string(research), std::to_string(sales)));
  ASSERT_TRUE(req.SaveCostDistribs(alice, rid, 1, ids({}), pcts({})))
      << req.Error()->Description();
  EXPECT_TRUE(column(req.GetCostDistribsRs(alice, rid, 1), "Code").empty());

  // Reading needs the line, in the reader's organisation.
  EXPECT_FALSE(req.GetCostDistribsRs(alice, rid, 9));
  EXPECT_EQ(req.Error()->Number(), error_number(Refusal::kNotFound));
  EXPECT_FALSE(req.GetCostDistribsRs(f->session(f->ids.frank), rid, 1));
  EXPECT_EQ(req.Error()->Number(), error_number(Refusal::kNotAllowed));

  // A submitted requisition's split is fixed.
  int32_t orders = 0;
  auto requisition = create_as<business::Requisition>(*f->runtime, progid::Requisition);
  ASSERT_TRUE(requisition->SubmitRequisition(alice, rid, false, orders, cd));
  EXPECT_FALSE(req.SaveCostDistribs(alice, rid, 1, ids({sales}), pcts({100})));
  EXPECT_EQ(req.Error()->Number(), error_number(Refusal::kNotEditable));
}

Variant list(std::vector<std::string> v) {
  std::vector<Variant> out;
  for (auto& s : v) out.emplace_back(s);
  return Variant(Array::of(out));
}

TEST(SmartForms, SpecialRequestValuesAreCheckedAndStoredPerLine) {
  auto f = make_fixture();
  UIReq req(f->runtime);
  UISF sf(f->runtime);
  auto alice = f->session(f->ids.alice);
  Variant req_id(int32_t{0}), line, form;
  ASSERT_TRUE(req.AddItemSpecialRequest(alice, req_id, 0, "Local Print Shop", "BC-1", "", "2",
                                        "EA", 0, "", f->ids.paper, "Cards",
                                        Variant(std::string("5")), "USD", "Business cards", line,
                                        form))
      << req.Error()->Description();
  const int32_t rid = req_id.to_int32(), ln = line.to_int32(), fid = form.to_int32();

  RecordsetPtr fields = sf.GetDescription(alice, fid);
  ASSERT_TRUE(fields) << sf.Error()->Description();
  EXPECT_THAT(column(fields, "FieldName"),
              ElementsAre("Justification", "SupplierContact", "QuoteNumber"));

  ASSERT_TRUE(sf.Save(alice, rid, ln, fid, list({"QuoteNumber", "Justification"}),
                      list({"Q-77", "Trade fair"})))
      << sf.Error()->Description();
  RecordsetPtr values = sf.GetValues(alice, rid, ln, fid);
  ASSERT_TRUE(values) << sf.Error()->Description();
  EXPECT_THAT(column(values, "Value"), ElementsAre("Trade fair", "<null>", "Q-77"));

  struct Case {
    const char* name;
    int32_t line, form;
    std::vector<std::string> names, values;
  } refused[] = {
      {"a required field left out", ln, fid, {"QuoteNumber"}, {"Q-1"}},
      {"a required field blank", ln, fid, {"Justification"}, {""}},
      {"a field the form lacks", ln, fid, {"Justification", "Colour"}, {"x", "red"}},
      {"a field given twice", ln, fid, {"Justification", "Justification"}, {"a", "b"}},
      {"too long", ln, fid, {"Justification", "QuoteNumber"}, {"x", std::string(31, 'q')}},
      {"names and values of different counts", ln, fid, {"Justification"}, {"a", "b"}},
      {"a line without that form", 99, fid, {"Justification"}, {"x"}},
      {"an unknown form", ln, 42, {"Justification"}, {"x"}},
  };
  for (const Case& c : refused) {
    SCOPED_TRACE(c.name);
    EXPECT_FALSE(sf.Save(alice, rid, c.line, c.form, list(c.names), list(c.values)));
  }
  EXPECT_THAT(column(sf.GetValues(alice, rid, ln, fid), "Value"),
              ElementsAre("Trade fair", "<null>", "Q-77"))
      << "refused saves keep the stored values";

  // The values given replace the line's values as a whole.
  ASSERT_TRUE(sf.Save(alice, rid, ln, fid, list({"Justification"}), list({"Urgent"})));
  EXPECT_THAT(column(sf.GetValues(alice, rid, ln, fid), "Value"), ElementsAre("Urgent", "<null>", "<null>"));
  EXPECT_FALSE(sf.GetDescription(alice, 42));
}

}  // namespace
}  // namespace kxui::reference
