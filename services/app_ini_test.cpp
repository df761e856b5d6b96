#include "services/app_ini.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace kxui::services {
namespace {

namespace fs = std::filesystem;

class AppIniTest : public ::testing::Test {
 protected:
  void SetUp() override { fs::create_directories(dir_); }
  void TearDown() override { fs::remove_all(dir_); }

  void write(const std::string& file, const std::string& text) {
    std::ofstream(dir_ / file, std::ios::binary | std::ios::trunc) << text;
  }
  // The value, or "<false: number>" when the read fails.
  std::string read(const std::string& name, const std::string& section,
                   const std::string& app = "Dunmere") {
    Variant custom;
    if (ini_.ReadValue(nullptr, name, section, app, custom)) return ini_.GetValue();
    return "<false: " + std::to_string(ini_.GetError()->Number()) + ">";
  }

  fs::path dir_ = fs::temp_directory_path() /
                  ("kxservices_ini_" + std::to_string(std::random_device{}()));
  IniAppIni ini_{dir_};
};

TEST_F(AppIniTest, ReadsSettingsCaseInsensitivelyWithCommentsAndQuotes) {
  write("Dunmere.ini",
        "\xEF\xBB\xBF; settings of the portal\r\n"
        "[Paging]\r\n"
        "Page Size = 25\r\n"
        "# Page Size = 99\r\n"
        "[UI]\n"
        "  DateFormat=1  \n"
        "Connection = a=1;b=2\n"
        "Title = \"  padded  \"\n"
        "not a setting\n"
        "[broken\n"
        "Empty =\n");
  EXPECT_EQ(read("Page Size", "Paging"), "25");
  EXPECT_EQ(read("page size", "PAGING", "dunmere"), "25");
  EXPECT_EQ(read("DateFormat", "UI"), "1");
  EXPECT_EQ(read("Connection", "UI"), "a=1;b=2");  // ';' inside a value is data
  EXPECT_EQ(read("Title", "UI"), "  padded  ");
  EXPECT_EQ(read("Empty", "UI"), "");  // "[broken" is not a header: still in [UI]
  EXPECT_TRUE(ini_.Success());
}

TEST_F(AppIniTest, FirstOfDuplicateSettingsWinsAndRepeatedSectionsMerge) {
  write("Dunmere.ini",
        "[Paging]\nPage Size=10\nPAGE SIZE=30\n[UI]\nDateFormat=2\n[paging]\nPage Size=50\n"
        "Extra=yes\n");
  EXPECT_EQ(read("Page Size", "Paging"), "10");
  EXPECT_EQ(read("Extra", "Paging"), "yes");
}

TEST_F(AppIniTest, MissingFileSectionOrNameFailsAndKeepsTheLastValue) {
  write("Dunmere.ini", "[Paging]\nPage Size=25\n");
  EXPECT_EQ(read("Page Size", "Paging"), "25");

  EXPECT_EQ(read("Page Size", "Paging", "Other"), "<false: 53>");
  EXPECT_FALSE(ini_.Success());
  EXPECT_EQ(ini_.GetValue(), "25");
  EXPECT_EQ(ini_.GetError()->Source(), "KxUtility03.AppIni");
  EXPECT_NE(ini_.GetError()->Description().find("Other.ini"), std::string::npos);

  EXPECT_EQ(read("Page Size", "UI"), "<false: 5>");
  EXPECT_NE(ini_.GetError()->Description().find("[UI]"), std::string::npos);
  EXPECT_EQ(read("Rows", "Paging"), "<false: 5>");
  EXPECT_NE(ini_.GetError()->Description().find("'Rows'"), std::string::npos);
  for (const char* bad : {"", "..", "../Dunmere", "sub/Dunmere"}) {
    EXPECT_EQ(read("Page Size", "Paging", bad), "<false: 5>") << bad;
  }
  EXPECT_EQ(ini_.GetValue(), "25");

  IniAppIni nowhere(dir_ / "missing");
  Variant custom;
  EXPECT_FALSE(nowhere.ReadValue(nullptr, "Page Size", "Paging", "Dunmere", custom));
  EXPECT_EQ(nowhere.GetError()->Number(), 53);
}

TEST_F(AppIniTest, ChangesOnDiskAreSeenByTheNextRead) {
  write("Dunmere.ini", "[Paging]\nPage Size=25\n");
  EXPECT_EQ(read("Page Size", "Paging"), "25");

  write("Dunmere.ini", "[Paging]\nPage Size=100\n");  // new size
  EXPECT_EQ(read("Page Size", "Paging"), "100");

  write("Dunmere.ini", "[Paging]\nPage Size=200\n");  // same size: the time tells
  fs::last_write_time(dir_ / "Dunmere.ini",
                      fs::last_write_time(dir_ / "Dunmere.ini") + std::chrono::seconds(2));
  EXPECT_EQ(read("Page Size", "Paging"), "200");

  fs::remove(dir_ / "Dunmere.ini");
  EXPECT_EQ(read("Page Size", "Paging"), "<false: 53>");
  write("Dunmere.ini", "[Paging]\nPage Size=7\n");
  EXPECT_EQ(read("Page Size", "Paging"), "7");
}

TEST_F(AppIniTest, SettingsListCoversEveryIniFileInOrder) {
  write("Dunmere.ini", "[Paging]\nPage Size=25\nPage Size=99\n[UI]\nDateFormat=1\n");
  write("Alpha.INI", "[S]\nn=v\n");
  write("notes.txt", "[S]\nx=y\n");
  fs::create_directory(dir_ / "dir.ini");
  Variant custom;
  RecordsetPtr rs = ini_.GetSettingsList(nullptr, custom);
  ASSERT_TRUE(rs);
  EXPECT_TRUE(ini_.Success());
  ASSERT_EQ(rs->GetFields().Count(), 4);
  const char* names[] = {"application", "section", "name", "value"};
  for (int c = 0; c < 4; ++c) EXPECT_EQ(rs->GetFields().Item(c).Name(), names[c]);

  std::vector<std::string> rows;
  for (; !rs->IsEOF(); rs->MoveNext()) {
    rows.push_back(rs->value(0).to_string() + "|" + rs->value(1).to_string() + "|" +
                   rs->value(2).to_string() + "|" + rs->value(3).to_string());
  }
  EXPECT_EQ(rows, (std::vector<std::string>{"Alpha|S|n|v", "Dunmere|Paging|Page Size|25",
                                            "Dunmere|UI|DateFormat|1"}));
}

TEST_F(AppIniTest, SettingsListOfEmptyOrMissingDirectory) {
  Variant custom;
  RecordsetPtr rs = ini_.GetSettingsList(nullptr, custom);
  ASSERT_TRUE(rs);
  EXPECT_EQ(rs->RecordCount(), 0);
  EXPECT_TRUE(ini_.Success());

  IniAppIni nowhere(dir_ / "missing");
  EXPECT_EQ(nowhere.GetSettingsList(nullptr, custom), nullptr);
  EXPECT_FALSE(nowhere.Success());
  EXPECT_EQ(nowhere.GetError()->Number(), 53);
}

}  // namespace
}  // namespace kxui::services
