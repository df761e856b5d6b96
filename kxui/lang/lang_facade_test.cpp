// The placeholder rule, as both localization classes apply it.
#include "kxui/lang/detail/lang_facade.h"

#include <gtest/gtest.h>

#include "kxui/testing/test_runtime.h"

namespace kxui {
namespace {

class Probe : public detail::LangFacade {
 public:
  explicit Probe(std::shared_ptr<Runtime> rt) : LangFacade("UIProbe", std::move(rt)) {}
  using LangFacade::InsertParams;
};

Variant list(std::vector<Variant> values, int32_t lower = 0) {
  return Variant(Array::of(std::move(values), lower));
}

TEST(InsertParamsTest, FillsPlaceholdersInAscendingOrder) {
  auto env = testing::TestEnv::make();
  Probe probe(env->runtime);
  const Variant eleven = list({"a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k"});
  const struct {
    const char* name;
    const char* text;
    Variant args;
    const char* expected;
  } cases[] = {
      {"direct list", "Item @1 of @2", list({3, 7}), "Item 3 of 7"},
      {"wrapped in the holder", "Item @1 of @2", list({list({3, 7})}), "Item 3 of 7"},
      {"@10 is hit by @1 first", "@1|@2|@10|@11", eleven, "a|b|a0|a1"},
      {"a value holding @2 is filled again", "@1 and @2", list({"x@2", "y"}), "xy and y"},
      {"exact tags, inserted text not rescanned", "@1 @01 @ 1", list({"@1@1"}), "@1@1 @01 @ 1"},
      {"lower bound 1 shifts the numbering", "@1 @2 @3", list({"a", 2.5}, 1), "@1 a 2.5"},
      {"no arguments", "Item @1", Variant::missing(), "Item @1"},
      {"first element missing", "@1 @2", list({Variant::missing(), "x"}), "@1 @2"},
      {"holder of an empty list", "Item @1", list({Variant(Array(0, -1))}), "Item @1"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(probe.InsertParams(c.text, c.args), c.expected);
  }
  // The counter reaches the top of its 16-bit range: earlier elements put their own tag
  // back, so "@3", "@32", ... leave "@32767" standing until the last index's turn.
  Array high(0, 32766);
  for (int32_t i = 0; i < 32766; ++i) high.at(i) = Variant("@" + std::to_string(i + 1));
  high.at(32766) = Variant("last");
  EXPECT_EQ(probe.InsertParams("[@32767]", Variant(high)), "[last]");
  EXPECT_EQ(probe.Error()->Number(), 0) << "none of these is a failure";
}

TEST(InsertParamsTest, FailureRecordsAndReturnsTheInputUnchanged) {
  auto env = testing::TestEnv::make();
  Probe probe(env->runtime);
  const struct {
    const char* name;
    Variant args;
    int32_t number;
  } cases[] = {
      {"a Null value, after @1 was filled", list({"a", Variant::null()}), 94},
      {"not an array", Variant("a"), 13},
      {"two dimensions", Variant(Array({0, 2}, {0, 2})), 9},
      {"a one-element list at index 1 is no holder", list({list({"a"})}, 1), 13},
      {"upper bound needs a 17-bit counter", Variant(Array(0, 32767)), 6},
      {"lower bound below the 16-bit range", Variant(Array(-32769, -32769)), 6},
      {"wrapped list too long", list({Variant(Array(1, 40000))}), 6},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(probe.InsertParams("@1 @2", c.args), "@1 @2");
    EXPECT_THAT(probe.Error(), testing::ErrorIs(c.number, "UILang::InsertParams "));
  }
}

}  // namespace
}  // namespace kxui
