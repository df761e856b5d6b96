#include "services/kx_error.h"

#include "kxui/frame/facade.h"

namespace kxui::services {

void KxErrorInfo::Set(int32_t number, std::string source, std::string description) {
  SetNumber(number);
  SetSource(std::move(source));
  SetDescription(std::move(description));
}

std::string KxErrorInfo::GetMessageText(const SessionPtr& session, int32_t message_number,
                                        const std::string& english, const Array& params) {
  std::string_view text;
  if (session) {
    const std::string language = session->LangCode();
    text = catalogue_text(language, message_number);
  }
  return fill_message_params(text.empty() ? english : std::string(text), params);
}

}  // namespace kxui::services
