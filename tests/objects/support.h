#pragma once

#include <gmock/gmock.h>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/objects/host.h"
#include "engine/plan/plan.h"
#include "host/corvane8.h"
#include "platform/runtime_error.h"

namespace nimbrel::engine {

using Corvane8::Long;
using platform::Date;
using platform::Ref;

inline constexpr Date kNoDate{0.0};

/// A day of January 2027, in which the 4th is a Monday; 2, 3, 9 and 10 are weekend days.
inline Date January(int day) {
  return platform::MakeDate(2027, 1, day);
}

/// The same as the scheduler counts days.
inline std::int32_t JanuaryDay(int day) {
  return platform::SerialDay(2027, 1, day);
}

/// A plan in days that starts on Monday, 4 January 2027, with the calendar "STANDARD", Monday to
/// Friday from 08:00 to 17:00 with an hour's break.
Plan MakePlan(TimeUnit unit = TimeUnit::kDays);

/// Appends an ordinary task that lasts so many working days.
Task& AddTask(Plan& plan, const std::string& id, int days);

/// Links two tasks finish to start without lag.
void AddLink(Plan& plan, std::string_view predecessor, std::string_view successor);

/// Tells tasks that carry weather as the add-in marks them.
bool CarriesWeather(const Task& task);

/// A host that knows weather tasks.
Ref<Host> MakeTestHost(Plan plan);

/// The number of the run-time error that a call raises; 0 if it raises none.
std::int32_t ErrorOf(const std::function<void()>& call);

/// The text of the run-time error that a call raises; empty if it raises none.
std::string ErrorTextOf(const std::function<void()>& call);

/// A host over a plan that a test prepares.
class ObjectsTest : public ::testing::Test {
 protected:
  void Open(Plan plan) { host_ = MakeTestHost(std::move(plan)); }
  /// Opens a plan of tasks with these IDs and lengths in days.
  void Open(const std::vector<std::pair<std::string, int>>& tasks);

  Ref<Corvane8::Plan> plan() { return host_->get_ActivePlan(); }
  Ref<Corvane8::PlanTasks> tasks() { return plan()->get_Tasks(); }
  Ref<Corvane8::PlanCalendars> calendars() { return plan()->get_Calendars(); }
  Ref<Corvane8::PlanRiskCalendars> risk_calendars() { return plan()->get_RiskCalendars(); }
  Ref<Corvane8::Task> TaskOf(const std::string& id) { return tasks()->Item(id); }
  /// Makes a calendar with its risk calendar and assigns it to a task.
  Ref<Corvane8::Calendar> AddWeather(const std::string& name, const std::string& task);
  const Task& Stored(std::string_view id) { return *host_->document().FindTask(id); }

  Ref<Host> host_;
};

}  // namespace nimbrel::engine
