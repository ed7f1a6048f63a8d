// The faces of tasks and calendars.

#include <algorithm>
#include <string>
#include <utility>

#include "platform/runtime_error.h"
#include "platform/text.h"
#include "tests/support/host/faces.h"

namespace nimbrel::recording {

using Corvane8::Long;
using Corvane8::Ref;
using platform::Date;
using platform::MakeRef;
using platform::RuntimeError;
using platform::Variant;

namespace {

std::int32_t SerialOf(Date date) {
  return static_cast<std::int32_t>(platform::DayOf(date).serial);
}

class CalendarFace : public Corvane8::Calendar {
 public:
  CalendarFace(Context context, std::shared_ptr<CalendarState> state)
      : context_(std::move(context)), state_(std::move(state)) {}

  const std::shared_ptr<CalendarState>& state() const { return state_; }

  std::string get_Name() override {
    context_.recorder->Call(Label(), "Name");
    return state_->name;
  }
  void SetDays(Long status, Date from, Date to) override {
    context_.recorder->Call(Label(), "SetDays", status, from, to);
    const std::int32_t first = SerialOf(from);
    const std::int32_t last = to.serial == 0.0 ? first : SerialOf(to);
    for (std::int32_t day = first; day <= last; ++day) {
      if (status == 0) {
        state_->weather.insert(day);
      } else {
        state_->weather.erase(day);
      }
    }
  }
  Long WorkingTime(Date from, Date to, Long one) override {
    context_.recorder->Call(Label(), "WorkingTime", from, to, one);
    Long days = 0;
    for (std::int32_t day = SerialOf(from); day <= SerialOf(to); ++day) {
      days += state_->Worked(day) ? 1 : 0;
    }
    return days * context_.plan->UnitsPerDay();
  }
  Long WeekdayStatus(Long weekday, Long one) override {
    context_.recorder->Call(Label(), "WeekdayStatus", weekday, one);
    return state_->weekdays.at(static_cast<std::size_t>(weekday)) ? 1 : 0;
  }

 private:
  std::string Label() const { return "Calendar(" + state_->name + ")"; }

  Context context_;
  std::shared_ptr<CalendarState> state_;
};

class RiskCalendarFace : public Corvane8::RiskCalendar {
 public:
  RiskCalendarFace(Context context, std::shared_ptr<RiskCalendarState> state)
      : context_(std::move(context)), state_(std::move(state)) {}

  void put_Description(std::string_view value) override {
    context_.recorder->Put(Label(), "Description", value);
    state_->description = std::string(value);
  }
  std::string get_Name() override {
    context_.recorder->Call(Label(), "Name");
    return state_->name;
  }
  void put_Calendar(const Ref<Corvane8::Calendar>& value) override {
    const auto calendar = StateOf(value);
    context_.recorder->PutObject(Label(), "Calendar", calendar ? calendar->name : "Nothing");
    state_->calendar = calendar;
  }

 private:
  std::string Label() const { return "RiskCalendar(" + state_->name + ")"; }

  Context context_;
  std::shared_ptr<RiskCalendarState> state_;
};

/// Base of the faces over a task and its parts.
template <class Interface>
class TaskPart : public Interface {
 public:
  TaskPart(Context context, std::shared_ptr<TaskState> state, std::string_view kind)
      : context_(std::move(context)), state_(std::move(state)), kind_(kind) {}

  const std::shared_ptr<TaskState>& state() const { return state_; }

 protected:
  template <class... Args>
  void Called(std::string_view operation, const Args&... args) const {
    context_.recorder->Call(Label(), operation, args...);
  }
  template <class Value>
  void Put(std::string_view operation, const Value& value) const {
    context_.recorder->Put(Label(), operation, value);
  }
  std::string Label() const { return kind_ + "(" + state_->id + ")"; }

  Context context_;
  std::shared_ptr<TaskState> state_;

