// Iterations that are made again, and what is told of them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "engine/risk/iteration_story.h"
#include "engine/risk/run_document_maker.h"
#include "tests/risk/weather_plan.h"

namespace nimbrel::engine {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

DayRange Days(int first, int last) {
  return {WeatherPlan::Serial(first), WeatherPlan::Serial(last)};
}

/// Weather of all kinds, lifts among the tasks.
WeatherPlan StormyPlan() {
  WeatherPlan plan;
  plan.AddTask("A", {3, 5, 9});
  plan.AddTask("LIFT", {1, 2, 3}, {"A"});
  plan.AddTask("B", {2, 2, 8, Shape::kPert}, {"A"});
  plan.AddTask("C", {2, 3, 4}, {"LIFT", "B"});
  plan.AddTask("D", 4, {"C"});
  plan.AddWeatherCalendar("SEA");
  plan.AddWeatherCalendar("ICE");
  plan.AddPeriod("SEA", 1, 15, {2, 5, 8});
  plan.AddPeriod("SEA", 16, 30, {2, 4, 8}, 60);
  plan.AddWindow("ICE", {12, 14, 16}, {17, 18, 20});
  for (const char* task : {"A", "LIFT", "D"}) {
    plan.Assign(task, "SEA");
  }
  plan.Assign("C", "ICE");
  plan.MarkNoSplit("LIFT");
  plan.plan.correlations.push_back({{plan.UidOf("A"), plan.UidOf("B")}, {}, 0.6});
  return plan;
}

TEST(Story, HasTheFinishOfTheRunsSamplesForEveryIteration) {
  const WeatherPlan plan = StormyPlan();
  for (const Sampling sampling : {Sampling::kMonteCarlo, Sampling::kLatinHypercube}) {
    const RunOptions options{.iterations = 150, .seed = 8, .workers = 2, .sampling = sampling};
    const RunResult run = engine::Run(plan.plan, options, WithUncheckedAddIn());
    for (std::int32_t iteration = 1; iteration <= 150; ++iteration) {
      const IterationStory story =
          TellIteration(plan.plan, options, WithUncheckedAddIn(), iteration);
      const Instant finish = run.finish_samples[static_cast<std::size_t>(iteration - 1)];
      ASSERT_EQ(story.finish, finish) << iteration;
      ASSERT_EQ(story.path.back().finish, finish) << iteration;
      ASSERT_EQ(story.iteration, iteration);
    }
  }
}

TEST(Story, OfAnIterationOutsideTheRunIsRefused) {
  const WeatherPlan plan = StormyPlan();
  for (const std::int32_t iteration : {0, -1, 11}) {
    EXPECT_THROW(TellIteration(plan.plan, {.iterations = 10}, WithUncheckedAddIn(), iteration),
                 std::invalid_argument);
  }
}

TEST(Story, TellsWhatEachPeriodTookAndWhatThatHeldUp) {
  // A is ready on day 1, loses days 2 and 3, works days 1, 4 and 5; B has no weather.
  WeatherPlan plan;
  plan.AddTask("A", 3);
  plan.AddTask("B", 2, {"A"});
  plan.AddWeatherCalendar("SEA");
  plan.Assign("A", "SEA");
  const Uid storm = plan.AddPeriod("SEA", 2, 3, Always(2)).uid;
  const Uid late = plan.AddPeriod("SEA", 20, 22, Always(1), 0).uid;
  const IterationStory story = TellIteration(plan.plan, {}, WithUncheckedAddIn(), 1);
  ASSERT_EQ(story.draws.size(), 2U);
  EXPECT_EQ(story.draws[0].task, storm);
  EXPECT_TRUE(story.draws[0].occurred);
  EXPECT_EQ(story.draws[0].units, 2);
  EXPECT_THAT(story.draws[0].taken, ElementsAre(Days(2, 3)));
  EXPECT_EQ(story.draws[1].task, late);
  EXPECT_FALSE(story.draws[1].occurred);
  EXPECT_EQ(story.draws[1].units, 0);
  EXPECT_THAT(story.draws[1].taken, IsEmpty());

  ASSERT_EQ(story.held.size(), 1U);
  EXPECT_EQ(story.held[0].task, plan.UidOf("A"));
  EXPECT_EQ(story.held[0].first_day, WeatherPlan::Serial(1));
  EXPECT_THAT(story.held[0].lost, ElementsAre(Days(2, 3)));
  EXPECT_EQ(story.held[0].lost_days, 2);
  EXPECT_THAT(story.held[0].calendars, ElementsAre(plan.plan.FindCalendar("SEA")->uid));
  EXPECT_THAT(story.pushed, IsEmpty());
  ASSERT_EQ(story.path.size(), 2U);
  EXPECT_EQ(story.path[0].task, plan.UidOf("A"));
  EXPECT_EQ(story.path[1].task, plan.UidOf("B"));
  EXPECT_EQ(WeatherPlan::DayOf(story.finish), 7);
}

TEST(Story, TellsOfATaskThatWaitsForAPushedOneNothingOfItsOwn) {
  // The first lift would start on day 1 and be cut on day 3: it starts on day 4 and ends on day 6.
  // The second one follows on day 7 and meets no weather there, though in the first schedule it
  // stood on days 6 and 7, of which it loses none. The third follows on day 9, and day 10 cuts it.
  WeatherPlan plan;
  plan.AddTask("FIRST", 3);
  plan.AddTask("SECOND", 2, {"FIRST"});
  plan.AddTask("THIRD", 2, {"SECOND"});
  plan.AddWeatherCalendar("SEA");
  for (const char* lift : {"FIRST", "SECOND", "THIRD"}) {
    plan.MarkNoSplit(lift);
    plan.Assign(lift, "SEA");
  }
  plan.AddPeriod("SEA", 3, 3, Always(1));
  plan.AddPeriod("SEA", 10, 10, Always(1));
  const IterationStory story = TellIteration(plan.plan, {}, WithUncheckedAddIn(), 1);
  ASSERT_EQ(story.pushed.size(), 2U);
  EXPECT_EQ(story.pushed[0].task, plan.UidOf("FIRST"));
  EXPECT_EQ(WeatherPlan::DayOf(story.pushed[0].first_start), 1);
  EXPECT_EQ(WeatherPlan::DayOf(story.pushed[0].start), 4);
  EXPECT_EQ(story.pushed[1].task, plan.UidOf("THIRD"));
  EXPECT_EQ(WeatherPlan::DayOf(story.pushed[1].first_start), 9);
  EXPECT_EQ(WeatherPlan::DayOf(story.pushed[1].start), 11);
  EXPECT_THAT(story.pushed[1].past, ElementsAre(Days(10, 10)));

  const RunResult result = engine::Run(plan.plan, {.iterations = 5}, WithUncheckedAddIn());
  EXPECT_EQ(result.tasks[0].nosplit_pushed_days, 3.0);
  EXPECT_EQ(result.tasks[1].nosplit_pushed_days, 0.0);
  EXPECT_EQ(result.tasks[2].nosplit_pushed_days, 2.0);
}

TEST(Story, TellsHowFarALiftWasPushedAndPastWhichDays) {
  // The lift is ready on day 5; from there day 6 would cut it, from day 7 day 9 would.
  WeatherPlan plan;
  plan.AddTask("A", 4);
  plan.AddTask("LIFT", 3, {"A"});
  plan.MarkNoSplit("LIFT");
  plan.AddWeatherCalendar("SEA");
  plan.Assign("LIFT", "SEA");
  plan.AddPeriod("SEA", 6, 6, Always(1));
  plan.AddPeriod("SEA", 9, 9, Always(1));
  const IterationStory story = TellIteration(plan.plan, {}, WithUncheckedAddIn(), 1);
  ASSERT_EQ(story.pushed.size(), 1U);
  EXPECT_EQ(WeatherPlan::DayOf(story.pushed[0].first_start), 5);
  EXPECT_EQ(WeatherPlan::DayOf(story.pushed[0].start), 10);
  EXPECT_THAT(story.pushed[0].past, ElementsAre(Days(6, 6), Days(9, 9)));
  ASSERT_EQ(story.held.size(), 1U);
  EXPECT_EQ(story.held[0].first_day, WeatherPlan::Serial(5));
  EXPECT_EQ(story.held[0].lost_days, 2);
  // The lift waits for the weather from when A lets it: the path goes on behind it.
  ASSERT_EQ(story.path.size(), 2U);
  EXPECT_EQ(story.path[0].task, plan.UidOf("A"));
  EXPECT_EQ(story.path[1].task, plan.UidOf("LIFT"));
}

TEST(Story, GivesTheDaysOfAWindowToItsClosingEdge) {
  WeatherPlan plan;
  plan.AddTask("A", 3);
  plan.AddWeatherCalendar("ICE");
  plan.Assign("A", "ICE");
  plan.AddWindow("ICE", {2, 2, 2}, {4, 4, 4});
  const IterationStory story = TellIteration(plan.plan, {}, WithUncheckedAddIn(), 1);
  ASSERT_EQ(story.draws.size(), 2U);
  EXPECT_THAT(story.draws[0].taken, IsEmpty());
  EXPECT_THAT(story.draws[1].taken, ElementsAre(Days(2, 4)));
}

TEST(Document, HasTheDrivingPathOfTheIterationAtP80) {
  const WeatherPlan plan = StormyPlan();
  const RunOptions options{.iterations = 100};
  const RunResult run = engine::Run(plan.plan, options, WithUncheckedAddIn());
  const std::int32_t iteration = IterationNearest(run, 80);
  const IterationStory story = TellIteration(plan.plan, options, WithUncheckedAddIn(), iteration);
  const RunDocument document =
      MakeRunDocument(plan.plan, {.run = run, .weather = true, .p80_story = &story});
  EXPECT_EQ(document.chain.iteration, iteration);
  EXPECT_EQ(document.chain.finish, run.finish.p80);
  ASSERT_EQ(document.chain.tasks.size(), story.path.size());
  EXPECT_EQ(document.chain.tasks.back().id, "D");
}

TEST(Document, CurveAndHistogramCountEveryIteration) {
  const WeatherPlan plan = StormyPlan();
  const ComparedResult both =
      RunWithAndWithout(plan.plan, {.iterations = 100}, WithUncheckedAddIn());
  const RunDocument document =
      MakeRunDocument(plan.plan, {.run = both.with_weather, .weather = true, .compared = &both});
  for (const FinishDistribution* finish : {&document.finish, &*document.without_weather}) {
    EXPECT_EQ(finish->curve.front().share, 0);
    EXPECT_EQ(finish->curve.back().share, 1);
    std::int64_t count = 0;
    for (const HistogramBar& bar : finish->histogram) {
      count += bar.count;
    }
    EXPECT_EQ(count, 100);
  }
  EXPECT_EQ(document.finish.histogram.size(), document.without_weather->histogram.size());
  // A point of the curve, by counting.
  const CurvePoint& point = document.finish.curve[document.finish.curve.size() / 2];
  int by_then = 0;
  for (const Instant finish : both.with_weather.finish_samples) {
    by_then += finish.AsFinish().day() <= point.day ? 1 : 0;
  }
  EXPECT_EQ(point.share, by_then / 100.0);
}

TEST(Document, HeatMapHasTheChanceOfEachDay) {
  WeatherPlan plan;
  plan.AddTask("A", 3);
  plan.AddWeatherCalendar("SEA");
  plan.AddWeatherCalendar("CALM");
  plan.Assign("A", "SEA");
  plan.AddPeriod("SEA", 2, 3, Always(2));
  plan.AddPeriod("SEA", 6, 7, Always(1));
  plan.AddPeriod("CALM", 6, 7, Always(0));
  const RunResult run = engine::Run(plan.plan, {.iterations = 400}, WithUncheckedAddIn());
  const RunDocument document = MakeRunDocument(plan.plan, {.run = run, .weather = true});
  ASSERT_EQ(document.heat_maps.size(), 2U);
  const HeatMap& sea = document.heat_maps[0];
  EXPECT_EQ(sea.first_day, WeatherPlan::Serial(2));
  ASSERT_EQ(sea.chance.size(), 6U);
  EXPECT_EQ(sea.chance[0], 1);
  EXPECT_EQ(sea.chance[1], 1);
  EXPECT_EQ(sea.chance[2], 0);
  EXPECT_NEAR(sea.chance[4], 0.5, 4.5 * 0.5 / 20);
  EXPECT_EQ(sea.chance[4] + sea.chance[5], 1);
  EXPECT_THAT(document.heat_maps[1].chance, IsEmpty());
}

}  // namespace
}  // namespace nimbrel::engine
