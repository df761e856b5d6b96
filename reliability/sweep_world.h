// The world a sweep runs operations in: every business object, service and creation the
// library reaches is a double that passes through testing::fault::point, answers
// plausibly (Boolean members answer True on the success path, False on the refusal
// path), and is remembered so the sweep can check it died with the call.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <vector>

#include "kxui/frame/facade.h"
#include "kxui/frame/recordset.h"
#include "kxui/frame/services.h"
#include "kxui/frame/session.h"
#include "kxui/testing/fake_services.h"
#include "kxui/testing/fault_injection.h"
#include "kxui/testing/test_runtime.h"

namespace kxui::sweep {

using testing::fault::point;

// What a refusing business object reports.
inline constexpr int32_t kRefusedNumber = 0x7001;
inline constexpr const char* kRefusedSource = "FakeBusiness";

// The error object of every fake business object.
class FakeError : public ErrorInfo {
 public:
  int32_t Number() const override;
  void SetNumber(int32_t) override {}
  std::string Description() const override;
  void SetDescription(std::string) override {}
  std::string Source() const override;
  void SetSource(std::string) override {}
  std::string GetMessageText(const SessionPtr& session, int32_t message_number,
                             const std::string& english, const Array& params) override;
};

class FakeErrorSource : public virtual ErrorSource {
 public:
  ErrorInfoPtr GetError() override;
};

// The caller's session; every member read is a call out.
class SweepSession : public BasicSession {
 public:
  int32_t Value() const override;
  int32_t LocaleID() const override;
  int32_t TimeZoneID() const override;
  std::string CurrencyCode() const override;
  std::string LangCode() const override;
  std::string CountryCode() const override;
  int32_t EboID() const override;
  int32_t BorgID() const override;
  int32_t SysUserID() const override;
};

struct World {
  World();
  ~World();
  World(const World&) = delete;
  World& operator=(const World&) = delete;
  static World& current();

  // Arguments the generated calls pass (reset before each call).
  void reset_arguments();
  int32_t number = 1;
  bool flag = true;
  std::string text = "1";
  Variant variant{int32_t{1}};
  Date date = Date::from_civil(2024, 3, 5, 10, 30);
  Currency money = Currency::from_double(12.5);
  Array array;
  Variant custom;
  std::string out_text;
  int32_t out_number = 0;
  int16_t out_short = 0;
  RecordsetPtr out_recordset;
  Variant inout_variant;
  Variant out_variant;  // by-reference Variants other than p_CustomData
  std::string doc_type;

  // The by-reference arguments other than p_CustomData, described.
  std::string describe_outs() const;

  // What Boolean members answer.
  bool answer_bool = true;
  // Columns of the record sets the fakes answer with; the sweep learns them from the
  // operations' own "item not found" failures.
  std::vector<std::string> columns;
  RecordsetPtr recordset();
  Variant recordset_variant() { return Variant(recordset()); }

  // Every object the doubles handed out, to check that a call released them.
  std::vector<std::weak_ptr<Object>> made;
  std::vector<std::string> made_types;
  template <class T>
  std::shared_ptr<T> remember(std::shared_ptr<T> p) {
    made.push_back(p);
    made_types.push_back(typeid(*p).name());
    return p;
  }

