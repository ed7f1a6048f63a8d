#include "platform/date.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <limits>

#include "tests/platform/support.h"

namespace nimbrel::platform {
namespace {

Date At(int year, int month, int day, int hour, int minute = 0, int second = 0) {
  return MakeDate(CivilTime{year, month, day, hour, minute, second});
}

/// Second method: the standard library's calendar.
std::chrono::sys_days StandardDay(int year, int month, int day) {
  return std::chrono::sys_days{std::chrono::year{year} /
                               std::chrono::month{static_cast<unsigned>(month)} /
                               std::chrono::day{static_cast<unsigned>(day)}};
}

const std::chrono::sys_days kStandardDayZero = StandardDay(1899, 12, 30);

TEST(Date, DayZeroIsThe30thOfDecember1899) {
  EXPECT_EQ(SerialDay(1899, 12, 30), 0);
  EXPECT_EQ(MakeDate(1899, 12, 30), Date{0.0});
  EXPECT_EQ(SerialDay(1899, 12, 31), 1);
  EXPECT_EQ(SerialDay(1899, 12, 29), -1);
}

TEST(Date, TheRangeRunsFromTheYear100To9999) {
  EXPECT_EQ(SerialDay(100, 1, 1), kFirstSerialDay);
  EXPECT_EQ(SerialDay(9999, 12, 31), kLastSerialDay);
  EXPECT_FALSE(IsCalendarDay(99, 12, 31));
  EXPECT_FALSE(IsCalendarDay(10000, 1, 1));
  EXPECT_TRUE(IsValidDate(At(100, 1, 1, 23, 59, 59)));
  EXPECT_TRUE(IsValidDate(At(9999, 12, 31, 23, 59, 59)));
  EXPECT_FALSE(IsValidDate(Date{kFirstSerialDay - 1.0}));
  EXPECT_FALSE(IsValidDate(Date{kLastSerialDay + 1.0}));
  EXPECT_FALSE(IsValidDate(Date{std::numeric_limits<double>::quiet_NaN()}));
}

TEST(Date, EveryDayOfTheRangeAgreesWithTheStandardLibraryBothWays) {
  for (std::int32_t day = kFirstSerialDay; day <= kLastSerialDay; ++day) {
    const CivilTime civil = ToCivil(Date{static_cast<double>(day)});
    const std::chrono::year_month_day expected{kStandardDayZero + std::chrono::days{day}};
    ASSERT_EQ(civil.year, static_cast<int>(expected.year())) << day;
    ASSERT_EQ(civil.month, static_cast<int>(static_cast<unsigned>(expected.month()))) << day;
    ASSERT_EQ(civil.day, static_cast<int>(static_cast<unsigned>(expected.day()))) << day;
    ASSERT_EQ(SerialDay(civil.year, civil.month, civil.day), day);
  }
}

TEST(Date, ADayThatTheMonthDoesNotHaveRaises) {
  EXPECT_EQ(ErrorOf([] { SerialDay(2023, 2, 29); }), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([] { SerialDay(1900, 2, 29); }), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([] { MakeDate(2024, 4, 31); }), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([] { MakeDate(2024, 13, 1); }), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([] { MakeDate(2024, 0, 1); }), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([] { MakeDate(2024, 1, 0); }), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([] { MakeDate(99, 1, 1); }), kInvalidProcedureCall);
}

TEST(Date, LeapDaysFollowTheGregorianRule) {
  EXPECT_EQ(DaysInMonth(2024, 2), 29);
  EXPECT_EQ(DaysInMonth(2023, 2), 28);
  EXPECT_EQ(DaysInMonth(1900, 2), 28);
  EXPECT_EQ(DaysInMonth(2000, 2), 29);
  EXPECT_EQ(SerialDay(2024, 3, 1) - SerialDay(2024, 2, 28), 2);
}

TEST(Date, ATimeOutsideTheDayRaises) {
  EXPECT_EQ(ErrorOf([] { At(2024, 1, 1, 24); }), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([] { At(2024, 1, 1, 0, 60); }), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([] { At(2024, 1, 1, 0, 0, -1); }), kInvalidProcedureCall);
}

TEST(Date, TheFractionIsTheTimeOfDay) {
  EXPECT_DOUBLE_EQ(At(1899, 12, 31, 18).serial, 1.75);
  EXPECT_EQ(ToCivil(Date{1.75}), (CivilTime{1899, 12, 31, 18, 0, 0}));
}

TEST(Date, BeforeDayZeroTheFractionCountsForwardFromMidnightToo) {
  EXPECT_DOUBLE_EQ(At(1899, 12, 29, 6).serial, -1.25);
  EXPECT_EQ(ToCivil(Date{-1.25}), (CivilTime{1899, 12, 29, 6, 0, 0}));
  EXPECT_EQ(DayOf(Date{-1.25}), Date{-1.0});
}

TEST(Date, AMomentIsRoundedToTheNearestSecond) {
  const Date noon = At(2024, 5, 1, 12);
  EXPECT_EQ(ToCivil(noon + 0.4 / 86400), (CivilTime{2024, 5, 1, 12, 0, 0}));
  EXPECT_EQ(ToCivil(noon + 0.6 / 86400), (CivilTime{2024, 5, 1, 12, 0, 1}));
}

TEST(Date, RoundingToTheSecondCarriesIntoTheNextDay) {
  EXPECT_EQ(ToCivil(MakeDate(2024, 3, 1) - 0.4 / 86400), (CivilTime{2024, 3, 1, 0, 0, 0}));
  EXPECT_EQ(ToCivil(Date{-1.0 - 86399.6 / 86400}), (CivilTime{1899, 12, 30, 0, 0, 0}));
}

TEST(Date, TheLastHalfSecondOf9999StaysInIt) {
  EXPECT_EQ(ToCivil(Date{kLastSerialDay + 1 - 0.1 / 86400}), (CivilTime{9999, 12, 31, 23, 59, 59}));
}

TEST(Date, AMomentOutsideTheRangeHasNoCalendarDay) {
  EXPECT_EQ(ErrorOf([] { ToCivil(Date{kLastSerialDay + 1.0}); }), kOverflow);
  EXPECT_EQ(ErrorOf([] { ToCivil(Date{std::numeric_limits<double>::infinity()}); }), kOverflow);
  EXPECT_EQ(ErrorOf([] { ToCivil(Date{std::numeric_limits<double>::quiet_NaN()}); }), kOverflow);
}

RC_GTEST_PROP(DateProperty, EverySecondComesBackFromItsMoment, ()) {
  const CivilTime civil = *AnyCivilTime();
  RC_ASSERT(ToCivil(MakeDate(civil)) == civil);
}

RC_GTEST_PROP(DateProperty, TheDayOfAMomentIsItsMidnight, ()) {
  const CivilTime civil = *AnyCivilTime();
  RC_ASSERT(DayOf(MakeDate(civil)) == MakeDate(civil.year, civil.month, civil.day));
}

TEST(AddDays, HalvesGoToTheEvenNeighbour) {
  const Date start = MakeDate(2024, 1, 10);
  EXPECT_EQ(AddDays(start, 0.5), start);
  EXPECT_EQ(AddDays(start, 1.5), MakeDate(2024, 1, 12));
  EXPECT_EQ(AddDays(start, 2.5), MakeDate(2024, 1, 12));
  EXPECT_EQ(AddDays(start, -0.5), start);
  EXPECT_EQ(AddDays(start, -1.5), MakeDate(2024, 1, 8));
}

TEST(AddDays, OtherFractionsGoToTheNearestDay) {
  const Date start = MakeDate(2024, 1, 10);
  EXPECT_EQ(AddDays(start, 36.0 / 24 - 0.01), MakeDate(2024, 1, 11));
  EXPECT_EQ(AddDays(start, 2.51), MakeDate(2024, 1, 13));
  EXPECT_EQ(AddDays(start, -2.51), MakeDate(2024, 1, 7));
}

TEST(AddDays, KeepsTheTimeOfDayAcrossDayZero) {
  EXPECT_DOUBLE_EQ(AddDays(At(1899, 12, 29, 6), 2).serial, 1.25);
  EXPECT_DOUBLE_EQ(AddDays(At(1899, 12, 31, 6), -2).serial, -1.25);
}

TEST(AddDays, RaisesOutsideTheRange) {
  EXPECT_EQ(AddDays(MakeDate(9999, 12, 30), 1), MakeDate(9999, 12, 31));
  EXPECT_EQ(AddDays(MakeDate(100, 1, 2), -1), MakeDate(100, 1, 1));
  EXPECT_EQ(ErrorOf([] { AddDays(MakeDate(9999, 12, 31), 1); }), kOverflow);
  EXPECT_EQ(ErrorOf([] { AddDays(MakeDate(100, 1, 1), -1); }), kOverflow);
  EXPECT_EQ(ErrorOf([] { AddDays(Date{0}, 1e300); }), kOverflow);
  EXPECT_EQ(ErrorOf([] { AddDays(Date{0}, std::numeric_limits<double>::quiet_NaN()); }), kOverflow);
}

RC_GTEST_PROP(AddDaysProperty, MovesTheCalendarDayAndKeepsTheTime, ()) {
  CivilTime civil = *AnyCivilTime();
  const std::int32_t from = SerialDay(civil.year, civil.month, civil.day);
  const std::int32_t to = *Evenly(kFirstSerialDay, kLastSerialDay);
  const CivilTime moved = ToCivil(AddDays(MakeDate(civil), to - from));
  const CivilTime day = ToCivil(Date{static_cast<double>(to)});
  civil.year = day.year;
  civil.month = day.month;
  civil.day = day.day;
  RC_ASSERT(moved == civil);
}

TEST(AddMonths, ADayThatTheMonthDoesNotHaveBecomesItsLast) {
  EXPECT_EQ(AddMonths(MakeDate(2023, 1, 31), 1), MakeDate(2023, 2, 28));
  EXPECT_EQ(AddMonths(MakeDate(2024, 1, 31), 1), MakeDate(2024, 2, 29));
  EXPECT_EQ(AddMonths(MakeDate(2024, 3, 31), 1), MakeDate(2024, 4, 30));
  EXPECT_EQ(AddMonths(MakeDate(2024, 2, 29), 12), MakeDate(2025, 2, 28));
  EXPECT_EQ(AddMonths(MakeDate(2024, 3, 31), -1), MakeDate(2024, 2, 29));
}

TEST(AddMonths, KeepsTheDayAndTheTime) {
  EXPECT_EQ(AddMonths(At(2023, 11, 15, 22), 2), At(2024, 1, 15, 22));
  EXPECT_EQ(AddMonths(At(2024, 1, 15, 22), -1), At(2023, 12, 15, 22));
  EXPECT_EQ(AddMonths(At(1899, 11, 29, 6), 1), At(1899, 12, 29, 6));
}

TEST(AddMonths, RaisesOutsideTheRange) {
  EXPECT_EQ(ErrorOf([] { AddMonths(MakeDate(9999, 12, 1), 1); }), kOverflow);
  EXPECT_EQ(ErrorOf([] { AddMonths(MakeDate(100, 1, 1), -1); }), kOverflow);
  EXPECT_EQ(
      ErrorOf([] { AddMonths(MakeDate(2024, 1, 1), std::numeric_limits<std::int32_t>::max()); }),
      kOverflow);
  EXPECT_EQ(
      ErrorOf([] { AddMonths(MakeDate(2024, 1, 1), std::numeric_limits<std::int32_t>::min()); }),
      kOverflow);
  EXPECT_EQ(ErrorOf([] { AddMonths(Date{1e9}, 0); }), kOverflow);
}

RC_GTEST_PROP(AddMonthsProperty, AgreesWithTheStandardLibrary, ()) {
  namespace chrono = std::chrono;
  const CivilTime civil = *AnyCivilTime();
  const int to = *Evenly(100 * 12, 9999 * 12 + 11);
  const int months = to - (civil.year * 12 + civil.month - 1);
  const chrono::year_month target =
      chrono::year{civil.year} / chrono::month{static_cast<unsigned>(civil.month)} +
      chrono::months{months};
  chrono::year_month_day expected = target / chrono::day{static_cast<unsigned>(civil.day)};
  if (!expected.ok()) {
    expected = target / chrono::last;
  }
  const Date moved = AddMonths(MakeDate(civil), months);
  RC_ASSERT(DayOf(moved).serial == (chrono::sys_days{expected} - kStandardDayZero).count());
  const CivilTime after = ToCivil(moved);
  RC_ASSERT(after.hour == civil.hour);
  RC_ASSERT(after.minute == civil.minute);
  RC_ASSERT(after.second == civil.second);
}

TEST(DaysBetween, CountsMidnightsAndNotHours) {
  EXPECT_EQ(DaysBetween(At(2024, 1, 1, 23, 59, 59), At(2024, 1, 2, 0, 0, 1)), 1);
  EXPECT_EQ(DaysBetween(At(2024, 1, 1, 0), At(2024, 1, 1, 23, 59, 59)), 0);
  EXPECT_EQ(DaysBetween(At(2024, 1, 2, 0), At(2024, 1, 1, 22)), -1);
  EXPECT_EQ(DaysBetween(At(1899, 12, 28, 18), At(1900, 1, 1, 6)), 4);
  EXPECT_EQ(DaysBetween(MakeDate(100, 1, 1), MakeDate(9999, 12, 31)),
            kLastSerialDay - kFirstSerialDay);
}

TEST(DaysBetween, RaisesOutsideTheRange) {
  EXPECT_EQ(ErrorOf([] { DaysBetween(Date{0}, Date{1e12}); }), kOverflow);
  EXPECT_EQ(ErrorOf([] { DaysBetween(Date{-1e12}, Date{0}); }), kOverflow);
}

TEST(WeekdayNumber, RunsFromSunday1ToSaturday7) {
  // 7 January 2024 was a Sunday.
  for (int day = 7; day <= 13; ++day) {
    EXPECT_EQ(WeekdayNumber(MakeDate(2024, 1, day)), day - 6);
  }
  EXPECT_EQ(WeekdayNumber(At(2024, 1, 13, 23, 59, 59)), 7);
}

TEST(WeekdayNumber, AgreesWithTheStandardLibraryOnEveryDay) {
  for (std::int32_t day = kFirstSerialDay; day <= kLastSerialDay; ++day) {
    const std::chrono::weekday expected{kStandardDayZero + std::chrono::days{day}};
    ASSERT_EQ(WeekdayNumber(Date{static_cast<double>(day)}),
              static_cast<std::int32_t>(expected.c_encoding()) + 1)
        << day;
  }
}

TEST(WeekdayNumber, RaisesOutsideTheRange) {
  EXPECT_EQ(ErrorOf([] { WeekdayNumber(Date{1e12}); }), kOverflow);
}

}  // namespace
}  // namespace nimbrel::platform
