#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "engine/calendar/calendar_definition.h"

namespace nimbrel::engine {

/// A shift as files give it: minutes of the day, 0 to 1440. One that ends at or before its begin
/// runs past midnight into the next day, up to 24 hours.
struct FileShift {
  int begin = 0;
  int end = 0;
};

/// Puts a calendar together from what a file says of weekdays and single days.
///
/// A shift past midnight belongs to the day on which it begins: a holiday takes the part that would
/// have run into the next day with it, and leaves what runs into it from the day before.
class CalendarBuilder {
 public:
  /// Weekday: Monday 0 to Sunday 6. The last call for a day counts.
  void SetWeekday(int weekday, const std::vector<FileShift>& shifts);
  /// A single day, as counted in Instant; no shifts: a day off.
  void SetException(std::int32_t day, const std::vector<FileShift>& shifts);

  /// Takes over exceptions of the calendar that this one rests on, where it has none of its own.
  void InheritExceptions(const CalendarBuilder& base);
  /// Takes over weekdays of the calendar that this one rests on, where it says nothing of them.
  void InheritWeek(const CalendarBuilder& base);

  bool HasWeekday(int weekday) const {
    return week_[static_cast<std::size_t>(weekday)].has_value();
  }
  std::size_t exception_count() const { return exceptions_.size(); }

  /// The calendar; weekdays never set are days off.
  CalendarDefinition Build(const std::string& name) const;

 private:
  struct DayWork {
    DayPattern own;
    std::int16_t into_next = 0;  // minutes of the next day worked from its midnight on
  };

  static DayWork MakeDayWork(const std::vector<FileShift>& shifts);
  /// What the calendar says of a day, single days before weekdays.
  DayWork WorkOn(std::int32_t day) const;
  DayWork WorkOfWeekday(int weekday) const;
  static DayPattern Join(const DayWork& before, const DayWork& day);

  std::array<std::optional<DayWork>, 7> week_;
  std::map<std::int32_t, DayWork> exceptions_;
};

/// Whether the calendar works on any day at all.
bool HasWorkingTime(const CalendarDefinition& calendar);

}  // namespace nimbrel::engine
