// Array: bounds-checked one- and two-dimensional arrays of Variants.
#include "kxui/frame/errors.h"
#include "kxui/frame/failure.h"
#include "kxui/frame/variant.h"

namespace kxui {
namespace {

Array::Bound make_bound(int64_t lower, int64_t upper) {
  int64_t count = upper - lower + 1;
  if (count < 0 || count > INT32_MAX) fail(err::kSubscriptOutOfRange);
  return Array::Bound{static_cast<int32_t>(lower), static_cast<int32_t>(count)};
}

}  // namespace

Array::Array(int32_t lower, int32_t upper) {
  bounds_.push_back(make_bound(lower, upper));
  data_.resize(static_cast<size_t>(bounds_[0].count));
}

Array::Array(Bound first, Bound second) {
  if (first.count < 0 || second.count < 0) fail(err::kSubscriptOutOfRange);
  bounds_ = {first, second};
  data_.resize(static_cast<size_t>(first.count) * static_cast<size_t>(second.count));
}

Array Array::of(std::vector<Variant> values, int32_t lower) {
  Array a;
  a.bounds_.push_back(make_bound(lower, int64_t{lower} + int64_t(values.size()) - 1));
  a.data_ = std::move(values);
  return a;
}

int32_t Array::lbound(int32_t dim) const {
  if (dim < 1 || dim > dims()) fail(err::kSubscriptOutOfRange);
  return bounds_[size_t(dim - 1)].lower;
}

int32_t Array::ubound(int32_t dim) const {
  if (dim < 1 || dim > dims()) fail(err::kSubscriptOutOfRange);
  return bounds_[size_t(dim - 1)].upper();
}

size_t Array::offset(int32_t i) const {
  if (dims() != 1) fail(err::kSubscriptOutOfRange);
  int64_t k = int64_t{i} - bounds_[0].lower;
  if (k < 0 || k >= bounds_[0].count) fail(err::kSubscriptOutOfRange);
  return static_cast<size_t>(k);
}

size_t Array::offset(int32_t i, int32_t j) const {
  if (dims() != 2) fail(err::kSubscriptOutOfRange);
  int64_t a = int64_t{i} - bounds_[0].lower;
  int64_t b = int64_t{j} - bounds_[1].lower;
  if (a < 0 || a >= bounds_[0].count || b < 0 || b >= bounds_[1].count) {
    fail(err::kSubscriptOutOfRange);
  }
  // The last dimension varies slowest.
  return static_cast<size_t>(b * bounds_[0].count + a);
}

Variant& Array::at(int32_t i) { return data_[offset(i)]; }
const Variant& Array::at(int32_t i) const { return data_[offset(i)]; }
Variant& Array::at(int32_t i, int32_t j) { return data_[offset(i, j)]; }
const Variant& Array::at(int32_t i, int32_t j) const { return data_[offset(i, j)]; }

void Array::redim_preserve(int32_t new_upper) {
  // An array never dimensioned gets lower bound 0.
  Bound last = make_bound(bounds_.empty() ? 0 : bounds_.back().lower, new_upper);
  size_t inner = bounds_.size() == 2 ? static_cast<size_t>(bounds_[0].count) : 1;
  data_.resize(inner * static_cast<size_t>(last.count));
  if (bounds_.empty()) {
    bounds_.push_back(last);
  } else {
    bounds_.back() = last;
  }
}

}  // namespace kxui
