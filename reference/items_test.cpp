// Lines of a requisition through UIReq: what the catalog decides, what is refused, and
// totals across currencies.
#include <gmock/gmock.h>

#include "kxui/requisition/ui_req.h"
#include "reference/errors.h"
#include "reference/test_fixture.h"

namespace kxui::reference {
namespace {

using ::testing::HasSubstr;
using testing::make_fixture;

struct Line {
  std::string supplier_name, part_num, uom, currency, desc;
  double qty = 0;
  long long price = 0;
  int special = 0, complete = 0, smart_form = -1;
};

Line read_line(Database& db, int32_t req_id, int32_t line_num) {
  Line l;
  db.read([&](soci::session& sql) {
    sql << "SELECT supplier_name, supplier_part_num, uom_id, currency_code, part_desc, qty, "
           "unit_price, is_special, complete, smart_form_id FROM req_lines WHERE req_id = :r "
           "AND line_num = :l",
        soci::use(req_id), soci::use(line_num), soci::into(l.supplier_name),
        soci::into(l.part_num), soci::into(l.uom), soci::into(l.currency), soci::into(l.desc),
        soci::into(l.qty), soci::into(l.price), soci::into(l.special), soci::into(l.complete),
        soci::into(l.smart_form);
  });
  return l;
}

TEST(Items, TheCatalogDecidesPriceUnitAndDescription) {
  auto f = make_fixture();
  auto alice = f->session(f->ids.alice);
  UIReq ui(f->runtime);
  Variant req_id(int32_t{0}), line, form;
  // The caller's unit may be left empty; the caller's currency does not set the price.
  ASSERT_TRUE(ui.AddItemFastAdd(alice, req_id, f->ids.euro_supplier, "D-1", "", "2", "", line, form));
  const Line desk = read_line(*f->db, req_id.to_int32(), 1);
  EXPECT_EQ(desk.supplier_name, "Bürobedarf AG");
  EXPECT_EQ(desk.uom, "EA");
  EXPECT_EQ(desk.currency, "EUR");
  EXPECT_EQ(desk.price, 4000000);
  EXPECT_EQ(desk.desc, "Standing desk");
  EXPECT_DOUBLE_EQ(desk.qty, 2);
  EXPECT_EQ(desk.special, 0);
  EXPECT_EQ(desk.complete, 1);
  EXPECT_EQ(desk.smart_form, 0);

  // Two desks at 400 EUR, 0.5 EUR to the dollar: 1,600 USD, plus 10%.
  Variant sub, tax, total;
  ASSERT_TRUE(ui.GetReqTotals(alice, req_id.to_int32(), sub, tax, total));
  EXPECT_EQ(sub.to_string(), "$1,600.00");
  EXPECT_EQ(total.to_string(), "$1,760.00");
  auto euro = f->session(f->ids.alice);
  euro->currency_code = "EUR";
  ASSERT_TRUE(ui.GetReqTotals(euro, req_id.to_int32(), sub, tax, total));
  EXPECT_EQ(sub.to_string(), "€800.00");
}

TEST(Items, RefusedLinesLeaveTheRequisitionAsItWas) {
  auto f = make_fixture();
  auto alice = f->session(f->ids.alice), bob = f->session(f->ids.bob);
  UIReq ui(f->runtime);
  Variant first(int32_t{0}), line, form;
  ASSERT_TRUE(ui.AddItemFastAdd(alice, first, f->ids.supplier, "P-100", "", "1", "EA", line, form));
  const int32_t rid = first.to_int32();
  struct Case {
    const char* what;
    std::function<bool(Variant&)> add;
    Refusal expected;
    const char* text;
  } cases[] = {
      {"unknown part",
       [&](Variant& r) { return ui.AddItemFastAdd(alice, r, f->ids.supplier, "NOPE", "", "1", "", line, form); },
       Refusal::kNotFound, "has no catalog part \"NOPE\""},
      {"wrong unit",
       [&](Variant& r) { return ui.AddItemFastAdd(alice, r, f->ids.supplier, "P-100", "", "1", "BX", line, form); },
       Refusal::kInvalidArgument, "is sold by EA, not by BX"},
      {"zero quantity",
       [&](Variant& r) { return ui.AddItemFastAdd(alice, r, f->ids.supplier, "P-100", "", "0", "", line, form); },
       Refusal::kInvalidArgument, "above zero"},
      {"not a favourite",
       [&](Variant& r) { return ui.AddItemFavorite(alice, r, f->ids.pen, "1", line, form); },
       Refusal::kNotFound, "is not among your favourites"},
      {"special request without a description",
       [&](Variant& r) {
         return ui.AddItemSpecialRequest(alice, r, 0, "Shop", "S-1", "", "1", "EA", 0, "", 0, "",
                                         Variant(std::string("3")), "USD", "", line, form);
       },
       Refusal::kInvalidArgument, "needs a description"},
      {"no such requisition",
       [&](Variant&) {
         Variant missing(int32_t{999});
         return ui.AddItemFastAdd(alice, missing, f->ids.supplier, "P-100", "", "1", "", line, form);
       },
       Refusal::kNotFound, "Requisition 999 does not exist"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Variant target(rid);
    EXPECT_FALSE(c.add(target));
    EXPECT_EQ(ui.Error()->Number(), error_number(c.expected));
    EXPECT_THAT(ui.Error()->Description(), HasSubstr(c.text));
    EXPECT_EQ(target, Variant(rid));
  }
  Variant status, items, editable;
  ASSERT_TRUE(ui.GetReqStatus(alice, rid, status, items, editable));
  EXPECT_EQ(items, Variant(int32_t{1}));

  // Lengths count characters, not bytes: 255 accented letters fit a description, 256 do not.
  std::string accented;
  for (int i = 0; i < 255; ++i) accented += "é";
  Variant target(rid);
  EXPECT_TRUE(ui.AddItemSpecialRequest(alice, target, 0, "Shop", "S-1", "", "1", "EA", 0, "", 0,
                                       "", Variant(std::string("3")), "USD", accented, line, form))
      << ui.Error()->Description();
  EXPECT_FALSE(ui.AddItemSpecialRequest(alice, target, 0, "Shop", "S-1", "", "1", "EA", 0, "", 0,
                                        "", Variant(std::string("3")), "USD", accented + "é", line,
                                        form));
  EXPECT_THAT(ui.Error()->Description(),
              HasSubstr("A description may have at most 255 characters; 256 were given."));
  EXPECT_FALSE(ui.SetHeaderJustification(alice, rid, std::string(257, 'j')));
  EXPECT_THAT(ui.Error()->Description(), HasSubstr("A justification may have at most 256"));
  // Another user cannot rename Alice's requisition.
  EXPECT_FALSE(ui.UpdateReqName(bob, rid, "Bob's now"));
  EXPECT_THAT(ui.Error()->Description(), HasSubstr("Only the requisitioner may rename"));
}

TEST(Items, SpecialRequestsAreRewrittenWhole) {
  auto f = make_fixture();
  auto alice = f->session(f->ids.alice);
  UIReq ui(f->runtime);
  Variant req_id(int32_t{0}), line, form;
  ASSERT_TRUE(ui.AddItemSpecialRequest(alice, req_id, 0, "Shop", "S-1", "", "1", "EA", 0, "", 0,
                                       "", Variant(std::string("3")), "USD", "Sign", line, form));
  const int32_t rid = req_id.to_int32();
  ASSERT_TRUE(ui.AddItemFastAdd(alice, req_id, f->ids.supplier, "P-100", "", "1", "", line, form));
  ASSERT_TRUE(ui.UpdateSpecialRequestItem(alice, rid, 1, f->ids.supplier, "Office Supplies Inc",
                                          "S-2", "x", "4", "BX", 0, "", f->ids.paper, "Signs",
                                          Variant(std::string("7.5")), "EUR", "Big sign"))
      << ui.Error()->Description();
  const Line sign = read_line(*f->db, rid, 1);
  EXPECT_EQ(sign.part_num, "S-2");
  EXPECT_EQ(sign.uom, "BX");
  EXPECT_EQ(sign.currency, "EUR");
  EXPECT_EQ(sign.price, 75000);
  EXPECT_DOUBLE_EQ(sign.qty, 4);
  EXPECT_EQ(sign.desc, "Big sign");
  EXPECT_EQ(sign.smart_form, 1);

  EXPECT_FALSE(ui.UpdateSpecialRequestItem(alice, rid, 2, 0, "", "S-3", "", "1", "EA", 0, "", 0,
                                           "", Variant(std::string("1")), "USD", "Not special"));
  EXPECT_THAT(ui.Error()->Description(), HasSubstr("has no special request on line 2"));
  EXPECT_EQ(read_line(*f->db, rid, 2).desc, "Blue ballpoint pen");
}

TEST(Items, NestedChangesShareOneTransaction) {
  auto f = make_fixture();
  auto count = [&] {
    return f->db->read([](soci::session& sql) {
      int n = 0;
      sql << "SELECT COUNT(*) FROM manufacturers", soci::into(n);
      return n;
    });
  };
  EXPECT_THROW(f->db->write([&](soci::session& sql) {
    sql << "INSERT INTO manufacturers (name) VALUES ('Outer')";
    f->db->write([](soci::session& inner) {
      inner << "INSERT INTO manufacturers (name) VALUES ('Inner')";
    });
    refuse(Refusal::kInvalidArgument, "changed my mind");
  }),
               Failure);
  EXPECT_EQ(count(), 0) << "the inner change went with the outer one";
}

}  // namespace
}  // namespace kxui::reference
