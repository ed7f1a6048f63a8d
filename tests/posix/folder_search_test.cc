#include "platform/posix/folder_search.h"

#include <filesystem>
#include <string>

#include "tests/posix/scratch_folder.h"

namespace nimbrel::platform {
namespace {

class FolderSearchTest : public ScratchTest {
 protected:
  std::string Find(const std::string& pattern) {
    return FolderSearch().FindFirst(Path(pattern).string());
  }
};

TEST_F(FolderSearchTest, AFileIsFoundByItsName) {
  Write("a book.xls");
  EXPECT_EQ(Find("a book.xls"), "a book.xls");
  EXPECT_EQ(Find("a book.XLS"), "") << "names have their case";
  EXPECT_EQ(Find("a book"), "");
  EXPECT_EQ(Find("no folder/a book.xls"), "");
}

TEST_F(FolderSearchTest, APatternFindsTheFirstByName) {
  Write("c.xls");
  Write("b.xlsx");
  Write("a.txt");
  EXPECT_EQ(Find("*.xls*"), "b.xlsx");
  EXPECT_EQ(Find("*.xls"), "c.xls");
  EXPECT_EQ(Find("?.txt"), "a.txt");
  EXPECT_EQ(Find("*"), "a.txt");
  EXPECT_EQ(Find("*.doc"), "");
  EXPECT_EQ(Find("??.txt"), "");
}

TEST_F(FolderSearchTest, StarsTakeAnyTextAndGoBackForMore) {
  Write("aab.aab.c");
  EXPECT_EQ(Find("*aab.c"), "aab.aab.c");
  EXPECT_EQ(Find("a*b*c"), "aab.aab.c");
  EXPECT_EQ(Find("**.c**"), "aab.aab.c");
  EXPECT_EQ(Find("a*b*d"), "");
}

TEST_F(FolderSearchTest, AQuestionMarkIsOneCharacterOfAnyLength) {
  Write("ø.xls");
  EXPECT_EQ(Find("?.xls"), "ø.xls");
  EXPECT_EQ(Find("??.xls"), "");
}

TEST_F(FolderSearchTest, WildcardsInANameAreThatNameFirst) {
  Write("a.xls");
  Write("b?.xls");
  EXPECT_EQ(Find("b?.xls"), "b?.xls");
  Write("[x].xls");
  EXPECT_EQ(Find("[x].xls"), "[x].xls");
  EXPECT_EQ(Find("[a].xls"), "") << "brackets are no wildcards";
}

TEST_F(FolderSearchTest, FoldersAreNoFiles) {
  Write("folder.xls/inside.txt");
  EXPECT_EQ(Find("folder.xls"), "");
  EXPECT_EQ(Find("*.xls"), "");
  EXPECT_EQ(Find("folder.xls/"), "");
}

TEST_F(FolderSearchTest, HiddenFilesWantTheirDot) {
  Write(".hidden.xls");
  EXPECT_EQ(Find("*.xls"), "");
  EXPECT_EQ(Find(".h*.xls"), ".hidden.xls");
  EXPECT_EQ(Find(".hidden.xls"), ".hidden.xls");
}

TEST_F(FolderSearchTest, ALinkIsWhatItLeadsTo) {
  Write("real.xls");
  std::filesystem::create_symlink(Path("real.xls"), Path("good.lnk"));
  std::filesystem::create_symlink(Path("nothing"), Path("dangling.lnk"));
  EXPECT_EQ(Find("good.lnk"), "good.lnk");
  EXPECT_EQ(Find("dangling.lnk"), "");
}

TEST_F(FolderSearchTest, APatternWithoutAFolderLooksIntoTheWorkingFolder) {
  Write("here.xls");
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder_);
  EXPECT_EQ(FolderSearch().FindFirst("h*.xls"), "here.xls");
  std::filesystem::current_path(before);
}

}  // namespace
}  // namespace nimbrel::platform
