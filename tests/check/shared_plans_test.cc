// The plans that are kept beside the checkout against the dates that came with them. Where they are
// not there, the tests are skipped.

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "engine/check/plan_health.h"
#include "engine/check/stored_dates.h"
#include "engine/formats/plan_reader.h"
#include "engine/schedule/scheduler.h"

namespace nimbrel::engine {
namespace {

using ::testing::IsEmpty;

struct CheckedPlan {
  std::string name;
  StoredDatesReport dates;
  std::vector<HealthFinding> health;
  std::vector<std::string> differing;
};

CheckedPlan CheckPlan(const std::filesystem::path& path, const std::string& project) {
  const Plan plan = ReadPlanFile(path, {.project = project, .time_unit = TimeUnit::kDays}).plan;
  Scheduler scheduler(plan, [](const Task&) { return true; });
  scheduler.ScheduleForward();
  scheduler.ScheduleBackward();
  CheckedPlan checked{path.filename().string() + " " + project,
                      CompareStoredDates(plan, scheduler),
                      InspectPlan(plan, scheduler),
                      {}};
  for (const DifferingActivity& activity : checked.dates.differing) {
    checked.differing.push_back(checked.name + ": " + plan.FindTask(activity.task)->id);
  }
  return checked;
}

/// All projects of all plan files in a folder and below it.
std::vector<CheckedPlan> CheckPlans(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    const std::filesystem::path& path = entry.path();
    const bool is_plan = path.extension() == ".xer" || path.extension() == ".xml";
    if (is_plan && path.filename() != "invalid-8.4.xer") {
      files.push_back(path);
    }
  }
  std::sort(files.begin(), files.end());
  std::vector<CheckedPlan> plans;
  for (const std::filesystem::path& path : files) {
    for (const std::string& project : ListProjects(path)) {
      plans.push_back(CheckPlan(path, project));
    }
  }
  return plans;
}

/// A row a plan: activities, equal ones, then equal and compared of each field, then what health
/// finds.
void Print(const std::vector<CheckedPlan>& plans) {
  std::cout << fmt::format("{:60} {:>5} {:>5}  {}\n", "plan", "open", "equal",
                           "ES, EF, LS, LF, TF equal/compared; health");
  for (const CheckedPlan& plan : plans) {
    std::string row =
        fmt::format("{:60} {:>5} {:>5} ", plan.name, plan.dates.activities, plan.dates.equal);
    for (const FieldAgreement& field : plan.dates.fields) {
      row += fmt::format(" {}/{}", field.equal, field.compared);
    }
    for (const HealthFinding& finding : plan.health) {
      row += finding.items.empty() ? "" : fmt::format(", {} {}", finding.key, finding.items.size());
    }
    std::cout << row << '\n';
  }
}

TEST(SharedPlansCheck, DatesThatCameWithPlansAreOurs) {
  const auto folder =
      std::filesystem::path(NIMBREL_SOURCE_DIR) / ".." / "shared" / "data" / "plans";
  if (!std::filesystem::is_directory(folder)) {
    GTEST_SKIP() << "no plans at " << folder;
  }
  const std::vector<CheckedPlan> plans = CheckPlans(folder);
  Print(plans);
  std::int32_t compared = 0;
  for (const CheckedPlan& plan : plans) {
    EXPECT_THAT(plan.differing, IsEmpty());
    compared += plan.dates.activities;
  }
  EXPECT_GT(compared, 100);
}

TEST(SharedPlansCheck, TheExampleIsSoundButForItsLastMilestone) {
  const std::vector<CheckedPlan> plans =
      CheckPlans(std::filesystem::path(NIMBREL_SOURCE_DIR) / "examples");
  Print(plans);
  ASSERT_EQ(plans.size(), 1u);
  for (const HealthFinding& finding : plans[0].health) {
    const std::size_t count = finding.items.size();
    const bool may_be = finding.key == "leads" || finding.key == "long_lags";
    EXPECT_TRUE(may_be || count == (finding.key == "no_successor" ? 1u : 0u)) << finding.key;
  }
}

}  // namespace
}  // namespace nimbrel::engine
