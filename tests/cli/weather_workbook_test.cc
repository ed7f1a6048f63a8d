// Weather to a workbook and back: the same data, and when something is wrong, which cell it is and
// no file changed.

#include <gmock/gmock.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <thread>
#include <variant>

#include "engine/plan/plan_store.h"
#include "nimbrel/weather_json.h"
#include "spreadsheet/workbook.h"
#include "spreadsheet/xlsx_writer.h"
#include "tests/cli/cli_fixture.h"
#include "tests/support/workbooks/test_files.h"

namespace nimbrel::cli {
namespace {

using spreadsheet::Workbook;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

/// A cell of a test's workbook: nothing, a text, a number, or a day as the text of a date.
struct Day {
  int year, month, day;
};
using CellContent = std::variant<std::monostate, std::string, double, Day>;
using Row = std::vector<CellContent>;

/// The cells of a row of periods, in their order from column B.
Row Period(const std::string& description, Day start, Day finish, CellContent probability = 1.0) {
  return {description, start, finish, probability, 1.0, 2.0, 3.0};
}
Row Window(const std::string& description) {
  return {description,      Day{2027, 1, 1}, Day{2027, 1, 2}, Day{2027, 1, 3},
          std::monostate(), Day{2027, 2, 1}, Day{2027, 2, 2}, Day{2027, 2, 3}};
}

class WeatherWorkbookTest : public CliTest {
 protected:
  /// Adds a sheet with its marker in A3 and rows from row 6 on.
  void AddSheet(const std::string& name, const std::string& marker, const std::vector<Row>& rows) {
    spreadsheet::Sheet& sheet = workbook_.AddSheet(name);
    Put(sheet, 3, 1, marker);
    for (std::size_t i = 0; i < rows.size(); ++i) {
      for (std::size_t k = 0; k < rows[i].size(); ++k) {
        Put(sheet, static_cast<std::int32_t>(i) + 6, static_cast<std::uint16_t>(k + 2), rows[i][k]);
      }
    }
  }
  void Put(spreadsheet::Sheet& sheet, std::int32_t row, std::uint16_t column,
           const CellContent& content) {
    spreadsheet::Cell cell;
    cell.row = row;
    cell.column = column;
    if (const auto* text = std::get_if<std::string>(&content)) {
      cell.value = workbook_.AddText(*text);
    } else if (const auto* number = std::get_if<double>(&content)) {
      cell.value = *number;
    } else if (const auto* day = std::get_if<Day>(&content)) {
      cell.value = platform::MakeDate(day->year, day->month, day->day).serial;
      cell.format = workbook_.AddNumberFormat("dd mmm yyyy");
    } else {
      return;
    }
    sheet.Put(cell);
  }
  std::string SaveWorkbook() {
    spreadsheet::WriteXlsx(workbook_, Path("weather.xlsx"));
    return Path("weather.xlsx");
  }
  static Weather WeatherOf(const std::string& plan) { return ReadWeather(engine::LoadPlan(plan)); }

  /// Expects an import into a plan without weather to fail, with this text behind the file's name.
  void ExpectNoImport(const std::string& text) {
    const std::string file = SaveWorkbook();
    ExpectFailure({"weather", "import", ChainPlan(), file}, 1, "nimbrel: " + file + ": " + text);
  }

