// The reference tier's own error numbers (above the component-error base, clear of the
// library's validation messages) and the Failure that carries them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "kxui/frame/errors.h"
#include "kxui/frame/failure.h"

namespace kxui::reference {

enum class Refusal : int32_t {
  kDatabaseBusy = 20001,
  kDatabaseReadOnly,
  kDatabaseCorrupt,
  kDatabaseFull,
  kConstraint,
  kDatabaseError,
  kSchemaTooNew,
  kNotFound = 20101,
  kLocked,
  kLockNotHeld,
  kNotEditable,
  kWrongStatus,
  kNotAllowed,
  kInvalidArgument,
  kNoRate,
  kAlreadyActed,
  kNoItems,
  kNoData,
};

inline int32_t error_number(Refusal r) {
  return err::kObjectErrorBase + static_cast<int32_t>(r);
}

// Throws the business error `r` with its text; the source is the reference tier's.
[[noreturn]] inline void refuse(Refusal r, std::string description) {
  throw Failure(error_number(r), "KxReference", std::move(description));
}

}  // namespace kxui::reference
