#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "engine/plan/plan_rows.h"

namespace nimbrel::engine {
namespace {

/// All rows of one table, column by column.
class Rows {
 public:
  Rows(const SqliteDatabase& database, const std::string& table, const std::string& columns,
       const std::string& order)
      : statement_(database, table, "SELECT " + columns + " FROM " + table + " ORDER BY " + order) {
  }

  bool Next() {
    column_ = 0;
    return statement_.Next();
  }
  std::int32_t Integer() { return statement_.Integer32(column_++); }
  std::int64_t Integer64() { return statement_.Integer(column_++); }
  bool Boolean() { return statement_.Boolean(column_++); }
  double Real() { return statement_.Real(column_++); }
  std::string Text() { return statement_.Text(column_++); }
  /// Whether a code is one of the enum's is left to FindFault.
  template <class Enum>
  void Code(Enum& value) {
    value = static_cast<Enum>(Integer());
  }
  Uid Reference() { return SkipNull() ? 0 : Integer(); }
  std::optional<std::int32_t> OptionalInteger() {
    return SkipNull() ? std::nullopt : std::optional(Integer());
  }
  Instant Date() {
    if (SkipNull()) {
      return {};
    }
    const Instant date = ParseIsoText(Text());
    if (date.IsAbsent()) {
      RefuseLast("a date YYYY-MM-DDTHH:MM");
    }
    return date;
  }
  std::int32_t Day() {
    const Instant day = ParseIsoText(Text());
    if (day.IsAbsent() || day.minute() != 0) {
      RefuseLast("a date YYYY-MM-DD");
    }
    return day.day();
  }
  Shift ReadShift() {
    const std::int16_t begin = Minute();
    return {begin, Minute()};
  }
  std::int32_t IntegerFrom(std::int32_t least, std::int32_t most) {
    const std::int32_t value = Integer();
    if (value < least || value > most) {
      RefuseLast("a number from " + std::to_string(least) + " to " + std::to_string(most));
    }
    return value;
  }
  /// Raises UnexpectedValue for the column that was read last.
  [[noreturn]] void RefuseLast(const std::string& expected) {
    statement_.Refuse(column_ - 1, expected);
  }

  platform::Variant Variant() {
    const std::string type = Text();
    if (type == "boolean") {
      return Boolean();
    }
    if (type == "integer") {
      return Integer();
    }
    if (type == "real") {
      return Real();
    }
    if (type == "date") {
      return platform::Date{Real()};
    }
    if (type == "text") {
      return Text();
    }
    if (type != "empty") {
      RefuseLast("a type of values");
    }
    if (!SkipNull()) {
      ++column_;
      RefuseLast("nothing");
    }
    return {};
  }

 private:
  std::int16_t Minute() { return static_cast<std::int16_t>(IntegerFrom(0, kMinutesPerDay)); }
  bool SkipNull() {
    const bool is_null = statement_.IsNull(column_);
    column_ += is_null ? 1 : 0;
    return is_null;
  }

