// The component-server exports of libKxUI03.so. A host loads the module (dlopen),
// calls DllRegisterServer once, then creates classes by name through DllGetClassObject
// and the class object's CreateInstance. Results are HRESULT-style 32-bit codes.
//
// The module and the host share libkxui.so and so one process runtime
// (kxui::Runtime::process()): the business objects and services a host registers there
// are the ones the module's instances create.
#pragma once

#include <cstdint>
#include <memory>

#include "kxui/frame/object.h"

// The module is built with hidden visibility; only what carries this is exported.
#define KXUI_MODULE_EXPORT __attribute__((visibility("default")))

namespace kxui::server {

inline constexpr int32_t kS_OK = 0;
inline constexpr int32_t kS_FALSE = 1;
inline constexpr int32_t kE_POINTER = static_cast<int32_t>(0x80004003u);
inline constexpr int32_t kE_FAIL = static_cast<int32_t>(0x80004005u);
inline constexpr int32_t kE_OUTOFMEMORY = static_cast<int32_t>(0x8007000Eu);
inline constexpr int32_t kCLASS_E_CLASSNOTAVAILABLE = static_cast<int32_t>(0x80040111u);
// Runtime errors 1..65535 travel as HRESULTs of the control facility (429: 0x800A01AD).
inline constexpr int32_t kControlFacilityBase = static_cast<int32_t>(0x800A0000u);

// The HRESULT of a failure number: an HRESULT stays as it is, a runtime error number
// moves into the control facility, anything else is E_FAIL.
constexpr int32_t hresult_of(int32_t number) noexcept {
  if (number < 0) return number;
  if (number > 0 && number <= 0xFFFF) return kControlFacilityBase | number;
  return kE_FAIL;
}

// The class object of one class: creates instances of it. Counted as alive until
// Release.
class ClassObject {
 public:
  // S_OK with a new instance in `out`; on failure `out` is left as it was and the code
  // is the failure's own (hresult_of its number, E_OUTOFMEMORY), E_FAIL when it has none.
  virtual int32_t CreateInstance(ObjectPtr& out) noexcept = 0;
  virtual void Release() noexcept = 0;

 protected:
  virtual ~ClassObject() = default;
};

}  // namespace kxui::server

extern "C" {
// Makes the façade classes creatable by name in the process runtime. S_OK.
KXUI_MODULE_EXPORT int32_t DllRegisterServer(void);
// Removes them. S_OK.
KXUI_MODULE_EXPORT int32_t DllUnregisterServer(void);
// The class object of a registered class name ("KxUI03.UIReq") in *ppv (a
// kxui::server::ClassObject*, to be Released); CLASS_E_CLASSNOTAVAILABLE when the name
// is not registered, E_POINTER for a null argument.
KXUI_MODULE_EXPORT int32_t DllGetClassObject(const char* class_name, void** ppv);
// S_OK when no instance or class object of the module is alive, else S_FALSE.
KXUI_MODULE_EXPORT int32_t DllCanUnloadNow(void);
}
