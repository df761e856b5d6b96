// Receiving through UIRcv over a fresh database file: the receiving list, the receipt
// form, a typing error refused before anything is stored, a good receipt, a correction
// and the rules that keep received quantities within the order.
#include <gmock/gmock.h>

#include "kxui/business/po_receipt.h"
#include "kxui/business/progids.h"
#include "kxui/frame/messages.h"
#include "kxui/po/ui_po.h"
#include "kxui/receiving/ui_rcv.h"
#include "reference/errors.h"
#include "reference/order_fixture.h"
#include "reference/purchase_order.h"

namespace kxui::reference {
namespace {

using ::testing::HasSubstr;
using testing::column_values;
using testing::Ordered;
using testing::type_receipt;

int32_t count_receipts(Database& db, int32_t po_id) {
  return db.read([&](soci::session& sql) {
    int n = 0;
    sql << "SELECT COUNT(*) FROM receipts WHERE po_id = :p", soci::use(po_id), soci::into(n);
    return n;
  });
}


TEST(Receipts, ReceiveWithACorrection) {
  Ordered o;
  auto alice = o.f->session(o.f->ids.alice);
  UIRcv ui(o.f->runtime);

  // The list's parameters each reach their own filter.
  struct ListCase {
    const char *sort, *statuses, *number, *user;
    bool listed;
  };
  const std::string number = "PO-" + std::to_string(o.po_id);
  const ListCase list_cases[] = {
      {"", "", "", "", true},           {"POID DESC", "", "", "", true},
      {"", "5", "", "", false},         {"", "", "PO-0", "", false},
      {"", "", number.c_str(), "", true}, {"", "", "", "bob", false},
  };
  for (const ListCase& c : list_cases) {
    SCOPED_TRACE(std::string(c.sort) + "|" + c.statuses + "|" + c.number + "|" + c.user);
    RecordsetPtr list = ui.GetReceiveListPage(alice, c.sort, c.statuses, c.number, c.user, "", 0);
    ASSERT_TRUE(list) << ui.Error()->Description();
    EXPECT_EQ(column_values(*list, "POID"),
              c.listed ? std::vector<std::string>{std::to_string(o.po_id)}
                       : std::vector<std::string>{});
  }
  EXPECT_FALSE(ui.GetReceiveListPage(alice, "nonsense", "", "", "", "", 0));

  // The form proposes today's date, not the order's.
  o.f->advance_minutes(24 * 60);

  RecordsetPtr header = ui.GetReceiptHdr(alice, o.po_id);
  ASSERT_TRUE(header) << ui.Error()->Description();
  header->MoveFirst();
  EXPECT_EQ((*header)["ReceiveDate"].Value(), Variant(o.f->db->now()));
  EXPECT_EQ((*header)["DocCreateDate"].Value(), Variant(o.f->db->now()));
  RecordsetPtr lines = ui.GetReceiptItems(alice, o.po_id, false);
  ASSERT_TRUE(lines) << ui.Error()->Description();
  EXPECT_EQ(column_values(*lines, "UIDisplay_ReceivedQty"), (std::vector<std::string>{"0", "0"}));

  // A carton count that is no number: refused with its message, nothing stored.
  type_receipt(*header, *lines, "two", {{"3", "3"}, {"1", "1"}});
  EXPECT_EQ(ui.SubmitReceipt(alice, header, lines), 0);
  EXPECT_EQ(ui.Error()->Number(), int32_t(0x80040000u + uint32_t(msg::kCartonCountNotNumeric.number)));
  EXPECT_EQ(count_receipts(*o.f->db, o.po_id), 0);

  type_receipt(*header, *lines, "2", {{"3", "3"}, {"1", "1"}});
  const int32_t first = ui.SubmitReceipt(alice, header, lines);
  ASSERT_GT(first, 0) << ui.Error()->Description();
  EXPECT_EQ(count_receipts(*o.f->db, o.po_id), 1) << "the refused attempt left no receipt";

  RecordsetPtr items = ui.GetPOItemsRs(alice, o.po_id);
  ASSERT_TRUE(items) << ui.Error()->Description();
  EXPECT_EQ(column_values(*items, "ReceivedToDateQty"), (std::vector<std::string>{"3", "1"}));
  EXPECT_EQ(column_values(*items, "LineNum"), (std::vector<std::string>{"1", "2"}));
  Variant num, borg, supplier, status;
  UIPO po(o.f->runtime);
  ASSERT_TRUE(po.GetPOHeaderInfo(alice, o.po_id, num, borg, supplier, status));
  EXPECT_EQ(status, Variant("Partly received"));

  // A correction of the paper: one box went back.
  RecordsetPtr header2 = ui.GetReceiptHdr(alice, o.po_id);
  RecordsetPtr lines2 = ui.GetReceiptItems(alice, o.po_id, false);
  ASSERT_TRUE(header2 && lines2);
  type_receipt(*header2, *lines2, "0", {{"0", "0"}, {"-1", "0"}}, {"", "Damaged box"});
  const int32_t correction = ui.SubmitReceipt(alice, header2, lines2);
  ASSERT_GT(correction, first) << ui.Error()->Description();
  items = ui.GetPOItemsRs(alice, o.po_id);
  EXPECT_EQ(column_values(*items, "ReceivedToDateQty"), (std::vector<std::string>{"3", "0"}));
  RecordsetPtr receipt = ui.GetReceiptItemListRs(alice, correction);
  ASSERT_TRUE(receipt) << ui.Error()->Description();
  EXPECT_EQ(column_values(*receipt, "LineNum"), std::vector<std::string>{"2"});
  EXPECT_EQ(column_values(*receipt, "Comments"), std::vector<std::string>{"Damaged box"});
  RecordsetPtr receipts = ui.GetReceiptHdrListRs(alice, o.po_id);
  ASSERT_TRUE(receipts) << ui.Error()->Description();
  EXPECT_EQ(column_values(*receipts, "CartonCnt"), (std::vector<std::string>{"2", "0"}));

  // Receiving all proposes what is outstanding; taking it closes the receipt of the order.
  RecordsetPtr header3 = ui.GetReceiptHdr(alice, o.po_id);
  RecordsetPtr all = ui.GetReceiptItems(alice, o.po_id, true);
  ASSERT_TRUE(header3 && all);
  EXPECT_EQ(column_values(*all, "ReceivedQty"), (std::vector<std::string>{"0", "2"}));
  type_receipt(*header3, *all, "1", {{"0", "0"}, {"2", "2"}});
  ASSERT_GT(ui.SubmitReceipt(alice, header3, all), correction) << ui.Error()->Description();
  ASSERT_TRUE(po.GetPOHeaderInfo(alice, o.po_id, num, borg, supplier, status));
  EXPECT_EQ(status, Variant("Received"));
  // Submitting the same form again would receive more than ordered: refused, not doubled.
  EXPECT_EQ(ui.SubmitReceipt(alice, header3, all), 0);
  EXPECT_THAT(ui.Error()->Description(), HasSubstr("not awaiting receipt"));
  EXPECT_EQ(count_receipts(*o.f->db, o.po_id), 3);
}

// Refusals leave the order as it was, whichever line fails.
TEST(Receipts, RefusedReceiptsStoreNothing) {
  struct Case {
    const char* name;
    std::vector<std::pair<std::string, std::string>> typed;
    std::vector<std::string> comments;
    const char *message, *source;
  };
  const char* const tier = "UIRcv::SubmitReceipt POReceipt::SubmitReceipt";
  const Case cases[] = {
      {"more than ordered", {{"3", "3"}, {"3", "3"}}, {}, "more would be received than ordered",
       tier},
      {"nothing received", {{"0", "0"}, {"0", "0"}}, {}, "Nothing was received", tier},
      // The form's own check comes first.
      {"correction below zero", {{"1", "1"}, {"-1", "0"}}, {"", "why"}, "may not exceed",
       "UIRcv::SubmitReceipt "},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Ordered o;
    auto alice = o.f->session(o.f->ids.alice);
    UIRcv ui(o.f->runtime);
    RecordsetPtr header = ui.GetReceiptHdr(alice, o.po_id);
    RecordsetPtr lines = ui.GetReceiptItems(alice, o.po_id, false);
    ASSERT_TRUE(header && lines);
    type_receipt(*header, *lines, "1", c.typed, c.comments);
    EXPECT_EQ(ui.SubmitReceipt(alice, header, lines), 0);
    EXPECT_THAT(ui.Error()->Description(), HasSubstr(c.message));
    EXPECT_EQ(ui.Error()->Source(), c.source);
    EXPECT_EQ(count_receipts(*o.f->db, o.po_id), 0);
    RecordsetPtr items = ui.GetPOItemsRs(alice, o.po_id);
    ASSERT_TRUE(items);
    EXPECT_EQ(column_values(*items, "ReceivedToDateQty"), (std::vector<std::string>{"0", "0"}));
  }
}

// A database constraint broken on the second line (the form's checks bypassed) rolls
// back the receipt and the first line's received quantity alike.
TEST(Receipts, AConstraintFailureMidReceiptLeavesNothingHalfWritten) {
  Ordered o;
  auto alice = o.f->session(o.f->ids.alice);
  UIRcv ui(o.f->runtime);
  RecordsetPtr header = ui.GetReceiptHdr(alice, o.po_id);
  RecordsetPtr lines = ui.GetReceiptItems(alice, o.po_id, false);
  ASSERT_TRUE(header && lines);
  header->MoveFirst();
  header->set_value(header->GetFields().index_of("CartonCnt"), Variant(int32_t{1}));
  const double packing[] = {1, -1};
  int i = 0;
  for (lines->MoveFirst(); !lines->IsEOF(); lines->MoveNext(), ++i) {
    (*lines)["ReceivedQty"].SetValue(Variant(1.0));
    (*lines)["PackingSlipQty"].SetValue(Variant(packing[i]));
  }
  auto rcv = create_as<business::POReceipt>(*o.f->runtime, progid::POReceipt);
  Array params = Array::of({Variant()});
  EXPECT_EQ(rcv->SubmitReceipt(alice, header, lines, params), 0);
  EXPECT_FALSE(rcv->Success());
  EXPECT_EQ(rcv->GetError()->Number(), error_number(Refusal::kConstraint))
      << rcv->GetError()->Description();
  EXPECT_EQ(count_receipts(*o.f->db, o.po_id), 0);
  RecordsetPtr items = ui.GetPOItemsRs(alice, o.po_id);
  ASSERT_TRUE(items);
  EXPECT_EQ(column_values(*items, "ReceivedToDateQty"), (std::vector<std::string>{"0", "0"}));
}

// The business tier's own checks of a correction, for callers that skip the form's.
TEST(Receipts, TheTierRefusesCorrectionsOnItsOwn) {
  struct Case {
    double received;
    const char* comment;
    const char* why;
  };
  const Case cases[] = {{-1, "returned", "takes back more than was received"},
                        {-1, " ", "needs a comment"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.why);
    Ordered o;
    auto alice = o.f->session(o.f->ids.alice);
    UIRcv ui(o.f->runtime);
    RecordsetPtr header = ui.GetReceiptHdr(alice, o.po_id);
    RecordsetPtr lines = ui.GetReceiptItems(alice, o.po_id, false);
    ASSERT_TRUE(header && lines);
    lines->MoveFirst();
    (*lines)["ReceivedQty"].SetValue(Variant(c.received));
    (*lines)["Comments"].SetValue(Variant(std::string(c.comment)));
    auto rcv = create_as<business::POReceipt>(*o.f->runtime, progid::POReceipt);
    Array params = Array::of({Variant()});
    EXPECT_EQ(rcv->SubmitReceipt(alice, header, lines, params), 0);
    EXPECT_THAT(rcv->GetError()->Description(), HasSubstr(c.why));
    EXPECT_EQ(count_receipts(*o.f->db, o.po_id), 0);
  }
}

}  // namespace
}  // namespace kxui::reference
