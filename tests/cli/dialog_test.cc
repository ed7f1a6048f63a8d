#include <sys/stat.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/cli/cli_fixture.h"

namespace nimbrel::cli {
namespace {

class DialogCommandTest : public CliTest {
 protected:
  /// A shell script in the place of the desktop program.
  void WriteDesk(const std::string& commands) const {
    const std::string desk = Write("nimbrel-desk", "#!/bin/sh\n" + commands + "\n");
    ::chmod(desk.c_str(), 0700);
  }
  /// Runs a copy of the program beside the script: programs look in their own folder.
  int RunProgramCopy(const std::string& arguments) const {
    std::filesystem::copy_file(NIMBREL_PROGRAM, Path("nimbrel"),
                               std::filesystem::copy_options::overwrite_existing);
    const std::string line = "'" + Path("nimbrel") + "' " + arguments + " >'" + Path("out") +
                             "' 2>'" + Path("err") + "'";
    const int status = std::system(line.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
};

TEST_F(DialogCommandTest, TheDesktopProgramGetsThePlan) {
  WriteDesk("for word; do echo \"[$word]\"; done");
  EXPECT_EQ(RunProgramCopy("dialog 'my plan.nplan'"), 0);
  EXPECT_EQ(Read(Path("out")), "[--]\n[my plan.nplan]\n");
}

TEST_F(DialogCommandTest, ItsExitCodeAndItsWordsAreOurs) {
  WriteDesk("echo 'nimbrel: no display: none' >&2; exit 3");
  EXPECT_EQ(RunProgramCopy("dialog plan.nplan"), 3);
  EXPECT_EQ(Read(Path("err")), "nimbrel: no display: none\n");
}

TEST_F(DialogCommandTest, WithoutTheDesktopProgramItSaysWhatIsMissing) {
  EXPECT_EQ(RunProgramCopy("dialog plan.nplan"), 3);
  const std::string said = Read(Path("err"));
  EXPECT_TRUE(said.starts_with("nimbrel: the dialog needs the program nimbrel-desk")) << said;
  EXPECT_EQ(said.find('\n'), said.size() - 1) << "one line";
}

TEST_F(DialogCommandTest, ADesktopProgramThatCannotBeRunIsTold) {
  Write("nimbrel-desk", "no program");
  EXPECT_EQ(RunProgramCopy("dialog plan.nplan"), 3);
  EXPECT_NE(Read(Path("err")).find("nimbrel-desk: cannot be run: "), std::string::npos);
}

TEST_F(DialogCommandTest, ThePlanMustBeNamed) {
  ExpectFailure({"dialog"}, 2, "PLAN");
}

TEST_F(DialogCommandTest, ANameThatBeginsWithADashIsAPlanTooInItsPlace) {
  WriteDesk("echo \"$2\"");
  EXPECT_EQ(RunProgramCopy("dialog -- -plan.nplan"), 0);
  EXPECT_EQ(Read(Path("out")), "-plan.nplan\n");
}

}  // namespace
}  // namespace nimbrel::cli
