#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "engine/formats/plan_reader.h"
#include "engine/schedule/scheduler.h"
#include "tests/support/schedule/plan_calendars.h"
#include "tests/support/schedule/schedule_check.h"

// Compares our dates with those that another tool computed for the same small projects. The data is
// not part of this project; where it is not there, the tests are skipped.
namespace nimbrel::test {
namespace {

using engine::Instant;
using engine::Plan;
using engine::Scheduler;
using engine::Task;

std::filesystem::path CasesFolder() {
  return std::filesystem::path(NIMBREL_SOURCE_DIR) / ".." / "shared" / "data" / "plans" /
         "xer-cases";
}

/// One activity of a case, as the tool that wrote the file had computed it.
struct Expected {
  std::string id;
  std::string early_start, early_finish, late_start, late_finish;
  std::string total_float_days, free_float_days;
};

std::vector<Expected> ReadExpected(const std::filesystem::path& path) {
  std::ifstream file(path);
  std::string line;
  std::getline(file, line);
  std::vector<Expected> rows;
  while (std::getline(file, line)) {
    std::erase(line, '\r');
    std::istringstream fields(line);
    Expected row;
    for (std::string* field : {&row.id, &row.early_start, &row.early_finish, &row.late_start,
                               &row.late_finish, &row.total_float_days, &row.free_float_days}) {
      std::getline(fields, *field, ',');
    }
    rows.push_back(row);
  }
  return rows;
}

class CaseComparison {
 public:
  explicit CaseComparison(const Plan& plan)
      : plan_(plan),
        scheduler_(plan, &CaseComparison::IsActivity),
        calendars_(plan, plan.StatusDate().day() - 200, 600) {
    scheduler_.ScheduleForward();
    scheduler_.ScheduleBackward();
  }

  static bool IsActivity(const Task& task) { return task.kind != engine::TaskKind::kSummary; }

  void Compare(const Expected& row) {
    const Task* task = plan_.FindTask(std::string_view(row.id));
    ASSERT_NE(task, nullptr) << row.id;
    const engine::TaskIndex index = scheduler_.IndexOf(task->uid);
    const bool is_done = row.early_finish.ends_with("A");
    ExpectDate(*task, "early start", scheduler_.early_start(index), row.early_start, is_done);
    ExpectDate(*task, "early finish", scheduler_.early_finish(index), row.early_finish, is_done);
    if (is_done) {
      return;
    }
    ExpectDate(*task, "late start", scheduler_.late_start(index), row.late_start, false);
    ExpectDate(*task, "late finish", scheduler_.late_finish(index), row.late_finish, false);
    EXPECT_EQ(scheduler_.total_float(index), std::stoi(row.total_float_days) * 480) << row.id;
    EXPECT_EQ(scheduler_.free_float(index), std::stoi(row.free_float_days) * 480) << row.id;
  }

  std::vector<std::string> Breaches() const {
    return CheckSchedule(plan_, &CaseComparison::IsActivity, scheduler_, Checked::kEarlyAndLate);
  }

 private:
  /// The same instant of work: no work lies between the two. The start of a started activity is
  /// its actual one in the file; ours is that of what remains.
  void ExpectDate(const Task& task, const char* what, Instant ours, std::string theirs,
                  bool with_actuals) {
    if (theirs.ends_with("A")) {
      if (!with_actuals) {
        return;
      }
      theirs.resize(theirs.size() - 2);
    }
    const Instant expected = engine::ParseIsoText(theirs);
    ASSERT_FALSE(expected.IsAbsent()) << theirs;
    EXPECT_EQ(calendars_.OfTask(task).WorkBetween(expected.Minutes(), ours.Minutes()), 0)
        << task.id << ", " << what << ": expected " << theirs << ", ours " << ToIsoText(ours);
  }

  const Plan& plan_;
  Scheduler scheduler_;
  PlanCalendars calendars_;
};

class SharedCase : public ::testing::TestWithParam<int> {};

TEST_P(SharedCase, HasTheDatesAndFloatsOfTheToolThatWroteIt) {
  if (!std::filesystem::exists(CasesFolder())) {
    GTEST_SKIP() << "the shared plans are not beside this checkout";
  }
  const std::string number = (GetParam() < 10 ? "0" : "") + std::to_string(GetParam());
  engine::ReadOptions options;
  options.project = "XV" + number;
  const engine::ReadResult result =
      engine::ReadPlanFile(CasesFolder() / "cases-import.xer", options);
  CaseComparison comparison(result.plan);
  int cases = 0;
  for (const auto& entry : std::filesystem::directory_iterator(CasesFolder())) {
    if (entry.path().filename().string().starts_with(number)) {
      ++cases;
      for (const Expected& row : ReadExpected(entry.path())) {
        comparison.Compare(row);
      }
    }
  }
  EXPECT_EQ(cases, 1);
  EXPECT_EQ(comparison.Breaches(), std::vector<std::string>{});
}

INSTANTIATE_TEST_SUITE_P(AllThirteen, SharedCase, ::testing::Range(1, 14));

}  // namespace
}  // namespace nimbrel::test
