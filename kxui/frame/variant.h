// Variant: the dynamically typed value of the interface, with the classic Automation
// conversion rules. Conversions never guess: they return the converted value or throw
// Failure (6 Overflow, 13 Type mismatch, 94 Invalid use of Null, 9 Subscript out of range).
#pragma once

#include <atomic>
#include <compare>
#include <cstring>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <new>
#include <variant>
#include <vector>

#include "kxui/frame/object.h"

namespace kxui {

// Fixed-point money: a 64-bit integer scaled by 10,000 (four decimals).
struct Currency {
  int64_t scaled = 0;

  static constexpr int64_t kScale = 10000;
  static constexpr Currency from_scaled(int64_t v) { return Currency{v}; }
  // Rounds half to even at the fifth decimal; 6 Overflow outside the int64 range.
  static Currency from_double(double v);
  double to_double() const { return static_cast<double>(scaled) / kScale; }
  friend constexpr auto operator<=>(Currency, Currency) = default;
};

// A civil date-time with second precision and no time zone.
class Date {
 public:
  constexpr Date() = default;
  // Throws 5 for an impossible date or time (Feb 30, hour 24, ...).
  static Date from_civil(int year, int month, int day, int hour = 0, int minute = 0,
                         int second = 0);
  static constexpr Date from_seconds(int64_t s) { return Date(s); }

  // Seconds since 1970-01-01 00:00:00 on the civil time line.
  constexpr int64_t seconds() const { return seconds_; }
  int year() const;
  int month() const;
  int day() const;
  int hour() const;
  int minute() const;
  int second() const;
  // The same day at midnight.
  Date date_part() const;

  friend constexpr auto operator<=>(Date, Date) = default;

 private:
  constexpr explicit Date(int64_t s) : seconds_(s) {}
  int64_t seconds_ = 0;
};

class Variant;

// A one- or two-dimensional array with lower bounds, as pages and business objects
// exchange them. Elements are stored with the last dimension varying slowest, so that
// growing the last dimension keeps every element where it was.
class Array {
 public:
  struct Bound {
    int32_t lower = 0;
    int32_t count = 0;
    int32_t upper() const { return lower + count - 1; }
  };

  Array() = default;
  // One dimension, lower..upper (upper = lower - 1 gives an empty array).
  Array(int32_t lower, int32_t upper);
  // Two dimensions.
  Array(Bound first, Bound second);
  static Array of(std::vector<Variant> values, int32_t lower = 0);

  int32_t dims() const { return static_cast<int32_t>(bounds_.size()); }
  // 9 Subscript out of range for a dimension that does not exist (dimensions are 1-based).
  int32_t lbound(int32_t dim = 1) const;
  int32_t ubound(int32_t dim = 1) const;
  size_t size() const;

  // 9 when an index is outside its bounds.
  Variant& at(int32_t i);
  const Variant& at(int32_t i) const;
  Variant& at(int32_t i, int32_t j);
  const Variant& at(int32_t i, int32_t j) const;

  // Grows or shrinks the last dimension to end at new_upper, keeping the contents.
  void redim_preserve(int32_t new_upper);

  const std::vector<Variant>& values() const { return data_; }

 private:
  size_t offset(int32_t i) const;
  size_t offset(int32_t i, int32_t j) const;
  std::vector<Bound> bounds_;
  std::vector<Variant> data_;
};

class Variant {
 public:
  enum class Kind : uint8_t {
    Empty, Null, Missing, Boolean, Int16, Int32, Double, Currency, Date, String, Object, Array
  };

  // Implicit only from the exact C++ type of a kind.
  Variant() noexcept = default;
  Variant(bool v) noexcept { set_plain(Kind::Boolean, v); }
  Variant(int16_t v) noexcept { set_plain(Kind::Int16, v); }
  Variant(int32_t v) noexcept { set_plain(Kind::Int32, v); }
  Variant(double v) noexcept { set_plain(Kind::Double, v); }
  Variant(kxui::Currency v) noexcept { set_plain(Kind::Currency, v.scaled); }
  Variant(kxui::Date v) noexcept { set_plain(Kind::Date, v.seconds()); }
  Variant(const std::string& v) { set_text(v); }
  Variant(std::string_view v) { set_text(v); }
  Variant(const char* v) { set_text(std::string_view(v)); }
  Variant(ObjectPtr v) noexcept;
  template <class T>
    requires std::is_base_of_v<kxui::Object, T>
  Variant(std::shared_ptr<T> v) : Variant(ObjectPtr(std::move(v))) {}
  Variant(kxui::Array v);
  // No pointer other than a string literal becomes a Variant by accident.
  template <class T>
  Variant(T*) = delete;
  Variant(std::nullptr_t) = delete;

  // Copying plain values and short texts is a copy of the bytes; long texts are shared
  // (they never change), objects are shared, arrays are copied.
  Variant(const Variant& o) {
    std::memcpy(raw_, o.raw_, sizeof raw_);
    if (o.raw_[1] == kOwns) [[unlikely]] copy_owned(o);
  }
  Variant(Variant&& o) noexcept { take(o); }
  Variant& operator=(const Variant& o);
  Variant& operator=(Variant&& o) noexcept {
    if (this != &o) {
      // o may live inside the array this holds: take its value before letting ours go.
      Variant held;
      held.take(o);
      release();
      take(held);
    }
    return *this;
  }
  ~Variant() { release(); }

