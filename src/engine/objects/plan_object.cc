#include "engine/objects/plan_object.h"

#include <algorithm>

#include "engine/objects/calendar_object.h"
#include "engine/objects/task_object.h"
#include "platform/text.h"

namespace nimbrel::engine {
namespace {

using Corvane8::Long;
using platform::Date;
using platform::Ref;
using platform::RuntimeError;
using platform::Variant;

Date DateOf(Instant instant) {
  return instant.IsAbsent() ? Date{} : instant.ToDate();
}

/// Position of an item by its name, or -1.
template <class Items>
std::int32_t PositionOfName(const Items& items, std::string_view name) {
  const auto found = std::find_if(items.begin(), items.end(), [name](const auto& item) {
    return platform::EqualsIgnoreCase(item.name, name);
  });
  return found == items.end() ? -1 : static_cast<std::int32_t>(found - items.begin());
}

/// Raises error 5 for an empty name and error 457 for one that an item has already.
template <class Items>
void RequireNewName(const Items& items, std::string_view name, const std::string& what) {
  if (name.empty()) {
    throw RuntimeError(platform::kInvalidProcedureCall, "A " + what + " needs a name");
  }
  if (PositionOfName(items, name) >= 0) {
    throw RuntimeError(platform::kDuplicateKey,
                       "There is a " + what + " \"" + std::string(name) + "\" already");
  }
}

/// References to the objects at the first `count` positions.
template <class Interface, class ObjectAt>
std::vector<Ref<Interface>> References(std::size_t count, const ObjectAt& object_at) {
  std::vector<Ref<Interface>> references;
  references.reserve(count);
  for (std::size_t position = 0; position < count; ++position) {
    references.push_back(object_at(static_cast<std::int32_t>(position)));
  }
  return references;
}

/// Runs what may schedule; a SchedulingError leaves as a RuntimeError.
template <class Operation>
void GuardedForPlan(const Plan& plan, const Operation& operation) {
  try {
    operation();
  } catch (const SchedulingError& error) {
    throw RuntimeError(platform::kApplicationDefined, "Plan " + plan.name + ": " + error.what());
  }
}

}  // namespace

// Properties and display.

std::string PlanPropertiesObject::get_Title() {
  return session().plan().title;
}

Date PlanPropertiesObject::get_AnchorDate() {
  return DateOf(session().plan().start);
}

Date PlanPropertiesObject::get_ReferenceDate() {
  return DateOf(session().plan().StatusDate());
}

Long PlanPropertiesObject::get_TimeUnit() {
  return static_cast<Long>(session().plan().time_unit);
}

Long PlanDisplayObject::get_DateFormat() {
  return session().plan().date_format;
}

Long PlanDisplayObject::get_HoursPerDay() {
  return session().plan().hours_per_day;
}

// Risk analysis.

bool RiskOptionsObject::get_RecalculateAfterMove() {
  return session().plan().recalculate_after_move;
}

Ref<Corvane8::RiskOptions> RiskAnalysisObject::get_Options() {
  return options_.Share();
}

double RiskAnalysisObject::get_Rnd() {
  return session().random().Next();
}

void ChangeMonitorObject::put_Enabled(bool /*value*/) {
  // This host keeps no watch that a bulk write would have to be hidden from.
}

Ref<platform::Object> CustomFieldsObject::Add(std::string_view name, Long code) {
  RequireNewName(session().plan().custom_fields, name, "custom field");
  if (code != 2 && code != 3) {
    throw RuntimeError(platform::kInvalidProcedureCall,
                       "The code of a custom field must be 2 or 3, not " + std::to_string(code));
  }
  session().plan().custom_fields.push_back({std::string(name), code});
  return added_.emplace_back(std::make_unique<CustomFieldObject>(session()))->Share();
}

// Tasks.

std::int32_t PlanTasksObject::Position(const Variant& key) const {
  const Plan& plan = session().plan();
  return PositionOfKey(key, plan.tasks().size(), "task", [&plan](const std::string& id) {
    const Task* task = plan.FindTask(id);
    return task == nullptr ? -1 : static_cast<std::int32_t>(task - plan.tasks().data());
  });
}

Ref<Corvane8::Task> PlanTasksObject::Add() {
  return session().AddTask().Share();
}

Ref<Corvane8::Task> PlanTasksObject::Item(const Variant& key) {
  return session().TaskAt(Position(key)).Share();
}

void PlanTasksObject::Remove(const Variant& key) {
  session().RemoveTask(Position(key));
}

std::vector<Ref<Corvane8::Task>> PlanTasksObject::Elements() {
  return References<Corvane8::Task>(session().plan().tasks().size(), [this](std::int32_t position) {
    return session().TaskAt(position).Share();
  });
}

// Calendars.

std::int32_t PlanCalendarsObject::Position(const Variant& key) const {
  const auto& calendars = session().plan().calendars;
  return PositionOfKey(key, calendars.size(), "calendar", [&calendars](const std::string& name) {
    return PositionOfName(calendars, name);
  });
}

Ref<Corvane8::Calendar> PlanCalendarsObject::Add(std::string_view name) {
  const Plan& plan = session().plan();
  RequireNewName(plan.calendars, name, "calendar");
  // Every day of the week, so that assigning it changes nothing until there is weather.
  return session().AddCalendar(MakeWeekCalendar(std::string(name), 7, plan.hours_per_day)).Share();
}

Ref<Corvane8::Calendar> PlanCalendarsObject::Item(const Variant& key) {
  return session().CalendarAt(Position(key)).Share();
}

void PlanCalendarsObject::Remove(const Variant& key) {
  const std::int32_t position = Position(key);
  const Plan& plan = session().plan();
  const CalendarDefinition& calendar = plan.calendars[static_cast<std::size_t>(position)];
  if (calendar.uid == plan.default_calendar) {
    throw RuntimeError(platform::kInvalidProcedureCall,
                       "The calendar \"" + calendar.name +
                           "\" is the plan's default calendar and cannot be removed");
  }
  session().RemoveCalendar(position);
}

std::vector<Ref<Corvane8::Calendar>> PlanCalendarsObject::Elements() {
  return References<Corvane8::Calendar>(
      session().plan().calendars.size(),
      [this](std::int32_t position) { return session().CalendarAt(position).Share(); });
}

// Risk calendars.

std::int32_t PlanRiskCalendarsObject::Position(const Variant& key) const {
  const auto& calendars = session().plan().risk_calendars;
  return PositionOfKey(
      key, calendars.size(), "risk calendar",
      [&calendars](const std::string& name) { return PositionOfName(calendars, name); });
}

Ref<Corvane8::RiskCalendar> PlanRiskCalendarsObject::Add(std::string_view name) {
  RequireNewName(session().plan().risk_calendars, name, "risk calendar");
  RiskCalendarDefinition definition;
  definition.name = name;
  return session().AddRiskCalendar(std::move(definition)).Share();
}

Ref<Corvane8::RiskCalendar> PlanRiskCalendarsObject::Item(const Variant& key) {
  return session().RiskCalendarAt(Position(key)).Share();
}

void PlanRiskCalendarsObject::Remove(const Variant& key) {
  session().RemoveRiskCalendar(Position(key));
}

std::vector<Ref<Corvane8::RiskCalendar>> PlanRiskCalendarsObject::Elements() {
  return References<Corvane8::RiskCalendar>(
      session().plan().risk_calendars.size(),
      [this](std::int32_t position) { return session().RiskCalendarAt(position).Share(); });
}

// The plan.

PlanObject::PlanObject(PlanSession& session)
    : Face(session),
      properties_(session),
      display_(session),
      risk_analysis_(session),
      change_monitor_(session),
      custom_fields_(session),
      tasks_(session),
      calendars_(session),
      risk_calendars_(session) {}

std::string PlanObject::get_Name() {
  return session().plan().name;
}

Ref<Corvane8::PlanRiskCalendars> PlanObject::get_RiskCalendars() {
  return risk_calendars_.Share();
}

Ref<Corvane8::PlanProperties> PlanObject::get_Properties() {
  return properties_.Share();
}

Ref<Corvane8::RiskAnalysis> PlanObject::get_RiskAnalysis() {
  return risk_analysis_.Share();
}

Ref<Corvane8::ChangeMonitor> PlanObject::get_ChangeMonitor() {
  return change_monitor_.Share();
}

Ref<Corvane8::PlanTasks> PlanObject::get_Tasks() {
  return tasks_.Share();
}

Ref<Corvane8::PlanCalendars> PlanObject::get_Calendars() {
  return calendars_.Share();
}

void PlanObject::Recalculate() {
  GuardedForPlan(session().plan(), [this] { session().Recalculate(); });
}

void PlanObject::put_AutoRecalculate(bool value) {
  session().set_auto_recalculate(value);
}

void PlanObject::RecalculateFinish() {
  GuardedForPlan(session().plan(), [this] { session().RecalculateFinish(); });
}

void PlanObject::SetOption(std::string_view section, std::string_view group, std::string_view key,
                           std::string_view value) {
  session().plan().options[{std::string(section), std::string(group), std::string(key)}] = value;
}

std::string PlanObject::GetOption(std::string_view section, std::string_view group,
                                  std::string_view key, std::string_view default_value) {
  // Looked up as it is: making a key of three texts would allocate, and every event asks.
  for (const auto& [name, value] : session().plan().options) {
    if (name[0] == section && name[1] == group && name[2] == key) {
      return value;
    }
  }
  return std::string(default_value);
}

Ref<Corvane8::CustomFields> PlanObject::get_CustomFields() {
  return custom_fields_.Share();
}

Ref<Corvane8::PlanDisplay> PlanObject::get_Display() {
  return display_.Share();
}

}  // namespace nimbrel::engine
