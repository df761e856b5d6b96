#include "kxui/frame/text.h"

#include <gtest/gtest.h>

namespace kxui::text {
namespace {

TEST(TextTest, NamesCompareIgnoringAsciiCaseOnly) {
  const std::tuple<std::string_view, std::string_view, bool> cases[] = {
      {"KxReq03.Requisition", "kxreq03.REQUISITION", true},
      {"Page Size", "page size", true},
      {"", "", true},
      {"abc", "abd", false},
      {"abc", "abcd", false},
      {"@", "`", false},        // neighbours of the letter ranges are no letters
      {"[", "{", false},
      {"\xc3\x84", "\xc3\xa4", false},  // non-ASCII letters are compared as they are
  };
  for (const auto& [a, b, same] : cases) {
    EXPECT_EQ(iequals(a, b), same) << a << " / " << b;
    EXPECT_EQ(iequals(b, a), same) << b << " / " << a;
  }
  EXPECT_EQ(lower_ascii("Ab-Z\xc3\x84"), "ab-z\xc3\x84");
}

TEST(TextTest, TrimSpacesKeepsTabsAndLineBreaks) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"  a b  ", "a b"}, {"   ", ""}, {"", ""}, {"\tx\t", "\tx\t"}, {" \r\n ", "\r\n"}};
  for (const auto& [in, out] : cases) EXPECT_EQ(trim_spaces(in), out) << "[" << in << "]";
}

}  // namespace
}  // namespace kxui::text
