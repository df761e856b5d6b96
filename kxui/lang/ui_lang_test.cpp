// UILang and UILangExt, which share their message operations.
#include "kxui/lang/ui_lang.h"

#include <atomic>
#include <cstdlib>
#include <new>

#include "kxui/business/progids.h"
#include "kxui/lang/ui_lang_ext.h"
#include "kxui/testing/test_runtime.h"

// Allocation failures on demand: once armed, the allocation numbered `g_fail_from` and
// every later one fail, as when memory has run out.
namespace {
std::atomic<long> g_fail_from{-1};
std::atomic<long> g_allocations{0};
}  // namespace

#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"  // malloc and free, on purpose
#endif
void* operator new(std::size_t n) {
  if (g_fail_from >= 0 && g_allocations++ >= g_fail_from) throw std::bad_alloc();
  if (void* p = std::malloc(n ? n : 1)) return p;
  throw std::bad_alloc();
}
void operator delete(void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }

namespace kxui {
namespace {

using ::testing::_;
using ::testing::DoAll;
using testing::ErrorIs;
using ::testing::Return;
using ::testing::SaveArg;

class MockResource : public business::Resource, public testing::FakeBusinessObject {
 public:
  MOCK_METHOD(std::string, LoadString, (int16_t, const std::string&, const Array&), (override));
};

// A resource object answering "<tag>:<default text>", so a test sees which one answered.
std::shared_ptr<MockResource> tagged(std::string tag) {
  auto r = std::make_shared<::testing::NiceMock<MockResource>>();
  ON_CALL(*r, LoadString).WillByDefault([tag](auto, auto& text, auto&) {
    return tag + ":" + text;
  });
  return r;
}

Variant list(std::vector<Variant> values) { return Variant(Array::of(std::move(values))); }

class UILangTest : public ::testing::Test {
 protected:
  void SetUp() override { env->provide(progid::Resource, fallback); }
  std::shared_ptr<testing::TestEnv> env = testing::TestEnv::make();
  std::shared_ptr<MockResource> fallback = tagged("default");
  std::shared_ptr<BasicSession> session = testing::make_session();
};

// The default comes through the ClassFactory at creation; the selections create their
// objects directly.
TEST_F(UILangTest, GetResourceObjectFallsBackAndDropsThePrevious) {
  env->provide("KxLang_en_US03.Resource", tagged("en_US"));
  env->provide_fn("KxLang_de_CH03.Resource", [] { return ObjectPtr(); });  // fails: 429
  UILang ui(env->runtime);
  EXPECT_TRUE(ui.GetResourceObject(session));
  EXPECT_EQ(ui.LoadString(1, "Hi"), "en_US:Hi");
  session->lang_code = "de";
  session->country_code = "CH";
  EXPECT_TRUE(ui.GetResourceObject(session));
  EXPECT_EQ(ui.LoadString(1, "Hi"), "default:Hi");
  EXPECT_EQ(env->created, (std::vector<std::string>{
                              "factory:KxUtility03.KxError", "factory:KxLang03.Resource",
                              "direct:KxLang_en_US03.Resource", "direct:KxLang_de_CH03.Resource",
                              "direct:KxLang03.Resource"}));
  EXPECT_EQ(ui.Error()->Number(), 0) << "a missing locale is not a failure";

  env->runtime->Unregister(progid::Resource);
  EXPECT_FALSE(ui.GetResourceObject(session));
  EXPECT_THAT(ui.Error(), ErrorIs(429, "UILang::GetResourceObject KxLang03.Resource"));
  EXPECT_EQ(ui.LoadString(1, "Hi"), "Hi") << "the previous one was dropped";
  EXPECT_THAT(UILang(env->runtime).Error(),
              ErrorIs(429, "UILang::Class_Initialize KxLang03.Resource"));
}

TEST_F(UILangTest, GetResourceObjectByLocaleNameKeepsThePrevious) {
  env->provide("KxLang_fr_FR03.Resource", tagged("fr_FR"));
  env->provide_fn("KxLang_xx_XX03.Resource", [] { return ObjectPtr(); });
  UILang ui(env->runtime);
  EXPECT_TRUE(ui.GetResourceObjectByLocaleName("fr_FR"));
  EXPECT_TRUE(ui.GetResourceObjectByLocaleName("xx_XX"));
  EXPECT_EQ(ui.LoadString(1, "Oui"), "fr_FR:Oui") << "the earlier locale stays current";
  EXPECT_EQ(env->created, (std::vector<std::string>{
                              "factory:KxUtility03.KxError", "factory:KxLang03.Resource",
                              "direct:KxLang_fr_FR03.Resource", "direct:KxLang_xx_XX03.Resource"}));
  // The default is tried only when no object is current.
  env->runtime->Unregister(progid::Resource);
  UILang bare(env->runtime);
  EXPECT_FALSE(bare.GetResourceObjectByLocaleName("xx_XX"));
  EXPECT_THAT(bare.Error(),
              ErrorIs(429, "UILang::GetResourceObjectByLocaleName KxLang03.Resource"));
}

// The resource object gets a one-element holder wrapping the caller's arguments whole, and
// fills them itself; FormatMsgText adds the ID and turns backslash-n into CR LF.
TEST_F(UILangTest, MessagesComeFromTheResourceObjectAsItGivesThem) {
  Array passed;
  ON_CALL(*fallback, LoadString(1024, "Not found", _))
      .WillByDefault(DoAll(SaveArg<2>(&passed), Return("Line one\\nLine two")));
  UILang ui(env->runtime);
  const Variant args = list({"x", 2});
  EXPECT_EQ(ui.LoadString(1024, "Not found", args), "Line one\\nLine two");
  EXPECT_EQ(std::pair(passed.lbound(), passed.ubound()), std::pair(0, 0));
  EXPECT_EQ(passed.at(0), args);
  EXPECT_EQ(ui.FormatMsgText(1024, "Not found"), "(1024) Line one\r\nLine two");
  EXPECT_TRUE(passed.at(0).is_missing());
  EXPECT_EQ(ui.FormatMsgText(-1, "Not found @1", list({1})), "(-1) default:Not found @1");
  // The lines come in another order than the parameters.
  EXPECT_EQ(ui.FormatDebugMsgTxt(int32_t{-2147209902}, "Bad quantity.", "UIReq::AddItemFastAdd "),
            "\r\n\r\nError Number:  -2147209902\r\nError Source:  UIReq::AddItemFastAdd "
            "\r\nError Description:  Bad quantity.");
}

TEST_F(UILangTest, MessageFailuresReturnTheFilledDefaultOrNothing) {
  ON_CALL(*fallback, LoadString)
      .WillByDefault(::testing::Throw(Failure(1234, "KxLang03.Resource", "damaged")));
  UILang ui(env->runtime);
  EXPECT_EQ(ui.LoadString(3, "Item @1 of @2", list({3, 7})), "Item 3 of 7");
  EXPECT_THAT(ui.Error(), ErrorIs(1234, "UILang::LoadString KxLang03.Resource"));
  EXPECT_EQ(ui.FormatMsgText(3, "Item @1\\nnext", list({3})), "Item 3\\nnext") << "no ID, no CR LF";
  EXPECT_THAT(ui.Error(), ErrorIs(1234, "UILang::FormatMsgText KxLang03.Resource"));
  EXPECT_EQ(ui.LoadString(3, "Item @1", list({Variant::null()})), "Item @1");
  EXPECT_THAT(ui.Error(), ErrorIs(94, "UILang::InsertParams "));
  EXPECT_EQ(ui.FormatDebugMsgTxt(5, Variant::null(), "src"), "");
  EXPECT_THAT(ui.Error(), ErrorIs(94, "UILang::FormatDebugMsgTxt "));
}

// Memory running out at any point of a message operation's fallback, the copy of the
// default text included, gives a text or "" and never ends the process.
TEST(UILangMemoryTest, RunningOutOfMemoryNeverTerminates) {
  EXPECT_EXIT(
      {
        auto env = testing::TestEnv::make();
        UILangExt ui(env->runtime);  // no resource object: every message falls back
        const Variant args = list({"a value long enough to live on the heap"});
        const std::string text = "Item @1 was not found in the catalogue of this buyer";
        for (long from = 0;; ++from) {
          g_allocations = 0;
          g_fail_from = from;
          const std::string a = ui.LoadString(1, text, args);
          const std::string b = ui.FormatMsgText(2, text, args);
          g_fail_from = -1;
          if (g_allocations <= from) break;  // nothing failed any more
          if (!a.empty() && a.find("Item ") != 0) std::exit(2);
        }
        std::exit(0);
      },
      ::testing::ExitedWithCode(0), "");
}

TEST(UILangExtTest, StartsWithoutAResourceObjectAndRecordsAsUILang) {
  auto env = testing::TestEnv::make();
  env->provide(progid::Resource, tagged("default"));
  UILangExt ui(env->runtime);
  EXPECT_EQ(env->count(progid::Resource), 0);
  EXPECT_EQ(ui.LoadString(1, "Option @1", list({"A"})), "Option A");
  EXPECT_THAT(ui.Error(), ErrorIs(91, "UILang::LoadString "));
  EXPECT_EQ(ui.FormatMsgText(1, "Option @1", list({"B"})), "Option B");
  EXPECT_THAT(ui.Error(), ErrorIs(91, "UILang::FormatMsgText "));
  env->fail_error_creation = true;
  UILangExt broken(env->runtime);
  EXPECT_THAT(broken.Error(), ErrorIs(429, "UILang::Class_Initialize KxUtility03.KxError"));
  EXPECT_EQ(broken.class_name(), "UILangExt") << "still registered under its own name";
}

// Objects exist from step `available` on: 0 the locale's, 1 the family's, 2 only the
// default, 3 none. The first selection always finds the locale's, to be dropped.
TEST(UILangExtTest, GetOptionResourceObjectFallsBackInOrder) {
  const std::vector<std::string> steps = {"direct:KxOpt_en_US03.Resource",
                                          "direct:KxOpt_03.Resource", "factory:KxLang03.Resource"};
  for (int available = 0; available <= 3; ++available) {
    SCOPED_TRACE(available);
    auto env = testing::TestEnv::make();
    int from = 0;
    for (int step = 0; step < 3; ++step) {
      env->provide_fn(steps[step].substr(steps[step].find(':') + 1), [=, &from]() -> ObjectPtr {
        return step >= from ? tagged(std::to_string(step)) : nullptr;
      });
    }
    UILangExt ui(env->runtime);
    ASSERT_TRUE(ui.GetOptionResourceObject(testing::make_session(), "KxOpt_"));
    from = available;
    env->created.clear();
    EXPECT_EQ(ui.GetOptionResourceObject(testing::make_session(), "KxOpt_"), available < 3);
    EXPECT_EQ(env->created, std::vector(steps.begin(), steps.begin() + std::min(available, 2) + 1));
    if (available == 3) {
      EXPECT_THAT(ui.Error(), ErrorIs(429, "UILang::GetOptionResourceObject KxLang03.Resource"));
    }
    EXPECT_EQ(ui.LoadString(1, "x"), available < 3 ? std::to_string(available) + ":x" : "x");
  }
}

}  // namespace
}  // namespace kxui
