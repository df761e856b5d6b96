// Reference lists, login, stored cards, attachments and reports through the façades over
// a fresh database file.
#include <gmock/gmock.h>

#include "kxui/attach/ui_attach.h"
#include "kxui/common/ui_com.h"
#include "kxui/report/ui_report.h"
#include "kxui/session/ui_session.h"
#include "reference/session.h"
#include "reference/errors.h"
#include "reference/test_fixture.h"
#include "services/time_zones.h"

namespace kxui::reference {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using testing::make_fixture;

std::vector<std::string> column(const RecordsetPtr& rs, const char* name) {
  std::vector<std::string> out;
  if (!rs || rs->RecordCount() == 0) return out;
  for (rs->MoveFirst(); !rs->IsEOF(); rs->MoveNext()) out.push_back((*rs)[name].Value().to_string());
  return out;
}

void exec(Database& db, const std::string& statement) {
  db.write([&](soci::session& sql) { sql << statement; });
}

void add_reference_rows(testing::Fixture& f) {
  const std::string acme = std::to_string(f.ids.acme), berg = std::to_string(f.ids.berg);
  const std::string sup = std::to_string(f.ids.supplier);
  exec(*f.db, "INSERT INTO manufacturers (name) VALUES ('Zeta Pens'), ('Alpha Paper')");
  exec(*f.db, "INSERT INTO bill_tos (borg_id, line1, city, state, postal_code, country_code, "
              "contact_name) VALUES (" + acme + ", '1 Main St', 'Springfield', 'IL', '62701', "
              "'US', 'Ann Payable'), (" + berg + ", 'Hauptstr. 2', 'Berlin', '', '10115', 'DE', "
              "'Bert')");
  exec(*f.db, "INSERT INTO ship_tos (borg_id, line1, city, country_code, taxable) VALUES (" +
                  acme + ", 'Dock 4', 'Springfield', 'US', 0)");
  exec(*f.db, "INSERT INTO cost_centers (borg_id, code, name) VALUES (" + acme +
                  ", 'CC20', 'Sales'), (" + acme + ", 'CC10', 'Research'), (" + berg +
                  ", 'K1', 'Vertrieb')");
  exec(*f.db, "INSERT INTO supplier_payment_methods (supplier_id, payment_method_id) VALUES (" +
                  sup + ", 2)");
  exec(*f.db, "INSERT INTO ship_methods (supplier_id, name) VALUES (" + sup + ", 'Own Truck')");
}

TEST(Lists, EachListServesItsTableRows) {
  auto f = make_fixture();
  add_reference_rows(*f);
  auto alice = f->session(f->ids.alice);
  UICom com(f->runtime);
  const int32_t acme = f->ids.acme;
  struct Case {
    const char* name;
    std::function<RecordsetPtr()> list;
    const char* column;
    std::vector<std::string> expected;
  } cases[] = {
      {"bill-to of one organisation", [&] { return com.GetBillToList(alice, acme); }, "City",
       {"Springfield"}},
      {"ship-to", [&] { return com.GetShipToList(alice, acme); }, "Line1", {"Dock 4"}},
      {"currencies", [&] { return com.GetCurrencyList(alice); }, "CurrencyCode",
       {"CHF", "EUR", "GBP", "USD"}},
      {"manufacturers by name", [&] { return com.GetMfrList(alice); }, "Name",
       {"Alpha Paper", "Zeta Pens"}},
      {"suppliers by name", [&] { return com.GetSupplierList(alice); }, "Name",
       {"Bürobedarf AG", "Office Supplies Inc"}},
      {"units", [&] { return com.GetUOMList(alice); }, "UOMID",
       {"BX", "CS", "EA", "HR", "KG", "L", "M", "PK"}},
      {"a supplier's own payment methods",
       [&] { return com.GetPaymentMethodList(alice, f->ids.supplier, f->ids.alice); }, "Name",
       {"Credit Card"}},
      {"all methods when the supplier names none",
       [&] { return com.GetPaymentMethodList(alice, f->ids.euro_supplier, f->ids.alice); },
       "Name", {"Purchase Order", "Credit Card", "Procurement Card"}},
      {"shared and own ship methods",
       [&] { return com.GetShipMethodList(alice, f->ids.supplier); }, "Name",
       {"Ground", "Next Day Air", "Will Call", "Own Truck"}},
      {"other suppliers see only the shared ones",
       [&] { return com.GetShipMethodList(alice, f->ids.euro_supplier); }, "Name",
       {"Ground", "Next Day Air", "Will Call"}},
      {"receipt statuses", [&] { return com.GetReceiptItemStatusList(alice); }, "Description",
       {"Received", "Partially Received", "Rejected", "Returned"}},
      {"the user's organisation", [&] { return com.GetUserBorgList(alice); }, "Name", {"Acme"}},
      {"cost centres by code", [&] {
         RecordsetPtr rs;
         EXPECT_TRUE(com.GetBorgCostCenters(alice, acme, rs));
         return rs;
       }, "Code", {"CC10", "CC20"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    RecordsetPtr rs = c.list();
    ASSERT_TRUE(rs) << com.Error()->Description();
    EXPECT_THAT(column(rs, c.column), ElementsAreArray(c.expected));
  }
}

TEST(Lists, OptionListsAreBuiltFromTheTables) {
  auto f = make_fixture();
  add_reference_rows(*f);
  auto alice = f->session(f->ids.alice);
  UICom com(f->runtime);
  std::string html;
  ASSERT_TRUE(com.GetUOMList2(alice, html, "BX")) << com.Error()->Description();
  EXPECT_THAT(html, HasSubstr("<OPTION Selected VALUE=\"BX\">BX-Box</OPTION>"));
  EXPECT_THAT(html, HasSubstr("<OPTION VALUE=\"KG\">KG-Kilogram</OPTION>"));
  ASSERT_TRUE(com.GetCurrencyListByBorg(alice, html, "USD")) << com.Error()->Description();
  // Acme trades in dollars; its suppliers price in dollars and euros; no one in francs.
  EXPECT_THAT(html, HasSubstr("EUR"));
  EXPECT_THAT(html, ::testing::Not(HasSubstr("CHF")));
  EXPECT_LT(html.find("USD"), html.find("EUR")) << "the organisation's own currency first";
  ASSERT_TRUE(com.GetSupplierList2(alice, html, f->ids.supplier));
  EXPECT_THAT(html, HasSubstr("Office Supplies Inc"));
}

TEST(Lists, AddressRecordsAreFormattedAndUnknownOnesFail) {
  auto f = make_fixture();
  add_reference_rows(*f);
  auto alice = f->session(f->ids.alice);
  UICom com(f->runtime);
  const int32_t bill_id = f->db->read([&](soci::session& sql) {
    int id = 0;
    sql << "SELECT bill_to_id FROM bill_tos WHERE city = 'Springfield'", soci::into(id);
    return id;
  });
  RecordsetPtr bill = com.GetBillToData(alice, bill_id);
  ASSERT_TRUE(bill) << com.Error()->Description();
  const std::string address = (*bill)["DisplayBillToAddress"].Value().to_string();
  EXPECT_THAT(address, HasSubstr("1 Main St\r\n"));
  EXPECT_THAT(address, HasSubstr("Springfield"));
  EXPECT_THAT(address, HasSubstr("62701"));
  EXPECT_EQ((*bill)["BillToContactName"].Value().to_string(), "Ann Payable");

  const int32_t ship_id = column(com.GetShipToList(alice, f->ids.acme), "ID").size() == 1
                              ? std::stoi(column(com.GetShipToList(alice, f->ids.acme), "ID")[0])
                              : 0;
  RecordsetPtr ship = com.GetShipToData(alice, ship_id);
  ASSERT_TRUE(ship) << com.Error()->Description();
  EXPECT_FALSE((*ship)["Taxable"].Value().to_bool());

  EXPECT_FALSE(com.GetBillToData(alice, 9999));
  EXPECT_EQ(com.Error()->Number(), error_number(Refusal::kNotFound));
  EXPECT_THAT(com.Error()->Source(), HasSubstr("BillTo::Load"));
}

TEST(Lists, EveryOfferedZoneConvertsAndEveryLocaleFormats) {
  auto f = make_fixture();
  auto alice = f->session(f->ids.alice);
  UICom com(f->runtime);
  RecordsetPtr zones, locales;
  ASSERT_TRUE(com.GetTimeZoneList(alice, zones)) << com.Error()->Description();
  ASSERT_TRUE(com.GetLocaleList(alice, locales)) << com.Error()->Description();
  const std::vector<std::string> ids = column(zones, "TimeZoneID");
  EXPECT_EQ(ids.size(), std::size(services::kTimeZones));
  auto dates = create_as<DateFormatter>(*f->runtime, service_class::kDateFormatter);
  const Date noon = Date::from_civil(2026, 1, 15, 12, 0, 0);
  for (const std::string& id : ids) {
    SCOPED_TRACE(id);
    EXPECT_NO_THROW(dates->ConvertTimeZone(15, noon, std::stoi(id)));
  }
  auto money = create_as<CurrencyFormatter>(*f->runtime, service_class::kCurrencyFormatter);
  const std::vector<std::string> locale_ids = column(locales, "LocaleID");
  EXPECT_THAT(locale_ids, ::testing::Contains("1031"));
  for (const std::string& id : locale_ids) {
    SCOPED_TRACE(id);
    EXPECT_NO_THROW(money->FormatCurrencyAmount(std::stoi(id), "USD", 12.5));
  }
}

TEST(Account, LoginChecksThePasswordAndAWrongOneSetsNothing) {
  auto f = make_fixture();
  UICom com(f->runtime);
  auto s = f->session(0);
  struct Case {
    const char* login;
    const char* password;
    bool ok;
    int32_t expected;
  } cases[] = {
      {"bob", "bob-secret", true, f->ids.bob},
      {"BOB", "bob-secret", true, f->ids.bob},  // login ids compare without case
      {"bob", "alice-secret", false, -1},
      {"bob", "", false, -1},
      {"nobody", "bob-secret", false, -1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.login) + "/" + c.password);
    int32_t user = -1;
    EXPECT_EQ(com.Login(s, c.login, c.password, user), c.ok);
    EXPECT_EQ(user, c.expected);
    if (!c.ok) {
      EXPECT_EQ(com.Error()->Number(), 0) << "a wrong password is not an error";
    }
  }
}

TEST(Account, StoredCardsAreUpdatedOnlyByTheirOwner) {
  auto f = make_fixture();
  exec(*f->db, "INSERT INTO user_payment_methods (sys_user_id, payment_method_id, card_holder, "
               "card_last4, priority) VALUES (" + std::to_string(f->ids.alice) +
                   ", 2, 'Alice Asker', '4242', 1), (" + std::to_string(f->ids.alice) +
                   ", 3, 'Alice Asker', '1111', 2)");
  UICom com(f->runtime);
  auto alice = f->session(f->ids.alice), bob = f->session(f->ids.bob);
  const Variant expiry(Date::from_civil(2028, 12, 31, 0, 0, 0));
  ASSERT_TRUE(com.SetCreditCardValues(alice, f->ids.alice, 2, expiry, 5))
      << com.Error()->Description();
  RecordsetPtr card = com.GetDataBySysUserIDPayMethID(alice, f->ids.alice, 2);
  ASSERT_TRUE(card);
  EXPECT_EQ((*card)["Priority"].Value().to_int32(), 5);
  EXPECT_EQ((*card)["CCExpiration"].Value().to_date().year(), 2028);
  EXPECT_THAT(column(com.GetDataBySysUserID(alice, f->ids.alice), "CardLast4"),
              ElementsAre("1111", "4242"))
      << "ordered by priority";

  struct Refused {
    const char* name;
    SessionPtr session;
    int32_t method, priority;
    Refusal why;
  } refused[] = {
      {"another user's card", bob, 2, 1, Refusal::kNotAllowed},
      {"a method not stored", alice, 1, 1, Refusal::kNotFound},
      {"priority below 1", alice, 2, 0, Refusal::kInvalidArgument},
  };
  for (const Refused& r : refused) {
    SCOPED_TRACE(r.name);
    EXPECT_FALSE(com.SetCreditCardValues(r.session, f->ids.alice, r.method, expiry, r.priority));
    EXPECT_EQ(com.Error()->Number(), error_number(r.why));
  }
  card = com.GetDataBySysUserIDPayMethID(alice, f->ids.alice, 2);
  EXPECT_EQ((*card)["Priority"].Value().to_int32(), 5) << "refusals change nothing";
}

TEST(Session, TheHubsSessionBeginsResumesExpiresAndEnds) {
  auto f = make_fixture();
  exec(*f->db, "UPDATE users SET locale_id = 1031, time_zone_id = 4, currency_code = 'EUR' "
               "WHERE login_id = 'frank'");
  UISession hub(f->runtime);
  auto session = std::dynamic_pointer_cast<RefKxSession>(hub.Session());
  ASSERT_TRUE(session) << hub.Error()->Description();
  ASSERT_TRUE(std::dynamic_pointer_cast<RefSecurity>(hub.Security()));
  const std::string token = session->Begin(7, f->ids.frank);
  EXPECT_EQ(token.size(), 48u);

  UISession later(f->runtime);
  auto resumed = std::dynamic_pointer_cast<RefKxSession>(later.Session());
  ASSERT_TRUE(resumed->Resume(token));
  struct Value {
    const char* name;
    std::string got, expected;
  } values[] = {
      {"user", std::to_string(resumed->SysUserID()), std::to_string(f->ids.frank)},
      {"organisation", std::to_string(resumed->BorgID()), std::to_string(f->ids.berg)},
      {"EBO as the default value", std::to_string(resumed->Value()), "7"},
      {"locale", std::to_string(resumed->LocaleID()), "1031"},
      {"language", resumed->LangCode(), "de"},
      {"country", resumed->CountryCode(), "DE"},
      {"zone", std::to_string(resumed->TimeZoneID()), "4"},
      {"currency", resumed->CurrencyCode(), "EUR"},
  };
  for (const Value& v : values) EXPECT_EQ(v.got, v.expected) << v.name;

  EXPECT_FALSE(resumed->Resume("not-a-token"));
  f->advance_minutes(RefKxSession::kLifetimeMinutes + 1);
  EXPECT_FALSE(resumed->Resume(token)) << "expired";
  *f->clock -= (RefKxSession::kLifetimeMinutes + 1) * 60;
  ASSERT_TRUE(resumed->Resume(token));
  session->End();
  EXPECT_FALSE(resumed->Resume(token)) << "ended";
  EXPECT_THROW(session->Begin(7, 9999), Failure);
}

TEST(Session, ChangedPasswordsAreCheckedByTheLogin) {
  auto f = make_fixture();
  UISession hub(f->runtime);
  auto security = std::dynamic_pointer_cast<RefSecurity>(hub.Security());
  ASSERT_TRUE(security);
  EXPECT_FALSE(security->ChangePassword(f->ids.bob, "wrong", "new-pass"));
  EXPECT_THROW(security->ChangePassword(f->ids.bob, "bob-secret", ""), Failure);
  ASSERT_TRUE(security->ChangePassword(f->ids.bob, "bob-secret", "new-pass"));
  auto login = std::dynamic_pointer_cast<RefLogin>(hub.Login());
  ASSERT_TRUE(login);
  EXPECT_EQ(login->Authenticate("bob", "bob-secret"), 0);
  EXPECT_EQ(login->Authenticate("bob", "new-pass"), f->ids.bob);
}

TEST(Account, PreferencesAreSavedAndReadBack) {
  auto f = make_fixture();
  add_reference_rows(*f);
  UICom com(f->runtime);
  auto alice = f->session(f->ids.alice);
  auto id_of = [&](const char* query) {
    return f->db->read([&](soci::session& sql) {
      int id = 0;
      sql << query, soci::into(id);
      return id;
    });
  };
  int32_t bill = id_of("SELECT bill_to_id FROM bill_tos WHERE country_code = 'US'");
  int32_t ship = id_of("SELECT ship_to_id FROM ship_tos");
  int32_t cc = id_of("SELECT cost_center_id FROM cost_centers WHERE code = 'CC10'");
  int32_t zone = 4, locale = 1031;
  ASSERT_TRUE(com.SetUserPreferences(alice, bill, ship, cc, zone, locale))
      << com.Error()->Description();

  auto rs = std::make_shared<Recordset>();
  Variant holder{ObjectPtr(rs)};
  ASSERT_TRUE(com.GetBorgUser(alice, holder)) << com.Error()->Description();
  EXPECT_EQ((*rs)["BillToID"].Value().to_int32(), bill);
  EXPECT_EQ((*rs)["ShipToID"].Value().to_int32(), ship);
  EXPECT_EQ((*rs)["CostCenterID"].Value().to_int32(), cc);
  int32_t stored_zone = 0;
  ASSERT_TRUE(com.GetUserTimeZone(1, f->ids.alice, stored_zone));
  EXPECT_EQ(stored_zone, 4);

  struct Refused {
    const char* name;
    int32_t bill, zone, locale;
  } refused[] = {
      {"another organisation's bill-to",
       id_of("SELECT bill_to_id FROM bill_tos WHERE country_code = 'DE'"), 4, 1031},
      {"an unknown zone", bill, 999, 1031},
      {"an unknown locale", bill, 4, 9999},
  };
  for (const Refused& r : refused) {
    SCOPED_TRACE(r.name);
    int32_t b = r.bill, z = r.zone, l = r.locale;
    EXPECT_FALSE(com.SetUserPreferences(alice, b, ship, cc, z, l));
  }
  ASSERT_TRUE(com.GetUserTimeZone(1, f->ids.alice, stored_zone));
  EXPECT_EQ(stored_zone, 4);
}

TEST(Account, HomePageRecords) {
  auto f = make_fixture();
  exec(*f->db, "UPDATE ebos SET locale_id = 1036, news = 'Inventaire vendredi' WHERE ebo_id = 1");
  exec(*f->db, "UPDATE hosts SET news = 'Maintenance Sunday' WHERE host_id = 1");
  exec(*f->db, "INSERT INTO news (borg_id, locale_name, posted, headline, body) VALUES (" +
                   std::to_string(f->ids.acme) + ", 'en-US', '2026-01-01 00:00:00', 'Old', "
                   "'Old news'), (" + std::to_string(f->ids.acme) +
                   ", 'en-US', '2026-02-01 00:00:00', 'New', 'Fresh news')");
  UICom com(f->runtime);
  EXPECT_EQ(com.GetEBODefaultLocale(1), "fr_FR");
  std::string news;
  ASSERT_TRUE(com.GetEboNews(1, news));
  EXPECT_EQ(news, "Inventaire vendredi");
  ASSERT_TRUE(com.GetBorgNews(f->ids.acme, 1, news));
  EXPECT_EQ(news, "Fresh news");
  ASSERT_TRUE(com.GetBorgNews(f->ids.berg, 1, news));
  EXPECT_EQ(news, "");
  ASSERT_TRUE(com.GetHostNews(news));
  EXPECT_EQ(news, "Maintenance Sunday");
  EXPECT_EQ(com.GetEBODefaultLocale(42), "");
  EXPECT_EQ(com.Error()->Number(), error_number(Refusal::kNotFound));
}

}  // namespace
}  // namespace kxui::reference
