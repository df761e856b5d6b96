#include "kxui/frame/facade.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

#include "kxui/business/progids.h"
#include "kxui/testing/test_runtime.h"

namespace kxui {
namespace {

using testing::ErrorIs;
using testing::FakeBusinessObject;
using testing::TestEnv;

// A façade whose one operation runs whatever the test hands it.
class Probe : public Facade {
 public:
  explicit Probe(std::shared_ptr<Runtime> rt) : Facade("UIProbe", std::move(rt)) {}
  bool Run(const std::function<bool(Probe&)>& body, Track track = Track::kSuccess) noexcept {
    return guarded("UIProbe::Run", false, [&] { return body(*this); }, track);
  }
  bool Success() const { return success_; }
  using Facade::create;
  using Facade::LogError;
  using Facade::raise_business_error;
  using Facade::raise_validation;
};

struct FakeThing : FakeBusinessObject {
  bool ok = true;
};

class FacadeTest : public ::testing::Test {
 protected:
  std::shared_ptr<TestEnv> env = TestEnv::make();
};

TEST_F(FacadeTest, BusinessFailureIsRecordedWithBothSources) {
  auto thing = std::make_shared<FakeThing>();
  thing->fail_with(1234, "KxThing", "thing refused");
  env->provide("KxThing03.Thing", thing);
  Probe probe(env->runtime);

  bool result = probe.Run([](Probe& p) {
    auto t = p.create<FakeThing>("KxThing03.Thing");
    p.raise_business_error(*t);
    return true;
  });

  EXPECT_FALSE(result);
  EXPECT_FALSE(probe.Success());
  EXPECT_THAT(probe.Error(), ErrorIs(1234, "UIProbe::Run KxThing"));
  EXPECT_EQ(probe.Error()->Description(), "thing refused");
  EXPECT_EQ(env->created.back(), "factory:KxThing03.Thing");
}

TEST_F(FacadeTest, ErrorStaysAfterSuccessAndIsPerInstance) {
  Probe first(env->runtime);
  Probe second(env->runtime);
  EXPECT_NE(first.Error(), second.Error());

  EXPECT_FALSE(first.Run([](Probe&) -> bool { throw Failure(42, "Src", "boom"); }));
  EXPECT_TRUE(first.Run([](Probe&) { return true; }));
  EXPECT_TRUE(first.Success());
  EXPECT_THAT(first.Error(), ErrorIs(42, "UIProbe::Run Src"));
  EXPECT_EQ(first.Error(), first.Error()) << "Error is the same object every time";
  EXPECT_EQ(second.Error()->Number(), 0);
}

TEST_F(FacadeTest, FailureValueWinsOverAResultAlreadySet) {
  Probe probe(env->runtime);
  bool result = false;
  EXPECT_FALSE(probe.Run([&](Probe&) -> bool {
    result = true;
    throw Failure(5, "", "late failure");
  }));
  // Success untouched by an operation that does not maintain it.
  probe.Run([](Probe&) { return true; });
  EXPECT_TRUE(probe.Success());
  probe.Run([](Probe&) -> bool { throw Failure(5, "", "x"); }, Track::kNone);
  EXPECT_TRUE(probe.Success());
}

TEST_F(FacadeTest, EveryExceptionKindBecomesARecordedFailure) {
  Probe probe(env->runtime);
  struct Case {
    std::function<bool(Probe&)> body;
    int32_t number;
    std::string description;
  };
  const Case cases[] = {
      {[](Probe&) -> bool { throw std::bad_alloc(); }, 7, "Out of memory"},
      {[](Probe&) -> bool { throw std::runtime_error("disk on fire"); }, 440, "disk on fire"},
      {[](Probe&) -> bool { throw 17; }, 51, "Internal error"},
      {[](Probe& p) { return p.create<FakeThing>("Kx.Nowhere") != nullptr; }, 429,
       "Component can't create object (Kx.Nowhere)"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.number);
    EXPECT_FALSE(probe.Run(c.body));
    EXPECT_EQ(probe.Error()->Number(), c.number);
    EXPECT_EQ(probe.Error()->Description(), c.description);
  }
  EXPECT_EQ(probe.Error()->Source(), "UIProbe::Run Kx.Nowhere");
}

TEST_F(FacadeTest, ValidationUsesMessageNumberBaseAndBlankSource) {
  Probe probe(env->runtime);
  env->last_error()->translation = "Bestellmenge ist keine gültige Zahl.";
  auto session = testing::make_session();
  bool r = probe.Run([&](Probe& p) -> bool { p.raise_validation(session, msg::kInvalidFastAddQty); });
  EXPECT_FALSE(r);
  EXPECT_EQ(probe.Error()->Number(), -2147209902);
  EXPECT_EQ(probe.Error()->Source(), "UIProbe::Run ");
  EXPECT_EQ(probe.Error()->Description(), "Bestellmenge ist keine gültige Zahl.");
  EXPECT_EQ(env->last_error()->message_numbers_asked, std::vector<int32_t>{11602});
  EXPECT_EQ(env->last_error()->params_count_asked, 0);
}

TEST_F(FacadeTest, LogErrorWritesTheRecordedFailureAndNeverEscapes) {
  Probe probe(env->runtime);
  probe.Run([](Probe&) -> bool { throw Failure(9, "Biz", "went wrong"); });
  probe.LogError();
  ASSERT_EQ(env->log->written.size(), 1u);
  EXPECT_EQ(env->log->written[0].type, 1);
  EXPECT_EQ(env->log->written[0].message, "UIProbe::Run Biz :: went wrong");

  env->log->throw_on_write = true;
  probe.LogError();
  env->last_error()->throw_on_write = true;
  EXPECT_FALSE(probe.Run([](Probe&) -> bool { throw Failure(1, "", ""); }));
}

TEST_F(FacadeTest, CreationFailureIsRecordedAsClassInitialize) {
  env->fail_error_creation = true;
  Probe probe(env->runtime);
  ASSERT_NE(probe.Error(), nullptr) << "a built-in error object takes the failed one's place";
  EXPECT_EQ(probe.Error()->Number(), 429);
  EXPECT_EQ(probe.Error()->Source(), "UIProbe::Class_Initialize KxUtility03.KxError");
}

TEST_F(FacadeTest, BusinessObjectsDieWithTheCall) {
  std::weak_ptr<FakeThing> seen;
  env->provide_fn("KxThing03.Thing", [&]() -> ObjectPtr {
    auto t = std::make_shared<FakeThing>();
    seen = t;
    return t;
  });
  Probe probe(env->runtime);
  for (bool fails : {false, true}) {
    SCOPED_TRACE(fails);
    probe.Run([&](Probe& p) {
      auto t = p.create<FakeThing>("KxThing03.Thing");
      if (fails) p.raise_business_error(*t);
      return true;
    });
    EXPECT_TRUE(seen.expired());
  }
}

}  // namespace
}  // namespace kxui
