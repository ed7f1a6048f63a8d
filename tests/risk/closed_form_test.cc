// Risk runs through the add-in's own events against distributions that are known exactly.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <map>
#include <numeric>
#include <set>
#include <string>
#include <vector>

#include "engine/risk/run.h"
#include "tests/risk/goodness_of_fit.h"
#include "tests/risk/weather_plan.h"

namespace nimbrel::engine {
namespace {

constexpr std::int32_t kIterations = 20'000;

/// Runs the plan with the add-in and gives the samples of one task.
TaskSamples SamplesOf(const WeatherPlan& plan, const std::string& task) {
  const RunResult result = engine::Run(
      plan.plan, {.iterations = kIterations, .seed = 1, .asked = {plan.UidOf(task)}}, WithAddIn());
  EXPECT_EQ(result.iterations(), kIterations);
  return result.samples.front();
}

double Choose(int n, int k) {
  double result = 1;
  for (int i = 1; i <= k; ++i) {
    result = result * (n - k + i) / i;
  }
  return k < 0 || k > n ? 0 : result;
}

/// The day on which a task of `days` days ends that may start on day 1 and cannot work on some.
int EndAround(const std::set<int>& off, int days) {
  int day = 0;
  while (days > 0) {
    ++day;
    days -= off.contains(day) ? 0 : 1;
  }
  return day;
}

/// Chance of each delay by going through all places of a block of `length` days that starts on one
/// of the first days of the span, all alike; `end` gives the task's last day for days off.
std::function<double(int)> ByEnumeration(int span, int length, double probability, int undisturbed,
                                         const std::function<int(const std::set<int>&)>& end) {
  std::map<int, double> chances;
  chances[0] = 1 - probability;
  const int places = std::max(span - length, 1);
  for (int place = 0; place < places; ++place) {
    std::set<int> off;
    for (int day = place + 1; day <= place + length; ++day) {
      off.insert(day);
    }
    chances[end(off) - undisturbed] += probability / places;
  }
  return [chances](int delay) {
    const auto found = chances.find(delay);
    return found == chances.end() ? 0.0 : found->second;
  };
}

struct NegativeHypergeometric {
  TimeUnit unit;
  double units_a_day;
};

class ScatteredDays : public ::testing::TestWithParam<NegativeHypergeometric> {};

TEST_P(ScatteredDays, DelayATaskByANegativeHypergeometricNumber) {
  // A certain period of 20 days loses 5 of them, each set of 5 as likely as any other. A task of 6
  // days from its first day on is delayed by the lost days in front of its 6th worked day:
  // P(d) = C(6 + d - 1, d) C(20 - 6 - d, 5 - d) / C(20, 5).
  constexpr int kSpan = 20;
  constexpr int kLost = 5;
  constexpr int kTask = 6;
  WeatherPlan plan(GetParam().unit);
  plan.AddWeatherCalendar("SEA");
  plan.AddPeriod("SEA", 1, kSpan, Always(kLost * GetParam().units_a_day));
  plan.AddTask("A", kTask * GetParam().units_a_day);
  plan.Assign("A", "SEA");
  ExpectFrequencies(DaysLate(SamplesOf(plan, "A").finish, kTask), [](int d) {
    return d < 0 ? 0.0
                 : Choose(kTask + d - 1, d) * Choose(kSpan - kTask - d, kLost - d) /
                       Choose(kSpan, kLost);
  });
}

INSTANTIATE_TEST_SUITE_P(InAnyUnit, ScatteredDays,
                         ::testing::Values(NegativeHypergeometric{TimeUnit::kDays, 1},
                                           NegativeHypergeometric{TimeUnit::kHours, 8},
                                           NegativeHypergeometric{TimeUnit::kQuarters, 32}));

TEST(ScatteredDay, IsLostToTheCalendarInEveryIteration) {
  WeatherPlan plan;
  plan.AddWeatherCalendar("SEA");
  plan.AddPeriod("SEA", 1, 20, Always(5));
  plan.AddTask("A", 6);
  const RunResult result = engine::Run(plan.plan, {.iterations = 200}, WithAddIn());
  ASSERT_EQ(result.calendars.size(), 1U);
  EXPECT_EQ(result.calendars[0].name, "SEA");
  EXPECT_EQ(result.calendars[0].kind, "event");
  EXPECT_EQ(result.calendars[0].lost_days.min, 5);
  EXPECT_EQ(result.calendars[0].lost_days.max, 5);
}

TEST(Block, OverlapsATaskAsItsPlacesSay) {
  // A block of 4 days in a span of 15 begins on one of its first 11 days.
  constexpr double kProbability = 0.999;
  WeatherPlan plan;
  plan.AddWeatherCalendar("SEA");
  plan.AddPeriod("SEA", 1, 15, Always(4), 100 * kProbability);
  plan.AddTask("A", 5);
  plan.Assign("A", "SEA");
  ExpectFrequencies(DaysLate(SamplesOf(plan, "A").finish, 5),
                    ByEnumeration(15, 4, kProbability, 5,
                                  [](const std::set<int>& off) { return EndAround(off, 5); }));
}

TEST(Block, AsLongAsItsSpanBeginsOnTheFirstDay) {
  WeatherPlan plan;
  plan.AddWeatherCalendar("SEA");
  plan.AddPeriod("SEA", 1, 6, Always(9), 50);  // three days longer than the span
  plan.AddTask("A", 2);
  plan.Assign("A", "SEA");
  ExpectFrequencies(DaysLate(SamplesOf(plan, "A").finish, 2),
                    [](int d) { return d == 0 || d == 9 ? 0.5 : 0.0; });
}

TEST(PeriodOfFiftyPercent, IsAMixtureOfWeatherAndNone) {
  WeatherPlan plan;
  plan.AddWeatherCalendar("SEA");
  plan.AddPeriod("SEA", 1, 30, Always(7), 50);
  plan.AddTask("A", 12);
  plan.Assign("A", "SEA");
  ExpectFrequencies(
      DaysLate(SamplesOf(plan, "A").finish, 12),
      ByEnumeration(30, 7, 0.5, 12, [](const std::set<int>& off) { return EndAround(off, 12); }));
}

TEST(Window, WithThreeEqualDatesClosesExactlyTheseDays) {
  WeatherPlan plan;
  plan.AddWeatherCalendar("ICE");
  plan.AddWindow("ICE", {4, 4, 4}, {10, 10, 10});
  plan.AddTask("A", 6);
  plan.AddTask("B", 1, {"A"});
  plan.Assign("A", "ICE");
  plan.Assign("B", "ICE");
  const RunResult result = engine::Run(
      plan.plan, {.iterations = 300, .asked = {plan.UidOf("A"), plan.UidOf("B")}}, WithAddIn());
  for (std::size_t i = 0; i < 300; ++i) {
    // Days 1 to 3 and 11 to 13; then day 14.
    EXPECT_EQ(result.samples[0].start[i], Instant(WeatherPlan::Serial(1), 480));
    EXPECT_EQ(result.samples[0].finish[i], Instant(WeatherPlan::Serial(13), 1020));
    EXPECT_EQ(result.samples[1].start[i], Instant(WeatherPlan::Serial(14), 480));
    EXPECT_EQ(result.samples[1].finish[i], Instant(WeatherPlan::Serial(14), 1020));
  }
  EXPECT_EQ(result.calendars.at(0).kind, "window");
  EXPECT_EQ(result.calendars.at(0).lost_days.mean, 7);
}

TEST(Window, OpensAndClosesOnTheDaysOfItsEdges) {
  // The opening is on day 3 plus a triangular number of 0, 1, 2, rounded: 0, 1 and 2 have the
  // chances 1/8, 3/4 and 1/8. A task of 4 days works 2, 3 or 4 days before it closes to day 13.
  WeatherPlan plan;
  plan.AddWeatherCalendar("ICE");
  plan.AddWindow("ICE", {3, 4, 5}, {13, 13, 13});
  plan.AddTask("A", 4);
  plan.Assign("A", "ICE");
  ExpectFrequencies(DaysLate(SamplesOf(plan, "A").finish, 4), [](int d) {
    switch (d) {
      case 0:  // off from day 5, when the task has ended
        return 0.125;
      case 10:  // off from day 4, so that one day is left for day 14
        return 0.75;
      case 11:  // off from day 3
        return 0.125;
      default:
        return 0.0;
    }
  });
}

TEST(NoSplitTask, IsPushedPastTheBlockThatCutsIt) {
  // A block of 3 days in a span of 14. A task of 5 days that may not be split stands in front of
  // the block, or else behind it.
  WeatherPlan plan;
  plan.AddWeatherCalendar("SEA");
  plan.AddPeriod("SEA", 1, 14, Always(3), 80);
  plan.AddTask("LIFT", 5);
  plan.AddTask("NEXT", 1, {"LIFT"});
  plan.Assign("LIFT", "SEA");
  plan.MarkNoSplit("LIFT");
  const auto chance = ByEnumeration(14, 3, 0.8, 6, [](const std::set<int>& off) {
    const bool in_front = *off.begin() > 5;
    return in_front ? 6 : *off.rbegin() + 6;
  });
  const RunResult result = engine::Run(
      plan.plan, {.iterations = kIterations, .asked = {plan.UidOf("NEXT"), plan.UidOf("LIFT")}},
      WithAddIn());
  ExpectFrequencies(DaysLate(result.samples[0].finish, 6), chance);
  // The lift is never split: it always takes 5 days.
  for (std::size_t i = 0; i < result.samples[1].start.size(); ++i) {
    EXPECT_EQ(result.samples[1].finish[i].day() - result.samples[1].start[i].day(), 4);
  }
  // Of 11 places, one begins on day 1: there the first scheduling already starts behind the block
  // and nothing is pushed. Those on days 2 to 5 push from day 1 to behind the block: 4 to 7 days.
  const double expected = 0.8 / 11 * (4 + 5 + 6 + 7);
  const double squares = 0.8 / 11 * (16 + 25 + 36 + 49);
  const double deviation = std::sqrt((squares - expected * expected) / kIterations);
  EXPECT_NEAR(result.tasks[0].nosplit_pushed_days, expected, 4.5 * deviation);
  EXPECT_EQ(result.tasks[1].nosplit_pushed_days, 0.0) << "only marked tasks are measured";
}

TEST(NoSplitTask, IsPushedAgainUntilNoWeatherCutsIt) {
  // Two windows of one day each, on days 3 and 6: a task of 3 days fits only from day 7 on.
  WeatherPlan plan;
  plan.AddWeatherCalendar("ICE");
  plan.AddWindow("ICE", {3, 3, 3}, {3, 3, 3});
  plan.AddWindow("ICE", {6, 6, 6}, {6, 6, 6});
  plan.AddTask("LIFT", 3);
  plan.Assign("LIFT", "ICE");
  plan.MarkNoSplit("LIFT");
  const RunResult result =
      engine::Run(plan.plan, {.iterations = 10, .asked = {plan.UidOf("LIFT")}}, WithAddIn());
  for (const Instant start : result.samples[0].start) {
    EXPECT_EQ(WeatherPlan::DayOf(start), 7);
  }
  EXPECT_EQ(result.tasks[0].nosplit_pushed_days, 6.0);
}

/// Plans that work around the clock, so that durations are calendar time and can be added up.
WeatherPlan AroundTheClock() {
  return WeatherPlan(TimeUnit::kDays, 24);
}

std::vector<double> DaysFromStart(const std::vector<Instant>& dates) {
  std::vector<double> days;
  days.reserve(dates.size());
  for (const Instant date : dates) {
    days.push_back(
        static_cast<double>(date.Minutes() - Instant(WeatherPlan::Serial(1), 0).Minutes()) /
        kMinutesPerDay);
  }
  return days;
}

TEST(ChainOfTriangles, HasTheSumOfTheirMeansAndVariances) {
  WeatherPlan plan = AroundTheClock();
  plan.AddTask("A", {2, 3, 10, Shape::kTriangular});
  plan.AddTask("B", {5, 9, 9, Shape::kTriangular}, {"A"});
  plan.AddTask("C", {1, 4, 7, Shape::kTriangular}, {"B"});
  const double mean = (2 + 3 + 10) / 3.0 + (5 + 9 + 9) / 3.0 + (1 + 4 + 7) / 3.0;
  const auto variance_of = [](double a, double m, double b) {
    return (a * a + m * m + b * b - a * m - a * b - m * b) / 18;
  };
  const double variance = variance_of(2, 3, 10) + variance_of(5, 9, 9) + variance_of(1, 4, 7);
  const RunResult result = engine::Run(plan.plan, {.iterations = kIterations}, WithAddIn());
  const std::vector<double> days = DaysFromStart(result.finish_samples);
  const double found = std::accumulate(days.begin(), days.end(), 0.0) / kIterations;
  // Rounding three durations to the minute moves the sum by less than 0.002 days.
  EXPECT_NEAR(found, mean, 4.5 * std::sqrt(variance / kIterations) + 0.002);
  EXPECT_NEAR(DaysFromStart({result.finish.mean}).front(), found, 1.0 / kMinutesPerDay);
  // The sample variance of a sum of bounded triangles has a standard error below that of a normal
  // distribution, variance * sqrt(2 / N).
  EXPECT_NEAR(result.finish.sd_days * result.finish.sd_days, variance,
              4.5 * variance * std::sqrt(2.0 / kIterations));
}

TEST(ParallelUniformTasks, EndWithTheGreatestOfThem) {
  // The greatest of 4 uniform numbers from 10 to 20 days: Cdf ((x - 10) / 10)^4, mean 10 + 8.
  WeatherPlan plan = AroundTheClock();
  for (const char* id : {"A", "B", "C", "D"}) {
    plan.AddTask(id, {10, 15, 20, Shape::kUniform});
  }
  const RunResult result = engine::Run(plan.plan, {.iterations = kIterations}, WithAddIn());
  const std::vector<double> days = DaysFromStart(result.finish_samples);
  // Minutes are so fine that the distance of the rounded samples is that of the unrounded ones.
  EXPECT_LT(KolmogorovDistance(days, [](double x) { return std::pow((x - 10) / 10, 4); }),
            kKolmogorovLimit);
  // Each drives the finish in a quarter of the iterations, and one does in each; ties are rare.
  double shares = 0;
  for (const TaskResult& task : result.tasks) {
    EXPECT_NEAR(task.criticality, 0.25, 4.5 * std::sqrt(0.25 * 0.75 / kIterations));
    shares += task.criticality;
  }
  EXPECT_NEAR(shares, 1.0, 0.002);
}

}  // namespace
}  // namespace nimbrel::engine
