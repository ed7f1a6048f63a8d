#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/formats/mspdi_text.h"
#include "tests/formats/reading.h"

namespace nimbrel::engine {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// 1 March 2027 is a Monday.
const std::int32_t kMonday = At("2027-03-01").day();
const DayPattern kStandardDay = {{480, 720}, {780, 1020}};

ReadResult ReadText(const MspdiText& text) {
  return ReadMspdi(text.Text(), "quay.xml", {});
}

/// The calendar of a file that has just this one.
CalendarDefinition Read(const std::string& inside) {
  const ReadResult result = ReadText(MspdiText().Calendar(1, "Standard", inside));
  return *result.plan.FindCalendar("Standard");
}

std::string WeekDays(const std::string& days) {
  return Xml({{"WeekDays", days}});
}
std::string Exceptions(const std::string& period, const std::string& rest) {
  return Xml({{"Exceptions", Xml({{"Exception", period + rest}})}});
}

TEST(MspdiCalendar, WeekdaysCountFromSunday) {
  const CalendarDefinition calendar =
      Read(WeekDays(MspdiText::Day(1, {{"09:00:00", "10:00:00"}}) + MspdiText::Day(2, {}) +
                    MspdiText::Day(7, {{"11:00:00", "12:30:00"}})));
  EXPECT_THAT(calendar.week[6], ElementsAre(Shift{540, 600}));
  EXPECT_THAT(calendar.week[0], IsEmpty());
  EXPECT_THAT(calendar.week[5], ElementsAre(Shift{660, 750}));
}

TEST(MspdiCalendar, WeekdaysWithoutAWordAreTheUsualOnes) {
  const CalendarDefinition calendar = Read(WeekDays(MspdiText::Day(2, {})));
  EXPECT_THAT(calendar.week[0], IsEmpty());
  EXPECT_EQ(calendar.week[1], kStandardDay);
  EXPECT_THAT(calendar.week[6], IsEmpty());
}

TEST(MspdiCalendar, AWorkedDayWithoutTimesHasTheUsualOnes) {
  EXPECT_EQ(
      Read(WeekDays(Xml({{"WeekDay", Xml({{"DayType", "7"}, {"DayWorking", "1"}})}}))).week[5],
      kStandardDay);
}

TEST(MspdiCalendar, AShiftFromMidnightToMidnightIsAWholeDay) {
  EXPECT_THAT(Read(WeekDays(MspdiText::Day(2, {{"00:00:00", "00:00:00"}}))).week[0],
              ElementsAre(Shift{0, 1440}));
  EXPECT_THAT(Read(WeekDays(MspdiText::Day(2, {{"23:00:00", "00:00:00"}}))).week[0],
              ElementsAre(Shift{1380, 1440}));
}

TEST(MspdiCalendar, OldExceptionsStandAmongTheWeekdays) {
  const CalendarDefinition calendar =
      Read(WeekDays(MspdiText::Day(0, {}, MspdiText::Period("2027-03-01", "2027-03-02")) +
                    MspdiText::Day(0, {{"08:00:00", "12:00:00"}},
                                   MspdiText::Period("2027-03-06", "2027-03-06"))));
  EXPECT_THAT(PatternOn(calendar, kMonday), IsEmpty());
  EXPECT_THAT(PatternOn(calendar, kMonday + 1), IsEmpty());
  EXPECT_EQ(PatternOn(calendar, kMonday + 2), kStandardDay);
  EXPECT_THAT(PatternOn(calendar, kMonday + 5), ElementsAre(Shift{480, 720}));
}

TEST(MspdiCalendar, OldExceptionsGiveWayToTheNewOnes) {
  // Every second day of the range is off; the old form can only say the whole range.
  const CalendarDefinition calendar =
      Read(WeekDays(MspdiText::Day(0, {}, MspdiText::Period("2027-03-01", "2027-03-04"))) +
           Exceptions(MspdiText::Period("2027-03-01", "2027-03-04"),
                      Xml({{"Type", "7"}, {"Period", "2"}, {"DayWorking", "0"}})));
  EXPECT_THAT(PatternOn(calendar, kMonday), IsEmpty());
  EXPECT_EQ(PatternOn(calendar, kMonday + 1), kStandardDay);
  EXPECT_THAT(PatternOn(calendar, kMonday + 2), IsEmpty());
}

TEST(MspdiCalendar, ExceptionsMayRecurAndMayBeWorked) {
  const CalendarDefinition calendar =
      Read(Exceptions(MspdiText::Period("2027-03-01", "2027-12-31"),
                      Xml({{"EnteredByOccurrences", "1"},
                           {"Occurrences", "2"},
                           {"Type", "6"},
                           {"Period", "1"},
                           {"DaysOfWeek", "64"}}) +
                          MspdiText::Work({{"06:00:00", "14:00:00"}})));
  EXPECT_THAT(PatternOn(calendar, kMonday + 5), ElementsAre(Shift{360, 840}));
  EXPECT_THAT(PatternOn(calendar, kMonday + 12), ElementsAre(Shift{360, 840}));
  EXPECT_THAT(PatternOn(calendar, kMonday + 19), IsEmpty());
}

TEST(MspdiCalendar, AWeekMayBeReplacedForATime) {
  const CalendarDefinition calendar = Read(
      Xml({{"WorkWeeks",
            Xml({{"WorkWeek", MspdiText::Period("2027-03-08", "2027-03-14") +
                                  WeekDays(MspdiText::Day(2, {{"10:00:00", "11:00:00"}}))}})}}) +
      Exceptions(MspdiText::Period("2027-03-15", "2027-03-15"), Xml({{"DayWorking", "0"}})));
  EXPECT_EQ(PatternOn(calendar, kMonday), kStandardDay);
  EXPECT_THAT(PatternOn(calendar, kMonday + 7), ElementsAre(Shift{600, 660}));
  EXPECT_EQ(PatternOn(calendar, kMonday + 8), kStandardDay);
  EXPECT_THAT(PatternOn(calendar, kMonday + 14), IsEmpty());
}

TEST(MspdiCalendar, ACalendarInheritsWhatItDoesNotSay) {
  MspdiText text;
  text.Calendar(1, "Standard",
                WeekDays(MspdiText::Day(0, {}, MspdiText::Period("2027-03-01", "2027-03-01"))));
  text.Calendar(2, "Long Fridays", WeekDays(MspdiText::Day(6, {{"06:00:00", "20:00:00"}})),
                {{"IsBaseCalendar", "1"}, {"BaseCalendarUID", "1"}});
  const CalendarDefinition calendar = *ReadText(text).plan.FindCalendar("Long Fridays");
  EXPECT_THAT(PatternOn(calendar, kMonday), IsEmpty());
  EXPECT_EQ(PatternOn(calendar, kMonday + 1), kStandardDay);
  EXPECT_THAT(PatternOn(calendar, kMonday + 4), ElementsAre(Shift{360, 1200}));
}

TEST(MspdiCalendar, CalendarsThatRestOnEachOtherInACircleAreRefused) {
  MspdiText text;
  text.Calendar(1, "A", "", {{"IsBaseCalendar", "1"}, {"BaseCalendarUID", "2"}});
  text.Calendar(2, "B", "", {{"IsBaseCalendar", "1"}, {"BaseCalendarUID", "1"}});
  EXPECT_THAT(ErrorOf([&] { ReadText(text); }), HasSubstr("found \"A\" resting on itself"));
}

TEST(MspdiCalendar, ExceptionsAreCutToTheYearsOfAPlan) {
  const ReadResult result = ReadText(MspdiText().Calendar(
      1, "Standard",
      WeekDays(MspdiText::Day(0, {}, MspdiText::Period("1949-12-01", "1950-01-02")))));
  EXPECT_EQ(result.plan.FindCalendar("Standard")->exceptions.size(), 2u);
  EXPECT_EQ(CountOf(result, "before 1950 or after 2150"), 1);
}

TEST(MspdiCalendar, BadValuesAreRefusedWithTheirLine) {
  const auto error_of = [](const std::string& inside) { return ErrorOf([&] { Read(inside); }); };
  EXPECT_EQ(error_of(WeekDays(MspdiText::Day(8, {}))),
            "quay.xml:10: expected a number from 0 to 7 in DayType, found \"8\"");
  EXPECT_THAT(error_of(WeekDays(MspdiText::Day(2, {{"8", "12:00:00"}}))),
              HasSubstr("expected a time of day as HH:MM:SS in FromTime, found \"8\""));
  EXPECT_THAT(error_of(WeekDays(MspdiText::Day(0, {}))),
              HasSubstr("expected FromDate and ToDate in TimePeriod"));
  EXPECT_THAT(error_of(Exceptions(MspdiText::Period("2027-02-30", "2027-03-01"), "")),
              HasSubstr("in FromDate, found \"2027-02-30T00:00:00\""));
  EXPECT_THAT(error_of(Exceptions(MspdiText::Period("2027-01-01", "2027-03-01"),
                                  Xml({{"Type", "5"}, {"MonthPosition", "5"}}))),
              HasSubstr("expected a number from 0 to 4 in MonthPosition"));
}

TEST(MspdiCalendar, EndlessExceptionsAreRefused) {
  std::string exceptions;
  for (int i = 0; i < 40; ++i) {
    exceptions += Xml({{"Exception", MspdiText::Period("1950-01-01", "2150-12-31")}});
  }
  EXPECT_THAT(ErrorOf([&] {
                Read(Xml({{"Exceptions", exceptions}}));
              }),
              HasSubstr("expected at most 2000000 single days in all calendars"));
}

}  // namespace
}  // namespace nimbrel::engine
