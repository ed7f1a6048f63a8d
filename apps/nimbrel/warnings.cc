#include "nimbrel/warnings.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "engine/schedule/scheduler.h"
#include "nimbrel/command_line.h"
#include "nimbrel/weather_json.h"
#include "nimbrel/weather_room.h"
#include "nimbrel/wiring.h"

namespace nimbrel::cli {
namespace {

using engine::Plan;
using engine::Task;
using engine::TimeUnit;

/// How far beyond the plan's finish a task is followed that finds no room before it.
constexpr std::int32_t kDaysBeyondFinish = 5 * 366;

/// Numbers of things by calendar, as in "3 periods (NORTH SEA 2, FROST 1)".
class CountsByCalendar {
 public:
  void Add(const std::string& calendar, std::int64_t count) {
    if (count > 0) {
      parts_.push_back(fmt::format("{} {}", calendar, Grouped(count)));
      total_ += count;
    }
  }
  std::int64_t total() const { return total_; }
  std::string Text(const std::string& singular, const std::string& plural) const {
    return fmt::format("{} ({})", Counted(total_, singular, plural), fmt::join(parts_, ", "));
  }

 private:
  std::int64_t total_ = 0;
  std::vector<std::string> parts_;
};

/// The first and the last day on which the weather of a calendar can be.
struct Reach {
  std::int32_t first = INT32_MAX;
  std::int32_t last = INT32_MIN;

  void Add(std::int32_t from, std::int32_t to) {
    first = std::min(first, from);
    last = std::max(last, to);
  }
};

class WarningWriter {
 public:
  explicit WarningWriter(const Plan& plan)
      : plan_(plan), weather_(ReadWeather(plan)), first_day_(plan.StatusDate().day()) {}

  std::vector<std::string> Write() {
    if (weather_.events.empty() && weather_.windows.empty() && weather_.assign.empty()) {
      return {};
    }
    if (!IsWeatherPlan(plan_)) {
      Warn(
          "The plan has weather data but is not marked as a weather plan: it runs without "
          "weather.");
      return std::move(warnings_);
    }
    Schedule();
    if (plan_.time_unit != TimeUnit::kDays) {
      WarnOfBlocks();
      WarnOfOffsets();
    }
    WarnOfCalendars();
    WarnOfUnmovedTasks();
    WarnOfLongTasks();
    return std::move(warnings_);
  }

 private:
  void Warn(std::string warning) { warnings_.push_back(std::move(warning)); }

  /// Finds the plan's finish without weather. A plan that cannot be scheduled has none, and whoever
  /// runs it is told why.
  void Schedule() {
    try {
      engine::Scheduler scheduler(plan_, [](const Task& task) { return !CarriesWeather(task); });
      scheduler.ScheduleForward();
      last_day_ = scheduler.finish().day();
    } catch (const engine::SchedulingError&) {
      last_day_.reset();
    }
  }

  // Plans in hours and quarters.

  std::string_view UnitText() const {
    return plan_.time_unit == TimeUnit::kHours ? "hours" : "quarters of an hour";
  }
  std::int32_t UnitsPerWorkingDay() const {
    return plan_.hours_per_day * (plan_.time_unit == TimeUnit::kQuarters ? 4 : 1);
  }

  void WarnOfBlocks() {
    CountsByCalendar blocks;
    for (const EventCalendar& calendar : weather_.events) {
      blocks.Add(calendar.name, std::count_if(calendar.periods.begin(), calendar.periods.end(),
                                              [](const WeatherPeriod& period) {
                                                return period.probability < 1 && period.max > 0;
                                              }));
    }
    if (blocks.total() > 0 && UnitsPerWorkingDay() > 1) {
      Warn(fmt::format(
          "The plan counts in {0}, and a block of weather counts them as calendar days: in {1} "
          "below 100%, each day of weather takes {2} days in one piece, which may begin long "
          "after the period. A plan imported with --time-unit days takes the days as given.",
          UnitText(), blocks.Text("period", "periods"), UnitsPerWorkingDay()));
    }
  }

  void WarnOfOffsets() {
    CountsByCalendar moving;
    for (const WindowCalendar& calendar : weather_.windows) {
      moving.Add(calendar.name, std::count_if(calendar.windows.begin(), calendar.windows.end(),
                                              [](const WeatherWindow& window) {
                                                return window.start[2] > window.start[0] ||
                                                       window.finish[2] > window.finish[0];
                                              }));
    }
    if (moving.total() > 0 && plan_.hours_per_day < 24) {
      Warn(fmt::format(
          "The plan counts in {0}, and the dates of windows move too little: in {1}, the days from "
          "an earliest to a likely or latest date are stored as {2} hours each and counted as "
          "days of 24, so that 24 of them move a date by {2}. A plan imported with --time-unit "
          "days moves them as given.",
          UnitText(), moving.Text("window", "windows"), plan_.hours_per_day));
    }
  }

  // Weather that nothing comes of.

