#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <string>
#include <thread>
#include <vector>

#include "platform/posix/ini_settings_store.h"
#include "tests/posix/scratch_folder.h"

#ifdef NIMBREL_PROGRESS

namespace nimbrel::progress {
namespace {

using namespace std::chrono_literals;

/// The tool as it is started: its settings in the test's folder, its windows on no screen.
class ProgressProgram : public platform::ScratchTest {
 protected:
  ~ProgressProgram() override {
    if (tool_ > 0) {
      ::kill(tool_, SIGKILL);
      ::waitpid(tool_, nullptr, 0);
    }
  }

  void Set(const std::string& key, const std::string& value) {
    settings_.Save("CorvaneProgress", "Options", key, value);
  }
  void SetRunning(pid_t owner) {
    Set("Running", "1");
    Set("Label", "Exporting Weather Calendar to Excel...");
    Set("ParentHwnd", std::to_string(owner));
    Set("WndHandle", "0");
  }
  /// Starts it with the variables of `environment` and the folder of the settings alone.
  void Start(std::vector<std::string> environment = {"QT_QPA_PLATFORM=offscreen"}) {
    environment.push_back("XDG_CONFIG_HOME=" + folder_.string());
    tool_ = ::fork();
    ASSERT_GE(tool_, 0);
    if (tool_ == 0) {
      const int out = ::open(Path("said").c_str(), O_CREAT | O_WRONLY, 0600);
      ::dup2(out, STDOUT_FILENO);
      ::dup2(out, STDERR_FILENO);
      std::vector<char*> variables;
      for (std::string& variable : environment) {
        variables.push_back(variable.data());
      }
      variables.push_back(nullptr);
      ::execle(NIMBREL_PROGRESS, NIMBREL_PROGRESS, "0", nullptr, variables.data());
      ::_exit(99);
    }
  }
  bool HasEnded() {
    if (tool_ > 0 && ::waitpid(tool_, &status_, WNOHANG) == tool_) {
      tool_ = 0;
    }
    return tool_ == 0;
  }
  /// Waits for its end; the code that it ended with, -1 if it goes on.
  int AwaitEnd() {
    for (int i = 0; i < 6000 && !HasEnded(); ++i) {
      std::this_thread::sleep_for(10ms);
    }
    return HasEnded() && WIFEXITED(status_) ? WEXITSTATUS(status_) : -1;
  }

  platform::IniSettingsStore settings_{Path("nimbrel/settings.ini")};
  pid_t tool_ = 0;
  int status_ = 0;
};

TEST_F(ProgressProgram, StaysForTheJobAndEndsWithIt) {
  SetRunning(::getpid());
  Start();
  std::this_thread::sleep_for(1500ms);
  EXPECT_FALSE(HasEnded()) << "while the job runs";
  Set("Running", "0");
  EXPECT_EQ(AwaitEnd(), 0);
}

TEST_F(ProgressProgram, EndsWithTheProcessThatStartedIt) {
  const pid_t owner = ::fork();
  ASSERT_GE(owner, 0);
  if (owner == 0) {
    ::pause();
    ::_exit(0);
  }
  SetRunning(owner);
  Start();
  std::this_thread::sleep_for(1500ms);
  EXPECT_FALSE(HasEnded());
  ::kill(owner, SIGKILL);
  ::waitpid(owner, nullptr, 0);
  EXPECT_EQ(AwaitEnd(), 0);
}

TEST_F(ProgressProgram, HasNothingToShowWithoutAJob) {
  Start();
  EXPECT_EQ(AwaitEnd(), 0);
}

TEST_F(ProgressProgram, EndsQuietlyWithoutADisplay) {
  SetRunning(::getpid());
  Start({});
  EXPECT_EQ(AwaitEnd(), 0);
  EXPECT_EQ(Read(Path("said")), "");
}

TEST_F(ProgressProgram, EndsQuietlyWhereTheDisplayCannotBeReached) {
  SetRunning(::getpid());
  Start({"DISPLAY=:9999"});
  EXPECT_EQ(AwaitEnd(), 0);
  EXPECT_EQ(Read(Path("said")), "");
}

}  // namespace
}  // namespace nimbrel::progress

#endif
