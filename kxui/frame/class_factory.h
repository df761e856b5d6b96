// ClassFactory: how façades obtain business objects by ProgID.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "kxui/frame/object.h"
#include "kxui/frame/runtime.h"

namespace kxui {

class ClassFactory : public virtual Object {
 public:
  // A new object for a ProgID in `out`; the second argument is always 0. Throws Failure
  // (429 for an unknown ProgID).
  virtual void CreateObjectByProgID(const std::string& progid, int32_t reserved,
                                    ObjectPtr& out) = 0;
};

using ClassFactoryPtr = std::shared_ptr<ClassFactory>;

// The default factory: creates through a runtime.
class RuntimeClassFactory : public ClassFactory {
 public:
  explicit RuntimeClassFactory(std::shared_ptr<const Runtime> rt) : rt_(std::move(rt)) {}
  void CreateObjectByProgID(const std::string& progid, int32_t reserved, ObjectPtr& out) override {
    (void)reserved;
    out = rt_->Create(progid);
  }

 private:
  std::shared_ptr<const Runtime> rt_;
};

}  // namespace kxui
