#include "kxui/server/module.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include "kxui/frame/facade.h"
#include "kxui/server/registration.h"

namespace kxui::server {
namespace {

// Loads the built module the way a host does and drives it through its C exports only.
class ModuleTest : public ::testing::Test {
 protected:
  void SetUp() override {
    handle_ = dlopen(KXUI_MODULE_PATH, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(handle_, nullptr) << dlerror();
    reg_ = sym<int32_t (*)()>("DllRegisterServer");
    unreg_ = sym<int32_t (*)()>("DllUnregisterServer");
    get_ = sym<int32_t (*)(const char*, void**)>("DllGetClassObject");
    can_unload_ = sym<int32_t (*)()>("DllCanUnloadNow");
  }
  void TearDown() override {
    if (handle_) dlclose(handle_);
  }
  template <class F>
  F sym(const char* name) {
    void* p = dlsym(handle_, name);
    EXPECT_NE(p, nullptr) << name;
    return reinterpret_cast<F>(p);
  }

  void* handle_ = nullptr;
  int32_t (*reg_)() = nullptr;
  int32_t (*unreg_)() = nullptr;
  int32_t (*get_)(const char*, void**) = nullptr;
  int32_t (*can_unload_)() = nullptr;
};

TEST_F(ModuleTest, RegisterCreateEveryClassAndUnregister) {
  void* raw = nullptr;
  EXPECT_EQ(get_("KxUI03.UIReq", &raw), kCLASS_E_CLASSNOTAVAILABLE) << "not registered yet";
  EXPECT_EQ(get_("KxUI03.UIReq", nullptr), kE_POINTER);
  ASSERT_EQ(reg_(), kS_OK);
  EXPECT_EQ(can_unload_(), kS_OK);

  for (std::string_view name : kClassNames) {
    SCOPED_TRACE(name);
    std::string n(name);
    ASSERT_EQ(get_(n.c_str(), &raw), kS_OK);
    auto* cls = static_cast<ClassObject*>(raw);
    EXPECT_EQ(can_unload_(), kS_FALSE) << "a class object is alive";
    ObjectPtr instance;
    ASSERT_EQ(cls->CreateInstance(instance), kS_OK);
    cls->Release();
    auto facade = std::dynamic_pointer_cast<Facade>(instance);
    ASSERT_NE(facade, nullptr);
    EXPECT_EQ("KxUI03." + facade->class_name(), n);
    EXPECT_NE(facade->Error(), nullptr);
    EXPECT_EQ(can_unload_(), kS_FALSE) << "an instance is alive";
    facade.reset();
    instance.reset();
    EXPECT_EQ(can_unload_(), kS_OK);
  }

  EXPECT_EQ(get_("KxUI03.NoSuchClass", &raw), kCLASS_E_CLASSNOTAVAILABLE);
  ASSERT_EQ(unreg_(), kS_OK);
  EXPECT_EQ(get_("KxUI03.UIWF", &raw), kCLASS_E_CLASSNOTAVAILABLE);
}

TEST(Registration, EveryClassIsCreatableInAnInjectedRuntime) {
  auto rt = std::make_shared<Runtime>();
  register_classes(rt);
  for (std::string_view name : kClassNames) {
    SCOPED_TRACE(name);
    auto facade = create_as<Facade>(*rt, name);
    EXPECT_EQ("KxUI03." + facade->class_name(), std::string(name));
  }
  unregister_classes(*rt);
  for (std::string_view name : kClassNames) EXPECT_FALSE(rt->IsRegistered(name));
}

}  // namespace
}  // namespace kxui::server
