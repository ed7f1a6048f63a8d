#include "engine/plan/plan_fault.h"

#include <fmt/format.h>

#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "platform/date.h"
#include "platform/text.h"

namespace nimbrel::engine {
namespace {

/// Ends the search.
class Fault : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

[[noreturn]] void Report(const std::string& where, const std::string& expected,
                         const std::string& found) {
  throw Fault(fmt::format("{}: expected {}, found {}", where, expected, found));
}

std::string Quote(std::string_view text) {
  return "\"" + std::string(text) + "\"";
}

void RequireBetween(const std::string& where, std::string_view what, double value, double least,
                    double most) {
  if (!(value >= least && value <= most)) {
    Report(where, fmt::format("{} from {} to {}", what, least, most), fmt::format("{}", value));
  }
}

/// A code of an enum whose values run from 0 to `last`.
template <class Enum>
void RequireCode(const std::string& where, std::string_view what, Enum value, Enum last) {
  RequireBetween(where, what, static_cast<std::int32_t>(value), 0, static_cast<std::int32_t>(last));
}

void RequireFinite(const std::string& where, std::string_view what,
                   std::initializer_list<double> values) {
  for (const double value : values) {
    if (!std::isfinite(value)) {
      Report(where, fmt::format("{} that is a number", what), fmt::format("{}", value));
    }
  }
}

bool IsDay(std::int32_t day) {
  return day >= platform::kFirstSerialDay && day <= platform::kLastSerialDay;
}

void RequireDates(const std::string& where, std::string_view what,
                  std::initializer_list<Instant> dates) {
  for (const Instant date : dates) {
    if (!date.IsAbsent() && (!IsDay(date.day()) || date.minute() > kMinutesPerDay)) {
      Report(where, fmt::format("{} in the years 100 to 9999", what),
             fmt::format("minute {} of day {}", date.minute(), date.day()));
    }
  }
}

void RequireShifts(const std::string& where, const DayPattern& pattern) {
  std::int32_t free_from = 0;
  for (const Shift& shift : pattern) {
    if (shift.begin < free_from || shift.end <= shift.begin || shift.end > kMinutesPerDay) {
      Report(where, "shifts in order within the day",
             fmt::format("one from minute {} to minute {}", shift.begin, shift.end));
    }
    free_from = shift.end;
  }
}

void RequireDay(const std::string& where, std::int32_t day) {
  if (!IsDay(day)) {
    Report(where, "days in the years 100 to 9999", fmt::format("day {}", day));
  }
}

/// Identities that are in use, each to be there once.
class Uids {
 public:
  explicit Uids(Uid end) : end_(end) {}

  void Add(const std::string& where, Uid uid) {
    if (uid < 1 || uid >= end_) {
      Report(where, fmt::format("a number from 1 to {}", end_ - 1), fmt::format("{}", uid));
    }
    if (!known_.insert(uid).second) {
      Report(where, "a number of its own", fmt::format("{} for the second time", uid));
    }
  }
  /// A reference; 0 stands for none.
  void Require(const std::string& where, std::string_view what, Uid uid) const {
    if (uid != 0 && !known_.contains(uid)) {
      Report(where, fmt::format("{} that is in the plan", what), fmt::format("number {}", uid));
    }
  }

 private:
  Uid end_;
  std::unordered_set<Uid> known_;
};

/// Names or IDs, to be unique without regard to case.
class Names {
 public:
  void Add(const std::string& where, const std::string& name) {
    if (!known_.insert(platform::FoldCase(name)).second) {
      Report(where, "a name of its own", Quote(name) + " for the second time");
    }
  }
  bool Contains(std::string_view name) const { return known_.contains(platform::FoldCase(name)); }

 private:
  std::unordered_set<std::string> known_;
};

class Search {
 public:
  explicit Search(const Plan& plan)
      : plan_(plan),
        calendars_(plan.next_uid()),
        risk_calendars_(plan.next_uid()),
        tasks_(plan.next_uid()) {}

