// The platform's file dialogs on the desktop that shows the forms.

#include "dialog/desktop_file_dialog.h"

#include <gtest/gtest.h>

#include "tests/toolkit/support.h"

namespace nimbrel::dialog {
namespace {

class FileDialogTest : public ::testing::Test {
 protected:
  FileDialogTest() {
    record_.lpstrTitle = "Import Weather Calendar";
    record_.lpstrInitialDir = "/opt/modules";
    record_.lpstrFilter = std::string("xls (*.xls;*.xlsx)\0*.xls;*.xlsx\0", 32);
    record_.lpstrFile = "gales.xlsx" + std::string(244, ' ');
  }

  toolkit::TestDesktop desktop_;
  DesktopFileDialog dialog_{desktop_};
  platform::FileDialogRecord record_;
};

TEST_F(FileDialogTest, AsksForWhatTheRecordSays) {
  desktop_.file = "/home/me/gales.xlsx";
  EXPECT_EQ(dialog_.GetOpenFileName(record_), 1);
  EXPECT_EQ(record_.lpstrFile, "/home/me/gales.xlsx");
  ASSERT_EQ(desktop_.files_asked.size(), 1u);
  const toolkit::FileRequest& request = desktop_.files_asked.front();
  EXPECT_EQ(request.title, "Import Weather Calendar");
  EXPECT_EQ(request.folder, "/opt/modules");
  EXPECT_EQ(request.filter_name, "xls (*.xls;*.xlsx)");
  EXPECT_EQ(request.pattern, "*.xls;*.xlsx");
  EXPECT_EQ(request.file_name, "gales.xlsx");
  EXPECT_FALSE(request.save);
}

TEST_F(FileDialogTest, SavesUnderAName) {
  desktop_.file = "/home/me/new.xlsx";
  EXPECT_EQ(dialog_.GetSaveFileName(record_), 1);
  EXPECT_TRUE(desktop_.files_asked.front().save);
}

TEST_F(FileDialogTest, ACancelledDialogGivesZeroAndLeavesTheRecord) {
  const platform::FileDialogRecord before = record_;
  EXPECT_EQ(dialog_.GetOpenFileName(record_), 0);
  EXPECT_EQ(record_, before);
}

TEST_F(FileDialogTest, ARecordWithoutAFilterAsksForAnyFile) {
  record_.lpstrFilter.clear();
  record_.lpstrFile.clear();
  dialog_.GetOpenFileName(record_);
  EXPECT_EQ(desktop_.files_asked.front().filter_name, "");
  EXPECT_EQ(desktop_.files_asked.front().pattern, "");
  EXPECT_EQ(desktop_.files_asked.front().file_name, "");
}

}  // namespace
}  // namespace nimbrel::dialog
