#include "reference/users.h"

#include <algorithm>
#include <cctype>
#include <mutex>

#include <sodium.h>

#include "kxui/frame/text.h"
#include "reference/errors.h"

namespace kxui::reference {

namespace {

void init_sodium() {
  static std::once_flag once;
  std::call_once(once, [] {
    if (sodium_init() < 0) fail(err::kInternalError, "KxReference", "libsodium cannot start");
  });
}

std::string folded(std::string_view s) { return kxui::text::lower_ascii(s); }

}  // namespace

std::string HashPassword(const std::string& password, HashCost cost) {
  init_sodium();
  char out[crypto_pwhash_STRBYTES];
  const bool minimum = cost == HashCost::kMinimum;
  if (crypto_pwhash_str(out, password.data(), password.size(),
                        minimum ? crypto_pwhash_OPSLIMIT_MIN : crypto_pwhash_OPSLIMIT_INTERACTIVE,
                        minimum ? crypto_pwhash_MEMLIMIT_MIN
                                : crypto_pwhash_MEMLIMIT_INTERACTIVE) != 0) {
    fail(err::kOutOfMemory, "KxReference", "hashing a password");
  }
  return out;
}

bool PasswordMatches(const std::string& encoded_hash, const std::string& password) {
  init_sodium();
  return crypto_pwhash_str_verify(encoded_hash.c_str(), password.data(), password.size()) == 0;
}

int32_t AddUser(Database& db, const NewUser& u, HashCost cost) {
  if (u.login_id.empty()) refuse(Refusal::kInvalidArgument, "A user needs a login id.");
  if (u.password.empty()) refuse(Refusal::kInvalidArgument, "A user needs a password.");
  const std::string hash = HashPassword(u.password, cost);
  const std::string login = folded(u.login_id);
  return db.write([&](soci::session& sql) {
    int id = 0;
    int manager = u.manager_id.value_or(0);
    soci::indicator manager_ind = u.manager_id ? soci::i_ok : soci::i_null;
    const long long limit = u.approval_limit.scaled;
    sql << "INSERT INTO users (borg_id, login_id, full_name, email, password_hash, locale_id, "
           "time_zone_id, currency_code, manager_id, approval_limit) VALUES (:b, :l, :n, :e, "
           ":h, :lc, :tz, :c, :m, :a) RETURNING sys_user_id",
        soci::use(u.borg_id), soci::use(login), soci::use(u.full_name), soci::use(u.email),
        soci::use(hash), soci::use(u.locale_id), soci::use(u.time_zone_id),
        soci::use(u.currency_code), soci::use(manager, manager_ind), soci::use(limit),
        soci::into(id);
    return id;
  });
}

std::optional<int32_t> VerifyPassword(Database& db, const std::string& login_id,
                                      const std::string& password) {
  const std::string login = folded(login_id);
  int id = 0;
  std::string hash;
  const bool found = db.read([&](soci::session& sql) {
    sql << "SELECT sys_user_id, password_hash FROM users WHERE login_id = :l AND active = 1",
        soci::use(login), soci::into(id), soci::into(hash);
    return sql.got_data();
  });
  // An unknown login costs a verification too, so timing does not tell which logins exist.
  static const std::string decoy = HashPassword("decoy", HashCost::kMinimum);
  const bool matches = PasswordMatches(found ? hash : decoy, password);
  if (!found || !matches) return std::nullopt;
  return id;
}

}  // namespace kxui::reference
