// Object: the root of every component that travels through the interface (business
// objects, services, record sets). Interfaces are reached with dynamic_pointer_cast.
#pragma once

#include <memory>

namespace kxui {

class Object {
 public:
  virtual ~Object() = default;
};

using ObjectPtr = std::shared_ptr<Object>;

}  // namespace kxui
