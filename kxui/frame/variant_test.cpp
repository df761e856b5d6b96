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

// An expected integer result, or the Failure number when `error` is set.
struct IntCase {
  Variant in;
  int32_t want;
  int error = 0;
};

TEST(VariantToInt, RoundsHalfToEvenBeforeTheRangeCheck) {
  const IntCase cases[] = {
      {2.5, 2},
      {3.5, 4},
      {-2.5, -2},
      {-3.5, -4},
      {0.5, 0},
      {1.5, 2},
      {2.4999, 2},
      {2147483647.49, INT32_MAX},
      {2147483647.5, 0, 6},
      {-2147483648.5, INT32_MIN},
      {-2147483648.51, 0, 6},
      {1e300, 0, 6},
      {std::nan(""), 0, 6},
      {cy(25000), 2},
      {cy(35000), 4},
      {cy(-25000), -2},
      {cy(-25001), -3},
      {cy(21474836475000), 0, 6},
      {cy(-21474836485000), INT32_MIN},
      {true, -1},
      {false, 0},
      {Variant(), 0},
      {int16_t{-7}, -7},
      {"  25 ", 25},
      {"\t-2.5\r\n", -2},
      {"+7", 7},
      {"1e3", 1000},
      {"1.5E+1", 15},
      {".5", 0},
      {"5.", 5},
      {"2147483647.5", 0, 6},
      {"1e400", 0, 6},
      {"abc", 0, 13},
      {"", 0, 13},
      {"   ", 0, 13},
      {"1,5", 0, 13},
      {"0x10", 0, 13},
      {"inf", 0, 13},
      {"nan", 0, 13},
      {"1e", 0, 13},
      {"- 1", 0, 13},
      {"12abc", 0, 13},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.in.try_to_string().value_or("<no text>"));
    if (c.error != 0) {
      EXPECT_EQ(failure_of([&] { c.in.to_int32(); }), c.error);
      EXPECT_FALSE(c.in.try_to_int32());
    } else {
      EXPECT_EQ(c.in.to_int32(), c.want);
      EXPECT_EQ(c.in.try_to_int32(), c.want);
    }
  }
}

TEST(VariantToInt, Int16Edges) {
  EXPECT_EQ(Variant(32767.49).to_int16(), 32767);
  EXPECT_EQ(failure_of([] { Variant(32767.5).to_int16(); }), 6);
  EXPECT_EQ(Variant(-32768.5).to_int16(), -32768);
  EXPECT_EQ(failure_of([] { Variant(-32768.51).to_int16(); }), 6);
  EXPECT_EQ(failure_of([] { Variant(int32_t{32768}).to_int16(); }), 6);
  EXPECT_EQ(Variant(int32_t{-32768}).to_int16(), -32768);
  EXPECT_EQ(Variant("  6.5 ").to_int16(), 6);
  EXPECT_EQ(Variant(true).to_int16(), -1);
}

TEST(VariantConversions, NullIsInvalidUseEverywhereAndOtherKindsMismatch) {
  const Variant null = Variant::null();
  std::vector<std::function<void(const Variant&)>> targets = {
      [](const Variant& v) { v.to_int32(); },    [](const Variant& v) { v.to_int16(); },
      [](const Variant& v) { v.to_double(); },   [](const Variant& v) { v.to_currency(); },
      [](const Variant& v) { v.to_bool(); },     [](const Variant& v) { v.to_date(); },
      [](const Variant& v) { v.to_string(); },
  };
  Variant array(Array(0, 1));
  Variant object(std::make_shared<Object>());
  for (size_t i = 0; i < targets.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(failure_of([&] { targets[i](null); }), 94);
    EXPECT_EQ(failure_of([&] { targets[i](Variant::missing()); }), 13);
    EXPECT_EQ(failure_of([&] { targets[i](array); }), 13);
    EXPECT_EQ(failure_of([&] { targets[i](object); }), 13);
  }
  EXPECT_FALSE(null.try_to_string());
  EXPECT_FALSE(null.try_to_double());
  EXPECT_EQ(failure_of([&] { null.to_object(); }), 94);
  EXPECT_EQ(failure_of([] { Variant(1).to_object(); }), 13);
  EXPECT_EQ(failure_of([] { Variant(1).array(); }), 13);
}

TEST(VariantConversions, EmptyGivesZeroValues) {
  Variant e;
  EXPECT_EQ(e.to_int32(), 0);
  EXPECT_EQ(e.to_double(), 0.0);
  EXPECT_EQ(e.to_currency(), Currency{});
  EXPECT_FALSE(e.to_bool());
  EXPECT_EQ(e.to_string(), "");
  EXPECT_EQ(e.to_date(), Date::from_civil(1899, 12, 30));
}

