#include "platform/date.h"

#include <array>
#include <cmath>
#include <string>

#include "platform/number.h"
#include "platform/runtime_error.h"

namespace nimbrel::platform {
namespace {

constexpr int kFirstYear = 100;
constexpr int kLastYear = 9999;
constexpr double kSecondsPerDay = 86400.0;

// Years are counted from March here, so that the leap day is the last day of its year.
constexpr int kDaysPer4Years = 4 * 365 + 1;
constexpr int kDaysPer100Years = 25 * kDaysPer4Years - 1;
constexpr int kDaysPer400Years = 4 * kDaysPer100Years + 1;

// Days before each month of a year that begins in March.
constexpr std::array<int, 13> kDaysBeforeMonth = {0,   31,  61,  92,  122, 153, 184,
                                                  214, 245, 275, 306, 337, 366};

/// Days from 1 March of the year 0 to a day.
constexpr int DaysFromMarchZero(int year, int month, int day) {
  const int march_year = month > 2 ? year : year - 1;
  const int march_month = (month + 9) % 12;
  return march_year * 365 + march_year / 4 - march_year / 100 + march_year / 400 +
         kDaysBeforeMonth[static_cast<std::size_t>(march_month)] + day - 1;
}

constexpr int kEpoch = DaysFromMarchZero(1899, 12, 30);

/// A day and the part of it that has passed, in [0, 1).
struct Moment {
  double day;
  double fraction;
};

Moment Split(Date date) {
  const double day = std::trunc(date.serial) + 0.0;  // the sum makes a negative zero positive
  return {day, std::abs(date.serial - day)};
}

Date Join(Moment moment) {
  return {moment.day < 0 ? moment.day - moment.fraction : moment.day + moment.fraction};
}

[[noreturn]] void RaiseNoDate(double serial) {
  throw RuntimeError(kOverflow, "Overflow: " + std::to_string(serial) +
                                    " days from 30 December 1899 is no date of the years 100 to "
                                    "9999");
}

void Require(Date date) {
  if (!IsValidDate(date)) {
    RaiseNoDate(date.serial);
  }
}

/// Fills in the calendar day of a day of the valid range.
void SetDay(std::int32_t serial_day, CivilTime& civil) {
  int rest = serial_day + kEpoch;
  const int centuries4 = rest / kDaysPer400Years;
  rest %= kDaysPer400Years;
  // The last century of four and the last year of four have one day more than the division knows.
  const int centuries = rest / kDaysPer100Years - rest / (kDaysPer400Years - 1);
  rest -= centuries * kDaysPer100Years;
  const int years4 = rest / kDaysPer4Years;
  rest %= kDaysPer4Years;
  const int years = rest / 365 - rest / (kDaysPer4Years - 1);
  rest -= years * 365;
  std::size_t march_month = 0;
  while (rest >= kDaysBeforeMonth[march_month + 1]) {
    ++march_month;
  }
  civil.day = rest - kDaysBeforeMonth[march_month] + 1;
  civil.month = static_cast<int>((march_month + 2) % 12 + 1);
  civil.year = 400 * centuries4 + 100 * centuries + 4 * years4 + years + (civil.month <= 2 ? 1 : 0);
}

}  // namespace

bool IsCalendarDay(int year, int month, int day) {
  return year >= kFirstYear && year <= kLastYear && month >= 1 && month <= 12 && day >= 1 &&
         day <= DaysInMonth(year, month);
}

bool IsValidDate(Date date) {
  return date.serial > kFirstSerialDay - 1 && date.serial < kLastSerialDay + 1;
}

std::int32_t SerialDay(int year, int month, int day) {
  if (!IsCalendarDay(year, month, day)) {
    throw RuntimeError(kInvalidProcedureCall,
                       "No day of the calendar: year " + std::to_string(year) + ", month " +
                           std::to_string(month) + ", day " + std::to_string(day));
  }
  return DaysFromMarchZero(year, month, day) - kEpoch;
}

int DaysInMonth(int year, int month) {
  if (month == 2) {
    const bool leap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
    return leap ? 29 : 28;
  }
  return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}

Date MakeDate(int year, int month, int day) {
  return {static_cast<double>(SerialDay(year, month, day))};
}

Date MakeDate(const CivilTime& civil) {
  if (civil.hour < 0 || civil.hour > 23 || civil.minute < 0 || civil.minute > 59 ||
      civil.second < 0 || civil.second > 59) {
    throw RuntimeError(kInvalidProcedureCall, "No time of day: " + std::to_string(civil.hour) +
                                                  ":" + std::to_string(civil.minute) + ":" +
                                                  std::to_string(civil.second));
  }
  const int seconds = (civil.hour * 60 + civil.minute) * 60 + civil.second;
  return Join({static_cast<double>(SerialDay(civil.year, civil.month, civil.day)),
               seconds / kSecondsPerDay});
}

CivilTime ToCivil(Date date) {
  Require(date);
  const Moment moment = Split(date);
  auto day = static_cast<std::int32_t>(moment.day);
  auto seconds = static_cast<int>(std::lround(moment.fraction * kSecondsPerDay));
  if (seconds == static_cast<int>(kSecondsPerDay)) {
    if (day < kLastSerialDay) {
      ++day;
      seconds = 0;
    } else {
      --seconds;
    }
  }
  CivilTime civil;
  SetDay(day, civil);
  civil.hour = seconds / 3600;
  civil.minute = seconds / 60 % 60;
  civil.second = seconds % 60;
  return civil;
}

Date DayOf(Date date) {
  return {Split(date).day};
}

Date AddDays(Date date, double days) {
  const double whole = RoundHalfEven(days);
  Moment moment = Split(date);
  moment.day += whole;
  const Date result = Join(moment);
  Require(result);
  return result;
}

Date AddMonths(Date date, std::int32_t months) {
  Require(date);
  const Moment moment = Split(date);
  CivilTime civil;
  SetDay(static_cast<std::int32_t>(moment.day), civil);
  constexpr std::int64_t kFirstMonth = std::int64_t{kFirstYear} * 12;
  constexpr std::int64_t kLastMonth = std::int64_t{kLastYear} * 12 + 11;
  const std::int64_t month = std::int64_t{civil.year} * 12 + civil.month - 1 + months;
  if (month < kFirstMonth || month > kLastMonth) {
    throw RuntimeError(kOverflow, "Overflow: " + std::to_string(months) + " months from the year " +
                                      std::to_string(civil.year) +
                                      " is no date of the years 100 to 9999");
  }
  civil.year = static_cast<int>(month / 12);
  civil.month = static_cast<int>(month % 12) + 1;
  const int last = DaysInMonth(civil.year, civil.month);
  civil.day = civil.day < last ? civil.day : last;
  return Join(
      {static_cast<double>(SerialDay(civil.year, civil.month, civil.day)), moment.fraction});
}

std::int32_t DaysBetween(Date from, Date to) {
  Require(from);
  Require(to);
  return static_cast<std::int32_t>(to.serial) - static_cast<std::int32_t>(from.serial);
}

std::int32_t WeekdayNumber(Date date) {
  Require(date);
  // Day zero was a Saturday; the shift makes the day number positive.
  constexpr std::int32_t kWeeks = 7 * 100000;
  return (static_cast<std::int32_t>(date.serial) + kWeeks + 6) % 7 + 1;
}

}  // namespace nimbrel::platform
