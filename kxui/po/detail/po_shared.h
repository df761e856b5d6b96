// What the purchase-order façades share: the display columns of money in the row's
// currency and of quantities, and the way they report a business object's failure.
#pragma once

#include <string>

#include "kxui/frame/display.h"
#include "kxui/frame/error_info.h"

namespace kxui::detail {

// "UIDisplay_<value_column>": the value as a double, formatted as money in the row's
// "CurrencyCode".
DisplayColumn money_display(const std::string& value_column);
// "UIDisplay_<value_column>": the value as a double, formatted as a plain number.
DisplayColumn amount_display(const std::string& value_column);

// Raises a business object's failure with its Number and Description and an empty
// source, so the recorded source is the operation's own text alone.
[[noreturn]] void RaiseBusinessError(ErrorSource& obj);

}  // namespace kxui::detail
