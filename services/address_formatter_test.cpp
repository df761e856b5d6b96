#include "services/address_formatter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "services/test_support.h"

namespace kxui::services {
namespace {

// The non-empty lines; also checks that they are packed from line 0.
std::vector<std::string> lines_of(int32_t locale, const AddressParts& parts) {
  IcuAddressFormatter f;
  auto lines = f.FormatAddressLines(locale, parts);
  std::vector<std::string> out;
  bool gap = false;
  for (const std::string& l : lines) {
    if (l.empty()) {
      gap = true;
    } else {
      EXPECT_FALSE(gap) << "line after an empty one: " << l;
      out.push_back(l);
    }
  }
  return out;
}

using Lines = std::vector<std::string>;

TEST(AddressFormatterTest, LaysOutEachCountryInItsUsualOrder) {
  struct Case {
    const char* what;
    int32_t locale;
    AddressParts parts;
    Lines expected;
  };
  const Case cases[] = {
      {"US", 1033, {"1 Main St", "Suite 5", "", "", "", "Springfield", "IL", "62701", "US"},
       {"1 Main St", "Suite 5", "Springfield, IL 62701"}},
      {"CA", 1033, {"24 Sussex Dr", "", "", "", "", "Ottawa", "ON", "K1M 1M4", "CA"},
       {"24 Sussex Dr", "Ottawa, ON K1M 1M4", "Canada"}},
      {"GB", 2057, {"10 Downing St", "", "", "", "", "London", "", "SW1A 2AA", "GB"},
       {"10 Downing St", "London", "SW1A 2AA"}},
      {"DE", 1031, {"Hauptstr. 5", "", "", "", "", "Berlin", "", "10115", "DE"},
       {"Hauptstr. 5", "10115 Berlin"}},
      {"AT with state", 1031, {"Ring 1", "", "", "", "", "Wien", "Wien", "1010", "AT"},
       {"Ring 1", "1010 Wien", "Wien", "Österreich"}},
      {"FR", 1036, {"8 rue de Rivoli", "", "", "", "", "Paris", "", "75001", "FR"},
       {"8 rue de Rivoli", "75001 Paris"}},
      {"IT", 1040, {"Via Roma 1", "", "", "", "", "Roma", "RM", "00184", "IT"},
       {"Via Roma 1", "00184 Roma RM"}},
      {"ES province = city", 3082, {"Gran Vía 1", "", "", "", "", "Madrid", "madrid", "28013", "ES"},
       {"Gran Vía 1", "28013 Madrid"}},
      {"ES province", 3082,
       {"Rambla 2", "", "", "", "", "Sant Cugat", "Barcelona", "08172", "ES"},
       {"Rambla 2", "08172 Sant Cugat", "Barcelona"}},
      {"NL", 1043, {"Damrak 1", "", "", "", "", "Amsterdam", "", "1012 LG", "NL"},
       {"Damrak 1", "1012 LG Amsterdam"}},
      {"JP read in Japanese", 1041,
       {"千代田1-1", "", "", "", "", "千代田区", "東京都", "100-0001", "JP"},
       {"〒100-0001", "東京都千代田区", "千代田1-1"}},
      {"JP read in English", 1033,
       {"1-1 Chiyoda", "", "", "", "", "Chiyoda-ku", "Tokyo", "100-0001", "jp"},
       {"1-1 Chiyoda", "Chiyoda-ku, Tokyo 100-0001", "Japan"}},
      {"foreign country named in the viewer's language", 1036,
       {"Hauptstr. 5", "", "", "", "", "Berlin", "", "10115", "DE"},
       {"Hauptstr. 5", "10115 Berlin", "Allemagne"}},
      {"blank country: the viewer's layout", 1031,
       {"Hauptstr. 5", "", "", "", "", "Berlin", "", "10115", ""},
       {"Hauptstr. 5", "10115 Berlin"}},
      {"default layout", 1033, {"Av. Paulista 1", "", "", "", "", "São Paulo", "SP", "01310-100", "BR"},
       {"Av. Paulista 1", "São Paulo SP 01310-100", "Brazil"}},
      {"blanks trimmed and skipped", 1033,
       {"  1 Main St ", " ", "", "\t", "Attn: Desk", " Springfield", "", " 62701 ", "US"},
       {"1 Main St", "Attn: Desk", "Springfield, 62701"}},
      {"all blank", 1033, {" ", "", "", "", "", "", "", "", ""}, {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(lines_of(c.locale, c.parts), c.expected);
  }
}

TEST(AddressFormatterTest, UnknownLocaleFails) {
  IcuAddressFormatter f;
  Failure e = testing::failure_of([&] { f.FormatAddressLines(99999, AddressParts{}); });
  EXPECT_EQ(e.number(), 5);
  EXPECT_EQ(e.source(), "KxLocale03.AddressFormatter");
}

}  // namespace
}  // namespace kxui::services
