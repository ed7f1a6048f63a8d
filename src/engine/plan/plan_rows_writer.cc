#include <cstdint>
#include <string>
#include <string_view>

#include "engine/plan/plan_rows.h"

namespace nimbrel::engine {
namespace {

/// The values of one row after the other, column by column.
class Row {
 public:
  Row(const SqliteDatabase& database, const std::string& table, int columns)
      : statement_(database, table, "INSERT INTO " + table + " VALUES (?" + Parameters(columns)) {}

  Row& Integer(std::int64_t value) {
    statement_.BindInteger(column_++, value);
    return *this;
  }
  template <class Enum>
  Row& Code(Enum value) {
    return Integer(static_cast<std::int32_t>(value));
  }
  Row& Real(double value) {
    statement_.BindReal(column_++, value);
    return *this;
  }
  Row& Text(std::string_view value) {
    statement_.BindText(column_++, value);
    return *this;
  }
  Row& Null() {
    ++column_;
    return *this;
  }
  /// A reference; 0 is none.
  Row& Reference(Uid uid) { return uid == 0 ? Null() : Integer(uid); }
  Row& Date(Instant date) {
    return date.IsAbsent() ? Null() : Text(dates_[date_++ % kDates] = ToIsoText(date));
  }
  Row& Day(std::int32_t day) {
    return Text(dates_[date_++ % kDates] = ToIsoText({day, 0}).substr(0, 10));
  }
  void Put() {
    statement_.Insert();
    column_ = 0;
  }

 private:
  /// Dates in one row at most; their texts must live until the row is put.
  static constexpr std::size_t kDates = 8;

  static std::string Parameters(int columns) {
    std::string text;
    for (int i = 1; i < columns; ++i) {
      text += ", ?";
    }
    return text + ")";
  }

  SqliteStatement statement_;
  int column_ = 0;
  std::string dates_[kDates];
  std::size_t date_ = 0;
};

void WriteCalendars(const SqliteDatabase& database, const Plan& plan) {
  Row calendars(database, "calendars", 3);
  Row shifts(database, "calendar_shifts", 5);
  Row exceptions(database, "calendar_exceptions", 2);
  Row exception_shifts(database, "calendar_exception_shifts", 5);
  Row taken(database, "calendar_taken_days", 4);
  std::int64_t position = 0;
  for (const CalendarDefinition& calendar : plan.calendars) {
    calendars.Integer(calendar.uid).Integer(position++).Text(calendar.name).Put();
    for (std::size_t weekday = 0; weekday < calendar.week.size(); ++weekday) {
      std::int64_t number = 0;
      for (const Shift& shift : calendar.week[weekday]) {
        shifts.Integer(calendar.uid).Integer(static_cast<std::int64_t>(weekday)).Integer(number++);
        shifts.Integer(shift.begin).Integer(shift.end).Put();
      }
    }
    for (const auto& [day, pattern] : calendar.exceptions) {
      exceptions.Integer(calendar.uid).Day(day).Put();
      std::int64_t number = 0;
      for (const Shift& shift : pattern) {
        exception_shifts.Integer(calendar.uid).Day(day).Integer(number++);
        exception_shifts.Integer(shift.begin).Integer(shift.end).Put();
      }
    }
    std::int64_t number = 0;
    for (const DayRange& range : calendar.taken) {
      taken.Integer(calendar.uid).Integer(number++).Day(range.first).Day(range.last).Put();
    }
  }
}

void WriteRiskCalendars(const SqliteDatabase& database, const Plan& plan) {
  Row row(database, "risk_calendars", 5);
  std::int64_t position = 0;
  for (const RiskCalendarDefinition& calendar : plan.risk_calendars) {
    row.Integer(calendar.uid).Integer(position++).Text(calendar.name).Text(calendar.description);
    row.Reference(calendar.calendar).Put();
  }
}

void WriteProperties(const SqliteDatabase& database, const Plan& plan) {
  Row row(database, "plan", 20);
  row.Integer(1).Text(plan.name).Text(plan.title).Date(plan.start).Date(plan.data_date);
  row.Code(plan.time_unit).Integer(plan.hours_per_day).Integer(plan.date_format);
  row.Reference(plan.default_calendar).Integer(plan.recalculate_after_move ? 1 : 0);
  const ScheduleOptions& schedule = plan.schedule;
  row.Code(schedule.progress).Code(schedule.total_float);
  row.Integer(schedule.remaining_from_data_date ? 1 : 0);
  row.Integer(schedule.lag_from_early_start ? 1 : 0).Date(schedule.must_finish);
  row.Integer(schedule.critical_float_minutes);
  row.Integer(schedule.critical_by_longest_path ? 1 : 0);
  row.Integer(schedule.open_ends_critical ? 1 : 0);
  row.Integer(schedule.no_later_holds_early ? 1 : 0).Integer(plan.next_uid()).Put();

  Row options(database, "options", 4);
  for (const auto& [key, value] : plan.options) {
    options.Text(key[0]).Text(key[1]).Text(key[2]).Text(value).Put();
  }
  Row fields(database, "custom_fields", 3);
  std::int64_t position = 0;
  for (const CustomField& field : plan.custom_fields) {
    fields.Integer(position++).Text(field.name).Integer(field.code).Put();
  }
}

void PutVariant(Row& row, const platform::Variant& value) {
  if (const bool* boolean = value.Get<bool>()) {
    row.Text("boolean").Integer(*boolean ? 1 : 0);
  } else if (const auto* whole = value.Get<std::int32_t>()) {
    row.Text("integer").Integer(*whole);
  } else if (const double* real = value.Get<double>()) {
    row.Text("real").Real(*real);
  } else if (const platform::Date* date = value.Get<platform::Date>()) {
    row.Text("date").Real(date->serial);
  } else if (const std::string* text = value.Get<std::string>()) {
    row.Text("text").Text(*text);
  } else {
    row.Text("empty").Null();
  }
}

/// What tasks have besides the columns of their own table.
class TaskDetails {
 public:
  explicit TaskDetails(const SqliteDatabase& database)
      : ranges_(database, "ranges", 5),
        risks_(database, "risks", 3),
        constraints_(database, "constraints", 4),
        stored_(database, "stored_dates", 6),
        user_values_(database, "user_values", 5),
        custom_values_(database, "custom_values", 5),
        assignments_(database, "risk_assignments", 4) {}

