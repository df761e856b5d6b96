#include "kxui/utility/ui_utility.h"

#include <gtest/gtest.h>

#include "kxui/business/progids.h"
#include "kxui/testing/fake_services.h"

namespace kxui {
namespace {

using testing::ErrorIs;

struct FakeGuid : UserGUID, testing::FakeBusinessObject {
  ErrorInfoPtr GetError() override { return FakeBusinessObject::GetError(); }
  std::string CreateGUID(Variant& custom) override {
    if (broken) throw Failure(70, "UserGUID", "no entropy");
    custom = Variant("seen");
    return "{00000000-0000-4000-8000-000000000000}";
  }
  bool broken = false;
};

class UIUtilityTest : public ::testing::Test {
 protected:
  std::shared_ptr<testing::TestEnv> env = testing::TestEnv::make();
  testing::FakeServices fakes = testing::FakeServices::install(*env);
  std::shared_ptr<BasicSession> session = testing::make_session();
  UIUtility ui{env->runtime};
};

TEST_F(UIUtilityTest, GetAppIniValueReturnsTheTextOrKeepsTheArgument) {
  fakes.ini->set("Page Size", "Paging", "Dunmere", "25");
  Variant value = Variant("unchanged");
  EXPECT_TRUE(ui.GetAppIniValue(session, "Page Size", "Paging", "Dunmere", value));
  EXPECT_EQ(value.to_string(), "25");

  value = Variant("unchanged");
  EXPECT_FALSE(ui.GetAppIniValue(session, "Nope", "Paging", "Dunmere", value));
  EXPECT_EQ(value.to_string(), "unchanged");
  EXPECT_THAT(ui.Error(), ErrorIs(1, "UIUtility::GetAppIniValue AppIni"));
  EXPECT_FALSE(ui.Success()) << "GetAppIniValue does not maintain Success";
}

TEST_F(UIUtilityTest, CreateUserGUIDPassesCustomDataAndGivesEmptyOnFailure) {
  auto guid = std::make_shared<FakeGuid>();
  env->provide(progid::UserGUID, guid);
  Variant custom;
  EXPECT_EQ(ui.CreateUserGUID(custom), "{00000000-0000-4000-8000-000000000000}");
  EXPECT_EQ(custom.to_string(), "seen");
  guid->broken = true;
  EXPECT_EQ(ui.CreateUserGUID(), "");
  EXPECT_THAT(ui.Error(), ErrorIs(70, "UIUtility::CreateUserGUID UserGUID"));
}

TEST_F(UIUtilityTest, GetListCopiesTheReadersSuccess) {
  fakes.ini->settings_list = testing::make_recordset({{"Name", adVarWChar, 50, adFldUnspecified}});
  EXPECT_EQ(ui.GetList(session), fakes.ini->settings_list);
  EXPECT_TRUE(ui.Success());

  fakes.ini->success = false;
  fakes.ini->fail_with(53, "AppIni", "no settings directory");
  EXPECT_EQ(ui.GetList(session), nullptr);
  EXPECT_FALSE(ui.Success());
  EXPECT_THAT(ui.Error(), ErrorIs(53, "UIUtility::GetList AppIni"));
}

}  // namespace
}  // namespace kxui
