// Workbooks through the dialog as a hand works it, on a plan file, with the stand-in for Excel:
// what it refuses, and what a workbook that somebody has worked on does to the plan.

#include <gmock/gmock.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <variant>

#include "engine/plan/plan_store.h"
#include "platform/date.h"
#include "spreadsheet/workbook_reader.h"
#include "spreadsheet/xlsx_writer.h"
#include "tests/tools/gesture_tool.h"

namespace nimbrel::gestures {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;

/// A plan with the event calendar GALES, of a period each for February and March, and the window
/// calendar ICE.
class WorkbookGestures : public ::testing::Test {
 protected:
  WorkbookGestures() {
    std::string name = (std::filesystem::temp_directory_path() / "nimbrel-books-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) {
      throw std::runtime_error("no temporary folder");
    }
    folder_ = name;
    engine::Plan plan;
    plan.title = "Pier";
    plan.start = engine::Instant(platform::SerialDay(2027, 1, 4), 0);
    plan.default_calendar = plan.AddCalendar(engine::MakeWeekCalendar("Standard", 5, 8)).uid;
    engine::SavePlan(plan, Path("pier.nplan"));
    Play(
        "click chkIsWeather\n"
        "click cmdAddWeatherCal\n"
        "type txtCalName \"gales\"\n"
        "type txtStart \"1 Feb 2027\"\n"
        "type txtEnd \"1 Apr 2027\"\n"
        "click cmdOK\n"
        "tab 1\n"
        "click cmdAddWWCal\n"
        "type txtCalName \"ice\"\n"
        "click cmdOK\n"
        "click cmdClose\n");
  }
  ~WorkbookGestures() override {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }

  std::string Path(const std::string& name) const { return (folder_ / name).string(); }
  std::string Shown() const { return Path("pier.nplan.shown.xlsx"); }

  /// The log of a script, from its first gesture on.
  std::string Play(const std::string& script) {
    std::ofstream(Path("script.txt"), std::ios::binary) << script;
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(RunGestureTool({Path("pier.nplan"), Path("script.txt")}, out, err), 0) << err.str();
    const std::string log = out.str();
    const auto first = log.find("> ");
    return first == std::string::npos ? log : log.substr(first);
  }
  engine::Plan Saved() const { return engine::LoadPlan(Path("pier.nplan")); }

  /// Exports, and puts a value into a cell of a sheet.
  void ExportWith(std::size_t sheet, std::int32_t row, std::uint16_t column,
                  const std::variant<double, std::string>& value) {
    Play("click cmdExport\nclick cmdClose\n");
    spreadsheet::Workbook workbook = spreadsheet::ReadWorkbook(Shown());
    const auto* const text = std::get_if<std::string>(&value);
    const spreadsheet::CellValue content = text == nullptr
                                               ? spreadsheet::CellValue(std::get<double>(value))
                                               : spreadsheet::CellValue(workbook.AddText(*text));
    workbook.sheets().at(sheet)->Put({row, column, spreadsheet::kFormatOfPlace, content});
    spreadsheet::WriteXlsx(workbook, Shown());
  }
  std::string File() const { return "file \"" + Shown() + "\"\n"; }

