#pragma once

#include <string>
#include <vector>

#include "engine/calendar/calendar_definition.h"
#include "engine/calendar/instant.h"

namespace nimbrel::engine {

/// A text that is the same for two calendars if they have the same working time every day, whatever
/// they are called and whichever days they list as exceptions.
std::string WorkKey(const CalendarDefinition& calendar);

/// Working time in which any of the two works, or in which both do. The name is the first one's.
CalendarDefinition Union(const CalendarDefinition& a, const CalendarDefinition& b);
CalendarDefinition Intersection(const CalendarDefinition& a, const CalendarDefinition& b);

/// A stretch of time, `begin` included, `end` not.
struct TimeSpan {
  Instant begin;
  Instant end;
};

/// Minutes of work that the calendar has within the spans, which do not overlap.
std::int64_t WorkWithin(const CalendarDefinition& calendar, const std::vector<TimeSpan>& spans);

}  // namespace nimbrel::engine
