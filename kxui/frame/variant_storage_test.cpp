// How a Variant keeps its value: texts of every length, shared objects and copied arrays
// survive copies, moves and assignments between every pair of kinds.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "kxui/frame/variant.h"

namespace kxui {
namespace {

// One value of every kind, texts on both sides of the length kept inside the Variant.
std::vector<std::pair<std::string, Variant>> samples() {
  return {
      {"empty", Variant()},
      {"null", Variant::null()},
      {"missing", Variant::missing()},
      {"boolean", Variant(true)},
      {"int16", Variant(int16_t{-7})},
      {"int32", Variant(int32_t{123456})},
      {"double", Variant(2.5)},
      {"currency", Variant(Currency::from_scaled(-12345))},
      {"date", Variant(Date::from_civil(2024, 2, 29, 13, 5, 9))},
      {"no text", Variant("")},
      {"22 characters", Variant(std::string(22, 'a'))},
      {"23 characters", Variant(std::string(23, 'b'))},
      {"long text with a nul", Variant(std::string("long\0text", 9) + std::string(100, 'c'))},
      {"object", Variant(std::make_shared<Object>())},
      {"nothing", Variant(ObjectPtr())},
      {"array", Variant(Array::of({1, "two", std::string(40, 'x')}))},
  };
}

// Same kind and, except for Null, equal.
void expect_same(const Variant& a, const Variant& b) {
  EXPECT_EQ(a.kind(), b.kind());
  if (!a.is_null()) {
    EXPECT_TRUE(a == b);
  }
}

TEST(VariantStorage, CopiesMovesAndAssignmentsKeepEveryValue) {
  static_assert(sizeof(Variant) <= 24);
  const auto values = samples();
  for (const auto& [name, original] : values) {
    SCOPED_TRACE(name);
    Variant copy(original);
    expect_same(copy, original);
    Variant moved(std::move(copy));
    expect_same(moved, original);
    for (const auto& [other_name, other] : values) {
      SCOPED_TRACE(other_name);
      Variant target(other);
      target = original;
      expect_same(target, original);
      Variant moved_into(other);
      moved_into = Variant(original);
      expect_same(moved_into, original);
    }
    Variant self(original);
    const Variant& alias = self;
    self = alias;
    expect_same(self, original);
  }
}

TEST(VariantStorage, TextsOfEveryLengthReadBackWhole) {
  for (size_t length : {0, 1, 21, 22, 23, 24, 64, 100000}) {
    SCOPED_TRACE(length);
    std::string text;
    for (size_t i = 0; i < length; ++i) text += static_cast<char>('a' + i % 26);
    const Variant v(text);
    EXPECT_EQ(v.get_string(), text);
    EXPECT_EQ(v.to_string(), text);
    const Variant copy = v;
    EXPECT_EQ(copy.get_string(), text);
    EXPECT_EQ(Variant(std::string_view(text)).get_string(), text);
  }
}

// Long texts are shared by copies: every copy outlives the others whatever the order.
TEST(VariantStorage, SharedTextsLiveAsLongAsAnyCopy) {
  auto* first = new Variant(std::string(200, 'q'));
  std::vector<Variant> copies(5, *first);
  delete first;
  copies.erase(copies.begin() + 2);
  for (const Variant& v : copies) EXPECT_EQ(v.get_string(), std::string(200, 'q'));
  copies.front() = Variant(1);
  EXPECT_EQ(copies.back().to_string(), std::string(200, 'q'));
}

TEST(VariantStorage, MovedFromValuesKeepTheirKindAndStayUsable) {
  struct Case {
    const char* name;
    Variant value;
    std::string text_after;  // what to_string gives after the move, when it converts
  };
  Case cases[] = {
      {"long text", Variant(std::string(50, 'm')), ""},
      {"short text", Variant("short"), "short"},
      {"number", Variant(5), "5"},
  };
  for (Case& c : cases) {
    SCOPED_TRACE(c.name);
    const Variant::Kind kind = c.value.kind();
    Variant taken(std::move(c.value));
    EXPECT_EQ(c.value.kind(), kind);
    EXPECT_EQ(c.value.to_string(), c.text_after);
  }
  Variant array(Array::of({1, 2}));
  Variant taken(std::move(array));
  EXPECT_TRUE(array.is_array());
  EXPECT_EQ(array.array().size(), 0u);
  array.array().redim_preserve(0);  // usable again
  EXPECT_EQ(taken.array().size(), 2u);

  auto obj = std::make_shared<Object>();
  Variant object(obj);
  Variant holder(std::move(object));
  EXPECT_TRUE(object.is_object());
  EXPECT_EQ(object.to_object(), nullptr);
  EXPECT_EQ(holder.to_object(), obj);
  EXPECT_EQ(obj.use_count(), 2);
}

TEST(VariantStorage, ObjectsAreSharedAndArraysCopied) {
  auto obj = std::make_shared<Object>();
  {
    Variant a(obj);
    Variant b = a;
    EXPECT_EQ(obj.use_count(), 3);
    b = Variant(2);
    EXPECT_EQ(obj.use_count(), 2);
  }
  EXPECT_EQ(obj.use_count(), 1);

  Variant nested(Array::of({Variant(Array::of({std::string(30, 'n')})), obj}));
  Variant copy = nested;
  copy.array().at(0).array().at(0) = "changed";
  EXPECT_EQ(nested.array().at(0).array().at(0).get_string(), std::string(30, 'n'));
  EXPECT_EQ(copy.array().at(1).to_object(), obj);
  EXPECT_EQ(obj.use_count(), 3);

  // A value taken from inside the Variant it replaces.
  Variant outer(Array::of({std::string(30, 'i'), 2}));
  outer = outer.array().at(0);
  EXPECT_EQ(outer.get_string(), std::string(30, 'i'));
  // Moved out of the array it replaces: the array must outlive the move.
  Variant moved(Array::of({Variant(Array::of({std::string(30, 'm'), 3})), 4}));
  moved = std::move(moved.array().at(0));
  ASSERT_TRUE(moved.is_array());
  EXPECT_EQ(moved.array().at(0).get_string(), std::string(30, 'm'));
  EXPECT_EQ(moved.array().size(), 2u);
}

}  // namespace
}  // namespace kxui
