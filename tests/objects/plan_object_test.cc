// The plan's properties, display and options.

#include "tests/objects/support.h"

namespace nimbrel::engine {
namespace {

using PlanObjectTest = ObjectsTest;

TEST_F(PlanObjectTest, TellsWhatTheDocumentSays) {
  Plan document = MakePlan(TimeUnit::kQuarters);
  document.hours_per_day = 10;
  document.date_format = 12;
  document.recalculate_after_move = true;
  Open(std::move(document));
  EXPECT_EQ(plan()->get_Name(), "Pier");
  EXPECT_EQ(plan()->get_Properties()->get_Title(), "The new pier");
  EXPECT_EQ(plan()->get_Properties()->get_TimeUnit(), 96);
  EXPECT_EQ(plan()->get_Display()->get_HoursPerDay(), 10);
  EXPECT_EQ(plan()->get_Display()->get_DateFormat(), 12);
  EXPECT_TRUE(plan()->get_RiskAnalysis()->get_Options()->get_RecalculateAfterMove());
}

TEST_F(PlanObjectTest, TheAnchorIsThePlansStartAndTheReferenceTheDataDate) {
  Plan document = MakePlan();
  Open(document);
  EXPECT_EQ(plan()->get_Properties()->get_AnchorDate(), January(4));
  EXPECT_EQ(plan()->get_Properties()->get_ReferenceDate(), January(4));
  document.data_date = Instant(JanuaryDay(11), 480);
  Open(document);
  EXPECT_EQ(plan()->get_Properties()->get_AnchorDate(), January(4));
  EXPECT_EQ(plan()->get_Properties()->get_ReferenceDate(), January(11) + 8.0 / 24.0);
}

TEST_F(PlanObjectTest, OptionsAreKeptInTheDocumentByThreeExactNames) {
  Open(MakePlan());
  plan()->SetOption("NIMBRELMOD", "Options", "IsWeatherPlan", "TRUE");
  EXPECT_EQ(plan()->GetOption("NIMBRELMOD", "Options", "IsWeatherPlan", ""), "TRUE");
  EXPECT_EQ(plan()->GetOption("nimbrelmod", "Options", "IsWeatherPlan", "none"), "none");
  EXPECT_EQ(host_->document().options.at({"NIMBRELMOD", "Options", "IsWeatherPlan"}), "TRUE");
}

TEST_F(PlanObjectTest, ALoopOfLinksIsAnErrorThatNamesThePlan) {
  Open({{"A", 1}, {"B", 1}});
  TaskOf("A")->get_Links()->get_Successors()->Add("B", 2, 0, 0, 0);
  TaskOf("B")->get_Links()->get_Successors()->Add("A", 2, 0, 0, 0);
  EXPECT_EQ(ErrorOf([&] { plan()->Recalculate(); }), platform::kApplicationDefined);
  EXPECT_THAT(ErrorTextOf([&] { plan()->Recalculate(); }), ::testing::StartsWith("Plan Pier: "));
}

TEST_F(PlanObjectTest, ALoopOfLinksIsAnErrorThatNamesTheTaskWhoseDatesAreRead) {
  Open({{"A", 1}, {"B", 1}, {"C", 1}});
  TaskOf("A")->get_Links()->get_Successors()->Add("B", 2, 0, 0, 0);
  TaskOf("B")->get_Links()->get_Successors()->Add("A", 2, 0, 0, 0);
  EXPECT_EQ(ErrorOf([&] { TaskOf("C")->get_Dates()->get_Start(); }), platform::kApplicationDefined);
  EXPECT_THAT(ErrorTextOf([&] { TaskOf("C")->get_Dates()->get_Start(); }),
              ::testing::StartsWith("Task C: "));
  EXPECT_THAT(ErrorTextOf([&] { TaskOf("C")->NextWorkingDate(January(4), 0.0); }),
              ::testing::StartsWith("Task C: "));
}

TEST_F(PlanObjectTest, APlanThatCannotBeScheduledCanStillBeRepaired) {
  Open({{"A", 1}, {"B", 1}});
  TaskOf("A")->get_Links()->get_Successors()->Add("B", 2, 0, 0, 0);
  TaskOf("B")->get_Links()->get_Successors()->Add("A", 2, 0, 0, 0);
  EXPECT_NE(ErrorOf([&] { plan()->Recalculate(); }), 0);
  EXPECT_EQ(calendars()->Item("STANDARD")->WorkingTime(January(4), January(10), 1), 5);
  tasks()->Remove("B");
  plan()->Recalculate();
  EXPECT_EQ(TaskOf("A")->get_Dates()->get_Start(), January(4) + 8.0 / 24.0);
}

}  // namespace
}  // namespace nimbrel::engine