 private:
  std::string kind_;
};

class DatesFace : public TaskPart<Corvane8::TaskDates> {
 public:
  using TaskPart::TaskPart;
  Date get_Finish() override {
    Called("Finish");
    return state_->finish;
  }
  double get_Progress() override {
    Called("Progress");
    return state_->progress;
  }
  Date get_Start() override {
    Called("Start");
    return state_->start;
  }
  void put_ConstraintDate(Date value) override {
    Put("ConstraintDate", value);
    state_->constraint_date = value;
  }
  void put_Constraint(Long value) override {
    Put("Constraint", value);
    state_->constraint = value;
  }
};

class UserFieldsFace : public TaskPart<Corvane8::UserFields> {
 public:
  using TaskPart::TaskPart;
  Variant GetCustom(std::string_view name) override {
    Called("GetCustom", name);
    const auto found = state_->custom.find(name);
    return found == state_->custom.end() ? Variant() : found->second;
  }
  void SetCustom(std::string_view name, const Variant& value) override {
    Called("SetCustom", name, value);
    state_->custom.insert_or_assign(std::string(name), value);
  }
  void SetValue(Long two, std::string_view section, std::string_view key,
                std::string_view value) override {
    Called("SetValue", two, section, key, value);
    state_->values[{std::string(section), std::string(key)}] = std::string(value);
  }
  std::string GetValue(Long two, std::string_view section, std::string_view key,
                       std::string_view default_value) override {
    Called("GetValue", two, section, key, default_value);
    const auto found = state_->values.find({std::string(section), std::string(key)});
    return found == state_->values.end() ? std::string(default_value) : found->second;
  }
};

class DurationFace : public TaskPart<Corvane8::Duration> {
 public:
  using TaskPart::TaskPart;
  void put_Likely(double value) override {
    Put("Likely", value);
    state_->duration.value().likely = value;
  }
  double get_Likely() override {
    Called("Likely");
    return state_->duration.value().likely;
  }
  void put_Maximum(double value) override {
    Put("Maximum", value);
    state_->duration.value().maximum = value;
  }
  double get_Maximum() override {
    Called("Maximum");
    return state_->duration.value().maximum;
  }
  void put_Minimum(double value) override {
    Put("Minimum", value);
    state_->duration.value().minimum = value;
  }
  double get_Minimum() override {
    Called("Minimum");
    return state_->duration.value().minimum;
  }
};

class RiskFace : public TaskPart<Corvane8::TaskRisk> {
 public:
  using TaskPart::TaskPart;
  void put_Mode(Long value) override {
    Put("Mode", value);
    state_->risk.value().mode = value;
  }
  void put_Probability(double value) override {
    Put("Probability", value);
    state_->risk.value().probability = value;
  }
  double get_Probability() override {
    Called("Probability");
    return state_->risk.value().probability;
  }
};

class LinkFace : public Corvane8::TaskLink {
 public:
  LinkFace(Context context, std::shared_ptr<TaskState> from, std::shared_ptr<TaskState> to)
      : context_(std::move(context)), from_(std::move(from)), to_(std::move(to)) {}
  Ref<Corvane8::Task> get_Task() override {
    context_.recorder->Call("TaskLink(" + from_->id + ")", "Task");
    return MakeTaskFace(context_, to_);
  }

 private:
  Context context_;
  std::shared_ptr<TaskState> from_;
  std::shared_ptr<TaskState> to_;
};

class LinkListFace : public TaskPart<Corvane8::LinkList> {
 public:
  using TaskPart::TaskPart;
  Ref<Corvane8::TaskLink> Add(std::string_view task_id, Long two, Long zero1, Long zero2,
                              Long zero3) override {
    Called("Add", task_id, two, zero1, zero2, zero3);
    const auto to = context_.plan->FindTask(task_id);
    if (!to) {
      RaiseMissing("tasks", std::string(task_id));
    }
    state_->successors.push_back(to);
    return MakeRef<LinkFace>(context_, state_, to);
  }
  Ref<Corvane8::TaskLink> Item(const Variant& index) override {
    Called("Item", index);
    const auto* number = index.Get<std::int32_t>();
    if (number == nullptr || *number < 1 ||
        *number > static_cast<std::int32_t>(state_->successors.size())) {
      throw RuntimeError(platform::kSubscriptOutOfRange, "No such link of task " + state_->id);
    }
    return MakeRef<LinkFace>(context_, state_,
                             state_->successors[static_cast<std::size_t>(*number - 1)].lock());
  }
};

class LinksFace : public TaskPart<Corvane8::TaskLinks> {
 public:
  using TaskPart::TaskPart;
  Ref<Corvane8::LinkList> get_Successors() override {
    Called("Successors");
    return MakeRef<LinkListFace>(context_, state_, "LinkList");
  }
};

class TaskRiskCalendarFace : public TaskPart<Corvane8::TaskRiskCalendar> {
 public:
  TaskRiskCalendarFace(const Context& context, const std::shared_ptr<TaskState>& task,
                       std::shared_ptr<RiskCalendarState> calendar)
      : TaskPart(context, task, "TaskRiskCalendar"), calendar_(std::move(calendar)) {}
  void put_Value(double value) override {
    Put("Value", value);
    for (AssignedRiskCalendar& assigned : state_->risk_calendars) {
      if (assigned.risk_calendar == calendar_) {
        assigned.value = value;
      }
    }
  }
  Ref<Corvane8::RiskCalendar> get_RiskCalendar() override {
    Called("RiskCalendar");
    return MakeRiskCalendarFace(context_, calendar_);
  }

