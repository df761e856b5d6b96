// Receipt submission: typed numbers read in the user's locale, the six checks in their
// order, the numbers written into the caller's form, and the hand-over to the business tier.
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "kxui/business/progids.h"
#include "kxui/receiving/ui_rcv.h"
#include "kxui/testing/fake_services.h"
#include "kxui/testing/mock_receiving.h"

namespace kxui {
namespace {

using namespace ::testing;
using kxui::testing::ErrorIs;
using kxui::testing::make_recordset;
using kxui::testing::ParamsAre;
using Values = std::vector<Variant>;
using Texts = std::vector<std::string>;
using Rows = std::vector<Values>;

const std::map<int32_t, std::string> kEnglish = {
    {11608, "Invalid packing slip quantity entered. Packing slip quantity must be numeric."},
    {11609, "Invalid packing slip quantity entered. Packing slip quantity may not be negative."},
    {11610, "Invalid received quantity entered. The receiving correction may not exceed the "
            "received to date quantity."},
    {11611, "Comments are required if the received quantity value is negative."},
    {11612, "Invalid carton count entered. Carton count must be numeric."},
    {11613, "Invalid received quantity entered. Received quantity must be numeric."},
};

// One typed line: received to date, the two typed texts and the comment.
struct Line {
  double received_to_date;
  Variant received, packing, comments;
};

// Data columns start at 99 so that every number written shows.
RecordsetPtr form_lines(const std::vector<Line>& lines) {
  Rows rows;
  for (const Line& l : lines) {
    rows.push_back({l.received_to_date, 99.0, 99.0, l.comments, l.received, l.packing});
  }
  return make_recordset({{"ReceivedToDateQty", adDouble}, {"ReceivedQty", adDouble},
                         {"PackingSlipQty", adDouble}, {"Comments", adVarWChar, 200},
                         {"UIDisplay_ReceivedQty", adVarWChar, 50},
                         {"UIDisplay_PackingSlipQty", adVarWChar, 50}},
                        rows);
}

RecordsetPtr form_header(const Variant& cartons) {
  return make_recordset({{"POID", adInteger}, {"CartonCnt", adInteger},
                         {"UIDisplay_CartonCnt", adVarWChar, 50}},
                        {{7, 99, cartons}});
}

// The data columns of every line, the cursor put back where it was.
Rows written(Recordset& lines) {
  const int32_t at = lines.AbsolutePosition();
  Rows out;
  for (lines.MoveFirst(); !lines.IsEOF(); lines.MoveNext()) {
    out.push_back({lines["ReceivedQty"].Value(), lines["PackingSlipQty"].Value()});
  }
  if (at > 0) lines.SetAbsolutePosition(at);
  return out;
}

class SubmitReceiptTest : public Test {
 protected:
  std::shared_ptr<kxui::testing::TestEnv> env = kxui::testing::TestEnv::make();
  kxui::testing::FakeServices fakes = kxui::testing::FakeServices::install(*env);
  std::shared_ptr<NiceMock<kxui::testing::MockPOReceipt>> rcv =
      std::make_shared<NiceMock<kxui::testing::MockPOReceipt>>();
  std::shared_ptr<BasicSession> session = kxui::testing::make_session();
  UIRcv ui{env->runtime};
  Variant custom = Variant("page data");
  Variant cartons_seen;  // "CartonCnt" as the business object saw it
  int created_before = 0;

  void SetUp() override {
    env->provide(progid::POReceipt, rcv);
    session->locale_id = 1031;  // decimal comma
    ON_CALL(*rcv, Success).WillByDefault(Return(true));
    ON_CALL(*rcv, SubmitReceipt)
        .WillByDefault([this](const SessionPtr&, const RecordsetPtr& header, const RecordsetPtr&,
                              Array&) { return cartons_seen = (*header)["CartonCnt"].Value(), 4711; });
  }

