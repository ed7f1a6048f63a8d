#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "nimbrel/json_text.h"
#include "tests/cli/cli_fixture.h"

namespace nimbrel::cli {
namespace {

using ::testing::HasSubstr;

class CorrelateTest : public CliTest {
 protected:
  /// The chain with two event calendars, a window calendar and ranges.
  std::string TwoCalendars() {
    const std::string plan = ChainPlan();
    Output({"ranges", plan, "--default", "80,100,140"});
    Output({"weather", "set", plan, Write("two.json", R"({
  "events": [
    { "calendar": "SEA", "periods": [ { "description": "March", "start": "2027-03-01",
        "finish": "2027-03-20", "probability": 0.5, "min": 2, "likely": 4, "max": 8 } ] },
    { "calendar": "WIND", "periods": [ { "description": "March", "start": "2027-03-10",
        "finish": "2027-03-30", "probability": 0.5, "min": 2, "likely": 4, "max": 8 } ] } ],
  "windows": [ { "calendar": "ICE", "windows": [ { "description": "Ice",
        "start": ["2027-03-01", "2027-03-02", "2027-03-03"],
        "finish": ["2027-03-04", "2027-03-05", "2027-03-06"] } ] } ],
  "assign": [ { "tasks": ["A", "B"], "calendars": ["SEA", "WIND"], "nosplit": false } ] })")});
    return plan;
  }

  void ExpectBad(const std::string& plan, const std::string& json, const std::string& text) {
    ExpectFailure({"correlate", plan, "--apply", Write("c.json", json)}, 1, "c.json: " + text);
  }
};

TEST_F(CorrelateTest, GroupsAreKeptInThePlanAndChangeTheRun) {
  const std::string plan = TwoCalendars();
  const std::string file = Write("c.json", R"({
    "durations": [ { "tasks": ["a", "B"], "match": "*roof*", "coefficient": 0.9 } ],
    "weather": [ { "calendars": ["sea", "WIND"], "coefficient": 0.8 } ] })");
  const auto deviation = [&] {
    Output({"run", plan, "--iterations", "300", "--json", Path("r.json")});
    return Json::parse(Read(Path("r.json")))["finish"]["sd_days"].get<double>();
  };
  const double before = deviation();
  EXPECT_THAT(Output({"correlate", plan, "--apply", file}),
              HasSubstr("1 group of durations and 1 of calendars"));
  // Durations of a chain that go together make its end less certain.
  EXPECT_GT(deviation(), 1.15 * before);
  const Json inputs = Json::parse(Read(Path("r.json")))["inputs"];
  EXPECT_EQ(inputs.back()["title"], "Correlation");
  EXPECT_EQ(inputs.back()["rows"][0][2], "A, B, C");
  EXPECT_EQ(inputs.back()["rows"][1][2], "SEA, WIND");

  Output({"correlate", plan, "--apply", Write("none.json", "{}")});
  EXPECT_EQ(deviation(), before);
}

TEST_F(CorrelateTest, AMatrixThatIsRepairedIsSaidSo) {
  const std::string plan = TwoCalendars();
  const std::string file =
      Write("c.json", R"({ "durations": [ { "tasks": ["A", "B", "C"], "coefficient": -0.9 } ] })");
  EXPECT_THAT(Output({"correlate", plan, "--apply", file}), HasSubstr("-0.90 became -0.48"));
  Output({"run", plan, "--iterations", "20", "--json", Path("r.json")});
  EXPECT_THAT(Json::parse(Read(Path("r.json")))["warnings"].dump(),
              HasSubstr("-0.90 became -0.48"));
}

TEST_F(CorrelateTest, ARepairedMatrixOfWeatherNamesPeriodsAndTheirCalendars) {
  const std::string plan = ChainPlan();
  std::string events;
  for (const char* name : {"SEA", "WIND", "RAIN"}) {
    events += std::string(events.empty() ? "" : ",") + R"({ "calendar": ")" + name +
              R"(", "periods": [ { "description": "March", "start": "2027-03-01",
                 "finish": "2027-03-20", "probability": 0.5, "min": 2, "likely": 2, "max": 2 } ] })";
  }
  Output({"weather", "set", plan, Write("w.json", R"({ "events": [)" + events + R"(],
    "assign": [ { "tasks": ["A"], "calendars": ["SEA", "WIND", "RAIN"] } ] })")});
  const std::string file = Write("c.json", R"({ "weather": [
    { "calendars": ["SEA", "WIND", "RAIN"], "coefficient": -0.9 } ] })");
  EXPECT_THAT(Output({"correlate", plan, "--apply", file}),
              ::testing::AllOf(HasSubstr("the occurrences of 3 weather periods are no"),
                               HasSubstr("\"March\" of SEA with \"March\" of WIND, -0.90")));
}

