// The error object's catalogue, GUIDs, the log, and the registration of everything.
#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <utility>
#include <vector>

#include "kxui/business/progids.h"
#include "kxui/frame/messages.h"
#include "kxui/frame/services.h"
#include "services/kx_error.h"
#include "services/register.h"
#include "services/syslog_log.h"
#include "services/test_support.h"
#include "services/user_guid.h"

namespace kxui::services {
namespace {

SessionPtr session_in(std::string lang) {
  auto s = std::make_shared<BasicSession>();
  s->lang_code = std::move(lang);
  return s;
}

TEST(KxErrorInfoTest, MessageTextInTheSessionsLanguageWithEnglishAsDefault) {
  KxErrorInfo e;
  const std::string english(msg::kCartonCountNotNumeric.english);
  const int32_t n = msg::kCartonCountNotNumeric.number;
  EXPECT_EQ(e.GetMessageText(session_in("de"), n, english, Array{}),
            "Ungültige Kartonanzahl eingegeben. Die Kartonanzahl muss numerisch sein.");
  EXPECT_EQ(e.GetMessageText(session_in("DE-at"), n, english, Array{}),
            e.GetMessageText(session_in("de"), n, english, Array{}));
  EXPECT_EQ(e.GetMessageText(session_in("fr_CA"), n, english, Array{}),
            "Nombre de cartons non valide. Le nombre de cartons doit être numérique.");
  EXPECT_EQ(e.GetMessageText(session_in("en"), n, english, Array{}), english);
  EXPECT_EQ(e.GetMessageText(session_in("pt"), n, english, Array{}), english);
  EXPECT_EQ(e.GetMessageText(nullptr, n, english, Array{}), english);
  EXPECT_EQ(e.GetMessageText(session_in("de"), 42, "Other", Array{}), "Other");

  // Every library message has both translations.
  for (const msg::Message& m : msg::kAll) {
    for (const char* lang : {"de", "fr"}) {
      EXPECT_FALSE(catalogue_text(lang, m.number).empty()) << lang << " " << m.number;
    }
  }
}

TEST(KxErrorInfoTest, FillsNumberedPlaceholdersInOrder) {
  KxErrorInfo e;
  Array params = Array::of({Variant(int32_t{3}), Variant("seven")}, 1);
  EXPECT_EQ(e.GetMessageText(session_in("en"), 1, "Item @1 of @2 (@1)", params),
            "Item 3 of seven (3)");
  EXPECT_EQ(e.GetMessageText(session_in("en"), 1, "No @1 here", Array{}), "No @1 here");
}

TEST(UserGUIDTest, CreatesDistinctVersion4GuidsInBraces) {
  RandomUserGUID g;
  Variant custom;
  const std::regex shape("\\{[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}\\}");
  std::set<std::string> seen;
  for (int i = 0; i < 1000; ++i) {
    std::string guid = g.CreateGUID(custom);
    ASSERT_TRUE(std::regex_match(guid, shape)) << guid;
    seen.insert(std::move(guid));
  }
  EXPECT_EQ(seen.size(), 1000u);
}

TEST(SyslogLogTest, MapsEventTypesToPrioritiesAndWritesMessagesVerbatim) {
  std::vector<std::pair<int, std::string>> written;
  SyslogLog log([&](int priority, const std::string& m) { written.emplace_back(priority, m); });
  log.SetMessage("UIReq::GetListPage KxReq03 :: 100% %s failed");
  log.WriteEntry();  // error until a type is set
  for (int32_t type : {1, 2, 4}) {
    log.SetEventType(type);
    log.WriteEntry();
  }
  for (int32_t bad : {0, 3, 8}) EXPECT_EQ(testing::failure_of([&] { log.SetEventType(bad); }).number(), 5);
  log.WriteEntry();  // the type before the refused one
  const std::vector<int> priorities = {LOG_ERR, LOG_ERR, LOG_WARNING, LOG_INFO, LOG_INFO};
  ASSERT_EQ(written.size(), priorities.size());
  for (size_t i = 0; i < written.size(); ++i) {
    EXPECT_EQ(written[i].first, priorities[i]) << i;
    EXPECT_EQ(written[i].second, "UIReq::GetListPage KxReq03 :: 100% %s failed");
  }
}

TEST(RegisterDefaultServicesTest, EveryServiceIsCreatableWithItsInterface) {
  Runtime rt;
  ServiceOptions options;
  options.ini_directory = ::testing::TempDir();
  options.syslog_ident = "kxservices-test";
  RegisterDefaultServices(rt, options);

  auto e1 = create_as<ErrorInfo>(rt, progid::KxError);
  auto e2 = create_as<ErrorInfo>(rt, progid::KxError);
  EXPECT_NE(e1, e2);  // each façade owns its own
  EXPECT_TRUE(create_as<AppIni>(rt, progid::AppIni));
  EXPECT_TRUE(create_as<NTLog>(rt, progid::NTLog));
  EXPECT_TRUE(create_as<NTLog>(rt, progid::ClassFactoryNTLog));
  EXPECT_TRUE(create_as<UserGUID>(rt, progid::UserGUID));
  auto money = create_as<CurrencyFormatter>(rt, service_class::kCurrencyFormatter);
  EXPECT_EQ(money->FormatCurrencyAmount(1033, "USD", 1234.5), "$1,234.50");
  auto dates = create_as<DateFormatter>(rt, service_class::kDateFormatter);
  EXPECT_EQ(dates->FormatDateValue(1033, 1, Date::from_civil(2024, 3, 5)), "3/5/2024");
  auto addresses = create_as<AddressFormatter>(rt, service_class::kAddressFormatter);
  EXPECT_EQ(addresses->FormatAddressLines(1033, {"1 Main St", "", "", "", "", "Springfield",
                                                 "IL", "62701", "US"})[1],
            "Springfield, IL 62701");
}

}  // namespace
}  // namespace kxui::services
