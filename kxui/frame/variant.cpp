// Variant: storage, copying, and the conversions between kinds.
#include "kxui/frame/variant.h"

#include <cmath>
#include <limits>

#include "kxui/frame/errors.h"
#include "kxui/frame/failure.h"
#include "kxui/frame/text.h"
#include "kxui/frame/variant_text.h"

namespace kxui {

// Record sets copy millions of Variants: keep them at a std::string plus a tag.
static_assert(sizeof(Variant) == 40, "Variant must stay 40 bytes");

namespace {

using Kind = Variant::Kind;

// 94 for Null, 13 for every other kind a conversion does not take.
[[noreturn]] void bad_kind(const Variant& v) {
  fail(v.is_null() ? err::kInvalidUseOfNull : err::kTypeMismatch);
}

double number_from_text(const std::string& s) {
  auto n = detail::parse_number(s);
  if (!n) fail(err::kTypeMismatch);
  return *n;
}

template <class T>
T int_from_double(double v) {
  double r = std::isnan(v) ? v : conv::round_half_even(v, 0);
  if (!(r >= std::numeric_limits<T>::min() && r <= std::numeric_limits<T>::max())) {
    fail(err::kOverflow);
  }
  return static_cast<T>(r);
}

template <class T>
T int_from_int(int64_t v) {
  if (v < std::numeric_limits<T>::min() || v > std::numeric_limits<T>::max()) {
    fail(err::kOverflow);
  }
  return static_cast<T>(v);
}

template <class T>
T int_from_currency(Currency c) {
  int64_t q = c.scaled / Currency::kScale;
  int64_t rem = c.scaled % Currency::kScale;
  int64_t half = Currency::kScale / 2;
  int64_t mag = rem < 0 ? -rem : rem;
  if (mag > half || (mag == half && (q & 1) != 0)) q += c.scaled < 0 ? -1 : 1;
  return int_from_int<T>(q);
}

template <class T>
T to_int(const Variant& v) {
  switch (v.kind()) {
    case Kind::Empty: return 0;
    case Kind::Boolean: return v.get_bool() ? -1 : 0;
    case Kind::Int16: return int_from_int<T>(v.get_int16());
    case Kind::Int32: return int_from_int<T>(v.get_int32());
    case Kind::Double: return int_from_double<T>(v.get_double());
    case Kind::Currency: return int_from_currency<T>(v.get_currency());
    case Kind::Date: return int_from_double<T>(detail::date_to_serial(v.get_date()));
    case Kind::String: return int_from_double<T>(number_from_text(v.get_string()));
    default: bad_kind(v);
  }
}

// Int16, Int32, Double and Currency compare by value across kinds.
bool cross_numeric(Kind k) {
  return k == Kind::Int16 || k == Kind::Int32 || k == Kind::Double || k == Kind::Currency;
}

bool same_array(const Array& a, const Array& b) {
  if (a.dims() != b.dims()) return false;
  for (int32_t d = 1; d <= a.dims(); ++d) {
    if (a.lbound(d) != b.lbound(d) || a.ubound(d) != b.ubound(d)) return false;
  }
  return a.values() == b.values();
}

const Array kNoArray;

}  // namespace

Variant::Variant(kxui::Array v) : v_(std::make_unique<kxui::Array>(std::move(v))) {}

Variant::Variant(const Variant& o)
    : v_(std::visit(
          [](const auto& x) -> Storage {
            using T = std::decay_t<decltype(x)>;
            if constexpr (std::is_same_v<T, ArrayBox>) {
              return x ? std::make_unique<kxui::Array>(*x) : ArrayBox{};
            } else {
              return Storage(std::in_place_type<T>, x);
            }
          },
          o.v_)) {}

Variant& Variant::operator=(const Variant& o) {
  if (this == &o) return *this;
  if (v_.index() != o.v_.index()) return *this = Variant(o);
  std::visit(
      [&o](auto& dst) {
        using T = std::decay_t<decltype(dst)>;
        const T& src = *std::get_if<T>(&o.v_);
        if constexpr (std::is_same_v<T, ArrayBox>) {
          dst = src ? std::make_unique<kxui::Array>(*src) : ArrayBox{};
        } else {
          dst = src;  // a string reuses its buffer
        }
      },
      v_);
  return *this;
}

Variant Variant::null() {
  Variant v;
  v.v_.emplace<NullT>();
  return v;
}

Variant Variant::missing() {
  Variant v;
  v.v_.emplace<MissingT>();
  return v;
}

bool Variant::is_numeric() const {
  Kind k = kind();
  return k == Kind::Boolean || cross_numeric(k);
}

int32_t Variant::to_int32() const { return to_int<int32_t>(*this); }
int16_t Variant::to_int16() const { return to_int<int16_t>(*this); }

double Variant::to_double() const {
  switch (kind()) {
    case Kind::Empty: return 0;
    case Kind::Boolean: return get_bool() ? -1 : 0;
    case Kind::Int16: return get_int16();
    case Kind::Int32: return get_int32();
    case Kind::Double: return get_double();
    case Kind::Currency: return get_currency().to_double();
    case Kind::Date: return detail::date_to_serial(get_date());
    case Kind::String: return number_from_text(get_string());
    default: bad_kind(*this);
  }
}

Currency Variant::to_currency() const {
  switch (kind()) {
    case Kind::Empty: return {};
    case Kind::Boolean: return Currency::from_scaled(get_bool() ? -Currency::kScale : 0);
    case Kind::Int16: return Currency::from_scaled(int64_t{get_int16()} * Currency::kScale);
    case Kind::Int32: return Currency::from_scaled(int64_t{get_int32()} * Currency::kScale);
    case Kind::Currency: return get_currency();
    case Kind::Double:
    case Kind::Date:
    case Kind::String: return Currency::from_double(to_double());
    default: bad_kind(*this);
  }
}

bool Variant::to_bool() const {
  switch (kind()) {
    case Kind::Empty: return false;
    case Kind::Boolean: return get_bool();
    case Kind::Int16: return get_int16() != 0;
    case Kind::Int32: return get_int32() != 0;
    case Kind::Double: return get_double() != 0;
    case Kind::Currency: return get_currency().scaled != 0;
    case Kind::Date: return detail::date_to_serial(get_date()) != 0;
    case Kind::String: {
      std::string t = conv::trim(get_string());
      if (text::iequals(t, "true")) return true;
      if (text::iequals(t, "false")) return false;
      return number_from_text(t) != 0;
    }
    default: bad_kind(*this);
  }
}

Date Variant::to_date() const {
  switch (kind()) {
    case Kind::Empty: return detail::date_from_serial(0);
    case Kind::Date: return get_date();
    case Kind::String: return conv::date_from_text(get_string());
    case Kind::Boolean:
    case Kind::Int16:
    case Kind::Int32:
    case Kind::Double:
    case Kind::Currency: return detail::date_from_serial(to_double());
    default: bad_kind(*this);
  }
}

std::string Variant::to_string() const {
  switch (kind()) {
    case Kind::Empty: return {};
    case Kind::Boolean: return get_bool() ? "True" : "False";
    case Kind::Int16: return std::to_string(get_int16());
    case Kind::Int32: return std::to_string(get_int32());
    case Kind::Double: return detail::format_double(get_double());
    case Kind::Currency: return detail::format_currency(get_currency());
    case Kind::Date: return detail::format_date(get_date());
    case Kind::String: return get_string();
    default: bad_kind(*this);
  }
}

std::optional<int32_t> Variant::try_to_int32() const noexcept {
  try {
    return to_int32();
  } catch (...) {
    return std::nullopt;
  }
}

std::optional<double> Variant::try_to_double() const noexcept {
  try {
    return to_double();
  } catch (...) {
    return std::nullopt;
  }
}

std::optional<std::string> Variant::try_to_string() const noexcept {
  try {
    return to_string();
  } catch (...) {
    return std::nullopt;
  }
}

ObjectPtr Variant::to_object() const {
  if (kind() != Kind::Object) bad_kind(*this);
  return std::get<ObjectPtr>(v_);
}

kxui::Array& Variant::array() {
  if (kind() != Kind::Array) bad_kind(*this);
  auto& box = std::get<ArrayBox>(v_);
  if (!box) box = std::make_unique<kxui::Array>();  // moved-from
  return *box;
}

const kxui::Array& Variant::array() const {
  if (kind() != Kind::Array) bad_kind(*this);
  const auto& box = std::get<ArrayBox>(v_);
  return box ? *box : kNoArray;
}

bool operator==(const Variant& a, const Variant& b) {
  Kind ka = a.kind();
  Kind kb = b.kind();
  if (ka == Kind::Null || kb == Kind::Null) return false;
  if (ka != kb) {
    if (!cross_numeric(ka) || !cross_numeric(kb)) return false;
    if (ka == Kind::Currency && kb != Kind::Double) {
      return a.get_currency() == b.to_currency();
    }
    if (kb == Kind::Currency && ka != Kind::Double) {
      return a.to_currency() == b.get_currency();
    }
    return a.to_double() == b.to_double();
  }
  switch (ka) {
    case Kind::Array: return same_array(a.array(), b.array());
    case Kind::Object: return std::get<ObjectPtr>(a.v_) == std::get<ObjectPtr>(b.v_);
    default: return a.v_ == b.v_;
  }
}

}  // namespace kxui
