#include "services/address_formatter.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>
#include <vector>

#include "kxui/frame/text.h"
#include "kxui/frame/variant.h"
#include "services/icu_support.h"

namespace kxui::services {
namespace {

constexpr std::string_view kSource = "KxLocale03.AddressFormatter";

enum class Layout { kUS, kAU, kGB, kPostalFirst, kIT, kES, kEastAsia, kDefault };

Layout layout_of(std::string_view country) {
  auto in = [&](std::initializer_list<std::string_view> codes) {
    return std::find(codes.begin(), codes.end(), country) != codes.end();
  };
  if (in({"US", "CA", "PR"})) return Layout::kUS;
  if (in({"AU", "NZ"})) return Layout::kAU;
  if (in({"GB", "IE"})) return Layout::kGB;
  if (country == "IT") return Layout::kIT;
  if (country == "ES") return Layout::kES;
  if (in({"JP", "CN"})) return Layout::kEastAsia;
  if (in({"DE", "AT", "CH", "LI", "FR", "MC", "BE", "LU", "NL", "DK", "NO", "SE", "FI",
          "IS", "PL", "CZ", "SK", "PT", "GR"})) {
    return Layout::kPostalFirst;
  }
  return Layout::kDefault;
}

// The non-empty parts joined by `sep`.
std::string join(std::initializer_list<std::string_view> parts, std::string_view sep) {
  std::string out;
  for (std::string_view p : parts) {
    if (p.empty()) continue;
    if (!out.empty()) out += sep;
    out += p;
  }
  return out;
}

std::string upper(std::string s) {
  for (char& c : s) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return s;
}

std::string country_name(const std::string& code, const icu::Locale& viewer) {
  icu::UnicodeString name;
  icu::Locale("und", code.c_str()).getDisplayCountry(viewer, name);
  return name.isEmpty() ? code : detail::to_utf8(name);
}

}  // namespace

std::array<std::string, AddressFormatter::kLines> IcuAddressFormatter::FormatAddressLines(
    int32_t locale_id, const AddressParts& parts) {
  const icu::Locale& viewer = detail::locale_for(locale_id, kSource);
  const std::string viewer_country = viewer.getCountry();
  const std::string country = upper(conv::trim(parts.country_code));
  const std::string city = conv::trim(parts.city), state = conv::trim(parts.state),
                    postal = conv::trim(parts.postal_code);
  std::vector<std::string> streets;
  for (const std::string* s : {&parts.line1, &parts.line2, &parts.line3, &parts.line4, &parts.line5}) {
    streets.push_back(conv::trim(*s));
  }

  std::vector<std::string> lines;
  auto add = [&](std::string line) { lines.push_back(std::move(line)); };
  auto add_streets = [&] {
    for (const std::string& s : streets) add(s);
  };
  const std::string_view viewer_language = viewer.getLanguage();
  Layout layout = layout_of(country.empty() ? viewer_country : country);
  if (layout == Layout::kEastAsia && viewer_language != "ja" && viewer_language != "zh") {
    layout = Layout::kUS;
  }
  switch (layout) {
    case Layout::kUS:
      add_streets();
      add(join({city, join({state, postal}, " ")}, ", "));
      break;
    case Layout::kAU:
      add_streets();
      add(join({city, state, postal}, " "));
      break;
    case Layout::kGB:
      add_streets();
      add(city);
      add(state);
      add(postal);
      break;
    case Layout::kPostalFirst:
      add_streets();
      add(join({postal, city}, " "));
      add(state);
      break;
    case Layout::kIT:
      add_streets();
      add(join({postal, city, state}, " "));
      break;
    case Layout::kES:
      add_streets();
      add(join({postal, city}, " "));
      if (!text::iequals(state, city)) add(state);
      break;
    case Layout::kEastAsia:
      add(postal.empty() ? postal : (viewer_language == "ja" ? "〒" : "") + postal);
      add(state + city);
      add_streets();
      break;
    case Layout::kDefault:
      add_streets();
      add(join({city, state, postal}, " "));
      break;
  }
  if (!country.empty() && country != viewer_country) add(country_name(country, viewer));

  std::array<std::string, kLines> out;
  size_t n = 0;
  for (std::string& line : lines) {
    if (!line.empty() && n < out.size()) out[n++] = std::move(line);
  }
  return out;
}

}  // namespace kxui::services
