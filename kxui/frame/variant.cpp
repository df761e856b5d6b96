// Variant: storage, copying, and the conversions between kinds.
#include "kxui/frame/variant.h"

#include <cmath>
#include <limits>

#include "kxui/frame/errors.h"
#include "kxui/frame/failure.h"
#include "kxui/frame/text.h"
#include "kxui/frame/variant_text.h"

namespace kxui {

namespace {

using Kind = Variant::Kind;

// 94 for Null, 13 for every other kind a conversion does not take.
[[noreturn]] void bad_kind(const Variant& v) {
  fail(v.is_null() ? err::kInvalidUseOfNull : err::kTypeMismatch);
}

double number_from_text(std::string_view s) {
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

Variant::Variant(ObjectPtr v) noexcept {
  raw_[0] = static_cast<uint8_t>(Kind::Object);
  raw_[1] = kOwns;
  ::new (raw_ + kValueAt) ObjectPtr(std::move(v));
}

Variant::Variant(kxui::Array v) {
  auto* a = new kxui::Array(std::move(v));
  set_plain(Kind::Array, a);
  raw_[1] = kOwns;
}

void Variant::set_text(std::string_view v) {
  raw_[0] = static_cast<uint8_t>(Kind::String);
  if (v.size() <= kShortText) {
    raw_[1] = static_cast<uint8_t>(v.size());
    if (!v.empty()) std::memcpy(raw_ + 2, v.data(), v.size());
    return;
  }
  void* block = ::operator new(sizeof(Text) + v.size());
  Text* t = ::new (block) Text{{1}, v.size()};
  std::memcpy(const_cast<char*>(t->chars()), v.data(), v.size());
  set_plain(Kind::String, t);
  raw_[1] = kOwns;
}

// Called on a byte copy of o: takes this copy's own share of what o owns.
void Variant::copy_owned(const Variant& o) {
  switch (o.kind()) {
    case Kind::String:
      pointer<Text>()->refs.fetch_add(1, std::memory_order_relaxed);
      break;
    case Kind::Object:
      ::new (raw_ + kValueAt) ObjectPtr(*o.object_slot());
      break;
    default: {  // Array: a copy of its own; a moved-from array stays empty
      const kxui::Array* from = o.pointer<kxui::Array>();
      set_plain(Kind::Array, from ? new kxui::Array(*from) : nullptr);
      break;
    }
  }
}

void Variant::release_owned() noexcept {
  switch (kind()) {
    case Kind::String: {
      Text* t = pointer<Text>();
      if (t->refs.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        t->~Text();
        ::operator delete(t);
      }
      break;
    }
    case Kind::Object: object_slot()->~ObjectPtr(); break;
    default: delete pointer<kxui::Array>(); break;
  }
}

void Variant::take(Variant& o) noexcept {
  if (o.kind() == Kind::Object) {
    raw_[0] = o.raw_[0];
    raw_[1] = kOwns;
    ::new (raw_ + kValueAt) ObjectPtr(std::move(*o.object_slot()));
    return;
  }
  std::memcpy(raw_, o.raw_, sizeof raw_);
  if (o.raw_[1] != kOwns) return;
  if (o.kind() == Kind::String) {
    o.raw_[1] = 0;  // the empty text
  } else {
    o.set_plain<kxui::Array*>(Kind::Array, nullptr);
  }
}

Variant& Variant::operator=(const Variant& o) {
  if (this != &o) *this = Variant(o);
  return *this;
}

Variant Variant::null() {
  Variant v;
  v.raw_[0] = static_cast<uint8_t>(Kind::Null);
  return v;
}

Variant Variant::missing() {
  Variant v;
  v.raw_[0] = static_cast<uint8_t>(Kind::Missing);
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
    case Kind::String: return std::string(get_string());
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
  return *object_slot();
}

kxui::Array& Variant::array() {
  if (kind() != Kind::Array) bad_kind(*this);
  kxui::Array* a = pointer<kxui::Array>();
  if (!a) {  // moved-from
    a = new kxui::Array();
    set_plain(Kind::Array, a);
  }
  return *a;
}

const kxui::Array& Variant::array() const {
  if (kind() != Kind::Array) bad_kind(*this);
  const kxui::Array* a = pointer<kxui::Array>();
  return a ? *a : kNoArray;
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
    case Kind::Object: return *a.object_slot() == *b.object_slot();
    case Kind::Boolean: return a.get_bool() == b.get_bool();
    case Kind::Int16: return a.get_int16() == b.get_int16();
    case Kind::Int32: return a.get_int32() == b.get_int32();
    case Kind::Double: return a.get_double() == b.get_double();
    case Kind::Currency: return a.get_currency() == b.get_currency();
    case Kind::Date: return a.get_date() == b.get_date();
    case Kind::String: return a.get_string() == b.get_string();
    default: return true;  // Empty, Missing
  }
}

}  // namespace kxui
