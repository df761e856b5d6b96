// The approvers' and reviewers' side of the workflow in the business tier: work lists
// ("KxWF03.Approvals", "KxWF03.ApprovalReview"), the lines a step covers
// ("KxWF03.ApprovalItems") and one approval step ("KxWF03.Approval").
//
// ResultCode qualifies a failure: some codes mean "nothing to list" rather than an
// error, and callers decide which they accept.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "kxui/business/business_object.h"
#include "kxui/frame/recordset.h"
#include "kxui/frame/session.h"
#include "kxui/frame/variant.h"

namespace kxui::business {

// Requisitions waiting for the session user's approval.
class Approvals : public virtual BusinessObject {
 public:
  // The list sorted by `sort_by`; may be Nothing. Success and ResultCode tell how it went.
  virtual RecordsetPtr GetApproverList(const SessionPtr& session, const std::string& sort_by,
                                       Variant& custom_data) = 0;
  virtual bool Success() = 0;
  virtual int32_t ResultCode() = 0;
};

// Requisitions the session user is asked to review, and the review entries of one.
class ApprovalReview : public virtual BusinessObject {
 public:
  virtual RecordsetPtr GetReviewerList(const SessionPtr& session, const std::string& sort_by,
                                       Variant& custom_data) = 0;
  virtual RecordsetPtr GetReviewList(const SessionPtr& session, int32_t req_id,
                                     int32_t reviewer_id, Variant& custom_data) = 0;
  virtual bool Success() = 0;
  virtual int32_t ResultCode() = 0;
};

// One line of a requisition that an approval step covers.
class ApprovalItem : public virtual Object {
 public:
  virtual int32_t LineNum() = 0;
};

// The lines an approval step covers.
class ApprovalItems : public virtual BusinessObject {
 public:
  // False (reason in GetError and ResultCode) when the step cannot be loaded.
  virtual bool Load(const SessionPtr& session, int32_t req_id, int32_t seq_num,
                    Variant& custom_data) = 0;
  virtual int32_t ResultCode() = 0;
  // The loaded items in collection order (empty before a successful Load).
  virtual std::vector<std::shared_ptr<ApprovalItem>> Items() = 0;
};

// One approval step of a requisition.
class Approval : public virtual BusinessObject {
 public:
  // False (reason in GetError) when the step cannot be loaded.
  virtual bool Load(const SessionPtr& session, int32_t req_id, int32_t seq_num,
                    Variant& custom_data) = 0;
  virtual std::string ApprovalTypeDesc() = 0;
  virtual int32_t ApprovalStatusID() = 0;
  virtual int32_t ApproverID() = 0;
  // When the step reached its approver, in zone 15 (a Date, or Null when it has not).
  virtual Variant ReceivedDate() = 0;
};

}  // namespace kxui::business
