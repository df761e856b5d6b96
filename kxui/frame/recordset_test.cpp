#include "kxui/frame/recordset.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "kxui/frame/failure.h"
#include "kxui/testing/row_sources.h"

namespace kxui {
namespace {

// Runs f and returns the number of the Failure it threw (0 when it did not throw).
int32_t failure_of(const std::function<void()>& f) {
  try {
    f();
  } catch (const Failure& e) {
    return e.number();
  }
  return 0;
}

// Every test runs over a record set filled row by row and over one reading its rows on
// demand; both must behave alike.
class RecordsetTest : public ::testing::TestWithParam<bool> {
 protected:
  bool on_demand() const { return GetParam(); }

  // IDs 1..rows, names "n1".."n<rows>"; positioned as the filling left it.
  RecordsetPtr make_set(int rows) {
    std::vector<std::vector<Variant>> values;
    for (int32_t i = 1; i <= rows; ++i) values.push_back({i, "n" + std::to_string(i % 1000)});
    auto rs = kxui::testing::open_recordset(
        {{"ID", adInteger}, {"Name", adVarWChar, 5, adFldIsNullable}}, values, on_demand());
    return rs;
  }
  // Opens an empty set: a set that reads on demand turns into a filled one when changed.
  void open(Recordset& rs) {
    if (on_demand()) {
      rs.Open(std::make_shared<kxui::testing::VectorRowSource>(std::vector<std::vector<Variant>>{}));
    } else {
      rs.Open();
    }
  }
};

INSTANTIATE_TEST_SUITE_P(Rows, RecordsetTest, ::testing::Values(false, true),
                         [](const auto& info) { return info.param ? "OnDemand" : "Added"; });

TEST_P(RecordsetTest, FieldsAreFixedOnceOpenAndLookedUpCaseInsensitively) {
  auto rs = make_set(1);
  EXPECT_EQ(failure_of([&] { rs->GetFields().Append("Other", adInteger); }), err::kObjectOpen);
  EXPECT_EQ(rs->GetFields().Item("NAME").Name(), "Name");
  EXPECT_EQ(failure_of([&] { (void)(*rs)["Missing"]; }), err::kItemNotFound);
  EXPECT_EQ(failure_of([&] { (void)(*rs)[2]; }), err::kItemNotFound);
  Recordset fresh;
  fresh.GetFields().Append("Amount", adCurrency);
  EXPECT_EQ(failure_of([&] { fresh.GetFields().Append("AMOUNT", adDouble); }), err::kNotAllowed);
  EXPECT_EQ(failure_of([&] { (void)fresh.RecordCount(); }), err::kObjectClosed);
}

TEST_P(RecordsetTest, EmptySetAcceptsAnyPositionAndStaysAtBothEnds) {
  auto rs = make_set(0);
  rs->MoveFirst();
  rs->MoveLast();
  for (int32_t pos : {0, 1, 2, -20}) {
    SCOPED_TRACE(pos);
    EXPECT_EQ(failure_of([&] { rs->SetAbsolutePosition(pos); }), 0);
    EXPECT_TRUE(rs->IsBOF() && rs->IsEOF());
  }
  EXPECT_EQ(rs->AbsolutePosition(), adPosUnknown);
  EXPECT_EQ(failure_of([&] { rs->MoveNext(); }), err::kNoCurrentRecord);
  EXPECT_EQ(failure_of([&] { (void)(*rs)[0].Value(); }), err::kNoCurrentRecord);
}

TEST_P(RecordsetTest, MovingPastEitherEndAndPositionBounds) {
  auto rs = make_set(4);
  rs->MoveLast();
  rs->MoveNext();  // past the last row: EOF without an error
  EXPECT_TRUE(rs->IsEOF() && !rs->IsBOF());
  EXPECT_EQ(rs->AbsolutePosition(), adPosEOF);
  EXPECT_EQ(failure_of([&] { (void)rs->value(0); }), err::kNoCurrentRecord);
  EXPECT_EQ(failure_of([&] { rs->MoveNext(); }), err::kNoCurrentRecord);
  rs->MoveFirst();
  rs->MovePrevious();
  EXPECT_TRUE(rs->IsBOF() && !rs->IsEOF());
  EXPECT_EQ(failure_of([&] { rs->MovePrevious(); }), err::kNoCurrentRecord);

  rs->SetAbsolutePosition(3);
  for (int32_t pos : {0, 5, -1}) {
    SCOPED_TRACE(pos);
    EXPECT_EQ(failure_of([&] { rs->SetAbsolutePosition(pos); }), err::kArgumentOutOfRange);
  }
  EXPECT_EQ(rs->AbsolutePosition(), 3);
  EXPECT_EQ(rs->value(0), Variant(3));
}

TEST_P(RecordsetTest, NewRowsReadEmptyAndMovingCommitsThem) {
  Recordset rs;
  rs.GetFields().Append("N", adInteger);
  open(rs);
  rs.AddNew();
  EXPECT_TRUE(rs[0].Value().is_empty());
  rs[0].SetValue(1);
  rs.AddNew();  // commits row 1
  rs[0].SetValue(2);
  rs.MoveFirst();  // commits row 2
  EXPECT_EQ(rs.RecordCount(), 2);
  EXPECT_EQ(rs.value(0), Variant(1));
  for (int i = 3; i <= 100; ++i) {  // across several storage segments
    rs.AddNew();
    rs.set_value(0, i);
  }
  rs.SetAbsolutePosition(2);
  EXPECT_EQ(rs.value(0), Variant(2));
  rs.MoveLast();
  EXPECT_EQ(rs.value(0), Variant(100));
}

TEST_P(RecordsetTest, ValuesAreCoercedToTheFieldType) {
  Recordset rs;
  Fields& f = rs.GetFields();
  f.Append("I", adInteger);
  f.Append("C", adCurrency);
  f.Append("B", adBoolean);
  f.Append("T", adVarWChar, 20);
  f.Append("Dt", adDBTimeStamp);
  f.Append("V", adVariant, 0, adFldUpdatable);
  f.Append("Nullable", adSmallInt, 0, adFldMayBeNull);
  open(rs);
  rs.AddNew();
  const std::pair<Variant, Variant> stored[] = {
      {"  42 ", 42}, {1.5, Currency::from_scaled(15000)}, {5, true}, {12, "12"},
      {"2024-02-29 10:30:00", Date::from_civil(2024, 2, 29, 10, 30)}, {"as is", "as is"},
      {int32_t{7}, int16_t{7}},
  };
  for (int32_t i = 0; i < 7; ++i) {
    SCOPED_TRACE(i);
    rs.set_value(i, stored[i].first);
    EXPECT_EQ(rs.value(i), stored[i].second);
    EXPECT_EQ(rs.value(i).kind(), stored[i].second.kind());
  }
  EXPECT_EQ(failure_of([&] { rs.set_value(0, "abc"); }), err::kTypeMismatch);
  EXPECT_EQ(failure_of([&] { rs.set_value(0, 3e9); }), err::kOverflow);
  EXPECT_EQ(rs.value(0), Variant(42)) << "a failed assignment leaves the value alone";
  // Null only where the attributes allow it; unspecified attributes allow it.
  EXPECT_EQ(failure_of([&] { rs.set_value(5, Variant::null()); }), err::kNotAllowed);
  rs.set_value(6, Variant::null());
  rs.set_value(0, Variant::null());
  EXPECT_TRUE(rs.value(0).is_null());
}

TEST_P(RecordsetTest, TextLongerThanDefinedSizeFailsUncut) {
  Recordset rs;
  rs.GetFields().Append("Code", adVarChar, 4);
  rs.GetFields().Append("Memo", adLongVarWChar, 4);
  open(rs);
  rs.AddNew();
  const std::string four = "\xC3\xA9t\xC3\xA9\xE2\x82\xAC";  // four code points, eight bytes
  rs.set_value(0, four);
  EXPECT_EQ(failure_of([&] { rs.set_value(0, "\xC3\xA9t\xC3\xA9s!"); }), err::kDataTooLong);
  EXPECT_EQ(failure_of([&] { rs.set_value(0, 12345); }), err::kDataTooLong);
  EXPECT_EQ(rs.value(0).get_string(), four);
  rs.set_value(1, "long types have no limit");
}

TEST_P(RecordsetTest, CloneKeepsLayoutAndTravelsInAVariantByReference) {
  Recordset src;
  src.GetFields().Append("ID", adInteger, 0, adFldFixed);
  src.GetFields().Append("Price", adNumeric, 19, adFldIsNullable | adFldFixed);
  src.GetFields().Item("Price").SetPrecision(12);
  src.GetFields().Item("Price").SetNumericScale(3);
  auto copy = CloneRecordsetStructure(src);
  EXPECT_EQ(copy->State(), adStateClosed);
  ASSERT_EQ(copy->GetFields().Count(), 2);
  const FieldInfo& b = copy->GetFields().info(1);
  EXPECT_EQ(b.name, "Price");
  EXPECT_EQ(b.type, adNumeric);
  EXPECT_EQ(b.defined_size, 19);
  EXPECT_EQ(b.attributes, adFldIsNullable | adFldFixed);
  EXPECT_EQ(b.precision, 12);
  EXPECT_EQ(b.numeric_scale, 3);

  open(*copy);
  Variant v(copy);
  v.as<Recordset>()->AddNew();
  EXPECT_EQ(copy->RecordCount(), 1);
}

using kxui::testing::VectorRowSource;

std::shared_ptr<VectorRowSource> numbered_rows(int32_t rows) {
  std::vector<std::vector<Variant>> values;
  for (int32_t i = 1; i <= rows; ++i) values.push_back({i, "row " + std::to_string(i)});
  return std::make_shared<VectorRowSource>(std::move(values));
}

// An open record set over `source`, ID and a 40-character text.
RecordsetPtr over(const std::shared_ptr<RowSource>& source) {
  auto rs = std::make_shared<Recordset>();
  rs->GetFields().Append("ID", adInteger, 0, adFldFixed);
  rs->GetFields().Append("Text", adVarWChar, 40);
  rs->Open(source);
  return rs;
}

TEST(RecordsetOnDemand, ReadsOnlyTheRowsTheCursorReaches) {
  struct Case {
    const char* name;
    std::function<void(Recordset&)> walk;
    int32_t max_fetches;
    int64_t max_rows_read;
  };
  const Case cases[] = {
      {"count and position only", [](Recordset& rs) { rs.SetAbsolutePosition(5000); }, 0, 0},
      {"a page of 20 in the middle",
       [](Recordset& rs) {
         rs.SetAbsolutePosition(5001);
         for (int i = 0; i < 20; ++i, rs.MoveNext()) EXPECT_EQ(rs.value(0), Variant(5001 + i));
       },
       1, 64},
      {"the last rows, backwards",
       [](Recordset& rs) {
         rs.MoveLast();
         for (int i = 0; i < 100; ++i, rs.MovePrevious()) EXPECT_EQ(rs.value(0), Variant(10000 - i));
       },
       2, 128},
      {"every row, forwards: blocks grow",
       [](Recordset& rs) {
         int32_t n = 0;
         for (rs.MoveFirst(); !rs.IsEOF(); rs.MoveNext()) ASSERT_EQ(rs.value(0), Variant(++n));
         EXPECT_EQ(n, 10000);
       },
       9, 10000},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    auto source = numbered_rows(10000);
    auto rs = over(source);
    EXPECT_EQ(rs->RecordCount(), 10000);
    c.walk(*rs);
    EXPECT_LE(source->fetches, c.max_fetches);
    EXPECT_LE(source->rows_read, c.max_rows_read);
  }
}

TEST(RecordsetOnDemand, RowsAreReadOnceAndKeepTheirPlace) {
  auto source = numbered_rows(300);
  auto rs = over(source);
  rs->SetAbsolutePosition(100);
  const Variant& held = rs->value(1);
  rs->SetAbsolutePosition(250);
  EXPECT_EQ(rs->value(0), Variant(250));
  rs->MoveFirst();  // positions only: nothing read
  rs->SetAbsolutePosition(120);
  EXPECT_EQ(rs->value(0), Variant(120));
  rs->SetAbsolutePosition(100);
  EXPECT_EQ(&rs->value(1), &held) << "a row read stays where it is";
  EXPECT_EQ(held, Variant("row 100"));
  const int32_t fetches = source->fetches;
  for (int32_t pos : {100, 163, 250, 237, 300, 120}) {
    rs->SetAbsolutePosition(pos);
    EXPECT_EQ(rs->value(0), Variant(pos));
  }
  EXPECT_EQ(source->fetches, fetches) << "nothing is read twice";
  EXPECT_EQ(source->rows_read, 128) << "the block at 250 ends at the last row";
}

TEST(RecordsetOnDemand, ValuesAreStoredAsAssignmentsStoreThem) {
  const std::vector<std::vector<Variant>> rows = {
      {"  42 ", 12},                               // converted: 42 and "12"
      {Variant::null(), "forty characters or fewer"},  // ID takes no Null
      {"abc", ""},                                  // not a number
      {1, std::string(41, 'x')},                    // too long
  };
  const std::pair<int32_t, int32_t> expected[] = {{0, 0}, {err::kNotAllowed, 0},
                                                  {err::kTypeMismatch, 0}, {0, err::kDataTooLong}};
  for (size_t i = 0; i < rows.size(); ++i) {
    SCOPED_TRACE(i);
    auto rs = over(std::make_shared<VectorRowSource>(std::vector<std::vector<Variant>>{rows[i]}));
    rs->MoveFirst();
    const auto [id_error, text_error] = expected[i];
    // A row with a value its field refuses fails as a whole, whichever field is read.
    const int32_t error = id_error != 0 ? id_error : text_error;
    EXPECT_EQ(failure_of([&] { (void)rs->value(0); }), error);
    if (error == 0) {
      EXPECT_EQ(rs->value(0), Variant(42));
      EXPECT_EQ(rs->value(1).kind(), Variant::Kind::String);
      EXPECT_EQ(rs->value(1), Variant("12"));
    }
  }
}

TEST(RecordsetOnDemand, ASourceThatFailsOrFallsShortFailsTheRead) {
  auto source = numbered_rows(100);
  auto rs = over(source);
  int calls = 0;
  source->before_fetch = [&](int64_t, int64_t) {
    if (++calls == 1) throw Failure(-2147467259, "Tier", "the database is away");
  };
  rs->MoveFirst();
  EXPECT_EQ(failure_of([&] { (void)rs->value(0); }), -2147467259);
  EXPECT_EQ(rs->value(0), Variant(1)) << "the next read tries again";

  source->short_by = 1;
  rs->SetAbsolutePosition(80);
  EXPECT_EQ(failure_of([&] { (void)rs->value(0); }), err::kNoCurrentRecord);
  EXPECT_EQ(rs->AbsolutePosition(), 80);

  for (const auto& bad : {std::shared_ptr<RowSource>(),
                          std::shared_ptr<RowSource>(std::make_shared<VectorRowSource>(
                              std::vector<std::vector<Variant>>{}))}) {
    Recordset closed;
    closed.GetFields().Append("ID", adInteger);
    if (bad) {
      closed.Open(bad);
      EXPECT_EQ(failure_of([&] { closed.Open(bad); }), err::kObjectOpen);
    } else {
      EXPECT_EQ(failure_of([&] { closed.Open(bad); }), err::kArgumentOutOfRange);
      EXPECT_EQ(closed.State(), adStateClosed);
    }
  }
}

// The first change reads what is left and leaves the source; rows, position and values
// read so far stay as they were.
TEST(RecordsetOnDemand, ChangingTheSetReadsTheRestFirst) {
  const std::function<void(Recordset&)> changes[] = {
      [](Recordset& rs) { rs.AddNew(); },
      [](Recordset& rs) { rs.set_value(1, "changed"); },
  };
  for (size_t i = 0; i < 2; ++i) {
    SCOPED_TRACE(i);
    auto source = numbered_rows(1000);
    auto rs = over(source);
    rs->SetAbsolutePosition(500);
    EXPECT_EQ(rs->value(0), Variant(500));
    changes[i](*rs);
    EXPECT_EQ(source->rows_read, 1000);
    EXPECT_LE(source->fetches, 3) << "each gap in one read";
    const int32_t fetches = source->fetches;
    EXPECT_EQ(rs->RecordCount(), i == 0 ? 1001 : 1000);
    EXPECT_EQ(rs->AbsolutePosition(), i == 0 ? 1001 : 500);
    if (i == 1) {
      EXPECT_EQ(rs->value(1), Variant("changed"));
    }
    for (int32_t pos : {1, 499, 501, 1000}) {
      rs->SetAbsolutePosition(pos);
      EXPECT_EQ(rs->value(0), Variant(pos));
    }
    EXPECT_EQ(source->fetches, fetches);
  }
}

}  // namespace
}  // namespace kxui
