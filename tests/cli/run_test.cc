#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "engine/results/statistics.h"
#include "engine/risk/run_document_maker.h"
#include "nimbrel/json_text.h"
#include "nimbrel/run_output.h"
#include "tests/cli/cli_fixture.h"

namespace nimbrel::cli {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

std::vector<std::string> Keys(const Json& object) {
  std::vector<std::string> keys;
  for (const auto& [key, value] : object.items()) {
    keys.push_back(key);
  }
  return keys;
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(line);
  }
  return lines;
}

class RunTest : public CliTest {
 protected:
  Json JsonOf(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "run");
    arguments.insert(arguments.end(), {"--json", "-", "--iterations", "200"});
    return Json::parse(Output(arguments));
  }
};

TEST_F(RunTest, ResultsNeverTakeThePlaceOfWhatIsRead) {
  const std::string plan = WeatherPlan();
  const std::string weather = WeatherJson();
  ExpectFailure({"run", plan, "--json", plan}, 2, "--json: expected another file");
  ExpectFailure({"run", plan, "--samples", plan}, 2, "--samples: expected another file");
  ExpectFailure({"run", plan, "--weather", weather, "--json", weather}, 2,
                "--json: expected another file");
  ExpectFailure({"schedule", plan, "-o", plan}, 2, "-o: expected another file");
}

TEST_F(RunTest, JsonHasItsKeysInTheirOrder) {
  const Json json = JsonOf({WeatherPlan(), "--compare"});
  EXPECT_THAT(
      Keys(json),
      ElementsAre("version", "plan", "iterations", "seed", "time_unit", "weather", "deterministic",
                  "finish", "without_weather", "weather_delay_days", "calendars", "tasks",
                  "warnings", "title", "data_date", "iterations_asked", "sampling", "distribution",
                  "sensitivities", "heat_maps", "milestones", "critical_chain", "inputs"));
  EXPECT_THAT(
      Keys(json["finish"]),
      ElementsAre("mean", "sd_days", "min", "max", "p10", "p50", "p80", "p90", "p80_low",
                  "p80_high", "p10_low", "p10_high", "p50_low", "p50_high", "p90_low", "p90_high"));
  EXPECT_THAT(Keys(json["without_weather"]), ElementsAre("finish"));
  EXPECT_EQ(Keys(json["without_weather"]["finish"]), Keys(json["finish"]));
  EXPECT_THAT(Keys(json["weather_delay_days"]),
              ElementsAre("mean", "p50", "p80", "p50_low", "p50_high", "p80_low", "p80_high"));
  ASSERT_EQ(json["calendars"].size(), 1U);
  EXPECT_THAT(Keys(json["calendars"][0]), ElementsAre("name", "kind", "lost_days"));
  EXPECT_THAT(Keys(json["calendars"][0]["lost_days"]),
              ElementsAre("mean", "p80", "p80_low", "p80_high"));
  const Json& task = json["tasks"].back();
  EXPECT_THAT(Keys(task),
              ElementsAre("id", "name", "start", "finish", "criticality", "nosplit_pushed_days"));
  EXPECT_THAT(Keys(task["start"]), ElementsAre("p50", "p50_low", "p50_high"));
  EXPECT_THAT(Keys(task["finish"]),
              ElementsAre("mean", "p10", "p50", "p80", "p90", "p10_low", "p10_high", "p50_low",
                          "p50_high", "p80_low", "p80_high", "p90_low", "p90_high"));
}

TEST_F(RunTest, JsonSaysHowTheRunWasMade) {
  const Json json = JsonOf({WeatherPlan(), "--seed", "7"});
  EXPECT_EQ(json["version"], NIMBREL_VERSION);
  EXPECT_EQ(json["plan"], "CHAIN");
  EXPECT_EQ(json["iterations"], 200);
  EXPECT_EQ(json["seed"], 7);
  EXPECT_EQ(json["time_unit"], 1);
  EXPECT_EQ(json["weather"], true);
  EXPECT_EQ(json["deterministic"]["finish"], "2027-03-26T17:00");
  EXPECT_FALSE(json.contains("without_weather"));
  EXPECT_FALSE(json.contains("weather_delay_days"));
}

