#include <functional>
#include <tuple>

#include <gtest/gtest.h>

#include "kxui/business/progids.h"
#include "kxui/testing/fake_services.h"
#include "kxui/testing/fake_workflow.h"
#include "kxui/workflow/ui_wf.h"

namespace kxui {
namespace {

using testing::ErrorIs;
using testing::make_recordset;

using Layout = std::vector<std::tuple<std::string, DataTypeEnum, int32_t>>;

void expect_layout(const Recordset& rs, const Layout& layout) {
  const Fields& f = rs.GetFields();
  ASSERT_EQ(f.Count(), static_cast<int32_t>(layout.size()));
  for (int32_t i = 0; i < f.Count(); ++i) {
    SCOPED_TRACE(std::get<0>(layout[i]));
    EXPECT_EQ(f[i].Name(), std::get<0>(layout[i]));
    EXPECT_EQ(f[i].Type(), std::get<1>(layout[i]));
    EXPECT_EQ(f[i].DefinedSize(), std::get<2>(layout[i]));
  }
}

// n requisitions: ReqID i, created on day i of March 2024, waiting since day i of April.
RecordsetPtr approver_list(int n) {
  std::vector<std::vector<Variant>> rows;
  for (int i = 1; i <= n; ++i) {
    rows.push_back({Variant(int32_t{i}), Variant(Date::from_civil(2024, 3, 1 + i % 28, 23, 0, 0)),
                    Variant(Date::from_civil(2024, 4, 1 + i % 28))});
  }
  return make_recordset({{"ReqID", adInteger, 0, adFldUnspecified},
                         {"ReqCreateDate", adDate, 0, adFldUnspecified},
                         {"ApproveBeginDate", adDate, 0, adFldUnspecified}},
                        rows);
}

RecordsetPtr reviewer_list(const std::vector<Variant>& comments) {
  std::vector<std::vector<Variant>> rows;
  int32_t id = 0;
  for (const Variant& c : comments) {
    rows.push_back({Variant(++id), Variant(Date::from_civil(2024, 3, 5)), c});
  }
  return make_recordset({{"ReqID", adInteger, 0, adFldUnspecified},
                         {"ReqCreateDate", adDate, 0, adFldUnspecified},
                         {"Comments", adVarWChar, 200, adFldIsNullable}},
                        rows);
}

class UIWFListsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    env->provide(progid::Approvals, approvals);
    env->provide(progid::ApprovalReview, review);
    env->provide(progid::ApprovalItems, items);
    env->provide(progid::Workflow, workflow);
  }

  std::shared_ptr<testing::TestEnv> env = testing::TestEnv::make();
  testing::FakeServices fakes = testing::FakeServices::install(*env);
  std::shared_ptr<BasicSession> session = testing::make_session();
  std::shared_ptr<testing::FakeApprovals> approvals = std::make_shared<testing::FakeApprovals>();
  std::shared_ptr<testing::FakeApprovalReview> review =
      std::make_shared<testing::FakeApprovalReview>();
  std::shared_ptr<testing::FakeApprovalItems> items = std::make_shared<testing::FakeApprovalItems>();
  std::shared_ptr<testing::FakeWorkflow> workflow = std::make_shared<testing::FakeWorkflow>();
  UIWF ui{env->runtime};
};

TEST_F(UIWFListsTest, ApproverListPageLayoutAndDisplayDates) {
  approvals->list = approver_list(3);
  session->time_zone_id = 18;  // three hours ahead of the stored zone
  fakes.ini->set("DateFormat", "UI", "Dunmere", "1");
  Variant custom = Variant("site");
  auto page = ui.GetApproverListPage(session, "ReqID DESC", 0, custom);
  ASSERT_NE(page, nullptr);
  EXPECT_TRUE(ui.Success());
  EXPECT_EQ(approvals->calls, std::vector<std::string>{"GetApproverList(ReqID DESC)"});
  EXPECT_EQ(approvals->custom_seen.to_string(), "site");
  EXPECT_EQ(fakes.ini->reads, (std::vector<std::string>{"DateFormat", "Page Size"}));
  expect_layout(*page, {{"ReqID", adInteger, 0},
                        {"ReqCreateDate", adDate, 0},
                        {"ApproveBeginDate", adDate, 0},
                        {"UIDisplay_ReceivedDate", adVarWChar, 100},
                        {"UIDisplay_CreateDate", adVarWChar, 100},
                        {"UIDisplay_PageSize", adInteger, 0},
                        {"UIDisplay_CurrentPage", adInteger, 0},
                        {"UIDisplay_TotalRecords", adInteger, 0},
                        {"UIDisplay_StartRecord", adInteger, 0},
                        {"UIDisplay_EndRecord", adInteger, 0}});
  ASSERT_EQ(page->RecordCount(), 3);
  EXPECT_EQ(page->AbsolutePosition(), 1);
  // Created 2024-03-02 23:00 in zone 15 is already the 3rd for the user.
  EXPECT_EQ((*page)["UIDisplay_CreateDate"].Value().to_string(), "1033/1/2024-03-03");
  EXPECT_EQ((*page)["UIDisplay_ReceivedDate"].Value().to_string(), "1033/1/2024-04-02");
  EXPECT_EQ((*page)["UIDisplay_TotalRecords"].Value().to_int32(), 3);
}

