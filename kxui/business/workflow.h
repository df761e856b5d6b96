// "KxWF03.Workflow" and "KxWF03.Diagram": the approval route of a requisition in the
// business tier. The routing rules (who approves, how steps are numbered, who is told)
// are theirs; the library only passes requests on and reports their failures.
#pragma once

#include <cstdint>
#include <string>

#include "kxui/business/business_object.h"
#include "kxui/frame/recordset.h"
#include "kxui/frame/session.h"
#include "kxui/frame/variant.h"

namespace kxui::business {

// One object per call. Every action returns True when done and False (the reason in
// GetError) when refused; `custom_data` is the caller's in/out value, which the object
// may read and write.
class Workflow : public virtual BusinessObject {
 public:
  // A new approver placed after (AddAfter) or before (AddBefore) step `seq_num`.
  virtual bool AddAfter(const SessionPtr& session, int32_t req_id, int32_t seq_num,
                        int32_t approver_id, int32_t approver_borg_id, Variant& custom_data) = 0;
  virtual bool AddBefore(const SessionPtr& session, int32_t req_id, int32_t seq_num,
                         int32_t approver_id, int32_t approver_borg_id, Variant& custom_data) = 0;
  // The approval chain of an approver, after, before or beside the existing route.
  virtual bool AddAfterApprovalChain(const SessionPtr& session, int32_t req_id,
                                     int32_t approver_id, int32_t approver_borg_id,
                                     Variant& custom_data) = 0;
  virtual bool AddBeforeApprovalChain(const SessionPtr& session, int32_t req_id,
                                      int32_t approver_id, int32_t approver_borg_id,
                                      Variant& custom_data) = 0;
  virtual bool AddParallelApprovalChain(const SessionPtr& session, int32_t req_id,
                                        int32_t approver_id, int32_t approver_borg_id,
                                        Variant& custom_data) = 0;
  virtual bool AddReviewer(const SessionPtr& session, int32_t req_id, int32_t reviewer_id,
                           int32_t reviewer_borg_id, Variant& custom_data) = 0;
  virtual bool AddComments(const SessionPtr& session, int32_t req_id, const std::string& comments,
                           Variant& custom_data) = 0;
  // Acts on step `seq_num`.
  virtual bool Approve(const SessionPtr& session, int32_t req_id, int32_t seq_num,
                       const std::string& comments, Variant& custom_data) = 0;
  virtual bool Reject(const SessionPtr& session, int32_t req_id, int32_t seq_num,
                      const std::string& comments, Variant& custom_data) = 0;
  virtual bool Cancel(const SessionPtr& session, int32_t req_id, Variant& custom_data) = 0;
  // Builds the route (only shows it when `preview`); writes the number of approvals
  // into `approvals_count`.
  virtual bool BuildApprovalProcess(const SessionPtr& session, int32_t req_id, bool preview,
                                    int16_t& approvals_count, Variant& custom_data) = 0;
  // The number of approval steps; Success tells whether it could be counted.
  virtual int32_t GetApprovalCount(const SessionPtr& session, int32_t req_id,
                                   Variant& custom_data) = 0;
  // Users who may be added as approvers of the requisition; Success tells whether the
  // search ran.
  virtual RecordsetPtr GetApproverSearchResults(const SessionPtr& session, int32_t req_id,
                                                const std::string& search_name,
                                                const std::string& search_login,
                                                Variant& custom_data) = 0;
  // Whether the last operation succeeded.
  virtual bool Success() = 0;
};

// Draws the route of a requisition as an HTML fragment.
class Diagram : public virtual BusinessObject {
 public:
  // Writes the fragment into `html_result` (possibly partly, before failing). `mode`
  // picks the form of the map; `font_face` is the page's font, so the text matches.
  virtual bool BuildDataStructure(const SessionPtr& session, int32_t req_id,
                                  const std::string& mode, int16_t seq_num, Variant& html_result,
                                  const std::string& font_face, Variant& custom_data) = 0;
};

}  // namespace kxui::business
