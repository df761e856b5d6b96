// The work lists and the approver's header, against gmock business objects.
#include <map>

#include "kxui/business/approvals.h"
#include "kxui/business/progids.h"
#include "kxui/business/requisition.h"
#include "kxui/testing/fake_services.h"
#include "kxui/workflow/ui_wf.h"

namespace kxui {
namespace {

using namespace ::testing;
using testing::ErrorIs;

class MockApprovals : public business::Approvals, public testing::FakeBusinessObject {
 public:
  MOCK_METHOD(RecordsetPtr, GetApproverList, (const SessionPtr&, const std::string&, Variant&));
  MOCK_METHOD(bool, Success, ());
  MOCK_METHOD(int32_t, ResultCode, ());
};

class MockApprovalReview : public business::ApprovalReview, public testing::FakeBusinessObject {
 public:
  MOCK_METHOD(RecordsetPtr, GetReviewerList, (const SessionPtr&, const std::string&, Variant&));
  MOCK_METHOD(RecordsetPtr, GetReviewList, (const SessionPtr&, int32_t, int32_t, Variant&));
  MOCK_METHOD(bool, Success, ());
  MOCK_METHOD(int32_t, ResultCode, ());
};

class MockApprovalItems : public business::ApprovalItems, public testing::FakeBusinessObject {
 public:
  MOCK_METHOD(bool, Load, (const SessionPtr&, int32_t, int32_t, Variant&));
  MOCK_METHOD(int32_t, ResultCode, ());
  MOCK_METHOD(std::vector<std::shared_ptr<business::ApprovalItem>>, Items, ());
};

class MockRequisition : public business::Requisition, public testing::FakeBusinessObject {
 public:
  MOCK_METHOD(bool, Load, (const SessionPtr&, int32_t, bool, Variant&));
  MOCK_METHOD(std::shared_ptr<business::RequisitionHeader>, Header, ());
  MOCK_METHOD(bool, Success, ());
};

class MockApproval : public business::Approval, public testing::FakeBusinessObject {
 public:
  MOCK_METHOD(bool, Load, (const SessionPtr&, int32_t, int32_t, Variant&));
  MOCK_METHOD(std::string, ApprovalTypeDesc, ());
  MOCK_METHOD(int32_t, ApprovalStatusID, ());
  MOCK_METHOD(int32_t, ApproverID, ());
  MOCK_METHOD(Variant, ReceivedDate, ());
};

struct Item : business::ApprovalItem {
  explicit Item(int32_t n) : line(n) {}
  int32_t LineNum() override { return line; }
  int32_t line;
};

class Header : public business::RequisitionHeader {
 public:
  std::string ReqName() override { return "Laptops"; }
  int32_t ReqStatusID() override { return 2; }
  std::string Justification() override { return "Three new hires"; }
  void SetJustification(const std::string&) override {}
  Variant CreateDate() override { return Variant(Date::from_civil(2024, 3, 5, 9, 30, 0)); }
  std::string BorgName() override { return "Finance"; }
  std::string RequisitionerName() override { return "Ann Lee"; }
};

// The columns as "Name type[size], ...", e.g. "ReqID int, Comments text200".
std::string layout_of(const Recordset& rs) {
  static const std::map<DataTypeEnum, std::string> kTypes = {
      {adInteger, " int"}, {adDate, " date"}, {adVarWChar, " text"}};
  std::string out;
  for (int32_t i = 0; i < rs.GetFields().Count(); ++i) {
    const Field& f = rs.GetFields()[i];
    out += (i ? ", " : "") + f.Name() + kTypes.at(f.Type()) +
           (f.DefinedSize() ? std::to_string(f.DefinedSize()) : "");
  }
  return out;
}

const std::string kPaging =
    ", UIDisplay_PageSize int, UIDisplay_CurrentPage int, UIDisplay_TotalRecords int, "
    "UIDisplay_StartRecord int, UIDisplay_EndRecord int";

// A work list with a row for each of `values`: ReqID n, ReqCreateDate 23:00 on March n+1
// (zone 15) and `third` holding the value.
RecordsetPtr work_list(const FieldInfo& third, const std::vector<Variant>& values) {
  std::vector<std::vector<Variant>> rows;
  for (const Variant& v : values) {
    const int32_t n = static_cast<int32_t>(rows.size()) + 1;
    rows.push_back({Variant(n), Variant(Date::from_civil(2024, 3, 1 + n % 28, 23, 0, 0)), v});
  }
  return testing::make_recordset({{"ReqID", adInteger}, {"ReqCreateDate", adDate}, third}, rows);
}
RecordsetPtr approver_list(int n) {
  return work_list({"ApproveBeginDate", adDate},
                   std::vector(n, Variant(Date::from_civil(2024, 4, 2))));
}
RecordsetPtr reviewer_list(const std::vector<Variant>& comments) {
  return work_list({"Comments", adVarWChar, 200, adFldIsNullable}, comments);
}

class UIWFListsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    env->provide(progid::Approvals, approvals);
    env->provide(progid::ApprovalReview, review);
    env->provide(progid::ApprovalItems, items);
    env->provide(progid::Requisition, req);
    ON_CALL(*approvals, Success()).WillByDefault(Return(true));
    ON_CALL(*review, Success()).WillByDefault(Return(true));
    ON_CALL(*req, Header()).WillByDefault(Return(std::make_shared<Header>()));
  }

