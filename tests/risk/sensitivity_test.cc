// What the durations of tasks have to do with finishes.

#include "engine/risk/sensitivity.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "engine/risk/run.h"
#include "engine/risk/run_document_maker.h"
#include "tests/risk/weather_plan.h"

namespace nimbrel::engine {
namespace {

using ::testing::ElementsAre;

const TaskResult& ResultOf(const WeatherPlan& plan, const RunResult& run, const std::string& id) {
  return *std::find_if(run.tasks.begin(), run.tasks.end(),
                       [&](const TaskResult& result) { return result.task == plan.UidOf(id); });
}

TEST(Grades, AreTheShareBelowAndHalfOfTheEqualOnes) {
  const std::vector<Instant> samples = {{5, 0}, {3, 0}, {5, 0}, {9, 0}};
  EXPECT_THAT(GradesOf(samples), ElementsAre(0.5, 0.125, 0.5, 0.875));
}

/// Spearman's rank correlation of two columns, with equal values sharing their ranks.
double Spearman(const std::vector<Instant>& a, const std::vector<Instant>& b) {
  const std::vector<double> x = GradesOf(a);
  const std::vector<double> y = GradesOf(b);
  double xy = 0;
  double xx = 0;
  double yy = 0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    xy += (x[i] - 0.5) * (y[i] - 0.5);
    xx += (x[i] - 0.5) * (x[i] - 0.5);
    yy += (y[i] - 0.5) * (y[i] - 0.5);
  }
  return xy / std::sqrt(xx * yy);
}

TEST(Sensitivity, OfTheOnlyTaskIsOne) {
  WeatherPlan plan(TimeUnit::kDays, 24);
  plan.AddTask("A", {20, 50, 90});
  plan.AddTask("FIXED", 3, {"A"});
  const RunResult run = engine::Run(plan.plan, {.iterations = 500}, WithoutAddIn());
  EXPECT_NEAR(ResultOf(plan, run, "A").sensitivity, 1.0, 0.01);
  EXPECT_EQ(ResultOf(plan, run, "FIXED").sensitivity, 0.0);
}

TEST(Sensitivity, OfTwoEqualTasksInAChainIsThatOfTheirDistributions) {
  // X and Y uniform on [0, 1]: Spearman's correlation of X with X + Y is
  // 12 E[X F(X + Y)] - 3, F being the distribution of the sum. By numerical integration:
  double expectation = 0;
  constexpr int kSteps = 2000;
  for (int i = 0; i < kSteps; ++i) {
    for (int j = 0; j < kSteps; ++j) {
      const double x = (i + 0.5) / kSteps;
      const double s = x + (j + 0.5) / kSteps;
      const double cdf = s < 1 ? s * s / 2 : 1 - (2 - s) * (2 - s) / 2;
      expectation += x * cdf / (static_cast<double>(kSteps) * kSteps);
    }
  }
  const double expected = 12 * expectation - 3;
  WeatherPlan plan(TimeUnit::kDays, 24);
  plan.AddTask("A", {20, 30, 90, Shape::kUniform});
  plan.AddTask("B", {20, 30, 90, Shape::kUniform}, {"A"});
  constexpr std::int32_t kIterations = 20000;
  const RunResult run = engine::Run(plan.plan, {.iterations = kIterations}, WithoutAddIn());
  const double tolerance = 4.5 * 1.06 * (1 - expected * expected) / std::sqrt(kIterations);
  EXPECT_NEAR(ResultOf(plan, run, "A").sensitivity, expected, tolerance);
  EXPECT_NEAR(ResultOf(plan, run, "B").sensitivity, expected, tolerance);
}

TEST(Sensitivity, AgreesWithRankingTheSamples) {
  // All tasks start together, so that a task's finish has the ranks of its duration.
  WeatherPlan plan(TimeUnit::kDays, 24);
  plan.AddTask("A", {20, 50, 90});
  plan.AddTask("B", {30, 50, 80, Shape::kPert});
  plan.AddTask("C", {5, 6, 70, Shape::kUniform});
  plan.plan.FindTask("C")->risk = {.probability = 60};
  RunOptions options{.iterations = 4000};
  options.asked = {plan.UidOf("A"), plan.UidOf("B"), plan.UidOf("C")};
  const RunResult run = engine::Run(plan.plan, options, WithoutAddIn());
  for (std::size_t i = 0; i < 3; ++i) {
    // Grades by the distribution and ranks among the samples differ by about 1 / sqrt(4 N), and
    // what that does to the correlation is of the same size.
    EXPECT_NEAR(run.tasks[i].sensitivity, Spearman(run.samples[i].finish, run.finish_samples),
                4.5 / std::sqrt(4.0 * 4000));
  }
}

TEST(Sensitivity, OfATargetIsThatOfItsOwnPredecessors) {
  WeatherPlan plan(TimeUnit::kDays, 24);
  plan.AddTask("A", {20, 50, 90});
  plan.AddTask("B", {120, 150, 190});
  plan.AddTask("M", 0, {"A"}).kind = TaskKind::kFinishMilestone;
  RunOptions options{.iterations = 600};
  options.targets = {plan.UidOf("M")};
  const RunResult run = engine::Run(plan.plan, options, WithoutAddIn());
  ASSERT_EQ(run.targets.size(), 1U);
  EXPECT_EQ(run.targets[0].task, plan.UidOf("M"));
  EXPECT_EQ(run.targets[0].drives[0].criticality, 1);
  EXPECT_NEAR(run.targets[0].drives[0].sensitivity, 1, 0.01);
  EXPECT_EQ(run.targets[0].drives[1].criticality, 0);
  EXPECT_NEAR(run.targets[0].drives[1].sensitivity, 0, 4.5 / std::sqrt(600));
  EXPECT_EQ(run.tasks[0].criticality, 0);
  EXPECT_EQ(run.tasks[1].criticality, 1);

  const RunDocument document = MakeRunDocument(plan.plan, {.run = run});
  ASSERT_EQ(document.sensitivities.size(), 2U);
  EXPECT_EQ(document.sensitivities[0].id, "");
  EXPECT_EQ(document.sensitivities[0].tasks[0].id, "B");
  EXPECT_EQ(document.sensitivities[1].id, "M");
  EXPECT_EQ(document.sensitivities[1].tasks[0].id, "A");
}

TEST(Drives, FollowTheirFormulas) {
  // B drives alone; its time from start to finish is the plan's.
  WeatherPlan plan(TimeUnit::kDays, 24);
  plan.AddTask("B", {120, 150, 190});
  const RunResult run = engine::Run(plan.plan, {.iterations = 300}, WithoutAddIn());
  const auto document = MakeRunDocument(plan.plan, {.run = run});
  const TaskDrive& drive = document.sensitivities[0].tasks[0];
  EXPECT_EQ(drive.criticality, 1);
  EXPECT_EQ(drive.cruciality, std::abs(run.tasks[0].sensitivity));
  EXPECT_NEAR(run.tasks[0].elapsed_sd_days, run.finish.sd_days, 1e-9);
  EXPECT_NEAR(drive.ssi, 1, 1e-9);
}

}  // namespace
}  // namespace nimbrel::engine
