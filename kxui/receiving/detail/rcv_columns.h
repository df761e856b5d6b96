// Display columns of the receiving forms, described as data for the shared rebuild.
#pragma once

#include <cstdint>
#include <string>

#include "kxui/frame/display.h"

namespace kxui::detail {

// "UIDisplay_<source>": the source column as a number (Null fails with 94), formatted as
// an amount in the user's locale. Widths differ per form, so each caller gives its own.
DisplayColumn amount_display(const std::string& source_column, int32_t width);

// A text column holding the same `text` on every row.
DisplayColumn fixed_text_display(std::string name, int32_t width, std::string text);

// One of the two input columns of the receiving form ("UIDisplay_<source>"): with
// `receive_all`, what is still outstanding on the line (OrderQty - ReceivedToDateQty,
// never below 0) formatted as an amount; otherwise the literal "0", unformatted whatever
// the locale, so the form starts empty.
DisplayColumn prefilled_qty_display(const std::string& source_column, bool receive_all);

}  // namespace kxui::detail
