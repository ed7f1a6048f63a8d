// Risk runs: the events, the samples, the random stream, and what the events do to the plan.

#include <gmock/gmock.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/conformance/host_suite.h"

namespace nimbrel::conformance {

using Corvane8::Ref;
using platform::Date;
using ::testing::ElementsAre;

namespace {

using Numbers = std::vector<double>;

/// The numbers that `reads` reads of the random stream give in each iteration.
Listener ReadsOfTheStream(Numbers& numbers, int reads) {
  Listener listener;
  listener.before_iteration = [&numbers, reads](const Listener::PlanRef& plan, std::int32_t) {
    for (int i = 0; i < reads; ++i) {
      numbers.push_back(plan->get_RiskAnalysis()->get_Rnd());
    }
  };
  return listener;
}

}  // namespace

TEST_P(HostSuite, RaisesTheEventsOfARunInOrder) {
  Open({.tasks = {Certain("A", 1)}});
  std::vector<std::string> events;
  std::vector<std::int32_t> numbers;
  Listener listener;
  listener.before_analysis = [&](const auto&) { events.emplace_back("before analysis"); };
  listener.before_iteration = [&](const auto&, std::int32_t iteration) {
    events.emplace_back("before iteration");
    numbers.push_back(iteration);
  };
  listener.after_iteration = [&](const auto&, std::int32_t iteration) {
    events.emplace_back("after iteration");
    EXPECT_EQ(iteration, numbers.back());
  };
  listener.after_analysis = [&](const auto&) { events.emplace_back("after analysis"); };
  Run(listener, 2);
  EXPECT_THAT(events, ElementsAre("before analysis", "before iteration", "after iteration",
                                  "before iteration", "after iteration", "after analysis"));
  EXPECT_LT(numbers[0], numbers[1]);
}

TEST_P(HostSuite, EventsCarryThePlanThatIsAnalysed) {
  Open({.tasks = {Certain("A", 1)}});
  plan()->SetOption("NIMBRELMOD", "Options", "IsWeatherPlan", "TRUE");
  int seen = 0;
  const auto look = [&seen](const Listener::PlanRef& plan) {
    seen += plan->GetOption("NIMBRELMOD", "Options", "IsWeatherPlan", "") == "TRUE" ? 1 : 0;
  };
  Listener listener;
  listener.before_analysis = look;
  listener.before_iteration = [&](const auto& plan, std::int32_t) { look(plan); };
  listener.after_iteration = [&](const auto& plan, std::int32_t) { look(plan); };
  listener.after_analysis = look;
  Run(listener, 1);
  EXPECT_EQ(seen, 4);
}

TEST_P(HostSuite, AReceiverThatHasUnsubscribedReceivesNothing) {
  Open({.tasks = {Certain("A", 1)}});
  int events = 0;
  Listener listener;
  listener.before_iteration = [&](const auto&, std::int32_t) { ++events; };
  Run(listener, 1);
  EXPECT_EQ(events, 1);
  host_->RunAnalysis(1, 1);
  EXPECT_EQ(events, 1);
}

TEST_P(HostSuite, SamplesHoldFromBeforeTheIterationToItsEnd) {
  Open({.tasks = {{.id = "A", .minimum = 1, .likely = 5, .maximum = 20}}});
  std::vector<std::int32_t> before;
  Listener listener;
  listener.before_iteration = [&](const auto&, std::int32_t) {
    before.push_back(Task("A")->get_SampledDuration());
    EXPECT_EQ(Task("A")->get_SampledDuration(), before.back());
  };
  listener.after_iteration = [&](const auto& plan, std::int32_t) {
    EXPECT_EQ(Task("A")->get_SampledDuration(), before.back());
    plan->Recalculate();
    EXPECT_EQ(Task("A")->get_SampledDuration(), before.back());
  };
  Run(listener, 50);
  for (const std::int32_t sample : before) {
    EXPECT_GE(sample, 1);
    EXPECT_LE(sample, 20);
  }
}

TEST_P(HostSuite, SamplesTasksThatWereAddedThroughTheObjects) {
  Open({});
  const auto task = plan()->get_Tasks()->Add();
  const auto duration = task->Duration(-1);
  duration->put_Minimum(7.0);
  duration->put_Likely(7.0);
  duration->put_Maximum(7.0);
  std::vector<std::int32_t> samples;
  Listener listener;
  listener.before_iteration = [&](const auto&, std::int32_t) {
    samples.push_back(task->get_SampledDuration());
  };
  Run(listener, 2);
  EXPECT_THAT(samples, ElementsAre(7, 7));
}

TEST_P(HostSuite, SamplesAreInThePlansUnits) {
  Open({.time_unit = 24, .tasks = {Certain("A", 20)}});
  Listener listener;
  listener.before_iteration = [&](const auto&, std::int32_t) {
    EXPECT_EQ(Task("A")->get_SampledDuration(), 20);
  };
  Run(listener, 1);
}

TEST_P(HostSuite, AnIterationIsScheduledInThePlansUnits) {
  // Two days and a half of eight hours, in hours and in quarters of one; then a day of weather.
  for (const auto& [unit, length] : {std::pair(24, 20.0), std::pair(96, 80.0)}) {
    Open({.time_unit = unit, .tasks = {Certain("A", length), Certain("B", length / 2, {"A"})}});
    const auto calendar = AddWeatherCalendar("NORTH SEA");
    Assign("A", "NORTH SEA");
    Listener listener;
    listener.before_iteration = [&](const auto&, std::int32_t iteration) {
      calendar->SetDays(iteration == 1 ? 1 : 0, January(5), January(5));
    };
    listener.after_iteration = [&](const auto&, std::int32_t iteration) {
      EXPECT_EQ(Task("A")->get_SampledDuration(), static_cast<std::int32_t>(length));
      EXPECT_EQ(FinishDay("A"), January(iteration == 1 ? 6 : 7)) << unit;
      EXPECT_EQ(FinishDay("B"), January(iteration == 1 ? 7 : 8)) << unit;
    };
    Run(listener, 2);
  }
}

TEST_P(HostSuite, ATaskThatIsRuledOutSamplesNothing) {
  Open({.tasks = {{.id = "NEVER", .minimum = 3, .likely = 3, .maximum = 3, .probability = 0},
                  {.id = "MAYBE", .minimum = 3, .likely = 3, .maximum = 3, .probability = 50},
                  Certain("ALWAYS", 3)}});
  int occurred = 0;
  constexpr int kIterations = 200;
  Listener listener;
  listener.before_iteration = [&](const auto&, std::int32_t) {
    EXPECT_TRUE(Task("NEVER")->get_SkipInIteration());
    EXPECT_EQ(Task("NEVER")->get_SampledDuration(), 0);
    EXPECT_FALSE(Task("ALWAYS")->get_SkipInIteration());
    EXPECT_EQ(Task("ALWAYS")->get_SampledDuration(), 3);
    const bool skip = Task("MAYBE")->get_SkipInIteration();
    EXPECT_EQ(Task("MAYBE")->get_SampledDuration(), skip ? 0 : 3);
    occurred += skip ? 0 : 1;
  };
  Run(listener, kIterations);
  // 100 expected with a standard deviation of 7.1: six of them either way.
  EXPECT_GT(occurred, 57);
  EXPECT_LT(occurred, 143);
}

TEST_P(HostSuite, RandomNumbersRunFromZeroUpToButNotIncludingOne) {
  Open({.tasks = {Certain("A", 1)}});
  Numbers numbers;
  Listener listener = ReadsOfTheStream(numbers, 500);
  Run(listener, 2);
  ASSERT_EQ(numbers.size(), 1000U);
  for (const double number : numbers) {
    EXPECT_GE(number, 0.0);
    EXPECT_LT(number, 1.0);
  }
  EXPECT_EQ(std::set<double>(numbers.begin(), numbers.end()).size(), numbers.size())
      << "each read gives the next number";
}

TEST_P(HostSuite, TheSameSeedRepeatsARun) {
  Open({.tasks = {{.id = "A", .minimum = 1, .likely = 50, .maximum = 100, .probability = 50}}});
  const auto run = [this](std::uint64_t seed) {
    Numbers numbers;
    Listener listener = ReadsOfTheStream(numbers, 3);
    listener.after_iteration = [&](const auto&, std::int32_t) {
      numbers.push_back(Task("A")->get_SampledDuration());
    };
    Run(listener, 20, seed);
    return numbers;
  };
  const Numbers first = run(42);
  EXPECT_EQ(run(42), first);
  EXPECT_NE(run(43), first);
}

TEST_P(HostSuite, AReferenceToTheRiskAnalysisServesTheWholeRun) {
  Open({.tasks = {Certain("A", 1)}});
  Ref<Corvane8::RiskAnalysis> held;
  std::set<double> numbers;
  Listener listener;
  listener.before_analysis = [&](const auto& plan) { held = plan->get_RiskAnalysis(); };
  listener.before_iteration = [&](const auto&, std::int32_t) { numbers.insert(held->get_Rnd()); };
  Run(listener, 10);
  EXPECT_EQ(numbers.size(), 10U);
}

TEST_P(HostSuite, WeatherPutOnACalendarBeforeAnIterationIsHonouredInIt) {
  Open({.tasks = {Certain("A", 2), Certain("B", 1, {"A"})}});
  const auto calendar = AddWeatherCalendar("NORTH SEA");
  Assign("A", "NORTH SEA");
  std::vector<std::pair<Date, Date>> days;  // start of A, start of B
  Listener listener;
  int iteration = 0;
  listener.before_iteration = [&](const auto&, std::int32_t) {
    calendar->SetDays(1, January(4), January(31));
    if (++iteration == 2) {
      calendar->SetDays(0, January(4), January(5));
    }
  };
  listener.after_iteration = [&](const auto&, std::int32_t) {
    days.emplace_back(StartDay("A"), StartDay("B"));
  };
  Run(listener, 3);
  EXPECT_THAT(days,
              ElementsAre(std::pair(January(4), January(6)), std::pair(January(6), January(8)),
                          std::pair(January(4), January(6))));
}

TEST_P(HostSuite, AConstraintPutOnATaskBeforeAnIterationIsHonouredInIt) {
  Open({.tasks = {Certain("A", 2)}});
  std::vector<Date> days;
  Listener listener;
  int iteration = 0;
  listener.before_iteration = [&](const auto&, std::int32_t) {
    const auto dates = Task("A")->get_Dates();
    dates->put_Constraint(++iteration == 1 ? 3 : 0);
    dates->put_ConstraintDate(iteration == 1 ? January(7) : Date{0.0});
  };
  listener.after_iteration = [&](const auto&, std::int32_t) { days.push_back(StartDay("A")); };
  Run(listener, 2);
  EXPECT_THAT(days, ElementsAre(January(7), January(4)));
}

TEST_P(HostSuite, ThePlanCanBeScheduledAgainInsideTheEventAfterAnIteration) {
  Open({.tasks = {Certain("A", 2), Certain("B", 1, {"A"})}});
  Listener listener;
  listener.after_iteration = [&](const auto& plan, std::int32_t) {
    plan->put_AutoRecalculate(false);
    const auto dates = Task("A")->get_Dates();
    dates->put_Constraint(3);
    dates->put_ConstraintDate(January(6));
    plan->Recalculate();
    EXPECT_EQ(StartDay("A"), January(6));
    EXPECT_EQ(StartDay("B"), January(8));
    dates->put_ConstraintDate(January(12));
    plan->Recalculate();
    plan->RecalculateFinish();
    EXPECT_EQ(StartDay("A"), January(12));
    EXPECT_EQ(StartDay("B"), January(14));
    dates->put_Constraint(0);
    dates->put_ConstraintDate(Date{0.0});
  };
  Run(listener, 2);
}

TEST_P(HostSuite, AnIterationIsScheduledWithItsSamples) {
  Open({.tasks = {{.id = "A", .minimum = 1, .likely = 3, .maximum = 5}}});
  std::set<std::int32_t> seen;
  Listener listener;
  listener.after_iteration = [&](const auto&, std::int32_t) {
    // Samples need not be whole days, so the working days that the task touches are its sample
    // rounded up or down, and one at least.
    const std::int32_t days = Calendar("STANDARD")->WorkingTime(StartDay("A"), FinishDay("A"), 1);
    EXPECT_LE(std::abs(days - Task("A")->get_SampledDuration()), 1);
    EXPECT_GE(days, 1);
    seen.insert(days);
  };
  Run(listener, 20);
  EXPECT_GE(*seen.begin(), 1);
  EXPECT_LE(*seen.rbegin(), 5);
}

TEST_P(HostSuite, WhatWasUndoneAfterTheAnalysisStaysUndone) {
  Open({.holidays = {January(7)}, .tasks = {Certain("A", 3)}});
  const auto calendar = AddWeatherCalendar("NORTH SEA");
  Assign("A", "NORTH SEA");
  plan()->Recalculate();
  const Date finish = Task("A")->get_Dates()->get_Finish();
  Listener listener;
  listener.before_iteration = [&](const auto&, std::int32_t) {
    calendar->SetDays(0, January(4), January(8));
  };
  listener.after_analysis = [&](const auto& plan) {
    calendar->SetDays(1, January(4), January(31));
    plan->Recalculate();
  };
  Run(listener, 2);
  EXPECT_EQ(calendar->WorkingTime(January(4), January(10), 1), 7);
  EXPECT_EQ(Task("A")->get_Dates()->get_Finish(), finish);
}

TEST_P(HostSuite, RunsAndSchedulesWithASummaryThatHasNoCalendar) {
  Open({.tasks = {Certain("A", 2)}});
  const auto summary = plan()->get_Tasks()->Add();
  summary->put_ID("WEATHER");
  summary->get_UserFields()->SetValue(2, "weather", "tasktype", "10");
  summary->put_Calendar(nullptr);
  const auto period = plan()->get_Tasks()->Add();
  period->MoveUnder(0, summary);
  period->put_Calendar(AddWeatherCalendar("NORTH SEA"));
  period->get_UserFields()->SetValue(2, "weather", "tasktype", "1");
  const auto duration = period->Duration(-1);
  duration->put_Minimum(2.0);
  duration->put_Likely(2.0);
  duration->put_Maximum(2.0);
  Listener listener;
  listener.before_iteration = [&](const auto&, std::int32_t) {
    EXPECT_EQ(period->get_SampledDuration(), 2);
  };
  listener.after_iteration = [&](const auto&, std::int32_t) {
    EXPECT_EQ(FinishDay("A"), January(5));
  };
  Run(listener, 1);
  plan()->Recalculate();
  EXPECT_EQ(FinishDay("A"), January(5));
}

}  // namespace nimbrel::conformance
