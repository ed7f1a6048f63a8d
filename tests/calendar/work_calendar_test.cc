#include "engine/calendar/work_calendar.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <set>

#include "tests/support/schedule/random_plan.h"

namespace nimbrel::test {
namespace {

using engine::CalendarDefinition;
using engine::DayBits;
using engine::WorkCalendar;

constexpr std::int32_t kMonday = 46447;  // 1 March 2027

TEST(DayBits, CountsLikeASetOfDays) {
  EXPECT_TRUE(rc::check([] {
    Dice dice(*rc::gen::inRange<std::uint64_t>(0, 1'000'000'000));
    DayBits bits;
    std::set<std::int32_t> days;
    for (std::int32_t i = 0; i < 20; ++i) {
      const std::int32_t first = kMonday + dice.Below(300);
      const std::int32_t last = first + dice.Between(-3, 150);
      if (dice.OneIn(3)) {
        bits.Remove(first, last);
      } else {
        bits.Add(first, last);
      }
      for (std::int32_t day = first; day <= last; ++day) {
        if (bits.Test(day)) {
          days.insert(day);
        } else {
          days.erase(day);
        }
      }
      const std::int32_t from = kMonday + dice.Below(300);
      const std::int32_t to = from + dice.Between(-3, 200);
      std::int32_t count = 0;
      for (std::int32_t day = from; day <= to; ++day) {
        RC_ASSERT(bits.Test(day) == days.contains(day));
        count += days.contains(day) ? 1 : 0;
      }
      RC_ASSERT(bits.Count(from, to) == count);
    }
  }));
}

TEST(DayBits, HoldsTheCoveredDaysOnly) {
  DayBits bits;
  bits.Add(engine::kFirstCoveredDay - 10, engine::kLastCoveredDay + 10);
  EXPECT_FALSE(bits.Test(engine::kFirstCoveredDay - 1));
  EXPECT_TRUE(bits.Test(engine::kFirstCoveredDay));
  EXPECT_TRUE(bits.Test(engine::kLastCoveredDay));
  EXPECT_FALSE(bits.Test(engine::kLastCoveredDay + 1));
  EXPECT_EQ(bits.Count(0, 200000), engine::kLastCoveredDay - engine::kFirstCoveredDay + 1);
}

TEST(WorkCalendar, WorksOnTheDaysOfThePatternAndTheExceptions) {
  CalendarDefinition definition = engine::MakeWeekCalendar("Office", 5, 8);
  definition.exceptions[kMonday] = {};
  definition.exceptions[kMonday + 5] = {{480, 720}};
  const WorkCalendar calendar(definition);
  EXPECT_FALSE(calendar.worked().Test(kMonday));
  EXPECT_TRUE(calendar.worked().Test(kMonday + 1));
  EXPECT_TRUE(calendar.worked().Test(kMonday + 5));
  EXPECT_FALSE(calendar.worked().Test(kMonday + 6));
  EXPECT_EQ(calendar.HoursOn(kMonday + 1).minutes(), 480);
  EXPECT_EQ(calendar.HoursOn(kMonday + 5).minutes(), 240);
  EXPECT_FALSE(calendar.is_uniform());
}

TEST(WorkCalendar, IsUniformWhenOnlyWholeDaysDiffer) {
  CalendarDefinition definition = engine::MakeWeekCalendar("Office", 5, 8);
  definition.exceptions[kMonday] = {};
  definition.exceptions[kMonday + 5] = {{780, 1020}, {480, 600}, {600, 720}};
  EXPECT_TRUE(WorkCalendar(definition).is_uniform());
}

TEST(WorkCalendar, GivesBackWhatStoodBeforeADayWasTaken) {
  CalendarDefinition definition = engine::MakeWeekCalendar("Office", 5, 8);
  definition.exceptions[kMonday + 2] = {};
  WorkCalendar calendar(definition);
  calendar.TakeDays(kMonday, kMonday + 6);
  EXPECT_EQ(calendar.worked().Count(kMonday, kMonday + 6), 0);
  calendar.GiveDays(kMonday + 1, kMonday + 6);
  EXPECT_FALSE(calendar.worked().Test(kMonday));  // not given back
  EXPECT_TRUE(calendar.worked().Test(kMonday + 1));
  EXPECT_FALSE(calendar.worked().Test(kMonday + 2));  // a holiday
  EXPECT_FALSE(calendar.worked().Test(kMonday + 5));  // a Saturday
  EXPECT_EQ(calendar.worked().Count(kMonday, kMonday + 6), 3);
}

TEST(WorkCalendar, GivesBackDaysThatTheDefinitionHadTaken) {
  CalendarDefinition definition = engine::MakeWeekCalendar("Office", 5, 8);
  definition.taken = {{kMonday, kMonday + 1}};
  WorkCalendar calendar(definition);
  EXPECT_EQ(calendar.worked().Count(kMonday, kMonday + 6), 3);
  EXPECT_EQ(calendar.open().Count(kMonday, kMonday + 6), 5);
  calendar.GiveDays(kMonday, kMonday);
  EXPECT_EQ(calendar.worked().Count(kMonday, kMonday + 6), 4);
}

TEST(WorkCalendar, KnowsTheDaysThatChanged) {
  WorkCalendar calendar(engine::MakeWeekCalendar("Office", 5, 8));
  EXPECT_GT(calendar.first_changed(), calendar.last_changed());
  calendar.TakeDays(kMonday + 5, kMonday + 6);  // a weekend: nothing changes
  EXPECT_GT(calendar.first_changed(), calendar.last_changed());
  calendar.TakeDays(kMonday + 4, kMonday + 201);
  EXPECT_EQ(calendar.first_changed(), kMonday + 4);
  EXPECT_EQ(calendar.last_changed(), kMonday + 200);  // 201 is a Saturday
  calendar.ForgetChanges();
  calendar.TakeDays(kMonday + 7, kMonday + 8);  // taken already
  EXPECT_GT(calendar.first_changed(), calendar.last_changed());
}

TEST(WorkCalendar, TakesNothingWhenTheLastDayComesFirst) {
  WorkCalendar calendar(engine::MakeWeekCalendar("Office", 5, 8));
  calendar.TakeDays(kMonday + 3, kMonday + 2);
  EXPECT_EQ(calendar.worked().Count(kMonday, kMonday + 6), 5);
  EXPECT_EQ(calendar.worked().Count(kMonday + 3, kMonday + 2), 0);
}

TEST(WorkCalendar, WithoutWorkKnowsIt) {
  EXPECT_FALSE(WorkCalendar(engine::MakeWeekCalendar("Never", 0, 8)).has_work());
  CalendarDefinition once = engine::MakeWeekCalendar("Once", 0, 8);
  once.exceptions[kMonday] = {{480, 490}};
  EXPECT_TRUE(WorkCalendar(once).has_work());
}

}  // namespace
}  // namespace nimbrel::test