TEST_F(RunTest, TasksThatCarryWeatherAreInNoResult) {
  const Json json = JsonOf({WeatherPlan()});
  for (const Json& task : json["tasks"]) {
    EXPECT_THAT((std::vector<std::string>{"CHAIN", "A", "B", "C", "M"}),
                ::testing::Contains(task["id"].get<std::string>()));
  }
}

TEST_F(RunTest, ACertainPeriodLosesItsDaysInEveryIteration) {
  // Two days, no more and no less, in a period at 100%.
  const Json json = JsonOf({WeatherPlan()});
  EXPECT_EQ(json["calendars"][0]["name"], "STORM");
  EXPECT_EQ(json["calendars"][0]["kind"], "event");
  EXPECT_EQ(json["calendars"][0]["lost_days"]["mean"], 2.0);
  EXPECT_EQ(json["calendars"][0]["lost_days"]["p80"], 2.0);
}

TEST_F(RunTest, ComparesIterationByIteration) {
  const std::string plan = WeatherPlan();
  Output({"run", plan, "--compare", "--samples", Path("s.csv"), "--iterations", "50"});
  const auto lines = Lines(Read(Path("s.csv")));
  ASSERT_EQ(lines.size(), 51U);
  EXPECT_EQ(lines[0], "iteration,finish,finish_without_weather");
  Output({"run", plan, "--samples", Path("with.csv"), "--iterations", "50"});
  Output({"run", plan, "--no-weather", "--samples", Path("without.csv"), "--iterations", "50"});
  const auto with = Lines(Read(Path("with.csv")));
  const auto without = Lines(Read(Path("without.csv")));
  int delayed = 0;
  for (std::size_t at = 1; at < lines.size(); ++at) {
    const std::string finish = without[at].substr(without[at].find(',') + 1);
    EXPECT_EQ(lines[at], with[at] + "," + finish);
    EXPECT_GE(with[at], without[at]) << "weather never makes the plan earlier";
    delayed += with[at] != without[at] ? 1 : 0;
  }
  EXPECT_GT(delayed, 0);
}

TEST_F(RunTest, AskedTasksAreInTheSamples) {
  Output({"run", WeatherPlan(), "--samples", Path("s.csv"), "--tasks", "c,M", "--iterations", "5"});
  const auto lines = Lines(Read(Path("s.csv")));
  EXPECT_EQ(lines[0], "iteration,finish,start:C,finish:C,start:M,finish:M");
  for (std::size_t at = 1; at < lines.size(); ++at) {
    const auto fields = [&] {
      std::vector<std::string> all;
      std::istringstream stream(lines[at]);
      for (std::string field; std::getline(stream, field, ',');) {
        all.push_back(field);
      }
      return all;
    }();
    ASSERT_EQ(fields.size(), 6U);
    EXPECT_EQ(fields[0], std::to_string(at));
    EXPECT_EQ(fields[1], fields[3]) << "the plan ends with C";
    EXPECT_LT(fields[2], fields[3]);
  }
}

TEST_F(RunTest, AskedTasksAreListedForPeople) {
  const std::string text = Output({"run", WeatherPlan(), "--tasks", "B", "--iterations", "20"});
  EXPECT_THAT(text, HasSubstr("Asked for"));
}

TEST_F(RunTest, AnUnknownTaskIsAWrongCommandLine) {
  const std::string plan = WeatherPlan();
  ExpectFailure({"run", plan, "--tasks", "A,Z"}, 2,
                "--tasks: expected IDs of the plan's tasks, found \"Z\"");
  ExpectFailure({"run", plan, "--tasks", "WEATHER"}, 2, "found \"WEATHER\"");
}

TEST_F(RunTest, TheSameBytesForAnyNumberOfWorkers) {
  const std::string plan = WeatherPlan();
  const auto bytes = [&](const std::string& workers) {
    Output({"run", plan, "--compare", "--iterations", "101", "--tasks", "A,C", "--workers", workers,
            "--json", Path("r.json"), "--samples", Path("s.csv")});
    return Read(Path("r.json")) + Read(Path("s.csv"));
  };
  const std::string one = bytes("1");
  EXPECT_EQ(bytes("2"), one);
  EXPECT_EQ(bytes("3"), one);
}

