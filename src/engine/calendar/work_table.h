#pragma once

#include <cstdint>
#include <stdexcept>
#include <vector>

#include "engine/calendar/instant.h"
#include "engine/calendar/work_calendar.h"

namespace nimbrel::engine {

/// A moment was asked for that lies before or after the days that a WorkTable may reach.
class OutsideCalendars : public std::out_of_range {
 public:
  explicit OutsideCalendars(bool is_before)
      : std::out_of_range("outside what calendars cover"), is_before_(is_before) {}
  bool is_before() const { return is_before_; }

 private:
  bool is_before_;
};

/// Working time as a line of numbered minutes: converts moments into positions on it and back.
///
/// The days are those that all sources have in common; the hours of a day are those of `hours`.
/// A position is the number of minutes of work before a moment, counted from the table's first
/// day. It has two moments: the finish of the minute before it and the start of the minute after.
///
/// The table is built as far as it was asked for, and grows by itself. Where all days are of equal
/// length, every conversion takes constant time; otherwise the way back is a binary search.
class WorkTable {
 public:
  /// `hours` and `sources` must outlive the table. `first_day` is rounded down to the start of
  /// eight covered days. The table reaches to the last covered day or 179 years, if that is less.
  WorkTable(const WorkCalendar& hours, std::vector<const DayBits*> sources, std::int32_t first_day);

  /// Takes over what changed in the sources from `first_changed` on.
  void Rebuild(std::int32_t first_changed);

  /// Whether all days are of equal length.
  bool is_uniform() const { return uniform_; }
  /// The first and the last day that the table may cover.
  std::int32_t first_day() const { return first_day_; }
  std::int32_t last_day() const { return first_day_ + limit_ - 1; }

  /// Whether the day has work by all sources as they stand now, taken over or not.
  bool IsWorked(std::int32_t day) const {
    for (const DayBits* source : sources_) {
      if (!source->Test(day)) {
        return false;
      }
    }
    return true;
  }
  /// The hours of a day that is worked.
  const DayHours& HoursOn(std::int32_t day) const { return hours_->HoursOn(day); }

  /// Minutes of work before the moment. Raises OutsideCalendars.
  std::int32_t Position(Instant moment);
  /// When the work after the position begins, and when the work before it ends. Raise
  /// OutsideCalendars.
  Instant StartAt(std::int32_t position) { return MinuteAt(position); }
  Instant FinishAt(std::int32_t position) {
    return Instant::FromPacked(MinuteAt(position - 1).packed() + 1);
  }
  /// The number of minutes, or less of them where even less would leave every table. Minutes that
  /// are added to a position must have gone through this, unless they are at most kAnyMinutes.
  static constexpr std::int32_t kAnyMinutes = 65536;
  std::int32_t CapMinutes(std::int32_t minutes) const {
    const std::int32_t cap = kAnyMinutes * (uniform_ ? minutes_per_day_ : kMinutesPerDay);
    return minutes > cap ? cap : minutes < -cap ? -cap : minutes;
  }
  /// Start and finish of so many minutes of work, at least one, that begin at the moment or later.
  /// For uniform tables only. Raises OutsideCalendars.
  struct Span {
    std::int32_t start;
    std::int32_t finish;
  };
  Span Place(std::int32_t moment, std::int32_t minutes);

 private:
  Instant MinuteAt(std::int32_t position);
  std::int32_t PositionOfUnequal(Instant moment);
  void Extend(std::int32_t days);
  void ExtendToDay(std::int32_t day);
  void ExtendToPosition(std::int32_t position);
  void Fill(std::int32_t from);
  void FillDays(std::int32_t from);
  void FillMinutes(std::int32_t from);
  std::uint64_t Word(std::int32_t index) const;
  std::int32_t Quotient(std::int32_t minutes) const {
    return static_cast<std::int32_t>(static_cast<std::uint64_t>(minutes) * reciprocal_ >> 40);
  }

  const WorkCalendar* hours_;
  std::vector<const DayBits*> sources_;
  bool uniform_;
  std::int32_t first_day_;
  std::int32_t limit_;        // days that the table may cover
  std::int32_t covered_ = 0;  // days that it covers; a multiple of 8
  std::int32_t worked_ = 0;   // days with work among them (uniform), or minutes

  // Days of equal length.
  std::int32_t minutes_per_day_ = 1;
  std::uint64_t reciprocal_ = 0;                  // of minutes_per_day_, times 2^40, rounded up
  const std::uint16_t* worked_before_ = nullptr;  // minutes before a minute of the day
  const std::uint16_t* minute_at_ = nullptr;      // minute of the day of a minute of work
  std::vector<std::uint16_t> days_before_;        // days with work before a day
  std::vector<std::uint16_t> day_of_;             // the days with work

  // Days of unequal length.
  std::vector<std::int32_t> minutes_before_;  // minutes of work before a day
};

inline std::int32_t WorkTable::Position(Instant moment) {
  if (!uniform_) {
    return PositionOfUnequal(moment);
  }
  const std::int32_t at = moment.day() - first_day_;
  if (static_cast<std::uint32_t>(at) >= static_cast<std::uint32_t>(covered_)) {
    ExtendToDay(at);
  }
  const std::int32_t days = days_before_[at];
  const bool is_worked = days_before_[at + 1] != days;
  return days * minutes_per_day_ + (is_worked ? worked_before_[moment.minute()] : 0);
}

inline WorkTable::Span WorkTable::Place(std::int32_t moment, std::int32_t minutes) {
  const std::int32_t at = (moment >> 11) - first_day_;
  if (static_cast<std::uint32_t>(at) >= static_cast<std::uint32_t>(covered_)) {
    ExtendToDay(at);
  }
  std::int32_t day = days_before_[at];
  const bool is_worked = days_before_[at + 1] != day;
  std::int32_t minute = is_worked ? worked_before_[moment & 2047] : 0;
  if (minute == minutes_per_day_) {
    minute = 0;
    ++day;
  }
  const std::int32_t last = minute + minutes - 1;
  const std::int32_t days = Quotient(last);
  const std::int32_t last_day = day + days;
  if (last_day >= worked_) {
    ExtendToPosition((last_day + 1) * minutes_per_day_ - 1);
  }
  Span span;
  span.start = ((day_of_[day] + first_day_) << 11) | minute_at_[minute];
  span.finish =
      ((day_of_[last_day] + first_day_) << 11) + minute_at_[last - days * minutes_per_day_] + 1;
  return span;
}

}  // namespace nimbrel::engine
