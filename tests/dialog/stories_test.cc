// Whole stories of the weather dialog: each script of the folder "stories" is played on a plan of
// the embedded host, and its log has to be the one that stands beside it. What some of them leave
// in the plan is then asked for with the program's own commands, up to a run of the risk analysis.

#include <gmock/gmock.h>
#include <stdlib.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "nimbrel/console.h"
#include "nimbrel/program.h"
#include "tests/support/gestures/story_files.h"
#include "tests/tools/faces.h"
#include "tests/tools/gesture_tool.h"

namespace nimbrel::dialog {
namespace {

using Json = nlohmann::json;
using ::testing::ElementsAre;
using ::testing::Pair;

class StoryTest : public ::testing::Test {
 protected:
  StoryTest() {
    std::string name = (std::filesystem::temp_directory_path() / "nimbrel-story-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) {
      throw std::runtime_error("no temporary folder");
    }
    folder_ = name;
  }
  ~StoryTest() override {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }

  std::string Path(const std::string& name) const { return (folder_ / name).string(); }
  std::string plan() const { return Path("plan.nplan"); }

  /// Plays a story on a fresh plan, after those that it goes on from. Gives its log.
  std::string Play(const std::string& story, const std::string& face = "plain") {
    const gestures::StoryStart start = gestures::StartOf(story);
    if (start.key == "after:") {
      Play(start.value, face);
    } else {
      Run({"import", (gestures::kTop / start.value).string(), "-o", plan()});
    }
    std::ostringstream log;
    std::ostringstream trouble;
    EXPECT_EQ(gestures::RunGestureTool({"--face", face, plan(), gestures::ScriptOf(story).string()},
                                       log, trouble),
              0)
        << trouble.str();
    return log.str();
  }

  /// Runs the program and gives what it writes.
  static std::string Run(const std::vector<std::string>& arguments) {
    std::ostringstream out;
    std::ostringstream err;
    cli::Console console{out, err, {}};
    EXPECT_EQ(cli::RunProgram(arguments, console), 0) << err.str();
    return out.str();
  }
  Json Weather() const { return Json::parse(Run({"weather", "show", plan(), "--json"})); }

  struct RiskRun {
    Json json;
    std::map<std::string, int> finishes;  // how many iterations end then
  };
  RiskRun RunAnalysis(int iterations) const {
    RiskRun run;
    run.json = Json::parse(
        Run({"run", plan(), "--compare", "--quiet", "--seed", "7", "--iterations",
             std::to_string(iterations), "--json", "-", "--samples", Path("samples.csv")}));
    std::istringstream samples(gestures::ReadStoryFile(Path("samples.csv")));
    std::string line;
    std::getline(samples, line);
    EXPECT_EQ(line, "iteration,finish,finish_without_weather");
    while (std::getline(samples, line)) {
      const auto begin = line.find(',') + 1;
      ++run.finishes[line.substr(begin, line.find(',', begin) - begin)];
    }
    return run;
  }

 private:
  std::filesystem::path folder_;
};

/// The faces that these tests are built with.
std::vector<std::string> FaceNames() {
  std::vector<std::string> names;
  for (const gestures::Face& face : gestures::Faces()) {
    if (face.make_hands != nullptr) {
      names.push_back(face.name);
    }
  }
  return names;
}

class EveryStory : public StoryTest,
                   public ::testing::WithParamInterface<std::tuple<std::string, std::string>> {};

TEST_P(EveryStory, GivesTheLogThatStandsBesideIt) {
  const auto& [face, story] = GetParam();
  EXPECT_EQ(Play(story, face), gestures::LogBeside(story));
}

INSTANTIATE_TEST_SUITE_P(Stories, EveryStory,
                         ::testing::Combine(::testing::ValuesIn(FaceNames()),
                                            ::testing::ValuesIn(gestures::StoryNames())),
                         [](const auto& story) {
                           return std::get<0>(story.param) + "_" + std::get<1>(story.param);
                         });

TEST_F(StoryTest, WhatWasTypedIsTheWeatherOfThePlan) {
  Play("storm_and_closed_yard");
  const Json weather = Weather();
  EXPECT_EQ(weather["events"], Json::parse(R"([{"calendar": "STORM", "periods": [
      {"description": "Westerly storm", "start": "2027-03-10", "finish": "2027-03-12",
       "probability": 0.3, "min": 3, "likely": 3, "max": 3}]}])"));
  EXPECT_EQ(weather["windows"], Json::parse(R"([{"calendar": "YARD CLOSED", "windows": [
      {"description": "Stocktaking", "start": ["2027-03-22", "2027-03-22", "2027-03-22"],
       "finish": ["2027-03-23", "2027-03-23", "2027-03-23"]}]}])"));
  EXPECT_EQ(weather["assign"], Json::parse(R"([
      {"tasks": ["B"], "calendars": ["STORM"], "nosplit": true},
      {"tasks": ["C"], "calendars": ["YARD CLOSED"], "nosplit": false}])"));
}