TEST_F(RunTest, AnotherSeedGivesOtherSamples) {
  const std::string plan = WeatherPlan();
  EXPECT_NE(JsonOf({plan})["finish"], JsonOf({plan, "--seed", "2"})["finish"]);
}

TEST_F(RunTest, ThePlanIsNeverChanged) {
  const std::string plan = WeatherPlan();
  const std::string before = Read(plan);
  Output({"run", plan, "--compare", "--iterations", "20"});
  Output({"run", plan, "--weather", WeatherJson(), "--iterations", "20"});
  EXPECT_EQ(Read(plan), before);
}

TEST_F(RunTest, WeatherFromAFileTakesThePlaceOfThePlans) {
  const std::string plan = WeatherPlan();
  const std::string other = Write("other.json", R"({ "events": [ { "calendar": "RAIN", "periods": [
      { "description": "", "start": "2027-03-01", "finish": "2027-03-31", "probability": 1.0,
        "min": 3, "likely": 3, "max": 3 } ] } ],
      "windows": [], "assign": [ { "tasks": ["A"], "calendars": ["RAIN"], "nosplit": false } ] })");
  const Json json = JsonOf({plan, "--weather", other});
  ASSERT_EQ(json["calendars"].size(), 1U);
  EXPECT_EQ(json["calendars"][0]["name"], "RAIN");
  EXPECT_EQ(json["calendars"][0]["lost_days"]["mean"], 3.0);
}

TEST_F(RunTest, WeatherFromAFileServesAPlanOfAnotherProgram) {
  EXPECT_EQ(JsonOf({ChainXer(), "--weather", WeatherJson()})["weather"], true);
}

TEST_F(RunTest, APlanThatIsNoWeatherPlanRunsWithoutAndSaysSo) {
  const std::string plan = ChainPlan();
  const Json json = JsonOf({plan});
  EXPECT_EQ(json["weather"], false);
  EXPECT_THAT(json["calendars"], ::testing::IsEmpty());
  EXPECT_THAT(json["warnings"].dump(), HasSubstr("no weather plan"));
  // Single values throughout: every iteration is the deterministic one.
  EXPECT_EQ(json["finish"]["p10"], "2027-03-26T17:00");
  EXPECT_EQ(json["finish"]["p90"], "2027-03-26T17:00");
  EXPECT_EQ(json["finish"]["sd_days"], 0.0);
  EXPECT_THAT(Output({"run", plan, "--iterations", "5"}), HasSubstr("Without weather."));
}

TEST_F(RunTest, WeatherIsLeftOutOnRequest) {
  const Json json = JsonOf({WeatherPlan(), "--no-weather"});
  EXPECT_EQ(json["weather"], false);
  EXPECT_THAT(json["calendars"], ::testing::IsEmpty());
  EXPECT_THAT(json["warnings"], ::testing::IsEmpty());
}

TEST_F(RunTest, TextHasTheTableTheDelayAndTheChart) {
  const std::string text = Output({"run", WeatherPlan(), "--compare", "--iterations", "100"});
  for (const char* part :
       {"CHAIN, A chain: 100 iterations, seed 1", "without weather", "with weather", "P10", "P50",
        "P80", "95% interval", "P90", "mean", "standard deviation", "Delay by weather: mean",
        "On likely durations, without weather: 2027-03-26", "Finish on", "#", "Weather calendar",
        "STORM", "Most critical"}) {
    EXPECT_THAT(text, HasSubstr(part));
  }
}

TEST_F(RunTest, QuietLeavesTheChartOut) {
  EXPECT_THAT(Output({"run", WeatherPlan(), "--quiet", "--iterations", "20"}),
              Not(HasSubstr("Finish on")));
}

TEST_F(RunTest, PipesGetPlainTextAndNoProgress) {
  const Outcome outcome = Run({"run", WeatherPlan(), "--compare"}, Terminal{.utf8 = true});
  EXPECT_EQ(outcome.err, "");
  EXPECT_TRUE(std::all_of(outcome.out.begin(), outcome.out.end(),
                          [](char c) { return c == '\n' || (c >= ' ' && c <= '~'); }));
}