TEST(VariantConversions, BooleanAndNumbers) {
  EXPECT_EQ(Variant(true).to_double(), -1.0);
  EXPECT_EQ(Variant(true).to_currency(), Currency::from_scaled(-10000));
  EXPECT_EQ(Variant(true).to_string(), "True");
  EXPECT_EQ(Variant(false).to_string(), "False");
  EXPECT_TRUE(Variant(0.0001).to_bool());
  EXPECT_TRUE(Variant(int16_t{-3}).to_bool());
  EXPECT_FALSE(Variant(0.0).to_bool());
  EXPECT_TRUE(cy(1).to_bool());
  EXPECT_FALSE(cy(0).to_bool());
  EXPECT_TRUE(Variant("true").to_bool());
  EXPECT_FALSE(Variant(" FALSE ").to_bool());
  EXPECT_TRUE(Variant("TrUe").to_bool());
  EXPECT_FALSE(Variant("0").to_bool());
  EXPECT_TRUE(Variant("-0.5").to_bool());
  EXPECT_EQ(failure_of([] { Variant("yes").to_bool(); }), 13);
  EXPECT_EQ(failure_of([] { Variant("").to_bool(); }), 13);
}

TEST(VariantCurrency, RoundsHalfToEvenAtTheFifthDecimal) {
  const std::pair<double, int64_t> cases[] = {
      {1.23445, 12344},   {1.23455, 12346},     {1.23446, 12345}, {-1.23445, -12344},
      {0.00005, 0},       {0.00015, 2},         {2.5, 25000},     {12.34567, 123457},
      {0.1 + 0.2, 3000},  {900000000000000.0, 9000000000000000000},
  };
  for (const auto& [in, scaled] : cases) {
    SCOPED_TRACE(in);
    EXPECT_EQ(Currency::from_double(in).scaled, scaled);
    EXPECT_EQ(Variant(in).to_currency().scaled, scaled);
  }
  EXPECT_EQ(failure_of([] { Currency::from_double(1e300); }), 6);
  EXPECT_EQ(failure_of([] { Currency::from_double(-1e15); }), 6);
  EXPECT_EQ(failure_of([] { Currency::from_double(std::nan("")); }), 6);
  EXPECT_EQ(Variant(" 12.34565 ").to_currency().scaled, 123456);
  EXPECT_EQ(Variant(int32_t{-3}).to_currency().scaled, -30000);
}

TEST(VariantText, NumbersInInvariantForm) {
  const std::pair<Variant, const char*> cases[] = {
      {0.1, "0.1"},
      {1234.5, "1234.5"},
      {-1234.5, "-1234.5"},
      {-0.0, "0"},
      {100.0, "100"},
      {0.1 + 0.2, "0.3"},
      {1.0 / 3, "0.333333333333333"},
      {2.0 / 3, "0.666666666666667"},
      {123456789.123456789, "123456789.123457"},
      {999999999999999.0, "999999999999999"},
      {1e14, "100000000000000"},
      {1e15, "1E+15"},
      {-1.5e15, "-1.5E+15"},
      {9999999999999999.0, "1E+16"},
      {123456789012345678.0, "1.23456789012346E+17"},
      {1e100, "1E+100"},
      {1e-11, "0.00000000001"},
      {1.5e-12, "1.5E-12"},
      {0.00001, "0.00001"},
      {cy(125000), "12.5"},
      {cy(30000), "3"},
      {cy(-1), "-0.0001"},
      {cy(std::numeric_limits<int64_t>::min()), "-922337203685477.5808"},
      {int16_t{-32768}, "-32768"},
      {int32_t{2147483647}, "2147483647"},
      {"as is ", "as is "},
  };
  for (const auto& [in, want] : cases) {
    SCOPED_TRACE(want);
    EXPECT_EQ(in.to_string(), want);
  }
  // Text written for a double reads back as the same text.
  for (double d : {0.1, 1234.5, 1e15, 1.5e-12, 1.0 / 3}) {
    EXPECT_EQ(Variant(Variant(d).to_string()).to_string(), Variant(d).to_string());
  }
}

