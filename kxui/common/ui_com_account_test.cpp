// UICom's account operations: login, organisation defaults and preferences, payment
// methods, time zone, default locale, news and the home date.
#include <functional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "kxui/business/progids.h"
#include "kxui/common/ui_com.h"
#include "kxui/testing/fake_services.h"
#include "kxui/testing/mock_common.h"

namespace kxui {
namespace {

using namespace ::testing;
using namespace kxui::testing;
using namespace kxui::business::record_class;
using Names = std::vector<std::string>;

template <class T>
std::shared_ptr<T> nice() {
  return std::make_shared<NiceMock<T>>();
}

class UIComAccountTest : public Test {
 protected:
  void SetUp() override {
    session->value = 3;
    session->ebo_id = 4;
    session->borg_id = 5;
    session->sys_user_id = 6;
    session->locale_id = 1031;
    session->currency_code = "EUR";
    env->provide(kLoginValidator, validator);
    env->provide(kUser, user);
    env->provide(kBorgUserRecord, borg_user_record);
    env->provide(kEbo, ebo);
    env->provide(kBorg, borg);
    env->provide(kHost, host);
    env->provide(progid::BorgUser, borg_user);
    env->provide(progid::UserPaymentMethod, payment);
    env->provide(progid::Utils, utils);
  }

  // The failure written to the log, "source :: description".
  std::string logged() const {
    return env->log->written.empty() ? "" : env->log->written.back().message;
  }

