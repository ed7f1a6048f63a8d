#include "engine/objects/task_object.h"

#include "platform/number.h"
#include "platform/text.h"

namespace nimbrel::engine {
namespace {

using Corvane8::Long;
using platform::Date;
using platform::Ref;
using platform::RuntimeError;

[[noreturn]] void RaiseUnknownMode(const char* operation, Long mode) {
  throw RuntimeError(platform::kInvalidProcedureCall,
                     std::string(operation) + " has no mode " + std::to_string(mode));
}

}  // namespace

TaskObject::TaskObject(PlanSession& session, Uid uid)
    : Face(session),
      uid_(uid),
      dates_(session, *this),
      user_fields_(session, *this),
      duration_(session, *this),
      risk_(session, *this),
      links_(session, *this),
      successors_(session, *this),
      risk_calendars_(session, *this) {}

void TaskObject::Resolve() {
  Plan& plan = session().plan();
  if (removed_ != nullptr) {
    data_ = removed_.get();
    position_ = -1;
  } else {
    position_ = plan.IndexOf(uid_);
    data_ = plan.FindTask(uid_);
  }
  Uid calendar = data_->calendar;
  if (calendar == 0 && data_->kind != TaskKind::kSummary) {
    calendar = plan.default_calendar;
  }
  calendar_ = calendar == 0 ? nullptr : session().FindCalendar(calendar);
  generation_ = session().generation();
}

void TaskObject::RequireInPlan() const {
  if (removed_ != nullptr) {
    throw RuntimeError(platform::kApplicationDefined,
                       "The task " + removed_->id + " is no longer in the plan");
  }
}

void TaskObject::Detach() {
  removed_ = std::make_unique<engine::Task>(Data());
  Resolve();
}

// What the iteration asks for.

bool TaskObject::get_SkipInIteration() {
  Data();
  return session().IsSkipped(position_);
}

Long TaskObject::get_SampledDuration() {
  const engine::Task& data = Data();
  if (IterationWitness* witness = session().witness()) {
    witness->SampleRead(data);
  }
  return platform::ToLong(session().SampledUnits(data, position_));
}

Date TaskObject::NextWorkingDate(Date date, double /*zero*/) {
  RequireInPlan();
  const engine::Task& data = Data();
  const std::int32_t day = DayIn(date);
  return Guarded(data, [&] {
    const Scheduler& scheduler = session().Compiled();
    const TaskIndex index = session().IndexAt(position_);
    // A task that carries weather is held up by nothing.
    if (index < 0 || scheduler.HasWorkOn(index, day)) {
      return date;
    }
    return scheduler.NextWorkStart(index, day + 1).ToDate();
  });
}

bool TaskObject::get_Critical() {
  RequireInPlan();
  const engine::Task& data = Data();
  return Guarded(data, [&] {
    const Scheduler& scheduler = session().WithLateDates();
    const TaskIndex index = session().DatesIndex(data, position_);
    return index >= 0 && scheduler.is_critical(index);
  });
}

// The task's own members.

void TaskObject::put_Calendar(const Ref<Corvane8::Calendar>& value) {
  Uid calendar = 0;
  if (!value.IsNothing()) {
    const auto& object = OwnObject<CalendarObject>(value, session(), "calendar");
    if (!object.in_plan()) {
      throw RuntimeError(platform::kInvalidProcedureCall, "The calendar is no longer in the plan");
    }
    calendar = object.uid();
  }
  engine::Task& data = Data();
  if (data.calendar != calendar) {
    data.calendar = calendar;
    Resolve();
    session().StructureChanged();
  }
}

Ref<Corvane8::Calendar> TaskObject::get_Calendar() {
  Data();
  return calendar_ == nullptr ? nullptr : calendar_->Share();
}

Long TaskObject::get_Type() {
  switch (Data().kind) {
    case TaskKind::kTask:
      return 0;
    case TaskKind::kSummary:
      return 1;
    case TaskKind::kStartMilestone:
      return 2;
    case TaskKind::kLevelOfEffort:
      return 4;
    case TaskKind::kFinishMilestone:
      return 5;
  }
  return 0;
}

void TaskObject::put_Description(std::string_view value) {
  ChangeIdentity([&] { Data().description = value; });
}

std::string TaskObject::get_Description() {
  return Data().description;
}

void TaskObject::put_ID(std::string_view value) {
  if (value.empty()) {
    throw RuntimeError(platform::kInvalidProcedureCall, "The ID of a task must not be empty");
  }
  if (!in_plan()) {
    Data().id = value;
    return;
  }
  ChangeIdentity([&] { session().plan().RenameTask(uid_, std::string(value)); });
}

std::string TaskObject::get_ID() {
  return Data().id;
}

// The objects of the task.

Ref<Corvane8::TaskLinks> TaskObject::get_Links() {
  return links_.Share();
}

Ref<Corvane8::TaskDates> TaskObject::get_Dates() {
  return dates_.Share();
}

Ref<Corvane8::UserFields> TaskObject::get_UserFields() {
  return user_fields_.Share();
}

Ref<Corvane8::TaskRiskCalendars> TaskObject::get_RiskCalendars() {
  return risk_calendars_.Share();
}

Ref<Corvane8::Duration> TaskObject::Duration(Long mode) {
  engine::Task& data = Data();
  if (mode == -1 && !data.range) {
    const double units = session().plan().RemainingUnits(data);
    data.range = ThreePoint{units, units, units, Shape::kTriangular};
  } else if (mode != 0 && mode != -1) {
    RaiseUnknownMode("Task.Duration", mode);
  }
  return data.range ? duration_.Share() : nullptr;
}

Ref<Corvane8::TaskRisk> TaskObject::Risk(Long mode) {
  std::optional<OccurrenceRisk>& risk = Data().risk;
  if (mode == -1 && !risk) {
    risk.emplace();
  } else if (mode == 1) {
    risk.reset();
  } else if (mode != 0 && mode != -1) {
    RaiseUnknownMode("Task.Risk", mode);
  }
  return risk ? risk_.Share() : nullptr;
}

// The hierarchy.

std::vector<Ref<Corvane8::Task>> TaskObject::get_Children() {
  std::vector<Ref<Corvane8::Task>> children;
  if (!in_plan()) {
    return children;
  }
  const std::vector<engine::Task>& tasks = session().plan().tasks();
  for (std::size_t i = 0; i < tasks.size(); ++i) {
    if (tasks[i].parent == uid_) {
      children.push_back(session().TaskAt(static_cast<std::int32_t>(i)).Share());
    }
  }
  return children;
}

Ref<Corvane8::Task> TaskObject::Parent(Long /*zero*/) {
  const Uid parent = in_plan() ? Data().parent : 0;
  return parent == 0 ? nullptr : session().TaskAt(session().plan().IndexOf(parent)).Share();
}

void TaskObject::MoveUnder(Long /*zero*/, const Ref<Corvane8::Task>& parent) {
  auto& above = OwnObject<TaskObject>(parent, session(), "summary task");
  RequireInPlan();
  above.RequireInPlan();
  const Plan& plan = session().plan();
  if (above.Data().kind != TaskKind::kTask && above.Data().kind != TaskKind::kSummary) {
    throw RuntimeError(platform::kInvalidProcedureCall,
                       "The task " + above.Data().id + " is of a kind that has no tasks under it");
  }
  for (Uid uid = above.uid_; uid != 0; uid = plan.FindTask(uid)->parent) {
    if (uid == uid_) {
      throw RuntimeError(platform::kInvalidProcedureCall,
                         "The task " + Data().id + " cannot be placed under itself");
    }
  }
  std::int32_t last_child = -1;
  for (std::size_t i = 0; i < plan.tasks().size(); ++i) {
    if (plan.tasks()[i].parent == above.uid_) {
      last_child = static_cast<std::int32_t>(i);
    }
  }
  Data();
  if (last_child > position_) {
    session().MoveToEnd(position_);
  }
  ChangeIdentity([&] { Data().parent = above.uid_; });
  above.ChangeIdentity([&] { above.Data().kind = TaskKind::kSummary; });
  above.Resolve();  // a summary without a calendar of its own has none
  session().StructureChanged();
}

}  // namespace nimbrel::engine
