// Dates as text: what the formatter writes.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/locale.h"
#include "tests/platform/support.h"

namespace nimbrel::platform {
namespace {

const Date kMorning = MakeDate(CivilTime{2024, 3, 5, 8, 7, 9});

std::string English(std::string_view pattern) {
  return FormatDate(kMorning, pattern, DefaultLocale());
}

std::string In(std::string_view locale, std::string_view pattern) {
  return FormatDate(kMorning, pattern, *FindLocale(locale));
}

TEST(FormatDate, DayMonthAndYearComeInTheLengthsOfThePattern) {
  EXPECT_EQ(English("d dd ddd dddd"), "5 05 Tue Tuesday");
  EXPECT_EQ(English("m mm mmm mmmm"), "3 03 Mar March");
  EXPECT_EQ(English("yy yyyy"), "24 2024");
}

TEST(FormatDate, PatternsHaveNoCase) {
  EXPECT_EQ(English("DD-MMM-YYYY"), "05-Mar-2024");
  EXPECT_EQ(English("dD.Mm.yY"), "05.03.24");
}

TEST(FormatDate, TimeComesInTheLengthsOfThePattern) {
  EXPECT_EQ(English("h hh n nn s ss"), "8 08 7 07 9 09");
}

TEST(FormatDate, MonthNumbersRightAfterHoursAreMinutes) {
  EXPECT_EQ(English("hh:mm dd/mm"), "08:07 05/03");
  EXPECT_EQ(English("h:m:s"), "8:7:9");
  EXPECT_EQ(English("hh:nn mm"), "08:07 03");
  EXPECT_EQ(English("hh mmm"), "08 Mar");
}

TEST(FormatDate, ALongerRunIsCutIntoWhatStandsForSomething) {
  EXPECT_EQ(English("mmmmm"), "March3");
  EXPECT_EQ(English("yyy"), "24y");
  EXPECT_EQ(English("y"), "y");
}

TEST(FormatDate, OtherCharactersAndQuotedTextStandForThemselves) {
  EXPECT_EQ(English("\"day\" d, \"month\" m"), "day 5, month 3");
  EXPECT_EQ(English("d_\"dd"), "5_dd");
  EXPECT_EQ(English("\"\"d"), "5");
}

TEST(FormatDate, SortKeysAreEightDigits) {
  EXPECT_EQ(English("YYYYMMDD"), "20240305");
  EXPECT_EQ(FormatDate(MakeDate(150, 1, 2), "YYYYMMDD", DefaultLocale()), "01500102");
}

TEST(FormatDate, SlashAndColonAreTheLocalesSeparators) {
  EXPECT_EQ(In("de-DE", "dd/mm/yyyy"), "05.03.2024");
  EXPECT_EQ(In("de-DE", "dd-mm-yyyy"), "05-03-2024");
  EXPECT_EQ(In("nl-NL", "dd/mm/yyyy"), "05-03-2024");
  Locale locale = DefaultLocale();
  locale.time_separator = '.';
  EXPECT_EQ(FormatDate(kMorning, "hh:nn", locale), "08.07");
}

TEST(FormatDate, NamesAreTheLocales) {
  EXPECT_EQ(In("en-GB", "dd/mmm/yyyy"), "05/Mar/2024");
  EXPECT_EQ(In("de-DE", "dd/mmm/yyyy"), "05.Mrz.2024");
  EXPECT_EQ(In("fr-FR", "dd/mmm/yyyy"), "05/mars/2024");
  EXPECT_EQ(In("es-ES", "dddd d mmmm yyyy"), "martes 5 marzo 2024");
  EXPECT_EQ(In("it-IT", "dd mmm yyyy"), "05 mar 2024");
  EXPECT_EQ(In("nl-NL", "dd mmm yyyy"), "05 mrt 2024");
  EXPECT_EQ(In("pt-PT", "mmmm"), "março");
  const Date january = MakeDate(2024, 1, 15);
  EXPECT_EQ(FormatDate(january, "dd/mmm/yyyy", *FindLocale("fr-FR")), "15/janv./2024");
  EXPECT_EQ(FormatDate(january, "dd/mmm/yyyy", *FindLocale("es-ES")), "15/ene/2024");
}

TEST(FormatDate, EveryMonthHasItsOwnName) {
  const Locale& spanish = *FindLocale("es-ES");
  std::string names;
  for (int month = 1; month <= 12; ++month) {
    names += FormatDate(MakeDate(2024, month, 1), "mmm ", spanish);
  }
  EXPECT_EQ(names, "ene feb mar abr may jun jul ago sept oct nov dic ");
}

TEST(FormatDate, EveryWeekdayHasItsOwnName) {
  std::string names;
  for (int day = 1; day <= 7; ++day) {  // 1 January 2024 was a Monday
    names += FormatDate(MakeDate(2024, 1, day), "ddd ", *FindLocale("de-DE"));
  }
  EXPECT_EQ(names, "Mo Di Mi Do Fr Sa So ");
}

TEST(FormatDate, TheMomentIsRoundedToTheSecondFirst) {
  EXPECT_EQ(FormatDate(MakeDate(2025, 1, 1) - 0.3 / 86400, "yyyy-mm-dd hh:nn:ss", DefaultLocale()),
            "2025-01-01 00:00:00");
}

TEST(FormatDate, AnEmptyPatternGivesTheDefaultText) {
  EXPECT_EQ(English(""), DefaultDateText(kMorning, DefaultLocale()));
}

TEST(FormatDate, OutsideTheRangeOfDatesItRaises) {
  EXPECT_EQ(ErrorOf([] { FormatDate(Date{1e9}, "yyyy", DefaultLocale()); }), kOverflow);
  EXPECT_EQ(ErrorOf([] { DefaultDateText(Date{-1e9}, DefaultLocale()); }), kOverflow);
}

TEST(DefaultDateText, IsTheLocalesShortDate) {
  const Date date = MakeDate(2024, 3, 5);
  EXPECT_EQ(DefaultDateText(date, *FindLocale("en-US")), "3/5/2024");
  EXPECT_EQ(DefaultDateText(date, *FindLocale("en-GB")), "05/03/2024");
  EXPECT_EQ(DefaultDateText(date, *FindLocale("de-DE")), "05.03.2024");
  EXPECT_EQ(DefaultDateText(date, *FindLocale("fr-FR")), "05/03/2024");
  EXPECT_EQ(DefaultDateText(date, *FindLocale("es-ES")), "05/03/2024");
  EXPECT_EQ(DefaultDateText(date, *FindLocale("nl-NL")), "5-3-2024");
}

TEST(DefaultDateText, ShowsTheTimeUnlessItIsMidnight) {
  EXPECT_EQ(DefaultDateText(kMorning, DefaultLocale()), "3/5/2024 08:07:09");
  EXPECT_EQ(DefaultDateText(DayOf(kMorning), DefaultLocale()), "3/5/2024");
}

TEST(DefaultDateText, IsTheTimeAloneOnDayZero) {
  EXPECT_EQ(DefaultDateText(Date{0.75}, DefaultLocale()), "18:00:00");
  EXPECT_EQ(DefaultDateText(Date{0}, DefaultLocale()), "00:00:00");
  EXPECT_EQ(DefaultDateText(Date{-1}, DefaultLocale()), "12/29/1899");
  EXPECT_EQ(DefaultDateText(Date{1}, DefaultLocale()), "12/31/1899");
}

TEST(DefaultDateText, RoundsToTheSecondBeforeItDecidesWhatToShow) {
  EXPECT_EQ(DefaultDateText(MakeDate(2024, 3, 5) - 0.2 / 86400, DefaultLocale()), "3/5/2024");
  EXPECT_EQ(DefaultDateText(Date{1 - 0.2 / 86400}, DefaultLocale()), "12/31/1899");
}

}  // namespace
}  // namespace nimbrel::platform
