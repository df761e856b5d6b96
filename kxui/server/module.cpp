#include "kxui/server/module.h"

#include <atomic>
#include <new>
#include <string>

#include "kxui/frame/facade.h"
#include "kxui/frame/failure.h"
#include "kxui/server/registration.h"

namespace kxui::server {
namespace {

std::atomic<int64_t> g_class_objects{0};

class RuntimeClassObject final : public ClassObject {
 public:
  explicit RuntimeClassObject(std::string name) : name_(std::move(name)) { ++g_class_objects; }
  int32_t CreateInstance(ObjectPtr& out) noexcept override {
    try {
      out = Runtime::process()->Create(name_);
      return kS_OK;
    } catch (const kxui::Failure& f) {
      return hresult_of(f.number());
    } catch (const std::bad_alloc&) {
      return kE_OUTOFMEMORY;
    } catch (...) {
      return kE_FAIL;
    }
  }
  void Release() noexcept override { delete this; }

 private:
  ~RuntimeClassObject() override { --g_class_objects; }
  std::string name_;
};

}  // namespace
}  // namespace kxui::server

using namespace kxui::server;

extern "C" int32_t DllRegisterServer(void) {
  try {
    register_classes(kxui::Runtime::process());
    return kS_OK;
  } catch (...) {
    return kE_FAIL;
  }
}

extern "C" int32_t DllUnregisterServer(void) {
  try {
    unregister_classes(*kxui::Runtime::process());
    return kS_OK;
  } catch (...) {
    return kE_FAIL;
  }
}

extern "C" int32_t DllGetClassObject(const char* class_name, void** ppv) {
  if (ppv == nullptr || class_name == nullptr) return kE_POINTER;
  *ppv = nullptr;
  try {
    if (!kxui::Runtime::process()->IsRegistered(class_name)) return kCLASS_E_CLASSNOTAVAILABLE;
    *ppv = static_cast<ClassObject*>(new RuntimeClassObject(class_name));
    return kS_OK;
  } catch (const std::bad_alloc&) {
    return kE_OUTOFMEMORY;
  } catch (...) {
    return kE_FAIL;
  }
}

extern "C" int32_t DllCanUnloadNow(void) {
  return (g_class_objects.load() == 0 && kxui::Facade::live_instances() == 0) ? kS_OK : kS_FALSE;
}
