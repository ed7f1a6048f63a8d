// Runs that end when P80 is exact enough, and how exact it then is.

#include "engine/risk/until.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "engine/risk/run.h"
#include "engine/risk/run_document_maker.h"
#include "tests/risk/weather_plan.h"

namespace nimbrel::engine {
namespace {

/// One task around the clock with a uniform duration of 100 to 110 days: the finish is uniform too.
WeatherPlan UniformPlan() {
  WeatherPlan plan(TimeUnit::kDays, 24);
  plan.AddTask("A", {100, 105, 110, Shape::kUniform});
  return plan;
}

double WidthOf(const RunResult& run, std::int32_t count) {
  return WidthOfP80({run.finish_samples.data(), static_cast<std::size_t>(count)});
}

TEST(Until, TheRunEndsAtTheFirstCheckThatFindsTheIntervalNarrowEnough) {
  const WeatherPlan plan = UniformPlan();
  const RunResult whole = engine::Run(plan.plan, {.iterations = 5000}, WithoutAddIn());
  for (const double days : {0.9, 0.5, 0.35}) {
    const RunResult run =
        engine::Run(plan.plan, {.iterations = 5000, .until_days = days}, WithoutAddIn());
    ASSERT_GE(run.iterations(), 200);
    EXPECT_TRUE(run.until.met);
    EXPECT_FALSE(run.stopped);
    EXPECT_EQ(run.until.width_days, WidthOf(whole, run.iterations()));
    EXPECT_LE(run.until.width_days, days);
    // The same samples as those of a run that goes on, and no check before was enough.
    for (std::int32_t i = 0; i < run.iterations(); ++i) {
      ASSERT_EQ(run.finish_samples[static_cast<std::size_t>(i)],
                whole.finish_samples[static_cast<std::size_t>(i)]);
    }
    for (std::int32_t tiles = kFirstCheckTiles; tiles * 64 < run.iterations();
         tiles = NextCheck(tiles, 79)) {
      EXPECT_GT(WidthOf(whole, tiles * 64), days);
    }
  }
}

TEST(Until, NoRunHasFewerThan200Iterations) {
  const RunResult run =
      engine::Run(UniformPlan().plan, {.iterations = 5000, .until_days = 1000}, WithoutAddIn());
  EXPECT_EQ(run.iterations(), kFirstCheckTiles * 64);
  EXPECT_GE(run.iterations(), 200);
}

TEST(Until, WithinFewIterationsTheyAreAllDone) {
  const RunResult run =
      engine::Run(UniformPlan().plan, {.iterations = 100, .until_days = 1000}, WithoutAddIn());
  EXPECT_EQ(run.iterations(), 100);
  EXPECT_TRUE(run.until.met);
}

TEST(Until, AWidthThatCannotBeMetIsSaidInTheResult) {
  const WeatherPlan plan = UniformPlan();
  const RunResult run =
      engine::Run(plan.plan, {.iterations = 700, .until_days = 0.01}, WithoutAddIn());
  EXPECT_EQ(run.iterations(), 700);
  EXPECT_FALSE(run.until.met);
  EXPECT_FALSE(run.stopped);
  EXPECT_GT(run.until.width_days, 0.01);
  const RunDocument document = MakeRunDocument(plan.plan, {.run = run});
  ASSERT_EQ(document.warnings.size(), 1U);
  EXPECT_NE(document.warnings[0].find("after all 700 iterations"), std::string::npos);
}

TEST(Until, IsTheSameForAnyNumberOfWorkers) {
  WeatherPlan plan = UniformPlan();
  plan.AddWeatherCalendar("SEA");
  plan.AddPeriod("SEA", 1, 30, {4, 9, 14});
  plan.Assign("A", "SEA");
  for (const Sampling sampling : {Sampling::kMonteCarlo, Sampling::kLatinHypercube}) {
    RunOptions options{.iterations = 4000, .sampling = sampling, .until_days = 0.8};
    const RunResult one = engine::Run(plan.plan, options, WithUncheckedAddIn());
    EXPECT_LT(one.iterations(), 4000);
    for (const std::int32_t workers : {2, 5}) {
      options.workers = workers;
      EXPECT_EQ(engine::Run(plan.plan, options, WithUncheckedAddIn()), one);
    }
  }
}

TEST(Until, ARunWithoutWeatherHasTheIterationsOfTheOneWithIt) {
  WeatherPlan plan = UniformPlan();
  plan.AddWeatherCalendar("SEA");
  plan.AddPeriod("SEA", 1, 30, {4, 9, 14});
  plan.Assign("A", "SEA");
  for (const Sampling sampling : {Sampling::kMonteCarlo, Sampling::kLatinHypercube}) {
    const RunOptions options{.iterations = 4000, .sampling = sampling, .until_days = 0.8};
    const ComparedResult both = RunWithAndWithout(plan.plan, options, WithUncheckedAddIn());
    EXPECT_EQ(both.without_weather.iteration_numbers, both.with_weather.iteration_numbers);
    EXPECT_LT(both.with_weather.iterations(), 4000);
    RunOptions all = options;
    all.until_days = 0;
    const ComparedResult whole = RunWithAndWithout(plan.plan, all, WithUncheckedAddIn());
    for (std::size_t i = 0; i < both.delay_minutes.size(); ++i) {
      ASSERT_EQ(both.delay_minutes[i], whole.delay_minutes[i]);
    }
  }
}

TEST(Until, AnErrorEndsTheRunAndIsThatOfTheLowestIteration) {
  Listener listener;
  listener.after_iteration = [](const Listener::PlanRef&, std::int32_t iteration) {
    if (iteration == 150 || iteration == 260) {
      throw std::runtime_error("bang");
    }
  };
  for (const std::int32_t workers : {1, 4}) {
    try {
      engine::Run(UniformPlan().plan, {.iterations = 4000, .workers = workers, .until_days = 0.001},
                  WithListener(listener));
      FAIL() << "nothing was raised";
    } catch (const std::runtime_error& error) {
      EXPECT_STREQ(error.what(), "iteration 150: bang");
    }
  }
}

TEST(IntervalOfP80, HoldsTheTrueP80InAbout95Of100Runs) {
  // The finish is uniform, so that its P80 is known: 100 + 0.8 * 10 days after the start. The exact
  // chance, by the binomial distribution, is a little above 95%; 1,000 runs miss it by 2 points
  // with a chance of some in a thousand, and these seeds do not.
  const WeatherPlan plan = UniformPlan();
  const std::int64_t truth = plan.plan.start.Minutes() + 108 * kMinutesPerDay;
  int held = 0;
  for (std::uint64_t seed = 1; seed <= 1000; ++seed) {
    const DateStatistics finish =
        RunForFinish(plan.plan, {.iterations = 400, .seed = seed}, WithoutAddIn()).finish;
    held += finish.p80_low.Minutes() <= truth && truth <= finish.p80_high.Minutes() ? 1 : 0;
  }
  EXPECT_GE(held, 930);
  EXPECT_LE(held, 970);
}

}  // namespace
}  // namespace nimbrel::engine