  void WarnOfCalendars() {
    std::unordered_map<std::string, std::size_t> tasks;
    for (const WeatherAssignment& assignment : weather_.assign) {
      for (const std::string& calendar : assignment.calendars) {
        tasks[calendar] += assignment.tasks.size();
      }
    }
    for (const EventCalendar& calendar : weather_.events) {
      Reach reach;
      for (const WeatherPeriod& period : calendar.periods) {
        reach.Add(period.start, period.finish);
      }
      WarnOfCalendar(calendar.name, "periods", tasks[calendar.name], reach);
    }
    for (const WindowCalendar& calendar : weather_.windows) {
      Reach reach;
      for (const WeatherWindow& window : calendar.windows) {
        reach.Add(window.start[0], window.finish[2]);
      }
      WarnOfCalendar(calendar.name, "windows", tasks[calendar.name], reach);
    }
  }

  void WarnOfCalendar(const std::string& name, std::string_view items, std::size_t tasks,
                      const Reach& reach) {
    if (tasks == 0) {
      Warn(fmt::format("The weather calendar {} is assigned to no task: it delays nothing.", name));
    } else if (reach.last < reach.first) {
      Warn(
          fmt::format("The weather calendar {} is assigned to {} but has no {}: it delays "
                      "nothing.",
                      name, Counted(static_cast<std::int64_t>(tasks), "task", "tasks"), items));
    } else if (reach.last < first_day_) {
      Warn(
          fmt::format("All {} of the weather calendar {} end before {}, when what remains of the "
                      "plan begins: it delays nothing.",
                      items, name, IsoDay(first_day_)));
    } else if (last_day_ && reach.first > *last_day_) {
      Warn(
          fmt::format("All {} of the weather calendar {} begin after {}, when the plan ends "
                      "without weather.",
                      items, name, IsoDay(*last_day_)));
    }
  }

  // Tasks that weather cannot hold up, and tasks that it must not split.

  /// Whether weather can move the task: it has work left, and dates of its own.
  static bool IsHeldUp(const Task& task) {
    const auto is_mandatory = [](const engine::Constraint& constraint) {
      return constraint.type == engine::ConstraintType::kMandatoryStart ||
             constraint.type == engine::ConstraintType::kMandatoryFinish;
    };
    return task.kind == engine::TaskKind::kTask && !task.IsFinished() &&
           !is_mandatory(task.second_constraint);
  }

  void WarnOfUnmovedTasks() {
    std::vector<std::string> marked;
    std::vector<std::string> assigned;
    for (const Task& task : plan_.tasks()) {
      if (CarriesWeather(task) || IsHeldUp(task) || task.IsFinished()) {
        continue;
      }
      if (IsNoSplit(task)) {
        marked.push_back(task.id);
      }
      if (!task.risk_calendars.empty() && !task.IsMilestone()) {
        assigned.push_back(task.id);
      }
    }
    if (!marked.empty()) {
      Warn(fmt::format(
          "The no-split mark does nothing on {}: only tasks with work and without a second, "
          "mandatory date are held back past weather.",
          fmt::join(marked, ", ")));
    }
    if (!assigned.empty()) {
      Warn(fmt::format(
          "Weather assigned to {} holds up nothing: summaries and levels of effort follow other "
          "tasks, and a mandatory date stays where it is. Assign it to the tasks themselves.",
          fmt::join(assigned, ", ")));
    }
  }

  void WarnOfLongTasks() {
    if (!last_day_) {
      return;
    }
    const WeatherRoom room(plan_, weather_, first_day_, *last_day_ + kDaysBeyondFinish);
    for (const Task& task : plan_.tasks()) {
      if (IsNoSplit(task) && !CarriesWeather(task) && IsHeldUp(task)) {
        WarnOfLongTask(task, room);
      }
    }
  }

  void WarnOfLongTask(const Task& task, const WeatherRoom& room) {
    const std::int32_t needed = plan_.LikelyMinutes(task);
    // The plan may become longer by this task, but if it finds no room by then it is pushed far.
    const std::int32_t last = room.DayOfFinish(task, *last_day_ + 1);
    const std::int64_t free = room.LongestStretch(task, last);
    const std::string start =
        fmt::format("Task {} must not be split and takes {}, ", task.id, DaysText(needed));
    if (needed > free) {
      Warn(
          fmt::format("{}but the longest stretch without a day off in its calendars is {} long "
                      "(until {}): it will be pushed far.",
                      start, DaysText(free), IsoDay(last)));
      return;
    }
    const std::int64_t likely = room.LongestLikelyStretch(task, last);
    if (needed > likely) {
      Warn(
          fmt::format("{}but with the certain weather of its calendars no stretch of more than {} "
                      "has a chance of 1 in 10 to stay without a day off (until {}): it will be "
                      "pushed far in most iterations.",
                      start, DaysText(likely), IsoDay(last)));
    }
  }

  /// Working time in days of HoursPerDay, to a tenth.
  std::string DaysText(std::int64_t minutes) const {
    const double days = Rounded(static_cast<double>(minutes) / (plan_.hours_per_day * 60), 1);
    return fmt::format("{:g} {}", days, days == 1 ? "day" : "days");
  }

  const Plan& plan_;
  Weather weather_;
  std::int32_t first_day_;
  std::optional<std::int32_t> last_day_;  // of the plan as scheduled without weather
  std::vector<std::string> warnings_;
};

}  // namespace

std::vector<std::string> WeatherWarnings(const Plan& plan) {
  return WarningWriter(plan).Write();
}

}  // namespace nimbrel::cli
