#include "engine/calendar/work_table.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <algorithm>

#include "tests/support/schedule/minute_calendar.h"
#include "tests/support/schedule/random_plan.h"

namespace nimbrel::test {
namespace {

using engine::CalendarDefinition;
using engine::DayPattern;
using engine::Instant;
using engine::WorkCalendar;
using engine::WorkTable;

constexpr std::int32_t kMonday = 46447;  // 1 March 2027
constexpr std::int32_t kDays = 60;

/// A calendar with random weeks, holidays and taken days around kMonday.
CalendarDefinition RandomCalendar(Dice& dice) {
  const std::vector<DayPattern> patterns{{{480, 720}, {780, 1020}},
                                         {{0, 1440}},
                                         {{0, 300}, {1320, 1440}},
                                         {{480, 481}},
                                         {{1439, 1440}},
                                         {{0, 1}, {2, 3}},
                                         {{360, 1200}}};
  const auto any = [&] { return patterns[static_cast<std::size_t>(dice.Below(7))]; };
  CalendarDefinition calendar;
  const DayPattern usual = any();
  const bool is_uniform = dice.OneIn(2);
  for (DayPattern& day : calendar.week) {
    day = dice.OneIn(3) ? DayPattern{} : is_uniform ? usual : any();
  }
  calendar.week[0] = usual;
  for (std::int32_t i = dice.Below(6); i > 0; --i) {
    calendar.exceptions[kMonday + dice.Below(kDays)] = dice.OneIn(2) ? DayPattern{}
                                                       : is_uniform  ? usual
                                                                     : any();
  }
  if (dice.OneIn(2)) {
    const std::int32_t day = kMonday + dice.Below(kDays);
    calendar.taken.push_back({day, day + dice.Below(9)});
  }
  return calendar;
}

/// The minutes of a calendar without its taken days and those that are not in `others`.
MinuteCalendar MinutesOf(const CalendarDefinition& calendar, const engine::DayBits* others) {
  return {kMonday - 20, kDays + 200, [&](std::int32_t day) {
            const bool is_off = IsTaken(calendar, day) || (others != nullptr && !others->Test(day));
            return is_off ? DayPattern{} : PatternOn(calendar, day);
          }};
}

/// Compares a table with the minutes, at every moment that has anything of interest about it.
void ExpectSameTime(WorkTable& table, const MinuteCalendar& minutes, Dice& dice) {
  // Up to ten weeks of work: what the minutes hold.
  const std::int64_t week =
      minutes.WorkBetween(Instant(kMonday + 70, 0).Minutes(), Instant(kMonday + 77, 0).Minutes());
  const std::int64_t origin = Instant(kMonday, 0).Minutes();
  const std::int32_t at_origin = table.Position({kMonday, 0});
  for (std::int32_t i = 0; i < 40; ++i) {
    const std::int32_t minute = dice.OneIn(3) ? 60 * dice.Below(25) : dice.Below(1441);
    const Instant moment(kMonday + dice.Below(kDays), minute);
    const std::int32_t position = table.Position(moment);
    RC_ASSERT(position - at_origin == minutes.WorkBetween(origin, moment.Minutes()));
    const Instant start = table.StartAt(position);
    RC_ASSERT(start.Minutes() == minutes.NextStart(moment.Minutes()));
    RC_ASSERT(start.minute() < engine::kMinutesPerDay);
    const std::int32_t length = dice.Between(1, static_cast<std::int32_t>(10 * week));
    const std::int64_t end = minutes.After(moment.Minutes(), length);
    const Instant finish = table.FinishAt(position + length);
    RC_ASSERT(finish.Minutes() == end);
    RC_ASSERT(finish.minute() > 0);
    if (table.is_uniform()) {
      const WorkTable::Span span = table.Place(moment.packed(), length);
      RC_ASSERT(span.start == start.packed());
      RC_ASSERT(span.finish == finish.packed());
    }
  }
}

std::uint64_t RandomSeed() {
  return *rc::gen::inRange<std::uint64_t>(0, 1'000'000'000);
}

TEST(WorkTable, CountsWorkAsTheMinutesDo) {
  EXPECT_TRUE(rc::check([] {
    Dice dice(RandomSeed());
    const CalendarDefinition definition = RandomCalendar(dice);
    const WorkCalendar calendar(definition);
    WorkTable table(calendar, {&calendar.worked()}, kMonday - 1000);
    ExpectSameTime(table, MinutesOf(definition, nullptr), dice);
  }));
}

TEST(WorkTable, HasOnlyTheDaysThatAllItsSourcesHave) {
  EXPECT_TRUE(rc::check([] {
    Dice dice(RandomSeed());
    const CalendarDefinition definition = RandomCalendar(dice);
    CalendarDefinition weather = engine::MakeWeekCalendar("Weather", 6, 8);
    weather.taken.push_back({kMonday + 3, kMonday + 3 + dice.Below(20)});
    const WorkCalendar calendar(definition);
    const WorkCalendar other(weather);
    WorkTable table(calendar, {&calendar.worked(), &other.worked()}, kMonday - 1000);
    ExpectSameTime(table, MinutesOf(definition, &other.worked()), dice);
  }));
}

TEST(WorkTable, RebuiltFromTheFirstChangedDayIsAsNew) {
  EXPECT_TRUE(rc::check([] {
    Dice dice(RandomSeed());
    CalendarDefinition definition = RandomCalendar(dice);
    WorkCalendar calendar(definition);
    WorkTable table(calendar, {&calendar.worked()}, kMonday - 1000);
    table.Position({kMonday + 3 * kDays, 0});  // built as far as it is used below
    for (std::int32_t i = 0; i < 4; ++i) {
      const std::int32_t first = kMonday + dice.Below(kDays);
      const std::int32_t last = first + dice.Below(12);
      if (dice.OneIn(3)) {
        calendar.GiveDays(first, last);
      } else {
        calendar.TakeDays(first, last);
      }
    }
    table.Rebuild(calendar.first_changed());
    CalendarDefinition as_it_stands = definition;
    as_it_stands.taken.clear();
    const auto hours_of = [&](std::int32_t day) {
      return calendar.worked().Test(day) ? PatternOn(definition, day) : DayPattern{};
    };
    ExpectSameTime(table, MinuteCalendar(kMonday - 20, kDays + 200, hours_of), dice);
  }));
}

TEST(WorkTable, GrowsToWhereItIsAskedFor) {
  const WorkCalendar calendar(engine::MakeWeekCalendar("Office", 5, 8));
  WorkTable table(calendar, {&calendar.worked()}, kMonday);
  // 52 weeks of five days of eight hours for 100 years: the Friday of the 5200th week.
  const std::int32_t monday = table.Position({kMonday, 0});
  EXPECT_EQ(table.FinishAt(monday + 5200 * 5 * 480), Instant(kMonday + 5200 * 7 - 3, 1020));
}

TEST(WorkTable, DoesNotReachBeyondTheYear2150) {
  const WorkCalendar calendar(engine::MakeWeekCalendar("Every day", 7, 24));
  WorkTable table(calendar, {&calendar.worked()}, engine::kLastCoveredDay - 99);
  const std::int32_t days = engine::kLastCoveredDay - table.first_day() + 1;
  EXPECT_EQ(table.last_day(), engine::kLastCoveredDay);
  EXPECT_EQ(table.FinishAt(days * 1440), Instant(engine::kLastCoveredDay, 1440));
  try {
    table.StartAt(days * 1440);
    FAIL();
  } catch (const engine::OutsideCalendars& error) {
    EXPECT_FALSE(error.is_before());
  }
}

TEST(WorkTable, DoesNotReachBeforeItsFirstDay) {
  const WorkCalendar calendar(engine::MakeWeekCalendar("Office", 5, 8));
  WorkTable table(calendar, {&calendar.worked()}, kMonday);
  EXPECT_THROW(table.Position({table.first_day() - 1, 480}), engine::OutsideCalendars);
  try {
    table.FinishAt(0);
    FAIL();
  } catch (const engine::OutsideCalendars& error) {
    EXPECT_TRUE(error.is_before());
  }
}

TEST(WorkTable, CapsMinutesAtMoreThanItCanHold) {
  const WorkCalendar calendar(engine::MakeWeekCalendar("Every day", 7, 24));
  WorkTable table(calendar, {&calendar.worked()}, engine::kFirstCoveredDay);
  EXPECT_EQ(table.CapMinutes(480), 480);
  const std::int32_t most = table.CapMinutes(std::numeric_limits<std::int32_t>::max());
  EXPECT_THROW(table.Place(Instant(engine::kFirstCoveredDay, 0).packed(), most),
               engine::OutsideCalendars);
  EXPECT_EQ(table.CapMinutes(-std::numeric_limits<std::int32_t>::max()), -most);
}

}  // namespace
}  // namespace nimbrel::test