  static Variant null();
  static Variant missing();

  Kind kind() const { return static_cast<Kind>(raw_[0]); }
  bool is_empty() const { return kind() == Kind::Empty; }
  bool is_null() const { return kind() == Kind::Null; }
  bool is_missing() const { return kind() == Kind::Missing; }
  bool is_object() const { return kind() == Kind::Object; }
  bool is_array() const { return kind() == Kind::Array; }
  bool is_string() const { return kind() == Kind::String; }
  // Boolean, Int16, Int32, Double or Currency.
  bool is_numeric() const;

  // Conversions (throw Failure). Empty converts to 0 / "" / False / 1899-12-30.
  int32_t to_int32() const;
  int16_t to_int16() const;
  double to_double() const;
  kxui::Currency to_currency() const;
  bool to_bool() const;
  kxui::Date to_date() const;
  std::string to_string() const;

  std::optional<int32_t> try_to_int32() const noexcept;
  std::optional<double> try_to_double() const noexcept;
  std::optional<std::string> try_to_string() const noexcept;

  // The held object; 13 when the Variant holds something else. Nothing (an empty
  // pointer) when it holds an empty object reference.
  ObjectPtr to_object() const;
  // The held object as interface T: 13 for a non-object, 438 for a missing interface.
  // Nothing gives Nothing.
  template <class T>
  std::shared_ptr<T> as() const;

  // The held array; 13 for any other kind.
  kxui::Array& array();
  const kxui::Array& array() const;

  // Direct access for callers that switched on kind() first (no conversion).
  bool get_bool() const { return plain<bool>(); }
  int16_t get_int16() const { return plain<int16_t>(); }
  int32_t get_int32() const { return plain<int32_t>(); }
  double get_double() const { return plain<double>(); }
  kxui::Currency get_currency() const { return kxui::Currency::from_scaled(plain<int64_t>()); }
  kxui::Date get_date() const { return kxui::Date::from_seconds(plain<int64_t>()); }
  // Valid while this Variant lives unchanged.
  std::string_view get_string() const {
    if (raw_[1] != kOwns) return std::string_view(reinterpret_cast<const char*>(raw_ + 2), raw_[1]);
    const Text* t = pointer<Text>();
    return std::string_view(t->chars(), t->size);
  }

  // Equality of kind and value; Null equals nothing, not even Null. Arrays compare by
  // contents, objects by identity.
  friend bool operator==(const Variant& a, const Variant& b);

 private:
  // A long text, shared by every copy of the Variant that holds it.
  struct Text {
    std::atomic<uint32_t> refs;
    size_t size;
    const char* chars() const { return reinterpret_cast<const char*>(this + 1); }
  };
  // Layout: byte 0 the kind, byte 1 kOwns when the value owns something (a long text, an
  // object, an array) or else the length of a short text, whose bytes follow from byte 2;
  // every other value lives from byte 8.
  static constexpr uint8_t kOwns = 0xFF;
  static constexpr size_t kShortText = 22;
  static constexpr size_t kValueAt = 8;

  template <class T>
  void set_plain(Kind k, T v) noexcept {
    raw_[0] = static_cast<uint8_t>(k);
    std::memcpy(raw_ + kValueAt, &v, sizeof v);
  }
  template <class T>
  T plain() const noexcept {
    T v;
    std::memcpy(&v, raw_ + kValueAt, sizeof v);
    return v;
  }
  template <class T>
  T* pointer() const noexcept {
    return plain<T*>();
  }
  ObjectPtr* object_slot() const noexcept {
    return std::launder(reinterpret_cast<ObjectPtr*>(const_cast<unsigned char*>(raw_ + kValueAt)));
  }
  void set_text(std::string_view v);
  void copy_owned(const Variant& o);
  void release_owned() noexcept;
  void release() noexcept {
    if (raw_[1] == kOwns) release_owned();
  }
  // Moves o's value here (this holds nothing); o keeps its kind with an empty value.
  void take(Variant& o) noexcept;

  alignas(8) unsigned char raw_[24] = {};
};

static_assert(sizeof(Variant) <= 24, "record sets copy millions of Variants");

// Defined here, once Variant is complete: std::vector<Variant>::size needs it.
inline size_t Array::size() const { return data_.size(); }

// Conversion helpers the façades call.
namespace conv {
// Half-to-even rounding of a double to `digits` decimals (0 to 10).
double round_half_even(double v, int digits = 0);
// Blanks (spaces, tabs, CR, LF) removed at both ends.
std::string trim(std::string_view s);
// Parses "yyyy-mm-dd", "yyyy-mm-dd hh:mm:ss" and "yyyy-mm-ddThh:mm:ss" (the invariant
// form to_string writes); 13 Type mismatch for anything else.
Date date_from_text(std::string_view s);
// The date part of a date-valued Variant, via its text form.
Date date_part(const Variant& v);
// Number of UTF-8 code points in s.
size_t utf8_length(std::string_view s);
}  // namespace conv

}  // namespace kxui

#include "kxui/frame/variant_inl.h"
