#include <string>

#include "tests/desktop/tool_box_test.h"

namespace nimbrel {
namespace {

using modToolBox::ShowFileDialog;
using Calls = std::vector<std::string>;

const std::string kNul(1, '\0');

class FileDialogTest : public ToolBoxTest {
 protected:
  std::string Open(const std::string& file_name = "") {
    return ShowFileDialog("Import", "/data", "xls (*.xls;*.xlsx)", "*.xls;*.xlsx", file_name,
                          false);
  }
  std::string Save(const std::string& pattern) {
    return ShowFileDialog("Export", "/data", "books", pattern, "", true);
  }
};

TEST_F(FileDialogTest, TheRecordIsFilledFieldByField) {
  Open("book.xls");
  platform::FileDialogRecord expected;
  expected.lStructSize = 76;
  expected.hwndOwner = 0x1234;
  expected.hInstance = 0x400000;
  expected.lpstrFilter = "xls (*.xls;*.xlsx)" + kNul + "*.xls;*.xlsx" + kNul;
  expected.lpstrFile = "book.xls" + std::string(246, ' ');
  expected.nMaxFile = 255;
  expected.lpstrFileTitle = std::string(254, ' ');
  expected.nMaxFileTitle = 255;
  expected.lpstrInitialDir = "/data";
  expected.lpstrTitle = "Import";
  ASSERT_EQ(desktop_.records.size(), 1U);
  EXPECT_TRUE(desktop_.records[0] == expected) << "and all other fields are zero";
  EXPECT_EQ(desktop_.calls, (Calls{"GetWindowLong|4660|-6", "GetOpenFileName"}));
}

TEST_F(FileDialogTest, WithoutADescriptionAllFilesAreOffered) {
  ShowFileDialog("", "", "", "*.xls", "", false);
  EXPECT_EQ(desktop_.records[0].lpstrFilter, "All Files (*.*)" + kNul + "*.*" + kNul);
}

TEST_F(FileDialogTest, SaveModeHasADialogOfItsOwnAndTheSameRecord) {
  Save("*.xls");
  EXPECT_EQ(desktop_.calls.back(), "GetSaveFileName");
  EXPECT_EQ(desktop_.records[0].lpstrTitle, "Export");
  EXPECT_EQ(desktop_.records[0].Flags, 0);
}

TEST_F(FileDialogTest, ANameOf254CharactersFillsTheBuffer) {
  Open(std::string(254, 'n'));
  EXPECT_EQ(desktop_.records[0].lpstrFile, std::string(254, 'n'));
}

TEST_F(FileDialogTest, ALongerNameIsCutBeforeTheDialogOpens) {
  Open(std::string(254, 'n') + "tail");
  EXPECT_EQ(desktop_.records[0].lpstrFile, std::string(254, 'n'));
}

TEST_F(FileDialogTest, CharactersAreCountedAndNotBytes) {
  std::string name;
  for (int i = 0; i < 300; ++i) {
    name += "ø";
  }
  Open(name);
  EXPECT_EQ(desktop_.records[0].lpstrFile, name.substr(0, 508));
  Open("ø");
  EXPECT_EQ(desktop_.records[1].lpstrFile, "ø" + std::string(253, ' '));
}

TEST_F(FileDialogTest, NoPathComesOutOfADialogThatWasCancelled) {
  desktop_.dialog_result = 0;
  desktop_.chosen = "left over";
  EXPECT_EQ(Open(), "");
}

TEST_F(FileDialogTest, ThePathIsTheBufferWithoutNulsAndOuterSpaces) {
  desktop_.chosen = "/data/my book.xls" + kNul + std::string(200, ' ') + kNul;
  EXPECT_EQ(Open(), "/data/my book.xls");
  desktop_.chosen = "  " + kNul + "  a" + kNul + "b" + kNul + " ";
  EXPECT_EQ(Open(), "ab");
  desktop_.chosen = std::string(254, ' ');
  EXPECT_EQ(Open(), "");
}

TEST_F(FileDialogTest, OnlySpacesAreTrimmed) {
  desktop_.chosen = " \ta\t ";
  EXPECT_EQ(Open(), "\ta\t");
}

TEST_F(FileDialogTest, OpeningNeverAppendsAnExtension) {
  desktop_.chosen = "/data/book";
  EXPECT_EQ(Open(), "/data/book");
}

TEST_F(FileDialogTest, SavingAppendsTheExtensionThatIsMissing) {
  desktop_.chosen = "/data/book";
  EXPECT_EQ(Save("*.xls"), "/data/book.xls");
  desktop_.chosen = "/data/book.xls";
  EXPECT_EQ(Save("*.xls"), "/data/book.xls");
  desktop_.chosen = "xls";
  EXPECT_EQ(Save("*.xls"), "xls.xls") << "shorter than the extension";
}

TEST_F(FileDialogTest, TheExtensionIsComparedWithItsCase) {
  desktop_.chosen = "/data/book.XLS";
  EXPECT_EQ(Save("*.xls"), "/data/book.XLS.xls");
}

TEST_F(FileDialogTest, AListOfPatternsMakesOneOddExtension) {
  desktop_.chosen = "/data/book.xlsx";
  EXPECT_EQ(Save("*.xls;*.xlsx"), "/data/book.xlsx.xls;xlsx");
  desktop_.chosen = "/data/book";
  EXPECT_EQ(Save(""), "/data/book.");
}

TEST_F(FileDialogTest, ACancelledSaveYieldsTheExtensionAlone) {
  desktop_.dialog_result = 0;
  EXPECT_EQ(Save("*.xls"), ".xls");
}

TEST_F(FileDialogTest, AWindowIsAskedForItsInstanceByIndex) {
  EXPECT_EQ(modToolBox::GetWindowInstance(77), 0x400000);
  EXPECT_EQ(desktop_.calls, (Calls{"GetWindowLong|77|-6"}));
}

TEST_F(FileDialogTest, AWindowIsAskedForItsThread) {
  desktop_.thread = -5;
  EXPECT_EQ(modToolBox::GetWindowThreadProcessId(77), -5);
  EXPECT_EQ(desktop_.calls, (Calls{"GetWindowThread|77"}));
}

}  // namespace
}  // namespace nimbrel
