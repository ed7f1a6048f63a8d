#pragma once

#include <memory>

#include "host/corvane8.h"
#include "tests/support/host/plan_state.h"
#include "tests/support/host/recorder.h"

namespace nimbrel::recording {

/// What every face needs: the log, and the plan, which it keeps alive.
struct Context {
  std::shared_ptr<Recorder> recorder;
  std::shared_ptr<PlanState> plan;
};

Corvane8::Ref<Corvane8::Plan> MakePlanFace(const Context& context);
Corvane8::Ref<Corvane8::PlanTasks> MakePlanTasksFace(const Context& context);
Corvane8::Ref<Corvane8::PlanCalendars> MakePlanCalendarsFace(const Context& context);
Corvane8::Ref<Corvane8::PlanRiskCalendars> MakePlanRiskCalendarsFace(const Context& context);

/// These give Nothing for null.
Corvane8::Ref<Corvane8::Task> MakeTaskFace(const Context& context, std::shared_ptr<TaskState> task);
Corvane8::Ref<Corvane8::Calendar> MakeCalendarFace(const Context& context,
                                                   std::shared_ptr<CalendarState> calendar);
Corvane8::Ref<Corvane8::RiskCalendar> MakeRiskCalendarFace(
    const Context& context, std::shared_ptr<RiskCalendarState> calendar);

/// The data behind a face of this host; null for Nothing.
std::shared_ptr<TaskState> StateOf(const Corvane8::Ref<Corvane8::Task>& task);
std::shared_ptr<CalendarState> StateOf(const Corvane8::Ref<Corvane8::Calendar>& calendar);

/// The text of a key. Raises error 13 for a key that is no text.
std::string KeyText(const platform::Variant& key);

/// Raises error 5, which says that there is no such item.
[[noreturn]] void RaiseMissing(const std::string& collection, const std::string& key);

}  // namespace nimbrel::recording
