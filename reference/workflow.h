// The approval side of the reference tier: "KxWF03.Workflow" (route changes and
// actions), "KxWF03.Diagram" (the route as HTML), the work lists ("KxWF03.Approvals",
// "KxWF03.ApprovalReview"), one step ("KxWF03.Approval"), the lines it covers
// ("KxWF03.ApprovalItems") and delegation ("KxWF03.BorgDelegation").
#pragma once

#include <memory>
#include <vector>

#include "kxui/business/approvals.h"
#include "kxui/business/borg_delegation.h"
#include "kxui/business/workflow.h"
#include "reference/object_base.h"

namespace kxui::reference {

class RefWorkflow : public business::Workflow, public RefObject {
 public:
  explicit RefWorkflow(DatabasePtr db) : RefObject(std::move(db), "Workflow") {}
  bool AddAfter(const SessionPtr& session, int32_t req_id, int32_t seq_num, int32_t approver_id,
                int32_t approver_borg_id, Variant& custom_data) override;
  bool AddBefore(const SessionPtr& session, int32_t req_id, int32_t seq_num, int32_t approver_id,
                 int32_t approver_borg_id, Variant& custom_data) override;
  bool AddAfterApprovalChain(const SessionPtr& session, int32_t req_id, int32_t approver_id,
                             int32_t approver_borg_id, Variant& custom_data) override;
  bool AddBeforeApprovalChain(const SessionPtr& session, int32_t req_id, int32_t approver_id,
                              int32_t approver_borg_id, Variant& custom_data) override;
  bool AddParallelApprovalChain(const SessionPtr& session, int32_t req_id, int32_t approver_id,
                                int32_t approver_borg_id, Variant& custom_data) override;
  bool AddReviewer(const SessionPtr& session, int32_t req_id, int32_t reviewer_id,
                   int32_t reviewer_borg_id, Variant& custom_data) override;
  bool AddComments(const SessionPtr& session, int32_t req_id, const std::string& comments,
                   Variant& custom_data) override;
  bool Approve(const SessionPtr& session, int32_t req_id, int32_t seq_num,
               const std::string& comments, Variant& custom_data) override;
  bool Reject(const SessionPtr& session, int32_t req_id, int32_t seq_num,
              const std::string& comments, Variant& custom_data) override;
  bool Cancel(const SessionPtr& session, int32_t req_id, Variant& custom_data) override;
  bool BuildApprovalProcess(const SessionPtr& session, int32_t req_id, bool preview,
                            int16_t& approvals_count, Variant& custom_data) override;
  int32_t GetApprovalCount(const SessionPtr& session, int32_t req_id,
                           Variant& custom_data) override;
  RecordsetPtr GetApproverSearchResults(const SessionPtr& session, int32_t req_id,
                                        const std::string& search_name,
                                        const std::string& search_login,
                                        Variant& custom_data) override;
  bool Success() override { return success_; }

 private:
  enum class Place { kAfterStep, kBeforeStep, kChainAfter, kChainBefore, kChainParallel };
  // Every route change: checks, inserts the steps, restarts the current stage.
  bool add_approvers(const char* member, const SessionPtr& session, int32_t req_id,
                     int32_t seq_num, int32_t approver_id, int32_t approver_borg_id, Place place);
  // Approve and Reject share their checks.
  bool act(const char* member, const SessionPtr& session, int32_t req_id, int32_t seq_num,
           const std::string& comments, bool approve);
};

class RefDiagram : public business::Diagram, public RefObject {
 public:
  explicit RefDiagram(DatabasePtr db) : RefObject(std::move(db), "Diagram") {}
  // Mode "V" lists the stages one under the other; any other mode lays them out in a
  // row. The step `seq_num` is marked. Names are HTML-escaped.
  bool BuildDataStructure(const SessionPtr& session, int32_t req_id, const std::string& mode,
                          int16_t seq_num, Variant& html_result, const std::string& font_face,
                          Variant& custom_data) override;
};

class RefApprovals : public business::Approvals, public RefObject {
 public:
  // Result code of an empty work list.
  static constexpr int32_t kNoData = 5;
  explicit RefApprovals(DatabasePtr db) : RefObject(std::move(db), "Approvals") {}
  RecordsetPtr GetApproverList(const SessionPtr& session, const std::string& sort_by,
                               Variant& custom_data) override;
  bool Success() override { return success_; }
  int32_t ResultCode() override { return result_code_; }

