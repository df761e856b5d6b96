#include "reference/session.h"

#include <sodium.h>

#include "reference/errors.h"
#include "reference/users.h"

namespace kxui::reference {

namespace {

std::string random_token() {
  if (sodium_init() < 0) refuse(Refusal::kDatabaseError, "libsodium cannot start");
  unsigned char bytes[24];
  randombytes_buf(bytes, sizeof bytes);
  char hex[sizeof bytes * 2 + 1];
  sodium_bin2hex(hex, sizeof hex, bytes, sizeof bytes);
  return hex;
}

}  // namespace

void RefKxSession::load_user(int32_t sys_user_id) {
  db().read([&](soci::session& sql) {
    int borg = 0, locale = 0, zone = 0;
    std::string currency, lang, country;
    sql << "SELECT u.borg_id, u.locale_id, u.time_zone_id, u.currency_code, l.lang_code, "
           "l.country_code FROM users u JOIN locales l ON l.locale_id = u.locale_id WHERE "
           "u.sys_user_id = :u AND u.active = 1",
        soci::use(sys_user_id), soci::into(borg), soci::into(locale), soci::into(zone),
        soci::into(currency), soci::into(lang), soci::into(country);
    if (!sql.got_data()) refuse(Refusal::kNotFound, "The user does not exist or is not active.");
    sys_user_id_ = sys_user_id;
    borg_id_ = borg;
    locale_id_ = locale;
    time_zone_id_ = zone;
    currency_code_ = currency;
    lang_code_ = lang;
    country_code_ = country;
    return 0;
  });
}

std::string RefKxSession::Begin(int32_t ebo_id, int32_t sys_user_id) {
  return answer_or_throw("Begin", [&] {
    load_user(sys_user_id);
    ebo_id_ = ebo_id;
    std::string token = random_token();
    const Date now = db().now();
    const std::string created = date_text(now);
    const std::string expires = date_text(Date::from_seconds(now.seconds() + kLifetimeMinutes * 60));
    session_id_ = db().write([&](soci::session& sql) {
      int id = 0;
      sql << "INSERT INTO sessions (token, sys_user_id, ebo_id, borg_id, created, expires) "
             "VALUES (:t, :u, :e, :b, :c, :x) RETURNING session_id",
          soci::use(token), soci::use(sys_user_id), soci::use(ebo_id), soci::use(borg_id_),
          soci::use(created), soci::use(expires), soci::into(id);
      return id;
    });
    token_ = token;
    return token;
  });
}

bool RefKxSession::Resume(const std::string& token) {
  return answer("Resume", false, [&] {
    const std::string now = date_text(db().now());
    int id = 0, user = 0, ebo = 0;
    const bool found = db().read([&](soci::session& sql) {
      sql << "SELECT session_id, sys_user_id, ebo_id FROM sessions WHERE token = :t AND "
             "expires > :n",
          soci::use(token), soci::use(now), soci::into(id), soci::into(user), soci::into(ebo);
      return sql.got_data();
    });
    if (!found) return false;
    load_user(user);
    session_id_ = id;
    ebo_id_ = ebo;
    token_ = token;
    return true;
  });
}

void RefKxSession::End() {
  answer_or_throw("End", [&] {
    db().write([&](soci::session& sql) {
      sql << "DELETE FROM sessions WHERE token = :t", soci::use(token_);
    });
    token_.clear();
    session_id_ = 0;
    return 0;
  });
}

bool RefSecurity::ChangePassword(int32_t sys_user_id, const std::string& old_password,
                                 const std::string& new_password) {
  if (new_password.empty()) refuse(Refusal::kInvalidArgument, "A password may not be empty.");
  std::string stored;
  const bool found = db_->read([&](soci::session& sql) {
    sql << "SELECT password_hash FROM users WHERE sys_user_id = :u AND active = 1",
        soci::use(sys_user_id), soci::into(stored);
    return sql.got_data();
  });
  if (!found || !PasswordMatches(stored, old_password)) return false;
  const std::string hash = HashPassword(new_password);
  db_->write([&](soci::session& sql) {
    sql << "UPDATE users SET password_hash = :h WHERE sys_user_id = :u", soci::use(hash),
        soci::use(sys_user_id);
  });
  return true;
}

int32_t RefLogin::Authenticate(const std::string& login_id, const std::string& password) {
  return VerifyPassword(*db_, login_id, password).value_or(0);
}

}  // namespace kxui::reference