  std::shared_ptr<TestEnv> env = TestEnv::make();
  FakeServices fakes = FakeServices::install(*env);
  std::shared_ptr<BasicSession> session = make_session();
  SessionPtr s = session;
  Variant custom{"custom"};
  std::shared_ptr<MockLoginValidator> validator = nice<MockLoginValidator>();
  std::shared_ptr<MockUserRecord> user = nice<MockUserRecord>();
  std::shared_ptr<MockBorgUserRecord> borg_user_record = nice<MockBorgUserRecord>();
  std::shared_ptr<MockEboRecord> ebo = nice<MockEboRecord>();
  std::shared_ptr<MockBorgRecord> borg = nice<MockBorgRecord>();
  std::shared_ptr<MockHostRecord> host = nice<MockHostRecord>();
  std::shared_ptr<RecordingDispatch> borg_user = std::make_shared<RecordingDispatch>(
      Names{"setEboID", "setBorgID", "setSysUserID", "setSysUserIDBU", "fetch", "setBillToID",
            "setShipToID", "setCostCenterID", "Update"});
  std::shared_ptr<MockUserPaymentMethod> payment = nice<MockUserPaymentMethod>();
  std::shared_ptr<MockUtils> utils = nice<MockUtils>();
  UICom ui{env->runtime};
};

TEST_F(UIComAccountTest, LoginChecksTheCredentialsAsGivenWithinTheSessionsEbo) {
  struct Case {
    bool accepted;
    Variant user_id;
    bool result;
    int32_t out;
  } const cases[] = {
      {true, Variant(42), true, 42},
      {true, Variant("43"), true, 43},
      {false, Variant(44), false, 7},  // refused: not an error, out untouched
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.user_id.to_string());
    EXPECT_CALL(*validator, ValidateLogin(3, " Ann ", "Pw D")).WillOnce(Return(c.accepted));
    ON_CALL(*validator, SysUserID()).WillByDefault(Return(c.user_id));
    int32_t id = 7;
    EXPECT_EQ(ui.Login(s, " Ann ", "Pw D", id), c.result);
    EXPECT_EQ(id, c.out);
  }
  EXPECT_EQ(ui.Error()->Number(), 0);
  EXPECT_EQ(ui.Error()->Source(), "");
  EXPECT_TRUE(env->log->written.empty());
  EXPECT_EQ(env->count(kLoginValidator), 3);
  EXPECT_THAT(env->created, Contains("direct:KxSecurity03.LoginValidator"));
}

TEST_F(UIComAccountTest, LoginFailuresAreRecordedAndLogged) {
  EXPECT_CALL(*validator, ValidateLogin).WillOnce(Throw(Failure(9, "Security", "down")));
  int32_t id = 7;
  EXPECT_FALSE(ui.Login(s, "ann", "pw", id));
  EXPECT_THAT(ui.Error(), ErrorIs(9, "UICom::Login Security"));
  EXPECT_EQ(logged(), "UICom::Login Security :: down");
  EXPECT_EQ(env->log->written.back().type, 1);

  EXPECT_CALL(*validator, ValidateLogin).WillOnce(Return(true));
  EXPECT_CALL(*validator, SysUserID()).WillOnce(Return(Variant(3e9)));
  EXPECT_FALSE(ui.Login(s, "ann", "pw", id));
  EXPECT_EQ(id, 7);
  EXPECT_EQ(ui.Error()->Number(), err::kOverflow);
}

TEST_F(UIComAccountTest, GetBorgUserFillsTheCallersRecordset) {
  {
    InSequence order;
    EXPECT_CALL(*borg_user_record, SetEboID(4));
    EXPECT_CALL(*borg_user_record, Fetch(5, 6));
  }
  ON_CALL(*borg_user_record, BillToID()).WillByDefault(Return(Variant(11)));
  ON_CALL(*borg_user_record, ShipToID()).WillByDefault(Return(Variant(12.0)));
  ON_CALL(*borg_user_record, CostCenterID()).WillByDefault(Return(Variant("13")));
  ON_CALL(*borg_user_record, SpendingLimit()).WillByDefault(Return(1500.0));
  ON_CALL(*borg_user_record, ApprovalLimit()).WillByDefault(Return(250.5));
  auto rs = std::make_shared<Recordset>();
  Variant holder(rs);
  ASSERT_TRUE(ui.GetBorgUser(s, holder)) << ui.Error()->Description();
  ASSERT_EQ(rs->GetFields().Count(), 5);
  const FieldInfo columns[] = {{"BillToID", adInteger},
                               {"ShipToID", adInteger},
                               {"CostCenterID", adInteger},
                               {"SpendingLimit", adVarWChar, 100},
                               {"ApprovalLimit", adVarWChar, 100}};
  for (int32_t i = 0; i < 5; ++i) {
    const FieldInfo& f = rs->GetFields().info(i);
    EXPECT_EQ(f.name, columns[i].name);
    EXPECT_EQ(f.type, columns[i].type);
    EXPECT_EQ(f.defined_size, columns[i].defined_size);
  }
  EXPECT_EQ(rs->RecordCount(), 1);
  const std::vector<Variant> row = {rs->value(0), rs->value(1), rs->value(2), rs->value(3),
                                    rs->value(4)};
  EXPECT_EQ(row, (std::vector<Variant>{Variant(11), Variant(12), Variant(13),
                                       Variant("EUR 1500.00@1031"), Variant("EUR 250.50@1031")}));
}

TEST_F(UIComAccountTest, GetBorgUserWithoutARecordsetBuildsNothing) {
  for (Variant holder : {Variant(), Variant(RecordsetPtr()), Variant::missing()}) {
    SCOPED_TRACE(static_cast<int>(holder.kind()));
    EXPECT_CALL(*borg_user_record, Fetch(5, 6));
    EXPECT_FALSE(ui.GetBorgUser(s, holder));
  }
  EXPECT_EQ(ui.Error()->Number(), 0);
  EXPECT_EQ(ui.Error()->Source(), "");
  EXPECT_TRUE(env->log->written.empty());

  EXPECT_CALL(*borg_user_record, Fetch).WillOnce(Throw(Failure(3021, "Admin", "no such user")));
  auto rs = std::make_shared<Recordset>();
  Variant holder(rs);
  EXPECT_FALSE(ui.GetBorgUser(s, holder));
  EXPECT_EQ(rs->State(), adStateClosed);
  EXPECT_THAT(ui.Error(), ErrorIs(3021, "UICom::GetBorgUser Admin"));
  EXPECT_EQ(logged(), "UICom::GetBorgUser Admin :: no such user");
}

TEST_F(UIComAccountTest, SetUserPreferencesWritesTheOrganisationUserThenTheUser) {
  {
    InSequence order;
    EXPECT_CALL(*user, SetEboID(4));
    EXPECT_CALL(*user, SetSysUserID(6));
    EXPECT_CALL(*user, SetCreatedBy(6));
    EXPECT_CALL(*user, SetModifiedBy(6));
    EXPECT_CALL(*user, SetTimeZoneID(14));
    EXPECT_CALL(*user, SetLocaleID(1036));
    EXPECT_CALL(*user, Save());
  }
  int32_t bill = 11, ship = 12, cost = 13, zone = 14, locale = 1036;
  EXPECT_TRUE(ui.SetUserPreferences(s, bill, ship, cost, zone, locale));
  EXPECT_EQ(borg_user->calls, (Names{"setEboID(4)", "setBorgID(5)", "setSysUserID(6)",
                                     "setSysUserIDBU(6)", "fetch(5,6)", "setBillToID(11)",
                                     "setShipToID(12)", "setCostCenterID(13)", "Update()"}));
  EXPECT_EQ((std::vector<int32_t>{bill, ship, cost, zone, locale}),
            (std::vector<int32_t>{11, 12, 13, 14, 1036}));
  EXPECT_THAT(env->created, Contains("direct:KxAdminBusObj03.BorgUser"));
  EXPECT_THAT(env->created, Not(Contains("factory:KxAdminBusObj03.BorgUser")));
}

TEST_F(UIComAccountTest, SetUserPreferencesStopsAtTheFirstFailure) {
  borg_user->failing = "fetch";
  EXPECT_CALL(*user, Save()).Times(0);
  int32_t v = 1;
  EXPECT_FALSE(ui.SetUserPreferences(s, v, v, v, v, v));
  EXPECT_EQ(borg_user->calls.back(), "fetch(5,6)");
  EXPECT_THAT(ui.Error(), ErrorIs(5, "UICom::SetUserPreferences BorgUser"));
  EXPECT_EQ(logged(), "UICom::SetUserPreferences BorgUser :: refused: fetch");

  borg_user->failing.clear();
  EXPECT_CALL(*user, Save()).WillOnce(Throw(Failure(17, "Admin", "read-only")));
  EXPECT_FALSE(ui.SetUserPreferences(s, v, v, v, v, v));
  EXPECT_THAT(ui.Error(), ErrorIs(17, "UICom::SetUserPreferences Admin"));
}

// The payment-method operations: exact calls with the caller's custom data, and a
// business failure recorded (under the lower-case "b" spelling for the reads) and logged.
TEST_F(UIComAccountTest, PaymentMethods) {
  const RecordsetPtr rs = make_recordset({{"PaymentMethodID", adInteger}}, {{Variant(9)}});
  const Variant expiry("12/27");
  struct Case {
    std::string source;
    std::function<void(bool ok)> expect;
    std::function<bool()> call;  // true when the operation succeeded
  } const cases[] = {
      {"UICom::GetDatabySysUserID",
       [&](bool ok) {
         EXPECT_CALL(*payment, GetDataBySysUserID(s, 6, Ref(custom))).WillOnce(Return(rs));
         EXPECT_CALL(*payment, Success()).WillOnce(Return(ok));
       },
       [&] { return ui.GetDataBySysUserID(s, 6, custom) == rs; }},
      {"UICom::GetDatabySysUserIDPayMethID",
       [&](bool ok) {
         EXPECT_CALL(*payment, GetDataBySysUserIDPayMethID(s, 6, 9, Ref(custom)))
             .WillOnce(Return(rs));
         EXPECT_CALL(*payment, Success()).WillOnce(Return(ok));
       },
       [&] { return ui.GetDataBySysUserIDPayMethID(s, 6, 9, custom) == rs; }},
      {"UICom::SetCreditCardValues",
       [&](bool ok) {
         EXPECT_CALL(*payment, Update(s, 6, 9, expiry, 2, Ref(custom))).WillOnce(Return(ok));
       },
       [&] { return ui.SetCreditCardValues(s, 6, 9, expiry, 2, custom); }},
  };
  payment->fail_with(21, "Pay", "card refused");
  for (const Case& c : cases) {
    SCOPED_TRACE(c.source);
    c.expect(true);
    EXPECT_TRUE(c.call());
    c.expect(false);
    EXPECT_FALSE(c.call());
    EXPECT_THAT(ui.Error(), ErrorIs(21, c.source + " Pay"));
    EXPECT_EQ(logged(), c.source + " Pay :: card refused");
  }
  EXPECT_EQ(env->log->written.size(), 3u);
}

TEST_F(UIComAccountTest, GetUserTimeZone) {
  {
    InSequence order;
    EXPECT_CALL(*user, SetEboID(4));
    EXPECT_CALL(*user, SetSysUserID(6));
    EXPECT_CALL(*user, TimeZoneID()).WillOnce(Return(Variant(7.0)));
  }
  EXPECT_CALL(*user, Save()).Times(0);
  int32_t zone = 99;
  EXPECT_TRUE(ui.GetUserTimeZone(4, 6, zone));
  EXPECT_EQ(zone, 7);

  Mock::VerifyAndClearExpectations(user.get());
  zone = 99;
  EXPECT_CALL(*user, TimeZoneID()).WillOnce(Return(Variant::null()));
  EXPECT_FALSE(ui.GetUserTimeZone(4, 6, zone));
  EXPECT_EQ(zone, 99) << "a value that is no number is a failure, not a zone";
  EXPECT_THAT(ui.Error(), ErrorIs(err::kInvalidUseOfNull, "UICom::GetUserTimeZone "));

  env->runtime->Unregister(kUser);
  EXPECT_FALSE(ui.GetUserTimeZone(4, 6, zone));
  EXPECT_EQ(zone, 0) << "no user record: no zone";
  EXPECT_THAT(ui.Error(),
              ErrorIs(err::kCannotCreateObject, "UICom::GetUserTimeZone KxAdminBusObj03.User"));
  EXPECT_EQ(env->log->written.size(), 2u);
}

TEST_F(UIComAccountTest, GetEBODefaultLocaleJoinsLanguageAndCountry) {
  EXPECT_CALL(*ebo, SetEboID(12));
  ON_CALL(*ebo, DefaultLangCode()).WillByDefault(Return("en"));
  ON_CALL(*ebo, DefaultCountryCode()).WillByDefault(Return("GB"));
  EXPECT_EQ(ui.GetEBODefaultLocale(12), "en_GB");

  EXPECT_CALL(*ebo, SetEboID(13)).WillOnce(Throw(Failure(3021, "Admin", "no such EBO")));
  EXPECT_EQ(ui.GetEBODefaultLocale(13), "");
  EXPECT_THAT(ui.Error(), ErrorIs(3021, "UICom::GetEBODefaultLocale Admin"));
  EXPECT_EQ(logged(), "UICom::GetEBODefaultLocale Admin :: no such EBO");
}

TEST_F(UIComAccountTest, NewsOfEboOrganisationAndHost) {
  struct Case {
    std::string source;
    std::function<void(bool fail)> expect;
    std::function<bool(std::string&)> call;
  } const cases[] = {
      {"UICom::GetEboNews",
       [&](bool fail) {
         EXPECT_CALL(*ebo, SetEboID(4));
         auto& news = EXPECT_CALL(*ebo, News());
         fail ? news.WillOnce(Throw(Failure(2, "Admin", "gone"))) : news.WillOnce(Return("E"));
       },
       [&](std::string& out) { return ui.GetEboNews(4, out); }},
      {"UICom::GetBorgNews",
       [&](bool fail) {
         InSequence order;
         EXPECT_CALL(*borg, SetEboID(4));
         EXPECT_CALL(*borg, SetBorgID(5));
         auto& news = EXPECT_CALL(*borg, News());
         fail ? news.WillOnce(Throw(Failure(2, "Admin", "gone"))) : news.WillOnce(Return("B"));
       },
       [&](std::string& out) { return ui.GetBorgNews(5, 4, out); }},
      {"UICom::GetHostNews",
       [&](bool fail) {
         InSequence order;
         EXPECT_CALL(*host, HostID()).WillOnce(Return(8));
         EXPECT_CALL(*host, SetHostID(8));
         auto& news = EXPECT_CALL(*host, News());
         fail ? news.WillOnce(Throw(Failure(2, "Admin", "gone"))) : news.WillOnce(Return("H"));
       },
       [&](std::string& out) { return ui.GetHostNews(out); }},
  };
  std::string texts;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.source);
    std::string out = "old";
    c.expect(false);
    EXPECT_TRUE(c.call(out));
    texts += out;
    out = "old";
    c.expect(true);
    EXPECT_FALSE(c.call(out));
    EXPECT_EQ(out, "old");
    EXPECT_THAT(ui.Error(), ErrorIs(2, c.source + " Admin"));
    EXPECT_EQ(logged(), c.source + " Admin :: gone");
  }
  EXPECT_EQ(texts, "EBH");
}

