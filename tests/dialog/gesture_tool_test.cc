// The tool that plays the weather dialog from a script: what it takes, what it logs, what it saves.

#include "tests/tools/gesture_tool.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "engine/plan/plan.h"
#include "engine/plan/plan_store.h"
#include "platform/date.h"
#include "platform/text.h"

namespace nimbrel::gestures {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

/// A folder of its own with a plan that starts on Monday, 4 January 2027: the summary B with the
/// task B.1 under it, and the task A.
class GestureTool : public ::testing::Test {
 protected:
  GestureTool() {
    const ::testing::TestInfo& test = *::testing::UnitTest::GetInstance()->current_test_info();
    folder_ = std::filesystem::temp_directory_path() /
              (std::string("nimbrel_gesture_tool_") + test.name());
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(folder_);
    engine::Plan plan;
    plan.title = "Pier";
    plan.start = engine::Instant(platform::SerialDay(2027, 1, 4), 0);
    plan.default_calendar = plan.AddCalendar(engine::MakeWeekCalendar("Standard", 5, 8)).uid;
    engine::Task summary;
    summary.id = "B";
    summary.description = "Deck";
    summary.kind = engine::TaskKind::kSummary;
    const engine::Uid above = plan.AddTask(summary).uid;
    for (const char* const id : {"B.1", "A"}) {
      engine::Task task;
      task.id = id;
      task.description = "Piles";
      task.parent = std::string(id) == "A" ? 0 : above;
      task.remaining_minutes = task.original_minutes = std::string(id) == "A" ? 480 : 960;
      plan.AddTask(task);
    }
    engine::SavePlan(plan, PlanPath());
  }
  ~GestureTool() override { std::filesystem::remove_all(folder_); }

  std::string PlanPath() const { return (folder_ / "pier.nplan").string(); }
  std::string WriteScript(const std::string& text) const {
    const std::string path = (folder_ / "script.txt").string();
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }
  int Run(const std::vector<std::string>& arguments) {
    out_.str({});
    err_.str({});
    return RunGestureTool(arguments, out_, err_);
  }
  /// The log of a script, which must be played to its end.
  std::string Play(const std::string& script, const std::vector<std::string>& options = {}) {
    std::vector<std::string> arguments = options;
    arguments.insert(arguments.end(), {PlanPath(), WriteScript(script)});
    EXPECT_EQ(Run(arguments), 0) << err_.str();
    EXPECT_THAT(err_.str(), IsEmpty());
    return out_.str();
  }
  /// The log of `script`, played after `before`.
  std::string LogOf(const std::string& script, const std::string& before) {
    const std::string log = Play(before + "show form\n" + script);
    const std::string mark = "> show form\nform = \"frmWeather\"\n";
    const std::size_t at = log.find(mark);
    return at == std::string::npos ? "not as far as that: " + log : log.substr(at + mark.size());
  }
  engine::Plan Saved() const { return engine::LoadPlan(PlanPath()); }

  std::filesystem::path folder_;
  std::ostringstream out_;
  std::ostringstream err_;
};

constexpr const char* kMakeGales =
    "click chkIsWeather\n"
    "click cmdAddWeatherCal\n"
    "type txtCalName \"gales\"\n"
    "type txtStart \"1 Feb 2027\"\n"
    "type txtEnd \"1 Apr 2027\"\n"
    "click cmdOK\n";

constexpr const char* kMakeIce =
    "click chkIsWeather\n"
    "tab 1\n"
    "click cmdAddWWCal\n"
    "type txtCalName \"ice\"\n"
    "click cmdOK\n";

// The command line.

TEST_F(GestureTool, PlaysOnThePlanAndSavesIt) {
  Play(std::string(kMakeGales) + "type txtFrequency \"40\"\nclick cmdClose\n");
  const engine::Plan plan = Saved();
  ASSERT_EQ(plan.tasks().size(), 6u);  // and WEATHER and two periods
  EXPECT_EQ(plan.tasks()[4].description, "February");
  EXPECT_EQ(plan.tasks()[4].risk->probability, 40.0);
  EXPECT_NE(plan.FindRiskCalendar("GALES"), nullptr);
}

TEST_F(GestureTool, APlanThatWasOnlyOpenedIsSavedWithItsFlagAndFields) {
  Play("");
  EXPECT_EQ(Saved().options.size(), 1u);
  EXPECT_EQ(Saved().custom_fields.size(), 2u);
}

TEST_F(GestureTool, ALineThatIsNoGestureIsToldBeforeAnythingIsPlayed) {
  const std::string script = WriteScript("click chkIsWeather\r\n\r\npush cmdClose\r\n");
  EXPECT_EQ(Run({PlanPath(), script}), 2);
  EXPECT_THAT(out_.str(), IsEmpty());
  EXPECT_THAT(err_.str(), StartsWith("nimbrel-gestures: " + script + ":3: "));
  EXPECT_THAT(Saved().options, IsEmpty());
}

TEST_F(GestureTool, AFaceThatIsNotBuiltOrNotKnownIsRefused) {
  const std::string script = WriteScript("");
  EXPECT_EQ(Run({"--face", "win32", PlanPath(), script}), 2);
  EXPECT_THAT(err_.str(), HasSubstr("the face win32 is not built into this program"));
  EXPECT_EQ(Run({"--face", "clay", PlanPath(), script}), 2);
  EXPECT_THAT(err_.str(), HasSubstr("clay"));
  EXPECT_EQ(Run({"--face", "plain", PlanPath(), script}), 0);
}

TEST_F(GestureTool, AWrongCommandLineIsRefused) {
  const std::string script = WriteScript("");
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{},
                                                    {PlanPath()},
                                                    {PlanPath(), script, script},
                                                    {"--fast", PlanPath(), script},
                                                    {PlanPath(), script, "--face"},
                                                    {"--locale", "xx-XX", PlanPath(), script}}) {
    EXPECT_EQ(Run(arguments), 2) << ::testing::PrintToString(arguments);
    EXPECT_THAT(err_.str(), StartsWith("nimbrel-gestures: "));
    EXPECT_THAT(out_.str(), IsEmpty());
  }
}

