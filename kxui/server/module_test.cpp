#include "kxui/server/module.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "kxui/business/requisition.h"
#include "kxui/frame/facade.h"
#include "kxui/frame/failure.h"
#include "kxui/requisition/ui_req.h"
#include "kxui/server/registration.h"
#include "services/register.h"

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
    if (unreg_) unreg_();
    if (handle_) dlclose(handle_);
  }
  template <class F>
  F sym(const char* name) {
    void* p = dlsym(handle_, name);
    EXPECT_NE(p, nullptr) << name;
    return reinterpret_cast<F>(p);
  }
  ClassObject* class_object(const char* name) {
    void* raw = nullptr;
    EXPECT_EQ(get_(name, &raw), kS_OK) << name;
    return static_cast<ClassObject*>(raw);
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

  for (const ServedClass& c : served_classes()) {
    SCOPED_TRACE(c.name);
    std::string n(c.name);
    ClassObject* cls = class_object(n.c_str());
    ASSERT_NE(cls, nullptr);
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

TEST_F(ModuleTest, CreateInstanceKeepsTheFailuresOwnCode) {
  ASSERT_EQ(reg_(), kS_OK);
  ClassObject* cls = class_object("KxUI03.UIReq");
  ASSERT_NE(cls, nullptr);
  ASSERT_EQ(unreg_(), kS_OK);  // the class object outlives the registration
  ObjectPtr instance;
  EXPECT_EQ(cls->CreateInstance(instance), static_cast<int32_t>(0x800A01ADu)) << "429";
  EXPECT_EQ(instance, nullptr);
  cls->Release();
}

TEST(HresultOf, FailureNumbers) {
  const struct {
    int32_t number, hresult;
  } cases[] = {
      {429, static_cast<int32_t>(0x800A01ADu)},
      {7, static_cast<int32_t>(0x800A0007u)},
      {0xFFFF, static_cast<int32_t>(0x800AFFFFu)},
      {static_cast<int32_t>(0x80040105u), static_cast<int32_t>(0x80040105u)},  // kept
      {0, kE_FAIL},
      {0x10000, kE_FAIL},
  };
  for (const auto& c : cases) EXPECT_EQ(hresult_of(c.number), c.hresult) << c.number;
}

// The host's own business object: three requisitions, answering through Success().
class InMemoryRequisition : public business::Requisition {
 public:
  std::vector<std::string> calls;

  bool Load(const SessionPtr&, int32_t, bool, Variant&) override { return false; }
  std::shared_ptr<business::RequisitionHeader> Header() override { return nullptr; }
  bool Success() override { return true; }
  ErrorInfoPtr GetError() override { return error_; }
  RecordsetPtr GetRequisitionList(const SessionPtr&, const std::string& user_name,
                                  const std::string& borg_name, const std::string& sort_by,
                                  const std::string& status_list, Variant&) override {
    calls.push_back(user_name + "|" + borg_name + "|" + sort_by + "|" + status_list);
    auto rs = std::make_shared<Recordset>();
    rs->GetFields().Append("ReqID", adInteger);
    rs->GetFields().Append("ReqName", adVarWChar, 50);
    rs->GetFields().Append("CreateDate", adDate);
    rs->GetFields().Append("SubmitDate", adDate);
    rs->Open();
    for (int32_t id = 1; id <= 3; ++id) {
      rs->AddNew();
      rs->set_value(0, id);
      rs->set_value(1, "Req " + std::to_string(id));
      rs->set_value(2, Date::from_civil(2024, 3, id));
      rs->set_value(3, Date::from_civil(2024, 4, id));
    }
    rs->Update();
    rs->MoveFirst();
    return rs;
  }

 private:
  ErrorInfoPtr error_ = std::make_shared<BasicErrorInfo>();
};

// A host's steps: default services and its business object into the process runtime
// (shared with the module through libkxui.so), then the class by name from the module.
TEST_F(ModuleTest, HostRegisteredObjectsReachTheModulesInstances) {
  const auto ini_dir = std::filesystem::path(::testing::TempDir()) / "kxui_module_test";
  std::filesystem::create_directories(ini_dir);
  std::ofstream(ini_dir / "Dunmere.ini") << "[Paging]\nPage Size = 2\n";
  std::shared_ptr<Runtime> rt = Runtime::process();
  services::ServiceOptions options;
  options.ini_directory = ini_dir;
  services::RegisterDefaultServices(*rt, options);
  auto business = std::make_shared<InMemoryRequisition>();
  rt->Register("KxReq03.Requisition", [business] { return business; });

  ASSERT_EQ(reg_(), kS_OK);
  ClassObject* cls = class_object("KxUI03.UIReq");
  ASSERT_NE(cls, nullptr);
  ObjectPtr instance;
  ASSERT_EQ(cls->CreateInstance(instance), kS_OK);
  cls->Release();
  auto req = std::dynamic_pointer_cast<UIReq>(instance);
  ASSERT_NE(req, nullptr);

  auto session = std::make_shared<BasicSession>();
  RecordsetPtr page = req->GetListPage(session, "jdoe", "Acme", "CreateDate", "1,3", 0);
  ASSERT_NE(page, nullptr) << req->Error()->Number() << " " << req->Error()->Description();
  EXPECT_EQ(business->calls, std::vector<std::string>{"jdoe|Acme|CreateDate|1,3"});
  EXPECT_EQ(page->RecordCount(), 2) << "Page Size from the host's settings";
  EXPECT_EQ((*page)["ReqName"].Value().to_string(), "Req 1");
  EXPECT_EQ((*page)["UIDisplay_CreateDate"].Value().to_string(), "Mar 1, 2024");
  EXPECT_EQ((*page)["UIDisplay_TotalRecords"].Value().to_int32(), 3);

  rt->Unregister("KxReq03.Requisition");
  req.reset();
  instance.reset();
  std::filesystem::remove_all(ini_dir);
}

TEST(Registration, EveryClassIsCreatableInAnInjectedRuntime) {
  auto rt = std::make_shared<Runtime>();
  register_classes(rt);
  for (const ServedClass& c : served_classes()) {
    SCOPED_TRACE(c.name);
    auto facade = create_as<Facade>(*rt, c.name);
    EXPECT_EQ("KxUI03." + facade->class_name(), std::string(c.name));
  }
  unregister_classes(*rt);
  for (const ServedClass& c : served_classes()) EXPECT_FALSE(rt->IsRegistered(c.name));
}

}  // namespace
}  // namespace kxui::server
