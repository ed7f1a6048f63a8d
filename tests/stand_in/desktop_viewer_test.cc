// How workbooks are shown in Windows: by a program or by the file itself.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/win/win_api.h"
#include "spreadsheet/workbook_reader.h"
#include "spreadsheet/workbook_viewer.h"
#include "spreadsheet/xlsx_writer.h"
#include "tests/support/workbooks/test_files.h"

namespace nimbrel::spreadsheet {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

class NotedMessages : public platform::MessageBox {
 public:
  void Show(const std::string& text, const std::string& /*title*/) override {
    texts.push_back(text);
  }
  std::vector<std::string> texts;
};

class DesktopViewerTest : public testing::Test {
 protected:
  DesktopViewerTest() { workbook.AddSheet("Spring"); }

  DesktopViewer MakeViewer() {
    return DesktopViewer(
        [this](const std::vector<std::string>& command) {
          started.push_back(command);
          return command.front() != "soffice" && opens_files;
        },
        messages, folder.path(), {});
  }

  /// Gives a folder a time that lies so far back.
  static void AgeFolder(const std::filesystem::path& folder, unsigned hours) {
    constexpr std::uint64_t kTicksPerHour = 36'000'000'000;
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    ULARGE_INTEGER time;
    time.LowPart = now.dwLowDateTime;
    time.HighPart = now.dwHighDateTime;
    time.QuadPart -= kTicksPerHour * hours;
    const FILETIME then{time.LowPart, time.HighPart};
    const HANDLE handle =
        CreateFileW(folder.c_str(), FILE_WRITE_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE,
                    nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    EXPECT_NE(SetFileTime(handle, nullptr, nullptr, &then), FALSE);
    CloseHandle(handle);
  }

  bool opens_files = true;
  std::vector<std::vector<std::string>> started;
  NotedMessages messages;
  TemporaryFolder folder;
  Workbook workbook;
};

TEST_F(DesktopViewerTest, WithoutLibreOfficeTheFileItselfIsStarted) {
  MakeViewer().Show(workbook, "");
  ASSERT_EQ(started.size(), 2U);
  EXPECT_THAT(started[0], ElementsAre("soffice", "-n", EndsWith("\\Weather.xlsx")));
  EXPECT_THAT(started[1], ElementsAre(started[0][2]));
  EXPECT_EQ(ReadWorkbook(started[1][0]).sheets()[0]->name(), "Spring");
  EXPECT_THAT(messages.texts, IsEmpty());
}

TEST_F(DesktopViewerTest, WithoutAnyProgramAMessageSaysWhereTheFileIs) {
  opens_files = false;
  MakeViewer().Show(workbook, "");
  ASSERT_EQ(messages.texts.size(), 1U);
  const std::string file = messages.texts[0].substr(messages.texts[0].find(folder.path()));
  EXPECT_EQ(ReadWorkbook(file).sheets()[0]->name(), "Spring");
}

TEST_F(DesktopViewerTest, WhatWasShownCannotBeWrittenToAndIsSweptUpADayLater) {
  MakeViewer().Show(workbook, "");
  MakeViewer().Show(workbook, "");
  const std::filesystem::path old = started[1][0];
  const std::filesystem::path fresh = started[3][0];
  ASSERT_NE(old, fresh);
  EXPECT_EQ(std::filesystem::status(old).permissions() & std::filesystem::perms::owner_write,
            std::filesystem::perms::none);
  AgeFolder(old.parent_path(), 25);
  MakeViewer();
  EXPECT_FALSE(std::filesystem::exists(old.parent_path()));
  EXPECT_TRUE(std::filesystem::exists(fresh));
}

TEST(WriteXlsx, TakesThePlaceOfAFileAndLeavesNothingBesideIt) {
  const TemporaryFolder folder;
  Workbook workbook;
  workbook.AddSheet("Spring");
  WriteBytes(folder.File("w.xlsx"), "before");
  WriteXlsx(workbook, folder.File("w.xlsx"));
  EXPECT_EQ(ReadWorkbook(folder.File("w.xlsx")).sheets()[0]->name(), "Spring");
  EXPECT_THAT(folder.Names(), ElementsAre("w.xlsx"));
}

}  // namespace
}  // namespace nimbrel::spreadsheet
