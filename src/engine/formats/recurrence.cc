#include "engine/formats/recurrence.h"

#include <algorithm>

#include "engine/calendar/calendar_definition.h"
#include "platform/date.h"

namespace nimbrel::engine {
namespace {

/// Hands out days within bounds; false once there are to be no more.
class DaySink {
 public:
  DaySink(const Recurrence& recurrence, const std::function<bool(std::int32_t)>& visit)
      : recurrence_(recurrence), visit_(visit) {}

  bool Take(std::int32_t day) {
    if (day < recurrence_.first) {
      return true;
    }
    if (day > recurrence_.last || (recurrence_.most > 0 && taken_ >= recurrence_.most)) {
      return false;
    }
    ++taken_;
    return visit_(day);
  }

 private:
  const Recurrence& recurrence_;
  const std::function<bool(std::int32_t)>& visit_;
  std::int64_t taken_ = 0;
};

bool IsOfItem(std::int32_t day, std::int32_t item) {
  const std::int32_t weekday = WeekdayOf(day);  // Monday 0
  switch (item) {
    case 0:
      return true;
    case 1:
      return weekday < 5;
    case 2:
      return weekday >= 5;
    default:
      return (weekday + 1) % 7 == item - 3;
  }
}

/// The day of a month that a position and an item name; each month has one.
std::int32_t DayByPosition(int year, int month, const Recurrence& recurrence) {
  const std::int32_t first = platform::SerialDay(year, month, 1);
  const std::int32_t last = first + platform::DaysInMonth(year, month) - 1;
  std::int32_t found = first;
  const bool wants_last = recurrence.month_position == 4;
  std::int32_t position = -1;
  for (std::int32_t day = first; day <= last; ++day) {
    if (IsOfItem(day, recurrence.month_item) &&
        (wants_last || position < recurrence.month_position)) {
      found = day;
      ++position;
    }
  }
  return found;
}

std::int32_t DayInMonth(int year, int month, const Recurrence& recurrence, bool by_position) {
  if (by_position) {
    return DayByPosition(year, month, recurrence);
  }
  const int day = std::clamp(recurrence.month_day, 1, platform::DaysInMonth(year, month));
  return platform::SerialDay(year, month, day);
}

void VisitMonths(const Recurrence& recurrence, int first_month, int step, bool by_position,
                 DaySink& sink) {
  const platform::CivilTime start =
      platform::ToCivil(platform::Date{static_cast<double>(recurrence.first)});
  for (int month = start.year * 12 + first_month;; month += step) {
    if (!sink.Take(DayInMonth(month / 12, month % 12 + 1, recurrence, by_position))) {
      return;
    }
  }
}

void VisitWeeks(const Recurrence& recurrence, DaySink& sink) {
  const std::int32_t sunday = recurrence.first - (WeekdayOf(recurrence.first) + 1) % 7;
  if ((recurrence.weekdays & 127) == 0) {
    return;
  }
  for (std::int32_t week = sunday;; week += 7 * recurrence.period) {
    for (int weekday = 0; weekday < 7; ++weekday) {
      if ((recurrence.weekdays >> weekday & 1) != 0 && !sink.Take(week + weekday)) {
        return;
      }
    }
  }
}

void VisitDays(const Recurrence& recurrence, DaySink& sink) {
  const bool weekdays_only = recurrence.type == Recurrence::kEveryWeekdays;
  const std::int32_t step = recurrence.type == Recurrence::kDaily ? 1 : recurrence.period;
  std::int32_t until_next = 0;
  for (std::int32_t day = recurrence.first; day <= recurrence.last; ++day) {
    if (weekdays_only && WeekdayOf(day) >= 5) {
      continue;
    }
    if (until_next == 0) {
      if (!sink.Take(day)) {
        return;
      }
      until_next = step;
    }
    --until_next;
  }
}

}  // namespace

void ForEachDay(const Recurrence& recurrence, const std::function<bool(std::int32_t day)>& visit) {
  DaySink sink(recurrence, visit);
  const int first_month =
      platform::ToCivil(platform::Date{static_cast<double>(recurrence.first)}).month - 1;
  switch (recurrence.type) {
    case Recurrence::kWeekly:
      VisitWeeks(recurrence, sink);
      return;
    case Recurrence::kMonthlyByDay:
      VisitMonths(recurrence, first_month, recurrence.period, false, sink);
      return;
    case Recurrence::kMonthlyByPosition:
      VisitMonths(recurrence, first_month, recurrence.period, true, sink);
      return;
    case Recurrence::kYearlyByDay:
      VisitMonths(recurrence, recurrence.month, 12, false, sink);
      return;
    case Recurrence::kYearlyByPosition:
      VisitMonths(recurrence, recurrence.month, 12, true, sink);
      return;
    default:
      VisitDays(recurrence, sink);
  }
}

}  // namespace nimbrel::engine
