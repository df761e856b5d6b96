// Fakes of the workflow business objects. Each records its calls as text, e.g.
// "Approve(7,2,ok)", so a test can assert the arguments and their order in one line;
// answers and failures are set through public members, errors with fail_with.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "kxui/business/approvals.h"
#include "kxui/business/borg_delegation.h"
#include "kxui/business/workflow.h"
#include "kxui/testing/test_runtime.h"

namespace kxui::testing {

// What every workflow fake shares: the call log, the session and custom data it saw,
// and an optional reply written into the custom data.
class CallLog {
 public:
  std::vector<std::string> calls;
  SessionPtr session_seen;
  Variant custom_seen;
  Variant custom_reply;  // written into custom data when not Empty
  bool broken = false;   // every call throws Failure(70, <name>, "connection lost")
  std::function<void()> on_call;  // run inside every call, to look at the caller mid-call

 protected:
  // Records the call and handles custom data.
  void note(const char* object, std::string call, const SessionPtr& session, Variant& custom);
};

class FakeWorkflow : public business::Workflow, public FakeBusinessObject, public CallLog {
 public:
  bool AddAfter(const SessionPtr& s, int32_t req, int32_t seq, int32_t approver, int32_t borg,
                Variant& custom) override;
  bool AddBefore(const SessionPtr& s, int32_t req, int32_t seq, int32_t approver, int32_t borg,
                 Variant& custom) override;
  bool AddAfterApprovalChain(const SessionPtr& s, int32_t req, int32_t approver, int32_t borg,
                             Variant& custom) override;
  bool AddBeforeApprovalChain(const SessionPtr& s, int32_t req, int32_t approver, int32_t borg,
                              Variant& custom) override;
  bool AddParallelApprovalChain(const SessionPtr& s, int32_t req, int32_t approver, int32_t borg,
                                Variant& custom) override;
  bool AddReviewer(const SessionPtr& s, int32_t req, int32_t reviewer, int32_t borg,
                   Variant& custom) override;
  bool AddComments(const SessionPtr& s, int32_t req, const std::string& comments,
                   Variant& custom) override;
  bool Approve(const SessionPtr& s, int32_t req, int32_t seq, const std::string& comments,
               Variant& custom) override;
  bool Reject(const SessionPtr& s, int32_t req, int32_t seq, const std::string& comments,
              Variant& custom) override;
  bool Cancel(const SessionPtr& s, int32_t req, Variant& custom) override;
  bool BuildApprovalProcess(const SessionPtr& s, int32_t req, bool preview, int16_t& count,
                            Variant& custom) override;
  int32_t GetApprovalCount(const SessionPtr& s, int32_t req, Variant& custom) override;
  RecordsetPtr GetApproverSearchResults(const SessionPtr& s, int32_t req, const std::string& name,
                                        const std::string& login, Variant& custom) override;
  bool Success() override { return success; }

  bool result = true;        // what the actions return
  bool success = true;       // the Success property
  int16_t counter_seen = -1;  // the counter BuildApprovalProcess received
  int16_t counter_reply = 9;  // and what it writes into it
  int32_t approval_count = 0;
  RecordsetPtr search_results;
};

class FakeDiagram : public business::Diagram, public FakeBusinessObject, public CallLog {
 public:
  bool BuildDataStructure(const SessionPtr& s, int32_t req, const std::string& mode, int16_t seq,
                          Variant& html, const std::string& font, Variant& custom) override;
  std::string html = "<TABLE></TABLE>";  // written into the result before answering
  bool result = true;
};

class FakeApprovals : public business::Approvals, public FakeBusinessObject, public CallLog {
 public:
  RecordsetPtr GetApproverList(const SessionPtr& s, const std::string& sort_by,
                               Variant& custom) override;
  bool Success() override { return success; }
  int32_t ResultCode() override { return result_code; }
  RecordsetPtr list;
  bool success = true;
  int32_t result_code = 0;
};

class FakeApprovalReview : public business::ApprovalReview, public FakeBusinessObject, public CallLog {
 public:
  RecordsetPtr GetReviewerList(const SessionPtr& s, const std::string& sort_by,
                               Variant& custom) override;
  RecordsetPtr GetReviewList(const SessionPtr& s, int32_t req, int32_t reviewer,
                             Variant& custom) override;
  bool Success() override { return success; }
  int32_t ResultCode() override { return result_code; }
  RecordsetPtr list;
  bool success = true;
  int32_t result_code = 0;
};

class FakeApprovalItems : public business::ApprovalItems, public FakeBusinessObject, public CallLog {
 public:
  bool Load(const SessionPtr& s, int32_t req, int32_t seq, Variant& custom) override;
  int32_t ResultCode() override { return result_code; }
  std::vector<std::shared_ptr<business::ApprovalItem>> Items() override;
  bool loaded = true;
  int32_t result_code = 0;
  std::vector<int32_t> line_nums;
};

class FakeApproval : public business::Approval, public FakeBusinessObject, public CallLog {
 public:
  bool Load(const SessionPtr& s, int32_t req, int32_t seq, Variant& custom) override;
  std::string ApprovalTypeDesc() override { return type_desc; }
  int32_t ApprovalStatusID() override { return status_id; }
  int32_t ApproverID() override { return approver_id; }
  Variant ReceivedDate() override { return received; }
  bool loaded = true;
  std::string type_desc = "Manager";
  int32_t status_id = 2;
  int32_t approver_id = 41;
  Variant received;
};

class FakeBorgDelegation : public business::BorgDelegation, public FakeBusinessObject, public CallLog {
 public:
  bool Load(const SessionPtr& s, Variant& custom) override;
  bool Save(const SessionPtr& s, Variant& custom) override;
  RecordsetPtr GetDelegateSearchResults(const SessionPtr& s, const std::string& name,
                                        const std::string& login, Variant& custom) override;

  int32_t BorgID() override { return borg_id; }
  void SetBorgID(int32_t v) override;
  int32_t SysUserID() override { return sys_user_id; }
  void SetSysUserID(int32_t v) override;
  int32_t DelegateeID() override { return delegatee_id; }
  void SetDelegateeID(int32_t v) override;
  std::string DelegateeName() override;
  std::string DelegateeLoginID() override { return delegatee_login; }
  Date DelegateStartDate() override { return start; }
  void SetDelegateStartDate(Date d) override;
  Date DelegateEndDate() override { return end; }
  void SetDelegateEndDate(Date d) override;
  bool Enabled() override { return enabled; }
  void SetEnabled(bool v) override;
  bool DelegationEnabled() override { return delegation_enabled; }
  bool Success() override { return success; }

  bool loaded = true;
  bool saved = true;
  bool success = true;
  bool name_unreadable = false;  // DelegateeName throws Failure(3021, ...)
  int32_t borg_id = 3, sys_user_id = 12, delegatee_id = 13;
  std::string delegatee_name = "Ann Lee", delegatee_login = "alee";
  Date start = Date::from_civil(2024, 5, 1), end = Date::from_civil(2024, 5, 31);
  bool enabled = true;
  bool delegation_enabled = true;
  RecordsetPtr search_results;
};

}  // namespace kxui::testing
