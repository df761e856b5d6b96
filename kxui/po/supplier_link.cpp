#include "kxui/po/detail/supplier_link.h"

#include <chrono>

namespace kxui::detail {

void put_property(Dispatch& obj, int32_t dispid, Variant value) {
  Variant args[] = {std::move(value)};
  obj.Invoke(dispid, args);
}

Variant get_member(Dispatch& obj, int32_t dispid) { return obj.Invoke(dispid, {}); }

Variant get_member(Dispatch& obj, std::string_view name) { return obj.InvokeByName(name, {}); }

std::shared_ptr<Dispatch> response_at(const Variant& responses, int32_t i) {
  const Array& answers = responses.array();
  return query<Dispatch>(answers.at(answers.lbound() + i).to_object());
}

std::string first_chars(const std::string& text, size_t n) {
  size_t chars = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    // A code point starts at every byte that is not a continuation byte.
    if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80 && chars++ == n) {
      return text.substr(0, i);
    }
  }
  return text;
}

Date current_date() {
  const auto now = std::chrono::time_point_cast<std::chrono::seconds>(
      std::chrono::system_clock::now());
  return Date::from_seconds(now.time_since_epoch().count());
}

}  // namespace kxui::detail
