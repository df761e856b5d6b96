#include "kxui/frame/recordset.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "kxui/frame/failure.h"

namespace kxui {
namespace {

// Runs f and returns the number of the Failure it threw (0 when it did not throw).
int32_t failure_of(const std::function<void()>& f, std::string* description = nullptr) {
  try {
    f();
  } catch (const Failure& e) {
    if (description) *description = e.description();
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

TEST(RecordsetTest, FieldsAreFixedOnceOpenAndNamesAreUnique) {
  Recordset rs;
  rs.GetFields().Append("Amount", adCurrency);
  EXPECT_EQ(failure_of([&] { rs.GetFields().Append("AMOUNT", adDouble); }), err::kNotAllowed);
  rs.Open();
  EXPECT_EQ(failure_of([&] { rs.GetFields().Append("Other", adInteger); }), err::kObjectOpen);
  EXPECT_EQ(failure_of([&] { rs[0].SetPrecision(10); }), err::kObjectOpen);
  EXPECT_EQ(failure_of([&] { rs.Open(); }), err::kObjectOpen);
  EXPECT_EQ(rs.GetFields().Count(), 1);

  rs.Close();
  EXPECT_EQ(rs.State(), adStateClosed);
  EXPECT_EQ(failure_of([&] { rs.AddNew(); }), err::kObjectClosed);
  EXPECT_EQ(failure_of([&] { rs.MoveFirst(); }), err::kObjectClosed);
  EXPECT_EQ(failure_of([&] { (void)rs.RecordCount(); }), err::kObjectClosed);
}

TEST(RecordsetTest, LookupIsCaseInsensitiveAndUnknownNamesFail) {
  auto rs = make_set(1);
  EXPECT_EQ((*rs)["id"].index(), 0);
  EXPECT_EQ(rs->GetFields().Item("NAME").Name(), "Name");
  EXPECT_EQ(rs->GetFields().find("nAmE"), 1);
  EXPECT_EQ(rs->GetFields().find("Nam"), std::nullopt);

  std::string text;
  EXPECT_EQ(failure_of([&] { (void)(*rs)["Missing"]; }, &text), err::kItemNotFound);
  EXPECT_NE(text.find("Missing"), std::string::npos);
  EXPECT_EQ(failure_of([&] { (void)(*rs)[2]; }), err::kItemNotFound);
  EXPECT_EQ(failure_of([&] { (void)(*rs)[-1]; }), err::kItemNotFound);
  EXPECT_EQ(failure_of([&] { (void)rs->value(2); }), err::kItemNotFound);
}

TEST(RecordsetTest, EmptySetIsAtBothEnds) {
  auto rs = make_set(0);
  EXPECT_TRUE(rs->IsBOF());
  EXPECT_TRUE(rs->IsEOF());
  EXPECT_EQ(rs->RecordCount(), 0);
  EXPECT_EQ(rs->AbsolutePosition(), adPosUnknown);
  rs->MoveFirst();
  rs->MoveLast();
  EXPECT_TRUE(rs->IsBOF() && rs->IsEOF());
  EXPECT_EQ(failure_of([&] { rs->MoveNext(); }), err::kNoCurrentRecord);
  EXPECT_EQ(failure_of([&] { rs->MovePrevious(); }), err::kNoCurrentRecord);
  EXPECT_EQ(failure_of([&] { (void)(*rs)[0].Value(); }), err::kNoCurrentRecord);
  // Any position is accepted and changes nothing.
  for (int32_t pos : {0, 1, 2, -5}) {
    SCOPED_TRACE(pos);
    EXPECT_EQ(failure_of([&] { rs->SetAbsolutePosition(pos); }), 0);
    EXPECT_TRUE(rs->IsBOF() && rs->IsEOF());
  }
}

TEST(RecordsetTest, MovingPastEitherEnd) {
  auto rs = make_set(3);
  rs->MoveLast();
  EXPECT_EQ(rs->AbsolutePosition(), 3);
  rs->MoveNext();  // past the last row: EOF without an error
  EXPECT_TRUE(rs->IsEOF());
  EXPECT_FALSE(rs->IsBOF());
  EXPECT_EQ(rs->AbsolutePosition(), adPosEOF);
  EXPECT_EQ(failure_of([&] { (void)(*rs)["ID"].Value(); }), err::kNoCurrentRecord);
  EXPECT_EQ(failure_of([&] { rs->MoveNext(); }), err::kNoCurrentRecord);
  rs->MovePrevious();
  EXPECT_EQ(rs->value(0), Variant(3));

  rs->MoveFirst();
  rs->MovePrevious();
  EXPECT_TRUE(rs->IsBOF());
  EXPECT_FALSE(rs->IsEOF());
  EXPECT_EQ(rs->AbsolutePosition(), adPosBOF);
  EXPECT_EQ(failure_of([&] { rs->set_value(0, 9); }), err::kNoCurrentRecord);
  EXPECT_EQ(failure_of([&] { rs->MovePrevious(); }), err::kNoCurrentRecord);
  rs->MoveNext();
  EXPECT_EQ(rs->value(0), Variant(1));
}

TEST(RecordsetTest, AbsolutePositionBounds) {
  auto rs = make_set(4);
  rs->SetAbsolutePosition(3);
  EXPECT_EQ(rs->value(0), Variant(3));
  EXPECT_EQ(rs->AbsolutePosition(), 3);
  for (int32_t pos : {0, 5, -1, -3}) {
    SCOPED_TRACE(pos);
    EXPECT_EQ(failure_of([&] { rs->SetAbsolutePosition(pos); }), err::kArgumentOutOfRange);
    EXPECT_EQ(rs->AbsolutePosition(), 3);
  }
  rs->SetAbsolutePosition(4);
  EXPECT_EQ(rs->value(0), Variant(4));
  rs->SetAbsolutePosition(1);
  EXPECT_EQ(rs->value(0), Variant(1));
}

TEST(RecordsetTest, NewRowsReadEmptyAndMovingCommitsThem) {
  Recordset rs;
  rs.GetFields().Append("N", adInteger);
  rs.GetFields().Append("Any", adVariant);
  rs.Open();
  rs.AddNew();
  EXPECT_TRUE(rs[0].Value().is_empty());
  EXPECT_TRUE(rs[1].Value().is_empty());
  rs[0].SetValue(1);
  rs.reserve(100);  // room only: no rows, no move
  EXPECT_EQ(rs.RecordCount(), 1);
  EXPECT_EQ(rs.value(0), Variant(1));
  EXPECT_EQ(failure_of([&] { rs.reserve(-1); }), err::kArgumentOutOfRange);
  rs.AddNew();  // commits row 1
  rs[0].SetValue(2);
  rs.MoveFirst();  // commits row 2
  EXPECT_EQ(rs.RecordCount(), 2);
  EXPECT_EQ(rs.value(0), Variant(1));
  rs.MoveNext();
  EXPECT_EQ(rs.value(0), Variant(2));
  rs.Update();  // nothing pending: no change
  EXPECT_EQ(rs.RecordCount(), 2);
  EXPECT_EQ(rs.AbsolutePosition(), 2);

  rs.Close();
  rs.Open();
  EXPECT_EQ(rs.RecordCount(), 0);
}

TEST(RecordsetTest, ValuesAreCoercedToTheFieldType) {
  Recordset rs;
  Fields& f = rs.GetFields();
  f.Append("I", adInteger);
  f.Append("S", adSmallInt);
  f.Append("D", adDouble);
  f.Append("C", adCurrency);
  f.Append("B", adBoolean);
  f.Append("T", adVarWChar, 20);
  f.Append("Dt", adDBTimeStamp);
  f.Append("V", adVariant, 0, adFldUpdatable);
  f.Append("Strict", adInteger, 0, adFldUpdatable);
  f.Append("Nullable", adInteger, 0, adFldMayBeNull);
  rs.Open();
  rs.AddNew();

  rs.set_value(0, "  42 ");
  EXPECT_EQ(rs.value(0), Variant(42));
  rs.set_value(0, 2.5);  // half to even
  EXPECT_EQ(rs.value(0), Variant(2));
  rs.set_value(0, Variant());
  EXPECT_EQ(rs.value(0), Variant(0));
  rs.set_value(1, 7);
  EXPECT_EQ(rs.value(1), Variant(int16_t{7}));
  rs.set_value(2, 3);
  EXPECT_EQ(rs.value(2), Variant(3.0));
  rs.set_value(3, 1.5);
  EXPECT_EQ(rs.value(3), Variant(Currency::from_scaled(15000)));
  rs.set_value(4, 5);
  EXPECT_EQ(rs.value(4), Variant(true));
  rs.set_value(5, 12);
  EXPECT_EQ(rs.value(5), Variant("12"));
  rs.set_value(6, "2024-02-29 10:30:00");
  EXPECT_EQ(rs.value(6), Variant(Date::from_civil(2024, 2, 29, 10, 30)));
  rs.set_value(7, "as is");
  EXPECT_EQ(rs.value(7), Variant("as is"));

  EXPECT_EQ(failure_of([&] { rs.set_value(0, "abc"); }), err::kTypeMismatch);
  EXPECT_EQ(failure_of([&] { rs.set_value(0, ""); }), err::kTypeMismatch);
  EXPECT_EQ(failure_of([&] { rs.set_value(0, 3e9); }), err::kOverflow);
  EXPECT_EQ(failure_of([&] { rs.set_value(1, 40000); }), err::kOverflow);
  EXPECT_EQ(rs.value(0), Variant(0));  // a failed assignment leaves the value alone

  // Null: only where the attributes allow it; unspecified attributes allow it.
  EXPECT_EQ(failure_of([&] { rs.set_value(7, Variant::null()); }), err::kNotAllowed);
  EXPECT_EQ(failure_of([&] { rs.set_value(8, Variant::null()); }), err::kNotAllowed);
  rs.set_value(9, Variant::null());
  EXPECT_TRUE(rs.value(9).is_null());
  rs.set_value(0, Variant::null());
  EXPECT_TRUE(rs.value(0).is_null());
}

TEST(RecordsetTest, TextLongerThanDefinedSizeFailsUncut) {
  Recordset rs;
  rs.GetFields().Append("Code", adVarChar, 4, adFldUnspecified);
  rs.GetFields().Append("Memo", adLongVarWChar, 4);
  rs.GetFields().Append("Free", adVarWChar, 0);
  rs.Open();
  rs.AddNew();
  // Four code points in eight bytes fit.
  rs.set_value(0, "\xC3\xA9t\xC3\xA9\xE2\x82\xAC");
  EXPECT_EQ(rs.value(0).get_string(), "\xC3\xA9t\xC3\xA9\xE2\x82\xAC");
  std::string text;
  EXPECT_EQ(failure_of([&] { rs.set_value(0, "\xC3\xA9t\xC3\xA9s!"); }, &text), err::kDataTooLong);
  EXPECT_NE(text.find("Code"), std::string::npos);
  EXPECT_EQ(failure_of([&] { rs.set_value(0, 12345); }), err::kDataTooLong);
  EXPECT_EQ(rs.value(0).get_string(), "\xC3\xA9t\xC3\xA9\xE2\x82\xAC");
  rs.set_value(1, "longer than four");
  rs.set_value(2, std::string(1000, 'x'));
  EXPECT_EQ(rs.value(2).get_string().size(), 1000u);
}

TEST(RecordsetTest, CloneKeepsLayoutButNotRows) {
  auto src = make_set(2);
  src->Close();
  src->GetFields().Append("Price", adNumeric, 19, adFldIsNullable | adFldFixed);
  src->GetFields().Item("Price").SetPrecision(12);
  src->GetFields().Item("Price").SetNumericScale(3);
  src->Open();

  auto copy = CloneRecordsetStructure(*src);
  EXPECT_EQ(copy->State(), adStateClosed);
  ASSERT_EQ(copy->GetFields().Count(), 3);
  for (int32_t i = 0; i < 3; ++i) {
    const FieldInfo& a = src->GetFields().info(i);
    const FieldInfo& b = copy->GetFields().info(i);
    SCOPED_TRACE(a.name);
    EXPECT_EQ(a.name, b.name);
    EXPECT_EQ(a.type, b.type);
    EXPECT_EQ(a.defined_size, b.defined_size);
    EXPECT_EQ(a.attributes, b.attributes);
    EXPECT_EQ(a.precision, b.precision);
    EXPECT_EQ(a.numeric_scale, b.numeric_scale);
  }
  EXPECT_EQ(copy->GetFields().Item("price").Precision(), 12);
  copy->GetFields().Append("Extra", adInteger);  // still unopened
  copy->Open();
  EXPECT_EQ(copy->RecordCount(), 0);
}

TEST(RecordsetTest, TravelsInAVariantByReference) {
  auto rs = make_set(1);
  Variant v(rs);
  EXPECT_TRUE(v.is_object());
  EXPECT_EQ(v.as<Recordset>(), rs);
  Variant copy = v;
  copy.as<Recordset>()->AddNew();
  EXPECT_EQ(rs->RecordCount(), 2);
}

}  // namespace
}  // namespace kxui
