// The security library "KxSecurity03": the objects the session hub keeps for a user. Both
// are created directly by class through the runtime, not through the ClassFactory. Their
// members are the security library's own and are not called by this library: a page
// reaches them through the library's own interfaces (dynamic_pointer_cast) or late-bound
// (Dispatch), so any object can fill these roles.
#pragma once

#include "kxui/frame/object.h"

namespace kxui::business {

// The user's security object, created with the hub.
class SecurityObject : public virtual Object {};

// The login object, created on the hub's first request for it.
class LoginObject : public virtual Object {};

namespace security_class {
inline constexpr const char* kSecurity = "KxSecurity03.Security";
inline constexpr const char* kLogin = "KxSecurity03.Login";
}  // namespace security_class

}  // namespace kxui::business
