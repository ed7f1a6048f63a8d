#pragma once

#include <cstdint>
#include <functional>

namespace nimbrel::engine {

/// On which days an exception of an MSPDI calendar falls. The numbers are the file's own.
struct Recurrence {
  enum Type : std::int32_t {
    kDaily = 1,
    kYearlyByDay = 2,
    kYearlyByPosition = 3,
    kMonthlyByDay = 4,
    kMonthlyByPosition = 5,
    kWeekly = 6,
    kEveryDays = 7,
    kEveryWeekdays = 8,
  };
  std::int32_t type = kDaily;
  std::int32_t first = 0;           // the first day that it can fall on
  std::int32_t last = 0;            // the last one
  std::int64_t most = 0;            // how often at most; 0: as the days say
  std::int32_t period = 1;          // every so many days, weeks or months; 1 or more
  std::int32_t weekdays = 0;        // bits: Sunday 1, Monday 2 to Saturday 64
  std::int32_t month = 0;           // January 0 to December 11
  std::int32_t month_day = 1;       // a month without that day has its last one instead
  std::int32_t month_item = 0;      // 0 day, 1 weekday, 2 day of a weekend, 3 Sunday to 9 Saturday
  std::int32_t month_position = 0;  // 0 first to 3 fourth, 4 last
};

/// Calls `visit` with each day, in order. Stops early when it says false. Days of all kinds lie
/// from `first` to `last`; weeks start on Sunday, and the first week, month or year is the one that
/// `first` is in.
void ForEachDay(const Recurrence& recurrence, const std::function<bool(std::int32_t day)>& visit);

}  // namespace nimbrel::engine
