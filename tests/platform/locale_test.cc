#include "platform/locale.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "tests/platform/support.h"

namespace nimbrel::platform {
namespace {

TEST(FindLocale, TakesANameInAnyCaseWithEitherStroke) {
  ASSERT_NE(FindLocale("de-DE"), nullptr);
  EXPECT_EQ(FindLocale("DE_de"), FindLocale("de-DE"));
  EXPECT_EQ(FindLocale("de-DE")->name, "de-DE");
}

TEST(FindLocale, ALanguageAlonePicksItsFirstLocale) {
  ASSERT_NE(FindLocale("EN"), nullptr);
  EXPECT_EQ(FindLocale("EN")->name, "en-US");
  EXPECT_EQ(FindLocale("fr")->name, "fr-FR");
}

TEST(FindLocale, KnowsNothingElse) {
  EXPECT_EQ(FindLocale(""), nullptr);
  EXPECT_EQ(FindLocale("d"), nullptr);
  EXPECT_EQ(FindLocale("de-"), nullptr);
  EXPECT_EQ(FindLocale("tlh"), nullptr);
}

TEST(FindLocale, TheDefaultIsAmericanEnglish) {
  EXPECT_EQ(DefaultLocale().name, "en-US");
}

class EachLocale : public EveryLocale {};
INSTANTIATE_TEST_SUITE_P(Locales, EachLocale, LocaleNames(), TestName);

TEST_P(EachLocale, IsFoundByItsName) {
  EXPECT_EQ(locale().name, GetParam());
}

template <std::size_t N>
std::set<std::string> Distinct(const std::array<std::string, N>& names) {
  return {names.begin(), names.end()};
}

TEST_P(EachLocale, HasADifferentNameForEachMonthAndWeekday) {
  EXPECT_EQ(Distinct(locale().months).size(), 12u);
  EXPECT_EQ(Distinct(locale().short_months).size(), 12u);
  EXPECT_EQ(Distinct(locale().weekdays).size(), 7u);
  EXPECT_EQ(Distinct(locale().short_weekdays).size(), 7u);
  EXPECT_FALSE(Distinct(locale().months).contains(""));
  EXPECT_FALSE(Distinct(locale().short_weekdays).contains(""));
}

TEST_P(EachLocale, WritesItsShortDateInItsOrder) {
  // The month is before the day where the 5th of March 2024 shows the 3 first.
  const std::string text = DefaultDateText(MakeDate(2024, 3, 5), locale());
  EXPECT_EQ(text.find('3') < text.find('5'), locale().order == DateOrder::kMonthDayYear);
  EXPECT_THAT(text, testing::HasSubstr(std::string(1, locale().date_separator)));
}

TEST_P(EachLocale, TellsTheDecimalMarkFromTheGroupMark) {
  EXPECT_NE(locale().decimal, locale().thousands);
}

}  // namespace
}  // namespace nimbrel::platform
