// Failure: the one exception type used inside the library. Public operations never let
// it (or anything else) escape; the façade frame records it in ErrorInfo.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <string_view>

#include "kxui/frame/errors.h"

namespace kxui {

class Failure : public std::exception {
 public:
  Failure(int32_t number, std::string source, std::string description)
      : number_(number), source_(std::move(source)), description_(std::move(description)) {}

  int32_t number() const noexcept { return number_; }
  const std::string& source() const noexcept { return source_; }
  const std::string& description() const noexcept { return description_; }
  const char* what() const noexcept override { return description_.c_str(); }

 private:
  int32_t number_;
  std::string source_;
  std::string description_;
};

// Throws a Failure with a runtime error number and its English text. `source` names
// the component that failed (empty for language runtime errors).
[[noreturn]] void fail(int32_t number, std::string_view source = {});
// The same with an explanatory detail appended to the standard text.
[[noreturn]] void fail(int32_t number, std::string_view source, std::string_view detail);

}  // namespace kxui
