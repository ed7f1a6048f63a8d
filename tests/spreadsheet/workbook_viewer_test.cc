#include "spreadsheet/workbook_viewer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include "spreadsheet/workbook_reader.h"
#include "tests/support/workbooks/test_files.h"

namespace nimbrel::spreadsheet {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::SizeIs;

class NotedMessages : public platform::MessageBox {
 public:
  void Show(const std::string& text, const std::string& title) override {
    texts.push_back(text);
    titles.push_back(title);
  }
  std::vector<std::string> texts;
  std::vector<std::string> titles;
};

class DesktopViewerTest : public testing::Test {
 protected:
  DesktopViewerTest() { workbook.AddSheet("Spring"); }

  /// The user's folder among the temporary files, and the names of what is in it.
  std::filesystem::path Users() const {
    return folder.File("nimbrel-" + std::to_string(geteuid()));
  }
  std::vector<std::string> Left() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(Users())) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }
  /// Makes a file and its folder as old as that.
  static void Age(const std::string& file, std::chrono::hours age) {
    const auto time = std::filesystem::file_time_type::clock::now() - age;
    std::filesystem::last_write_time(file, time);
    std::filesystem::last_write_time(std::filesystem::path(file).parent_path(), time);
  }
  /// What the next start of the program does.
  void StartAgain() {
    DesktopViewer([](const auto&) { return false; }, messages, folder.path());
  }

  /// Programs that are there.
  std::vector<std::string> installed;
  std::vector<std::vector<std::string>> started;
  NotedMessages messages;
  TemporaryFolder folder;
  Workbook workbook;
  DesktopViewer viewer{
      [this](const std::vector<std::string>& command) {
        if (std::find(installed.begin(), installed.end(), command.front()) == installed.end()) {
          return false;
        }
        started.push_back(command);
        return true;
      },
      messages, folder.path()};
};

TEST_F(DesktopViewerTest, ANewWorkbookOpensAsADocumentThatIsNotSaved) {
  installed = {"soffice", "xdg-open"};
  viewer.Show(workbook, "");
  ASSERT_EQ(started.size(), 1U);
  EXPECT_THAT(started[0], ElementsAre("soffice", "-n", EndsWith("/Weather.xlsx")));
  EXPECT_TRUE(started[0][2].starts_with(folder.path()));
  EXPECT_EQ(ReadWorkbook(started[0][2]).sheets()[0]->name(), "Spring");
  EXPECT_THAT(messages.texts, IsEmpty());
}

TEST_F(DesktopViewerTest, WithoutLibreOfficeTheSystemsOwnProgramOpensIt) {
  installed = {"xdg-open"};
  viewer.Show(workbook, "");
  ASSERT_EQ(started.size(), 1U);
  EXPECT_THAT(started[0], ElementsAre("xdg-open", EndsWith("/Weather.xlsx")));
  EXPECT_THAT(messages.texts, IsEmpty());
}

TEST_F(DesktopViewerTest, WithoutAnyProgramAMessageSaysWhereTheFileIs) {
  viewer.Show(workbook, "");
  ASSERT_EQ(messages.texts.size(), 1U);
  EXPECT_EQ(messages.titles[0], "Weather Modeling");
  const std::string file = messages.texts[0].substr(messages.texts[0].find(folder.path()));
  EXPECT_EQ(ReadWorkbook(file).sheets()[0]->name(), "Spring");
}

TEST_F(DesktopViewerTest, AnOpenedWorkbookIsShownAsItsFile) {
  installed = {"soffice"};
  viewer.Show(workbook, "/plans/w.xlsx");
  EXPECT_THAT(started, ElementsAre(ElementsAre("soffice", "/plans/w.xlsx")));
  EXPECT_THAT(folder.Names(), IsEmpty());
}

