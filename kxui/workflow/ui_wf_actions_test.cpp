// The workflow actions, the map and delegation, against gmock business objects.
#include <tuple>

#include "kxui/business/borg_delegation.h"
#include "kxui/business/progids.h"
#include "kxui/business/workflow.h"
#include "kxui/testing/test_runtime.h"
#include "kxui/workflow/ui_wf.h"

namespace kxui {
namespace {

using namespace ::testing;
using testing::ErrorIs;

constexpr int32_t kRefused = -2147220991;  // a business-tier error number

using Session = const SessionPtr&;
using Text = const std::string&;

class MockWorkflow : public business::Workflow, public testing::FakeBusinessObject {
 public:
  MOCK_METHOD(bool, AddAfter, (Session, int32_t, int32_t, int32_t, int32_t, Variant&));
  MOCK_METHOD(bool, AddBefore, (Session, int32_t, int32_t, int32_t, int32_t, Variant&));
  MOCK_METHOD(bool, AddAfterApprovalChain, (Session, int32_t, int32_t, int32_t, Variant&));
  MOCK_METHOD(bool, AddBeforeApprovalChain, (Session, int32_t, int32_t, int32_t, Variant&));
  MOCK_METHOD(bool, AddParallelApprovalChain, (Session, int32_t, int32_t, int32_t, Variant&));
  MOCK_METHOD(bool, AddReviewer, (Session, int32_t, int32_t, int32_t, Variant&));
  MOCK_METHOD(bool, AddComments, (Session, int32_t, Text, Variant&));
  MOCK_METHOD(bool, Approve, (Session, int32_t, int32_t, Text, Variant&));
  MOCK_METHOD(bool, Reject, (Session, int32_t, int32_t, Text, Variant&));
  MOCK_METHOD(bool, Cancel, (Session, int32_t, Variant&));
  MOCK_METHOD(bool, BuildApprovalProcess, (Session, int32_t, bool, int16_t&, Variant&));
  MOCK_METHOD(int32_t, GetApprovalCount, (Session, int32_t, Variant&));
  MOCK_METHOD(RecordsetPtr, GetApproverSearchResults, (Session, int32_t, Text, Text, Variant&));
  MOCK_METHOD(bool, Success, ());
};

class MockDiagram : public business::Diagram, public testing::FakeBusinessObject {
 public:
  MOCK_METHOD(bool, BuildDataStructure,
              (Session, int32_t, Text, int16_t, Variant&, Text, Variant&));
};

class MockBorgDelegation : public business::BorgDelegation, public testing::FakeBusinessObject {
 public:
  MOCK_METHOD(bool, Load, (Session, Variant&));
  MOCK_METHOD(bool, Save, (Session, Variant&));
  MOCK_METHOD(RecordsetPtr, GetDelegateSearchResults, (Session, Text, Text, Variant&));
  MOCK_METHOD(int32_t, BorgID, ());
  MOCK_METHOD(void, SetBorgID, (int32_t));
  MOCK_METHOD(int32_t, SysUserID, ());
  MOCK_METHOD(void, SetSysUserID, (int32_t));
  MOCK_METHOD(int32_t, DelegateeID, ());
  MOCK_METHOD(void, SetDelegateeID, (int32_t));
  MOCK_METHOD(std::string, DelegateeName, ());
  MOCK_METHOD(std::string, DelegateeLoginID, ());
  MOCK_METHOD(Date, DelegateStartDate, ());
  MOCK_METHOD(void, SetDelegateStartDate, (Date));
  MOCK_METHOD(Date, DelegateEndDate, ());
  MOCK_METHOD(void, SetDelegateEndDate, (Date));
  MOCK_METHOD(bool, Enabled, ());
  MOCK_METHOD(void, SetEnabled, (bool));
  MOCK_METHOD(bool, DelegationEnabled, ());
  MOCK_METHOD(bool, Success, ());
};

class UIWFActionsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    env->provide(progid::Workflow, wf);
    env->provide(progid::Diagram, diagram);
    env->provide(progid::BorgDelegation, delegation);
  }

