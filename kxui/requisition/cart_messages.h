// Validation messages of the requisition's cost distribution, with their English texts;
// raised like every validation (0x80040000 + number).
#pragma once

#include "kxui/frame/messages.h"

namespace kxui::msg {

inline constexpr Message kCostDistribPercentInvalid{
    11670,
    "Cost distribution percentage is an invalid number. It must be greater than 0 and "
    "not more than 100."};
inline constexpr Message kCostDistribTotalInvalid{
    11671, "Cost distribution percentages must add up to 100."};

}  // namespace kxui::msg
