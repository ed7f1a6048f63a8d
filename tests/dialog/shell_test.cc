// The weather dialog's frame: how it opens, what its check box does, Clear All and Close.

#include <gmock/gmock.h>

#include "tests/dialog/weather_dialog_test.h"

namespace nimbrel::dialog {
namespace {

using platform::MakeDate;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

class Shell : public WeatherDialogTest {
 protected:
  void AddWeather() {
    MakeWeatherPlan();
    AddPeriod("P1", "GALES", MakeDate(2027, 1, 1), MakeDate(2027, 1, 31));
    AddPeriod("P2", "FROST", MakeDate(2027, 2, 1), MakeDate(2027, 2, 28));
    AddWindow("W1", "ICE", "12/1/2026", "2/20/2027");
  }
};

TEST_F(Shell, EveryControlLiesInsideWhatItStandsIn) {
  const frmWeather form(desktop_);
  EXPECT_EQ(form.Caption(), "Weather Modeling");
  EXPECT_EQ(form.Width(), 13215);
  EXPECT_EQ(form.Height(), 10665);
  for (const toolkit::Control* const control : form.AllControls()) {
    int width = form.Width();
    int height = form.Height();
    if (const auto* frame = dynamic_cast<const toolkit::Frame*>(&control->Parent())) {
      width = frame->Width();
      height = frame->Height();
    } else if (dynamic_cast<const toolkit::TabPage*>(&control->Parent()) != nullptr) {
      width = form.tabs.Width();
      height = form.tabs.Height();
    }
    EXPECT_LE(control->Left() + control->Width(), width) << control->Name();
    EXPECT_LE(control->Top() + control->Height(), height) << control->Name();
    EXPECT_GT(control->Width(), 0) << control->Name();
  }
}

TEST_F(Shell, TheEditBoxesStandInOneRowUnderTheirList) {
  frmWeather form(desktop_);
  for (const auto& [list, boxes] :
       {std::pair{&form.lstWeather, EventBoxes(form)}, std::pair{&form.lstWW, WindowBoxes(form)}}) {
    int left = 0;
    for (const toolkit::TextBox* const box : boxes) {
      EXPECT_GT(box->Top(), list->Top() + list->Height()) << box->Name();
      EXPECT_EQ(box->Top(), boxes.front()->Top()) << box->Name();
      EXPECT_GT(box->Left(), left) << box->Name();
      left = box->Left();
    }
  }
}

TEST_F(Shell, TheListsHaveTheirColumnsTheFirstOneHidden) {
  frmWeather form(desktop_);
  const auto columns = [](const toolkit::ListView& list) {
    Lines titles;
    for (std::int32_t n = 1; n <= list.ColumnHeaders().Count(); ++n) {
      const toolkit::ColumnHeader& column = list.ColumnHeaders().Item(n);
      titles.push_back(column.Text() + " " + std::to_string(column.Width()));
    }
    return titles;
  };
  EXPECT_THAT(columns(form.lstWeather), ElementsAre("ID 0", "Period Description 3350", "Start 1450",
                                                    "Finish 1450", "Probability of Occurence 2000",
                                                    "Minimum 1450", "Likely 1450", "Maximum 1450"));
  EXPECT_THAT(
      columns(form.lstWW),
      ElementsAre("ID 0", "Window Description 3800", "Start (Earliest) 1440", "Start (Likely) 1440",
                  "Start (Latest) 1440", " 100", "Finish (Earliest) 1440", "Finish (Likely) 1440",
                  "Finish (Latest) 1440"));
}

TEST_F(Shell, OpensInAFixedOrder) {
  AddWeather();
  Open([](frmWeather&) {});
  EXPECT_THAT(
      recorder().Containing({"Application.Path", "Option", "CustomFields.", "Elements", "Children",
                             "PlanTasks.Item", "AutoRecalculate", "Title"}),
      ElementsAre(R"(Plan.GetOption "NIMBRELMOD" "Options" "IsWeatherPlan" "")",
                  R"(Plan.SetOption "NIMBRELMOD" "Options" "IsWeatherPlan" "TRUE")",
                  R"(PlanTasks.Item "WEATHER")", "Application.Path",
                  R"(CustomFields.Add "Weather-start" 2)", R"(CustomFields.Add "Weather-end" 3)",
                  "PlanCalendars.Elements", "Task(WEATHER).Children", "Task(WEATHER).Children",
                  "PlanProperties.Title", "PlanTasks.Elements", "PlanTasks.Elements",
                  "Plan.AutoRecalculate = False", "Plan.AutoRecalculate = True",
                  "Plan.AutoRecalculate = False", "Plan.AutoRecalculate = True",
                  R"(Plan.SetOption "NIMBRELMOD" "Options" "IsWeatherPlan" "TRUE")",
                  R"(PlanTasks.Item "WEATHER")"));
}

TEST_F(Shell, OpensOnTheFirstCalendarOfEachKind) {
  AddWeather();
  Open([](frmWeather& form) {
    EXPECT_EQ(form.tabs.Tab(), 0);
    EXPECT_TRUE(form.tabs.Enabled());
    EXPECT_THAT(form.lstWeatherCals.Entries(), ElementsAre("GALES", "FROST"));
    EXPECT_EQ(form.lstWeatherCals.ListIndex(), 0);
    EXPECT_THAT(RowsOf(form.lstWeather),
                ElementsAre("P1|Period P1|01/Jan/2027|31/Jan/2027|100%|1|2|3"));
    EXPECT_EQ(form.lstWWCals.ListIndex(), 0);
    EXPECT_THAT(RowsOf(form.lstWW),
                ElementsAre("W1|Window W1|01/Dec/2026|02/Dec/2026|03/Dec/2026||20/Feb/2027|"
                            "21/Feb/2027|22/Feb/2027"));
    EXPECT_THAT(ColumnOf(form.lstWCals1, 1), ElementsAre("FROST", "GALES"));
    EXPECT_EQ(form.lstWCals1.ListItems().Item(1)->Key(), "FROST");
    EXPECT_THAT(ColumnOf(form.lstWCals3, 1), ElementsAre("ICE"));
  });
}

TEST_F(Shell, RemembersNothingOfTheOpeningBefore) {
  AddWeather();
  Open([](frmWeather& form) {
    form.lstWeatherCals.UserPick(1);
    form.tabs.UserPickTab(2);
  });
  Open([](frmWeather& form) {
    EXPECT_EQ(form.tabs.Tab(), 0);
    EXPECT_EQ(form.lstWeatherCals.ListIndex(), 0);
  });
}

TEST_F(Shell, APlanWithoutWeatherIsMarkedAsSuchAndNothingElse) {
  plan().AddTask("A", 5);
  Open([](frmWeather& form) {
    EXPECT_EQ(form.tabs.Tab(), 0);
    EXPECT_FALSE(form.tabs.Enabled());
    EXPECT_FALSE(form.chkIsWeather.Value());
    EXPECT_EQ(form.lstWeatherCals.ListCount(), 0);
    EXPECT_EQ(form.lstWWCals.ListCount(), 0);
    EXPECT_THAT(TextsOf(EventBoxes(form)), ElementsAre("", "", "", "", "", "", ""));
    EXPECT_TRUE(AllEnabled(EventBoxes(form), true));
    EXPECT_TRUE(AllEnabled(WindowBoxes(form), true));
  });
  EXPECT_EQ(Option(), "FALSE");
  EXPECT_THAT(plan().custom_fields, ElementsAre("weather-end", "weather-start"));
  EXPECT_THAT(TaskIds(), ElementsAre("A"));
}

TEST_F(Shell, TickingTheBoxMakesOneSummaryTask) {
  Open([this](frmWeather& form) {
    form.chkIsWeather.UserClick();
    EXPECT_TRUE(form.tabs.Enabled());
    EXPECT_EQ(Option(), "TRUE");
    form.chkIsWeather.UserClick();
    EXPECT_FALSE(form.tabs.Enabled());
    EXPECT_EQ(Option(), "FALSE");
    form.chkIsWeather.UserClick();
  });
  EXPECT_THAT(TaskIds(), ElementsAre("WEATHER"));
  EXPECT_EQ(plan().Task("WEATHER").WeatherValue("tasktype"), "10");
  EXPECT_EQ(plan().Task("WEATHER").calendar, nullptr);
}

TEST_F(Shell, WeatherThatWasOffAtTheOpeningIsNotLoadedByTicking) {
  AddWeather();
  plan().options.clear();
  Open([this](frmWeather& form) {
    EXPECT_EQ(form.lstWeatherCals.ListCount(), 0);
    form.chkIsWeather.UserClick();
    EXPECT_TRUE(form.tabs.Enabled());
    EXPECT_EQ(form.lstWeatherCals.ListCount(), 0);
    EXPECT_EQ(form.lstWWCals.ListCount(), 0);
    form.cmdClearAll.UserClick();
    EXPECT_THAT(Messages(), IsEmpty());
  });
  EXPECT_THAT(TaskIds(), ElementsAre("WEATHER", "P1", "P2", "W1", "W1-END"));
  Open([](frmWeather& form) { EXPECT_EQ(form.lstWeatherCals.ListCount(), 2); });
}

TEST_F(Shell, TurningTheWeatherOffKeepsAllOfIt) {
  AddWeather();
  Open([](frmWeather& form) {
    form.chkIsWeather.UserClick();
    EXPECT_FALSE(form.tabs.Enabled());
    EXPECT_EQ(form.lstWeather.ListItems().Count(), 1);
    EXPECT_TRUE(form.cmdClearAll.Enabled());
    EXPECT_TRUE(form.cmdExport.Enabled());
  });
  EXPECT_THAT(TaskIds(), ElementsAre("WEATHER", "P1", "P2", "W1", "W1-END"));
  Open([](frmWeather& form) { form.chkIsWeather.UserClick(); });
  Open([](frmWeather& form) { EXPECT_EQ(form.lstWeatherCals.ListCount(), 2); });
}

TEST_F(Shell, ASummaryTaskThatCannotBeGotReadsAsMissing) {
  AddWeather();
  plan().options.clear();
  plan().unique_ids = false;
  Open([this](frmWeather& form) {
    recorder().FailOn(R"(PlanTasks.Item "WEATHER")");
    form.chkIsWeather.UserClick();
    EXPECT_THAT(Errors(), IsEmpty());
    EXPECT_TRUE(form.tabs.Enabled());
  });
  EXPECT_EQ(TaskIds().back(), "WEATHER");
  EXPECT_EQ(TaskIds().size(), 6u);
}

TEST_F(Shell, TheBoxWorksTheTabsEvenIfTheOptionCannotBeStored) {
  AddWeather();
  Open([this](frmWeather& form) {
    recorder().FailAlways("SetOption");
    form.chkIsWeather.UserClick();
    EXPECT_FALSE(form.tabs.Enabled());
    EXPECT_THAT(Errors(), IsEmpty());
  });
}

TEST_F(Shell, AFailureInOpeningGoesToWhoeverAskedForTheDialog) {
  AddWeather();
  recorder().FailOn("Application.Path");
  bool opened = false;
  EXPECT_EQ(ErrorOf([&] { Open([&opened](frmWeather&) { opened = true; }); }), 1004);
  EXPECT_FALSE(opened);
}

TEST_F(Shell, ClearAllAsksBeforeItRemoves) {
  AddWeather();
  desktop_.answers = {toolkit::Answer::kNo, toolkit::Answer::kYes};
  Open([this](frmWeather& form) {
    form.cmdClearAll.UserClick();
    EXPECT_EQ(desktop_.messages.back().buttons, toolkit::Buttons::kYesNo);
    EXPECT_EQ(TaskIds().size(), 5u);
    form.cmdClearAll.UserClick();
    EXPECT_EQ(form.lstWeatherCals.ListCount(), 0);
    EXPECT_EQ(form.lstWeather.ListItems().Count(), 0);
    EXPECT_EQ(form.lstWW.ListItems().Count(), 0);
    EXPECT_EQ(form.lstWCals1.ListItems().Count(), 0);
    EXPECT_EQ(form.lstWCals3.ListItems().Count(), 0);
    EXPECT_TRUE(form.chkIsWeather.Value());
  });
  const std::string question =
      "This will remove all Weather Modeling data.\r\nWould you like to continue?";
  EXPECT_THAT(Messages(), ElementsAre(question, question));
  EXPECT_THAT(TaskIds(), ElementsAre("WEATHER"));
  EXPECT_THAT(plan().risk_calendars, IsEmpty());
  EXPECT_EQ(plan().calendars.size(), 1u);
  EXPECT_EQ(Option(), "TRUE");
}

TEST_F(Shell, ClearAllWithNothingToClearAsksNothing) {
  MakeWeatherPlan();
  Open([this](frmWeather& form) {
    form.cmdClearAll.UserClick();
    EXPECT_THAT(Messages(), IsEmpty());
    EXPECT_THAT(Errors(), IsEmpty());
  });
}

TEST_F(Shell, AfterClearAllTheEditBoxesKeepTheLastRow) {
  AddWeather();
  desktop_.answers = {toolkit::Answer::kYes};
  Open([this](frmWeather& form) {
    form.cmdClearAll.UserClick();
    EXPECT_EQ(form.txtDescription.Text(), "Period P1");
    EXPECT_EQ(form.txtDescrWW.Text(), "Window W1");
    EXPECT_TRUE(AllEnabled(EventBoxes(form), true));
    Enter(form.txtDescription, "Gone");  // its row has no object any more
    EXPECT_THAT(Errors(), ElementsAre(platform::kInvalidProcedureCall));
  });
}

TEST_F(Shell, AFailingRemovalStopsClearAllAndIsShown) {
  AddWeather();
  desktop_.answers = {toolkit::Answer::kYes};
  recorder().FailOn(R"(PlanTasks.Remove "P2")");
  Open([this](frmWeather& form) {
    form.cmdClearAll.UserClick();
    EXPECT_THAT(Errors(), ElementsAre(1004));
    EXPECT_EQ(form.lstWeatherCals.ListCount(), 2);
  });
  EXPECT_THAT(TaskIds(), ElementsAre("WEATHER", "P2", "W1", "W1-END"));
}

TEST_F(Shell, CloseWritesBothListsAndLeaves) {
  AddWeather();
  Open([this](frmWeather& form) {
    recorder().Clear();
    form.cmdClose.UserClick();
    EXPECT_FALSE(form.Visible());
    EXPECT_FALSE(form.Loaded());
    EXPECT_THAT(events_.lines, ElementsAre("cmdClose Click", "  frmWeather Unload"));
  });
  EXPECT_THAT(recorder().Containing({"AutoRecalculate", "Enabled", "Task(P1).ID =", "(W1).ID ="}),
              ::testing::Contains("Task(P1).ID = \"P1\"").Times(8));
}

TEST_F(Shell, CloseWithNothingLoadedStillWritesBothLists) {
  Open([this](frmWeather& form) {
    recorder().Clear();
    form.cmdClose.UserClick();
    EXPECT_FALSE(form.Visible());
    EXPECT_FALSE(form.Loaded());
  });
  EXPECT_THAT(recorder().Containing({"AutoRecalculate", "Enabled"}),
              ElementsAre("Plan.AutoRecalculate = False", "ChangeMonitor.Enabled = False",
                          "ChangeMonitor.Enabled = True", "Plan.AutoRecalculate = True",
                          "Plan.AutoRecalculate = False", "ChangeMonitor.Enabled = False",
                          "Plan.AutoRecalculate = True", "ChangeMonitor.Enabled = True"));
}

TEST_F(Shell, AFailureInWritingKeepsTheDialogOpenAndStill) {
  AddWeather();
  Open([this](frmWeather& form) {
    recorder().FailOn("Weather-end");
    form.cmdClose.UserClick();
    EXPECT_THAT(Errors(), ElementsAre(1004));
    EXPECT_TRUE(form.Visible());
    Enter(form.txtStart, "no date");  // the flag of the leaving dialog is still up
    EXPECT_THAT(Messages(), IsEmpty());
  });
}

TEST_F(Shell, TheWindowsOwnButtonLosesWhatIsNotInThePlan) {
  AddWeather();
  Open([this](frmWeather& form) {
    form.txtDescription.UserType("Typed");
    recorder().Clear();
    form.UserClose();
    EXPECT_FALSE(form.Visible());
  });
  EXPECT_THAT(calls(), IsEmpty());
  EXPECT_EQ(plan().Task("P1").description, "Period P1");
}

TEST_F(Shell, AClosedDialogHoldsNothingOfThePlan) {
  AddWeather();
  frmWeather form(desktop_);
  desktop_.OnNextForm([](toolkit::Form& shown) {
    EXPECT_EQ(static_cast<frmWeather&>(shown).m_oStorage.m_colEventTasks.Count(), 2);
    shown.UserClose();
  });
  form.ShowModal();
  EXPECT_EQ(form.m_oStorage.m_colEventCals.Count(), 0);
  EXPECT_EQ(form.m_oStorage.m_colEventTasks.Count(), 0);
  EXPECT_EQ(form.m_oStorage.m_colWindowCals.Count(), 0);
  EXPECT_EQ(form.m_oStorage.m_colWindowTasks.Count(), 0);
  EXPECT_TRUE(form.m_oStorage.m_taskWeather.IsNothing());
}

TEST_F(Shell, OpeningSetsWhatTheExchangeGoesBy) {
  modGlobal::g_strModulesFolder.clear();
  modGlobal::g_colEventHeaders.Add("left over");
  const std::string path = host_.application()->get_Path();
  Open([](frmWeather&) {});
  EXPECT_EQ(modGlobal::g_strModulesFolder, path + "\\Modules");
  EXPECT_THAT(modGlobal::g_colEventHeaders,
              ElementsAre("Description", "Start", "Finish", "Probability", "Min", "Likely", "Max"));
  EXPECT_THAT(modGlobal::g_colWindowHeaders,
              ElementsAre("Description", "Start (Early)", "Start (Likely)", "Start (Late)", "",
                          "Finish (Early)", "Finish (Likely)", "Finish (Late)"));
}

TEST_F(Shell, HelpShowsTheOverviewOfTheWeather) {
  Open([](frmWeather& form) { form.cmdHelp.UserClick(); });
  EXPECT_THAT(HelpAsked(), ElementsAre(host_.application()->get_Path() +
                                       "\\Help.chm::/C21_WeatherOverview.html"));
}

TEST_F(Shell, TheTabKeyGoesThroughThePageFromTopToBottom) {
  AddWeather();
  Open([](frmWeather& form) {
    Lines names;
    for (const toolkit::Control* const control : form.TabOrder()) {
      names.push_back(control->Name());
    }
    EXPECT_THAT(
        names,
        ElementsAre("chkIsWeather", "cmdHelp", "cmdExport", "cmdImport", "cmdClearAll", "cmdClose",
                    "tabs", "cmdAddWeatherCal", "cmdDelCalendar", "lstWeatherCals", "lstWeather",
                    "txtDescription", "txtStart", "txtEnd", "txtFrequency", "txtMin", "txtML",
                    "txtMax", "cmdAddNewPeriods", "cmdDelEventPeriod", "cmdImportWeather"));
  });
}

}  // namespace
}  // namespace nimbrel::dialog
