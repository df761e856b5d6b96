// "KxUtility03.KxSession": the session object the session hub creates for a user. It is
// the Session every operation receives (kxui/frame/session.h): the library reads only
// the members declared there; how the object gets its values (login, cookies, a store)
// and whatever else it offers are the session service's business.
#pragma once

#include "kxui/frame/session.h"

namespace kxui::business {

using KxSession = Session;

}  // namespace kxui::business
