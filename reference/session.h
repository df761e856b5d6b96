// "KxUtility03.KxSession" over the sessions table, and the security library's objects.
// A session begins for a user that logged in, is found again by its random token until
// it expires, and ends by deleting its row. Its values (locale, zone, currency,
// organisation) are the user's as stored when it began or was resumed.
#pragma once

#include <string>

#include "kxui/business/kx_session.h"
#include "kxui/business/security_objects.h"
#include "reference/object_base.h"

namespace kxui::reference {

class RefKxSession : public business::KxSession, public RefObject {
 public:
  static constexpr int64_t kLifetimeMinutes = 8 * 60;
  explicit RefKxSession(DatabasePtr db) : RefObject(std::move(db), "KxSession") {}

  // Starts a session for a user within an EBO; returns its token. Throws Failure.
  std::string Begin(int32_t ebo_id, int32_t sys_user_id);
  // Takes up a session by token; False when there is none or it has expired.
  bool Resume(const std::string& token);
  // Ends the session: its token no longer resumes. Throws Failure.
  void End();
  const std::string& Token() const { return token_; }
  // The session's own row; 0 before it began or after it ended.
  int32_t SessionID() const { return session_id_; }

  int32_t Value() const override { return ebo_id_; }
  int32_t LocaleID() const override { return locale_id_; }
  int32_t TimeZoneID() const override { return time_zone_id_; }
  std::string CurrencyCode() const override { return currency_code_; }
  std::string LangCode() const override { return lang_code_; }
  std::string CountryCode() const override { return country_code_; }
  int32_t EboID() const override { return ebo_id_; }
  int32_t BorgID() const override { return borg_id_; }
  int32_t SysUserID() const override { return sys_user_id_; }

 private:
  void load_user(int32_t sys_user_id);
  std::string token_;
  int32_t session_id_ = 0;
  int32_t ebo_id_ = 0, locale_id_ = 1033, time_zone_id_ = 15, borg_id_ = 0, sys_user_id_ = 0;
  std::string currency_code_ = "USD", lang_code_ = "en", country_code_ = "US";
};

// "KxSecurity03.Security": changes a user's password (stored as a new Argon2id hash).
class RefSecurity : public business::SecurityObject {
 public:
  explicit RefSecurity(DatabasePtr db) : db_(std::move(db)) {}
  // False when the old password is wrong; refuses an empty new one.
  bool ChangePassword(int32_t sys_user_id, const std::string& old_password,
                      const std::string& new_password);

 private:
  DatabasePtr db_;
};

// "KxSecurity03.Login": the login check for pages that reach it through the hub.
class RefLogin : public business::LoginObject {
 public:
  explicit RefLogin(DatabasePtr db) : db_(std::move(db)) {}
  // The user whose login id and password match, or 0.
  int32_t Authenticate(const std::string& login_id, const std::string& password);

 private:
  DatabasePtr db_;
};

}  // namespace kxui::reference