  std::shared_ptr<testing::TestEnv> env = testing::TestEnv::make();
  SessionPtr session = testing::make_session();
  std::shared_ptr<MockWorkflow> wf = std::make_shared<NiceMock<MockWorkflow>>();
  std::shared_ptr<MockDiagram> diagram = std::make_shared<NiceMock<MockDiagram>>();
  std::shared_ptr<MockBorgDelegation> delegation = std::make_shared<NiceMock<MockBorgDelegation>>();
  UIWF ui{env->runtime};
};

// Answers `result` after writing a reply into the custom data (the last argument).
auto answer(bool result) {
  return [result](auto&&... args) {
    std::get<sizeof...(args) - 1>(std::tie(args...)) = Variant("from business");
    return result;
  };
}

// Runs an action succeeding, then refused. `expect_call(result)` expects the business
// operation of the same name with the session, the action's arguments in order and the
// caller's custom data; `call(custom)` runs the action.
template <class Expect, class Call>
void check_action(UIWF& ui, const std::string& source, Expect expect_call, Call call) {
  for (bool result : {true, false}) {
    SCOPED_TRACE(source + (result ? " succeeding" : " refused"));
    expect_call(result);
    Variant custom = Variant(int32_t{77});
    EXPECT_EQ(call(custom), result);
    EXPECT_EQ(ui.Success(), result);
    EXPECT_EQ(custom, Variant("from business"));
    if (result) continue;
    EXPECT_THAT(ui.Error(), ErrorIs(kRefused, source + " KxWF03.Workflow"));
    EXPECT_EQ(ui.Error()->Description(), "Step 2 is already approved.");
  }
}

#define KXUI_CHECK_ACTION(Name, ...)                                           \
  check_action(                                                                \
      ui, "UIWF::" #Name,                                                      \
      [&](bool r) {                                                            \
        EXPECT_CALL(*wf, Name(session, __VA_ARGS__, Eq(Variant(int32_t{77})))) \
            .WillOnce(answer(r));                                              \
      },                                                                       \
      [&](Variant& custom) { return ui.Name(session, __VA_ARGS__, custom); })

TEST_F(UIWFActionsTest, ActionsPassTheirArgumentsAndReportTheBusinessError) {
  wf->fail_with(kRefused, "KxWF03.Workflow", "Step 2 is already approved.");
  KXUI_CHECK_ACTION(AddAfter, 101, 2, 303, 404);
  KXUI_CHECK_ACTION(AddBefore, 101, 2, 303, 404);
  KXUI_CHECK_ACTION(AddAfterApprovalChain, 101, 303, 404);
  KXUI_CHECK_ACTION(AddBeforeApprovalChain, 101, 303, 404);
  KXUI_CHECK_ACTION(AddParallelApprovalChain, 101, 303, 404);
  KXUI_CHECK_ACTION(AddReviewer, 101, 505, 606);
  KXUI_CHECK_ACTION(AddComments, 101, "see quote");
  KXUI_CHECK_ACTION(Approve, 101, 2, "ok");
  KXUI_CHECK_ACTION(Reject, 101, 2, "no budget");
  KXUI_CHECK_ACTION(Cancel, 101);
}

TEST_F(UIWFActionsTest, BuildApprovalProcessNeverTouchesTheCallersCounter) {
  EXPECT_CALL(*wf, BuildApprovalProcess(session, 8, true, Eq(0), _))  // a fresh counter
      .WillOnce(DoAll(SetArgReferee<3>(9), Return(true)))
      .WillOnce(DoAll(SetArgReferee<3>(9), Return(false)));
  int16_t count = 5;
  EXPECT_TRUE(ui.BuildApprovalProcess(session, 8, true, count));
  EXPECT_EQ(count, 5);
  wf->fail_with(kRefused, "Workflow", "no route");
  EXPECT_FALSE(ui.BuildApprovalProcess(session, 8, true, count));
  EXPECT_EQ(count, 5);
  EXPECT_THAT(ui.Error(), ErrorIs(kRefused, "UIWF::BuildApprovalProcess Workflow"));
}

