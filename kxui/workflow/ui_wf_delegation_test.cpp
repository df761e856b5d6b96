#include <gtest/gtest.h>

#include "kxui/business/progids.h"
#include "kxui/testing/fake_services.h"
#include "kxui/testing/fake_workflow.h"
#include "kxui/workflow/ui_wf.h"

namespace kxui {
namespace {

using testing::ErrorIs;

class UIWFDelegationTest : public ::testing::Test {
 protected:
  void SetUp() override { env->provide(progid::BorgDelegation, delegation); }

  // The eight outputs of GetBorgDelegationData, each holding a marker.
  struct Outputs {
    Variant borg = Variant("?"), user = Variant("?"), delegatee = Variant("?"),
            name = Variant("?"), login = Variant("?"), start = Variant("?"), end = Variant("?"),
            enabled = Variant("?");
  };
  bool get(Outputs& o) {
    return ui.GetBorgDelegationData(session, o.borg, o.user, o.delegatee, o.name, o.login,
                                    o.start, o.end, o.enabled);
  }

  std::shared_ptr<testing::TestEnv> env = testing::TestEnv::make();
  std::shared_ptr<BasicSession> session = testing::make_session();
  std::shared_ptr<testing::FakeBorgDelegation> delegation =
      std::make_shared<testing::FakeBorgDelegation>();
  UIWF ui{env->runtime};
};

TEST_F(UIWFDelegationTest, CheckDelegationEnabledTreatsAFailedLoadAsNo) {
  EXPECT_TRUE(ui.CheckDelegationEnabled(session));
  delegation->delegation_enabled = false;
  EXPECT_FALSE(ui.CheckDelegationEnabled(session));
  EXPECT_TRUE(ui.Success());

  delegation->delegation_enabled = true;
  delegation->loaded = false;
  delegation->success = false;
  EXPECT_FALSE(ui.CheckDelegationEnabled(session));
  EXPECT_TRUE(ui.Success()) << "not an error here";

  delegation->broken = true;
  EXPECT_FALSE(ui.CheckDelegationEnabled(session));
  EXPECT_FALSE(ui.Success());
  EXPECT_THAT(ui.Error(), ErrorIs(70, "UIWF::CheckDelegationEnabled BorgDelegation"));
}

TEST_F(UIWFDelegationTest, GetBorgDelegationDataWritesTypedOutputs) {
  Outputs o;
  EXPECT_TRUE(get(o));
  EXPECT_TRUE(ui.Success());
  EXPECT_EQ(o.borg, Variant(int32_t{3}));
  EXPECT_EQ(o.user, Variant(int32_t{12}));
  EXPECT_EQ(o.delegatee, Variant(int32_t{13}));
  EXPECT_EQ(o.name, Variant("Ann Lee"));
  EXPECT_EQ(o.login, Variant("alee"));
  EXPECT_EQ(o.start, Variant(Date::from_civil(2024, 5, 1)));
  EXPECT_EQ(o.end, Variant(Date::from_civil(2024, 5, 31)));
  EXPECT_EQ(o.enabled, Variant(true));

  // No delegation yet: Load answers False but Success stays True.
  delegation->loaded = false;
  delegation->borg_id = 0;
  Outputs none;
  EXPECT_TRUE(get(none));
  EXPECT_EQ(none.borg, Variant(int32_t{0}));
}

TEST_F(UIWFDelegationTest, GetBorgDelegationDataFailures) {
  delegation->loaded = false;
  delegation->success = false;
  delegation->fail_with(44, "BorgDelegation", "no borg");
  Outputs o;
  EXPECT_FALSE(get(o));
  EXPECT_FALSE(ui.Success());
  EXPECT_THAT(ui.Error(), ErrorIs(44, "UIWF::GetBorgDelegationData BorgDelegation"));
  EXPECT_EQ(o.borg, Variant("?")) << "nothing written before the load";

  // A failure part way keeps what was already written.
  delegation->loaded = true;
  delegation->name_unreadable = true;
  EXPECT_FALSE(get(o));
  EXPECT_THAT(ui.Error(), ErrorIs(3021, "UIWF::GetBorgDelegationData BorgDelegation"));
  EXPECT_EQ(o.borg, Variant(int32_t{3}));
  EXPECT_EQ(o.user, Variant(int32_t{12}));
  EXPECT_EQ(o.delegatee, Variant(int32_t{13}));
  for (const Variant* later : {&o.name, &o.login, &o.start, &o.end, &o.enabled}) {
    EXPECT_EQ(*later, Variant("?"));
  }
}

TEST_F(UIWFDelegationTest, SaveLoadsSetsInOrderAndSaves) {
  const Date start = Date::from_civil(2024, 7, 31), end = Date::from_civil(2024, 7, 1);
  Variant custom = Variant("site");
  EXPECT_TRUE(ui.SaveBorgDelegationData(session, 4, 22, 23, start, end, false, custom));
  EXPECT_TRUE(ui.Success());
  EXPECT_EQ(delegation->calls,
            (std::vector<std::string>{"Load()", "SetBorgID(4)", "SetSysUserID(22)",
                                      "SetDelegateeID(23)", "SetDelegateStartDate(2024-07-31)",
                                      "SetDelegateEndDate(2024-07-01)", "SetEnabled(False)",
                                      "Save()"}))
      << "a start after the end is passed on";
  EXPECT_EQ(delegation->custom_seen.to_string(), "site");

  delegation->calls.clear();
  delegation->saved = false;
  delegation->fail_with(45, "BorgDelegation", "delegatee inactive");
  EXPECT_FALSE(ui.SaveBorgDelegationData(session, 4, 22, 23, start, end, true));
  EXPECT_FALSE(ui.Success());
  EXPECT_THAT(ui.Error(), ErrorIs(45, "UIWF::SaveBorgDelegationData BorgDelegation"));

  delegation->calls.clear();
  delegation->loaded = false;
  delegation->success = false;
  EXPECT_FALSE(ui.SaveBorgDelegationData(session, 4, 22, 23, start, end, true));
  EXPECT_EQ(delegation->calls, std::vector<std::string>{"Load()"}) << "nothing set or saved";
}

TEST_F(UIWFDelegationTest, DelegateSearchCopiesTheBusinessSuccess) {
  delegation->search_results =
      testing::make_recordset({{"SysUserID", adInteger, 0, adFldUnspecified}});
  EXPECT_EQ(ui.GetDelegateSearchResultsRs(session, "Lee", ""), delegation->search_results);
  EXPECT_TRUE(ui.Success());
  EXPECT_EQ(delegation->calls.back(), "GetDelegateSearchResults(Lee,)");

  delegation->success = false;
  delegation->fail_with(46, "BorgDelegation", "search failed");
  EXPECT_EQ(ui.GetDelegateSearchResultsRs(session, "Lee", ""), nullptr);
  EXPECT_FALSE(ui.Success());
  EXPECT_THAT(ui.Error(), ErrorIs(46, "UIWF::GetDelegateSearchResultsRs BorgDelegation"));
}

}  // namespace
}  // namespace kxui
