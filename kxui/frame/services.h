// Contracts of the platform services the frame calls: the settings reader, GUIDs, and
// the locale services (dates, money, addresses), which are created directly by class
// through the runtime, not through the ClassFactory.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "kxui/frame/error_info.h"
#include "kxui/frame/recordset.h"
#include "kxui/frame/session.h"
#include "kxui/frame/variant.h"

namespace kxui {

// "KxUtility03.AppIni": settings by (name, section, application).
class AppIni : public virtual ErrorSource {
 public:
  // True when the setting exists; its text is then available from GetValue. False (with
  // the reason in GetError) when the file, section or name is missing.
  virtual bool ReadValue(const SessionPtr& session, const std::string& name,
                         const std::string& section, const std::string& app_name,
                         Variant& custom_data) = 0;
  virtual std::string GetValue() = 0;
  // Every setting as rows of (application, section, name, value); Success tells whether
  // the list could be read.
  virtual RecordsetPtr GetSettingsList(const SessionPtr& session, Variant& custom_data) = 0;
  virtual bool Success() = 0;
};

// "KxUtility03.UserGUID".
class UserGUID : public virtual ErrorSource {
 public:
  virtual std::string CreateGUID(Variant& custom_data) = 0;
};

// Dates for display. Throws Failure for an unknown locale or zone.
class DateFormatter : public virtual Object {
 public:
  // Style 1: the locale's short numeric date with a four-digit year; 2: its medium date.
  virtual std::string FormatDateValue(int32_t locale_id, int32_t style, Date date) = 0;
  // The same instant seen in another zone (zone identifiers of the reference data; 15 is
  // the zone of stored dates).
  virtual Date ConvertTimeZone(int32_t from_zone, Date date, int32_t to_zone) = 0;
};

// Money and quantities for display and input. Throws Failure for an unknown locale or
// currency.
class CurrencyFormatter : public virtual Object {
 public:
  virtual std::string FormatAmount(int32_t locale_id, double amount) = 0;
  virtual std::string FormatCurrencyAmount(int32_t locale_id, const std::string& currency_code,
                                           double amount) = 0;
  // True with the number when the whole text (blanks around it allowed) is a number in
  // the locale's conventions.
  virtual bool ParseNumber(int32_t locale_id, const std::string& text, double& number) = 0;
};

// The nine parts of an address, as pages and business objects hold them.
struct AddressParts {
  std::string line1, line2, line3, line4, line5;
  std::string city, state, postal_code, country_code;
};

// Lays an address out in the usual order of its country.
class AddressFormatter : public virtual Object {
 public:
  static constexpr int kLines = 13;
  // Lines 0 to 12 of the address; unused lines are empty.
  virtual std::array<std::string, kLines> FormatAddressLines(int32_t locale_id,
                                                             const AddressParts& parts) = 0;
};

// Class names under which the runtime creates the locale services.
namespace service_class {
inline constexpr const char* kDateFormatter = "KxLocale03.DateFormatter";
inline constexpr const char* kCurrencyFormatter = "KxLocale03.CurrencyFormatter";
inline constexpr const char* kAddressFormatter = "KxLocale03.AddressFormatter";
}  // namespace service_class

}  // namespace kxui
