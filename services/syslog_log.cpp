#include "services/syslog_log.h"

#include <mutex>

#include "kxui/frame/errors.h"
#include "kxui/frame/failure.h"

namespace kxui::services {
namespace {

// syslog keeps the ident pointer, so it must outlive every later call.
void open_log(const std::string& ident) {
  static std::once_flag once;
  std::call_once(once, [&] {
    static const std::string* kept = new std::string(ident);
    openlog(kept->empty() ? nullptr : kept->c_str(), LOG_PID, LOG_USER);
  });
}

}  // namespace

SyslogLog::SyslogLog(const std::string& ident)
    : writer_([](int priority, const std::string& message) {
        syslog(priority, "%s", message.c_str());
      }) {
  open_log(ident);
}

void SyslogLog::SetEventType(int32_t type) {
  switch (type) {
    case 1: priority_ = LOG_ERR; break;
    case 2: priority_ = LOG_WARNING; break;
    case 4: priority_ = LOG_INFO; break;
    default:
      fail(err::kInvalidProcedureCall, "KxUtility03.NTLog",
           "unknown event type " + std::to_string(type));
  }
}

void SyslogLog::WriteEntry() { writer_(priority_, message_); }

}  // namespace kxui::services
