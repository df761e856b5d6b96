// UICat against gmock catalog objects kept for the façade's life.
#include "kxui/catalog/ui_cat.h"

#include <functional>

#include "kxui/business/progids.h"
#include "kxui/testing/fake_services.h"
#include "kxui/testing/mock_catalog.h"

namespace kxui {
namespace {

using namespace ::testing;
using kxui::testing::ErrorIs;
using kxui::testing::MockCommodity;
using kxui::testing::MockPartSearch;
using Values = std::vector<Variant>;

class UICatTest : public Test {
 protected:
  std::shared_ptr<kxui::testing::TestEnv> env = kxui::testing::TestEnv::make();
  std::shared_ptr<NiceMock<MockPartSearch>> search = std::make_shared<NiceMock<MockPartSearch>>();
  std::shared_ptr<NiceMock<MockCommodity>> commodity = std::make_shared<NiceMock<MockCommodity>>();
  std::shared_ptr<BasicSession> session = kxui::testing::make_session();
  RecordsetPtr rows = kxui::testing::make_recordset({{"ID", adInteger}}, {{Variant(int32_t{1})}});
  std::unique_ptr<UICat> ui;

  void SetUp() override {
    env->provide(progid::PartSearch, search);
    env->provide(progid::Commodity, commodity);
    ui = std::make_unique<UICat>(env->runtime);
  }

