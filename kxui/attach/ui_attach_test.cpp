// UIAttach against gmock attachment objects: the option's object and line number, the
// checks on names and sizes, and what each operation hands back.
#include "kxui/attach/ui_attach.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "kxui/business/progids.h"
#include "kxui/testing/fake_services.h"
#include "kxui/testing/mock_attach.h"

namespace kxui {
namespace {

using namespace ::testing;
using kxui::testing::ErrorIs;
using kxui::testing::MockAttachment;
using Texts = std::vector<std::string>;

constexpr int32_t validation(int32_t message) { return int32_t(0x80040000u + uint32_t(message)); }

class UIAttachTest : public Test {
 protected:
  std::shared_ptr<kxui::testing::TestEnv> env = kxui::testing::TestEnv::make();
  kxui::testing::FakeServices fakes = kxui::testing::FakeServices::install(*env);
  std::shared_ptr<BasicSession> session = kxui::testing::make_session();
  // One object per ProgID, in option order 1 to 4.
  const std::string_view progids[4] = {progid::ReqAttachment, progid::ReqItemAttachment,
                                       progid::POAttachment, progid::POItemAttachment};
  std::shared_ptr<NiceMock<MockAttachment>> files[4];
  UIAttach ui{env->runtime};

  void SetUp() override {
    for (int i = 0; i < 4; ++i) {
      files[i] = std::make_shared<NiceMock<MockAttachment>>();
      files[i]->fail_with(60 + i, std::string(progids[i]), "refused");
      ON_CALL(*files[i], Success).WillByDefault(Return(true));
      env->provide(progids[i], files[i]);
    }
  }
  int attachment_objects_created() const {
    int n = 0;
    for (auto id : progids) n += env->count(id);
    return n;
  }
  bool add(int32_t option, const std::string& name, const std::string& content) {
    Variant id = Variant("id in");
    return ui.AddAttachment(session, option, 12, 5, name, content, id);
  }
};

TEST_F(UIAttachTest, TheOptionChoosesTheObjectAndTheLineNumber) {
  const int32_t expected_line[] = {0, 5, 0, 5};  // header objects are given line 0
  for (int32_t option = 1; option <= 4; ++option) {
    SCOPED_TRACE(option);
    MockAttachment& f = *files[option - 1];
    const int32_t line = expected_line[option - 1];
    Variant custom = Variant("ctx");
    const auto list = kxui::testing::make_recordset(
        {{"AttachmentID", adInteger}, {"FileSize", adInteger}, {"DateAttached", adDate}},
        {{Variant(int32_t{3}), Variant(int32_t{2048}),
          Variant(Date::from_civil(2024, 5, 1, 23, 0, 0))}});
    EXPECT_CALL(f, GetAttachmentList(Eq(session), 12, line, Ref(custom))).WillOnce(Return(list));
    EXPECT_CALL(f, AddAttachment(Eq(session), 12, line, "quote.pdf", std::string("%PDF\0x", 6), _,
                                 Ref(custom)))
        .WillOnce(DoAll(SetArgReferee<5>(31), Return(true)));
    EXPECT_CALL(f, GetAttachment(Eq(session), 12, line, 31, _, _, Ref(custom)))
        .WillOnce(DoAll(SetArgReferee<4>("quote.pdf"), SetArgReferee<5>(std::string("\0\1", 2)),
                        Return(true)));
    EXPECT_CALL(f, DeleteAttachment(Eq(session), 12, line, 31, Ref(custom))).WillOnce(Return(true));

    RecordsetPtr rs = ui.GetAttachmentListRs(session, option, 12, 5, custom);
    ASSERT_NE(rs, nullptr) << ui.Error()->Description();
    EXPECT_EQ(rs->GetFields().Count(), 5);
    EXPECT_EQ((*rs)["UIDisplay_DateAttached"].Value(), Variant("1033/2/2024-05-01"));
    EXPECT_EQ((*rs)["UIDisplay_FileSize"].Value(), Variant("2048@1033"));

    Variant id;
    EXPECT_TRUE(ui.AddAttachment(session, option, 12, 5, "quote.pdf", std::string("%PDF\0x", 6), id,
                                 custom));
    EXPECT_EQ(id, Variant(int32_t{31}));
    Variant name, content;
    EXPECT_TRUE(ui.GetAttachment(session, option, 12, 5, 31, name, content, custom));
    EXPECT_EQ(name, Variant("quote.pdf"));
    EXPECT_EQ(content, Variant(std::string("\0\1", 2)));  // bytes as they were stored
    EXPECT_TRUE(ui.DeleteAttachment(session, option, 12, 5, 31, custom));
    EXPECT_EQ(env->count(progids[option - 1]), 4);
  }
  EXPECT_EQ(attachment_objects_created(), 16);
}

TEST_F(UIAttachTest, AnOptionOutsideOneToFourIsRefusedByEveryOperation) {
  for (int32_t option : {0, 5, -1, 14}) {
    SCOPED_TRACE(option);
    Variant id = Variant("id in"), name = Variant("n"), content = Variant("c");
    using Op = std::function<bool()>;
    const std::pair<const char*, Op> ops[] = {
        {"UIAttach::GetAttachmentListRs ",
         [&] { return ui.GetAttachmentListRs(session, option, 12, 5) != nullptr; }},
        {"UIAttach::AddAttachment ",
         [&] { return ui.AddAttachment(session, option, 12, 5, "a.txt", "x", id); }},
        {"UIAttach::GetAttachment ",
         [&] { return ui.GetAttachment(session, option, 12, 5, 31, name, content); }},
        {"UIAttach::DeleteAttachment ",
         [&] { return ui.DeleteAttachment(session, option, 12, 5, 31); }},
    };
    for (const auto& [source, op] : ops) {
      EXPECT_FALSE(op());
      EXPECT_THAT(ui.Error(), ErrorIs(validation(11650), source));
      EXPECT_EQ(ui.Error()->Description(),
                "Invalid attachment option. The option must be 1, 2, 3 or 4.");
    }
    EXPECT_EQ((std::vector<Variant>{id, name, content}),
              (std::vector<Variant>{Variant("id in"), Variant("n"), Variant("c")}));
  }
  EXPECT_EQ(attachment_objects_created(), 0);
}

TEST_F(UIAttachTest, AddAttachmentRefusesNamesThatAreEmptyOrCarryAPath) {
  const std::pair<std::string, int32_t> cases[] = {
      {"", 11651},
      {"   ", 11651},
      {"../secret.txt", 11652},
      {"..\\boot.ini", 11652},
      {"a/b.txt", 11652},
      {"dir\\b.txt", 11652},
      {"c:boot.ini", 11652},
      {"..", 11652},
      {".", 11652},
      {"a..b", 11652},
      {"line\nbreak.txt", 11652},
      {std::string("nul\0.txt", 8), 11652},
      {"tab\t.txt", 11652},
      {"quote.pdf", 0},
      {"Résumé 2024.docx", 0},
      {".profile", 0},
      {" spaced .txt", 0},
  };
  for (const auto& [name, message] : cases) {
    SCOPED_TRACE(name);
    if (message == 0) {
      EXPECT_CALL(*files[1], AddAttachment(_, 12, 5, name, "x", _, _)).WillOnce(Return(true));
      EXPECT_TRUE(add(2, name, "x")) << ui.Error()->Description();
    } else {
      EXPECT_CALL(*files[1], AddAttachment).Times(0);
      EXPECT_FALSE(add(2, name, "x"));
      EXPECT_THAT(ui.Error(), ErrorIs(validation(message), "UIAttach::AddAttachment "));
      EXPECT_EQ(ui.Error()->Description(), message == 11651
                                               ? "A file name is required."
                                               : "Invalid file name. A file name may not contain "
                                                 "a path, \"..\" or control characters.");
    }
    Mock::VerifyAndClearExpectations(files[1].get());
  }
}

TEST_F(UIAttachTest, AddAttachmentRefusesFilesOverTheConfiguredSize) {
  struct Case {
    std::optional<std::string> setting;  // none: not set
    size_t size;
    int32_t error;  // 0: stored
  };
  const int32_t mb10 = 10 * 1024 * 1024;
  const Case cases[] = {
      {"10", 10, 0},
      {"10", 11, validation(11653)},
      {"10", 0, 0},
      {"0", 0, 0},
      {"0", 1, validation(11653)},
      {"-1", 0, validation(11653)},
      {{}, size_t(mb10), 0},
      {{}, size_t(mb10) + 1, validation(11653)},
      {"ten", 1, 13},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.size);
    fakes.ini->values.clear();
    if (c.setting) fakes.ini->set("Max Attachment Size", "Attachments", "Dunmere", *c.setting);
    const std::string content(c.size, 'z');
    if (c.error == 0) {
      EXPECT_CALL(*files[0], AddAttachment(_, 12, 0, "a.bin", content, _, _))
          .WillOnce(Return(true));
      EXPECT_TRUE(add(1, "a.bin", content)) << ui.Error()->Description();
    } else {
      EXPECT_CALL(*files[0], AddAttachment).Times(0);
      EXPECT_FALSE(add(1, "a.bin", content));
      EXPECT_THAT(ui.Error(), ErrorIs(c.error, "UIAttach::AddAttachment "));
    }
    Mock::VerifyAndClearExpectations(files[0].get());
  }
  EXPECT_EQ(ui.Error()->Description(), "Type mismatch");
  EXPECT_FALSE(add(1, "a.bin", "xx"));
  fakes.ini->set("Max Attachment Size", "Attachments", "Dunmere", "1");
  EXPECT_FALSE(add(1, "a.bin", "xx"));
  EXPECT_EQ(ui.Error()->Description(), "The file is larger than the maximum attachment size.");
}

TEST_F(UIAttachTest, BusinessRefusalsRecordTheObjectsErrorAndLeaveInOutsAlone) {
  Variant id = Variant("id in"), name = Variant("n"), content = Variant("c");
  EXPECT_CALL(*files[3], Success).WillOnce(Return(false));
  EXPECT_EQ(ui.GetAttachmentListRs(session, 4, 12, 5), nullptr);
  EXPECT_THAT(ui.Error(), ErrorIs(63, "UIAttach::GetAttachmentListRs KxAttach03.POItemAttachment"));

  EXPECT_CALL(*files[2], AddAttachment).WillOnce(DoAll(SetArgReferee<5>(31), Return(false)));
  EXPECT_FALSE(ui.AddAttachment(session, 3, 12, 5, "a.txt", "x", id));
  EXPECT_THAT(ui.Error(), ErrorIs(62, "UIAttach::AddAttachment KxAttach03.POAttachment"));

  EXPECT_CALL(*files[1], GetAttachment)
      .WillOnce(DoAll(SetArgReferee<4>("x.txt"), SetArgReferee<5>("data"), Return(false)));
  EXPECT_FALSE(ui.GetAttachment(session, 2, 12, 5, 31, name, content));
  EXPECT_THAT(ui.Error(), ErrorIs(61, "UIAttach::GetAttachment KxAttach03.ReqItemAttachment"));

  EXPECT_CALL(*files[0], DeleteAttachment).WillOnce(Return(false));
  EXPECT_FALSE(ui.DeleteAttachment(session, 1, 12, 5, 31));
  EXPECT_THAT(ui.Error(), ErrorIs(60, "UIAttach::DeleteAttachment KxAttach03.ReqAttachment"));

  EXPECT_EQ((std::vector<Variant>{id, name, content}),
            (std::vector<Variant>{Variant("id in"), Variant("n"), Variant("c")}));
}

}  // namespace
}  // namespace kxui
