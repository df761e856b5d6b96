#include <functional>

#include <gtest/gtest.h>

#include "kxui/business/progids.h"
#include "kxui/testing/fake_workflow.h"
#include "kxui/workflow/ui_wf.h"

namespace kxui {
namespace {

using testing::ErrorIs;
using testing::FakeDiagram;
using testing::FakeWorkflow;

constexpr int32_t kRefused = -2147220991;  // a business-tier error number

class UIWFActionsTest : public ::testing::Test {
 protected:
  void SetUp() override { env->provide(progid::Workflow, wf); }

  std::shared_ptr<testing::TestEnv> env = testing::TestEnv::make();
  std::shared_ptr<BasicSession> session = testing::make_session();
  std::shared_ptr<FakeWorkflow> wf = std::make_shared<FakeWorkflow>();
  UIWF ui{env->runtime};
};

struct ActionCase {
  const char* source;
  std::function<bool(UIWF&, const SessionPtr&, Variant&)> call;
  const char* passed;  // what the business object must receive after the session
};

const ActionCase kActions[] = {
    {"UIWF::AddAfter",
     [](UIWF& ui, const SessionPtr& s, Variant& c) { return ui.AddAfter(s, 101, 2, 303, 404, c); },
     "AddAfter(101,2,303,404)"},
    {"UIWF::AddBefore",
     [](UIWF& ui, const SessionPtr& s, Variant& c) { return ui.AddBefore(s, 101, 2, 303, 404, c); },
     "AddBefore(101,2,303,404)"},
    {"UIWF::AddAfterApprovalChain",
     [](UIWF& ui, const SessionPtr& s, Variant& c) {
       return ui.AddAfterApprovalChain(s, 101, 303, 404, c);
     },
     "AddAfterApprovalChain(101,303,404)"},
    {"UIWF::AddBeforeApprovalChain",
     [](UIWF& ui, const SessionPtr& s, Variant& c) {
       return ui.AddBeforeApprovalChain(s, 101, 303, 404, c);
     },
     "AddBeforeApprovalChain(101,303,404)"},
    {"UIWF::AddParallelApprovalChain",
     [](UIWF& ui, const SessionPtr& s, Variant& c) {
       return ui.AddParallelApprovalChain(s, 101, 303, 404, c);
     },
     "AddParallelApprovalChain(101,303,404)"},
    {"UIWF::AddReviewer",
     [](UIWF& ui, const SessionPtr& s, Variant& c) { return ui.AddReviewer(s, 101, 505, 606, c); },
     "AddReviewer(101,505,606)"},
    {"UIWF::AddComments",
     [](UIWF& ui, const SessionPtr& s, Variant& c) { return ui.AddComments(s, 101, "see quote", c); },
     "AddComments(101,see quote)"},
    {"UIWF::Approve",
     [](UIWF& ui, const SessionPtr& s, Variant& c) { return ui.Approve(s, 101, 2, "ok", c); },
     "Approve(101,2,ok)"},
    {"UIWF::Reject",
     [](UIWF& ui, const SessionPtr& s, Variant& c) { return ui.Reject(s, 101, 2, "no budget", c); },
     "Reject(101,2,no budget)"},
    {"UIWF::Cancel", [](UIWF& ui, const SessionPtr& s, Variant& c) { return ui.Cancel(s, 101, c); },
     "Cancel(101)"},
};

TEST_F(UIWFActionsTest, ActionsPassTheirArgumentsAndReportTheBusinessError) {
  for (const ActionCase& c : kActions) {
    SCOPED_TRACE(c.source);
    wf->calls.clear();
    wf->result = true;
    wf->custom_reply = Variant("from business");
    Variant custom = Variant(int32_t{77});
    EXPECT_TRUE(c.call(ui, session, custom));
    EXPECT_TRUE(ui.Success());
    EXPECT_EQ(wf->calls, std::vector<std::string>{c.passed});
    EXPECT_EQ(wf->session_seen, session);
    EXPECT_EQ(wf->custom_seen.to_int32(), 77);
    EXPECT_EQ(custom.to_string(), "from business");

    wf->result = false;
    wf->fail_with(kRefused, "KxWF03.Workflow", "Step 2 is already approved.");
    EXPECT_FALSE(c.call(ui, session, custom));
    EXPECT_FALSE(ui.Success());
    EXPECT_THAT(ui.Error(), ErrorIs(kRefused, std::string(c.source) + " KxWF03.Workflow"));
    EXPECT_EQ(ui.Error()->Description(), "Step 2 is already approved.");
  }
}

TEST_F(UIWFActionsTest, SuccessIsClearedOnEntryAndByAnyFailure) {
  ASSERT_TRUE(ui.Approve(session, 1, 1, ""));
  bool success_during_call = true;
  wf->on_call = [&] { success_during_call = ui.Success(); };
  EXPECT_TRUE(ui.Reject(session, 1, 1, ""));
  EXPECT_FALSE(success_during_call);

  wf->broken = true;  // the call itself throws
  EXPECT_FALSE(ui.Cancel(session, 1));
  EXPECT_FALSE(ui.Success());
  EXPECT_THAT(ui.Error(), ErrorIs(70, "UIWF::Cancel Workflow"));

  auto bare = testing::TestEnv::make();  // nothing registered
  UIWF orphan(bare->runtime);
  EXPECT_FALSE(orphan.AddComments(session, 1, "x"));
  EXPECT_EQ(orphan.Error()->Number(), err::kCannotCreateObject);
}

TEST_F(UIWFActionsTest, OmittedCustomDataArrivesMissingAndObjectsAreReleased) {
  std::weak_ptr<FakeWorkflow> last;
  env->provide_fn(progid::Workflow, [&last] {
    auto fresh = std::make_shared<FakeWorkflow>();
    fresh->result = false;
    last = fresh;
    return fresh;
  });
  EXPECT_FALSE(ui.Cancel(session, 1));
  EXPECT_TRUE(last.expired()) << "released on the failure path";
  EXPECT_FALSE(ui.AddComments(session, 1, "x"));
  EXPECT_TRUE(last.expired());

  env->provide(progid::Workflow, wf);
  EXPECT_TRUE(ui.Cancel(session, 1));
  EXPECT_TRUE(wf->custom_seen.is_missing());
}

TEST_F(UIWFActionsTest, BuildApprovalProcessNeverTouchesTheCallersCounter) {
  int16_t count = 5;
  EXPECT_TRUE(ui.BuildApprovalProcess(session, 8, true, count));
  EXPECT_EQ(count, 5);
  EXPECT_EQ(wf->counter_seen, 0) << "the business tier gets a fresh counter";
  EXPECT_EQ(wf->calls.back(), "BuildApprovalProcess(8,True,0)");

  wf->result = false;
  wf->fail_with(kRefused, "Workflow", "no route");
  EXPECT_FALSE(ui.BuildApprovalProcess(session, 8, false, count));
  EXPECT_EQ(count, 5);
  EXPECT_THAT(ui.Error(), ErrorIs(kRefused, "UIWF::BuildApprovalProcess Workflow"));
  wf->result = true;
  EXPECT_TRUE(ui.BuildApprovalProcess(session, 8, false)) << "the counter may be omitted";
}

TEST_F(UIWFActionsTest, GetApprovalCountKeepsTheBusinessCountOnFailure) {
  wf->approval_count = 4;
  EXPECT_EQ(ui.GetApprovalCount(session, 8), 4);
  EXPECT_TRUE(ui.Success());
  EXPECT_EQ(wf->calls.back(), "GetApprovalCount(8)");

  bool success_during_call = false;
  wf->on_call = [&] { success_during_call = ui.Success(); };
  wf->success = false;
  wf->approval_count = 3;
  wf->fail_with(kRefused, "Workflow", "route not built");
  EXPECT_EQ(ui.GetApprovalCount(session, 8), 3);
  EXPECT_TRUE(success_during_call) << "Success is not cleared on entry";
  EXPECT_FALSE(ui.Success());
  EXPECT_THAT(ui.Error(), ErrorIs(kRefused, "UIWF::GetApprovalCount Workflow"));

  wf->broken = true;
  EXPECT_EQ(ui.GetApprovalCount(session, 8), 0) << "a failed call has no count";
  EXPECT_THAT(ui.Error(), ErrorIs(70, "UIWF::GetApprovalCount Workflow"));
}

class UIWFMapTest : public UIWFActionsTest {
 protected:
  void SetUp() override { env->provide(progid::Diagram, diagram); }
  std::shared_ptr<FakeDiagram> diagram = std::make_shared<FakeDiagram>();
};

TEST_F(UIWFMapTest, TheMapIsExactlyWhatTheDiagramWrote) {
  diagram->html = "<TABLE><TR><TD>Ann</TD></TR></TABLE>";
  Variant html = Variant("old");
  EXPECT_TRUE(ui.BuildDataStructure(session, 8, "full", 3, html, "Verdana"));
  EXPECT_EQ(html.to_string(), "<TABLE><TR><TD>Ann</TD></TR></TABLE>");
  EXPECT_TRUE(ui.Success());
  EXPECT_EQ(diagram->calls.back(), "BuildDataStructure(8,full,3,Verdana)");
}

TEST_F(UIWFMapTest, AnyFailureReplacesTheMapWithTheFixedText) {
  diagram->html = "<TABLE><TR>";
  diagram->result = false;
  diagram->fail_with(kRefused, "Diagram", "no approvers");
  Variant html;
  EXPECT_FALSE(ui.BuildDataStructure(session, 8, "full", 3, html, "Verdana"));
  EXPECT_EQ(html.to_string(), "Error in creating workflow map");
  EXPECT_FALSE(ui.Success());
  EXPECT_THAT(ui.Error(), ErrorIs(kRefused, "Workflow::BuildDataStructure Diagram"));

  auto bare = testing::TestEnv::make();  // the Diagram cannot be created
  UIWF orphan(bare->runtime);
  html = Variant("<P>");
  EXPECT_FALSE(orphan.BuildDataStructure(session, 8, "full", 3, html, "Verdana"));
  EXPECT_EQ(html.to_string(), "Error in creating workflow map");
  EXPECT_EQ(orphan.Error()->Number(), err::kCannotCreateObject);
}

}  // namespace
}  // namespace kxui
