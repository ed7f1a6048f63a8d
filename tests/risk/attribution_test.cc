// What each calendar costs, and where its days go.

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
#include "tests/support/schedule/random_plan.h"

namespace nimbrel::engine {
namespace {

using ::testing::ElementsAre;

RunResult Attribute(const WeatherPlan& plan, std::int32_t iterations, std::int32_t workers = 1) {
  return engine::Run(plan.plan, {.iterations = iterations, .workers = workers, .attribute = true},
                     WithUncheckedAddIn());
}

/// The plan's finishes where a calendar's weather is drawn and placed as ever, but no task has the
/// calendar: the second method.
std::vector<Instant> FinishesUnassigned(WeatherPlan plan, std::int32_t iterations,
                                        const std::vector<std::string>& calendars) {
  for (std::size_t i = 0; i < plan.plan.tasks().size(); ++i) {
    Task& task = *plan.plan.FindTask(plan.plan.tasks()[i].uid);
    std::erase_if(task.risk_calendars, [&](const RiskAssignment& assigned) {
      const std::string& name = plan.plan.FindRiskCalendar(assigned.risk_calendar)->name;
      return std::find(calendars.begin(), calendars.end(), name) != calendars.end();
    });
  }
  return RunForFinish(plan.plan, {.iterations = iterations}, WithUncheckedAddIn()).finish_samples;
}

/// SEA loses days 3 to 5 and WIND days 5 to 8, always, and A has both: it takes 10 days from day 1
/// on and would finish on day 10.
WeatherPlan OverlappingCalendars() {
  WeatherPlan plan;
  plan.AddTask("A", 10);
  plan.AddWeatherCalendar("SEA");
  plan.AddWeatherCalendar("WIND");
  plan.AddPeriod("SEA", 3, 5, Always(3));
  plan.AddPeriod("WIND", 5, 8, Always(4));
  plan.Assign("A", "SEA");
  plan.Assign("A", "WIND");
  return plan;
}

TEST(Attribution, OfCalendarsThatOverlapIsTheOneWorkedOutByHand) {
  const WeatherPlan plan = OverlappingCalendars();
  const RunResult run = Attribute(plan, 2);
  // Together they lose days 3 to 8, six of them: the end is day 16. Without SEA four are lost,
  // without WIND three.
  ASSERT_TRUE(run.attribution.has_value());
  const AttributionResult& found = *run.attribution;
  EXPECT_THAT(DaysLate(run.finish_samples, 0), ElementsAre(16, 16));
  EXPECT_THAT(DaysLate(found.none, 0), ElementsAre(10, 10));
  EXPECT_THAT(DaysLate(found.left_out[0], 0), ElementsAre(14, 14));
  EXPECT_THAT(DaysLate(found.left_out[1], 0), ElementsAre(13, 13));
  EXPECT_THAT(DaysLate(found.alone[0], 0), ElementsAre(13, 13));
  EXPECT_THAT(DaysLate(found.alone[1], 0), ElementsAre(14, 14));

  // Every iteration is like the other, and 40 are enough for intervals.
  const RunResult longer = Attribute(plan, 40);
  const RunDocument document = MakeRunDocument(plan.plan, {.run = longer, .weather = true});
  const Attribution& told = *document.attribution;
  const auto days = [](double d) { return DayFigures{d, d, d, d, d, d, d, d, d, d}; };
  EXPECT_EQ(told.cost, days(6));
  EXPECT_EQ(told.calendars[0].cost, days(2));
  EXPECT_EQ(told.calendars[1].cost, days(3));
  EXPECT_EQ(told.calendars[0].cost_alone, days(3));
  EXPECT_EQ(told.calendars[1].cost_alone, days(4));
  EXPECT_EQ(told.calendars[1].delay.p80, 3);
  EXPECT_EQ(told.calendars[1].delay_alone.p80_high, 4);

  const RunDocument small = MakeRunDocument(plan.plan, {.run = run, .weather = true});
  EXPECT_EQ(small.attribution->cost.p80, 6);
  EXPECT_TRUE(std::isnan(small.attribution->cost.p80_low)) << "2 iterations have no interval";
  EXPECT_TRUE(small.finish.statistics.p80_low.IsAbsent());
}

TEST(Attribution, OfOneCalendarIsThatOfAllWeather) {
  WeatherPlan plan;
  plan.AddTask("A", 10);
  plan.AddWeatherCalendar("SEA");
  plan.AddPeriod("SEA", 3, 5, Always(3));
  plan.Assign("A", "SEA");
  const RunResult run = Attribute(plan, 1);
  EXPECT_EQ(run.attribution->left_out[0], run.attribution->none);
  EXPECT_EQ(run.attribution->alone[0], run.finish_samples);
  EXPECT_THAT(DaysLate(run.attribution->none, 0), ElementsAre(10));
}

TEST(Attribution, OfAPlanWithoutWeatherIsItsFinish) {
  WeatherPlan plan;
  plan.AddTask("A", {2, 5, 9});
  const RunResult run =
      engine::Run(plan.plan, {.iterations = 5, .attribute = true}, WithoutAddIn());
  EXPECT_EQ(run.attribution->none, run.finish_samples);
}

/// Weather of all kinds on a random plan, with lifts; DESERT is on no task.
WeatherPlan RandomPlanWithWeather(std::uint64_t seed) {
  WeatherPlan plan;
  plan.plan = test::RandomPlan(seed, {.tasks = 14,
                                      .with_constraints = seed % 2 == 0,
                                      .with_progress = seed % 3 == 0,
                                      .with_risk_calendars = false});
  test::Dice dice(seed);
  std::vector<std::string> tasks;
  for (const Task& task : plan.plan.tasks()) {
    tasks.push_back(task.id);
  }
  // Random plans begin on 1 March, which is day 57.
  for (const char* calendar : {"SEA", "DESERT", "ICE", "WIND"}) {
    plan.AddWeatherCalendar(calendar);
  }
  plan.AddPeriod("SEA", 50, 80, {2, 4, 9});
  plan.AddPeriod("SEA", 81, 110, {1, 2, 8}, 50);
  plan.AddPeriod("DESERT", 55, 100, {5, 9, 20});
  plan.AddWindow("ICE", {60, 63, 66}, {70, 72, 75});
  plan.AddPeriod("WIND", 57, 120, {5, 15, 30});
  for (const std::string& task : tasks) {
    for (const char* calendar : {"SEA", "ICE", "WIND"}) {
      if (dice.OneIn(2)) {
        plan.Assign(task, calendar);
      }
    }
    if (dice.OneIn(3) && plan.plan.FindTask(task)->remaining_minutes <= 1440) {
      plan.MarkNoSplit(task);
    }
  }
  return plan;
}

class AttributionOfRandomPlans : public ::testing::TestWithParam<std::uint64_t> {};

TEST_P(AttributionOfRandomPlans, IsThatOfPlansWhoseTasksDoNotHaveTheCalendars) {
  const WeatherPlan plan = RandomPlanWithWeather(GetParam());
  const RunResult run = Attribute(plan, 12);
  const AttributionResult& found = *run.attribution;
  const std::vector<std::string> names = {"SEA", "DESERT", "ICE", "WIND"};
  EXPECT_EQ(found.none, FinishesUnassigned(plan, 12, names));
  for (std::size_t i = 0; i < names.size(); ++i) {
    std::vector<std::string> others = names;
    others.erase(others.begin() + static_cast<std::ptrdiff_t>(i));
    EXPECT_EQ(found.left_out[i], FinishesUnassigned(plan, 12, {names[i]})) << names[i];
    EXPECT_EQ(found.alone[i], FinishesUnassigned(plan, 12, others)) << names[i];
  }
}

TEST_P(AttributionOfRandomPlans, ACalendarThatTouchesNothingCostsNothingInAnyIteration) {
  const WeatherPlan plan = RandomPlanWithWeather(GetParam());
  const RunResult run = Attribute(plan, 12);
  EXPECT_EQ(run.attribution->left_out[1], run.finish_samples);  // DESERT
  EXPECT_EQ(run.attribution->alone[1], run.attribution->none);
  const LedgerResult& ledger = run.attribution->ledger[1];
  EXPECT_GT(ledger.lost, 0);
  EXPECT_EQ(ledger.off, ledger.lost);
}

TEST_P(AttributionOfRandomPlans, LedgerAddsUp) {
  const RunResult run = Attribute(RandomPlanWithWeather(GetParam()), 12);
  for (std::size_t i = 0; i < run.calendars.size(); ++i) {
    const LedgerResult& ledger = run.attribution->ledger[i];
    EXPECT_EQ(ledger.off + ledger.idle + ledger.absorbed + ledger.moving, ledger.lost);
    EXPECT_THAT(static_cast<double>(ledger.lost) / 12,
                ::testing::DoubleNear(run.calendars[i].lost_days.mean, 1e-9));
  }
}

TEST_P(AttributionOfRandomPlans, LeavesTheRunItselfAsItIs) {
  const WeatherPlan plan = RandomPlanWithWeather(GetParam());
  RunResult attributed = Attribute(plan, 12);
  attributed.attribution.reset();
  EXPECT_EQ(attributed, engine::Run(plan.plan, {.iterations = 12}, WithUncheckedAddIn()));
}

INSTANTIATE_TEST_SUITE_P(Seeds, AttributionOfRandomPlans, ::testing::Range<std::uint64_t>(1, 13));

TEST(Attribution, IsTheSameForAnyNumberOfWorkers) {
  const WeatherPlan plan = RandomPlanWithWeather(4);
  const RunResult one = Attribute(plan, 150);
  EXPECT_EQ(Attribute(plan, 150, 2), one);
}

// ------------------------------------------------------------------ the ledger, by hand

TEST(Ledger, CountsADayThatHoldsUpTheOnlyTaskAsMovingTheFinish) {
  const RunResult run = Attribute(OverlappingCalendars(), 1);
  // A is under way from day 1 to day 16, and drives the finish. Day 5 is lost on both calendars and
  // counts for both.
  EXPECT_EQ(run.attribution->ledger[0], (LedgerResult{3, 0, 0, 0, 3}));
  EXPECT_EQ(run.attribution->ledger[1], (LedgerResult{4, 0, 0, 0, 4}));
}

TEST(Ledger, TellsWhatBecomesOfEachDay) {
  // A works days 1 to 4, LONG days 1 to 20 and drives the finish; B follows A and has float.
  WeatherPlan plan;
  plan.AddTask("A", 4);
  plan.AddTask("B", 3, {"A"});
  plan.AddTask("LONG", 20);
  plan.AddWeatherCalendar("SEA");
  plan.Assign("B", "SEA");
  plan.AddPeriod("SEA", 2, 6, Always(5));
  plan.AddPeriod("SEA", 12, 13, Always(2));
  const RunResult run = Attribute(plan, 1);
  // B can start on day 5, loses days 5 and 6, works days 7 to 9: days 2 to 4 come before it and 12
  // and 13 after it.
  EXPECT_EQ(run.attribution->ledger[0], (LedgerResult{7, 0, 5, 2, 0}));
  EXPECT_THAT(DaysLate(run.finish_samples, 0), ElementsAre(20));
}

TEST(Ledger, LetsTheFirstLostDaysUseUpTheFloat) {
  // Without weather A ends on day 5, B on day 7, and C on day 9. A loses the days 2 to 6, ends on
  // day 10, and C on day 12: of the five days the first two use up A's float, three move the
  // finish.
  WeatherPlan plan;
  plan.AddTask("A", 5);
  plan.AddTask("B", 7);
  plan.AddTask("C", 2, {"A", "B"});
  plan.AddWeatherCalendar("RAIN");
  plan.AddWeatherCalendar("WIND");
  plan.Assign("A", "RAIN");
  plan.Assign("A", "WIND");
  plan.AddPeriod("RAIN", 2, 4, Always(3));
  plan.AddPeriod("WIND", 3, 6, Always(4));
  const RunResult run = Attribute(plan, 1);
  EXPECT_THAT(DaysLate(run.finish_samples, 0), ElementsAre(12));
  // Of RAIN's days 2 to 4 the last moves the finish, of WIND's 3 to 6 all but the first.
  EXPECT_EQ(run.attribution->ledger[0], (LedgerResult{3, 0, 0, 2, 1}));
  EXPECT_EQ(run.attribution->ledger[1], (LedgerResult{4, 0, 0, 1, 3}));
}

TEST(Ledger, CountsNothingAsMovingAFinishThatStaysWhereItIs) {
  // A has float for the two days that it loses, and then finishes together with B.
  WeatherPlan plan;
  plan.AddTask("A", 5);
  plan.AddTask("B", 7);
  plan.AddWeatherCalendar("RAIN");
  plan.Assign("A", "RAIN");
  plan.AddPeriod("RAIN", 2, 3, Always(2));
  const RunResult run = Attribute(plan, 1);
  EXPECT_EQ(run.attribution->ledger[0], (LedgerResult{2, 0, 0, 2, 0}));
}

TEST(Ledger, LooksAlsoAtWhatComesBeforeAPushedLift) {
  // A loses the days 2 to 4 and ends on day 8. The lift could begin on day 9, but day 10 would cut
  // it: it begins on day 11 and ends on day 13 instead of 8. All four days move the finish.
  WeatherPlan plan;
  plan.AddTask("A", 5);
  plan.AddTask("LIFT", 3, {"A"});
  plan.MarkNoSplit("LIFT");
  plan.AddWeatherCalendar("ICE");
  plan.AddWeatherCalendar("WIND");
  plan.Assign("A", "ICE");
  plan.Assign("LIFT", "WIND");
  plan.AddPeriod("ICE", 2, 4, Always(3));
  plan.AddPeriod("WIND", 10, 10, Always(1));
  const RunResult run = Attribute(plan, 1);
  EXPECT_THAT(DaysLate(run.finish_samples, 0), ElementsAre(13));
  EXPECT_EQ(run.attribution->ledger[0], (LedgerResult{3, 0, 0, 0, 3}));
  EXPECT_EQ(run.attribution->ledger[1], (LedgerResult{1, 0, 0, 0, 1}));
  EXPECT_EQ(run.tasks[0].criticality, 1.0);
  EXPECT_EQ(run.tasks[1].criticality, 1.0);
}

TEST(Ledger, CountsAllDaysThatMoveAMilestoneAtTheStartOfADay) {
  // A works days 1 to 5, and the start milestone then stands at the beginning of day 6; A loses the
  // days 2 and 3, and the milestone stands at the beginning of day 8.
  WeatherPlan plan;
  plan.AddTask("A", 5);
  plan.AddTask("M", 0, {"A"}).kind = engine::TaskKind::kStartMilestone;
  plan.AddWeatherCalendar("RAIN");
  plan.Assign("A", "RAIN");
  plan.AddPeriod("RAIN", 2, 3, Always(2));
  const RunResult run = Attribute(plan, 1);
  EXPECT_EQ(run.finish_samples[0].Minutes() - run.attribution->none[0].Minutes(), 2 * 24 * 60);
  EXPECT_EQ(run.attribution->ledger[0], (LedgerResult{2, 0, 0, 0, 2}));
}

TEST(Ledger, CountsDaysOffOfTheTasksOwnCalendars) {
  WeatherPlan plan;
  const Uid five = plan.plan.AddCalendar(MakeWeekCalendar("FIVE", 5, 8)).uid;
  plan.AddTask("A", 10).calendar = five;
  plan.AddWeatherCalendar("SEA");
  plan.Assign("A", "SEA");
  plan.AddPeriod("SEA", 5, 8, Always(4));
  const RunResult run = Attribute(plan, 1);
  // Days 6 and 7 are a weekend. A loses Friday and Monday.
  EXPECT_EQ(run.attribution->ledger[0], (LedgerResult{4, 2, 0, 0, 2}));
}

TEST(Ledger, CountsTheDaysThatALiftIsPushedPast) {
  WeatherPlan plan;
  plan.AddTask("A", 4);
  plan.AddTask("LIFT", 3, {"A"});
  plan.MarkNoSplit("LIFT");
  plan.AddWeatherCalendar("SEA");
  plan.Assign("LIFT", "SEA");
  plan.AddPeriod("SEA", 6, 6, Always(1));
  plan.AddPeriod("SEA", 9, 9, Always(1));
  const RunResult run = Attribute(plan, 1);
  // From day 5 it would be cut by day 6, from day 7 by day 9: it works days 10 to 12, and both days
  // stood in its way.
  EXPECT_THAT(DaysLate(run.finish_samples, 0), ElementsAre(12));
  EXPECT_EQ(run.attribution->ledger[0], (LedgerResult{2, 0, 0, 0, 2}));
  EXPECT_THAT(DaysLate(run.attribution->none, 0), ElementsAre(7));
}

TEST(Ledger, ATaskThatIsReadyAtTheEndOfADayIsNotHeldUpByThatDay) {
  WeatherPlan plan;
  plan.AddTask("A", 4);
  plan.AddTask("B", 3, {"A"});
  plan.AddWeatherCalendar("SEA");
  plan.Assign("B", "SEA");
  plan.AddPeriod("SEA", 4, 5, Always(2));
  const RunResult run = Attribute(plan, 1);
  EXPECT_EQ(run.attribution->ledger[0], (LedgerResult{2, 0, 1, 0, 1}));
}

}  // namespace
}  // namespace nimbrel::engine