  void Run() {
    CheckProperties();
    for (const CalendarDefinition& calendar : plan_.calendars) {
      CheckCalendar(calendar);
    }
    calendars_.Require("plan", "a default calendar", plan_.default_calendar);
    CheckRiskCalendars();
    for (const CustomField& field : plan_.custom_fields) {
      field_names_.Add("custom field " + Quote(field.name), field.name);
    }
    for (const Task& task : plan_.tasks()) {
      tasks_.Add("task " + Quote(task.id), task.uid);
    }
    for (const Task& task : plan_.tasks()) {
      CheckTask(task);
    }
    CheckHierarchy();
    for (std::size_t i = 0; i < plan_.links.size(); ++i) {
      CheckLink("link " + std::to_string(i + 1), plan_.links[i]);
    }
    for (std::size_t i = 0; i < plan_.correlations.size(); ++i) {
      CheckCorrelation("correlation group " + std::to_string(i + 1), plan_.correlations[i]);
    }
  }

 private:
  void CheckProperties() {
    RequireDates("plan", "dates", {plan_.start, plan_.data_date, plan_.schedule.must_finish});
    if (plan_.time_unit != TimeUnit::kDays && plan_.time_unit != TimeUnit::kHours &&
        plan_.time_unit != TimeUnit::kQuarters) {
      Report("plan", "a time unit of 1, 24 or 96",
             std::to_string(static_cast<std::int32_t>(plan_.time_unit)));
    }
    RequireBetween("plan", "hours a day", plan_.hours_per_day, 1, 24);
    RequireBetween("plan", "a date format", plan_.date_format, 0, 14);
    RequireCode("plan", "a progress rule", plan_.schedule.progress, ProgressRule::kActualDates);
    RequireCode("plan", "a float rule", plan_.schedule.total_float, FloatRule::kSmaller);
  }

  void CheckCalendar(const CalendarDefinition& calendar) {
    const std::string where = "calendar " + Quote(calendar.name);
    calendars_.Add(where, calendar.uid);
    calendar_names_.Add(where, calendar.name);
    for (const DayPattern& pattern : calendar.week) {
      RequireShifts(where, pattern);
    }
    for (const auto& [day, pattern] : calendar.exceptions) {
      RequireDay(where, day);
      RequireShifts(where, pattern);
    }
    const DayRange* before = nullptr;
    for (const DayRange& range : calendar.taken) {
      RequireDay(where, range.first);
      RequireDay(where, range.last);
      if (range.last < range.first || (before != nullptr && range.first <= before->last + 1)) {
        Report(where, "days taken away in order and apart",
               fmt::format("day {} to day {}", range.first, range.last));
      }
      before = &range;
    }
  }

  void CheckRiskCalendars() {
    for (const RiskCalendarDefinition& calendar : plan_.risk_calendars) {
      const std::string where = "risk calendar " + Quote(calendar.name);
      risk_calendars_.Add(where, calendar.uid);
      risk_calendar_names_.Add(where, calendar.name);
      calendars_.Require(where, "a calendar", calendar.calendar);
    }
  }

  void CheckTask(const Task& task) {
    const std::string where = "task " + Quote(task.id);
    if (task.id.empty()) {
      Report(where, "an ID", "an empty one");
    }
    ids_.Add(where, task.id);
    if (task.stream == 0) {
      Report(where, "a random stream", "none");
    }
    RequireCode(where, "a kind", task.kind, TaskKind::kLevelOfEffort);
    calendars_.Require(where, "a calendar", task.calendar);
    CheckWork(where, task);
    CheckDates(where, task);
    for (const CustomValue& value : task.custom_values) {
      CheckCustomValue(where, value);
    }
    CheckAssignments(where, task);
  }

  static void CheckWork(const std::string& where, const Task& task) {
    if (task.remaining_minutes < 0 || task.original_minutes < 0) {
      Report(where, "no duration below 0 minutes",
             std::to_string(std::min(task.remaining_minutes, task.original_minutes)));
    }
    RequireBetween(where, "a percentage", task.percent_complete, 0, 100);
    if (task.range) {
      RequireFinite(where, "a duration",
                    {task.range->minimum, task.range->likely, task.range->maximum});
      RequireCode(where, "a shape", task.range->shape, Shape::kSingle);
    }
    if (task.risk) {
      RequireFinite(where, "a probability", {task.risk->probability});
    }
  }

