// The placeholder rule, as both localization classes apply it.
#include "kxui/lang/detail/lang_facade.h"

#include <chrono>
#include <random>

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

// The rule as written: one whole-text pass per argument, in ascending order.
std::string fill_one_pass_per_argument(std::string text, const std::vector<std::string>& values,
                                       int32_t lower) {
  for (size_t i = 0; i < values.size(); ++i) {
    const std::string tag = "@" + std::to_string(lower + static_cast<int32_t>(i) + 1);
    std::string out;
    size_t from = 0;
    for (size_t pos = text.find(tag); pos != std::string::npos; pos = text.find(tag, from)) {
      out.append(text, from, pos - from).append(values[i]);
      from = pos + tag.size();
    }
    text = out.append(text, from);
  }
  return text;
}

// Tags that meet across a value's edges ("@" + "12"), negative tags, leading zeros,
// values that hold tags: random texts over a small alphabet agree with the rule.
TEST(FillPlaceholdersTest, AgreesWithOnePassPerArgument) {
  std::mt19937 rng(11);
  const std::string alphabet = "@@@-0112234x";
  auto random_text = [&](size_t max_len) {
    std::string s(rng() % (max_len + 1), ' ');
    for (char& c : s) c = alphabet[rng() % alphabet.size()];
    return s;
  };
  for (int round = 0; round < 20000; ++round) {
    const int32_t lower = static_cast<int32_t>(rng() % 5) - 3;
    std::vector<std::string> values(1 + rng() % 14);
    std::vector<Variant> args;
    for (auto& v : values) args.emplace_back(v = random_text(4));
    const std::string text = random_text(24);
    ASSERT_EQ(fill_placeholders(text, list(args, lower)),
              fill_one_pass_per_argument(text, values, lower))
        << "text \"" << text << "\", lower bound " << lower;
  }
}

// 32,000 arguments over a 76 KB text of mostly "@": one pass per argument took 37 s.
TEST(FillPlaceholdersTest, CostGrowsWithTextPlusArguments) {
  std::vector<Variant> args;
  std::string text;
  for (int i = 1; i <= 32000; ++i) args.emplace_back("v" + std::to_string(i));
  while (text.size() < 76000) {
    text += std::string(49, '@') + std::to_string(text.size() % 32000 + 1) + " ";
  }
  const auto start = std::chrono::steady_clock::now();
  const std::string out = fill_placeholders(text, list(args));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
  EXPECT_EQ(out.substr(0, 51), std::string(48, '@') + "v1 ");
}

}  // namespace
}  // namespace kxui::detail