  std::shared_ptr<testing::TestEnv> env = testing::TestEnv::make();
  testing::FakeServices fakes = testing::FakeServices::install(*env);
  SessionPtr session = testing::make_session();
  std::shared_ptr<MockApprovals> approvals = std::make_shared<NiceMock<MockApprovals>>();
  std::shared_ptr<MockApprovalReview> review = std::make_shared<NiceMock<MockApprovalReview>>();
  std::shared_ptr<MockApprovalItems> items = std::make_shared<NiceMock<MockApprovalItems>>();
  std::shared_ptr<MockRequisition> req = std::make_shared<NiceMock<MockRequisition>>();
  UIWF ui{env->runtime};
};

TEST_F(UIWFListsTest, ApproverListPageLayoutAndDisplayDates) {
  fakes.ini->set("DateFormat", "UI", "Dunmere", "1");
  EXPECT_CALL(*approvals, GetApproverList(session, "ReqID DESC", _))
      .WillOnce(Return(approver_list(3)));
  auto page = ui.GetApproverListPage(session, "ReqID DESC", 0);
  ASSERT_NE(page, nullptr);
  EXPECT_EQ(layout_of(*page),
            "ReqID int, ReqCreateDate date, ApproveBeginDate date, "
            "UIDisplay_ReceivedDate text100, UIDisplay_CreateDate text100" +
                kPaging);
  EXPECT_EQ((*page)["UIDisplay_CreateDate"].Value(), Variant("1033/1/2024-03-02"));
  EXPECT_EQ((*page)["UIDisplay_ReceivedDate"].Value(), Variant("1033/1/2024-04-02"));
}

TEST_F(UIWFListsTest, ReviewerListPageCountsTrimmedCommentsAndKeepsNull) {
  EXPECT_CALL(*review, GetReviewerList(session, "ReqID", _))
      .WillOnce(Return(reviewer_list(
          {Variant("  needs a quote  "), Variant::null(), Variant("d\xC3\xA9j\xC3\xA0"),
           Variant("\tok\r\n ")})));
  auto page = ui.GetReviewerListPage(session, "ReqID", 0);
  ASSERT_NE(page, nullptr);
  EXPECT_EQ(layout_of(*page),
            "ReqID int, ReqCreateDate date, Comments text200, "
            "UIDisplay_CreateDate text100, UIDisplay_CommentsLength int" +
                kPaging);
  std::vector<std::string> lengths;  // Null shown as "Null"
  for (page->MoveFirst(); !page->IsEOF(); page->MoveNext()) {
    const Variant& v = (*page)["UIDisplay_CommentsLength"].Value();
    lengths.push_back(v.is_null() ? "Null" : v.to_string());
  }
  EXPECT_EQ(lengths, (std::vector<std::string>{"13", "Null", "4", "5"}))
      << "spaces trimmed, tabs and line breaks counted, in characters";
}

TEST_F(UIWFListsTest, ListPagesOnlyTakeMinusOneAsTheLastPage) {
  ON_CALL(*approvals, GetApproverList).WillByDefault([] { return approver_list(45); });
  struct Case {
    int32_t page, first_id, current;
  } const cases[] = {{0, 1, 1}, {2, 21, 2}, {-1, 41, 3}, {9, 41, 3}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.page);
    auto page = ui.GetApproverListPage(session, "", c.page);
    ASSERT_NE(page, nullptr);
    EXPECT_EQ((*page)["ReqID"].Value(), Variant(c.first_id));
    EXPECT_EQ((*page)["UIDisplay_CurrentPage"].Value(), Variant(c.current));
  }
  EXPECT_EQ(ui.GetApproverListPage(session, "", -2), nullptr) << "taken literally";
  EXPECT_EQ(ui.Error()->Number(), err::kArgumentOutOfRange);
}

