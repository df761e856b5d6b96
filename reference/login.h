// "KxSecurity03.LoginValidator" over the users table: Argon2id verification. One
// installation is one EBO, so the EBO given does not narrow the search.
#pragma once

#include <optional>

#include "kxui/business/account.h"
#include "reference/database.h"

namespace kxui::reference {

class RefLoginValidator : public business::LoginValidator {
 public:
  explicit RefLoginValidator(DatabasePtr db) : db_(std::move(db)) {}
  // Throws Failure when the database cannot be read; a wrong password is just False.
  bool ValidateLogin(int32_t ebo_id, const std::string& login_id,
                     const std::string& password) override;
  // Null until a login succeeded.
  Variant SysUserID() override;

 private:
  DatabasePtr db_;
  std::optional<int32_t> user_;
};

}  // namespace kxui::reference
