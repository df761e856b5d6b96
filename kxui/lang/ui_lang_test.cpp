#include "kxui/lang/ui_lang.h"

#include <gtest/gtest.h>

#include "kxui/business/progids.h"
#include "kxui/testing/fake_resource.h"

namespace kxui {
namespace {

using testing::ErrorIs;
using testing::FakeResource;
using ::testing::ElementsAre;

Variant list(std::vector<Variant> values) { return Variant(Array::of(std::move(values))); }
ObjectPtr unavailable() { return nullptr; }  // registered, but creation fails (429)

class UILangTest : public ::testing::Test {
 protected:
  void SetUp() override { env->provide(progid::Resource, fallback); }
  std::shared_ptr<testing::TestEnv> env = testing::TestEnv::make();
  std::shared_ptr<FakeResource> fallback = std::make_shared<FakeResource>("default");
  std::shared_ptr<BasicSession> session = testing::make_session();
};

TEST_F(UILangTest, CreationSelectsTheDefaultThroughTheFactory) {
  UILang ui(env->runtime);
  EXPECT_EQ(env->created.back(), "factory:KxLang03.Resource");
  EXPECT_EQ(ui.LoadString(1, "Hi"), "default:Hi");

  env->runtime->Unregister(progid::Resource);
  UILang bare(env->runtime);
  EXPECT_THAT(bare.Error(), ErrorIs(429, "UILang::Class_Initialize KxLang03.Resource"));
}

TEST_F(UILangTest, GetResourceObjectFallsBackDirectlyAndDropsThePrevious) {
  env->provide("KxLang_en_US03.Resource", std::make_shared<FakeResource>("en_US"));
  env->provide_fn("KxLang_de_CH03.Resource", unavailable);
  UILang ui(env->runtime);
  env->created.clear();
  EXPECT_TRUE(ui.GetResourceObject(session));
  EXPECT_EQ(ui.LoadString(1, "Hi"), "en_US:Hi");

  session->lang_code = "de";
  session->country_code = "CH";
  EXPECT_TRUE(ui.GetResourceObject(session));
  EXPECT_EQ(ui.LoadString(1, "Hi"), "default:Hi");
  EXPECT_THAT(env->created, ElementsAre("direct:KxLang_en_US03.Resource",
                                        "direct:KxLang_de_CH03.Resource",
                                        "direct:KxLang03.Resource"));
  EXPECT_EQ(ui.Error()->Number(), 0) << "a missing locale is not a failure";

  env->runtime->Unregister(progid::Resource);
  EXPECT_FALSE(ui.GetResourceObject(session));
  EXPECT_THAT(ui.Error(), ErrorIs(429, "UILang::GetResourceObject KxLang03.Resource"));
  EXPECT_EQ(ui.LoadString(1, "Hi"), "Hi") << "the previous object was dropped";
}

TEST_F(UILangTest, GetResourceObjectByLocaleNameKeepsThePrevious) {
  env->provide("KxLang_fr_FR03.Resource", std::make_shared<FakeResource>("fr_FR"));
  env->provide_fn("KxLang_xx_XX03.Resource", unavailable);
  UILang ui(env->runtime);
  env->created.clear();
  EXPECT_TRUE(ui.GetResourceObjectByLocaleName("fr_FR"));
  EXPECT_TRUE(ui.GetResourceObjectByLocaleName("xx_XX"));
  EXPECT_EQ(ui.LoadString(1, "Oui"), "fr_FR:Oui") << "the earlier locale stays current";
  EXPECT_THAT(env->created, ElementsAre("direct:KxLang_fr_FR03.Resource",
                                        "direct:KxLang_xx_XX03.Resource"));

  // The default is created, directly, only when no object is current.
  env->runtime->Unregister(progid::Resource);
  UILang bare(env->runtime);
  EXPECT_FALSE(bare.GetResourceObjectByLocaleName("xx_XX"));
  EXPECT_THAT(bare.Error(),
              ErrorIs(429, "UILang::GetResourceObjectByLocaleName KxLang03.Resource"));
  env->provide(progid::Resource, fallback);
  EXPECT_TRUE(bare.GetResourceObjectByLocaleName("xx_XX"));
  EXPECT_EQ(env->created.back(), "direct:KxLang03.Resource");
}

TEST_F(UILangTest, LoadStringPassesTheOneElementHolderAndReturnsTheTextAsItIs) {
  fallback->strings[1024] = "Found @1\\n";
  UILang ui(env->runtime);
  const Variant args = list({"x", 2});
  EXPECT_EQ(ui.LoadString(1024, "Not found", args), "default:Found @1\\n");
  EXPECT_EQ(fallback->last_id, 1024);
  EXPECT_EQ(fallback->last_args.lbound(), 0);
  EXPECT_EQ(fallback->last_args.ubound(), 0);
  EXPECT_EQ(fallback->last_args.at(0), args) << "the caller's array, whole";
  ui.LoadString(1, "Plain");
  EXPECT_TRUE(fallback->last_args.at(0).is_missing());
}

TEST_F(UILangTest, FormatMsgTextPrefixesTheIDAndBreaksLines) {
  auto plain = std::make_shared<FakeResource>();
  plain->strings[1024] = "Line one\\nLine two";
  plain->strings[2] = "a\nb\\\\nc";
  env->provide("KxLang_en_US03.Resource", plain);
  UILang ui(env->runtime);
  ASSERT_TRUE(ui.GetResourceObject(session));
  EXPECT_EQ(ui.FormatMsgText(1024, "unused"), "(1024) Line one\r\nLine two");
  EXPECT_EQ(ui.FormatMsgText(2, "unused"), "(2) a\nb\\\r\nc") << "a real line feed stays";
  EXPECT_EQ(ui.FormatMsgText(-1, "Not found @1", list({1})), "(-1) Not found @1");
}

TEST_F(UILangTest, MessageFailuresReturnTheFilledDefault) {
  fallback->failure = Failure(1234, "KxLang03.Resource", "table damaged");
  UILang ui(env->runtime);
  EXPECT_EQ(ui.LoadString(3, "Item @1 of @2", list({3, 7})), "Item 3 of 7");
  EXPECT_THAT(ui.Error(), ErrorIs(1234, "UILang::LoadString KxLang03.Resource"));
  EXPECT_EQ(ui.FormatMsgText(3, "Item @1\\nnext", list({3})), "Item 3\\nnext")
      << "neither prefixed nor given line breaks";
  EXPECT_THAT(ui.Error(), ErrorIs(1234, "UILang::FormatMsgText KxLang03.Resource"));
  EXPECT_EQ(ui.LoadString(3, "Item @1", list({Variant::null()})), "Item @1");
  EXPECT_THAT(ui.Error(), ErrorIs(94, "UILang::InsertParams "));
}

TEST_F(UILangTest, FormatDebugMsgTxtOrdersNumberSourceDescription) {
  UILang ui(env->runtime);
  EXPECT_EQ(ui.FormatDebugMsgTxt(int32_t{-2147209902}, "Bad quantity.", "UIReq::AddItemFastAdd "),
            "\r\n\r\nError Number:  -2147209902\r\nError Source:  UIReq::AddItemFastAdd "
            "\r\nError Description:  Bad quantity.");
  EXPECT_EQ(ui.FormatDebugMsgTxt(5, Variant::null(), "src"), "");
  EXPECT_THAT(ui.Error(), ErrorIs(94, "UILang::FormatDebugMsgTxt "));
}

}  // namespace
}  // namespace kxui