TEST_F(StoryTest, TheBridgesWeatherIsInThePlanAndGoneAgain) {
  Play("lifting_season");
  Json weather = Weather();
  ASSERT_EQ(weather["events"].size(), 1u);
  EXPECT_EQ(weather["events"][0]["calendar"], "LIFTING WIND 20");
  EXPECT_EQ(weather["events"][0]["periods"].size(), 4u);
  EXPECT_EQ(weather["events"][0]["periods"][1], Json::parse(R"(
      {"description": "Storm", "start": "2028-06-01", "finish": "2028-06-30",
       "probability": 0.3, "min": 5, "likely": 7, "max": 10})"));
  EXPECT_EQ(weather["windows"][0]["windows"][1], Json::parse(R"(
      {"description": "Winter 27/28", "start": ["2027-11-25", "2027-12-10", "2028-01-06"],
       "finish": ["2028-03-08", "2028-03-31", "2028-04-16"]})"));
  EXPECT_EQ(weather["assign"], Json::parse(R"([
      {"tasks": ["P4-040", "P4-050"], "calendars": ["ICE"], "nosplit": false},
      {"tasks": ["DM-040", "DM-050"], "calendars": ["LIFTING WIND 20"], "nosplit": true}])"));

  Play("the_next_day");
  weather = Weather();
  EXPECT_TRUE(weather["events"].empty());
  EXPECT_TRUE(weather["windows"].empty());
}

// The plan of the hall is a chain of 5, 10 and 5 days of work, Monday to Friday, from Monday, 1
// March 2027: A to Friday 5, B from Monday 8 to Friday 19, C from Monday 22 to Friday 26 March.
//
// - The yard is closed on 22 and 23 March, always: C works from 24 to 30 March, 4 days later.
// - The storm takes Wednesday 10 to Friday 12 March in three iterations of ten. B must not be
//   split, so it waits until Monday, 15 March, a week, and ends on 26 March. C then works from 29
//   March to 2 April, when the yard is open again: 7 days later than without weather.
//
// The number of iterations with a storm is binomial; four standard deviations either side are wrong
// by chance once in 16,000 seeds.
constexpr int kIterations = 2000;
constexpr double kStorms = 0.3 * kIterations;
constexpr double kFourDeviations = 4 * 20.5;  // of sqrt(2000 * 0.3 * 0.7) each

TEST_F(StoryTest, ARunOnThePlanIsLateByWhatTheWeatherTakes) {
  Play("storm_and_closed_yard");
  const RiskRun run = RunAnalysis(kIterations);
  ASSERT_THAT(run.finishes, ElementsAre(Pair("2027-03-30T17:00", ::testing::_),
                                        Pair("2027-04-02T17:00", ::testing::_)));
  const int storms = run.finishes.at("2027-04-02T17:00");
  EXPECT_NEAR(storms, kStorms, kFourDeviations);
  EXPECT_EQ(run.finishes.at("2027-03-30T17:00"), kIterations - storms);

  // What the run reports is rounded to two decimals.
  const double share = static_cast<double>(storms) / kIterations;
  EXPECT_EQ(run.json["without_weather"]["finish"]["max"], "2027-03-26T17:00");
  EXPECT_NEAR(run.json["weather_delay_days"]["mean"], 4 + 3 * share, 0.0051);
  EXPECT_NEAR(run.json["calendars"][0]["lost_days"]["mean"], 3 * share, 0.0051);
  EXPECT_EQ(run.json["calendars"][1]["lost_days"]["mean"], 2.0);
  EXPECT_EQ(run.json["tasks"][2]["id"], "B");
  EXPECT_NEAR(run.json["tasks"][2]["nosplit_pushed_days"], 7 * share, 0.0051);
}

// May B be split, it works on 8 and 9 March and goes on after the storm, to Wednesday 24; C is done
// on Wednesday 31 March, 5 days late. The storms are those of the same seed before.
TEST_F(StoryTest, ATaskThatMayBeSplitLosesNoMoreThanTheStorm) {
  Play("storm_and_closed_yard");
  const int storms = RunAnalysis(kIterations).finishes.at("2027-04-02T17:00");
  Play("task_b_may_be_split");
  EXPECT_THAT(RunAnalysis(kIterations).finishes,
              ElementsAre(Pair("2027-03-30T17:00", kIterations - storms),
                          Pair("2027-03-31T17:00", storms)));
}

}  // namespace
}  // namespace nimbrel::dialog