TEST_F(CorrelateTest, BadInputIsOneLineWithItsPath) {
  const std::string plan = TwoCalendars();
  ExpectBad(plan, R"({"durations": [{"tasks": ["A", "B"], "coefficient": 1.5}]})",
            "$.durations[0].coefficient: expected a number from -1 to 1, found 1.5");
  ExpectBad(plan, R"({"durations": [{"tasks": ["A", "B"], "coefficient": "x"}]})",
            "$.durations[0].coefficient: expected a number from -1 to 1");
  ExpectBad(plan, R"({"durations": [{"tasks": ["A", "B"]}]})",
            "$.durations[0]: expected the key \"coefficient\"");
  ExpectBad(plan, R"({"durations": [{"tasks": ["A", "Z"], "coefficient": 0.5}]})",
            "$.durations[0].tasks[1]: expected the ID of a task of the plan, found \"Z\"");
  ExpectBad(plan, R"({"durations": [{"tasks": ["A", "WEATHER"], "coefficient": 0.5}]})",
            "$.durations[0].tasks[1]: expected the ID of a task of the plan");
  ExpectBad(plan, R"({"durations": [{"tasks": ["A", "a"], "coefficient": 0.5}]})",
            "$.durations[0].tasks[1]: expected each task once");
  ExpectBad(plan, R"({"durations": [{"tasks": ["A"], "coefficient": 0.5}]})",
            "$.durations[0]: expected two tasks or more, found one");
  ExpectBad(plan, R"({"durations": [{"match": "*nothing*", "coefficient": 0.5}]})",
            "$.durations[0].match: expected a pattern that ordinary tasks match");
  ExpectBad(plan, R"({"weather": [{"calendars": ["SEA", "MOON"], "coefficient": 0.5}]})",
            "$.weather[0].calendars[1]: expected an event calendar of the plan, found \"MOON\"");
  ExpectBad(plan, R"({"weather": [{"calendars": ["SEA", "ICE"], "coefficient": 0.5}]})",
            "$.weather[0].calendars[1]: expected an event calendar of the plan");
  ExpectBad(plan, R"({"weather": [{"calendars": ["SEA", "sea"], "coefficient": 0.5}]})",
            "$.weather[0].calendars[1]: expected each calendar once");
  ExpectBad(plan, R"({"storms": []})", "$: expected only the keys durations, weather");
  ExpectFailure({"correlate", plan, "--apply", Write("bad.json", "{\n  \"weather\": [}")}, 1,
                "bad.json:2: expected JSON");
  ExpectFailure({"correlate", plan}, 2, "--apply");
  ExpectFailure({"correlate", ChainXer(), "--apply", Write("c.json", "{}")}, 1, "chain.xer");
}

TEST_F(CorrelateTest, GroupsOutliveNewWeather) {
  const std::string plan = TwoCalendars();
  Output({"correlate", plan, "--apply",
          Write("c.json",
                R"({ "weather": [ { "calendars": ["SEA", "WIND"], "coefficient": 1 } ] })")});
  Output({"weather", "set", plan, Path("two.json")});
  Output({"run", plan, "--iterations", "20", "--json", Path("r.json")});
  const Json json = Json::parse(Read(Path("r.json")));
  EXPECT_THAT(json["warnings"].dump(), ::testing::Not(HasSubstr("correlation")));
  EXPECT_EQ(json["inputs"].back()["rows"][0][0], "weather");
}

}  // namespace
}  // namespace nimbrel::cli
