#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "engine/calendar/calendar_definition.h"
#include "engine/calendar/day_bits.h"
#include "engine/calendar/instant.h"

namespace nimbrel::engine {

/// The minutes of work of one kind of day, both ways.
class DayHours {
 public:
  explicit DayHours(const DayPattern& pattern);

  /// Minutes of work in the day.
  std::int32_t minutes() const { return static_cast<std::int32_t>(minute_at_.size()); }
  /// Minutes of work before each minute of the day, 0 to 1440.
  const std::uint16_t* worked_before() const { return worked_before_.data(); }
  /// The minute of the day at which each minute of work begins; minutes() entries.
  const std::uint16_t* minute_at() const { return minute_at_.data(); }

 private:
  std::array<std::uint16_t, kMinutesPerDay + 1> worked_before_{};
  std::vector<std::uint16_t> minute_at_;
};

/// A calendar made ready for counting: which of the covered days have work, which of them were
/// taken away, and the hours of each.
class WorkCalendar {
 public:
  /// The definition is not kept. Its taken days start as taken.
  explicit WorkCalendar(const CalendarDefinition& definition);

  const std::string& name() const { return name_; }
  /// Days with work by pattern and exceptions, taken or not.
  const DayBits& open() const { return open_; }
  /// Days with work that are not taken.
  const DayBits& worked() const { return worked_; }

  /// Takes the days from `first` to `last` away, both included, or gives back those of them that
  /// are taken. Nothing if last < first.
  void TakeDays(std::int32_t first, std::int32_t last);
  void GiveDays(std::int32_t first, std::int32_t last);

  /// The days that changed since ForgetChanges, from the first to the last; first > last if none.
  std::int32_t first_changed() const { return first_changed_; }
  std::int32_t last_changed() const { return last_changed_; }
  void ForgetChanges();

  /// Whether all days with work have the same hours.
  bool is_uniform() const { return hours_.size() <= 1; }
  /// Whether any covered day has work by pattern and exceptions.
  bool has_work() const { return !hours_.empty(); }
  /// The hours of a day that is open.
  const DayHours& HoursOn(std::int32_t day) const {
    return hours_[is_uniform() ? 0
                               : kind_of_day_[static_cast<std::size_t>(day - kFirstCoveredDay)]];
  }

 private:
  /// Fills in the covered days by the kinds of the weekdays, Monday first; -1 is without work.
  void OpenWeeks(const std::array<std::int32_t, 7>& kinds);
  void NoteChange(std::int32_t word, std::uint64_t days);

  std::string name_;
  DayBits open_;
  DayBits taken_;
  DayBits worked_;
  std::vector<DayHours> hours_;             // of the kinds of days with work
  std::vector<std::uint16_t> kind_of_day_;  // by covered day; empty if uniform
  std::int32_t first_changed_ = std::numeric_limits<std::int32_t>::max();
  std::int32_t last_changed_ = std::numeric_limits<std::int32_t>::min();
};

}  // namespace nimbrel::engine
