#include "nimbrel/weather_room.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace nimbrel::cli {
namespace {

using engine::CalendarDefinition;
using engine::Plan;
using engine::RiskCalendarDefinition;
using engine::Task;

/// A stretch that stays whole less often than this is none to count on.
constexpr double kLeastChance = 0.1;

bool IsWorked(const CalendarDefinition& calendar, std::int32_t day) {
  return !engine::PatternOn(calendar, day).empty() && !engine::IsTaken(calendar, day);
}

/// What a day is to a task that must not be split.
struct DayForTask {
  std::int32_t minutes = 0;  // of work
  double whole = 1;          // chance that the day does not cut the task
};

/// The longest run of days whose chances, multiplied, stay at or above kLeastChance.
class LongestRun {
 public:
  void Add(const DayForTask& day) {
    if (day.whole <= 0) {
      run_.clear();
      begin_ = 0;
      minutes_ = 0;
      log_chance_ = 0;
      return;
    }
    run_.push_back(day);
    minutes_ += day.minutes;
    log_chance_ += std::log(day.whole);
    while (log_chance_ < std::log(kLeastChance) - 1e-9) {
      minutes_ -= run_[begin_].minutes;
      log_chance_ -= std::log(run_[begin_].whole);
      ++begin_;
    }
    longest_ = std::max(longest_, minutes_);
  }
  std::int64_t longest() const { return longest_; }

 private:
  std::vector<DayForTask> run_;  // since the last day that cuts for certain
  std::size_t begin_ = 0;        // of the stretch that ends with the last day
  std::int64_t minutes_ = 0;
  double log_chance_ = 0;
  std::int64_t longest_ = 0;
};

}  // namespace

WeatherRoom::WeatherRoom(const Plan& plan, const Weather& weather, std::int32_t first,
                         std::int32_t last)
    : plan_(plan), first_(first), last_(std::max(first, last)) {
  const std::int32_t days_between = last_ - first_ + 1;
  const auto count = static_cast<std::size_t>(days_between);
  for (const CalendarDefinition& calendar : plan.calendars) {
    Days& days = days_[calendar.uid];
    days.blocked.assign(count, false);
    days.dry.assign(count, 1.0);
    for (std::int32_t day = first_; day <= last_; ++day) {
      days.worked.push_back(IsWorked(calendar, day));
    }
  }
  for (const EventCalendar& events : weather.events) {
    if (const CalendarDefinition* calendar = plan.FindCalendar(events.name)) {
      for (const WeatherPeriod& period : events.periods) {
        AddPeriod(days_.at(calendar->uid), *calendar, period);
      }
    }
  }
  for (const WindowCalendar& windows : weather.windows) {
    if (const CalendarDefinition* calendar = plan.FindCalendar(windows.name)) {
      for (const WeatherWindow& window : windows.windows) {
        AddWindow(days_.at(calendar->uid), window);
      }
    }
  }
}

void WeatherRoom::AddPeriod(Days& days, const CalendarDefinition& calendar,
                            const WeatherPeriod& period) {
  if (period.probability < 1) {
    return;
  }
  std::int32_t worked = 0;
  for (std::int32_t day = period.start; day <= period.finish; ++day) {
    worked += IsWorked(calendar, day) ? 1 : 0;
  }
  const double lost =
      worked == 0 ? 0.0 : std::min(1.0, static_cast<double>(period.likely) / worked);
  for (std::int32_t day = std::max(period.start, first_); day <= std::min(period.finish, last_);
       ++day) {
    days.dry[Position(day)] *= 1 - lost;
  }
}

void WeatherRoom::AddWindow(Days& days, const WeatherWindow& window) {
  for (std::int32_t day = std::max(window.start[1], first_);
       day <= std::min(window.finish[1], last_); ++day) {
    days.blocked[Position(day)] = true;
  }
}

const CalendarDefinition* WeatherRoom::OwnCalendar(const Task& task) const {
  return plan_.FindCalendar(task.calendar != 0 ? task.calendar : plan_.default_calendar);
}

std::vector<const WeatherRoom::Days*> WeatherRoom::RiskDays(const Task& task) const {
  std::vector<const Days*> all;
  for (const engine::RiskAssignment& assigned : task.risk_calendars) {
    const RiskCalendarDefinition* calendar = plan_.FindRiskCalendar(assigned.risk_calendar);
    const auto days = calendar == nullptr ? days_.end() : days_.find(calendar->calendar);
    if (days != days_.end()) {
      all.push_back(&days->second);
    }
  }
  return all;
}

std::int64_t WeatherRoom::Longest(const Task& task, std::int32_t last, bool with_periods) const {
  const CalendarDefinition* own = OwnCalendar(task);
  if (own == nullptr) {
    return 0;
  }
  const Days& own_days = days_.at(own->uid);
  const std::vector<const Days*> risk_days = RiskDays(task);
  LongestRun run;
  for (std::int32_t day = first_; day <= std::min(last, last_); ++day) {
    const std::size_t at = Position(day);
    DayForTask one;
    bool is_worked = own_days.worked[at];
    for (const Days* days : risk_days) {
      is_worked = is_worked && days->worked[at] && !days->blocked[at];
      one.whole *= with_periods ? days->dry[at] : 1.0;
    }
    const bool in_pattern = !own->week[static_cast<std::size_t>(engine::WeekdayOf(day))].empty();
    if (is_worked) {
      one.minutes = engine::MinutesOf(engine::PatternOn(*own, day));
      // A day that the weekly pattern leaves free is no loss, even if it was to be worked.
      one.whole = in_pattern ? one.whole : 1.0;
    } else {
      one.whole = in_pattern ? 0.0 : 1.0;
    }
    run.Add(one);
  }
  return run.longest();
}

std::int64_t WeatherRoom::LongestStretch(const Task& task, std::int32_t last) const {
  return Longest(task, last, false);
}

std::int64_t WeatherRoom::LongestLikelyStretch(const Task& task, std::int32_t last) const {
  return Longest(task, last, true);
}

std::int32_t WeatherRoom::DayOfFinish(const Task& task, std::int32_t day) const {
  const CalendarDefinition* own = OwnCalendar(task);
  std::int64_t left = plan_.LikelyMinutes(task);
  for (; own != nullptr && day < last_; ++day) {
    left -= engine::MinutesOf(engine::PatternOn(*own, day));
    if (left <= 0) {
      return day;
    }
  }
  return last_;
}

}  // namespace nimbrel::cli
