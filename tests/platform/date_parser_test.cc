// Text as dates: what the parser reads, and that it reads back what the formatter writes.
#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "platform/locale.h"
#include "platform/text.h"
#include "tests/platform/support.h"

namespace nimbrel::platform {
namespace {

/// The date formats that a plan can have.
constexpr std::array<std::string_view, 15> kPlanFormats = {
    "DD/MM/YY",    "DD/MM/YYYY", "DD-MM-YY",    "DD-MM-YYYY", "DD-MMM-YY",
    "DD-MMM-YYYY", "DD MMM YY",  "DD MMM YYYY", "MM/DD/YY",   "MM/DD/YYYY",
    "MM-DD-YY",    "MM-DD-YYYY", "YYYY-MM-DD",  "DD/MMM/YY",  "YYYY/MM/DD"};

/// The day, for which neither the order of numbers nor the century is in doubt.
const Date kChristmas = MakeDate(2024, 12, 25);

bool HasShortYear(std::string_view pattern) {
  return pattern.find("YYYY") == pattern.npos;
}

/// Whether a pattern has the month as a number and the numbers in another order than the locale.
bool IsInForeignOrder(std::string_view pattern, const Locale& locale) {
  if (pattern.find("MMM") != pattern.npos || pattern.starts_with("YYYY")) {
    return false;
  }
  return pattern.starts_with("MM") != (locale.order == DateOrder::kMonthDayYear);
}

/// A day whose year the pattern shows without doubt: of any year, or of the century that two digits
/// stand for.
rc::Gen<CivilTime> AnyDayFor(std::string_view pattern) {
  return HasShortYear(pattern) ? AnyCivilTime(SerialDay(1930, 1, 1), SerialDay(2029, 12, 31))
                               : AnyCivilTime();
}

Date English(std::string_view text) {
  return ParseDate(text, DefaultLocale());
}

bool IsEnglish(std::string_view text) {
  return IsDate(text, DefaultLocale());
}

Date In(std::string_view locale, std::string_view text) {
  return ParseDate(text, *FindLocale(locale));
}

class DateRoundTrip : public EveryLocale {};
INSTANTIATE_TEST_SUITE_P(Locales, DateRoundTrip, LocaleNames(), TestName);

TEST_P(DateRoundTrip, PlanFormatsInTheLocalesOrderAreReadBack) {
  for (const std::string_view pattern : kPlanFormats) {
    if (!IsInForeignOrder(pattern, locale())) {
      EXPECT_TRUE(rc::check([&] {
        const Date day = DayOf(MakeDate(*AnyDayFor(pattern)));
        RC_ASSERT(ParseDate(FormatDate(day, pattern, locale()), locale()) == day);
      })) << pattern;
    }
  }
}

TEST_P(DateRoundTrip, PlanFormatsInAnotherOrderAreReadInTheLocalesOrder) {
  for (const std::string_view pattern : kPlanFormats) {
    if (IsInForeignOrder(pattern, locale())) {
      EXPECT_TRUE(rc::check([&] {
        const CivilTime civil = *AnyDayFor(pattern);
        const bool taken_for_a_month = civil.day <= 12;
        const Date expected = taken_for_a_month ? MakeDate(civil.year, civil.day, civil.month)
                                                : MakeDate(civil.year, civil.month, civil.day);
        RC_ASSERT(ParseDate(FormatDate(MakeDate(civil), pattern, locale()), locale()) == expected);
      })) << pattern;
    }
  }
}

TEST_P(DateRoundTrip, EveryPatternThatNamesTheMonthOrBeginsWithTheYearIsReadBack) {
  for (const std::string_view pattern :
       {"dd/mmm/yyyy", "dd mmm yyyy", "d mmmm yyyy", "dd-mmmm-yyyy", "mmm d, yyyy", "yyyy mmm dd",
        "yyyy-mmmm-d", "ddd dd/mmm/yyyy", "dddd, d. mmmm yyyy", "ddd yyyy-mm-dd", "ddmmmyyyy",
        "YYYYMMDD", "yyyy-mm-dd", "yyyy/m/d", "dddd YYYYMMDD"}) {
    EXPECT_TRUE(rc::check([&] {
      const Date day = DayOf(MakeDate(*AnyCivilTime()));
      RC_ASSERT(ParseDate(FormatDate(day, pattern, locale()), locale()) == day);
    })) << pattern;
  }
}

TEST_P(DateRoundTrip, EveryMonthAndWeekdayIsReadBackInFullAndShort) {
  for (int day = 0; day < 400; ++day) {
    const Date date = MakeDate(2024, 1, 1) + day;
    for (const std::string_view pattern : {"dddd d mmmm yyyy", "ddd d mmm yyyy", "dd/mmm/yy"}) {
      const std::string text = FormatDate(date, pattern, locale());
      EXPECT_EQ(ParseDate(text, locale()), date) << text;
    }
  }
}

TEST_P(DateRoundTrip, TheDefaultTextIsReadBackToTheSecond) {
  EXPECT_TRUE(rc::check([&] {
    const CivilTime civil = *AnyCivilTime();
    RC_ASSERT(ToCivil(ParseDate(DefaultDateText(MakeDate(civil), locale()), locale())) == civil);
  }));
}

TEST_P(DateRoundTrip, TheDefaultTextOfATimeOrMidnightOnDayZeroIsReadBack) {
  for (const CivilTime civil :
       {CivilTime{}, CivilTime{1899, 12, 30, 18, 30, 5}, CivilTime{1899, 12, 30, 0, 0, 1},
        CivilTime{1899, 12, 29, 6, 0, 0}, CivilTime{1899, 12, 29, 0, 0, 0},
        CivilTime{1899, 12, 31, 23, 59, 59}, CivilTime{100, 1, 1, 0, 0, 0},
        CivilTime{100, 1, 1, 1, 2, 3}, CivilTime{9999, 12, 31, 23, 59, 59}}) {
    const std::string text = DefaultDateText(MakeDate(civil), locale());
    EXPECT_EQ(ParseDate(text, locale()), MakeDate(civil)) << text;
  }
}

TEST_P(DateRoundTrip, ATimeBehindTheDefaultTextOfADayIsReadWithIt) {
  const std::string text = DefaultDateText(MakeDate(2024, 3, 5), locale()) + " 22:00";
  EXPECT_EQ(ToCivil(ParseDate(text, locale())), (CivilTime{2024, 3, 5, 22, 0, 0}));
}

TEST_P(DateRoundTrip, FractionsOfASecondAreRounded) {
  EXPECT_TRUE(rc::check([&] {
    const Date date{*Evenly(1, 80000) + *Evenly(0, 999999999) / 1e9};
    const Date back = ParseDate(DefaultDateText(date, locale()), locale());
    // Half a second, and the rounding of a double that counts days.
    RC_ASSERT(std::abs(back - date) * 86400 <= 0.5 + 1e-5);
  }));
}

TEST_P(DateRoundTrip, TwoDigitYearsAre1930To2029) {
  for (int year = 1930; year <= 2029; ++year) {
    const Date day = MakeDate(year, 12, 25);
    const std::string text = FormatDate(day, "dd mmm yy", locale());
    EXPECT_EQ(ParseDate(text, locale()), day) << text;
  }
  EXPECT_EQ(ParseDate(FormatDate(MakeDate(2030, 12, 25), "DD/MMM/YY", locale()), locale()),
            MakeDate(1930, 12, 25));
  EXPECT_EQ(ParseDate(FormatDate(MakeDate(1929, 12, 25), "DD/MMM/YY", locale()), locale()),
            MakeDate(2029, 12, 25));
}

class DateTest : public EveryLocale {};
INSTANTIATE_TEST_SUITE_P(Locales, DateTest, LocaleNames(), TestName);

rc::Gen<std::string> AnyNumber(std::int32_t first, std::int32_t last) {
  return rc::gen::map(Evenly(first, last),
                      [](std::int32_t value) { return std::to_string(value); });
}

std::string Joined(const std::vector<std::string>& pieces) {
  std::string text;
  for (const std::string& piece : pieces) {
    text += piece;
  }
  return text;
}

/// Text made of what dates are made of: near to a date at times, in any order at others.
rc::Gen<std::string> AnyDateLikeText(const Locale& locale) {
  std::vector<std::string> words = {"Feb", "May", "Mon", "am", "pm", "de", "x", "\xFF", "\xC3"};
  words.insert(words.end(), locale.months.begin(), locale.months.end());
  words.insert(words.end(), locale.short_months.begin(), locale.short_months.end());
  words.insert(words.end(), locale.short_weekdays.begin(), locale.short_weekdays.end());
  const auto word = rc::gen::elementOf(words);
  const auto month = rc::gen::oneOf(AnyNumber(0, 14), word);
  const auto year = rc::gen::oneOf(AnyNumber(90, 10100), AnyNumber(0, 99));
  const auto gap = rc::gen::element<std::string>("/", "-", " ", ".", ", ", ":", "", "\u00A0");
  const auto time = rc::gen::element<std::string>("", "", " 22:00", " 9:05:07 pm", " 24:00", "1:2");
  const auto near = rc::gen::map(
      rc::gen::tuple(AnyNumber(0, 33), month, year, gap, time), [](const auto& chosen) {
        const auto& [day, month_text, year_text, between, end] = chosen;
        return Joined({day, between, month_text, between, year_text, end});
      });
  const auto pieces = rc::gen::container<std::vector<std::string>>(
      rc::gen::oneOf(word, gap, gap, AnyNumber(0, 2100), AnyNumber(1, 12), time,
                     rc::gen::element<std::string>("20240229", "20240230", "12345", "007")));
  return rc::gen::oneOf(near, rc::gen::map(rc::gen::resize(8, pieces), Joined));
}

TEST_P(DateTest, AgreesWithTheParserOnAnyText) {
  EXPECT_TRUE(rc::check([&] {
    const std::string text = *rc::gen::weightedOneOf<std::string>(
        {{4, AnyDateLikeText(locale())}, {1, rc::gen::arbitrary<std::string>()}});
    const bool parses = ErrorOf([&] { ParseDate(text, locale()); }) != kTypeMismatch;
    RC_TAG(parses);
    RC_ASSERT(IsDate(text, locale()) == parses);
  }));
}

TEST_P(DateTest, WhatIsReadIsADateThatComesBack) {
  EXPECT_TRUE(rc::check([&] {
    const std::string text = *AnyDateLikeText(locale());
    if (IsDate(text, locale())) {
      const Date date = ParseDate(text, locale());
      RC_ASSERT(IsValidDate(date));
      RC_ASSERT(ParseDate(DefaultDateText(date, locale()), locale()) == date);
    }
  }));
}

TEST_P(DateTest, DaysThatDoNotExistAreRefused) {
  for (const std::string text :
       {"31/02/2024", "02/31/2024", "2024-02-31", "30 Feb 2024", "29 Feb 2023", "29/02/2023",
        "29/02/1900", "31/04/2024", "0/1/2024", "1/0/2024", "32 Jan 2024", "20240231", "20241301",
        "20240100", "13/13/2024"}) {
    EXPECT_FALSE(IsDate(text, locale())) << text;
    EXPECT_EQ(ErrorOf([&] { ParseDate(text, locale()); }), kTypeMismatch) << text;
  }
}

TEST_P(DateTest, LeapDaysAreRead) {
  EXPECT_EQ(ParseDate("29 Feb 2024", locale()), MakeDate(2024, 2, 29));
  EXPECT_EQ(ParseDate("29/02/2000", locale()), MakeDate(2000, 2, 29));
  EXPECT_EQ(ParseDate("20240229", locale()), MakeDate(2024, 2, 29));
}

TEST_P(DateTest, YearsOutside100To9999AreRefused) {
  EXPECT_EQ(ParseDate("1 Jan 100", locale()), MakeDate(100, 1, 1));
  EXPECT_EQ(ParseDate("31 Dec 9999", locale()), MakeDate(9999, 12, 31));
  EXPECT_EQ(ParseDate("0100-01-01", locale()), MakeDate(100, 1, 1));
  for (const std::string text :
       {"31 Dec 099", "1 Jan 0000", "31 Dec 0099", "1 Jan 10000", "10000-01-01", "00991231"}) {
    EXPECT_FALSE(IsDate(text, locale())) << text;
  }
}

TEST_P(DateTest, OtherTextIsRefused) {
  for (const std::string text : {"",
                                 " ",
                                 "soon",
                                 "Storm season",
                                 "45000",
                                 "2024",
                                 "1",
                                 "1.5",
                                 "1,5",
                                 "12/2024",
                                 "5 Jan",
                                 "January",
                                 "1/2/3/4",
                                 "1/2",
                                 "1,2,2024",
                                 "1/2-2024",
                                 "//",
                                 "1//2/2024",
                                 "/1/2/2024",
                                 "1/2/2024/",
                                 "-1/2/2024",
                                 "1/2/2024 x",
                                 "5 Foo 2024",
                                 "Jan Feb 2024",
                                 "5 2024 Jan",
                                 "2024 5 Jan",
                                 "202401011",
                                 "2024011",
                                 "1/2/2024 25:00",
                                 "1/2/2024 10",
                                 "1/2/2024 5 Jan 2024",
                                 "5 J 2024",
                                 "5 Ja 2024",
                                 "5% Jan 2024",
                                 "1/2/20 24",
                                 "123/1/1/1",
                                 "Mon Mon 5 Jan 2024",
                                 "\xFF\xFE",
                                 "5\xC3Jan 2024"}) {
    EXPECT_FALSE(IsDate(text, locale())) << text;
    EXPECT_EQ(ErrorOf([&] { ParseDate(text, locale()); }), kTypeMismatch) << text;
  }
}

TEST_P(DateTest, ThreeNumbersAreTakenInTheLocalesOrder) {
  const bool month_first = locale().order == DateOrder::kMonthDayYear;
  const Date expected = month_first ? MakeDate(2024, 3, 4) : MakeDate(2024, 4, 3);
  for (const std::string text :
       {"3/4/2024", "03-04-2024", "3.4.24", "3 4 2024", " 03 / 04 / 2024 ", "3. 4. 2024"}) {
    EXPECT_EQ(ParseDate(text, locale()), expected) << text;
  }
}

TEST_P(DateTest, NumbersThatFitOneOrderOnlyAreTakenInThatOrder) {
  EXPECT_EQ(ParseDate("25/12/2024", locale()), kChristmas);
  EXPECT_EQ(ParseDate("12/25/2024", locale()), kChristmas);
  EXPECT_EQ(ParseDate("2024/12/25", locale()), kChristmas);
  EXPECT_FALSE(IsDate("2024/25/12", locale()));
  EXPECT_FALSE(IsDate("25/2024/12", locale()));
}

TEST_P(DateTest, MonthNamesAreReadInEnglishToo) {
  EXPECT_EQ(ParseDate("25 December 2024", locale()), kChristmas);
  EXPECT_EQ(ParseDate("25/Dec/2024", locale()), kChristmas);
  EXPECT_EQ(ParseDate("Monday 25 Dec 2023", locale()), MakeDate(2023, 12, 25));
}

TEST_P(DateTest, MonthNamesHaveNoCaseAndMayEndInADot) {
  for (std::size_t month = 0; month < 12; ++month) {
    const Date expected = MakeDate(2024, static_cast<int>(month + 1), 5);
    for (std::string name : {locale().months[month], locale().short_months[month]}) {
      EXPECT_EQ(ParseDate("5 " + FoldCase(name) + " 2024", locale()), expected) << name;
      name.erase(name.find_last_not_of('.') + 1);
      EXPECT_EQ(ParseDate("5 " + name + " 2024", locale()), expected) << name;
      EXPECT_EQ(ParseDate("5 " + name + ". 2024", locale()), expected) << name;
      EXPECT_EQ(ParseDate("5-" + name + ".-24", locale()), expected) << name;
    }
  }
}

TEST_P(DateTest, TheTimeMayStandBeforeOrBehindTheDateOrAlone) {
  const CivilTime expected{2024, 12, 25, 22, 5, 9};
  for (const std::string text :
       {"25 Dec 2024 22:05:09", "22:05:09 25 Dec 2024", "25/12/2024, 22:05:09", "20241225 22:05:09",
        "25 Dec 2024 10:05:09 PM", "10:05:09pm 25/12/2024", "  25-Dec-24   22:5:9  "}) {
    EXPECT_EQ(ToCivil(ParseDate(text, locale())), expected) << text;
  }
  EXPECT_EQ(ParseDate("18:00", locale()), Date{0.75});
  EXPECT_EQ(ParseDate("6:00:00", locale()), Date{0.25});
}

TEST_P(DateTest, TwelveHourTimesCountFromNoonAndMidnight) {
  EXPECT_EQ(ParseDate("12:00 AM", locale()), Date{0});
  EXPECT_EQ(ParseDate("12:00 pm", locale()), Date{0.5});
  EXPECT_EQ(ParseDate("6:00 Pm", locale()), Date{0.75});
  EXPECT_FALSE(IsDate("13:00 pm", locale()));
  EXPECT_FALSE(IsDate("0:30 am", locale()));
}

TEST_P(DateTest, BadTimesAreRefused) {
  for (const std::string text :
       {"24:00", "12:60", "12:00:60", "12:", ":30", "12:3:4:5", "123:00", "12: 30", "12 :30",
        "12:30 xm", "12:30 5", "12:x", "1/2/202412:30", "12:30-1/2/2024", "12:30 1/2/2024 12:30",
        "5 Jan 12:30 2024", "12:30 am pm", "00:00:00 22:00"}) {
    EXPECT_FALSE(IsDate(text, locale())) << text;
  }
}

TEST_P(DateTest, AWeekdayMustBeTheDatesOwn) {
  const std::string& wednesday = locale().weekdays[2];
  EXPECT_EQ(ParseDate(wednesday + " 25 Dec 2024", locale()), kChristmas);
  EXPECT_FALSE(IsDate(wednesday + " 26 Dec 2024", locale()));
  EXPECT_FALSE(IsDate("25 Dec 2024 " + wednesday, locale()));
}

TEST(ParseDate, AWordForTheMonthFixesTheOrder) {
  EXPECT_EQ(English("25 Dec 2024"), kChristmas);
  EXPECT_EQ(English("Dec 25, 2024"), kChristmas);
  EXPECT_EQ(English("December 25 24"), kChristmas);
  EXPECT_EQ(English("2024 Dec 25"), kChristmas);
  EXPECT_EQ(English("25Dec2024"), kChristmas);
}

TEST(ParseDate, AMonthAndAYearAreTheFirstOfTheMonth) {
  EXPECT_EQ(English("Dec 2024"), MakeDate(2024, 12, 1));
  EXPECT_EQ(English("2024-Dec"), MakeDate(2024, 12, 1));
  EXPECT_FALSE(IsEnglish("Dec 24"));
  EXPECT_FALSE(IsEnglish("Monday 2024"));
}

TEST(ParseDate, ABeginningThatOneMonthAloneHasNamesIt) {
  EXPECT_EQ(English("25 Decem 2024"), kChristmas);
  EXPECT_EQ(English("1 Sept 2024"), MakeDate(2024, 9, 1));
  EXPECT_EQ(In("de-DE", "1. Mär 2024"), MakeDate(2024, 3, 1));
  EXPECT_FALSE(IsDate("1 jui 2024", *FindLocale("fr-FR")));
}

TEST(ParseDate, NamesOfTheLocaleAreReadWithOrWithoutAccents) {
  EXPECT_EQ(In("fr-FR", "14 févr. 2024"), MakeDate(2024, 2, 14));
  EXPECT_EQ(In("fr-FR", "14 FÉVRIER 2024"), MakeDate(2024, 2, 14));
  EXPECT_EQ(In("fr-FR", "14 fevrier 2024"), MakeDate(2024, 2, 14));
  EXPECT_EQ(In("fr-FR", "15-AOÛT-24"), MakeDate(2024, 8, 15));
  EXPECT_EQ(In("de-DE", "3. März 2024"), MakeDate(2024, 3, 3));
  EXPECT_EQ(In("de-DE", "3. MARZ 2024"), MakeDate(2024, 3, 3));
  EXPECT_EQ(In("de-DE", "05.Mrz.2024"), MakeDate(2024, 3, 5));
  EXPECT_EQ(In("pt-PT", "3 de MARÇO de 2024"), MakeDate(2024, 3, 3));
}

TEST(ParseDate, NamesOfAnotherLocaleAreRefused) {
  EXPECT_FALSE(IsEnglish("25 Dezember 2024"));
  EXPECT_FALSE(IsEnglish("14 févr. 2024"));
  EXPECT_FALSE(IsDate("25 Dezember 2024", *FindLocale("es-ES")));
}

TEST(ParseDate, LongDatesOfEachLanguageAreRead) {
  EXPECT_EQ(English("Wednesday, December 25, 2024"), kChristmas);
  EXPECT_EQ(In("de-DE", "Mittwoch, 25. Dezember 2024"), kChristmas);
  EXPECT_EQ(In("fr-FR", "mercredi 25 décembre 2024"), kChristmas);
  EXPECT_EQ(In("es-ES", "miércoles, 25 de diciembre de 2024"), kChristmas);
  EXPECT_EQ(In("pt-PT", "quarta-feira, 25 de dezembro de 2024"), kChristmas);
}

TEST(ParseDate, AWordThatIsAWeekdayAndAMonthIsTakenByItsPlace) {
  // "mar" is Tuesday and March in Spanish; 5 March 2024 was a Tuesday.
  EXPECT_EQ(In("es-ES", "mar 5 mar 2024"), MakeDate(2024, 3, 5));
  EXPECT_EQ(In("es-ES", "mar 5/3/2024"), MakeDate(2024, 3, 5));
  EXPECT_EQ(In("es-ES", "mar 5 2024"), MakeDate(2024, 3, 5));
}

TEST(ParseDate, AYearOfTwoDigitsIsOf1930To2029) {
  EXPECT_EQ(English("1 Jan 29"), MakeDate(2029, 1, 1));
  EXPECT_EQ(English("1 Jan 30"), MakeDate(1930, 1, 1));
  EXPECT_EQ(English("1 Jan 0"), MakeDate(2000, 1, 1));
  EXPECT_EQ(English("1/1/99"), MakeDate(1999, 1, 1));
  EXPECT_EQ(English("1 Jan 130"), MakeDate(130, 1, 1));
}

TEST(ParseDate, ALocaleThatPutsTheYearFirstReadsShortYearsThere) {
  Locale locale = DefaultLocale();
  locale.order = DateOrder::kYearMonthDay;
  locale.short_date = "yyyy/mm/dd";
  EXPECT_EQ(ParseDate("24/12/25", locale), kChristmas);
  EXPECT_EQ(ParseDate("25/12/2024", locale), kChristmas);
  EXPECT_EQ(ParseDate(DefaultDateText(kChristmas, locale), locale), kChristmas);
}

TEST(ParseDate, TheErrorShowsTheText) {
  try {
    English("31/02/2024");
    FAIL() << "nothing was raised";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.number(), kTypeMismatch);
    EXPECT_NE(error.text().find("31/02/2024"), std::string::npos);
  }
}

TEST(ParseDate, NoBreakSpacesAreBlanks) {
  EXPECT_EQ(English("25\u00A0Dec\u202F2024 "), kChristmas);
}

}  // namespace
}  // namespace nimbrel::platform
