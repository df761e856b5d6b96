#include "kxui/testing/fake_services.h"

#include <cstdio>

#include "kxui/business/progids.h"
#include "kxui/testing/row_sources.h"

namespace kxui::testing {

bool FakeAppIni::ReadValue(const SessionPtr&, const std::string& name, const std::string& section,
                           const std::string& app_name, Variant&) {
  reads.push_back(name);
  auto it = values.find({name, section, app_name});
  if (it == values.end()) {
    fail_with(1, "AppIni", "setting not found: " + name);
    return false;
  }
  value_ = it->second;
  return true;
}

RecordsetPtr FakeAppIni::GetSettingsList(const SessionPtr&, Variant&) { return settings_list; }

std::string FakeDateFormatter::FormatDateValue(int32_t locale_id, int32_t style, Date date) {
  ++formats;
  return std::to_string(locale_id) + "/" + std::to_string(style) + "/" + Variant(date).to_string();
}

Date FakeDateFormatter::ConvertTimeZone(int32_t from_zone, Date date, int32_t to_zone) {
  ++conversions;
  return Date::from_seconds(date.seconds() + int64_t{to_zone - from_zone} * 3600);
}

std::string FakeCurrencyFormatter::FormatAmount(int32_t locale_id, double amount) {
  return Variant(amount).to_string() + "@" + std::to_string(locale_id);
}

std::string FakeCurrencyFormatter::FormatCurrencyAmount(int32_t locale_id,
                                                        const std::string& currency_code,
                                                        double amount) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.2f", amount);
  return currency_code + " " + buf + "@" + std::to_string(locale_id);
}

bool FakeCurrencyFormatter::ParseNumber(int32_t locale_id, const std::string& text,
                                        double& number) {
  parsed.push_back(text);
  std::string t = conv::trim(text);
  if (t.empty()) return false;
  const char decimal = locale_id == 1031 ? ',' : '.';
  std::string invariant;
  bool seen_decimal = false, seen_digit = false;
  for (size_t i = 0; i < t.size(); ++i) {
    char c = t[i];
    if (c >= '0' && c <= '9') {
      seen_digit = true;
      invariant += c;
    } else if (c == decimal && !seen_decimal) {
      seen_decimal = true;
      invariant += '.';
    } else if ((c == '-' || c == '+') && i == 0) {
      invariant += c;
    } else {
      return false;
    }
  }
  if (!seen_digit) return false;
  number = std::stod(invariant);
  return true;
}

std::array<std::string, AddressFormatter::kLines> FakeAddressFormatter::FormatAddressLines(
    int32_t, const AddressParts& p) {
  return {p.line1, p.line2, p.line3, p.line4, p.line5, p.city, p.state, p.postal_code,
          p.country_code, "", "", "", ""};
}

FakeServices FakeServices::install(TestEnv& env) {
  FakeServices s;
  env.provide(progid::AppIni, s.ini);
  env.provide(service_class::kDateFormatter, s.dates);
  env.provide(service_class::kCurrencyFormatter, s.money);
  env.provide(service_class::kAddressFormatter, s.addresses);
  return s;
}

RecordsetPtr make_recordset(const std::vector<FieldInfo>& columns,
                            const std::vector<std::vector<Variant>>& rows) {
  return open_recordset(columns, rows, on_demand_rows());
}

}  // namespace kxui::testing
