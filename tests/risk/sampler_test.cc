// Which tasks are sampled, and what they get.

#include "engine/risk/sampler.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <set>
#include <string>

#include "platform/runtime_error.h"
#include "tests/risk/weather_plan.h"

namespace nimbrel::engine {
namespace {

const ThreePoint kRange = {2, 4, 9, Shape::kTriangular};

struct Drawn {
  double units = 0;
  bool skipped = false;
  friend bool operator==(const Drawn&, const Drawn&) = default;
};

Drawn Draw(const Plan& plan, const std::string& id, std::int32_t iteration,
           std::uint64_t seed = 1) {
  Sampler sampler(plan, {.seed = seed});
  IterationSamples samples;
  sampler.Prepare(samples);
  sampler.Sample(iteration, samples);
  const auto position = static_cast<std::size_t>(plan.IndexOf(plan.FindTask(id)->uid));
  return {samples.units[position], samples.skipped[position] != 0};
}

std::set<double> DrawMany(const Plan& plan, const std::string& id) {
  std::set<double> drawn;
  for (std::int32_t iteration = 1; iteration <= 50; ++iteration) {
    drawn.insert(Draw(plan, id, iteration).units);
  }
  return drawn;
}

TEST(Sampler, ATaskWithARangeGetsAnotherSampleInEachIteration) {
  WeatherPlan plan;
  plan.AddTask("A", kRange);
  const std::set<double> drawn = DrawMany(plan.plan, "A");
  EXPECT_EQ(drawn.size(), 50U);
  EXPECT_GE(*drawn.begin(), 2);
  EXPECT_LE(*drawn.rbegin(), 9);
}

TEST(Sampler, ASampleIsTheInverseOfTheNumberThatBelongsToTheTask) {
  // More tasks than are drawn together, of all shapes in turn.
  WeatherPlan plan;
  for (int i = 0; i < 200; ++i) {
    plan.AddTask("T" + std::to_string(i),
                 {1.0 + i % 7, 4.0 + i % 5, 9.0 + i % 11, static_cast<Shape>(i % 4)});
  }
  Sampler sampler(plan.plan, {.seed = 9});
  IterationSamples samples;
  sampler.Prepare(samples);
  sampler.Sample(3, samples);
  PertTables tables;
  for (std::size_t i = 0; i < 200; ++i) {
    const Task& task = plan.plan.tasks()[i];
    EXPECT_EQ(
        samples.units[i],
        Distribution(*task.range, tables).Sample(UniformAt(9, 3, task.stream, Purpose::kDuration)));
  }
}

TEST(Sampler, ATaskWithoutARangeTakesWhatRemains) {
  WeatherPlan plan(TimeUnit::kHours);
  plan.AddTask("A", 12);
  EXPECT_EQ(DrawMany(plan.plan, "A"), std::set<double>{12});
}

TEST(Sampler, AFinishedTaskIsNotSampled) {
  WeatherPlan plan;
  Task& task = plan.AddTask("A", kRange);
  task.remaining_minutes = 0;
  task.actual_start = plan.plan.start;
  task.actual_finish = {WeatherPlan::Serial(3), 1020};
  task.risk = {.probability = 0};
  EXPECT_EQ(Draw(plan.plan, "A", 1), (Drawn{0, false}));
}

TEST(Sampler, AStartedTaskSamplesWhatRemainsAndHasHappened) {
  WeatherPlan plan;
  Task& task = plan.AddTask("A", kRange);
  task.actual_start = plan.plan.start;
  task.risk = {.probability = 0};
  EXPECT_GT(DrawMany(plan.plan, "A").size(), 40U);
  EXPECT_FALSE(Draw(plan.plan, "A", 1).skipped);
}

TEST(Sampler, MilestonesSummariesAndLevelsOfEffortAreNotSampled) {
  for (const TaskKind kind : {TaskKind::kStartMilestone, TaskKind::kFinishMilestone,
                              TaskKind::kSummary, TaskKind::kLevelOfEffort}) {
    WeatherPlan plan;
    Task& task = plan.AddTask("A", kRange);
    task.kind = kind;
    task.remaining_minutes = 480;
    EXPECT_EQ(DrawMany(plan.plan, "A"), std::set<double>{1});
  }
}

TEST(Sampler, ATaskThatDoesNotOccurIsSkippedWithASampleOfZero) {
  WeatherPlan plan;
  plan.AddTask("FIXED", 5).risk = {.probability = 30};
  plan.AddTask("RANGE", kRange).risk = {.probability = 30};
  for (const std::string id : {"FIXED", "RANGE"}) {
    constexpr int kDraws = 2000;
    int occurred = 0;
    for (std::int32_t iteration = 1; iteration <= kDraws; ++iteration) {
      const Drawn drawn = Draw(plan.plan, id, iteration);
      EXPECT_EQ(drawn.units == 0, drawn.skipped);
      occurred += drawn.skipped ? 0 : 1;
    }
    // 4.5 standard deviations of the binomial distribution.
    EXPECT_NEAR(occurred, 0.3 * kDraws, 4.5 * std::sqrt(0.3 * 0.7 * kDraws));
  }
}

TEST(Sampler, ChancesOfZeroAndAHundredPercentAreCertain) {
  WeatherPlan plan;
  plan.AddTask("NEVER", 5).risk = {.probability = 0};
  plan.AddTask("LESS", 5).risk = {.probability = -10};
  plan.AddTask("ALWAYS", 5).risk = {.probability = 100};
  for (std::int32_t iteration = 1; iteration <= 200; ++iteration) {
    EXPECT_EQ(Draw(plan.plan, "NEVER", iteration), (Drawn{0, true}));
    EXPECT_EQ(Draw(plan.plan, "LESS", iteration), (Drawn{0, true}));
    EXPECT_EQ(Draw(plan.plan, "ALWAYS", iteration), (Drawn{5, false}));
  }
}

TEST(Sampler, ATasksChanceTakesNothingFromItsDuration) {
  WeatherPlan certain;
  certain.AddTask("A", kRange);
  WeatherPlan uncertain = certain;
  uncertain.plan.FindTask("A")->risk = {.probability = 50};
  for (std::int32_t iteration = 1; iteration <= 50; ++iteration) {
    const Drawn drawn = Draw(uncertain.plan, "A", iteration);
    if (!drawn.skipped) {
      EXPECT_EQ(drawn, Draw(certain.plan, "A", iteration));
    }
  }
}

TEST(Sampler, AnotherTaskChangesNoSample) {
  WeatherPlan one;
  one.AddTask("A", kRange);
  WeatherPlan two;
  two.AddTask("BEFORE", kRange);
  two.AddTask("A", kRange);
  two.AddTask("BEHIND", kRange);
  for (std::int32_t iteration = 1; iteration <= 50; ++iteration) {
    EXPECT_EQ(Draw(one.plan, "A", iteration), Draw(two.plan, "A", iteration));
    EXPECT_NE(Draw(two.plan, "BEFORE", iteration), Draw(two.plan, "A", iteration));
  }
}

TEST(Sampler, ARenamedTaskKeepsItsSamples) {
  WeatherPlan plan;
  plan.AddTask("A", kRange);
  const Drawn before = Draw(plan.plan, "A", 7);
  plan.plan.RenameTask(plan.UidOf("A"), "B");
  EXPECT_EQ(Draw(plan.plan, "B", 7), before);
}

TEST(Sampler, AnotherSeedGivesOtherSamples) {
  WeatherPlan plan;
  plan.AddTask("A", kRange);
  EXPECT_NE(Draw(plan.plan, "A", 1, 1), Draw(plan.plan, "A", 1, 2));
}

TEST(Sampler, WeatherTasksAreSampledLikeAnyOther) {
  WeatherPlan plan;
  plan.AddWeatherCalendar("SEA");
  const std::string id = plan.AddPeriod("SEA", 1, 20, kRange, 50).id;
  int skipped = 0;
  for (std::int32_t iteration = 1; iteration <= 200; ++iteration) {
    const Drawn drawn = Draw(plan.plan, id, iteration);
    skipped += drawn.skipped ? 1 : 0;
    EXPECT_TRUE(drawn.skipped ? drawn.units == 0 : drawn.units >= 2 && drawn.units <= 9);
  }
  EXPECT_NEAR(skipped, 100, 4.5 * std::sqrt(50.0));
}

TEST(Sampler, NamesTheTaskWhoseRangeIsNoNumber) {
  WeatherPlan plan;
  plan.AddTask("A", {1, std::numeric_limits<double>::quiet_NaN(), 3, Shape::kPert});
  try {
    const Sampler sampler(plan.plan);
    FAIL();
  } catch (const platform::RuntimeError& error) {
    EXPECT_EQ(error.number(), platform::kOverflow);
    EXPECT_EQ(error.text(), "Task A: A duration is no finite number.");
  }
}

}  // namespace
}  // namespace nimbrel::engine
