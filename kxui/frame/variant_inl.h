// Template members of Variant.
#pragma once

#include "kxui/frame/errors.h"
#include "kxui/frame/failure.h"

namespace kxui {

template <class T>
std::shared_ptr<T> Variant::as() const {
  ObjectPtr obj = to_object();
  if (!obj) return nullptr;
  auto typed = std::dynamic_pointer_cast<T>(obj);
  if (!typed) fail(err::kNoSuchMember);
  return typed;
}

}  // namespace kxui
