#include "engine/formats/calendar_builder.h"

#include <algorithm>

#include "engine/calendar/instant.h"

namespace nimbrel::engine {

CalendarBuilder::DayWork CalendarBuilder::MakeDayWork(const std::vector<FileShift>& shifts) {
  DayWork work;
  for (const FileShift& shift : shifts) {
    const auto begin = static_cast<std::int16_t>(shift.begin);
    const auto end = static_cast<std::int16_t>(shift.end);
    if (end > begin) {
      work.own.push_back({begin, end});
    } else {
      work.own.push_back({begin, kMinutesPerDay});
      work.into_next = std::max(work.into_next, end);
    }
  }
  work.own = Normalized(std::move(work.own));
  return work;
}

void CalendarBuilder::SetWeekday(int weekday, const std::vector<FileShift>& shifts) {
  week_[static_cast<std::size_t>(weekday)] = MakeDayWork(shifts);
}

void CalendarBuilder::SetException(std::int32_t day, const std::vector<FileShift>& shifts) {
  exceptions_[day] = MakeDayWork(shifts);
}

void CalendarBuilder::InheritExceptions(const CalendarBuilder& base) {
  exceptions_.insert(base.exceptions_.begin(), base.exceptions_.end());
}

void CalendarBuilder::InheritWeek(const CalendarBuilder& base) {
  for (std::size_t weekday = 0; weekday < week_.size(); ++weekday) {
    if (!week_[weekday]) {
      week_[weekday] = base.week_[weekday];
    }
  }
}

CalendarBuilder::DayWork CalendarBuilder::WorkOfWeekday(int weekday) const {
  return week_[static_cast<std::size_t>(weekday)].value_or(DayWork{});
}

CalendarBuilder::DayWork CalendarBuilder::WorkOn(std::int32_t day) const {
  const auto exception = exceptions_.find(day);
  return exception != exceptions_.end() ? exception->second : WorkOfWeekday(WeekdayOf(day));
}

DayPattern CalendarBuilder::Join(const DayWork& before, const DayWork& day) {
  DayPattern pattern = day.own;
  pattern.push_back({0, before.into_next});
  return Normalized(std::move(pattern));
}

CalendarDefinition CalendarBuilder::Build(const std::string& name) const {
  CalendarDefinition calendar;
  calendar.name = name;
  for (int weekday = 0; weekday < 7; ++weekday) {
    calendar.week[static_cast<std::size_t>(weekday)] =
        Join(WorkOfWeekday((weekday + 6) % 7), WorkOfWeekday(weekday));
  }
  for (const auto& [day, work] : exceptions_) {
    calendar.exceptions.insert_or_assign(day, Join(WorkOn(day - 1), work));
    // The day after departs from its weekday too if another amount runs into it.
    if (!exceptions_.contains(day + 1) &&
        work.into_next != WorkOfWeekday(WeekdayOf(day)).into_next) {
      calendar.exceptions.insert_or_assign(day + 1, Join(work, WorkOfWeekday(WeekdayOf(day + 1))));
    }
  }
  return calendar;
}

bool HasWorkingTime(const CalendarDefinition& calendar) {
  const auto works = [](const DayPattern& pattern) { return !pattern.empty(); };
  return std::any_of(calendar.week.begin(), calendar.week.end(), works) ||
         std::any_of(calendar.exceptions.begin(), calendar.exceptions.end(),
                     [&works](const auto& exception) { return works(exception.second); });
}

}  // namespace nimbrel::engine
