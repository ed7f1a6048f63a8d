// What the objects tell and do in an iteration of a risk run.

#include "tests/objects/allocation_counter.h"
#include "tests/objects/support.h"

namespace nimbrel::engine {

namespace {

constexpr double kMorning = 8.0 / 24.0;
constexpr double kEvening = 17.0 / 24.0;

class IterationTest : public ObjectsTest {
 protected:
  /// Sets the samples, in the plan's order, and begins an iteration.
  void Begin(const std::vector<double>& units) {
    host_->samples().units = units;
    host_->samples().skipped.assign(units.size(), 0);
    host_->BeginIteration();
  }
  Date Start(const std::string& id) { return TaskOf(id)->get_Dates()->get_Start(); }
  Date Finish(const std::string& id) { return TaskOf(id)->get_Dates()->get_Finish(); }
};

TEST_F(IterationTest, TheSampledDurationIsTheSampleRoundedHalfToEven) {
  Open({{"A", 1}, {"B", 1}, {"C", 1}});
  Begin({2.5, 3.5, -1.4});
  EXPECT_EQ(TaskOf("A")->get_SampledDuration(), 2);
  EXPECT_EQ(TaskOf("B")->get_SampledDuration(), 4);
  EXPECT_EQ(TaskOf("C")->get_SampledDuration(), -1);
}

TEST_F(IterationTest, OutsideAnIterationItIsTheLikelyDuration) {
  Open({{"A", 3}, {"B", 1}});
  TaskOf("B")->Duration(-1)->put_Likely(4.5);
  EXPECT_EQ(TaskOf("A")->get_SampledDuration(), 3);
  EXPECT_EQ(TaskOf("B")->get_SampledDuration(), 4);
  Begin({1.0, 1.0});
  host_->samples().skipped[0] = 1;
  EXPECT_TRUE(host_->iteration_running());
  EXPECT_TRUE(TaskOf("A")->get_SkipInIteration());
  host_->EndIteration();
  EXPECT_FALSE(host_->iteration_running());
  EXPECT_FALSE(TaskOf("A")->get_SkipInIteration());
  EXPECT_EQ(TaskOf("A")->get_SampledDuration(), 3);
}

TEST_F(IterationTest, ATaskThatIsRuledOutSamplesNothingAndTakesNoTime) {
  Open({{"A", 3}, {"B", 1}});
  Begin({3.0, 1.0});
  host_->samples().skipped[0] = 1;
  EXPECT_EQ(TaskOf("A")->get_SampledDuration(), 0);
  EXPECT_FALSE(TaskOf("B")->get_SkipInIteration());
  host_->ScheduleIteration();
  EXPECT_EQ(Finish("A"), Start("A"));
}

TEST_F(IterationTest, OrdinaryTasksAreScheduledWithTheUnroundedSample) {
  Open({{"A", 3}});
  Begin({1.5});
  host_->ScheduleIteration();
  // Twelve hours: one day and four hours of the next, up to its break.
  EXPECT_EQ(Finish("A"), January(5) + 12.0 / 24.0);
}

TEST_F(IterationTest, SamplesAreRoundedToTheMinuteHalfToEven) {
  Plan document = MakePlan(TimeUnit::kHours);
  for (const char* id : {"A", "B", "C", "D", "E"}) {
    AddTask(document, id, 1);
  }
  Open(std::move(document));
  Begin({2.5 / 60, 3.5 / 60, 4.49 / 60, -7.0, 1e9});
  host_->ApplySamples();
  const std::vector<std::int32_t> minutes = {2, 4, 4, 0, 2147483647};
  for (TaskIndex task = 0; task < 5; ++task) {
    EXPECT_EQ(host_->scheduler().remaining(task), minutes[static_cast<std::size_t>(task)]) << task;
  }
}

TEST_F(IterationTest, SamplesOfTasksThatCarryWeatherReachOnlyWhoReadsThem) {
  Open({{"WEATHER", 1}, {"A", 1}});
  TaskOf("WEATHER")->get_UserFields()->SetValue(2, "weather", "tasktype", "1");
  Begin({40.0, 2.0});
  EXPECT_EQ(TaskOf("WEATHER")->get_SampledDuration(), 40);
  host_->ScheduleIteration();
  EXPECT_EQ(host_->scheduler().finish(), Instant(JanuaryDay(5), 17 * 60));
}

TEST_F(IterationTest, ReadingADateSchedulesNothingByItself) {
  Open({{"A", 2}});
  Begin({2.0});
  host_->ScheduleIteration();
  TaskOf("A")->get_Dates()->put_Constraint(3);
  TaskOf("A")->get_Dates()->put_ConstraintDate(January(7));
  EXPECT_EQ(Start("A"), January(4) + kMorning);
  plan()->Recalculate();
  EXPECT_EQ(Start("A"), January(7) + kMorning);
}

TEST_F(IterationTest, RecalculateKeepsTheSamples) {
  Open({{"A", 2}, {"B", 1}});
  TaskOf("A")->get_Links()->get_Successors()->Add("B", 2, 0, 0, 0);
  Begin({4.0, 1.0});
  host_->ScheduleIteration();
  TaskOf("A")->get_Dates()->put_Constraint(3);
  TaskOf("A")->get_Dates()->put_ConstraintDate(January(5));
  plan()->Recalculate();
  EXPECT_EQ(Finish("A"), January(8) + kEvening);
  EXPECT_EQ(Start("B"), January(11) + kMorning);
}

TEST_F(IterationTest, AfterAnIterationThePlanIsScheduledWithItsLikelyDurations) {
  Open({{"A", 2}});
  Begin({4.0});
  host_->ScheduleIteration();
  EXPECT_EQ(Finish("A"), January(7) + kEvening);
  host_->EndIteration();
  EXPECT_EQ(Finish("A"), January(5) + kEvening);
}

TEST_F(IterationTest, AChangeOfThePlansStructureInsideAnIterationKeepsTheSamples) {
  Open({{"X", 1}, {"A", 2}});
  Begin({1.0, 4.0});
  host_->ScheduleIteration();
  tasks()->Remove("X");
  tasks()->Add();
  plan()->Recalculate();
  EXPECT_EQ(TaskOf("A")->get_SampledDuration(), 4);
  EXPECT_EQ(Finish("A"), January(7) + kEvening);
}

TEST_F(IterationTest, SamplesFollowATaskThatChangesItsPlace) {
  Open({{"A", 1}, {"B", 1}, {"SUM", 0}});
  Begin({2.0, 3.0, 0.0});
  TaskOf("B")->MoveUnder(0, TaskOf("SUM"));
  TaskOf("A")->MoveUnder(0, TaskOf("SUM"));
  EXPECT_EQ(TaskOf("A")->get_SampledDuration(), 2);
  EXPECT_EQ(TaskOf("B")->get_SampledDuration(), 3);
}

TEST_F(IterationTest, WhatARunDoesAndUndoesLeavesTheDocumentAsItWas) {
  Open({{"A", 2}});
  const auto weather = AddWeather("NORTH SEA", "A");
  const Plan before = host_->document();
  Begin({2.0});
  for (int day = 4; day < 20; day += 2) {
    weather->SetDays(0, January(day), kNoDate);
  }
  TaskOf("A")->get_Dates()->put_Constraint(3);
  TaskOf("A")->get_Dates()->put_ConstraintDate(January(7));
  host_->ScheduleIteration();
  EXPECT_EQ(Start("A"), January(7) + kMorning);
  EXPECT_NE(host_->document(), before);
  weather->SetDays(1, January(1), January(31));
  TaskOf("A")->get_Dates()->put_Constraint(0);
  TaskOf("A")->get_Dates()->put_ConstraintDate(kNoDate);
  host_->EndIteration();
  EXPECT_EQ(host_->document(), before);
}

TEST_F(IterationTest, WithoutEventsThePlanSchedulesAsAnyOther) {
  Open({{"A", 2}});
  Begin({3.0});
  host_->ScheduleIteration();
  EXPECT_EQ(host_->scheduler().finish(), Instant(JanuaryDay(6), 17 * 60));
  host_->EndIteration();
}

// Memory.

class HotOperationsTest : public IterationTest {
 protected:
  void SetUp() override {
    Plan document = MakePlan();
    for (int i = 0; i < 50; ++i) {
      AddTask(document, "T" + std::to_string(i), 5);
      if (i > 0) {
        AddLink(document, "T" + std::to_string(i - 1), "T" + std::to_string(i));
      }
    }
    Open(std::move(document));
    plan()->get_CustomFields()->Add("Weather-start", 2);
    plan()->SetOption("NIMBRELMOD", "Options", "IsWeatherPlan", "TRUE");
    for (const char* name : {"NORTH SEA", "RIVER"}) {
      calendars_.push_back(calendars()->Add(name));
      risk_calendars()->Add(name)->put_Calendar(calendars_.back());
    }
    for (const auto& task : tasks()->Elements()) {
      task->get_RiskCalendars()->Add(held_.size() % 2 == 0 ? "NORTH SEA" : "RIVER");
      task->Duration(-1);
      held_.push_back(task);
    }
    period_ = tasks()->Add();
    period_->put_Calendar(calendars_[0]);
    period_->get_UserFields()->SetValue(2, "weather", "tasktype", "1");
    period_->get_UserFields()->SetCustom("Weather-start", January(4));
    period_->Risk(-1);
    analysis_ = plan()->get_RiskAnalysis();
  }

