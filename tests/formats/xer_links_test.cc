// Links of XER files, within a project and out of it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/formats/reading.h"
#include "tests/formats/xer_text.h"

namespace nimbrel::engine {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

ReadResult Read(const XerText& text, const ReadOptions& options = {}) {
  return ReadXer(text.Text(), "dock.xer", options);
}
std::string FailureOf(const XerText& text) {
  return ErrorOf([&] { Read(text); });
}

XerText OneTask() {
  return XerText().Project().Calendar().Task("100", "A1");
}

XerText TwoProjects() {
  XerText text;
  text.Project().Project({{"proj_id", "2"}, {"proj_short_name", "QUAY"}}).Calendar();
  text.Task("100", "A1").Task("200", "A1", {{"proj_id", "2"}, {"task_name", "Other"}});
  return text;
}

TEST(XerLinks, LinksOfEveryTypeWithLag) {
  XerText text = OneTask();
  text.Task("101", "A2").Link("100", "101", "PR_FS", "-16").Link("100", "101", "PR_SS", "4");
  text.Link("100", "101", "PR_FF").Link("100", "101", "PR_SF");
  const Plan plan = Read(text).plan;
  const Uid from = TaskOf(plan, "A1").uid;
  const Uid to = TaskOf(plan, "A2").uid;
  EXPECT_THAT(plan.links,
              ElementsAre(Link{from, to, LinkType::kFinishToStart, -960, LagCalendar::kPredecessor},
                          Link{from, to, LinkType::kStartToStart, 240, LagCalendar::kPredecessor},
                          Link{from, to, LinkType::kFinishToFinish, 0, LagCalendar::kPredecessor},
                          Link{from, to, LinkType::kStartToFinish, 0, LagCalendar::kPredecessor}));
}

TEST(XerLinks, LinksOutOfTheProjectAreCounted) {
  XerText text = TwoProjects();
  text.Link("200", "100", "PR_FS").Link("100", "200", "PR_FS").Link("100", "999", "PR_FS");
  text.Link("200", "300", "PR_FS");
  const ReadResult result = Read(text, {.project = "DOCK", .time_unit = TimeUnit::kDays});
  EXPECT_THAT(result.plan.links, IsEmpty());
  EXPECT_EQ(CountOf(result, "links to activities of other projects"), 2);
  EXPECT_EQ(CountOf(result, "links to activities that are not in the file"), 1);
}

TEST(XerLinks, LinksToOtherProjectsHoldAtTheDatesThatTheFileHas) {
  XerText text = TwoProjects();
  text.Task("201", "B1",
            {{"proj_id", "2"},
             {"early_start_date", "2027-03-10 08:00"},
             {"early_end_date", "2027-03-17 00:00"},
             {"late_start_date", "2027-04-12 00:00"},
             {"late_end_date", "2027-04-16 17:00"}});
  const auto constraint = [&text](const std::string& from, const std::string& to,
                                  const std::string& type) {
    XerText linked = text;
    const ReadResult result =
        Read(linked.Link(from, to, type), {.project = "DOCK", .time_unit = TimeUnit::kDays});
    EXPECT_EQ(CountOf(result, "kept as constraints at their dates"), 1) << type;
    return TaskOf(result.plan, "A1").constraint;
  };
  EXPECT_EQ(constraint("201", "100", "PR_FS"),
            (Constraint{ConstraintType::kStartNoEarlier, At("2027-03-17 00:00")}));
  EXPECT_EQ(constraint("201", "100", "PR_SS"),
            (Constraint{ConstraintType::kStartNoEarlier, At("2027-03-10 08:00")}));
  EXPECT_EQ(constraint("201", "100", "PR_FF"),
            (Constraint{ConstraintType::kFinishNoEarlier, At("2027-03-16 24:00")}));
  EXPECT_EQ(constraint("201", "100", "PR_SF"),
            (Constraint{ConstraintType::kFinishNoEarlier, At("2027-03-10 08:00")}));
  EXPECT_EQ(constraint("100", "201", "PR_FS"),
            (Constraint{ConstraintType::kFinishNoLater, At("2027-04-11 24:00")}));
  EXPECT_EQ(constraint("100", "201", "PR_SS"),
            (Constraint{ConstraintType::kStartNoLater, At("2027-04-12 00:00")}));
  EXPECT_EQ(constraint("100", "201", "PR_FF"),
            (Constraint{ConstraintType::kFinishNoLater, At("2027-04-16 17:00")}));
  EXPECT_EQ(constraint("100", "201", "PR_SF"),
            (Constraint{ConstraintType::kStartNoLater, At("2027-04-16 17:00")}));
}

TEST(XerLinks, LagsOfLinksToOtherProjectsRunOnTheCalendarOfLags) {
  // B1 works around the clock and finishes on Friday 12 March at 17:00, early and late; A1 works
  // five days of eight hours.
  XerText text = TwoProjects();
  const std::string day = XerText::Shift("00:00", "00:00");
  text.Calendar({{"clndr_id", "12"},
                 {"clndr_name", "Clock"},
                 {"default_flag", "N"},
                 {"clndr_data", XerText::Data({day, day, day, day, day, day, day})}});
  text.Task("201", "B1",
            {{"proj_id", "2"},
             {"clndr_id", "12"},
             {"early_end_date", "2027-03-12 17:00"},
             {"late_start_date", "2027-03-12 17:00"}});
  const auto constraint = [&text](const std::string& from, const std::string& to,
                                  const std::string& calendar) {
    XerText linked = text;
    linked.Link(from, to, "PR_FS", "16");
    linked.Row("SCHEDOPTIONS",
               {{"proj_id", "1"}, {"sched_calendar_on_relationship_lag", calendar}});
    return TaskOf(Read(linked, {.project = "DOCK", .time_unit = TimeUnit::kDays}).plan, "A1")
        .constraint.date;
  };
  EXPECT_EQ(constraint("201", "100", "rcal_Predecessor"), At("2027-03-13 09:00"));
  EXPECT_EQ(constraint("201", "100", "rcal_Successor"), At("2027-03-16 17:00"));
  EXPECT_EQ(constraint("201", "100", "rcal_ProjDefault"), At("2027-03-16 17:00"));
  EXPECT_EQ(constraint("201", "100", "rcal_24Hour"), At("2027-03-13 09:00"));
  EXPECT_EQ(constraint("100", "201", "rcal_Predecessor"), At("2027-03-11 08:00"));
  EXPECT_EQ(constraint("100", "201", "rcal_Successor"), At("2027-03-12 01:00"));
}

TEST(XerLinks, AFinishedActivityOfAnotherProjectHoldsNothing) {
  XerText text = TwoProjects();
  text.Task("201", "B1",
            {{"proj_id", "2"},
             {"status_code", "TK_Complete"},
             {"act_start_date", "2027-02-01 08:00"},
             {"act_end_date", "2027-02-26 17:00"}});
  const ReadResult result = Read(text.Link("201", "100", "PR_FS", "80"),
                                 {.project = "DOCK", .time_unit = TimeUnit::kDays});
  EXPECT_EQ(TaskOf(result.plan, "A1").constraint, Constraint{});
}

TEST(XerLinks, BadLinksAreRefused) {
  EXPECT_EQ(FailureOf(OneTask().Link("100", "100", "PR_FS")),
            "dock.xer:13: expected another activity than the link's own in pred_task_id, found "
            "\"100\"");
  EXPECT_THAT(FailureOf(OneTask().Task("101", "A2").Link("100", "101", "FS")),
              HasSubstr("dock.xer:14: expected PR_FS, PR_SS, PR_FF or PR_SF in pred_type"));
}

TEST(XerLinks, LateDatesOfAllProjectsStartFromTheLastOfThem) {
  for (const auto& [flag, finish] : {std::pair("N", "2027-09-30 17:00"), std::pair("Y", "")}) {
    XerText text;
    text.Project({{"scd_end_date", "2027-06-30 17:00"}})
        .Project(
            {{"proj_id", "2"}, {"proj_short_name", "QUAY"}, {"scd_end_date", "2027-09-30 17:00"}});
    text.Calendar().Task("100", "A1");
    text.Row("SCHEDOPTIONS", {{"proj_id", "1"}, {"sched_use_project_end_date_for_float", flag}});
    EXPECT_EQ(
        Read(text, {.project = "DOCK", .time_unit = TimeUnit::kDays}).plan.schedule.must_finish,
        At(finish))
        << flag;
    EXPECT_TRUE(Read(text, {.project = "QUAY", .time_unit = TimeUnit::kDays})
                    .plan.schedule.must_finish.IsAbsent());
  }
}

}  // namespace
}  // namespace nimbrel::engine
