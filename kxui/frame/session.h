// Session: the caller's session object, first argument of nearly every operation and
// handed unchanged to every business-object call. The library reads only these members.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kxui/frame/object.h"

namespace kxui {

class Session : public virtual Object {
 public:
  // The session's default value: an integer, the EBO identifier used at login.
  virtual int32_t Value() const = 0;
  virtual int32_t LocaleID() const = 0;    // numeric locale identifier (LCID), e.g. 1033
  virtual int32_t TimeZoneID() const = 0;  // 15 is the zone of stored dates
  virtual std::string CurrencyCode() const = 0;
  virtual std::string LangCode() const = 0;     // e.g. "en"
  virtual std::string CountryCode() const = 0;  // e.g. "US"
  virtual int32_t EboID() const = 0;
  virtual int32_t BorgID() const = 0;
  virtual int32_t SysUserID() const = 0;
};

using SessionPtr = std::shared_ptr<Session>;

// A plain session holding its members, for hosts that keep the values themselves.
class BasicSession : public Session {
 public:
  int32_t value = 0;
  int32_t locale_id = 1033;
  int32_t time_zone_id = 15;
  std::string currency_code = "USD";
  std::string lang_code = "en";
  std::string country_code = "US";
  int32_t ebo_id = 0;
  int32_t borg_id = 0;
  int32_t sys_user_id = 0;

  int32_t Value() const override { return value; }
  int32_t LocaleID() const override { return locale_id; }
  int32_t TimeZoneID() const override { return time_zone_id; }
  std::string CurrencyCode() const override { return currency_code; }
  std::string LangCode() const override { return lang_code; }
  std::string CountryCode() const override { return country_code; }
  int32_t EboID() const override { return ebo_id; }
  int32_t BorgID() const override { return borg_id; }
  int32_t SysUserID() const override { return sys_user_id; }
};

}  // namespace kxui