TEST_F(GestureTool, FilesThatAreNotThereAreToldFromThoseThatAreNoPlans) {
  const std::string script = WriteScript("");
  EXPECT_EQ(Run({(folder_ / "none.nplan").string(), script}), 3);
  EXPECT_EQ(Run({PlanPath(), (folder_ / "none.txt").string()}), 3);
  EXPECT_EQ(Run({PlanPath(), folder_.string()}), 3);
  EXPECT_EQ(Run({script, script}), 1);
}

TEST_F(GestureTool, DatesGoByTheLocale) {
  const std::string script = std::string(kMakeGales) +
                             "type txtStart \"3.2.2027\"\nleave\nshow txtStart.Text\n"
                             "show txtDescription.Text\n";
  const std::string german = Play(script, {"--locale", "de-DE"});
  EXPECT_THAT(german, HasSubstr("txtStart.Text = \"03.Feb.2027\"\n"));
  EXPECT_THAT(german, HasSubstr("txtDescription.Text = \"Februar\"\n"));
}

// The log.

TEST_F(GestureTool, TheOpeningIsLoggedWithItsEventsNested) {
  EXPECT_EQ(Play(""), "event frmWeather Load\n");
  Play(kMakeGales);
  EXPECT_EQ(Play(""),
            "event frmWeather Load\n"
            "  event chkIsWeather Click\n"
            "  event lstWeatherCals Change\n"
            "    event txtDescription Change\n"
            "    event txtStart Change\n"
            "    event txtEnd Change\n"
            "    event txtFrequency Change\n"
            "    event txtMin Change\n"
            "    event txtML Change\n"
            "    event txtMax Change\n");
}

TEST_F(GestureTool, TypingAndLeavingLogsKeysCheckAndTheTextsThatFollow) {
  EXPECT_EQ(LogOf("type txtFrequency \"7%\"\n"
                  "leave\n"
                  "show focus\n"
                  "show txtFrequency.Value\n",
                  kMakeGales),
            "> type txtFrequency \"7%\"\n"
            "event txtFrequency Change\n"
            "event txtFrequency Change\n"
            "> leave\n"
            "event txtFrequency Validate\n"
            "  event txtFrequency Change\n"
            "  event txtFrequency Change\n"
            "> show focus\n"
            "focus = \"txtMin\"\n"
            "> show txtFrequency.Value\n"
            "txtFrequency.Value = \"7%\"\n");
}

TEST_F(GestureTool, ARefusedTextSwallowsTheClickAndKeepsTheFocus) {
  EXPECT_EQ(LogOf("type txtMin \"x\"\n"
                  "click cmdClose\n"
                  "row lstWeather 2\n"
                  "show focus\n",
                  kMakeGales),
            "> type txtMin \"x\"\n"
            "event txtMin Change\n"
            "> click cmdClose\n"
            "event txtMin Validate\n"
            "box \"Weather Modeling\" \"Please enter a valid number\" OK -> OK\n"
            "> row lstWeather 2\n"
            "event txtMin Validate\n"
            "box \"Weather Modeling\" \"Please enter a valid number\" OK -> OK\n"
            "> show focus\n"
            "focus = \"txtMin\"\n");
}