  int32_t submit(const RecordsetPtr& header, const RecordsetPtr& lines) {
    created_before = env->count(progid::POReceipt);
    env->last_error()->message_numbers_asked.clear();
    return ui.SubmitReceipt(session, header, lines, custom);
  }

  // The call failed with `failure` (a message number, or a runtime error such as 94 that
  // asks for no message), was logged, and never reached the business tier.
  void expect_rejected(int32_t result, int32_t failure) {
    const bool message = kEnglish.count(failure) > 0;
    EXPECT_EQ(result, 0);
    EXPECT_FALSE(ui.Success());
    const int32_t number = message ? int32_t(0x80040000u + uint32_t(failure)) : failure;
    EXPECT_THAT(ui.Error(), ErrorIs(number, "UIRcv::SubmitReceipt "));
    const auto& errors = *env->last_error();
    EXPECT_EQ(errors.message_numbers_asked, message ? std::vector<int32_t>{failure}
                                                    : std::vector<int32_t>{});
    if (message) {
      EXPECT_EQ(errors.params_count_asked, 0);
    }
    if (message && errors.translation.empty()) {
      EXPECT_EQ(ui.Error()->Description(), kEnglish.at(failure));
    }
    EXPECT_EQ(env->count(progid::POReceipt), created_before) << "business object obtained";
    EXPECT_EQ(env->log->written.back().message,
              "UIRcv::SubmitReceipt  :: " + ui.Error()->Description());
  }
};

TEST_F(SubmitReceiptTest, CartonCountIsReadInTheUsersLocaleAndRoundedHalfToEven) {
  // Typed text -> stored count, or the failure.
  const std::tuple<Variant, int32_t, int32_t> cases[] = {
      {"2,5", 2, 0},   {"3,5", 4, 0},   {" 7 ", 7, 0},  {"-0,5", 0, 0},
      {"abc", 99, 11612}, {"", 99, 11612},
      {"1.5", 99, 11612},        // the German locale's decimal is the comma
      {"3000000000", 99, 6},     // a number, but no count: Overflow
      {Variant::null(), 99, 94}, // no text at all: a conversion error, not a message
  };
  for (const auto& [typed, stored, failure] : cases) {
    SCOPED_TRACE(typed.is_null() ? "Null" : typed.to_string());
    auto header = form_header(typed);
    const int32_t id = submit(header, form_lines({}));
    EXPECT_EQ((*header)["CartonCnt"].Value(), Variant(stored));
    if (failure != 0) {
      expect_rejected(id, failure);
      continue;
    }
    EXPECT_EQ(id, 4711);
    EXPECT_TRUE(ui.Success());
    EXPECT_EQ(cartons_seen, Variant(stored));
  }
  // The user's language wins over the English default.
  env->last_error()->translation = "Kartonanzahl ungültig";
  expect_rejected(submit(form_header("abc"), form_lines({})), 11612);
  EXPECT_EQ(ui.Error()->Description(), "Kartonanzahl ungültig");
}

// Each line alone, after a valid carton count: the checks in order, and the numbers
// written when the line passes.
TEST_F(SubmitReceiptTest, EachLineIsCheckedInOrderAndItsNumbersWritten) {
  const Variant null = Variant::null();
  // Line, then the failure (0: passes).
  const std::pair<Line, int32_t> cases[] = {
      {{0, "5", "5", ""}, 0},
      {{0, "500", "0", ""}, 0},            // more than ordered is the business tier's call
      {{5, "-5", "0", "Damaged"}, 0},      // taking back exactly what was received
      {{5, "-2,5", "1,5", "Damaged"}, 0},
      {{0, "-0", "0", ""}, 0},             // minus zero is no correction
      {{-1, "0,5", "0", ""}, 0},           // only a negative quantity is a correction
      {{5, "-2", "0", "   "}, 0},          // blanks are a comment
      {{5, "-2", "0", null}, 0},           // so is Null
      {{5, "zwei", "1", ""}, 11613},
      {{5, "x", "-1", ""}, 11613},         // received quantity before packing slip
      {{5, "1", "y", ""}, 11608},
      {{5, "1", "-1", ""}, 11609},
      {{5, "-3", "-0,5", "Damaged"}, 11609},  // even when correcting
      {{4, "-5", "0", "Damaged"}, 11610},
      {{4, "-5", "0", ""}, 11610},         // the amount is checked before the comment
      {{5, "-5", "0", ""}, 11611},
      {{5, null, "1", ""}, 94},            // no text at all: a conversion error
      {{5, "1", null, ""}, 94},
  };
  for (const auto& [line, failure] : cases) {
    SCOPED_TRACE(line.received.try_to_string().value_or("Null") + " / " +
                 line.packing.try_to_string().value_or("Null"));
    auto lines = form_lines({line});
    const int32_t id = submit(form_header("3"), lines);
    if (failure != 0) {
      expect_rejected(id, failure);
      continue;
    }
    EXPECT_EQ(id, 4711) << ui.Error()->Description();
    double received = 0, packing = 0;
    fakes.money->ParseNumber(1031, line.received.to_string(), received);
    fakes.money->ParseNumber(1031, line.packing.to_string(), packing);
    EXPECT_EQ(written(*lines), (Rows{{received, packing}}));
  }
}

TEST_F(SubmitReceiptTest, TheFirstFailureStopsBeforeLaterValuesAreRead) {
  const std::tuple<const char*, Variant, int32_t, Texts, Rows, int32_t> cases[] = {
      // The second line's packing slip fails: the first keeps its numbers, the second its
      // received quantity, the third is never read; the cursor stays on the second.
      {"line 2", "3", 11608, {"3", "4", "4", "2", "z"}, {{4.0, 4.0}, {2.0, 99.0}, {99.0, 99.0}},
       2},
      // The carton count fails before any line is looked at.
      {"carton count", "drei", 11612, {"drei"}, {{99.0, 99.0}, {99.0, 99.0}, {99.0, 99.0}}, 1},
  };
  for (const auto& [name, cartons, message, parsed, numbers, position] : cases) {
    SCOPED_TRACE(name);
    fakes.money->parsed.clear();
    auto lines = form_lines({{0, "4", "4", ""}, {0, "2", "z", ""}, {0, "1", "1", ""}});
    expect_rejected(submit(form_header(cartons), lines), message);
    EXPECT_EQ(fakes.money->parsed, parsed);
    EXPECT_EQ(lines->AbsolutePosition(), position);
    EXPECT_EQ(written(*lines), numbers);
  }
}

TEST_F(SubmitReceiptTest, ValidFormsGoToTheBusinessObjectWithTheNumbersWritten) {
  // An empty line set is not looked at, not even for its columns.
  auto header = form_header("2");
  auto empty = make_recordset({{"LineID", adInteger}});
  EXPECT_CALL(*rcv, SubmitReceipt(Eq(session), Eq(header), Eq(empty), ParamsAre(Values{custom})));
  EXPECT_EQ(submit(header, empty), 4711);
  EXPECT_EQ(fakes.money->parsed, Texts{"2"});
  EXPECT_EQ(cartons_seen, Variant(2));

  // Every line is read from the first, wherever the page left the cursor.
  auto lines = form_lines({{0, "1", "1", ""}, {3, "-3", "0", "Broken"}});
  lines->MoveLast();
  EXPECT_CALL(*rcv, SubmitReceipt(Eq(session), Eq(header), Eq(lines), _)).WillOnce(Return(12));
  EXPECT_EQ(submit(header, lines), 12);
  EXPECT_EQ(written(*lines), (Rows{{1.0, 1.0}, {-3.0, 0.0}}));
  EXPECT_EQ(rcv.use_count(), 2) << "released after the call";
}

}  // namespace
}  // namespace kxui
