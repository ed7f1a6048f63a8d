#include "nimbrel/program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "tests/cli/cli_fixture.h"

namespace nimbrel::cli {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

class ProgramTest : public CliTest {};

TEST_F(ProgramTest, TheVersionIsThatOfTheBuild) {
  EXPECT_EQ(Output({"--version"}), "nimbrel " NIMBREL_VERSION "\n");
}

TEST_F(ProgramTest, TheHelpListsEveryCommandAndTheExitCodes) {
  const std::string help = Output({"--help"});
  for (const char* word : {"import", "info", "schedule", "ranges", "weather", "run", "explain",
                           "correlate", "--version", "--help", "Examples:", "Exit codes:", "130"}) {
    EXPECT_THAT(help, HasSubstr(word));
  }
}

struct CommandOptions {
  std::vector<std::string> command;
  std::vector<std::string> options;
};

/// Messages show the words of the command line.
void PrintTo(const CommandOptions& value, std::ostream* out) {
  *out << ::testing::PrintToString(value.command);
}

class HelpTest : public CliTest, public ::testing::WithParamInterface<CommandOptions> {};

TEST_P(HelpTest, TheHelpOfACommandListsItsOptionsWithExamples) {
  std::vector<std::string> arguments = GetParam().command;
  arguments.emplace_back("--help");
  const std::string help = Output(arguments);
  for (const std::string& option : GetParam().options) {
    EXPECT_THAT(help, HasSubstr(option));
  }
  EXPECT_THAT(help, HasSubstr("Examples:"));
}

INSTANTIATE_TEST_SUITE_P(
    Commands, HelpTest,
    ::testing::Values(CommandOptions{{"import"}, {"FILE", "-o", "--project", "--time-unit"}},
                      CommandOptions{{"info"}, {"PLAN", "--json"}},
                      CommandOptions{{"schedule"}, {"PLAN", "--json", "--csv", "-o"}},
                      CommandOptions{{"ranges"},
                                     {"PLAN", "--default", "MIN,LIKELY,MAX", "--apply", "--shape",
                                      "triangular", "pert", "uniform"}},
                      CommandOptions{{"weather"}, {"set", "show", "clear"}},
                      CommandOptions{{"weather", "set"}, {"PLAN", "WEATHER.json"}},
                      CommandOptions{{"weather", "show"}, {"PLAN", "--json"}},
                      CommandOptions{{"weather", "clear"}, {"PLAN"}},
                      CommandOptions{{"run"},
                                     {"PLAN", "--weather", "--iterations", "--seed", "--workers",
                                      "--no-weather", "--compare", "--sampling", "lhs", "--until",
                                      "--attribute", "--milestone", "--json", "--samples", "--csv",
                                      "--report", "--tasks", "--quiet"}},
                      CommandOptions{{"explain"},
                                     {"PLAN", "--iteration", "--percentile", "--seed",
                                      "--iterations", "--sampling", "--json"}},
                      CommandOptions{{"correlate"}, {"PLAN", "--apply"}}));

struct BadLine {
  std::vector<std::string> arguments;
  std::string text;
};

void PrintTo(const BadLine& value, std::ostream* out) {
  *out << ::testing::PrintToString(value.arguments);
}

class CommandLineTest : public CliTest, public ::testing::WithParamInterface<BadLine> {};

TEST_P(CommandLineTest, AWrongCommandLineIsOneLineAndExitCode2) {
  ExpectFailure(GetParam().arguments, 2, GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, CommandLineTest,
    ::testing::Values(
        BadLine{{}, "nimbrel: expected one of import, info"},
        BadLine{{"explode"}, "found \"explode\""}, BadLine{{"--nothing"}, "--nothing"},
        BadLine{{"import"}, "FILE is required"}, BadLine{{"import", "a.xer", "b.xer"}, "b.xer"},
        BadLine{{"import", "a.xer", "--time-unit", "weeks"},
                "expected days or hours or quarters, found \"weeks\""},
        BadLine{{"schedule", "a.xer", "--json", "--csv"}, "excludes"},
        BadLine{
            {"weather"},
            "nimbrel: weather: expected one of set, show, export, import, clear, found nothing"},
        BadLine{{"weather", "rain"}, "found \"rain\""},
        BadLine{{"weather", "set", "a.nplan"}, "WEATHER.json is required"},
        BadLine{{"ranges", "a.nplan"}, "--default"},
        BadLine{{"ranges", "a.nplan", "--default", "90,100"}, "--default"},
        BadLine{{"ranges", "a.nplan", "--default", "90,100,130", "--apply", "a.csv"}, "excludes"},
        BadLine{{"ranges", "a.nplan", "--default", "90,100,130", "--shape", "round"}, "round"},
        BadLine{{"run", "a.xer", "--iterations", "0"},
                "--iterations: expected a whole number from 1 to"},
        BadLine{{"run", "a.xer", "--iterations", "10000001"}, "found \"10000001\""},
        BadLine{{"run", "a.xer", "--iterations", "12x"}, "found \"12x\""},
        BadLine{{"run", "a.xer", "--iterations", "-5"}, "--iterations"},
        BadLine{{"run", "a.xer", "--workers", "0"}, "from 1 to 256, found \"0\""},
        BadLine{{"run", "a.xer", "--workers", "257"}, "from 1 to 256, found \"257\""},
        BadLine{{"run", "a.xer", "--seed", "18446744073709551616"}, "--seed"},
        BadLine{{"run", "a.xer", "--sampling", "sobol"}, "expected mc or lhs, found \"sobol\""},
        BadLine{{"run", "a.xer", "--no-weather", "--compare"}, "excludes"},
        BadLine{{"run", "a.xer", "--no-weather", "--weather", "w.json"}, "excludes"},
        BadLine{{"run", "a.xer", "--json", "x", "--samples", "x"}, "two different places"},
        BadLine{{"run", "a.xer", "--json", "x", "--report", "./x"}, "two different places"},
        BadLine{{"run", "a.xer", "--json", "out", "--csv", "none/../out"},
                "two different places"}));

TEST_F(ProgramTest, AWrongCommandLineSaysWhereHelpIs) {
  EXPECT_THAT(Run({"run"}).err, HasSubstr("(see 'nimbrel run --help')"));
  EXPECT_THAT(Run({"weather", "set"}).err, HasSubstr("(see 'nimbrel weather set --help')"));
}

TEST_F(ProgramTest, AFileThatIsNotThereIsExitCode3) {
  for (const char* command : {"info", "schedule", "run", "import"}) {
    ExpectFailure({command, Path("none.xer")}, 3,
                  Path("none.xer") + ": cannot be read: No such file or directory");
  }
  ExpectFailure({"weather", "clear", Path("none.nplan")}, 3, "none.nplan: cannot be read");
  ExpectFailure({"info", Path("")}, 3, "cannot be read");  // a folder
}

TEST_F(ProgramTest, AFileThatIsNoPlanIsExitCode1AndNamed) {
  ExpectFailure({"info", Write("letter.txt", "Dear planner,\n")}, 1, "letter.txt:1: expected");
  ExpectFailure({"run", Write("empty.xer", "")}, 1, "empty.xer:1: expected");
}

TEST_F(ProgramTest, APlanIsRecognisedByWhatIsInItAndNotByItsName) {
  std::filesystem::rename(ChainPlan(), Path("plan.xer"));
  EXPECT_THAT(Output({"info", Path("plan.xer")}), HasSubstr("3 tasks"));
  std::filesystem::rename(ChainXer(), Path("chain.nplan"));
  EXPECT_THAT(Output({"info", Path("chain.nplan")}), HasSubstr("3 tasks"));
}

TEST_F(ProgramTest, CommandsThatWriteNeedAPlanOfOurs) {
  const std::string xer = ChainXer();
  const std::string text =
      xer + ": expected a .nplan, which can be changed; make one with 'nimbrel import'";
  ExpectFailure({"ranges", xer, "--default", "90,100,130"}, 1, text);
  ExpectFailure({"weather", "set", xer, WeatherJson()}, 1, text);
  ExpectFailure({"weather", "clear", xer}, 1, text);
}

TEST_F(ProgramTest, ADamagedPlanIsBadInput) {
  std::string bytes = Read(ChainPlan());
  bytes.resize(bytes.size() / 2);
  std::fill(bytes.begin() + 100, bytes.end(), '\x5a');
  ExpectFailure({"info", Write("damaged.nplan", bytes)}, 1, "damaged.nplan");
}

TEST_F(ProgramTest, OutputThatCannotBeWrittenIsExitCode3) {
  ChainPlan();
  std::ostringstream out;
  std::ostringstream err;
  out.setstate(std::ios::badbit);
  Console console{out, err, {}};
  EXPECT_EQ(RunProgram({"info", Path("plan.nplan")}, console), 3);
  EXPECT_THAT(err.str(), HasSubstr("nimbrel: standard output: cannot be written"));
}

TEST_F(ProgramTest, AnImportWhoseReportCannotBeWrittenWritesNoPlan) {
  const std::string xer = ChainXer();
  std::ostringstream out;
  std::ostringstream err;
  out.setstate(std::ios::badbit);
  Console console{out, err, {}};
  EXPECT_EQ(RunProgram({"import", xer, "-o", Path("plan.nplan")}, console), 3);
  EXPECT_FALSE(std::filesystem::exists(Path("plan.nplan")));
}

TEST_F(ProgramTest, ControlCharactersInNamesNeverReachTheTerminal) {
  const Outcome outcome = Run({"info", Path("a\x1b[31m\nb")});
  EXPECT_EQ(outcome.code, 3);
  EXPECT_THAT(outcome.err, AllOf(Not(HasSubstr("\x1b")), HasSubstr("a [31m b")));
}

}  // namespace
}  // namespace nimbrel::cli