TEST_F(RunTest, ATerminalSeesProgressUnlessItIsToBeQuiet) {
  const std::string plan = WeatherPlan();
  const Terminal terminal{.out_is_terminal = true, .err_is_terminal = true};
  EXPECT_THAT(Run({"run", plan, "--workers", "1"}, terminal).err, HasSubstr(" of 1,000"));
  EXPECT_EQ(Run({"run", plan, "--quiet"}, terminal).err, "");
}

/// A report of a plan without tasks, whose runs did so many iterations of ten.
std::string TextOfStopped(std::int32_t without_weather, std::int32_t with_weather) {
  engine::Plan plan;
  plan.name = "P";
  RunReport report;
  report.weather = true;
  report.compared = true;
  const auto fill = [](engine::RunResult& result, std::int32_t done) {
    result.seed = 1;
    result.iterations_asked = 10;
    result.stopped = done < 10;
    for (std::int32_t number = 1; number <= done; ++number) {
      result.iteration_numbers.push_back(number);
      result.finish_samples.push_back(engine::ParseIsoText("2027-03-05T17:00"));
    }
    result.finish = engine::DateSummarizer().Summarize(result.finish_samples, true);
  };
  fill(report.results.without_weather, without_weather);
  fill(report.results.with_weather, with_weather);
  report.document = engine::MakeRunDocument(
      plan, {.run = report.run(), .weather = true, .compared = &report.results});
  return RunText(plan, report, {}, true, Terminal{});
}

TEST_F(RunTest, AStoppedComparisonTellsHowFarItCame) {
  EXPECT_THAT(TextOfStopped(4, 0),
              HasSubstr("P: 4 iterations, seed 1\n"
                        "Stopped: 4 of 10 iterations without weather and none with it were done."));
  EXPECT_THAT(TextOfStopped(10, 7), HasSubstr("Stopped: 7 of 10 iterations were done."));
  EXPECT_THAT(TextOfStopped(10, 10), Not(HasSubstr("Stopped")));
}

TEST_F(RunTest, EveryPercentileHasItsIntervalAroundIt) {
  const Json json = JsonOf({WeatherPlan(), "--compare", "--attribute"});
  int percentiles = 0;
  const std::function<void(const Json&)> check = [&](const Json& value) {
    for (const auto& [key, child] : value.items()) {
      const bool is_percentile = value.is_object() && key.size() == 3 && key[0] == 'p';
      if (is_percentile) {
        ++percentiles;
        ASSERT_TRUE(value.contains(key + "_low")) << value.dump();
        EXPECT_LE(value[key + "_low"], child);
        EXPECT_GE(value[key + "_high"], child);
      }
      if (child.is_structured()) {
        check(child);
      }
    }
  };
  check(json);
  EXPECT_GT(percentiles, 50);
}

TEST_F(RunTest, SamplesTooSmallForAnIntervalHaveNone) {
  const std::string plan = WeatherPlan();
  Output({"run", plan, "--compare", "--attribute", "--until", "3", "--iterations", "20", "--json",
          Path("r.json"), "--csv", Path("tables")});
  const Json json = Json::parse(Read(Path("r.json")));
  // 17 samples are enough for P80, 36 for P90.
  EXPECT_FALSE(json["finish"]["p80_low"].is_null());
  EXPECT_TRUE(json["finish"]["p90_low"].is_null());
  EXPECT_FALSE(json["finish"]["p90"].is_null());
  EXPECT_TRUE(json["tasks"][1]["finish"]["p10_high"].is_null());
  EXPECT_TRUE(json["attribution"]["cost_days"]["p90_high"].is_null());
  EXPECT_FALSE(json["attribution"]["cost_days"]["p80_high"].is_null());
  EXPECT_THAT(Read(Path("tables/calendars.csv")), HasSubstr("STORM,event,2,2,,,2,2,2,2,2,2,2,,\n"));
  const std::string text =
      Output({"run", plan, "--compare", "--attribute", "--until", "3", "--iterations", "1"});
  EXPECT_THAT(text, HasSubstr("  95% interval      -                -\n"));
  EXPECT_THAT(text, HasSubstr("Too few iterations for a 95% interval of P80; 3 days were asked"));
  EXPECT_THAT(text, Not(HasSubstr("nan")));
  EXPECT_THAT(text, Not(::testing::ContainsRegex("[0-9] \\.\\. [0-9]")));
}