TEST(VariantDate, CivilValuesAndImpossibleDates) {
  Date d = Date::from_civil(2024, 2, 29, 13, 5, 9);
  EXPECT_EQ(d.year(), 2024);
  EXPECT_EQ(d.month(), 2);
  EXPECT_EQ(d.day(), 29);
  EXPECT_EQ(d.hour(), 13);
  EXPECT_EQ(d.minute(), 5);
  EXPECT_EQ(d.second(), 9);
  EXPECT_EQ(d.date_part(), Date::from_civil(2024, 2, 29));
  EXPECT_EQ(Date::from_civil(1970, 1, 1).seconds(), 0);
  Date old = Date::from_civil(1899, 12, 29, 6);
  EXPECT_EQ(old.day(), 29);
  EXPECT_EQ(old.hour(), 6);
  EXPECT_EQ(old.date_part(), Date::from_civil(1899, 12, 29));
  EXPECT_EQ(Date::from_civil(100, 1, 1).year(), 100);
  EXPECT_EQ(Date::from_civil(9999, 12, 31, 23, 59, 59).second(), 59);
  const int bad[][6] = {{2023, 2, 29, 0, 0, 0}, {2024, 2, 30, 0, 0, 0}, {2024, 4, 31, 0, 0, 0},
                        {2024, 13, 1, 0, 0, 0}, {2024, 0, 1, 0, 0, 0},  {2024, 1, 0, 0, 0, 0},
                        {2024, 1, 1, 24, 0, 0}, {2024, 1, 1, 0, 60, 0}, {2024, 1, 1, 0, 0, 60},
                        {99, 1, 1, 0, 0, 0},    {10000, 1, 1, 0, 0, 0}, {1900, 2, 29, 0, 0, 0}};
  for (const auto& b : bad) {
    SCOPED_TRACE(testing::Message() << b[0] << "-" << b[1] << "-" << b[2] << " " << b[3]);
    EXPECT_EQ(failure_of([&] { Date::from_civil(b[0], b[1], b[2], b[3], b[4], b[5]); }), 5);
  }
}

TEST(VariantDate, TextRoundTripAndDatePart) {
  Date noon = Date::from_civil(2024, 2, 29, 13, 5, 9);
  Date midnight = Date::from_civil(2024, 2, 29);
  EXPECT_EQ(Variant(noon).to_string(), "2024-02-29 13:05:09");
  EXPECT_EQ(Variant(midnight).to_string(), "2024-02-29");
  EXPECT_EQ(Variant(Date::from_civil(100, 3, 4)).to_string(), "0100-03-04");
  EXPECT_EQ(Variant(Variant(noon).to_string()).to_date(), noon);
  EXPECT_EQ(Variant(Variant(midnight).to_string()).to_date(), midnight);
  EXPECT_EQ(conv::date_from_text(" 2024-02-29T13:05:09 "), noon);
  EXPECT_EQ(conv::date_part(Variant(noon)), midnight);
  EXPECT_EQ(conv::date_part(Variant("2024-02-29 13:05:09")), midnight);
  EXPECT_EQ(failure_of([] { conv::date_part(Variant::null()); }), 94);
  for (const char* bad : {"", "2024-2-29", "2024-02-30", "2023-02-29", "29.02.2024",
                          "2024-02-29 24:00:00", "2024-02-29 13:05", "2024-02-29x13:05:09",
                          "0099-01-01", "abc", "2024-02-29 13:05:09 x"}) {
    SCOPED_TRACE(bad);
    EXPECT_EQ(failure_of([&] { conv::date_from_text(bad); }), 13);
    EXPECT_EQ(failure_of([&] { Variant(bad).to_date(); }), 13);
  }
}

TEST(VariantDate, DaySerials) {
  const std::pair<Date, double> cases[] = {
      {Date::from_civil(1899, 12, 30), 0.0},
      {Date::from_civil(1970, 1, 1), 25569.0},
      {Date::from_civil(2000, 1, 1, 12), 36526.5},
      {Date::from_civil(1899, 12, 29, 6), -1.25},
      {Date::from_civil(1899, 12, 30, 18), 0.75},
  };
  for (const auto& [date, serial] : cases) {
    SCOPED_TRACE(serial);
    EXPECT_EQ(Variant(date).to_double(), serial);
    EXPECT_EQ(Variant(serial).to_date(), date);
  }
  EXPECT_EQ(Variant(Date::from_civil(2000, 1, 1, 12)).to_int32(), 36526);  // half to even
  EXPECT_EQ(Variant(Date::from_civil(2000, 1, 2, 12)).to_int32(), 36528);
  EXPECT_EQ(Variant(36526.99999999).to_date(), Date::from_civil(2000, 1, 2));
  EXPECT_EQ(Variant(36526.0 + 1.4 / 86400).to_date(), Date::from_civil(2000, 1, 1, 0, 0, 1));
  EXPECT_EQ(Variant(int32_t{1}).to_date(), Date::from_civil(1899, 12, 31));
  EXPECT_EQ(cy(15000).to_date(), Date::from_civil(1899, 12, 31, 12));
  EXPECT_EQ(failure_of([] { Variant(1e10).to_date(); }), 6);
  EXPECT_EQ(failure_of([] { Variant(3e6).to_date(); }), 6);
}

