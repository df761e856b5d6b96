// Small helpers for the late-bound supplier-exchange objects.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "kxui/frame/runtime.h"
#include "kxui/frame/variant.h"

namespace kxui::detail {

// Writes a property by dispatch id.
void put_property(Dispatch& obj, int32_t dispid, Variant value);
// Reads a member without arguments, by dispatch id or by name.
Variant get_member(Dispatch& obj, int32_t dispid);
Variant get_member(Dispatch& obj, std::string_view name);
// Response i (0-based) of an answer array, as a late-bound object.
std::shared_ptr<Dispatch> response_at(const Variant& responses, int32_t i);
// The first `n` characters (code points) of a UTF-8 text.
std::string first_chars(const std::string& text, size_t n);
// Now, as the civil date-time of the clock.
Date current_date();

}  // namespace kxui::detail
