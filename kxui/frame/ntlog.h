// NTLog ("KxUtility03.NTLog"): the application log.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kxui/frame/object.h"

namespace kxui {

class NTLog : public virtual Object {
 public:
  // 1 error, 2 warning, 4 information.
  virtual void SetEventType(int32_t type) = 0;
  virtual void SetMessage(std::string text) = 0;
  virtual void WriteEntry() = 0;
};

using NTLogPtr = std::shared_ptr<NTLog>;

}  // namespace kxui
