#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/schedule/small_plan.h"

// Dates are worked out by hand on the calendar of March 2027, whose first day is a Monday.
namespace nimbrel::test {
namespace {

using engine::ConstraintType;
using engine::Instant;
using engine::LagCalendar;
using engine::LinkType;
using engine::TaskKind;
using ::testing::IsEmpty;

constexpr std::int32_t kMonday = SmallPlan::kMonday;

TEST(Forward, ATaskStartsWithThePlanAndSkipsTheWeekend) {
  SmallPlan small;
  small.Add("A", 6);
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.Early("A"), "2027-03-01T08:00 to 2027-03-08T17:00");
  EXPECT_EQ(ToIsoText(scheduled.scheduler.finish()), "2027-03-08T17:00");
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST(Forward, FinishToStartWaitsForTheFinish) {
  SmallPlan small;
  small.Add("A", 5);
  small.Add("B", 1);
  small.Join("A", "B");
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.Early("B"), "2027-03-08T08:00 to 2027-03-08T17:00");
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST(Forward, EachTypeOfLinkTiesItsTwoDates) {
  struct Row {
    LinkType type;
    double lag_days;
    const char* early;
  };
  // A takes Monday to Friday, B three days.
  const Row rows[] = {
      {LinkType::kFinishToStart, 0, "2027-03-08T08:00 to 2027-03-10T17:00"},
      {LinkType::kFinishToStart, 1, "2027-03-09T08:00 to 2027-03-11T17:00"},
      {LinkType::kFinishToStart, -1, "2027-03-05T08:00 to 2027-03-09T17:00"},
      {LinkType::kStartToStart, 0, "2027-03-01T08:00 to 2027-03-03T17:00"},
      {LinkType::kStartToStart, 2, "2027-03-03T08:00 to 2027-03-05T17:00"},
      {LinkType::kFinishToFinish, 0, "2027-03-03T08:00 to 2027-03-05T17:00"},
      {LinkType::kFinishToFinish, 2, "2027-03-05T08:00 to 2027-03-09T17:00"},
      {LinkType::kStartToFinish, 0, "2027-03-01T08:00 to 2027-03-03T17:00"},
      {LinkType::kStartToFinish, 4, "2027-03-02T08:00 to 2027-03-04T17:00"},
  };
  for (const Row& row : rows) {
    SmallPlan small;
    small.Add("A", 5);
    small.Add("B", 3);
    small.Join("A", "B", row.type, row.lag_days);
    const Scheduled scheduled(small);
    EXPECT_EQ(scheduled.Early("B"), row.early)
        << "type " << static_cast<int>(row.type) << ", lag " << row.lag_days;
    EXPECT_THAT(scheduled.Breaches(), IsEmpty());
  }
}

TEST(Forward, ALagRunsOnTheCalendarThatItNames) {
  struct Row {
    LagCalendar calendar;
    const char* early;
  };
  // A ends on Thursday at 17:00 on six days a week; B works seven days a week.
  const Row rows[] = {
      {LagCalendar::kPredecessor, "2027-03-07T08:00 to 2027-03-07T17:00"},  // Friday, Saturday
      {LagCalendar::kSuccessor, "2027-03-07T08:00 to 2027-03-07T17:00"},    // Friday, Saturday
      {LagCalendar::kPlanDefault, "2027-03-09T08:00 to 2027-03-09T17:00"},  // Friday, Monday
      {LagCalendar::kElapsed, "2027-03-05T09:00 to 2027-03-06T09:00"},      // 16 hours
  };
  for (const Row& row : rows) {
    SmallPlan small;
    const engine::Uid six = small.AddWeek("Six", 6, 8);
    const engine::Uid seven = small.AddWeek("Seven", 7, 8);
    small.Add("A", 4).calendar = six;
    small.Add("B", 1).calendar = seven;
    small.Join("A", "B", LinkType::kFinishToStart, 2).lag_calendar = row.calendar;
    const Scheduled scheduled(small);
    EXPECT_EQ(scheduled.Early("B"), row.early) << static_cast<int>(row.calendar);
    EXPECT_THAT(scheduled.Breaches(), IsEmpty());
  }
}

TEST(Forward, ALagDoesNotWaitForTakenDays) {
  SmallPlan small;
  small.Add("A", 1);
  small.Add("B", 1);
  small.Join("A", "B", LinkType::kFinishToStart, 2);
  small.plan.calendars[0].taken = {{kMonday + 1, kMonday + 3}};
  // The lag runs on Tuesday and Wednesday although they are taken; B waits for Friday.
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.Early("B"), "2027-03-05T08:00 to 2027-03-05T17:00");
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST(Forward, NightShiftsEndAtMidnightInTheFormOfAFinish) {
  SmallPlan small;
  engine::CalendarDefinition nights;
  nights.name = "Nights";
  nights.week.fill({{0, 360}, {1320, 1440}});
  const engine::Uid uid = small.plan.AddCalendar(nights).uid;
  small.Add("A", 2.0 / 8).calendar = uid;  // from 22:00 to 24:00
  small.Add("B", 1.0 / 8).calendar = uid;
  small.Join("A", "B");
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.Early("A"), "2027-03-01T22:00 to 2027-03-01T24:00");
  EXPECT_EQ(scheduled.Early("B"), "2027-03-02T00:00 to 2027-03-02T01:00");
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST(Forward, AStartMilestoneStandsWhereWorkStartsAndAFinishMilestoneWhereItEnds) {
  SmallPlan small;
  small.Add("A", 5);
  small.Add("start", 0, TaskKind::kStartMilestone);
  small.Add("finish", 0, TaskKind::kFinishMilestone);
  small.Join("A", "start");
  small.Join("A", "finish");
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.Early("start"), "2027-03-08T08:00 to 2027-03-08T08:00");
  EXPECT_EQ(scheduled.Early("finish"), "2027-03-05T17:00 to 2027-03-05T17:00");
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST(Forward, AFinishMilestoneDoesNotComeBeforeItsPredecessorOnALongerWeek) {
  SmallPlan small;
  small.Add("A", 6).calendar = small.AddWeek("Seven", 7, 8);  // to Saturday
  small.Add("finish", 0, TaskKind::kFinishMilestone);
  small.Join("A", "finish");
  EXPECT_EQ(Scheduled(small).Early("finish"), "2027-03-08T08:00 to 2027-03-08T08:00");
}

TEST(Forward, ATaskWithoutRemainingWorkTakesNoTime) {
  SmallPlan small;
  small.Add("A", 5);
  small.Add("none", 0);
  small.Add("B", 1);
  small.Join("A", "none");
  small.Join("none", "B");
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.Early("none"), "2027-03-05T17:00 to 2027-03-05T17:00");
  EXPECT_EQ(scheduled.Early("B"), "2027-03-08T08:00 to 2027-03-08T17:00");
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST(Forward, AMilestoneHasNoDurationWhateverIsSet) {
  SmallPlan small;
  small.Add("M", 3, TaskKind::kFinishMilestone);
  Scheduled scheduled(small);
  scheduled.scheduler.SetRemaining(scheduled.At("M"), 480);
  EXPECT_EQ(scheduled.scheduler.remaining(scheduled.At("M")), 0);
}

TEST(Forward, RiskCalendarsTakeWholeDaysAndLeaveTheHoursAlone) {
  SmallPlan small;
  const engine::Uid weather = small.AddWeek("Weather", 7, 2);
  small.plan.risk_calendars = {{100, "Rain", "", weather}, {101, "Empty", "", 0}};
  small.plan.FindCalendar(weather)->taken = {{kMonday + 1, kMonday + 2}};
  small.Add("A", 2).risk_calendars = {{100, 0}, {101, 0}, {999, 0}};
  small.Add("B", 2);
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.Early("A"), "2027-03-01T08:00 to 2027-03-04T17:00");
  EXPECT_EQ(scheduled.Early("B"), "2027-03-01T08:00 to 2027-03-02T17:00");
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST(Forward, DaysOffInThePatternBehindARiskCalendarAreOff) {
  SmallPlan small;
  small.plan.risk_calendars = {{100, "Six days", "", small.AddWeek("Six", 6, 8)}};
  engine::Task& task = small.Add("A", 7);
  task.calendar = small.AddWeek("Seven", 7, 8);
  task.risk_calendars = {{100, 0}};
  EXPECT_EQ(Scheduled(small).Early("A"), "2027-03-01T08:00 to 2027-03-08T17:00");
}

TEST(Forward, StartConstraintsHoldTheStart) {
  for (const ConstraintType type : {ConstraintType::kStartOn, ConstraintType::kStartNoEarlier,
                                    ConstraintType::kMandatoryStart}) {
    SmallPlan small;
    small.Add("A", 1).constraint = {type, {kMonday + 5, 480}};  // a Saturday
    const Scheduled scheduled(small);
    EXPECT_EQ(scheduled.Early("A"), "2027-03-08T08:00 to 2027-03-08T17:00");
    EXPECT_THAT(scheduled.Breaches(), IsEmpty());
  }
}

TEST(Forward, FinishConstraintsHoldTheFinish) {
  for (const ConstraintType type : {ConstraintType::kFinishOn, ConstraintType::kFinishNoEarlier,
                                    ConstraintType::kMandatoryFinish}) {
    SmallPlan small;
    small.Add("A", 1).constraint = {type, {kMonday + 4, 720}};
    const Scheduled scheduled(small);
    EXPECT_EQ(scheduled.Early("A"), "2027-03-04T13:00 to 2027-03-05T12:00");
    EXPECT_THAT(scheduled.Breaches(), IsEmpty());
  }
}

TEST(Forward, NoLaterConstraintsDoNotMoveEarlyDates) {
  for (const ConstraintType type :
       {ConstraintType::kStartNoLater, ConstraintType::kFinishNoLater}) {
    SmallPlan small;
    small.Add("A", 5);
    small.Add("B", 1).constraint = {type, {kMonday + 1, 480}};
    small.Join("A", "B");
    EXPECT_EQ(Scheduled(small).Early("B"), "2027-03-08T08:00 to 2027-03-08T17:00");
  }
}

TEST(Forward, MandatoryDatesOverrideTheLinks) {
  for (const auto& [type, date] :
       {std::pair{ConstraintType::kMandatoryStart, Instant(kMonday + 1, 480)},
        std::pair{ConstraintType::kMandatoryFinish, Instant(kMonday + 1, 1020)}}) {
    SmallPlan small;
    small.Add("A", 5);
    small.Add("B", 1).constraint = {type, date};
    small.Add("C", 1);
    small.Join("A", "B");
    small.Join("B", "C");
    const Scheduled scheduled(small);
    EXPECT_EQ(scheduled.Early("B"), "2027-03-02T08:00 to 2027-03-02T17:00");
    EXPECT_EQ(scheduled.Early("C"), "2027-03-03T08:00 to 2027-03-03T17:00");
    EXPECT_THAT(scheduled.Breaches(), IsEmpty());
  }
}

TEST(Forward, ASecondConstraintCountsToo) {
  SmallPlan small;
  engine::Task& task = small.Add("A", 1);
  task.constraint = {ConstraintType::kStartNoEarlier, {kMonday + 1, 480}};
  task.second_constraint = {ConstraintType::kFinishNoEarlier, {kMonday + 3, 1020}};
  EXPECT_EQ(Scheduled(small).Early("A"), "2027-03-04T08:00 to 2027-03-04T17:00");
}

TEST(Forward, NothingStartsBeforeTheDataDate) {
  SmallPlan small;
  small.plan.data_date = {kMonday + 7, 480};
  small.Add("A", 1).constraint = {ConstraintType::kMandatoryStart, {kMonday, 480}};
  small.Add("B", 1);
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.Early("A"), "2027-03-08T08:00 to 2027-03-08T17:00");
  EXPECT_EQ(scheduled.Early("B"), "2027-03-08T08:00 to 2027-03-08T17:00");
}

TEST(Forward, AsLateAsPossibleTakesTheFreeFloat) {
  SmallPlan small;
  small.Add("A", 1).constraint.type = ConstraintType::kAsLateAsPossible;
  small.Add("B", 1).constraint.type = ConstraintType::kAsLateAsPossible;
  small.Add("long", 5);
  small.Add("end", 1);
  small.Join("A", "B");
  small.Join("B", "end");
  small.Join("long", "end");
  const Scheduled scheduled(small);
  // Both chains end before the 8th: B on Friday, and A before it.
  EXPECT_EQ(scheduled.Early("B"), "2027-03-05T08:00 to 2027-03-05T17:00");
  EXPECT_EQ(scheduled.Early("A"), "2027-03-04T08:00 to 2027-03-04T17:00");
  EXPECT_EQ(scheduled.FreeFloatDays("A"), 0);
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST(Forward, AsLateAsPossibleWithoutSuccessorsGoesToTheFinishOfThePlan) {
  SmallPlan small;
  small.Add("A", 1).second_constraint.type = ConstraintType::kAsLateAsPossible;
  small.Add("long", 5);
  EXPECT_EQ(Scheduled(small).Early("A"), "2027-03-05T08:00 to 2027-03-05T17:00");
}

TEST(Forward, UnequalDaysAreFilledHourByHour) {
  SmallPlan small;
  engine::CalendarDefinition calendar = engine::MakeWeekCalendar("Half Fridays", 5, 8);
  calendar.week[4] = {{480, 720}};
  small.Add("A", 5).calendar = small.plan.AddCalendar(calendar).uid;
  const Scheduled scheduled(small);
  // Four days of eight hours, four on Friday, the last four on Monday.
  EXPECT_EQ(scheduled.Early("A"), "2027-03-01T08:00 to 2027-03-08T12:00");
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST(Forward, TasksThatDoNotParticipateTakePartInNothing) {
  SmallPlan small;
  small.Add("carrier", 20);
  small.Add("A", 1);
  small.Join("carrier", "A");
  engine::Scheduler scheduler(small.plan, [](const engine::Task& task) { return task.id == "A"; });
  scheduler.ScheduleForward();
  EXPECT_EQ(scheduler.task_count(), 1);
  EXPECT_EQ(scheduler.IndexOf(small.Get("carrier").uid), -1);
  EXPECT_EQ(scheduler.TaskAt(0), small.Get("A").uid);
  EXPECT_EQ(ToIsoText(scheduler.finish()), "2027-03-01T17:00");
}

TEST(Forward, APlanWithoutTasksFinishesOnItsStatusDate) {
  SmallPlan small;
  EXPECT_EQ(ToIsoText(Scheduled(small).scheduler.finish()), "2027-03-01T08:00");
}

}  // namespace
}  // namespace nimbrel::test