  static void CheckDates(const std::string& where, const Task& task) {
    for (const Constraint& constraint : {task.constraint, task.second_constraint}) {
      RequireCode(where, "a constraint", constraint.type, ConstraintType::kPlacedStart);
      RequireDates(where, "a constraint's date", {constraint.date});
    }
    RequireDates(where, "dates of progress",
                 {task.actual_start, task.actual_finish, task.suspended, task.resumed,
                  task.expected_finish});
    RequireDates(where, "stored dates",
                 {task.stored.early_start, task.stored.early_finish, task.stored.late_start,
                  task.stored.late_finish});
  }

  void CheckCustomValue(const std::string& where, const CustomValue& value) const {
    if (!field_names_.Contains(value.field)) {
      Report(where, "a custom field that is in the plan", Quote(value.field));
    }
    if (const double* real = value.value.Get<double>()) {
      RequireFinite(where, "a custom value", {*real});
    }
    if (const platform::Date* date = value.value.Get<platform::Date>()) {
      RequireFinite(where, "a custom date", {date->serial});
    }
  }

  void CheckAssignments(const std::string& where, const Task& task) const {
    std::unordered_set<Uid> assigned;
    for (const RiskAssignment& assignment : task.risk_calendars) {
      if (assignment.risk_calendar == 0) {
        Report(where, "a risk calendar", "none");
      }
      risk_calendars_.Require(where, "a risk calendar", assignment.risk_calendar);
      if (!assigned.insert(assignment.risk_calendar).second) {
        Report(where, "each risk calendar once",
               fmt::format("number {} for the second time", assignment.risk_calendar));
      }
      RequireFinite(where, "the value of a risk calendar", {assignment.value});
    }
  }

  /// Every way up must end at the top.
  void CheckHierarchy() const {
    std::unordered_map<Uid, Uid> parents;
    for (const Task& task : plan_.tasks()) {
      tasks_.Require("task " + Quote(task.id), "a summary", task.parent);
      parents[task.uid] = task.parent;
    }
    std::unordered_set<Uid> sound = {0};
    for (const Task& task : plan_.tasks()) {
      std::unordered_set<Uid> way;
      Uid uid = task.uid;
      for (; !sound.contains(uid); uid = parents.at(uid)) {
        if (!way.insert(uid).second) {
          Report("task " + Quote(task.id), "a summary above it", "the task itself");
        }
      }
      sound.merge(way);
    }
  }

  void CheckLink(const std::string& where, const Link& link) const {
    if (link.predecessor == 0 || link.successor == 0) {
      Report(where, "two tasks", "one");
    }
    tasks_.Require(where, "a predecessor", link.predecessor);
    tasks_.Require(where, "a successor", link.successor);
    RequireCode(where, "a type", link.type, LinkType::kStartToFinish);
    RequireCode(where, "a calendar for the lag", link.lag_calendar, LagCalendar::kElapsed);
  }

  void CheckCorrelation(const std::string& where, const CorrelationGroup& group) const {
    RequireBetween(where, "a coefficient", group.coefficient, -1, 1);
    if (group.tasks.empty() == group.calendars.empty()) {
      Report(where, "tasks or calendars", group.tasks.empty() ? "neither" : "both");
    }
    if (group.tasks.size() + group.calendars.size() < 2) {
      Report(where, "two members or more", "one");
    }
    std::unordered_set<Uid> tasks;
    for (const Uid uid : group.tasks) {
      if (uid == 0 || !tasks.insert(uid).second) {
        Report(where, "each task once", "number " + std::to_string(uid));
      }
      tasks_.Require(where, "a task", uid);
    }
    Names names;
    for (const std::string& name : group.calendars) {
      names.Add(where, name);
    }
  }

  const Plan& plan_;
  Uids calendars_;
  Uids risk_calendars_;
  Uids tasks_;
  Names calendar_names_;
  Names risk_calendar_names_;
  Names field_names_;
  Names ids_;
};

}  // namespace

std::optional<std::string> FindFault(const Plan& plan) {
  try {
    Search(plan).Run();
  } catch (const Fault& fault) {
    return fault.what();
  }
  return std::nullopt;
}

}  // namespace nimbrel::engine
