// UIWF: the approval actions, which the business tier's Workflow carries out.
#include "kxui/business/progids.h"
#include "kxui/business/workflow.h"
#include "kxui/workflow/ui_wf.h"

namespace kxui {

using business::Workflow;

template <class Call>
bool UIWF::workflow_action(std::string_view source, Call&& call) noexcept {
  return guarded(
      source, false,
      [&] {
        auto workflow = create<Workflow>(progid::Workflow);
        check(*workflow, call(*workflow));
        return true;
      },
      Track::kSuccess);
}

bool UIWF::AddAfter(const SessionPtr& p_Session, int32_t plngReqID, int32_t plngSeqNum,
                    int32_t plngApproverID, int32_t plngApproverBorgID,
                    ByRef<Variant> p_CustomData) noexcept {
  return workflow_action("UIWF::AddAfter", [&](Workflow& wf) {
    return wf.AddAfter(p_Session, plngReqID, plngSeqNum, plngApproverID, plngApproverBorgID,
                       *p_CustomData);
  });
}

bool UIWF::AddBefore(const SessionPtr& p_Session, int32_t plngReqID, int32_t plngSeqNum,
                     int32_t plngApproverID, int32_t plngApproverBorgID,
                     ByRef<Variant> p_CustomData) noexcept {
  return workflow_action("UIWF::AddBefore", [&](Workflow& wf) {
    return wf.AddBefore(p_Session, plngReqID, plngSeqNum, plngApproverID, plngApproverBorgID,
                        *p_CustomData);
  });
}

bool UIWF::AddAfterApprovalChain(const SessionPtr& p_Session, int32_t plngReqID,
                                 int32_t plngApproverID, int32_t plngApproverBorgID,
                                 ByRef<Variant> p_CustomData) noexcept {
  return workflow_action("UIWF::AddAfterApprovalChain", [&](Workflow& wf) {
    return wf.AddAfterApprovalChain(p_Session, plngReqID, plngApproverID, plngApproverBorgID,
                                    *p_CustomData);
  });
}

bool UIWF::AddBeforeApprovalChain(const SessionPtr& p_Session, int32_t plngReqID,
                                  int32_t plngApproverID, int32_t plngApproverBorgID,
                                  ByRef<Variant> p_CustomData) noexcept {
  return workflow_action("UIWF::AddBeforeApprovalChain", [&](Workflow& wf) {
    return wf.AddBeforeApprovalChain(p_Session, plngReqID, plngApproverID, plngApproverBorgID,
                                     *p_CustomData);
  });
}

bool UIWF::AddParallelApprovalChain(const SessionPtr& p_Session, int32_t plngReqID,
                                    int32_t plngApproverID, int32_t plngApproverBorgID,
                                    ByRef<Variant> p_CustomData) noexcept {
  return workflow_action("UIWF::AddParallelApprovalChain", [&](Workflow& wf) {
    return wf.AddParallelApprovalChain(p_Session, plngReqID, plngApproverID, plngApproverBorgID,
                                       *p_CustomData);
  });
}

bool UIWF::AddReviewer(const SessionPtr& p_Session, int32_t plngReqID, int32_t plngReviewerID,
                       int32_t plngReviewerBorgID, ByRef<Variant> p_CustomData) noexcept {
  return workflow_action("UIWF::AddReviewer", [&](Workflow& wf) {
    return wf.AddReviewer(p_Session, plngReqID, plngReviewerID, plngReviewerBorgID, *p_CustomData);
  });
}

bool UIWF::AddComments(const SessionPtr& p_Session, int32_t p_lReqID,
                       const std::string& p_sComments, ByRef<Variant> p_CustomData) noexcept {
  return workflow_action("UIWF::AddComments", [&](Workflow& wf) {
    return wf.AddComments(p_Session, p_lReqID, p_sComments, *p_CustomData);
  });
}

bool UIWF::Approve(const SessionPtr& p_Session, int32_t p_lReqID, int32_t p_lSeqNum,
                   const std::string& p_sComments, ByRef<Variant> p_CustomData) noexcept {
  return workflow_action("UIWF::Approve", [&](Workflow& wf) {
    return wf.Approve(p_Session, p_lReqID, p_lSeqNum, p_sComments, *p_CustomData);
  });
}

bool UIWF::Reject(const SessionPtr& p_Session, int32_t p_lReqID, int32_t p_lSeqNum,
                  const std::string& p_sComments, ByRef<Variant> p_CustomData) noexcept {
  return workflow_action("UIWF::Reject", [&](Workflow& wf) {
    return wf.Reject(p_Session, p_lReqID, p_lSeqNum, p_sComments, *p_CustomData);
  });
}

bool UIWF::Cancel(const SessionPtr& p_Session, int32_t plngReqID,
                  ByRef<Variant> p_CustomData) noexcept {
  return workflow_action("UIWF::Cancel", [&](Workflow& wf) {
    return wf.Cancel(p_Session, plngReqID, *p_CustomData);
  });
}

bool UIWF::BuildApprovalProcess(const SessionPtr& p_Session, int32_t p_lReqID, bool p_bPreview,
                                ByRef<int16_t> /*p_iApprovalsCount*/,
                                ByRef<Variant> p_CustomData) noexcept {
  // The caller's counter is deliberately left alone (pages count with GetApprovalCount):
  // the business tier gets a scratch counter and its answer is dropped.
  return workflow_action("UIWF::BuildApprovalProcess", [&](Workflow& wf) {
    int16_t scratch = 0;
    return wf.BuildApprovalProcess(p_Session, p_lReqID, p_bPreview, scratch, *p_CustomData);
  });
}

int32_t UIWF::GetApprovalCount(const SessionPtr& p_Session, int32_t p_lReqID,
                               ByRef<Variant> p_CustomData) noexcept {
  // The count is kept even when the business tier then reports a failure, so the page
  // still gets its figure; Success is not cleared first.
  int32_t count = 0;
  guarded(
      "UIWF::GetApprovalCount", false,
      [&] {
        auto workflow = create<Workflow>(progid::Workflow);
        count = workflow->GetApprovalCount(p_Session, p_lReqID, *p_CustomData);
        check(*workflow, workflow->Success());
        success_ = true;
        return true;
      },
      Track::kClearOnFailure);
  return count;
}

}  // namespace kxui
