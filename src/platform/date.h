#pragma once

#include <compare>
#include <cstdint>

namespace nimbrel::platform {

/// A moment of local time: days since 30 December 1899, the fraction being the time of day.
/// Valid dates run from 1 January 100 to the end of 31 December 9999.
///
/// Before day zero the fraction still counts forward from midnight of the whole day
/// (-1.25 is 06:00 on 29 December 1899). The functions below know that; the operators do not and
/// take the value as a plain number, which is enough for the dates that plans have.
struct Date {
  double serial = 0.0;

  // NOLINTNEXTLINE(modernize-use-nullptr): the linter takes the operator's own zero for a pointer
  friend constexpr auto operator<=>(const Date&, const Date&) = default;
  friend constexpr Date operator+(Date date, double days) { return {date.serial + days}; }
  friend constexpr Date operator-(Date date, double days) { return {date.serial - days}; }
  friend constexpr double operator-(Date a, Date b) { return a.serial - b.serial; }
};

/// The first and the last calendar day that a Date can have: 1 January 100, 31 December 9999.
inline constexpr std::int32_t kFirstSerialDay = -657434;
inline constexpr std::int32_t kLastSerialDay = 2958465;

/// A calendar day and time of day. `month` from 1, `day` from 1; `hour` 0 to 23.
struct CivilTime {
  int year = 1899;
  int month = 12;
  int day = 30;
  int hour = 0;
  int minute = 0;
  int second = 0;

  friend bool operator==(const CivilTime&, const CivilTime&) = default;
};

/// Whether the Gregorian calendar, counted back before its start, has this day and it is in the
/// years 100 to 9999.
bool IsCalendarDay(int year, int month, int day);

/// Whether a moment is in the years 100 to 9999; false for NaN.
bool IsValidDate(Date date);

/// Whole days from 30 December 1899 to a day. Raises error 5 unless IsCalendarDay.
std::int32_t SerialDay(int year, int month, int day);

/// Number of days in a month, 28 to 31. The month must be 1 to 12.
int DaysInMonth(int year, int month);

/// Midnight of a day; raises as SerialDay does.
Date MakeDate(int year, int month, int day);

/// The moment to the second. Raises error 5 for a day that does not exist (see SerialDay) and for
/// a time outside 00:00:00 to 23:59:59.
Date MakeDate(const CivilTime& civil);

/// The calendar day and the time of day of a moment, rounded to the nearest second; the last half
/// second of the year 9999 stays in it. Raises error 6 unless IsValidDate.
CivilTime ToCivil(Date date);

/// The day in which a moment falls, as its midnight.
Date DayOf(Date date);

/// Adds days: the interval "d" of the platform's date addition, which first rounds the number to a
/// whole one, a tie going to the even neighbour. The time of day is kept. Raises error 6 when the
/// result is not a valid date.
Date AddDays(Date date, double days);

/// Adds calendar months, keeping the time of day; a day that the month does not have becomes its
/// last one (31 January and one month give 28 or 29 February). Raises error 6 when `date` or the
/// result is not a valid date.
Date AddMonths(Date date, std::int32_t months);

/// Number of midnights from `from` to `to`, negative when `to` is on an earlier day. Raises error 6
/// unless both are valid dates.
std::int32_t DaysBetween(Date from, Date to);

/// The weekday's number with Sunday as the first day of the week: Sunday 1 to Saturday 7. Raises
/// error 6 unless IsValidDate.
std::int32_t WeekdayNumber(Date date);

}  // namespace nimbrel::platform
