#include "reference/login.h"

#include "reference/users.h"

namespace kxui::reference {

bool RefLoginValidator::ValidateLogin(int32_t, const std::string& login_id,
                                      const std::string& password) {
  user_ = VerifyPassword(*db_, login_id, password);
  return user_.has_value();
}

Variant RefLoginValidator::SysUserID() {
  return user_ ? Variant(*user_) : Variant::null();
}

}  // namespace kxui::reference