  Workbook workbook_;
};

TEST_F(WeatherWorkbookTest, WhatIsExportedIsImportedTheSame) {
  const std::string plan = ChainPlan();
  Output({"weather", "set", plan, Write("w.json", R"({
    "events": [
      { "calendar": "STORM", "periods": [
        { "description": "March", "start": "2027-03-01", "finish": "2027-03-31",
          "probability": 0.55, "min": 2, "likely": 3, "max": 5 },
        { "description": "=1+1", "start": "2027-04-01", "finish": "2027-04-30",
          "probability": 1.0, "min": 0, "likely": 0, "max": 9 } ] },
      { "calendar": "Frost", "periods": [
        { "description": "Jänner \"kalt\"", "start": "2028-01-01", "finish": "2028-01-31",
          "probability": 0.07, "min": 4, "likely": 4, "max": 4 } ] } ],
    "windows": [
      { "calendar": "ICE", "windows": [
        { "description": "Frozen", "start": ["2026-12-01", "2026-12-10", "2027-01-05"],
          "finish": ["2027-02-20", "2027-03-05", "2027-03-25"] } ] } ] })")});
  EXPECT_EQ(Output({"weather", "export", plan, "-o", Path("out.xlsx")}),
            Path("out.xlsx") + ": 3 weather calendars\n");
  std::filesystem::copy_file(plan, Path("other.nplan"));
  Output({"weather", "clear", Path("other.nplan")});
  EXPECT_THAT(Output({"weather", "import", Path("other.nplan"), Path("out.xlsx")}),
              StartsWith(Path("other.nplan") + ": 3 weather calendars, 3 periods, 1 window;"));
  EXPECT_EQ(WeatherOf(Path("other.nplan")).events, WeatherOf(plan).events);
  EXPECT_EQ(WeatherOf(Path("other.nplan")).windows, WeatherOf(plan).windows);
}

TEST_F(WeatherWorkbookTest, AnExportLeavesThePlanAsItIsAndOpensNothing) {
  const std::string plan = WeatherPlan();
  const std::string before = Read(plan);
  const Outcome outcome = Run({"weather", "export", plan, "-o", Path("out.xlsx")});
  EXPECT_EQ(outcome.code, 0);
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(Read(plan), before);
}

TEST_F(WeatherWorkbookTest, TheSamePlanGivesTheSameBytes) {
  const std::string plan = WeatherPlan();
  Output({"weather", "export", plan, "-o", Path("a.xlsx")});
  Output({"weather", "export", plan, "-o", Path("b.xlsx")});
  EXPECT_EQ(Read(Path("a.xlsx")), Read(Path("b.xlsx")));
}

TEST_F(WeatherWorkbookTest, AnExportTakesThePlaceOfAnOlderFile) {
  const std::string out = Write("out.xlsx", "old");
  Output({"weather", "export", WeatherPlan(), "-o", out});
  EXPECT_THAT(Read(out), StartsWith("PK"));
}

TEST_F(WeatherWorkbookTest, WeatherThatIsSwitchedOffIsExportedAllTheSame) {
  engine::Plan plan = engine::LoadPlan(WeatherPlan());
  plan.options[{"NIMBRELMOD", "Options", "IsWeatherPlan"}] = "FALSE";
  engine::SavePlan(plan, Path("plan.nplan"));
  EXPECT_THAT(Output({"weather", "export", Path("plan.nplan"), "-o", Path("out.xlsx")}),
              HasSubstr("1 weather calendar"));
}

TEST_F(WeatherWorkbookTest, WithoutWeatherThereIsNothingToExport) {
  ExpectFailure({"weather", "export", ChainPlan(), "-o", Path("out.xlsx")}, 1,
                "plan.nplan: There is no weather data to export!");
  ExpectFailure({"weather", "export", ChainXer(), "-o", Path("out.xlsx")}, 1,
                "chain.xer: There is no weather data to export!");
}

TEST_F(WeatherWorkbookTest, AnExportIsAnXlsxFile) {
  const std::string plan = WeatherPlan();
  ExpectFailure({"weather", "export", plan, "-o", Path("out.xls")}, 2, ".xlsx");
  ExpectFailure({"weather", "export", plan, "-o", "-"}, 2, ".xlsx");
  ExpectFailure({"weather", "export", plan}, 2, "-o");
}

TEST_F(WeatherWorkbookTest, AnExportNeverReplacesItsPlan) {
  std::filesystem::rename(WeatherPlan(), Path("plan.xlsx"));
  ExpectFailure({"weather", "export", Path("plan.xlsx"), "-o", Path("plan.xlsx")}, 2, "-o");
}

TEST_F(WeatherWorkbookTest, AnExportThatCannotBeWrittenIsTrouble) {
  const std::string out = Path("nowhere") + "/out.xlsx";
  ExpectFailure({"weather", "export", WeatherPlan(), "-o", out}, 3,
                "nimbrel: " + out + ": cannot be written: No such file or directory\n");
}

TEST_F(WeatherWorkbookTest, AnExportThroughALinkLeavesTheLink) {
  const std::string out = Write("out.xlsx", "old");
  std::filesystem::create_symlink("out.xlsx", Path("link.xlsx"));
  Output({"weather", "export", WeatherPlan(), "-o", Path("link.xlsx")});
  EXPECT_TRUE(std::filesystem::is_symlink(Path("link.xlsx")));
  EXPECT_THAT(Read(out), StartsWith("PK"));
}

TEST_F(WeatherWorkbookTest, AnExportNeverReplacesItsPlanThroughALink) {
  const std::string plan = WeatherPlan();
  std::filesystem::create_symlink("plan.nplan", Path("link.xlsx"));
  ExpectFailure({"weather", "export", plan, "-o", Path("link.xlsx")}, 2, "-o");
}

TEST_F(WeatherWorkbookTest, ANameThatLooksLikeAnEscapeComesBack) {
  const std::string plan = ChainPlan();
  const std::string name = "_x0041__x0041__x0041__x0041_ABC";
  ASSERT_EQ(name.size(), 31u);
  Output({"weather", "set", plan, Write("w.json", R"({ "events": [ { "calendar": ")" + name + R"(",
    "periods": [ { "description": "March", "start": "2027-03-01", "finish": "2027-03-14",
                   "probability": 1.0, "min": 2, "likely": 2, "max": 2 } ] } ] })")});
  Output({"weather", "export", plan, "-o", Path("out.xlsx")});
  Output({"weather", "import", plan, Path("out.xlsx"), "--replace"});
  ASSERT_EQ(WeatherOf(plan).events.size(), 1u);
  EXPECT_EQ(WeatherOf(plan).events[0].name, name);
}

TEST_F(WeatherWorkbookTest, ACalendarThatNoSheetCanBeCalledAfterEndsTheExport) {
  const std::string plan = ChainPlan();
  const std::string long_name(32, 'X');
  for (const auto& [name, fault] : {std::pair<std::string, std::string>{
                                        "SLEET/SNOW", "has one of the characters : \\ / ? * [ ]"},
                                    {long_name, "is longer than 31 characters"}}) {
    Output({"weather", "set", plan, Write("w.json", R"({
      "events": [ { "calendar": ")" + name + R"(", "periods": [
        { "description": "March", "start": "2027-03-01", "finish": "2027-03-14",
          "probability": 1.0, "min": 2, "likely": 2, "max": 2 } ] } ] })")});
    ExpectFailure({"weather", "export", plan, "-o", Path("out.xlsx")}, 1,
                  "nimbrel: " + plan + ": The sheet name '" + name + "' " + fault + "\n");
  }
}

TEST_F(WeatherWorkbookTest, ProgressIsShownOnATerminalAndWipedAway) {
  const std::string plan = WeatherPlan();
  Terminal terminal;
  terminal.err_is_terminal = true;
  const Outcome outcome = Run({"weather", "export", plan, "-o", Path("out.xlsx")}, terminal);
  EXPECT_EQ(outcome.err, "\rExporting Weather Calendar to Excel...\x1b[K\r\x1b[K");
}

TEST_F(WeatherWorkbookTest, ProgressIsWipedAwayWhenTheExportFails) {
  const std::string plan = WeatherPlan();
  Terminal terminal;
  terminal.err_is_terminal = true;
  const Outcome outcome =
      Run({"weather", "export", plan, "-o", Path("nowhere") + "/out.xlsx"}, terminal);
  EXPECT_EQ(outcome.code, 3);
  EXPECT_THAT(outcome.err, HasSubstr("...\x1b[K\r\x1b[Knimbrel: "));
}

TEST_F(WeatherWorkbookTest, AnImportIntoAPlanWithWeatherAsksForReplace) {
  AddSheet("FROST", "Weather-Events", {Period("x", {2027, 1, 1}, {2027, 1, 31})});
  const std::string file = SaveWorkbook();
  const std::string plan = WeatherPlan();
  ExpectFailure({"weather", "import", plan, file}, 1, "--replace");
  EXPECT_THAT(Output({"weather", "import", plan, file, "--replace"}),
              HasSubstr("1 weather calendar, 1 period, 0 windows"));
  const Weather weather = WeatherOf(plan);
  ASSERT_EQ(weather.events.size(), 1u);
  EXPECT_EQ(weather.events[0].name, "FROST");
}

TEST_F(WeatherWorkbookTest, AnImportAsksAlsoWhereWeatherIsSwitchedOff) {
  AddSheet("FROST", "Weather-Events", {Period("x", {2027, 1, 1}, {2027, 1, 31})});
  const std::string file = SaveWorkbook();
  engine::Plan plan = engine::LoadPlan(WeatherPlan());
  plan.options[{"NIMBRELMOD", "Options", "IsWeatherPlan"}] = "FALSE";
  engine::SavePlan(plan, Path("plan.nplan"));
  ExpectFailure({"weather", "import", Path("plan.nplan"), file}, 1, "--replace");
  Output({"weather", "import", Path("plan.nplan"), file, "--replace"});
  EXPECT_EQ(WeatherOf(Path("plan.nplan")).events.size(), 1u);
}

TEST_F(WeatherWorkbookTest, AnImportMakesTheFileAWeatherPlan) {
  AddSheet("FROST", "Weather-Events", {Period("x", {2027, 1, 1}, {2027, 1, 31}, 0.5)});
  AddSheet("ICE", "weather-WINDOWS", {Window("Frozen")});
  const std::string plan = ChainPlan();
  Output({"weather", "import", plan, SaveWorkbook()});
  const engine::Plan after = engine::LoadPlan(plan);
  EXPECT_EQ(after.options.at({"NIMBRELMOD", "Options", "IsWeatherPlan"}), "TRUE");
  const Weather weather = ReadWeather(after);
  ASSERT_EQ(weather.events.size(), 1u);
  ASSERT_EQ(weather.events[0].periods.size(), 1u);
  EXPECT_EQ(weather.events[0].periods[0].probability, 0.5);
  EXPECT_EQ(IsoDay(weather.events[0].periods[0].finish), "2027-01-31");
  ASSERT_EQ(weather.windows.size(), 1u);
  EXPECT_EQ(IsoDay(weather.windows[0].windows[0].finish[2]), "2027-02-03");
}

TEST_F(WeatherWorkbookTest, AProbabilityThatIsNoNumberIsNamedByItsCell) {
  AddSheet("FROST", "Weather-Events", {Period("a", {2027, 1, 1}, {2027, 1, 31})});
  AddSheet("STORM", "Weather-Events",
           {Period("a", {2027, 1, 1}, {2027, 1, 31}),
            Period("b", {2027, 1, 1}, {2027, 1, 31}, std::string("often"))});
  ExpectNoImport("sheet 'STORM', row 7, column E: Type mismatch: \"often\" is no number");
}

TEST_F(WeatherWorkbookTest, ATextThatIsNoDateIsNamedByItsCell) {
  Row soon = Period("b", {2027, 1, 1}, {2027, 1, 31});
  soon[2] = std::string("soon");
  // Two rows without a description are left out: the list's second row is the sheet's row 9.
  AddSheet("STORM", "Weather-Events", {Period("a", {2027, 1, 1}, {2027, 1, 31}), {}, {}, soon});
  ExpectNoImport("sheet 'STORM', row 9, column D: Type mismatch: \"soon\" is no date");
}

TEST_F(WeatherWorkbookTest, ALengthThatIsNoNumberIsNamedByItsCell) {
  Row few = Period("b", {2027, 1, 1}, {2027, 1, 31});
  few[6] = std::string("few");
  AddSheet("STORM", "Weather-Events", {few});
  ExpectNoImport("sheet 'STORM', row 6, column H: Type mismatch: \"few\" is no number");
}

TEST_F(WeatherWorkbookTest, AMissingCellIsNamed) {
  Row row = Period("b", {2027, 1, 1}, {2027, 1, 31});
  row[1] = std::monostate();
  AddSheet("STORM", "Weather-Events", {row});
  ExpectNoImport("sheet 'STORM', row 6, column C: Type mismatch: \"\" is no date");
}

TEST_F(WeatherWorkbookTest, AWindowsTextThatIsNoDateIsNamedByItsCell) {
  AddSheet("STORM", "Weather-Events", {Period("a", {2027, 1, 1}, {2027, 1, 31})});
  Row warm = Window("b");
  warm[6] = std::string("when it is warm");
  AddSheet("ICE", "Weather-Windows", {Window("a"), {}, warm});
  ExpectNoImport("sheet 'ICE', row 8, column H: Type mismatch: \"when it is warm\" is no date");
}

TEST_F(WeatherWorkbookTest, ALongTextIsQuotedInPartAndOnOneLine) {
  AddSheet("STORM", "Weather-Events",
           {Period("b", {2027, 1, 1}, {2027, 1, 31}, "often\x1b[2J\n" + std::string(30'000, 'x'))});
  const std::string replaced = "\xEF\xBF\xBD";
  ExpectNoImport("sheet 'STORM', row 6, column E: Type mismatch: \"often" + replaced + "[2J" +
                 replaced + std::string(50, 'x') + "...\" is no number in en-US\n");
}

TEST_F(WeatherWorkbookTest, AFormulaWithoutAValueIsNamedWhereItIsRead) {
  AddSheet("STORM", "Weather-Events", {Period("a", {2027, 1, 1}, {2027, 1, 31})});
  SaveWorkbook();
  // Of cell E6 in the file, and of one that nobody reads.
  std::vector<std::pair<std::string, std::string>> cells = {{"E6", "K6"}, {"K6", "E6"}};
  for (const auto& [formula, value] : cells) {
    const std::string sheet =
        "<row r='3'><c r='A3' t='inlineStr'><is><t>Weather-Events</t></is></c></row><row r='6'>"
        "<c r='B6' t='inlineStr'><is><t>a</t></is></c><c r='C6'><v>46000</v></c>"
        "<c r='D6'><v>46001</v></c><c r='" +
        value + "'><v>1</v></c><c r='" + formula +
        "'><f>1/2</f></c><c r='F6'><v>1</v></c><c r='G6'><v>2</v></c><c r='H6'><v>3</v></c></row>";
    const std::string file =
        Write("formula.xlsx", spreadsheet::XlsxFile{.sheets = {sheet}}.Bytes());
    const std::string plan = ChainPlan();
    if (formula == "E6") {
      ExpectFailure({"weather", "import", plan, file}, 1,
                    "nimbrel: " + file +
                        ": sheet 'Sheet1', row 6, column E: the formula has no stored value\n");
    } else {
      EXPECT_THAT(Output({"weather", "import", plan, file}), HasSubstr("1 period"));
    }
  }
}

TEST_F(WeatherWorkbookTest, AMarkerThatIsNotQuiteThatOfWindowsIsPointedOut) {
  AddSheet("ICE", "Weather-Windows ", {Window("Frozen")});
  ExpectNoImport(
      "sheet 'ICE', row 6, column F: Type mismatch: \"\" is no number in en-US (the sheet counts "
      "as "
      "one of event periods, since A3 holds 'Weather-Windows ' and not 'Weather-Windows')\n");
}

TEST_F(WeatherWorkbookTest, SuchAMarkerIsPointedOutAlsoWhereNothingFails) {
  AddSheet("STORM", "Weather-Events", {Period("a", {2027, 1, 1}, {2027, 1, 31})});
  AddSheet("ICE", "Weather windows", {});
  const std::string file = SaveWorkbook();
  const Outcome outcome = Run({"weather", "import", ChainPlan(), file});
  EXPECT_EQ(outcome.code, 0);
  EXPECT_EQ(outcome.err, "nimbrel: warning: " + file +
                             ": sheet 'ICE' counts as one of event periods, since A3 holds "
                             "'Weather windows' and not 'Weather-Windows'\n");
}

TEST_F(WeatherWorkbookTest, SheetsThatDifferByCaseAloneAreRefused) {
  AddSheet("Rain", "Weather-Events", {Period("a", {2027, 1, 1}, {2027, 1, 31})});
  AddSheet("Frost", "Weather-Events", {});
  SaveWorkbook();
  spreadsheet::Parts parts = spreadsheet::ReadZip(Read(Path("weather.xlsx")));
  for (auto& [name, text] : parts) {
    const auto frost = name == "xl/workbook.xml" ? text.find("\"Frost\"") : std::string::npos;
    if (frost != std::string::npos) {
      text.replace(frost, 7, "\"RAIN\"");
    }
  }
  const std::string file = Write("weather.xlsx", spreadsheet::MakeZip(parts));
  ExpectFailure({"weather", "import", ChainPlan(), file}, 1,
                "nimbrel: " + file + ": sheets 1 and 2 have one name in whatever case, 'RAIN'\n");
}

TEST_F(WeatherWorkbookTest, AnErrorInACellIsNamedByIt) {
  AddSheet("STORM", "Weather-Events", {Period("a", {2027, 1, 1}, {2027, 1, 31})});
  spreadsheet::Cell cell;
  cell.row = 6;
  cell.column = 6;
  cell.value = spreadsheet::CellError::kDivision;
  workbook_.sheets()[0]->Put(cell);
  ExpectNoImport("sheet 'STORM', row 6, column F: ");
}

TEST_F(WeatherWorkbookTest, ASheetOfACalendarThatThePlanWorksOnIsRefused) {
  AddSheet("Five days", "Weather-Events", {Period("a", {2027, 1, 1}, {2027, 1, 31})});
  ExpectNoImport(
      "sheet 'Five days': expected the name of a calendar for weather alone, found that of the "
      "plan's default calendar");
}

TEST_F(WeatherWorkbookTest, AFileThatIsNoWorkbookIsBadInput) {
  const std::string file = Write("weather.xlsx", "no workbook at all");
  ExpectFailure({"weather", "import", ChainPlan(), file}, 1, file + ": ");
  ExpectFailure({"weather", "import", WeatherPlan(), file, "--replace"}, 1, file + ": ");
}

TEST_F(WeatherWorkbookTest, AMissingFileIsTrouble) {
  ExpectFailure({"weather", "import", ChainPlan(), Path("none.xlsx")}, 3,
                Path("none.xlsx") + ": cannot be read: No such file or directory");
}

TEST_F(WeatherWorkbookTest, APipeIsNotWaitedFor) {
  const std::string plan = WeatherPlan();
  ASSERT_EQ(::mkfifo(Path("w.xlsx").c_str(), 0600), 0);
  ExpectFailure({"weather", "import", plan, Path("w.xlsx"), "--replace"}, 3, "it is a pipe");
}

TEST_F(WeatherWorkbookTest, NoNameOfAWorkbookMeansThatNothingWasChosen) {
  // The dialog takes "False" for a cancelled choice.
  AddSheet("STORM", "Weather-Events", {Period("a", {2027, 1, 1}, {2027, 1, 31})});
  const std::string file = SaveWorkbook();
  const std::string plan = ChainPlan();
  const auto folder = std::filesystem::current_path();
  std::filesystem::current_path(Path(""));
  std::filesystem::rename(file, "False");
  const Outcome outcome = Run({"weather", "import", plan, "False"});
  std::filesystem::current_path(folder);
  EXPECT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_EQ(WeatherOf(plan).events.size(), 1u);
}

TEST_F(WeatherWorkbookTest, ANameWithBlanksAtItsEndCannotBeRead) {
  // The dialog takes blanks off the ends of a name.
  AddSheet("STORM", "Weather-Events", {Period("a", {2027, 1, 1}, {2027, 1, 31})});
  const std::string file = SaveWorkbook();
  std::filesystem::rename(file, file + " ");
  ExpectFailure({"weather", "import", ChainPlan(), file + " "}, 3, "cannot be read");
}

TEST_F(WeatherWorkbookTest, OnlyAPlanOfTheProgramsOwnCanTakeAnImport) {
  AddSheet("STORM", "Weather-Events", {});
  ExpectFailure({"weather", "import", ChainXer(), SaveWorkbook()}, 1, "nimbrel import");
}

/// Programs of the test's own come before all others.
class OpenedWorkbookTest : public WeatherWorkbookTest {
 protected:
  OpenedWorkbookTest() : path_(::getenv("PATH")) {
    ::setenv("PATH", Path("bin").c_str(), 1);
    std::filesystem::create_directory(Path("bin"));
  }
  ~OpenedWorkbookTest() override { ::setenv("PATH", path_.c_str(), 1); }

  void AddProgram(const std::string& name) {
    const std::string file =
        Write("bin/" + name, "#!/bin/sh\necho \"$0 $*\" > " + Path("started.tmp") + "\n/bin/mv " +
                                 Path("started.tmp") + " " + Path("started") + "\n");
    ::chmod(file.c_str(), 0700);
  }
  /// What was started, by itself, in a process that nobody waits for.
  std::string Started() {
    for (int tries = 0; tries < 6000 && !std::filesystem::exists(Path("started")); ++tries) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return Read(Path("started"));
  }

 private:
  std::string path_;
};

TEST_F(OpenedWorkbookTest, OpenShowsTheFileThatWasWritten) {
  AddProgram("soffice");
  Output({"weather", "export", WeatherPlan(), "-o", Path("out.xlsx"), "--open"});
  EXPECT_THAT(Started(), HasSubstr("/soffice "));
  EXPECT_THAT(Started(), HasSubstr(Path("out.xlsx")));
}

TEST_F(OpenedWorkbookTest, WithoutAProgramThatOpensItTheFileIsNamed) {
  const Outcome outcome =
      Run({"weather", "export", WeatherPlan(), "-o", Path("out.xlsx"), "--open"});
  EXPECT_EQ(outcome.code, 0);
  EXPECT_THAT(outcome.err, StartsWith("nimbrel: warning: "));
  EXPECT_THAT(outcome.err, HasSubstr(Path("out.xlsx")));
}

}  // namespace
}  // namespace nimbrel::cli