  std::shared_ptr<testing::TestEnv> env = testing::TestEnv::make();
  testing::FakeServices services = testing::FakeServices::install(*env);
  std::shared_ptr<SweepSession> session = std::make_shared<SweepSession>();
};

template <class T>
std::shared_ptr<T> remember(std::shared_ptr<T> p) {
  return World::current().remember(std::move(p));
}

// A fake of interface T (generated for every business interface).
template <class T>
std::shared_ptr<T> make_fake();

template <class T>
struct is_shared_ptr : std::false_type {};
template <class T>
struct is_shared_ptr<std::shared_ptr<T>> : std::true_type {
  using element = T;
};

// The answer of a fake member: counts the call (which may throw), then the world's value.
template <class R>
R answer(const char* member) {
  point(member);
  World& w = World::current();
  if constexpr (std::is_same_v<R, bool>) {
    return w.answer_bool;
  } else if constexpr (std::is_same_v<R, RecordsetPtr>) {
    return w.recordset();
  } else if constexpr (std::is_same_v<R, std::string>) {
    return "1";
  } else if constexpr (std::is_same_v<R, Variant>) {
    return Variant(int32_t{1});
  } else if constexpr (std::is_arithmetic_v<R>) {
    return R{1};
  } else if constexpr (std::is_same_v<R, Currency>) {
    return Currency::from_double(1);
  } else if constexpr (std::is_same_v<R, Date>) {
    return w.date;
  } else if constexpr (is_shared_ptr<R>::value) {
    return make_fake<typename is_shared_ptr<R>::element>();
  } else {
    return R{};
  }
}
inline void touch(const char* member) { point(member); }

// Late-bound objects (the supplier link, the BorgUser object): every member answers 1.
class FakeDispatch : public Dispatch {
 public:
  int32_t GetIDOfName(std::string_view name) override;
  Variant Invoke(int32_t dispid, std::span<Variant> args) override;
};

// ------------------------------------------------------------------ operations
// What one call of an operation did.
struct Outcome {
  std::string result;       // the returned value, described
  bool failure_value = false;  // the operation's failure value was returned
  std::optional<bool> success;  // Success, for classes that keep it
  int32_t number = 0;       // Error after the call (reset before it)
  std::string source;
  std::string description;
  std::string custom;       // p_CustomData after the call, described
  bool not_called = false;  // building the arguments failed: the operation never ran
  std::string outs;         // the other by-reference arguments after the call, described
};

std::string describe(const Variant& v);
inline std::string describe(bool v) { return v ? "True" : "False"; }
inline std::string describe(const std::string& v) { return '"' + v + '"'; }
std::string describe(const RecordsetPtr& rs);
template <class T>
std::string describe(const std::shared_ptr<T>& p) {
  return p ? "object" : "Nothing";
}
template <class T>
  requires std::is_arithmetic_v<T>
std::string describe(T v) {
  return std::to_string(v);
}

template <class T>
bool is_failure_value(const T& v) {
  if constexpr (std::is_same_v<T, Variant>) {
    return v.is_empty();
  } else if constexpr (std::is_same_v<T, std::string>) {
    return v.empty();
  } else if constexpr (is_shared_ptr<T>::value) {
    return !v;
  } else {
    return v == T{};
  }
}

// Called right before and right after the operation itself (not the sweep's own work
// around it), for a sweep that watches only what the operation does.
struct CallHooks {
  void (*enter)() = nullptr;
  void (*leave)() = nullptr;
};
inline CallHooks g_call_hooks;

// One façade instance with one operation bound to it.
class Instance {
 public:
  virtual ~Instance() = default;
  virtual Outcome call(World& w) = 0;
};

struct Operation {
  std::string cls;
  std::string name;
  std::function<std::unique_ptr<Instance>(World&)> make;
};

// Clears the façade's error object so that each call's outcome stands alone.
void clear_error(const ErrorInfoPtr& e);

template <class UI, class F>
class InstanceOf : public Instance {
 public:
  InstanceOf(World& w, F f) : ui_(std::make_shared<UI>(w.env->runtime)), f_(std::move(f)) {}
  Outcome call(World& w) override {
    clear_error(ui_->Error());
    w.reset_arguments();
    Outcome o;
    // The operations are noexcept: anything caught here was thrown while the caller's
    // arguments were being built, before the operation ran.
    try {
      if constexpr (std::is_void_v<decltype(f_(w, *ui_))>) {
        if (g_call_hooks.enter) g_call_hooks.enter();
        f_(w, *ui_);
        if (g_call_hooks.leave) g_call_hooks.leave();
        o.result = "(nothing)";
        o.failure_value = true;  // a Sub has no failure value to get wrong
      } else {
        if (g_call_hooks.enter) g_call_hooks.enter();
        auto r = f_(w, *ui_);
        if (g_call_hooks.leave) g_call_hooks.leave();
        o.result = describe(r);
        o.failure_value = is_failure_value(r);
      }
    } catch (const std::bad_alloc&) {
      if (g_call_hooks.leave) g_call_hooks.leave();
      o.not_called = true;
      return o;
    }
    if constexpr (requires { ui_->Success(); }) o.success = ui_->Success();
    ErrorInfoPtr e = ui_->Error();
    o.number = e->Number();
    o.source = e->Source();
    o.description = e->Description();
    o.custom = describe(w.custom);
    o.outs = w.describe_outs();
    return o;
  }

 private:
  std::shared_ptr<UI> ui_;
  F f_;
};

template <class UI, class F>
Operation operation(const char* cls, const char* name, F f) {
  return Operation{cls, name, [f](World& w) -> std::unique_ptr<Instance> {
                     return std::make_unique<InstanceOf<UI, F>>(w, f);
                   }};
}

// Every public operation of every class.
std::vector<Operation> all_operations();

}  // namespace kxui::sweep
