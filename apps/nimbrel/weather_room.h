#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "engine/plan/plan.h"
#include "nimbrel/weather_json.h"

namespace nimbrel::cli {

/// How much work in one piece the calendars of a plan leave room for.
///
/// A day cuts a task that must not be split if the weekly pattern of the task's own calendar works
/// it, and it is off all the same: a holiday, a day off in one of its risk calendars, a day between
/// the likely start and the likely finish of a window. Weekends of its own calendar do not.
class WeatherRoom {
 public:
  /// Looks at the days from `first` to `last`. The plan must outlive the object.
  WeatherRoom(const engine::Plan& plan, const Weather& weather, std::int32_t first,
              std::int32_t last);

  /// Minutes of work of the longest stretch that no day cuts, for a task on these calendars; from
  /// the first day to `last`.
  std::int64_t LongestStretch(const engine::Task& task, std::int32_t last) const;

  /// The same with the weather of certain periods, which takes its likely number of days anywhere
  /// in the period: the longest stretch that somewhere has a chance of 1 in 10 to stay whole. Each
  /// day of a period of n worked days and k days of weather is taken to be lost with the chance
  /// k/n, independently of the others.
  std::int64_t LongestLikelyStretch(const engine::Task& task, std::int32_t last) const;

  /// The day on which the task's work would be done if it began on `day` and nothing cut it, or the
  /// last day that is looked at.
  std::int32_t DayOfFinish(const engine::Task& task, std::int32_t day) const;

 private:
  /// Of one calendar, by day from the first.
  struct Days {
    std::vector<bool> worked;   // by pattern and exceptions, and not taken
    std::vector<bool> blocked;  // by a window
    std::vector<double> dry;    // chance that certain weather leaves the day
  };

  std::size_t Position(std::int32_t day) const { return static_cast<std::size_t>(day - first_); }
  void AddPeriod(Days& days, const engine::CalendarDefinition& calendar,
                 const WeatherPeriod& period);
  void AddWindow(Days& days, const WeatherWindow& window);
  const engine::CalendarDefinition* OwnCalendar(const engine::Task& task) const;
  std::vector<const Days*> RiskDays(const engine::Task& task) const;
  std::int64_t Longest(const engine::Task& task, std::int32_t last, bool with_periods) const;

  const engine::Plan& plan_;
  std::int32_t first_;
  std::int32_t last_;
  std::unordered_map<engine::Uid, Days> days_;
};

}  // namespace nimbrel::cli
