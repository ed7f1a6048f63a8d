// What only the program itself can show: signals, terminals and pipes.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/cli/cli_fixture.h"

namespace nimbrel::cli {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

/// The program, started with its standard output and error on descriptors.
class Child {
 public:
  /// `hangup` is what a hangup does to it: SIG_DFL, or SIG_IGN as under nohup.
  Child(const std::vector<std::string>& arguments, int out, int err,
        sighandler_t hangup = SIG_DFL) {
    pid_ = ::fork();
    if (pid_ == 0) {
      ::signal(SIGHUP, hangup);
      ::dup2(out, STDOUT_FILENO);
      ::dup2(err, STDERR_FILENO);
      std::vector<char*> argv = {const_cast<char*>(NIMBREL_PROGRAM)};
      for (const std::string& argument : arguments) {
        argv.push_back(const_cast<char*>(argument.c_str()));
      }
      argv.push_back(nullptr);
      ::execv(NIMBREL_PROGRAM, argv.data());
      ::_exit(99);
    }
  }
  ~Child() {
    if (pid_ > 0) {
      ::kill(pid_, SIGKILL);
      ::waitpid(pid_, nullptr, 0);
    }
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  void Interrupt(int signal = SIGINT) const { ::kill(pid_, signal); }

  /// Waits until the program has started processes of its own.
  void AwaitWorkers() const {
    const std::string id = std::to_string(pid_);
    const std::string list = "/proc/" + id + "/task/" + id + "/children";
    for (int tries = 0; tries < 60'000; ++tries) {
      std::string child;
      if (std::ifstream(list) >> child) {
        return;
      }
      ::usleep(1'000);
    }
    FAIL() << "no worker is started";
  }

  /// The exit code, or 1000 and the number of the signal that ended it.
  int Wait() {
    int status = 0;
    ::waitpid(pid_, &status, 0);
    pid_ = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
  }

 private:
  pid_t pid_ = 0;
};

class ProcessTest : public CliTest {
 protected:
  int OpenToWrite(const std::string& name) {
    return ::open(Path(name).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  }
};

TEST_F(ProcessTest, AnInterruptedRunTellsWhatWasDoneWritesNoFileAndExitsWith130) {
  const std::string plan = WeatherPlan();
  const auto before = Files();
  int terminal = -1;
  int face = -1;
  ASSERT_EQ(::openpty(&terminal, &face, nullptr, nullptr, nullptr), 0);
  const int out = ::memfd_create("out", MFD_CLOEXEC);
  Child child({"run", plan, "--iterations", "1000000", "--workers", "2", "--json", Path("r.json"),
               "--samples", Path("s.csv")},
              out, face);
  ::close(face);

  // Progress on the terminal says that iterations are being done.
  std::string drawn;
  char buffer[4096];
  while (drawn.find(" of 1,000,000") == std::string::npos) {
    const ssize_t count = ::read(terminal, buffer, sizeof buffer);
    ASSERT_GT(count, 0) << drawn;
    drawn.append(buffer, static_cast<std::size_t>(count));
  }
  child.Interrupt();
  for (ssize_t count = 0; (count = ::read(terminal, buffer, sizeof buffer)) > 0;) {
    drawn.append(buffer, static_cast<std::size_t>(count));
  }
  EXPECT_THAT(drawn, HasSubstr("nimbrel: stopped: no results were written"));
  EXPECT_EQ(child.Wait(), 130);

  std::string text(1 << 16, '\0');
  text.resize(static_cast<std::size_t>(::pread(out, text.data(), text.size(), 0)));
  EXPECT_THAT(text, ::testing::ContainsRegex("Stopped: [0-9,]+ of 1,000,000 iterations were done"));
  EXPECT_EQ(Files(), before);
  ::close(out);
  ::close(terminal);
}

TEST_F(ProcessTest, AnInterruptedRunThatWasToWriteDataSaysThatItHasNotWithoutATerminalToo) {
  const std::string plan = WeatherPlan();
  const int out = ::memfd_create("out", MFD_CLOEXEC);
  const int err = ::memfd_create("err", MFD_CLOEXEC);
  Child child({"run", plan, "--iterations", "1000000", "--workers", "2", "--quiet", "--json", "-"},
              out, err);
  child.AwaitWorkers();
  child.Interrupt();
  EXPECT_EQ(child.Wait(), 130);
  EXPECT_EQ(::lseek(out, 0, SEEK_END), 0);
  std::string text(1 << 16, '\0');
  text.resize(static_cast<std::size_t>(::pread(err, text.data(), text.size(), 0)));
  EXPECT_THAT(text, ::testing::EndsWith(
                        "nimbrel: stopped: no results were written, and no file has changed\n"));
  ::close(out);
  ::close(err);
}

/// A process that is told to stop while it is writing: when that is, its part of a file tells.
class LargeExportTest : public ProcessTest {
 protected:
  /// A plan of many calendars, which take a while to write.
  std::string LargePlan() {
    std::string calendars;
    for (int i = 0; i < 300; ++i) {
      std::string periods;
      for (int k = 0; k < 60; ++k) {
        periods += std::string(k == 0 ? "" : ",") +
                   R"({ "description": "Week", "start": "2027-03-01", "finish": "2027-03-14",
                        "probability": 0.5, "min": 2, "likely": 2, "max": 2 })";
      }
      calendars += std::string(i == 0 ? "" : ",") + R"({ "calendar": "SITE )" + std::to_string(i) +
                   R"(", "periods": [)" + periods + "] }";
    }
    const std::string plan = ChainPlan();
    Output({"weather", "set", plan, Write("w.json", R"({ "events": [)" + calendars + "] }")});
    return plan;
  }
  /// Waits until a workbook is being written beside the old one.
  void AwaitPart() const {
    for (int tries = 0; tries < 60'000; ++tries) {
      for (const auto& entry : std::filesystem::directory_iterator(Path(""))) {
        if (entry.path().filename().string().starts_with("out.xlsx.part")) {
          return;
        }
      }
      ::usleep(1'000);
    }
    FAIL() << "no workbook is written";
  }
};

