// ByRef<T>: an optional in/out argument. It binds to the caller's variable, or to a
// private default (a Missing Variant, a zero, ...) when the caller omits it, so the
// operation can always read and write through it.
#pragma once

#include <type_traits>

#include "kxui/frame/variant.h"

namespace kxui {

template <class T>
struct ByRefDefault {
  static T value() { return T{}; }
};
template <>
struct ByRefDefault<Variant> {
  static Variant value() { return Variant::missing(); }
};

template <class T>
class ByRef {
 public:
  // Omitted: binds to a private default value.
  ByRef() : own_(ByRefDefault<T>::value()), ref_(&own_) {}
  // Omitted, with the operation's own default (e.g. an optional Long defaulting to 0).
  static ByRef with_default(T v) { return ByRef(std::move(v), 0); }
  // Bound to the caller's variable.
  ByRef(T& ref) : ref_(&ref) {}  // NOLINT: implicit by design, like a by-reference argument

  // Bound arguments must not be copied: the copy would point at the other's default.
  ByRef(const ByRef&) = delete;
  ByRef& operator=(const ByRef&) = delete;

  T& operator*() const { return *ref_; }
  T* operator->() const { return ref_; }
  T& get() const { return *ref_; }
  bool omitted() const { return ref_ == &own_; }

 private:
  ByRef(T v, int) : own_(std::move(v)), ref_(&own_) {}
  T own_{};
  T* ref_;
};

}  // namespace kxui
