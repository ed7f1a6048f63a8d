#include "engine/formats/xer_calendar.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/formats/reading.h"
#include "tests/formats/xer_text.h"

namespace nimbrel::engine {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// 2027-03-01 is a Monday; as a serial day it is 46447 (42 years from 1985-03-01 = 31107).
constexpr std::int32_t kMonday = 46447;

CalendarDefinition Read(const std::string& data) {
  CalendarBuilder builder;
  ReadXerCalendar(data, builder);
  return builder.Build("C");
}

std::string FailureOf(const std::string& data) {
  CalendarBuilder builder;
  try {
    ReadXerCalendar(data, builder);
  } catch (const XerCalendarError& error) {
    return error.what();
  }
  return "no error";
}

TEST(XerCalendar, SerialDaysCountFromTheEndOf1899) {
  EXPECT_EQ(kMonday, At("2027-03-01").day());
  EXPECT_EQ(WeekdayOf(kMonday), 0);
}

TEST(XerCalendar, WeekdaysCountFromSunday) {
  const CalendarDefinition calendar =
      Read(XerText::Data({"", XerText::Shift("07:00", "15:30"), "", "", "", "", ""}));
  EXPECT_THAT(calendar.week[0], ElementsAre(Shift{420, 930}));
  EXPECT_THAT(calendar.week[1], IsEmpty());
  EXPECT_THAT(calendar.week[6], IsEmpty());
}

TEST(XerCalendar, NodesMayStandWithAnyGapsBetweenThem) {
  const std::string plain = XerText::FiveDays("(0||0(d|46447)())");
  for (const std::string gap : {"", "\x7f\x7f", "  ", "\n", "\r\n\t"}) {
    std::string spread;
    for (const char letter : plain) {
      spread += letter;
      spread += letter == ')' ? gap : "";
    }
    EXPECT_EQ(Read(spread), Read(plain)) << "gap of " << gap.size();
  }
}

TEST(XerCalendar, AShiftMayNameItsEndFirst) {
  const CalendarDefinition calendar =
      Read(XerText::Data({"", "(0||0(f|16:00|s|08:00)())", "", "", "", "", ""}));
  EXPECT_THAT(calendar.week[0], ElementsAre(Shift{480, 960}));
}

TEST(XerCalendar, TheSameTimeTwiceIsAWholeDay) {
  for (const auto& [begin, end] :
       {std::pair("00:00", "00:00"), std::pair("0", "0"), std::pair("0:00", "24:00")}) {
    const CalendarDefinition calendar =
        Read(XerText::Data({"", XerText::Shift(begin, end), "", "", "", "", ""}));
    EXPECT_THAT(calendar.week[0], ElementsAre(Shift{0, 1440})) << begin << " to " << end;
    EXPECT_THAT(calendar.week[1], IsEmpty());
  }
}

TEST(XerCalendar, AShiftToTheLastMinuteEndsWithTheDay) {
  const CalendarDefinition calendar = Read(XerText::Data(
      {"", XerText::Shift("00:00", "23:59"), XerText::Shift("13:00", "11:59PM"), "", "", "", ""}));
  EXPECT_THAT(calendar.week[0], ElementsAre(Shift{0, 1440}));
  EXPECT_THAT(calendar.week[1], ElementsAre(Shift{780, 1440}));
}

TEST(XerCalendar, TimesMayBeOfTheTwelveHourClock) {
  const CalendarDefinition calendar =
      Read(XerText::Data({"", XerText::Shift("12:00 AM", "12:30 PM"),
                          XerText::Shift("01:15 pm", "11:45PM"), "", "", "", ""}));
  EXPECT_THAT(calendar.week[0], ElementsAre(Shift{0, 750}));
  EXPECT_THAT(calendar.week[1], ElementsAre(Shift{795, 1425}));
}

TEST(XerCalendar, AShiftPastMidnightGoesOnInTheNextDay) {
  const CalendarDefinition calendar = Read(XerText::Data(
      {"", "", "", "", "", XerText::Shift("08:00", "12:00"), XerText::Shift("22:00", "06:00")}));
  EXPECT_THAT(calendar.week[5], ElementsAre(Shift{1320, 1440}));  // Saturday
  EXPECT_THAT(calendar.week[6], ElementsAre(Shift{0, 360}));      // Sunday
}

TEST(XerCalendar, AHolidayTakesItsNightShiftAndLeavesTheOneOfTheDayBefore) {
  const std::string night = XerText::Shift("22:00", "06:00");
  const CalendarDefinition calendar =
      Read(XerText::Data({night, night, night, night, night, night, night},
                         "(0||0(d|" + std::to_string(kMonday) + ")())"));
  EXPECT_THAT(PatternOn(calendar, kMonday - 1), ElementsAre(Shift{0, 360}, Shift{1320, 1440}));
  EXPECT_THAT(PatternOn(calendar, kMonday), ElementsAre(Shift{0, 360}));
  EXPECT_THAT(PatternOn(calendar, kMonday + 1), ElementsAre(Shift{1320, 1440}));
  EXPECT_THAT(PatternOn(calendar, kMonday + 2), ElementsAre(Shift{0, 360}, Shift{1320, 1440}));
}

TEST(XerCalendar, ASingleDayMayBeWorkedOtherwise) {
  const std::string saturday = std::to_string(kMonday + 5);
  const CalendarDefinition calendar = Read(
      XerText::FiveDays("(0||0(d|" + saturday + ")(" + XerText::Shift("09:00", "13:00") + "))"));
  EXPECT_THAT(PatternOn(calendar, kMonday + 5), ElementsAre(Shift{540, 780}));
  EXPECT_THAT(PatternOn(calendar, kMonday + 12), IsEmpty());
}

TEST(XerCalendar, TouchingShiftsBecomeOne) {
  const CalendarDefinition calendar =
      Read(XerText::Data({"", XerText::Shift("12:00", "17:00") + XerText::Shift("08:00", "12:00"),
                          "", "", "", "", ""}));
  EXPECT_THAT(calendar.week[0], ElementsAre(Shift{480, 1020}));
}

TEST(XerCalendar, SingleDaysOutsideTheYearsOfAPlanAreCounted) {
  CalendarBuilder builder;
  EXPECT_EQ(
      ReadXerCalendar(XerText::FiveDays("(0||0(d|2)())(0||1(d|99999999999)())(0||2(d|46447)())"),
                      builder),
      2);
  EXPECT_EQ(builder.exception_count(), 1u);
}

TEST(XerCalendar, MalformedDataIsRefused) {
  const std::string whole = XerText::FiveDays("(0||0(d|46447)())");
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_NE(FailureOf(whole.substr(0, length)), "no error") << "cut after " << length;
  }
  EXPECT_EQ(FailureOf(whole), "no error");
  EXPECT_THAT(FailureOf(whole + "x"), HasSubstr("found \"x\""));
  EXPECT_THAT(FailureOf("(0||Calendar()())"), HasSubstr("\"CalendarData\""));
  EXPECT_THAT(FailureOf("(0||CalendarData()((0||DaysOfWeek()((0||8()())))))"),
              HasSubstr("a weekday from 1 (Sunday) to 7"));
  for (const std::string clock : {"25:00", "24:01", "8:60", "-1:00", "x", "", "13:00 pm"}) {
    EXPECT_THAT(FailureOf(XerText::Data({XerText::Shift(clock, "12:00")})),
                HasSubstr("a time of day"))
        << clock;
  }
  EXPECT_THAT(FailureOf(XerText::FiveDays("(0||0(d|x)())")), HasSubstr("the day of an exception"));
}

TEST(XerCalendar, EndlessBracketsAreRefused) {
  std::string deep;
  for (int i = 0; i < 100000; ++i) {
    deep += "(0||CalendarData()(";
  }
  EXPECT_THAT(FailureOf(deep), HasSubstr("at most 32 levels"));
}

}  // namespace
}  // namespace nimbrel::engine
