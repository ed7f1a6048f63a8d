#include "tests/support/schedule/minute_calendar.h"

#include "engine/calendar/instant.h"

namespace nimbrel::test {

MinuteCalendar::MinuteCalendar(std::int32_t first_day, std::int32_t days, const HoursOf& hours_of)
    : first_(std::int64_t{first_day} * engine::kMinutesPerDay) {
  works_.resize(static_cast<std::size_t>(days) * engine::kMinutesPerDay, false);
  for (std::int32_t day = 0; day < days; ++day) {
    for (const engine::Shift& shift : hours_of(first_day + day)) {
      for (std::int32_t minute = shift.begin; minute < shift.end; ++minute) {
        works_[static_cast<std::size_t>(day) * engine::kMinutesPerDay +
               static_cast<std::size_t>(minute)] = true;
      }
    }
  }
  work_before_.push_back(0);
  for (const bool works : works_) {
    work_before_.push_back(work_before_.back() + (works ? 1 : 0));
  }
}

bool MinuteCalendar::Works(std::int64_t moment) const {
  return works_.at(static_cast<std::size_t>(moment - first_));
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
