#include "kxui/frame/paging.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <random>

#include "kxui/frame/failure.h"

namespace kxui {
namespace {

struct Case {
  int32_t n, s, p;
  int32_t start, end, current;
};

TEST(PagingWindow, KnownPages) {
  const Case cases[] = {
      {45, 20, 1, 1, 20, 1},   {45, 20, 2, 21, 40, 2},  {45, 20, 3, 41, 45, 3},
      {45, 20, 9, 41, 45, 3},  {40, 20, 3, 20, 40, 2},  {20, 20, 5, 1, 20, 1},
      {50, 20, 3, 41, 50, 3},  {70, 20, 4, 61, 70, 4},  {45, 20, 0, 1, 20, 1},
      {5, 20, 0, 1, 5, 1},     {45, 20, -1, 41, 45, 3}, {45, 20, -7, 41, 45, 3},
      {0, 20, 0, 1, 0, 1},     {0, 20, 1, -20, 0, 0},   {0, 20, 3, -20, 0, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message() << "N=" << c.n << " S=" << c.s << " P=" << c.p);
    PagingWindow w = compute_paging_window(c.n, c.s, c.p);
    EXPECT_EQ(w.start_record, c.start);
    EXPECT_EQ(w.end_record, c.end);
    EXPECT_EQ(w.current_page, c.current);
    EXPECT_EQ(w.page_size, c.s);
    EXPECT_EQ(w.total_records, c.n);
  }
}

TEST(PagingWindow, OnlyMinusOneIsTheLastPageWhenAskedSo) {
  PagingWindow last = compute_paging_window(45, 20, -1, PastEnd::kMinusOne);
  EXPECT_EQ(last.start_record, 41);
  PagingWindow literal = compute_paging_window(45, 20, -2, PastEnd::kMinusOne);
  EXPECT_EQ(literal.start_record, -59);
  EXPECT_EQ(literal.current_page, -2);
}

TEST(PagingWindow, ZeroPageSizeDividesByZero) {
  EXPECT_THROW(
      {
        try {
          compute_paging_window(10, 0, 1);
        } catch (const Failure& f) {
          EXPECT_EQ(f.number(), 11);
          throw;
        }
      },
      Failure);
}

// An independent statement of the rule in 64-bit arithmetic; nothing when a 32-bit
// intermediate would not fit.
std::optional<PagingWindow> reference(int64_t n, int64_t s, int64_t p) {
  auto fits = [](int64_t v) { return v >= INT32_MIN && v <= INT32_MAX; };
  double ratio = double(n) / double(s);
  double r = std::nearbyint(ratio);  // default rounding mode: half to even
  if (!fits(int64_t(r)) || std::fabs(r) > 3e9) return std::nullopt;
  int64_t whole = n / s;
  if (!fits(whole)) return std::nullopt;
  PagingWindow w{int32_t(s), 0, int32_t(n), 0, 0};
  int64_t start, end, cur;
  if (p > int64_t(r) || p < 0) {
    if (!fits(whole * s)) return std::nullopt;
    start = whole * s + 1;
    if (!fits(start)) return std::nullopt;
    if (start > n) {
      start = n - s;
      if (!fits(start)) return std::nullopt;
      if (start == 0) start = 1;
    }
    end = n;
    cur = ratio == double(whole) ? whole : whole + 1;
  } else if (p != 0) {
    int64_t ps = p * s;
    if (!fits(ps) || !fits(ps - s) || !fits(ps - s + 1)) return std::nullopt;
    start = ps - s + 1;
    if (!fits(start + s)) return std::nullopt;
    end = start + s - 1;
    if (!fits(end)) return std::nullopt;
    if (end > n) end = n;
    cur = p;
  } else {
    start = 1;
    end = s > n ? n : s;
    cur = 1;
  }
  if (!fits(cur)) return std::nullopt;
  w.start_record = int32_t(start);
  w.end_record = int32_t(end);
  w.current_page = int32_t(cur);
  return w;
}

TEST(PagingWindow, AgreesWithA64BitReferenceOrOverflows) {
  std::mt19937 rng(20261122);
  const int32_t extremes[] = {INT32_MIN, INT32_MIN + 1, -20, -1, 0, 1, 2, 19, 20, 21,
                              INT32_MAX - 1, INT32_MAX};
  std::vector<std::tuple<int32_t, int32_t, int32_t>> inputs;
  for (int32_t n : extremes)
    for (int32_t s : extremes)
      for (int32_t p : extremes) inputs.emplace_back(n, s, p);
  std::uniform_int_distribution<int32_t> any(INT32_MIN, INT32_MAX), small(-1000, 100000);
  for (int i = 0; i < 20000; ++i) {
    inputs.emplace_back(small(rng), small(rng) % 200, small(rng) % 6000);
    inputs.emplace_back(any(rng), any(rng), any(rng));
  }
  for (auto [n, s, p] : inputs) {
    if (s == 0) continue;
    SCOPED_TRACE(::testing::Message() << "N=" << n << " S=" << s << " P=" << p);
    std::optional<PagingWindow> want = reference(n, s, p);
    try {
      PagingWindow got = compute_paging_window(n, s, p);
      ASSERT_TRUE(want.has_value()) << "expected an overflow";
      EXPECT_EQ(got.start_record, want->start_record);
      EXPECT_EQ(got.end_record, want->end_record);
      EXPECT_EQ(got.current_page, want->current_page);
    } catch (const Failure& f) {
      ASSERT_EQ(f.number(), 6);
      EXPECT_FALSE(want.has_value()) << "unexpected overflow";
    }
  }
}

}  // namespace
}  // namespace kxui
