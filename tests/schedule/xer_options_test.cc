// Small XER files, one for each way in which a file may want to be scheduled. Dates are worked out
// by hand: the data date is Monday 1 March 2027 at 08:00 and, unless a test says otherwise, work is
// done Monday to Friday from 08:00 to 12:00 and from 13:00 to 17:00, eight hours a day.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "engine/formats/plan_reader.h"
#include "engine/schedule/scheduler.h"
#include "tests/formats/xer_text.h"
#include "tests/support/schedule/small_plan.h"

namespace nimbrel::test {
namespace {

using engine::Fields;
using engine::XerText;
using ::testing::IsEmpty;

Fields Options(Fields other) {
  other["proj_id"] = "1";
  return other;
}

std::string AroundTheClock() {
  const std::string day = XerText::Shift("00:00", "00:00");
  return XerText::Data({day, day, day, day, day, day, day});
}

XerText TwoCalendars(const Fields& project = {}) {
  XerText text;
  text.Project(project).Calendar();
  text.Calendar({{"clndr_id", "11"},
                 {"clndr_name", "Clock"},
                 {"default_flag", "N"},
                 {"day_hr_cnt", "24"},
                 {"clndr_data", AroundTheClock()}});
  return text;
}

Scheduled Schedule(const XerText& text) {
  return Scheduled(engine::ReadXer(text.Text(), "works.xer", {}).plan);
}

Fields Hours(const std::string& remaining, Fields other = {}) {
  other["remain_drtn_hr_cnt"] = remaining;
  other["target_drtn_hr_cnt"] = remaining;
  return other;
}

Fields Active(const std::string& remaining, Fields other = {}) {
  other["status_code"] = "TK_Active";
  other["act_start_date"] = "2027-02-22 08:00";
  return Hours(remaining, other);
}

double FloatHours(const Scheduled& scheduled, const std::string& id) {
  return scheduled.TotalFloatDays(id) * 8;
}

// Progress.

XerText OutOfSequence(const Fields& options) {
  XerText text = TwoCalendars();
  text.Task("1", "A", Hours("24")).Task("2", "B", Active("16")).Task("3", "C", Hours("40"));
  text.Link("1", "2", "PR_FS").Row("SCHEDOPTIONS", Options(options));
  return text;
}

TEST(XerOptions, RetainedLogicHoldsWhatRemains) {
  const Scheduled scheduled =
      Schedule(OutOfSequence({{"sched_retained_logic", "Y"}, {"sched_progress_override", "N"}}));
  EXPECT_EQ(scheduled.Early("B"), "2027-03-04T08:00 to 2027-03-05T17:00");
  EXPECT_EQ(FloatHours(scheduled, "A"), 0);
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST(XerOptions, ProgressOverrideLetsWhatRemainsGoAhead) {
  const Scheduled scheduled =
      Schedule(OutOfSequence({{"sched_retained_logic", "N"}, {"sched_progress_override", "Y"}}));
  EXPECT_EQ(scheduled.Early("B"), "2027-03-01T08:00 to 2027-03-02T17:00");
  EXPECT_EQ(FloatHours(scheduled, "A"), 16);
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST(XerOptions, ActualDatesLimitWhatShouldHaveComeBefore) {
  const Scheduled scheduled =
      Schedule(OutOfSequence({{"sched_retained_logic", "N"}, {"sched_progress_override", "N"}}));
  EXPECT_EQ(scheduled.Early("B"), "2027-03-01T08:00 to 2027-03-02T17:00");
  // B began on Monday 22 February at 08:00: A, to end on Wednesday the 3rd, is eight days late.
  EXPECT_EQ(FloatHours(scheduled, "A"), -64);
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST(XerOptions, ALagFromAStartedPredecessorBeginsAtItsEarlyOrItsActualStart) {
  for (const auto& [flag, start] : {std::pair("Y", "2027-03-09"), std::pair("N", "2027-03-02")}) {
    XerText text = TwoCalendars();
    text.Task("1", "A", Active("16")).Task("2", "B", Hours("8")).Link("1", "2", "PR_SS", "48");
    text.Row("SCHEDOPTIONS", Options({{"sched_lag_early_start_flag", flag}}));
    const Scheduled scheduled = Schedule(text);
    EXPECT_EQ(scheduled.Early("B"),
              std::string(start) + "T08:00 to " + std::string(start) + "T17:00");
    EXPECT_THAT(scheduled.Breaches(), IsEmpty());
  }
}

TEST(XerOptions, SuspendedWorkGoesOnWhenItIsResumed) {
  XerText text = TwoCalendars();
  text.Task(
      "1", "A",
      Active("8", {{"suspend_date", "2027-02-24 17:00"}, {"resume_date", "2027-03-10 13:00"}}));
  text.Task("2", "B", Active("8", {{"suspend_date", "2027-02-24 17:00"}}));
  const Scheduled scheduled = Schedule(text);
  EXPECT_EQ(scheduled.Early("A"), "2027-03-10T13:00 to 2027-03-11T12:00");
  EXPECT_EQ(scheduled.Early("B"), "2027-03-01T08:00 to 2027-03-01T17:00");
}

TEST(XerOptions, AnExpectedFinishSetsWhatRemainsIfTheOptionSaysSo) {
  for (const auto& [flag, finish] : {std::pair("Y", "2027-03-12"), std::pair("N", "2027-03-02")}) {
    XerText text = TwoCalendars();
    text.Task("1", "A", Active("16", {{"expect_end_date", "2027-03-12 17:00"}}));
    text.Row("SCHEDOPTIONS", Options({{"sched_use_expect_end_flag", flag}}));
    const Scheduled scheduled = Schedule(text);
    EXPECT_EQ(scheduled.Early("A"), "2027-03-01T08:00 to " + std::string(finish) + "T17:00");
    EXPECT_THAT(scheduled.Breaches(), IsEmpty());
  }
}

TEST(XerOptions, AConstraintOnTheStartHoldsNoStartedActivity) {
  XerText text = TwoCalendars();
  text.Task("1", "A", Active("8", {{"cstr_type", "CS_MSOA"}, {"cstr_date", "2027-03-15 08:00"}}));
  text.Task("2", "B", Active("8", {{"cstr_type", "CS_MEOA"}, {"cstr_date", "2027-03-15 17:00"}}));
  const Scheduled scheduled = Schedule(text);
  EXPECT_EQ(scheduled.Early("A"), "2027-03-01T08:00 to 2027-03-01T17:00");
  EXPECT_EQ(scheduled.Early("B"), "2027-03-15T08:00 to 2027-03-15T17:00");
}

TEST(XerOptions, ACompletePredecessorDrivesNothingPastTheDataDate) {
  XerText text = TwoCalendars();
  text.Task("1", "A",
            {{"status_code", "TK_Complete"},
             {"act_start_date", "2027-02-22 08:00"},
             {"act_end_date", "2027-02-26 17:00"}});
  text.Task("2", "B", Hours("8")).Link("1", "2", "PR_FS", "80");
  EXPECT_EQ(Schedule(text).Early("B"), "2027-03-01T08:00 to 2027-03-01T17:00");
}

TEST(XerOptions, AnUpdateWithWorkDoneOutOfSequenceLetsWhatComesAfterItGoAhead) {
  const Fields done = {{"status_code", "TK_Complete"},
                       {"act_start_date", "2027-02-22 08:00"},
                       {"act_end_date", "2027-02-26 17:00"}};
  XerText text = TwoCalendars();
  text.Task("1", "A", done).Task("2", "B", Active("16")).Task("3", "C", done);
  text.Task("4", "D", Hours("8")).Task("5", "E", Hours("24"));
  text.Task("6", "M",
            Hours("0", {{"task_type", "TT_FinMile"},
                        {"cstr_type", "CS_MEOB"},
                        {"cstr_date", "2027-03-02 17:00"}}));
  text.Link("1", "2", "PR_FS", "80").Link("2", "3", "PR_FS").Link("3", "4", "PR_FS", "40");
  text.Link("4", "6", "PR_FF").Link("2", "5", "PR_SS");
  const Scheduled scheduled = Schedule(text);
  // A and C are done, and so are their lags: neither B nor D waits, though C was to wait for B.
  EXPECT_EQ(scheduled.Early("B"), "2027-03-01T08:00 to 2027-03-02T17:00");
  EXPECT_EQ(scheduled.Early("D"), "2027-03-01T08:00 to 2027-03-01T17:00");
  EXPECT_EQ(scheduled.Early("E"), "2027-03-01T08:00 to 2027-03-03T17:00");
  EXPECT_EQ(scheduled.Early("M"), "2027-03-01T17:00 to 2027-03-01T17:00");
  // M has to be there on Tuesday, which leaves D a day. B is held by E alone, which ends last.
  EXPECT_EQ(scheduled.Late("D"), "2027-03-02T08:00 to 2027-03-02T17:00");
  EXPECT_EQ(scheduled.Late("B"), "2027-03-01T08:00 to 2027-03-02T17:00");
  EXPECT_EQ(FloatHours(scheduled, "M"), 8);
  EXPECT_EQ(FloatHours(scheduled, "D"), 8);
  EXPECT_EQ(FloatHours(scheduled, "B"), 0);
  EXPECT_EQ(FloatHours(scheduled, "E"), 0);
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

// Lags.

TEST(XerOptions, LagsRunOnTheCalendarThatTheOptionsName) {
  // A ends on Friday at 17:00 on the clock's calendar and B, of the default one, waits 16 hours: to
  // Saturday at 09:00 by the clock, and two worked days otherwise.
  for (const auto& [calendar, start] : {std::pair("rcal_Predecessor", "2027-03-08T08:00"),
                                        std::pair("rcal_Successor", "2027-03-10T08:00"),
                                        std::pair("rcal_ProjDefault", "2027-03-10T08:00"),
                                        std::pair("rcal_24Hour", "2027-03-08T08:00")}) {
    XerText text = TwoCalendars();
    text.Task("1", "A", Hours("105", {{"clndr_id", "11"}})).Task("2", "B", Hours("8"));
    text.Link("1", "2", "PR_FS", "16");
    text.Row("SCHEDOPTIONS", Options({{"sched_calendar_on_relationship_lag", calendar}}));
    const Scheduled scheduled = Schedule(text);
    EXPECT_EQ(scheduled.Early("A"), "2027-03-01T08:00 to 2027-03-05T17:00");
    EXPECT_EQ(scheduled.Early("B").substr(0, 16), start) << calendar;
    EXPECT_THAT(scheduled.Breaches(), IsEmpty());
  }
}

TEST(XerOptions, LateDatesGoBackThroughLinksAsDates) {
  // B may end on Friday the 12th at 17:00. A ends with it and works around the clock: it may not
  // use the weekend that follows.
  XerText text = TwoCalendars();
  text.Task("1", "A", Hours("24", {{"clndr_id", "11"}})).Task("2", "B", Hours("8"));
  text.Task("3", "C", Hours("80")).Link("1", "2", "PR_FF");
  const Scheduled scheduled = Schedule(text);
  EXPECT_EQ(scheduled.Late("B"), "2027-03-12T08:00 to 2027-03-12T17:00");
  EXPECT_EQ(scheduled.Late("A"), "2027-03-11T17:00 to 2027-03-12T17:00");
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

// Float and what is critical.

TEST(XerOptions, LateDatesStartFromWhereTheProjectMustFinish) {
  for (const auto& [flag, hours] : {std::pair("Y", -16.0), std::pair("N", 0.0)}) {
    XerText text = TwoCalendars({{"plan_end_date", "2027-03-04 00:00"}});
    text.Task("1", "A", Hours("40"));
    text.Row("SCHEDOPTIONS", Options({{"sched_use_project_end_date_for_float", flag}}));
    // The start of Thursday is the end of Wednesday.
    EXPECT_EQ(FloatHours(Schedule(text), "A"), hours);
  }
}

TEST(XerOptions, OpenEndsAreCriticalIfTheOptionSaysSo) {
  for (const auto& [flag, hours] : {std::pair("Y", 0.0), std::pair("N", 32.0)}) {
    XerText text = TwoCalendars();
    text.Task("1", "A", Hours("8")).Task("2", "B", Hours("40"));
    text.Row("SCHEDOPTIONS", Options({{"sched_open_critical_flag", flag}}));
    const Scheduled scheduled = Schedule(text);
    EXPECT_EQ(FloatHours(scheduled, "A"), hours);
    EXPECT_EQ(scheduled.scheduler.is_critical(scheduled.At("A")), hours == 0);
    EXPECT_THAT(scheduled.Breaches(), IsEmpty());
  }
}

TEST(XerOptions, TheLongestPathIsCriticalIfTheProjectSaysSo) {
  // C must end early and has no float left, but does not lead to the finish.
  for (const auto& [type, is_critical] :
       {std::pair("CT_DrivPath", false), std::pair("CT_TotFloat", true)}) {
    XerText text =
        TwoCalendars({{"critical_path_type", type}, {"plan_end_date", "2027-03-31 17:00"}});
    text.Task("1", "A", Hours("40")).Task("2", "B", Hours("8")).Link("1", "2", "PR_FS");
    text.Task("3", "C", Hours("8", {{"cstr_type", "CS_MEOB"}, {"cstr_date", "2027-03-01 17:00"}}));
    const Scheduled scheduled = Schedule(text);
    EXPECT_EQ(scheduled.scheduler.is_critical(scheduled.At("C")), is_critical);
    EXPECT_EQ(scheduled.scheduler.is_critical(scheduled.At("A")), !is_critical);
    EXPECT_EQ(scheduled.scheduler.is_critical(scheduled.At("B")), !is_critical);
  }
}

TEST(XerOptions, FloatOfAnActivityThatSpansANodeFollowsTheKindOfFloat) {
  // A, of one day, may be as late as Friday, B, of two, as late as Thursday: late dates of the node
  // are Wednesday to Friday, early ones Monday and Tuesday.
  for (const auto& [type, hours] :
       {std::pair("FT_SF", 16.0), std::pair("FT_FF", 24.0), std::pair("FT_MIN", 16.0)}) {
    XerText text = TwoCalendars();
    text.Row("PROJWBS", {{"wbs_id", "1"}, {"proj_id", "1"}, {"proj_node_flag", "Y"}});
    text.Row("PROJWBS", {{"wbs_id", "2"}, {"proj_id", "1"}, {"parent_wbs_id", "1"}});
    const Fields inside = {{"wbs_id", "2"}};
    text.Task("1", "A", Hours("8", inside));
    text.Task(
        "2", "B",
        Hours("16",
              {{"wbs_id", "2"}, {"cstr_type", "CS_MEOB"}, {"cstr_date", "2027-03-04 17:00"}}));
    text.Task("3", "S", {{"wbs_id", "2"}, {"task_type", "TT_WBS"}});
    text.Task("4", "C", Hours("40", {{"wbs_id", "1"}}));
    text.Row("SCHEDOPTIONS", Options({{"sched_float_type", type}}));
    const Scheduled scheduled = Schedule(text);
    EXPECT_EQ(scheduled.Early("S"), "2027-03-01T08:00 to 2027-03-02T17:00");
    EXPECT_EQ(FloatHours(scheduled, "A"), 32);
    EXPECT_EQ(FloatHours(scheduled, "B"), 16);
    EXPECT_EQ(FloatHours(scheduled, "S"), hours);
  }
}

// Constraints.

TEST(XerOptions, EveryConstraintHoldsWhatItNames) {
  struct Row {
    const char* type;
    const char* date;
    const char* early;
    double float_hours;
  };
  // A takes three days after P's two, beside ten days of C: it ends on Friday the 5th with five
  // days of float.
  for (const Row& row :
       {Row{"", "", "2027-03-03T08:00 to 2027-03-05T17:00", 40},
        Row{"CS_MSOA", "2027-03-08 08:00", "2027-03-08T08:00 to 2027-03-10T17:00", 16},
        Row{"CS_MEOA", "2027-03-10 17:00", "2027-03-08T08:00 to 2027-03-10T17:00", 16},
        Row{"CS_MSOB", "2027-03-02 08:00", "2027-03-03T08:00 to 2027-03-05T17:00", -8},
        Row{"CS_MEOB", "2027-03-09 17:00", "2027-03-03T08:00 to 2027-03-05T17:00", 16},
        Row{"CS_MSO", "2027-03-08 08:00", "2027-03-08T08:00 to 2027-03-10T17:00", 0},
        Row{"CS_MSO", "2027-03-02 08:00", "2027-03-03T08:00 to 2027-03-05T17:00", -8},
        Row{"CS_MEO", "2027-03-10 17:00", "2027-03-08T08:00 to 2027-03-10T17:00", 0},
        Row{"CS_MANDSTART", "2027-03-02 08:00", "2027-03-02T08:00 to 2027-03-04T17:00", 0},
        Row{"CS_MANDFIN", "2027-03-04 17:00", "2027-03-02T08:00 to 2027-03-04T17:00", 0},
        Row{"CS_ALAP", "", "2027-03-10T08:00 to 2027-03-12T17:00", 0}}) {
    XerText text = TwoCalendars();
    text.Task("1", "P", Hours("16"));
    text.Task("2", "A", Hours("24", {{"cstr_type", row.type}, {"cstr_date", row.date}}));
    text.Task("3", "C", Hours("80")).Link("1", "2", "PR_FS");
    const Scheduled scheduled = Schedule(text);
    EXPECT_EQ(scheduled.Early("A"), row.early) << row.type;
    EXPECT_EQ(FloatHours(scheduled, "A"), row.float_hours) << row.type;
    EXPECT_THAT(scheduled.Breaches(), IsEmpty()) << row.type;
  }
}

TEST(XerOptions, BothConstraintsOfAnActivityHold) {
  XerText text = TwoCalendars();
  text.Task("1", "A",
            Hours("24", {{"cstr_type", "CS_MSOA"},
                         {"cstr_date", "2027-03-03 08:00"},
                         {"cstr_type2", "CS_MEOB"},
                         {"cstr_date2", "2027-03-04 17:00"}}));
  const Scheduled scheduled = Schedule(text);
  EXPECT_EQ(scheduled.Early("A"), "2027-03-03T08:00 to 2027-03-05T17:00");
  EXPECT_EQ(FloatHours(scheduled, "A"), -8);
}

TEST(XerOptions, AMandatoryDateTakesPredecessorsIntoNegativeFloat) {
  XerText text = TwoCalendars();
  text.Task("1", "P", Hours("24")).Link("1", "2", "PR_FS");
  text.Task("2", "A",
            Hours("8", {{"cstr_type", "CS_MANDSTART"}, {"cstr_date", "2027-03-02 08:00"}}));
  EXPECT_EQ(FloatHours(Schedule(text), "P"), -16);
}

// Milestones and calendars.

TEST(XerOptions, AFinishMilestoneEndsTheDayAndAStartMilestoneBeginsTheNext) {
  XerText text = TwoCalendars();
  text.Task("1", "A", Hours("40")).Link("1", "2", "PR_FS").Link("1", "3", "PR_FS");
  text.Task("2", "F", Hours("0", {{"task_type", "TT_FinMile"}}));
  text.Task("3", "S", Hours("0", {{"task_type", "TT_Mile"}})).Task("4", "B", Hours("8"));
  text.Link("2", "4", "PR_FS").Link("3", "4", "PR_FS");
  const Scheduled scheduled = Schedule(text);
  EXPECT_EQ(scheduled.Early("F"), "2027-03-05T17:00 to 2027-03-05T17:00");
  EXPECT_EQ(scheduled.Early("S"), "2027-03-08T08:00 to 2027-03-08T08:00");
  EXPECT_EQ(scheduled.Late("F"), "2027-03-05T17:00 to 2027-03-05T17:00");
  EXPECT_EQ(scheduled.Late("S"), "2027-03-08T08:00 to 2027-03-08T08:00");
}

TEST(XerOptions, ShiftsPastMidnightAndWorkedSundaysAreWorkingTime) {
  // Nights from 22:00 to 06:00, Monday to Friday, and the night of Sunday 7 March.
  const std::string night = XerText::Shift("22:00", "06:00");
  XerText text;
  text.Project().Calendar({{"clndr_data", XerText::Data({"", night, night, night, night, night, ""},
                                                        "(0||0(d|46453)(" + night + "))")}});
  text.Task("1", "A", Hours("48"));
  // Five nights end on Saturday at 06:00, the sixth on Monday at 06:00.
  EXPECT_EQ(Schedule(text).Early("A"), "2027-03-01T22:00 to 2027-03-08T06:00");
}

TEST(XerOptions, AResourceDependentActivityWorksWhenItsResourceDoes) {
  XerText text = TwoCalendars();
  text.Task("1", "A", Hours("24", {{"task_type", "TT_Rsrc"}, {"rsrc_id", "50"}}));
  text.Row("RSRC", {{"rsrc_id", "50"}, {"clndr_id", "11"}});
  EXPECT_EQ(Schedule(text).Early("A"), "2027-03-01T08:00 to 2027-03-02T08:00");
}

TEST(XerOptions, DatesFromOtherProjectsHoldUnlessTheyAreToBeIgnored) {
  for (const auto& [type, day] :
       {std::pair("SD_Both", "2027-03-03"), std::pair("SD_None", "2027-03-01")}) {
    XerText text = TwoCalendars();
    text.Task("1", "A",
              Hours("8", {{"external_early_start_date", "2027-03-03 08:00"},
                          {"external_late_end_date", "2027-03-02 17:00"}}));
    text.Row("SCHEDOPTIONS", Options({{"sched_outer_depend_type", type}}));
    const Scheduled scheduled = Schedule(text);
    EXPECT_EQ(scheduled.Early("A").substr(0, 10), day);
    EXPECT_EQ(FloatHours(scheduled, "A"), std::string(type) == "SD_Both" ? -8 : 0);
  }
}

}  // namespace
}  // namespace nimbrel::test
