#include "nimbrel/warnings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "engine/plan/plan.h"
#include "nimbrel/weather_json.h"

namespace nimbrel::cli {
namespace {

using engine::CalendarDefinition;
using engine::Instant;
using engine::Plan;
using engine::Task;
using engine::TimeUnit;
using engine::Uid;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::int32_t kMonday = 46447;  // 1 March 2027
constexpr std::int32_t kFinish = kMonday + 25;

/// A weather plan from a Monday on with a calendar of five days of eight hours, and a task BASE of
/// 20 days that no weather holds up: without weather the plan ends on Friday 26 March.
class WarningsTest : public testing::Test {
 protected:
  WarningsTest() {
    plan_.start = Instant(kMonday, 480);
    plan_.default_calendar = plan_.AddCalendar(engine::MakeWeekCalendar("Works", 5, 8)).uid;
    AddTask("BASE", 20);
  }

  void AddTask(const std::string& id, double days) {
    Task task;
    task.id = id;
    task.remaining_minutes = static_cast<std::int32_t>(days * 480);
    plan_.AddTask(task);
  }
  /// A task that feels these calendars.
  void AddTask(const std::string& id, double days, const std::vector<std::string>& calendars,
               bool nosplit = false) {
    AddTask(id, days);
    weather_.assign.push_back({{id}, std::nullopt, calendars, nosplit});
  }
  void AddNoSplit(const std::string& id, double days,
                  const std::vector<std::string>& calendars = {}) {
    AddTask(id, days, calendars, true);
  }
  /// Event calendar of periods with so many days of weather each.
  void AddEvents(const std::string& name, const std::vector<WeatherPeriod>& periods) {
    weather_.events.push_back({name, periods});
  }
  void AddWindows(const std::string& name, const std::vector<WeatherWindow>& windows) {
    weather_.windows.push_back({name, windows});
  }
  static WeatherPeriod Period(std::int32_t first, std::int32_t last, double probability,
                              std::int32_t days) {
    return {"", first, last, probability, days, days, days};
  }
  CalendarDefinition& Works() { return *plan_.FindCalendar(plan_.default_calendar); }

  std::vector<std::string> Warnings() {
    SetWeather(plan_, weather_, "weather.json");
    return WeatherWarnings(plan_);
  }

