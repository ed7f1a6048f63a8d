#pragma once

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "simulation/mod_weather_events.h"
#include "tests/support/host/wired_test.h"

namespace nimbrel::modWeatherEvents {

/// A plan in days that starts on Monday, 4 January 2027, with the summary task of weather data; the
/// tests drive the four events by hand.
class RunTest : public recording::WiredTest {
 protected:
  RunTest() { plan().AddWeatherSummary(); }
  ~RunTest() override { ReleaseRunState(); }

  static platform::Date January(int day) { return platform::MakeDate(2027, 1, day); }

  void Prepare() { BeforeRiskAnalysis(host_.plan_object()); }
  /// Samples an iteration, counted from 0, and applies its weather. The log begins with the latter.
  void Apply(std::size_t iteration = 0) {
    plan().in_iteration = true;
    plan().Sample(iteration);
    recorder().Clear();
    BeforeRiskIteration(host_.plan_object(), static_cast<Corvane8::Long>(iteration + 1));
  }
  /// Schedules and rolls back. The log begins with the latter.
  void Rollback() {
    plan().Schedule();
    recorder().Clear();
    AfterRiskIteration(host_.plan_object(), 1);
  }

  static std::vector<std::string> IdsOf(const platform::Ref<TaskCollection>& tasks) {
    std::vector<std::string> ids;
    for (const auto& task : *tasks) {
      ids.push_back(task->get_ID());
    }
    return ids;
  }
  static std::vector<std::string> NamesOf(const platform::Ref<CalendarCollection>& calendars) {
    std::vector<std::string> names;
    for (const auto& calendar : *calendars) {
      names.push_back(calendar->get_Name());
    }
    return names;
  }

  /// The days that SetDays has taken from a calendar, as days of January 2027.
  std::vector<int> WeatherOf(const std::string& calendar) {
    std::vector<int> days;
    for (const std::int32_t day : plan().Calendar(calendar).weather) {
      days.push_back(day - static_cast<std::int32_t>(January(1).serial) + 1);
    }
    return days;
  }

  /// The calls of SetDays in the log.
  std::vector<std::string> DaySettings() { return recorder().Containing({"SetDays"}); }
};

}  // namespace nimbrel::modWeatherEvents