TEST(VariantArray, BoundsAndSubscripts) {
  for (int32_t lower : {0, 1}) {
    SCOPED_TRACE(lower);
    Array a(lower, lower + 2);
    EXPECT_EQ(a.dims(), 1);
    EXPECT_EQ(a.lbound(), lower);
    EXPECT_EQ(a.ubound(), lower + 2);
    EXPECT_EQ(a.size(), 3u);
    a.at(lower) = 10;
    a.at(lower + 2) = "last";
    EXPECT_EQ(a.at(lower).to_int32(), 10);
    EXPECT_TRUE(a.at(lower + 1).is_empty());
    EXPECT_EQ(failure_of([&] { a.at(lower - 1); }), 9);
    EXPECT_EQ(failure_of([&] { a.at(lower + 3); }), 9);
    EXPECT_EQ(failure_of([&] { a.at(lower, lower); }), 9);
    EXPECT_EQ(failure_of([&] { a.lbound(2); }), 9);
    EXPECT_EQ(failure_of([&] { a.ubound(0); }), 9);
  }
  Array empty(1, 0);
  EXPECT_EQ(empty.size(), 0u);
  EXPECT_EQ(empty.ubound(), 0);
  EXPECT_EQ(failure_of([] { Array(0, -2); }), 9);

  Array grid(Array::Bound{1, 2}, Array::Bound{0, 3});  // 1..2 x 0..2
  EXPECT_EQ(grid.dims(), 2);
  EXPECT_EQ(grid.ubound(1), 2);
  EXPECT_EQ(grid.lbound(2), 0);
  EXPECT_EQ(grid.ubound(2), 2);
  grid.at(2, 2) = 22;
  EXPECT_EQ(grid.values().back().to_int32(), 22);
  EXPECT_EQ(failure_of([&] { grid.at(0, 0); }), 9);
  EXPECT_EQ(failure_of([&] { grid.at(1, 3); }), 9);
  EXPECT_EQ(failure_of([&] { grid.at(1); }), 9);

  Array listed = Array::of({1, "two"}, 1);
  EXPECT_EQ(listed.lbound(), 1);
  EXPECT_EQ(listed.at(2).to_string(), "two");
}

TEST(VariantArray, RedimPreserveKeepsContents) {
  Array a = Array::of({1, 2, 3});
  a.redim_preserve(4);
  EXPECT_EQ(a.ubound(), 4);
  EXPECT_EQ(a.at(2).to_int32(), 3);
  EXPECT_TRUE(a.at(4).is_empty());
  a.redim_preserve(0);
  EXPECT_EQ(a.size(), 1u);
  EXPECT_EQ(a.at(0).to_int32(), 1);
  EXPECT_EQ(failure_of([&] { a.redim_preserve(-2); }), 9);
  EXPECT_EQ(a.size(), 1u);

  Array grid(Array::Bound{0, 2}, Array::Bound{0, 2});
  for (int32_t i = 0; i < 2; ++i) {
    for (int32_t j = 0; j < 2; ++j) grid.at(i, j) = 10 * i + j;
  }
  grid.redim_preserve(4);
  EXPECT_EQ(grid.ubound(1), 1);
  EXPECT_EQ(grid.ubound(2), 4);
  for (int32_t i = 0; i < 2; ++i) {
    for (int32_t j = 0; j < 2; ++j) EXPECT_EQ(grid.at(i, j).to_int32(), 10 * i + j);
  }
  EXPECT_TRUE(grid.at(1, 4).is_empty());

  Array never;
  never.redim_preserve(1);
  EXPECT_EQ(never.lbound(), 0);
  EXPECT_EQ(never.size(), 2u);
}

TEST(VariantArray, CopiesAreDeep) {
  Variant a(Array::of({1, 2}));
  Variant b = a;
  b.array().at(0) = 99;
  EXPECT_EQ(a.array().at(0).to_int32(), 1);
  Variant c;
  c = a;
  c.array().redim_preserve(5);
  EXPECT_EQ(a.array().size(), 2u);
  c = a;  // same kind: still a copy
  c.array().at(1) = "x";
  EXPECT_EQ(a.array().at(1).to_int32(), 2);
  Variant moved = std::move(a);
  EXPECT_EQ(moved.array().size(), 2u);
}

