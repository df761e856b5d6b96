#include "apps/portal/store.h"

#include <sodium.h>

#include <stdexcept>
#include <vector>

namespace portal {

using kxui::Date;
using kxui::reference::date_text;

namespace {

std::string hex(const unsigned char* bytes, size_t n) {
  std::vector<char> out(n * 2 + 1);
  sodium_bin2hex(out.data(), out.size(), bytes, n);
  return out.data();
}

// The stored form of a cookie id: a database dump does not hand out live cookies.
std::string sid_hash(const std::string& sid) {
  unsigned char digest[32];
  crypto_generichash(digest, sizeof digest, reinterpret_cast<const unsigned char*>(sid.data()),
                     sid.size(), nullptr, 0);
  return hex(digest, sizeof digest);
}

}  // namespace

std::string random_token(size_t bytes) {
  if (sodium_init() < 0) throw std::runtime_error("libsodium cannot start");
  std::vector<unsigned char> buf(bytes);
  randombytes_buf(buf.data(), buf.size());
  return hex(buf.data(), buf.size());
}

std::string SessionStore::create(SessionRow& row) {
  const std::string sid = random_token();
  const std::string hash = sid_hash(sid);
  row.csrf_token = random_token();
  const Date now = db_->now();
  row.expires = Date::from_seconds(now.seconds() + lifetime_);
  const std::string created = date_text(now), expires = date_text(row.expires);
  db_->write([&](soci::session& sql) {
    sql << "INSERT INTO portal_sessions (sid_hash, sys_user_id, ebo_id, borg_id, locale_id, "
           "time_zone_id, currency_code, csrf_token, display_name, created, expires) VALUES (:h, :u, "
           ":e, :b, :l, :z, :c, :t, :d, :cr, :x)",
        soci::use(hash), soci::use(row.sys_user_id), soci::use(row.ebo_id),
        soci::use(row.borg_id), soci::use(row.locale_id), soci::use(row.time_zone_id),
        soci::use(row.currency_code), soci::use(row.csrf_token), soci::use(row.display_name),
        soci::use(created),
        soci::use(expires);
  });
  return sid;
}

std::optional<SessionRow> SessionStore::find(const std::string& sid) {
  if (sid.size() != 64) return std::nullopt;
  const std::string hash = sid_hash(sid);
  const Date now = db_->now();
  const std::string now_text = date_text(now);
  SessionRow row;
  std::string expires;
  const bool found = db_->read([&](soci::session& sql) {
    sql << "SELECT sys_user_id, ebo_id, borg_id, locale_id, time_zone_id, currency_code, "
           "csrf_token, display_name, expires FROM portal_sessions WHERE sid_hash = :h AND expires > :n",
        soci::use(hash), soci::use(now_text), soci::into(row.sys_user_id), soci::into(row.ebo_id),
        soci::into(row.borg_id), soci::into(row.locale_id), soci::into(row.time_zone_id),
        soci::into(row.currency_code), soci::into(row.csrf_token), soci::into(row.display_name),
        soci::into(expires);
    return sql.got_data();
  });
  if (!found) return std::nullopt;
  row.expires = kxui::reference::parse_date_text(expires);
  if (row.expires.seconds() - now.seconds() < lifetime_ / 2) {
    row.expires = Date::from_seconds(now.seconds() + lifetime_);
    const std::string renewed = date_text(row.expires);
    db_->write([&](soci::session& sql) {
      sql << "UPDATE portal_sessions SET expires = :x WHERE sid_hash = :h", soci::use(renewed),
          soci::use(hash);
    });
  }
  return row;
}

void SessionStore::update_preferences(const std::string& sid, const SessionRow& row) {
  const std::string hash = sid_hash(sid);
  db_->write([&](soci::session& sql) {
    sql << "UPDATE portal_sessions SET locale_id = :l, time_zone_id = :z, currency_code = :c "
           "WHERE sid_hash = :h",
        soci::use(row.locale_id), soci::use(row.time_zone_id), soci::use(row.currency_code),
        soci::use(hash);
  });
}

void SessionStore::remove(const std::string& sid) {
  const std::string hash = sid_hash(sid);
  const std::string now = date_text(db_->now());
  db_->write([&](soci::session& sql) {
    sql << "DELETE FROM portal_sessions WHERE sid_hash = :h", soci::use(hash);
    // Expired rows go with any sign-out, so the table does not grow without end.
    sql << "DELETE FROM portal_sessions WHERE expires <= :n", soci::use(now);
  });
}

std::string SessionStore::issue_form_token(const std::string& sid) {
  const std::string hash = sid_hash(sid);
  const std::string token = random_token();
  const Date now = db_->now();
  const std::string now_text = date_text(now);
  const std::string expires = date_text(Date::from_seconds(now.seconds() + lifetime_));
  db_->write([&](soci::session& sql) {
    // Forms opened and never sent leave rows: the expired ones go with every new one.
    sql << "DELETE FROM portal_form_tokens WHERE expires <= :n", soci::use(now_text);
    sql << "INSERT INTO portal_form_tokens (token, sid_hash, expires) VALUES (:t, :h, :x)",
        soci::use(token), soci::use(hash), soci::use(expires);
  });
  return token;
}

bool SessionStore::consume_form_token(const std::string& sid, const std::string& token) {
  if (token.size() != 64) return false;
  const std::string hash = sid_hash(sid);
  const std::string now = date_text(db_->now());
  return db_->write([&](soci::session& sql) {
    // The DELETE is the check: of two requests with one token only one removes the row.
    soci::statement st = (sql.prepare << "DELETE FROM portal_form_tokens WHERE token = :t AND "
                                         "sid_hash = :h AND expires > :n",
                          soci::use(token), soci::use(hash), soci::use(now));
    st.execute(true);
    return st.get_affected_rows() == 1;
  });
}

int32_t SessionStore::recent_failures(const std::string& key, int64_t window_seconds) {
  const std::string since = date_text(Date::from_seconds(db_->now().seconds() - window_seconds));
  return db_->read([&](soci::session& sql) {
    int n = 0;
    sql << "SELECT COUNT(*) FROM portal_login_failures WHERE login_key = :k AND failed_at > :s",
        soci::use(key), soci::use(since), soci::into(n);
    return n;
  });
}

void SessionStore::record_failure(const std::string& key) {
  const std::string now = date_text(db_->now());
  const std::string old = date_text(Date::from_seconds(db_->now().seconds() - 86400));
  db_->write([&](soci::session& sql) {
    sql << "INSERT INTO portal_login_failures (login_key, failed_at) VALUES (:k, :n)",
        soci::use(key), soci::use(now);
    sql << "DELETE FROM portal_login_failures WHERE failed_at < :o", soci::use(old);
  });
}

void SessionStore::clear_failures(const std::string& key) {
  db_->write([&](soci::session& sql) {
    sql << "DELETE FROM portal_login_failures WHERE login_key = :k", soci::use(key);
  });
}

}  // namespace portal
