// The tree of tasks: which tasks stand in it, where, with which picture, and what Find leaves of
// it.

#include "tests/dialog/assign_page_fixture.h"

namespace nimbrel::dialog {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class TaskTree : public AssignPageTest {
 protected:
  toolkit::TreeView& tree() { return dialog().tvTasks; }

  /// A summary "S" of "S1" and "S2", beside the tasks A, B and C.
  void AddSummary() {
    plan().AddTask("S2", 1)->description = "Crane off";
    plan().AddTask("S", 0)->description = "Site";
    plan().AddTask("S1", 1)->description = "Crane on";
    PutUnder("S1", "S");
    PutUnder("S2", "S");
  }
};

TEST_F(TaskTree, ShowsThePlanAndItsOwnTasksWithoutTheWeather) {
  OnPage([&] {
    EXPECT_THAT(AllNodes(tree()),
                ElementsAre("Bridge", "  A - Foundations", "  B - Steel", "  C - Painting"));
    EXPECT_EQ(tree().Style(), toolkit::TreeStyle::kTreelinesPlusMinusPictureText);
    EXPECT_EQ(tree().Root()->Key(), "kBridge");
    EXPECT_EQ(NodeOf("A")->Key(), "kA");
  });
}

TEST_F(TaskTree, IsTheRootAloneForAPlanOfWeather) {
  plan().tasks.erase(plan().tasks.begin(), plan().tasks.begin() + 3);
  OnPage([&] { EXPECT_THAT(AllNodes(tree()), ElementsAre("Bridge")); });
}

TEST_F(TaskTree, PutsTasksUnderTheirSummariesWhicheverComesFirst) {
  AddSummary();
  plan().AddTask("T", 0)->description = "Top";
  PutUnder("S", "T");
  OnPage([&] {
    EXPECT_THAT(AllNodes(tree()), ElementsAre("Bridge", "  A - Foundations", "  B - Steel",
                                              "  C - Painting", "  T - Top", "    S - Site",
                                              "      S1 - Crane on", "      S2 - Crane off"));
  });
}

TEST_F(TaskTree, OpensWithItsFirstLevelAlone) {
  AddSummary();
  OnPage([&] {
    EXPECT_THAT(ShownNodes(tree()), ElementsAre("Bridge", "  A - Foundations", "  B - Steel",
                                                "  C - Painting", "  S - Site"));
    EXPECT_TRUE(tree().SelectedItem().IsNothing());
  });
}

TEST_F(TaskTree, SortsEachLevelByTextAndNotByNumber) {
  plan().tasks.erase(plan().tasks.begin(), plan().tasks.begin() + 3);
  for (const char* const id : {"20", "3", "100", "a", "B"}) {
    plan().AddTask(id, 1);
  }
  for (const char* const id : {"9", "10"}) {
    plan().AddTask(id, 1);
    PutUnder(id, "20");
  }
  OnPage([&] {
    EXPECT_THAT(AllNodes(tree()), ElementsAre("Bridge", "  100 - ", "  20 - ", "    10 - ",
                                              "    9 - ", "  3 - ", "  a - ", "  B - "));
  });
}

TEST_F(TaskTree, ShowsATaskUnderTheWeatherSummaryOnTheFirstLevel) {
  // Such a task, without a mark, is a period to the list of calendars, too.
  plan().AddTask("X", 1)->parent = plan().FindTask("WEATHER");
  OnPage([&] { EXPECT_THAT(AllNodes(tree()), Contains("  X - ")); });
}

TEST_F(TaskTree, ShowsATaskWhoseIdIsThePlansTitleBesideTheRoot) {
  plan().AddTask("BRIDGE", 0)->description = "All works";
  PutUnder("A", "BRIDGE");
  OnPage([&] {
    EXPECT_THAT(AllNodes(tree()), ElementsAre("Bridge", "  B - Steel", "  BRIDGE - All works",
                                              "    A - Foundations", "  C - Painting"));
    Find("works");
    EXPECT_THAT(AllNodes(tree()), ElementsAre("Bridge", "  BRIDGE - All works"));
    ClickNode("BRIDGE");
    dialog().chkSplit.UserClick();
    EXPECT_EQ(plan().Task("BRIDGE").WeatherValue("nosplit"), "True");
    dialog().tvTasks.UserClickNode(tree().Root());
    dialog().chkSplit.UserClick();
    EXPECT_THAT(Errors(), ElementsAre(5));
  });
  EXPECT_EQ(plan().Task("BRIDGE").WeatherValue("nosplit"), "True");
}

TEST_F(TaskTree, GivesEachTaskThePictureOfItsTypeAndState) {
  plan().Task("A").progress = 0.5;
  plan().Task("A").critical = true;
  plan().Task("B").critical = true;
  plan().Task("C").type = 3;
  OnPage([&] {
    EXPECT_EQ(tree().Images(), &dialog().ImageList1);
    EXPECT_EQ(tree().Root()->Image(), 13);
    EXPECT_EQ(NodeOf("A")->Image(), 1);
    EXPECT_EQ(NodeOf("B")->Image(), 2);
    EXPECT_EQ(NodeOf("C")->Image(), 0);
  });
}

TEST_F(TaskTree, AsksTheHostTaskByTaskAndThenForTheParents) {
  plan().tasks.erase(plan().tasks.begin() + 1, plan().tasks.end());
  OnPage([&] {
    plan().tasks.pop_back();  // the summary task of the weather, made on opening
    recorder().Clear();
    Find("x");
  });
  EXPECT_THAT(
      calls(),
      ElementsAre("Application.ActivePlan", "Plan.Properties", "PlanProperties.Title",
                  "Application.ActivePlan", "Plan.Tasks", "PlanTasks.Elements",
                  "Task(A).UserFields", "UserFields(A).GetValue 2 \"weather\" \"tasktype\" \"0\"",
                  "Task(A).ID", "Task(A).Description", "Task(A).Type", "Task(A).Dates",
                  "TaskDates(A).Progress", "Task(A).Critical", "Application.ActivePlan",
                  "Plan.Tasks", "PlanTasks.Elements", "Task(A).UserFields",
                  "UserFields(A).GetValue 2 \"weather\" \"tasktype\" \"0\"", "Task(A).Parent 0"));
}

class FindTask : public TaskTree {
 protected:
  FindTask() { AddSummary(); }
};

TEST_F(FindTask, LiftsAMatchingChildOutOfASummaryThatDoesNotMatch) {
  OnPage([&] {
    Find("crane on");
    EXPECT_THAT(ShownNodes(tree()), ElementsAre("Bridge", "  S1 - Crane on"));
    EXPECT_TRUE(NodeOf("S1")->Expanded());
    EXPECT_THAT(desktop_.messages, IsEmpty());
  });
}

TEST_F(FindTask, LiftsAMatchToTheNearestSummaryThatIsKept) {
  plan().AddTask("T", 0)->description = "Crane works";
  PutUnder("S", "T");
  OnPage([&] {
    Find("crane");
    EXPECT_THAT(ShownNodes(tree()), ElementsAre("Bridge", "  T - Crane works", "    S1 - Crane on",
                                                "    S2 - Crane off"));
  });
}

TEST_F(FindTask, KeepsASummaryThatMatchesWithoutItsOtherChildren) {
  OnPage([&] {
    Find("site");
    EXPECT_THAT(AllNodes(tree()), ElementsAre("Bridge", "  S - Site"));
    EXPECT_EQ(NodeOf("S")->Children(), 0);
  });
}

TEST_F(FindTask, ShowsEverythingForNoText) {
  OnPage([&] {
    Find("");
    EXPECT_THAT(ShownNodes(tree()),
                ElementsAre("Bridge", "  A - Foundations", "  B - Steel", "  C - Painting",
                            "  S - Site", "    S1 - Crane on", "    S2 - Crane off"));
  });
}

TEST_F(FindTask, AlwaysStartsFromTheFullTree) {
  OnPage([&] {
    Find("steel");
    Find("paint");
    EXPECT_THAT(AllNodes(tree()), ElementsAre("Bridge", "  C - Painting"));
  });
}

TEST_F(FindTask, LooksAtIdAndDescriptionAsOneTextInAnyCase) {
  plan().Task("C").description = "Überbau";
  OnPage([&] {
    Find("c - üBER");
    EXPECT_THAT(AllNodes(tree()), ElementsAre("Bridge", "  C - Überbau"));
    Find("ENTLY");
    EXPECT_THAT(AllNodes(tree()), ElementsAre("Bridge"));
    Find(" - ");
    EXPECT_EQ(tree().Nodes().Count(), 7);
  });
}

TEST_F(FindTask, DoesNotCountTheRootAsAMatch) {
  OnPage([&] {
    Find("bridge");
    EXPECT_THAT(AllNodes(tree()), ElementsAre("Bridge"));
  });
}

TEST_F(FindTask, RunsOnEnterInTheBox) {
  OnPage([&] {
    dialog().txtFind.UserType("steel");
    dialog().UserKey(toolkit::Key::kTab, true);
    EXPECT_EQ(tree().Nodes().Count(), 7);
    dialog().txtFind.UserKey(toolkit::Key::kEnter);
    EXPECT_THAT(AllNodes(tree()), ElementsAre("Bridge", "  B - Steel"));
    EXPECT_TRUE(dialog().Visible());
  });
}

TEST_F(FindTask, EmptiesTheBoxOfItsPromptAlone) {
  OnPage([&] {
    EXPECT_EQ(dialog().txtFind.Text(), "");
    dialog().txtFind.SetText("[type here to find task]");
    dialog().txtFind.UserFocus();
    EXPECT_EQ(dialog().txtFind.Text(), "");
    dialog().tvTasks.UserFocus();
    dialog().txtFind.SetText("[type here to find tasks]");
    dialog().txtFind.UserFocus();
    EXPECT_EQ(dialog().txtFind.Text(), "[type here to find tasks]");
  });
}

TEST_F(FindTask, EndsInSilenceWhereItFailsAndLeavesTheTreeAsItStands) {
  OnPage([&] {
    recorder().FailOn("Task(B).Description");
    Find("painting");
    // The nodes are added in the plan's order, and the second one failed.
    EXPECT_THAT(AllNodes(tree()), ElementsAre("Bridge", "  A - Foundations"));
    EXPECT_THAT(desktop_.messages, IsEmpty());
    EXPECT_THAT(Errors(), IsEmpty());
    Find("painting");
    EXPECT_THAT(AllNodes(tree()), ElementsAre("Bridge", "  C - Painting"));
  });
}

TEST_F(FindTask, LeavesTheTaskOnThePageAsItWas) {
  plan().Assign("A", "FROST");
  plan().Task("A").SetWeatherValue("nosplit", "True");
  OnPage([&] {
    ClickNode("A");
    Find("steel");
    EXPECT_TRUE(tree().SelectedItem().IsNothing());
    EXPECT_THAT(Checked(dialog().lstWCals1), ElementsAre("FROST"));
    EXPECT_EQ(dialog().cbAllCals.Text(), "STANDARD");
    EXPECT_TRUE(dialog().chkSplit.Value());
    // The lists go on with that task, and the box has lost its node.
    Toggle(dialog().lstWCals1, "North Sea");
    EXPECT_THAT(AssignedTo("A"), ElementsAre("FROST", "North Sea"));
    dialog().chkSplit.UserClick();
    EXPECT_THAT(Errors(), ElementsAre(91));
  });
}

TEST_F(FindTask, DoesNotTouchTheHostsRecalculation) {
  OnPage([&] { Find("steel"); });
  EXPECT_THAT(calls(), Not(Contains(HasSubstr("Recalculate"))));
}

}  // namespace
}  // namespace nimbrel::dialog
