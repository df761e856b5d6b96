// The default ErrorInfo ("KxUtility03.KxError") with a built-in catalogue of the
// library's validation messages in the languages the product ships.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "kxui/frame/error_info.h"

namespace kxui::services {

class KxErrorInfo : public BasicErrorInfo {
 public:
  // The text of message `message_number` in the session's language (its LangCode;
  // "de", "de-AT" and "DE_at" all select German) when the catalogue has one, else
  // `english`; then "@1", "@2", ... are filled from `params` in order (the first
  // element fills "@1" whatever the lower bound). Throws Failure when a parameter has
  // no text form (Null: 94).
  std::string GetMessageText(const SessionPtr& session, int32_t message_number,
                             const std::string& english, const Array& params) override;

  // Number, source and description in one step, for the services that report through
  // their own error object.
  void Set(int32_t number, std::string source, std::string description);
};

// The catalogue's text of a message in a language ("de", "fr"; a region after '-' or
// '_' is ignored, case too), or empty when it has none. English texts are not in the
// catalogue: the caller's English text is the default.
std::string_view catalogue_text(std::string_view language, int32_t message_number);

}  // namespace kxui::services
