// The same weather is sampled the same, however often it is set anew.

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "engine/plan/plan_store.h"
#include "nimbrel/json_text.h"
#include "nimbrel/weather_json.h"
#include "tests/cli/cli_fixture.h"

namespace nimbrel::cli {
namespace {

/// Two periods on one calendar and one on another, and a window, all of them uncertain. `most` are
/// the most days of the first period.
std::string UncertainWeather(const std::string& sea, int most) {
  return R"({
  "events": [
    { "calendar": ")" +
         sea + R"(", "periods": [
      { "description": "First", "start": "2027-03-01", "finish": "2027-03-12",
        "probability": 1.0, "min": 1, "likely": 3, "max": )" +
         std::to_string(most) + R"( },
      { "description": "Second", "start": "2027-03-13", "finish": "2027-03-30",
        "probability": 0.6, "min": 1, "likely": 3, "max": 9 } ] },
    { "calendar": "WIND", "periods": [
      { "description": "All", "start": "2027-03-05", "finish": "2027-04-10",
        "probability": 1.0, "min": 2, "likely": 5, "max": 12 } ] } ],
  "windows": [ { "calendar": "ICE", "windows": [ { "description": "Ice",
    "start": ["2027-03-01", "2027-03-05", "2027-03-09"],
    "finish": ["2027-03-12", "2027-03-16", "2027-03-20"] } ] } ],
  "assign": [ { "tasks": ["A", "B"], "calendars": [")" +
         sea + R"(", "WIND"], "nosplit": false },
              { "tasks": ["C"], "calendars": ["ICE", "WIND"], "nosplit": true } ] })";
}

class WeatherStreamsTest : public CliTest {
 protected:
  std::string PlanWith(const std::string& weather) {
    const std::string plan = ChainPlan();
    Output({"ranges", plan, "--default", "80,100,140"});
    Output({"weather", "set", plan, Write("own.json", weather)});
    return plan;
  }
  Json FinishOf(const std::string& plan, const std::vector<std::string>& more = {}) {
    std::vector<std::string> arguments = {"run", plan, "--iterations", "200", "--json", "-"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return Json::parse(Output(arguments))["finish"];
  }
  /// Lengths of the periods in some iterations, without their days.
  std::vector<Json> PeriodsOf(const std::string& plan) {
    std::vector<Json> all;
    for (int iteration = 1; iteration <= 20; ++iteration) {
      Json story = Json::parse(
          Output({"explain", plan, "--iteration", std::to_string(iteration), "--json"}));
      for (Json& period : story["periods"]) {
        period.erase("days");
        period.erase("lost_days");
        all.push_back(period);
      }
    }
    return all;
  }
};

TEST_F(WeatherStreamsTest, ThePlansOwnWeatherFromAFileGivesTheSameNumbers) {
  const std::string plan = PlanWith(UncertainWeather("SEA", 8));
  const std::string shown = Write("shown.json", Output({"weather", "show", plan, "--json"}));
  const Json own = FinishOf(plan);
  EXPECT_NE(FinishOf(plan, {"--seed", "2"}), own);
  EXPECT_EQ(FinishOf(plan, {"--weather", shown}), own);
  Output({"weather", "set", plan, shown});
  EXPECT_EQ(FinishOf(plan), own);
  Output({"weather", "set", plan, Path("own.json")});
  EXPECT_EQ(FinishOf(plan), own);
}

TEST_F(WeatherStreamsTest, ThatGoesForPlansOfOtherProgramsToo) {
  const std::string plan = PlanWith(UncertainWeather("SEA", 8));
  Output({"weather", "clear", plan});
  EXPECT_EQ(FinishOf(plan, {"--weather", Path("own.json")}),
            FinishOf(PlanWith(UncertainWeather("SEA", 8))));
}

TEST_F(WeatherStreamsTest, TheCaseOfANameMakesNoDifference) {
  const Json upper = FinishOf(PlanWith(UncertainWeather("SEA", 8)));
  EXPECT_EQ(FinishOf(PlanWith(UncertainWeather("Sea", 8))), upper);
  EXPECT_NE(FinishOf(PlanWith(UncertainWeather("LAKE", 8))), upper);
}

TEST_F(WeatherStreamsTest, AChangedPeriodLeavesTheLengthsOfTheOthersAlone) {
  const std::vector<Json> before = PeriodsOf(PlanWith(UncertainWeather("SEA", 8)));
  const std::vector<Json> after = PeriodsOf(PlanWith(UncertainWeather("SEA", 12)));
  ASSERT_EQ(before.size(), after.size());
  bool is_changed = false;
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (before[i]["description"] == "First") {
      is_changed = is_changed || before[i] != after[i];
    } else {
      EXPECT_EQ(before[i], after[i]);
    }
  }
  EXPECT_TRUE(is_changed);
}

TEST_F(WeatherStreamsTest, AWorkbookOfThePlansWeatherIsSampledTheSame) {
  const std::string plan = PlanWith(UncertainWeather("SEA", 8));
  const std::vector<Json> before = PeriodsOf(plan);
  Output({"weather", "export", plan, "-o", Path("w.xlsx")});
  Output({"weather", "import", plan, Path("w.xlsx"), "--replace"});
  EXPECT_EQ(PeriodsOf(plan), before);
}

TEST_F(WeatherStreamsTest, NoTwoTasksShareAStreamAndTasksThatWereThereKeepTheirs) {
  engine::Plan plan = engine::LoadPlan(PlanWith(UncertainWeather("SEA", 8)));
  std::set<std::uint64_t> streams;
  for (const engine::Task& task : plan.tasks()) {
    EXPECT_TRUE(streams.insert(task.stream).second) << task.id;
  }
  // Had an ordinary task the stream of a period, the period would take another.
  const engine::Plan before = plan;
  NameWeatherStreams(plan, before);
  engine::Plan cleared = plan;
  ClearWeather(cleared, "p");
  engine::Plan met = plan;
  std::uint64_t of_period = 0;
  for (const engine::Task& task : plan.tasks()) {
    EXPECT_EQ(task.stream, before.FindTask(task.uid)->stream);
    if (cleared.FindTask(task.uid) == nullptr && of_period == 0) {
      of_period = task.stream;
      EXPECT_GE(of_period, std::uint64_t{1} << 63U);
    }
  }
  met.FindTask("A")->stream = of_period;
  NameWeatherStreams(met, cleared);
  streams.clear();
  for (const engine::Task& task : met.tasks()) {
    EXPECT_TRUE(streams.insert(task.stream).second) << task.id;
  }
}

}  // namespace
}  // namespace nimbrel::cli
