// The button that imports everything: the plan's weather data give way to the sheets of a workbook.

#include "tests/dialog/exchange_fixture.h"

namespace nimbrel::dialog {
namespace {

using platform::Date;
using platform::MakeDate;
using platform::Variant;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

using Lines = std::vector<std::string>;

constexpr const char* kQuestion =
    "Weather Modeling: This will remove all Weather Modeling data.\r\nWould you like to continue?";
constexpr const char* kCompleted = "Import Weather: Import completed!";

class ImportAllButton : public ExchangeButtonsTest {
 protected:
  ImportAllButton() { Answer(toolkit::Answer::kYes); }

  void Import() {
    WhileOpen([this] { form().cmdImport.UserClick(); });
  }
  void AddStorms() {
    AddSheet("Storms", "Weather-Events",
             {EventRow("April", MakeDate(2027, 4, 1), MakeDate(2027, 4, 30), 0.25, 1, 2, 3),
              EventRow("May", MakeDate(2027, 5, 1), MakeDate(2027, 5, 31), 1.0, 4, 5, 6)});
  }
  void AddFloods() {
    AddSheet(
        "FLOODS", "Weather-Windows",
        {WindowRow("Spring", {MakeDate(2027, 3, 1), MakeDate(2027, 3, 4), MakeDate(2027, 3, 9),
                              MakeDate(2027, 4, 1), MakeDate(2027, 4, 2), MakeDate(2027, 4, 5)})});
  }
  bool IsWeatherPlan() {
    return plan().options[{"NIMBRELMOD", "Options", "IsWeatherPlan"}] == "TRUE";
  }
  /// IDs of the tasks that carry weather data in the plan now and were not there at first.
  Lines NewTasks() {
    Lines ids;
    for (const std::string& id : TaskIds()) {
      if (id != "WEATHER" && id != "A") {
        ids.push_back(id);
      }
    }
    return ids;
  }
};

TEST_F(ImportAllButton, PutsTheSheetsInThePlaceOfAllWeatherData) {
  AddStorms();
  AddFloods();
  Import();
  EXPECT_THAT(Messages(), ElementsAre(kQuestion, kCompleted));
  const Lines ids = NewTasks();
  ASSERT_THAT(ids, SizeIs(4));
  const recording::TaskState& april = plan().Task(ids[0]);
  EXPECT_EQ(april.description, "April");
  EXPECT_EQ(april.calendar->name, "Storms");
  EXPECT_EQ(april.custom.at("Weather-start"), Variant(MakeDate(2027, 4, 1)));
  EXPECT_EQ(april.custom.at("Weather-end"), Variant(MakeDate(2027, 4, 30)));
  EXPECT_EQ(april.risk->probability, 25.0);
  EXPECT_EQ(april.duration->minimum, 1.0);
  EXPECT_EQ(april.duration->likely, 2.0);
  EXPECT_EQ(april.duration->maximum, 3.0);
  EXPECT_EQ(plan().Task(ids[1]).description, "May");
  const recording::TaskState& spring = plan().Task(ids[2]);
  EXPECT_EQ(spring.description, "Spring");
  EXPECT_EQ(spring.WeatherValue("tasktype"), "3");
  EXPECT_EQ(spring.WeatherValue("startdate"), "3/1/2027");
  EXPECT_EQ(spring.duration->likely, 3.0);
  EXPECT_EQ(spring.duration->maximum, 8.0);
  const recording::TaskState& end = plan().Task(ids[3]);
  EXPECT_EQ(end.description, "Weather window");
  EXPECT_EQ(end.WeatherValue("startdate"), "4/1/2027");
  EXPECT_EQ(end.duration->likely, 1.0);
  EXPECT_EQ(end.duration->maximum, 4.0);
  EXPECT_EQ(plan().FindCalendar("NORTH SEA"), nullptr);
  EXPECT_EQ(plan().FindRiskCalendar("RIVER ICE"), nullptr);
  EXPECT_EQ(plan().FindRiskCalendar("Storms")->description, "Weather calendar");
  EXPECT_EQ(plan().FindRiskCalendar("FLOODS")->description, "Weather window");
  EXPECT_NE(plan().FindTask("WEATHER"), nullptr);
}

TEST_F(ImportAllButton, ShowsTheNewCalendarsInTheDialog) {
  AddFloods();
  AddStorms();
  WhileOpen([this] {
    form().cmdImport.UserClick();
    EXPECT_THAT(form().lstWeatherCals.Entries(), ElementsAre("Storms"));
    EXPECT_THAT(form().lstWWCals.Entries(), ElementsAre("FLOODS"));
    EXPECT_FALSE(form().m_bFilling);
    form().lstWeatherCals.UserPick(0);
    EXPECT_EQ(form().lstWeather.ListItems().Count(), 2);
    EXPECT_EQ(form().txtDescription.Text(), "April");
  });
}

TEST_F(ImportAllButton, GoesStepByStep) {
  AddFloods();
  workbook().Sheet("FLOODS").cells.clear();
  workbook().Sheet("FLOODS").cells[{3, 1}] = "Weather-Windows";
  Import();
  const Lines log = recorder().Containing(
      {"Option", "Automation", "Desktop", "Excel", "Book", "Sheet1", "Remove", "Calendars.Add"});
  EXPECT_THAT(
      log,
      ElementsAre("Plan.SetOption \"NIMBRELMOD\" \"Options\" \"IsWeatherPlan\" \"TRUE\"",
                  "Automation.CreateObject \"Excel.Application\"",
                  "Desktop.FindFirst \"/data/weather.xlsx\"",
                  "Desktop.Show \"This will remove all Weather Modeling data.\r\nWould you like to "
                  "continue?\" \"Weather Modeling\"",
                  "PlanTasks.Remove \"P1\"", "PlanTasks.Remove \"P2\"", "PlanTasks.Remove \"P3\"",
                  "PlanTasks.Remove \"W1\"", "PlanTasks.Remove \"W1-END\"",
                  "PlanRiskCalendars.Remove \"NORTH SEA\"", "PlanCalendars.Remove \"NORTH SEA\"",
                  "PlanRiskCalendars.Remove \"FROST\"", "PlanCalendars.Remove \"FROST\"",
                  "PlanRiskCalendars.Remove \"RIVER ICE\"", "PlanCalendars.Remove \"RIVER ICE\"",
                  "Excel.Workbooks.open(\"/data/weather.xlsx\")", "Excel.Visible = False",
                  "Sheet1.Cells(3, 1).Value", "Sheet1.Name", "PlanCalendars.Add \"FLOODS\"",
                  "PlanRiskCalendars.Add \"FLOODS\"", "Sheet1.Cells(6, 3).Value",
                  "Sheet1.Cells(7, 3).Value", "Sheet1.Cells(8, 3).Value", "Book.Close(False)",
                  "Excel.Quit", "Desktop.Show \"Import completed!\" \"Import Weather\""));
  EXPECT_FALSE(excel_.IsHeld());
}

TEST_F(ImportAllButton, MakesTheTasksOfASheetOfEventsRowByRow) {
  AddStorms();
  Import();
  const Lines ids = NewTasks();
  ASSERT_THAT(ids, SizeIs(2));
  EXPECT_THAT(
      recorder().Containing({"PlanTasks.Add", "PlanCalendars.Item \"Storms\"", "AutoRecalculate",
                             "ChangeMonitor.Enabled"}),
      ElementsAre("PlanCalendars.Item \"Storms\"",  // is there such a calendar?
                  "PlanCalendars.Item \"Storms\"", "PlanTasks.Add", "PlanCalendars.Item \"Storms\"",
                  "PlanTasks.Add", "Plan.AutoRecalculate = False", "ChangeMonitor.Enabled = False",
                  "ChangeMonitor.Enabled = True", "Plan.AutoRecalculate = True"));
}

TEST_F(ImportAllButton, MakesTheTasksOfASheetOfWindowsRowByRow) {
  AddFloods();
  Import();
  EXPECT_THAT(recorder().Containing({"PlanTasks.Add", "PlanCalendars.Item \"FLOODS\"",
                                     "AutoRecalculate", "ChangeMonitor.Enabled"}),
              ElementsAre("PlanCalendars.Item \"FLOODS\"",  // is there such a calendar?
                          "PlanCalendars.Item \"FLOODS\"", "PlanTasks.Add", "PlanTasks.Add",
                          "Plan.AutoRecalculate = False", "ChangeMonitor.Enabled = False",
                          "Plan.AutoRecalculate = True", "ChangeMonitor.Enabled = True"));
}

TEST_F(ImportAllButton, MakesCalendarsInTheOrderOfTheSheets) {
  AddSheet("b", "Weather-Events", {});
  AddSheet("a", "Weather-Windows", {});
  AddSheet("c", "", {});
  Import();
  Lines names;
  for (const auto& calendar : plan().calendars) {
    names.push_back(calendar->name);
  }
  EXPECT_THAT(names, ElementsAre("STANDARD", "b", "a", "c"));
}

TEST_F(ImportAllButton, KnowsWindowsByTheMarkerInAnyCase) {
  AddSheet("ONE", "weather-windows",
           {{"x",
             MakeDate(2027, 1, 1),
             MakeDate(2027, 1, 1),
             MakeDate(2027, 1, 1),
             {},
             MakeDate(2027, 2, 1),
             MakeDate(2027, 2, 1),
             MakeDate(2027, 2, 1)}});
  Import();
  const Lines ids = NewTasks();
  ASSERT_THAT(ids, SizeIs(2));
  EXPECT_EQ(plan().Task(ids[0]).WeatherValue("tasktype"), "3");
}

TEST_F(ImportAllButton, AStraySheetBecomesAnEventCalendarWithoutPeriods) {
  workbook().AddSheet("Notes").cells[{1, 1}] = "Call the harbour master";
  Import();
  EXPECT_EQ(plan().FindRiskCalendar("Notes")->description, "Weather calendar");
  EXPECT_THAT(NewTasks(), IsEmpty());
  EXPECT_EQ(desktop_.messages.back().text, "Import completed!");
}

TEST_F(ImportAllButton, AsksNothingOfAPlanWithoutCalendars) {
  for (const char* const id : {"P1", "P2", "P3", "W1"}) {
    std::erase(plan().tasks, plan().FindTask(id));
  }
  AddStorms();
  Import();
  EXPECT_THAT(Messages(), ElementsAre(kCompleted));
  EXPECT_THAT(NewTasks(), SizeIs(3));  // the end of W1, which nobody sees, among them
}

TEST_F(ImportAllButton, NoLeavesTheDataAndExcelRunning) {
  desktop_.answers = {toolkit::Answer::kNo};
  AddStorms();
  Import();
  EXPECT_THAT(Messages(), ElementsAre(kQuestion));
  EXPECT_EQ(desktop_.messages[0].buttons, toolkit::Buttons::kYesNo);
  EXPECT_THAT(NewTasks(), ElementsAre("P1", "P2", "P3", "W1", "W1-END"));
  EXPECT_THAT(recorder().Containing({"open", "Quit", "Remove"}), IsEmpty());
}

TEST_F(ImportAllButton, AUserWhoCancelsHasAWeatherPlanAllTheSame) {
  plan().options.clear();
  desktop_.file = "";
  WhileOpen([this] {
    EXPECT_FALSE(IsWeatherPlan());
    form().cmdImport.UserClick();
    EXPECT_TRUE(form().chkIsWeather.Value());
    EXPECT_TRUE(form().tabs.Enabled());
  });
  EXPECT_TRUE(IsWeatherPlan());
  EXPECT_THAT(desktop_.messages, IsEmpty());
}

TEST_F(ImportAllButton, TheHandlerOfAClearBoxRunsTwice) {
  plan().options.clear();
  desktop_.file = "";
  Import();
  EXPECT_THAT(recorder().Containing({"IsWeatherPlan"}), SizeIs(2));
}

TEST_F(ImportAllButton, WithoutExcelItEndsAfterTheMessage) {
  excel_.installed = false;
  Import();
  ASSERT_THAT(desktop_.messages, SizeIs(1));
  EXPECT_EQ(desktop_.messages[0].title, "Weather");
  EXPECT_THAT(desktop_.files_asked, IsEmpty());
}

TEST_F(ImportAllButton, AMissingFileEndsItWithTwoMessages) {
  services_.exists = false;
  Import();
  EXPECT_THAT(Messages(),
              ElementsAre("Weather Modeling: The file '/data/weather.xlsx' does not exist.",
                          "Export Weather: This file does not exist or can't be opened"));
  EXPECT_THAT(NewTasks(), SizeIs(5));
}

TEST_F(ImportAllButton, AsksForTheFileAsOneToOpen) {
  desktop_.file = "";
  Import();
  ASSERT_THAT(desktop_.files_asked, SizeIs(1));
  const toolkit::FileRequest& request = desktop_.files_asked[0];
  EXPECT_EQ(request.title, "Import Weather Calendar");
  EXPECT_EQ(request.folder, "/opt/corvane\\Modules");
  EXPECT_EQ(request.filter_name, "xls (*.xls;*.xlsx)");
  EXPECT_EQ(request.pattern, "*.xls;*.xlsx");
  EXPECT_FALSE(request.save);
}

TEST_F(ImportAllButton, TheEditBoxesTakeNoNoticeUntilItHasEnded) {
  AddStorms();
  WhileOpen([this] {
    std::vector<bool> filling;
    on_message_ = [&](const toolkit::Message&) { filling.push_back(form().m_bFilling); };
    form().cmdImport.UserClick();
    on_message_ = {};
    EXPECT_THAT(filling, ElementsAre(false, true));
    EXPECT_FALSE(form().m_bFilling);
  });
}

TEST_F(ImportAllButton, AWorkbookThatCannotBeOpenedHasCostTheData) {
  recorder().FailOn("open");
  WhileOpen([this] {
    form().cmdImport.UserClick();
    EXPECT_TRUE(form().m_bFilling);
  });
  ASSERT_THAT(desktop_.messages, SizeIs(2));
  EXPECT_TRUE(desktop_.messages[1].reports_error);
  EXPECT_THAT(NewTasks(), IsEmpty());
  EXPECT_THAT(recorder().Containing({"Quit"}), IsEmpty());
}

TEST_F(ImportAllButton, AnExcelThatTheUserClosesLeavesThePlanAsItIsThen) {
  AddFloods();
  AddStorms();
  workbook().closed_at = "Sheet2.Cells(7, 5).Value";  // in the second row of the second sheet
  WhileOpen([this] {
    form().cmdImport.UserClick();
    EXPECT_TRUE(form().m_bFilling);
  });
  ASSERT_THAT(desktop_.messages, SizeIs(2));
  EXPECT_EQ(Messages()[0], kQuestion);
  EXPECT_TRUE(desktop_.messages[1].reports_error);
  EXPECT_THAT(NewTasks(), SizeIs(2));  // the window of the first sheet; the old data are gone
  EXPECT_NE(plan().FindCalendar("Storms"), nullptr);
  EXPECT_EQ(plan().FindCalendar("NORTH SEA"), nullptr);
  EXPECT_THAT(recorder().Containing({"Close", "Quit"}), IsEmpty());
  EXPECT_FALSE(excel_.IsHeld());
}

TEST_F(ImportAllButton, AnExcelThatIsGoneAtTheEndCostsTheMessageAlone) {
  AddStorms();
  workbook().closed_at = "Book.Close";
  WhileOpen([this] {
    form().cmdImport.UserClick();
    EXPECT_TRUE(form().m_bFilling);
    EXPECT_THAT(form().lstWeatherCals.Entries(), ElementsAre("Storms"));
  });
  ASSERT_THAT(desktop_.messages, SizeIs(2));
  EXPECT_TRUE(desktop_.messages[1].reports_error);
  EXPECT_THAT(NewTasks(), SizeIs(2));
  EXPECT_THAT(recorder().Containing({"Quit"}), IsEmpty());
}

TEST_F(ImportAllButton, AProbabilityThatIsNoNumberStopsItWhereItIs) {
  AddFloods();
  AddSheet("Storms", "Weather-Events",
           {{"April", MakeDate(2027, 4, 1), MakeDate(2027, 4, 30), "often", 1, 2, 3}});
  WhileOpen([this] {
    form().cmdImport.UserClick();
    EXPECT_TRUE(form().m_bFilling);
  });
  ASSERT_THAT(desktop_.messages, SizeIs(2));
  EXPECT_TRUE(desktop_.messages[1].reports_error);
  EXPECT_THAT(NewTasks(), SizeIs(2));  // the window that was imported before
  EXPECT_NE(plan().FindCalendar("Storms"), nullptr);
  EXPECT_TRUE(workbook().open);
  EXPECT_FALSE(workbook().visible);
  EXPECT_THAT(recorder().Containing({"Quit", "Close"}), IsEmpty());
}

TEST_F(ImportAllButton, ATextThatIsNoDateStopsItAtItsRow) {
  AddSheet("Storms", "Weather-Events",
           {EventRow("April", MakeDate(2027, 4, 1), MakeDate(2027, 4, 30), 0.25, 1, 2, 3),
            {"May", "soon", MakeDate(2027, 5, 31), 1.0, 4, 5, 6},
            EventRow("June", MakeDate(2027, 6, 1), MakeDate(2027, 6, 30), 0.25, 1, 2, 3)});
  Import();
  ASSERT_THAT(desktop_.messages, SizeIs(2));
  EXPECT_TRUE(desktop_.messages[1].reports_error);
  const Lines ids = NewTasks();
  ASSERT_THAT(ids, SizeIs(3));
  EXPECT_EQ(plan().Task(ids[0]).description, "April");
  EXPECT_EQ(plan().Task(ids[1]).description, "May");
  EXPECT_EQ(plan().Task(ids[2]).description, "");
  EXPECT_FALSE(plan().auto_recalculate);
  EXPECT_FALSE(plan().monitor_enabled);
}

TEST_F(ImportAllButton, ANumberThatIsNoneStopsItToo) {
  AddSheet("Storms", "Weather-Events",
           {{"April", MakeDate(2027, 4, 1), MakeDate(2027, 4, 30), 1.0, 1, "few", 3}});
  Import();
  ASSERT_THAT(desktop_.messages, SizeIs(2));
  EXPECT_TRUE(desktop_.messages[1].reports_error);
}

TEST_F(ImportAllButton, AWindowDateThatIsNoneStopsIt) {
  AddSheet("ICE", "Weather-Windows", {{"x", MakeDate(2027, 1, 1), "when it is cold"}});
  Import();
  ASSERT_THAT(desktop_.messages, SizeIs(2));
  EXPECT_TRUE(desktop_.messages[1].reports_error);
  EXPECT_FALSE(plan().auto_recalculate);
}

TEST_F(ImportAllButton, ExportAndImportGiveTheSamePeriodsUnderNewIds) {
  plan().Task("P2").risk = recording::RiskState{0, 12.5};
  WhileOpen([this] {
    form().cmdExport.UserClick();
    form().cmdImport.UserClick();
  });
  EXPECT_THAT(Messages(), ElementsAre(kQuestion, kCompleted));
  const Lines ids = NewTasks();
  ASSERT_THAT(ids, SizeIs(5));
  EXPECT_EQ(plan().Task(ids[0]).description, "January");
  EXPECT_EQ(plan().Task(ids[0]).custom.at("Weather-end"), Variant(MakeDate(2027, 1, 31)));
  EXPECT_EQ(plan().Task(ids[1]).risk->probability, 12.5);
  EXPECT_EQ(plan().Task(ids[1]).duration->likely, 7.0);
  EXPECT_EQ(plan().Task(ids[2]).calendar->name, "FROST");
  EXPECT_EQ(plan().Task(ids[3]).description, "Frozen");
  EXPECT_EQ(plan().Task(ids[3]).WeatherValue("startdate"), "12/1/2026");
  EXPECT_THAT(ids, ::testing::Not(Contains("P1")));
}

}  // namespace
}  // namespace nimbrel::dialog