TEST_F(UIWFListsTest, ListPagesOnlyTakeMinusOneAsTheLastPage) {
  struct Case {
    int32_t page;
    int32_t first_id, rows, current;
  };
  const Case cases[] = {
      {0, 1, 20, 1},   {1, 1, 20, 1},  {2, 21, 20, 2},
      {-1, 41, 5, 3},  {3, 41, 5, 3},  {9, 41, 5, 3},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.page);
    approvals->list = approver_list(45);
    review->list = reviewer_list(std::vector<Variant>(45, Variant("x")));
    for (auto page : {ui.GetApproverListPage(session, "", c.page),
                      ui.GetReviewerListPage(session, "", c.page)}) {
      ASSERT_NE(page, nullptr);
      EXPECT_EQ(page->RecordCount(), c.rows);
      EXPECT_EQ((*page)["ReqID"].Value().to_int32(), c.first_id);
      EXPECT_EQ((*page)["UIDisplay_CurrentPage"].Value().to_int32(), c.current);
      EXPECT_EQ((*page)["UIDisplay_PageSize"].Value().to_int32(), 20) << "default page size";
    }
  }
  // Another negative page is taken literally and cannot be positioned.
  approvals->list = approver_list(45);
  EXPECT_EQ(ui.GetApproverListPage(session, "", -2), nullptr);
  EXPECT_FALSE(ui.Success());
  EXPECT_EQ(ui.Error()->Number(), err::kArgumentOutOfRange);
}

TEST_F(UIWFListsTest, ReviewerListPageCountsTrimmedCommentsAndKeepsNull) {
  review->list = reviewer_list({Variant("  needs a quote  "), Variant::null(), Variant(""),
                                Variant("d\xC3\xA9j\xC3\xA0")});
  auto page = ui.GetReviewerListPage(session, "ReqID", 0);
  ASSERT_NE(page, nullptr);
  EXPECT_EQ(review->calls, std::vector<std::string>{"GetReviewerList(ReqID)"});
  expect_layout(*page, {{"ReqID", adInteger, 0},
                        {"ReqCreateDate", adDate, 0},
                        {"Comments", adVarWChar, 200},
                        {"UIDisplay_CreateDate", adVarWChar, 100},
                        {"UIDisplay_CommentsLength", adInteger, 0},
                        {"UIDisplay_PageSize", adInteger, 0},
                        {"UIDisplay_CurrentPage", adInteger, 0},
                        {"UIDisplay_TotalRecords", adInteger, 0},
                        {"UIDisplay_StartRecord", adInteger, 0},
                        {"UIDisplay_EndRecord", adInteger, 0}});
  std::vector<Variant> lengths;
  for (page->MoveFirst(); !page->IsEOF(); page->MoveNext()) {
    lengths.push_back((*page)["UIDisplay_CommentsLength"].Value());
  }
  ASSERT_EQ(lengths.size(), 4u);
  EXPECT_EQ(lengths[0], Variant(int32_t{13}));
  EXPECT_TRUE(lengths[1].is_null());
  EXPECT_EQ(lengths[2], Variant(int32_t{0}));
  EXPECT_EQ(lengths[3], Variant(int32_t{4})) << "characters, not bytes";
  page->MoveFirst();
  EXPECT_EQ((*page)["UIDisplay_CreateDate"].Value().to_string(), "1033/2/2024-03-05");
}

