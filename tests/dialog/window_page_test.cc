// The page of window calendars: calendars and windows are made, shown and deleted.

#include <gmock/gmock.h>

#include "tests/dialog/weather_dialog_test.h"

namespace nimbrel::dialog {
namespace {

using platform::MakeDate;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// On the embedded host: what comes of it in a real plan.

class WindowPageOnHost : public WeatherOnHostTest {
 protected:
  void MakeCalendar(const std::function<void(frmWeather&)>& look) {
    OpenTicked([&](frmWeather& form) {
      form.tabs.UserPickTab(1);
      OnNewWindowCal("ice");
      form.cmdAddWWCal.UserClick();
      look(form);
    });
    EXPECT_THAT(Errors(), IsEmpty());
  }
};

TEST_F(WindowPageOnHost, ANewCalendarHasOneWindowFromThePlansDate) {
  // The plan's date is 4 January 2027; the finish is two calendar months later.
  MakeCalendar([](frmWeather& form) {
    EXPECT_THAT(form.lstWWCals.Entries(), ElementsAre("ICE"));
    EXPECT_EQ(form.lstWWCals.ListIndex(), 0);
    ASSERT_EQ(form.lstWW.ListItems().Count(), 1);
    EXPECT_THAT(RowsOf(form.lstWW),
                ElementsAre(form.lstWW.ListItems().Item(1)->Text() +
                            "|Weather window|04/Jan/2027|05/Jan/2027|06/Jan/2027||04/Mar/2027|"
                            "05/Mar/2027|06/Mar/2027"));
    EXPECT_THAT(TextsOf(WindowBoxes(form)),
                ElementsAre("Weather window", "04/Jan/2027", "05/Jan/2027", "06/Jan/2027",
                            "04/Mar/2027", "05/Mar/2027", "06/Mar/2027"));
    EXPECT_THAT(form.cbAllCals.Entries(), ElementsAre("STANDARD", "ICE"));
  });
  EXPECT_EQ(document().FindRiskCalendar("ICE")->description, "Weather window");
}

TEST_F(WindowPageOnHost, AFurtherWindowLeavesTheFirstRowSelected) {
  MakeCalendar([](frmWeather& form) {
    const std::string first = form.lstWW.ListItems().Item(1)->Text();
    form.cmdAddWW.UserClick();
    EXPECT_EQ(form.lstWWCals.ListIndex(), 0);
    EXPECT_EQ(form.lstWW.ListItems().Count(), 2);
    EXPECT_EQ(Selected(form.lstWW), first);
  });
}

TEST_F(WindowPageOnHost, AWindowThatWasEditedComesBackAtTheNextOpening) {
  MakeCalendar([](frmWeather& form) {
    Enter(form.txtDescrWW, "Frozen canal");
    Enter(form.txtLateEndWW, "20 Apr 2027");
    form.cmdClose.UserClick();
  });
  Open([](frmWeather& form) {
    EXPECT_THAT(TextsOf(WindowBoxes(form)),
                ElementsAre("Frozen canal", "04/Jan/2027", "05/Jan/2027", "06/Jan/2027",
                            "04/Mar/2027", "05/Mar/2027", "20/Apr/2027"));
  });
}

TEST_F(WindowPageOnHost, DeletingTheLastCalendarLeavesThePageEmpty) {
  MakeCalendar([this](frmWeather& form) {
    desktop_.answers = {toolkit::Answer::kYes};
    form.cmdDelWindowCal.UserClick();
    EXPECT_EQ(form.lstWWCals.ListCount(), 0);
    EXPECT_THAT(RowsOf(form.lstWW), IsEmpty());
    EXPECT_THAT(TextsOf(WindowBoxes(form)), ElementsAre("", "", "", "", "", "", ""));
    EXPECT_TRUE(AllEnabled(WindowBoxes(form), false));
  });
  EXPECT_EQ(document().tasks().size(), 2u);  // A and WEATHER
  EXPECT_EQ(document().FindCalendar("ICE"), nullptr);
  EXPECT_EQ(document().FindRiskCalendar("ICE"), nullptr);
}

TEST_F(WindowPageOnHost, APlainCalendarOfThatNameIsTakenOver) {
  host_plan().get_Calendars()->Add("Ice");
  MakeCalendar([](frmWeather& form) {
    EXPECT_THAT(form.lstWWCals.Entries(), ElementsAre("Ice"));
    EXPECT_THAT(form.cbAllCals.Entries(), ElementsAre("STANDARD", "Ice"));
  });
}

// On the recording host: in which order, and what happens when something fails.

class WindowPage : public WeatherDialogTest {
 protected:
  WindowPage() {
    MakeWeatherPlan();
    for (int n = 1; n <= 5; ++n) {
      AddWindow("I" + std::to_string(n), "ICE", "12/" + std::to_string(n) + "/2026", "2/20/2027");
    }
    AddWindow("F1", "FLOOD", "4/1/2027", "5/1/2027");
    AddWindow("S1", "SNOW", "11/1/2027", "12/1/2027");
  }
  void TakeAllWeather() {
    plan().tasks.clear();
    plan().AddWeatherSummary();
  }
  /// Opens the dialog on the page.
  void OnPage(const std::function<void(frmWeather&)>& hands) {
    Open([this, &hands](frmWeather& form) {
      form.tabs.UserPickTab(1);
      recorder().Clear();
      hands(form);
    });
  }
};

TEST_F(WindowPage, ANewCalendarIsMadeWithItsWindowAndListedLast) {
  OnPage([this](frmWeather& form) {
    OnNewWindowCal("drift");
    form.cmdAddWWCal.UserClick();
    EXPECT_THAT(form.lstWWCals.Entries(), ElementsAre("ICE", "FLOOD", "SNOW", "DRIFT"));
    EXPECT_EQ(form.lstWWCals.ListIndex(), 3);
    EXPECT_EQ(Selected(form.lstWW), "T1");
  });
  EXPECT_THAT(recorder().Containing(
                  {"PlanCalendars.Add", "RiskCalendars.Add", "PlanTasks.Add", "Children"}),
              ElementsAre(R"(PlanCalendars.Add "DRIFT")", R"(PlanRiskCalendars.Add "DRIFT")",
                          "PlanTasks.Add", "PlanTasks.Add", "Task(WEATHER).Children"));
}

TEST_F(WindowPage, ACancelledDialogChangesNothing) {
  OnPage([this](frmWeather& form) {
    OnCancel();
    form.cmdAddWWCal.UserClick();
    EXPECT_THAT(recorder().Containing({"Add", "Remove", "Set", " = "}), IsEmpty());
    EXPECT_EQ(form.lstWWCals.ListCount(), 3);
  });
}

TEST_F(WindowPage, AFailureInMakingACalendarIsShown) {
  OnPage([this](frmWeather& form) {
    OnNewWindowCal("drift");
    recorder().FailOn("LinkList");
    form.cmdAddWWCal.UserClick();
    EXPECT_THAT(Errors(), ElementsAre(1004));
    EXPECT_EQ(form.lstWWCals.ListCount(), 3);
  });
  EXPECT_NE(plan().FindCalendar("DRIFT"), nullptr);
}

TEST_F(WindowPage, AWindowIsAddedToTheSelectedCalendarAtOnce) {
  OnPage([this](frmWeather& form) {
    form.lstWWCals.UserPick(1);
    form.cmdAddWW.UserClick();
    EXPECT_EQ(form.lstWWCals.ListIndex(), 1);
    EXPECT_THAT(ColumnOf(form.lstWW, 1), ElementsAre("F1", "T1"));
    EXPECT_EQ(Selected(form.lstWW), "F1");
    EXPECT_THAT(desktop_.messages, IsEmpty());
  });
}

TEST_F(WindowPage, WithoutACalendarNoWindowIsAdded) {
  TakeAllWeather();
  OnPage([this](frmWeather& form) {
    form.cmdAddWW.UserClick();
    EXPECT_THAT(calls(), IsEmpty());
    EXPECT_THAT(desktop_.messages, IsEmpty());
  });
}

TEST_F(WindowPage, AFailureInAddingAWindowIsShown) {
  OnPage([this](frmWeather& form) {
    recorder().FailOn("PlanTasks.Add");
    form.cmdAddWW.UserClick();
    EXPECT_THAT(Errors(), ElementsAre(1004));
  });
}

TEST_F(WindowPage, PickingACalendarWritesTheRowsOfTheOneThatIsLeft) {
  OnPage([this](frmWeather& form) {
    form.txtDescrWW.UserType("Typed");
    form.lstWWCals.UserPick(2);
    EXPECT_THAT(ColumnOf(form.lstWW, 1), ElementsAre("S1"));
    EXPECT_EQ(form.txtDescrWW.Text(), "Window S1");
  });
  EXPECT_EQ(plan().Task("I1").description, "Typed");
  EXPECT_EQ(recorder().Containing({R"((I5).ID = "I5")"}).size(), 8u);  // once a cell
  EXPECT_THAT(recorder().Containing({"(S1).ID ="}), IsEmpty());
}

TEST_F(WindowPage, WindowsAreFoundByTheExactNameOfTheirCalendar) {
  TakeAllWeather();
  AddWindow("A", "ICE", "1/4/2027", "2/4/2027");
  auto other = std::make_shared<recording::CalendarState>();
  other->name = "Ice";
  plan().calendars.push_back(other);
  plan().AddWindow("B", "ICE", "1/4/2027", "2/4/2027")->calendar = other;
  OnPage([](frmWeather& form) {
    EXPECT_THAT(form.lstWWCals.Entries(), ElementsAre("ICE"));
    EXPECT_THAT(ColumnOf(form.lstWW, 1), ElementsAre("A"));
  });
}

TEST_F(WindowPage, DeletingTheLastOfFiveRowsSelectsTheNewLastRow) {
  OnPage([this](frmWeather& form) {
    form.lstWW.UserClickRow(5);
    recorder().Clear();
    form.cmdDelWW.UserClick();
    EXPECT_THAT(ColumnOf(form.lstWW, 1), ElementsAre("I1", "I2", "I3", "I4"));
    EXPECT_EQ(Selected(form.lstWW), "I4");
    EXPECT_EQ(form.txtDescrWW.Text(), "Window I4");
    EXPECT_THAT(Messages(), IsEmpty());
    EXPECT_FALSE(form.m_oStorage.m_colWindowTasks.Contains("I5"));
    EXPECT_EQ(form.m_oStorage.m_colWindowCals.Item("ICE")->nCount, 5);
  });
  EXPECT_THAT(recorder().Containing({"Remove"}),
              ElementsAre(R"(PlanTasks.Remove "I5")", R"(PlanTasks.Remove "I5-END")"));
}

TEST_F(WindowPage, ADeletedWindowGivesItsPlaceToTheNextOne) {
  OnPage([](frmWeather& form) {
    form.lstWW.UserClickRow(2);
    form.cmdDelWW.UserClick();
    EXPECT_EQ(Selected(form.lstWW), "I3");
    EXPECT_EQ(form.txtDescrWW.Text(), "Window I3");
  });
}

TEST_F(WindowPage, DeletingTheOnlyRowEmptiesAndDisablesTheBoxes) {
  OnPage([](frmWeather& form) {
    form.lstWWCals.UserPick(1);
    form.cmdDelWW.UserClick();
    EXPECT_THAT(RowsOf(form.lstWW), IsEmpty());
    EXPECT_THAT(TextsOf(WindowBoxes(form)), ElementsAre("", "", "", "", "", "", ""));
    EXPECT_TRUE(AllEnabled(WindowBoxes(form), false));
    EXPECT_THAT(form.lstWWCals.Entries(), ElementsAre("ICE", "FLOOD", "SNOW"));
  });
}

TEST_F(WindowPage, WithoutRowsNothingIsDeleted) {
  TakeAllWeather();
  OnPage([this](frmWeather& form) {
    form.cmdDelWW.UserClick();
    EXPECT_THAT(calls(), IsEmpty());
    EXPECT_THAT(desktop_.messages, IsEmpty());
  });
}

TEST_F(WindowPage, ARowWithoutAnIdIsNotDeleted) {
  OnPage([this](frmWeather& form) {
    form.lstWW.ListItems().Item(1)->SetText("");
    form.cmdDelWW.UserClick();
    EXPECT_THAT(recorder().Containing({"Remove"}), IsEmpty());
    EXPECT_EQ(form.lstWW.ListItems().Count(), 5);
  });
}

TEST_F(WindowPage, AFailureInDeletingAWindowIsShownWithItsFirstEdgeGone) {
  OnPage([this](frmWeather& form) {
    recorder().FailOn(R"(PlanTasks.Remove "I1-END")");
    form.cmdDelWW.UserClick();
    EXPECT_THAT(Errors(), ElementsAre(1004));
    EXPECT_EQ(form.lstWW.ListItems().Count(), 5);
    EXPECT_EQ(form.m_oStorage.m_colWindowTasks.Count(), 7);
  });
  EXPECT_EQ(plan().FindTask("I1"), nullptr);
}

TEST_F(WindowPage, DeletingACalendarAsksAndThenTakesBothEdgesOfItsWindows) {
  desktop_.answers = {toolkit::Answer::kNo, toolkit::Answer::kYes};
  const std::string question =
      "Are you sure you want to delete all the weather windows for FLOOD. This action cannot be "
      "undone";
  OnPage([this](frmWeather& form) {
    form.lstWWCals.UserPick(1);
    form.cmdDelWindowCal.UserClick();
    EXPECT_NE(plan().FindTask("F1"), nullptr);
    recorder().Clear();
    form.cmdDelWindowCal.UserClick();
    EXPECT_THAT(form.lstWWCals.Entries(), ElementsAre("ICE", "SNOW"));
    EXPECT_EQ(form.lstWWCals.ListIndex(), 1);
    EXPECT_EQ(Selected(form.lstWW), "S1");
  });
  EXPECT_THAT(Messages(), ElementsAre(question, question));
  EXPECT_EQ(desktop_.messages.back().buttons, toolkit::Buttons::kYesNo);
  EXPECT_THAT(
      recorder().Containing({"Remove"}),
      ElementsAre(R"(PlanTasks.Remove "F1")", R"(PlanTasks.Remove "F1-END")",
                  R"(PlanRiskCalendars.Remove "FLOOD")", R"(PlanCalendars.Remove "FLOOD")"));
}

TEST_F(WindowPage, DeletingACalendarGoesAsFarAsItCan) {
  desktop_.answers = {toolkit::Answer::kYes};
  OnPage([this](frmWeather& form) {
    recorder().FailOn(R"(PlanTasks.Remove "I2")");
    recorder().FailOn("PlanCalendars.Remove");
    form.cmdDelWindowCal.UserClick();
    EXPECT_THAT(Errors(), IsEmpty());
    EXPECT_THAT(form.lstWWCals.Entries(), ElementsAre("ICE", "FLOOD", "SNOW"));  // I2 is left
    EXPECT_EQ(form.lstWWCals.ListIndex(), 2);
  });
  EXPECT_EQ(plan().FindTask("I2-END"), nullptr);
  EXPECT_NE(plan().FindTask("I2"), nullptr);
  EXPECT_EQ(plan().FindTask("I5"), nullptr);
}

TEST_F(WindowPage, DeletingNoCalendarAsksWithAnEmptyNameAndTakesNoTask) {
  desktop_.answers = {toolkit::Answer::kYes};
  OnPage([this](frmWeather& form) {
    form.lstWWCals.SetListIndex(-1);
    form.cmdDelWindowCal.UserClick();
    EXPECT_THAT(Errors(), IsEmpty());
  });
  EXPECT_THAT(Messages(), ElementsAre("Are you sure you want to delete all the weather windows "
                                      "for . This action cannot be undone"));
  EXPECT_THAT(recorder().Containing({"Remove"}),
              ElementsAre(R"(PlanRiskCalendars.Remove "")", R"(PlanCalendars.Remove "")"));
  EXPECT_EQ(TaskIds().size(), 15u);
}

TEST_F(WindowPage, TheDateColumnsSortByDateAndTheGapByEmptyText) {
  plan().Task("I1").SetWeatherValue("startdate", "2/5/2027");
  plan().Task("I2").SetWeatherValue("startdate", "1/10/2027");
  OnPage([](frmWeather& form) {
    form.lstWW.UserClickHeader(6);
    EXPECT_THAT(ColumnOf(form.lstWW, 1), ElementsAre("I1", "I2", "I3", "I4", "I5"));
    for (const int column : {3, 4, 5}) {
      form.lstWW.UserClickHeader(column);
      form.lstWW.UserClickHeader(column);
      EXPECT_EQ(Selected(form.lstWW), "I1");
    }
    // Seven clicks on headers in all: the order is descending.
    EXPECT_THAT(ColumnOf(form.lstWW, 1), ElementsAre("I1", "I2", "I5", "I4", "I3"));
  });
}

}  // namespace
}  // namespace nimbrel::dialog
