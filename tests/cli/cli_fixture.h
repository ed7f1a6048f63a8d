#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "nimbrel/console.h"
#include "nimbrel/program.h"

namespace nimbrel::cli {

/// What a command has left behind.
struct Outcome {
  int code = -1;
  std::string out;
  std::string err;
};

/// Runs commands in process, in a folder of its own that goes with the test.
class CliTest : public ::testing::Test {
 protected:
  CliTest();
  ~CliTest() override;

  /// Runs the program with these arguments.
  Outcome Run(const std::vector<std::string>& arguments, Terminal terminal = {});
  /// Runs it and expects exit code 0.
  std::string Output(const std::vector<std::string>& arguments);

  /// A path in the test's folder.
  std::string Path(const std::string& name) const { return (folder_ / name).string(); }
  std::string Write(const std::string& name, const std::string& text) const;
  static std::string Read(const std::string& path);
  /// Every file of the folder with its bytes.
  std::map<std::string, std::string> Files() const;

  /// A chain of three tasks of 5, 10 and 5 days, A, B and C, from Monday 1 March 2027 on a calendar
  /// of five days, with a finish milestone M: on likely durations it ends on Friday 26 March. As an
  /// XER file, and imported as plan.nplan.
  std::string ChainXer() const;
  std::string ChainPlan();
  /// The chain with ranges, and with weather on its tasks.
  std::string WeatherPlan();
  /// Two days of storm, certain, between 1 March and 14 March, on A and B; C must not be split.
  std::string WeatherJson() const;

  /// Expects a failure: the code, nothing on standard output, and one line on standard error that
  /// begins with the program's name and has `text` in it; and that no file has changed since
  /// `before`.
  void ExpectFailure(const std::vector<std::string>& arguments, int code, const std::string& text);

 private:
  std::filesystem::path folder_;
};

/// The text of an XER file of one project: activities with hours of work left, in a chain.
struct ChainActivity {
  std::string id;
  std::string name;
  int hours = 0;
  std::string type = "TT_Task";
};
std::string MakeChainXer(const std::vector<ChainActivity>& activities,
                         const std::string& project = "CHAIN");

}  // namespace nimbrel::cli
