#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "engine/calendar/calendar_definition.h"

namespace nimbrel::test {

/// Working time minute by minute, without a thought for speed: the second method that the engine's
/// tables are compared with. Moments are minutes since the midnight of day 0.
class MinuteCalendar {
 public:
  /// The shifts of a day.
  using HoursOf = std::function<engine::DayPattern(std::int32_t day)>;

  /// Knows the days from `first_day` on; asking beyond them raises std::out_of_range.
  MinuteCalendar(std::int32_t first_day, std::int32_t days, const HoursOf& hours_of);

  /// Whether the minute that begins at the moment is worked.
  bool Works(std::int64_t moment) const;
  /// Minutes of work from one moment to another; negative if `to` comes first.
  std::int64_t WorkBetween(std::int64_t from, std::int64_t to) const;
  /// The first moment from `moment` on at which a minute of work begins.
  std::int64_t NextStart(std::int64_t moment) const;
  /// The last moment up to `moment` at which a minute of work ends.
  std::int64_t LastFinish(std::int64_t moment) const;
  /// When so many minutes of work after the moment are done; at least one.
  std::int64_t After(std::int64_t moment, std::int64_t minutes) const;
  /// When the first of so many minutes of work before the moment begins; at least one.
  std::int64_t Before(std::int64_t moment, std::int64_t minutes) const;

 private:
  std::int64_t first_;
  std::vector<std::int32_t> work_before_;  // minutes of work before each minute
};

}  // namespace nimbrel::test
