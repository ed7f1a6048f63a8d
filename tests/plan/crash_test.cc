// A save that is cut off, at any point, leaves the old plan or the new one.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <random>
#include <string>

#include "engine/plan/plan_store.h"
#include "tests/plan/store_fixture.h"

namespace nimbrel::engine {
namespace {

namespace fs = std::filesystem;

class PlanStoreCrash : public StoreTest {
 protected:
  /// Runs `operation` in a child process; gives its id. The child ends with 0, or with 1 if there
  /// was a PlanFileError.
  template <class Operation>
  static pid_t InChild(const Operation& operation) {
    const pid_t child = fork();
    if (child == 0) {
      int code = 0;
      try {
        operation();
      } catch (const PlanFileError&) {
        code = 1;
      }
      _exit(code);
    }
    return child;
  }

  static int StatusOf(pid_t child) {
    int status = 0;
    waitpid(child, &status, 0);
    return status;
  }

  /// No file may become longer than so many bytes. `action` is what the signal then does.
  static void LimitFiles(std::uint64_t bytes, void (*action)(int)) {
    const rlimit no_core{0, 0};
    setrlimit(RLIMIT_CORE, &no_core);
    signal(SIGXFSZ, action);
    const rlimit limit{bytes, bytes};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
};

TEST_F(PlanStoreCrash, AKillAtAnyMomentLeavesTheOldPlanOrTheNew) {
  const std::string path = Path("plan.nplan");
  const Plan plans[] = {MakePlan(300, "Even"), MakePlan(400, "Odd")};
  SavePlan(plans[0], path);
  std::mt19937 random(20270301);
  for (int i = 0; i < 40; ++i) {
    SCOPED_TRACE(i);
    const pid_t child = InChild([&] {
      for (int number = 1;; ++number) {  // until the kill
        SavePlan(plans[number % 2], path);
      }
    });
    usleep(static_cast<useconds_t>(random() % 30000));
    kill(child, SIGKILL);
    StatusOf(child);
    const Plan read = LoadPlan(path);
    EXPECT_TRUE(read == plans[0] || read == plans[1]);
  }
}

TEST_F(PlanStoreCrash, AKillAtAnyMomentLeavesANewFileWholeOrNotThere) {
  const std::string path = Path("plan.nplan");
  const Plan plan = MakePlan(300);
  std::mt19937 random(20270302);
  for (int i = 0; i < 40; ++i) {
    SCOPED_TRACE(i);
    fs::remove(path);
    const pid_t child = InChild([&] { SavePlan(plan, path); });
    usleep(static_cast<useconds_t>(random() % 30000));
    kill(child, SIGKILL);
    StatusOf(child);
    if (fs::exists(path)) {
      EXPECT_EQ(LoadPlan(path), plan);
    }
  }
}

TEST_F(PlanStoreCrash, DyingAtAnyLengthOfTheFileLeavesTheOldPlan) {
  const std::string path = Path("plan.nplan");
  const Plan before = MakePlan(40, "Before");
  const Plan after = MakePlan(160, "After");
  SavePlan(after, path);
  const std::uint64_t full = fs::file_size(path);
  fs::remove(path);
  int died_while_writing = 0;  // the file itself, so that it has to be restored
  for (std::uint64_t limit = 0; limit < full; limit += 12288) {
    SCOPED_TRACE(limit);
    fs::remove(path);
    SavePlan(before, path);
    const int status = StatusOf(InChild([&] {
      LimitFiles(limit, SIG_DFL);  // a write beyond the limit kills
      SavePlan(after, path);
    }));
    ASSERT_TRUE(WIFSIGNALED(status));
    const std::string journal = Read(path + "-journal");
    // The first byte is zero until the journal is complete, and only then is the file touched.
    const bool is_complete = !journal.empty() && journal.front() != 0;
    died_while_writing += is_complete ? 1 : 0;
    EXPECT_EQ(LoadPlan(path), before);
    EXPECT_FALSE(is_complete && fs::exists(path + "-journal"));
    SavePlan(after, path);
    EXPECT_EQ(LoadPlan(path), after);
    EXPECT_EQ(Files().size(), 1u);
  }
  EXPECT_GT(died_while_writing, 0);
}

TEST_F(PlanStoreCrash, AFullDiskLeavesTheOldPlanAndSaysSo) {
  const std::string path = Path("plan.nplan");
  const Plan before = MakePlan(40, "Before");
  const Plan after = MakePlan(160, "After");
  SavePlan(after, path);
  const std::uint64_t full = fs::file_size(path);
  fs::remove(path);
  for (std::uint64_t limit = 0; limit < full; limit += 12288) {
    SCOPED_TRACE(limit);
    fs::remove(path);
    SavePlan(before, path);
    const auto files = Files();
    const int status = StatusOf(InChild([&] {
      LimitFiles(limit, SIG_IGN);  // a write beyond the limit fails
      try {
        SavePlan(after, path);
      } catch (const PlanFileError& error) {
        if (error.kind() != PlanFileError::Kind::kFile ||
            std::string(error.what()).find(": cannot be written: ") == std::string::npos) {
          _exit(2);
        }
        throw;
      }
    }));
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 1);
    EXPECT_EQ(LoadPlan(path), before);
    EXPECT_EQ(Files().size(), files.size());
  }
}

TEST_F(PlanStoreCrash, AFullDiskLeavesNothingOfANewFile) {
  const Plan plan = MakePlan(40);
  for (std::uint64_t limit = 0; limit < 60000; limit += 12000) {
    SCOPED_TRACE(limit);
    const int status = StatusOf(InChild([&] {
      LimitFiles(limit, SIG_IGN);
      SavePlan(plan, Path("plan.nplan"));
    }));
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 1);
    EXPECT_TRUE(Files().empty());
  }
}

}  // namespace
}  // namespace nimbrel::engine
