#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/date.h"
#include "platform/variant.h"

namespace nimbrel::recording {

/// The data of a small plan, plain and open: tests set it up and look into it without leaving a
/// trace in the log. The objects of recording_host.h are faces over it.

/// A calendar of whole days. A worked day runs from 08:00 for the plan's hours per day.
struct CalendarState {
  std::string name;
  std::array<bool, 7> weekdays = {true, true, true, true, true, true, true};  // Monday first
  std::set<std::int32_t> holidays;  // days off of the calendar's own, as whole serial days
  std::set<std::int32_t> weather;   // days taken by SetDays

  bool Worked(std::int32_t day) const;
};

struct RiskCalendarState {
  std::string name;
  std::string description;
  std::shared_ptr<CalendarState> calendar;
};

struct AssignedRiskCalendar {
  std::shared_ptr<RiskCalendarState> risk_calendar;
  double value = 0.0;
};

struct DurationState {
  double minimum = 0.0;
  double likely = 0.0;
  double maximum = 0.0;
};

struct RiskState {
  std::int32_t mode = 0;
  double probability = 100.0;
};

struct TaskState {
  std::string id;
  std::string description;
  std::shared_ptr<CalendarState> calendar;  // null: the task has none
  std::optional<DurationState> duration;
  std::optional<RiskState> risk;
  std::map<std::string, platform::Variant, std::less<>> custom;
  std::map<std::pair<std::string, std::string>, std::string> values;  // by section and key
  std::vector<std::weak_ptr<TaskState>> successors;
  std::vector<AssignedRiskCalendar> risk_calendars;
  std::weak_ptr<TaskState> parent;
  std::int32_t type = 0;
  double progress = 0.0;
  bool critical = false;
  std::int32_t constraint = 0;
  platform::Date constraint_date;
  platform::Date start;
  platform::Date finish;

  /// What the iterations sample, first iteration first; the last value stays. Without any the
  /// rounded likely duration is sampled.
  std::vector<std::int32_t> scripted_samples;
  /// Which iterations rule the task out, likewise. Without any its risk decides.
  std::vector<bool> scripted_skips;
  std::int32_t sample = 0;  // of the running iteration
  bool skip = false;        // of the running iteration

  /// Sets a text of the section "weather".
  void SetWeatherValue(std::string_view key, std::string_view value);
  /// A text of the section "weather", empty if there is none.
  std::string WeatherValue(std::string_view key) const;
};

struct PlanState {
  std::string name = "Plan";
  std::string title = "Title";
  platform::Date anchor = platform::MakeDate(2027, 1, 4);  // a Monday
  platform::Date reference = platform::MakeDate(2027, 1, 4);
  std::int32_t time_unit = 1;
  std::int32_t hours_per_day = 8;
  std::int32_t date_format = 7;
  bool recalculate_after_move = false;
  bool auto_recalculate = true;
  /// Whether an ID that another task has is refused; a test of a damaged plan switches it off.
  bool unique_ids = true;
  bool monitor_enabled = true;
  bool in_iteration = false;

  std::vector<std::shared_ptr<TaskState>> tasks;
  std::vector<std::shared_ptr<CalendarState>> calendars;
  std::vector<std::shared_ptr<RiskCalendarState>> risk_calendars;
  std::map<std::array<std::string, 3>, std::string> options;
  std::set<std::string> custom_fields;  // folded names

  /// Numbers that the random stream gives first; then a simple generator goes on.
  std::vector<double> scripted_random;
  std::size_t random_reads = 0;
  std::uint64_t random_state = 1;
  std::int32_t next_task = 1;

  /// Throws std::out_of_range if there is none: a mistake of the test.
  TaskState& Task(std::string_view id) const;
  CalendarState& Calendar(std::string_view name) const;
  /// Null if there is none. IDs and names are compared without regard to case.
  std::shared_ptr<TaskState> FindTask(std::string_view id) const;
  std::shared_ptr<CalendarState> FindCalendar(std::string_view name) const;
  std::shared_ptr<RiskCalendarState> FindRiskCalendar(std::string_view name) const;

  /// Adds a calendar that works every day of the week.
  std::shared_ptr<CalendarState> AddCalendar(std::string_view name);
  /// Adds an ordinary task of a certain duration in plan units on `calendar`.
  std::shared_ptr<TaskState> AddTask(std::string_view id, double duration,
                                     std::string_view calendar = "STANDARD");
  /// Adds the summary task of the weather data.
  std::shared_ptr<TaskState> AddWeatherSummary();
  /// Adds an event period under the summary task; makes its calendar if there is none.
  std::shared_ptr<TaskState> AddPeriod(std::string_view id, std::string_view calendar,
                                       platform::Date start, platform::Date end);
  /// Adds the two edges of a window, `id` and `id` with "-END" behind it, with the earliest dates
  /// as texts and all durations zero.
  std::shared_ptr<TaskState> AddWindow(std::string_view id, std::string_view calendar,
                                       std::string_view start, std::string_view end);
  /// Assigns a calendar to a task as a risk calendar, which is made if there is none.
  void Assign(std::string_view task, std::string_view calendar);
  void Link(std::string_view from, std::string_view to);

  std::int32_t UnitsPerDay() const;
  /// Whether the task works on a day: its own calendar and those assigned to it.
  bool Worked(const TaskState& task, std::int32_t day) const;
  /// Schedules all tasks forward, a day at a time.
  void Schedule();
  /// Samples all tasks for an iteration, counted from 0.
  void Sample(std::size_t iteration);
  double NextRandom();
};

/// A plan with the calendar "STANDARD", Monday to Friday, and no task.
std::shared_ptr<PlanState> MakePlanState();

}  // namespace nimbrel::recording
