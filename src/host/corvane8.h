#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/date.h"
#include "platform/ref.h"
#include "platform/variant.h"

/// The host's object library: all that the add-in knows of plans, tasks, calendars and the risk
/// engine. Every class is abstract; a host implements them.
///
/// - The operations stand in the order of the host's own interfaces, so that a binding to it can go
///   by position. `get_` reads a value, `put_` sets it, the rest are methods. A result that the
///   host hands back through an argument is the return value here.
/// - Objects are shared and live: holding a reference is holding the object in the plan, and a
///   change goes straight into the plan. A reference stays valid until it is let go, also when the
///   object has been taken out of its plan meanwhile.
/// - Every operation can fail by raising platform::RuntimeError at the call.
/// - All calls come from the thread on which the host runs the add-in, and each is synchronous.
/// - What can be enumerated gives its elements as a snapshot, in the plan's order, so that the plan
///   may be changed while they are walked.
namespace nimbrel::Corvane8 {

using Long = std::int32_t;
using platform::Date;
using platform::Ref;
using platform::Variant;

class Application;
class Calendar;
class ChangeMonitor;
class CustomFields;
class Duration;
class LinkList;
class Plan;
class PlanCalendars;
class PlanDisplay;
class PlanProperties;
class PlanRiskCalendars;
class PlanTasks;
class RiskAnalysis;
class RiskCalendar;
class RiskOptions;
class Task;
class TaskDates;
class TaskLink;
class TaskLinks;
class TaskRisk;
class TaskRiskCalendar;
class TaskRiskCalendars;
class UserFields;

/// Who receives the events of a risk run. The events are raised synchronously from the host's
/// analysis loop, which goes on when the receiver has returned; an error that the receiver lets out
/// goes to the host.
///
/// One run of one plan raises PlanBeforeRiskAnalysis once; then for each iteration, once the tasks
/// are sampled, PlanBeforeRiskIteration, and after the host's scheduling of that iteration and
/// before it takes the results, PlanAfterRiskIteration; and PlanAfterRiskAnalysis once.
class ApplicationEvents {
 public:
  virtual void PlanBeforeRiskAnalysis(const Ref<Plan>& plan) = 0;
  virtual void PlanBeforeRiskIteration(const Ref<Plan>& plan, Long iteration) = 0;
  virtual void PlanAfterRiskIteration(const Ref<Plan>& plan, Long iteration) = 0;
  virtual void PlanAfterRiskAnalysis(const Ref<Plan>& plan) = 0;

 protected:
  ~ApplicationEvents() = default;
};

/// The running host, one to a process; the source of the events.
class Application : public platform::Object {
 public:
  /// The plan that the user is working on; Nothing when none is open.
  virtual Ref<Plan> get_ActivePlan() = 0;
  /// The folder of the host's installation, without a closing separator.
  virtual std::string get_Path() = 0;
  /// The handle of the host's main window, the owner for windows that the add-in opens.
  virtual Long get_hWnd() = 0;

  /// Sends the events to `events`, which stays the caller's and must be unsubscribed before it
  /// ends. A second subscription of the same receiver makes it receive every event twice.
  virtual void Subscribe(ApplicationEvents* events) = 0;
  /// Ends one subscription of `events`; without one it does nothing.
  virtual void Unsubscribe(ApplicationEvents* events) = 0;
};

/// An open plan.
class Plan : public platform::Object {
 public:
  virtual std::string get_Name() = 0;
  virtual Ref<PlanRiskCalendars> get_RiskCalendars() = 0;
  virtual Ref<PlanProperties> get_Properties() = 0;
  /// Valid during a run, and between runs too.
  virtual Ref<RiskAnalysis> get_RiskAnalysis() = 0;
  virtual Ref<ChangeMonitor> get_ChangeMonitor() = 0;
  /// All tasks of the plan, hidden ones too.
  virtual Ref<PlanTasks> get_Tasks() = 0;
  virtual Ref<PlanCalendars> get_Calendars() = 0;
  /// Schedules the plan now, with the calendars, constraints and sampled values as they stand. It
  /// may be called from inside PlanAfterRiskIteration.
  virtual void Recalculate() = 0;
  /// Whether the host schedules by itself on a change.
  virtual void put_AutoRecalculate(bool value) = 0;
  /// A further scheduling step that the host offers.
  virtual void RecalculateFinish() = 0;
  /// Stores a text with the plan; it is saved and loaded with it.
  virtual void SetOption(std::string_view section, std::string_view group, std::string_view key,
                         std::string_view value) = 0;
  /// The stored text, or `default_value` if there is none.
  virtual std::string GetOption(std::string_view section, std::string_view group,
                                std::string_view key, std::string_view default_value) = 0;
  virtual Ref<CustomFields> get_CustomFields() = 0;
  virtual Ref<PlanDisplay> get_Display() = 0;
};

/// The plan's title, two dates and time unit.
class PlanProperties : public platform::Object {
 public:
  virtual std::string get_Title() = 0;
  /// The plan date from which the bounds of a run start.
  virtual Date get_AnchorDate() = 0;
  /// The plan date that seeds the first dates of new calendars and windows.
  virtual Date get_ReferenceDate() = 0;
  /// Units of duration in a day: 1, 24 or 96.
  virtual Long get_TimeUnit() = 0;
};

/// How the plan is shown.
class PlanDisplay : public platform::Object {
 public:
  /// The code of the plan's date format, 0 to 14.
  virtual Long get_DateFormat() = 0;
  /// Hours in a working day; greater than 0.
  virtual Long get_HoursPerDay() = 0;
};

/// The risk engine working on the plan.
class RiskAnalysis : public platform::Object {
 public:
  virtual Ref<RiskOptions> get_Options() = 0;
  /// Each read gives the next number of the run's random stream, from 0 up to but not including 1.
  /// Under the same seed of the host a run reads the same numbers.
  virtual double get_Rnd() = 0;
};

/// Options of the run.
class RiskOptions : public platform::Object {
 public:
  /// Whether a plan whose tasks were moved by weather wants a further scheduling step.
  virtual bool get_RecalculateAfterMove() = 0;
};

/// The host's watching of plan changes.
class ChangeMonitor : public platform::Object {
 public:
  /// False before a bulk write to the plan, True after it.
  virtual void put_Enabled(bool value) = 0;
};

/// Custom field definitions of the plan.
class CustomFields : public platform::Object {
 public:
  /// Creates a custom date field on the plan's tasks; `code` is 2 or 3, the host's constants. Fails
  /// if the field exists.
  virtual Ref<platform::Object> Add(std::string_view name, Long code) = 0;
};

/// All tasks of the plan.
class PlanTasks : public platform::Object {
 public:
  /// Makes a task with a fresh ID, at the end of the plan's top level.
  virtual Ref<Task> Add() = 0;
  /// The task with the ID `key`. Fails if there is none.
  virtual Ref<Task> Item(const Variant& key) = 0;
  /// Takes the task with the ID `key` out of the plan.
  virtual void Remove(const Variant& key) = 0;

