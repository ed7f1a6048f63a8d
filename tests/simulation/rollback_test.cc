// What is done once an iteration is scheduled, and after the analysis. January 2027: 9, 10 and 16,
// 17 are weekends; tasks stand on a calendar of Monday to Friday, 08:00 to 16:00, and start on
// Monday the 4th unless a test says otherwise.

#include "platform/runtime_error.h"
#include "tests/simulation/run_test.h"

namespace nimbrel::modWeatherEvents {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class RollbackTest : public RunTest {
 protected:
  RollbackTest() {
    plan().AddPeriod("P", "NORTH SEA", January(4), January(31))->scripted_samples = {0};
  }

  recording::TaskState& MarkedTask(const std::string& id, double days) {
    plan().AddTask(id, days)->SetWeatherValue("nosplit", "True");
    plan().Assign(id, "NORTH SEA");
    return plan().Task(id);
  }
  /// Takes days of January off after the weather of an iteration has been placed.
  void Weather(const std::vector<int>& days) {
    for (const int day : days) {
      plan().Calendar("NORTH SEA").weather.insert(static_cast<std::int32_t>(January(day).serial));
    }
  }
  bool Split(const std::string& id) { return IsTaskSplitByWeather(host_.TaskObject(id)); }
  static int DayOfJanuary(platform::Date date) { return platform::ToCivil(date).day; }
  std::vector<std::string> Changes() {
    return recorder().Containing({" = ", "SetDays", "Recalculate"});
  }
};

TEST_F(RollbackTest, CountsTheDaysOfTheWeekFromMonday) {
  EXPECT_EQ(WeekdayIndex(1), 6);  // Sunday
  EXPECT_EQ(WeekdayIndex(2), 0);
  EXPECT_EQ(WeekdayIndex(3), 1);
  EXPECT_EQ(WeekdayIndex(4), 2);
  EXPECT_EQ(WeekdayIndex(5), 3);
  EXPECT_EQ(WeekdayIndex(6), 4);
  EXPECT_EQ(WeekdayIndex(7), 5);  // Saturday
}

TEST_F(RollbackTest, AskingForASplitCallsTheHostInAFixedOrder) {
  MarkedTask("A", 3);
  Weather({5});
  plan().Schedule();
  recorder().Clear();
  EXPECT_TRUE(Split("A"));
  EXPECT_THAT(calls(), ElementsAre("Task(A).Dates", "TaskDates(A).Start", "Task(A).Dates",
                                   "TaskDates(A).Finish", "Task(A).Calendar",
                                   "Task(A).NextWorkingDate 2027-01-04T08:00:00 0",
                                   "Task(A).NextWorkingDate 2027-01-05T08:00:00 0",
                                   "Calendar(STANDARD).WeekdayStatus 1 1"));
}

TEST_F(RollbackTest, AWeekendThatTheSpanCrossesIsNoSplit) {
  MarkedTask("A", 7);
  plan().Schedule();
  EXPECT_FALSE(Split("A"));
  EXPECT_EQ(recorder().Containing({"WeekdayStatus"}).size(), 2U);
}

TEST_F(RollbackTest, WeatherOnAWeekendIsNoSplit) {
  MarkedTask("A", 7);
  Weather({9, 10});
  plan().Schedule();
  EXPECT_FALSE(Split("A"));
}

TEST_F(RollbackTest, AHolidayOfTheTasksOwnCalendarSplitsLikeWeather) {
  MarkedTask("A", 3);
  plan().Calendar("STANDARD").holidays.insert(static_cast<std::int32_t>(January(5).serial));
  plan().Schedule();
  EXPECT_TRUE(Split("A"));
}

TEST_F(RollbackTest, TheLastDayIsNotVisitedWhenTheTaskEndsByTheTimeOfDayOfItsStart) {
  auto& task = MarkedTask("A", 1);
  Weather({6});
  task.start = January(4) + 8.0 / 24.0;
  task.finish = January(6) + 8.0 / 24.0;
  EXPECT_FALSE(Split("A"));
  task.finish = January(6) + 9.0 / 24.0;
  EXPECT_TRUE(Split("A"));
}

TEST_F(RollbackTest, ATaskThatEndsWhenItStartsIsNeverMoved) {
  auto& task = MarkedTask("A", 0);
  Weather({4});
  plan().Schedule();
  ASSERT_EQ(task.start, task.finish);
  EXPECT_FALSE(Split("A"));
  recorder().Clear();
  MoveTaskPastWeather(host_.TaskObject("A"));
  EXPECT_THAT(Changes(), IsEmpty());
}

TEST_F(RollbackTest, MovingATaskHoldsItToTheDayAfterTheFirstWeatherDay) {
  auto& task = MarkedTask("A", 4);
  Weather({5, 7});
  plan().Schedule();
  recorder().Clear();
  MoveTaskPastWeather(host_.TaskObject("A"));
  EXPECT_THAT(
      recorder().Containing({"Constraint", "Dates("}),
      ElementsAre("TaskDates(A).Start", "TaskDates(A).Finish", "TaskDates(A).Constraint = 3",
                  "TaskDates(A).ConstraintDate = 2027-01-06T08:00:00"));
  EXPECT_EQ(task.constraint, 3);
}

TEST_F(RollbackTest, WithoutMarkedTasksNothingIsCalled) {
  plan().AddTask("A", 5);
  plan().Assign("A", "NORTH SEA");
  Prepare();
  Apply();
  Weather({5});
  Rollback();
  EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(RollbackTest, AMarkedTaskThatIsNotSplitChangesNothing) {
  MarkedTask("A", 5);
  Prepare();
  Apply();
  Weather({11});
  Rollback();
  EXPECT_THAT(Changes(), IsEmpty());
}

TEST_F(RollbackTest, ASplitTaskIsMovedAndThePlanScheduledUntilNoneIsSplit) {
  auto& task = MarkedTask("A", 3);
  Prepare();
  Apply();
  Weather({5});
  Rollback();
  EXPECT_THAT(Changes(), ElementsAre("Plan.AutoRecalculate = False", "TaskDates(A).Constraint = 3",
                                     "TaskDates(A).ConstraintDate = 2027-01-06T08:00:00",
                                     "Plan.Recalculate", "RiskOptions.RecalculateAfterMove"));
  EXPECT_EQ(DayOfJanuary(task.start), 6);
  EXPECT_EQ(DayOfJanuary(task.finish), 8);
  EXPECT_FALSE(plan().auto_recalculate);
}

TEST_F(RollbackTest, ATaskThatRunsIntoTheNextWeatherIsMovedAgain) {
  auto& task = MarkedTask("A", 3);
  Prepare();
  Apply();
  Weather({5, 7});
  Rollback();
  EXPECT_THAT(recorder().Containing({"ConstraintDate"}),
              ElementsAre("TaskDates(A).ConstraintDate = 2027-01-06T08:00:00",
                          "TaskDates(A).ConstraintDate = 2027-01-08T08:00:00"));
  // Friday, Monday, Tuesday.
  EXPECT_EQ(DayOfJanuary(task.start), 8);
  EXPECT_EQ(DayOfJanuary(task.finish), 12);
}

TEST_F(RollbackTest, TwoSplitTasksAreMovedInOnePassWithOneScheduling) {
  MarkedTask("A", 3);
  MarkedTask("B", 4);
  Prepare();
  Apply();
  Weather({5});
  Rollback();
  EXPECT_THAT(Changes(), ElementsAre("Plan.AutoRecalculate = False", "TaskDates(A).Constraint = 3",
                                     "TaskDates(A).ConstraintDate = 2027-01-06T08:00:00",
                                     "Plan.AutoRecalculate = False", "TaskDates(B).Constraint = 3",
                                     "TaskDates(B).ConstraintDate = 2027-01-06T08:00:00",
                                     "Plan.Recalculate", "RiskOptions.RecalculateAfterMove"));
}

TEST_F(RollbackTest, LaterTasksOfAPassAreTestedAgainstTheDatesBeforeTheMoves) {
  // A stands on the 4th and 6th, B behind it on the 7th and 8th, which is free of weather. The move
  // of A to the 6th and 7th pushes B to the 8th and 12th, and only the next pass sees that.
  MarkedTask("A", 2);
  auto& b = MarkedTask("B", 2);
  plan().Link("A", "B");
  Prepare();
  Apply();
  Weather({5, 11});
  Rollback();
  EXPECT_THAT(recorder().Containing({"ConstraintDate", "Plan.Recalculate"}),
              ElementsAre("TaskDates(A).ConstraintDate = 2027-01-06T08:00:00", "Plan.Recalculate",
                          "TaskDates(B).ConstraintDate = 2027-01-12T08:00:00", "Plan.Recalculate"));
  EXPECT_EQ(DayOfJanuary(b.start), 12);
  EXPECT_EQ(DayOfJanuary(b.finish), 13);
}

TEST_F(RollbackTest, TheFurtherStepOfTheHostFollowsEachSchedulingWhenItsOptionAsksForIt) {
  plan().recalculate_after_move = true;
  MarkedTask("A", 3);
  Prepare();
  Apply();
  Weather({5, 7});
  Rollback();
  EXPECT_THAT(
      recorder().Containing({"Recalculate"}),
      ElementsAre("Plan.AutoRecalculate = False", "Plan.Recalculate",
                  "RiskOptions.RecalculateAfterMove", "Plan.AutoRecalculate = True",
                  "Plan.Recalculate", "Plan.RecalculateFinish", "Plan.AutoRecalculate = False",
                  "Plan.Recalculate", "RiskOptions.RecalculateAfterMove",
                  "Plan.AutoRecalculate = True", "Plan.Recalculate", "Plan.RecalculateFinish"));
}

TEST_F(RollbackTest, ConstraintsStayUntilTheNextIteration) {
  auto& task = MarkedTask("A", 3);
  Prepare();
  Apply();
  Weather({5});
  Rollback();
  EXPECT_EQ(task.constraint, 3);
  Apply();
  EXPECT_EQ(task.constraint, 0);
  Rollback();
  EXPECT_EQ(DayOfJanuary(task.start), 4) << "no weather in this one";
}

TEST_F(RollbackTest, TheNumberOfTheIterationChangesNothing) {
  MarkedTask("A", 3);
  Prepare();
  Apply();
  Weather({5});
  plan().Schedule();
  recorder().Clear();
  AfterRiskIteration(host_.plan_object(), -7);
  EXPECT_EQ(recorder().Containing({"Plan.Recalculate"}).size(), 1U);
}

TEST_F(RollbackTest, AfterTheAnalysisThePlanIsCleanAndScheduledOnce) {
  auto& task = MarkedTask("A", 3);
  Prepare();
  Apply();
  Weather({5});
  Rollback();
  plan().in_iteration = false;
  recorder().Clear();
  AfterRiskAnalysis(host_.plan_object());
  EXPECT_THAT(calls(), ElementsAre("Calendar(NORTH SEA).SetDays 1 2027-01-04 2027-02-01",
                                   "Task(A).Dates", "TaskDates(A).Constraint = 0", "Task(A).Dates",
                                   "TaskDates(A).ConstraintDate = 0", "Plan.Recalculate"));
  EXPECT_THAT(WeatherOf("NORTH SEA"), IsEmpty());
  EXPECT_EQ(task.constraint, 0);
  EXPECT_EQ(DayOfJanuary(task.start), 4);
}

TEST_F(RollbackTest, AfterTheAnalysisTwoCollectionsAreReleasedAndTheRestStays) {
  MarkedTask("A", 3);
  plan().AddWindow("W", "RIVER", "1/12/2027", "1/20/2027");
  Prepare();
  AfterRiskAnalysis(host_.plan_object());
  EXPECT_TRUE(g_colCalendars.IsNothing());
  EXPECT_TRUE(g_colEvents.IsNothing());
  EXPECT_THAT(IdsOf(g_colWindowStarts), ElementsAre("W"));
  EXPECT_THAT(IdsOf(g_colWindowEnds), ElementsAre("W-END"));
  EXPECT_THAT(IdsOf(g_colNoSplit), ElementsAre("A"));
  EXPECT_FALSE(g_oRisk.IsNothing());
  EXPECT_EQ(ErrorOf([&] { AfterRiskAnalysis(host_.plan_object()); }), platform::kObjectNotSet);
}

TEST_F(RollbackTest, TheNextRunNeedsNoStepBetween) {
  MarkedTask("A", 3);
  Prepare();
  AfterRiskAnalysis(host_.plan_object());
  Prepare();
  Apply();
  Weather({5});
  Rollback();
  EXPECT_EQ(recorder().Containing({"Constraint = 3"}).size(), 1U);
}

TEST_F(RollbackTest, NeitherConstraintsNorRiskModesAreRestored) {
  auto& task = MarkedTask("A", 3);
  task.constraint = 3;
  task.constraint_date = January(12);
  plan().Task("P").risk = {0, 50.0};
  Prepare();
  AfterRiskAnalysis(host_.plan_object());
  EXPECT_EQ(task.constraint, 0);
  EXPECT_EQ(plan().Task("P").risk->mode, 1);
}

TEST_F(RollbackTest, AFailingHostCallLeavesTheConstraintsAsFarAsTheyGot) {
  auto& a = MarkedTask("A", 3);
  auto& b = MarkedTask("B", 3);
  Prepare();
  Apply();
  Weather({5});
  recorder().FailOn("TaskDates(B).ConstraintDate", 1, 88);
  EXPECT_EQ(ErrorOf([&] { Rollback(); }), 88);
  EXPECT_EQ(a.constraint_date, January(6) + 8.0 / 24.0);
  EXPECT_EQ(b.constraint, 3);
  EXPECT_EQ(b.constraint_date, platform::Date{0.0});
  Apply();
  EXPECT_EQ(a.constraint, 0);
  EXPECT_EQ(b.constraint, 0);
}

TEST_F(RollbackTest, AFailingSchedulingGoesUp) {
  MarkedTask("A", 3);
  Prepare();
  Apply();
  Weather({5});
  recorder().FailOn("Plan.Recalculate", 1, 66);
  EXPECT_EQ(ErrorOf([&] { Rollback(); }), 66);
}

TEST_F(RollbackTest, ARunThatIsBrokenOffLeavesWeatherAndConstraints) {
  auto& task = MarkedTask("A", 3);
  Prepare();
  Apply();
  Weather({5});
  Rollback();
  EXPECT_THAT(WeatherOf("NORTH SEA"), ElementsAre(5));
  EXPECT_EQ(task.constraint, 3);
}

}  // namespace
}  // namespace nimbrel::modWeatherEvents
