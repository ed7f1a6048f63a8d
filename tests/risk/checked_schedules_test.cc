// Every schedule of a run, after the add-in has moved what it moves, passes the checker that knows
// nothing of how schedules are made.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "engine/risk/run.h"
#include "tests/risk/weather_plan.h"
#include "tests/support/schedule/random_plan.h"

namespace nimbrel::engine {
namespace {

/// Puts weather of all kinds on the plan's tasks, and marks some of the short ones as lifts.
void AddWeather(WeatherPlan& plan, std::uint64_t seed) {
  test::Dice dice(seed);
  std::vector<std::string> tasks;
  for (const Task& task : plan.plan.tasks()) {
    tasks.push_back(task.id);
  }
  // Random plans begin on 1 March, which is day 57.
  plan.AddWeatherCalendar("SEA");
  plan.AddWeatherCalendar("ICE");
  plan.AddPeriod("SEA", 50, 80, {2, 4, 9});
  plan.AddPeriod("SEA", 81, 110, {1, 2, 8}, 50);
  plan.AddWindow("ICE", {60, 63, 66}, {70, 72, 75});
  for (const std::string& task : tasks) {
    if (dice.OneIn(2)) {
      plan.Assign(task, "SEA");
    }
    if (dice.OneIn(3)) {
      plan.Assign(task, "ICE");
    }
    if (dice.OneIn(4) && plan.plan.FindTask(task)->remaining_minutes <= 1440) {
      plan.MarkNoSplit(task);
    }
  }
}

class RandomPlansWithWeather : public ::testing::TestWithParam<std::uint64_t> {};

TEST_P(RandomPlansWithWeather, HaveOnlySchedulesThatPassTheChecker) {
  const std::uint64_t seed = GetParam();
  WeatherPlan plan;
  plan.plan = test::RandomPlan(seed, {.tasks = 10,
                                      .with_constraints = seed % 2 == 0,
                                      .with_progress = seed % 3 == 0,
                                      .with_risk_calendars = false});
  AddWeather(plan, seed);
  EXPECT_NO_THROW(engine::Run(plan.plan, {.iterations = 3}, WithAddIn()));
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomPlansWithWeather, ::testing::Range<std::uint64_t>(1, 10));

TEST(PlanWithLifts, HasOnlySchedulesThatPassTheChecker) {
  WeatherPlan plan;
  plan.AddTask("A", {3, 5, 9});
  plan.AddTask("LIFT1", {1, 2, 3}, {"A"});
  plan.AddTask("B", {2, 2, 8}, {"A"});
  plan.AddTask("LIFT2", {1, 1, 2}, {"LIFT1", "B"});
  plan.AddTask("END", 4, {"LIFT2"});
  plan.AddWeatherCalendar("SEA");
  plan.AddPeriod("SEA", 1, 30, {6, 9, 12});
  for (const char* task : {"A", "LIFT1", "LIFT2", "END"}) {
    plan.Assign(task, "SEA");
  }
  plan.MarkNoSplit("LIFT1");
  plan.MarkNoSplit("LIFT2");
  EXPECT_NO_THROW(engine::Run(plan.plan, {.iterations = 20}, WithAddIn()));
}

TEST(PlanWithLifts, DoesNotPassTheCheckerWithAScheduleOfOtherDurations) {
  WeatherPlan plan;
  plan.AddTask("A", {3, 5, 9});
  RunWiring wiring = WithAddIn();
  const auto checked = wiring.attach;
  Listener meddler;
  wiring.attach = [&](Host& host) {
    // Changes a duration behind the scheduling's back, before the checker looks.
    meddler.after_iteration = [&host](const Listener::PlanRef&, std::int32_t) {
      host.scheduler().SetRemaining(0, 1);
    };
    auto first = WithListener(meddler).attach(host);
    return std::make_shared<std::pair<std::shared_ptr<void>, std::shared_ptr<void>>>(
        std::move(first), checked(host));
  };
  try {
    engine::Run(plan.plan, {.iterations = 1}, wiring);
    FAIL() << "the checker let the schedule pass";
  } catch (const std::runtime_error& error) {
    EXPECT_THAT(error.what(),
                testing::HasSubstr("task A does not have its work between its dates"));
  }
}

}  // namespace
}  // namespace nimbrel::engine
