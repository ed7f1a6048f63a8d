// The export button: the workbook that it leaves behind, in which order it is made, and what a
// failure leaves.

#include "tests/dialog/exchange_fixture.h"

namespace nimbrel::dialog {
namespace {

using platform::Variant;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using ::testing::SizeIs;

using Lines = std::vector<std::string>;

class ExportButton : public ExchangeButtonsTest {
 protected:
  void Export() {
    WhileOpen([this] { form().cmdExport.UserClick(); });
  }
  /// What happened but for the steps on the sheets themselves.
  Lines Shell() {
    Lines lines;
    for (const std::string& call : calls()) {
      const bool on_sheet = call.starts_with("Sheet") && call.find(".Delete") == std::string::npos;
      const bool title = call == "Application.ActivePlan" || call == "Plan.Name";
      if (!on_sheet && !title) {
        lines.push_back(call);
      }
    }
    return lines;
  }
};

TEST_F(ExportButton, GoesOnWithoutAWordWhereTheProgressToolIsMissing) {
  Export();  // nothing that is executed is found on this desktop
  EXPECT_THAT(Shell(), ::testing::Contains("Desktop.ShellExecute \"/opt/corvane\\Progress.exe\""));
  EXPECT_THAT(desktop_.messages, IsEmpty());
  EXPECT_EQ(Shell().back(), "Settings.Save \"Running\" \"0\"");
}

TEST_F(ExportButton, MakesAWorkbookOfOneSheetACalendarStepByStep) {
  const std::string handle = std::to_string(host_.application()->get_hWnd());
  Export();
  const Lines shell = Shell();
  const Lines expected = {"Application.hWnd",
                          "Application.hWnd",
                          "Desktop.GetWindowThread " + handle,
                          "Settings.Save \"Running\" \"1\"",
                          "Settings.Save \"Label\" \"Exporting Weather Calendar to Excel...\"",
                          "Settings.Save \"ParentHwnd\" \"4711\"",
                          "Settings.Save \"WndHandle\" \"" + handle + "\"",
                          "Application.Path",
                          "Desktop.ShellExecute \"/opt/corvane\\Progress.exe\"",
                          "Automation.CreateObject \"Excel.Application\"",
                          "Excel.Visible = False",
                          "Excel.Workbooks.Add",
                          "Excel.Calculation = -4135",
                          "Excel.DisplayAlerts = False",
                          "Excel.ActiveWindow.Zoom = 80"};
  ASSERT_GT(shell.size(), expected.size() + 3);
  EXPECT_THAT(Lines(shell.begin(), shell.begin() + std::ssize(expected)),
              ElementsAreArray(expected));
  EXPECT_THAT(Lines(shell.end() - 3, shell.end()),
              ElementsAre("Excel.Calculation = -4105", "Excel.Visible = True",
                          "Settings.Save \"Running\" \"0\""));
}

TEST_F(ExportButton, LeavesOneOfTheWorkbooksSheetsAndAddsTheRest) {
  Export();
  EXPECT_THAT(
      recorder().Containing({"Book.", "Delete"}),
      ElementsAre("Book.Sheets.Count", "Sheet1.Delete", "Book.Sheets.Count", "Sheet2.Delete",
                  "Book.Sheets.Count", "Book.Sheets.Add", "Book.Sheets.Add"));
}

TEST_F(ExportButton, DeletesNoSheetOfAWorkbookThatHasOne) {
  workbook().new_sheets = 1;
  Export();
  EXPECT_THAT(recorder().Containing({"Delete"}), IsEmpty());
  EXPECT_THAT(SheetNames(), ElementsAre("NORTH SEA", "FROST", "RIVER ICE"));
}

TEST_F(ExportButton, PutsEventCalendarsBeforeWindowCalendars) {
  Export();
  EXPECT_THAT(SheetNames(), ElementsAre("NORTH SEA", "FROST", "RIVER ICE"));
  EXPECT_EQ(workbook().Sheet("NORTH SEA").cells.at({3, 1}), Variant("Weather-Events"));
  EXPECT_EQ(workbook().Sheet("FROST").cells.at({3, 1}), Variant("Weather-Events"));
  EXPECT_EQ(workbook().Sheet("RIVER ICE").cells.at({3, 1}), Variant("Weather-Windows"));
}

TEST_F(ExportButton, WritesThePlansPeriodsAndWindows) {
  plan().Task("P2").risk = recording::RiskState{0, 50.0};
  plan().Task("W1").duration = recording::DurationState{0, 9, 35};
  Export();
  const auto& periods = workbook().Sheet("NORTH SEA").cells;
  EXPECT_EQ(periods.at({6, 2}), Variant("January"));
  EXPECT_EQ(periods.at({6, 4}), Variant(platform::MakeDate(2027, 1, 31)));
  EXPECT_EQ(periods.at({6, 5}), Variant(1.0));
  EXPECT_EQ(periods.at({7, 2}), Variant("February"));
  EXPECT_EQ(periods.at({7, 5}), Variant(0.5));
  EXPECT_EQ(periods.at({7, 7}), Variant(7));
  EXPECT_EQ(periods.count({8, 2}), 0u);
  const auto& windows = workbook().Sheet("RIVER ICE").cells;
  EXPECT_EQ(windows.at({6, 2}), Variant("Frozen"));
  EXPECT_EQ(windows.at({6, 3}), Variant(platform::MakeDate(2026, 12, 1)));
  EXPECT_EQ(windows.at({6, 4}), Variant(platform::MakeDate(2026, 12, 10)));
  EXPECT_EQ(windows.at({6, 5}), Variant(platform::MakeDate(2027, 1, 5)));
  EXPECT_EQ(windows.at({6, 7}), Variant(platform::MakeDate(2027, 2, 20)));
}

TEST_F(ExportButton, LeavesTheWorkbookToTheUserUnsaved) {
  Export();
  EXPECT_TRUE(workbook().visible);
  EXPECT_TRUE(workbook().open);
  EXPECT_FALSE(excel_.IsHeld());
  EXPECT_THAT(recorder().Containing({"Quit", "Close", "Save\"", "DisplayAlerts = True"}),
              IsEmpty());
  EXPECT_THAT(desktop_.messages, IsEmpty());
}

TEST_F(ExportButton, ChangesNothingInThePlanOrTheDialog) {
  WhileOpen([this] {
    form().lstWeatherCals.UserPick(1);
    const auto rows = form().lstWeather.ListItems().Count();
    recorder().Clear();
    form().cmdExport.UserClick();
    EXPECT_EQ(form().lstWeatherCals.ListIndex(), 1);
    EXPECT_EQ(form().lstWeather.ListItems().Count(), rows);
    EXPECT_FALSE(form().m_bFilling);
  });
  for (const std::string& call : recorder().Containing({"Plan.", "PlanT", "PlanC", "Task"})) {
    EXPECT_TRUE(call == "Application.ActivePlan" || call == "Plan.Name") << call;
  }
}

TEST_F(ExportButton, WritesTheSheetOfAWindowCalendarThatIsAlone) {
  for (const char* const id : {"P1", "P2", "P3"}) {
    std::erase(plan().tasks, plan().FindTask(id));
  }
  Export();
  ASSERT_THAT(SheetNames(), ElementsAre("RIVER ICE"));
  EXPECT_EQ(workbook().Sheet("RIVER ICE").cells.at({3, 1}), Variant("Weather-Windows"));
  EXPECT_THAT(recorder().Containing({"Sheets.Add"}), IsEmpty());
}

TEST_F(ExportButton, WritesCalendarsWithoutPeriods) {
  WhileOpen([this] {
    form().cmdDelEventPeriod.UserClick();
    form().cmdDelEventPeriod.UserClick();
    form().lstWeatherCals.UserPick(1);
    form().cmdDelEventPeriod.UserClick();
    form().tabs.UserPickTab(1);
    form().cmdDelWW.UserClick();
    recorder().Clear();
    form().cmdExport.UserClick();
  });
  EXPECT_THAT(TaskIds(), ElementsAre("WEATHER", "A"));
  ASSERT_THAT(SheetNames(), ElementsAre("NORTH SEA", "FROST", "RIVER ICE"));
  for (const auto& sheet : workbook().sheets) {
    EXPECT_EQ(sheet->cells.at({1, 1}), Variant("Plan"));
    EXPECT_EQ(sheet->cells.at({5, 2}), Variant("Description"));
    EXPECT_EQ(sheet->cells.count({6, 2}), 0u);
    EXPECT_EQ(sheet->selection, "B6:B6");
  }
}

TEST_F(ExportButton, WithoutACalendarThereIsNothingToExport) {
  for (const char* const id : {"P1", "P2", "P3", "W1"}) {
    std::erase(plan().tasks, plan().FindTask(id));
  }
  Export();
  ASSERT_THAT(desktop_.messages, SizeIs(1));
  EXPECT_EQ(desktop_.messages[0].buttons, toolkit::Buttons::kOk);
  EXPECT_THAT(calls(), ElementsAre("Desktop.Show \"There is no weather data to export!\" "
                                   "\"Weather Modeling\""));
}

TEST_F(ExportButton, WithoutExcelTheProgressToolIsNotToldToStop) {
  excel_.installed = false;
  Export();
  ASSERT_THAT(desktop_.messages, SizeIs(1));
  EXPECT_EQ(desktop_.messages[0].title, "Weather");
  EXPECT_FALSE(desktop_.messages[0].reports_error);
  EXPECT_THAT(recorder().Containing({"Running"}), ElementsAre("Settings.Save \"Running\" \"1\""));
}

TEST_F(ExportButton, AFailureHalfWayRestoresNothing) {
  recorder().FailOn("Name = \"FROST\"");
  Export();
  ASSERT_THAT(desktop_.messages, SizeIs(1));
  EXPECT_TRUE(desktop_.messages[0].reports_error);
  EXPECT_EQ(workbook().sheets[0]->name, "NORTH SEA");
  EXPECT_FALSE(workbook().visible);
  EXPECT_TRUE(workbook().open);
  EXPECT_THAT(recorder().Containing({"Calculation", "DisplayAlerts", "Running", "Quit"}),
              ElementsAre("Settings.Save \"Running\" \"1\"", "Excel.Calculation = -4135",
                          "Excel.DisplayAlerts = False"));
}

TEST_F(ExportButton, AnExcelThatTheUserClosesIsLeftAlone) {
  workbook().closed_at = ".Cells(6, 4).Value";
  WhileOpen([this] {
    form().cmdExport.UserClick();
    EXPECT_THAT(form().lstWeatherCals.Entries(), ElementsAre("NORTH SEA", "FROST"));
  });
  ASSERT_THAT(desktop_.messages, SizeIs(1));
  EXPECT_TRUE(desktop_.messages[0].reports_error);
  EXPECT_EQ(desktop_.messages[0].text, "The remote server machine does not exist");
  // The step at which it was gone is the last that was asked of it, and the progress tool runs on.
  const Lines log = recorder().Containing({"Sheet", "Excel.", "Book.", "Running"});
  EXPECT_THAT(log.back(), ::testing::HasSubstr(".Cells(6, 4).Value"));
  EXPECT_THAT(recorder().Containing({"Running"}), ElementsAre("Settings.Save \"Running\" \"1\""));
  EXPECT_FALSE(excel_.IsHeld());
  EXPECT_THAT(TaskIds(), ElementsAre("WEATHER", "A", "P1", "P2", "P3", "W1", "W1-END"));
}

TEST_F(ExportButton, AnExcelThatIsGoneIsNoticedAtTheNextStepThatMayNotFail) {
  workbook().closed_at = ".Range(\"B6:B6\").Select";  // which may fail
  Export();
  ASSERT_THAT(desktop_.messages, SizeIs(1));
  EXPECT_TRUE(desktop_.messages[0].reports_error);
  const Lines log = recorder().Containing({"Sheet", "Excel."});
  EXPECT_THAT(log.back(), ::testing::EndsWith(".Range(\"B6:B6\").Select"));
}

TEST_F(ExportButton, AnExcelThatIsGoneBeforeItIsShownIsNotShown) {
  workbook().closed_at = "Excel.Visible = True";
  Export();
  ASSERT_THAT(desktop_.messages, SizeIs(1));
  EXPECT_TRUE(desktop_.messages[0].reports_error);
  EXPECT_THAT(recorder().Containing({"Running"}), ElementsAre("Settings.Save \"Running\" \"1\""));
  EXPECT_FALSE(workbook().visible);
}

TEST_F(ExportButton, CanBeRunAgainAfterExcelWasClosed) {
  workbook().closed_at = "Name = \"FROST\"";
  Export();
  workbook() = {};
  Export();
  EXPECT_THAT(SheetNames(), ElementsAre("NORTH SEA", "FROST", "RIVER ICE"));
  EXPECT_THAT(desktop_.messages, SizeIs(1));
}

TEST_F(ExportButton, CanBeRunAgainAfterAFailure) {
  recorder().FailOn("Name = \"FROST\"");
  Export();
  workbook() = {};
  Export();
  EXPECT_THAT(SheetNames(), ElementsAre("NORTH SEA", "FROST", "RIVER ICE"));
}

TEST_F(ExportButton, GivesAnEmptyResult) {
  WhileOpen([this] { EXPECT_TRUE(form().ExportCalendars().IsEmpty()); });
  EXPECT_THAT(SheetNames(), SizeIs(3));
}

}  // namespace
}  // namespace nimbrel::dialog
