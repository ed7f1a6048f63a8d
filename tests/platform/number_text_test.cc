// Numbers as text: patterns, the default form, and reading them back.
#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>

#include "platform/locale.h"
#include "tests/platform/support.h"

namespace nimbrel::platform {
namespace {

std::string English(double value, std::string_view pattern) {
  return FormatNumber(value, pattern, DefaultLocale());
}

std::string German(double value, std::string_view pattern) {
  return FormatNumber(value, pattern, *FindLocale("de-DE"));
}

TEST(FormatNumber, APercentageIsAHundredTimesTheNumber) {
  EXPECT_EQ(English(0.5, "0%"), "50%");
  EXPECT_EQ(English(1.0, "0%"), "100%");
  EXPECT_EQ(English(0.0, "0%"), "0%");
  EXPECT_EQ(English(0.25, "0.00%"), "25.00%");
  EXPECT_EQ(German(0.255, "0.0%"), "25,5%");
}

TEST(FormatNumber, HalvesGoAwayFromZero) {
  EXPECT_EQ(English(0.125, "0%"), "13%");
  EXPECT_EQ(English(0.5, "0"), "1");
  EXPECT_EQ(English(2.5, "0"), "3");
  EXPECT_EQ(English(-2.5, "0"), "-3");
}

TEST(FormatNumber, TheDecimalFormOfTheNumberIsRoundedNotItsBinaryOne) {
  // The nearest doubles lie just below these halves.
  EXPECT_EQ(English(1.005, "0.00"), "1.01");
  EXPECT_EQ(English(0.285, "0%"), "29%");
}

TEST(FormatNumber, JustBelowAHalfGoesDown) {
  EXPECT_EQ(English(0.1249, "0%"), "12%");
  EXPECT_EQ(English(0.49999, "0"), "0");
}

TEST(FormatNumber, RoundingUpCarriesThroughNines) {
  EXPECT_EQ(English(0.999, "0.00"), "1.00");
  EXPECT_EQ(English(99.5, "0"), "100");
  EXPECT_EQ(English(0.096, "0.00"), "0.10");
  EXPECT_EQ(English(1999.6, "0"), "2000");
}

TEST(FormatNumber, PadsWithZerosOnBothSidesOfTheMark) {
  EXPECT_EQ(English(9.0, "0.00"), "9.00");
  EXPECT_EQ(English(0.5, "000.0"), "000.5");
  EXPECT_EQ(English(123456.0, "0.00"), "123456.00");
}

TEST(FormatNumber, ANumberSignPlaceIsShownOnlyIfTheNumberHasIt) {
  EXPECT_EQ(English(0.5, "#.##"), ".5");
  EXPECT_EQ(English(12.0, "0.0#"), "12.0");
  EXPECT_EQ(English(12.345, "0.0#"), "12.35");
}

TEST(FormatNumber, GroupsByThreeWhereThePatternHasAComma) {
  EXPECT_EQ(English(1234567.891, "#,##0.0"), "1,234,567.9");
  EXPECT_EQ(English(123.0, "#,##0"), "123");
  EXPECT_EQ(German(1234.5, "#,##0.00"), "1.234,50");
  EXPECT_EQ(FormatNumber(1234.0, "#,##0", *FindLocale("fr-FR")), "1\u00A0234");
}

TEST(FormatNumber, TextAroundTheDigitPlacesStandsForItself) {
  EXPECT_EQ(English(12.0, "about 0 days"), "about 12 days");
  EXPECT_EQ(English(12.0, "none"), "none");
}

TEST(FormatNumber, ANumberThatRoundsToZeroHasNoSign) {
  EXPECT_EQ(English(-0.001, "0.00"), "0.00");
  EXPECT_EQ(English(-0.0, "0"), "0");
  EXPECT_EQ(English(-0.05, "0.0"), "-0.1");
}

TEST(FormatNumber, ShowsVeryLargeAndVerySmallNumbersWithoutAnExponent) {
  EXPECT_EQ(English(1e20, "0"), "100000000000000000000");
  EXPECT_EQ(English(1e-300, "0.00"), "0.00");
}

TEST(FormatNumber, WhatIsNoFiniteNumberRaises) {
  EXPECT_EQ(ErrorOf([] { English(std::numeric_limits<double>::infinity(), "0"); }), kOverflow);
  EXPECT_EQ(ErrorOf([] { English(std::numeric_limits<double>::quiet_NaN(), ""); }), kOverflow);
}

TEST(DefaultNumberText, HasFifteenDigitsAndNoNeedlessZeros) {
  const Locale& locale = DefaultLocale();
  EXPECT_EQ(DefaultNumberText(0.0, locale), "0");
  EXPECT_EQ(DefaultNumberText(25.0, locale), "25");
  EXPECT_EQ(DefaultNumberText(-2.5, locale), "-2.5");
  EXPECT_EQ(DefaultNumberText(0.1 + 0.2, locale), "0.3");
  EXPECT_EQ(DefaultNumberText(0.07 * 100.0, locale), "7");
  EXPECT_EQ(DefaultNumberText(1.0 / 3.0, locale), "0.333333333333333");
  EXPECT_EQ(FormatNumber(2.5, "", locale), "2.5");
}

TEST(DefaultNumberText, LargeAndSmallNumbersHaveAnExponent) {
  const Locale& locale = DefaultLocale();
  EXPECT_EQ(DefaultNumberText(123456789012345.0, locale), "123456789012345");
  EXPECT_EQ(DefaultNumberText(1e15, locale), "1E+15");
  EXPECT_EQ(DefaultNumberText(-1.5e300, locale), "-1.5E+300");
  EXPECT_EQ(DefaultNumberText(0.00001, locale), "0.00001");
  EXPECT_EQ(DefaultNumberText(0.0000012, locale), "1.2E-06");
}

class NumberText : public EveryLocale {};
INSTANTIATE_TEST_SUITE_P(Locales, NumberText, LocaleNames(), TestName);

TEST_P(NumberText, UsesTheDecimalMark) {
  EXPECT_EQ(FormatNumber(2.5, "0.00", locale()), "2" + locale().decimal + "50");
  EXPECT_EQ(DefaultNumberText(2.5, locale()), "2" + locale().decimal + "5");
}

TEST_P(NumberText, TheTestAndTheParserTakeTheSameTexts) {
  for (const std::string text :
       {"0",     "12",         "-3",      "+4",      " 5 ",      "2.5",   "2,5",   "1.234",
        "1,234", "1 234",      ".5",      ",5",      "5.",       "5,",    "1e3",   "1E-2",
        "1e",    "e1",         "",        " ",       "-",        "1-",    "--1",   "12a",
        "0x10",  "inf",        "nan",     "1.2.3",   "1,23,456", "50%",   "1e999", "1,2345",
        "12,34", "1234,567.8", "1.234,5", "1,234.5", "$5",       "\u0661"}) {
    EXPECT_EQ(IsNumeric(text, locale()),
              ErrorOf([&] { ParseNumber(text, locale()); }) != kTypeMismatch)
        << text;
  }
}

TEST_P(NumberText, WholeNumbersAndSignsAreReadInEveryLocale) {
  EXPECT_EQ(ParseNumber("12", locale()), 12.0);
  EXPECT_EQ(ParseNumber(" -3 ", locale()), -3.0);
  EXPECT_EQ(ParseNumber("+4", locale()), 4.0);
  EXPECT_EQ(ParseNumber("1E3", locale()), 1000.0);
  EXPECT_EQ(ParseNumber("1e-2", locale()), 0.01);
}

TEST_P(NumberText, BadTextRaisesATypeMismatch) {
  for (const std::string text : {"", " ", "abc", "12a", "1e", "-", "1e999", "50%", "5-", "1..2"}) {
    EXPECT_EQ(ErrorOf([&] { ParseNumber(text, locale()); }), kTypeMismatch) << text;
  }
}

TEST_P(NumberText, GroupsAreOfThree) {
  const std::string& group = locale().thousands;
  EXPECT_EQ(ParseNumber("1" + group + "234" + group + "567", locale()), 1234567.0);
  EXPECT_FALSE(IsNumeric("1" + group + "5", locale()));
  EXPECT_FALSE(IsNumeric("1234" + group + "567", locale()));
  EXPECT_FALSE(IsNumeric(group + "567", locale()));
  EXPECT_FALSE(IsNumeric("1" + group, locale()));
}

TEST_P(NumberText, EitherSideOfTheMarkMayBeEmptyButNotBoth) {
  const std::string& mark = locale().decimal;
  EXPECT_EQ(ParseNumber(mark + "5", locale()), 0.5);
  EXPECT_EQ(ParseNumber("5" + mark, locale()), 5.0);
  EXPECT_FALSE(IsNumeric(mark, locale()));
  EXPECT_FALSE(IsNumeric("-" + mark, locale()));
}

TEST(ParseNumber, WhereABlankGroupsEveryKindOfBlankDoes) {
  const Locale& french = *FindLocale("fr-FR");
  EXPECT_EQ(ParseNumber("1 234,5", french), 1234.5);
  EXPECT_EQ(ParseNumber("1\u00A0234,5", french), 1234.5);
  EXPECT_EQ(ParseNumber("1\u202F234,5", french), 1234.5);
  EXPECT_FALSE(IsNumeric("1 234.5", DefaultLocale()));
}

/// A number with up to seven digits before and six behind the mark.
rc::Gen<double> AnyNumber() {
  return rc::gen::map(rc::gen::pair(Evenly(-9999999, 9999999), Evenly(0, 999999)),
                      [](const std::pair<std::int32_t, std::int32_t>& parts) {
                        return parts.first + parts.second / 1e6;
                      });
}

TEST_P(NumberText, EveryDoubleIsReadBackToFifteenDigits) {
  EXPECT_TRUE(rc::check([&] {
    const double value =
        *rc::gen::oneOf(AnyNumber(), rc::gen::map(rc::gen::pair(AnyNumber(), Evenly(-250, 250)),
                                                  [](const std::pair<double, std::int32_t>& parts) {
                                                    return std::ldexp(parts.first, parts.second);
                                                  }));
    const double back = ParseNumber(DefaultNumberText(value, locale()), locale());
    // Half a unit in the fifteenth digit, relative to a first digit of 1.
    RC_ASSERT(std::abs(back - value) <= 5e-15 * std::abs(value));
  }));
}

TEST_P(NumberText, APatternWithSixPlacesIsReadBack) {
  EXPECT_TRUE(rc::check([&] {
    const double value = *AnyNumber();
    const double back = ParseNumber(FormatNumber(value, "#,##0.000000", locale()), locale());
    // The number has no more places than six; what is left is the rounding of the double itself.
    RC_ASSERT(std::abs(back - value) <= 1e-9);
  }));
}

}  // namespace
}  // namespace nimbrel::platform
