// docs/file-formats.md names every key of the JSON and every table and column that the program
// writes.

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <sstream>
#include <string>

#include "nimbrel/json_text.h"
#include "tests/cli/cli_fixture.h"

namespace nimbrel::cli {
namespace {

class DocumentedTest : public CliTest {
 protected:
  /// The part of the document from a heading to the next one of its kind.
  static std::string Part(const std::string& heading) {
    const std::string all = Read(NIMBREL_SOURCE_DIR "/docs/file-formats.md");
    const std::size_t begin = all.find("\n### " + heading + "\n");
    EXPECT_NE(begin, std::string::npos) << heading;
    return all.substr(begin, all.find("\n### ", begin + 1) - begin);
  }

  /// Bounds of intervals are documented once for all percentiles, months are keys of their own.
  static void CollectKeys(const Json& json, std::set<std::string>& keys) {
    for (const auto& [key, value] : json.items()) {
      if (json.is_object() && !key.ends_with("_low") && !key.ends_with("_high")) {
        keys.insert(key);
      }
      if (value.is_structured() && key != "months") {
        CollectKeys(value, keys);
      }
    }
  }

  static void ExpectKeysIn(const std::string& part, const Json& json) {
    std::set<std::string> keys;
    CollectKeys(json, keys);
    EXPECT_GT(keys.size(), 10U);
    for (const std::string& key : keys) {
      EXPECT_NE(part.find("\"" + key + "\""), std::string::npos) << key;
    }
  }
};

TEST_F(DocumentedTest, KeysOfARun) {
  const std::string plan = WeatherPlan();
  ExpectKeysIn(Part("run --json"),
               Json::parse(Output({"run", plan, "--compare", "--attribute", "--until", "1",
                                   "--milestone", "M", "--iterations", "40", "--json", "-"})));
}

TEST_F(DocumentedTest, KeysOfAnIteration) {
  const std::string plan = WeatherPlan();
  const Json story = Json::parse(Output({"explain", plan, "--percentile", "80", "--json"}));
  ExpectKeysIn(Part("explain --json"), story);
}

TEST_F(DocumentedTest, TablesOfARunAndTheirColumns) {
  Output({"run", WeatherPlan(), "--compare", "--attribute", "--iterations", "40", "--csv",
          Path("tables")});
  const std::string part = Part("run --csv");
  const std::string percentiles =
      "p10,p10_low,p10_high,p50,p50_low,p50_high,p80,p80_low,p80_high,p90,p90_low,p90_high";
  int tables = 0;
  for (const auto& entry : std::filesystem::directory_iterator(Path("tables"))) {
    ++tables;
    const std::string name = entry.path().filename().string();
    const std::size_t row = part.find("`" + name + "`");
    ASSERT_NE(row, std::string::npos) << name;
    const std::string line = part.substr(row, part.find('\n', row) - row);
    std::istringstream text(Read(entry.path().string()));
    std::string columns;
    std::getline(text, columns);
    const std::size_t at = columns.find(percentiles);
    if (at != std::string::npos) {
      columns.replace(at, percentiles.size(), "P10 ... P90");
    }
    EXPECT_NE(line.find("`" + columns + "`"), std::string::npos) << name << ": " << columns;
  }
  EXPECT_EQ(tables, 14);
}

}  // namespace
}  // namespace nimbrel::cli
