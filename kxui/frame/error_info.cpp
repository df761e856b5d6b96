#include "kxui/frame/error_info.h"

#include <string>

namespace kxui {

std::string BasicErrorInfo::GetMessageText(const SessionPtr&, int32_t, const std::string& english,
                                           const Array& params) {
  return fill_message_params(english, params);
}

std::string fill_message_params(std::string text, const Array& params) {
  if (params.dims() != 1) return text;
  // Highest number first, so "@1" never eats the start of "@10".
  for (int32_t i = params.ubound(); i >= params.lbound(); --i) {
    const std::string tag = "@" + std::to_string(i - params.lbound() + 1);
    const std::string value = params.at(i).to_string();
    for (size_t pos = text.find(tag); pos != std::string::npos;
         pos = text.find(tag, pos + value.size())) {
      text.replace(pos, tag.size(), value);
    }
  }
  return text;
}

}  // namespace kxui
