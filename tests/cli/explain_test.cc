#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "nimbrel/json_text.h"
#include "tests/cli/cli_fixture.h"

namespace nimbrel::cli {
namespace {

using ::testing::HasSubstr;

class ExplainTest : public CliTest {
 protected:
  Json Story(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "explain");
    arguments.push_back("--json");
    return Json::parse(Output(arguments));
  }
};

TEST_F(ExplainTest, HasTheFinishOfEverySampleOfTheRun) {
  const std::string plan = WeatherPlan();
  Output({"run", plan, "--iterations", "12", "--seed", "9", "--sampling", "lhs", "--samples",
          Path("s.csv")});
  std::istringstream lines(Read(Path("s.csv")));
  std::string line;
  std::getline(lines, line);
  int count = 0;
  while (std::getline(lines, line)) {
    const std::string number = line.substr(0, line.find(','));
    const Json story = Story(
        {plan, "--iteration", number, "--iterations", "12", "--seed", "9", "--sampling", "lhs"});
    EXPECT_EQ(story["finish"], line.substr(line.find(',') + 1));
    EXPECT_EQ(story["driving_path"].back()["finish"], story["finish"]);
    ++count;
  }
  EXPECT_EQ(count, 12);
}

TEST_F(ExplainTest, PicksTheIterationOfAPercentile) {
  const std::string plan = WeatherPlan();
  Output({"run", plan, "--iterations", "40", "--json", Path("r.json")});
  const Json run = Json::parse(Read(Path("r.json")));
  const Json story = Story({plan, "--percentile", "80", "--iterations", "40"});
  EXPECT_EQ(story["finish"], run["finish"]["p80"]);
  EXPECT_EQ(story["iteration"], run["critical_chain"]["iteration"]);
}

TEST_F(ExplainTest, FindsThePercentileOfARunThatEndedEarly) {
  const std::string plan = WeatherPlan();
  const std::vector<std::string> options = {"--until", "30",         "--iterations",
                                            "5000",    "--sampling", "lhs"};
  const auto with = [&options](std::vector<std::string> arguments) {
    arguments.insert(arguments.end(), options.begin(), options.end());
    return arguments;
  };
  Output(with({"run", plan, "--json", Path("r.json")}));
  const Json run = Json::parse(Read(Path("r.json")));
  ASSERT_EQ(run["iterations"], 256);
  const Json story = Story(with({plan, "--percentile", "80"}));
  EXPECT_EQ(story["iteration"], run["critical_chain"]["iteration"]);
  EXPECT_EQ(story["finish"], run["finish"]["p80"]);
  EXPECT_EQ(story["iterations"], 256);
  EXPECT_EQ(Story(with({plan, "--iteration", "256"}))["iteration"], 256);
  ExpectFailure(with({"explain", plan, "--iteration", "257"}), 2,
                "--iteration: expected 1 to 256, the run's iterations, found 257");
  ExpectFailure({"explain", plan, "--percentile", "80", "--until", "0"}, 2,
                "expected a number of days above 0");
}

TEST_F(ExplainTest, TellsByHowMuchATaskWasPushed) {
  // C takes five days and must not be split. It would start on Monday 22 March, but the Wednesday
  // is lost. A weekend splits nothing: from Thursday the 25th on it is in one piece, three days
  // later.
  const std::string plan = ChainPlan();
  Output({"weather", "set", plan, Write("push.json", R"({
    "events": [ { "calendar": "GALE", "periods": [ { "description": "One day",
      "start": "2027-03-24", "finish": "2027-03-24", "probability": 1.0,
      "min": 1, "likely": 1, "max": 1 } ] } ],
    "windows": [],
    "assign": [ { "tasks": ["C"], "calendars": ["GALE"], "nosplit": true } ] })")});
  const Json story = Story({plan, "--iteration", "1"});
  ASSERT_EQ(story["pushed"].size(), 1U);
  const Json days = story["pushed"][0]["days"];
  EXPECT_EQ(days, 3.0);
  const std::string text = Output({"explain", plan, "--iteration", "1"});
  const auto row_after = [&text](const std::string& title) {
    const std::size_t row = text.find("Lift the roof", text.find("\n" + title));
    return text.substr(row, text.find('\n', row) - row);
  };
  const std::string shown = fmt::format("{:.1f} d", days.get<double>());
  for (const char* table : {"Held up", "Pushed", "Driving path"}) {
    EXPECT_THAT(row_after(table), HasSubstr(" " + shown)) << text;
  }
  EXPECT_THAT(row_after("Held up"), HasSubstr(" 1 d  "));
}

TEST_F(ExplainTest, TellsPeriodsAndWhatTheyHeldUp) {
  const std::string plan = WeatherPlan();
  const Json story = Story({plan, "--iteration", "3"});
  ASSERT_EQ(story["periods"].size(), 1U);
  const Json& period = story["periods"][0];
  EXPECT_EQ(period["calendar"], "STORM");
  EXPECT_EQ(period["occurred"], true);
  EXPECT_EQ(period["length_days"], 2.0);
  EXPECT_EQ(period["lost_days"], 2);
  const std::string text = Output({"explain", plan, "--iteration", "3"});
  for (const char* part : {"iteration 3 of 1,000, seed 1", "Finish: 2027-", "STORM", "occurred",
                           "Driving path", "Lift the roof"}) {
    EXPECT_THAT(text, HasSubstr(part));
  }
}

TEST_F(ExplainTest, CallsWindowsWhatTheUserCallsThem) {
  const std::string plan = ChainPlan();
  Output({"weather", "set", plan, Write("ice.json", R"({
    "events": [], "assign": [],
    "windows": [ { "calendar": "ICE", "windows": [
      { "description": "First winter", "start": ["2027-03-03", "2027-03-03", "2027-03-03"],
        "finish": ["2027-03-05", "2027-03-05", "2027-03-05"] },
      { "description": "Second winter", "start": ["2027-12-03", "2027-12-03", "2027-12-03"],
        "finish": ["2027-12-05", "2027-12-05", "2027-12-05"] } ] } ] })")});
  const Json story = Story({plan, "--iteration", "1"});
  ASSERT_EQ(story["windows"].size(), 2U);
  EXPECT_EQ(story["windows"][0]["description"], "First winter");
  EXPECT_EQ(story["windows"][1]["description"], "Second winter");
}

TEST_F(ExplainTest, RefusesIterationsAndPercentilesThatAreNone) {
  const std::string plan = WeatherPlan();
  ExpectFailure({"explain", plan, "--iteration", "1001"}, 2,
                "--iteration: expected 1 to 1000, the run's iterations, found 1001");
  ExpectFailure({"explain", plan, "--iteration", "0"}, 2, "--iteration");
  ExpectFailure({"explain", plan, "--percentile", "101"}, 2, "--percentile");
  ExpectFailure({"explain", plan}, 2, "expected --iteration or --percentile, found neither");
  ExpectFailure({"explain", plan, "--iteration", "1", "--percentile", "50"}, 2, "--percentile");
  ExpectFailure({"explain", Path("none.nplan"), "--iteration", "1"}, 3, "none.nplan");
}

}  // namespace
}  // namespace nimbrel::cli