TEST_F(UIWFListsTest, EachListAcceptsOnlyItsOwnResultCode) {
  int32_t code = 0;
  ON_CALL(*approvals, GetApproverList).WillByDefault([] { return approver_list(2); });
  ON_CALL(*review, GetReviewerList).WillByDefault([] { return reviewer_list({Variant("a")}); });
  ON_CALL(*review, GetReviewList).WillByDefault([] { return reviewer_list({Variant("a")}); });
  ON_CALL(*approvals, Success()).WillByDefault(Return(false));
  ON_CALL(*review, Success()).WillByDefault(Return(false));
  ON_CALL(*items, Load).WillByDefault(Return(false));
  ON_CALL(*approvals, ResultCode()).WillByDefault(ReturnPointee(&code));
  ON_CALL(*review, ResultCode()).WillByDefault(ReturnPointee(&code));
  ON_CALL(*items, ResultCode()).WillByDefault(ReturnPointee(&code));
  auto check = [&](const RecordsetPtr& rs, const std::string& source, int32_t accepted) {
    SCOPED_TRACE(source + " with code " + std::to_string(code));
    EXPECT_EQ(rs != nullptr, code == accepted);
    EXPECT_EQ(ui.Success(), code == accepted);
    if (code == accepted) return;
    EXPECT_THAT(ui.Error(), ErrorIs(code, source + " Tier"));
  };
  for (int32_t c : {5, 6, 7, 1}) {
    code = c;
    approvals->fail_with(code, "Tier", "nothing for you");
    review->fail_with(code, "Tier", "nothing for you");
    items->fail_with(code, "Tier", "nothing for you");
    check(ui.GetApproverListPage(session, "", 0), "UIWF::GetApproverListPage", 5);
    check(ui.GetReviewerListPage(session, "", 0), "UIWF::GetReviewerListPage", 7);
    check(ui.GetReviewListRs(session, 8), "UIWF::GetReviewListRs", 7);
    check(ui.GetApprovalItemsRs(session, 8, 1), "UIWF::GetApprovalItemsRs", 6);
  }
}

// The session's locale and zone and the date formatter come first: without them the
// list is never asked for, even one the business tier would give as nothing.
TEST_F(UIWFListsTest, WorkListsNeedTheSessionAndFormatterBeforeTheBusinessCall) {
  EXPECT_CALL(*approvals, GetApproverList).Times(0);
  EXPECT_CALL(*review, GetReviewerList).Times(0);
  const std::tuple<const char*, SessionPtr, bool, int32_t> cases[] = {
      {"no session", nullptr, true, err::kObjectNotSet},
      {"no date formatter", session, false, 429},
  };
  for (const auto& [name, s, formatter, number] : cases) {
    SCOPED_TRACE(name);
    if (!formatter) env->runtime->Unregister(service_class::kDateFormatter);
    EXPECT_EQ(ui.GetApproverListPage(s, "", 0), nullptr);
    EXPECT_FALSE(ui.Success());
    EXPECT_EQ(ui.Error()->Number(), number);
    EXPECT_THAT(ui.Error()->Source(), StartsWith("UIWF::GetApproverListPage"));
    EXPECT_EQ(ui.GetReviewerListPage(s, "", 0), nullptr);
    EXPECT_FALSE(ui.Success());
    EXPECT_THAT(ui.Error()->Source(), StartsWith("UIWF::GetReviewerListPage"));
  }
}

