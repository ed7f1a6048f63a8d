// Files as they are where there is no Windows: links, permissions, descriptors.

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <filesystem>

#include "tests/spreadsheet/written_workbook.h"

namespace nimbrel::spreadsheet {
namespace {

TEST(WriteXlsx, ALinkIsFollowedAndStays) {
  const TemporaryFolder folder;
  WriteBytes(folder.File("old.xlsx"), "before");
  std::filesystem::create_symlink("old.xlsx", folder.File("link.xlsx"));
  std::filesystem::create_symlink("link.xlsx", folder.File("far.xlsx"));
  WriteXlsx(OneTextBook("x"), folder.File("far.xlsx"));
  EXPECT_TRUE(std::filesystem::is_symlink(folder.File("far.xlsx")));
  EXPECT_TRUE(std::filesystem::is_symlink(folder.File("link.xlsx")));
  EXPECT_FALSE(std::filesystem::is_symlink(folder.File("old.xlsx")));
  EXPECT_TRUE(ReadBytes(folder.File("old.xlsx")).starts_with("PK"));
  // Also to a file that is not there yet.
  std::filesystem::create_directory(folder.File("sub"));
  std::filesystem::create_symlink("sub/new.xlsx", folder.File("new.xlsx"));
  WriteXlsx(OneTextBook("x"), folder.File("new.xlsx"));
  EXPECT_TRUE(std::filesystem::is_symlink(folder.File("new.xlsx")));
  EXPECT_TRUE(ReadBytes(folder.File("sub/new.xlsx")).starts_with("PK"));
}

TEST(WriteXlsx, TheNewFileHasThePermissionsOfTheOldOne) {
  using std::filesystem::perms;
  const TemporaryFolder folder;
  WriteBytes(folder.File("w.xlsx"), "before");
  const auto own = perms::owner_read | perms::owner_write;
  std::filesystem::permissions(folder.File("w.xlsx"), own);
  WriteXlsx(OneTextBook("x"), folder.File("w.xlsx"));
  EXPECT_EQ(std::filesystem::status(folder.File("w.xlsx")).permissions(), own);
}

// The library needs files of its own while it puts the package together.
TEST(WriteXlsx, AFailureOfTheLibraryIsToldOnce) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the sanitizers need files of their own to look at objects";
#endif
  const TemporaryFolder folder;
  const Workbook workbook = OneTextBook("x");
  ::testing::internal::CaptureStderr();
  const int free_descriptor = ::dup(STDERR_FILENO);
  ::close(free_descriptor);
  rlimit before{};
  ::getrlimit(RLIMIT_NOFILE, &before);
  // One for the part of the file, one for standard error as it was, one for the package.
  const rlimit few{static_cast<rlim_t>(free_descriptor) + 3, before.rlim_max};
  ::setrlimit(RLIMIT_NOFILE, &few);
  const Raised raised = ErrorOf([&] { WriteXlsx(workbook, folder.File("w.xlsx")); });
  ::setrlimit(RLIMIT_NOFILE, &before);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(raised.number, platform::kApplicationDefined);
  EXPECT_TRUE(raised.text.starts_with(folder.File("w.xlsx") + ": cannot be written: the file: "))
      << raised.text;
  EXPECT_EQ(folder.Names(), std::vector<std::string>{});
}

}  // namespace
}  // namespace nimbrel::spreadsheet
