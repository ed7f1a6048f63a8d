#include "engine/calendar/calendar_definition.h"

#include <algorithm>

namespace nimbrel::engine {

std::int32_t MinutesOf(const DayPattern& pattern) {
  std::int32_t minutes = 0;
  for (const Shift& shift : pattern) {
    minutes += shift.end - shift.begin;
  }
  return minutes;
}

DayPattern Normalized(DayPattern pattern) {
  std::erase_if(pattern, [](const Shift& shift) { return shift.begin >= shift.end; });
  std::sort(pattern.begin(), pattern.end(),
            [](const Shift& a, const Shift& b) { return a.begin < b.begin; });
  DayPattern joined;
  for (const Shift& shift : pattern) {
    if (!joined.empty() && shift.begin <= joined.back().end) {
      joined.back().end = std::max(joined.back().end, shift.end);
    } else {
      joined.push_back(shift);
    }
  }
  return joined;
}

const DayPattern& PatternOn(const CalendarDefinition& calendar, std::int32_t day) {
  const auto exception = calendar.exceptions.find(day);
  return exception != calendar.exceptions.end()
             ? exception->second
             : calendar.week[static_cast<std::size_t>(WeekdayOf(day))];
}

bool IsTaken(const CalendarDefinition& calendar, std::int32_t day) {
  const auto after =
      std::partition_point(calendar.taken.begin(), calendar.taken.end(),
                           [day](const DayRange& range) { return range.last < day; });
  return after != calendar.taken.end() && after->first <= day;
}

CalendarDefinition MakeWeekCalendar(const std::string& name, int weekdays, int hours) {
  CalendarDefinition calendar;
  calendar.name = name;
  DayPattern day;
  if (hours == 8) {
    day = {{480, 720}, {780, 1020}};
  } else {
    const int begin = std::min(8, 24 - hours) * 60;
    day = {{static_cast<std::int16_t>(begin), static_cast<std::int16_t>(begin + hours * 60)}};
  }
  for (int weekday = 0; weekday < weekdays; ++weekday) {
    calendar.week[static_cast<std::size_t>(weekday)] = day;
  }
  return calendar;
}

}  // namespace nimbrel::engine
