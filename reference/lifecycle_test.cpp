// The life of a requisition through the façades over a fresh database file: three ways
// of adding items, submission, a route with an ad-hoc approver and a delegate, approval
// into orders; and the resource texts per locale.
#include <gmock/gmock.h>

#include "kxui/lang/ui_lang.h"
#include "kxui/requisition/ui_req.h"
#include "kxui/workflow/ui_wf.h"
#include "reference/errors.h"
#include "reference/test_fixture.h"

namespace kxui::reference {
namespace {

using ::testing::HasSubstr;
using testing::make_fixture;

int32_t query_int(Database& db, const std::string& text, int32_t req_id) {
  return db.read([&](soci::session& sql) {
    int n = 0;
    sql << text, soci::use(req_id), soci::into(n);
    return n;
  });
}

std::vector<std::string> column_values(Recordset& rs, const char* column) {
  std::vector<std::string> out;
  if (rs.RecordCount() == 0) return out;
  for (rs.MoveFirst(); !rs.IsEOF(); rs.MoveNext()) out.push_back(rs[column].Value().to_string());
  return out;
}

TEST(Lifecycle, ARequisitionFromFirstItemToOrders) {
  auto f = make_fixture();
  const testing::Ids& id = f->ids;
  auto alice = f->session(id.alice);
  UIReq req(f->runtime);
  UIWF wf(f->runtime);

  // Three ways of adding items; the first creates the requisition.
  Variant req_id(int32_t{0}), line, form;
  ASSERT_TRUE(req.AddItemFastAdd(alice, req_id, id.supplier, "P-100", "", "3", "EA", line, form))
      << req.Error()->Description();
  const int32_t rid = req_id.to_int32();
  EXPECT_GT(rid, 0);
  EXPECT_EQ(line, Variant(int32_t{1}));
  EXPECT_EQ(form, Variant(int32_t{0}));
  ASSERT_TRUE(req.AddItemSpecialRequest(alice, req_id, 0, "Local Print Shop", "BC-1", "", "2",
                                        "EA", 0, "", id.paper, "Cards", Variant(std::string("5")),
                                        "USD", "Business cards", line, form))
      << req.Error()->Description();
  EXPECT_EQ(req_id.to_int32(), rid);
  EXPECT_EQ(line, Variant(int32_t{2}));
  EXPECT_EQ(form, Variant(int32_t{1})) << "special requests carry their own smart form";
  ASSERT_TRUE(req.AddItemFavorite(alice, req_id, id.ream, "20", line, form))
      << req.Error()->Description();
  EXPECT_EQ(line, Variant(int32_t{3}));

  Variant status, items, editable, sub, tax, total;
  ASSERT_TRUE(req.GetReqStatus(alice, rid, status, items, editable));
  EXPECT_EQ(status, Variant(int32_t{1}));
  EXPECT_EQ(items, Variant(int32_t{3}));
  EXPECT_EQ(editable, Variant(true));
  // 3 x 2.50 + 2 x 5 + 20 x 100, and 10% tax.
  ASSERT_TRUE(req.GetReqTotals(alice, rid, sub, tax, total)) << req.Error()->Description();
  EXPECT_EQ(sub.to_string(), "$2,017.50");
  EXPECT_EQ(tax.to_string(), "$201.75");
  EXPECT_EQ(total.to_string(), "$2,219.25");
  ASSERT_TRUE(req.SetHeaderJustification(alice, rid, "Quarterly restock"));

  // Submitted: the total is above Bob's limit, so the route is Bob, then Carol.
  int32_t pos = 0;
  ASSERT_TRUE(req.SubmitReq(alice, rid, false, pos)) << req.Error()->Description();
  EXPECT_EQ(pos, 0);
  EXPECT_EQ(wf.GetApprovalCount(alice, rid), 2);
  ASSERT_TRUE(wf.AddAfter(alice, rid, 1, id.dave, id.acme)) << wf.Error()->Description();
  EXPECT_EQ(wf.GetApprovalCount(alice, rid), 3);

  // Bob hands his approvals to Erin for the week; Erin's work list shows the request.
  auto bob = f->session(id.bob), erin = f->session(id.erin), carol = f->session(id.carol),
       dave = f->session(id.dave);
  const Date today = Date::from_civil(2026, 3, 2);
  ASSERT_TRUE(wf.SaveBorgDelegationData(bob, id.acme, id.bob, id.erin, today,
                                        Date::from_civil(2026, 3, 9), true))
      << wf.Error()->Description();
  RecordsetPtr erins = wf.GetApproverListPage(erin, "", 0);
  ASSERT_TRUE(erins) << wf.Error()->Description();
  EXPECT_EQ(column_values(*erins, "ReqID"), std::vector<std::string>{std::to_string(rid)});
  EXPECT_EQ(column_values(*erins, "UIDisplay_ReceivedDate"), std::vector<std::string>{"3/2/2026"});

  // Carol's step is not due yet; Erin may act for Bob but not for Carol.
  EXPECT_FALSE(wf.Approve(carol, rid, 2, ""));
  EXPECT_THAT(wf.Error()->Description(), HasSubstr("not yet due"));
  ASSERT_TRUE(wf.Approve(erin, rid, 1, "Fine by me")) << wf.Error()->Description();
  EXPECT_FALSE(wf.Approve(erin, rid, 3, ""));
  EXPECT_EQ(wf.Error()->Number(), error_number(Refusal::kNotAllowed));
  ASSERT_TRUE(wf.Approve(dave, rid, 3, "")) << wf.Error()->Description();
  ASSERT_TRUE(wf.Approve(carol, rid, 2, "Approved")) << wf.Error()->Description();

  ASSERT_TRUE(req.GetReqStatus(alice, rid, status, items, editable));
  EXPECT_EQ(status, Variant(int32_t{5}));
  EXPECT_EQ(editable, Variant(false));
  // One order for the catalog supplier, one for the print shop of the special request.
  EXPECT_EQ(query_int(*f->db, "SELECT COUNT(*) FROM purchase_orders WHERE req_id = :r", rid), 2);
  EXPECT_EQ(query_int(*f->db,
                      "SELECT COUNT(*) FROM po_lines l JOIN purchase_orders o ON o.po_id = "
                      "l.po_id WHERE o.req_id = :r",
                      rid),
            3);
  EXPECT_FALSE(wf.Approve(carol, rid, 2, ""));
  EXPECT_THAT(wf.Error()->Description(), HasSubstr("cannot be approved again"));

  // The log tells the story in order, the delegate's approval naming Bob.
  Variant name, requisitioner, created, cost, justification, currency;
  RecordsetPtr log = req.GetLogRequisition(alice, rid, name, requisitioner, created, cost,
                                           justification, currency);
  ASSERT_TRUE(log) << req.Error()->Description();
  EXPECT_EQ(column_values(*log, "Action"),
            (std::vector<std::string>{"Created", "Item added", "Special request added",
                                      "Favourite added", "Changed", "Submitted",
                                      "Approver added", "Approved step", "Approved step",
                                      "Approved step", "Approved"}));
  EXPECT_THAT(column_values(*log, "Comments")[7], HasSubstr("for Bob Boss"));
  EXPECT_EQ(requisitioner, Variant(std::string("Alice Asker")));
  EXPECT_EQ(justification, Variant(std::string("Quarterly restock")));
  EXPECT_EQ(cost, Variant(std::string("$2,219.25")));
}

TEST(Lifecycle, ListPagesOverTheStoredRequisitions) {
  auto f = make_fixture();
  auto alice = f->session(f->ids.alice);
  UIReq req(f->runtime);
  for (const char* qty : {"1", "2", "3"}) {
    Variant req_id(int32_t{0}), line, form;
    ASSERT_TRUE(req.AddItemFastAdd(alice, req_id, f->ids.supplier, "P-100", "", qty, "", line, form));
    f->advance_minutes(60 * 24);
  }
  // Page size 2 from the settings table; newest first by default, so the last page holds
  // the oldest.
  RecordsetPtr page = req.GetListPage(alice, "", "", "", "", 2);
  ASSERT_TRUE(page) << req.Error()->Description();
  EXPECT_EQ(page->RecordCount(), 1);
  EXPECT_EQ(page->GetFields()["UIDisplay_TotalRecords"].Value(), Variant(int32_t{3}));
  EXPECT_EQ(page->GetFields()["UIDisplay_CreateDate"].Value().to_string(), "3/2/2026");
  RecordsetPtr sorted = req.GetListPage(alice, "alice", "Acme", "ReqID", "1, 2", 0);
  ASSERT_TRUE(sorted) << req.Error()->Description();
  EXPECT_EQ(column_values(*sorted, "NumberOfItems"), (std::vector<std::string>{"1", "1"}));
  const std::vector<std::string> ids = column_values(*sorted, "ReqID");
  ASSERT_EQ(ids.size(), 2u);
  EXPECT_LT(std::stoi(ids[0]), std::stoi(ids[1]));
  // The statement prepared for the first page serves later calls with their own values.
  Variant req_id(int32_t{0}), line, form;
  ASSERT_TRUE(req.AddItemFastAdd(alice, req_id, f->ids.supplier, "P-100", "", "4", "", line, form));
  RecordsetPtr again = req.GetListPage(alice, "", "", "", "", 0);
  ASSERT_TRUE(again);
  EXPECT_EQ(again->GetFields()["UIDisplay_TotalRecords"].Value(), Variant(int32_t{4}));
  EXPECT_EQ(again->GetFields()["ReqID"].Value(), req_id);
  RecordsetPtr bobs = req.GetListPage(f->session(f->ids.bob), "", "", "", "", 0);
  ASSERT_TRUE(bobs) << req.Error()->Description();
  EXPECT_EQ(bobs->RecordCount(), 0);
  EXPECT_FALSE(req.GetListPage(alice, "", "", "ReqID; DROP TABLE requisitions", "", 0));
  EXPECT_THAT(req.Error()->Description(), HasSubstr("cannot be sorted by"));
  EXPECT_FALSE(req.GetListPage(alice, "", "", "", "1,x", 0));
  EXPECT_THAT(req.Error()->Description(), HasSubstr("is not a status"));
}

TEST(Lifecycle, ResourceTextsPerLocale) {
  auto f = make_fixture();
  struct Case {
    const char* lang;
    const char* country;
    const char* submit;
    const char* page;
  } cases[] = {
      {"en", "US", "Submit", "Page 2 of 7"},
      {"de", "DE", "Absenden", "Seite 2 von 7"},
      {"fr", "FR", "Soumettre", "Page 2 sur 7"},
      {"es", "ES", "Submit", "Page 2 of 7"},  // no Spanish texts: the default object
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.lang);
    auto s = f->session(f->ids.alice);
    s->lang_code = c.lang;
    s->country_code = c.country;
    UILang lang(f->runtime);
    ASSERT_TRUE(lang.GetResourceObject(s));
    EXPECT_EQ(lang.LoadString(1002, "?"), c.submit);
    EXPECT_EQ(lang.LoadString(1022, "?", Variant(Array::of({Variant(int32_t{2}), Variant(int32_t{7})}))),
              c.page);
    EXPECT_EQ(lang.LoadString(31999, "Default @1", Variant(Array::of({Variant(std::string("x"))}))),
              "Default x");
  }
}

}  // namespace
}  // namespace kxui::reference