  /// The host operations of an iteration, each as the add-in calls it.
  void Iterate() {
    const auto active = plan();
    EXPECT_EQ(active->GetOption("NIMBRELMOD", "Options", "IsWeatherPlan", ""), "TRUE");
    for (const auto& calendar : calendars_) {
      calendar->SetDays(1, January(1), January(31) + 365.0);
    }
    EXPECT_EQ(period_->get_SampledDuration(), 6);
    EXPECT_FALSE(period_->get_SkipInIteration());
    const Date start = *period_->get_UserFields()->GetCustom("Weather-start").Get<Date>();
    EXPECT_EQ(period_->Risk(0)->get_Probability(), 100.0);
    const Long spare = period_->get_Calendar()->WorkingTime(start, start + 300.0, 1) - 100;
    while (period_->get_Calendar()->WorkingTime(start, start + 300.0, 1) > spare) {
      const double offset = 301.0 * analysis_->get_Rnd();
      EXPECT_EQ(active->get_Properties()->get_TimeUnit(), 1);
      period_->get_Calendar()->SetDays(0, start + offset, kNoDate);
    }
    for (const auto& task : held_) {
      task->get_Dates()->put_Constraint(0);
      task->get_Dates()->put_ConstraintDate(kNoDate);
    }
    host_->ScheduleIteration();
    active->put_AutoRecalculate(false);
    for (const auto& task : held_) {
      Date day = task->get_Dates()->get_Start();
      const Date end = task->get_Dates()->get_Finish();
      const auto calendar = task->get_Calendar();
      for (; day.serial < end.serial; day = day + 1.0) {
        if (task->NextWorkingDate(day, 0.0) != day && calendar->WeekdayStatus(0, 1) == 1) {
          task->get_Dates()->put_Constraint(3);
          task->get_Dates()->put_ConstraintDate(day + 1.0);
          break;
        }
      }
    }
    active->Recalculate();
    EXPECT_FALSE(active->get_RiskAnalysis()->get_Options()->get_RecalculateAfterMove());
  }

  std::vector<Ref<Corvane8::Calendar>> calendars_;
  std::vector<Ref<Corvane8::Task>> held_;
  Ref<Corvane8::Task> period_;
  Ref<Corvane8::RiskAnalysis> analysis_;
};

TEST_F(HotOperationsTest, AllocateNothing) {
  std::vector<double> units(held_.size(), 5.0);
  units.push_back(6.0);
  Begin(units);
  // The first iterations find room for the journal of taken days and for the scheduler's work.
  for (int i = 0; i < 10; ++i) {
    Iterate();
  }
  const std::size_t before = AllocationCount();
  Iterate();
  EXPECT_EQ(AllocationCount(), before);
  EXPECT_EQ(tasks()->Elements().size(), 51U);
  EXPECT_GT(AllocationCount(), before) << "a snapshot of the tasks must be counted";
}

}  // namespace
}  // namespace nimbrel::engine