TEST_F(UIWFListsTest, HeaderWithoutASequenceLeavesTheApprovalColumnsEmpty) {
  EXPECT_CALL(*req, Load(session, 8, false, _)).WillOnce(Return(true)).WillOnce(Return(false));
  auto rs = ui.GetHeaderRs(session, 8);
  ASSERT_NE(rs, nullptr);
  EXPECT_EQ(layout_of(*rs),
            "ReqBorgName text100, ReqName text100, RequisitionerName text100, CreateDate text100, "
            "Justification text256, ApprovalTypeDesc text100, ApprovalStatusID text100, "
            "ReceiveDate text100, ApproverID int");
  std::vector<Variant> row;
  for (int32_t i = 0; i < rs->GetFields().Count(); ++i) row.push_back(rs->value(i));
  EXPECT_EQ(row, (std::vector<Variant>{Variant("Finance"), Variant("Laptops"), Variant("Ann Lee"),
                                       Variant("1033/2/2024-03-05"), Variant("Three new hires"),
                                       Variant(), Variant(), Variant(), Variant()}));

  req->fail_with(31, "Requisition", "locked by Bo");
  EXPECT_EQ(ui.GetHeaderRs(session, 8), nullptr);
  EXPECT_THAT(ui.Error(), ErrorIs(31, "UIReq::GetHeaderRs Requisition"));

  // Loaded, but without a header object.
  EXPECT_CALL(*req, Load).WillOnce(Return(true));
  EXPECT_CALL(*req, Header()).WillOnce(Return(nullptr));
  EXPECT_EQ(ui.GetHeaderRs(session, 8), nullptr);
  EXPECT_THAT(ui.Error(), ErrorIs(91, "UIReq::GetHeaderRs "));
}

// With a step (0 counts), the approval of that requisition and step fills the last four
// columns; its refusal fails the header.
TEST_F(UIWFListsTest, HeaderWithAStepFillsTheApprovalColumns) {
  auto approval = std::make_shared<NiceMock<MockApproval>>();
  env->provide(progid::Approval, approval);
  ON_CALL(*approval, ApprovalTypeDesc()).WillByDefault(Return("Budget"));
  ON_CALL(*approval, ApprovalStatusID()).WillByDefault(Return(3));
  ON_CALL(*approval, ApproverID()).WillByDefault(Return(42));
  ON_CALL(*approval, ReceivedDate())
      .WillByDefault(Return(Variant(Date::from_civil(2024, 4, 2, 23, 0, 0))));
  EXPECT_CALL(*req, Load(session, 8, true, _)).WillRepeatedly(Return(true));
  for (int32_t step : {0, 2}) {
    SCOPED_TRACE(step);
    EXPECT_CALL(*approval, Load(session, 8, step, _)).WillOnce(Return(true));
    auto rs = ui.GetHeaderRs(session, 8, step, true);
    ASSERT_NE(rs, nullptr) << ui.Error()->Description();
    EXPECT_EQ((std::vector<Variant>{rs->value(5), rs->value(6), rs->value(7), rs->value(8)}),
              (std::vector<Variant>{Variant("Budget"), Variant("3"), Variant("1033/2/2024-04-02"),
                                    Variant(int32_t{42})}));
  }
  approval->fail_with(32, "Approval", "no such step");
  EXPECT_CALL(*approval, Load).WillOnce(Return(false));
  EXPECT_EQ(ui.GetHeaderRs(session, 8, 1, true), nullptr);
  EXPECT_FALSE(ui.Success());
  EXPECT_THAT(ui.Error(), ErrorIs(32, "UIReq::GetHeaderRs Approval"));
}

// One row per item, in collection order, left on the last row added.
TEST_F(UIWFListsTest, ApprovalItemsListTheStepsLinesInOrder) {
  EXPECT_CALL(*items, Load(session, 8, 2, _)).WillOnce(Return(true));
  ON_CALL(*items, Items())
      .WillByDefault(Return(std::vector<std::shared_ptr<business::ApprovalItem>>{
          std::make_shared<Item>(4), std::make_shared<Item>(7), std::make_shared<Item>(1)}));
  auto rs = ui.GetApprovalItemsRs(session, 8, 2);
  ASSERT_NE(rs, nullptr) << ui.Error()->Description();
  EXPECT_TRUE(ui.Success());
  EXPECT_EQ(layout_of(*rs), "LineNum int");
  EXPECT_EQ(rs->CursorLocation(), adUseClient);
  EXPECT_EQ(rs->value(0), Variant(int32_t{1})) << "on the last row";
  std::vector<Variant> lines;
  for (rs->MoveFirst(); !rs->IsEOF(); rs->MoveNext()) lines.push_back(rs->value(0));
  EXPECT_EQ(lines,
            (std::vector<Variant>{Variant(int32_t{4}), Variant(int32_t{7}), Variant(int32_t{1})}));
}

}  // namespace
}  // namespace kxui
