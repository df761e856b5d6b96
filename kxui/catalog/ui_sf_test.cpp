// UISF against a gmock smart-form object.
#include "kxui/catalog/ui_sf.h"

#include <functional>

#include "kxui/business/progids.h"
#include "kxui/testing/fake_services.h"
#include "kxui/testing/mock_catalog.h"

namespace kxui {
namespace {

using namespace ::testing;
using kxui::testing::ErrorIs;
using kxui::testing::MockSFormReqItem;

class UISFTest : public Test {
 protected:
  std::shared_ptr<kxui::testing::TestEnv> env = kxui::testing::TestEnv::make();
  std::shared_ptr<StrictMock<MockSFormReqItem>> form =
      std::make_shared<StrictMock<MockSFormReqItem>>();
  std::shared_ptr<BasicSession> session = kxui::testing::make_session();
  UISF ui{env->runtime};
  RecordsetPtr empty = kxui::testing::make_recordset({{"FieldName", adVarWChar, 50}});
  Variant custom = Variant("custom");

  void SetUp() override {
    env->provide(progid::SFormReqItem, form);
    form->fail_with(31, "SFormReqItem", "no such smart form");
  }
};

// Each reader's call with its arguments, and what it answers.
struct Reader {
  const char* source;
  std::function<void(MockSFormReqItem&, const SessionPtr&, Variant&, RecordsetPtr)> expect;
  std::function<RecordsetPtr(UISF&, const SessionPtr&, Variant&)> read;
};

const Reader kReaders[] = {
    {"UISF::GetDescription",
     [](MockSFormReqItem& m, const SessionPtr& s, Variant& c, RecordsetPtr rs) {
       EXPECT_CALL(m, GetFormDescription(Eq(s), 900, Ref(c))).WillOnce(Return(rs));
     },
     [](UISF& ui, const SessionPtr& s, Variant& c) { return ui.GetDescription(s, 900, c); }},
    {"UISF::GetValues",
     [](MockSFormReqItem& m, const SessionPtr& s, Variant& c, RecordsetPtr rs) {
       EXPECT_CALL(m, GetReqLineValues(Eq(s), 12, 3, 900, Ref(c))).WillOnce(Return(rs));
     },
     [](UISF& ui, const SessionPtr& s, Variant& c) { return ui.GetValues(s, 12, 3, 900, c); }},
    {"UISF::GetValuesFromPO",
     [](MockSFormReqItem& m, const SessionPtr& s, Variant& c, RecordsetPtr rs) {
       EXPECT_CALL(m, GetPOLineValues(Eq(s), 77, 4, 900, Ref(c))).WillOnce(Return(rs));
     },
     [](UISF& ui, const SessionPtr& s, Variant& c) {
       return ui.GetValuesFromPO(s, 77, 4, 900, c);
     }},
};

TEST_F(UISFTest, ReadersReturnTheAnswerAsItComesAndRaiseTheFormsErrorOnNothing) {
  for (const Reader& r : kReaders) {
    SCOPED_TRACE(r.source);
    ui.Error()->SetNumber(5);
    r.expect(*form, session, custom, empty);
    EXPECT_EQ(r.read(ui, session, custom), empty) << "an empty record set is an answer";
    EXPECT_EQ(ui.Error()->Number(), 5) << "nothing recorded";

    r.expect(*form, session, custom, nullptr);
    EXPECT_EQ(r.read(ui, session, custom), nullptr);
    EXPECT_THAT(ui.Error(), ErrorIs(31, std::string(r.source) + " SFormReqItem"));
    EXPECT_EQ(ui.Error()->Description(), "no such smart form");
    EXPECT_EQ(form.use_count(), 2) << "released after the call";
  }
}

// The savers hand over both arrays and give back the answer; a refusal is no failure.
TEST_F(UISFTest, SaversReturnTheAnswerAsItIs) {
  Array names_array(0, 1), values_array(0, 1);
  names_array.at(0) = Variant("Colour"), names_array.at(1) = Variant("Size");
  values_array.at(0) = Variant("Blue"), values_array.at(1) = Variant(int32_t{42});
  const Variant names(names_array), values(values_array);
  using Save = std::function<bool()>;
  const std::tuple<const char*, std::function<void(bool)>, Save> cases[] = {
      {"Save",
       [&](bool answer) {
         EXPECT_CALL(*form, SaveReqLineValues(Eq(session), 12, 3, 900, names, values, Ref(custom)))
             .WillOnce(Return(answer));
       },
       [&] { return ui.Save(session, 12, 3, 900, names, values, custom); }},
      {"SaveToPO",
       [&](bool answer) {
         EXPECT_CALL(*form, SavePOLineValues(Eq(session), 77, 4, 900, names, values, Ref(custom)))
             .WillOnce(Return(answer));
       },
       [&] { return ui.SaveToPO(session, 77, 4, 900, names, values, custom); }},
  };
  for (const auto& [name, expect, save] : cases) {
    SCOPED_TRACE(name);
    ui.Error()->SetNumber(5);
    expect(true);
    EXPECT_TRUE(save());
    expect(false);
    EXPECT_FALSE(save());
    EXPECT_EQ(ui.Error()->Number(), 5) << "a refusal records nothing";
  }
}

TEST_F(UISFTest, FailuresAreRecordedUnderTheOperation) {
  const Variant none;
  const Failure broken(8, "SFormReqItem", "broken");
  EXPECT_CALL(*form, GetFormDescription).WillOnce(Throw(broken));
  EXPECT_CALL(*form, GetReqLineValues).WillOnce(Throw(broken));
  EXPECT_CALL(*form, GetPOLineValues).WillOnce(Throw(broken));
  EXPECT_CALL(*form, SaveReqLineValues).WillOnce(Throw(broken));
  EXPECT_CALL(*form, SavePOLineValues).WillOnce(Throw(broken));
  const std::pair<const char*, std::function<bool()>> cases[] = {
      {"UISF::GetDescription", [&] { return ui.GetDescription(session, 1) != nullptr; }},
      {"UISF::GetValues", [&] { return ui.GetValues(session, 1, 1, 1) != nullptr; }},
      {"UISF::GetValuesFromPO", [&] { return ui.GetValuesFromPO(session, 1, 1, 1) != nullptr; }},
      {"UISF::Save", [&] { return ui.Save(session, 1, 1, 1, none, none); }},
      {"UISF::SaveToPO", [&] { return ui.SaveToPO(session, 1, 1, 1, none, none); }},
  };
  for (const auto& [source, call] : cases) {
    SCOPED_TRACE(source);
    EXPECT_FALSE(call());
    EXPECT_THAT(ui.Error(), ErrorIs(8, std::string(source) + " SFormReqItem"));
  }
  EXPECT_EQ(env->count(progid::SFormReqItem), 5) << "one object per call";
  EXPECT_EQ(env->created.back(), "factory:KxSF03.SFormReqItem");
}

}  // namespace
}  // namespace kxui
