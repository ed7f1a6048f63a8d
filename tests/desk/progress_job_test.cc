#include "progress/progress_job.h"

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <string>

#include "platform/posix/ini_settings_store.h"
#include "tests/posix/scratch_folder.h"

namespace nimbrel::progress {
namespace {

/// A process that waits to be ended.
class Bystander {
 public:
  Bystander() : number_(::fork()) {
    if (number_ == 0) {
      ::pause();
      ::_exit(0);
    }
  }
  ~Bystander() {
    Kill();
    Bury();
  }
  Bystander(const Bystander&) = delete;
  Bystander& operator=(const Bystander&) = delete;

  /// Ends it, and returns when it has ended; it is not yet waited for.
  void Kill() const {
    if (number_ > 0) {
      ::kill(number_, SIGKILL);
      siginfo_t info;
      ::waitid(P_PID, static_cast<id_t>(number_), &info, WEXITED | WNOWAIT);
    }
  }
  void Bury() {
    if (number_ > 0) {
      ::waitpid(number_, nullptr, 0);
      number_ = 0;
    }
  }
  std::int32_t number() const { return number_; }

 private:
  pid_t number_;
};

TEST(WatchedThreadTest, OneThatRunsHasNotEnded) {
  EXPECT_FALSE(WatchedThread(::getpid()).HasEnded());
  EXPECT_FALSE(WatchedThread(::gettid()).HasEnded());
}

TEST(WatchedThreadTest, OneThatEndsMeanwhileHasEnded) {
  Bystander bystander;
  const WatchedThread watched(bystander.number());
  EXPECT_FALSE(watched.HasEnded());
  bystander.Kill();
  EXPECT_TRUE(watched.HasEnded()) << "though nobody has waited for it";
  bystander.Bury();
  EXPECT_TRUE(watched.HasEnded());
}

TEST(WatchedThreadTest, OneThatHadEndedBeforeHasEnded) {
  Bystander bystander;
  const std::int32_t number = bystander.number();
  bystander.Kill();
  bystander.Bury();
  EXPECT_TRUE(WatchedThread(number).HasEnded());
}

TEST(WatchedThreadTest, ANumberOfNoThreadIsNeverKnownToHaveEnded) {
  EXPECT_FALSE(WatchedThread(0).HasEnded());
  EXPECT_FALSE(WatchedThread(-7).HasEnded());
}

class ProgressJobTest : public platform::ScratchTest {
 protected:
  void Set(const std::string& key, const std::string& value) {
    settings_.Save("CorvaneProgress", "Options", key, value);
  }

  platform::IniSettingsStore settings_{Path("settings.ini")};
};

TEST_F(ProgressJobTest, RunsUntilItIsEnded) {
  Set("Running", "1");
  const ProgressJob job(settings_);
  EXPECT_TRUE(job.Runs());
  Set("Running", "0");
  EXPECT_FALSE(job.Runs());
}

TEST_F(ProgressJobTest, WithoutAnySettingThereIsNone) {
  const ProgressJob job(settings_);
  EXPECT_FALSE(job.Runs());
  EXPECT_EQ(job.Label(), "");
  EXPECT_EQ(job.Window(), 0);
}

TEST_F(ProgressJobTest, ShowsTheLabelOfTheMoment) {
  Set("Label", "one");
  const ProgressJob job(settings_);
  EXPECT_EQ(job.Label(), "one");
  Set("Label", "two");
  EXPECT_EQ(job.Label(), "two");
}

TEST_F(ProgressJobTest, KnowsTheHostsWindow) {
  Set("WndHandle", "-2147483648");
  EXPECT_EQ(ProgressJob(settings_).Window(), INT32_MIN);
  Set("WndHandle", "12 and more");
  EXPECT_EQ(ProgressJob(settings_).Window(), 0);
}

TEST_F(ProgressJobTest, NeverOutlivesTheThreadThatRunsIt) {
  Bystander bystander;
  Set("Running", "1");
  Set("ParentHwnd", std::to_string(bystander.number()));
  const ProgressJob job(settings_);
  EXPECT_TRUE(job.Runs());
  bystander.Kill();
  EXPECT_FALSE(job.Runs()) << "though Running still says 1";
}

}  // namespace
}  // namespace nimbrel::progress