// The server's clock (zone 15) is always converted to the user's zone, so the day can
// differ from the server's near midnight; then cut to the date and formatted.
TEST_F(UIComAccountTest, GetHomeDateConvertsEvenInZone15) {
  struct Case {
    int32_t zone;
    Date server;
    const char* date_format;  // nullptr: no setting
    std::string expected;
  } const cases[] = {
      {15, Date::from_civil(2024, 3, 5, 23, 30), nullptr, "1031/2/2024-03-05"},
      {20, Date::from_civil(2024, 3, 5, 23, 30), nullptr, "1031/2/2024-03-06"},
      {10, Date::from_civil(2024, 3, 5, 2, 0), "2", "1031/2/2024-03-04"},
      {15, Date::from_civil(2024, 3, 5, 12, 0), "1", "1031/1/2024-03-05"},
      {16, Date::from_civil(2024, 3, 5, 12, 0), "3", "1031/2/2024-03-05"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.zone);
    session->time_zone_id = c.zone;
    fakes.ini->values.clear();
    if (c.date_format) fakes.ini->set("DateFormat", "UI", "Dunmere", c.date_format);
    EXPECT_CALL(*utils, GetServerDate(s, Ref(custom))).WillOnce(Return(Variant(c.server)));
    const int before = fakes.dates->conversions;
    std::string out;
    EXPECT_TRUE(ui.GetHomeDate(s, out, custom));
    EXPECT_EQ(out, c.expected);
    EXPECT_EQ(fakes.dates->conversions, before + 1);
  }
  EXPECT_EQ(fakes.ini->reads, Names(5, "DateFormat"));
  EXPECT_EQ(env->count(progid::Utils), 5);
}

TEST_F(UIComAccountTest, GetHomeDateFailure) {
  EXPECT_CALL(*utils, GetServerDate).WillOnce(Return(Variant::null()));
  std::string out = "old";
  EXPECT_FALSE(ui.GetHomeDate(s, out));
  EXPECT_EQ(out, "old");
  EXPECT_THAT(ui.Error(), ErrorIs(err::kInvalidUseOfNull, "UICom::GetHomeDate "));
  EXPECT_EQ(env->log->written.size(), 1u);
}

}  // namespace
}  // namespace kxui