TEST_F(UIWFActionsTest, GetApprovalCountKeepsTheBusinessCountOnFailure) {
  EXPECT_CALL(*wf, GetApprovalCount(session, 8, _)).WillOnce(Return(4)).WillOnce(Return(3));
  EXPECT_CALL(*wf, Success()).WillOnce(Return(true)).WillOnce(Return(false));
  EXPECT_EQ(ui.GetApprovalCount(session, 8), 4);
  EXPECT_TRUE(ui.Success());
  wf->fail_with(kRefused, "Workflow", "route not built");
  EXPECT_EQ(ui.GetApprovalCount(session, 8), 3);
  EXPECT_FALSE(ui.Success());
  EXPECT_THAT(ui.Error(), ErrorIs(kRefused, "UIWF::GetApprovalCount Workflow"));
}

TEST_F(UIWFActionsTest, TheMapIsWhatTheDiagramWroteOrTheFixedErrorText) {
  const std::string map = "<TABLE><TR><TD>Ann</TD></TR></TABLE>";
  EXPECT_CALL(*diagram, BuildDataStructure(session, 8, "full", 3, _, "Verdana", _))
      .WillOnce(DoAll(SetArgReferee<4>(Variant(map)), Return(true)))
      .WillOnce(DoAll(SetArgReferee<4>(Variant("<TABLE><TR>")), Return(false)));
  Variant html = Variant("old");
  EXPECT_TRUE(ui.BuildDataStructure(session, 8, "full", 3, html, "Verdana"));
  EXPECT_EQ(html, Variant(map));

  diagram->fail_with(kRefused, "Diagram", "no approvers");
  EXPECT_FALSE(ui.BuildDataStructure(session, 8, "full", 3, html, "Verdana"));
  EXPECT_EQ(html, Variant("Error in creating workflow map"));
  EXPECT_THAT(ui.Error(), ErrorIs(kRefused, "Workflow::BuildDataStructure Diagram"));
}

TEST_F(UIWFActionsTest, CheckDelegationEnabledTreatsAFailedLoadAsNo) {
  EXPECT_CALL(*delegation, Load(session, _)).WillOnce(Return(true)).WillOnce(Return(false));
  ON_CALL(*delegation, DelegationEnabled()).WillByDefault(Return(true));
  EXPECT_TRUE(ui.CheckDelegationEnabled(session));
  EXPECT_FALSE(ui.CheckDelegationEnabled(session));
  EXPECT_TRUE(ui.Success()) << "not an error here";
}

TEST_F(UIWFActionsTest, GetBorgDelegationDataKeepsWhatWasWrittenBeforeAFailure) {
  ON_CALL(*delegation, Load).WillByDefault(Return(true));
  const Variant unset("?");
  std::vector<Variant> out(8, unset);
  ON_CALL(*delegation, BorgID()).WillByDefault(Return(3));
  ON_CALL(*delegation, SysUserID()).WillByDefault(Return(12));
  ON_CALL(*delegation, DelegateeName()).WillByDefault([]() -> std::string {
    throw Failure(3021, "BorgDelegation", "no current record");
  });
  EXPECT_FALSE(ui.GetBorgDelegationData(session, out[0], out[1], out[2], out[3], out[4], out[5],
                                        out[6], out[7]));
  EXPECT_THAT(ui.Error(), ErrorIs(3021, "UIWF::GetBorgDelegationData BorgDelegation"));
  // Written one by one: the outputs before the failing name keep their new values.
  EXPECT_EQ(out, (std::vector<Variant>{Variant(int32_t{3}), Variant(int32_t{12}),
                                       Variant(int32_t{0}), unset, unset, unset, unset, unset}));
}

