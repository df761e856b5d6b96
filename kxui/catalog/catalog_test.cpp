// What the three catalog classes share: each records a failed creation under its own name.
#include <functional>

#include "kxui/catalog/ui_cat.h"
#include "kxui/catalog/ui_search.h"
#include "kxui/catalog/ui_sf.h"
#include "kxui/business/progids.h"
#include "kxui/testing/mock_catalog.h"

namespace kxui {
namespace {

using namespace ::testing;

TEST(CatalogClassesTest, ACreationFailureIsRecordedUnderTheClassName) {
  using Make = std::function<std::unique_ptr<Facade>(std::shared_ptr<Runtime>)>;
  const std::pair<const char*, Make> cases[] = {
      {"UISearch::Class_Initialize ", [](auto rt) { return std::make_unique<UISearch>(rt); }},
      {"UICat::Class_Initialize ", [](auto rt) { return std::make_unique<UICat>(rt); }},
      {"UISF::Class_Initialize ", [](auto rt) { return std::make_unique<UISF>(rt); }},
  };
  for (const auto& [source, make] : cases) {
    SCOPED_TRACE(source);
    auto env = kxui::testing::TestEnv::make();
    env->fail_error_creation = true;
    // UICat's own objects exist, so only the error object's failure is recorded.
    env->provide(progid::PartSearch, std::make_shared<NiceMock<kxui::testing::MockPartSearch>>());
    env->provide(progid::Commodity, std::make_shared<NiceMock<kxui::testing::MockCommodity>>());
    auto ui = make(env->runtime);
    EXPECT_EQ(ui->Error()->Number(), 429);
    EXPECT_THAT(ui->Error()->Source(), StartsWith(source));
  }
}

}  // namespace
}  // namespace kxui
