#include "tests/support/schedule/plan_calendars.h"

#include <algorithm>

namespace nimbrel::test {

using engine::CalendarDefinition;
using engine::DayPattern;
using engine::Link;
using engine::Task;

const CalendarDefinition& PlanCalendars::OwnCalendar(const Task& task) const {
  return *plan_.FindCalendar(task.calendar == 0 ? plan_.default_calendar : task.calendar);
}

const MinuteCalendar& PlanCalendars::OfTask(const Task& task) {
  const CalendarDefinition& own = OwnCalendar(task);
  std::vector<engine::Uid> key{own.uid};
  std::vector<const CalendarDefinition*> others;
  for (const engine::RiskAssignment& assignment : task.risk_calendars) {
    const auto* risk = plan_.FindRiskCalendar(assignment.risk_calendar);
    const auto* calendar = risk == nullptr ? nullptr : plan_.FindCalendar(risk->calendar);
    if (calendar != nullptr) {
      key.push_back(calendar->uid);
      others.push_back(calendar);
    }
  }
  const auto known = of_tasks_.find(key);
  if (known != of_tasks_.end()) {
    return known->second;
  }
  const auto hours_of = [&](std::int32_t day) {
    const bool is_off = std::any_of(others.begin(), others.end(), [day](const auto* other) {
      return PatternOn(*other, day).empty() || IsTaken(*other, day);
    });
    return is_off || IsTaken(own, day) ? DayPattern{} : PatternOn(own, day);
  };
  return of_tasks_.emplace(key, MinuteCalendar(first_day_, days_, hours_of)).first->second;
}

const MinuteCalendar& PlanCalendars::OfLag(const Link& link) {
  const CalendarDefinition* calendar = plan_.FindCalendar(plan_.default_calendar);
  if (link.lag_calendar == engine::LagCalendar::kPredecessor) {
    calendar = &OwnCalendar(*plan_.FindTask(link.predecessor));
  } else if (link.lag_calendar == engine::LagCalendar::kSuccessor) {
    calendar = &OwnCalendar(*plan_.FindTask(link.successor));
  }
  const auto known = of_lags_.find(calendar->uid);
  if (known != of_lags_.end()) {
    return known->second;
  }
  const auto hours_of = [calendar](std::int32_t day) { return PatternOn(*calendar, day); };
  return of_lags_.emplace(calendar->uid, MinuteCalendar(first_day_, days_, hours_of)).first->second;
}

std::int64_t PlanCalendars::LagEnd(const Link& link, std::int64_t moment) {
  if (link.lag_minutes == 0 || link.lag_calendar == engine::LagCalendar::kElapsed) {
    return moment + link.lag_minutes;
  }
  const MinuteCalendar& calendar = OfLag(link);
  return link.lag_minutes > 0 ? calendar.After(moment, link.lag_minutes)
                              : calendar.LastFinish(calendar.Before(moment, -link.lag_minutes));
}

std::int64_t PlanCalendars::LagBegin(const Link& link, std::int64_t moment) {
  if (link.lag_minutes == 0 || link.lag_calendar == engine::LagCalendar::kElapsed) {
    return moment - link.lag_minutes;
  }
  const MinuteCalendar& calendar = OfLag(link);
  return link.lag_minutes > 0 ? calendar.Before(moment, link.lag_minutes)
                              : calendar.NextStart(calendar.After(moment, -link.lag_minutes));
}

}  // namespace nimbrel::test
