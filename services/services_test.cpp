// The error object's catalogue, GUIDs, the log, and the registration of every service
// (with the address layouts, which need no test file of their own).
#include <regex>
#include <set>

#include "kxui/business/progids.h"
#include "kxui/frame/messages.h"
#include "services/kx_error.h"
#include "services/register.h"
#include "services/syslog_log.h"
#include "services/test_support.h"
#include "services/user_guid.h"

namespace kxui::services {
TEST(KxErrorInfoTest, MessageTextInTheSessionsLanguageWithParametersFilled) {
  KxErrorInfo e;
  const int32_t n = msg::kCartonCountNotNumeric.number;
  const std::string en(msg::kCartonCountNotNumeric.english),
      de = "Ungültige Kartonanzahl eingegeben. Die Kartonanzahl muss numerisch sein.",
      fr = "Nombre de cartons non valide. Le nombre de cartons doit être numérique.";
  for (const auto& [lang, expected] :
       {std::pair{"de", de}, {"DE-at", de}, {"fr_CA", fr}, {"en", en}, {"pt", en}}) {
    auto session = std::make_shared<BasicSession>();
    session->lang_code = lang;
    EXPECT_EQ(e.GetMessageText(session, n, en, Array{}), expected) << lang;
    EXPECT_EQ(e.GetMessageText(session, 42, "Other", Array{}), "Other") << "not in the catalogue";
  }
  EXPECT_EQ(e.GetMessageText(nullptr, n, en, Array{}), en);
  EXPECT_EQ(e.GetMessageText(nullptr, 1, "Item @1 of @2 (@1)", Array::of({3, "seven"}, 1)),
            "Item 3 of seven (3)");
  for (const msg::Message& m : msg::kAll) {  // every library message is translated
    EXPECT_FALSE(catalogue_text("de", m.number).empty() || catalogue_text("fr", m.number).empty())
        << m.number;
  }
}

TEST(UserGUIDTest, CreatesDistinctVersion4GuidsInBraces) {
  RandomUserGUID g;
  Variant custom;
  const std::regex shape(
      "\\{[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}\\}");
  std::set<std::string> seen;
  for (int i = 0; i < 1000; ++i) {
    ASSERT_TRUE(std::regex_match(*seen.insert(g.CreateGUID(custom)).first, shape));
  }
  EXPECT_EQ(seen.size(), 1000u);
}

TEST(SyslogLogTest, MapsEventTypesToPrioritiesAndWritesMessagesVerbatim) {
  std::vector<int> priorities;
  std::string last;
  SyslogLog log([&](int p, const std::string& m) { priorities.push_back(p), last = m; });
  log.SetMessage("100% %s failed");
  log.WriteEntry();  // error until a type is set
  for (int32_t type : {1, 2, 4}) {
    log.SetEventType(type);
    log.WriteEntry();
  }
  EXPECT_THAT([&] { log.SetEventType(3); }, testing::Fails(5, "KxUtility03.NTLog", ""));
  log.WriteEntry();  // a refused type keeps the one before
  EXPECT_EQ(priorities, (std::vector{LOG_ERR, LOG_ERR, LOG_WARNING, LOG_INFO, LOG_INFO}));
  EXPECT_EQ(last, "100% %s failed");
}

TEST(RegisterDefaultServicesTest, EveryServiceIsCreatableWithItsInterface) {
  Runtime rt;
  RegisterDefaultServices(rt, {::testing::TempDir(), "kxservices-test"});
  EXPECT_NE(create_as<ErrorInfo>(rt, progid::KxError), create_as<ErrorInfo>(rt, progid::KxError))
      << "each façade owns its own";
  EXPECT_TRUE(create_as<AppIni>(rt, progid::AppIni) && create_as<UserGUID>(rt, progid::UserGUID));
  EXPECT_TRUE(create_as<NTLog>(rt, progid::NTLog) &&
              create_as<NTLog>(rt, progid::ClassFactoryNTLog));
  EXPECT_TRUE(create_as<CurrencyFormatter>(rt, service_class::kCurrencyFormatter) &&
              create_as<DateFormatter>(rt, service_class::kDateFormatter));
  // Addresses in their country's order, blanks trimmed and skipped, a foreign country
  // named in the viewer's language; the lines joined with '|'.
  auto lines = [a = create_as<AddressFormatter>(rt, service_class::kAddressFormatter)](
                   int32_t locale, const AddressParts& parts) {
    std::string text;
    for (const std::string& line : a->FormatAddressLines(locale, parts)) text += line + "|";
    return text.substr(0, text.find_last_not_of('|') + 1);
  };
  EXPECT_EQ(lines(1036, {" Hauptstr. 5", " ", "", "", "", "Berlin ", "", "10115", "DE"}),
            "Hauptstr. 5|10115 Berlin|Allemagne");
  EXPECT_EQ(lines(1041, {"千代田1-1", "", "", "", "", "千代田区", "東京都", "100-0001", "JP"}),
            "〒100-0001|東京都千代田区|千代田1-1");
  EXPECT_EQ(lines(1033, {"1 Main St", "Suite 2", "", "", "", "Springfield", "IL", "62701", "US"}),
            "1 Main St|Suite 2|Springfield, IL 62701");
  EXPECT_EQ(lines(2057, {"10 High St", "", "", "", "", "London", "", "SW1A 1AA", "GB"}),
            "10 High St|London|SW1A 1AA");
  EXPECT_EQ(lines(1033, {"Via Roma 1", "", "", "", "", "Roma", "RM", "00184", "IT"}),
            "Via Roma 1|00184 Roma RM|Italy");
}

}  // namespace kxui::services
