#include "nimbrel/warnings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/plan/plan.h"
#include "platform/date.h"

namespace nimbrel::cli {
namespace {

using engine::CalendarDefinition;
using engine::Instant;
using engine::Plan;
using engine::Task;
using engine::TimeUnit;
using engine::Uid;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::int32_t kMonday = 46447;  // 1 March 2027
constexpr std::int32_t kDay = 480;

/// A weather plan from a Monday on, with a calendar of five days of eight hours and a weather
/// calendar STORM that every task can be given.
class WarningsTest : public testing::Test {
 protected:
  WarningsTest() {
    plan_.start = Instant(kMonday, 480);
    plan_.default_calendar = plan_.AddCalendar(engine::MakeWeekCalendar("Works", 5, 8)).uid;
    storm_ = plan_.AddCalendar(engine::MakeWeekCalendar("STORM", 7, 8)).uid;
    risk_storm_ = plan_.FreshUid();
    plan_.risk_calendars.push_back({risk_storm_, "STORM", "", storm_});
    plan_.options[{"NIMBRELMOD", "Options", "IsWeatherPlan"}] = "TRUE";
  }

  Task& AddTask(const std::string& id, double days) {
    Task task;
    task.id = id;
    task.remaining_minutes = static_cast<std::int32_t>(days * kDay);
    task.risk_calendars.push_back({risk_storm_, 0.0});
    return plan_.AddTask(task);
  }
  Task& AddNoSplit(const std::string& id, double days) {
    Task& task = AddTask(id, days);
    task.user_values.push_back({"weather", "nosplit", "True"});
    return task;
  }
  Task& AddWeather(const std::string& role, engine::ThreePoint units) {
    Task task;
    task.id = plan_.FreshTaskId();
    task.calendar = storm_;
    task.range = units;
    task.user_values.push_back({"weather", "tasktype", role});
    return plan_.AddTask(task);
  }
  void AddPeriod(std::int32_t first, std::int32_t last, double probability) {
    Task& period = AddWeather("1", {1, 2, 3});
    period.custom_values = {{"Weather-start", platform::Date{static_cast<double>(first)}},
                            {"Weather-end", platform::Date{static_cast<double>(last)}}};
    if (probability < 100) {
      period.risk = engine::OccurrenceRisk{probability, 1};
    }
  }
  /// A window whose edges stand on their earliest days and may come up to `units` later.
  void AddWindow(const std::string& first, const std::string& last, double units) {
    const Uid start = AddWeather("3", {0, units, units}).uid;
    const Uid end = AddWeather("4", {0, units, units}).uid;
    plan_.FindTask(start)->user_values.push_back({"weather", "startdate", first});
    plan_.FindTask(end)->user_values.push_back({"weather", "startdate", last});
    plan_.links.push_back({start, end});
  }
  CalendarDefinition& Works() { return *plan_.FindCalendar(plan_.default_calendar); }
  std::vector<std::string> Warnings() const { return WeatherWarnings(plan_); }

