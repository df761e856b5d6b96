#include "kxui/testing/fake_workflow.h"

namespace kxui::testing {

namespace {

// "a,b,c" from the arguments' text forms.
template <class... Args>
std::string join(const Args&... args) {
  std::string out;
  bool first = true;
  for (const Variant& v : {Variant(args)...}) {
    if (!first) out += ',';
    out += v.to_string();
    first = false;
  }
  return out;
}

std::string call_text(const char* name, const std::string& args) {
  return std::string(name) + "(" + args + ")";
}

class FakeItem : public business::ApprovalItem {
 public:
  explicit FakeItem(int32_t n) : n_(n) {}
  int32_t LineNum() override { return n_; }

 private:
  int32_t n_;
};

}  // namespace

void CallLog::note(const char* object, std::string call, const SessionPtr& session,
                   Variant& custom) {
  if (on_call) on_call();
  if (broken) throw Failure(70, object, "connection lost");
  calls.push_back(std::move(call));
  session_seen = session;
  custom_seen = custom;
  if (!custom_reply.is_empty()) custom = custom_reply;
}

#define KXUI_FAKE_ACTION(Method, params, ...)                                        \
  bool FakeWorkflow::Method params {                                                 \
    note("Workflow", call_text(#Method, join(__VA_ARGS__)), s, custom);              \
    return result;                                                                   \
  }

KXUI_FAKE_ACTION(AddAfter, (const SessionPtr& s, int32_t req, int32_t seq, int32_t approver,
                            int32_t borg, Variant& custom), req, seq, approver, borg)
KXUI_FAKE_ACTION(AddBefore, (const SessionPtr& s, int32_t req, int32_t seq, int32_t approver,
                             int32_t borg, Variant& custom), req, seq, approver, borg)
KXUI_FAKE_ACTION(AddAfterApprovalChain, (const SessionPtr& s, int32_t req, int32_t approver,
                                         int32_t borg, Variant& custom), req, approver, borg)
KXUI_FAKE_ACTION(AddBeforeApprovalChain, (const SessionPtr& s, int32_t req, int32_t approver,
                                          int32_t borg, Variant& custom), req, approver, borg)
KXUI_FAKE_ACTION(AddParallelApprovalChain, (const SessionPtr& s, int32_t req, int32_t approver,
                                            int32_t borg, Variant& custom), req, approver, borg)
KXUI_FAKE_ACTION(AddReviewer, (const SessionPtr& s, int32_t req, int32_t reviewer, int32_t borg,
                               Variant& custom), req, reviewer, borg)
KXUI_FAKE_ACTION(AddComments, (const SessionPtr& s, int32_t req, const std::string& comments,
                               Variant& custom), req, comments)
KXUI_FAKE_ACTION(Approve, (const SessionPtr& s, int32_t req, int32_t seq,
                           const std::string& comments, Variant& custom), req, seq, comments)
KXUI_FAKE_ACTION(Reject, (const SessionPtr& s, int32_t req, int32_t seq,
                          const std::string& comments, Variant& custom), req, seq, comments)
KXUI_FAKE_ACTION(Cancel, (const SessionPtr& s, int32_t req, Variant& custom), req)

#undef KXUI_FAKE_ACTION

bool FakeWorkflow::BuildApprovalProcess(const SessionPtr& s, int32_t req, bool preview,
                                        int16_t& count, Variant& custom) {
  note("Workflow", call_text("BuildApprovalProcess", join(req, preview, count)), s, custom);
  counter_seen = count;
  count = counter_reply;
  return result;
}

int32_t FakeWorkflow::GetApprovalCount(const SessionPtr& s, int32_t req, Variant& custom) {
  note("Workflow", call_text("GetApprovalCount", join(req)), s, custom);
  return approval_count;
}

RecordsetPtr FakeWorkflow::GetApproverSearchResults(const SessionPtr& s, int32_t req,
                                                    const std::string& name,
                                                    const std::string& login, Variant& custom) {
  note("Workflow", call_text("GetApproverSearchResults", join(req, name, login)), s, custom);
  return search_results;
}

bool FakeDiagram::BuildDataStructure(const SessionPtr& s, int32_t req, const std::string& mode,
                                     int16_t seq, Variant& out, const std::string& font,
                                     Variant& custom) {
  note("Diagram", call_text("BuildDataStructure", join(req, mode, seq, font)), s, custom);
  out = Variant(html);
  return result;
}

RecordsetPtr FakeApprovals::GetApproverList(const SessionPtr& s, const std::string& sort_by,
                                            Variant& custom) {
  note("Approvals", call_text("GetApproverList", join(sort_by)), s, custom);
  return list;
}

RecordsetPtr FakeApprovalReview::GetReviewerList(const SessionPtr& s, const std::string& sort_by,
                                                 Variant& custom) {
  note("ApprovalReview", call_text("GetReviewerList", join(sort_by)), s, custom);
  return list;
}

RecordsetPtr FakeApprovalReview::GetReviewList(const SessionPtr& s, int32_t req, int32_t reviewer,
                                               Variant& custom) {
  note("ApprovalReview", call_text("GetReviewList", join(req, reviewer)), s, custom);
  return list;
}

bool FakeApprovalItems::Load(const SessionPtr& s, int32_t req, int32_t seq, Variant& custom) {
  note("ApprovalItems", call_text("Load", join(req, seq)), s, custom);
  return loaded;
}

std::vector<std::shared_ptr<business::ApprovalItem>> FakeApprovalItems::Items() {
  std::vector<std::shared_ptr<business::ApprovalItem>> out;
  for (int32_t n : line_nums) out.push_back(std::make_shared<FakeItem>(n));
  return out;
}

bool FakeApproval::Load(const SessionPtr& s, int32_t req, int32_t seq, Variant& custom) {
  note("Approval", call_text("Load", join(req, seq)), s, custom);
  return loaded;
}

bool FakeBorgDelegation::Load(const SessionPtr& s, Variant& custom) {
  note("BorgDelegation", "Load()", s, custom);
  return loaded;
}

bool FakeBorgDelegation::Save(const SessionPtr& s, Variant& custom) {
  note("BorgDelegation", "Save()", s, custom);
  return saved;
}

RecordsetPtr FakeBorgDelegation::GetDelegateSearchResults(const SessionPtr& s,
                                                          const std::string& name,
                                                          const std::string& login,
                                                          Variant& custom) {
  note("BorgDelegation", call_text("GetDelegateSearchResults", join(name, login)), s, custom);
  return search_results;
}

std::string FakeBorgDelegation::DelegateeName() {
  if (name_unreadable) throw Failure(3021, "BorgDelegation", "no current record");
  return delegatee_name;
}

void FakeBorgDelegation::SetBorgID(int32_t v) {
  calls.push_back(call_text("SetBorgID", join(v)));
  borg_id = v;
}
void FakeBorgDelegation::SetSysUserID(int32_t v) {
  calls.push_back(call_text("SetSysUserID", join(v)));
  sys_user_id = v;
}
void FakeBorgDelegation::SetDelegateeID(int32_t v) {
  calls.push_back(call_text("SetDelegateeID", join(v)));
  delegatee_id = v;
}
void FakeBorgDelegation::SetDelegateStartDate(Date d) {
  calls.push_back(call_text("SetDelegateStartDate", join(d)));
  start = d;
}
void FakeBorgDelegation::SetDelegateEndDate(Date d) {
  calls.push_back(call_text("SetDelegateEndDate", join(d)));
  end = d;
}
void FakeBorgDelegation::SetEnabled(bool v) {
  calls.push_back(call_text("SetEnabled", join(v)));
  enabled = v;
}

}  // namespace kxui::testing