  virtual std::vector<Ref<Task>> Elements() = 0;
};

/// The working-time calendars of the plan.
class PlanCalendars : public platform::Object {
 public:
  virtual Ref<Calendar> Add(std::string_view name) = 0;
  /// The calendar of the name `key`. Fails if there is none.
  virtual Ref<Calendar> Item(const Variant& key) = 0;
  /// Takes the calendar of the name `key` out of the plan.
  virtual void Remove(const Variant& key) = 0;

  virtual std::vector<Ref<Calendar>> Elements() = 0;
};

/// The risk calendars of the plan.
class PlanRiskCalendars : public platform::Object {
 public:
  virtual Ref<RiskCalendar> Add(std::string_view name) = 0;
  /// The risk calendar of the name `key`. Fails if there is none.
  virtual Ref<RiskCalendar> Item(const Variant& key) = 0;
  /// Takes the risk calendar of the name `key` out of the plan.
  virtual void Remove(const Variant& key) = 0;

  virtual std::vector<Ref<RiskCalendar>> Elements() = 0;
};

/// A calendar as the risk engine sees it.
class RiskCalendar : public platform::Object {
 public:
  virtual void put_Description(std::string_view value) = 0;
  virtual std::string get_Name() = 0;
  /// The working-time calendar that stands behind this risk calendar. Its days off hold up every
  /// task that has the risk calendar assigned.
  virtual void put_Calendar(const Ref<Calendar>& value) = 0;
};

/// A working-time calendar.
class Calendar : public platform::Object {
 public:
  virtual std::string get_Name() = 0;
  /// Status 0 makes the days from `from` to `to`, both included, non-working; with a `to` of date
  /// zero, only the day `from`. Status 1 takes every such change in the range away, so that the
  /// days are as they were before.
  virtual void SetDays(Long status, Date from, Date to) = 0;
  /// The working time from `from` to `to` in this calendar, both days included, as it stands now,
  /// in the unit of Task::get_SampledDuration. `one` is the constant 1.
  virtual Long WorkingTime(Date from, Date to, Long one) = 0;
  /// 1 if the weekday (0 is Monday, 6 is Sunday) is worked in the calendar's weekly pattern. `one`
  /// is the constant 1.
  virtual Long WeekdayStatus(Long weekday, Long one) = 0;
};

/// One task.
class Task : public platform::Object {
 public:
  /// True when the risk engine has ruled this task out of the running iteration.
  virtual bool get_SkipInIteration() = 0;
  /// `value` may be Nothing.
  virtual void put_Calendar(const Ref<Calendar>& value) = 0;
  virtual Ref<Calendar> get_Calendar() = 0;
  /// The task's duration in the running iteration, in plan units; it holds from the moment of
  /// PlanBeforeRiskIteration to the end of the iteration.
  virtual Long get_SampledDuration() = 0;
  /// The kind of task.
  virtual Long get_Type() = 0;
  virtual void put_Description(std::string_view value) = 0;
  virtual std::string get_Description() = 0;
  /// The ID is unique in the plan.
  virtual void put_ID(std::string_view value) = 0;
  virtual std::string get_ID() = 0;
  virtual Ref<TaskLinks> get_Links() = 0;
  virtual Ref<TaskDates> get_Dates() = 0;
  virtual Ref<UserFields> get_UserFields() = 0;
  /// The tasks directly under a summary task, in the plan's order.
  virtual std::vector<Ref<Task>> get_Children() = 0;
  virtual Ref<TaskRiskCalendars> get_RiskCalendars() = 0;
  /// The task's three-point estimate. Mode 0 gives the existing object or Nothing; mode -1 creates
  /// it if it is missing.
  virtual Ref<Corvane8::Duration> Duration(Long mode) = 0;
  /// The task's risk of occurrence. Mode 0 gives the existing object or Nothing; mode -1 creates it
  /// if it is missing; mode 1 makes the task certain: it then has no object, or one of 100%.
  virtual Ref<TaskRisk> Risk(Long mode) = 0;
  /// Places the task directly under a summary task, behind its other children. `zero` is the
  /// constant 0.
  virtual void MoveUnder(Long zero, const Ref<Task>& parent) = 0;
  /// The summary task above, Nothing at the top. `zero` is the constant 0.
  virtual Ref<Task> Parent(Long zero) = 0;
  /// `date` itself if that moment is worked for this task, another date if not. It takes the task's
  /// risk calendars into account. `zero` is the constant 0.
  virtual Date NextWorkingDate(Date date, double zero) = 0;
  virtual bool get_Critical() = 0;
};

/// The task's scheduled dates and constraint.
class TaskDates : public platform::Object {
 public:
  /// Scheduled finish, in the current scheduling.
  virtual Date get_Finish() = 0;
  /// Other than zero for a task that has begun.
  virtual double get_Progress() = 0;
  /// Scheduled start, in the current scheduling.
  virtual Date get_Start() = 0;
  virtual void put_ConstraintDate(Date value) = 0;
  /// 0 no constraint; 3 the task starts no earlier than its constraint date.
  virtual void put_Constraint(Long value) = 0;
};

/// Values stored on the task for modules and custom fields; they are saved with the plan.
class UserFields : public platform::Object {
 public:
  /// The task's value of the custom field `name`; empty if it was never set.
  virtual Variant GetCustom(std::string_view name) = 0;
  virtual void SetCustom(std::string_view name, const Variant& value) = 0;
  /// Stores a text on the task. `two` is the constant 2.
  virtual void SetValue(Long two, std::string_view section, std::string_view key,
                        std::string_view value) = 0;
  /// The stored text, or `default_value`. `two` is the constant 2.
  virtual std::string GetValue(Long two, std::string_view section, std::string_view key,
                               std::string_view default_value) = 0;
};

/// The task's three-point estimate, in plan units.
class Duration : public platform::Object {
 public:
  virtual void put_Likely(double value) = 0;
  virtual double get_Likely() = 0;
  virtual void put_Maximum(double value) = 0;
  virtual double get_Maximum() = 0;
  virtual void put_Minimum(double value) = 0;
  virtual double get_Minimum() = 0;
};

/// The task's risk of occurrence.
class TaskRisk : public platform::Object {
 public:
  /// The host's constant; the simulation writes 1 before a run.
  virtual void put_Mode(Long value) = 0;
  /// The chance of occurrence in percent, 0 to 100.
  virtual void put_Probability(double value) = 0;
  virtual double get_Probability() = 0;
};

/// The task's logic links.
class TaskLinks : public platform::Object {
 public:
  virtual Ref<LinkList> get_Successors() = 0;
};

/// The links from a task to its successors, in the order of adding.
class LinkList : public platform::Object {
 public:
  /// Links this task to the task `task_id`. The constants 2, 0, 0 and 0 are the host's.
  virtual Ref<TaskLink> Add(std::string_view task_id, Long two, Long zero1, Long zero2,
                            Long zero3) = 0;
  /// The link with the number `index`, from 1. Fails if there is none.
  virtual Ref<TaskLink> Item(const Variant& index) = 0;
};

/// One logic link.
class TaskLink : public platform::Object {
 public:
  /// The task at the far end of the link.
  virtual Ref<Corvane8::Task> get_Task() = 0;
};

/// The risk calendars assigned to the task; the key is the risk calendar's name.
class TaskRiskCalendars : public platform::Object {
 public:
  /// Assigns the plan's risk calendar `name` to the task.
  virtual Ref<TaskRiskCalendar> Add(std::string_view name) = 0;
  virtual void Remove(const Variant& key) = 0;

  virtual std::vector<Ref<TaskRiskCalendar>> Elements() = 0;
};

/// One risk calendar of a task.
class TaskRiskCalendar : public platform::Object {
 public:
  virtual void put_Value(double value) = 0;
  virtual Ref<Corvane8::RiskCalendar> get_RiskCalendar() = 0;
};

}  // namespace nimbrel::Corvane8
