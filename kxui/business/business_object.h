// The base of every business object: it reports its failures through GetError.
#pragma once

#include "kxui/frame/error_info.h"

namespace kxui::business {

class BusinessObject : public virtual ErrorSource {};

}  // namespace kxui::business
