// The texts the resource objects ship with, per locale name ("en-US", "de-DE", "fr-FR").
// English also serves the default resource object.
#pragma once

#include <cstdint>
#include <span>

namespace kxui::reference {

struct ResourceText {
  const char* locale;
  int16_t string_id;
  const char* text;
};

std::span<const ResourceText> resource_texts();

}  // namespace kxui::reference
