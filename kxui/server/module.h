// The component-server exports of libKxUI03.so. A host loads the module (dlopen),
// calls DllRegisterServer once, then creates classes by name through DllGetClassObject
// and the class object's CreateInstance. Results are HRESULT-style 32-bit codes.
#pragma once

#include <cstdint>
#include <memory>

#include "kxui/frame/object.h"

namespace kxui::server {

inline constexpr int32_t kS_OK = 0;
inline constexpr int32_t kS_FALSE = 1;
inline constexpr int32_t kE_POINTER = static_cast<int32_t>(0x80004003u);
inline constexpr int32_t kE_FAIL = static_cast<int32_t>(0x80004005u);
inline constexpr int32_t kE_OUTOFMEMORY = static_cast<int32_t>(0x8007000Eu);
inline constexpr int32_t kCLASS_E_CLASSNOTAVAILABLE = static_cast<int32_t>(0x80040111u);

// The class object of one class: creates instances of it. Counted as alive until
// Release.
class ClassObject {
 public:
  virtual int32_t CreateInstance(ObjectPtr& out) noexcept = 0;
  virtual void Release() noexcept = 0;

 protected:
  virtual ~ClassObject() = default;
};

}  // namespace kxui::server

extern "C" {
// Makes the sixteen classes creatable by name in the module's runtime. S_OK.
int32_t DllRegisterServer(void);
// Removes them. S_OK.
int32_t DllUnregisterServer(void);
// The class object of a registered class name ("KxUI03.UIReq") in *ppv (a
// kxui::server::ClassObject*, to be Released); CLASS_E_CLASSNOTAVAILABLE when the name
// is not registered, E_POINTER for a null argument.
int32_t DllGetClassObject(const char* class_name, void** ppv);
// S_OK when no instance or class object of the module is alive, else S_FALSE.
int32_t DllCanUnloadNow(void);
}
