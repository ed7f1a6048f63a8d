#pragma once

#include <cstdint>
#include <map>

#include "engine/calendar/instant.h"
#include "engine/calendar/work_calendar.h"
#include "engine/calendar/work_table.h"
#include "engine/plan/plan.h"

namespace nimbrel::engine {

/// Where lags end and begin that lead out of a project, to dates that a file gives.
class XerLags {
 public:
  /// The plan must live as long and keep its calendars.
  explicit XerLags(const Plan& plan) : plan_(&plan) {}

  /// The first moment at which a lag of so many minutes from `begin` has run off, and the last one
  /// at which it may begin that is to have run off at `end`. A calendar of 0 stands for the clock.
  /// Absent where the calendar has no working time or does not reach so far.
  Instant EndOf(Instant begin, std::int32_t minutes, Uid calendar);
  Instant BeginOf(Instant end, std::int32_t minutes, Uid calendar);

 private:
  struct Hours {
    explicit Hours(const CalendarDefinition& definition)
        : calendar(definition), table(calendar, {&calendar.open()}, kFirstCoveredDay) {}
    WorkCalendar calendar;
    WorkTable table;
  };

  /// The hours of a calendar; null if it has none.
  WorkTable* TableOf(Uid calendar);

  const Plan* plan_;
  std::map<Uid, Hours> hours_;
};

}  // namespace nimbrel::engine
