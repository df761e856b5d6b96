// UIWF: the approval workflow of requisitions: approving, rejecting and cancelling,
// adding approvers, reviewers and whole approval chains, the approvers' and reviewers'
// work lists, delegation of approval authority, and the workflow map.
//
// Every operation maintains Success: False on entry (GetApprovalCount excepted), True
// when it succeeded. On failure the error is recorded in Error() under the source named
// at the operation, followed by a blank and the source of the failure; a failure the
// business tier reports keeps its own number and description. Every business object is
// created per call and released before the call returns. p_CustomData is passed by
// reference to every business call, so what the business tier writes into it comes back.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "kxui/frame/byref.h"
#include "kxui/frame/facade.h"
#include "kxui/frame/recordset.h"

namespace kxui {

namespace business {
class Workflow;
}

class UIWF : public Facade {
 public:
  explicit UIWF(std::shared_ptr<Runtime> runtime = Runtime::process());

  // True when the last operation that maintains it succeeded.
  bool Success() const noexcept { return success_; }

  // ---- Actions ("KxWF03.Workflow") ----
  // Each passes its arguments unchecked to the business operation of the same name and
  // returns True when it succeeded; False on failure, under "UIWF::<operation>".

  // A new approver after (AddAfter) or before (AddBefore) approval step plngSeqNum.
  bool AddAfter(const SessionPtr& p_Session, int32_t plngReqID, int32_t plngSeqNum,
                int32_t plngApproverID, int32_t plngApproverBorgID,
                ByRef<Variant> p_CustomData = {}) noexcept;
  bool AddBefore(const SessionPtr& p_Session, int32_t plngReqID, int32_t plngSeqNum,
                 int32_t plngApproverID, int32_t plngApproverBorgID,
                 ByRef<Variant> p_CustomData = {}) noexcept;
  // The approver's whole approval chain after, before or beside the existing route.
  bool AddAfterApprovalChain(const SessionPtr& p_Session, int32_t plngReqID,
                             int32_t plngApproverID, int32_t plngApproverBorgID,
                             ByRef<Variant> p_CustomData = {}) noexcept;
  bool AddBeforeApprovalChain(const SessionPtr& p_Session, int32_t plngReqID,
                              int32_t plngApproverID, int32_t plngApproverBorgID,
                              ByRef<Variant> p_CustomData = {}) noexcept;
  bool AddParallelApprovalChain(const SessionPtr& p_Session, int32_t plngReqID,
                                int32_t plngApproverID, int32_t plngApproverBorgID,
                                ByRef<Variant> p_CustomData = {}) noexcept;
  bool AddReviewer(const SessionPtr& p_Session, int32_t plngReqID, int32_t plngReviewerID,
                   int32_t plngReviewerBorgID, ByRef<Variant> p_CustomData = {}) noexcept;
  bool AddComments(const SessionPtr& p_Session, int32_t p_lReqID, const std::string& p_sComments,
                   ByRef<Variant> p_CustomData = {}) noexcept;
  // Approve or reject approval step p_lSeqNum.
  bool Approve(const SessionPtr& p_Session, int32_t p_lReqID, int32_t p_lSeqNum,
               const std::string& p_sComments, ByRef<Variant> p_CustomData = {}) noexcept;
  bool Reject(const SessionPtr& p_Session, int32_t p_lReqID, int32_t p_lSeqNum,
              const std::string& p_sComments, ByRef<Variant> p_CustomData = {}) noexcept;
  bool Cancel(const SessionPtr& p_Session, int32_t plngReqID,
              ByRef<Variant> p_CustomData = {}) noexcept;

  // Builds (or, with p_bPreview, previews) the approval route. The business tier gets a
  // counter of its own holding 0 and its answer is discarded: p_iApprovalsCount is never
  // read or written (pages count with GetApprovalCount).
  bool BuildApprovalProcess(const SessionPtr& p_Session, int32_t p_lReqID, bool p_bPreview,
                            ByRef<int16_t> p_iApprovalsCount = {},
                            ByRef<Variant> p_CustomData = {}) noexcept;

  // The number of approval steps. Success is not cleared on entry. When the business
  // tier reports a failure through its Success flag, its count is still returned, with
  // Success False and its error recorded; when the call itself fails, 0.
  // Source "UIWF::GetApprovalCount".
  int32_t GetApprovalCount(const SessionPtr& p_Session, int32_t p_lReqID,
                           ByRef<Variant> p_CustomData = {}) noexcept;

  // ---- Work lists ----
  // The record-set operations return Nothing on failure; a partial page is never
  // returned. Dates are shown by the date display rule (zone 15 converted to the user's
  // zone, date part only, in the user's locale and "DateFormat" style).

  // One page of the requisitions waiting for the user's approval ("KxWF03.Approvals"),
  // sorted by p_sSortBy: the business columns, then "UIDisplay_ReceivedDate" (from
  // "ApproveBeginDate") and "UIDisplay_CreateDate" (from "ReqCreateDate"), text of 100,
  // then the five paging columns. p_lPage 0 is the first page; -1 or a page beyond the
  // last gives the last page ("Page Size" rows a page, 20 when not set). A business
  // failure with ResultCode 5 is accepted as it stands; a Nothing list gives Nothing
  // with Success True. Source "UIWF::GetApproverListPage".
  RecordsetPtr GetApproverListPage(const SessionPtr& p_Session, const std::string& p_sSortBy,
                                   int32_t p_lPage, ByRef<Variant> p_CustomData = {}) noexcept;
  // The same for the requisitions the user is asked to review ("KxWF03.ApprovalReview",
  // ResultCode 7 accepted): the business columns, "UIDisplay_CreateDate" (text of 100),
  // "UIDisplay_CommentsLength" (32-bit: length of "Comments" without blanks at either
  // end; Null when it is Null), then the paging columns. Source "UIWF::GetReviewerListPage".
  RecordsetPtr GetReviewerListPage(const SessionPtr& p_Session, const std::string& p_sSortBy,
                                   int32_t p_lPage, ByRef<Variant> p_CustomData = {}) noexcept;

