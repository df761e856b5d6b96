#include "kxui/frame/variant.h"

#include <cmath>
#include <functional>
#include <limits>

#include <gtest/gtest.h>

namespace kxui {
namespace {

// The number of the Failure `fn` throws; 0 when it throws nothing.
int failure_of(const std::function<void()>& fn) {
  try {
    fn();
  } catch (const Failure& f) {
    return f.number();
  }
  return 0;
}

Variant cy(int64_t scaled) { return Variant(Currency::from_scaled(scaled)); }

TEST(VariantToInt, RoundsHalfToEvenBeforeTheRangeCheck) {
  struct Case {
    Variant in;
    int32_t want;
    int error = 0;
  };
  const Case cases[] = {
      {2.5, 2},           {3.5, 4},          {-2.5, -2},          {2147483647.49, INT32_MAX},
      {2147483647.5, 0, 6}, {-2147483648.5, INT32_MIN}, {-2147483648.51, 0, 6},
      {std::nan(""), 0, 6}, {cy(25000), 2},  {cy(-25001), -3},    {cy(21474836475000), 0, 6},
      {true, -1},         {Variant(), 0},    {"  25 ", 25},       {"\t-2.5\r\n", -2},
      {"1.5E+1", 15},     {"1e400", 0, 6},   {"abc", 0, 13},      {"", 0, 13},
      {"1,5", 0, 13},     {"0x10", 0, 13},   {"12abc", 0, 13},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.in.try_to_string().value_or("<no text>"));
    if (c.error != 0) {
      EXPECT_EQ(failure_of([&] { c.in.to_int32(); }), c.error);
      EXPECT_FALSE(c.in.try_to_int32());
    } else {
      EXPECT_EQ(c.in.to_int32(), c.want);
    }
  }
  EXPECT_EQ(Variant(-32768.5).to_int16(), -32768);
  EXPECT_EQ(failure_of([] { Variant(32767.5).to_int16(); }), 6);
  EXPECT_EQ(failure_of([] { Variant(int32_t{32768}).to_int16(); }), 6);
}

TEST(VariantConversions, NullEmptyAndKindsThatDoNotConvert) {
  std::vector<std::function<void(const Variant&)>> targets = {
      [](const Variant& v) { v.to_int32(); },  [](const Variant& v) { v.to_int16(); },
      [](const Variant& v) { v.to_double(); }, [](const Variant& v) { v.to_currency(); },
      [](const Variant& v) { v.to_bool(); },   [](const Variant& v) { v.to_date(); },
      [](const Variant& v) { v.to_string(); },
  };
  const Variant array(Array(0, 1)), object(std::make_shared<Object>());
  for (size_t i = 0; i < targets.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(failure_of([&] { targets[i](Variant::null()); }), 94);
    EXPECT_EQ(failure_of([&] { targets[i](Variant::missing()); }), 13);
    EXPECT_EQ(failure_of([&] { targets[i](array); }), 13);
    EXPECT_EQ(failure_of([&] { targets[i](object); }), 13);
  }
  const Variant e;
  EXPECT_EQ(e.to_double(), 0.0);
  EXPECT_FALSE(e.to_bool());
  EXPECT_EQ(e.to_string(), "");
  EXPECT_EQ(e.to_date(), Date::from_civil(1899, 12, 30));

  EXPECT_EQ(Variant(true).to_currency(), Currency::from_scaled(-10000));
  EXPECT_EQ(Variant(false).to_string(), "False");
  EXPECT_TRUE(Variant(0.0001).to_bool());
  EXPECT_FALSE(Variant(" FALSE ").to_bool());
  EXPECT_TRUE(Variant("-0.5").to_bool());
  EXPECT_EQ(failure_of([] { Variant("yes").to_bool(); }), 13);
}

TEST(VariantCurrency, RoundsHalfToEvenAtTheFifthDecimal) {
  const std::pair<double, int64_t> cases[] = {
      {1.23445, 12344}, {1.23455, 12346}, {-1.23445, -12344}, {0.00015, 2},
      {0.1 + 0.2, 3000}, {900000000000000.0, 9000000000000000000},
  };
  for (const auto& [in, scaled] : cases) {
    SCOPED_TRACE(in);
    EXPECT_EQ(Variant(in).to_currency().scaled, scaled);
  }
  EXPECT_EQ(failure_of([] { Currency::from_double(-1e15); }), 6);
  EXPECT_EQ(Variant(" 12.34565 ").to_currency().scaled, 123456);
}

TEST(VariantText, NumbersInInvariantForm) {
  const std::pair<Variant, const char*> cases[] = {
      {0.1, "0.1"},           {-1234.5, "-1234.5"},        {-0.0, "0"},
      {0.1 + 0.2, "0.3"},     {2.0 / 3, "0.666666666666667"}, {999999999999999.0, "999999999999999"},
      {1e15, "1E+15"},        {123456789012345678.0, "1.23456789012346E+17"},
      {1e-11, "0.00000000001"}, {1.5e-12, "1.5E-12"},      {cy(125000), "12.5"},
      {cy(30000), "3"},       {cy(std::numeric_limits<int64_t>::min()), "-922337203685477.5808"},
      {true, "True"},
  };
  for (const auto& [in, want] : cases) {
    SCOPED_TRACE(want);
    EXPECT_EQ(in.to_string(), want);
    if (in.kind() == Variant::Kind::Double) {  // and reads back to the same text
      EXPECT_EQ(Variant(Variant(want).to_double()).to_string(), want);
    }
  }
}

TEST(VariantDate, TextRoundTripDatePartAndSerials) {
  const Date noon = Date::from_civil(2024, 2, 29, 13, 5, 9), midnight = Date::from_civil(2024, 2, 29);
  EXPECT_EQ(Variant(noon).to_string(), "2024-02-29 13:05:09");
  EXPECT_EQ(Variant(midnight).to_string(), "2024-02-29");
  EXPECT_EQ(Variant(Variant(noon).to_string()).to_date(), noon);
  EXPECT_EQ(conv::date_from_text(" 2024-02-29T13:05:09 "), noon);
  EXPECT_EQ(conv::date_part(Variant(noon)), midnight);
  EXPECT_EQ(failure_of([] { conv::date_part(Variant::null()); }), 94);
  for (const char* bad : {"", "2024-2-29", "2023-02-29", "29.02.2024", "2024-02-29 24:00:00",
                          "2024-02-29 13:05", "0099-01-01"}) {
    SCOPED_TRACE(bad);
    EXPECT_EQ(failure_of([&] { Variant(bad).to_date(); }), 13);
  }
  EXPECT_EQ(failure_of([] { Date::from_civil(1900, 2, 29); }), 5);
  EXPECT_EQ(failure_of([] { Date::from_civil(2024, 1, 1, 24); }), 5);

  // Day serials count from 1899-12-30; the fraction is the time of day.
  const std::pair<Date, double> serials[] = {
      {Date::from_civil(1970, 1, 1), 25569.0},
      {Date::from_civil(2000, 1, 1, 12), 36526.5},
      {Date::from_civil(1899, 12, 29, 6), -1.25},
  };
  for (const auto& [date, serial] : serials) {
    EXPECT_EQ(Variant(date).to_double(), serial);
    EXPECT_EQ(Variant(serial).to_date(), date);
  }
  EXPECT_EQ(Variant(Date::from_civil(2000, 1, 1, 12)).to_int32(), 36526);  // half to even
  EXPECT_EQ(failure_of([] { Variant(1e10).to_date(); }), 6);
}

// Years 100..9999 only: outside, every reading fails with 6 instead of printing a
// wrapped year or overflowing the arithmetic.
TEST(VariantDate, OutOfRangeDatesFailWithOverflow) {
  const int64_t first = Date::from_civil(100, 1, 1).seconds();
  const int64_t last = Date::from_civil(9999, 12, 31, 23, 59, 59).seconds();
  EXPECT_EQ(Variant(Date::from_seconds(first)).to_string(), "0100-01-01");
  EXPECT_EQ(Variant(Date::from_seconds(last)).to_string(), "9999-12-31 23:59:59");
  EXPECT_EQ(Variant(Date::from_seconds(last)).to_double(), 2958465.0 + 86399.0 / 86400);
  const std::pair<const char*, int64_t> outside[] = {
      {"a second before year 100", first - 1},
      {"a second after year 9999", last + 1},
      {"year 0", -62167219200},
      {"year 10000", 253402300800},
      {"year 70000, which 16 bits wrap", 2146790000000},
      {"the lowest seconds", INT64_MIN},
      {"the highest seconds", INT64_MAX}};
  for (const auto& [name, seconds] : outside) {
    SCOPED_TRACE(name);
    const Date d = Date::from_seconds(seconds);
    EXPECT_EQ(failure_of([&] { Variant(d).to_string(); }), 6);
    EXPECT_EQ(failure_of([&] { Variant(d).to_double(); }), 6);
    EXPECT_EQ(failure_of([&] { Variant(d).to_int32(); }), 6);
    EXPECT_EQ(failure_of([&] { d.year(); }), 6);
    EXPECT_EQ(failure_of([&] { d.date_part(); }), 6);
  }
}

TEST(VariantArray, BoundsSubscriptsAndRedimPreserve) {
  for (int32_t lower : {0, 1}) {
    SCOPED_TRACE(lower);
    Array a(lower, lower + 2);
    a.at(lower + 2) = "last";
    EXPECT_EQ(a.lbound(), lower);
    EXPECT_TRUE(a.at(lower + 1).is_empty());
    EXPECT_EQ(failure_of([&] { a.at(lower - 1); }), 9);
    EXPECT_EQ(failure_of([&] { a.at(lower + 3); }), 9);
    EXPECT_EQ(failure_of([&] { a.lbound(2); }), 9);
    a.redim_preserve(lower + 4);
    EXPECT_EQ(a.at(lower + 2).to_string(), "last");
    EXPECT_TRUE(a.at(lower + 4).is_empty());
  }

  Array grid(Array::Bound{0, 2}, Array::Bound{0, 2});
  for (int32_t i = 0; i < 2; ++i) {
    for (int32_t j = 0; j < 2; ++j) grid.at(i, j) = 10 * i + j;
  }
  EXPECT_EQ(failure_of([&] { grid.at(1); }), 9);
  grid.redim_preserve(4);
  EXPECT_EQ(grid.ubound(1), 1);
  EXPECT_EQ(grid.ubound(2), 4);
  for (int32_t i = 0; i < 2; ++i) {
    for (int32_t j = 0; j < 2; ++j) EXPECT_EQ(grid.at(i, j).to_int32(), 10 * i + j);
  }
  EXPECT_EQ(failure_of([&] { grid.redim_preserve(-2); }), 9);
  EXPECT_EQ(grid.ubound(2), 4) << "a failed resize changes nothing";

  Variant v(Array::of({1, 2}));
  Variant copy = v;
  copy.array().at(0) = 99;
  EXPECT_EQ(v.array().at(0).to_int32(), 1) << "copies are deep";
}

TEST(VariantEquality, KindsValuesAndNull) {
  const Variant null = Variant::null();
  EXPECT_FALSE(null == null);
  EXPECT_FALSE(Variant("") == null);
  EXPECT_TRUE(Variant() == Variant());
  EXPECT_FALSE(Variant() == Variant(0));
  EXPECT_TRUE(Variant(2) == cy(20000));
  EXPECT_FALSE(Variant("2") == Variant(2));
  EXPECT_FALSE(Variant(true) == Variant(-1));
  auto obj = std::make_shared<Object>();
  EXPECT_TRUE(Variant(obj) == Variant(obj));
  EXPECT_FALSE(Variant(obj) == Variant(std::make_shared<Object>()));
  EXPECT_FALSE(Variant(Array::of({1, "b"})) == Variant(Array::of({1, "b"}, 1)));

  Variant text = "text";  // a literal is text, never a Boolean
  EXPECT_EQ(text.kind(), Variant::Kind::String);
}

TEST(VariantHelpers, TrimRoundAndLength) {
  EXPECT_EQ(conv::trim(" \t\r\nx y\n "), "x y");
  EXPECT_EQ(conv::round_half_even(2.665, 2), 2.66);
  EXPECT_EQ(conv::round_half_even(1.23456, 4), 1.2346);
  EXPECT_EQ(conv::utf8_length("\xC3\xA9t\xE2\x82\xAC\xF0\x9F\x98\x80"), 4u);
}

}  // namespace
}  // namespace kxui