TEST_F(UIWFActionsTest, GetBorgDelegationDataGivesEveryValueInItsPlace) {
  const Date start = Date::from_civil(2024, 7, 1), end = Date::from_civil(2024, 7, 31);
  ON_CALL(*delegation, BorgID()).WillByDefault(Return(3));
  ON_CALL(*delegation, SysUserID()).WillByDefault(Return(12));
  ON_CALL(*delegation, DelegateeID()).WillByDefault(Return(44));
  ON_CALL(*delegation, DelegateeName()).WillByDefault(Return("Bo Chen"));
  ON_CALL(*delegation, DelegateeLoginID()).WillByDefault(Return("bchen"));
  ON_CALL(*delegation, DelegateStartDate()).WillByDefault(Return(start));
  ON_CALL(*delegation, DelegateEndDate()).WillByDefault(Return(end));
  ON_CALL(*delegation, Enabled()).WillByDefault(Return(true));
  // A False load with Success still True means "none yet": the values are read as they are.
  const std::tuple<const char*, bool, bool> cases[] = {{"loaded", true, false},
                                                       {"none yet", false, true}};
  for (const auto& [name, loaded, success] : cases) {
    SCOPED_TRACE(name);
    EXPECT_CALL(*delegation, Load(session, Eq(Variant(int32_t{77})))).WillOnce(Return(loaded));
    ON_CALL(*delegation, Success()).WillByDefault(Return(success));
    std::vector<Variant> out(8);
    Variant custom = Variant(int32_t{77});
    ASSERT_TRUE(ui.GetBorgDelegationData(session, out[0], out[1], out[2], out[3], out[4], out[5],
                                         out[6], out[7], custom));
    EXPECT_EQ(out, (std::vector<Variant>{Variant(int32_t{3}), Variant(int32_t{12}),
                                         Variant(int32_t{44}), Variant("Bo Chen"), Variant("bchen"),
                                         Variant(start), Variant(end), Variant(true)}));
  }
  EXPECT_CALL(*delegation, Load).WillOnce(Return(false));
  ON_CALL(*delegation, Success()).WillByDefault(Return(false));
  delegation->fail_with(kRefused, "BorgDelegation", "no such user");
  std::vector<Variant> out(8, Variant("?"));
  EXPECT_FALSE(ui.GetBorgDelegationData(session, out[0], out[1], out[2], out[3], out[4], out[5],
                                        out[6], out[7]));
  EXPECT_THAT(ui.Error(), ErrorIs(kRefused, "UIWF::GetBorgDelegationData BorgDelegation"));
  EXPECT_EQ(out, std::vector<Variant>(8, Variant("?")));
}

// Loaded (or "none yet"), every value set, then saved; a refused load or save fails.
TEST_F(UIWFActionsTest, SaveBorgDelegationDataSetsEveryValueBeforeSaving) {
  const Date start = Date::from_civil(2024, 7, 1), end = Date::from_civil(2024, 7, 31);
  struct Case {
    const char* name;
    bool loaded, load_success, saved;
  } const cases[] = {
      {"loaded and saved", true, false, true},
      {"none yet, saved", false, true, true},
      {"load refused", false, false, true},
      {"save refused", true, true, false},
  };
  delegation->fail_with(kRefused, "BorgDelegation", "dates overlap");
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const bool reaches_save = c.loaded || c.load_success;
    Sequence order;
    EXPECT_CALL(*delegation, Load(session, _)).InSequence(order).WillOnce(Return(c.loaded));
    ON_CALL(*delegation, Success()).WillByDefault(Return(c.load_success));
    const int sets = reaches_save ? 1 : 0;
    EXPECT_CALL(*delegation, SetBorgID(3)).Times(sets).InSequence(order);
    EXPECT_CALL(*delegation, SetSysUserID(12)).Times(sets).InSequence(order);
    EXPECT_CALL(*delegation, SetDelegateeID(44)).Times(sets).InSequence(order);
    EXPECT_CALL(*delegation, SetDelegateStartDate(start)).Times(sets).InSequence(order);
    EXPECT_CALL(*delegation, SetDelegateEndDate(end)).Times(sets).InSequence(order);
    EXPECT_CALL(*delegation, SetEnabled(true)).Times(sets).InSequence(order);
    if (reaches_save) {
      EXPECT_CALL(*delegation, Save(session, Eq(Variant(int32_t{77}))))
          .InSequence(order)
          .WillOnce(Return(c.saved));
    } else {
      EXPECT_CALL(*delegation, Save).Times(0);
    }
    Variant custom = Variant(int32_t{77});
    const bool ok = reaches_save && c.saved;
    EXPECT_EQ(ui.SaveBorgDelegationData(session, 3, 12, 44, start, end, true, custom), ok);
    EXPECT_EQ(ui.Success(), ok);
    if (!ok) {
      EXPECT_THAT(ui.Error(), ErrorIs(kRefused, "UIWF::SaveBorgDelegationData BorgDelegation"));
    }
    Mock::VerifyAndClearExpectations(delegation.get());
  }
}

