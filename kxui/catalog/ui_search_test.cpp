// UISearch against a gmock PartSearch and the fake platform services.
#include "kxui/catalog/ui_search.h"

#include <functional>

#include "kxui/business/progids.h"
#include "kxui/testing/fake_services.h"
#include "kxui/testing/mock_catalog.h"

namespace kxui {
namespace {

using namespace ::testing;
using kxui::testing::ErrorIs;
using kxui::testing::make_recordset;

class UISearchTest : public Test {
 protected:
  std::shared_ptr<kxui::testing::TestEnv> env = kxui::testing::TestEnv::make();
  kxui::testing::FakeServices fakes = kxui::testing::FakeServices::install(*env);
  std::shared_ptr<NiceMock<kxui::testing::MockPartSearch>> search =
      std::make_shared<NiceMock<kxui::testing::MockPartSearch>>();
  std::shared_ptr<BasicSession> session = kxui::testing::make_session();
  UISearch ui{env->runtime};
  RecordsetPtr rows = make_recordset({{"PartID", adInteger}}, {{Variant(int32_t{42})}});
  RecordsetPtr empty = make_recordset({{"PartID", adInteger}});

  void SetUp() override {
    env->provide(progid::PartSearch, search);
    search->fail_with(70, "PartSearch", "catalog offline");
    session->lang_code = "fr";
    session->currency_code = "CHF";
  }
};

TEST_F(UISearchTest, FormatCurrencyUsesTheSessionsLocaleAndCurrency) {
  const std::tuple<int32_t, const char*, Currency, const char*> cases[] = {
      {1033, "USD", Currency::from_scaled(125000), "USD 12.50@1033"},
      {1031, "EUR", Currency::from_scaled(-12345678), "EUR -1234.57@1031"},
      {1036, "CHF", Currency::from_scaled(0), "CHF 0.00@1036"},
  };
  for (const auto& [locale, currency, amount, text] : cases) {
    SCOPED_TRACE(text);
    session->locale_id = locale;
    session->currency_code = currency;
    EXPECT_EQ(ui.FormatCurrency(session, amount), text);
  }
  EXPECT_EQ(env->count(service_class::kCurrencyFormatter), 3) << "one formatter per call";
  EXPECT_EQ(env->created.back(), std::string("direct:") + service_class::kCurrencyFormatter);
  EXPECT_EQ(fakes.money.use_count(), 2) << "released after the call";
}

TEST_F(UISearchTest, GetPartDetailAsksInTheSessionsCurrencyAndFallsBackToItsLanguage) {
  Variant custom = Variant("custom");
  // Given language, then the language asked for.
  for (auto [given, asked] : {std::pair{"", "fr"}, {"de", "de"}}) {
    SCOPED_TRACE(given);
    EXPECT_CALL(*search, LoadPartDetail(Eq(session), 42, "", "", "CHF", asked, 0, 3, 77,
                                        Ref(custom)))
        .WillOnce(Return(rows));
    Variant detail;
    EXPECT_TRUE(ui.GetPartDetail(session, 42, detail, given, 77, custom));
    EXPECT_EQ(detail, Variant(rows));
  }
  // Omitted organisation: 0.
  EXPECT_CALL(*search, LoadPartDetail(_, 5, _, _, _, "fr", _, _, 0, _)).WillOnce(Return(rows));
  Variant detail;
  EXPECT_TRUE(ui.GetPartDetail(session, 5, detail));
  EXPECT_EQ(search.use_count(), 2) << "released after the call";
}

TEST_F(UISearchTest, GetPartViewsPassesTheLanguageAsItStands) {
  Variant custom = Variant("custom");
  for (const char* lang : {"", "de"}) {
    SCOPED_TRACE(lang);
    EXPECT_CALL(*search, LoadPartViews(Eq(session), 42, lang, 3, 3, Ref(custom)))
        .WillOnce(Return(rows));
    Variant views;
    EXPECT_TRUE(ui.GetPartViews(session, 42, views, lang, custom));
    EXPECT_EQ(views, Variant(rows));
  }
}

// An empty answer is stored and answered False, but it is not a failure; a failure
// leaves the in/out as passed; Nothing from the catalog fails on the emptiness test,
// after it was stored.
TEST_F(UISearchTest, PartReadsTellEmptyAnswersFromFailures) {
  using Read = std::function<bool(Variant&)>;
  const std::pair<const char*, Read> reads[] = {
      {"UISearch::GetPartDetail", [&](Variant& out) { return ui.GetPartDetail(session, 1, out); }},
      {"UISearch::GetPartViews", [&](Variant& out) { return ui.GetPartViews(session, 1, out); }},
  };
  for (const auto& [source, read] : reads) {
    SCOPED_TRACE(source);
    auto answer = [&](RecordsetPtr rs) {
      ON_CALL(*search, LoadPartDetail).WillByDefault(Return(rs));
      ON_CALL(*search, LoadPartViews).WillByDefault(Return(rs));
    };
    ui.Error()->SetNumber(5);
    ui.Error()->SetSource("earlier");
    Variant out = Variant("as passed");
    answer(empty);
    EXPECT_FALSE(read(out));
    EXPECT_EQ(out, Variant(empty));
    EXPECT_THAT(ui.Error(), ErrorIs(5, "earlier")) << "an empty answer records nothing";

    out = Variant("as passed");
    ON_CALL(*search, LoadPartDetail).WillByDefault(Throw(Failure(70, "PartSearch", "offline")));
    ON_CALL(*search, LoadPartViews).WillByDefault(Throw(Failure(70, "PartSearch", "offline")));
    EXPECT_FALSE(read(out));
    EXPECT_THAT(ui.Error(), ErrorIs(70, std::string(source) + " PartSearch"));
    EXPECT_EQ(out, Variant("as passed"));

    answer(nullptr);
    EXPECT_FALSE(read(out));
    EXPECT_THAT(ui.Error(), ErrorIs(91, std::string(source) + " "));
    EXPECT_EQ(out, Variant(RecordsetPtr())) << "stored before the test that failed";
  }
}

TEST_F(UISearchTest, GetSearchPageSizeHasItsOwnDefaultOfTen) {
  Variant custom;
  // Setting text (nullptr: none), result, error recorded.
  const std::tuple<const char*, int32_t, int32_t> cases[] = {
      {nullptr, 10, 0}, {"25", 25, 0}, {" 7 ", 7, 0}, {"ten", 0, 13}, {"", 0, 13}};
  for (const auto& [text, size, error] : cases) {
    SCOPED_TRACE(text ? text : "missing");
    fakes.ini->values.clear();
    if (text) fakes.ini->set("Page Size", "Paging", "Dunmere", text);
    ui.Error()->SetNumber(0);
    EXPECT_EQ(ui.GetSearchPageSize(session, custom), size);
    EXPECT_EQ(ui.Error()->Number(), error);
  }
  EXPECT_THAT(ui.Error(), ErrorIs(13, "UISearch::GetSearchPageSize "));
  EXPECT_EQ(env->count(progid::AppIni), 5);
  EXPECT_EQ(env->created.back(), std::string("factory:") + std::string(progid::AppIni));
}

TEST_F(UISearchTest, MissingServicesAreRecordedUnderTheOperation) {
  env->runtime->Unregister(service_class::kCurrencyFormatter);
  env->runtime->Unregister(progid::AppIni);
  env->runtime->Unregister(progid::PartSearch);
  Variant out = Variant("as passed");
  const std::pair<const char*, std::function<bool()>> cases[] = {
      {"UISearch::FormatCurrency", [&] { return !ui.FormatCurrency(session, {}).empty(); }},
      {"UISearch::GetSearchPageSize", [&] { return ui.GetSearchPageSize(session) != 0; }},
      {"UISearch::GetPartDetail", [&] { return ui.GetPartDetail(session, 1, out); }},
      {"UISearch::GetPartViews", [&] { return ui.GetPartViews(session, 1, out); }},
  };
  for (const auto& [source, call] : cases) {
    SCOPED_TRACE(source);
    ui.Error()->SetNumber(0);
    EXPECT_FALSE(call());
    EXPECT_EQ(ui.Error()->Number(), 429);
    EXPECT_THAT(ui.Error()->Source(), StartsWith(std::string(source) + " "));
    EXPECT_EQ(out, Variant("as passed"));
  }
}

}  // namespace
}  // namespace kxui