  Plan plan_;
  Uid storm_ = 0;
  Uid risk_storm_ = 0;
};

TEST_F(WarningsTest, APlanWithoutWeatherHasNone) {
  AddTask("A", 5);
  EXPECT_THAT(Warnings(), IsEmpty());
}

TEST_F(WarningsTest, WeatherThatIsInOrderHasNone) {
  AddTask("A", 5);
  AddNoSplit("B", 5);
  AddPeriod(kMonday, kMonday + 30, 50);
  AddWindow("4/1/2027", "4/20/2027", 5);
  EXPECT_THAT(Warnings(), IsEmpty());
}

TEST_F(WarningsTest, WeatherDataInAPlanThatIsNotMarkedRunsWithoutWeather) {
  AddTask("A", 5);
  AddPeriod(kMonday, kMonday + 30, 100);
  plan_.options.clear();
  EXPECT_THAT(Warnings(), ElementsAre(HasSubstr("runs without weather")));
}

TEST_F(WarningsTest, BlocksOfAPlanInHoursTakeUnitsForDays) {
  AddTask("A", 5);
  AddPeriod(kMonday, kMonday + 30, 50);
  AddPeriod(kMonday, kMonday + 30, 100);  // certain: scattered, not a block
  plan_.time_unit = TimeUnit::kHours;
  EXPECT_THAT(Warnings(), ElementsAre(testing::AllOf(HasSubstr("counted in hours"),
                                                     HasSubstr("1 period of STORM"),
                                                     HasSubstr("8 days off in one block"))));
}

TEST_F(WarningsTest, BlocksOfAPlanInQuartersTakeFourTimesAsMany) {
  AddTask("A", 5);
  AddPeriod(kMonday, kMonday + 30, 50);
  plan_.time_unit = TimeUnit::kQuarters;
  EXPECT_THAT(Warnings(), ElementsAre(testing::AllOf(HasSubstr("quarters of an hour"),
                                                     HasSubstr("32 days off in one block"))));
}

TEST_F(WarningsTest, WindowsOfAPlanInHoursMoveByAThirdOfTheirDays) {
  AddTask("A", 5);
  AddWindow("4/1/2027", "4/20/2027", 24);
  AddWindow("5/1/2027", "5/20/2027", 0);  // its dates are certain: nothing to move
  plan_.time_unit = TimeUnit::kHours;
  EXPECT_THAT(Warnings(),
              ElementsAre(testing::AllOf(HasSubstr("1 window of STORM"), HasSubstr("by 33%"))));
}

TEST_F(WarningsTest, ACalendarOfNoTaskDelaysNothing) {
  AddTask("A", 5).risk_calendars.clear();
  AddPeriod(kMonday, kMonday + 30, 100);
  EXPECT_THAT(Warnings(), ElementsAre("STORM is assigned to no task: its weather delays nothing"));
}

TEST_F(WarningsTest, WeatherBeforeTheStatusDateIsTold) {
  AddTask("A", 5);
  AddPeriod(kMonday - 31, kMonday - 1, 100);
  AddPeriod(kMonday - 31, kMonday, 100);
  EXPECT_THAT(Warnings(), ElementsAre(testing::AllOf(HasSubstr("1 period or window of STORM"),
                                                     HasSubstr("end before 2027-03-01"))));
}

TEST_F(WarningsTest, ANoSplitTaskLongerThanAnyStretchBetweenHolidaysIsNamed) {
  // Two holidays on Wednesdays two weeks apart leave nine worked days between them, and the first
  // one two before it: a task of ten days fits neither.
  Works().exceptions[kMonday + 2] = {};
  Works().exceptions[kMonday + 16] = {};
  AddPeriod(kMonday, kMonday + 30, 50);
  AddNoSplit("FITS", 9);
  AddNoSplit("LONG", 10);
  EXPECT_THAT(Warnings(),
              ElementsAre(testing::AllOf(HasSubstr("LONG must not be split"),
                                         HasSubstr("10.0 days"), HasSubstr("is 9.0 days"))));
}

TEST_F(WarningsTest, WhatEveryWindowTakesCutsStretchesToo) {
  // Off from 11 to 20 March whatever is sampled: eight worked days before it, from 1 March on.
  AddWindow("3/8/2027", "3/20/2027", 3);
  AddNoSplit("FITS", 8);
  AddNoSplit("LONG", 9);
  EXPECT_THAT(Warnings(), ElementsAre(testing::AllOf(HasSubstr("LONG"), HasSubstr("is 8.0 days"))));
}

TEST_F(WarningsTest, WeekendsCutNothing) {
  AddPeriod(kMonday, kMonday + 30, 50);
  AddNoSplit("LONG", 60);
  EXPECT_THAT(Warnings(), IsEmpty());
}

}  // namespace
}  // namespace nimbrel::cli
