#include "kxui/testing/test_runtime.h"

#include "kxui/business/progids.h"
#include "kxui/frame/facade.h"
#include "kxui/testing/fault_injection.h"

namespace kxui::testing {

void RecordingErrorInfo::SetNumber(int32_t n) {
  if (throw_on_write) throw std::runtime_error("error object broken");
  number = n;
}
void RecordingErrorInfo::SetDescription(std::string d) {
  if (throw_on_write) throw std::runtime_error("error object broken");
  description = std::move(d);
}
void RecordingErrorInfo::SetSource(std::string s) {
  if (throw_on_write) throw std::runtime_error("error object broken");
  source = std::move(s);
}
std::string RecordingErrorInfo::GetMessageText(const SessionPtr&, int32_t message_number,
                                               const std::string& english, const Array& params) {
  fault::point("KxError::GetMessageText");
  message_numbers_asked.push_back(message_number);
  params_count_asked = static_cast<int32_t>(params.size());
  return translation.empty() ? english : translation;
}

void RecordingLog::SetEventType(int32_t t) {
  fault::point("NTLog::SetEventType");
  type = t;
}
void RecordingLog::SetMessage(std::string text) {
  fault::point("NTLog::SetMessage");
  message = std::move(text);
}
void RecordingLog::WriteEntry() {
  fault::point("NTLog::WriteEntry");
  if (throw_on_write) throw Failure(5, "NTLog", "log unavailable");
  written.push_back({type, message});
}

FakeBusinessObject::FakeBusinessObject() : error_(std::make_shared<RecordingErrorInfo>()) {}

void FakeBusinessObject::fail_with(int32_t number, std::string source, std::string description) {
  error_->number = number;
  error_->source = std::move(source);
  error_->description = std::move(description);
}

namespace {

// Records the factory path, then creates through the runtime.
class RecordingFactory : public ClassFactory {
 public:
  explicit RecordingFactory(std::weak_ptr<TestEnv> env) : env_(std::move(env)) {}
  void CreateObjectByProgID(const std::string& progid, int32_t reserved, ObjectPtr& out) override {
    auto env = env_.lock();
    if (!env) fail(err::kCannotCreateObject, progid);
    EXPECT_EQ(reserved, 0) << "the factory's second argument is always 0";
    fault::point("ClassFactory::CreateObjectByProgID");
    env->created.push_back("factory:" + progid);
    env->in_factory = true;
    try {
      out = env->runtime->Create(progid);
    } catch (...) {
      env->in_factory = false;
      throw;
    }
    env->in_factory = false;
  }

 private:
  std::weak_ptr<TestEnv> env_;
};

}  // namespace

std::shared_ptr<TestEnv> TestEnv::make() {
  auto env = std::make_shared<TestEnv>();
  std::weak_ptr<TestEnv> weak = env;
  env->runtime->Register(kClassFactoryClass, [weak]() -> ObjectPtr {
    return std::make_shared<RecordingFactory>(weak);
  });
  env->runtime->Register(progid::KxError, [weak]() -> ObjectPtr {
    auto e = weak.lock();
    if (!e || e->fail_error_creation) fail(err::kCannotCreateObject, progid::KxError);
    auto info = std::make_shared<RecordingErrorInfo>();
    e->error_infos.push_back(info);
    return info;
  });
  env->runtime->Register(progid::NTLog, [weak]() -> ObjectPtr {
    fault::point("create NTLog");
    auto e = weak.lock();
    return e ? e->log : nullptr;
  });
  return env;
}

void TestEnv::provide(std::string_view name, ObjectPtr object) {
  provide_fn(name, [object] { return object; });
}

void TestEnv::provide_fn(std::string_view name, std::function<ObjectPtr()> make) {
  std::string key(name);
  // `this` outlives the registration: the runtime belongs to the env.
  runtime->Register(name, [this, key, make = std::move(make)]() -> ObjectPtr {
    fault::point(key.c_str());
    if (!in_factory) created.push_back("direct:" + key);
    return make();
  });
}

int TestEnv::count(std::string_view name) const {
  int n = 0;
  for (const auto& c : created) {
    auto colon = c.find(':');
    if (c.compare(colon + 1, std::string::npos, name) == 0) ++n;
  }
  return n;
}

std::shared_ptr<BasicSession> make_session() { return std::make_shared<BasicSession>(); }

}  // namespace kxui::testing
