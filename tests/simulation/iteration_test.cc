// How the samples of an iteration become days off. January 2027: 2, 3, 9, 10, 16, 17 are weekends;
// weather calendars work every day unless a test says otherwise.

#include "platform/runtime_error.h"
#include "tests/simulation/run_test.h"

namespace nimbrel::modWeatherEvents {
namespace {

using platform::MakeDate;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class IterationTest : public RunTest {
 protected:
  /// A period over 11 to 20 January, ten days, on NORTH SEA.
  recording::TaskState& Period(double probability, std::vector<std::int32_t> samples,
                               const std::string& id = "P") {
    auto& period = *plan().AddPeriod(id, "NORTH SEA", January(11), January(20));
    if (probability < 100.0) {
      period.risk = {0, probability};
    }
    period.scripted_samples = std::move(samples);
    period.scripted_skips = {false};
    return period;
  }
  void Draw(std::vector<double> numbers) { plan().scripted_random = std::move(numbers); }
};

TEST_F(IterationTest, GoesThroughItsStepsInOrderEachOverItsWholeCollection) {
  Period(50.0, {1}, "P1");
  Period(50.0, {1}, "P2");
  plan().AddWindow("W", "RIVER", "1/20/2027", "2/10/2027");
  plan().AddTask("A", 1.0)->SetWeatherValue("nosplit", "True");
  Draw({0.0, 0.0});
  Prepare();
  Apply();
  EXPECT_THAT(recorder().Containing({"SetDays", "Constraint"}),
              ElementsAre("Calendar(NORTH SEA).SetDays 1 2027-01-04 2027-02-11",
                          "Calendar(RIVER).SetDays 1 2027-01-04 2027-02-11",
                          "Calendar(NORTH SEA).SetDays 0 2027-01-11 2027-01-11",
                          "Calendar(NORTH SEA).SetDays 0 2027-01-11 2027-01-11",
                          "Calendar(RIVER).SetDays 0 2027-01-20 2027-02-10",
                          "TaskDates(A).Constraint = 0", "TaskDates(A).ConstraintDate = 0"));
}

TEST_F(IterationTest, ASampleOfZeroTakesNoDayAndNoRandomNumber) {
  Period(50.0, {0}, "P1");
  Period(100.0, {0}, "P2");
  Prepare();
  Apply();
  EXPECT_THAT(calls(), ElementsAre("Calendar(NORTH SEA).SetDays 1 2027-01-04 2027-01-21",
                                   "Task(P1).SampledDuration", "Task(P2).SampledDuration"));
}

TEST_F(IterationTest, APeriodThatTheHostHasRuledOutTakesNothing) {
  Period(50.0, {3}).scripted_skips = {true};
  Prepare();
  Apply();
  EXPECT_THAT(WeatherOf("NORTH SEA"), IsEmpty());
  EXPECT_THAT(recorder().Containing({"Rnd"}), IsEmpty());
}

TEST_F(IterationTest, ABlockCallsTheHostInAFixedOrder) {
  Period(50.0, {3});
  Draw({0.5});
  Prepare();
  Apply();
  EXPECT_THAT(
      calls(),
      ElementsAre("Calendar(NORTH SEA).SetDays 1 2027-01-04 2027-01-21", "Task(P).SampledDuration",
                  "Task(P).UserFields", R"(UserFields(P).GetCustom "Weather-start")",
                  "Task(P).UserFields", R"(UserFields(P).GetCustom "Weather-end")",
                  "Task(P).Risk 0", "TaskRisk(P).Probability", "Task(P).Calendar",
                  "Calendar(NORTH SEA).WorkingTime 2027-01-11 2027-01-20 1",
                  "Task(P).SampledDuration", "Task(P).SkipInIteration", "RiskAnalysis.Rnd",
                  "Task(P).SampledDuration", "Task(P).Calendar",
                  // 7 spare days of which half are 3.5: the fraction stays in the dates.
                  "Calendar(NORTH SEA).SetDays 0 2027-01-14T12:00:00 2027-01-16T12:00:00"));
  EXPECT_THAT(WeatherOf("NORTH SEA"), ElementsAre(14, 15, 16));
}

TEST_F(IterationTest, AScatterCallsTheHostInAFixedOrder) {
  Period(100.0, {1});
  Draw({0.25});
  Prepare();
  Apply();
  EXPECT_THAT(
      calls(),
      ElementsAre("Calendar(NORTH SEA).SetDays 1 2027-01-04 2027-01-21", "Task(P).SampledDuration",
                  "Task(P).UserFields", R"(UserFields(P).GetCustom "Weather-start")",
                  "Task(P).UserFields", R"(UserFields(P).GetCustom "Weather-end")",
                  "Task(P).Risk 0", "Task(P).Calendar",
                  "Calendar(NORTH SEA).WorkingTime 2027-01-11 2027-01-20 1",
                  "Task(P).SampledDuration", "Task(P).SkipInIteration", "Task(P).Calendar",
                  "Calendar(NORTH SEA).WorkingTime 2027-01-11 2027-01-20 1", "RiskAnalysis.Rnd",
                  "Plan.Properties", "PlanProperties.TimeUnit", "Task(P).Calendar",
                  // A quarter of 10 days, cut to 2.
                  "Calendar(NORTH SEA).SetDays 0 2027-01-13 0", "Task(P).Calendar",
                  "Calendar(NORTH SEA).WorkingTime 2027-01-11 2027-01-20 1"));
}

TEST_F(IterationTest, ExactlyOneHundredPercentIsScatteredAndLessIsABlock) {
  Period(100.0, {1}).risk = {0, 100.0};
  Draw({0.55});
  Prepare();
  Apply();
  EXPECT_THAT(DaySettings()[1], "Calendar(NORTH SEA).SetDays 0 2027-01-16 0");
  plan().Task("P").risk->probability = 99.99;
  plan().random_reads = 0;
  Apply();
  EXPECT_THAT(DaySettings()[1],
              "Calendar(NORTH SEA).SetDays 0 2027-01-15T22:48:00 2027-01-15T22:48:00")
      << "9 spare days times 0.55 are 4.95";
}

TEST_F(IterationTest, AProbabilityAboveOneHundredIsCertainToo) {
  Period(100.0, {1}).risk = {0, 120.0};
  Draw({0.0});
  Prepare();
  Apply();
  EXPECT_THAT(DaySettings()[1], "Calendar(NORTH SEA).SetDays 0 2027-01-11 0");
}

TEST_F(IterationTest, AScatterDrawsAgainForADayThatIsOffAlready) {
  Period(100.0, {3});
  Draw({0.0, 0.05, 0.0, 0.35, 0.99});
  Prepare();
  Apply();
  EXPECT_EQ(recorder().Containing({"Rnd"}).size(), 5U);
  EXPECT_THAT(WeatherOf("NORTH SEA"), ElementsAre(11, 14, 20));
}

TEST_F(IterationTest, AWeekendInTheSpanCostsNoWeather) {
  plan().AddCalendar("NORTH SEA")->weekdays = {true, true, true, true, true, false, false};
  Period(100.0, {1});
  Draw({0.5, 0.6, 0.7});  // 16 and 17 January are the weekend
  Prepare();
  Apply();
  EXPECT_EQ(DaySettings().back(), "Calendar(NORTH SEA).SetDays 0 2027-01-18 0");
  EXPECT_EQ(plan().random_reads, 3U);
}

TEST_F(IterationTest, AScatterOfMoreThanTheSpanTakesItAll) {
  for (const std::int32_t sample : {10, 11, 500}) {
    Period(100.0, {sample}, "P" + std::to_string(sample));
    Prepare();
    Apply();
    EXPECT_THAT(WeatherOf("NORTH SEA"), ElementsAre(11, 12, 13, 14, 15, 16, 17, 18, 19, 20))
        << sample;
    plan().tasks.pop_back();
  }
}

TEST_F(IterationTest, ABlockOfMoreThanTheSpanStartsOnItsFirstDayAndRunsPastItsEnd) {
  Period(50.0, {12});
  Draw({0.999});
  Prepare();
  Apply();
  EXPECT_EQ(DaySettings().back(), "Calendar(NORTH SEA).SetDays 0 2027-01-11 2027-01-22");
}

TEST_F(IterationTest, ABlockOfOneDayTakesThatDay) {
  Period(50.0, {1});
  Draw({0.0});
  Prepare();
  Apply();
  EXPECT_EQ(DaySettings().back(), "Calendar(NORTH SEA).SetDays 0 2027-01-11 2027-01-11");
  EXPECT_THAT(WeatherOf("NORTH SEA"), ElementsAre(11));
}

TEST_F(IterationTest, ABlockCountsCalendarDaysOverAWeekend) {
  plan().AddCalendar("NORTH SEA")->weekdays = {true, true, true, true, true, false, false};
  Period(50.0, {4});
  // Eight working days less four are four spare ones; 0.8 of them are 3.2.
  Draw({0.8});
  Prepare();
  Apply();
  EXPECT_THAT(WeatherOf("NORTH SEA"), ElementsAre(14, 15, 16, 17));
}

TEST_F(IterationTest, ALaterPeriodFindsWhatAnEarlierOneHasLeft) {
  Period(50.0, {4}, "P1");
  Period(50.0, {4}, "P2");
  Draw({0.0, 0.5});
  Prepare();
  Apply();
  // Six days are left to the second: two spare ones, half of which are one.
  EXPECT_THAT(DaySettings(), ElementsAre("Calendar(NORTH SEA).SetDays 1 2027-01-04 2027-01-21",
                                         "Calendar(NORTH SEA).SetDays 0 2027-01-11 2027-01-14",
                                         "Calendar(NORTH SEA).SetDays 0 2027-01-12 2027-01-15"));
}

TEST_F(IterationTest, AScatterOnWhatIsLeftTakesItsOwnDaysFromIt) {
  Period(50.0, {4}, "P1");
  Period(100.0, {2}, "P2");
  Prepare();
  Apply();
  EXPECT_EQ(WeatherOf("NORTH SEA").size(), 6U);
}

TEST_F(IterationTest, APlanInHoursKeepsTheFractionOfAScatteredDay) {
  plan().time_unit = 24;
  Period(100.0, {8});
  Draw({0.25});
  Prepare();
  Apply();
  EXPECT_EQ(DaySettings().back(), "Calendar(NORTH SEA).SetDays 0 2027-01-13T12:00:00 0");
}

TEST_F(IterationTest, TheSpanCountsCalendarDaysWhateverTheHourOfItsEnd) {
  plan().time_unit = 24;
  Period(100.0, {8}).custom["Weather-end"] = January(20) + 22.0 / 24.0;
  Draw({0.5});
  Prepare();
  Apply();
  EXPECT_EQ(DaySettings().back(), "Calendar(NORTH SEA).SetDays 0 2027-01-16 0");
}

TEST_F(IterationTest, ABlockInAPlanInHoursCountsUnitsAsCalendarDays) {
  plan().time_unit = 24;
  Period(50.0, {16});
  Draw({0.0});
  Prepare();
  Apply();
  EXPECT_EQ(DaySettings().back(), "Calendar(NORTH SEA).SetDays 0 2027-01-11 2027-01-26");
}

TEST_F(IterationTest, AScatterReadsTheTimeUnitOfTheEventsPlanAtEveryDraw) {
  Period(100.0, {3});
  Draw({0.0, 0.1, 0.2});
  Prepare();
  Apply();
  EXPECT_EQ(recorder().Containing({"TimeUnit"}).size(), 3U);
  EXPECT_EQ(recorder().Containing({"ActivePlan"}).size(), 0U);
}

TEST_F(IterationTest, AWindowRunsFromTheSampledOpeningToTheSampledClosing) {
  plan().AddWindow("W", "RIVER", "1/12/2027", "1/20/2027")->scripted_samples = {2};
  plan().Task("W-END").scripted_samples = {5};
  Prepare();
  Apply();
  EXPECT_THAT(
      calls(),
      ElementsAre("Calendar(RIVER).SetDays 1 2027-01-04 2027-01-21", "Task(W).ID",
                  "Task(W).UserFields", R"(UserFields(W).GetValue 2 "weather" "startdate" "")",
                  "Task(W-END).UserFields",
                  R"(UserFields(W-END).GetValue 2 "weather" "startdate" "")",
                  "Task(W).SampledDuration", "Task(W-END).SampledDuration", "Task(W).Calendar",
                  "Calendar(RIVER).SetDays 0 2027-01-14 2027-01-25"));
}

TEST_F(IterationTest, AWindowOfSamplesOfZeroHappensOnItsEarliestDates) {
  plan().AddWindow("W", "RIVER", "1/12/2027", "1/20/2027")->scripted_skips = {true};
  Prepare();
  Apply();
  EXPECT_EQ(DaySettings().back(), "Calendar(RIVER).SetDays 0 2027-01-12 2027-01-20");
}

TEST_F(IterationTest, AWindowsOffsetsCountUnitsOfACalendarDayAndRoundToTheEvenDay) {
  plan().time_unit = 24;
  plan().AddWindow("W", "RIVER", "1/12/2027", "1/20/2027")->scripted_samples = {36, 12};
  plan().Task("W-END").scripted_samples = {60, 24};
  Prepare();
  Apply(0);  // 1.5 and 2.5 days
  EXPECT_EQ(DaySettings().back(), "Calendar(RIVER).SetDays 0 2027-01-14 2027-01-22");
  Apply(1);  // 0.5 and 1 day
  EXPECT_EQ(DaySettings().back(), "Calendar(RIVER).SetDays 0 2027-01-12 2027-01-21");
}

TEST_F(IterationTest, AWindowInQuartersDividesByNinetySix) {
  plan().time_unit = 96;
  plan().AddWindow("W", "RIVER", "1/12/2027", "1/20/2027")->scripted_samples = {192};
  Prepare();
  Apply();
  EXPECT_EQ(DaySettings().back(), "Calendar(RIVER).SetDays 0 2027-01-14 2027-01-20");
}

TEST_F(IterationTest, AWindowThatClosesBeforeItOpensIsHandedOnAsItIs) {
  plan().AddWindow("W", "RIVER", "1/20/2027", "1/12/2027");
  Prepare();
  Apply();
  EXPECT_EQ(DaySettings().back(), "Calendar(RIVER).SetDays 0 2027-01-20 2027-01-12");
}

TEST_F(IterationTest, AConstraintOfTheUsersOwnIsWiped) {
  auto& task = *plan().AddTask("A", 1.0);
  task.SetWeatherValue("nosplit", "True");
  task.constraint = 3;
  task.constraint_date = January(12);
  Prepare();
  EXPECT_EQ(task.constraint, 3);
  Apply();
  EXPECT_EQ(task.constraint, 0);
  EXPECT_EQ(task.constraint_date, platform::Date{0.0});
}

TEST_F(IterationTest, AnIterationStartsFromCleanCalendars) {
  Period(50.0, {3, 0});
  Draw({0.0});
  Prepare();
  Apply(0);
  EXPECT_THAT(WeatherOf("NORTH SEA"), ElementsAre(11, 12, 13));
  Apply(1);
  EXPECT_THAT(WeatherOf("NORTH SEA"), IsEmpty());
}

TEST_F(IterationTest, TheNumberOfTheIterationChangesNothing) {
  Period(100.0, {2});
  Draw({0.1, 0.2});
  Prepare();
  Apply();
  const std::vector<std::string> first = calls();
  for (const Corvane8::Long iteration : {1, 1000000, -1}) {
    plan().random_reads = 0;
    recorder().Clear();
    BeforeRiskIteration(host_.plan_object(), iteration);
    EXPECT_EQ(calls(), first) << iteration;
  }
}

TEST_F(IterationTest, ChangedDatesOfAPeriodCountFromTheNextIteration) {
  Period(50.0, {1});
  Draw({0.0, 0.0});
  Prepare();
  Apply();
  plan().Task("P").custom["Weather-start"] = January(15);
  Apply();
  EXPECT_EQ(DaySettings().back(), "Calendar(NORTH SEA).SetDays 0 2027-01-15 2027-01-15");
}

TEST_F(IterationTest, AFailingHostCallLeavesTheCalendarsAsFarAsTheIterationGot) {
  Period(50.0, {2}, "P1");
  Period(50.0, {2}, "P2");
  Draw({0.0, 0.0});
  Prepare();
  recorder().FailOn("Task(P2).Risk", 1, 77);
  EXPECT_EQ(ErrorOf([&] { Apply(); }), 77);
  EXPECT_THAT(WeatherOf("NORTH SEA"), ElementsAre(11, 12));
  Period(50.0, {0}, "P3");
  plan().Task("P1").scripted_samples = plan().Task("P2").scripted_samples = {0};
  Apply();
  EXPECT_THAT(WeatherOf("NORTH SEA"), IsEmpty()) << "the next reset cleans up";
}

TEST_F(IterationTest, AStartDateThatIsNoDateFails) {
  plan().AddWindow("W", "RIVER", "1/12/2027", "1/20/2027");
  Prepare();
  plan().Task("W-END").SetWeatherValue("startdate", "soon");
  EXPECT_EQ(ErrorOf([&] { Apply(); }), platform::kTypeMismatch);
}

TEST_F(IterationTest, AStartEdgeWhoseIdHasChangedFindsNoEndEdge) {
  plan().AddWindow("W", "RIVER", "1/12/2027", "1/20/2027");
  Prepare();
  plan().Task("W").id = "OTHER";
  EXPECT_EQ(ErrorOf([&] { Apply(); }), platform::kInvalidProcedureCall);
}

TEST_F(IterationTest, WeatherPastTheLastDateOverflows) {
  Period(50.0, {2147483647}).custom["Weather-end"] = January(11);
  Draw({0.0});
  Prepare();
  EXPECT_EQ(ErrorOf([&] { Apply(); }), platform::kOverflow);
}

TEST_F(IterationTest, AnIterationOutsideARunFails) {
  EXPECT_EQ(ErrorOf([&] { BeforeRiskIteration(host_.plan_object(), 1); }), platform::kObjectNotSet);
}

}  // namespace
}  // namespace nimbrel::modWeatherEvents
