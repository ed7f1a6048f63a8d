// What is laid out before the first iteration.

#include "platform/runtime_error.h"
#include "tests/simulation/run_test.h"

namespace nimbrel::modWeatherEvents {
namespace {

using platform::MakeDate;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class PreparationTest : public RunTest {};

TEST_F(PreparationTest, WithoutPeriodsAndWindowsNothingIsCollected) {
  Prepare();
  EXPECT_EQ(g_colCalendars->Count(), 0);
  EXPECT_EQ(g_colEvents->Count(), 0);
  EXPECT_EQ(g_colWindowStarts->Count(), 0);
  EXPECT_EQ(g_colWindowEnds->Count(), 0);
  EXPECT_EQ(g_colNoSplit->Count(), 0);
  EXPECT_EQ(g_dtFirstDay, January(4));
  EXPECT_EQ(g_dtLastDay, January(4));
  recorder().Clear();
  Apply();
  Rollback();
  EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(PreparationTest, TwoPeriodsOfOneCalendarKeepItOnce) {
  plan().AddPeriod("P1", "North Sea", January(10), January(12));
  plan().AddPeriod("P2", "North Sea", January(20), January(22));
  Prepare();
  EXPECT_THAT(NamesOf(g_colCalendars), ElementsAre("North Sea"));
  EXPECT_THAT(IdsOf(g_colEvents), ElementsAre("P1", "P2"));
}

TEST_F(PreparationTest, APeriodAndAWindowOnTwoCalendarsWidenTheBoundsBoth) {
  plan().AddPeriod("P", "NORTH SEA", MakeDate(2026, 12, 1), January(12));
  plan().AddWindow("W", "RIVER", "1/20/2027", "2/10/2027");
  Prepare();
  EXPECT_THAT(NamesOf(g_colCalendars), ElementsAre("NORTH SEA", "RIVER"));
  EXPECT_EQ(g_dtFirstDay, MakeDate(2026, 12, 1));
  EXPECT_EQ(g_dtLastDay, MakeDate(2027, 2, 11));
}

TEST_F(PreparationTest, BothEdgesStandUnderTheKeyOfTheStartEdge) {
  plan().AddWindow("W1", "RIVER", "1/20/2027", "2/10/2027");
  plan().AddWindow("W2", "RIVER", "2/20/2027", "3/10/2027");
  Prepare();
  EXPECT_EQ(g_colWindowStarts->Item("AW2")->get_ID(), "W2");
  EXPECT_EQ(g_colWindowEnds->Item("AW2")->get_ID(), "W2-END");
  EXPECT_FALSE(g_colWindowEnds->Contains("AW2-END"));
  EXPECT_THAT(IdsOf(g_colWindowStarts), ElementsAre("W1", "W2"));
}

TEST_F(PreparationTest, TheWindowsLatestEndIsItsEarliestPlusTheGreatestDuration) {
  plan().time_unit = 24;
  plan().AddWindow("W", "RIVER", "1/20/2027", "2/10/2027");
  plan().Task("W").duration->maximum = 800.0;
  // 36.5 hours round to 36, which are 4.5 days of 8 hours, and these round to 4.
  plan().Task("W-END").duration->maximum = 36.5;
  Prepare();
  EXPECT_EQ(g_dtFirstDay, January(4));
  EXPECT_EQ(g_dtLastDay, MakeDate(2027, 2, 15));
}

TEST_F(PreparationTest, TheStartEdgesDurationsDoNotEnterTheBounds) {
  plan().AddWindow("W", "RIVER", "12/1/2026", "12/2/2026");
  plan().Task("W").duration->maximum = 100.0;
  Prepare();
  EXPECT_EQ(g_dtFirstDay, MakeDate(2026, 12, 1));
  EXPECT_EQ(g_dtLastDay, January(4));
}

TEST_F(PreparationTest, TheUpperBoundIsNeverBeforeTheAnchorDate) {
  plan().AddPeriod("P", "NORTH SEA", MakeDate(2026, 1, 1), MakeDate(2026, 1, 31));
  Prepare();
  EXPECT_EQ(g_dtFirstDay, MakeDate(2026, 1, 1));
  EXPECT_EQ(g_dtLastDay, January(4));
}

TEST_F(PreparationTest, ALastDayThatEqualsTheBoundRaisesItNoFurther) {
  plan().AddPeriod("P1", "NORTH SEA", January(5), January(10));
  plan().AddPeriod("P2", "NORTH SEA", January(5), January(11));
  Prepare();
  EXPECT_EQ(g_dtLastDay, January(11));
  plan().AddPeriod("P3", "NORTH SEA", January(5), January(12));
  Prepare();
  EXPECT_EQ(g_dtLastDay, January(13));
}

TEST_F(PreparationTest, AnEmptyFirstDayPullsTheLowerBoundBackToDateZero) {
  plan().AddPeriod("P", "NORTH SEA", January(5), January(10));
  plan().Task("P").custom.clear();
  Prepare();
  EXPECT_EQ(g_dtFirstDay, platform::Date{0.0});
  EXPECT_EQ(g_dtLastDay, January(4));
}

TEST_F(PreparationTest, OnlyTheTextTrueInAnyCaseMarksATask) {
  const std::vector<std::string> marks = {"True", "False", "TRUE", "yes",
                                          "true", "-1",    "",     " True"};
  for (std::size_t i = 0; i < marks.size(); ++i) {
    plan().AddTask("A" + std::to_string(i), 1.0)->SetWeatherValue("nosplit", marks[i]);
  }
  plan().AddTask("UNMARKED", 1.0);
  Prepare();
  EXPECT_THAT(IdsOf(g_colNoSplit), ElementsAre("A0", "A2", "A4"));
  EXPECT_EQ(g_colNoSplit->Item("AA2")->get_ID(), "A2");
}

TEST_F(PreparationTest, ChildrenOfOtherTypesAddNothing) {
  for (const char* type : {"4", "10", "0", "2", "01", ""}) {
    plan()
        .AddPeriod(std::string("C") + type, "NORTH SEA", January(5), January(10))
        ->SetWeatherValue("tasktype", type);
  }
  plan().AddPeriod("UNTYPED", "NORTH SEA", January(5), January(10))->values.clear();
  Prepare();
  EXPECT_EQ(g_colEvents->Count(), 0);
  EXPECT_EQ(g_colWindowStarts->Count(), 0);
  EXPECT_EQ(g_colWindowEnds->Count(), 0);
  EXPECT_EQ(g_colCalendars->Count(), 0);
}

TEST_F(PreparationTest, APeriodThatIsNoChildOfTheSummaryIsNotSeen) {
  plan().AddPeriod("P", "NORTH SEA", January(5), January(10))->parent.reset();
  Prepare();
  EXPECT_EQ(g_colEvents->Count(), 0);
}

TEST_F(PreparationTest, OnlyPeriodsThatHaveARiskGetItsModeSet) {
  plan().AddPeriod("P1", "NORTH SEA", January(5), January(10))->risk = {0, 40.0};
  plan().AddPeriod("P2", "NORTH SEA", January(5), January(10))->risk = {0, 100.0};
  plan().AddPeriod("P3", "NORTH SEA", January(5), January(10));
  Prepare();
  EXPECT_EQ(plan().Task("P1").risk->mode, 1);
  EXPECT_EQ(plan().Task("P2").risk->mode, 1);
  EXPECT_FALSE(plan().Task("P3").risk.has_value());
  EXPECT_THAT(recorder().Containing({"Probability"}), IsEmpty());
}

TEST_F(PreparationTest, AnEndEdgeWithoutADurationGetsOne) {
  plan().AddWindow("W", "RIVER", "1/20/2027", "2/10/2027");
  plan().Task("W-END").duration.reset();
  Prepare();
  EXPECT_TRUE(plan().Task("W-END").duration.has_value());
  EXPECT_EQ(g_dtLastDay, MakeDate(2027, 2, 11));
}

TEST_F(PreparationTest, NothingElseOfThePlanIsChanged) {
  plan().AddPeriod("P", "NORTH SEA", January(5), January(10))->risk = {0, 40.0};
  plan().AddWindow("W", "RIVER", "1/20/2027", "2/10/2027");
  plan().AddTask("A", 1.0)->SetWeatherValue("nosplit", "True");
  Prepare();
  EXPECT_THAT(recorder().Containing(
                  {" = ", "SetDays", "SetValue", "SetCustom", ".Add", "Remove", "Recalculate"}),
              ElementsAre("TaskRisk(P).Mode = 1"));
}

TEST_F(PreparationTest, CallsTheHostInAFixedOrder) {
  plan().AddPeriod("P", "NORTH SEA", January(5), January(10))->risk = {0, 40.0};
  plan().AddWindow("W", "RIVER", "1/20/2027", "2/10/2027");
  plan().Task("P").SetWeatherValue("nosplit", "True");
  Prepare();
  EXPECT_THAT(
      calls(),
      ElementsAre(
          "Application.ActivePlan", "Plan.Properties", "PlanProperties.AnchorDate",
          "Application.ActivePlan", "Plan.Properties", "PlanProperties.AnchorDate", "Plan.Tasks",
          R"(PlanTasks.Item "WEATHER")", "Task(WEATHER).Children",
          // The period.
          "Task(P).UserFields", R"(UserFields(P).GetValue 2 "weather" "tasktype" "0")",
          "Task(P).UserFields", R"(UserFields(P).GetCustom "Weather-start")", "Task(P).UserFields",
          R"(UserFields(P).GetCustom "Weather-end")", "Task(P).Calendar", "Task(P).Calendar",
          "Calendar(NORTH SEA).Name", "Task(P).Risk 0", "TaskRisk(P).Mode = 1",
          // The window, from its start edge.
          "Task(W).UserFields", R"(UserFields(W).GetValue 2 "weather" "tasktype" "0")",
          "Task(W).ID", "Task(W).Links", "TaskLinks(W).Successors", "LinkList(W).Item 1",
          "TaskLink(W).Task", "Task(W).ID", "Task(W).UserFields",
          R"(UserFields(W).GetValue 2 "weather" "startdate" "")", "Task(W-END).UserFields",
          R"(UserFields(W-END).GetValue 2 "weather" "startdate" "")", "Task(W-END).Duration -1",
          "Duration(W-END).Maximum", "Application.ActivePlan", "Plan.Properties",
          "PlanProperties.TimeUnit", "Task(W).Calendar", "Task(W).Calendar", "Calendar(RIVER).Name",
          // The end edge is passed over.
          "Task(W-END).UserFields", R"(UserFields(W-END).GetValue 2 "weather" "tasktype" "0")",
          // All tasks, for the mark.
          "Plan.Tasks", "PlanTasks.Elements", "Task(WEATHER).UserFields",
          R"(UserFields(WEATHER).GetValue 2 "weather" "nosplit" "")", "Task(P).UserFields",
          R"(UserFields(P).GetValue 2 "weather" "nosplit" "")", "Task(P).ID", "Task(W).UserFields",
          R"(UserFields(W).GetValue 2 "weather" "nosplit" "")", "Task(W-END).UserFields",
          R"(UserFields(W-END).GetValue 2 "weather" "nosplit" "")", "Plan.Properties",
          "PlanProperties.TimeUnit", "Plan.RiskAnalysis"));
}

TEST_F(PreparationTest, TheBoundsComeFromTheActivePlanAndTheRestFromTheEventsPlan) {
  const auto analysed = host_.plan_object();
  plan().AddPeriod("P", "NORTH SEA", January(5), January(10));
  plan().time_unit = 24;
  auto other = recording::MakePlanState();
  other->anchor = MakeDate(2030, 1, 1);
  host_.OpenPlan(other);
  BeforeRiskAnalysis(analysed);
  EXPECT_EQ(g_dtFirstDay, January(5));
  EXPECT_EQ(g_dtLastDay, MakeDate(2030, 1, 1));
  EXPECT_THAT(IdsOf(g_colEvents), ElementsAre("P"));
  EXPECT_EQ(g_nTimeUnit, 24);
}

TEST_F(PreparationTest, ASecondRunReplacesWhatTheFirstLeft) {
  plan().AddPeriod("P1", "NORTH SEA", January(5), January(10));
  plan().AddTask("A", 1.0)->SetWeatherValue("nosplit", "True");
  Prepare();
  plan().AddPeriod("P2", "RIVER", January(5), January(10));
  plan().Task("A").SetWeatherValue("nosplit", "False");
  Prepare();
  EXPECT_THAT(IdsOf(g_colEvents), ElementsAre("P1", "P2"));
  EXPECT_THAT(NamesOf(g_colCalendars), ElementsAre("NORTH SEA", "RIVER"));
  EXPECT_EQ(g_colNoSplit->Count(), 0);
}

TEST_F(PreparationTest, AnyErrorInAddingACalendarIsDropped) {
  plan().AddPeriod("P1", "NORTH SEA", January(5), January(10));
  plan().AddPeriod("P2", "RIVER", January(5), January(10));
  plan().AddPeriod("P3", "RIVER", January(5), January(10))->calendar = nullptr;
  recorder().FailOn("Calendar(NORTH SEA).Name");
  Prepare();
  EXPECT_THAT(NamesOf(g_colCalendars), ElementsAre("RIVER"));
  EXPECT_EQ(g_colEvents->Count(), 3);
}

TEST_F(PreparationTest, AFailingRiskIsNotAmongTheErrorsThatAreDropped) {
  plan().AddPeriod("P1", "NORTH SEA", January(5), January(10));
  recorder().FailOn("Task(P1).Risk", 1, 99);
  EXPECT_EQ(ErrorOf([&] { Prepare(); }), 99);
  EXPECT_THAT(NamesOf(g_colCalendars), ElementsAre("NORTH SEA")) << "as far as it got";
  EXPECT_EQ(g_colEvents->Count(), 0);
}

TEST_F(PreparationTest, FailsWithoutTheSummaryTask) {
  plan().tasks.clear();
  EXPECT_EQ(ErrorOf([&] { Prepare(); }), platform::kInvalidProcedureCall);
}

TEST_F(PreparationTest, FailsOnAWindowWithoutASuccessor) {
  plan().AddWindow("W", "RIVER", "1/20/2027", "2/10/2027")->successors.clear();
  EXPECT_EQ(ErrorOf([&] { Prepare(); }), platform::kSubscriptOutOfRange);
  EXPECT_EQ(g_colWindowStarts->Count(), 1);
  EXPECT_EQ(g_colWindowEnds->Count(), 0);
}

TEST_F(PreparationTest, FailsOnAStartDateThatIsNoDate) {
  plan().AddWindow("W", "RIVER", "soon", "2/10/2027");
  EXPECT_EQ(ErrorOf([&] { Prepare(); }), platform::kTypeMismatch);
  plan().Task("W").values.erase({"weather", "startdate"});
  EXPECT_EQ(ErrorOf([&] { Prepare(); }), platform::kTypeMismatch) << "nor is no text at all";
}

TEST_F(PreparationTest, FailsOnTwoMarkedTasksOrTwoWindowsOfOneId) {
  plan().AddTask("A", 1.0)->SetWeatherValue("nosplit", "True");
  plan().AddTask("a", 1.0)->SetWeatherValue("nosplit", "True");
  EXPECT_EQ(ErrorOf([&] { Prepare(); }), platform::kDuplicateKey);
  plan().Task("A").SetWeatherValue("nosplit", "False");
  Prepare();
  plan().AddWindow("W", "RIVER", "1/20/2027", "2/10/2027");
  plan().AddWindow("w", "RIVER", "1/20/2027", "2/10/2027");
  EXPECT_EQ(ErrorOf([&] { Prepare(); }), platform::kDuplicateKey);
}

TEST_F(PreparationTest, FailsWithoutAnActivePlan) {
  const auto analysed = host_.plan_object();
  host_.ClosePlan();
  EXPECT_EQ(ErrorOf([&] { BeforeRiskAnalysis(analysed); }), platform::kObjectNotSet);
}

}  // namespace
}  // namespace nimbrel::modWeatherEvents