TEST_F(RunTest, AttributionAndLedgerAddUp) {
  const std::string plan = WeatherPlan();
  const Json json = JsonOf({plan, "--attribute"});
  // One calendar: what it costs is what all weather costs.
  const Json& attribution = json["attribution"];
  ASSERT_EQ(attribution["calendars"].size(), 1U);
  EXPECT_EQ(attribution["calendars"][0]["left_out"]["cost_days"], attribution["cost_days"]);
  EXPECT_EQ(attribution["all"]["finish"], json["finish"]);
  const Json& ledger = json["ledger"][0];
  EXPECT_EQ(ledger["lost_days"], 2.0);
  EXPECT_NEAR(ledger["off_days"].get<double>() + ledger["idle_days"].get<double>() +
                  ledger["absorbed_days"].get<double>() + ledger["moving_days"].get<double>(),
              2.0, 0.0003);
  const std::string text = Output({"run", plan, "--attribute", "--iterations", "50"});
  for (const char* part : {"Cost in days", "all weather", "STORM", "with the others", "alone",
                           "What each calendar adds to P80", "moving the finish"}) {
    EXPECT_THAT(text, HasSubstr(part));
  }
}

TEST_F(RunTest, UntilEndsTheRunAndSaysHowWideTheIntervalIs) {
  const std::string plan = WeatherPlan();
  Output({"run", plan, "--until", "30", "--iterations", "5000", "--json", Path("r.json")});
  Json json = Json::parse(Read(Path("r.json")));
  EXPECT_EQ(json["iterations"], 256);
  EXPECT_EQ(json["until"]["met"], true);
  EXPECT_LE(json["until"]["width_days"], 30);
  EXPECT_THAT(Output({"run", plan, "--until", "0.001", "--iterations", "300"}),
              HasSubstr("and not reached"));
  for (const char* days : {"0", "-1", "x", "nan"}) {
    ExpectFailure({"run", plan, "--until", days}, 2, "expected a number of days above 0");
  }
}

TEST_F(RunTest, UntilIsNotMetByFewerIterationsThanItAsksFor) {
  const std::string plan = WeatherPlan();
  const std::string text =
      Output({"run", plan, "--until", "1000", "--iterations", "150", "--json", Path("r.json")});
  EXPECT_THAT(text, HasSubstr("1000 were asked for, of 200 iterations at least; the run ended at "
                              "its 150."));
  const Json json = Json::parse(Read(Path("r.json")));
  EXPECT_EQ(json["until"]["met"], false);
  EXPECT_THAT(json["warnings"].dump(), HasSubstr("The run ended at its 150 iterations"));
  EXPECT_THAT(Output({"run", plan, "--until", "1000", "--iterations", "200"}),
              HasSubstr("1000 were asked for.\n"));
  EXPECT_THAT(Output({"run", "--help"}), HasSubstr("256"));
}

TEST_F(RunTest, ASingleFinishDateIsALineAndNoCurve) {
  const std::string text = Output({"run", ChainPlan(), "--iterations", "20"});
  EXPECT_THAT(text, HasSubstr("\nAll iterations finish on 2027-03-26.\n"));
  EXPECT_THAT(text, Not(HasSubstr("100% |")));
  EXPECT_THAT(Output({"run", WeatherPlan(), "--iterations", "20"}), HasSubstr("100% |"));
}

TEST_F(RunTest, TheDriversAreCalledWhatTheyWerePickedBy) {
  EXPECT_THAT(Output({"run", WeatherPlan(), "--iterations", "30"}),
              HasSubstr("What drives the finish: correlation of duration and finish\n(the 3 tasks "
                        "of the greatest cruciality, those that correlate most first)\n"));
}