 private:
  int32_t result_code_ = 0;
};

class RefApprovalReview : public business::ApprovalReview, public RefObject {
 public:
  static constexpr int32_t kNoData = 7;
  explicit RefApprovalReview(DatabasePtr db) : RefObject(std::move(db), "ApprovalReview") {}
  RecordsetPtr GetReviewerList(const SessionPtr& session, const std::string& sort_by,
                               Variant& custom_data) override;
  RecordsetPtr GetReviewList(const SessionPtr& session, int32_t req_id, int32_t reviewer_id,
                             Variant& custom_data) override;
  bool Success() override { return success_; }
  int32_t ResultCode() override { return result_code_; }

 private:
  RecordsetPtr finish(RecordsetPtr rs, const char* empty_text);
  int32_t result_code_ = 0;
};

class RefApprovalItems : public business::ApprovalItems, public RefObject {
 public:
  static constexpr int32_t kNoData = 6;
  explicit RefApprovalItems(DatabasePtr db) : RefObject(std::move(db), "ApprovalItems") {}
  bool Load(const SessionPtr& session, int32_t req_id, int32_t seq_num,
            Variant& custom_data) override;
  int32_t ResultCode() override { return result_code_; }
  std::vector<std::shared_ptr<business::ApprovalItem>> Items() override { return items_; }

 private:
  int32_t result_code_ = 0;
  std::vector<std::shared_ptr<business::ApprovalItem>> items_;
};

class RefApproval : public business::Approval, public RefObject {
 public:
  explicit RefApproval(DatabasePtr db) : RefObject(std::move(db), "Approval") {}
  bool Load(const SessionPtr& session, int32_t req_id, int32_t seq_num,
            Variant& custom_data) override;
  std::string ApprovalTypeDesc() override { return type_desc_; }
  int32_t ApprovalStatusID() override { return status_; }
  int32_t ApproverID() override { return approver_; }
  Variant ReceivedDate() override { return received_; }

 private:
  std::string type_desc_;
  int32_t status_ = 0, approver_ = 0;
  Variant received_ = Variant::null();
};

class RefBorgDelegation : public business::BorgDelegation, public RefObject {
 public:
  explicit RefBorgDelegation(DatabasePtr db) : RefObject(std::move(db), "BorgDelegation") {}
  bool Load(const SessionPtr& session, Variant& custom_data) override;
  bool Save(const SessionPtr& session, Variant& custom_data) override;
  RecordsetPtr GetDelegateSearchResults(const SessionPtr& session, const std::string& search_name,
                                        const std::string& search_login,
                                        Variant& custom_data) override;
  int32_t BorgID() override { return borg_id_; }
  void SetBorgID(int32_t id) override { borg_id_ = id; }
  int32_t SysUserID() override { return sys_user_id_; }
  void SetSysUserID(int32_t id) override { sys_user_id_ = id; }
  int32_t DelegateeID() override { return delegatee_id_; }
  void SetDelegateeID(int32_t id) override { delegatee_id_ = id; }
  std::string DelegateeName() override { return delegatee_name_; }
  std::string DelegateeLoginID() override { return delegatee_login_; }
  Date DelegateStartDate() override { return start_; }
  void SetDelegateStartDate(Date d) override { start_ = d; }
  Date DelegateEndDate() override { return end_; }
  void SetDelegateEndDate(Date d) override { end_ = d; }
  bool Enabled() override { return enabled_; }
  void SetEnabled(bool enabled) override { enabled_ = enabled; }
  bool DelegationEnabled() override { return delegation_enabled_; }
  bool Success() override { return success_; }

 private:
  int32_t borg_id_ = 0, sys_user_id_ = 0, delegatee_id_ = 0;
  std::string delegatee_name_, delegatee_login_;
  Date start_, end_;
  bool enabled_ = false, delegation_enabled_ = false;
};

// Whether `user_id` may act for `approver_id` now: it is the approver, or holds the
// approver's enabled delegation for today in an organisation that allows delegation.
bool may_act_for(soci::session& sql, Database& db, int32_t user_id, int32_t approver_id);

}  // namespace kxui::reference
