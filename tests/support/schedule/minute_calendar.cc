#include "tests/support/schedule/minute_calendar.h"

#include "engine/calendar/instant.h"

namespace nimbrel::test {

MinuteCalendar::MinuteCalendar(std::int32_t first_day, std::int32_t days, const HoursOf& hours_of)
    : first_(std::int64_t{first_day} * engine::kMinutesPerDay) {
  work_before_.reserve(static_cast<std::size_t>(days) * engine::kMinutesPerDay + 1);
  std::int32_t work = 0;
  for (std::int32_t day = 0; day < days; ++day) {
    std::int32_t minute = 0;
    for (const engine::Shift& shift : hours_of(first_day + day)) {
      work_before_.insert(work_before_.end(), static_cast<std::size_t>(shift.begin - minute), work);
      for (minute = shift.begin; minute < shift.end; ++minute) {
        work_before_.push_back(work++);
      }
    }
    work_before_.insert(work_before_.end(),
                        static_cast<std::size_t>(engine::kMinutesPerDay - minute), work);
  }
  work_before_.push_back(work);
}

bool MinuteCalendar::Works(std::int64_t moment) const {
  return WorkBetween(moment, moment + 1) == 1;
}

std::int64_t MinuteCalendar::WorkBetween(std::int64_t from, std::int64_t to) const {
  return work_before_.at(static_cast<std::size_t>(to - first_)) -
         work_before_.at(static_cast<std::size_t>(from - first_));
}

std::int64_t MinuteCalendar::NextStart(std::int64_t moment) const {
  while (!Works(moment)) {
    ++moment;
  }
  return moment;
}

std::int64_t MinuteCalendar::LastFinish(std::int64_t moment) const {
  while (!Works(moment - 1)) {
    --moment;
  }
  return moment;
}

std::int64_t MinuteCalendar::After(std::int64_t moment, std::int64_t minutes) const {
  while (minutes > 0) {
    minutes -= Works(moment) ? 1 : 0;
    ++moment;
  }
  return moment;
}

std::int64_t MinuteCalendar::Before(std::int64_t moment, std::int64_t minutes) const {
  while (minutes > 0) {
    --moment;
    minutes -= Works(moment) ? 1 : 0;
  }
  return moment;
}

}  // namespace nimbrel::test