TEST_F(GestureTool, ASmallDialogIsOnTopUntilItIsClosed) {
  EXPECT_EQ(LogOf("click cmdAddNewPeriods\n"
                  "show form\n"
                  "click cmdClose\n"
                  "show txtStart.Text\n"
                  "click cmdCancel\n"
                  "show form\n",
                  kMakeGales),
            "> click cmdAddNewPeriods\n"
            "event cmdAddNewPeriods Click\n"
            "  event frmNewWeather1 Load\n"
            "> show form\n"
            "form = \"frmNewWeather1\"\n"
            "> click cmdClose\n"
            "cannot: no control cmdClose on frmNewWeather1\n"
            "> show txtStart.Text\n"
            "txtStart.Text = \"04/Jan/2027\"\n"
            "> click cmdCancel\n"
            "  event cmdCancel Click\n"
            "> show form\n"
            "form = \"frmWeather\"\n");
}

TEST_F(GestureTool, ListsAreShownWithTheirHiddenColumn) {
  EXPECT_EQ(LogOf("show lstWeather\n"
                  "header lstWeather 3\n"
                  "show lstWeather\n"
                  "header lstWeather 1\n"
                  "show lstWeather.SelectedItem\n"
                  "show lstWeatherCals\n",
                  kMakeGales),
            "> show lstWeather\n"
            "lstWeather[1] * \"N8\" \"February\" \"01/Feb/2027\" \"28/Feb/2027\" \"100%\" \"1\" "
            "\"2\" \"3\"\n"
            "lstWeather[2] \"N9\" \"March\" \"01/Mar/2027\" \"31/Mar/2027\" \"100%\" \"1\" \"2\" "
            "\"3\"\n"
            "> header lstWeather 3\n"
            "event lstWeather ColumnClick 3\n"
            "> show lstWeather\n"
            "lstWeather[1] \"N9\" \"March\" \"01/Mar/2027\" \"31/Mar/2027\" \"100%\" \"1\" \"2\" "
            "\"3\"\n"
            "lstWeather[2] * \"N8\" \"February\" \"01/Feb/2027\" \"28/Feb/2027\" \"100%\" \"1\" "
            "\"2\" \"3\"\n"
            "> header lstWeather 1\n"
            "cannot: column 1 of lstWeather is hidden\n"
            "> show lstWeather.SelectedItem\n"
            "lstWeather.SelectedItem = \"N8\"\n"
            "> show lstWeatherCals\n"
            "lstWeatherCals[1] * \"GALES\"\n");
}

TEST_F(GestureTool, TasksAreAssignedByNodesAndChecks) {
  EXPECT_EQ(LogOf("tab 2\n"
                  "show tvTasks\n"
                  "node tvTasks \"A - Piles\"\n"
                  "check lstWCals1 \"GALES\" on\n"
                  "check lstWCals1 \"GALES\" on\n"
                  "show lstWCals1\n"
                  "show cbAllCals.ListIndex\n"
                  "click chkSplit\n"
                  "show chkSplit.Value\n"
                  "show Frame3.Caption\n"
                  "show lstWCals3.Enabled\n",
                  kMakeGales),
            "> tab 2\n"
            "> show tvTasks\n"
            "\"Pier\" image 13 expanded\n"
            "  \"A - Piles\" image 3\n"
            "  \"B - Deck\" image 8\n"
            "    \"B.1 - Piles\" image 2\n"
            "> node tvTasks \"A - Piles\"\n"
            "event tvTasks NodeClick \"A - Piles\"\n"
            "  event cbAllCals Change\n"
            "> check lstWCals1 \"GALES\" on\n"
            "event lstWCals1 ItemCheck \"GALES\"\n"
            "> check lstWCals1 \"GALES\" on\n"
            "> show lstWCals1\n"
            "lstWCals1[1] [x] \"GALES\"\n"
            "> show cbAllCals.ListIndex\n"
            "cbAllCals.ListIndex = \"0\"\n"
            "> click chkSplit\n"
            "event chkSplit Click\n"
            "> show chkSplit.Value\n"
            "chkSplit.Value = \"True\"\n"
            "> show Frame3.Caption\n"
            "Frame3.Caption = \"Weather Event Calendars\"\n"
            "> show lstWCals3.Enabled\n"
            "lstWCals3.Enabled = \"True\"\n");
  const engine::Plan plan = Saved();
  EXPECT_EQ(plan.FindTask("A")->risk_calendars.size(), 1u);
  EXPECT_EQ(*plan.FindTask("A")->FindUserValue("weather", "nosplit"), "True");
}