class StoppedExportTest : public LargeExportTest, public ::testing::WithParamInterface<int> {};

TEST_P(StoppedExportTest, LeavesTheOldWorkbookAndNothingElse) {
  const std::string plan = LargePlan();
  Write("out.xlsx", "old");
  Write("out.txt", "");
  Write("err.txt", "");
  const auto before = Files();
  const int out = OpenToWrite("out.txt");
  const int err = OpenToWrite("err.txt");
  Child child({"weather", "export", plan, "-o", Path("out.xlsx")}, out, err);
  ::close(out);
  ::close(err);
  AwaitPart();
  child.Interrupt(GetParam());
  EXPECT_EQ(child.Wait(), 130);
  EXPECT_EQ(Read(Path("err.txt")), "nimbrel: " + Path("out.xlsx") + ": stopped, and not written\n");
  Write("err.txt", "");
  EXPECT_EQ(Files(), before);
}

INSTANTIATE_TEST_SUITE_P(Signals, StoppedExportTest, ::testing::Values(SIGINT, SIGTERM, SIGHUP),
                         [](const auto& info) {
                           return info.param == SIGINT    ? "Interrupt"
                                  : info.param == SIGTERM ? "Terminate"
                                                          : "HangUp";
                         });

TEST_F(LargeExportTest, GoesOnAfterAHangupThatIsSwitchedOff) {
  const std::string plan = LargePlan();
  const int out = OpenToWrite("out.txt");
  const int err = OpenToWrite("err.txt");
  Child child({"weather", "export", plan, "-o", Path("out.xlsx")}, out, err, SIG_IGN);
  ::close(out);
  ::close(err);
  AwaitPart();
  child.Interrupt(SIGHUP);
  EXPECT_EQ(child.Wait(), 0);
  EXPECT_EQ(Read(Path("out.txt")), Path("out.xlsx") + ": 300 weather calendars\n");
}

TEST_F(ProcessTest, AClosedPipeIsFileTroubleAndNotASignal) {
  const std::string plan = WeatherPlan();
  int ends[2];
  ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
  ::close(ends[0]);
  const int err = OpenToWrite("err.txt");
  Child child({"info", plan}, ends[1], err);
  EXPECT_EQ(child.Wait(), 3);
  EXPECT_EQ(Read(Path("err.txt")), "nimbrel: standard output: cannot be written: Broken pipe\n");
  ::close(ends[1]);
  ::close(err);
}

TEST_F(ProcessTest, AFullDeviceIsFileTrouble) {
  const std::string plan = WeatherPlan();
  const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
  const int err = OpenToWrite("err.txt");
  Child child({"schedule", plan, "--json"}, full, err);
  EXPECT_EQ(child.Wait(), 3);
  EXPECT_EQ(Read(Path("err.txt")),
            "nimbrel: standard output: cannot be written: No space left on device\n");
  ::close(full);
  ::close(err);
}

TEST_F(ProcessTest, WithoutATerminalThereIsNoProgress) {
  const std::string plan = WeatherPlan();
  const int out = OpenToWrite("out.txt");
  const int err = OpenToWrite("err.txt");
  Child child({"run", plan}, out, err);
  EXPECT_EQ(child.Wait(), 0);
  EXPECT_EQ(Read(Path("err.txt")), "");
  EXPECT_THAT(Read(Path("out.txt")), HasSubstr("1,000 iterations"));
  EXPECT_THAT(Read(Path("out.txt")), Not(HasSubstr("\x1b")));
  ::close(out);
  ::close(err);
}

}  // namespace
}  // namespace nimbrel::cli
