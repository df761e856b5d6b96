#include "kxui/frame/recordset.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "kxui/frame/failure.h"

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

RecordsetPtr make_set(int rows) {
  auto rs = std::make_shared<Recordset>();
  rs->GetFields().Append("ID", adInteger);
  rs->GetFields().Append("Name", adVarWChar, 5, adFldIsNullable);
  rs->Open();
  for (int32_t i = 1; i <= rows; ++i) {
    rs->AddNew();
    rs->set_value(0, i);
    rs->Update();
  }
  return rs;
}

TEST(RecordsetTest, FieldsAreFixedOnceOpenAndLookedUpCaseInsensitively) {
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

TEST(RecordsetTest, EmptySetAcceptsAnyPositionAndStaysAtBothEnds) {
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

TEST(RecordsetTest, MovingPastEitherEndAndPositionBounds) {
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

TEST(RecordsetTest, NewRowsReadEmptyAndMovingCommitsThem) {
  Recordset rs;
  rs.GetFields().Append("N", adInteger);
  rs.Open();
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

TEST(RecordsetTest, ValuesAreCoercedToTheFieldType) {
  Recordset rs;
  Fields& f = rs.GetFields();
  f.Append("I", adInteger);
  f.Append("C", adCurrency);
  f.Append("B", adBoolean);
  f.Append("T", adVarWChar, 20);
  f.Append("Dt", adDBTimeStamp);
  f.Append("V", adVariant, 0, adFldUpdatable);
  f.Append("Nullable", adSmallInt, 0, adFldMayBeNull);
  rs.Open();
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

TEST(RecordsetTest, TextLongerThanDefinedSizeFailsUncut) {
  Recordset rs;
  rs.GetFields().Append("Code", adVarChar, 4);
  rs.GetFields().Append("Memo", adLongVarWChar, 4);
  rs.Open();
  rs.AddNew();
  const std::string four = "\xC3\xA9t\xC3\xA9\xE2\x82\xAC";  // four code points, eight bytes
  rs.set_value(0, four);
  EXPECT_EQ(failure_of([&] { rs.set_value(0, "\xC3\xA9t\xC3\xA9s!"); }), err::kDataTooLong);
  EXPECT_EQ(failure_of([&] { rs.set_value(0, 12345); }), err::kDataTooLong);
  EXPECT_EQ(rs.value(0).get_string(), four);
  rs.set_value(1, "long types have no limit");
}

TEST(RecordsetTest, CloneKeepsLayoutAndTravelsInAVariantByReference) {
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

  copy->Open();
  Variant v(copy);
  v.as<Recordset>()->AddNew();
  EXPECT_EQ(copy->RecordCount(), 1);
}

}  // namespace
}  // namespace kxui
