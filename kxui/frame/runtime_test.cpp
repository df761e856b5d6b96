#include "kxui/frame/runtime.h"

#include <gtest/gtest.h>

#include "kxui/frame/byref.h"
#include "kxui/frame/session.h"
#include "kxui/testing/test_runtime.h"

namespace kxui {
namespace {

struct Thing : Object {};

// A late-bound object with one property and one method.
struct Counter : Dispatch {
  int32_t value = 0;
  int32_t GetIDOfName(std::string_view name) override {
    if (name == "Value") return 1;
    if (name == "Add") return 2;
    fail(err::kNoSuchMember, "Counter", name);
  }
  Variant Invoke(int32_t id, std::span<Variant> args) override {
    if (id == 1) return Variant(value);
    if (id == 2) {
      value += args[0].to_int32();
      args[1] = Variant(value);  // out argument
      return Variant(true);
    }
    fail(err::kNoSuchMember);
  }
};

TEST(Runtime, CreatesByNameCaseInsensitivelyAndForgetsOnUnregister) {
  Runtime rt;
  rt.Register("KxThing03.Thing", [] { return std::make_shared<Thing>(); });
  auto a = rt.Create("kxthing03.THING");
  auto b = rt.Create("KxThing03.Thing");
  EXPECT_NE(a, nullptr);
  EXPECT_NE(a, b) << "every creation is a new object";

  EXPECT_TRUE(rt.Unregister("KXTHING03.thing"));
  EXPECT_FALSE(rt.Unregister("KxThing03.Thing"));
  EXPECT_FAILURE(429, rt.Create("KxThing03.Thing"));
  rt.Register("KxNull03.Null", [] { return ObjectPtr(); });
  EXPECT_FAILURE(429, rt.Create("KxNull03.Null"));
}

TEST(Runtime, MissingInterfaceIs438AndNothingIs91) {
  ObjectPtr thing = std::make_shared<Thing>();
  EXPECT_FAILURE(438, query<Session>(thing));
  EXPECT_FAILURE(91, query<Session>(nullptr));
  EXPECT_EQ(query<Thing>(thing), thing);
}

// A thread remembers the last name it created and the last object it cast: replacing or
// removing the creator, another runtime under the same name, a name differing only in
// case, and another object (or type) at a remembered place must each be seen.
struct Named : Object {
  explicit Named(int n) : n(n) {}
  int n;
};
struct Other : Thing {};

int created(const Runtime& rt, std::string_view name) { return create_as<Named>(rt, name)->n; }

TEST(Runtime, RepeatedCreationSeesEveryChangeOfTheTable) {
  Runtime rt, other;
  rt.Register("Kx.Named", [] { return std::make_shared<Named>(1); });
  other.Register("Kx.Named", [] { return std::make_shared<Named>(2); });
  EXPECT_EQ(created(rt, "Kx.Named"), 1);
  EXPECT_EQ(created(rt, "Kx.Named"), 1);
  EXPECT_EQ(created(other, "Kx.Named"), 2) << "another runtime, the same name";
  EXPECT_EQ(created(rt, "KX.NAMED"), 1);
  rt.Register("kx.named", [] { return std::make_shared<Named>(3); });
  EXPECT_EQ(created(rt, "Kx.Named"), 3) << "a replaced creator";
  rt.Register("Kx.Unrelated", [] { return std::make_shared<Named>(4); });
  EXPECT_EQ(created(rt, "Kx.Named"), 3) << "the table grew (and may have rehashed)";
  for (int i = 0; i < 100; ++i) rt.Register("Kx.Filler" + std::to_string(i), [] { return ObjectPtr(); });
  EXPECT_EQ(created(rt, "Kx.Named"), 3);
  ASSERT_TRUE(rt.Unregister("Kx.Named"));
  EXPECT_FAILURE(429, rt.Create("Kx.Named"));
  {
    Runtime short_lived;
    short_lived.Register("Kx.Named", [] { return std::make_shared<Named>(5); });
    EXPECT_EQ(created(short_lived, "Kx.Named"), 5);
  }
  Runtime next;  // may reuse the address of the one before
  EXPECT_FAILURE(429, next.Create("Kx.Named"));
}

TEST(Runtime, RepeatedCastsSeeAnotherObjectOrType) {
  auto shared = std::make_shared<Other>();
  Runtime rt;
  rt.Register("Kx.Shared", [shared] { return shared; });
  rt.Register("Kx.Fresh", [] { return std::make_shared<Thing>(); });
  for (int i = 0; i < 3; ++i) {
    auto t = create_as<Thing>(rt, "Kx.Shared");
    EXPECT_EQ(t.get(), static_cast<Thing*>(shared.get()));
    EXPECT_EQ(t.use_count(), 3) << "the test's, the creator's and this one: no reference left behind";
    EXPECT_NE(create_as<Other>(rt, "Kx.Shared"), nullptr);
  }
  EXPECT_FAILURE(438, create_as<Other>(rt, "Kx.Fresh"));  // a Thing is no Other
  EXPECT_FAILURE(438, create_as<Session>(rt, "Kx.Shared"));
  for (int i = 0; i < 3; ++i) {
    // A fresh object may land where the last one was freed: the type still decides.
    auto fresh = create_as<Thing>(rt, "Kx.Fresh");
    EXPECT_EQ(dynamic_cast<Other*>(fresh.get()), nullptr);
    EXPECT_FAILURE(438, create_as<Other>(rt, "Kx.Fresh"));
  }
}

TEST(Runtime, DispatchByNameAndIdWritesBackArguments) {
  auto counter = std::make_shared<Counter>();
  std::vector<Variant> args{Variant(int32_t{5}), Variant()};
  EXPECT_TRUE(counter->InvokeByName("Add", args).to_bool());
  EXPECT_EQ(args[1].to_int32(), 5);
  EXPECT_EQ(counter->Invoke(1, {}).to_int32(), 5);
  EXPECT_FAILURE(438, counter->InvokeByName("Subtract", {}));
}

TEST(ByRef, BindsToTheCallersVariableOrToAPrivateDefault) {
  auto write = [](ByRef<Variant> v = {}) {
    bool was_missing = v->is_missing();
    *v = Variant(int32_t{7});
    return was_missing;
  };
  EXPECT_TRUE(write());
  Variant mine("x");
  EXPECT_FALSE(write(mine));
  EXPECT_EQ(mine.to_int32(), 7);

  auto count = [](ByRef<int16_t> n = ByRef<int16_t>::with_default(3)) { return *n; };
  EXPECT_EQ(count(), 3);
  int16_t five = 5;
  EXPECT_EQ(count(five), 5);
}

}  // namespace
}  // namespace kxui
