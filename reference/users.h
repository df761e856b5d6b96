// Users and their passwords: salted Argon2id hashes in the encoded form libsodium
// writes (algorithm, parameters, salt and hash in one text), so the cost can rise later
// without invalidating stored hashes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "reference/database.h"

namespace kxui::reference {

enum class HashCost {
  kInteractive,  // for real accounts
  kMinimum,      // for generated test and benchmark data only
};

// The encoded hash of a password. Throws Failure 7 when memory for it cannot be had.
std::string HashPassword(const std::string& password, HashCost cost = HashCost::kInteractive);
bool PasswordMatches(const std::string& encoded_hash, const std::string& password);

struct NewUser {
  int32_t borg_id = 0;
  std::string login_id, full_name, email, password;
  int32_t locale_id = 1033;
  int32_t time_zone_id = 15;
  std::string currency_code = "USD";
  std::optional<int32_t> manager_id;
  Currency approval_limit;
};

// Stores a user (login ids compare without case); returns its identifier.
int32_t AddUser(Database& db, const NewUser& user, HashCost cost = HashCost::kInteractive);

// The active user whose login id and password match, or nothing.
std::optional<int32_t> VerifyPassword(Database& db, const std::string& login_id,
                                      const std::string& password);

}  // namespace kxui::reference