// Both searches hand back the business tier's record set as it is, or nothing when it
// reports a failure.
TEST_F(UIWFActionsTest, SearchesPassTheirTermsAndReturnTheResultUnchanged) {
  const RecordsetPtr found = std::make_shared<Recordset>();
  EXPECT_CALL(*wf, GetApproverSearchResults(session, 8, "Chen", "bchen", Eq(Variant(int32_t{77}))))
      .Times(2)
      .WillRepeatedly(Return(found));
  EXPECT_CALL(*delegation,
              GetDelegateSearchResults(session, "Chen", "bchen", Eq(Variant(int32_t{77}))))
      .Times(2)
      .WillRepeatedly(Return(found));
  wf->fail_with(kRefused, "Workflow", "search failed");
  delegation->fail_with(kRefused, "BorgDelegation", "search failed");
  for (bool success : {true, false}) {
    SCOPED_TRACE(success);
    ON_CALL(*wf, Success()).WillByDefault(Return(success));
    ON_CALL(*delegation, Success()).WillByDefault(Return(success));
    Variant custom = Variant(int32_t{77});
    EXPECT_EQ(ui.GetApproverSearchResultsRs(session, 8, "Chen", "bchen", custom),
              success ? found : nullptr);
    EXPECT_EQ(ui.Success(), success);
    if (!success) {
      EXPECT_THAT(ui.Error(), ErrorIs(kRefused, "UIWF::GetApproverSearchResultsRs Workflow"));
    }
    EXPECT_EQ(ui.GetDelegateSearchResultsRs(session, "Chen", "bchen", custom),
              success ? found : nullptr);
    EXPECT_EQ(ui.Success(), success);
    if (!success) {
      EXPECT_THAT(ui.Error(), ErrorIs(kRefused, "UIWF::GetDelegateSearchResultsRs BorgDelegation"));
    }
  }
}

// A delegation object that cannot be created is a failure, not a "No"; the class records
// its own creation failures under its name.
TEST_F(UIWFActionsTest, FailuresBeforeAnyBusinessCallAreRecordedUnderTheOperation) {
  env->runtime->Unregister(progid::BorgDelegation);
  EXPECT_FALSE(ui.CheckDelegationEnabled(session));
  EXPECT_FALSE(ui.Success());
  EXPECT_THAT(ui.Error(), ErrorIs(429, "UIWF::CheckDelegationEnabled KxWF03.BorgDelegation"));
  env->runtime->Unregister(progid::Workflow);
  EXPECT_EQ(ui.GetApprovalCount(session, 8), 0) << "no count without a workflow object";
  EXPECT_FALSE(ui.Success());
  EXPECT_THAT(ui.Error(), ErrorIs(429, "UIWF::GetApprovalCount KxWF03.Workflow"));
  env->fail_error_creation = true;
  EXPECT_THAT(UIWF(env->runtime).Error(),
              ErrorIs(429, "UIWF::Class_Initialize KxUtility03.KxError"));
}

}  // namespace
}  // namespace kxui
