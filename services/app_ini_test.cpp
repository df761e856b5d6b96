#include "services/app_ini.h"

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <random>
#include <tuple>

namespace kxui::services {
namespace fs = std::filesystem;

class AppIniTest : public ::testing::Test {
 protected:
  ~AppIniTest() override { fs::remove_all(dir_); }
  void write(const std::string& text, const std::string& file = "Dunmere.ini") {
    std::ofstream(dir_ / file, std::ios::binary) << text;
  }
  // The value, or "<number: description>" when the read fails.
  std::string read(const std::string& app, const std::string& section, const std::string& name) {
    Variant custom;
    if (ini_.ReadValue(nullptr, name, section, app, custom)) return ini_.GetValue();
    return "<" + std::to_string(ini_.GetError()->Number()) + ": " + ini_.GetError()->Description() +
           ">";
  }

  const fs::path dir_ =
      fs::temp_directory_path() / ("kxini_" + std::to_string(std::random_device{}()));
  const bool created_ = fs::create_directories(dir_);
  IniAppIni ini_{dir_};
};

// The first of duplicate names wins; "[broken" is no header.
TEST_F(AppIniTest, ReadsSettingsCaseInsensitivelySkippingComments) {
  write(
      "\xEF\xBB\xBF; settings\r\n[Paging]\r\nPage Size = 25\r\n# Page Size = 99\r\nPAGE SIZE=30\n"
      "[UI]\n  DateFormat=1  \nnot a setting\n"
      "[broken\nEmpty =\n[paging]\nPage Size=50\nExtra=yes\n");
  const std::tuple<const char*, const char*, const char*, const char*> cases[] = {
      {"dunmere", "PAGING", "page size", "25"},
      {"Dunmere", "Paging", "Extra", "yes"},
      {"Dunmere", "UI", "DateFormat", "1"},
      {"Dunmere", "UI", "Empty", ""},
      {"Other", "Paging", "Page Size", "<53: Settings file Other.ini not found>"},
      {"Dunmere", "UI", "Rows", "<5: Setting 'Rows' not found in section [UI] of Dunmere.ini>"},
      {"Dunmere", "Grid", "Rows", "<5: Section [Grid] not found in Dunmere.ini>"},
      {"../Dunmere", "Paging", "Page Size", "<5: Invalid application name '../Dunmere'>"}};
  for (const auto& [app, section, name, expected] : cases) {
    EXPECT_EQ(read(app, section, name), expected) << app << " [" << section << "] " << name;
  }
  EXPECT_FALSE(ini_.Success());
  EXPECT_EQ(ini_.GetValue(), "") << "the last value read stays";
  EXPECT_EQ(ini_.GetError()->Source(), "KxUtility03.AppIni");
}

TEST_F(AppIniTest, ChangesOnDiskAreSeenByTheNextRead) {
  write("[Paging]\nPage Size=25\n");
  EXPECT_EQ(read("Dunmere", "Paging", "Page Size"), "25");
  write("[Paging]\nPage Size=100\n");  // new size
  EXPECT_EQ(read("Dunmere", "Paging", "Page Size"), "100");
  write("[Paging]\nPage Size=200\n");  // same size: the time tells
  fs::last_write_time(dir_ / "Dunmere.ini",
                      fs::last_write_time(dir_ / "Dunmere.ini") + std::chrono::seconds(2));
  EXPECT_EQ(read("Dunmere", "Paging", "Page Size"), "200");
  fs::remove(dir_ / "Dunmere.ini");
  EXPECT_EQ(read("Dunmere", "Paging", "Page Size"), "<53: Settings file Dunmere.ini not found>");
}

TEST_F(AppIniTest, SettingsListCoversEveryIniFileInOrder) {
  Variant custom;
  write("[Paging]\nPage Size=25\nPage Size=99\n[UI]\nDateFormat=1\n");
  write("[S]\nn=v\n", "Alpha.INI");
  write("[S]\nx=y\n", "notes.txt");
  fs::create_directory(dir_ / "dir.ini");
  RecordsetPtr rs = ini_.GetSettingsList(nullptr, custom);
  ASSERT_TRUE(rs && ini_.Success());
  std::string text;
  for (int c = 0; c < 4; ++c) text += rs->GetFields().Item(c).Name() + (c < 3 ? "|" : "\n");
  for (; !rs->IsEOF(); rs->MoveNext()) {
    for (int c = 0; c < 4; ++c) text += rs->value(c).to_string() + (c < 3 ? "|" : "\n");
  }
  EXPECT_EQ(text,
            "application|section|name|value\nAlpha|S|n|v\nDunmere|Paging|Page Size|25\n"
            "Dunmere|UI|DateFormat|1\n");
}

}  // namespace kxui::services
