#include "engine/calendar/work_calendar.h"

#include <algorithm>
#include <bit>
#include <map>

namespace nimbrel::engine {
namespace {

/// Numbers the different patterns that have work, as they come up.
class PatternKinds {
 public:
  explicit PatternKinds(std::vector<DayHours>& hours) : hours_(hours) {}

  /// The pattern's number; -1 if it has no work.
  std::int32_t KindOf(const DayPattern& pattern) {
    const DayPattern normal = Normalized(pattern);
    if (normal.empty()) {
      return -1;
    }
    std::vector<std::int32_t> key;
    for (const Shift& shift : normal) {
      key.insert(key.end(), {shift.begin, shift.end});
    }
    const auto [known, is_new] = kinds_.emplace(key, static_cast<std::int32_t>(hours_.size()));
    if (is_new) {
      hours_.emplace_back(normal);
    }
    return known->second;
  }

 private:
  std::vector<DayHours>& hours_;
  std::map<std::vector<std::int32_t>, std::int32_t> kinds_;
};

}  // namespace

DayHours::DayHours(const DayPattern& pattern) {
  std::int32_t minute = 0;
  for (const Shift& shift : pattern) {
    for (; minute <= shift.begin; ++minute) {
      worked_before_[minute] = static_cast<std::uint16_t>(minute_at_.size());
    }
    for (std::int32_t worked = shift.begin; worked < shift.end; ++worked) {
      minute_at_.push_back(static_cast<std::uint16_t>(worked));
      worked_before_[worked + 1] = static_cast<std::uint16_t>(minute_at_.size());
    }
    minute = shift.end + 1;
  }
  for (; minute <= kMinutesPerDay; ++minute) {
    worked_before_[minute] = static_cast<std::uint16_t>(minute_at_.size());
  }
}

WorkCalendar::WorkCalendar(const CalendarDefinition& definition) : name_(definition.name) {
  PatternKinds kinds(hours_);
  std::array<std::int32_t, 7> week{};
  for (std::size_t weekday = 0; weekday < week.size(); ++weekday) {
    week[weekday] = kinds.KindOf(definition.week[weekday]);
  }
  // Exceptions first: their kinds decide whether all days have the same hours.
  std::map<std::int32_t, std::int32_t> kind_of_exception;
  for (const auto& [day, pattern] : definition.exceptions) {
    if (day >= kFirstCoveredDay && day <= kLastCoveredDay) {
      kind_of_exception[day] = kinds.KindOf(pattern);
    }
  }
  OpenWeeks(week);
  for (const auto& [day, kind] : kind_of_exception) {
    open_.Remove(day, day);
    if (kind >= 0) {
      open_.Add(day, day);
    }
    if (kind >= 0 && !is_uniform()) {
      kind_of_day_[static_cast<std::size_t>(day - kFirstCoveredDay)] =
          static_cast<std::uint16_t>(kind);
    }
  }
  worked_ = open_;
  for (const DayRange& range : definition.taken) {
    TakeDays(range.first, range.last);
  }
  ForgetChanges();
}

void WorkCalendar::OpenWeeks(const std::array<std::int32_t, 7>& kinds) {
  if (!is_uniform()) {
    kind_of_day_.resize(kLastCoveredDay - kFirstCoveredDay + 1);
  }
  auto weekday = static_cast<std::size_t>(WeekdayOf(kFirstCoveredDay));
  for (std::int32_t at = 0; at <= kLastCoveredDay - kFirstCoveredDay; ++at) {
    const std::int32_t kind = kinds[weekday];
    open_.Word(at >> 6) |= std::uint64_t{kind >= 0} << (at & 63);
    if (!is_uniform() && kind >= 0) {
      kind_of_day_[static_cast<std::size_t>(at)] = static_cast<std::uint16_t>(kind);
    }
    weekday = weekday == 6 ? 0 : weekday + 1;
  }
}

void WorkCalendar::NoteChange(std::int32_t word, std::uint64_t days) {
  const std::int32_t day = kFirstCoveredDay + word * 64;
  first_changed_ = std::min(first_changed_, day + std::countr_zero(days));
  last_changed_ = std::max(last_changed_, day + 63 - std::countl_zero(days));
}

void WorkCalendar::TakeDays(std::int32_t first, std::int32_t last) {
  VisitWords(first, last, [this](std::int32_t word, std::uint64_t mask) {
    taken_.Word(word) |= mask;
    if (const std::uint64_t changed = worked_.Word(word) & mask; changed != 0) {
      worked_.Word(word) ^= changed;
      NoteChange(word, changed);
    }
  });
}

void WorkCalendar::GiveDays(std::int32_t first, std::int32_t last) {
  VisitWords(first, last, [this](std::int32_t word, std::uint64_t mask) {
    const std::uint64_t given = taken_.Word(word) & mask;
    taken_.Word(word) ^= given;
    if (const std::uint64_t changed = given & open_.Word(word); changed != 0) {
      worked_.Word(word) |= changed;
      NoteChange(word, changed);
    }
  });
}

void WorkCalendar::ForgetChanges() {
  first_changed_ = std::numeric_limits<std::int32_t>::max();
  last_changed_ = std::numeric_limits<std::int32_t>::min();
}

}  // namespace nimbrel::engine
