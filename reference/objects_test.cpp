// The business objects the façades of later classes will call: utilities, the catalog,
// delegation, the table settings and log, and users' passwords.
#include <gmock/gmock.h>

#include "kxui/business/progids.h"
#include "kxui/workflow/ui_wf.h"
#include "reference/catalog.h"
#include "reference/errors.h"
#include "reference/test_fixture.h"
#include "reference/workflow.h"

namespace kxui::reference {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using testing::make_fixture;

std::vector<std::string> column(const RecordsetPtr& rs, const char* name) {
  std::vector<std::string> out;
  if (!rs || rs->RecordCount() == 0) return out;
  for (rs->MoveFirst(); !rs->IsEOF(); rs->MoveNext()) {
    out.push_back(rs->GetFields()[name].Value().to_string());
  }
  return out;
}

TEST(Objects, UtilsConvertAtTheRatesInForce) {
  auto f = make_fixture();
  auto s = f->session(f->ids.alice);
  RefUtils utils(f->db);
  Variant cd;
  EXPECT_EQ(utils.GetServerDate(s, cd), Variant(Date::from_civil(2026, 3, 2, 9, 0, 0)));
  f->db->write([](soci::session& sql) {
    sql << "INSERT INTO currency_rates VALUES ('EUR', '2026-03-01 00:00:00', 0.8)";
  });
  struct Case {
    double amount;
    const char *from, *to;
    Variant at;
    double expected;  // negative: no rate
  } cases[] = {
      {100, "USD", "EUR", Variant(), 80},
      {100, "USD", "EUR", Variant(Date::from_civil(2026, 2, 28)), 50},
      {10, "EUR", "GBP", Variant(Date::from_civil(2020, 1, 1)), 5},
      {7, "GBP", "GBP", Variant(), 7},
      {1, "USD", "CHF", Variant(), -1},
      {1, "USD", "EUR", Variant(Date::from_civil(1999, 1, 1)), -1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.from) + "->" + c.to);
    double converted = -99;
    const bool ok = utils.ConvertCurrency(s, c.amount, c.from, c.to, c.at, converted, cd);
    EXPECT_EQ(ok, c.expected >= 0);
    if (ok) {
      EXPECT_DOUBLE_EQ(converted, c.expected);
    } else {
      EXPECT_EQ(utils.GetError()->Description(),
                std::string("No exchange rate from USD to ") + c.to + " is known on " +
                    (c.at.is_empty() ? "2026-03-02" : "1999-01-01") + ".");
    }
  }
}

