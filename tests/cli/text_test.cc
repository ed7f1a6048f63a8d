#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "nimbrel/command_line.h"
#include "nimbrel/finish_chart.h"
#include "nimbrel/json_text.h"
#include "nimbrel/progress_bar.h"
#include "nimbrel/text_table.h"

namespace nimbrel::cli {
namespace {

using engine::Instant;
using ::testing::HasSubstr;
using ::testing::Not;

Instant At(const std::string& text) {
  return engine::ParseIsoText(text);
}

TEST(TextTable, ColumnsAreAsWideAsTheirWidestCellAndLinesEndWithoutBlanks) {
  TextTable table({TextTable::Align::kLeft, TextTable::Align::kRight});
  table.AddRow({"Name", "n"});
  table.AddRule();
  table.AddRow({"Årnes", "1,000"});
  table.AddRow({"x"});
  EXPECT_EQ(table.Text(),
            "Name       n\n"
            "-----  -----\n"
            "Årnes  1,000\n"
            "x\n");
}

TEST(TextTable, ATextThatIsCutKeepsWholeCharacters) {
  EXPECT_EQ(CutTo("Årnes bru", 4), "Årn.");
  EXPECT_EQ(CutTo("Årnes", 5), "Årnes");
}

TEST(Numbers, ThousandsAreGrouped) {
  EXPECT_EQ(Grouped(0), "0");
  EXPECT_EQ(Grouped(999), "999");
  EXPECT_EQ(Grouped(1000), "1,000");
  EXPECT_EQ(Grouped(-1234567), "-1,234,567");
  EXPECT_EQ(Counted(1, "link", "links"), "1 link");
  EXPECT_EQ(Counted(1200, "link", "links"), "1,200 links");
}

TEST(Numbers, RoundingNeverGivesMinusNothing) {
  EXPECT_EQ(Rounded(12.345678, 2), 12.35);
  EXPECT_EQ(Json(Rounded(-0.001, 2)).dump(), "0.0");
}

TEST(JsonText, AMidnightIsTheBeginningOfItsDay) {
  EXPECT_EQ(DateText(Instant(At("2027-03-05").day(), 1440)), "2027-03-06T00:00");
  EXPECT_EQ(DateText(At("2027-03-05T17:00")), "2027-03-05T17:00");
  EXPECT_EQ(DateText(Instant()), "");
  EXPECT_EQ(DateJson(Instant()).dump(), "null");
}

TEST(JsonText, BytesThatAreNoTextAreReplaced) {
  EXPECT_THAT(JsonText(Json{{"name", "a\xff"}}), HasSubstr("\xEF\xBF\xBD"));
}

TEST(CsvField, QuotesWhatWouldBreakTheLine) {
  EXPECT_EQ(CsvField("A1010"), "A1010");
  EXPECT_EQ(CsvField("a,b"), "\"a,b\"");
  EXPECT_EQ(CsvField("say \"x\""), "\"say \"\"x\"\"\"");
}

TEST(FinishChart, CountsEachDayAndWhatHasFinishedByItsEnd) {
  const std::vector<Instant> finishes = {At("2027-03-05T17:00"), At("2027-03-05T12:00"),
                                         At("2027-03-08T17:00"), At("2027-03-06T00:00")};
  // 00:00 of the 6th ends the 5th, so that three of four finish on the 5th.
  EXPECT_EQ(FinishChart(finishes, {}, Terminal{.columns = 31}),
            "Finish on\n"
            "2027-03-05  ##########  75%\n"
            "2027-03-06              75%\n"
            "2027-03-07              75%\n"
            "2027-03-08  ####       100%\n");
}

TEST(FinishChart, PutsBothWaysOnTheSameDays) {
  const std::vector<Instant> with = {At("2027-03-06T17:00")};
  const std::vector<Instant> without = {At("2027-03-05T17:00")};
  EXPECT_EQ(FinishChart(with, without, Terminal{.columns = 48}),
            "Finish on   without weather  with weather\n"
            "2027-03-05  ########## 100%               0%\n"
            "2027-03-06             100%  ########## 100%\n");
}

TEST(FinishChart, ManyDaysAreTakenTogetherInAtMostTwentyLines) {
  std::vector<Instant> finishes;
  for (int day = 0; day < 400; ++day) {
    finishes.emplace_back(At("2027-03-01").day() + day, 600);
  }
  const std::string chart = FinishChart(finishes, {}, Terminal{});
  EXPECT_LE(std::count(chart.begin(), chart.end(), '\n'), 21);
  EXPECT_THAT(chart, HasSubstr("Finish by"));
  EXPECT_THAT(chart, HasSubstr(" 100%"));
}

TEST(FinishChart, BlockCharactersAreForTerminalsThatShowThem) {
  const std::vector<Instant> finishes = {At("2027-03-05T17:00")};
  EXPECT_THAT(FinishChart(finishes, {}, Terminal{.out_is_terminal = true, .utf8 = true}),
              HasSubstr("█"));
  EXPECT_THAT(FinishChart(finishes, {}, Terminal{.out_is_terminal = false, .utf8 = true}),
              Not(HasSubstr("█")));
}

TEST(FinishChart, WhatIsRareIsStillSeen) {
  std::vector<Instant> finishes(1000, At("2027-03-05T17:00"));
  finishes.push_back(At("2027-03-06T17:00"));
  EXPECT_THAT(FinishChart(finishes, {}, Terminal{}), HasSubstr("2027-03-06  #"));
}

TEST(ProgressLine, TellsIterationsRateAndTimeLeft) {
  // 250 of 1,000 in 5 seconds: 50 a second, 15 seconds to go.
  const std::string line = ProgressLine(250, 1000, 5, Terminal{.columns = 80});
  EXPECT_THAT(line, HasSubstr(" 25%  250 of 1,000  50/s  0:15 left"));
  EXPECT_THAT(line, HasSubstr("[##########.............................."));
  EXPECT_LE(DisplayWidth(line), 79U);
}

TEST(ProgressLine, FitsNarrowTerminals) {
  EXPECT_LE(DisplayWidth(ProgressLine(250, 1000, 5, Terminal{.columns = 40})), 40U);
}

class ProgressBarTest : public ::testing::Test {
 protected:
  std::ostringstream out_, err_;
  double now_ = 0;
};

TEST_F(ProgressBarTest, IsDrawnAtMostTenTimesASecondAndClearedInTheEnd) {
  Console console{out_, err_, Terminal{.err_is_terminal = true}};
  {
    ProgressBar bar(console, [this] { return now_; });
    for (int done = 1; done <= 100; ++done) {
      now_ = done * 0.01;
      bar.Show(done, 100);
    }
  }
  const std::string drawn = err_.str();
  const auto lines = std::count(drawn.begin(), drawn.end(), '\r') - 1;  // one clears
  EXPECT_GE(lines, 9);
  EXPECT_LE(lines, 10);
  EXPECT_TRUE(drawn.ends_with("\r\x1b[K"));
  EXPECT_EQ(out_.str(), "");
}

TEST_F(ProgressBarTest, IsNotDrawnWhereStandardErrorIsNoTerminal) {
  Console console{out_, err_, Terminal{}};
  {
    ProgressBar bar(console, [this] { return now_ += 1; });
    bar.Show(1, 2);
  }
  EXPECT_EQ(err_.str(), "");
}

}  // namespace
}  // namespace nimbrel::cli
