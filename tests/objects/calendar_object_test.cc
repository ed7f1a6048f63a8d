// Working time and taken days: what the scheduler sees and what the document keeps.

#include <random>

#include "tests/objects/support.h"

namespace nimbrel::engine {

using platform::kInvalidProcedureCall;
using platform::kOverflow;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class CalendarObjectTest : public ObjectsTest {
 protected:
  void SetUp() override { Open({{"A", 3}}); }
  const std::vector<DayRange>& Taken(std::string_view name) {
    return host_->document().FindCalendar(name)->taken;
  }
};

TEST_F(CalendarObjectTest, DaysTakenAreKeptInTheDocument) {
  const auto calendar = calendars()->Item("STANDARD");
  calendar->SetDays(0, January(8), January(11));
  EXPECT_THAT(Taken("STANDARD"), ElementsAre(DayRange{JanuaryDay(8), JanuaryDay(11)}));
  calendar->SetDays(1, January(1), January(31));
  EXPECT_THAT(Taken("STANDARD"), IsEmpty());
}

TEST_F(CalendarObjectTest, DaysTakenInTheDocumentAreTakenFromTheStart) {
  Plan document = MakePlan();
  document.calendars[0].taken = {{JanuaryDay(5), JanuaryDay(6)}};
  AddTask(document, "A", 3);
  Open(std::move(document));
  const auto calendar = calendars()->Item("STANDARD");
  EXPECT_EQ(calendar->WorkingTime(January(4), January(8), 1), 3);
  plan()->Recalculate();
  EXPECT_EQ(calendar->WorkingTime(January(4), January(8), 1), 3);
  calendar->SetDays(1, January(5), January(5));
  EXPECT_EQ(calendar->WorkingTime(January(4), January(8), 1), 4);
  EXPECT_THAT(Taken("STANDARD"), ElementsAre(DayRange{JanuaryDay(6), JanuaryDay(6)}));
}

TEST_F(CalendarObjectTest, DaysTakenOutliveAChangeOfThePlansStructure) {
  const auto weather = AddWeather("NORTH SEA", "A");
  plan()->Recalculate();
  weather->SetDays(0, January(4), January(5));
  tasks()->Add();
  plan()->Recalculate();
  EXPECT_EQ(weather->WorkingTime(January(4), January(8), 1), 3);
  EXPECT_EQ(TaskOf("A")->get_Dates()->get_Start(), January(6) + 8.0 / 24.0);
}

TEST_F(CalendarObjectTest, OtherStatusesAreRefused) {
  const auto calendar = calendars()->Item("STANDARD");
  EXPECT_EQ(ErrorOf([&] { calendar->SetDays(2, January(4), January(5)); }), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([&] { calendar->SetDays(-1, January(4), January(5)); }), kInvalidProcedureCall);
}

TEST_F(CalendarObjectTest, AWeekdayOutsideTheWeekIsRefused) {
  const auto calendar = calendars()->Item("STANDARD");
  EXPECT_EQ(ErrorOf([&] { calendar->WeekdayStatus(-1, 1); }), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([&] { calendar->WeekdayStatus(7, 1); }), kInvalidProcedureCall);
}

TEST_F(CalendarObjectTest, WhatIsNoDateIsRefused) {
  const auto calendar = calendars()->Item("STANDARD");
  EXPECT_EQ(ErrorOf([&] { calendar->SetDays(0, Date{1e9}, kNoDate); }), kOverflow);
  EXPECT_EQ(ErrorOf([&] { calendar->WorkingTime(January(4), Date{NAN}, 1); }), kOverflow);
  EXPECT_EQ(ErrorOf([&] { TaskOf("A")->NextWorkingDate(Date{-1e9}, 0.0); }), kOverflow);
}

TEST_F(CalendarObjectTest, DateZeroAsTheFirstDayReachesBackTo1899) {
  const auto calendar = calendars()->Item("STANDARD");
  calendar->SetDays(0, January(5), kNoDate);
  calendar->SetDays(1, Date{0.0}, January(31));
  EXPECT_EQ(calendar->WorkingTime(January(4), January(8), 1), 5);
  EXPECT_THAT(Taken("STANDARD"), IsEmpty());
}

TEST_F(CalendarObjectTest, AReversedRangeHasNoWorkingTime) {
  EXPECT_EQ(calendars()->Item("STANDARD")->WorkingTime(January(8), January(4), 1), 0);
}

TEST_F(CalendarObjectTest, NoWorkIsDoneOutsideTheYearsThatCalendarsCover) {
  const auto calendar = calendars()->Add("NORTH SEA");
  const Date from = platform::MakeDate(1949, 12, 25);
  const Date to = platform::MakeDate(1950, 1, 7);
  EXPECT_EQ(calendar->WorkingTime(from, to, 1), 7);
  plan()->Recalculate();
  EXPECT_EQ(calendar->WorkingTime(from, to, 1), 7);
}

TEST_F(CalendarObjectTest, CountsTheSameBeforeAndAfterCompiling) {
  // Before the first scheduling days are counted by the document, afterwards by the scheduler.
  for (std::uint32_t seed = 1; seed <= 50; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    Open({{"A", 3}});
    const auto calendar = calendars()->Item("STANDARD");
    for (int step = 0; step < 10; ++step) {
      const int first = 1 + static_cast<int>(random() % 31);
      const int last = 1 + static_cast<int>(random() % 31);
      calendar->SetDays(static_cast<Long>(random() % 2), January(first), January(last));
    }
    std::vector<Long> before;
    std::vector<Long> after;
    for (int day = 1; day <= 31; ++day) {
      before.push_back(calendar->WorkingTime(January(day), January(31), 1));
    }
    plan()->Recalculate();
    for (int day = 1; day <= 31; ++day) {
      after.push_back(calendar->WorkingTime(January(day), January(31), 1));
    }
    EXPECT_EQ(after, before);
  }
}

TEST_F(CalendarObjectTest, WeatherOnTheTasksOwnCalendarHoldsItUpToo) {
  calendars()->Item("STANDARD")->SetDays(0, January(4), January(5));
  EXPECT_EQ(TaskOf("A")->get_Dates()->get_Start(), January(6) + 8.0 / 24.0);
}

TEST_F(CalendarObjectTest, TheHoursOfAWorkedDayComeFromTheTasksOwnCalendar) {
  Plan document = MakePlan();
  document.AddCalendar(MakeWeekCalendar("NIGHT", 7, 20));  // 04:00 to 24:00
  AddTask(document, "A", 3);                               // 24 hours
  Open(std::move(document));
  TaskOf("A")->put_Calendar(calendars()->Item("NIGHT"));
  AddWeather("NORTH SEA", "A")->SetDays(0, January(5), kNoDate);
  EXPECT_EQ(TaskOf("A")->get_Dates()->get_Start(), January(4) + 4.0 / 24.0);
  EXPECT_EQ(TaskOf("A")->get_Dates()->get_Finish(), January(6) + 8.0 / 24.0);
}

TEST_F(CalendarObjectTest, ARiskCalendarWithoutACalendarTakesNoDays) {
  risk_calendars()->Add("EMPTY");
  TaskOf("A")->get_RiskCalendars()->Add("EMPTY");
  EXPECT_EQ(TaskOf("A")->get_Dates()->get_Start(), January(4) + 8.0 / 24.0);
}

TEST_F(CalendarObjectTest, NothingBehindARiskCalendarSetsItsTasksFree) {
  AddWeather("NORTH SEA", "A")->SetDays(0, January(4), January(5));
  risk_calendars()->Item("NORTH SEA")->put_Calendar(nullptr);
  EXPECT_EQ(TaskOf("A")->get_Dates()->get_Start(), January(4) + 8.0 / 24.0);
}

TEST_F(CalendarObjectTest, ADescriptionOfARiskCalendarIsKept) {
  risk_calendars()->Add("NORTH SEA")->put_Description("Weather calendar");
  EXPECT_EQ(host_->document().FindRiskCalendar("NORTH SEA")->description, "Weather calendar");
}

}  // namespace
}  // namespace nimbrel::engine
