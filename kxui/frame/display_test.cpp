#include "kxui/frame/display.h"

#include <functional>
#include <stdexcept>

#include <gtest/gtest.h>

#include "kxui/frame/settings.h"
#include "kxui/testing/fake_services.h"

namespace kxui {
namespace {

using testing::FakeServices;
using testing::make_recordset;
using testing::TestEnv;

class DisplayTest : public ::testing::Test {
 protected:
  std::shared_ptr<TestEnv> env = TestEnv::make();
  FakeServices fakes = FakeServices::install(*env);
  std::shared_ptr<BasicSession> session = testing::make_session();

  // Rows with ID 1..n, dates on consecutive days at 22:30.
  RecordsetPtr requisitions(int n) {
    std::vector<std::vector<Variant>> rows;
    for (int i = 1; i <= n; ++i) {
      Date d = Date::from_civil(2024, 3, 1 + (i % 28), 22, 30, 0);
      rows.push_back({Variant(int32_t{i}), Variant(d), Variant(d), Variant("Req " + std::to_string(i))});
    }
    return make_recordset({{"ReqID", adInteger, 0, adFldUnspecified},
                           {"CreateDate", adDate, 0, adFldIsNullable},
                           {"SubmitDate", adDate, 0, adFldIsNullable},
                           {"ReqName", adVarWChar, 50, adFldIsNullable}},
                          rows);
  }
  std::vector<DisplayColumn> date_columns() {
    return {date_display("CreateDate"), date_display("SubmitDate")};
  }
};

TEST_F(DisplayTest, PagedRebuildHasTheLayoutAndOnlyThePageRows) {
  auto source = requisitions(45);
  DisplayContext ctx(*env->runtime, *session, 2);
  auto columns = date_columns();
  auto page = rebuild_for_display(*source, columns, ctx, compute_paging_window(45, 20, 3));

  const std::vector<std::tuple<std::string, DataTypeEnum, int32_t>> layout = {
      {"ReqID", adInteger, 0},
      {"CreateDate", adDate, 0},
      {"SubmitDate", adDate, 0},
      {"ReqName", adVarWChar, 50},
      {"UIDisplay_CreateDate", adVarWChar, 100},
      {"UIDisplay_SubmitDate", adVarWChar, 100},
      {"UIDisplay_PageSize", adInteger, 0},
      {"UIDisplay_CurrentPage", adInteger, 0},
      {"UIDisplay_TotalRecords", adInteger, 0},
      {"UIDisplay_StartRecord", adInteger, 0},
      {"UIDisplay_EndRecord", adInteger, 0},
  };
  const Fields& f = page->GetFields();
  ASSERT_EQ(f.Count(), static_cast<int32_t>(layout.size()));
  for (int32_t i = 0; i < f.Count(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(f.Item(i).Name(), std::get<0>(layout[i]));
    EXPECT_EQ(f.Item(i).Type(), std::get<1>(layout[i]));
    EXPECT_EQ(f.Item(i).DefinedSize(), std::get<2>(layout[i]));
    if (i >= 4) {
      EXPECT_EQ(f.Item(i).Attributes(), adFldUnspecified);
    }
  }

  ASSERT_EQ(page->RecordCount(), 5);
  EXPECT_EQ(page->AbsolutePosition(), 1);
  EXPECT_EQ((*page)["ReqID"].Value().to_int32(), 41);
  EXPECT_EQ((*page)["UIDisplay_CreateDate"].Value().to_string(), "1033/2/2024-03-14");
  const int32_t paging[] = {20, 3, 45, 41, 45};
  for (int i = 0; i < 5; ++i) EXPECT_EQ(page->value(6 + i).to_int32(), paging[i]);
  page->MoveLast();
  EXPECT_EQ((*page)["ReqID"].Value().to_int32(), 45);
  EXPECT_EQ(env->count(service_class::kDateFormatter), 1) << "one formatter per call";
}

TEST_F(DisplayTest, DatesAreConvertedFromZone15BeforeTheDateIsCut) {
  auto source = requisitions(1);  // 2024-03-02 22:30 in zone 15
  auto columns = date_columns();
  for (auto [zone, expected, conversions] :
       {std::tuple{15, "1033/1/2024-03-02", 0}, std::tuple{17, "1033/1/2024-03-03", 1}}) {
    SCOPED_TRACE(zone);
    session->time_zone_id = zone;
    fakes.dates->conversions = 0;
    DisplayContext ctx(*env->runtime, *session, 1);
    auto all = rebuild_for_display(*source, {columns.data(), 1}, ctx);
    EXPECT_EQ((*all)["UIDisplay_CreateDate"].Value().to_string(), expected);
    EXPECT_EQ(fakes.dates->conversions, conversions);
  }
}

TEST_F(DisplayTest, NullDateFailsTheWholeRebuild) {
  auto source = requisitions(3);
  source->SetAbsolutePosition(2);
  (*source)["SubmitDate"].SetValue(Variant::null());
  DisplayContext ctx(*env->runtime, *session, 2);
  auto columns = date_columns();
  EXPECT_FAILURE(94, rebuild_for_display(*source, columns, ctx, compute_paging_window(3, 20, 0)));
}

TEST_F(DisplayTest, EmptyListGivesAnEmptyPageWithTheFullLayout) {
  auto source = requisitions(0);
  DisplayContext ctx(*env->runtime, *session, 2);
  auto columns = date_columns();
  for (int32_t page : {0, 1, 4}) {
    SCOPED_TRACE(page);
    auto result = rebuild_for_display(*source, columns, ctx, compute_paging_window(0, 20, page));
    EXPECT_EQ(result->RecordCount(), 0);
    EXPECT_EQ(result->GetFields().Count(), 11);
    EXPECT_TRUE(result->IsBOF() && result->IsEOF());
  }
}

TEST_F(DisplayTest, UnpagedRebuildCopiesEveryRowFromTheFirst) {
  auto source = requisitions(7);
  source->MoveLast();
  DisplayContext ctx(*env->runtime, *session, 2);
  auto columns = date_columns();
  auto all = rebuild_for_display(*source, columns, ctx);
  EXPECT_EQ(all->RecordCount(), 7);
  EXPECT_EQ(all->GetFields().Count(), 6);
  EXPECT_EQ((*all)["ReqID"].Value().to_int32(), 1);
}

TEST_F(DisplayTest, SettingsFallBackOnlyWhenMissing) {
  Variant custom = Variant::missing();
  struct Case {
    std::optional<std::string> value;
    int32_t style;
  };
  for (const Case& c : {Case{"1", 1}, Case{"2", 2}, Case{"3", 2}, Case{std::nullopt, 2}}) {
    SCOPED_TRACE(c.value.value_or("missing"));
    fakes.ini->values.clear();
    if (c.value) fakes.ini->set("DateFormat", "UI", "Dunmere", *c.value);
    EXPECT_EQ(read_date_style(*fakes.ini, session, custom), c.style);
  }
  fakes.ini->set("DateFormat", "UI", "Dunmere", "abc");
  EXPECT_FAILURE(13, read_date_style(*fakes.ini, session, custom));

  EXPECT_EQ(read_page_size(*fakes.ini, session, custom), 20);
  EXPECT_EQ(read_page_size(*fakes.ini, session, custom, 10), 10);
  fakes.ini->set("Page Size", "Paging", "Dunmere", " 25 ");
  EXPECT_EQ(read_page_size(*fakes.ini, session, custom), 25);
}

// Blank means spaces: tabs and line breaks inside a line are the user's and stay.
TEST_F(DisplayTest, FormatAddressStripsSpacesOnlyAndSkipsBlankLines) {
  AddressParts parts{"  1 Main St ", "", "   ", "\tBack door\t", "\r\n", "Springfield",
                     "IL", "62701", "US"};
  EXPECT_EQ(FormatAddress(*env->runtime, 1033, parts),
            "1 Main St\r\n\tBack door\t\r\n\r\n\r\nSpringfield\r\nIL\r\n62701\r\nUS\r\n");
  EXPECT_EQ(FormatAddress(*env->runtime, 1033, AddressParts{" ", "", "", "", "", "", "", "", ""}),
            "");
}

struct ThrowingFormatter : AddressFormatter {
  std::function<void()> raise;
  std::array<std::string, kLines> FormatAddressLines(int32_t, const AddressParts&) override {
    raise();
    return {};
  }
};

TEST_F(DisplayTest, FormatAddressFailsUnderItsOwnSourceWhateverFailed) {
  auto formatter = std::make_shared<ThrowingFormatter>();
  const std::tuple<const char*, std::function<void()>, int32_t, std::string> cases[] = {
      {"a failure", [] { throw Failure(5, "Locale", "bad locale"); }, 5, "bad locale"},
      {"no memory", [] { throw std::bad_alloc(); }, 7, "Out of memory"},
      {"a library error", [] { throw std::runtime_error("icu broke"); }, 440, "icu broke"},
      {"anything else", [] { throw 42; }, 51, "Internal error"},
  };
  env->provide(service_class::kAddressFormatter, formatter);
  for (const auto& [name, raise, number, description] : cases) {
    SCOPED_TRACE(name);
    formatter->raise = raise;
    EXPECT_FAILURE(number, FormatAddress(*env->runtime, 1033, AddressParts{}));
    try {
      FormatAddress(*env->runtime, 1033, AddressParts{});
    } catch (const Failure& f) {
      EXPECT_EQ(f.source(), "UIReq::FormatAddress");
      EXPECT_EQ(f.description(), description);
    }
  }
  env->runtime->Unregister(service_class::kAddressFormatter);
  EXPECT_FAILURE(429, FormatAddress(*env->runtime, 1033, AddressParts{}));
}

}  // namespace
}  // namespace kxui
