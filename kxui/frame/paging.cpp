#include "kxui/frame/paging.h"

#include <cmath>

#include "kxui/frame/failure.h"
#include "kxui/frame/variant.h"

namespace kxui {

namespace {

int32_t add(int32_t a, int32_t b) {
  int32_t r;
  if (__builtin_add_overflow(a, b, &r)) fail(err::kOverflow);
  return r;
}
int32_t sub(int32_t a, int32_t b) {
  int32_t r;
  if (__builtin_sub_overflow(a, b, &r)) fail(err::kOverflow);
  return r;
}
int32_t mul(int32_t a, int32_t b) {
  int32_t r;
  if (__builtin_mul_overflow(a, b, &r)) fail(err::kOverflow);
  return r;
}
int32_t idiv(int32_t a, int32_t b) {
  if (b == 0) fail(err::kDivisionByZero);
  if (a == INT32_MIN && b == -1) fail(err::kOverflow);
  return a / b;  // truncates toward zero, like the integer division of the interface
}

}  // namespace

PagingWindow compute_paging_window(int32_t n, int32_t s, int32_t p, PastEnd past_end) {
  if (s == 0) fail(err::kDivisionByZero);
  const double ratio = static_cast<double>(n) / static_cast<double>(s);
  const int32_t rounded = Variant(ratio).to_int32();  // half to even; 6 when out of range
  const int32_t whole = idiv(n, s);

  PagingWindow w;
  w.page_size = s;
  w.total_records = n;
  const bool negative = past_end == PastEnd::kAnyNegative ? p < 0 : p == -1;
  if (p > rounded || negative) {
    w.start_record = add(mul(whole, s), 1);
    if (w.start_record > n) {
      w.start_record = sub(n, s);
      if (w.start_record == 0) w.start_record = 1;
    }
    w.end_record = n;
    w.current_page = ratio == static_cast<double>(whole) ? whole : add(whole, 1);
  } else if (p != 0) {
    w.start_record = add(sub(mul(p, s), s), 1);
    w.end_record = sub(add(w.start_record, s), 1);
    if (w.end_record > n) w.end_record = n;
    w.current_page = p;
  } else {
    w.start_record = 1;
    w.end_record = s > n ? n : s;
    w.current_page = 1;
  }
  return w;
}

}  // namespace kxui
