// Working time and the scheduling that rests on it. 4 January 2027 is a Monday.

#include <gmock/gmock.h>

#include "tests/conformance/host_suite.h"

namespace nimbrel::conformance {

using platform::Date;

namespace {

constexpr Date kDateZero{0.0};

}  // namespace

TEST_P(HostSuite, FindsCalendarsByNameWithoutRegardToCase) {
  Open({});
  AddWeatherCalendar("North Sea");
  EXPECT_EQ(Calendar("NORTH SEA")->get_Name(), "North Sea");
  EXPECT_EQ(plan()->get_RiskCalendars()->Item("NORTH SEA")->get_Name(), "North Sea");
  EXPECT_EQ(Calendar("standard")->get_Name(), "STANDARD");
}

TEST_P(HostSuite, RefusesACalendarNameThatIsThere) {
  Open({});
  AddWeatherCalendar("NORTH SEA");
  EXPECT_TRUE(Fails([&] { plan()->get_Calendars()->Add("north sea"); }));
  EXPECT_TRUE(Fails([&] { plan()->get_RiskCalendars()->Add("north sea"); }));
}

TEST_P(HostSuite, CountsWeekdaysFromMonday) {
  Open({});
  for (std::int32_t weekday = 0; weekday < 7; ++weekday) {
    EXPECT_EQ(Calendar("STANDARD")->WeekdayStatus(weekday, 1) == 1, weekday < 5) << weekday;
  }
}

TEST_P(HostSuite, AnAddedCalendarWorksEveryDay) {
  Open({});
  const auto calendar = plan()->get_Calendars()->Add("NORTH SEA");
  for (std::int32_t weekday = 0; weekday < 7; ++weekday) {
    EXPECT_EQ(calendar->WeekdayStatus(weekday, 1), 1) << weekday;
  }
  EXPECT_EQ(calendar->WorkingTime(January(4), January(31), 1), 28);
}

TEST_P(HostSuite, CountsWorkingTimeOfBothDaysAndAllBetween) {
  Open({.holidays = {January(6)}});
  const auto calendar = Calendar("STANDARD");
  EXPECT_EQ(calendar->WorkingTime(January(4), January(4), 1), 1);
  EXPECT_EQ(calendar->WorkingTime(January(4), January(5), 1), 2);
  EXPECT_EQ(calendar->WorkingTime(January(4), January(10), 1), 4);
  EXPECT_EQ(calendar->WorkingTime(January(9), January(10), 1), 0);
}

TEST_P(HostSuite, CountsWorkingTimeInThePlansUnits) {
  for (const auto& [time_unit, units] : {std::pair{1, 5}, std::pair{24, 40}, std::pair{96, 160}}) {
    Open({.time_unit = time_unit});
    EXPECT_EQ(Calendar("STANDARD")->WorkingTime(January(4), January(10), 1), units) << time_unit;
    const auto added = plan()->get_Calendars()->Add("NORTH SEA");
    EXPECT_EQ(added->WorkingTime(January(4), January(8), 1), units) << time_unit;
  }
}

TEST_P(HostSuite, WorkingTimeTakesTheDaysInWhichItsDatesFall) {
  Open({.time_unit = 24});
  EXPECT_EQ(Calendar("STANDARD")->WorkingTime(January(4) + 0.75, January(5) + 22.0 / 24.0, 1), 16);
}

TEST_P(HostSuite, SetDaysTakesASingleDayWhenTheClosingDateIsZero) {
  Open({});
  const auto calendar = Calendar("STANDARD");
  calendar->SetDays(0, January(5), kDateZero);
  EXPECT_EQ(calendar->WorkingTime(January(4), January(8), 1), 4);
  EXPECT_EQ(calendar->WorkingTime(January(5), January(5), 1), 0);
}

TEST_P(HostSuite, SetDaysTakesBothDaysAndAllBetween) {
  Open({});
  const auto calendar = Calendar("STANDARD");
  calendar->SetDays(0, January(5), January(7));
  EXPECT_EQ(calendar->WorkingTime(January(4), January(4), 1), 1);
  EXPECT_EQ(calendar->WorkingTime(January(5), January(7), 1), 0);
  EXPECT_EQ(calendar->WorkingTime(January(8), January(8), 1), 1);
}

TEST_P(HostSuite, SetDaysTakesTheDayInWhichADateFalls) {
  Open({});
  const auto calendar = Calendar("STANDARD");
  calendar->SetDays(0, January(5) + 0.99, kDateZero);
  EXPECT_EQ(calendar->WorkingTime(January(5), January(5), 1), 0);
  EXPECT_EQ(calendar->WorkingTime(January(6), January(6), 1), 1);
  calendar->SetDays(0, January(6) + 0.6, January(7) + 0.4);
  EXPECT_EQ(calendar->WorkingTime(January(4), January(8), 1), 2);
}

TEST_P(HostSuite, SetDaysWithAReversedRangeDoesNothing) {
  Open({});
  const auto calendar = Calendar("STANDARD");
  calendar->SetDays(0, January(7), January(5));
  EXPECT_EQ(calendar->WorkingTime(January(4), January(8), 1), 5);
}

TEST_P(HostSuite, TakingADayTwiceTakesItOnce) {
  Open({});
  const auto calendar = Calendar("STANDARD");
  calendar->SetDays(0, January(5), kDateZero);
  calendar->SetDays(0, January(4), January(6));
  EXPECT_EQ(calendar->WorkingTime(January(4), January(8), 1), 2);
  calendar->SetDays(1, January(4), January(8));
  EXPECT_EQ(calendar->WorkingTime(January(4), January(8), 1), 5);
}

TEST_P(HostSuite, StatusOneBringsBackWhatStoodBefore) {
  Open({.holidays = {January(6)}});
  const auto calendar = Calendar("STANDARD");
  calendar->SetDays(0, January(5), January(10));
  EXPECT_EQ(calendar->WorkingTime(January(4), January(10), 1), 1);
  calendar->SetDays(1, January(4), January(10));
  EXPECT_EQ(calendar->WorkingTime(January(4), January(10), 1), 4);
  EXPECT_EQ(calendar->WorkingTime(January(6), January(6), 1), 0) << "the holiday stays";
  EXPECT_EQ(calendar->WorkingTime(January(9), January(10), 1), 0) << "the weekend stays";
}

TEST_P(HostSuite, StatusOneBringsBackTheRangeOnly) {
  Open({});
  const auto calendar = Calendar("STANDARD");
  calendar->SetDays(0, January(4), January(8));
  calendar->SetDays(1, January(5), January(6));
  EXPECT_EQ(calendar->WorkingTime(January(4), January(8), 1), 2);
}

TEST_P(HostSuite, WeatherLeavesTheWeeklyPatternAlone) {
  Open({});
  const auto calendar = Calendar("STANDARD");
  calendar->SetDays(0, January(4), January(31));
  EXPECT_EQ(calendar->WeekdayStatus(0, 1), 1);
}

TEST_P(HostSuite, NextWorkingDateIsTheDateItselfOnAWorkedDay) {
  Open({.tasks = {Certain("A", 1)}});
  const Date early = January(4) + 1.0 / 24.0;
  const Date late = January(4) + 23.0 / 24.0;
  EXPECT_EQ(Task("A")->NextWorkingDate(early, 0.0), early);
  EXPECT_EQ(Task("A")->NextWorkingDate(late, 0.0), late);
}

TEST_P(HostSuite, NextWorkingDateIsOnTheNextWorkedDayOtherwise) {
  Open({.holidays = {January(11)}, .tasks = {Certain("A", 1)}});
  EXPECT_EQ(platform::DayOf(Task("A")->NextWorkingDate(January(9) + 0.5, 0.0)), January(12));
}

TEST_P(HostSuite, NextWorkingDateKnowsTheTasksRiskCalendars) {
  Open({.tasks = {Certain("A", 1), Certain("B", 1)}});
  const auto calendar = AddWeatherCalendar("NORTH SEA");
  Assign("A", "NORTH SEA");
  calendar->SetDays(0, January(5), January(6));
  EXPECT_EQ(platform::DayOf(Task("A")->NextWorkingDate(January(5), 0.0)), January(7));
  EXPECT_EQ(Task("B")->NextWorkingDate(January(5), 0.0), January(5));
  calendar->SetDays(1, January(1), January(31));
  EXPECT_EQ(Task("A")->NextWorkingDate(January(5), 0.0), January(5));
}

TEST_P(HostSuite, SchedulesLinkedTasksOverTheWeekend) {
  Open({.tasks = {Certain("A", 3), Certain("B", 4, {"A"})}});
  plan()->Recalculate();
  EXPECT_EQ(StartDay("A"), January(4));
  EXPECT_EQ(FinishDay("A"), January(6));
  EXPECT_EQ(StartDay("B"), January(7));
  EXPECT_EQ(FinishDay("B"), January(12));
}

TEST_P(HostSuite, AssigningACleanWeatherCalendarChangesNothing) {
  Open({.tasks = {Certain("A", 8)}});
  AddWeatherCalendar("NORTH SEA");
  plan()->Recalculate();
  const Date finish = Task("A")->get_Dates()->get_Finish();
  Assign("A", "NORTH SEA");
  plan()->Recalculate();
  EXPECT_EQ(Task("A")->get_Dates()->get_Finish(), finish);
}

TEST_P(HostSuite, WeatherHoldsUpTheTasksThatHaveItsCalendar) {
  Open({.tasks = {Certain("A", 3), Certain("B", 3), Certain("C", 1, {"A"})}});
  const auto calendar = AddWeatherCalendar("NORTH SEA");
  Assign("A", "NORTH SEA");
  calendar->SetDays(0, January(5), January(6));
  plan()->Recalculate();
  EXPECT_EQ(FinishDay("A"), January(8));
  EXPECT_EQ(FinishDay("B"), January(6));
  EXPECT_EQ(StartDay("C"), January(11));
  calendar->SetDays(1, January(4), January(31));
  plan()->Recalculate();
  EXPECT_EQ(FinishDay("A"), January(6));
}

TEST_P(HostSuite, TwoRiskCalendarsOfATaskBothHoldItUp) {
  Open({.tasks = {Certain("A", 2)}});
  AddWeatherCalendar("NORTH SEA")->SetDays(0, January(4), kDateZero);
  AddWeatherCalendar("RIVER")->SetDays(0, January(6), kDateZero);
  Assign("A", "NORTH SEA");
  Assign("A", "RIVER");
  plan()->Recalculate();
  EXPECT_EQ(StartDay("A"), January(5));
  EXPECT_EQ(FinishDay("A"), January(7));
}

TEST_P(HostSuite, ACalendarPutBehindARiskCalendarTakesEffect) {
  Open({.tasks = {Certain("A", 1)}});
  AddWeatherCalendar("NORTH SEA");
  Assign("A", "NORTH SEA");
  const auto other = plan()->get_Calendars()->Add("OTHER");
  other->SetDays(0, January(4), January(5));
  plan()->get_RiskCalendars()->Item("NORTH SEA")->put_Calendar(other);
  plan()->Recalculate();
  EXPECT_EQ(StartDay("A"), January(6));
}

TEST_P(HostSuite, ConstraintThreeHoldsTheStartBack) {
  Open({.tasks = {Certain("A", 2), Certain("B", 1, {"A"})}});
  const auto dates = Task("A")->get_Dates();
  dates->put_Constraint(3);
  dates->put_ConstraintDate(January(6));
  plan()->Recalculate();
  EXPECT_EQ(StartDay("A"), January(6));
  EXPECT_EQ(FinishDay("A"), January(7));
  EXPECT_EQ(StartDay("B"), January(8));
}

TEST_P(HostSuite, ConstraintThreeDoesNotPullATaskForward) {
  Open({.tasks = {Certain("A", 2), Certain("B", 1, {"A"})}});
  Task("B")->get_Dates()->put_Constraint(3);
  Task("B")->get_Dates()->put_ConstraintDate(January(4));
  plan()->Recalculate();
  EXPECT_EQ(StartDay("B"), January(6));
}

TEST_P(HostSuite, ConstraintZeroLetsTheTaskGo) {
  Open({.tasks = {Certain("A", 2)}});
  const auto dates = Task("A")->get_Dates();
  dates->put_Constraint(3);
  dates->put_ConstraintDate(January(6));
  plan()->Recalculate();
  dates->put_Constraint(0);
  dates->put_ConstraintDate(kDateZero);
  plan()->Recalculate();
  EXPECT_EQ(StartDay("A"), January(4));
}

TEST_P(HostSuite, ATaskWorksOnTheCalendarThatItIsGiven) {
  Open({.tasks = {Certain("A", 6)}});
  const auto every_day = plan()->get_Calendars()->Add("EVERY DAY");
  Task("A")->put_Calendar(every_day);
  EXPECT_EQ(Task("A")->get_Calendar()->get_Name(), "EVERY DAY");
  plan()->Recalculate();
  EXPECT_EQ(FinishDay("A"), January(9));
}

TEST_P(HostSuite, SchedulesDurationsInThePlansUnits) {
  for (const auto& [time_unit, units] :
       {std::pair{1, 2.0}, std::pair{24, 16.0}, std::pair{96, 64.0}}) {
    Open({.time_unit = time_unit, .tasks = {Certain("A", units)}});
    plan()->Recalculate();
    EXPECT_EQ(StartDay("A"), January(4)) << time_unit;
    EXPECT_EQ(FinishDay("A"), January(5)) << time_unit;
  }
}

}  // namespace nimbrel::conformance
