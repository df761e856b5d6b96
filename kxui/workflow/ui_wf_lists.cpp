// UIWF: the approvers' and reviewers' work lists and the approver search.
#include <vector>

#include "kxui/business/approvals.h"
#include "kxui/business/progids.h"
#include "kxui/business/workflow.h"
#include "kxui/frame/display.h"
#include "kxui/frame/settings.h"
#include "kxui/frame/text.h"
#include "kxui/workflow/ui_wf.h"

namespace kxui {

namespace {

// Result codes with which the business tier reports an empty work list rather than a
// fault; the list it returned is used as it stands.
constexpr int32_t kApproverListNoData = 5;
constexpr int32_t kReviewNoData = 7;

// "UIDisplay_CommentsLength": the length of "Comments" without leading and trailing
// spaces (tabs and line breaks count), Null for Null.
DisplayColumn comments_length() {
  return computed_display(
      "UIDisplay_CommentsLength", adInteger, 0, [](const Recordset& src, DisplayContext&) {
        const int32_t col = src.GetFields().index_of("Comments");
        return RowFiller([col](const Recordset& row) {
          const Variant& comments = row.value(col);
          if (comments.is_null()) return Variant::null();
          const std::string kept = text::trim_spaces(comments.to_string());
          return Variant(static_cast<int32_t>(conv::utf8_length(kept)));
        });
      });
}

// The user's locale and zone, the date formatter and the date style, in the order both
// work lists take them: all before the list is asked for, so no session means no call.
DisplayContext work_list_context(const Runtime& rt, AppIni& ini, const SessionPtr& session,
                                 Variant& custom_data) {
  DisplayContext ctx(rt, require(session), 2);
  ctx.dates();
  ctx.set_date_style(read_date_style(ini, session, custom_data));
  return ctx;
}

// Both work lists take -1, and only -1, among the negative pages as "the last page".
constexpr ListPageOptions kWorkListPaging{.past_end = PastEnd::kMinusOne};

}  // namespace

RecordsetPtr UIWF::GetApproverListPage(const SessionPtr& p_Session, const std::string& p_sSortBy,
                                       int32_t p_lPage, ByRef<Variant> p_CustomData) noexcept {
  return guarded(
      "UIWF::GetApproverListPage", RecordsetPtr(),
      [&]() -> RecordsetPtr {
        auto ini = create<AppIni>(progid::AppIni);
        auto approvals = create<business::Approvals>(progid::Approvals);
        DisplayContext ctx = work_list_context(runtime(), *ini, p_Session, *p_CustomData);
        RecordsetPtr list = approvals->GetApproverList(p_Session, p_sSortBy, *p_CustomData);
        check(*approvals, approvals->Success() || approvals->ResultCode() == kApproverListNoData);
        if (!list) return nullptr;
        static const std::vector<DisplayColumn> columns = {
            date_display("ApproveBeginDate", "UIDisplay_ReceivedDate"),
            date_display("ReqCreateDate", "UIDisplay_CreateDate"),
        };
        return display_list_page(*ini, p_Session, *p_CustomData, *list, p_lPage, ctx, columns,
                                 kWorkListPaging);
      },
      Track::kSuccess);
}

RecordsetPtr UIWF::GetReviewerListPage(const SessionPtr& p_Session, const std::string& p_sSortBy,
                                       int32_t p_lPage, ByRef<Variant> p_CustomData) noexcept {
  return guarded(
      "UIWF::GetReviewerListPage", RecordsetPtr(),
      [&]() -> RecordsetPtr {
        auto ini = create<AppIni>(progid::AppIni);
        auto review = create<business::ApprovalReview>(progid::ApprovalReview);
        DisplayContext ctx = work_list_context(runtime(), *ini, p_Session, *p_CustomData);
        RecordsetPtr list = review->GetReviewerList(p_Session, p_sSortBy, *p_CustomData);
        check(*review, review->Success() || review->ResultCode() == kReviewNoData);
        if (!list) return nullptr;
        static const std::vector<DisplayColumn> columns = {
            date_display("ReqCreateDate", "UIDisplay_CreateDate"),
            comments_length(),
        };
        return display_list_page(*ini, p_Session, *p_CustomData, *list, p_lPage, ctx, columns,
                                 kWorkListPaging);
      },
      Track::kSuccess);
}

RecordsetPtr UIWF::GetReviewListRs(const SessionPtr& p_Session, int32_t p_lReqID,
                                   int32_t p_lReviewerID, ByRef<Variant> p_CustomData) noexcept {
  return guarded(
      "UIWF::GetReviewListRs", RecordsetPtr(),
      [&] {
        auto review = create<business::ApprovalReview>(progid::ApprovalReview);
        RecordsetPtr list = review->GetReviewList(p_Session, p_lReqID, p_lReviewerID, *p_CustomData);
        check(*review, review->Success() || review->ResultCode() == kReviewNoData);
        return list;
      },
      Track::kSuccess);
}

RecordsetPtr UIWF::GetApproverSearchResultsRs(const SessionPtr& p_Session, int32_t p_lReqID,
                                              const std::string& p_sSearchName,
                                              const std::string& p_sSearchLogin,
                                              ByRef<Variant> p_CustomData) noexcept {
  return guarded(
      "UIWF::GetApproverSearchResultsRs", RecordsetPtr(),
      [&] {
        auto workflow = create<business::Workflow>(progid::Workflow);
        RecordsetPtr found = workflow->GetApproverSearchResults(p_Session, p_lReqID, p_sSearchName,
                                                                p_sSearchLogin, *p_CustomData);
        success_ = workflow->Success();
        check(*workflow, success_);
        return found;
      },
      Track::kSuccess);
}

}  // namespace kxui
