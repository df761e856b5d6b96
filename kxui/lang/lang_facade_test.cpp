// The placeholder rule, as both localization classes apply it.
#include "kxui/lang/detail/lang_facade.h"

#include "kxui/testing/test_runtime.h"

namespace kxui::detail {
namespace {

Variant list(std::vector<Variant> values, int32_t lower = 0) {
  return Variant(Array::of(std::move(values), lower));
}

TEST(FillPlaceholdersTest, FillsPlaceholdersInAscendingOrder) {
  const Variant eleven = list({"a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k"});
  const std::tuple<const char*, const char*, Variant, const char*> cases[] = {
      {"direct list", "Item @1 of @2", list({3, 7}), "Item 3 of 7"},
      {"wrapped in the holder", "Item @1 of @2", list({list({3, 7})}), "Item 3 of 7"},
      {"@10 is hit by @1 first", "@1|@2|@10|@11", eleven, "a|b|a0|a1"},
      {"a value holding @2 is filled again", "@1 and @2", list({"x@2", "y"}), "xy and y"},
      {"lower bound 1 shifts the numbering", "@1 @2 @3", list({"a", 2.5}, 1), "@1 a 2.5"},
      {"no arguments", "Item @1", Variant::missing(), "Item @1"}};
  for (const auto& [name, text, args, expected] : cases) {
    EXPECT_EQ(fill_placeholders(text, args), expected) << name;
  }
}

TEST(FillPlaceholdersTest, RefusesWhatIsNoArgumentList) {
  const std::tuple<const char*, Variant, int32_t> cases[] = {
      {"a Null value, after @1 was filled", list({"a", Variant::null()}), 94},
      {"not an array", Variant("a"), 13},
      {"two dimensions", Variant(Array({0, 2}, {0, 2})), 9},
      {"upper bound needs a 17-bit counter", Variant(Array(0, 32767)), 6}};
  for (const auto& [name, args, number] : cases) {
    SCOPED_TRACE(name);
    EXPECT_FAILURE(number, fill_placeholders("@1 @2", args));
  }
}

}  // namespace
}  // namespace kxui::detail
