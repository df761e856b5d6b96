#include "kxui/frame/failure.h"

namespace kxui {

void fail(int32_t number, std::string_view source) {
  throw Failure(number, std::string(source), std::string(err::text(number)));
}

void fail(int32_t number, std::string_view source, std::string_view detail) {
  std::string text(err::text(number));
  if (!detail.empty()) {
    text += " (";
    text += detail;
    text += ')';
  }
  throw Failure(number, std::string(source), std::move(text));
}

}  // namespace kxui