  Plan plan_;
  Weather weather_;
};

TEST_F(WarningsTest, APlanWithoutWeatherHasNone) {
  EXPECT_THAT(WeatherWarnings(plan_), IsEmpty());
}

TEST_F(WarningsTest, WeatherThatIsInOrderHasNone) {
  AddEvents("STORM", {Period(kMonday, kMonday + 30, 0.5, 3)});
  AddWindows("ICE", {{"", {kMonday, kMonday, kMonday + 4}, {kMonday, kMonday + 3, kMonday + 9}}});
  AddTask("A", 5, {"STORM", "ICE"});
  AddNoSplit("B", 5, {"STORM"});
  EXPECT_THAT(Warnings(), IsEmpty());
}

TEST_F(WarningsTest, MarksAndWeatherOnWhatWeatherCannotMoveAreTold) {
  AddEvents("STORM", {Period(kMonday, kMonday + 30, 0.5, 3)});
  AddTask("A", 5, {"STORM"});
  AddNoSplit("EFFORT", 400, {"STORM"});
  AddNoSplit("FIXED", 5, {"STORM"});
  AddNoSplit("DONE", 0);
  plan_.FindTask("EFFORT")->kind = engine::TaskKind::kLevelOfEffort;
  plan_.FindTask("FIXED")->second_constraint = {engine::ConstraintType::kMandatoryStart,
                                                Instant(kMonday, 480)};
  plan_.FindTask("DONE")->kind = engine::TaskKind::kFinishMilestone;
  EXPECT_THAT(Warnings(),
              ElementsAre(HasSubstr("no-split mark does nothing on EFFORT, FIXED, DONE:"),
                          HasSubstr("Weather assigned to EFFORT, FIXED holds up nothing")));
}

TEST_F(WarningsTest, WeatherDataInAPlanThatIsNotMarkedRunsWithoutWeather) {
  AddEvents("STORM", {Period(kMonday, kMonday + 30, 1, 3)});
  SetWeather(plan_, weather_, "weather.json");
  plan_.options[{"NIMBRELMOD", "Options", "IsWeatherPlan"}] = "FALSE";
  EXPECT_THAT(WeatherWarnings(plan_), ElementsAre(HasSubstr("runs without weather")));
}

// Plans in hours and quarters.

TEST_F(WarningsTest, BlocksOfAPlanInHoursTakeUnitsForDays) {
  plan_.time_unit = TimeUnit::kHours;
  AddEvents("STORM", {Period(kMonday, kMonday + 30, 0.5, 3), Period(kMonday, kMonday + 30, 0.9, 3),
                      Period(kMonday, kMonday + 30, 1, 3)});  // the last is no block
  AddEvents("SNOW", {Period(kMonday, kMonday + 30, 0.5, 3)});
  AddTask("A", 5, {"STORM", "SNOW"});
  EXPECT_THAT(Warnings(), ElementsAre(AllOf(HasSubstr("counts in hours"),
                                            HasSubstr("in 3 periods (STORM 2, SNOW 1) below 100%"),
                                            HasSubstr("each day of weather takes 8 days"))));
}

TEST_F(WarningsTest, BlocksOfAPlanInQuartersTakeFourTimesAsMany) {
  plan_.time_unit = TimeUnit::kQuarters;
  AddEvents("STORM", {Period(kMonday, kMonday + 30, 0.5, 3)});
  AddTask("A", 5, {"STORM"});
  EXPECT_THAT(Warnings(), ElementsAre(AllOf(HasSubstr("counts in quarters of an hour"),
                                            HasSubstr("each day of weather takes 32 days"))));
}

TEST_F(WarningsTest, DatesOfWindowsOfAPlanInHoursMoveTooLittle) {
  plan_.time_unit = TimeUnit::kHours;
  AddWindows("ICE", {{"", {kMonday, kMonday, kMonday + 3}, {kMonday + 9, kMonday + 9, kMonday + 9}},
                     {"", {kMonday, kMonday, kMonday}, {kMonday + 9, kMonday + 9, kMonday + 9}}});
  AddTask("A", 5, {"ICE"});
  EXPECT_THAT(Warnings(), ElementsAre(AllOf(HasSubstr("in 1 window (ICE 1)"),
                                            HasSubstr("24 of them move a date by 8."))));
}

TEST_F(WarningsTest, APlanInHoursOfTheWholeDayMovesWindowsAsGiven) {
  plan_.time_unit = TimeUnit::kHours;
  plan_.hours_per_day = 24;
  AddWindows("ICE",
             {{"", {kMonday, kMonday, kMonday + 3}, {kMonday + 9, kMonday + 9, kMonday + 9}}});
  AddTask("A", 5, {"ICE"});
  EXPECT_THAT(Warnings(), IsEmpty());
}

// Weather that nothing comes of.

TEST_F(WarningsTest, ACalendarOfNoTaskDelaysNothing) {
  AddEvents("STORM", {Period(kMonday, kMonday + 30, 1, 3)});
  EXPECT_THAT(Warnings(),
              ElementsAre("The weather calendar STORM is assigned to no task: it delays nothing."));
}

TEST_F(WarningsTest, ACalendarWithoutPeriodsOrWindowsDelaysNothing) {
  AddEvents("STORM", {});
  AddWindows("ICE", {});
  AddTask("A", 5, {"STORM", "ICE"});
  EXPECT_THAT(Warnings(),
              ElementsAre("The weather calendar STORM is assigned to 1 task but has no periods: it "
                          "delays nothing.",
                          "The weather calendar ICE is assigned to 1 task but has no windows: it "
                          "delays nothing."));
}

TEST_F(WarningsTest, ACalendarWhoseWeatherIsOverIsTold) {
  AddEvents("STORM", {Period(kMonday - 31, kMonday - 1, 1, 3)});
  AddEvents("SNOW", {Period(kMonday - 31, kMonday - 1, 1, 3), Period(kMonday, kMonday, 1, 1)});
  AddTask("A", 5, {"STORM", "SNOW"});
  EXPECT_THAT(Warnings(),
              ElementsAre(HasSubstr("All periods of the weather calendar STORM end before "
                                    "2027-03-01, when what remains of the plan begins")));
}

TEST_F(WarningsTest, ACalendarWhoseWeatherComesAfterThePlanIsTold) {
  AddWindows(
      "ICE",
      {{"", {kFinish + 1, kFinish + 1, kFinish + 1}, {kFinish + 9, kFinish + 9, kFinish + 9}}});
  AddEvents("STORM", {Period(kFinish, kFinish + 9, 1, 3)});
  AddTask("A", 5, {"STORM", "ICE"});
  EXPECT_THAT(Warnings(), ElementsAre("All windows of the weather calendar ICE begin after "
                                      "2027-03-26, when the plan ends without weather."));
}

// Tasks that must not be split.

TEST_F(WarningsTest, ANoSplitTaskLongerThanAnyStretchBetweenHolidaysIsNamed) {
  // Every second Wednesday off: nine worked days are between two of them.
  for (int day = 2; day < 100; day += 14) {
    Works().exceptions[kMonday + day] = {};
  }
  AddNoSplit("FITS", 9);
  AddNoSplit("LONG", 10);
  EXPECT_THAT(Warnings(),
              ElementsAre(AllOf(HasSubstr("Task LONG must not be split and takes 10 days, but"),
                                HasSubstr("is 9 days long"), HasSubstr("pushed far"))));
}

TEST_F(WarningsTest, OneHolidayPushesNoTaskFar) {
  Works().exceptions[kMonday + 2] = {};
  AddNoSplit("A", 20);
  EXPECT_THAT(Warnings(), IsEmpty());
}

TEST_F(WarningsTest, WeekendsOfTheTasksOwnCalendarCutNothing) {
  AddNoSplit("LONG", 60);
  EXPECT_THAT(Warnings(), IsEmpty());
}

TEST_F(WarningsTest, DaysOffOfARiskCalendarCutWhatTheOwnCalendarWorks) {
  // Worked seven days a week, under a calendar that is off on Sundays.
  const Uid all_days = plan_.AddCalendar(engine::MakeWeekCalendar("All", 7, 8)).uid;
  const Uid six_days = plan_.AddCalendar(engine::MakeWeekCalendar("Six", 6, 8)).uid;
  const Uid risk = plan_.FreshUid();
  plan_.risk_calendars.push_back({risk, "Six", "", six_days});
  for (const double days : {6.0, 6.5}) {
    AddNoSplit("T" + std::to_string(days).substr(0, 3), days);
    Task& task = *plan_.FindTask(plan_.tasks().back().uid);
    task.calendar = all_days;
    task.risk_calendars = {{risk, 0.0}};
  }
  EXPECT_THAT(Warnings(), ElementsAre(AllOf(HasSubstr("Task T6.5"), HasSubstr("takes 6.5 days"),
                                            HasSubstr("is 6 days long"))));
}

TEST_F(WarningsTest, TheLikelyDaysOfAWindowCutForCertain) {
  // From the likely start, Thursday 11 March, to the likely finish far behind the plan: eight days
  // are before it.
  AddWindows(
      "ICE",
      {{"", {kMonday, kMonday + 10, kMonday + 20}, {kMonday + 90, kMonday + 90, kMonday + 99}}});
  AddNoSplit("FITS", 8, {"ICE"});
  AddNoSplit("LONG", 9, {"ICE"});
  EXPECT_THAT(Warnings(), ElementsAre(AllOf(HasSubstr("Task LONG"), HasSubstr("is 8 days long"))));
}

TEST_F(WarningsTest, CertainWeatherLeavesNoLongStretch) {
  // 20 of 100 days are lost: of ten days in a row, all are dry with the chance 0.8^10 = 0.107, of
  // eleven with 0.086.
  AddEvents("STORM", {Period(kMonday, kMonday + 99, 1, 20)});
  AddNoSplit("FITS", 10, {"STORM"});
  AddNoSplit("LONG", 11, {"STORM"});
  EXPECT_THAT(Warnings(),
              ElementsAre(AllOf(HasSubstr("Task LONG must not be split and takes 11 days, but with "
                                          "the certain weather"),
                                HasSubstr("no stretch of more than 10 days has a chance"))));
}

TEST_F(WarningsTest, TheWeatherOfSeveralCalendarsAddsUp) {
  // 0.8 * 0.75 = 0.6 a day: 0.6^4 = 0.13, 0.6^5 = 0.078.
  AddEvents("STORM", {Period(kMonday, kMonday + 99, 1, 20)});
  AddEvents("SNOW", {Period(kMonday, kMonday + 99, 1, 25)});
  AddNoSplit("FITS", 4, {"STORM", "SNOW"});
  AddNoSplit("LONG", 5, {"STORM", "SNOW"});
  EXPECT_THAT(Warnings(), ElementsAre(AllOf(HasSubstr("Task LONG"),
                                            HasSubstr("no stretch of more than 4 days"))));
}

TEST_F(WarningsTest, WeatherThatMayNotComeLeavesRoom) {
  AddEvents("STORM", {Period(kMonday, kMonday + 99, 0.99, 50)});
  AddNoSplit("LONG", 15, {"STORM"});
  EXPECT_THAT(Warnings(), IsEmpty());
}

TEST_F(WarningsTest, AFinishedTaskIsNotPushed) {
  AddEvents("STORM", {Period(kMonday, kMonday + 99, 1, 50)});
  AddNoSplit("DONE", 15, {"STORM"});
  Task& task = *plan_.FindTask("DONE");
  task.actual_start = Instant(kMonday, 480);
  task.actual_finish = Instant(kMonday, 1020);
  EXPECT_THAT(Warnings(), IsEmpty());
}

TEST_F(WarningsTest, APlanThatCannotBeScheduledIsStillWarnedOfTheRest) {
  AddEvents("STORM", {});
  AddNoSplit("A", 5, {"STORM"});
  const Uid base = plan_.FindTask("BASE")->uid;
  const Uid a = plan_.FindTask("A")->uid;
  plan_.links = {{base, a}, {a, base}};
  EXPECT_THAT(Warnings(), ElementsAre(HasSubstr("has no periods")));
}

}  // namespace
}  // namespace nimbrel::cli
