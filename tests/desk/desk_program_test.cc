#include "desk/desk_program.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <new>
#include <sstream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include "tests/posix/scratch_folder.h"

namespace nimbrel::desk {
namespace {

using cli::ExitCode;

struct Outcome {
  int code = -1;
  std::string out;
  std::string err;
};

Outcome RunDesk(const std::vector<std::string>& arguments,
                const std::function<ExitCode(const std::string&)>& edit_weather = {}) {
  std::ostringstream out;
  std::ostringstream err;
  cli::Console console{out, err, {}};
  const int code = RunDeskProgram(arguments, console, edit_weather);
  return {code, out.str(), err.str()};
}

template <class Error>
Outcome RunRaising(const Error& error) {
  return RunDesk({"x.nplan"}, [&](const std::string&) -> ExitCode { throw error; });
}

TEST(DeskProgram, HandsOverThePlan) {
  std::string plan;
  const Outcome outcome = RunDesk({"my plan.nplan"}, [&](const std::string& path) {
    plan = path;
    return ExitCode::kFileTrouble;
  });
  EXPECT_EQ(plan, "my plan.nplan");
  EXPECT_EQ(outcome.code, 3);
  EXPECT_EQ(outcome.out + outcome.err, "");
}

TEST(DeskProgram, TakesAPlanThatBeginsWithADashBehindTwo) {
  std::string plan;
  RunDesk({"--", "-x"}, [&](const std::string& path) {
    plan = path;
    return ExitCode::kDone;
  });
  EXPECT_EQ(plan, "-x");
}

TEST(DeskProgram, SaysInOneLineWhatIsWrongWithTheCommandLine) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{}, {"a.nplan", "b.nplan"}, {"--what", "a.nplan"}}) {
    const Outcome outcome = RunDesk(arguments);
    EXPECT_EQ(outcome.code, 2);
    EXPECT_TRUE(outcome.err.starts_with("nimbrel: ")) << outcome.err;
    EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1) << outcome.err;
  }
}

TEST(DeskProgram, TellsItsVersionAndItsUse) {
  EXPECT_EQ(RunDesk({"--version"}).code, 0);
  EXPECT_TRUE(RunDesk({"--version"}).out.starts_with("nimbrel "));
  EXPECT_NE(RunDesk({"--help"}).out.find("PLAN"), std::string::npos);
}

TEST(DeskProgram, EachFailureIsOneLineAndACode) {
  EXPECT_EQ(RunRaising(cli::BadInput("x: bad\nplan")).err, "nimbrel: x: bad plan\n");
  EXPECT_EQ(RunRaising(cli::BadInput("")).code, 1);
  EXPECT_EQ(RunRaising(cli::FileTrouble("")).code, 3);
  EXPECT_EQ(RunRaising(std::system_error(std::make_error_code(std::errc::io_error))).code, 3);
  EXPECT_EQ(RunRaising(std::bad_alloc()).err, "nimbrel: out of memory\n");
  EXPECT_EQ(RunRaising(std::runtime_error("oh")).err, "nimbrel: internal error: oh\n");
  EXPECT_EQ(RunRaising(std::runtime_error("oh")).code, 4);
}

#ifdef NIMBREL_DESK

class DeskProgramItself : public platform::ScratchTest {};

TEST_F(DeskProgramItself, SaysThatThereIsNoDisplay) {
  for (const std::string display : {"", "DISPLAY=:9999"}) {
    const std::string line = "env -i " + display + " '" NIMBREL_DESK "' x.nplan >'" +
                             Path("out").string() + "' 2>'" + Path("err").string() + "'";
    const int status = std::system(line.c_str());
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 3);
    const std::string said = Read(Path("err"));
    EXPECT_TRUE(said.starts_with("nimbrel: no display: ")) << said;
    EXPECT_EQ(said.find('\n'), said.size() - 1) << said;
    EXPECT_EQ(Read(Path("out")), "");
  }
}

#endif

}  // namespace
}  // namespace nimbrel::desk
