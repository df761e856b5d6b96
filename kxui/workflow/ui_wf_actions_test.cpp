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
      .WillOnce(DoAll(SetArgReferee<3>(9), Return(true)));
  int16_t count = 5;
  EXPECT_TRUE(ui.BuildApprovalProcess(session, 8, true, count));
  EXPECT_EQ(count, 5);
}

TEST_F(UIWFActionsTest, GetApprovalCountKeepsTheBusinessCountOnFailure) {
  EXPECT_CALL(*wf, GetApprovalCount(session, 8, _)).WillOnce(Return(3));
  EXPECT_CALL(*wf, Success()).WillOnce(Return(false));
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

}  // namespace
}  // namespace kxui