TEST(VariantEquality, KindsValuesAndNull) {
  Variant null = Variant::null();
  EXPECT_FALSE(null == null);
  EXPECT_FALSE(null == Variant::null());
  EXPECT_FALSE(null == Variant());
  EXPECT_FALSE(Variant("") == null);
  EXPECT_TRUE(Variant() == Variant());
  EXPECT_FALSE(Variant() == Variant(0));
  EXPECT_FALSE(Variant() == Variant(""));
  EXPECT_TRUE(Variant(int16_t{2}) == Variant(int32_t{2}));
  EXPECT_TRUE(Variant(2) == Variant(2.0));
  EXPECT_TRUE(Variant(2) == cy(20000));
  EXPECT_TRUE(cy(25000) == Variant(2.5));
  EXPECT_FALSE(cy(25001) == Variant(int16_t{2}));
  EXPECT_FALSE(Variant(2) == Variant(2.5));
  EXPECT_FALSE(Variant("2") == Variant(2));
  EXPECT_FALSE(Variant(true) == Variant(-1));
  EXPECT_TRUE(Variant("a") == Variant(std::string("a")));
  EXPECT_FALSE(Variant("a") == Variant("A"));
  EXPECT_TRUE(Variant(Date::from_civil(2024, 1, 1)) == Variant(Date::from_civil(2024, 1, 1)));

  auto obj = std::make_shared<Object>();
  EXPECT_TRUE(Variant(obj) == Variant(obj));
  EXPECT_FALSE(Variant(obj) == Variant(std::make_shared<Object>()));

  EXPECT_TRUE(Variant(Array::of({1, "b"})) == Variant(Array::of({1, "b"})));
  EXPECT_FALSE(Variant(Array::of({1, "b"})) == Variant(Array::of({1, "b"}, 1)));
  EXPECT_FALSE(Variant(Array::of({1, "b"})) == Variant(Array::of({1, "c"})));
  EXPECT_FALSE(Variant(Array::of({null})) == Variant(Array::of({null})));
}

TEST(VariantConstruction, KindsFromExactTypes) {
  Variant text = "text";
  EXPECT_EQ(text.kind(), Variant::Kind::String);
  EXPECT_EQ(text.get_string(), "text");
  EXPECT_EQ(Variant(std::string_view("sv")).kind(), Variant::Kind::String);
  EXPECT_EQ(Variant(true).kind(), Variant::Kind::Boolean);
  EXPECT_EQ(Variant(int16_t{1}).kind(), Variant::Kind::Int16);
  EXPECT_EQ(Variant(1).kind(), Variant::Kind::Int32);
  EXPECT_TRUE(Variant(1.5).is_numeric());
  EXPECT_TRUE(cy(1).is_numeric());
  EXPECT_FALSE(Variant("1").is_numeric());
  EXPECT_FALSE(Variant(Date{}).is_numeric());
  EXPECT_TRUE(Variant::missing().is_missing());
  EXPECT_FALSE(Variant::missing() == Variant());

  ObjectPtr nothing;
  Variant v(nothing);
  EXPECT_TRUE(v.is_object());
  EXPECT_EQ(v.to_object(), nullptr);

  Variant s("a long string that does not fit the small buffer");
  Variant copy = s;
  copy = copy;  // self-assignment keeps the value
  EXPECT_EQ(copy.get_string(), s.get_string());
  copy = Variant(5);
  EXPECT_EQ(copy.to_int32(), 5);
  copy = s;
  EXPECT_EQ(copy.to_string(), s.to_string());
}

TEST(VariantHelpers, TrimRoundAndLength) {
  EXPECT_EQ(conv::trim(" \t\r\nx y\n "), "x y");
  EXPECT_EQ(conv::trim("   "), "");
  EXPECT_EQ(conv::round_half_even(2.675, 2), 2.68);
  EXPECT_EQ(conv::round_half_even(2.665, 2), 2.66);
  EXPECT_EQ(conv::round_half_even(-0.5), 0.0);
  EXPECT_EQ(conv::round_half_even(1234.56789, 3), 1234.568);
  EXPECT_EQ(failure_of([] { conv::round_half_even(1.0, 11); }), 5);
  EXPECT_EQ(conv::utf8_length("abc"), 3u);
  EXPECT_EQ(conv::utf8_length("\xC3\xA9t\xC3\xA9"), 3u);           // two-byte letters
  EXPECT_EQ(conv::utf8_length("\xE2\x82\xAC\xF0\x9F\x98\x80"), 2u);  // three and four bytes
}

}  // namespace
}  // namespace kxui
