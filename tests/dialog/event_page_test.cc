// The page of event calendars: calendars and periods are made, shown and deleted.

#include <gmock/gmock.h>

#include "tests/dialog/weather_dialog_test.h"

namespace nimbrel::dialog {
namespace {

using platform::Date;
using platform::MakeDate;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kDeleteGales =
    "Are you sure you want to delete all the weather elements for GALES. This action cannot be "
    "undone";

// On the embedded host: what comes of it in a real plan.

class EventPageOnHost : public WeatherOnHostTest {
 protected:
  /// Makes a calendar by hand and looks at its list.
  void MakeCalendar(const std::string& start, const std::string& end,
                    const std::function<void(frmWeather&)>& look) {
    OpenTicked([&](frmWeather& form) {
      OnNewCal("gales", start, end);
      form.cmdAddWeatherCal.UserClick();
      look(form);
    });
    EXPECT_THAT(Errors(), IsEmpty());
  }
};

TEST_F(EventPageOnHost, ANewCalendarGetsOnePeriodAMonth) {
  MakeCalendar("1 Jan 2027", "1 Jan 2028", [](frmWeather& form) {
    EXPECT_THAT(form.lstWeatherCals.Entries(), ElementsAre("GALES"));
    EXPECT_EQ(form.lstWeatherCals.ListIndex(), 0);
    EXPECT_THAT(ColumnOf(form.lstWeather, 2),
                ElementsAre("January", "February", "March", "April", "May", "June", "July",
                            "August", "September", "October", "November", "December"));
    EXPECT_EQ(form.lstWeather.ListItems().Item(1)->SubItems(2), "01/Jan/2027");
    EXPECT_EQ(form.lstWeather.ListItems().Item(1)->SubItems(3), "31/Jan/2027");
    EXPECT_EQ(form.lstWeather.ListItems().Item(12)->SubItems(3), "31/Dec/2027");
    EXPECT_THAT(TextsOf(EventBoxes(form)),
                ElementsAre("January", "01/Jan/2027", "31/Jan/2027", "100%", "1", "2", "3"));
    EXPECT_THAT(form.cbAllCals.Entries(), ElementsAre("STANDARD", "GALES"));
  });
  ASSERT_NE(document().FindRiskCalendar("GALES"), nullptr);
  EXPECT_EQ(document().FindRiskCalendar("GALES")->description, "Weather calendar");
}

TEST_F(EventPageOnHost, APeriodWithoutDatesIsShownOnDayZero) {
  MakeCalendar("1 Jan 2027", "2 Jan 2027", [](frmWeather& form) {
    form.m_oStorage.AddEventTask(
        modGlobal::Application()->get_ActivePlan()->get_Calendars()->Item("GALES"));
    form.m_oStorage.LoadEventCalendars();
    form.lstWeatherCals.UserPick(0);
    EXPECT_THAT(ColumnOf(form.lstWeather, 3), ElementsAre("01/Jan/2027", "30/Dec/1899"));
    EXPECT_THAT(ColumnOf(form.lstWeather, 4), ElementsAre("31/Jan/2027", "30/Dec/1899"));
  });
}

TEST_F(EventPageOnHost, ASpanOfADayGetsAWholeMonth) {
  MakeCalendar("1 Jan 2027", "2 Jan 2027", [](frmWeather& form) {
    EXPECT_THAT(ColumnOf(form.lstWeather, 3), ElementsAre("01/Jan/2027"));
    EXPECT_THAT(ColumnOf(form.lstWeather, 4), ElementsAre("31/Jan/2027"));
  });
}

TEST_F(EventPageOnHost, PeriodsFollowTheFirstDayAndNotTheMonths) {
  MakeCalendar("15 Mar 2027", "20 Apr 2027", [](frmWeather& form) {
    EXPECT_THAT(ColumnOf(form.lstWeather, 2), ElementsAre("March", "April"));
    EXPECT_THAT(ColumnOf(form.lstWeather, 3), ElementsAre("15/Mar/2027", "15/Apr/2027"));
    EXPECT_THAT(ColumnOf(form.lstWeather, 4), ElementsAre("14/Apr/2027", "14/May/2027"));
  });
}

TEST_F(EventPageOnHost, AFirstDayThatMonthsLackDriftsForGood) {
  MakeCalendar("31 Jan 2023", "28 Apr 2023", [](frmWeather& form) {
    EXPECT_THAT(ColumnOf(form.lstWeather, 3),
                ElementsAre("31/Jan/2023", "28/Feb/2023", "28/Mar/2023"));
    EXPECT_THAT(ColumnOf(form.lstWeather, 4),
                ElementsAre("27/Feb/2023", "27/Mar/2023", "27/Apr/2023"));
  });
}

TEST_F(EventPageOnHost, ASpanOfNoDaysMakesACalendarThatIsNotListed) {
  MakeCalendar("1 Jan 2027", "1 Jan 2027",
               [](frmWeather& form) { EXPECT_EQ(form.lstWeatherCals.ListCount(), 0); });
  EXPECT_NE(document().FindCalendar("GALES"), nullptr);
}

TEST_F(EventPageOnHost, MonthsAreNamedInTheUsersLanguage) {
  Begin(engine::TimeUnit::kDays, *platform::FindLocale("de-DE"));
  MakeCalendar("01.03.2027", "01.05.2027", [](frmWeather& form) {
    EXPECT_THAT(ColumnOf(form.lstWeather, 2), ElementsAre("M\u00e4rz", "April"));
  });
}

TEST_F(EventPageOnHost, AwayFromDaysTheLastHourComesWithTheFirstWriting) {
  Begin(engine::TimeUnit::kHours, platform::DefaultLocale());
  MakeCalendar("1 Jan 2027", "2 Jan 2027", [this](frmWeather& form) {
    const std::string id = form.lstWeather.ListItems().Item(1)->Text();
    EXPECT_EQ(StoredDate(id, "Weather-end"), MakeDate(2027, 1, 31));
    EXPECT_EQ(Stored(id).range->maximum, 24);  // 3 days of 8 hours
    form.cmdClose.UserClick();
    EXPECT_EQ(StoredDate(id, "Weather-end"), MakeDate({2027, 1, 31, 22, 0, 0}));
  });
}

TEST_F(EventPageOnHost, NewPeriodsComeBehindTheOldOnes) {
  MakeCalendar("1 Jan 2027", "2 Jan 2027", [this](frmWeather& form) {
    OnNewPeriods("1 Jan 2027", "1 Mar 2027");
    form.cmdAddNewPeriods.UserClick();
    EXPECT_EQ(form.lstWeatherCals.ListIndex(), 0);
    EXPECT_THAT(ColumnOf(form.lstWeather, 3),
                ElementsAre("01/Jan/2027", "01/Jan/2027", "01/Feb/2027"));
  });
}

TEST_F(EventPageOnHost, ACalendarWithoutPeriodsIsGoneAtTheNextOpening) {
  MakeCalendar("1 Jan 2027", "2 Jan 2027", [](frmWeather& form) {
    form.cmdDelEventPeriod.UserClick();
    EXPECT_THAT(form.lstWeatherCals.Entries(), ElementsAre("GALES"));
    EXPECT_EQ(form.m_oStorage.m_colEventCals.Item(1)->nCount, 1);
    EXPECT_THAT(RowsOf(form.lstWeather), IsEmpty());
    EXPECT_THAT(TextsOf(EventBoxes(form)), ElementsAre("", "", "", "", "", "", ""));
    EXPECT_TRUE(AllEnabled(EventBoxes(form), false));
  });
  EXPECT_NE(document().FindCalendar("GALES"), nullptr);
  EXPECT_NE(document().FindRiskCalendar("GALES"), nullptr);
  Open([](frmWeather& form) { EXPECT_EQ(form.lstWeatherCals.ListCount(), 0); });
}

TEST_F(EventPageOnHost, DeletingTheOnlyCalendarLeavesThePageEmpty) {
  MakeCalendar("1 Jan 2027", "1 Apr 2027", [this](frmWeather& form) {
    desktop_.answers = {toolkit::Answer::kYes};
    form.cmdDelCalendar.UserClick();
    EXPECT_EQ(form.lstWeatherCals.ListCount(), 0);
    EXPECT_THAT(RowsOf(form.lstWeather), IsEmpty());
    EXPECT_TRUE(AllEnabled(EventBoxes(form), false));
  });
  EXPECT_EQ(document().tasks().size(), 2u);  // A and WEATHER
  EXPECT_EQ(document().FindCalendar("GALES"), nullptr);
  EXPECT_EQ(document().FindRiskCalendar("GALES"), nullptr);
}

TEST_F(EventPageOnHost, AnEditInTheRowReachesThePlanWhenTheBoxIsLeft) {
  MakeCalendar("1 Jan 2027", "2 Jan 2027", [this](frmWeather& form) {
    const std::string id = form.lstWeather.ListItems().Item(1)->Text();
    Enter(form.txtFrequency, "40");
    Enter(form.txtMax, "9");
    EXPECT_EQ(Stored(id).risk->probability, 40);
    EXPECT_EQ(Stored(id).range->maximum, 9);
    Enter(form.txtFrequency, "100");
    EXPECT_FALSE(Stored(id).risk.has_value());
  });
}

// On the recording host: in which order, and what happens when something fails.

class EventPage : public WeatherDialogTest {
 protected:
  EventPage() {
    MakeWeatherPlan();
    for (int month = 1; month <= 3; ++month) {
      AddPeriod("G" + std::to_string(month), "GALES", MakeDate(2027, month, 1),
                MakeDate(2027, month, 28));
    }
    AddPeriod("F1", "FROST", MakeDate(2027, 1, 1), MakeDate(2027, 1, 31));
    AddPeriod("R1", "RAIN", MakeDate(2027, 1, 1), MakeDate(2027, 1, 31));
  }
  void TakeAllWeather() {
    plan().tasks.clear();
    plan().AddWeatherSummary();
  }
};

TEST_F(EventPage, ANewCalendarIsMadeBeforeItsPeriodsAndListedLast) {
  Open([this](frmWeather& form) {
    OnNewCal("snow", "1 Jan 2027", "2 Jan 2027");
    recorder().Clear();
    form.cmdAddWeatherCal.UserClick();
    EXPECT_THAT(form.lstWeatherCals.Entries(), ElementsAre("GALES", "FROST", "RAIN", "SNOW"));
    EXPECT_EQ(form.lstWeatherCals.ListIndex(), 3);
    EXPECT_THAT(ColumnOf(form.lstWeather, 2), ElementsAre("January"));
  });
  EXPECT_THAT(
      recorder().Containing({"PlanCalendars.Add", "RiskCalendars.Add", "PlanTasks.Add",
                             "(T1).MoveUnder", "(T1).Calendar =", "(T1).SetValue",
                             "(T1).Description =", "(T1).SetCustom", "Children"}),
      ElementsAre(R"(PlanCalendars.Add "SNOW")", R"(PlanRiskCalendars.Add "SNOW")", "PlanTasks.Add",
                  R"(Task(T1).MoveUnder 0 "WEATHER")", "Task(T1).Calendar = SNOW",
                  R"(UserFields(T1).SetValue 2 "weather" "tasktype" "1")",
                  R"(Task(T1).Description = "January")",
                  R"(UserFields(T1).SetCustom "Weather-start" 2027-01-01)",
                  R"(UserFields(T1).SetCustom "Weather-end" 2027-01-31)",
                  "Task(WEATHER).Children"));
}

TEST_F(EventPage, TheMonthEndsAreWrittenWithoutAnHour) {
  plan().time_unit = 24;
  Open([this](frmWeather& form) {
    OnNewPeriods("1 Jan 2027", "2 Jan 2027");
    form.cmdAddNewPeriods.UserClick();
  });
  EXPECT_EQ(plan().Task("T1").custom["Weather-end"], platform::Variant(MakeDate(2027, 1, 31)));
}

TEST_F(EventPage, ACancelledDialogChangesNothing) {
  Open([this](frmWeather& form) {
    recorder().Clear();
    OnCancel();
    form.cmdAddWeatherCal.UserClick();
    OnCancel();
    form.cmdAddNewPeriods.UserClick();
    EXPECT_THAT(recorder().Containing({"Add", "Remove", "Set", " = "}), IsEmpty());
    EXPECT_EQ(form.lstWeatherCals.ListCount(), 3);
  });
}

TEST_F(EventPage, AFailureInMakingACalendarIsShownAndWhatWasDoneStays) {
  Open([this](frmWeather& form) {
    recorder().FailOn("Weather-start");
    OnNewCal("snow", "1 Jan 2027", "2 Jan 2027");
    form.cmdAddWeatherCal.UserClick();
    EXPECT_THAT(Errors(), ElementsAre(1004));
    EXPECT_EQ(form.lstWeatherCals.ListCount(), 3);
  });
  EXPECT_NE(plan().FindCalendar("SNOW"), nullptr);
  EXPECT_EQ(plan().Task("T1").description, "January");
}

TEST_F(EventPage, AFailureInShowingANewCalendarIsPassedOver) {
  Open([this](frmWeather& form) {
    OnNewCal("snow", "1 Jan 2027", "2 Jan 2027");
    recorder().FailOn("Plan.AutoRecalculate");
    form.cmdAddWeatherCal.UserClick();
    EXPECT_THAT(Errors(), IsEmpty());
    EXPECT_EQ(form.lstWeatherCals.ListIndex(), 3);
    EXPECT_EQ(form.lstWeather.ListItems().Item(1)->Text(), "G1");
  });
}

TEST_F(EventPage, WithoutACalendarNoPeriodsAreAdded) {
  TakeAllWeather();
  Open([this](frmWeather& form) {
    recorder().Clear();
    form.cmdAddNewPeriods.UserClick();
    EXPECT_THAT(calls(), IsEmpty());
    EXPECT_THAT(desktop_.messages, IsEmpty());
  });
}

TEST_F(EventPage, AFailureInAddingPeriodsIsShown) {
  Open([this](frmWeather& form) {
    OnNewPeriods("1 Jan 2027", "1 Mar 2027");
    recorder().FailOn("PlanTasks.Add", 2);
    form.cmdAddNewPeriods.UserClick();
    EXPECT_THAT(Errors(), ElementsAre(1004));
  });
  EXPECT_EQ(TaskIds().back(), "T1");
}

TEST_F(EventPage, PickingACalendarWritesTheRowsOfTheOneThatIsLeft) {
  Open([this](frmWeather& form) {
    form.txtDescription.UserType("Typed");
    recorder().Clear();
    form.lstWeatherCals.UserPick(1);
    EXPECT_THAT(ColumnOf(form.lstWeather, 1), ElementsAre("F1"));
    EXPECT_EQ(Selected(form.lstWeather), "F1");
    EXPECT_EQ(form.txtDescription.Text(), "Period F1");
  });
  EXPECT_EQ(plan().Task("G1").description, "Typed");
  EXPECT_THAT(recorder().Containing({R"((G3).ID = "G3")"}).size(), 8u);  // 7 cells and once more
  EXPECT_THAT(recorder().Containing({"(F1).ID ="}), IsEmpty());
}

TEST_F(EventPage, ARowsTextIsWhatIsWrittenAlsoWhereItIsRounded) {
  plan().Task("G1").risk = {0, 12.5};
  Open([this](frmWeather& form) {
    EXPECT_EQ(form.txtFrequency.Text(), "13%");
    EXPECT_EQ(plan().Task("G1").risk->probability, 12.5);
    form.lstWeatherCals.UserPick(1);
  });
  EXPECT_EQ(plan().Task("G1").risk->probability, 13.0);
}

TEST_F(EventPage, PeriodsAreFoundByTheExactNameOfTheirCalendar) {
  TakeAllWeather();
  AddPeriod("A", "GALES", MakeDate(2027, 1, 1), MakeDate(2027, 1, 31));
  auto other = std::make_shared<recording::CalendarState>();
  other->name = "Gales";
  plan().calendars.push_back(other);
  plan().AddPeriod("B", "GALES", MakeDate(2027, 2, 1), MakeDate(2027, 2, 28))->calendar = other;
  Open([](frmWeather& form) {
    EXPECT_THAT(form.lstWeatherCals.Entries(), ElementsAre("GALES"));
    EXPECT_EQ(form.m_oStorage.m_colEventCals.Item(1)->nCount, 2);
    EXPECT_THAT(ColumnOf(form.lstWeather, 1), ElementsAre("A"));
  });
}

TEST_F(EventPage, ACalendarWhosePeriodsAreAllOfAnotherCaseShowsNoRows) {
  TakeAllWeather();
  // The first period names the calendar, then goes: what is left is of the other name.
  AddPeriod("A", "GALES", MakeDate(2027, 1, 1), MakeDate(2027, 1, 31));
  auto other = std::make_shared<recording::CalendarState>();
  other->name = "Gales";
  plan().calendars.push_back(other);
  plan().AddPeriod("B", "GALES", MakeDate(2027, 2, 1), MakeDate(2027, 2, 28))->calendar = other;
  Open([](frmWeather& form) {
    form.cmdDelEventPeriod.UserClick();
    EXPECT_THAT(RowsOf(form.lstWeather), IsEmpty());
    EXPECT_EQ(form.m_oStorage.m_colEventTasks.Count(), 1);
  });
}

TEST_F(EventPage, ADeletedPeriodGivesItsPlaceToTheNextOne) {
  Open([this](frmWeather& form) {
    form.lstWeather.UserClickRow(2);
    form.cmdDelEventPeriod.UserClick();
    EXPECT_THAT(ColumnOf(form.lstWeather, 1), ElementsAre("G1", "G3"));
    EXPECT_EQ(Selected(form.lstWeather), "G3");
    EXPECT_EQ(form.txtDescription.Text(), "Period G3");
    form.cmdDelEventPeriod.UserClick();
    EXPECT_EQ(Selected(form.lstWeather), "G1");
    EXPECT_THAT(Messages(), IsEmpty());
    EXPECT_FALSE(form.m_oStorage.m_colEventTasks.Contains("G3"));
    EXPECT_EQ(form.m_oStorage.m_colEventCals.Item("GALES")->nCount, 3);
  });
  EXPECT_THAT(TaskIds(), ElementsAre("WEATHER", "G1", "F1", "R1"));
}

TEST_F(EventPage, WithoutRowsNothingIsDeleted) {
  TakeAllWeather();
  Open([this](frmWeather& form) {
    recorder().Clear();
    form.cmdDelEventPeriod.UserClick();
    EXPECT_THAT(calls(), IsEmpty());
    EXPECT_THAT(desktop_.messages, IsEmpty());
  });
}

TEST_F(EventPage, ARowWithoutAnIdIsNotDeleted) {
  Open([this](frmWeather& form) {
    form.lstWeather.ListItems().Item(1)->SetText("");
    recorder().Clear();
    form.cmdDelEventPeriod.UserClick();
    EXPECT_THAT(recorder().Containing({"Remove"}), IsEmpty());
    EXPECT_EQ(form.lstWeather.ListItems().Count(), 3);
  });
}

TEST_F(EventPage, AFailureInDeletingAPeriodIsShownAndTheRowStays) {
  Open([this](frmWeather& form) {
    recorder().FailOn("PlanTasks.Remove");
    form.cmdDelEventPeriod.UserClick();
    EXPECT_THAT(Errors(), ElementsAre(1004));
    EXPECT_EQ(form.lstWeather.ListItems().Count(), 3);
    EXPECT_EQ(form.m_oStorage.m_colEventTasks.Count(), 5);
  });
}

TEST_F(EventPage, DeletingACalendarAsksAndThenTakesItsTasksFirst) {
  desktop_.answers = {toolkit::Answer::kNo, toolkit::Answer::kYes};
  Open([this](frmWeather& form) {
    form.cmdDelCalendar.UserClick();
    EXPECT_EQ(TaskIds().size(), 6u);
    recorder().Clear();
    form.cmdDelCalendar.UserClick();
    EXPECT_THAT(form.lstWeatherCals.Entries(), ElementsAre("FROST", "RAIN"));
    EXPECT_EQ(form.lstWeatherCals.ListIndex(), 1);  // the last, not the neighbour
    EXPECT_EQ(Selected(form.lstWeather), "R1");
  });
  EXPECT_THAT(Messages(), ElementsAre(kDeleteGales, kDeleteGales));
  EXPECT_EQ(desktop_.messages.back().buttons, toolkit::Buttons::kYesNo);
  EXPECT_THAT(recorder().Containing({"Remove"}),
              ElementsAre(R"(PlanTasks.Remove "G1")", R"(PlanTasks.Remove "G2")",
                          R"(PlanTasks.Remove "G3")", R"(PlanRiskCalendars.Remove "GALES")",
                          R"(PlanCalendars.Remove "GALES")"));
}

TEST_F(EventPage, DeletingACalendarGoesAsFarAsItCan) {
  desktop_.answers = {toolkit::Answer::kYes};
  recorder().FailOn(R"(PlanTasks.Remove "G2")");
  recorder().FailOn("PlanRiskCalendars.Remove");
  Open([this](frmWeather& form) {
    form.cmdDelCalendar.UserClick();
    EXPECT_THAT(Errors(), IsEmpty());
    // The period that is left still names its calendar.
    EXPECT_THAT(form.lstWeatherCals.Entries(), ElementsAre("GALES", "FROST", "RAIN"));
    EXPECT_EQ(form.lstWeatherCals.ListIndex(), 2);
  });
  EXPECT_THAT(TaskIds(), ElementsAre("WEATHER", "G2", "F1", "R1"));
  EXPECT_EQ(plan().FindCalendar("GALES"), nullptr);
  EXPECT_NE(plan().FindRiskCalendar("GALES"), nullptr);
}

TEST_F(EventPage, DeletingNoCalendarAsksWithAnEmptyName) {
  TakeAllWeather();
  desktop_.answers = {toolkit::Answer::kYes};
  Open([this](frmWeather& form) {
    recorder().Clear();
    form.cmdDelCalendar.UserClick();
    EXPECT_THAT(Errors(), IsEmpty());
  });
  EXPECT_THAT(Messages(), ElementsAre("Are you sure you want to delete all the weather elements "
                                      "for . This action cannot be undone"));
  EXPECT_THAT(recorder().Containing({"Remove", "Children"}),
              ElementsAre(R"(PlanRiskCalendars.Remove "")", R"(PlanCalendars.Remove "")",
                          "Task(WEATHER).Children"));
}

TEST_F(EventPage, AClickOnTheStartsHeaderSortsByDate) {
  // As text 05/Feb would come before 10/Jan, and 2026 after both.
  plan().Task("G1").custom["Weather-start"] = MakeDate(2027, 2, 5);
  plan().Task("G2").custom["Weather-start"] = MakeDate(2027, 1, 10);
  plan().Task("G3").custom["Weather-start"] = MakeDate(2026, 12, 31);
  Open([](frmWeather& form) {
    form.lstWeather.UserClickHeader(3);
    EXPECT_THAT(ColumnOf(form.lstWeather, 1), ElementsAre("G1", "G2", "G3"));
    form.lstWeather.UserClickHeader(3);
    EXPECT_THAT(ColumnOf(form.lstWeather, 1), ElementsAre("G3", "G2", "G1"));
    EXPECT_THAT(ColumnOf(form.lstWeather, 3),
                ElementsAre("31/Dec/2026", "10/Jan/2027", "05/Feb/2027"));
  });
}

TEST_F(EventPage, AClickOnARowShowsItInTheBoxes) {
  Open([](frmWeather& form) {
    form.lstWeather.UserClickRow(3);
    EXPECT_THAT(TextsOf(EventBoxes(form)),
                ElementsAre("Period G3", "01/Mar/2027", "28/Mar/2027", "100%", "1", "2", "3"));
    EXPECT_FALSE(form.m_bFilling);
  });
}

}  // namespace
}  // namespace nimbrel::dialog
