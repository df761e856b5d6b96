// Text made safe to print inside HTML, for the markup the tier builds (the workflow map)
// and for the pages of applications built on it.
#pragma once

#include <string>
#include <string_view>

namespace kxui::reference {

// & < > " ' as character references; everything else as it is.
std::string escape_html(std::string_view text);

}  // namespace kxui::reference