 private:
  std::shared_ptr<RiskCalendarState> calendar_;
};

class TaskRiskCalendarsFace : public TaskPart<Corvane8::TaskRiskCalendars> {
 public:
  using TaskPart::TaskPart;
  Ref<Corvane8::TaskRiskCalendar> Add(std::string_view name) override {
    Called("Add", name);
    const auto calendar = context_.plan->FindRiskCalendar(name);
    if (!calendar) {
      RaiseMissing("risk calendars", std::string(name));
    }
    if (Find(name) != state_->risk_calendars.end()) {
      throw RuntimeError(platform::kDuplicateKey, "The task has it already: " + std::string(name));
    }
    state_->risk_calendars.push_back({calendar, 0.0});
    return MakeRef<TaskRiskCalendarFace>(context_, state_, calendar);
  }
  void Remove(const Variant& key) override {
    Called("Remove", key);
    const auto found = Find(KeyText(key));
    if (found == state_->risk_calendars.end()) {
      RaiseMissing("risk calendars of the task", KeyText(key));
    }
    state_->risk_calendars.erase(found);
  }
  std::vector<Ref<Corvane8::TaskRiskCalendar>> Elements() override {
    Called("Elements");
    std::vector<Ref<Corvane8::TaskRiskCalendar>> elements;
    for (const AssignedRiskCalendar& assigned : state_->risk_calendars) {
      elements.push_back(MakeRef<TaskRiskCalendarFace>(context_, state_, assigned.risk_calendar));
    }
    return elements;
  }

