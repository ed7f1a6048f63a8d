// The plan's flag and custom fields, and the conversions to the plan's own terms. Expected numbers
// are worked out by hand.

#include "host/mod_global.h"

#include <gmock/gmock.h>

#include <limits>
#include <map>
#include <tuple>

#include "platform/runtime_error.h"
#include "tests/support/host/wired_test.h"

namespace nimbrel::modGlobal {
namespace {

using platform::Date;
using platform::MakeDate;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ModGlobalTest : public recording::WiredTest {
 protected:
  void SetOption(const std::string& value) {
    plan().options[{"NIMBRELMOD", "Options", "IsWeatherPlan"}] = value;
  }
  void CountIn(std::int32_t time_unit, std::int32_t hours_per_day = 8) {
    plan().time_unit = time_unit;
    plan().hours_per_day = hours_per_day;
  }
};

TEST_F(ModGlobalTest, TheApplicationIsMadeOnFirstUseAndOnce) {
  int made = 0;
  modGlobal::Wire({[&] {
    ++made;
    return host_.application();
  }});
  EXPECT_EQ(made, 0);
  EXPECT_TRUE(Application() == host_.application());
  EXPECT_TRUE(Application() == host_.application());
  EXPECT_EQ(made, 1);
}

TEST_F(ModGlobalTest, AFailureToMakeTheApplicationIsTriedAgainAtTheNextUse) {
  int tries = 0;
  modGlobal::Wire({[&]() -> Corvane8::Ref<Corvane8::Application> {
    if (++tries == 1) {
      throw platform::RuntimeError(429, "no host");
    }
    return host_.application();
  }});
  EXPECT_EQ(ErrorOf([] { Application(); }), 429);
  EXPECT_TRUE(Application() == host_.application());
}

TEST_F(ModGlobalTest, WithoutWiringThereIsNoApplication) {
  modGlobal::Wire({});
  EXPECT_EQ(ErrorOf([] { Application(); }), platform::kObjectNotSet);
}

TEST_F(ModGlobalTest, AWeatherPlanIsOneWhoseOptionIsExactlyTrueInCapitals) {
  for (const auto& [value, is] : std::map<std::string, bool>{{"TRUE", true},
                                                             {"true", false},
                                                             {"True", false},
                                                             {"FALSE", false},
                                                             {"", false},
                                                             {"TRUE ", false}}) {
    SetOption(value);
    EXPECT_EQ(IsWeatherPlan(host_.plan_object()), is) << value;
  }
}

TEST_F(ModGlobalTest, AMissingOptionIsNoWeatherPlan) {
  EXPECT_FALSE(IsWeatherPlan(host_.plan_object()));
  EXPECT_THAT(calls(), ElementsAre(R"(Plan.GetOption "NIMBRELMOD" "Options" "IsWeatherPlan" "")"));
}

TEST_F(ModGlobalTest, NothingIsNoWeatherPlanAndTakesNoFlag) {
  EXPECT_FALSE(IsWeatherPlan(nullptr));
  SetIsWeatherPlan(nullptr, true);
  EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(ModGlobalTest, TheFlagIsWrittenAsOneOfTwoTexts) {
  SetIsWeatherPlan(host_.plan_object(), true);
  EXPECT_TRUE(IsWeatherPlan(host_.plan_object()));
  SetIsWeatherPlan(host_.plan_object(), false);
  EXPECT_FALSE(IsWeatherPlan(host_.plan_object()));
  EXPECT_THAT(recorder().Containing({"SetOption"}),
              ElementsAre(R"(Plan.SetOption "NIMBRELMOD" "Options" "IsWeatherPlan" "TRUE")",
                          R"(Plan.SetOption "NIMBRELMOD" "Options" "IsWeatherPlan" "FALSE")"));
}

TEST_F(ModGlobalTest, AddsBothFieldsToTheActivePlan) {
  AddWeatherFields();
  EXPECT_THAT(calls(),
              ElementsAre("Application.ActivePlan", "Plan.CustomFields",
                          R"(CustomFields.Add "Weather-start" 2)", "Application.ActivePlan",
                          "Plan.CustomFields", R"(CustomFields.Add "Weather-end" 3)"));
  EXPECT_EQ(plan().custom_fields.size(), 2U);
}

TEST_F(ModGlobalTest, AddingTheFieldsAgainIsHarmless) {
  AddWeatherFields();
  AddWeatherFields();
  EXPECT_EQ(plan().custom_fields.size(), 2U);
}

TEST_F(ModGlobalTest, AFieldThatIsThereDoesNotKeepTheOtherAway) {
  plan().custom_fields.insert("weather-start");
  AddWeatherFields();
  EXPECT_TRUE(plan().custom_fields.contains("weather-end"));
}

TEST_F(ModGlobalTest, AddingTheFieldsWithoutAPlanIsIgnored) {
  host_.ClosePlan();
  AddWeatherFields();
  EXPECT_THAT(calls(), ElementsAre("Application.ActivePlan", "Application.ActivePlan"));
}

TEST_F(ModGlobalTest, DaysBecomeUnitsOfTheWorkingDay) {
  for (const auto& [time_unit, units] : std::map<int, int>{{1, 3}, {24, 24}, {96, 96}}) {
    CountIn(time_unit);
    EXPECT_EQ(DaysToPlanUnits(3), units) << time_unit;
  }
}

TEST_F(ModGlobalTest, UnitsBecomeWholeWorkingDays) {
  for (const auto& [time_unit, days] : std::map<int, int>{{1, 96}, {24, 12}, {96, 3}}) {
    CountIn(time_unit);
    EXPECT_EQ(PlanUnitsToDays(96), days) << time_unit;
  }
}

TEST_F(ModGlobalTest, HalfDaysGoToTheEvenNeighbour) {
  CountIn(24);
  EXPECT_EQ(PlanUnitsToDays(12), 2);  // 1.5
  EXPECT_EQ(PlanUnitsToDays(20), 2);  // 2.5
  EXPECT_EQ(PlanUnitsToDays(-12), -2);
  CountIn(96);
  EXPECT_EQ(PlanUnitsToDays(48), 2);  // 1.5
  EXPECT_EQ(PlanUnitsToDays(80), 2);  // 2.5
}

TEST_F(ModGlobalTest, AnUnknownTimeUnitCountsAsDays) {
  CountIn(60);
  EXPECT_EQ(DaysToPlanUnits(7), 7);
  EXPECT_EQ(PlanUnitsToDays(7), 7);
}

TEST_F(ModGlobalTest, ConversionsReadTheTimeUnitFirstAndTheHoursOnlyWhereTheyCount) {
  CountIn(1);
  DaysToPlanUnits(1);
  PlanUnitsToDays(1);
  EXPECT_THAT(recorder().Containing({"HoursPerDay", "Display"}), IsEmpty());
  recorder().Clear();
  CountIn(24);
  DaysToPlanUnits(1);
  EXPECT_THAT(calls(),
              ElementsAre("Application.ActivePlan", "Plan.Properties", "PlanProperties.TimeUnit",
                          "Plan.Display", "PlanDisplay.HoursPerDay"));
}

TEST_F(ModGlobalTest, TheHoursOfADayAreReadAtEachConversion) {
  CountIn(24, 8);
  EXPECT_EQ(DaysToPlanUnits(1), 8);
  CountIn(24, 10);
  EXPECT_EQ(DaysToPlanUnits(1), 10);
}

TEST_F(ModGlobalTest, TooManyDaysOverflow) {
  constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
  CountIn(1);
  EXPECT_EQ(DaysToPlanUnits(kMost), kMost);
  CountIn(24);
  EXPECT_EQ(DaysToPlanUnits(kMost / 8), kMost / 8 * 8);
  EXPECT_EQ(ErrorOf([] { DaysToPlanUnits(kMost / 8 + 1); }), platform::kOverflow);
  CountIn(96);
  EXPECT_EQ(DaysToPlanUnits(kMost / 32), kMost / 32 * 32);
  EXPECT_EQ(ErrorOf([] { DaysToPlanUnits(kMost / 32 + 1); }), platform::kOverflow);
}

TEST_F(ModGlobalTest, ADayWithoutHoursDividesByZero) {
  for (const int time_unit : {24, 96}) {
    CountIn(time_unit, 0);
    EXPECT_EQ(ErrorOf([] { PlanUnitsToDays(1); }), platform::kDivisionByZero) << time_unit;
  }
  CountIn(1, 0);
  EXPECT_EQ(PlanUnitsToDays(1), 1);
}

TEST_F(ModGlobalTest, ConversionsWithoutAnActivePlanFail) {
  host_.ClosePlan();
  EXPECT_EQ(ErrorOf([] { DaysToPlanUnits(1); }), platform::kObjectNotSet);
  EXPECT_EQ(ErrorOf([] { PlanUnitsToDays(1); }), platform::kObjectNotSet);
  EXPECT_EQ(ErrorOf([] { NormalisePlanDate(MakeDate(2027, 1, 4)); }), platform::kObjectNotSet);
}

TEST_F(ModGlobalTest, EveryFormatDropsTheTimeOfDay) {
  // 25 March cannot be mistaken for another day in either order of day and month.
  const Date day = MakeDate(2027, 3, 25);
  for (std::int32_t code = 0; code <= 14; ++code) {
    plan().date_format = code;
    EXPECT_EQ(NormalisePlanDate(day + 0.75), day) << code;
  }
}

TEST_F(ModGlobalTest, AnUnknownFormatKeepsTheTimeOfDay) {
  const Date moment = MakeDate({2027, 3, 25, 18, 30, 0});
  for (const std::int32_t code : {15, -1}) {
    plan().date_format = code;
    EXPECT_NEAR(NormalisePlanDate(moment) - moment, 0.0, 0.5 / 86400) << code;
  }
}

TEST_F(ModGlobalTest, ATwoDigitYearIsReadBackInItsOwnCentury) {
  plan().date_format = 0;  // DD/MM/YY
  EXPECT_EQ(NormalisePlanDate(MakeDate(2045, 3, 25)), MakeDate(1945, 3, 25));
}

TEST_F(ModGlobalTest, ALocaleOfAnotherOrderSwapsDayAndMonth) {
  plan().date_format = 1;  // DD/MM/YYYY, written 02/01/2027 and read month first
  EXPECT_EQ(NormalisePlanDate(MakeDate(2027, 1, 2)), MakeDate(2027, 2, 1));
  Wire(*platform::FindLocale("en-GB"));
  EXPECT_EQ(NormalisePlanDate(MakeDate(2027, 1, 2)), MakeDate(2027, 1, 2));
}

TEST_F(ModGlobalTest, NormalisesInTheLocaleThatWasHandedIn) {
  plan().date_format = 7;  // DD MMM YYYY
  for (const char* name : {"de-DE", "fr-FR", "es-ES"}) {
    Wire(*platform::FindLocale(name));
    for (int month = 1; month <= 12; ++month) {
      EXPECT_EQ(NormalisePlanDate(MakeDate(2027, month, 5)), MakeDate(2027, month, 5))
          << name << month;
    }
  }
}

TEST_F(ModGlobalTest, TextThatDoesNotReadBackIsATypeMismatch) {
  platform::Locale locale = platform::DefaultLocale();
  locale.short_date = "\"?\"";
  Wire(locale);
  plan().date_format = 15;
  EXPECT_EQ(ErrorOf([] { NormalisePlanDate(MakeDate(2027, 1, 2)); }), platform::kTypeMismatch);
}

}  // namespace
}  // namespace nimbrel::modGlobal