  void Put(const Task& task) {
    if (task.range) {
      ranges_.Integer(task.uid).Real(task.range->minimum).Real(task.range->likely);
      ranges_.Real(task.range->maximum).Code(task.range->shape).Put();
    }
    if (task.risk) {
      risks_.Integer(task.uid).Real(task.risk->probability).Integer(task.risk->mode).Put();
    }
    PutConstraint(task.uid, 1, task.constraint);
    PutConstraint(task.uid, 2, task.second_constraint);
    PutStoredDates(task);
    PutLists(task);
  }

 private:
  void PutConstraint(Uid task, int rank, const Constraint& constraint) {
    if (constraint != Constraint{}) {
      constraints_.Integer(task).Integer(rank).Code(constraint.type).Date(constraint.date).Put();
    }
  }

  void PutStoredDates(const Task& task) {
    const StoredDates& stored = task.stored;
    if (stored == StoredDates{}) {
      return;
    }
    stored_.Integer(task.uid).Date(stored.early_start).Date(stored.early_finish);
    stored_.Date(stored.late_start).Date(stored.late_finish);
    if (stored.total_float_minutes) {
      stored_.Integer(*stored.total_float_minutes);
    }
    stored_.Put();
  }

  void PutLists(const Task& task) {
    std::int64_t position = 0;
    for (const UserValue& value : task.user_values) {
      user_values_.Integer(task.uid).Integer(position++);
      user_values_.Text(value.section).Text(value.key).Text(value.value).Put();
    }
    position = 0;
    for (const CustomValue& value : task.custom_values) {
      custom_values_.Integer(task.uid).Integer(position++).Text(value.field);
      PutVariant(custom_values_, value.value);
      custom_values_.Put();
    }
    position = 0;
    for (const RiskAssignment& assignment : task.risk_calendars) {
      assignments_.Integer(task.uid).Integer(position++);
      assignments_.Integer(assignment.risk_calendar).Real(assignment.value).Put();
    }
  }

  Row ranges_, risks_, constraints_, stored_, user_values_, custom_values_, assignments_;
};

void WriteTasks(const SqliteDatabase& database, const Plan& plan) {
  Row row(database, "tasks", 16);
  TaskDetails details(database);
  std::int64_t position = 0;
  for (const Task& task : plan.tasks()) {
    row.Integer(task.uid).Integer(position++).Text(task.id).Text(task.description);
    row.Code(task.kind).Reference(task.parent).Reference(task.calendar);
    row.Integer(task.remaining_minutes).Integer(task.original_minutes);
    row.Date(task.actual_start).Date(task.actual_finish).Date(task.suspended).Date(task.resumed);
    row.Date(task.expected_finish).Real(task.percent_complete);
    row.Integer(static_cast<std::int64_t>(task.stream)).Put();
    details.Put(task);
  }
  Row links(database, "links", 6);
  position = 0;
  for (const Link& link : plan.links) {
    links.Integer(position++).Integer(link.predecessor).Integer(link.successor);
    links.Code(link.type).Integer(link.lag_minutes).Code(link.lag_calendar).Put();
  }
}

void WriteCorrelations(const SqliteDatabase& database, const Plan& plan) {
  Row groups(database, "correlation_groups", 2);
  Row members(database, "correlation_members", 4);
  std::int64_t number = 0;
  for (const CorrelationGroup& group : plan.correlations) {
    groups.Integer(number).Real(group.coefficient).Put();
    std::int64_t position = 0;
    for (const Uid task : group.tasks) {
      members.Integer(number).Integer(position++).Integer(task).Null().Put();
    }
    for (const std::string& calendar : group.calendars) {
      members.Integer(number).Integer(position++).Null().Text(calendar).Put();
    }
    ++number;
  }
}

}  // namespace

void WritePlanRows(const SqliteDatabase& database, const Plan& plan) {
  WriteCalendars(database, plan);
  WriteRiskCalendars(database, plan);
  WriteProperties(database, plan);
  WriteTasks(database, plan);
  WriteCorrelations(database, plan);
}

}  // namespace nimbrel::engine
