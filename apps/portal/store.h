// The portal's own state in the database: signed-in sessions and failed sign-ins. Nothing
// a request needs lives only in one process, so several portal processes can share one
// database and any of them can serve any request.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "reference/database.h"

namespace portal {

struct SessionRow {
  int32_t sys_user_id = 0;
  int32_t ebo_id = 0;
  int32_t borg_id = 0;
  int32_t locale_id = 1033;
  int32_t time_zone_id = 15;
  std::string currency_code = "USD";
  std::string csrf_token;
  std::string display_name;  // as the user signed in
  kxui::Date expires;
};

// A random token: `bytes` random bytes (libsodium) as lowercase hex.
std::string random_token(size_t bytes = 32);

class SessionStore {
 public:
  SessionStore(kxui::reference::DatabasePtr db, int64_t lifetime_seconds)
      : db_(std::move(db)), lifetime_(lifetime_seconds) {}

  // Stores a new session for `row` (its csrf token and expiry are set here) and returns
  // the id for the cookie. Only a hash of the id is stored.
  std::string create(SessionRow& row);
  // The session of a cookie id, or nothing when unknown or expired. Renews the expiry
  // once less than half of the lifetime is left.
  std::optional<SessionRow> find(const std::string& sid);
  // Stores the session's locale, zone and currency.
  void update_preferences(const std::string& sid, const SessionRow& row);
  void remove(const std::string& sid);

  // One-time form tokens: a form that must not be sent twice carries one; consuming it
  // succeeds once, for the session it was issued to, before it expires.
  std::string issue_form_token(const std::string& sid);
  bool consume_form_token(const std::string& sid, const std::string& token);

  // Sign-in throttling: the failures of `key` within the window, and recording one.
  int32_t recent_failures(const std::string& key, int64_t window_seconds);
  void record_failure(const std::string& key);
  void clear_failures(const std::string& key);

 private:
  kxui::reference::DatabasePtr db_;
  int64_t lifetime_;
};

}  // namespace portal