TEST_F(RunTest, LatinHypercubeIsTheSameForAnyNumberOfWorkers) {
  const std::string plan = WeatherPlan();
  const auto bytes = [&](const std::string& workers) {
    Output({"run", plan, "--attribute", "--sampling", "lhs", "--iterations", "130", "--workers",
            workers, "--json", Path("r.json")});
    return Read(Path("r.json"));
  };
  const std::string one = bytes("1");
  EXPECT_EQ(bytes("3"), one);
  EXPECT_EQ(Json::parse(one)["sampling"], "lhs");
}

TEST_F(RunTest, TellsWhatDrivesAMilestone) {
  const std::string plan = WeatherPlan();
  const Json json = JsonOf({plan, "--milestone", "m"});
  ASSERT_EQ(json["sensitivities"].size(), 2U);
  EXPECT_EQ(json["sensitivities"][0]["target"], nullptr);
  EXPECT_EQ(json["sensitivities"][1]["target"], "M");
  // The chain: B is the longest and varies most.
  EXPECT_EQ(json["sensitivities"][1]["tasks"][0]["id"], "B");
  ExpectFailure({"run", plan, "--milestone", "Z"}, 2, "--milestone: expected IDs");
  EXPECT_THAT(Output({"run", plan, "--iterations", "30"}), HasSubstr("What drives the finish"));
}

TEST_F(RunTest, CsvFolderHasTheTablesAndIsReplacedWhole) {
  const std::string plan = WeatherPlan();
  const std::string folder = Path("tables");
  Output({"run", plan, "--attribute", "--iterations", "40", "--csv", folder});
  const std::string finish = Read(folder + "/finish.csv");
  EXPECT_THAT(finish, ::testing::StartsWith("run,mean,sd_days,min,max,p10,p10_low,p10_high,"));
  EXPECT_THAT(finish, HasSubstr("\nwith weather,2027-"));
  EXPECT_THAT(Read(folder + "/ledger.csv"), HasSubstr("\nSTORM,event,3,2,"));
  EXPECT_THAT(Read(folder + "/attribution.csv"), HasSubstr("STORM,left out,"));
  // A run that has fewer tables leaves none of the former ones behind.
  Output({"run", plan, "--iterations", "40", "--csv", folder + "/"});
  EXPECT_FALSE(std::filesystem::exists(folder + "/ledger.csv"));
  EXPECT_TRUE(std::filesystem::exists(folder + "/finish.csv"));
}

TEST_F(RunTest, CsvFolderWithOtherFilesIsLeftAlone) {
  const std::string plan = WeatherPlan();
  std::filesystem::create_directory(Path("mine"));
  Write("mine/thesis.txt", "years of work");
  ExpectFailure({"run", plan, "--iterations", "40", "--csv", Path("mine")}, 3, "thesis.txt");
  ExpectFailure({"run", plan, "--iterations", "40", "--csv", plan}, 2, "--csv: expected another");
}

TEST_F(RunTest, ATerminalSeesColoursAndAPipeDoesNot) {
  const std::string plan = WeatherPlan();
  Terminal terminal{.out_is_terminal = true, .utf8 = true, .colours = true};
  EXPECT_THAT(Run({"run", plan, "--compare", "--iterations", "30"}, terminal).out,
              HasSubstr("\x1b[34m"));
  terminal.colours = false;
  EXPECT_THAT(Run({"run", plan, "--compare", "--iterations", "30"}, terminal).out,
              Not(HasSubstr("\x1b")));
}

TEST_F(RunTest, NothingIsWrittenIfOneOfTheFilesCannotBe) {
  const std::string plan = WeatherPlan();
  ExpectFailure({"run", plan, "--json", Path("r.json"), "--samples", Path("none/s.csv")}, 3,
                "none/s.csv: cannot be written");
}

TEST_F(RunTest, BadWeatherInThePlanIsBadInput) {
  const std::string plan = WeatherPlan();
  const std::string weather = Write("bad.json", R"({"events": [ {"calendar": "X", "periods": [
      {"description": "", "start": "2027-02-30", "finish": "2027-03-31", "probability": 1.0,
       "min": 1, "likely": 1, "max": 1}]}], "windows": [], "assign": []})");
  ExpectFailure({"run", plan, "--weather", weather}, 1, "bad.json");
}

}  // namespace
}  // namespace nimbrel::cli
