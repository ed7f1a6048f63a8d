// Plans that are kept beside the checkout, of which the project has no copies.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/formats/reading.h"

namespace nimbrel::engine {
namespace {

using ::testing::HasSubstr;
using ::testing::SizeIs;

class SharedPlans : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!std::filesystem::is_directory(Folder())) {
      GTEST_SKIP() << "no plans at " << Folder();
    }
  }
  static std::filesystem::path Folder() {
    return std::filesystem::path(NIMBREL_SOURCE_DIR) / ".." / "shared" / "data" / "plans";
  }
  static ReadResult Read(const std::string& file, const ReadOptions& options = {}) {
    return ReadPlanFile(Folder() / file, options);
  }
};

TEST_F(SharedPlans, EveryPlanIsReadAndOnlyTheMalformedOneRefused) {
  int files = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(Folder())) {
    const std::filesystem::path& path = entry.path();
    if (path.extension() != ".xer" && path.extension() != ".xml") {
      continue;
    }
    ++files;
    const auto read = [&path] {
      for (const std::string& project : ListProjects(path)) {
        const ReadResult result =
            ReadPlanFile(path, {.project = project, .time_unit = TimeUnit::kDays});
        EXPECT_FALSE(result.plan.start.IsAbsent()) << path;
        EXPECT_NE(result.plan.FindCalendar(result.plan.default_calendar), nullptr) << path;
      }
    };
    if (path.filename() == "invalid-8.4.xer") {
      EXPECT_EQ(ErrorOf(read),
                "invalid-8.4.xer:33: expected \")\" in the calendar's data, found "
                "the end of the calendar of \"Test - Invalid\"");
    } else {
      EXPECT_EQ(ErrorOf(read), "no error") << path;
    }
  }
  EXPECT_GT(files, 0);
}

TEST_F(SharedPlans, TheXerCasesAreThirteenProjects) {
  const std::vector<std::string> projects =
      ListProjects(Folder() / "xer-cases" / "cases-import.xer");
  EXPECT_THAT(projects, SizeIs(13));
  const ReadResult result =
      Read("xer-cases/cases-import.xer", {.project = "XV13", .time_unit = TimeUnit::kDays});
  EXPECT_EQ(TaskOf(result.plan, "B").constraint.type, ConstraintType::kAsLateAsPossible);
  EXPECT_EQ(TaskOf(result.plan, "C").constraint,
            (Constraint{ConstraintType::kFinishNoLater, At("2026-02-28 08:00")}));
  EXPECT_THAT(result.plan.links, SizeIs(2));
  EXPECT_THAT(ErrorOf([] { Read("xer-cases/cases-import.xer"); }),
              HasSubstr("found XV01, XV02, XV03"));
}

TEST_F(SharedPlans, TheHolidaysOfACalendarAreReadAsSerialDays) {
  const ReadResult result =
      Read("xer-cases/cases-import.xer", {.project = "XV07", .time_unit = TimeUnit::kDays});
  const CalendarDefinition* calendar = result.plan.FindCalendar("XVAL-CA_ON");
  ASSERT_NE(calendar, nullptr);
  EXPECT_EQ(result.plan.default_calendar, calendar->uid);
  EXPECT_TRUE(PatternOn(*calendar, At("2026-12-25").day()).empty());
  EXPECT_EQ(MinutesOf(PatternOn(*calendar, At("2026-12-23").day())), 480);
}

TEST_F(SharedPlans, TheFourLagCalendarsAreToldApart) {
  for (const auto& [file, lag] :
       {std::pair("PredecessorCalendar.xer", LagCalendar::kPredecessor),
        std::pair("SuccessorCalendar.xer", LagCalendar::kSuccessor),
        std::pair("ProjectDefaultCalendar.xer", LagCalendar::kPlanDefault),
        std::pair("TwentyFourHourCalendar.xer", LagCalendar::kElapsed)}) {
    const ReadResult result = Read(std::string("xer-calendars/") + file);
    EXPECT_EQ(result.plan.title, "TEST PROJECT");
    for (const Link& link : result.plan.links) {
      EXPECT_EQ(link.lag_calendar, lag) << file;
    }
  }
}

TEST_F(SharedPlans, PercentagesOfEveryKindAreRead) {
  const Plan plan = Read("xer-calendars/percent-complete-8.4.xer").plan;
  for (const Task& task : plan.tasks()) {
    // The names end with the percentage that the activity is meant to show.
    const std::size_t space = task.description.rfind(' ');
    if (task.kind == TaskKind::kTask && task.description.ends_with('%')) {
      EXPECT_DOUBLE_EQ(task.percent_complete, std::stod(task.description.substr(space))) << task.id;
    }
  }
}

TEST_F(SharedPlans, ExceptionsRecurUpToTheirLastDay) {
  const Plan plan = Read("mspdi/calendar-recurring-exceptions-project2016-mspdi.xml").plan;
  const CalendarDefinition* calendar = plan.FindCalendar("Standard");
  ASSERT_NE(calendar, nullptr);
  // Each recurring exception of the file ends on the day on which it falls for the last time.
  for (const char* last : {"2000-01-03", "2000-02-10", "2001-10-27", "2002-03-17", "2002-05-06",
                           "2004-02-26", "2005-01-28", "2007-05-13", "2005-02-04", "2007-03-06",
                           "2009-05-21", "2007-02-01", "2009-04-03", "2010-03-06"}) {
    EXPECT_TRUE(calendar->exceptions.contains(At(last).day())) << last;
    EXPECT_FALSE(calendar->exceptions.contains(At(last).day() + 1)) << last;
  }
  EXPECT_GT(MinutesOf(PatternOn(*calendar, At("2010-03-06").day())), 0);  // a worked Saturday
}

TEST_F(SharedPlans, TwoResourcesOnTwoShiftsWorkSixteenHoursADay) {
  const Plan plan = Read("mspdi/sample.xml").plan;
  const CalendarDefinition* both = plan.FindCalendar(TaskOf(plan, "2").calendar);
  ASSERT_NE(both, nullptr);
  EXPECT_EQ(MinutesOf(both->week[2]), 960);
}

}  // namespace
}  // namespace nimbrel::engine
