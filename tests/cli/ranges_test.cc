#include "nimbrel/ranges.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "nimbrel/command_error.h"

namespace nimbrel::cli {
namespace {

using engine::Plan;
using engine::Shape;
using engine::Task;
using engine::TaskKind;
using engine::ThreePoint;
using engine::TimeUnit;
using ::testing::HasSubstr;

Task MakeTask(const std::string& id, int days, TaskKind kind = TaskKind::kTask) {
  Task task;
  task.id = id;
  task.kind = kind;
  task.remaining_minutes = task.original_minutes = days * 480;
  return task;
}

/// A10 of ten days, A20 of four, and one task of each kind that has no range.
Plan MakePlan(TimeUnit unit = TimeUnit::kDays) {
  Plan plan;
  plan.time_unit = unit;
  plan.AddTask(MakeTask("A10", 10));
  plan.AddTask(MakeTask("A20", 4));
  plan.AddTask(MakeTask("START", 0, TaskKind::kStartMilestone));
  plan.AddTask(MakeTask("END", 0, TaskKind::kFinishMilestone));
  plan.AddTask(MakeTask("SUM", 0, TaskKind::kSummary));
  plan.AddTask(MakeTask("LOE", 0, TaskKind::kLevelOfEffort));
  Task finished = MakeTask("DONE", 0);
  finished.actual_start = finished.actual_finish = engine::Instant(46000, 480);
  plan.AddTask(finished);
  Task period = MakeTask("N9", 2);
  period.user_values = {{"weather", "tasktype", "1"}};
  period.range = ThreePoint{1, 2, 3, Shape::kTriangular};
  plan.AddTask(period);
  return plan;
}

template <class Operation>
void ExpectError(ExitCode code, const std::string& text, const Operation& operation) {
  try {
    operation();
    ADD_FAILURE() << "no error; expected: " << text;
  } catch (const CommandError& error) {
    EXPECT_EQ(error.code(), code) << error.what();
    EXPECT_THAT(error.what(), HasSubstr(text));
  }
}

TEST(ParsePercentRange, ReadsThreeNumbersInOrder) {
  const PercentRange range = ParsePercentRange("90, 100 ,130.5");
  EXPECT_EQ(range.minimum, 90);
  EXPECT_EQ(range.likely, 100);
  EXPECT_EQ(range.maximum, 130.5);
}

class NoPercentRange : public ::testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(Texts, NoPercentRange,
                         ::testing::Values("", "90,100", "90,100,130,140", "90,100,", ",90,100,130",
                                           "130,100,90", "90,130,100", "a,100,130", "90,100,130%",
                                           "-1,100,130", "90,100,1001", "90,100,nan",
                                           "90,100,inf"));

TEST_P(NoPercentRange, IsAWrongCommandLine) {
  ExpectError(ExitCode::kBadCommandLine, "--default: expected MIN,LIKELY,MAX in percent",
              [] { ParsePercentRange(GetParam()); });
}

TEST(ParseShape, KnowsTheThreeShapesInAnyCase) {
  EXPECT_EQ(ParseShape("triangular"), Shape::kTriangular);
  EXPECT_EQ(ParseShape("PERT"), Shape::kPert);
  EXPECT_EQ(ParseShape("Uniform"), Shape::kUniform);
  EXPECT_EQ(ParseShape("round"), std::nullopt);
}

TEST(ApplyDefaultRanges, TakesPercentagesOfWhatRemains) {
  Plan plan = MakePlan();
  EXPECT_EQ(ApplyDefaultRanges(plan, {90, 100, 130}, Shape::kPert), 2);
  EXPECT_EQ(plan.FindTask("A10")->range, (ThreePoint{9, 10, 13, Shape::kPert}));
  EXPECT_EQ(plan.FindTask("A20")->range, (ThreePoint{3.6, 4, 5.2, Shape::kPert}));
}

TEST(ApplyDefaultRanges, CountsInTheUnitsOfThePlan) {
  Plan plan = MakePlan(TimeUnit::kHours);
  ApplyDefaultRanges(plan, {50, 100, 200}, Shape::kTriangular);
  EXPECT_EQ(plan.FindTask("A10")->range, (ThreePoint{40, 80, 160, Shape::kTriangular}));
}

TEST(ApplyDefaultRanges, LeavesAllButUnfinishedTasksAlone) {
  Plan plan = MakePlan();
  Plan before = plan;
  ApplyDefaultRanges(plan, {90, 100, 130}, Shape::kTriangular);
  for (const char* id : {"START", "END", "SUM", "LOE", "DONE", "N9"}) {
    EXPECT_EQ(*plan.FindTask(id), *before.FindTask(id)) << id;
  }
}

TEST(ApplyDefaultRanges, ReplacesTheRangesOfBefore) {
  Plan plan = MakePlan();
  ApplyDefaultRanges(plan, {90, 100, 130}, Shape::kTriangular);
  ApplyDefaultRanges(plan, {100, 100, 100}, Shape::kUniform);
  EXPECT_EQ(plan.FindTask("A10")->range, (ThreePoint{10, 10, 10, Shape::kUniform}));
}

TEST(ApplyDefaultRanges, RefusesDurationsBeyondMeasureAndLeavesThePlan) {
  Plan plan = MakePlan();
  plan.FindTask("A20")->remaining_minutes = 2000000000;
  const Plan before = plan;
  ExpectError(ExitCode::kBadInput, "found 130% of the remaining duration of task \"A20\"", [&] {
    ApplyDefaultRanges(plan, {90, 100, 130}, Shape::kTriangular);
  });
  EXPECT_EQ(plan, before);
}

TEST(ApplyRangesText, SetsTheTasksThatItNames) {
  Plan plan = MakePlan();
  EXPECT_EQ(ApplyRangesText(plan, "id,min,likely,max\nA20,3,4.5,8\n", "r.csv", Shape::kPert), 1);
  EXPECT_EQ(plan.FindTask("A20")->range, (ThreePoint{3, 4.5, 8, Shape::kPert}));
  EXPECT_EQ(plan.FindTask("A10")->range, std::nullopt);
}

TEST(ApplyRangesText, ConvertsDaysToTheUnitsOfThePlan) {
  for (const auto& [unit, factor] :
       {std::pair(TimeUnit::kHours, 10.0), std::pair(TimeUnit::kQuarters, 40.0)}) {
    Plan plan = MakePlan(unit);
    plan.hours_per_day = 10;
    ApplyRangesText(plan, "id,min,likely,max\nA20,3,4.5,8\n", "r.csv", Shape::kPert);
    EXPECT_EQ(plan.FindTask("A20")->range,
              (ThreePoint{3 * factor, 4.5 * factor, 8 * factor, Shape::kPert}));
  }
}

TEST(ApplyRangesText, TakesColumnsInAnyOrderQuotesEmptyRowsAndBothLineEnds) {
  Plan plan = MakePlan();
  Task odd = MakeTask("A,\"30\"", 1);
  plan.AddTask(odd);
  const std::string text =
      "Max,\"Shape\", ID ,min,likely\r\n"
      "\r\n"
      "8,uniform,a10,3,4\r\n"
      "5,,\"A,\"\"30\"\"\",1,2\n"
      "9,PERT,\"A20\",\"1\",2";
  EXPECT_EQ(ApplyRangesText(plan, text, "r.csv", Shape::kTriangular), 3);
  EXPECT_EQ(plan.FindTask("A10")->range, (ThreePoint{3, 4, 8, Shape::kUniform}));
  EXPECT_EQ(plan.FindTask(odd.id)->range, (ThreePoint{1, 2, 5, Shape::kTriangular}));
  EXPECT_EQ(plan.FindTask("A20")->range, (ThreePoint{1, 2, 9, Shape::kPert}));
}

struct BadCsv {
  const char* name;
  const char* text;
  const char* error;
};

class BadRangesText : public ::testing::TestWithParam<BadCsv> {};
INSTANTIATE_TEST_SUITE_P(
    Texts, BadRangesText,
    ::testing::Values(
        BadCsv{"Empty", "", "r.csv:1: expected a row with the columns id, min, likely, max"},
        BadCsv{"NoHeader", "A10,1,2,3\n",
               "r.csv:1: expected the columns id, min, likely, max and shape, found \"A10\""},
        BadCsv{"MissingColumn", "id,min,max\n",
               "r.csv:1: expected a column \"likely\", found none"},
        BadCsv{"ColumnTwice", "id,min,likely,max,Min\n",
               "r.csv:1: expected each column once, found \"Min\" twice"},
        BadCsv{"UnknownTask", "id,min,likely,max\nA10,1,2,3\nZZ,1,2,3\n",
               "r.csv:3: expected the ID of a task of the plan, found \"ZZ\""},
        BadCsv{"SameTaskTwice", "id,min,likely,max\nA10,1,2,3\na10,1,2,3\n",
               "r.csv:3: expected each task once, found \"a10\" for the second time"},
        BadCsv{"Milestone", "id,min,likely,max\nEND,1,2,3\n",
               "found \"END\", which is a milestone"},
        BadCsv{"Summary", "id,min,likely,max\nSUM,1,2,3\n", "which is a summary"},
        BadCsv{"LevelOfEffort", "id,min,likely,max\nLOE,1,2,3\n", "which is a level of effort"},
        BadCsv{"Finished", "id,min,likely,max\nDONE,1,2,3\n", "which is one that is finished"},
        BadCsv{"WeatherTask", "id,min,likely,max\nN9,1,2,3\n", "which is one that carries weather"},
        BadCsv{"NoNumber", "id,min,likely,max\nA10,1,two,3\n",
               "r.csv:2: expected days from 0 to 73050 as likely, found \"two\""},
        BadCsv{"DecimalComma", "id,min,likely,max\nA10,1,\"2,5\",3\n", "found \"2,5\""},
        BadCsv{"Negative", "id,min,likely,max\nA10,-1,2,3\n", "as min, found \"-1\""},
        BadCsv{"NotFinite", "id,min,likely,max\nA10,1,2,inf\n", "as max, found \"inf\""},
        BadCsv{"TooLong", "id,min,likely,max\nA10,1,2,80000\n", "as max, found \"80000\""},
        BadCsv{"OutOfOrder", "id,min,likely,max\n\nA10,3,2,4\n",
               "r.csv:3: expected min <= likely <= max, found 3, 2, 4"},
        BadCsv{"MaximumBelowLikely", "id,min,likely,max\nA10,1,2,1.5\n", "found 1, 2, 1.5"},
        BadCsv{"TooFewFields", "id,min,likely,max\nA10,1,2\n",
               "r.csv:2: expected 4 fields, found 3"},
        BadCsv{"TooManyFields", "id,min,likely,max\nA10,1,2,3,4\n", "expected 4 fields, found 5"},
        BadCsv{"UnknownShape", "id,min,likely,max,shape\nA10,1,2,3,round\n",
               "r.csv:2: expected triangular, pert or uniform, found \"round\""},
        BadCsv{"QuoteNotClosed", "id,min,likely,max\nA10,1,\"2,3\nA20,1,2,3\n",
               "r.csv:2: expected a closing quote, found the end of the file"},
        BadCsv{"TextBehindQuote", "id,min,likely,max\n\"A10\"x,1,2,3\n",
               "r.csv:2: expected a comma after the closing quote, found \"x\""}),
    [](const auto& text) { return text.param.name; });

TEST_P(BadRangesText, IsRefusedByFileAndRowAndNothingIsSet) {
  Plan plan = MakePlan();
  const Plan before = plan;
  ExpectError(ExitCode::kBadInput, GetParam().error,
              [&] { ApplyRangesText(plan, GetParam().text, "r.csv", Shape::kTriangular); });
  EXPECT_EQ(plan, before);
}

TEST(ApplyRangesText, CountsRowsByLineThroughQuotedLineBreaks) {
  Plan plan = MakePlan();
  ExpectError(ExitCode::kBadInput, "r.csv:4: expected the ID of a task", [&] {
    ApplyRangesText(plan, "id,min,likely,max\n\"A10\",\"1\n\",2,3\nZZ,1,2,3\n", "r.csv",
                    Shape::kTriangular);
  });
}

TEST(ApplyRangesCsv, SaysThatAFileCannotBeRead) {
  Plan plan = MakePlan();
  ExpectError(ExitCode::kFileTrouble, "none.csv: cannot be read",
              [&] { ApplyRangesCsv(plan, "/nowhere/none.csv", Shape::kTriangular); });
  ExpectError(ExitCode::kFileTrouble, "expected a file, found a folder",
              [&] { ApplyRangesCsv(plan, "/", Shape::kTriangular); });
}

}  // namespace
}  // namespace nimbrel::cli
