#include "engine/formats/recurrence.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/formats/reading.h"

namespace nimbrel::engine {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

Recurrence Between(std::int32_t type, const std::string& first, const std::string& last) {
  Recurrence recurrence;
  recurrence.type = type;
  recurrence.first = At(first).day();
  recurrence.last = At(last).day();
  return recurrence;
}

std::vector<std::string> DaysOf(const Recurrence& recurrence) {
  std::vector<std::string> days;
  ForEachDay(recurrence, [&days](std::int32_t day) {
    days.push_back(ToIsoText(Instant(day, 0)).substr(0, 10));
    return true;
  });
  return days;
}

// Expected days are read off a calendar: 1 January 2027 is a Friday.

TEST(Recurrence, DailyIsEveryDayOfTheRange) {
  EXPECT_THAT(DaysOf(Between(Recurrence::kDaily, "2027-01-01", "2027-01-03")),
              ElementsAre("2027-01-01", "2027-01-02", "2027-01-03"));
}

TEST(Recurrence, EverySoManyDays) {
  Recurrence recurrence = Between(Recurrence::kEveryDays, "2027-01-01", "2027-01-08");
  recurrence.period = 3;
  EXPECT_THAT(DaysOf(recurrence), ElementsAre("2027-01-01", "2027-01-04", "2027-01-07"));
}

TEST(Recurrence, EverySoManyWeekdays) {
  Recurrence recurrence = Between(Recurrence::kEveryWeekdays, "2027-01-01", "2027-01-08");
  recurrence.period = 2;
  EXPECT_THAT(DaysOf(recurrence), ElementsAre("2027-01-01", "2027-01-05", "2027-01-07"));
}

TEST(Recurrence, WeeksStartOnSundayAndTheFirstIsTheOneOfTheStart) {
  Recurrence recurrence = Between(Recurrence::kWeekly, "2027-01-01", "2027-01-31");
  recurrence.period = 2;
  recurrence.weekdays = 1 | 32;  // Sundays and Fridays
  EXPECT_THAT(DaysOf(recurrence),
              ElementsAre("2027-01-01", "2027-01-10", "2027-01-15", "2027-01-24", "2027-01-29"));
  recurrence.weekdays = 0;
  EXPECT_THAT(DaysOf(recurrence), IsEmpty());
}

TEST(Recurrence, MonthlyByDayTakesTheLastDayOfAShorterMonth) {
  Recurrence recurrence = Between(Recurrence::kMonthlyByDay, "2027-01-15", "2027-06-30");
  recurrence.month_day = 31;
  recurrence.period = 1;
  EXPECT_THAT(DaysOf(recurrence), ElementsAre("2027-01-31", "2027-02-28", "2027-03-31",
                                              "2027-04-30", "2027-05-31", "2027-06-30"));
  recurrence.month_day = 10;  // January's has gone by
  recurrence.period = 2;
  EXPECT_THAT(DaysOf(recurrence), ElementsAre("2027-03-10", "2027-05-10"));
}

TEST(Recurrence, MonthlyByPosition) {
  Recurrence recurrence = Between(Recurrence::kMonthlyByPosition, "2027-01-01", "2027-03-31");
  recurrence.month_item = 8;  // Friday
  recurrence.month_position = 0;
  EXPECT_THAT(DaysOf(recurrence), ElementsAre("2027-01-01", "2027-02-05", "2027-03-05"));
  recurrence.month_position = 3;
  EXPECT_THAT(DaysOf(recurrence), ElementsAre("2027-01-22", "2027-02-26", "2027-03-26"));
  recurrence.month_position = 4;
  EXPECT_THAT(DaysOf(recurrence), ElementsAre("2027-01-29", "2027-02-26", "2027-03-26"));
}

TEST(Recurrence, PositionsOfDaysWeekdaysAndDaysOfWeekends) {
  Recurrence recurrence = Between(Recurrence::kMonthlyByPosition, "2027-01-01", "2027-01-31");
  recurrence.month_position = 4;
  recurrence.month_item = 0;
  EXPECT_THAT(DaysOf(recurrence), ElementsAre("2027-01-31"));
  recurrence.month_item = 1;
  EXPECT_THAT(DaysOf(recurrence), ElementsAre("2027-01-29"));
  recurrence.month_item = 2;
  recurrence.month_position = 1;
  EXPECT_THAT(DaysOf(recurrence), ElementsAre("2027-01-03"));
}

TEST(Recurrence, Yearly) {
  Recurrence by_day = Between(Recurrence::kYearlyByDay, "2027-05-01", "2030-12-31");
  by_day.month = 3;  // April, which 2027 has behind it
  by_day.month_day = 2;
  EXPECT_THAT(DaysOf(by_day), ElementsAre("2028-04-02", "2029-04-02", "2030-04-02"));
  Recurrence by_position = Between(Recurrence::kYearlyByPosition, "2027-01-01", "2029-12-31");
  by_position.month = 10;  // fourth Thursday of November
  by_position.month_item = 7;
  by_position.month_position = 3;
  EXPECT_THAT(DaysOf(by_position), ElementsAre("2027-11-25", "2028-11-23", "2029-11-22"));
}

TEST(Recurrence, ANumberOfTimesEndsIt) {
  Recurrence recurrence = Between(Recurrence::kEveryDays, "2027-01-01", "2027-12-31");
  recurrence.most = 4;
  EXPECT_THAT(DaysOf(recurrence), SizeIs(4));
}

TEST(Recurrence, TheVisitorEndsIt) {
  int visited = 0;
  ForEachDay(Between(Recurrence::kDaily, "2027-01-01", "2027-12-31"),
             [&visited](std::int32_t) { return ++visited < 3; });
  EXPECT_EQ(visited, 3);
}

}  // namespace
}  // namespace nimbrel::engine
