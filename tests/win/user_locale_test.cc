// What of the user's settings dates and numbers take.

#include "platform/win/user_locale.h"

#include <gtest/gtest.h>

#include "platform/date.h"
#include "platform/win/wide_text.h"

namespace nimbrel::platform {
namespace {

TEST(UserLocaleTest, TakesPatternsAsTheyAreWrittenHere) {
  EXPECT_EQ(PatternOf("dd.MM.yyyy", '.'), "dd/mm/yyyy");
  EXPECT_EQ(PatternOf("M/d/yyyy", '/'), "m/d/yyyy");
  EXPECT_EQ(PatternOf("yyyy-MM-dd", '-'), "yyyy/mm/dd");
  EXPECT_EQ(PatternOf("d/M/yyyy 'г.'", '/'), "d/m/yyyy");
  EXPECT_EQ(PatternOf("d.M.yyyy.", '.'), "d/m/yyyy");
  EXPECT_EQ(PatternOf("yyyy. MM. dd.", '.'), "yyyy/mm/dd");
  EXPECT_EQ(PatternOf("d.M.yyyy 'г.'", '.'), "d/m/yyyy");
}

TEST(UserLocaleTest, AFullStopBehindADateChangesNothingInItsOrder) {
  const Date date = MakeDate(2027, 3, 5);
  for (const char* name : {"hr-HR", "hu-HU", "lv-LV"}) {
    const Locale locale = UserLocale(name);
    EXPECT_NE(locale.order, DateOrder::kMonthDayYear) << name;
    EXPECT_EQ(locale.date_separator, '.') << name;
    EXPECT_EQ(ParseDate(DefaultDateText(date, locale), locale), date) << name;
  }
  EXPECT_EQ(ParseDate("5.3.2027", UserLocale("hr-HR")), date);
  EXPECT_EQ(ParseDate("2027.3.5", UserLocale("hu-HU")), date);
  EXPECT_EQ(UserLocale("hu-HU").order, DateOrder::kYearMonthDay);
}

TEST(UserLocaleTest, TakesNamesOrderAndSeparators) {
  const Locale german = UserLocale("de-DE");
  EXPECT_EQ(german.name, "de-DE");
  EXPECT_EQ(german.months[2], "März");
  EXPECT_EQ(german.weekdays[0], "Montag");
  EXPECT_EQ(german.order, DateOrder::kDayMonthYear);
  EXPECT_EQ(german.date_separator, '.');
  EXPECT_EQ(german.decimal, ",");
  EXPECT_EQ(german.thousands, ".");
  const Locale american = UserLocale("en-US");
  EXPECT_EQ(american.order, DateOrder::kMonthDayYear);
  EXPECT_EQ(american.date_separator, '/');
  EXPECT_EQ(american.decimal, ".");
}

TEST(UserLocaleTest, ReadsBackWhatItWrites) {
  const Date date = MakeDate(2027, 3, 9);
  for (const char* name : {"", "en-US", "en-GB", "de-DE", "fr-FR", "es-ES", "nl-NL", "sv-SE"}) {
    const Locale locale = UserLocale(name);
    EXPECT_EQ(ParseDate(DefaultDateText(date, locale), locale), date) << name;
    EXPECT_EQ(ParseDate(FormatDate(date, "dd/mmm/yyyy", locale), locale), date) << name;
    EXPECT_EQ(ParseNumber(FormatNumber(1234.5, "#,##0.00", locale), locale), 1234.5) << name;
  }
}

TEST(UserLocaleTest, AnUnknownLanguageIsEnglish) {
  EXPECT_EQ(UserLocale("xx-XX").months[0], "January");
}

TEST(WideText, GoesThereAndBack) {
  const std::string text = "Åland €, 🌧";
  EXPECT_EQ(ToUtf8(ToWide(text)), text);
  EXPECT_EQ(ToWide("").size(), 0U);
  EXPECT_EQ(FromNarrow(ToNarrow("plain")), "plain");
}

}  // namespace
}  // namespace nimbrel::platform