TEST_F(DesktopViewerTest, TwoWorkbooksAreTwoFilesForTheUserAlone) {
  installed = {"soffice"};
  viewer.Show(workbook, "");
  viewer.Show(workbook, "");
  ASSERT_EQ(started.size(), 2U);
  EXPECT_NE(started[0][2], started[1][2]);
  const auto allowed =
      std::filesystem::status(std::filesystem::path(started[0][2]).parent_path()).permissions();
  EXPECT_EQ(allowed, std::filesystem::perms::owner_all);
}

TEST_F(DesktopViewerTest, AWorkbookThatCannotBeWrittenLeavesNothing) {
  installed = {"soffice"};
  EXPECT_EQ(ErrorOf([&] { viewer.Show(Workbook(), ""); }).number, platform::kApplicationDefined);
  EXPECT_THAT(Left(), IsEmpty());
  EXPECT_THAT(started, IsEmpty());
  DesktopViewer nowhere([](const auto&) { return true; }, messages, folder.File("none"));
  EXPECT_EQ(ErrorOf([&] { nowhere.Show(workbook, ""); }).number, platform::kApplicationDefined);
}

TEST_F(DesktopViewerTest, WhatWasShownIsSweptUpADayLater) {
  installed = {"soffice"};
  viewer.Show(workbook, "");
  viewer.Show(workbook, "");
  Age(started[0][2], std::chrono::hours(25));
  Age(started[1][2], std::chrono::hours(23));
  StartAgain();
  EXPECT_FALSE(std::filesystem::exists(started[0][2]));
  EXPECT_TRUE(std::filesystem::exists(started[1][2]));
  EXPECT_THAT(Left(), SizeIs(1));
}

TEST_F(DesktopViewerTest, WhatAProgramHasLockedStays) {
  installed = {"soffice"};
  viewer.Show(workbook, "");
  WriteBytes(std::filesystem::path(started[0][2]).parent_path() / ".~lock.Weather.xlsx#", "");
  Age(started[0][2], std::chrono::hours(48));
  StartAgain();
  EXPECT_TRUE(std::filesystem::exists(started[0][2]));
}

TEST_F(DesktopViewerTest, NobodySavesIntoWhatIsSweptUp) {
  installed = {"xdg-open"};
  viewer.Show(workbook, "");
  EXPECT_EQ(std::filesystem::status(started[0][1]).permissions(),
            std::filesystem::perms::owner_read);
}

TEST_F(DesktopViewerTest, WhatAMessageHasNamedIsNotSweptUp) {
  viewer.Show(workbook, "");
  const std::string file = messages.texts[0].substr(messages.texts[0].find(folder.path()));
  Age(file, std::chrono::hours(1'000));
  StartAgain();
  EXPECT_TRUE(std::filesystem::exists(file));
}

TEST_F(DesktopViewerTest, WhatIsNotOursIsLeftAlone) {
  std::filesystem::create_directory(folder.File("other"));
  std::filesystem::create_directory_symlink("other", Users());
  std::filesystem::create_directory(folder.File("other/shown-1"));
  WriteBytes(folder.File("other/shown-1/Weather.xlsx"), "");
  Age(folder.File("other/shown-1/Weather.xlsx"), std::chrono::hours(48));
  StartAgain();
  EXPECT_TRUE(std::filesystem::exists(folder.File("other/shown-1/Weather.xlsx")));
  installed = {"soffice"};
  viewer.Show(workbook, "");
  EXPECT_TRUE(started[0][2].starts_with(folder.File("nimbrel-")));
  EXPECT_EQ(ReadWorkbook(started[0][2]).sheets()[0]->name(), "Spring");
}

TEST(WorkbookSaver, TheWorkbookGoesToTheUsersFile) {
  const TemporaryFolder folder;
  Workbook workbook;
  workbook.AddSheet("Spring");
  WorkbookSaver(folder.File("mine.xlsx")).Show(workbook, "");
  EXPECT_EQ(ReadWorkbook(folder.File("mine.xlsx")).sheets()[0]->name(), "Spring");
}

}  // namespace
}  // namespace nimbrel::spreadsheet
