#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "nimbrel/json_text.h"
#include "tests/cli/cli_fixture.h"

namespace nimbrel::cli {
namespace {

using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

constexpr const char* kExamples = NIMBREL_SOURCE_DIR "/examples/";

class ExampleTest : public CliTest {
 protected:
  std::string Plan() {
    const std::string plan = Path("vestdal.nplan");
    Output({"import", kExamples + std::string("vestdal-bridge.xer"), "-o", plan});
    Output({"ranges", plan, "--apply", kExamples + std::string("vestdal-ranges.csv")});
    Output({"weather", "set", plan, kExamples + std::string("vestdal-weather.json")});
    return plan;
  }
};

TEST_F(ExampleTest, IsReadWithoutWarnings) {
  const Json info = Json::parse(Output({"info", Plan(), "--json"}));
  EXPECT_THAT(info["warnings"], IsEmpty());
  EXPECT_EQ(info["title"], "Vestdal River Bridge");
  EXPECT_EQ(info["calendars"].size(), 10U) << "five of the plan and five of the weather";
  EXPECT_GE(info["counts"]["tasks"], 150);
  EXPECT_LE(info["counts"]["tasks"], 300);
  EXPECT_GE(info["counts"]["ranges"], 200);
  EXPECT_GE(info["weather"]["nosplit_tasks"], 12);
}

TEST_F(ExampleTest, HasCalendarsOfBothKinds) {
  const Json info = Json::parse(Output({"info", Plan(), "--json"}));
  std::vector<std::string> kinds;
  for (const Json& calendar : info["weather"]["calendars"]) {
    kinds.push_back(calendar["kind"]);
    EXPECT_GT(calendar["tasks"], 0) << calendar["name"];
  }
  EXPECT_THAT(kinds, UnorderedElementsAre("event", "event", "event", "event", "window"));
}

TEST_F(ExampleTest, ItsWeatherCostsWeeksAndNotDaysOrYears) {
  const Json json = Json::parse(
      Output({"run", Plan(), "--compare", "--iterations", "200", "--quiet", "--json", "-"}));
  EXPECT_GT(json["weather_delay_days"]["mean"], 7);
  EXPECT_LT(json["weather_delay_days"]["p80"], 60);
  EXPECT_LE(json["without_weather"]["finish"]["p80"], json["finish"]["p80"]);
  for (const Json& calendar : json["calendars"]) {
    EXPECT_GT(calendar["lost_days"]["mean"], 0) << calendar["name"];
  }
}

TEST_F(ExampleTest, NamesKeepTheirLetters) {
  EXPECT_THAT(Output({"schedule", Plan(), "--csv"}),
              ::testing::HasSubstr("East approach (Årnes): culvert"));
}

}  // namespace
}  // namespace nimbrel::cli