TEST(Objects, PartSearchFiltersSortsAndPrices) {
  auto f = make_fixture();
  auto s = f->session(f->ids.alice);
  RefPartSearch search(f->db);
  Variant cd;
  struct Case {
    const char* what;
    std::string keyword, part_num, supplier, currency, display, lang;
    int32_t commodity = 0, sort = 0, search_type = 0, part_num_type = 0;
    bool subtrees = false;
    std::vector<std::string> descriptions;
  } cases[] = {
      {"keyword", "PEN", "", "", "", "", "en", 0, 0, 0, 0, false, {"Blue ballpoint pen"}},
      {"translated", "kugel", "", "", "", "", "de", 0, 0, 0, 0, false, {"Kugelschreiber blau"}},
      {"begins with", "paper", "", "", "", "", "en", 0, 0, 1, 0, false, {}},
      {"part number", "", "p-", "", "", "", "en", 0, 1, 1, 1, false,
       {"Blue ballpoint pen", "Copy paper, 5 reams"}},
      {"manufacturer number only", "", "p-", "", "", "", "en", 0, 0, 1, 2, false, {}},
      {"supplier", "", "", "bürobedarf", "", "", "en", 0, 0, 0, 0, false, {"Standing desk"}},
      {"currency", "", "", "", "EUR", "", "en", 0, 0, 0, 0, false, {"Standing desk"}},
      {"commodity subtree", "", "", "", "", "", "en", f->ids.office, 0, 0, 0, true,
       {"Blue ballpoint pen", "Copy paper, 5 reams", "Standing desk"}},
      {"commodity alone", "", "", "", "", "", "en", f->ids.office, 0, 0, 0, false, {"Standing desk"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    RecordsetPtr rs = search.SearchParts(s, c.keyword, false, c.part_num_type, c.part_num, "",
                                         c.supplier, 0, "", c.commodity, c.subtrees, c.currency,
                                         "", c.display, c.lang, "", 0, 3, c.sort, c.search_type, 0, cd);
    ASSERT_TRUE(rs) << search.GetError()->Description();
    EXPECT_TRUE(search.Success());
    EXPECT_EQ(column(rs, "Description"), c.descriptions);
    EXPECT_EQ(search.RecordCount(), static_cast<int32_t>(c.descriptions.size()));
  }
  // Prices in the display currency; unknown enumerations refused.
  RecordsetPtr eur = search.LoadPartDetail(s, f->ids.pen, "", "", "EUR", "en", 0, 3, 0, cd);
  ASSERT_TRUE(eur);
  EXPECT_EQ(column(eur, "UnitPrice"), std::vector<std::string>{"1.25"});
  EXPECT_EQ(column(eur, "CurrencyCode"), std::vector<std::string>{"EUR"});
  EXPECT_FALSE(search.SearchParts(s, "", false, 0, "", "", "", 0, "", 0, false, "", "", "", "en",
                                  "", 0, 3, 9, 0, 0, cd));
  EXPECT_FALSE(search.Success());
  EXPECT_THAT(search.GetError()->Description(), HasSubstr("Sort order 9"));
  search.SetDebugMode(true);
  search.SearchParts(s, "pen", false, 0, "", "", "", 0, "", 0, false, "", "", "", "en", "", 0, 3,
                     0, 0, 0, cd);
  EXPECT_THAT(search.LastQueryString(), HasSubstr("keyword '%pen%'"));
  EXPECT_FALSE(search.LoadPartDetail(s, 999, "", "", "USD", "en", 0, 3, 0, cd));
}

TEST(Objects, CommodityTreeChildrenFilterAndPath) {
  auto f = make_fixture();
  auto alice = f->session(f->ids.alice), dave = f->session(f->ids.dave);
  RefCommodity tree(f->db);
  Variant cd;
  f->db->write([&](soci::session& sql) {
    sql << "INSERT INTO user_commodities VALUES (:u, :c)", soci::use(f->ids.dave),
        soci::use(f->ids.writing);
  });
  EXPECT_EQ(column(tree.GetChildren(alice, 0, 0, 3, false, false, 0, cd), "Name"),
            std::vector<std::string>{"Office"});
  EXPECT_EQ(column(tree.GetChildren(alice, f->ids.office, 0, 3, true, false, 0, cd), "Name"),
            (std::vector<std::string>{"Paper", "Writing"}));
  EXPECT_EQ(column(tree.GetChildren(dave, f->ids.office, 0, 3, true, true, 0, cd), "Name"),
            (std::vector<std::string>{"Writing", "Unknown"}));
  EXPECT_EQ(tree.RecordCount(), 2);
  EXPECT_EQ(column(tree.GetChildren(dave, 0, 0, 3, true, false, 0, cd), "HasChildren"),
            std::vector<std::string>{"True"});
  RecordsetPtr path = tree.GetCommodityPath(alice, f->ids.writing, 0, 3, cd);
  EXPECT_EQ(column(path, "Name"), (std::vector<std::string>{"Office", "Writing"}));
  EXPECT_EQ(column(path, "Level"), (std::vector<std::string>{"0", "1"}));
  EXPECT_FALSE(tree.GetCommodityPath(alice, 999, 0, 3, cd));
  EXPECT_FALSE(tree.Success());
}

TEST(Objects, DelegationIsCheckedBeforeItIsStored) {
  auto f = make_fixture();
  UIWF wf(f->runtime);
  auto bob = f->session(f->ids.bob);
  const Date start = Date::from_civil(2026, 3, 2), end = Date::from_civil(2026, 3, 9);
  struct Case {
    const char* what;
    int32_t delegatee;
    Date from, to;
    const char* text;
  } refused[] = {
      {"self", f->ids.bob, start, end, "cannot delegate to himself"},
      {"reversed dates", f->ids.erin, end, start, "ends before it starts"},
      {"outsider", f->ids.frank, start, end, "not an active member"},
  };
  for (const Case& c : refused) {
    SCOPED_TRACE(c.what);
    EXPECT_FALSE(wf.SaveBorgDelegationData(bob, f->ids.acme, f->ids.bob, c.delegatee, c.from, c.to, true));
    EXPECT_THAT(wf.Error()->Description(), HasSubstr(c.text));
  }
  Variant borg, user, delegatee, name, login, from, to, enabled;
  EXPECT_TRUE(wf.GetBorgDelegationData(bob, borg, user, delegatee, name, login, from, to, enabled));
  EXPECT_EQ(delegatee, Variant(int32_t{0})) << "nothing stored by the refused saves";
  ASSERT_TRUE(wf.SaveBorgDelegationData(bob, f->ids.acme, f->ids.bob, f->ids.erin, start, end, true));
  ASSERT_TRUE(wf.GetBorgDelegationData(bob, borg, user, delegatee, name, login, from, to, enabled));
  EXPECT_EQ(name, Variant(std::string("Erin Standin")));
  EXPECT_EQ(login, Variant(std::string("erin")));
  EXPECT_EQ(to, Variant(end));
  EXPECT_TRUE(wf.CheckDelegationEnabled(bob));
  RecordsetPtr found = wf.GetDelegateSearchResultsRs(bob, "e", "");
  EXPECT_EQ(column(found, "LoginID"), (std::vector<std::string>{"alice", "carol", "dave", "erin"}));
}

TEST(Objects, AUserWhoNeverDelegatedLoadsAnEmptyDelegation) {
  auto f = make_fixture();
  f->db->write([&](soci::session& sql) {
    sql << "UPDATE borgs SET delegation_enabled = 0 WHERE borg_id = :b", soci::use(f->ids.berg);
  });
  struct Case {
    const char* who;
    int32_t user, borg;
    bool allowed;
  } cases[] = {{"organisation allows delegation", f->ids.bob, f->ids.acme, true},
               {"organisation forbids delegation", f->ids.frank, f->ids.berg, false}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.who);
    UIWF wf(f->runtime);
    auto s = f->session(c.user);
    EXPECT_EQ(wf.CheckDelegationEnabled(s), c.allowed);
    EXPECT_TRUE(wf.Success());
    Variant borg, user, delegatee, name, login, from, to, enabled;
    ASSERT_TRUE(wf.GetBorgDelegationData(s, borg, user, delegatee, name, login, from, to, enabled))
        << wf.Error()->Description();
    EXPECT_EQ(borg, Variant(c.borg));
    EXPECT_EQ(user, Variant(c.user));
    EXPECT_EQ(delegatee, Variant(int32_t{0}));
    EXPECT_EQ(name, Variant(std::string()));
    EXPECT_EQ(enabled, Variant(false));
  }
}

TEST(Objects, SettingsLogAndPasswordsLiveInTables) {
  auto f = make_fixture();
  auto s = f->session(f->ids.alice);
  Variant cd;
  TableAppIni ini(f->db);
  ASSERT_TRUE(ini.ReadValue(s, "page size", "PAGING", "dunmere", cd));
  EXPECT_EQ(ini.GetValue(), "2");
  EXPECT_FALSE(ini.ReadValue(s, "Page Size", "UI", "Dunmere", cd));
  EXPECT_EQ(ini.GetError()->Number(), TableAppIni::kSettingNotFound);
  EXPECT_EQ(ini.GetError()->Description(),
            "Setting \"Page Size\" of section [UI] of application Dunmere is not set");
  EXPECT_EQ(ini.GetValue(), "2");
  put_setting(*f->db, "DUNMERE", "paging", "PAGE SIZE", "30");
  ASSERT_TRUE(ini.ReadValue(s, "Page Size", "Paging", "Dunmere", cd));
  EXPECT_EQ(ini.GetValue(), "30");
  EXPECT_EQ(column(ini.GetSettingsList(s, cd), "name"),
            (std::vector<std::string>{"PAGE SIZE", "DateFormat"}));

  TableLog log(f->db);
  log.SetEventType(2);
  log.SetMessage("UIReq::Save :: disk full");
  log.WriteEntry();
  EXPECT_THROW(log.SetEventType(3), Failure);
  std::string message;
  int type = 0;
  f->db->read([&](soci::session& sql) {
    sql << "SELECT event_type, message FROM event_log", soci::into(type), soci::into(message);
  });
  EXPECT_EQ(type, 2);
  EXPECT_EQ(message, "UIReq::Save :: disk full");

  EXPECT_EQ(VerifyPassword(*f->db, "Alice", "alice-secret"), f->ids.alice);
  EXPECT_EQ(VerifyPassword(*f->db, "alice", "Alice-secret"), std::nullopt);
  EXPECT_EQ(VerifyPassword(*f->db, "nobody", "alice-secret"), std::nullopt);
  const std::string hash = HashPassword("pw", HashCost::kMinimum);
  EXPECT_THAT(hash, ::testing::StartsWith("$argon2id$"));
  EXPECT_NE(hash, HashPassword("pw", HashCost::kMinimum)) << "salted";
}

}  // namespace
}  // namespace kxui::reference
