#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "nimbrel/command_error.h"
#include "nimbrel/json_text.h"
#include "nimbrel/plan_document.h"
#include "tests/cli/cli_fixture.h"

namespace nimbrel::cli {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class ImportTest : public CliTest {};

TEST_F(ImportTest, WritesThePlanBesideTheFileAndSaysWhatIsInIt) {
  const std::string text = Output({"import", ChainXer()});
  EXPECT_THAT(text, HasSubstr("3 tasks, 1 milestone, 1 summary, 3 links, 1 calendar"));
  EXPECT_THAT(text, HasSubstr("To " + Path("chain.nplan")));
  EXPECT_THAT(Output({"info", Path("chain.nplan")}), HasSubstr("3 tasks"));
}

TEST_F(ImportTest, ReplacesAPlanOnlyIfItIsNamed) {
  const std::string xer = ChainXer();
  Output(
      {"import", Write("other.xer", MakeChainXer({{"A", "Dig", 8}})), "-o", Path("chain.nplan")});
  ExpectFailure({"import", xer}, 3, "chain.nplan: is there already");
  Output({"import", xer, "-o", Path("chain.nplan")});
  EXPECT_THAT(Output({"info", Path("chain.nplan")}), HasSubstr("3 tasks"));
}

TEST_F(ImportTest, NeverReplacesAFileThatIsNoPlan) {
  const std::string xer = ChainXer();
  const Outcome outcome = Run({"import", xer, "-o", xer});
  EXPECT_NE(outcome.code, 0);
  EXPECT_THAT(outcome.err, HasSubstr("chain.xer: "));
  EXPECT_EQ(Read(xer), Read(ChainXer()));
}

TEST_F(ImportTest, TheTimeUnitIsThePlansOwn) {
  const std::string xer = ChainXer();
  for (const auto& [name, code] : {std::pair{"days", 1}, {"hours", 24}, {"quarters", 96}}) {
    Output({"import", xer, "-o", Path("p.nplan"), "--time-unit", name});
    EXPECT_EQ(Json::parse(Output({"info", Path("p.nplan"), "--json"}))["time_unit"], code);
  }
}

TEST_F(ImportTest, APlanOfOursIsNotImported) {
  ExpectFailure({"import", ChainPlan(), "-o", Path("b.nplan")}, 1, "found a .nplan");
}

TEST_F(ImportTest, AnUnknownProjectIsAnErrorThatListsThose) {
  ExpectFailure({"import", ChainXer(), "--project", "BRIDGE"}, 1, "CHAIN");
}

TEST_F(ImportTest, APlanThatCannotBeWrittenIsExitCode3) {
  const std::string xer = ChainXer();
  const Outcome outcome = Run({"import", xer, "-o", Path("none/plan.nplan")});
  EXPECT_EQ(outcome.code, 3);
  EXPECT_THAT(outcome.err, HasSubstr("none/plan.nplan: cannot be written"));
}

TEST_F(ImportTest, ADamagedFileOfAnotherProgramIsRefusedWithItsRow) {
  const std::string file = NIMBREL_SOURCE_DIR "/../shared/data/plans/xer-calendars/invalid-8.4.xer";
  if (!std::filesystem::exists(file)) {
    GTEST_SKIP() << "the file is kept beside the checkout, and is not there";
  }
  const Outcome outcome = Run({"import", file, "-o", Path("a.nplan")});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_THAT(outcome.err,
              ::testing::MatchesRegex("nimbrel: invalid-8.4.xer:[0-9]+: expected.*\n"));
  EXPECT_TRUE(Files().empty());
}

class InfoTest : public CliTest {};

TEST_F(InfoTest, TellsDatesCountsAndCalendarsAsJson) {
  const Json info = Json::parse(Output({"info", ChainPlan(), "--json"}));
  EXPECT_EQ(info["start"], "2027-03-01T08:00");
  EXPECT_EQ(info["data_date"], "2027-03-01T08:00");
  EXPECT_EQ(info["hours_per_day"], 8);
  EXPECT_EQ(info["counts"]["tasks"], 3);
  EXPECT_EQ(info["counts"]["milestones"], 1);
  EXPECT_EQ(info["counts"]["links"], 3);
  EXPECT_EQ(info["counts"]["ranges"], 0);
  ASSERT_EQ(info["calendars"].size(), 1U);
  EXPECT_EQ(info["calendars"][0]["name"], "Five days");
  EXPECT_EQ(info["calendars"][0]["days_a_week"], 5);
  EXPECT_EQ(info["calendars"][0]["hours_a_week"], 40.0);
  EXPECT_EQ(info["calendars"][0]["tasks"], 4);
  EXPECT_EQ(info["weather"]["is_weather_plan"], false);
}

TEST_F(InfoTest, CountsTheWeatherApartFromThePlan) {
  const std::string plan = WeatherPlan();
  const Json info = Json::parse(Output({"info", plan, "--json"}));
  EXPECT_EQ(info["counts"]["tasks"], 3);
  EXPECT_EQ(info["counts"]["links"], 3);
  EXPECT_EQ(info["counts"]["ranges"], 3);
  EXPECT_EQ(info["weather"]["is_weather_plan"], true);
  EXPECT_EQ(info["weather"]["periods"], 1);
  EXPECT_EQ(info["weather"]["windows"], 0);
  EXPECT_EQ(info["weather"]["assigned_tasks"], 3);
  EXPECT_EQ(info["weather"]["nosplit_tasks"], 1);
  ASSERT_EQ(info["weather"]["calendars"].size(), 1U);
  EXPECT_EQ(info["weather"]["calendars"][0]["name"], "STORM");
  EXPECT_EQ(info["weather"]["calendars"][0]["kind"], "event");
  EXPECT_EQ(info["weather"]["calendars"][0]["items"], 1);
  EXPECT_EQ(info["weather"]["calendars"][0]["tasks"], 3);

  const std::string text = Output({"info", plan});
  EXPECT_THAT(text, HasSubstr("Weather: 1 period, 0 windows; 3 tasks exposed, 1 task of no split"));
}

TEST_F(InfoTest, SaysThatAPlanIsNoWeatherPlan) {
  EXPECT_THAT(Output({"info", ChainXer()}), HasSubstr("This is no weather plan"));
}

class ScheduleTest : public CliTest {};

TEST_F(ScheduleTest, JsonHasTheDatesOfAChainByHand) {
  const Json schedule = Json::parse(Output({"schedule", ChainXer(), "--json"}));
  EXPECT_EQ(schedule["data_date"], "2027-03-01T08:00");
  EXPECT_EQ(schedule["finish"], "2027-03-26T17:00");
  const Json* b = nullptr;
  for (const Json& task : schedule["tasks"]) {
    b = task["id"] == "B" ? &task : b;
  }
  ASSERT_NE(b, nullptr);
  EXPECT_EQ(b->dump(),
            R"({"id":"B","name":"Build","type":"task","early_start":"2027-03-08T08:00",)"
            R"("early_finish":"2027-03-19T17:00","late_start":"2027-03-08T08:00",)"
            R"("late_finish":"2027-03-19T17:00","total_float_hours":0.0,"free_float_hours":0.0,)"
            R"("critical":true,"driving_predecessors":["A"]})");
}

TEST_F(ScheduleTest, CsvHasTheSameColumns) {
  const std::string csv = Output({"schedule", ChainXer(), "--csv"});
  EXPECT_THAT(csv, HasSubstr("id,name,type,early_start,early_finish,late_start,late_finish,"
                             "total_float_hours,free_float_hours,critical,driving_predecessors\n"));
  EXPECT_THAT(csv, HasSubstr("B,Build,task,2027-03-08T08:00,2027-03-19T17:00,2027-03-08T08:00,"
                             "2027-03-19T17:00,0,0,true,A\n"));
}

TEST_F(ScheduleTest, TextIsForPeople) {
  const std::string text = Output({"schedule", ChainXer()});
  EXPECT_THAT(text, HasSubstr("from 2027-03-01 08:00 to 2027-03-26 17:00"));
  EXPECT_THAT(text, HasSubstr("critical"));
}

TEST_F(ScheduleTest, WritesToAFile) {
  EXPECT_EQ(Output({"schedule", ChainXer(), "--json", "-o", Path("s.json")}), "");
  EXPECT_EQ(Json::parse(Read(Path("s.json")))["finish"], "2027-03-26T17:00");
}

TEST_F(ScheduleTest, TakesNoWeatherIntoAccount) {
  const Json schedule = Json::parse(Output({"schedule", WeatherPlan(), "--json"}));
  EXPECT_EQ(schedule["finish"], "2027-03-26T17:00");
  for (const Json& task : schedule["tasks"]) {
    EXPECT_THAT((std::vector<std::string>{"CHAIN", "A", "B", "C", "M"}),
                ::testing::Contains(task["id"].get<std::string>()));
  }
}

TEST_F(ScheduleTest, ALoopIsBadInputThatNamesItsTasks) {
  std::string text = MakeChainXer({{"A", "Dig", 40}, {"B", "Build", 80}});
  const std::string link = "%R\t1\t2\t1\t1\t1\tPR_FS\t0\n";
  text.replace(text.find(link), link.size(), link + "%R\t2\t1\t2\t1\t1\tPR_FS\t0\n");
  ExpectFailure({"schedule", Write("loop.xer", text)}, 1, "loop.xer: ");
  EXPECT_THAT(Run({"schedule", Path("loop.xer")}).err, HasSubstr("A"));
}

class RangesCommandTest : public CliTest {};

TEST_F(RangesCommandTest, PercentagesGoToEveryTask) {
  const std::string plan = ChainPlan();
  Output({"ranges", plan, "--default", "90,100,130"});
  EXPECT_EQ(Json::parse(Output({"info", plan, "--json"}))["counts"]["ranges"], 3);
}

TEST_F(RangesCommandTest, ATableGoesToItsTasks) {
  const std::string plan = ChainPlan();
  const std::string csv =
      Write("ranges.csv", "id,min,likely,max,shape\nA,4,5,8,pert\nB,9,10,12,\n");
  EXPECT_THAT(Output({"ranges", plan, "--apply", csv}), HasSubstr("2 tasks"));
  EXPECT_EQ(Json::parse(Output({"info", plan, "--json"}))["counts"]["ranges"], 2);
}

TEST_F(RangesCommandTest, ABadRowIsNamedAndNothingIsWritten) {
  const std::string plan = ChainPlan();
  ExpectFailure(
      {"ranges", plan, "--apply", Write("r.csv", "id,min,likely,max\nA,4,5,8\nZ,1,2,3\n")}, 1,
      "r.csv:3: ");
  ExpectFailure({"ranges", plan, "--apply", Write("r.csv", "id,min,likely,max\nA,9,5,8\n")}, 1,
                "r.csv:2: ");
  ExpectFailure({"ranges", plan, "--apply", Path("none.csv")}, 3, "none.csv: cannot be read");
}

TEST_F(RangesCommandTest, PercentagesOutOfOrderAreAWrongCommandLine) {
  ExpectFailure({"ranges", ChainPlan(), "--default", "130,100,90"}, 2, "--default");
  ExpectFailure({"ranges", ChainPlan(), "--default", "a,100,130"}, 2, "--default");
}

class WeatherCommandTest : public CliTest {};

TEST_F(WeatherCommandTest, SetAndShowMakeARoundTrip) {
  const std::string plan = WeatherPlan();
  const std::string shown = Output({"weather", "show", plan, "--json"});
  Output({"weather", "clear", plan});
  Output({"weather", "set", plan, Write("again.json", shown)});
  EXPECT_EQ(Output({"weather", "show", plan, "--json"}), shown);
}

TEST_F(WeatherCommandTest, ShowIsReadableToo) {
  EXPECT_THAT(Output({"weather", "show", WeatherPlan()}), HasSubstr("STORM"));
}

TEST_F(WeatherCommandTest, ClearLeavesThePlanWithoutWeather) {
  const std::string plan = WeatherPlan();
  Output({"weather", "clear", plan});
  const Json info = Json::parse(Output({"info", plan, "--json"}));
  EXPECT_EQ(info["weather"]["periods"], 0);
  EXPECT_EQ(info["weather"]["assigned_tasks"], 0);
  EXPECT_EQ(info["weather"]["nosplit_tasks"], 0);
  EXPECT_EQ(info["counts"]["ranges"], 3) << "the plan's own data stay";
}

TEST_F(WeatherCommandTest, SetTwiceIsSetOnce) {
  const std::string plan = WeatherPlan();
  const std::string shown = Output({"weather", "show", plan, "--json"});
  Output({"weather", "set", plan, WeatherJson()});
  EXPECT_EQ(Output({"weather", "show", plan, "--json"}), shown);
}

TEST_F(WeatherCommandTest, BadWeatherIsNamedByItsPathAndNothingIsWritten) {
  const std::string plan = ChainPlan();
  ExpectFailure({"weather", "set", plan, Write("w.json", R"({"events": [], "rain": 1})")}, 1,
                "w.json");
  ExpectFailure({"weather", "set", plan, Write("w.json", R"({"events": [)")}, 1, "w.json");
  ExpectFailure({"weather", "set", plan, Path("none.json")}, 3, "none.json: cannot be read");
}

class DocumentTest : public CliTest {};

TEST_F(DocumentTest, WhatAnotherCommandSavedInTheMeantimeStands) {
  const std::string path = WeatherPlan();
  PlanDocument mine = OpenPlanToChange(path);
  Output({"weather", "clear", path});
  mine.plan.name = "Mine";
  try {
    SaveChanges(mine.plan, mine);
    FAIL() << "saved over it";
  } catch (const CommandError& error) {
    EXPECT_EQ(error.code(), ExitCode::kFileTrouble);
    EXPECT_THAT(error.what(), HasSubstr(path + ": was changed by another program"));
  }
  EXPECT_NE(OpenPlanToChange(path).plan.name, "Mine");
}

}  // namespace
}  // namespace nimbrel::cli