 private:
  std::filesystem::path folder_;
};

TEST_F(WorkbookGestures, ANameThatNoSheetHasEndsTheExport) {
  for (const auto& [name, fault] : {std::pair<std::string, std::string>{
                                        "sleet/snow", "has one of the characters : \\\\ / ? * [ ]"},
                                    {"history", "is reserved"},
                                    {"'gusts", "begins or ends with an apostrophe"}}) {
    const std::string log = Play(
        "click cmdAddWeatherCal\n"
        "type txtCalName \"" +
        name +
        "\"\n"
        "click cmdOK\n"
        "click cmdExport\n"
        "show form\n"
        "answer Yes\n"
        "click cmdDelCalendar\n"
        "click cmdClose\n");
    EXPECT_THAT(log, HasSubstr("event cmdExport Click\nerror 1004 \"The sheet name '"));
    EXPECT_THAT(log, HasSubstr(fault + "\"\n> show form\nform = \"frmWeather\"\n")) << log;
    EXPECT_FALSE(std::filesystem::exists(Shown())) << name;
  }
}

TEST_F(WorkbookGestures, AFileThatIsNoWorkbookLeavesThePlanAsItIs) {
  std::ofstream(Shown(), std::ios::binary) << "no workbook at all";
  const engine::Plan before = Saved();
  const std::string error =
      "error 1004 \"" + Shown() + ": is no workbook: neither .xlsx nor .xls\"\n";
  EXPECT_EQ(Play(File() + "click cmdImportWeather\nshow lstWeather\nclick cmdClose\n"),
            "> " + File() + "> click cmdImportWeather\nevent cmdImportWeather Click\n" + error +
                "> show lstWeather\n> click cmdClose\nevent cmdClose Click\n"
                "  event frmWeather Unload\n");
  EXPECT_THAT(Play("tab 1\n" + File() + "click cmdImportWW\nshow lstWW\n"),
              EndsWith("event cmdImportWW Click\n" + error + "> show lstWW\n"));
  EXPECT_TRUE(Saved() == before);
}

TEST_F(WorkbookGestures, ALengthThatIsNoNumberEndsTheImportAfterThePeriodsAreGone) {
  ExportWith(0, 7, 7, std::string("few"));
  const std::string log = Play(File() +
                               "click cmdImportWeather\n"
                               "row lstCals 1\n"
                               "click cmdOK\n");
  EXPECT_THAT(log, HasSubstr("box \"Import Weather\" \"Import completed!\" OK -> OK\n"));
  EXPECT_THAT(log, EndsWith("error 13 \"Type mismatch: \\\"few\\\" is no number in en-US\"\n"));
  const engine::Plan plan = Saved();
  ASSERT_EQ(plan.tasks().size(), 5u);  // WEATHER, two periods and the two ends of a window
  EXPECT_EQ(plan.tasks()[3].description, "February");
  EXPECT_EQ(plan.tasks()[4].description, "March");
}

TEST_F(WorkbookGestures, ADateThatIsNoneEndsTheImportOfWindows) {
  ExportWith(1, 6, 8, std::string("when it thaws"));
  const std::string log = Play("tab 1\n" + File() +
                               "click cmdImportWW\n"
                               "row lstCals 1\n"
                               "click cmdOK\n"
                               "show form\n"
                               "row lstCals 2\n"
                               "click cmdOK\n");
  EXPECT_THAT(log, HasSubstr("box \"Weather Modeling\" \"You can't import weather-period data into "
                             "a weather window calendar!\" OK -> OK\n"
                             "> show form\nform = \"frmImport\"\n"));
  EXPECT_THAT(log, HasSubstr("box \"Import Weather\" \"Import completed!\" OK -> OK\n"));
  EXPECT_THAT(log,
              EndsWith("error 13 \"Type mismatch: \\\"when it thaws\\\" is no date in en-US\"\n"));
}

TEST_F(WorkbookGestures, AProbabilityThatIsNoNumberEndsTheImportBeforeAnythingIsGone) {
  ExportWith(0, 7, 5, std::string("often"));
  const engine::Plan before = Saved();
  const std::string log = Play(File() + "click cmdImportWeather\nrow lstCals 1\nclick cmdOK\n");
  EXPECT_THAT(log, EndsWith("error 13 \"Type mismatch: \\\"often\\\" is no number in en-US\"\n"));
  EXPECT_THAT(log, Not(HasSubstr("Import completed!")));
  EXPECT_TRUE(Saved() == before);
}

// 0.333 times 100 is 33.300000000000004, and its text 33.3.
TEST_F(WorkbookGestures, AnInexactProbabilityReachesThePlan) {
  ExportWith(0, 6, 5, 0.333);
  const std::string log = Play(File() +
                               "click cmdImportWeather\n"
                               "row lstCals 1\n"
                               "click cmdOK\n"
                               "show lstWeather\n"
                               "click cmdClose\n");
  EXPECT_THAT(log, HasSubstr("\"February\" \"01/Feb/2027\" \"28/Feb/2027\" \"33.3%\" \"1\" \"2\" "
                             "\"3\"\n"));
  EXPECT_DOUBLE_EQ(Saved().tasks().at(3).risk->probability, 33.3);
}

TEST_F(WorkbookGestures, CancelIsCompleteToo) {
  Play("click cmdExport\nclick cmdClose\n");
  const engine::Plan before = Saved();
  const std::string log = Play(File() +
                               "click cmdImportWeather\n"
                               "click cmdCancel\n"
                               "show lstWeatherCals\n");
  EXPECT_THAT(log, HasSubstr("box \"Import Weather\" \"Import completed!\" OK -> OK\n"));
  EXPECT_THAT(log, EndsWith("> show lstWeatherCals\nlstWeatherCals[1] \"GALES\"\n"));
  EXPECT_TRUE(Saved() == before);
}

}  // namespace
}  // namespace nimbrel::gestures
