// The default NTLog ("KxUtility03.NTLog"): entries go to the system log.
#pragma once

#include <cstdint>
#include <syslog.h>

#include <functional>
#include <string>

#include "kxui/frame/ntlog.h"

namespace kxui::services {

class SyslogLog : public NTLog {
 public:
  // Where an entry goes: a syslog priority and the message.
  using Writer = std::function<void(int priority, const std::string& message)>;

  // Writes to syslog(3) under `ident` (the program name when empty); the first ident
  // given in the process is the one syslog keeps.
  explicit SyslogLog(const std::string& ident);
  // Writes through `writer` instead (for tests and hosts with their own log).
  explicit SyslogLog(Writer writer) : writer_(std::move(writer)) {}

  // 1 error (LOG_ERR), 2 warning (LOG_WARNING), 4 information (LOG_INFO); anything
  // else throws Failure 5 and keeps the previous type (error until set).
  void SetEventType(int32_t type) override;
  void SetMessage(std::string text) override { message_ = std::move(text); }
  // Writes the message with the current type; the message is written as data, never
  // as a format.
  void WriteEntry() override;

 private:
  Writer writer_;
  int priority_ = LOG_ERR;
  std::string message_;
};

}  // namespace kxui::services