TEST_F(UIWFListsTest, EachListAcceptsOnlyItsOwnResultCode) {
  struct Case {
    const char* source;
    int32_t accepted;
    std::function<void(int32_t code)> fail_business;
    std::function<RecordsetPtr()> call;
  };
  auto fail = [](auto& fake, int32_t code) {
    fake->success = false;
    fake->result_code = code;
    fake->fail_with(code, "Tier", "nothing for you");
  };
  const Case cases[] = {
      {"UIWF::GetApproverListPage", 5, [&](int32_t code) { fail(approvals, code); },
       [&] { return ui.GetApproverListPage(session, "", 0); }},
      {"UIWF::GetReviewerListPage", 7, [&](int32_t code) { fail(review, code); },
       [&] { return ui.GetReviewerListPage(session, "", 0); }},
      {"UIWF::GetReviewListRs", 7, [&](int32_t code) { fail(review, code); },
       [&] { return ui.GetReviewListRs(session, 8); }},
      {"UIWF::GetApprovalItemsRs", 6,
       [&](int32_t code) {
         items->loaded = false;
         items->result_code = code;
         items->fail_with(code, "Tier", "nothing for you");
       },
       [&] { return ui.GetApprovalItemsRs(session, 8, 1); }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.source);
    for (int32_t code : {5, 6, 7, 1}) {
      approvals->list = approver_list(2);
      review->list = reviewer_list({Variant("a")});
      c.fail_business(code);
      RecordsetPtr rs = c.call();
      if (code == c.accepted) {
        EXPECT_NE(rs, nullptr) << code;
        EXPECT_TRUE(ui.Success()) << code;
      } else {
        EXPECT_EQ(rs, nullptr) << code;
        EXPECT_FALSE(ui.Success()) << code;
        EXPECT_THAT(ui.Error(), ErrorIs(code, std::string(c.source) + " Tier"));
      }
    }
  }
}

TEST_F(UIWFListsTest, NoListIsAnEmptyAnswerNotAFailure) {
  approvals->list = nullptr;
  EXPECT_EQ(ui.GetApproverListPage(session, "", 0), nullptr);
  EXPECT_TRUE(ui.Success());
  EXPECT_EQ(fakes.ini->reads, std::vector<std::string>{"DateFormat"}) << "no page size needed";

  approvals->list = approver_list(0);
  auto empty = ui.GetApproverListPage(session, "", 3);
  ASSERT_NE(empty, nullptr);
  EXPECT_EQ(empty->RecordCount(), 0);
}

TEST_F(UIWFListsTest, ApprovalItemsAreLineNumbersInCollectionOrder) {
  items->line_nums = {3, 1, 7};
  auto rs = ui.GetApprovalItemsRs(session, 8, 2);
  ASSERT_NE(rs, nullptr);
  EXPECT_TRUE(ui.Success());
  EXPECT_EQ(items->calls, std::vector<std::string>{"Load(8,2)"});
  expect_layout(*rs, {{"LineNum", adInteger, 0}});
  EXPECT_EQ(rs->CursorLocation(), adUseClient);
  EXPECT_EQ(rs->AbsolutePosition(), 3) << "left on the last row added";
  std::vector<int32_t> seen;
  for (rs->MoveFirst(); !rs->IsEOF(); rs->MoveNext()) seen.push_back(rs->value(0).to_int32());
  EXPECT_EQ(seen, (std::vector<int32_t>{3, 1, 7}));
}

TEST_F(UIWFListsTest, ReviewListAndSearchResultsComeBackUnchanged) {
  review->list = reviewer_list({Variant("a")});
  Variant custom = Variant(int32_t{5});
  EXPECT_EQ(ui.GetReviewListRs(session, 8, 0, custom), review->list);
  EXPECT_EQ(ui.GetReviewListRs(session, 8, 12), review->list);
  EXPECT_EQ(review->calls, (std::vector<std::string>{"GetReviewList(8,0)", "GetReviewList(8,12)"}));

  workflow->search_results = make_recordset({{"SysUserID", adInteger, 0, adFldUnspecified}});
  EXPECT_EQ(ui.GetApproverSearchResultsRs(session, 8, "Lee", "al"), workflow->search_results);
  EXPECT_TRUE(ui.Success());
  EXPECT_EQ(workflow->calls.back(), "GetApproverSearchResults(8,Lee,al)");

  workflow->success = false;
  workflow->fail_with(17, "Workflow", "search failed");
  EXPECT_EQ(ui.GetApproverSearchResultsRs(session, 8, "Lee", "al"), nullptr);
  EXPECT_FALSE(ui.Success());
  EXPECT_THAT(ui.Error(), ErrorIs(17, "UIWF::GetApproverSearchResultsRs Workflow"));
}

}  // namespace
}  // namespace kxui
