#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace nimbrel::engine {

/// A stretch of work within a day: minutes of the day, `begin` included, `end` not;
/// 0 <= begin < end <= 1440.
struct Shift {
  std::int16_t begin = 0;
  std::int16_t end = 0;
  friend bool operator==(const Shift&, const Shift&) = default;
};

/// The shifts of one day, in order and without overlap; none on a day off.
using DayPattern = std::vector<Shift>;

/// Minutes of work in a day, 0 to 1440.
std::int32_t MinutesOf(const DayPattern& pattern);

/// Sorts shifts and joins those that touch or overlap; drops empty ones.
DayPattern Normalized(DayPattern pattern);

/// A run of days, both included.
struct DayRange {
  std::int32_t first = 0;
  std::int32_t last = 0;
  friend bool operator==(const DayRange&, const DayRange&) = default;
};

/// When work is done: a weekly pattern, days that depart from it, and days that were taken away on
/// top of both. Days are counted as in Instant.
struct CalendarDefinition {
  std::int32_t uid = 0;            // unique among the plan's calendars; never 0 in a plan
  std::string name;                // unique in the plan without regard to case
  std::array<DayPattern, 7> week;  // Monday first
  std::map<std::int32_t, DayPattern> exceptions;  // holidays (no shifts) and days worked otherwise
  /// Days made non-working from outside, in order and apart from each other. What the pattern and
  /// the exceptions say of such a day stands again when it is given back.
  std::vector<DayRange> taken;
  friend bool operator==(const CalendarDefinition&, const CalendarDefinition&) = default;
};

/// Weekday of a day: Monday 0 to Sunday 6.
constexpr std::int32_t WeekdayOf(std::int32_t day) {
  return ((day + 5) % 7 + 7) % 7;
}

/// The shifts of a day by pattern and exceptions, whether or not the day is taken.
const DayPattern& PatternOn(const CalendarDefinition& calendar, std::int32_t day);

/// Whether the day is taken away.
bool IsTaken(const CalendarDefinition& calendar, std::int32_t day);

/// A calendar of `weekdays` worked days a week from Monday on, `hours` a day: eight hours are 08:00
/// to 12:00 and 13:00 to 17:00; other lengths up to 16 start at 08:00 without a break, longer ones
/// end at 24:00. `hours` is 1 to 24.
CalendarDefinition MakeWeekCalendar(const std::string& name, int weekdays, int hours);

}  // namespace nimbrel::engine
