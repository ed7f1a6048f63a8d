#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "tests/formats/reading.h"
#include "tests/formats/xer_text.h"

namespace nimbrel::engine {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

ReadResult Read(const std::string& text, const ReadOptions& options = {}) {
  return ReadXer(text, "dock.xer", options);
}
ReadResult Read(const XerText& text, const ReadOptions& options = {}) {
  return Read(text.Text(), options);
}
std::string FailureOf(const XerText& text, const ReadOptions& options = {}) {
  return ErrorOf([&] { Read(text, options); });
}
std::string FailureOf(const std::string& text) {
  return ErrorOf([&] { Read(text); });
}

XerText OneTask(const Fields& fields = {}) {
  return XerText().Project().Calendar().Task("100", "A1", fields);
}

/// The only activity of a file that differs from the usual one in some fields.
Task ReadTask(const Fields& fields) {
  return TaskOf(Read(OneTask(fields)).plan, "A1");
}

// The file and its rows.

TEST(XerReader, LinesMayEndEitherWay) {
  const XerText text = OneTask();
  EXPECT_EQ(Read(text.Text("\r\n")).plan, Read(text.Text("\n")).plan);
}

TEST(XerReader, BytesThatAreNoUtf8AreWindows1252) {
  const std::string name =
      "Gr\xFC\xDF"
      "e \x80 \x96 \x81";  // as Windows-1252
  const Plan plan = Read(OneTask({{"task_name", name}})).plan;
  EXPECT_EQ(TaskOf(plan, "A1").description, "Gr\u00FC\u00DFe \u20AC \u2013 \uFFFD");
}

TEST(XerReader, Utf8StaysAsItIsWithOrWithoutAMark) {
  const XerText text = OneTask({{"task_name", "Pf\u00E4hle \u041C\u043E\u0441\u0442"}});
  const Plan plan = Read("\xEF\xBB\xBF" + text.Text()).plan;
  EXPECT_EQ(TaskOf(plan, "A1").description, "Pf\u00E4hle \u041C\u043E\u0441\u0442");
  EXPECT_EQ(plan, Read(text).plan);
}

TEST(XerReader, ARowMayLeaveOutItsLastEmptyFields) {
  const std::string text =
      "ERMHDR\t1\n%T\tPROJECT\n%F\tproj_id\tproj_short_name\tlast_recalc_date\tplan_end_date\n"
      "%R\t1\tDOCK\t2027-03-01 08:00\n%E\n";
  EXPECT_EQ(Read(text).plan.start, At("2027-03-01 08:00"));
}

TEST(XerReader, AFieldMayGoOnInTheNextLines) {
  std::string data = XerText::FiveDays();
  data.insert(data.find("(0||3"), "\n  ");
  XerText text = XerText().Project().Calendar({{"clndr_data", data}}).Task("100", "A1");
  EXPECT_EQ(Read(text).plan, Read(OneTask()).plan);
}

TEST(XerReader, AFileThatEndsWithinARowIsRefused) {
  const std::string text = OneTask().Text("\n", false);
  const std::string cut = text.substr(0, text.rfind('\t', text.rfind('\t') - 1));
  EXPECT_EQ(FailureOf(cut), "dock.xer:10: expected 9 fields, found 7 before the end of the file");
}

TEST(XerReader, AFileWithoutEndMarkIsReadWithAWarning) {
  const ReadResult result = Read(OneTask().Text("\n", false));
  EXPECT_EQ(CountOf(result, "without an end mark"), 1);
  EXPECT_EQ(CountOf(Read(OneTask()), "without an end mark"), 0);
}

TEST(XerReader, WhatIsNoXerFileIsRefused) {
  EXPECT_EQ(FailureOf(std::string()),
            "dock.xer:1: expected a file that starts with ERMHDR, found nothing");
  EXPECT_EQ(FailureOf(std::string("PK\x03\x04")),
            "dock.xer:1: expected a file that starts with ERMHDR, found \"PK  \"");
  EXPECT_EQ(FailureOf(std::string("ERMHDR\t1\n")),
            "dock.xer:1: expected tables, found the end of the file");
  EXPECT_EQ(FailureOf(std::string("ERMHDR\t1\nTASK\n")),
            "dock.xer:2: expected a line that starts with %T, %F, %R or %E, found \"TASK\"");
  EXPECT_THAT(FailureOf(std::string("ERMHDR\t1\n%R\t1\n")), StartsWith("dock.xer:2: expected"));
  EXPECT_THAT(FailureOf(std::string("ERMHDR\t1\n%F\ta\n")), StartsWith("dock.xer:2: expected"));
  EXPECT_THAT(FailureOf(std::string("ERMHDR\t1\n%T\n")), StartsWith("dock.xer:2: expected"));
}

TEST(XerReader, ARowWithMoreFieldsThanNamesIsRefused) {
  EXPECT_EQ(FailureOf("ERMHDR\t1\n%T\tPROJECT\n%F\tproj_id\n%R\t1\t2\n%E\n"),
            "dock.xer:4: expected at most 1 fields, found 2");
}

// The project.

TEST(XerReader, ThePlanIsCalledAsItsProject) {
  const Plan plan = Read(OneTask().Row("PROJWBS", {{"wbs_id", "5"},
                                                   {"proj_id", "1"},
                                                   {"proj_node_flag", "Y"},
                                                   {"wbs_short_name", "DOCK"},
                                                   {"wbs_name", "Dock wall"}}))
                        .plan;
  EXPECT_EQ(plan.name, "DOCK");
  EXPECT_EQ(plan.title, "Dock wall");
  EXPECT_EQ(TaskOf(plan, "DOCK").description, "Dock wall");
}

TEST(XerReader, TheProjectGivesStartDataDateAndCriticalFloat) {
  const Plan plan = Read(XerText().Calendar().Project({{"plan_start_date", "2027-01-04 08:00"},
                                                       {"last_recalc_date", "2027-02-01 17:00"},
                                                       {"critical_drtn_hr_cnt", "16"},
                                                       {"critical_path_type", "CT_DrivPath"}}))
                        .plan;
  EXPECT_EQ(plan.start, At("2027-01-04 08:00"));
  EXPECT_EQ(plan.data_date, At("2027-02-01 17:00"));
  EXPECT_EQ(plan.schedule.critical_float_minutes, 960);
  EXPECT_TRUE(plan.schedule.critical_by_longest_path);
  EXPECT_TRUE(plan.schedule.must_finish.IsAbsent());
}

TEST(XerReader, TheProjectsFinishCountsUnlessItsFlagSaysNo) {
  const XerText text = XerText().Calendar().Project({{"plan_end_date", "2027-12-24 00:00"}});
  EXPECT_EQ(Read(text).plan.schedule.must_finish, At("2027-12-23 24:00"));
  for (const auto& [flag, counts] : {std::pair("Y", true), std::pair("N", false)}) {
    XerText flagged = text;
    flagged.Row("SCHEDOPTIONS", {{"proj_id", "1"}, {"sched_use_project_end_date_for_float", flag}});
    EXPECT_EQ(Read(flagged).plan.schedule.must_finish.IsAbsent(), !counts) << flag;
  }
}

TEST(XerReader, AProjectWithoutAnyDateIsRefused) {
  EXPECT_EQ(FailureOf(XerText().Project({{"plan_start_date", ""}, {"last_recalc_date", ""}})),
            "dock.xer:4: expected a date here or in last_recalc_date in plan_start_date, found "
            "nothing");
}

TEST(XerReader, SchedulingOptionsComeFromTheProjectsOwnRow) {
  XerText text = OneTask();
  text.Row("SCHEDOPTIONS", {{"proj_id", "2"}, {"sched_progress_override", "Y"}});
  text.Row("SCHEDOPTIONS", {{"proj_id", "1"},
                            {"sched_float_type", "FT_MIN"},
                            {"sched_lag_early_start_flag", "N"},
                            {"sched_open_critical_flag", "Y"}});
  const ScheduleOptions schedule = Read(text).plan.schedule;
  EXPECT_EQ(schedule.progress, ProgressRule::kRetainedLogic);
  EXPECT_EQ(schedule.total_float, FloatRule::kSmaller);
  EXPECT_FALSE(schedule.lag_from_early_start);
  EXPECT_TRUE(schedule.open_ends_critical);
}

TEST(XerReader, ProgressRules) {
  for (const auto& [retained, overrides, rule] :
       {std::tuple("Y", "N", ProgressRule::kRetainedLogic),
        std::tuple("N", "Y", ProgressRule::kProgressOverride),
        std::tuple("N", "N", ProgressRule::kActualDates)}) {
    XerText text = OneTask();
    text.Row("SCHEDOPTIONS", {{"proj_id", "1"},
                              {"sched_retained_logic", retained},
                              {"sched_progress_override", overrides}});
    EXPECT_EQ(Read(text).plan.schedule.progress, rule) << retained << overrides;
  }
}

TEST(XerReader, LagsRunOnTheCalendarThatTheOptionsName) {
  for (const auto& [name, calendar] : {std::pair("rcal_Predecessor", LagCalendar::kPredecessor),
                                       std::pair("rcal_Successor", LagCalendar::kSuccessor),
                                       std::pair("rcal_ProjDefault", LagCalendar::kPlanDefault),
                                       std::pair("rcal_24Hour", LagCalendar::kElapsed),
                                       std::pair("", LagCalendar::kPredecessor)}) {
    XerText text = OneTask();
    text.Task("101", "A2").Link("100", "101", "PR_FS", "8");
    text.Row("SCHEDOPTIONS", {{"proj_id", "1"}, {"sched_calendar_on_relationship_lag", name}});
    EXPECT_EQ(Read(text).plan.links.at(0).lag_calendar, calendar) << name;
  }
}

XerText TwoProjects() {
  XerText text;
  text.Project().Project({{"proj_id", "2"}, {"proj_short_name", "QUAY"}}).Calendar();
  text.Task("100", "A1").Task("200", "A1", {{"proj_id", "2"}, {"task_name", "Other"}});
  return text;
}

TEST(XerReader, AFileOfSeveralProjectsNeedsAName) {
  EXPECT_EQ(FailureOf(TwoProjects()),
            "dock.xer:5: expected one project or the name of one, found DOCK, QUAY");
  EXPECT_EQ(FailureOf(TwoProjects(), {.project = "PIER", .time_unit = TimeUnit::kDays}),
            "dock.xer:4: expected the project \"PIER\", found DOCK, QUAY");
}

TEST(XerReader, OneProjectOfSeveralIsReadAlone) {
  const ReadResult result = Read(TwoProjects(), {.project = "quay", .time_unit = TimeUnit::kHours});
  EXPECT_EQ(result.plan.name, "QUAY");
  EXPECT_EQ(result.plan.time_unit, TimeUnit::kHours);
  EXPECT_EQ(TaskOf(result.plan, "A1").description, "Other");
  EXPECT_EQ(result.plan.tasks().size(), 2u);
  EXPECT_EQ(CountOf(result, "other projects"), 1);
}

TEST(XerReader, ProjectsThatOnlyComeAlongAreNoChoice) {
  XerText text;
  text.Project({{"export_flag", "Y"}})
      .Project({{"proj_id", "2"}, {"proj_short_name", "OLD"}, {"export_flag", "N"}})
      .Project({{"proj_id", "3"}, {"proj_short_name", "EPS"}, {"project_flag", "N"}});
  EXPECT_EQ(Read(text.Calendar()).plan.name, "DOCK");
}

// The breakdown structure.

XerText WithNodes() {
  XerText text = XerText().Project().Calendar();
  const auto node = [&text](const std::string& key, const std::string& parent,
                            const std::string& code, const std::string& sequence,
                            const std::string& top) {
    text.Row("PROJWBS", {{"wbs_id", key},
                         {"proj_id", "1"},
                         {"parent_wbs_id", parent},
                         {"wbs_short_name", code},
                         {"wbs_name", "Node " + code},
                         {"seq_num", sequence},
                         {"proj_node_flag", top}});
  };
  node("3", "1", "B", "20", "N");
  node("1", "99", "DOCK", "1", "Y");
  node("2", "1", "A", "10", "N");
  node("4", "2", "A", "10", "N");
  return text;
}

TEST(XerReader, NodesBecomeSummariesNamedByTheirPath) {
  XerText text = WithNodes();
  text.Task("100", "T1", {{"wbs_id", "3"}}).Task("101", "T2", {{"wbs_id", "4"}});
  const Plan plan = Read(text).plan;
  std::vector<std::string> ids;
  for (const Task& task : plan.tasks()) {
    ids.push_back(task.id);
  }
  EXPECT_THAT(ids, ElementsAre("DOCK", "DOCK.A", "DOCK.A.A", "T2", "DOCK.B", "T1"));
  EXPECT_EQ(TaskOf(plan, "DOCK.A.A").kind, TaskKind::kSummary);
  EXPECT_EQ(TaskOf(plan, "DOCK.A.A").description, "Node A");
  EXPECT_EQ(TaskOf(plan, "T2").parent, TaskOf(plan, "DOCK.A.A").uid);
  EXPECT_EQ(TaskOf(plan, "DOCK.A.A").parent, TaskOf(plan, "DOCK.A").uid);
  EXPECT_EQ(TaskOf(plan, "DOCK.A").parent, TaskOf(plan, "DOCK").uid);
  EXPECT_EQ(TaskOf(plan, "DOCK").parent, 0);
}

TEST(XerReader, ANodeGivesWayToAnActivityWithItsPath) {
  XerText text = WithNodes();
  const Plan plan = Read(text.Task("100", "dock.a", {{"wbs_id", "4"}})).plan;
  EXPECT_EQ(TaskOf(plan, "DOCK.A").kind, TaskKind::kTask);
  EXPECT_EQ(TaskOf(plan, "DOCK.A (2)").kind, TaskKind::kSummary);
}

TEST(XerReader, ActivitiesInUnknownNodesStandUnderTheProject) {
  const ReadResult result = Read(WithNodes().Task("100", "T1", {{"wbs_id", "77"}}));
  EXPECT_EQ(TaskOf(result.plan, "T1").parent, TaskOf(result.plan, "DOCK").uid);
  EXPECT_EQ(CountOf(result, "a node that is not in the file"), 1);
}

TEST(XerReader, NodesWithinEachOtherInACircleAreRefused) {
  XerText text = WithNodes();
  text.Row("PROJWBS", {{"wbs_id", "6"}, {"proj_id", "1"}, {"parent_wbs_id", "7"}});
  text.Row("PROJWBS", {{"wbs_id", "7"}, {"proj_id", "1"}, {"parent_wbs_id", "6"}});
  EXPECT_THAT(FailureOf(text), HasSubstr("dock.xer:14: expected a breakdown structure of at most"));
}

TEST(XerReader, AnActivityThatSpansItsNodeBecomesTheSummaryOfAllElseInIt) {
  XerText text = WithNodes();
  text.Task("100", "T1", {{"wbs_id", "2"}})
      .Task("101", "SPAN", {{"wbs_id", "2"}, {"task_type", "TT_WBS"}})
      .Task("102", "T2", {{"wbs_id", "4"}});
  const ReadResult result = Read(text);
  const Plan& plan = result.plan;
  EXPECT_EQ(TaskOf(plan, "SPAN").kind, TaskKind::kSummary);
  EXPECT_EQ(TaskOf(plan, "SPAN").parent, TaskOf(plan, "DOCK.A").uid);
  EXPECT_EQ(TaskOf(plan, "SPAN").remaining_minutes, 0);
  EXPECT_EQ(TaskOf(plan, "T1").parent, TaskOf(plan, "SPAN").uid);
  EXPECT_EQ(TaskOf(plan, "DOCK.A.A").parent, TaskOf(plan, "SPAN").uid);
  EXPECT_EQ(CountOf(result, "span a node"), 1);
}

// Activities.

TEST(XerReader, DurationsAreMinutesFromHours) {
  const Task task = ReadTask({{"target_drtn_hr_cnt", "80"}, {"remain_drtn_hr_cnt", "13.3333"}});
  EXPECT_EQ(task.original_minutes, 4800);
  EXPECT_EQ(task.remaining_minutes, 800);
  EXPECT_EQ(ReadTask({{"remain_drtn_hr_cnt", "7,5"}}).remaining_minutes, 450);
  EXPECT_EQ(ReadTask({{"target_drtn_hr_cnt", "24"}, {"remain_drtn_hr_cnt", ""}}).remaining_minutes,
            1440);
}

TEST(XerReader, AbsurdDurationsAreRefused) {
  EXPECT_EQ(FailureOf(OneTask({{"remain_drtn_hr_cnt", "-1"}})),
            "dock.xer:10: expected hours of 0 or more in remain_drtn_hr_cnt, found \"-1\"");
  EXPECT_EQ(FailureOf(OneTask({{"target_drtn_hr_cnt", "1753201"}})),
            "dock.xer:10: expected hours that are no more than 200 years in target_drtn_hr_cnt, "
            "found \"1753201\"");
  for (const char* text : {"x", "1.2.3", "1e999", "nan", "1,000,5", "0x10", "--1"}) {
    EXPECT_THAT(FailureOf(OneTask({{"remain_drtn_hr_cnt", text}})),
                HasSubstr("expected a number in remain_drtn_hr_cnt"))
        << text;
  }
}

TEST(XerReader, TypesOfActivities) {
  EXPECT_EQ(ReadTask({{"task_type", "TT_Task"}}).kind, TaskKind::kTask);
  EXPECT_EQ(ReadTask({{"task_type", "TT_LOE"}}).kind, TaskKind::kLevelOfEffort);
  const Task start = ReadTask({{"task_type", "TT_Mile"}});
  EXPECT_EQ(start.kind, TaskKind::kStartMilestone);
  EXPECT_EQ(start.remaining_minutes, 0);
  EXPECT_EQ(ReadTask({{"task_type", "TT_FinMile"}}).kind, TaskKind::kFinishMilestone);
  EXPECT_THAT(FailureOf(OneTask({{"task_type", "TT_Other"}})),
              HasSubstr("dock.xer:10: expected a type of activity in task_type"));
}

TEST(XerReader, IdsAreUniqueWithoutRegardToCase) {
  EXPECT_EQ(FailureOf(OneTask().Task("101", "a1")),
            "dock.xer:11: expected an activity ID that no other activity of the project has in "
            "task_code, found \"a1\"");
  EXPECT_THAT(FailureOf(OneTask().Task("100", "A2")), HasSubstr("dock.xer:11: expected a key"));
  EXPECT_EQ(FailureOf(OneTask().Task("101", "")),
            "dock.xer:11: expected a value in task_code, found nothing");
}

TEST(XerReader, AnActivityInProgressHasItsActualStartAndWhatRemains) {
  const Task task = ReadTask({{"status_code", "TK_Active"},
                              {"act_start_date", "2027-02-22 08:00"},
                              {"remain_drtn_hr_cnt", "10"},
                              {"complete_pct_type", "CP_Drtn"},
                              {"suspend_date", "2027-02-24 08:00"},
                              {"resume_date", "2027-03-08 08:00"}});
  EXPECT_EQ(task.actual_start, At("2027-02-22 08:00"));
  EXPECT_FALSE(task.IsFinished());
  EXPECT_EQ(task.remaining_minutes, 600);
  EXPECT_DOUBLE_EQ(task.percent_complete, 75);  // 30 of 40 hours
  EXPECT_EQ(task.suspended, At("2027-02-24 08:00"));
  EXPECT_EQ(task.resumed, At("2027-03-08 08:00"));
}

TEST(XerReader, PercentCompleteIsOfItsOwnKind) {
  EXPECT_DOUBLE_EQ(
      ReadTask({{"complete_pct_type", "CP_Phys"}, {"phys_complete_pct", "35"}}).percent_complete,
      35);
  EXPECT_DOUBLE_EQ(
      ReadTask(
          {{"complete_pct_type", "CP_Units"}, {"act_work_qty", "30"}, {"remain_work_qty", "10"}})
          .percent_complete,
      75);
  EXPECT_DOUBLE_EQ(ReadTask({{"complete_pct_type", "CP_Drtn"}}).percent_complete, 0);
}

TEST(XerReader, ACompleteActivityHasNothingLeft) {
  const Task task = ReadTask({{"status_code", "TK_Complete"},
                              {"act_start_date", "2027-02-01 08:00"},
                              {"act_end_date", "2027-02-06 00:00"}});
  EXPECT_EQ(task.actual_finish, At("2027-02-05 24:00"));
  EXPECT_EQ(task.remaining_minutes, 0);
  EXPECT_EQ(task.percent_complete, 100);
}

TEST(XerReader, AMilestoneIsDoneAtItsOneActualDate) {
  const Task start = ReadTask({{"task_type", "TT_Mile"},
                               {"status_code", "TK_Complete"},
                               {"act_start_date", "2027-02-01 08:00"}});
  EXPECT_TRUE(IsSameMoment(start.actual_finish, At("2027-02-01 08:00")));
  const Task finish = ReadTask({{"task_type", "TT_FinMile"},
                                {"status_code", "TK_Complete"},
                                {"act_end_date", "2027-02-05 17:00"}});
  EXPECT_EQ(finish.actual_start, At("2027-02-05 17:00"));
}

TEST(XerReader, ProgressWithoutDatesHappenedAtTheDataDate) {
  const ReadResult complete = Read(OneTask({{"status_code", "TK_Complete"}}));
  EXPECT_EQ(TaskOf(complete.plan, "A1").actual_finish, At("2027-03-01 08:00"));
  EXPECT_EQ(CountOf(complete, "without an actual finish"), 1);
  const ReadResult active = Read(OneTask({{"status_code", "TK_Active"}}));
  EXPECT_EQ(TaskOf(active.plan, "A1").actual_start, At("2027-03-01 08:00"));
  EXPECT_EQ(CountOf(active, "without an actual start"), 1);
}

TEST(XerReader, AnActualFinishBeforeTheStartTakesTheStartWithIt) {
  const ReadResult result = Read(OneTask({{"status_code", "TK_Complete"},
                                          {"act_start_date", "2027-02-10 08:00"},
                                          {"act_end_date", "2027-02-09 17:00"}}));
  EXPECT_EQ(TaskOf(result.plan, "A1").actual_start, At("2027-02-09 17:00"));
  EXPECT_EQ(CountOf(result, "finished before they started"), 1);
}

TEST(XerReader, TheStatusSaysWhichActualDatesHaveCome) {
  const ReadResult waiting = Read(OneTask({{"act_start_date", "2027-02-10 08:00"}}));
  EXPECT_FALSE(TaskOf(waiting.plan, "A1").IsStarted());
  EXPECT_EQ(CountOf(waiting, "have not come yet"), 1);
  const ReadResult active = Read(OneTask({{"status_code", "TK_Active"},
                                          {"act_start_date", "2027-02-10 08:00"},
                                          {"act_end_date", "2027-02-19 17:00"}}));
  EXPECT_TRUE(TaskOf(active.plan, "A1").IsStarted());
  EXPECT_FALSE(TaskOf(active.plan, "A1").IsFinished());
  EXPECT_EQ(TaskOf(active.plan, "A1").remaining_minutes, 40 * 60);
}

TEST(XerReader, DatesOutsideTheYearsOfAPlanAreRefused) {
  for (const char* date : {"1949-12-31 08:00", "2151-01-01 08:00"}) {
    EXPECT_THAT(FailureOf(OneTask({{"act_start_date", date}})),
                HasSubstr("dock.xer:10: expected a date from 1950 to 2150 in act_start_date"));
  }
  EXPECT_EQ(
      ReadTask({{"status_code", "TK_Active"}, {"act_start_date", "1950-01-01 00:00"}}).actual_start,
      At("1950-01-01"));
  EXPECT_THAT(FailureOf(OneTask({{"act_start_date", "2027-02-30 08:00"}})),
              HasSubstr("expected a date as YYYY-MM-DD HH:MM"));
}

TEST(XerReader, EveryTypeOfConstraint) {
  for (const auto& [code, type] : {std::pair("CS_MSO", ConstraintType::kStartOn),
                                   std::pair("CS_MEO", ConstraintType::kFinishOn),
                                   std::pair("CS_MSOA", ConstraintType::kStartNoEarlier),
                                   std::pair("CS_MEOA", ConstraintType::kFinishNoEarlier),
                                   std::pair("CS_MSOB", ConstraintType::kStartNoLater),
                                   std::pair("CS_MEOB", ConstraintType::kFinishNoLater),
                                   std::pair("CS_MANDSTART", ConstraintType::kMandatoryStart),
                                   std::pair("CS_MANDFIN", ConstraintType::kMandatoryFinish)}) {
    const Task task = ReadTask({{"cstr_type", code}, {"cstr_date", "2027-04-05 08:00"}});
    EXPECT_EQ(task.constraint, (Constraint{type, At("2027-04-05 08:00")})) << code;
  }
  const Task late = ReadTask({{"cstr_type", "CS_ALAP"}, {"cstr_date", "2027-04-05 08:00"}});
  EXPECT_EQ(late.constraint, (Constraint{ConstraintType::kAsLateAsPossible, {}}));
  EXPECT_THAT(FailureOf(OneTask({{"cstr_type", "CS_NONE"}})), HasSubstr("a type of constraint"));
}

TEST(XerReader, AFinishAtMidnightIsTheEndOfTheDayBefore) {
  EXPECT_EQ(ReadTask({{"cstr_type", "CS_MEOB"}, {"cstr_date", "2027-04-05 00:00"}}).constraint.date,
            At("2027-04-04 24:00"));
  EXPECT_EQ(ReadTask({{"cstr_type", "CS_MSOA"}, {"cstr_date", "2027-04-05 00:00"}}).constraint.date,
            At("2027-04-05 00:00"));
}

TEST(XerReader, TheSecondConstraintMovesUpWhereThereIsNoFirst) {
  const Task both = ReadTask({{"cstr_type", "CS_MSOA"},
                              {"cstr_date", "2027-04-05 08:00"},
                              {"cstr_type2", "CS_MEOB"},
                              {"cstr_date2", "2027-06-04 17:00"}});
  EXPECT_EQ(both.constraint.type, ConstraintType::kStartNoEarlier);
  EXPECT_EQ(both.second_constraint,
            (Constraint{ConstraintType::kFinishNoLater, At("2027-06-04 17:00")}));
  const Task second = ReadTask({{"cstr_type2", "CS_ALAP"}});
  EXPECT_EQ(second.constraint.type, ConstraintType::kAsLateAsPossible);
  EXPECT_EQ(second.second_constraint, Constraint{});
}

TEST(XerReader, AConstraintWithoutADateIsLeftOut) {
  const ReadResult result = Read(OneTask({{"cstr_type", "CS_MSOA"}}));
  EXPECT_EQ(TaskOf(result.plan, "A1").constraint, Constraint{});
  EXPECT_EQ(CountOf(result, "constraints without a date"), 1);
}

TEST(XerReader, AConstraintOnTheStartHasHadItsTimeOnceTheActivityHasStarted) {
  for (const char* type : {"CS_MSO", "CS_MSOA", "CS_MSOB", "CS_MANDSTART", "CS_ALAP"}) {
    const Fields fields = {{"status_code", "TK_Active"}, {"act_start_date", "2027-02-22 08:00"},
                           {"cstr_type", type},          {"cstr_date", "2027-04-05 08:00"},
                           {"cstr_type2", "CS_MEOA"},    {"cstr_date2", "2027-04-30 17:00"}};
    const ReadResult result = Read(OneTask(fields));
    EXPECT_EQ(TaskOf(result.plan, "A1").constraint.type, ConstraintType::kFinishNoEarlier) << type;
    EXPECT_EQ(TaskOf(result.plan, "A1").second_constraint, Constraint{}) << type;
    EXPECT_EQ(CountOf(result, "that have started: left out"), 1) << type;
  }
}

TEST(XerReader, DatesFromOtherProjectsBecomeConstraints) {
  const ReadResult result = Read(OneTask({{"cstr_type", "CS_MSOA"},
                                          {"cstr_date", "2027-04-05 08:00"},
                                          {"external_early_start_date", "2027-04-12 08:00"},
                                          {"external_late_end_date", "2027-06-04 17:00"}}));
  const Task& task = TaskOf(result.plan, "A1");
  EXPECT_EQ(task.constraint.date, At("2027-04-12 08:00"));
  EXPECT_EQ(task.second_constraint,
            (Constraint{ConstraintType::kFinishNoLater, At("2027-06-04 17:00")}));
  EXPECT_EQ(CountOf(result, "dates from projects that are not in the file: kept"), 2);
}

TEST(XerReader, DatesFromOtherProjectsAreLeftAsideWhereTheOptionsSaySo) {
  XerText text = OneTask({{"external_early_start_date", "2027-04-12 08:00"}});
  text.Row("SCHEDOPTIONS", {{"proj_id", "1"}, {"sched_outer_depend_type", "SD_None"}});
  EXPECT_EQ(TaskOf(Read(text).plan, "A1").constraint, Constraint{});
}

TEST(XerReader, ExpectedFinishesCountWhereTheOptionsSaySo) {
  for (const auto& [flag, counts] : {std::pair("Y", true), std::pair("N", false)}) {
    XerText text = OneTask({{"expect_end_date", "2027-05-07 17:00"}});
    text.Row("SCHEDOPTIONS", {{"proj_id", "1"}, {"sched_use_expect_end_flag", flag}});
    EXPECT_EQ(TaskOf(Read(text).plan, "A1").expected_finish,
              counts ? At("2027-05-07 17:00") : Instant())
        << flag;
  }
}

TEST(XerReader, DatesThatTheFileHasComputedAreKeptForComparison) {
  const StoredDates stored = ReadTask({{"early_start_date", "2027-03-01 08:00"},
                                       {"early_end_date", "2027-03-06 00:00"},
                                       {"late_start_date", "2027-03-02 08:00"},
                                       {"rem_late_end_date", "2027-03-08 17:00"},
                                       {"total_float_hr_cnt", "-8"}})
                                 .stored;
  EXPECT_EQ(stored.early_start, At("2027-03-01 08:00"));
  EXPECT_EQ(stored.early_finish, At("2027-03-05 24:00"));
  EXPECT_EQ(stored.late_start, At("2027-03-02 08:00"));
  EXPECT_EQ(stored.late_finish, At("2027-03-08 17:00"));
  EXPECT_EQ(stored.total_float_minutes, -480);
  EXPECT_FALSE(ReadTask({}).stored.total_float_minutes.has_value());
}

// Calendars.

TEST(XerReader, TheDefaultCalendarGivesTheHoursOfADay) {
  const ReadResult result = Read(XerText().Project().Calendar({{"day_hr_cnt", "10"}}));
  EXPECT_EQ(result.plan.hours_per_day, 10);
  EXPECT_EQ(result.plan.FindCalendar(result.plan.default_calendar)->name, "Five days");
  const ReadResult odd = Read(XerText().Project().Calendar({{"day_hr_cnt", "7.5"}}));
  EXPECT_EQ(odd.plan.hours_per_day, 8);
  EXPECT_EQ(CountOf(odd, "hours a day"), 1);
}

TEST(XerReader, ActivitiesHaveTheirOwnCalendar) {
  XerText text = OneTask({{"clndr_id", "11"}});
  text.Task("101", "A2").Calendar({{"clndr_id", "11"}, {"clndr_name", "Nights"}});
  const Plan plan = Read(text).plan;
  EXPECT_EQ(plan.FindCalendar(TaskOf(plan, "A1").calendar)->name, "Nights");
  EXPECT_EQ(TaskOf(plan, "A2").calendar, 0);  // the plan's default
}

TEST(XerReader, ACalendarThatIsNotThereIsReplacedByTheDefault) {
  const ReadResult result = Read(OneTask({{"clndr_id", "77"}}));
  EXPECT_EQ(TaskOf(result.plan, "A1").calendar, 0);
  EXPECT_EQ(CountOf(result, "a calendar that is not in the file"), 1);
}

TEST(XerReader, CalendarsWithTheSameNameAreToldApart) {
  XerText text = OneTask();
  text.Calendar({{"clndr_id", "11"}, {"clndr_name", "five DAYS"}});
  const Plan plan = Read(text).plan;
  EXPECT_EQ(plan.calendars[0].name, "Five days");
  EXPECT_EQ(plan.calendars[1].name, "five DAYS (2)");
}

TEST(XerReader, ACalendarInheritsSingleDaysItSaysNothingOf) {
  const std::string monday = "46447";  // 2027-03-01
  const std::string tuesday = "46448";
  XerText text = XerText().Project().Calendar(
      {{"clndr_data", XerText::FiveDays("(0||0(d|" + monday + ")())(0||1(d|" + tuesday + ")())")}});
  text.Calendar({{"clndr_id", "11"},
                 {"clndr_name", "Project's"},
                 {"base_clndr_id", "10"},
                 {"clndr_type", "CA_Project"},
                 {"proj_id", "1"},
                 {"clndr_data", XerText::FiveDays("(0||0(d|" + tuesday + ")(" +
                                                  XerText::Shift("06:00", "08:00") + "))")}});
  const CalendarDefinition calendar = *Read(text).plan.FindCalendar("Project's");
  EXPECT_THAT(PatternOn(calendar, 46447), IsEmpty());
  EXPECT_THAT(PatternOn(calendar, 46448), ElementsAre(Shift{360, 480}));
  EXPECT_THAT(PatternOn(calendar, 46449), ElementsAre(Shift{480, 720}, Shift{780, 1020}));
}

TEST(XerReader, CalendarsThatRestOnEachOtherInACircleAreRefused) {
  XerText text = XerText().Project().Calendar({{"base_clndr_id", "11"}});
  text.Calendar({{"clndr_id", "11"}, {"base_clndr_id", "10"}});
  EXPECT_THAT(FailureOf(text), HasSubstr("dock.xer:7: expected calendars that rest on each other"));
}

TEST(XerReader, AMalformedCalendarIsRefusedEvenIfNothingUsesIt) {
  XerText text = OneTask();
  text.Calendar(
      {{"clndr_id", "11"}, {"clndr_name", "Torn"}, {"clndr_data", "(0||CalendarData()("}});
  EXPECT_EQ(FailureOf(text),
            "dock.xer:8: expected \")\" in the calendar's data, found the end of the calendar of "
            "\"Torn\"");
}

TEST(XerReader, WorkOnACalendarWithoutWorkingTimeIsRefused) {
  XerText text = OneTask({{"clndr_id", "11"}});
  text.Calendar({{"clndr_id", "11"},
                 {"clndr_name", "Never"},
                 {"clndr_data", XerText::Data({"", "", "", "", "", "", ""})}});
  EXPECT_EQ(FailureOf(text),
            "dock.xer:11: expected a calendar with working time for activity \"A1\", found "
            "\"Never\" without any");
}

TEST(XerReader, CalendarsOfResourcesAndOtherProjectsStayOutUnlessUsed) {
  XerText text = OneTask();
  text.Calendar({{"clndr_id", "11"}, {"clndr_name", "Diver"}, {"clndr_type", "CA_Rsrc"}});
  text.Calendar({{"clndr_id", "12"}, {"clndr_name", "Quay"}, {"proj_id", "2"}});
  EXPECT_EQ(Read(text).plan.calendars.size(), 1u);
}

TEST(XerReader, AResourceDependentActivityIsOnTheCalendarOfItsResource) {
  const auto file = [](const Fields& task, bool assigned) {
    XerText text = OneTask({{"task_type", "TT_Rsrc"}});
    text.Task("101", "A2", task);
    text.Calendar({{"clndr_id", "11"}, {"clndr_name", "Diver"}, {"clndr_type", "CA_Rsrc"}});
    text.Row("RSRC", {{"rsrc_id", "50"}, {"clndr_id", "11"}});
    if (assigned) {
      text.Row("TASKRSRC", {{"task_id", "100"}, {"rsrc_id", "50"}, {"proj_id", "1"}});
    }
    return Read(text);
  };
  const ReadResult by_assignment = file({}, true);
  EXPECT_EQ(by_assignment.plan.FindCalendar(TaskOf(by_assignment.plan, "A1").calendar)->name,
            "Diver");
  EXPECT_EQ(TaskOf(by_assignment.plan, "A2").calendar, 0);  // not resource-dependent
  EXPECT_EQ(CountOf(by_assignment, "resource assignments"), 1);
  const ReadResult primary = file({{"task_type", "TT_Rsrc"}, {"rsrc_id", "50"}}, false);
  EXPECT_EQ(primary.plan.FindCalendar(TaskOf(primary.plan, "A2").calendar)->name, "Diver");
  EXPECT_EQ(TaskOf(primary.plan, "A1").calendar, 0);
  EXPECT_EQ(CountOf(primary, "without a resource"), 1);
}

TEST(XerReader, AMaterialLendsNoCalendar) {
  XerText text = OneTask({{"task_type", "TT_Rsrc"}});
  text.Calendar({{"clndr_id", "11"}, {"clndr_name", "Diver"}, {"clndr_type", "CA_Rsrc"}});
  text.Calendar({{"clndr_id", "12"}, {"clndr_name", "Sand"}, {"clndr_type", "CA_Rsrc"}});
  text.Row("RSRC", {{"rsrc_id", "49"}, {"clndr_id", "12"}, {"rsrc_type", "RT_Mat"}});
  text.Row("RSRC", {{"rsrc_id", "50"}, {"clndr_id", "11"}, {"rsrc_type", "RT_Labor"}});
  for (const char* resource : {"49", "50"}) {
    text.Row("TASKRSRC", {{"task_id", "100"}, {"rsrc_id", resource}, {"proj_id", "1"}});
  }
  const ReadResult result = Read(text);
  EXPECT_EQ(result.plan.FindCalendar(TaskOf(result.plan, "A1").calendar)->name, "Diver");
}

// What a plan cannot hold.

TEST(XerReader, WhatIsLeftOutIsCounted) {
  XerText text = OneTask();
  text.Row("TASKACTV", {{"task_id", "100"}, {"proj_id", "1"}});
  text.Row("TASKACTV", {{"task_id", "200"}, {"proj_id", "2"}});
  text.Row("UDFVALUE", {{"fk_id", "100"}, {"proj_id", "1"}});
  text.Row("UDFVALUE", {{"fk_id", "100"}, {"proj_id", ""}});
  text.Row("CURRTYPE", {{"curr_id", "1"}}).Row("CURRTYPE", {{"curr_id", "2"}});
  const ReadResult result = Read(text);
  EXPECT_EQ(CountOf(result, "activity codes of activities"), 1);
  EXPECT_EQ(CountOf(result, "user-defined fields"), 2);
  EXPECT_EQ(CountOf(result, "rows of the table CURRTYPE"), 2);
}

}  // namespace
}  // namespace nimbrel::engine
