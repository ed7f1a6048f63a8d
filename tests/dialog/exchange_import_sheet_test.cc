// The two buttons that import one sheet into the selected calendar.

#include "tests/dialog/exchange_fixture.h"

namespace nimbrel::dialog {
namespace {

using platform::MakeDate;
using platform::Variant;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using ::testing::SizeIs;

using Lines = std::vector<std::string>;

constexpr const char* kCompleted = "Import Weather: Import completed!";
constexpr const char* kNoCalendar =
    "Weather Modeling: Please choose a calendar to import the data into!";

class ImportSheetButton : public ExchangeButtonsTest {
 protected:
  ImportSheetButton() {
    AddSheet("STORMS", "Weather-Events",
             {EventRow("April", MakeDate(2027, 4, 1), MakeDate(2027, 4, 30), 0.25, 1, 2, 3)});
    AddSheet(
        "FLOODS", "WEATHER-windows",
        {WindowRow("Spring", {MakeDate(2027, 3, 1), MakeDate(2027, 3, 4), MakeDate(2027, 3, 9),
                              MakeDate(2027, 4, 1), MakeDate(2027, 4, 2), MakeDate(2027, 4, 5)})});
    AddSheet("EMPTY", "Weather-Events", {});
    AddSheet("NOTES", "whatever", {});
  }
  /// Opens the dialog with the event page, or that of windows, on show.
  void OnEvents(const std::function<void()>& hands) { WhileOpen(hands); }
  void OnWindows(const std::function<void()>& hands) {
    WhileOpen([this, hands] {
      form().tabs.UserPickTab(1);
      recorder().Clear();
      hands();
    });
  }
  std::string NewTask() { return plan().tasks.back()->id; }
};

using ImportEventsButton = ImportSheetButton;
using ImportWindowsButton = ImportSheetButton;

// Events.

TEST_F(ImportEventsButton, PutsTheSheetsRowsInThePlaceOfTheCalendarsPeriods) {
  ChooseRow(1);
  OnEvents([this] { form().cmdImportWeather.UserClick(); });
  EXPECT_THAT(Messages(), ElementsAre(kCompleted));
  EXPECT_THAT(TaskIds(), ElementsAre("WEATHER", "A", "P3", "W1", "W1-END", NewTask()));
  const recording::TaskState& april = *plan().tasks.back();
  EXPECT_EQ(april.description, "April");
  EXPECT_EQ(april.calendar->name, "NORTH SEA");  // whatever the sheet is called
  EXPECT_EQ(april.parent.lock()->id, "WEATHER");
  EXPECT_EQ(april.custom.at("Weather-start"), Variant(MakeDate(2027, 4, 1)));
  EXPECT_EQ(april.risk->probability, 25.0);
  EXPECT_EQ(april.duration->maximum, 3.0);
  EXPECT_EQ(plan().FindCalendar("STORMS"), nullptr);
}

TEST_F(ImportEventsButton, ShowsTheNewRowsUnderTheirTasksIds) {
  ChooseRow(1);
  OnEvents([this] {
    form().cmdImportWeather.UserClick();
    ASSERT_EQ(form().lstWeather.ListItems().Count(), 1);
    EXPECT_THAT(Row(form().lstWeather, 1), ElementsAre(NewTask(), "April", "01/Apr/2027",
                                                       "30/Apr/2027", "25%", "1", "2", "3"));
    EXPECT_EQ(form().lstWeatherCals.ListIndex(), 0);
  });
}

TEST_F(ImportEventsButton, RemovesMakesAndSavesInThisOrder) {
  ChooseRow(1);
  OnEvents([this] { form().cmdImportWeather.UserClick(); });
  const std::string task = "Task(" + NewTask() + ")";
  const Lines log = CallsFrom("Import completed!");
  const Lines begin = {"Desktop.Show \"Import completed!\" \"Import Weather\"",
                       "Application.ActivePlan",
                       "Plan.Tasks",
                       "PlanTasks.Remove \"P1\"",
                       "Application.ActivePlan",
                       "Plan.Tasks",
                       "PlanTasks.Remove \"P2\"",
                       "Application.ActivePlan",
                       "Plan.Calendars",
                       "PlanCalendars.Item \"NORTH SEA\"",
                       "Application.ActivePlan",
                       "Plan.Tasks",
                       "PlanTasks.Add"};
  ASSERT_GT(log.size(), begin.size());
  EXPECT_THAT(Lines(log.begin(), log.begin() + std::ssize(begin)), ElementsAreArray(begin));
  // AddEventTask's own steps are told where it is tested; then the row gets its ID, the object
  // reads the task, and it goes into the collection.
  const auto steps =
      recorder().Containing({task + ".ID", task + ".Description", "AutoRecalculate"});
  ASSERT_GE(steps.size(), 6u);
  EXPECT_THAT(Lines(steps.begin(), steps.begin() + 6),
              ElementsAre(task + ".ID", task + ".ID", task + ".Description", task + ".ID",
                          "Plan.AutoRecalculate = False", task + ".ID = \"" + NewTask() + "\""));
}

TEST_F(ImportEventsButton, RemovesThePeriodsOnlyAfterASheetWasChosen) {
  OnSheets([this](frmImport& sheets) {
    EXPECT_THAT(TaskIds(), SizeIs(7));
    sheets.lstCals.UserDoubleClickRow(1);
    EXPECT_THAT(TaskIds(), SizeIs(7));
  });
  OnEvents([this] { form().cmdImportWeather.UserClick(); });
  EXPECT_THAT(TaskIds(), SizeIs(6));
}

TEST_F(ImportEventsButton, ASheetWithoutRowsEmptiesTheCalendar) {
  ChooseRow(3);
  OnEvents([this] { form().cmdImportWeather.UserClick(); });
  EXPECT_THAT(Messages(), ElementsAre(kCompleted));
  EXPECT_THAT(TaskIds(), ElementsAre("WEATHER", "A", "P3", "W1", "W1-END"));
  EXPECT_NE(plan().FindCalendar("NORTH SEA"), nullptr);
}

TEST_F(ImportEventsButton, AnExportedSheetGivesTheSamePeriodsUnderNewIds) {
  plan().Task("P2").risk = recording::RiskState{0, 33.0};
  workbook() = {};
  const auto calendar = plan().FindCalendar("NORTH SEA");
  OnSheets([](frmImport& sheets) { sheets.lstCals.UserDoubleClickRow(1); });
  OnEvents([this] {
    form().cmdExport.UserClick();
    form().cmdImportWeather.UserClick();
  });
  ASSERT_THAT(TaskIds(), SizeIs(7));
  const auto& january = *plan().tasks[5];
  const auto& february = *plan().tasks[6];
  EXPECT_EQ(january.description, "January");
  EXPECT_EQ(january.custom.at("Weather-start"), Variant(MakeDate(2027, 1, 1)));
  EXPECT_EQ(january.custom.at("Weather-end"), Variant(MakeDate(2027, 1, 31)));
  EXPECT_EQ(january.duration->minimum, 4.0);
  EXPECT_EQ(january.duration->likely, 7.0);
  EXPECT_EQ(january.duration->maximum, 14.0);
  EXPECT_EQ(february.risk->probability, 33.0);
  EXPECT_NE(january.id, "P1");
  EXPECT_EQ(plan().FindCalendar("NORTH SEA"), calendar);
}

TEST_F(ImportEventsButton, AsksForACalendarFirst) {
  for (const char* const id : {"P1", "P2", "P3"}) {
    std::erase(plan().tasks, plan().FindTask(id));
  }
  OnEvents([this] { form().cmdImportWeather.UserClick(); });
  EXPECT_THAT(Messages(), ElementsAre(kNoCalendar));
  EXPECT_EQ(desktop_.messages[0].buttons, toolkit::Buttons::kOk);
  EXPECT_THAT(recorder().Containing({"Automation", "Plan"}), IsEmpty());
}

TEST_F(ImportEventsButton, RefusesASheetOfWindowsAndLetsTheUserChooseAgain) {
  OnSheets([this](frmImport& sheets) {
    sheets.lstCals.UserClickRow(2);
    sheets.cmdOK.UserClick();
    EXPECT_TRUE(sheets.Visible());
    EXPECT_THAT(Messages(),
                ElementsAre("Weather Modeling: You can't import weather-windows data into a "
                            "weather period calendar!"));
    sheets.lstCals.UserClickRow(4);  // a sheet of notes is no better
    sheets.cmdOK.UserClick();
    EXPECT_THAT(Messages(), SizeIs(2));
    sheets.lstCals.UserClickRow(1);
    sheets.cmdOK.UserClick();
    EXPECT_FALSE(sheets.Visible());
  });
  OnEvents([this] { form().cmdImportWeather.UserClick(); });
  EXPECT_EQ(plan().tasks.back()->description, "April");
}

TEST_F(ImportEventsButton, CancelIsCompleteTooAndReloadsTheCalendars) {
  OnSheets([](frmImport& sheets) { sheets.cmdCancel.UserClick(); });
  OnEvents([this] {
    form().lstWeatherCals.UserPick(1);
    form().cmdImportWeather.UserClick();
    EXPECT_EQ(form().lstWeatherCals.ListIndex(), -1);
    EXPECT_THAT(form().lstWeatherCals.Entries(), ElementsAre("NORTH SEA", "FROST"));
  });
  EXPECT_THAT(Messages(), ElementsAre(kCompleted));
  EXPECT_THAT(TaskIds(), ElementsAre("WEATHER", "A", "P1", "P2", "P3", "W1", "W1-END"));
  EXPECT_THAT(recorder().Containing({"Quit"}), SizeIs(1));
}

TEST_F(ImportEventsButton, NoFileReloadsTheCalendarsWithoutAWord) {
  desktop_.file = "";
  OnEvents([this] {
    form().cmdImportWeather.UserClick();
    EXPECT_EQ(form().lstWeatherCals.ListIndex(), -1);
    EXPECT_THAT(form().lstWeatherCals.Entries(), ElementsAre("NORTH SEA", "FROST"));
  });
  EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(ImportEventsButton, NoExcelReloadsTheCalendars) {
  excel_.installed = false;
  OnEvents([this] {
    form().cmdImportWeather.UserClick();
    EXPECT_EQ(form().lstWeatherCals.ListIndex(), -1);
  });
  ASSERT_THAT(desktop_.messages, SizeIs(1));
  EXPECT_EQ(desktop_.messages[0].title, "Weather");
  EXPECT_THAT(TaskIds(), SizeIs(7));
}

TEST_F(ImportEventsButton, AMissingFileReloadsTheCalendars) {
  services_.exists = false;
  OnEvents([this] {
    form().cmdImportWeather.UserClick();
    EXPECT_EQ(form().lstWeatherCals.ListIndex(), -1);
  });
  EXPECT_THAT(Messages(),
              ElementsAre("Weather Modeling: The file '/data/weather.xlsx' does not exist.",
                          "Export Weather: This file does not exist or can't be opened"));
}

TEST_F(ImportEventsButton, LeavingTheRefusedChoiceByItsWindowTakesTheRefusedSheet) {
  // OK was pressed, and nothing has taken that back.
  OnSheets([](frmImport& sheets) {
    sheets.lstCals.UserClickRow(2);
    sheets.cmdOK.UserClick();
    sheets.UserClose();
  });
  // Read as a period, the row of FLOODS has nothing in column F, which is no length.
  OnEvents([this] { form().cmdImportWeather.UserClick(); });
  EXPECT_TRUE(desktop_.messages.back().reports_error);
  EXPECT_EQ(plan().FindTask("P1"), nullptr);
}

TEST_F(ImportEventsButton, AProbabilityThatIsNoNumberLeavesThePlanAsItIs) {
  workbook().Sheet("STORMS").cells[{6, 5}] = "often";
  ChooseRow(1);
  OnEvents([this] { form().cmdImportWeather.UserClick(); });
  ASSERT_THAT(desktop_.messages, SizeIs(1));
  EXPECT_TRUE(desktop_.messages[0].reports_error);
  EXPECT_THAT(TaskIds(), ElementsAre("WEATHER", "A", "P1", "P2", "P3", "W1", "W1-END"));
  EXPECT_TRUE(workbook().open);
  EXPECT_FALSE(workbook().visible);
}

TEST_F(ImportEventsButton, ATextThatIsNoDateFailsWhenTheRowIsSaved) {
  workbook().Sheet("STORMS").cells[{6, 3}] = "soon";
  ChooseRow(1);
  OnEvents([this] { form().cmdImportWeather.UserClick(); });
  ASSERT_THAT(desktop_.messages, SizeIs(2));
  EXPECT_EQ(desktop_.messages[0].text, "Import completed!");
  EXPECT_TRUE(desktop_.messages[1].reports_error);
  EXPECT_EQ(plan().FindTask("P1"), nullptr);
  EXPECT_EQ(plan().tasks.back()->description, "April");
  EXPECT_FALSE(plan().auto_recalculate);
}

TEST_F(ImportEventsButton, ALengthThatIsNoNumberFailsWhenTheRowIsSaved) {
  workbook().Sheet("STORMS").cells[{6, 7}] = "few";
  ChooseRow(1);
  OnEvents([this] { form().cmdImportWeather.UserClick(); });
  ASSERT_THAT(desktop_.messages, SizeIs(2));
  EXPECT_EQ(desktop_.messages[0].text, "Import completed!");
  EXPECT_TRUE(desktop_.messages[1].reports_error);
  EXPECT_EQ(plan().FindTask("P1"), nullptr);
  EXPECT_EQ(plan().tasks.back()->description, "April");
  EXPECT_FALSE(plan().auto_recalculate);
}

TEST_F(ImportEventsButton, AWorkbookThatCannotBeOpenedLeavesThePlanAsItIs) {
  recorder().FailOn("open");
  OnEvents([this] {
    form().cmdImportWeather.UserClick();
    EXPECT_EQ(form().lstWeather.ListItems().Count(), 0);  // nobody reloads it
    EXPECT_EQ(form().lstWeatherCals.ListIndex(), 0);
  });
  ASSERT_THAT(desktop_.messages, SizeIs(1));
  EXPECT_TRUE(desktop_.messages[0].reports_error);
  EXPECT_THAT(TaskIds(), ElementsAre("WEATHER", "A", "P1", "P2", "P3", "W1", "W1-END"));
  EXPECT_THAT(recorder().Containing({"Quit", "Visible"}), IsEmpty());
}

TEST_F(ImportEventsButton, AnExcelThatTheUserClosesLeavesThePlanAsItIs) {
  for (const char* const step : {"Sheet1.Cells(6, 5).Value", "Book.Close", "Excel.Quit"}) {
    SCOPED_TRACE(step);
    desktop_.messages.clear();
    workbook().closed_at = step;
    workbook().closed = false;
    ChooseRow(1);
    OnEvents([this] { form().cmdImportWeather.UserClick(); });
    NewForm();
    ASSERT_THAT(desktop_.messages, SizeIs(1));
    EXPECT_TRUE(desktop_.messages[0].reports_error);
    EXPECT_THAT(TaskIds(), ElementsAre("WEATHER", "A", "P1", "P2", "P3", "W1", "W1-END"));
    EXPECT_THAT(recorder().Containing({"Sheet", "Excel.", "Book."}).back(),
                ::testing::StartsWith(step));
    EXPECT_FALSE(excel_.IsHeld());
  }
}

TEST_F(ImportEventsButton, AProbabilityThatDoesNotMultiplyExactlyReachesTheTaskAsItsTextHasIt) {
  // 0.333 times 100 is 33.300000000000004 in binary; its text has fifteen digits. A third keeps
  // them all.
  workbook().Sheet("STORMS").cells[{6, 5}] = 0.333;
  workbook().Sheet("STORMS").cells[{7, 2}] = "May";
  workbook().Sheet("STORMS").cells[{7, 3}] = MakeDate(2027, 5, 1);
  workbook().Sheet("STORMS").cells[{7, 4}] = MakeDate(2027, 5, 31);
  workbook().Sheet("STORMS").cells[{7, 5}] = 1.0 / 3;
  for (const std::int32_t column : {6, 7, 8}) {
    workbook().Sheet("STORMS").cells[{7, column}] = 1.0;
  }
  ChooseRow(1);
  OnEvents([this] {
    form().cmdImportWeather.UserClick();
    EXPECT_EQ(form().lstWeather.ListItems().Item(1)->SubItems(4), "33.3%");
    EXPECT_EQ(form().lstWeather.ListItems().Item(2)->SubItems(4), "33.3333333333333%");
    const auto& periods = form().m_oStorage.m_colEventTasks;
    EXPECT_DOUBLE_EQ(periods.Item(periods.Count() - 1)->m_dOccur, 0.333);
    EXPECT_DOUBLE_EQ(periods.Item(periods.Count())->m_dOccur, 0.333333333333333);
  });
  ASSERT_THAT(plan().tasks, SizeIs(7));
  EXPECT_DOUBLE_EQ(plan().tasks[5]->risk->probability, 33.3);
  EXPECT_DOUBLE_EQ(plan().tasks[6]->risk->probability, 33.3333333333333);
}

TEST_F(ImportEventsButton, AProbabilityGoesThroughTheListAsAPercentage) {
  workbook().Sheet("STORMS").cells[{6, 5}] = 0.07;
  ChooseRow(1);
  OnEvents([this] {
    form().cmdImportWeather.UserClick();
    EXPECT_EQ(form().lstWeather.ListItems().Item(1)->SubItems(4), "7%");
  });
  EXPECT_EQ(plan().tasks.back()->risk->probability, 7.000000000000001);  // 0.07 times 100
}

// Windows.

TEST_F(ImportWindowsButton, PutsTheSheetsRowsInThePlaceOfTheCalendarsWindows) {
  ChooseRow(2);
  OnWindows([this] { form().cmdImportWW.UserClick(); });
  EXPECT_THAT(Messages(), ElementsAre(kCompleted));
  EXPECT_EQ(plan().FindTask("W1"), nullptr);
  EXPECT_EQ(plan().FindTask("W1-END"), nullptr);
  ASSERT_THAT(plan().tasks, SizeIs(7));
  const recording::TaskState& start = *plan().tasks[5];
  const recording::TaskState& end = *plan().tasks[6];
  EXPECT_EQ(start.description, "Spring");
  EXPECT_EQ(start.calendar->name, "RIVER ICE");
  EXPECT_EQ(start.WeatherValue("startdate"), "3/1/2027");
  EXPECT_EQ(start.duration->likely, 3.0);
  EXPECT_EQ(start.duration->maximum, 8.0);
  EXPECT_EQ(start.successors[0].lock()->id, end.id);
  EXPECT_EQ(end.WeatherValue("startdate"), "4/1/2027");
  EXPECT_EQ(end.duration->maximum, 4.0);
}

TEST_F(ImportWindowsButton, ShowsTheNewRowsUnderTheirTasksIds) {
  ChooseRow(2);
  OnWindows([this] {
    form().cmdImportWW.UserClick();
    EXPECT_THAT(Row(form().lstWW, 1),
                ElementsAre(plan().tasks[5]->id, "Spring", "01/Mar/2027", "04/Mar/2027",
                            "09/Mar/2027", "", "01/Apr/2027", "02/Apr/2027", "05/Apr/2027"));
  });
}

TEST_F(ImportWindowsButton, RemovesMakesAndSavesInThisOrder) {
  ChooseRow(2);
  OnWindows([this] { form().cmdImportWW.UserClick(); });
  const Lines log = CallsFrom("Import completed!");
  const std::string start = plan().tasks[5]->id;
  const Lines begin = {"Desktop.Show \"Import completed!\" \"Import Weather\"",
                       "Application.ActivePlan",
                       "Plan.Tasks",
                       "PlanTasks.Remove \"W1\"",
                       "Application.ActivePlan",
                       "Plan.Tasks",
                       "PlanTasks.Remove \"W1-END\"",
                       "Application.ActivePlan",
                       "Plan.Calendars",
                       "PlanCalendars.Item \"RIVER ICE\""};
  ASSERT_GT(log.size(), begin.size());
  EXPECT_THAT(Lines(log.begin(), log.begin() + std::ssize(begin)), ElementsAreArray(begin));
  EXPECT_THAT(recorder().Containing({"PlanTasks.Item", "PlanTasks.Add", "AutoRecalculate"}),
              ElementsAre("PlanTasks.Add", "PlanTasks.Add", "PlanTasks.Item \"" + start + "\"",
                          "Plan.AutoRecalculate = False", "Plan.AutoRecalculate = True"));
}

TEST_F(ImportWindowsButton, AsksForACalendarFirst) {
  std::erase(plan().tasks, plan().FindTask("W1"));
  OnWindows([this] { form().cmdImportWW.UserClick(); });
  EXPECT_THAT(Messages(), ElementsAre(kNoCalendar));
  EXPECT_THAT(recorder().Containing({"Automation"}), IsEmpty());
}

TEST_F(ImportWindowsButton, RefusesASheetOfEventsAndCancelReloads) {
  OnSheets([this](frmImport& sheets) {
    sheets.lstCals.UserClickRow(1);
    sheets.cmdOK.UserClick();
    EXPECT_TRUE(sheets.Visible());
    sheets.cmdCancel.UserClick();
  });
  OnWindows([this] {
    form().cmdImportWW.UserClick();
    EXPECT_EQ(form().lstWWCals.ListIndex(), -1);
    EXPECT_THAT(form().lstWWCals.Entries(), ElementsAre("RIVER ICE"));
  });
  EXPECT_THAT(Messages(), ElementsAre("Weather Modeling: You can't import weather-period data into "
                                      "a weather window calendar!",
                                      kCompleted));
  EXPECT_THAT(TaskIds(), ElementsAre("WEATHER", "A", "P1", "P2", "P3", "W1", "W1-END"));
}

TEST_F(ImportWindowsButton, ATextThatIsNoDateFailsWhenTheRowIsSaved) {
  workbook().Sheet("FLOODS").cells[{6, 9}] = "soon";
  ChooseRow(2);
  OnWindows([this] { form().cmdImportWW.UserClick(); });
  ASSERT_THAT(desktop_.messages, SizeIs(2));
  EXPECT_TRUE(desktop_.messages[1].reports_error);
  EXPECT_FALSE(plan().auto_recalculate);
}

TEST_F(ImportWindowsButton, AWorkbookThatCannotBeOpenedLeavesThePlanAsItIs) {
  recorder().FailOn("open");
  OnWindows([this] {
    form().cmdImportWW.UserClick();
    EXPECT_EQ(form().lstWW.ListItems().Count(), 0);
    EXPECT_EQ(form().lstWWCals.ListIndex(), 0);
  });
  ASSERT_THAT(desktop_.messages, SizeIs(1));
  EXPECT_TRUE(desktop_.messages[0].reports_error);
  EXPECT_THAT(TaskIds(), ElementsAre("WEATHER", "A", "P1", "P2", "P3", "W1", "W1-END"));
  EXPECT_THAT(recorder().Containing({"Quit", "Visible"}), IsEmpty());
}

TEST_F(ImportWindowsButton, AnExcelThatTheUserClosesLeavesThePlanAsItIs) {
  workbook().closed_at = "Sheet2.Cells(6, 8).Value";
  ChooseRow(2);
  OnWindows([this] { form().cmdImportWW.UserClick(); });
  ASSERT_THAT(desktop_.messages, SizeIs(1));
  EXPECT_TRUE(desktop_.messages[0].reports_error);
  EXPECT_THAT(TaskIds(), ElementsAre("WEATHER", "A", "P1", "P2", "P3", "W1", "W1-END"));
  EXPECT_THAT(recorder().Containing({"Close", "Quit"}), IsEmpty());
}

TEST_F(ImportWindowsButton, ADateThatIsMissingFailsWhenTheRowIsSaved) {
  workbook().Sheet("FLOODS").cells.erase({6, 7});
  ChooseRow(2);
  OnWindows([this] { form().cmdImportWW.UserClick(); });
  ASSERT_THAT(desktop_.messages, SizeIs(2));
  EXPECT_EQ(desktop_.messages[0].text, "Import completed!");
  EXPECT_TRUE(desktop_.messages[1].reports_error);
}

TEST_F(ImportWindowsButton, ExcelNoFileAndAMissingFileReloadTheCalendars) {
  const auto expect_reload = [this] {
    OnWindows([this] {
      form().cmdImportWW.UserClick();
      EXPECT_EQ(form().lstWWCals.ListIndex(), -1);
      EXPECT_THAT(form().lstWWCals.Entries(), ElementsAre("RIVER ICE"));
    });
    NewForm();
  };
  excel_.installed = false;
  expect_reload();
  excel_.installed = true;
  services_.exists = false;
  expect_reload();
  desktop_.file = "";
  expect_reload();
  EXPECT_THAT(desktop_.messages, SizeIs(3));  // that of Excel, and two of the file
}

// The choice of a sheet.

TEST_F(ImportSheetButton, ListsTheSheetsInTheirOrderWithTheirMarkers) {
  OnSheets([](frmImport& sheets) {
    ASSERT_EQ(sheets.lstCals.ListItems().Count(), 4);
    EXPECT_THAT(Row(sheets.lstCals, 1), ElementsAre("STORMS", "Weather-Events"));
    EXPECT_THAT(Row(sheets.lstCals, 2), ElementsAre("FLOODS", "WEATHER-windows"));
    EXPECT_THAT(Row(sheets.lstCals, 4), ElementsAre("NOTES", "whatever"));
    EXPECT_EQ(sheets.lstCals.ListItems().Item("STORMSk")->Text(), "STORMS");
    EXPECT_EQ(sheets.m_strDataType, "Weather-Events");
    sheets.cmdCancel.UserClick();
  });
  OnEvents([this] { form().cmdImportWeather.UserClick(); });
}

TEST_F(ImportSheetButton, OffersTheKindOfThePage) {
  OnSheets([](frmImport& sheets) { EXPECT_EQ(sheets.m_strDataType, "Weather-windows"); });
  OnWindows([this] { form().cmdImportWW.UserClick(); });
}

}  // namespace
}  // namespace nimbrel::dialog
