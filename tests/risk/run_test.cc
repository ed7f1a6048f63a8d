// What a risk run promises whatever the plan: order, workers, stops, errors, and what it leaves.

#include "engine/risk/run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/runtime_error.h"
#include "tests/risk/weather_plan.h"

namespace nimbrel::engine {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

const ThreePoint kRange = {4, 8, 20, Shape::kTriangular};

/// Tasks one behind the other and side by side, with weather of every kind and a lift.
WeatherPlan WithAllWeather() {
  WeatherPlan plan;
  plan.AddWeatherCalendar("SEA");
  plan.AddWeatherCalendar("ICE");
  plan.AddPeriod("SEA", 1, 31, {3, 6, 12});
  plan.AddPeriod("SEA", 32, 59, {2, 4, 20}, 60);
  plan.AddWindow("ICE", {30, 33, 40}, {45, 50, 60});
  plan.AddTask("A", kRange);
  plan.AddTask("B", {3, 5, 7, Shape::kPert}, {"A"});
  plan.AddTask("LIFT", {2, 3, 4, Shape::kUniform}, {"A"});
  plan.AddTask("MAYBE", 6, {"LIFT"}).risk = {.probability = 40};
  plan.AddTask("END", kRange, {"B", "MAYBE"});
  for (const char* task : {"A", "LIFT", "END"}) {
    plan.Assign(task, "SEA");
  }
  plan.Assign("END", "ICE");
  plan.MarkNoSplit("LIFT");
  return plan;
}

/// A task that is sampled, alone.
WeatherPlan OneTask() {
  WeatherPlan plan;
  plan.AddTask("A", kRange);
  return plan;
}

/// Expects that this process has no child left, alive or not waited for.
void ExpectNoWorkerLeft() {
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
  EXPECT_EQ(errno, ECHILD);
}

TEST(RiskRun, GivesTheSameResultForAnyNumberOfWorkers) {
  const WeatherPlan plan = WithAllWeather();
  RunOptions options{.iterations = 500,
                     .seed = 7,
                     .asked = {plan.UidOf("LIFT"), plan.UidOf("A"), plan.UidOf("END")}};
  const RunResult one = engine::Run(plan.plan, options, WithAddIn());
  EXPECT_EQ(one.iterations(), 500);
  EXPECT_FALSE(one.stopped);
  for (const std::int32_t workers : {2, 3, 50}) {
    options.workers = workers;
    EXPECT_EQ(engine::Run(plan.plan, options, WithAddIn()), one) << workers << " workers";
  }
  ExpectNoWorkerLeft();
}

TEST(RiskRun, IsRepeatedByItsSeedAndChangedByAnother) {
  const WeatherPlan plan = WithAllWeather();
  const auto finishes = [&](std::uint64_t seed) {
    return engine::Run(plan.plan, {.iterations = 100, .seed = seed}, WithAddIn()).finish_samples;
  };
  const auto first = finishes(1);
  EXPECT_EQ(finishes(1), first);
  EXPECT_NE(finishes(2), first);
}

TEST(RiskRun, ALongerRunBeginsLikeAShorterOne) {
  const WeatherPlan plan = WithAllWeather();
  const auto shorter = engine::Run(plan.plan, {.iterations = 30}, WithAddIn()).finish_samples;
  auto longer = engine::Run(plan.plan, {.iterations = 200}, WithAddIn()).finish_samples;
  longer.resize(30);
  EXPECT_EQ(longer, shorter);
}

TEST(RiskRun, AnotherTaskChangesNoDatesOfATask) {
  const WeatherPlan plan = WithAllWeather();
  WeatherPlan more = plan;
  more.AddTask("NEW", kRange);
  const RunOptions options{.iterations = 200, .asked = {plan.UidOf("A"), plan.UidOf("LIFT")}};
  EXPECT_EQ(engine::Run(more.plan, options, WithAddIn()).samples,
            engine::Run(plan.plan, options, WithAddIn()).samples);
}

TEST(RiskRun, RaisesItsEventsInOrder) {
  std::vector<std::string> events;
  Listener listener;
  listener.before_analysis = [&](const auto&) { events.emplace_back("before"); };
  listener.before_iteration = [&](const auto&, std::int32_t i) {
    events.push_back("before " + std::to_string(i));
  };
  listener.after_iteration = [&](const auto&, std::int32_t i) {
    events.push_back("after " + std::to_string(i));
  };
  listener.after_analysis = [&](const auto&) { events.emplace_back("after"); };
  engine::Run(OneTask().plan, {.iterations = 2}, WithListener(listener));
  EXPECT_THAT(events, ElementsAre("before", "before 1", "after 1", "before 2", "after 2", "after"));
}

TEST(RiskRun, TakesTheDatesOfTheLastScheduling) {
  WeatherPlan plan;
  plan.AddTask("A", 1);
  Listener listener;
  listener.after_iteration = [](const Listener::PlanRef& host_plan, std::int32_t iteration) {
    const auto dates = host_plan->get_Tasks()->Item("A")->get_Dates();
    dates->put_Constraint(3);
    dates->put_ConstraintDate(Instant(WeatherPlan::Serial(1 + iteration), 480).ToDate());
    host_plan->Recalculate();
  };
  const RunResult result =
      engine::Run(plan.plan, {.iterations = 3, .asked = {plan.UidOf("A")}}, WithListener(listener));
  EXPECT_THAT(DaysLate(result.samples[0].start, 1), ElementsAre(1, 2, 3));
  EXPECT_THAT(DaysLate(result.finish_samples, 1), ElementsAre(1, 2, 3));
}

TEST(RiskRun, ReleasesWhoIsAttachedAfterTheLastEvent) {
  auto log = std::make_shared<std::vector<std::string>>();
  Listener listener;
  listener.after_analysis = [log](const auto&) { log->emplace_back("after analysis"); };
  RunWiring wiring = WithListener(listener);
  wiring.attach = [attach = wiring.attach, log](Host& host) {
    auto attached = attach(host);
    return std::shared_ptr<void>(nullptr,
                                 [attached, log](void*) { log->emplace_back("released"); });
  };
  engine::Run(OneTask().plan, {.iterations = 1}, wiring);
  EXPECT_THAT(*log, ElementsAre("after analysis", "released"));
}

TEST(RiskRun, ReleasesWhoIsAttachedAfterAnErrorToo) {
  bool released = false;
  RunWiring wiring = WithoutAddIn();
  Listener listener;
  listener.before_analysis = [](const auto&) { throw platform::RuntimeError(5, "no"); };
  wiring.attach = [&released, attach = WithListener(listener).attach](Host& host) {
    auto attached = attach(host);
    return std::shared_ptr<void>(nullptr, [attached, &released](void*) { released = true; });
  };
  EXPECT_THROW(engine::Run(OneTask().plan, {.iterations = 1}, wiring), platform::RuntimeError);
  EXPECT_TRUE(released);
}

TEST(RiskRun, LeavesTheCallersPlanAlone) {
  WeatherPlan plan = WithAllWeather();
  plan.plan.FindTask("LIFT")->constraint = {ConstraintType::kStartNoEarlier,
                                            {WeatherPlan::Serial(3), 480}};
  const Plan before = plan.plan;
  engine::Run(plan.plan, {.iterations = 20}, WithAddIn());
  EXPECT_EQ(plan.plan, before);

  RunWiring stopped = WithAddIn();
  stopped.cancelled = [] { return true; };
  engine::Run(plan.plan, {.iterations = 20}, stopped);
  EXPECT_EQ(plan.plan, before);

  Listener listener;
  listener.after_iteration = [](const Listener::PlanRef& host_plan, std::int32_t) {
    host_plan->get_Tasks()->Item("A")->put_Description("changed");
    throw platform::RuntimeError(5, "no");
  };
  EXPECT_THROW(engine::Run(plan.plan, {.iterations = 20}, WithListener(listener)),
               platform::RuntimeError);
  EXPECT_EQ(plan.plan, before);
}

TEST(RiskRun, OfAPlanThatIsNoWeatherPlanHasNoWeather) {
  WeatherPlan plan = WithAllWeather();
  plan.plan.options.clear();
  const RunResult result = engine::Run(plan.plan, {.iterations = 50}, WithAddIn());
  EXPECT_EQ(result.finish_samples,
            engine::Run(plan.plan, {.iterations = 50}, WithoutAddIn()).finish_samples);
  for (const CalendarResult& calendar : result.calendars) {
    EXPECT_EQ(calendar.lost_days.max, 0);
  }
}

TEST(RiskRun, OfAPlanWithoutTasksFinishesWhereThePlanStarts) {
  const WeatherPlan plan;
  const RunResult result = engine::Run(plan.plan, {.iterations = 70}, WithAddIn());
  EXPECT_THAT(result.tasks, IsEmpty());
  EXPECT_EQ(result.finish.min, plan.plan.start);
  EXPECT_EQ(result.finish.max, plan.plan.start);
  EXPECT_EQ(result.deterministic_finish, plan.plan.start);
}

TEST(RiskRun, OfAFinishedPlanFinishesWhenItFinished) {
  WeatherPlan plan;
  Task& task = plan.AddTask("A", kRange);
  task.remaining_minutes = 0;
  task.actual_start = {WeatherPlan::Serial(2), 480};
  task.actual_finish = {WeatherPlan::Serial(9), 1020};
  plan.plan.data_date = {WeatherPlan::Serial(12), 480};
  const RunResult result = engine::Run(plan.plan, {.iterations = 20}, WithAddIn());
  EXPECT_EQ(result.finish.min, task.actual_finish);
  EXPECT_EQ(result.finish.max, task.actual_finish);
  EXPECT_EQ(result.tasks.at(0).finish.p50, task.actual_finish);
}

TEST(RiskRun, TellsTheFinishOnLikelyDurationsWithoutWeather) {
  WeatherPlan plan = WithAllWeather();
  plan.plan.FindTask("MAYBE")->range = Always(6);
  // Likely: A 8, LIFT 3, MAYBE 6 (it counts as certain here), END 8 days.
  EXPECT_EQ(engine::Run(plan.plan, {.iterations = 1}, WithAddIn()).deterministic_finish,
            Instant(WeatherPlan::Serial(25), 1020));
}

TEST(RiskRun, WeatherTasksHaveNoResults) {
  const WeatherPlan plan = WithAllWeather();
  const RunResult result = engine::Run(plan.plan, {.iterations = 5}, WithAddIn());
  std::vector<std::string> ids;
  for (const TaskResult& task : result.tasks) {
    ids.push_back(plan.plan.FindTask(task.task)->id);
  }
  EXPECT_THAT(ids, ElementsAre("A", "B", "LIFT", "MAYBE", "END"));
}

TEST(RiskRun, ASummarySpansItsTasksInEveryIteration) {
  WeatherPlan plan = WithAllWeather();
  Task summary;
  summary.id = "PHASE";
  summary.kind = TaskKind::kSummary;
  const Uid phase = plan.plan.AddTask(summary).uid;
  for (const char* child : {"B", "LIFT"}) {
    plan.plan.FindTask(child)->parent = phase;
  }
  const RunResult result = engine::Run(
      plan.plan, {.iterations = 100, .asked = {phase, plan.UidOf("B"), plan.UidOf("LIFT")}},
      WithAddIn());
  for (std::size_t i = 0; i < 100; ++i) {
    EXPECT_EQ(result.samples[0].start[i],
              std::min(result.samples[1].start[i], result.samples[2].start[i]));
    EXPECT_EQ(result.samples[0].finish[i],
              std::max(result.samples[1].finish[i], result.samples[2].finish[i]));
  }
}

TEST(RiskRun, CountsHowOftenATaskDrivesTheFinish) {
  // A and B side by side and alike; each is the longer one in half of the iterations. C is behind
  // both and always drives, D never does.
  WeatherPlan plan(TimeUnit::kDays, 24);
  plan.AddTask("A", {10, 15, 20, Shape::kUniform});
  plan.AddTask("B", {10, 15, 20, Shape::kUniform});
  plan.AddTask("C", 1, {"A", "B"});
  plan.AddTask("D", 1);
  constexpr int kIterations = 4000;
  const RunResult result = engine::Run(plan.plan, {.iterations = kIterations}, WithAddIn());
  // 4.5 standard deviations of the binomial distribution.
  EXPECT_NEAR(result.tasks[0].criticality, 0.5, 4.5 * std::sqrt(0.25 / kIterations));
  EXPECT_NEAR(result.tasks[1].criticality, 0.5, 4.5 * std::sqrt(0.25 / kIterations));
  EXPECT_EQ(result.tasks[2].criticality, 1.0);
  EXPECT_EQ(result.tasks[3].criticality, 0.0);
}

TEST(RiskRun, StatisticsOfATaskAreThoseOfItsSamples) {
  const WeatherPlan plan = WithAllWeather();
  RunOptions options{.iterations = 333};
  for (const Task& task : plan.plan.tasks()) {
    if (task.user_values.empty() || task.id == "LIFT") {
      options.asked.push_back(task.uid);
    }
  }
  const RunResult result = engine::Run(plan.plan, options, WithAddIn());
  ASSERT_EQ(result.samples.size(), result.tasks.size());
  DateSummarizer summarizer;
  for (std::size_t i = 0; i < result.tasks.size(); ++i) {
    EXPECT_EQ(result.tasks[i].task, result.samples[i].task);
    EXPECT_EQ(result.tasks[i].finish, summarizer.Summarize(result.samples[i].finish, true));
    EXPECT_EQ(result.tasks[i].start, summarizer.PercentileOf(result.samples[i].start, 50));
  }
  EXPECT_EQ(result.finish, summarizer.Summarize(result.finish_samples, true));
  EXPECT_EQ(result.samples.back().finish, result.finish_samples) << "the last task ends the plan";
}

// Stopping.

TEST(RiskRun, StoppedInOneProcessTellsOfTheIterationsDone) {
  const WeatherPlan plan = WithAllWeather();
  std::int32_t asked = 0;
  RunWiring wiring = WithAddIn();
  wiring.cancelled = [&asked] { return ++asked > 100; };
  const RunResult result = engine::Run(plan.plan, {.iterations = 500}, wiring);
  EXPECT_TRUE(result.stopped);
  EXPECT_EQ(result.iterations(), 100);
  EXPECT_EQ(result.iteration_numbers.back(), 100);
  const RunResult whole = engine::Run(plan.plan, {.iterations = 100}, WithAddIn());
  EXPECT_EQ(result.finish_samples, whole.finish_samples);
  EXPECT_EQ(result.tasks, whole.tasks);
}

TEST(RiskRun, StoppedBeforeItsFirstIterationHasNone) {
  RunWiring wiring = WithAddIn();
  wiring.cancelled = [] { return true; };
  const RunResult result = engine::Run(WithAllWeather().plan, {.iterations = 500}, wiring);
  EXPECT_TRUE(result.stopped);
  EXPECT_EQ(result.iterations(), 0);
  EXPECT_EQ(result.finish, DateStatistics{});
  EXPECT_EQ(result.tasks.at(0).criticality, 0.0);
}

TEST(RiskRun, StoppedStillRaisesItsLastEvent) {
  bool ended = false;
  Listener listener;
  listener.after_analysis = [&ended](const auto&) { ended = true; };
  RunWiring wiring = WithListener(listener);
  wiring.cancelled = [] { return true; };
  engine::Run(OneTask().plan, {.iterations = 5}, wiring);
  EXPECT_TRUE(ended);
}

TEST(RiskRun, StoppedInProcessesTellsOfIterationsAsTheyAreInAWholeRun) {
  const WeatherPlan plan = WithAllWeather();
  RunWiring wiring = WithAddIn();
  std::int32_t seen = 0;
  wiring.progress = [&seen](std::int32_t done, std::int32_t) { seen = done; };
  wiring.cancelled = [&seen] { return seen > 0; };
  const RunResult result =
      engine::Run(plan.plan, {.iterations = kMaxIterations, .workers = 2}, wiring);
  ExpectNoWorkerLeft();
  EXPECT_TRUE(result.stopped);
  ASSERT_GT(result.iterations(), 0);
  EXPECT_LT(result.iterations(), kMaxIterations);
  EXPECT_TRUE(std::is_sorted(result.iteration_numbers.begin(), result.iteration_numbers.end()));
  const RunResult whole =
      engine::Run(plan.plan, {.iterations = result.iteration_numbers.back()}, WithAddIn());
  for (std::size_t i = 0; i < result.finish_samples.size(); ++i) {
    EXPECT_EQ(result.finish_samples[i],
              whole.finish_samples[static_cast<std::size_t>(result.iteration_numbers[i] - 1)]);
  }
}

TEST(RiskRun, ReportsItsProgress) {
  RunWiring wiring = WithoutAddIn();
  std::vector<std::pair<std::int32_t, std::int32_t>> reports;
  wiring.progress = [&](std::int32_t done, std::int32_t total) {
    reports.emplace_back(done, total);
  };
  engine::Run(OneTask().plan, {.iterations = 3}, wiring);
  EXPECT_THAT(reports, ElementsAre(std::pair(1, 3), std::pair(2, 3), std::pair(3, 3)));
  reports.clear();
  engine::Run(OneTask().plan, {.iterations = 300, .workers = 2}, wiring);
  EXPECT_EQ(reports.back(), std::pair(300, 300));
}

TEST(RiskRun, AnErrorOfTheProgressReportEndsTheWorkers) {
  for (const std::int32_t workers : {1, 2}) {
    RunWiring wiring = WithAddIn();
    wiring.progress = [](std::int32_t, std::int32_t) { throw std::domain_error("mine"); };
    EXPECT_THROW(engine::Run(WithAllWeather().plan,
                             {.iterations = kMaxIterations, .workers = workers}, wiring),
                 std::domain_error);
    ExpectNoWorkerLeft();
  }
}

// Errors.

/// The text of the RuntimeError that the run ends with.
std::string ErrorOf(const Plan& plan, std::int32_t workers, const Listener& listener,
                    std::int32_t number) {
  try {
    engine::Run(plan, {.iterations = 600, .workers = workers}, WithListener(listener));
  } catch (const platform::RuntimeError& error) {
    EXPECT_EQ(error.number(), number);
    ExpectNoWorkerLeft();
    return error.text();
  }
  return "no error";
}

TEST(RiskRun, AnErrorIsThatOfTheLowestIterationForAnyNumberOfWorkers) {
  Listener listener;
  listener.after_iteration = [](const auto&, std::int32_t iteration) {
    // The first tile, whose turn comes first, is the last to fail.
    if (iteration == 60 || (iteration > 64 && iteration % 64 == 1)) {
      throw platform::RuntimeError(1004, "task A is stuck");
    }
  };
  for (const std::int32_t workers : {1, 2, 3}) {
    EXPECT_EQ(ErrorOf(OneTask().plan, workers, listener, 1004), "iteration 60: task A is stuck");
  }
}

TEST(RiskRun, AnErrorBeforeTheFirstIterationSaysSo) {
  Listener listener;
  listener.before_analysis = [](const auto&) { throw platform::RuntimeError(13, "no date"); };
  for (const std::int32_t workers : {1, 2}) {
    EXPECT_EQ(ErrorOf(OneTask().plan, workers, listener, 13),
              "before the first iteration: no date");
  }
}

TEST(RiskRun, AnErrorAfterTheLastIterationSaysSo) {
  Listener listener;
  listener.after_analysis = [](const auto&) { throw platform::RuntimeError(13, "no date"); };
  for (const std::int32_t workers : {1, 2}) {
    EXPECT_EQ(ErrorOf(OneTask().plan, workers, listener, 13), "after the last iteration: no date");
  }
}

TEST(RiskRun, AnErrorOfTheAddInReachesTheCaller) {
  WeatherPlan plan;
  plan.plan.options[{"NIMBRELMOD", "Options", "IsWeatherPlan"}] = "TRUE";  // but no task WEATHER
  plan.AddTask("A", 1);
  EXPECT_THROW(engine::Run(plan.plan, {.iterations = 200, .workers = 2}, WithAddIn()),
               platform::RuntimeError);
  ExpectNoWorkerLeft();
}

TEST(RiskRun, AnIterationThatCannotBeScheduledIsASchedulingError) {
  WeatherPlan plan;
  plan.AddWeatherCalendar("SEA");
  plan.AddTask("A", 5);
  plan.Assign("A", "SEA");
  Listener listener;
  listener.before_iteration = [](const Listener::PlanRef& host_plan, std::int32_t iteration) {
    if (iteration == 3) {
      host_plan->get_Calendars()->Item("SEA")->SetDays(0, platform::MakeDate(2000, 1, 1),
                                                       platform::MakeDate(2150, 12, 31));
    }
  };
  for (const std::int32_t workers : {1, 2}) {
    try {
      engine::Run(plan.plan, {.iterations = 200, .workers = workers}, WithListener(listener));
      FAIL();
    } catch (const SchedulingError& error) {
      EXPECT_THAT(error.what(), HasSubstr("iteration 3: "));
    }
  }
}

TEST(RiskRun, AWorkerThatIsKilledIsAnError) {
  Listener listener;
  listener.before_iteration = [](const auto&, std::int32_t iteration) {
    if (iteration == 100) {
      raise(SIGKILL);
    }
  };
  try {
    engine::Run(OneTask().plan, {.iterations = kMaxIterations, .workers = 3},
                WithListener(listener));
    FAIL();
  } catch (const WorkerError& error) {
    EXPECT_THAT(error.what(), HasSubstr("was ended by signal 9"));
  }
  ExpectNoWorkerLeft();
}

TEST(RiskRun, AWorkerThatLeavesIsAnError) {
  Listener listener;
  listener.before_iteration = [](const auto&, std::int32_t iteration) {
    if (iteration == 100) {
      _exit(3);
    }
  };
  try {
    engine::Run(OneTask().plan, {.iterations = 300, .workers = 2}, WithListener(listener));
    FAIL();
  } catch (const WorkerError& error) {
    EXPECT_THAT(error.what(), HasSubstr("ended with status 3"));
  }
  ExpectNoWorkerLeft();
}

TEST(RiskRun, WorkersLeaveInterruptsToTheCaller) {
  Listener listener;
  listener.before_iteration = [](const auto&, std::int32_t) { kill(getpid(), SIGINT); };
  const RunResult result =
      engine::Run(OneTask().plan, {.iterations = 200, .workers = 2}, WithListener(listener));
  EXPECT_EQ(result.iterations(), 200);
}

TEST(RiskRun, RefusesWhatCannotBeRun) {
  const WeatherPlan plan = WithAllWeather();
  const auto refuses = [&](const RunOptions& options) {
    EXPECT_THROW(engine::Run(plan.plan, options, WithAddIn()), std::invalid_argument);
  };
  refuses({.iterations = 0});
  refuses({.iterations = -5});
  refuses({.iterations = kMaxIterations + 1});
  refuses({.workers = 0});
  refuses({.asked = {9999}});
  refuses({.asked = {plan.UidOf("WEATHER")}});
}

TEST(RiskRun, RefusesAPlanWhoseTasksChangeOnTheWay) {
  Listener listener;
  listener.after_iteration = [](const Listener::PlanRef& plan, std::int32_t) {
    plan->get_Tasks()->Add();
  };
  EXPECT_THROW(engine::Run(OneTask().plan, {.iterations = 2}, WithListener(listener)),
               std::runtime_error);
}

TEST(RiskRun, SaysThatItHasNoRoomForItsTemporaryFile) {
  const char* before = std::getenv("TMPDIR");
  const std::string folder = before == nullptr ? "" : before;
  setenv("TMPDIR", "/nowhere/at/all", 1);
  EXPECT_THROW(engine::Run(OneTask().plan, {.iterations = 2}, WithAddIn()), std::system_error);
  before == nullptr ? unsetenv("TMPDIR") : setenv("TMPDIR", folder.c_str(), 1);
}

// With and without weather.

TEST(ComparedRun, HasTheSameSamplesWithWeatherAndWithout) {
  WeatherPlan plan = WithAllWeather();
  const RunOptions options{.iterations = 200, .workers = 2};
  const ComparedResult both = RunWithAndWithout(plan.plan, options, WithAddIn());
  EXPECT_EQ(both.with_weather, engine::Run(plan.plan, options, WithAddIn()));
  EXPECT_EQ(both.without_weather.finish_samples,
            engine::Run(plan.plan, options, WithoutAddIn()).finish_samples);
  ASSERT_EQ(both.delay_minutes.size(), 200U);
  std::int64_t sum = 0;
  for (std::size_t i = 0; i < 200; ++i) {
    const std::int64_t delay = both.with_weather.finish_samples[i].Minutes() -
                               both.without_weather.finish_samples[i].Minutes();
    EXPECT_EQ(both.delay_minutes[i], delay);
    EXPECT_GE(delay, 0) << "weather makes nothing earlier";
    sum += delay;
  }
  EXPECT_GT(sum, 0);
  EXPECT_DOUBLE_EQ(both.delay.mean, static_cast<double>(sum) / 200 / kMinutesPerDay);
}

TEST(ComparedRun, CountsItsProgressOverBothRuns) {
  std::vector<std::int32_t> done;
  RunWiring wiring = WithAddIn();
  wiring.progress = [&](std::int32_t count, std::int32_t total) {
    EXPECT_EQ(total, 4);
    done.push_back(count);
  };
  RunWithAndWithout(OneTask().plan, {.iterations = 2}, wiring);
  EXPECT_THAT(done, ElementsAre(1, 2, 3, 4));
}

TEST(ComparedRun, StoppedInItsFirstHalfHasNoIterationWithWeather) {
  RunWiring wiring = WithAddIn();
  std::int32_t asked = 0;
  wiring.cancelled = [&asked] { return ++asked > 5; };
  const ComparedResult both = RunWithAndWithout(OneTask().plan, {.iterations = 20}, wiring);
  EXPECT_EQ(both.without_weather.iterations(), 5);
  EXPECT_EQ(both.with_weather.iterations(), 0);
  EXPECT_TRUE(both.with_weather.stopped);
  EXPECT_THAT(both.delay_minutes, IsEmpty());
}

TEST(ComparedRun, StoppedInItsSecondHalfComparesWhatBothDid) {
  RunWiring wiring = WithAddIn();
  std::int32_t asked = 0;
  wiring.cancelled = [&asked] { return ++asked > 25; };
  const ComparedResult both = RunWithAndWithout(OneTask().plan, {.iterations = 20}, wiring);
  EXPECT_EQ(both.without_weather.iterations(), 20);
  EXPECT_EQ(both.with_weather.iterations(), 5);
  EXPECT_EQ(both.delay_minutes.size(), 5U);
}

}  // namespace
}  // namespace nimbrel::engine
