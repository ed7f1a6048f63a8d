// The controls for one task: its calendar, its assignments, and whether it may be split. Every
// change is in the plan at once.

#include "tests/dialog/assign_page_fixture.h"

namespace nimbrel::dialog {
namespace {

using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class AssignPage : public AssignPageTest {
 protected:
  std::string NoSplitOf(const std::string& task) {
    return plan().Task(task).WeatherValue("nosplit");
  }
  static std::vector<std::string> Texts(const toolkit::ListView& list) {
    std::vector<std::string> texts;
    for (const toolkit::ListItemRef& item : list.ListItems()) {
      texts.push_back(item->Text());
    }
    return texts;
  }
};

TEST_F(AssignPage, OpensWithNoTask) {
  OnPage([&] {
    EXPECT_THAT(Texts(dialog().lstWCals1), ElementsAre("FROST", "North Sea"));
    EXPECT_THAT(Texts(dialog().lstWCals3), ElementsAre("River Ice"));
    EXPECT_THAT(Checked(dialog().lstWCals1), IsEmpty());
    EXPECT_THAT(Checked(dialog().lstWCals3), IsEmpty());
    EXPECT_TRUE(dialog().lstWCals1.Enabled());
    EXPECT_TRUE(dialog().lstWCals3.Enabled());
    EXPECT_TRUE(dialog().cbAllCals.Enabled());
    EXPECT_EQ(dialog().cbAllCals.Text(), "");
    EXPECT_FALSE(dialog().chkSplit.Enabled());
  });
}

TEST_F(AssignPage, OffersAllCalendarsOfThePlanInItsOrder) {
  OnPage([&] {
    EXPECT_THAT(dialog().cbAllCals.Entries(),
                ElementsAre("STANDARD", "North Sea", "FROST", "River Ice"));
  });
}

TEST_F(AssignPage, ShowsTheTaskThatIsClicked) {
  plan().Task("B").calendar = plan().FindCalendar("FROST");
  plan().Assign("B", "North Sea");
  plan().Assign("B", "River Ice");
  plan().Task("B").SetWeatherValue("nosplit", "True");
  OnPage([&] {
    ClickNode("B");
    EXPECT_EQ(dialog().cbAllCals.Text(), "FROST");
    EXPECT_EQ(dialog().cbAllCals.ListIndex(), 2);
    EXPECT_TRUE(dialog().chkSplit.Enabled());
    EXPECT_TRUE(dialog().chkSplit.Value());
    EXPECT_THAT(Checked(dialog().lstWCals1), ElementsAre("North Sea"));
    EXPECT_THAT(Checked(dialog().lstWCals3), ElementsAre("River Ice"));
    ClickNode("A");
    EXPECT_EQ(dialog().cbAllCals.Text(), "STANDARD");
    EXPECT_FALSE(dialog().chkSplit.Value());
    EXPECT_THAT(Checked(dialog().lstWCals1), IsEmpty());
    EXPECT_THAT(Checked(dialog().lstWCals3), IsEmpty());
  });
  EXPECT_THAT(AssignedTo("B"), ElementsAre("North Sea", "River Ice"));
  EXPECT_THAT(Errors(), IsEmpty());
}

TEST_F(AssignPage, ReadsATaskAndWritesBackWhatItHas) {
  plan().Assign("A", "North Sea");
  OnPage([&] { ClickNode("A"); });
  EXPECT_THAT(calls(),
              ElementsAre("Application.ActivePlan", "Plan.Tasks", "PlanTasks.Item \"A\"",
                          "Task(A).Calendar", "Calendar(STANDARD).Name", "Application.ActivePlan",
                          "Plan.Calendars", "PlanCalendars.Item \"STANDARD\"",
                          "Task(A).Calendar = STANDARD", "Task(A).RiskCalendars",
                          "TaskRiskCalendars(A).Elements", "TaskRiskCalendar(A).RiskCalendar",
                          "RiskCalendar(North Sea).Name", "Task(A).UserFields",
                          "UserFields(A).GetValue 2 \"weather\" \"nosplit\" \"False\""));
  EXPECT_EQ(plan().Task("A").calendar, plan().FindCalendar("STANDARD"));
  EXPECT_EQ(NoSplitOf("A"), "");
}

TEST_F(AssignPage, ComingFromAMarkedTaskWritesFalseOnAnUnmarkedOne) {
  plan().Task("A").SetWeatherValue("nosplit", "True");
  OnPage([&] {
    ClickNode("A");
    ClickNode("B");
    ClickNode("C");
  });
  EXPECT_EQ(NoSplitOf("A"), "True");
  EXPECT_EQ(NoSplitOf("B"), "False");
  EXPECT_EQ(NoSplitOf("C"), "");
}

TEST_F(AssignPage, AssignmentsOfOtherCalendarsShowNowhereAndStay) {
  plan().AddCalendar("TIDES");
  plan().Assign("A", "TIDES");
  plan().Assign("A", "FROST");
  OnPage([&] {
    ClickNode("A");
    EXPECT_THAT(Checked(dialog().lstWCals1), ElementsAre("FROST"));
    EXPECT_THAT(Checked(dialog().lstWCals3), IsEmpty());
    Toggle(dialog().lstWCals1, "FROST");
  });
  EXPECT_THAT(AssignedTo("A"), ElementsAre("TIDES"));
  EXPECT_THAT(Errors(), IsEmpty());
}

TEST_F(AssignPage, ACheckAssignsTheCalendarAtOnceByItsKey) {
  OnPage([&] {
    ClickNode("A");
    recorder().Clear();
    Toggle(dialog().lstWCals1, "North Sea");
    EXPECT_THAT(calls(),
                ElementsAre("Task(A).RiskCalendars", "TaskRiskCalendars(A).Add \"NORTH SEA\"",
                            "TaskRiskCalendar(A).Value = 0"));
    EXPECT_THAT(AssignedTo("A"), ElementsAre("North Sea"));
    Toggle(dialog().lstWCals3, "River Ice");
    EXPECT_THAT(AssignedTo("A"), ElementsAre("North Sea", "River Ice"));
  });
  EXPECT_EQ(plan().Task("A").risk_calendars[0].value, 0.0);
  EXPECT_THAT(AssignedTo("B"), IsEmpty());
}

TEST_F(AssignPage, UncheckingTakesTheAssignmentAwayForGood) {
  plan().Assign("A", "FROST");
  plan().Assign("A", "River Ice");
  OnPage([&] {
    ClickNode("A");
    recorder().Clear();
    Toggle(dialog().lstWCals1, "FROST");
    EXPECT_THAT(calls(),
                ElementsAre("Task(A).RiskCalendars", "TaskRiskCalendars(A).Remove \"FROST\""));
    EXPECT_THAT(AssignedTo("A"), ElementsAre("River Ice"));
    dialog().cmdClose.UserClick();
    EXPECT_FALSE(dialog().Visible());
  });
  EXPECT_THAT(AssignedTo("A"), ElementsAre("River Ice"));
}

TEST_F(AssignPage, APickedCalendarBecomesTheTasksOwn) {
  OnPage([&] {
    ClickNode("B");
    recorder().Clear();
    dialog().cbAllCals.UserPick(3);
    EXPECT_THAT(calls(),
                ElementsAre("Application.ActivePlan", "Plan.Calendars",
                            "PlanCalendars.Item \"River Ice\"", "Task(B).Calendar = River Ice"));
  });
  EXPECT_EQ(plan().Task("B").calendar->name, "River Ice");
  EXPECT_EQ(plan().Task("A").calendar->name, "STANDARD");
}

TEST_F(AssignPage, TypedTextCountsOnceItIsTheNameOfACalendar) {
  OnPage([&] {
    ClickNode("B");
    dialog().cbAllCals.UserType("fros");
    EXPECT_EQ(plan().Task("B").calendar->name, "STANDARD");
    recorder().Clear();
    dialog().cbAllCals.UserTypeCharacter("t");
    EXPECT_EQ(plan().Task("B").calendar->name, "FROST");
    recorder().Clear();
    dialog().cbAllCals.UserTypeCharacter("y");
    EXPECT_THAT(calls(), IsEmpty());
    EXPECT_EQ(plan().Task("B").calendar->name, "FROST");
  });
}

TEST_F(AssignPage, TheBoxMarksTheTaskAndNoOther) {
  plan().AddTask("S", 0);
  PutUnder("A", "S");
  OnPage([&] {
    ClickNode("S");
    recorder().Clear();
    dialog().chkSplit.UserClick();
    EXPECT_THAT(calls(), ElementsAre("Application.ActivePlan", "Plan.Tasks", "PlanTasks.Item \"S\"",
                                     "Task(S).UserFields",
                                     "UserFields(S).SetValue 2 \"weather\" \"nosplit\" \"True\""));
    dialog().chkSplit.UserClick();
    EXPECT_EQ(NoSplitOf("S"), "False");
    dialog().chkSplit.UserClick();
  });
  EXPECT_EQ(NoSplitOf("S"), "True");
  EXPECT_EQ(NoSplitOf("A"), "");
}

TEST_F(AssignPage, ASummaryWithoutACalendarCanBeAssignedToLikeAnyTask) {
  plan().AddTask("S", 0)->calendar = nullptr;
  PutUnder("A", "S");
  OnPage([&] {
    ClickNode("C");
    ClickNode("S");
    EXPECT_EQ(dialog().cbAllCals.Text(), "");
    EXPECT_EQ(dialog().cbAllCals.ListIndex(), -1);
    Toggle(dialog().lstWCals1, "FROST");
  });
  EXPECT_THAT(AssignedTo("S"), ElementsAre("FROST"));
  EXPECT_THAT(AssignedTo("A"), IsEmpty());
  EXPECT_TRUE(plan().Task("S").calendar == nullptr);
  EXPECT_THAT(Errors(), IsEmpty());
}

TEST_F(AssignPage, TheRootHasNoAssignmentsAndKeepsTheLastTasksControls) {
  plan().Assign("A", "FROST");
  OnPage([&] {
    ClickNode("A");
    recorder().Clear();
    ClickNode("Bridge");
    EXPECT_THAT(calls(), IsEmpty());
    EXPECT_FALSE(dialog().lstWCals1.Enabled());
    EXPECT_FALSE(dialog().lstWCals3.Enabled());
    EXPECT_THAT(Checked(dialog().lstWCals1), IsEmpty());
    EXPECT_TRUE(dialog().chkSplit.Enabled());
    EXPECT_TRUE(dialog().cbAllCals.Enabled());
    EXPECT_EQ(dialog().cbAllCals.Text(), "STANDARD");
    // The calendar goes to the last task; the box looks for one of the plan's title.
    dialog().cbAllCals.UserPick(1);
    EXPECT_EQ(plan().Task("A").calendar->name, "North Sea");
    EXPECT_THAT(Errors(), IsEmpty());
    dialog().chkSplit.UserClick();
    EXPECT_THAT(Errors(), ElementsAre(5));
    EXPECT_EQ(NoSplitOf("A"), "");
  });
  ASSERT_EQ(desktop_.messages.size(), 1u);
  EXPECT_TRUE(desktop_.messages[0].reports_error);
  EXPECT_THAT(AssignedTo("A"), ElementsAre("FROST"));
}

TEST_F(AssignPage, TheRootClickedFirstLeavesTheBoxDisabled) {
  OnPage([&] {
    ClickNode("Bridge");
    EXPECT_FALSE(dialog().lstWCals1.Enabled());
    EXPECT_FALSE(dialog().lstWCals3.Enabled());
    EXPECT_TRUE(dialog().cbAllCals.Enabled());
    EXPECT_EQ(dialog().cbAllCals.Text(), "");
    EXPECT_FALSE(dialog().chkSplit.Enabled());
    ClickNode("A");
    EXPECT_TRUE(dialog().lstWCals1.Enabled());
    EXPECT_TRUE(dialog().lstWCals3.Enabled());
    EXPECT_TRUE(dialog().chkSplit.Enabled());
  });
}

TEST_F(AssignPage, WithoutATaskThereIsNothingToWorkOn) {
  OnPage([&] {
    Toggle(dialog().lstWCals1, "FROST");
    Toggle(dialog().lstWCals3, "River Ice");
    Toggle(dialog().lstWCals3, "River Ice");
    dialog().cbAllCals.UserPick(1);
  });
  EXPECT_THAT(Errors(), ElementsAre(91, 91, 91, 91));
  EXPECT_EQ(desktop_.messages.size(), 4u);
}

TEST_F(AssignPage, ATaskThatIsGoneSurfacesTheHostsError) {
  OnPage([&] {
    ClickNode("A");
    plan().tasks.erase(plan().tasks.begin() + 1);
    ClickNode("B");
    EXPECT_THAT(Errors(), ElementsAre(5));
    // The lists go on with the task before.
    Toggle(dialog().lstWCals1, "FROST");
  });
  EXPECT_THAT(AssignedTo("A"), ElementsAre("FROST"));
}

TEST_F(AssignPage, AFailingAssignmentOrCalendarSurfacesTheHostsError) {
  OnPage([&] {
    ClickNode("A");
    recorder().FailOn("TaskRiskCalendars(A).Add");
    Toggle(dialog().lstWCals1, "FROST");
    recorder().FailOn("Task(A).Calendar =");
    dialog().cbAllCals.UserPick(1);
    recorder().FailOn("SetValue");
    dialog().chkSplit.UserClick();
  });
  EXPECT_THAT(Errors(), ElementsAre(1004, 1004, 1004));
  EXPECT_THAT(AssignedTo("A"), IsEmpty());
  EXPECT_EQ(plan().Task("A").calendar->name, "STANDARD");
}

TEST_F(AssignPage, ShowingTheAssignmentsPassesOverWhatFails) {
  for (const char* const calendar : {"North Sea", "FROST", "River Ice"}) {
    plan().Assign("A", calendar);
  }
  plan().Task("A").SetWeatherValue("nosplit", "True");
  OnPage([&] {
    recorder().FailOn("RiskCalendar(FROST).Name");
    ClickNode("A");
    EXPECT_THAT(Checked(dialog().lstWCals1), ElementsAre("North Sea"));
    EXPECT_THAT(Checked(dialog().lstWCals3), ElementsAre("River Ice"));
    EXPECT_TRUE(dialog().chkSplit.Value());
    recorder().FailOn("TaskRiskCalendars(A).Elements");
    recorder().FailOn("UserFields(A).GetValue");
    ClickNode("A");
    EXPECT_THAT(Checked(dialog().lstWCals1), IsEmpty());
    EXPECT_TRUE(dialog().chkSplit.Value());
    plan().Task("A").SetWeatherValue("nosplit", "perhaps");
    ClickNode("A");
    EXPECT_TRUE(dialog().chkSplit.Value());
  });
  EXPECT_THAT(Errors(), IsEmpty());
  EXPECT_THAT(AssignedTo("A"), ElementsAre("North Sea", "FROST", "River Ice"));
}

TEST_F(AssignPage, ANewCalendarIsInTheBoxAndInItsListWithoutAMark) {
  plan().Assign("A", "FROST");
  OnPage([&] {
    ClickNode("A");
    dialog().tabs.UserPickTab(1);
    desktop_.OnNextForm([](toolkit::Form& form) {
      dynamic_cast<toolkit::TextBox&>(*form.Find("txtCalName")).UserType("canal");
      form.Find("cmdOK")->UserClick();
    });
    dialog().cmdAddWWCal.UserClick();
    EXPECT_THAT(dialog().cbAllCals.Entries(), Contains("CANAL"));
    EXPECT_THAT(Texts(dialog().lstWCals3), ElementsAre("CANAL", "River Ice"));
    EXPECT_THAT(Checked(dialog().lstWCals3), IsEmpty());
    // The task of the page is still the same.
    dialog().tabs.UserPickTab(2);
    Toggle(dialog().lstWCals3, "CANAL");
    EXPECT_THAT(AssignedTo("A"), ElementsAre("FROST", "CANAL"));
    ClickNode("A");
    EXPECT_THAT(Checked(dialog().lstWCals1), ElementsAre("FROST"));
    EXPECT_THAT(Checked(dialog().lstWCals3), ElementsAre("CANAL"));
  });
  EXPECT_THAT(Errors(), IsEmpty());
}

TEST_F(AssignPage, ReloadingTheCalendarsTakesTheMarksAwayUntilTheNextClick) {
  plan().Assign("A", "FROST");
  OnPage([&] {
    ClickNode("A");
    dialog().m_oStorage.LoadEventCalendars();
    EXPECT_THAT(Checked(dialog().lstWCals1), IsEmpty());
    EXPECT_THAT(AssignedTo("A"), ElementsAre("FROST"));
    ClickNode("A");
    EXPECT_THAT(Checked(dialog().lstWCals1), ElementsAre("FROST"));
  });
}

TEST_F(AssignPage, RefillingTheBoxKeepsTheTasksCalendar) {
  OnPage([&] {
    ClickNode("A");
    recorder().Clear();
    dialog().m_oStorage.AddEventCalendar("TIDES");
    EXPECT_THAT(dialog().cbAllCals.Entries(),
                ElementsAre("STANDARD", "North Sea", "FROST", "River Ice", "TIDES"));
    EXPECT_EQ(dialog().cbAllCals.ListIndex(), -1);
    EXPECT_THAT(calls(), Each(Not(HasSubstr("Task("))));
  });
  EXPECT_THAT(Errors(), IsEmpty());
}

TEST_F(AssignPage, WritesWithoutTouchingTheHostsRecalculation) {
  OnPage([&] {
    ClickNode("A");
    Toggle(dialog().lstWCals1, "FROST");
    dialog().chkSplit.UserClick();
    dialog().cbAllCals.UserPick(2);
  });
  EXPECT_THAT(calls(), Each(Not(HasSubstr("Recalculate"))));
}

TEST_F(AssignPage, EventsOfValuesSetByTheProgramRunInsideTheClick) {
  plan().Task("A").SetWeatherValue("nosplit", "True");
  plan().Assign("A", "FROST");
  OnPage([&] { ClickNode("A"); });
  // Nothing is raised for a check mark that the program sets.
  EXPECT_THAT(events_.lines, ElementsAre("tvTasks NodeClick A - Foundations", "  cbAllCals Change",
                                         "  chkSplit Click"));
}

}  // namespace
}  // namespace nimbrel::dialog
