#include "engine/formats/calendar_algebra.h"

#include <algorithm>
#include <utility>

namespace nimbrel::engine {
namespace {

DayPattern UnionOf(DayPattern a, const DayPattern& b) {
  a.insert(a.end(), b.begin(), b.end());
  return Normalized(std::move(a));
}

DayPattern IntersectionOf(const DayPattern& a, const DayPattern& b) {
  DayPattern both;
  auto left = a.begin();
  auto right = b.begin();
  while (left != a.end() && right != b.end()) {
    const Shift shared = {std::max(left->begin, right->begin), std::min(left->end, right->end)};
    if (shared.begin < shared.end) {
      both.push_back(shared);
    }
    if (left->end < right->end) {
      ++left;
    } else {
      ++right;
    }
  }
  return both;
}

void AppendPattern(std::string& key, const DayPattern& pattern) {
  for (const Shift& shift : pattern) {
    key += std::to_string(shift.begin) + '-' + std::to_string(shift.end) + ' ';
  }
  key += ';';
}

template <class Combine>
CalendarDefinition Combined(const CalendarDefinition& a, const CalendarDefinition& b,
                            const Combine& combine) {
  CalendarDefinition result;
  result.name = a.name;
  for (std::size_t weekday = 0; weekday < 7; ++weekday) {
    result.week[weekday] = combine(a.week[weekday], b.week[weekday]);
  }
  for (const CalendarDefinition* source : {&a, &b}) {
    for (const auto& [day, pattern] : source->exceptions) {
      result.exceptions.try_emplace(day, combine(PatternOn(a, day), PatternOn(b, day)));
    }
  }
  return result;
}

}  // namespace

std::string WorkKey(const CalendarDefinition& calendar) {
  std::string key;
  for (const DayPattern& pattern : calendar.week) {
    AppendPattern(key, pattern);
  }
  for (const auto& [day, pattern] : calendar.exceptions) {
    if (pattern != calendar.week[static_cast<std::size_t>(WeekdayOf(day))]) {
      key += 'd' + std::to_string(day);
      AppendPattern(key, pattern);
    }
  }
  return key;
}

CalendarDefinition Union(const CalendarDefinition& a, const CalendarDefinition& b) {
  return Combined(a, b, UnionOf);
}

CalendarDefinition Intersection(const CalendarDefinition& a, const CalendarDefinition& b) {
  return Combined(a, b, IntersectionOf);
}

std::int64_t WorkWithin(const CalendarDefinition& calendar, const std::vector<TimeSpan>& spans) {
  std::int64_t minutes = 0;
  for (const TimeSpan& span : spans) {
    const std::int32_t last = span.end.AsFinish().day();
    for (std::int32_t day = span.begin.day(); day <= last; ++day) {
      const std::int64_t midnight = Instant(day, 0).Minutes();
      const auto within = [midnight](Instant moment) {
        return static_cast<std::int16_t>(
            std::clamp<std::int64_t>(moment.Minutes() - midnight, 0, kMinutesPerDay));
      };
      minutes += MinutesOf(
          IntersectionOf(PatternOn(calendar, day), {{within(span.begin), within(span.end)}}));
    }
  }
  return minutes;
}

}  // namespace nimbrel::engine