  SqliteStatement statement_;
  int column_ = 0;
};

CalendarDefinition& CalendarOf(Rows& rows, Plan& plan) {
  CalendarDefinition* calendar = plan.FindCalendar(rows.Integer());
  if (calendar == nullptr) {
    rows.RefuseLast("a calendar that is in the plan");
  }
  return *calendar;
}

Task& TaskOf(Rows& rows, Plan& plan) {
  Task* task = plan.FindTask(rows.Integer());
  if (task == nullptr) {
    rows.RefuseLast("a task that is in the plan");
  }
  return *task;
}

void ReadProperties(const SqliteDatabase& database, std::int64_t version, Plan& plan) {
  Rows rows(database, "plan",
            "next_uid, name, title, start, data_date, time_unit, hours_per_day, date_format, "
            "default_calendar, recalculate_after_move, progress_rule, float_rule, "
            "remaining_from_data_date, lag_from_early_start, must_finish, critical_float_minutes, "
            "critical_by_longest_path, open_ends_critical, " +
                std::string(version >= 2 ? "no_later_holds_early" : "0"),
            "id");
  if (!rows.Next()) {
    throw UnexpectedValue("table plan: expected one row, found none");
  }
  plan.ReserveUids(rows.IntegerFrom(1, INT32_MAX));
  plan.name = rows.Text();
  plan.title = rows.Text();
  plan.start = rows.Date();
  plan.data_date = rows.Date();
  rows.Code(plan.time_unit);
  plan.hours_per_day = rows.Integer();
  plan.date_format = rows.Integer();
  plan.default_calendar = rows.Reference();
  plan.recalculate_after_move = rows.Boolean();
  rows.Code(plan.schedule.progress);
  rows.Code(plan.schedule.total_float);
  plan.schedule.remaining_from_data_date = rows.Boolean();
  plan.schedule.lag_from_early_start = rows.Boolean();
  plan.schedule.must_finish = rows.Date();
  plan.schedule.critical_float_minutes = rows.Integer();
  plan.schedule.critical_by_longest_path = rows.Boolean();
  plan.schedule.open_ends_critical = rows.Boolean();
  plan.schedule.no_later_holds_early = rows.Boolean();

  Rows options(database, "options", "section, option_group, key, value",
               "section, option_group, key");
  while (options.Next()) {
    std::string section = options.Text();
    std::string group = options.Text();
    std::string key = options.Text();
    plan.options[{std::move(section), std::move(group), std::move(key)}] = options.Text();
  }
  Rows fields(database, "custom_fields", "name, code", "position");
  while (fields.Next()) {
    std::string name = fields.Text();
    plan.custom_fields.push_back({std::move(name), fields.Integer()});
  }
}

void ReadShifts(const SqliteDatabase& database, Plan& plan) {
  Rows shifts(database, "calendar_shifts", "calendar, weekday, begin_minute, end_minute",
              "calendar, weekday, position");
  while (shifts.Next()) {
    CalendarDefinition& calendar = CalendarOf(shifts, plan);
    const auto weekday = static_cast<std::size_t>(shifts.IntegerFrom(0, 6));
    calendar.week[weekday].push_back(shifts.ReadShift());
  }
  Rows exceptions(database, "calendar_exceptions", "calendar, day", "calendar, day");
  while (exceptions.Next()) {
    CalendarDefinition& calendar = CalendarOf(exceptions, plan);
    calendar.exceptions[exceptions.Day()];
  }
  Rows exception_shifts(database, "calendar_exception_shifts",
                        "calendar, day, begin_minute, end_minute", "calendar, day, position");
  while (exception_shifts.Next()) {
    CalendarDefinition& calendar = CalendarOf(exception_shifts, plan);
    const auto exception = calendar.exceptions.find(exception_shifts.Day());
    if (exception == calendar.exceptions.end()) {
      exception_shifts.RefuseLast("a day that is an exception of the calendar");
    }
    exception->second.push_back(exception_shifts.ReadShift());
  }
}

void ReadCalendars(const SqliteDatabase& database, Plan& plan) {
  Rows calendars(database, "calendars", "uid, name", "position");
  while (calendars.Next()) {
    CalendarDefinition& calendar = plan.calendars.emplace_back();
    calendar.uid = calendars.Integer();
    calendar.name = calendars.Text();
  }
  ReadShifts(database, plan);
  Rows taken(database, "calendar_taken_days", "calendar, first_day, last_day",
             "calendar, position");
  while (taken.Next()) {
    CalendarDefinition& calendar = CalendarOf(taken, plan);
    const std::int32_t first = taken.Day();
    calendar.taken.push_back({first, taken.Day()});
  }
  Rows risk(database, "risk_calendars", "uid, name, description, calendar", "position");
  while (risk.Next()) {
    RiskCalendarDefinition& calendar = plan.risk_calendars.emplace_back();
    calendar.uid = risk.Integer();
    calendar.name = risk.Text();
    calendar.description = risk.Text();
    calendar.calendar = risk.Reference();
  }
}

void ReadTasks(const SqliteDatabase& database, Plan& plan) {
  Rows rows(database, "tasks",
            "stream, uid, description, kind, parent, calendar, remaining_minutes, "
            "original_minutes, actual_start, actual_finish, suspended, resumed, expected_finish, "
            "percent_complete, id",
            "position");
  const Uid end = plan.next_uid();
  while (rows.Next()) {
    Task task;
    task.stream = static_cast<std::uint64_t>(rows.Integer64());
    if (task.stream == 0) {
      rows.RefuseLast("a random stream other than 0");
    }
    task.uid = rows.IntegerFrom(1, end - 1);
    if (plan.FindTask(task.uid) != nullptr) {  // of a damaged file: the column is a key
      rows.RefuseLast("a number of its own");
    }
    task.description = rows.Text();
    rows.Code(task.kind);
    task.parent = rows.Reference();
    task.calendar = rows.Reference();
    task.remaining_minutes = rows.Integer();
    task.original_minutes = rows.Integer();
    task.actual_start = rows.Date();
    task.actual_finish = rows.Date();
    task.suspended = rows.Date();
    task.resumed = rows.Date();
    task.expected_finish = rows.Date();
    task.percent_complete = rows.Real();
    task.id = rows.Text();
    if (plan.FindTask(task.id) != nullptr) {
      rows.RefuseLast("an ID of its own");
    }
    plan.AddTask(std::move(task));
  }
}

void ReadEstimates(const SqliteDatabase& database, Plan& plan) {
  Rows ranges(database, "ranges", "task, minimum, likely, maximum, shape", "task");
  while (ranges.Next()) {
    ThreePoint& range = TaskOf(ranges, plan).range.emplace();
    range.minimum = ranges.Real();
    range.likely = ranges.Real();
    range.maximum = ranges.Real();
    ranges.Code(range.shape);
  }
  Rows risks(database, "risks", "task, probability, mode", "task");
  while (risks.Next()) {
    OccurrenceRisk& risk = TaskOf(risks, plan).risk.emplace();
    risk.probability = risks.Real();
    risk.mode = risks.Integer();
  }
}

void ReadTaskDates(const SqliteDatabase& database, Plan& plan) {
  Rows constraints(database, "constraints", "task, rank, type, date", "task, rank");
  while (constraints.Next()) {
    Task& task = TaskOf(constraints, plan);
    Constraint& constraint =
        constraints.IntegerFrom(1, 2) == 1 ? task.constraint : task.second_constraint;
    constraints.Code(constraint.type);
    constraint.date = constraints.Date();
  }
  Rows stored(database, "stored_dates",
              "task, early_start, early_finish, late_start, late_finish, total_float_minutes",
              "task");
  while (stored.Next()) {
    StoredDates& dates = TaskOf(stored, plan).stored;
    dates.early_start = stored.Date();
    dates.early_finish = stored.Date();
    dates.late_start = stored.Date();
    dates.late_finish = stored.Date();
    dates.total_float_minutes = stored.OptionalInteger();
  }
}

void ReadTaskLists(const SqliteDatabase& database, Plan& plan) {
  Rows user(database, "user_values", "task, section, key, value", "task, position");
  while (user.Next()) {
    UserValue& value = TaskOf(user, plan).user_values.emplace_back();
    value.section = user.Text();
    value.key = user.Text();
    value.value = user.Text();
  }
  Rows custom(database, "custom_values", "task, field, type, value", "task, position");
  while (custom.Next()) {
    CustomValue& value = TaskOf(custom, plan).custom_values.emplace_back();
    value.field = custom.Text();
    value.value = custom.Variant();
  }
  Rows assignments(database, "risk_assignments", "task, risk_calendar, value", "task, position");
  while (assignments.Next()) {
    RiskAssignment& assignment = TaskOf(assignments, plan).risk_calendars.emplace_back();
    assignment.risk_calendar = assignments.Integer();
    assignment.value = assignments.Real();
  }
}

void ReadLinks(const SqliteDatabase& database, Plan& plan) {
  Rows rows(database, "links", "predecessor, successor, type, lag_minutes, lag_calendar",
            "position");
  while (rows.Next()) {
    Link& link = plan.links.emplace_back();
    link.predecessor = rows.Integer();
    link.successor = rows.Integer();
    rows.Code(link.type);
    link.lag_minutes = rows.Integer();
    rows.Code(link.lag_calendar);
  }
}

void ReadCorrelations(const SqliteDatabase& database, Plan& plan) {
  Rows groups(database, "correlation_groups", "coefficient", "position");
  while (groups.Next()) {
    plan.correlations.emplace_back().coefficient = groups.Real();
  }
  Rows members(database, "correlation_members", "correlation_group, task, calendar",
               "correlation_group, position");
  while (members.Next()) {
    const std::int32_t number = members.Integer();
    if (number < 0 || static_cast<std::size_t>(number) >= plan.correlations.size()) {
      members.RefuseLast("a correlation group that is in the plan");
    }
    CorrelationGroup& group = plan.correlations[static_cast<std::size_t>(number)];
    if (const Uid task = members.Reference(); task != 0) {
      group.tasks.push_back(task);
    } else {
      group.calendars.push_back(members.Text());
    }
  }
}

}  // namespace

Plan ReadPlanRows(const SqliteDatabase& database, std::int64_t version) {
  Plan plan;
  ReadProperties(database, version, plan);
  ReadCalendars(database, plan);
  ReadTasks(database, plan);
  ReadEstimates(database, plan);
  ReadTaskDates(database, plan);
  ReadTaskLists(database, plan);
  ReadLinks(database, plan);
  if (version >= 3) {
    ReadCorrelations(database, plan);
  }
  return plan;
}

}  // namespace nimbrel::engine
