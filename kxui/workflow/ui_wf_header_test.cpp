#include <gtest/gtest.h>

#include "kxui/business/progids.h"
#include "kxui/business/requisition.h"
#include "kxui/testing/fake_services.h"
#include "kxui/testing/fake_workflow.h"
#include "kxui/workflow/ui_wf.h"

namespace kxui {
namespace {

using testing::ErrorIs;

// Just enough of a requisition for the approver's header.
class FakeHeader : public business::RequisitionHeader {
 public:
  std::string ReqName() override { return "Laptops"; }
  int32_t ReqStatusID() override { return 2; }
  std::string Justification() override { return justification; }
  void SetJustification(const std::string& text) override { justification = text; }
  Variant CreateDate() override { return Variant(Date::from_civil(2024, 3, 5, 9, 30, 0)); }
  std::string BorgName() override { return "Finance"; }
  std::string RequisitionerName() override { return "Ann Lee"; }
  std::string justification = "Three new hires";
};

class HeaderOnlyRequisition : public business::Requisition, public testing::FakeBusinessObject {
 public:
  bool Load(const SessionPtr&, int32_t req_id, bool lock, Variant&) override {
    loads.push_back(std::to_string(req_id) + (lock ? ",locked" : ""));
    return loaded;
  }
  std::shared_ptr<business::RequisitionHeader> Header() override { return header; }
  bool Success() override { return loaded; }

  std::shared_ptr<FakeHeader> header = std::make_shared<FakeHeader>();
  std::vector<std::string> loads;
  bool loaded = true;
};

class UIWFHeaderTest : public ::testing::Test {
 protected:
  void SetUp() override {
    env->provide(progid::Requisition, req);
    env->provide(progid::Approval, approval);
    approval->received = Variant(Date::from_civil(2024, 3, 6, 8, 0, 0));
  }

  std::shared_ptr<testing::TestEnv> env = testing::TestEnv::make();
  testing::FakeServices fakes = testing::FakeServices::install(*env);
  std::shared_ptr<BasicSession> session = testing::make_session();
  std::shared_ptr<HeaderOnlyRequisition> req = std::make_shared<HeaderOnlyRequisition>();
  std::shared_ptr<testing::FakeApproval> approval = std::make_shared<testing::FakeApproval>();
  UIWF ui{env->runtime};
};

TEST_F(UIWFHeaderTest, WithoutASequenceTheApprovalColumnsStayEmpty) {
  auto rs = ui.GetHeaderRs(session, 8);
  ASSERT_NE(rs, nullptr);
  EXPECT_TRUE(ui.Success());
  EXPECT_EQ(req->loads, std::vector<std::string>{"8"}) << "not locked by default";
  EXPECT_EQ(env->count(progid::Approval), 0);

  const std::vector<std::tuple<std::string, DataTypeEnum, int32_t>> layout = {
      {"ReqBorgName", adVarWChar, 100},      {"ReqName", adVarWChar, 100},
      {"RequisitionerName", adVarWChar, 100}, {"CreateDate", adVarWChar, 100},
      {"Justification", adVarWChar, 256},    {"ApprovalTypeDesc", adVarWChar, 100},
      {"ApprovalStatusID", adVarWChar, 100}, {"ReceiveDate", adVarWChar, 100},
      {"ApproverID", adInteger, 0},
  };
  const Fields& f = rs->GetFields();
  ASSERT_EQ(f.Count(), 9);
  for (int32_t i = 0; i < f.Count(); ++i) {
    EXPECT_EQ(std::make_tuple(f[i].Name(), f[i].Type(), f[i].DefinedSize()), layout[i]);
  }
  ASSERT_EQ(rs->RecordCount(), 1);
  EXPECT_EQ((*rs)["ReqBorgName"].Value().to_string(), "Finance");
  EXPECT_EQ((*rs)["ReqName"].Value().to_string(), "Laptops");
  EXPECT_EQ((*rs)["RequisitionerName"].Value().to_string(), "Ann Lee");
  EXPECT_EQ((*rs)["Justification"].Value().to_string(), "Three new hires");
  EXPECT_EQ((*rs)["CreateDate"].Value().to_string(), "1033/2/2024-03-05");
  for (const char* empty : {"ApprovalTypeDesc", "ApprovalStatusID", "ReceiveDate", "ApproverID"}) {
    EXPECT_TRUE((*rs)[empty].Value().is_empty()) << empty;
  }
}

TEST_F(UIWFHeaderTest, ASequenceFromZeroOnAddsTheApprovalStep) {
  session->time_zone_id = 0;  // fifteen hours behind: the 6th at 08:00 is the 5th
  auto rs = ui.GetHeaderRs(session, 8, 0, true);
  ASSERT_NE(rs, nullptr);
  EXPECT_EQ(req->loads, std::vector<std::string>{"8,locked"});
  EXPECT_EQ(approval->calls, std::vector<std::string>{"Load(8,0)"});
  EXPECT_EQ((*rs)["ApprovalTypeDesc"].Value().to_string(), "Manager");
  EXPECT_EQ((*rs)["ApprovalStatusID"].Value(), Variant("2")) << "the ID as text";
  EXPECT_EQ((*rs)["ApproverID"].Value(), Variant(int32_t{41}));
  EXPECT_EQ((*rs)["ReceiveDate"].Value().to_string(), "1033/2/2024-03-05");
}

TEST_F(UIWFHeaderTest, FailuresAreRecordedUnderTheRequisitionSource) {
  approval->loaded = false;
  approval->fail_with(30, "Approval", "no such step");
  EXPECT_EQ(ui.GetHeaderRs(session, 8, 3), nullptr);
  EXPECT_FALSE(ui.Success());
  EXPECT_THAT(ui.Error(), ErrorIs(30, "UIReq::GetHeaderRs Approval"));

  req->loaded = false;
  req->fail_with(31, "Requisition", "locked by Bo");
  EXPECT_EQ(ui.GetHeaderRs(session, 8), nullptr);
  EXPECT_THAT(ui.Error(), ErrorIs(31, "UIReq::GetHeaderRs Requisition"));
  EXPECT_EQ(ui.Error()->Description(), "locked by Bo");
}

}  // namespace
}  // namespace kxui