  // The header of a requisition as its approver sees it: one row of "ReqBorgName",
  // "ReqName", "RequisitionerName", "CreateDate" (text of 100), "Justification" (256),
  // "ApprovalTypeDesc", "ApprovalStatusID" (the ID as text), "ReceiveDate" (100) and
  // "ApproverID" (32-bit). The requisition is loaded (locked when p_bLockReq); the last
  // four columns are filled from approval step p_lSeqNum only when it is above -1 and
  // stay Empty otherwise. Records its failures under "UIReq::GetHeaderRs".
  RecordsetPtr GetHeaderRs(const SessionPtr& p_Session, int32_t p_lReqID, int32_t p_lSeqNum = -1,
                           bool p_bLockReq = false, ByRef<Variant> p_CustomData = {}) noexcept;

  // The line numbers approval step p_lSeqNum covers: a client-cursor record set with one
  // 32-bit column "LineNum", a row per item in collection order, left positioned on the
  // last row added. A load failure with ResultCode 6 gives whatever items there are.
  // Source "UIWF::GetApprovalItemsRs".
  RecordsetPtr GetApprovalItemsRs(const SessionPtr& p_Session, int32_t p_lReqID, int32_t p_lSeqNum,
                                  ByRef<Variant> p_CustomData = {}) noexcept;

  // The review entries of a requisition, as the business tier returns them (ResultCode 7
  // accepted). Source "UIWF::GetReviewListRs".
  RecordsetPtr GetReviewListRs(const SessionPtr& p_Session, int32_t p_lReqID,
                               int32_t p_lReviewerID = 0,
                               ByRef<Variant> p_CustomData = {}) noexcept;

  // Users who may be added as approvers of a requisition ("KxWF03.Workflow") or receive
  // the user's delegation ("KxWF03.BorgDelegation"), as the business tier returns them.
  // Sources "UIWF::GetApproverSearchResultsRs", "UIWF::GetDelegateSearchResultsRs".
  RecordsetPtr GetApproverSearchResultsRs(const SessionPtr& p_Session, int32_t p_lReqID,
                                          const std::string& p_sSearchName,
                                          const std::string& p_sSearchLogin,
                                          ByRef<Variant> p_CustomData = {}) noexcept;
  RecordsetPtr GetDelegateSearchResultsRs(const SessionPtr& p_Session,
                                          const std::string& p_sSearchName,
                                          const std::string& p_sSearchLogin,
                                          ByRef<Variant> p_CustomData = {}) noexcept;

  // ---- Delegation ("KxWF03.BorgDelegation") ----

  // Whether the organisation allows delegation. A delegation that cannot be loaded gives
  // False with Success True. Source "UIWF::CheckDelegationEnabled".
  bool CheckDelegationEnabled(const SessionPtr& p_Session,
                              ByRef<Variant> p_CustomData = {}) noexcept;

  // The user's delegation, written into the eight arguments in order (IDs as 32-bit
  // integers, names as text, dates as dates, p_Enabled as Boolean). A user without a
  // delegation yet gets the business tier's defaults. On failure returns False and the
  // arguments already written keep their new values. Source "UIWF::GetBorgDelegationData".
  bool GetBorgDelegationData(const SessionPtr& p_Session, ByRef<Variant> p_BorgID,
                             ByRef<Variant> p_SysUserID, ByRef<Variant> p_DelegateeID,
                             ByRef<Variant> p_DelegateeName, ByRef<Variant> p_DelegateeLoginID,
                             ByRef<Variant> p_DelegateStartDate, ByRef<Variant> p_DelegateEndDate,
                             ByRef<Variant> p_Enabled, ByRef<Variant> p_CustomData = {}) noexcept;

  // Stores the user's delegation. The dates are not checked against each other.
  // Source "UIWF::SaveBorgDelegationData".
  bool SaveBorgDelegationData(const SessionPtr& p_Session, int32_t p_BorgID, int32_t p_SysUserID,
                              int32_t p_DelegateeID, Date p_DelegateStartDate,
                              Date p_DelegateEndDate, bool p_Enabled,
                              ByRef<Variant> p_CustomData = {}) noexcept;

  // ---- Workflow map ("KxWF03.Diagram") ----

  // Asks for the HTML map of a requisition's route. The business tier writes straight
  // into HTML_Result, which holds exactly what it wrote on success. On any failure
  // HTML_Result becomes "Error in creating workflow map" (replacing any partial HTML)
  // and the error is recorded under "Workflow::BuildDataStructure". The fragment is not
  // escaped here: rendering untrusted data safely is the map builder's duty.
  bool BuildDataStructure(const SessionPtr& p_Session, int32_t plngReqID, const std::string& mode,
                          int16_t SeqNum, ByRef<Variant> HTML_Result, const std::string& psFontFace,
                          ByRef<Variant> p_CustomData = {}) noexcept;

 private:
  // The pattern of the Boolean actions: a new Workflow, `call` on it, its error raised
  // when it answers False.
  template <class Call>
  bool workflow_action(std::string_view source, Call&& call) noexcept;
};

}  // namespace kxui