  RecordsetPtr list_parts(Variant& custom) {
    return ui->ListParts(session, "chair", true, 2, "P-1", "X", "Acme", 8, "Maker", 33, false,
                         "USD", "EUR", "CHF", "de", "EA", 1, 2, 4, 5, custom);
  }
};

TEST_F(UICatTest, KeepsBothCatalogObjectsFromCreation) {
  EXPECT_EQ(env->created, (std::vector<std::string>{"factory:KxUtility03.KxError",
                                                    "factory:KxCat03.PartSearch",
                                                    "factory:KxCat03.Commodity"}));
  Variant custom;
  ui->GetChild(session, 1, 0);
  ui->GetPath(session, 1, 0);
  list_parts(custom);
  ui->LastQueryString();
  EXPECT_EQ(env->created.size(), 3u) << "no object is created per call";
  // The runtime keeps one reference, the façade the other.
  EXPECT_EQ((std::pair{search.use_count(), commodity.use_count()}), (std::pair{3L, 3L}));
  ui.reset();
  EXPECT_EQ((std::pair{search.use_count(), commodity.use_count()}), (std::pair{2L, 2L}))
      << "released with the façade";
}

TEST_F(UICatTest, ACatalogObjectThatCannotBeCreatedIsRecordedAndFailsEveryCall) {
  for (auto missing : {progid::PartSearch, progid::Commodity}) {
    SCOPED_TRACE(missing);
    auto env2 = kxui::testing::TestEnv::make();
    if (missing != progid::PartSearch) env2->provide(progid::PartSearch, search);
    UICat cat(env2->runtime);
    EXPECT_EQ(cat.Error()->Number(), 429);
    EXPECT_THAT(cat.Error()->Source(), StartsWith("UICat::Class_Initialize "));
    EXPECT_EQ(cat.GetChild(session, 1, 0), nullptr);
    EXPECT_THAT(cat.Error(), ErrorIs(91, "UICat::GetChild "));
  }
  auto env3 = kxui::testing::TestEnv::make();
  env3->provide(progid::Commodity, commodity);
  UICat cat(env3->runtime);
  EXPECT_EQ(env3->count(progid::Commodity), 0) << "nothing after the failing creation";
  Variant custom;
  const std::pair<const char*, std::function<bool()>> cases[] = {
      {"UICat::ListParts ",
       [&] {
         return cat.ListParts(session, "", false, 0, "", "", "", 0, "", 0, false, "", "", "", "",
                              "", 0) != nullptr;
       }},
      {"UICat::LastQueryString ", [&] { return !cat.LastQueryString().empty(); }},
      {"UICat::DebugMode ", [&] { return cat.DebugMode(); }},
  };
  for (const auto& [source, call] : cases) {
    SCOPED_TRACE(source);
    EXPECT_FALSE(call());
    EXPECT_THAT(cat.Error(), ErrorIs(91, source));
  }
}

TEST_F(UICatTest, DebugModeAndLastQueryStringAreTheKeptSearchesOwn) {
  bool debug = false;
  ON_CALL(*search, SetDebugMode).WillByDefault(SaveArg<0>(&debug));
  ON_CALL(*search, DebugMode).WillByDefault(ReturnPointee(&debug));
  for (bool on : {true, false, true}) {
    ui->SetDebugMode(on);
    EXPECT_EQ(debug, on);
    EXPECT_EQ(ui->DebugMode(), on);
  }
  EXPECT_CALL(*search, LastQueryString).WillOnce(Return("SELECT parts")).WillOnce(
      Throw(Failure(5, "PartSearch", "no query yet")));
  EXPECT_EQ(ui->LastQueryString(), "SELECT parts");
  EXPECT_EQ(ui->LastQueryString(), "");
  EXPECT_THAT(ui->Error(), ErrorIs(5, "UICat::LastQueryString PartSearch"));
  EXPECT_CALL(*search, DebugMode).WillOnce(Throw(Failure(6, "PartSearch", "")));
  EXPECT_FALSE(ui->DebugMode());
  EXPECT_THAT(ui->Error(), ErrorIs(6, "UICat::DebugMode PartSearch"));
  EXPECT_CALL(*search, SetDebugMode).WillOnce(Throw(Failure(7, "PartSearch", "")));
  ui->SetDebugMode(true);
  EXPECT_THAT(ui->Error(), ErrorIs(7, "UICat::DebugMode PartSearch"));
}

TEST_F(UICatTest, GetChildPassesItsArgumentsAndDefaultsAndStoresCountThenSuccess) {
  Variant custom = Variant("custom");
  {
    InSequence order;
    EXPECT_CALL(*commodity, GetChildren(Eq(session), 9, 2, 3, true, false, 0, _))
        .WillOnce(Return(rows));
    EXPECT_CALL(*commodity, RecordCount).WillOnce(Return(12));
    EXPECT_CALL(*commodity, Success).WillOnce(Return(true));
    EXPECT_CALL(*commodity, GetChildren(_, 9, 1, 2, false, true, 0, Ref(custom)))
        .WillOnce(Return(nullptr));
    EXPECT_CALL(*commodity, RecordCount).WillOnce(Return(0));
    EXPECT_CALL(*commodity, Success).WillOnce(Return(false));
  }
  EXPECT_EQ(ui->GetChild(session, 9, 2), rows) << "the catalog's own record set";
  EXPECT_EQ((Values{ui->RecordCount(), ui->Success()}), (Values{12, true}));
  EXPECT_EQ(ui->GetChild(session, 9, 1, 2, false, true, custom), nullptr);
  EXPECT_EQ((Values{ui->RecordCount(), ui->Success()}), (Values{0, false}));
  EXPECT_EQ(ui->Error()->Number(), 0) << "a catalog answer is not a failure of the façade";
}

TEST_F(UICatTest, GetPathStoresSuccessButKeepsTheLastRecordCount) {
  Variant custom = Variant("custom");
  ON_CALL(*search, RecordCount).WillByDefault(Return(40));
  ON_CALL(*search, Success).WillByDefault(Return(true));
  list_parts(custom);
  EXPECT_CALL(*commodity, GetCommodityPath(Eq(session), 33, 1, 3, _)).WillOnce(Return(rows));
  EXPECT_CALL(*commodity, GetCommodityPath(_, 34, 0, 2, Ref(custom))).WillOnce(Return(rows));
  EXPECT_CALL(*commodity, Success).WillOnce(Return(false)).WillOnce(Return(true));
  EXPECT_CALL(*commodity, RecordCount).Times(0);
  EXPECT_EQ(ui->GetPath(session, 33, 1), rows);
  EXPECT_EQ((Values{ui->RecordCount(), ui->Success()}), (Values{40, false}));
  EXPECT_EQ(ui->GetPath(session, 34, 0, 2, custom), rows);
  EXPECT_EQ(ui->Success(), true);
}

TEST_F(UICatTest, ListPartsPassesEverySearchParameterInOrder) {
  Variant custom = Variant("custom");
  {
    InSequence order;
    EXPECT_CALL(*search, Search(Eq(session), Ref(custom))).WillOnce(Return(rows));
    EXPECT_CALL(*search, RecordCount).WillOnce(Return(40));
    EXPECT_CALL(*search, Success).WillOnce(Return(true));
  }
  EXPECT_EQ(list_parts(custom), rows);
  EXPECT_EQ(search->search_args, (Values{"chair", true, 2, "P-1", "X", "Acme", 8, "Maker", 33,
                                          false, "USD", "EUR", "CHF", "de", "EA", 1, 2, 4, 5, 0}));
  EXPECT_EQ((Values{ui->RecordCount(), ui->Success()}), (Values{40, true}));

  // Omitted: cursor location 3, sort order and search type 0.
  EXPECT_CALL(*search, Search).Times(1);
  EXPECT_CALL(*search, RecordCount).Times(1);
  EXPECT_CALL(*search, Success).Times(1);
  ui->ListParts(session, "desk", false, 1, "", "", "", 0, "", 0, true, "", "", "", "", "", 3);
  EXPECT_EQ(Values(search->search_args.end() - 5, search->search_args.end()),
            (Values{3, 3, 0, 0, 0}));
}

// No operation clears Success on entry or on failure: what the failing call had stored
// stays.
TEST_F(UICatTest, AFailureKeepsWhatTheCallHadAlreadyStored) {
  Variant custom;
  ON_CALL(*search, RecordCount).WillByDefault(Return(40));
  ON_CALL(*search, Success).WillByDefault(Return(true));
  list_parts(custom);
  const Failure broken(8, "Catalog", "broken");
  // Source, the call, and RecordCount and Success afterwards.
  const std::tuple<const char*, std::function<RecordsetPtr()>, int32_t, bool> cases[] = {
      {"UICat::GetChild Catalog",
       [&] {
         EXPECT_CALL(*commodity, GetChildren).WillOnce(Throw(broken));
         return ui->GetChild(session, 1, 0);
       },
       40, true},
      {"UICat::GetChild Catalog",
       [&] {
         EXPECT_CALL(*commodity, GetChildren).WillOnce(Return(rows));
         EXPECT_CALL(*commodity, RecordCount).WillOnce(Return(7));
         EXPECT_CALL(*commodity, Success).WillOnce(Throw(broken));
         return ui->GetChild(session, 1, 0);
       },
       7, true},
      {"UICat::GetPath Catalog",
       [&] {
         EXPECT_CALL(*commodity, GetCommodityPath).WillOnce(Throw(broken));
         return ui->GetPath(session, 1, 0);
       },
       7, true},
      {"UICat::ListParts Catalog",
       [&] {
         EXPECT_CALL(*search, Search).WillOnce(Return(rows));
         EXPECT_CALL(*search, RecordCount).WillOnce(Return(3));
         EXPECT_CALL(*search, Success).WillOnce(Throw(broken));
         return list_parts(custom);
       },
       3, true},
  };
  for (const auto& [source, call, count, success] : cases) {
    SCOPED_TRACE(source);
    EXPECT_EQ(call(), nullptr);
    EXPECT_THAT(ui->Error(), ErrorIs(8, source));
    EXPECT_EQ((Values{ui->RecordCount(), ui->Success()}), (Values{count, success}));
  }
}

}  // namespace
}  // namespace kxui
