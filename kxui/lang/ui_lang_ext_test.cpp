#include "kxui/lang/ui_lang_ext.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "kxui/business/progids.h"
#include "kxui/testing/fake_resource.h"

namespace kxui {
namespace {

using testing::ErrorIs;
using testing::FakeResource;

TEST(UILangExtTest, StartsWithoutAResourceObjectAndRecordsAsUILang) {
  auto env = testing::TestEnv::make();
  env->provide(progid::Resource, std::make_shared<FakeResource>());
  UILangExt ui(env->runtime);
  EXPECT_EQ(env->count(progid::Resource), 0);
  EXPECT_EQ(ui.LoadString(1, "Option @1", Variant(Array::of({"A"}))), "Option A");
  EXPECT_THAT(ui.Error(), ErrorIs(91, "UILang::LoadString "));
  EXPECT_EQ(ui.FormatMsgText(1, "Option"), "Option");
  EXPECT_THAT(ui.Error(), ErrorIs(91, "UILang::FormatMsgText "));

  env->fail_error_creation = true;
  UILangExt broken(env->runtime);
  EXPECT_THAT(broken.Error(), ErrorIs(429, "UILang::Class_Initialize KxUtility03.KxError"));
  EXPECT_EQ(broken.class_name(), "UILangExt") << "still registered under its own name";
}

TEST(UILangExtTest, GetOptionResourceObjectFallsBackInOrder) {
  const std::vector<std::string> all = {"direct:KxOpt_en_US03.Resource",
                                        "direct:KxOpt_03.Resource", "factory:KxLang03.Resource"};
  for (int available = 0; available <= 3; ++available) {
    SCOPED_TRACE(available);
    // From step `available` on the objects exist: 0 the locale's, 1 the family's, 2 only
    // the default, 3 none. The first selection always finds the locale's.
    auto env = testing::TestEnv::make();
    int from = 0;
    for (int step = 0; step < 3; ++step) {
      std::string name = all[size_t(step)].substr(all[size_t(step)].find(':') + 1);
      std::string tag = std::to_string(step);
      env->provide_fn(name, [=, &from]() -> ObjectPtr {
        return step >= from ? std::make_shared<FakeResource>(tag) : nullptr;
      });
    }
    UILangExt ui(env->runtime);
    ASSERT_TRUE(ui.GetOptionResourceObject(testing::make_session(), "KxOpt_"));
    from = available;
    env->created.clear();

    EXPECT_EQ(ui.GetOptionResourceObject(testing::make_session(), "KxOpt_"), available < 3);
    const size_t tried = size_t(std::min(available, 2)) + 1;
    EXPECT_EQ(env->created, std::vector<std::string>(all.begin(), all.begin() + tried));
    if (available < 3) {
      EXPECT_EQ(ui.LoadString(1, "x"), std::to_string(available) + ":x");
    } else {
      EXPECT_THAT(ui.Error(), ErrorIs(429, "UILang::GetOptionResourceObject KxLang03.Resource"));
      EXPECT_EQ(ui.LoadString(1, "x"), "x") << "the previous object was dropped";
    }
  }
}

}  // namespace
}  // namespace kxui
