#include "nimbrel/output_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <sstream>
#include <string>

#include "nimbrel/command_error.h"
#include "tests/cli/cli_fixture.h"

namespace nimbrel::cli {
namespace {

using ::testing::ElementsAre;
using ::testing::Pair;

class OutputFile : public CliTest {
 protected:
  std::ostringstream out_, err_;
  Console console_{out_, err_, {}};
};

TEST_F(OutputFile, AppearsAtCommitAndNotBefore) {
  Write("a.txt", "old");
  PendingOutput pending(console_, Path("a.txt"), "new");
  EXPECT_EQ(Read(Path("a.txt")), "old");
  pending.Commit();
  EXPECT_THAT(Files(), ElementsAre(Pair("a.txt", "new")));
}

TEST_F(OutputFile, LeavesNoTraceWithoutCommit) {
  Write("a.txt", "old");
  { const PendingOutput pending(console_, Path("a.txt"), "new"); }
  { const PendingOutput pending(console_, Path("b.txt"), "new"); }
  EXPECT_THAT(Files(), ElementsAre(Pair("a.txt", "old")));
}

TEST_F(OutputFile, KeepsThePermissionsOfTheFileItReplaces) {
  ASSERT_EQ(::chmod(Write("a.txt", "old").c_str(), 0640), 0);
  PendingOutput(console_, Path("a.txt"), "new").Commit();
  struct stat info {};
  ASSERT_EQ(::stat(Path("a.txt").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777U, 0640U);
}

TEST_F(OutputFile, FollowsALinkToItsFile) {
  Write("a.txt", "old");
  std::filesystem::create_symlink("a.txt", Path("link"));
  PendingOutput(console_, Path("link"), "new").Commit();
  EXPECT_TRUE(std::filesystem::is_symlink(Path("link")));
  EXPECT_EQ(Read(Path("a.txt")), "new");
}

TEST_F(OutputFile, WritesToADeviceWithoutReplacingIt) {
  PendingOutput(console_, "/dev/null", "text").Commit();
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST_F(OutputFile, ADashIsStandardOutput) {
  PendingOutput pending(console_, "-", "text");
  EXPECT_EQ(out_.str(), "");
  pending.Commit();
  EXPECT_EQ(out_.str(), "text");
  EXPECT_TRUE(Files().empty());
}

TEST_F(OutputFile, AFolderThatIsNotThereIsFileTrouble) {
  try {
    const PendingOutput pending(console_, Path("none/a.txt"), "text");
    FAIL() << "expected an error";
  } catch (const CommandError& error) {
    EXPECT_EQ(error.code(), ExitCode::kFileTrouble);
    EXPECT_EQ(std::string(error.what()),
              Path("none/a.txt") + ": cannot be written: No such file or directory");
  }
}

TEST_F(OutputFile, AFolderCannotBeReplaced) {
  EXPECT_THROW(PendingOutput(console_, Path("."), "text"), CommandError);
}

TEST_F(OutputFile, AStreamThatTakesNothingIsFileTrouble) {
  out_.setstate(std::ios::badbit);
  EXPECT_THROW(FlushOutput(console_), CommandError);
}

}  // namespace
}  // namespace nimbrel::cli
