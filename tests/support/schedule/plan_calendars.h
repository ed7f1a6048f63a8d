#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "engine/plan/plan.h"
#include "tests/support/schedule/minute_calendar.h"

namespace nimbrel::test {

/// The working times of a plan's tasks and lags, minute by minute, for some days.
class PlanCalendars {
 public:
  /// `plan` must outlive the calendars.
  PlanCalendars(const engine::Plan& plan, std::int32_t first_day, std::int32_t days)
      : plan_(plan), first_day_(first_day), days_(days) {}

  /// The hours of the task's own calendar on the days that neither it nor a calendar behind one of
  /// the task's risk calendars has off.
  const MinuteCalendar& OfTask(const engine::Task& task);
  /// The end of a lag that begins at a moment: the first moment at which it has run off. The taken
  /// days of the lag's calendar count as the pattern and the exceptions say.
  std::int64_t LagEnd(const engine::Link& link, std::int64_t moment);
  /// The last moment at which a lag may begin to have run off at a moment.
  std::int64_t LagBegin(const engine::Link& link, std::int64_t moment);

 private:
  const MinuteCalendar& OfLag(const engine::Link& link);
  const engine::CalendarDefinition& OwnCalendar(const engine::Task& task) const;

  const engine::Plan& plan_;
  std::int32_t first_day_;
  std::int32_t days_;
  std::map<std::vector<engine::Uid>, MinuteCalendar> of_tasks_;
  std::map<engine::Uid, MinuteCalendar> of_lags_;
};

}  // namespace nimbrel::test