TEST_F(GestureTool, AQueuedAnswerGoesToTheNextBoxAndThenNo) {
  const std::string box =
      "box \"Weather Modeling\" \"This will remove all Weather Modeling data.\\r\\nWould you like "
      "to continue?\" YesNo -> ";
  EXPECT_EQ(LogOf("click cmdClearAll\n"
                  "answer Yes\n"
                  "click cmdClearAll\n"
                  "show lstWWCals\n",
                  kMakeIce),
            "> click cmdClearAll\n"
            "event cmdClearAll Click\n" +
                box +
                "No\n"
                "> answer Yes\n"
                "> click cmdClearAll\n"
                "event cmdClearAll Click\n" +
                box +
                "Yes\n"
                "  event lstWWCals Change\n"
                "> show lstWWCals\n");
}

TEST_F(GestureTool, AnErrorIsLoggedAndTheDialogGoesOn) {
  EXPECT_EQ(LogOf("type txtLateEndWW \"x\"\n"
                  "leave\n"
                  "show txtLateEndWW.Text\n",
                  kMakeIce),
            "> type txtLateEndWW \"x\"\n"
            "event txtLateEndWW Change\n"
            "> leave\n"
            "event txtLateEndWW Validate\n"
            "error 13 \"Type mismatch: \\\"x\\\" is no date in en-US\"\n"
            "> show txtLateEndWW.Text\n"
            "txtLateEndWW.Text = \"x\"\n");
}

TEST_F(GestureTool, WhatAHandCannotDoIsSaid) {
  EXPECT_EQ(LogOf("type txtStart \"1 Jan 2027\"  # the tabs are off\n"
                  "tab 1\n"
                  "click cmdNone\n"
                  "show txtStart.Text\n",
                  "# weather is off\n"),
            "> type txtStart \"1 Jan 2027\"\n"
            "cannot: txtStart is disabled\n"
            "> tab 1\n"
            "cannot: tabs is disabled\n"
            "> click cmdNone\n"
            "cannot: no control cmdNone on frmWeather\n"
            "> show txtStart.Text\n"
            "txtStart.Text = \"\"\n");
}

TEST_F(GestureTool, ClosingLogsTheUnloadingAndThenThereIsNoForm) {
  EXPECT_EQ(LogOf("click cmdClose\nshow form\nclose\n", kMakeGales),
            "> click cmdClose\n"
            "event cmdClose Click\n"
            "  event frmWeather Unload\n"
            "> show form\n"
            "form = \"\"\n"
            "> close\n"
            "cannot: no form is open\n");
  EXPECT_EQ(LogOf("close\n", ""), "> close\nevent frmWeather Unload\n");
}

TEST_F(GestureTool, AScriptWithoutAnEndLeavesTheEditThatIsNotInThePlan) {
  Play(std::string(kMakeGales) + "type txtDescription \"Typed\"\n");
  EXPECT_EQ(Saved().tasks()[4].description, "February");
}

// Workbooks.

TEST_F(GestureTool, WhatWasExportedComesBackByAnImport) {
  Play(std::string(kMakeGales) + "type txtFrequency \"40\"\nleave\nclick cmdExport\n");
  const std::string workbook = PlanPath() + ".shown.xlsx";
  ASSERT_TRUE(std::filesystem::exists(workbook));
  const std::string log = Play("answer Yes\nclick cmdClearAll\nshow lstWeatherCals\nfile \"" +
                               workbook + "\"\nclick cmdImport\nshow lstWeather\n");
  EXPECT_THAT(log, HasSubstr("> show lstWeatherCals\n> file"));
  EXPECT_THAT(log, HasSubstr("\"February\" \"01/Feb/2027\" \"28/Feb/2027\" \"40%\" \"1\" \"2\" "
                             "\"3\"\n"));
  EXPECT_THAT(log, HasSubstr("\"March\" \"01/Mar/2027\" \"31/Mar/2027\" \"100%\" \"1\" \"2\" "
                             "\"3\"\n"));
}

TEST_F(GestureTool, ACancelledFileDialogImportsNothing) {
  const std::string log = Play(std::string(kMakeGales) +
                               "file cancel\nclick cmdImport\n"
                               "show lstWeatherCals\n");
  EXPECT_THAT(log, HasSubstr("> show lstWeatherCals\nlstWeatherCals[1] * \"GALES\"\n"));
}

}  // namespace
}  // namespace nimbrel::gestures