 private:
  std::vector<AssignedRiskCalendar>::iterator Find(std::string_view name) const {
    return std::find_if(state_->risk_calendars.begin(), state_->risk_calendars.end(),
                        [name](const AssignedRiskCalendar& assigned) {
                          return platform::EqualsIgnoreCase(assigned.risk_calendar->name, name);
                        });
  }
};

class TaskFace : public TaskPart<Corvane8::Task> {
 public:
  using TaskPart::TaskPart;
  bool get_SkipInIteration() override {
    Called("SkipInIteration");
    return state_->skip;
  }
  void put_Calendar(const Ref<Corvane8::Calendar>& value) override {
    const auto calendar = StateOf(value);
    context_.recorder->PutObject(Label(), "Calendar", calendar ? calendar->name : "Nothing");
    state_->calendar = calendar;
  }
  Ref<Corvane8::Calendar> get_Calendar() override {
    Called("Calendar");
    return MakeCalendarFace(context_, state_->calendar);
  }
  Long get_SampledDuration() override {
    Called("SampledDuration");
    return state_->sample;
  }
  Long get_Type() override {
    Called("Type");
    return state_->type;
  }
  void put_Description(std::string_view value) override {
    Put("Description", value);
    state_->description = std::string(value);
  }
  std::string get_Description() override {
    Called("Description");
    return state_->description;
  }
  void put_ID(std::string_view value) override {
    Put("ID", value);
    const auto other = context_.plan->FindTask(value);
    if (context_.plan->unique_ids && other && other != state_) {
      throw RuntimeError(platform::kDuplicateKey, "Another task has the ID " + std::string(value));
    }
    state_->id = std::string(value);
  }
  std::string get_ID() override {
    Called("ID");
    return state_->id;
  }
  Ref<Corvane8::TaskLinks> get_Links() override {
    Called("Links");
    return MakeRef<LinksFace>(context_, state_, "TaskLinks");
  }
  Ref<Corvane8::TaskDates> get_Dates() override {
    Called("Dates");
    return MakeRef<DatesFace>(context_, state_, "TaskDates");
  }
  Ref<Corvane8::UserFields> get_UserFields() override {
    Called("UserFields");
    return MakeRef<UserFieldsFace>(context_, state_, "UserFields");
  }
  std::vector<Ref<Corvane8::Task>> get_Children() override {
    Called("Children");
    std::vector<Ref<Corvane8::Task>> children;
    for (const auto& task : context_.plan->tasks) {
      if (task->parent.lock() == state_) {
        children.push_back(MakeTaskFace(context_, task));
      }
    }
    return children;
  }
  Ref<Corvane8::TaskRiskCalendars> get_RiskCalendars() override {
    Called("RiskCalendars");
    return MakeRef<TaskRiskCalendarsFace>(context_, state_, "TaskRiskCalendars");
  }
  Ref<Corvane8::Duration> Duration(Long mode) override {
    Called("Duration", mode);
    if (!state_->duration && mode == -1) {
      state_->duration.emplace();
    }
    return state_->duration ? MakeRef<DurationFace>(context_, state_, "Duration") : nullptr;
  }
  Ref<Corvane8::TaskRisk> Risk(Long mode) override {
    Called("Risk", mode);
    if (mode == 1) {
      state_->risk.reset();
    } else if (!state_->risk && mode == -1) {
      state_->risk.emplace();
    }
    return state_->risk ? MakeRef<RiskFace>(context_, state_, "TaskRisk") : nullptr;
  }
  void MoveUnder(Long zero, const Ref<Corvane8::Task>& parent) override {
    const auto above = StateOf(parent);
    context_.recorder->Call(Label(), "MoveUnder", zero, above ? above->id : "Nothing");
    if (!above) {
      platform::RaiseNothing();
    }
    // Behind the other children: to the end of the plan's order.
    auto& tasks = context_.plan->tasks;
    const auto self = std::find(tasks.begin(), tasks.end(), state_);
    if (self != tasks.end()) {
      std::rotate(self, self + 1, tasks.end());
    }
    state_->parent = above;
  }
  Ref<Corvane8::Task> Parent(Long zero) override {
    Called("Parent", zero);
    return MakeTaskFace(context_, state_->parent.lock());
  }
  Date NextWorkingDate(Date date, double zero) override {
    Called("NextWorkingDate", date, zero);
    std::int32_t day = SerialOf(date);
    if (context_.plan->Worked(*state_, day)) {
      return date;
    }
    const std::int32_t last = day + 200 * 366;
    while (++day < last) {
      if (context_.plan->Worked(*state_, day)) {
        return {static_cast<double>(day)};
      }
    }
    throw RuntimeError(platform::kApplicationDefined,
                       "The task finds no working time: " + state_->id);
  }
  bool get_Critical() override {
    Called("Critical");
    return state_->critical;
  }
};

}  // namespace

Ref<Corvane8::Task> MakeTaskFace(const Context& context, std::shared_ptr<TaskState> task) {
  if (!task) {
    return nullptr;
  }
  return MakeRef<TaskFace>(context, std::move(task), "Task");
}

Ref<Corvane8::Calendar> MakeCalendarFace(const Context& context,
                                         std::shared_ptr<CalendarState> calendar) {
  if (!calendar) {
    return nullptr;
  }
  return MakeRef<CalendarFace>(context, std::move(calendar));
}

Ref<Corvane8::RiskCalendar> MakeRiskCalendarFace(const Context& context,
                                                 std::shared_ptr<RiskCalendarState> calendar) {
  if (!calendar) {
    return nullptr;
  }
  return MakeRef<RiskCalendarFace>(context, std::move(calendar));
}

std::shared_ptr<TaskState> StateOf(const Ref<Corvane8::Task>& task) {
  return task ? static_cast<TaskFace&>(*task).state() : nullptr;
}

std::shared_ptr<CalendarState> StateOf(const Ref<Corvane8::Calendar>& calendar) {
  return calendar ? static_cast<CalendarFace&>(*calendar).state() : nullptr;
}

}  // namespace nimbrel::recording
