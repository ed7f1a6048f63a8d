#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/formats/mspdi_text.h"
#include "tests/formats/reading.h"

namespace nimbrel::engine {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

ReadResult Read(const std::string& text, const ReadOptions& options = {}) {
  return ReadMspdi(text, "quay.xml", options);
}
ReadResult Read(const MspdiText& text, const ReadOptions& options = {}) {
  return Read(text.Text(), options);
}
std::string FailureOf(const std::string& text) {
  return ErrorOf([&] { Read(text); });
}
std::string FailureOf(const MspdiText& text) {
  return FailureOf(text.Text());
}

MspdiText WithCalendar() {
  return MspdiText().Calendar(1, "Standard", "");
}
MspdiText OneTask(const Elements& other) {
  return WithCalendar().Task(1, other);
}
Task ReadTask(const Elements& other) {
  return TaskOf(Read(OneTask(other)).plan, "1");
}

// The file.

TEST(MspdiReader, XmlThatIsNotWellFormedIsRefusedWithItsLine) {
  EXPECT_THAT(FailureOf("<?xml version=\"1.0\"?>\n<Project>\n<Tasks>\n</Project>"),
              HasSubstr("quay.xml:4: expected well-formed XML, found: "));
  EXPECT_THAT(FailureOf(std::string("<")), HasSubstr("quay.xml:1: expected"));
}

TEST(MspdiReader, DocumentTypesAreRefused) {
  EXPECT_EQ(FailureOf("<?xml version=\"1.0\"?>\n<!DOCTYPE Project [<!ENTITY a \"b\">]>\n"
                      "<Project>&a;</Project>"),
            "quay.xml:2: expected XML without a document type, found one");
}

TEST(MspdiReader, OtherXmlIsRefused) {
  EXPECT_EQ(FailureOf(std::string("<Plan/>")),
            "quay.xml:1: expected the element Project, found \"Plan\"");
  EXPECT_THAT(FailureOf(std::string("<Project xmlns=\"http://example.com/plan\"/>")),
              HasSubstr("expected a project of the namespace"));
  EXPECT_EQ(FailureOf(std::string("\xFF\xFE<\0P\0", 6)),
            "quay.xml:1: expected XML in UTF-8, found UTF-16");
}

TEST(MspdiReader, HalfAFileIsRefused) {
  const std::string whole = OneTask({}).Text();
  EXPECT_EQ(FailureOf(whole), "no error");
  EXPECT_THAT(FailureOf(whole.substr(0, whole.size() / 2)),
              HasSubstr("expected well-formed XML, found: "));
}

// The project.

TEST(MspdiReader, TheProjectGivesNamesAndDates) {
  const Plan plan = Read(WithCalendar()
                             .Set("Title", "Quay wall")
                             .Set("StatusDate", "2027-04-01T17:00:00")
                             .Set("MinutesPerDay", "600")
                             .Set("CriticalSlackLimit", "2"))
                        .plan;
  EXPECT_EQ(plan.name, "quay");
  EXPECT_EQ(plan.title, "Quay wall");
  EXPECT_EQ(plan.start, At("2027-03-01 08:00"));
  EXPECT_EQ(plan.data_date, At("2027-04-01 17:00"));
  EXPECT_EQ(plan.hours_per_day, 10);
  EXPECT_EQ(plan.schedule.critical_float_minutes, 1200);
  EXPECT_EQ(plan.schedule.total_float, FloatRule::kSmaller);
  EXPECT_FALSE(plan.schedule.remaining_from_data_date);
  EXPECT_EQ(plan.FindCalendar(plan.default_calendar)->name, "Standard");
}

TEST(MspdiReader, AProjectOfAnotherNameIsNotTaken) {
  const MspdiText text = OneTask({});
  EXPECT_EQ(Read(text, {.project = "QUAY", .time_unit = TimeUnit::kQuarters}).plan.time_unit,
            TimeUnit::kQuarters);
  EXPECT_EQ(ErrorOf([&] { Read(text, {.project = "PIER", .time_unit = TimeUnit::kDays}); }),
            "quay.xml:2: expected the project \"PIER\", found quay");
}

TEST(MspdiReader, WhatRemainsWaitsForPredecessorsUnlessTasksMayNotBeSplit) {
  EXPECT_EQ(Read(WithCalendar()).plan.schedule.progress, ProgressRule::kRetainedLogic);
  EXPECT_EQ(Read(WithCalendar().Set("SplitsInProgressTasks", "0")).plan.schedule.progress,
            ProgressRule::kProgressOverride);
}

TEST(MspdiReader, APlanFromItsFinishMustFinishThen) {
  const ReadResult result =
      Read(WithCalendar().Set("ScheduleFromStart", "0").Set("FinishDate", "2027-12-18T00:00:00"));
  EXPECT_EQ(result.plan.schedule.must_finish, At("2027-12-17 24:00"));
  EXPECT_EQ(CountOf(result, "scheduled from their finish"), 1);
  EXPECT_TRUE(Read(WithCalendar().Set("FinishDate", "2027-12-18T00:00:00"))
                  .plan.schedule.must_finish.IsAbsent());
}

TEST(MspdiReader, APlanWithoutAStartStartsWithItsFirstTask) {
  const MspdiText text = WithCalendar()
                             .Set("StartDate", "")
                             .Task(1, {{"Start", "2027-05-03T08:00:00"}})
                             .Task(2, {{"Start", "2027-04-05T08:00:00"}});
  EXPECT_EQ(Read(text).plan.start, At("2027-04-05 08:00"));
  EXPECT_THAT(FailureOf(WithCalendar().Set("StartDate", "")), HasSubstr("expected a StartDate"));
}

TEST(MspdiReader, WithoutAStatusDateProgressTellsTheDataDate) {
  EXPECT_EQ(Read(OneTask({{"ActualStart", "2027-03-09T08:00:00"}, {"Stop", "2027-03-11T17:00:00"}}))
                .plan.data_date,
            At("2027-03-11 17:00"));
  EXPECT_TRUE(Read(OneTask({})).plan.data_date.IsAbsent());
}

// Tasks and their outline.

TEST(MspdiReader, TheOutlineMakesSummaries) {
  const Plan plan = Read(WithCalendar()
                             .Task(0, {{"OutlineLevel", "0"}, {"Summary", "1"}})
                             .Task(1, {{"OutlineLevel", "1"}, {"Summary", "1"}})
                             .Task(2, {{"OutlineLevel", "2"}})
                             .Task(3, {{"OutlineLevel", "1"}}))
                        .plan;
  EXPECT_EQ(TaskOf(plan, "0").kind, TaskKind::kSummary);
  EXPECT_EQ(TaskOf(plan, "0").parent, 0);
  EXPECT_EQ(TaskOf(plan, "1").kind, TaskKind::kSummary);
  EXPECT_EQ(TaskOf(plan, "1").remaining_minutes, 0);
  EXPECT_EQ(TaskOf(plan, "1").parent, TaskOf(plan, "0").uid);
  EXPECT_EQ(TaskOf(plan, "2").parent, TaskOf(plan, "1").uid);
  EXPECT_EQ(TaskOf(plan, "3").kind, TaskKind::kTask);
  EXPECT_EQ(TaskOf(plan, "3").parent, TaskOf(plan, "0").uid);
}

TEST(MspdiReader, ATaskWithTasksBelowIsASummaryEvenIfItDoesNotSaySo) {
  const Plan plan =
      Read(WithCalendar().Task(1, {{"PercentComplete", "50"}}).Task(2, {{"OutlineLevel", "2"}}))
          .plan;
  EXPECT_EQ(TaskOf(plan, "1").kind, TaskKind::kSummary);
  EXPECT_FALSE(TaskOf(plan, "1").IsStarted());
}

TEST(MspdiReader, AnOutlineTooDeepIsRefused) {
  EXPECT_THAT(FailureOf(OneTask({{"OutlineLevel", "201"}})),
              HasSubstr("expected a number of at most 200 in OutlineLevel"));
}

TEST(MspdiReader, IdsAreTheNumbersThatUsersSeeElseTheKeys) {
  const Plan seen = Read(WithCalendar().Task(7, {{"ID", "2"}}).Task(9, {{"ID", "1"}})).plan;
  ASSERT_EQ(seen.tasks().size(), 2u);
  EXPECT_EQ(seen.tasks()[0].id, "1");
  EXPECT_EQ(seen.tasks()[0].description, "Work 9");
  const Plan keys = Read(WithCalendar().Task(7, {{"ID", "1"}}).Task(9, {{"ID", "1"}})).plan;
  EXPECT_EQ(keys.tasks()[0].id, "7");
  EXPECT_EQ(keys.tasks()[1].id, "9");
}

TEST(MspdiReader, KeysAreUnique) {
  EXPECT_THAT(FailureOf(WithCalendar().Task(1).Task(1, {{"ID", "2"}})),
              HasSubstr("expected a UID that no other task has, found 1"));
  EXPECT_THAT(FailureOf(OneTask({{"UID", ""}, {"UID", "-5"}})),
              HasSubstr("expected a number of 0 or more in UID"));
}

TEST(MspdiReader, EmptyLinesAndInactiveTasksAreLeftOut) {
  const ReadResult result = Read(WithCalendar()
                                     .Task(1, {{"IsNull", "1"}})
                                     .Task(2, {{"Active", "0"}})
                                     .Task(3, {{"PredecessorLink", MspdiText::Link(2, 1)}})
                                     .Task(4, {{"PredecessorLink", MspdiText::Link(99, 1)}}));
  EXPECT_EQ(result.plan.tasks().size(), 2u);
  EXPECT_EQ(CountOf(result, "inactive tasks"), 1);
  EXPECT_EQ(CountOf(result, "links to tasks that were left out"), 1);
  EXPECT_EQ(CountOf(result, "links to tasks that are not in the file"), 1);
  EXPECT_THAT(result.plan.links, IsEmpty());
}

TEST(MspdiReader, DurationsAreMinutes) {
  EXPECT_EQ(ReadTask({{"Duration", "PT16H30M0S"}}).original_minutes, 990);
  EXPECT_EQ(ReadTask({{"Duration", "P1DT1H"}}).original_minutes, 1500);
  EXPECT_EQ(ReadTask({{"RemainingDuration", "PT10H0M0S"}}).remaining_minutes, 600);
  EXPECT_EQ(ReadTask({{"PercentComplete", "25"}}).remaining_minutes, 1800);  // of 40 hours
}

TEST(MspdiReader, AbsurdDurationsAreRefused) {
  for (const char* text :
       {"PT-8H0M0S", "8h", "P1M", "PT1D", "PT", "P", "PT8", "PTH", "P1DT1H2", "PT9000000H0M0S"}) {
    EXPECT_THAT(FailureOf(OneTask({{"Duration", text}})),
                HasSubstr("expected a duration as PT8H0M0S"))
        << text;
  }
}

TEST(MspdiReader, ElapsedDurationsRunAroundTheClock) {
  for (const char* format : {"4", "6", "8", "10", "12", "36", "40"}) {
    const ReadResult result = Read(OneTask({{"DurationFormat", format}}));
    const CalendarDefinition* calendar =
        result.plan.FindCalendar(TaskOf(result.plan, "1").calendar);
    ASSERT_NE(calendar, nullptr) << format;
    EXPECT_EQ(calendar->name, "24 Hours");
    EXPECT_THAT(calendar->week, ::testing::Each(ElementsAre(Shift{0, 1440})));
  }
  for (const char* format : {"3", "5", "7", "9", "39", "53", "21"}) {
    EXPECT_EQ(ReadTask({{"DurationFormat", format}}).calendar, 0) << format;
  }
}

TEST(MspdiReader, AMilestoneIsWhereItsPredecessorsEnd) {
  const MspdiText text = WithCalendar()
                             .Task(1, {{"Milestone", "1"}, {"Duration", "PT0H0M0S"}})
                             .Task(2, {{"Milestone", "1"},
                                       {"Duration", "PT0H0M0S"},
                                       {"PredecessorLink", MspdiText::Link(1, 1)}})
                             .Task(3, {{"Milestone", "1"}});  // with a duration: only shown as one
  const Plan plan = Read(text).plan;
  EXPECT_EQ(TaskOf(plan, "1").kind, TaskKind::kStartMilestone);
  EXPECT_EQ(TaskOf(plan, "2").kind, TaskKind::kFinishMilestone);
  EXPECT_EQ(TaskOf(plan, "3").kind, TaskKind::kTask);
}

TEST(MspdiReader, ATaskInProgressGoesOnWhereItResumes) {
  const Task task = ReadTask({{"PercentComplete", "50"},
                              {"ActualStart", "2027-03-02T08:00:00"},
                              {"RemainingDuration", "PT20H0M0S"},
                              {"Stop", "2027-03-04T12:00:00"},
                              {"Resume", "2027-03-08T08:00:00"}});
  EXPECT_EQ(task.actual_start, At("2027-03-02 08:00"));
  EXPECT_FALSE(task.IsFinished());
  EXPECT_EQ(task.remaining_minutes, 1200);
  EXPECT_EQ(task.suspended, At("2027-03-04 12:00"));
  EXPECT_EQ(task.resumed, At("2027-03-08 08:00"));
  EXPECT_EQ(task.percent_complete, 50);
}

TEST(MspdiReader, ProgressWithoutActualDatesIsAsScheduled) {
  const Task done = ReadTask({{"PercentComplete", "100"}});
  EXPECT_EQ(done.actual_start, At("2027-03-01 08:00"));
  EXPECT_EQ(done.actual_finish, At("2027-03-05 17:00"));
  EXPECT_EQ(done.remaining_minutes, 0);
  const Task begun = ReadTask({{"PercentComplete", "1"}});
  EXPECT_EQ(begun.actual_start, At("2027-03-01 08:00"));
  EXPECT_FALSE(begun.IsFinished());
}

TEST(MspdiReader, AnActualFinishBeforeTheStartTakesTheStartWithIt) {
  const ReadResult result = Read(
      OneTask({{"ActualStart", "2027-03-02T08:00:00"}, {"ActualFinish", "2027-03-01T17:00:00"}}));
  EXPECT_EQ(TaskOf(result.plan, "1").actual_start, At("2027-03-01 17:00"));
  EXPECT_EQ(CountOf(result, "finished before they started"), 1);
}

TEST(MspdiReader, AConstraintOnTheStartHasHadItsTimeOnceTheTaskHasStarted) {
  for (const auto& [type, stays] :
       {std::pair("1", false), std::pair("2", false), std::pair("4", false), std::pair("5", false),
        std::pair("3", true), std::pair("6", true), std::pair("7", true)}) {
    const Task task = TaskOf(Read(OneTask({{"ActualStart", "2027-03-02T08:00:00"},
                                           {"ConstraintType", type},
                                           {"ConstraintDate", "2027-03-22T08:00:00"}}))
                                 .plan,
                             "1");
    EXPECT_EQ(task.constraint.type != ConstraintType::kNone, stays) << type;
  }
}

TEST(MspdiReader, DatesOutsideTheYearsOfAPlanAreRefusedWithTheirLine) {
  EXPECT_EQ(FailureOf(OneTask({{"ActualStart", "1949-12-31T08:00:00"}})),
            "quay.xml:12: expected a date from 1950 to 2150 in ActualStart, found "
            "\"1949-12-31T08:00:00\"");
  EXPECT_THAT(FailureOf(OneTask({{"ActualStart", "soon"}})),
              HasSubstr("expected a date as YYYY-MM-DDTHH:MM:SS in ActualStart, found \"soon\""));
}

TEST(MspdiReader, EveryTypeOfConstraint) {
  const std::pair<const char*, ConstraintType> kTypes[] = {
      {"2", ConstraintType::kMandatoryStart},  {"3", ConstraintType::kMandatoryFinish},
      {"4", ConstraintType::kStartNoEarlier},  {"5", ConstraintType::kStartNoLater},
      {"6", ConstraintType::kFinishNoEarlier}, {"7", ConstraintType::kFinishNoLater}};
  for (const auto& [code, type] : kTypes) {
    const Task task =
        ReadTask({{"ConstraintType", code}, {"ConstraintDate", "2027-04-05T12:00:00"}});
    EXPECT_EQ(task.constraint, (Constraint{type, At("2027-04-05 12:00")})) << code;
  }
  EXPECT_EQ(ReadTask({{"ConstraintType", "0"}}).constraint, Constraint{});
  EXPECT_EQ(ReadTask({{"ConstraintType", "1"}}).constraint,
            (Constraint{ConstraintType::kAsLateAsPossible, {}}));
  EXPECT_THAT(FailureOf(OneTask({{"ConstraintType", "8"}})), HasSubstr("a number from 0 to 7"));
  EXPECT_EQ(CountOf(Read(OneTask({{"ConstraintType", "4"}})), "constraints without a date"), 1);
}

TEST(MspdiReader, ADeadlineBoundsTheLateFinish) {
  EXPECT_EQ(ReadTask({{"Deadline", "2027-06-04T17:00:00"}}).second_constraint,
            (Constraint{ConstraintType::kFinishNoLater, At("2027-06-04 17:00")}));
}

TEST(MspdiReader, AManuallyScheduledTaskIsHeldAtItsStart) {
  const ReadResult result = Read(OneTask({{"Manual", "1"}, {"ConstraintType", "1"}}));
  EXPECT_EQ(TaskOf(result.plan, "1").constraint,
            (Constraint{ConstraintType::kPlacedStart, At("2027-03-01 08:00")}));
  EXPECT_EQ(CountOf(result, "manually scheduled tasks: held"), 1);
  const ReadResult dateless = Read(OneTask({{"Manual", "1"}, {"Start", ""}}));
  EXPECT_EQ(TaskOf(dateless.plan, "1").constraint, Constraint{});
  EXPECT_EQ(CountOf(dateless, "manually scheduled tasks without a date"), 1);
  EXPECT_EQ(ReadTask({{"Manual", "1"}, {"ActualStart", "2027-03-01T08:00:00"}}).constraint,
            Constraint{});
}

TEST(MspdiReader, TasksOfOtherProjectsAreHeldAtTheirStart) {
  const ReadResult result = Read(OneTask({{"ExternalTask", "1"}}));
  EXPECT_EQ(TaskOf(result.plan, "1").constraint.type, ConstraintType::kPlacedStart);
  EXPECT_EQ(CountOf(result, "stand for other projects"), 1);
}

TEST(MspdiReader, ATaskThatLevellingMovedStaysThere) {
  const ReadResult result = Read(OneTask({{"LevelingDelay", "4800"}}));
  EXPECT_EQ(TaskOf(result.plan, "1").constraint,
            (Constraint{ConstraintType::kStartNoEarlier, At("2027-03-01 08:00")}));
  EXPECT_EQ(CountOf(result, "moved by levelling"), 1);
}

TEST(MspdiReader, DatesThatTheFileHasComputedAreKeptForComparison) {
  const StoredDates stored = ReadTask({{"EarlyStart", "2027-03-01T08:00:00"},
                                       {"EarlyFinish", "2027-03-06T00:00:00"},
                                       {"LateStart", "2027-03-08T08:00:00"},
                                       {"LateFinish", "2027-03-12T17:00:00"},
                                       {"TotalSlack", "24000"}})
                                 .stored;
  EXPECT_EQ(stored.early_start, At("2027-03-01 08:00"));
  EXPECT_EQ(stored.early_finish, At("2027-03-05 24:00"));
  EXPECT_EQ(stored.late_start, At("2027-03-08 08:00"));
  EXPECT_EQ(stored.late_finish, At("2027-03-12 17:00"));
  EXPECT_EQ(stored.total_float_minutes, 2400);  // tenths of minutes
}

// Links.

std::vector<Link> LinksOf(const std::string& link, const Elements& successor = {}) {
  Elements other = successor;
  other.emplace_back("PredecessorLink", link);
  return Read(WithCalendar().Task(1).Task(2, other)).plan.links;
}

TEST(MspdiReader, LinksOfEveryType) {
  EXPECT_EQ(LinksOf(MspdiText::Link(1, 0)).at(0).type, LinkType::kFinishToFinish);
  EXPECT_EQ(LinksOf(MspdiText::Link(1, 1)).at(0).type, LinkType::kFinishToStart);
  EXPECT_EQ(LinksOf(MspdiText::Link(1, 2)).at(0).type, LinkType::kStartToFinish);
  EXPECT_EQ(LinksOf(MspdiText::Link(1, 3)).at(0).type, LinkType::kStartToStart);
  EXPECT_THAT(ErrorOf([] { LinksOf(MspdiText::Link(1, 4)); }),
              HasSubstr("a number from 0 to 3 in Type"));
  EXPECT_THAT(ErrorOf([] { LinksOf(MspdiText::Link(2, 1)); }),
              HasSubstr("expected another task than the link's own"));
}

TEST(MspdiReader, LagsAreTenthsOfMinutesOrPercentages) {
  const auto lag = [](const char* amount, const char* format) {
    return LinksOf(MspdiText::Link(1, 1, {{"LinkLag", amount}, {"LagFormat", format}})).at(0);
  };
  EXPECT_EQ(lag("4800", "7").lag_minutes, 480);
  EXPECT_EQ(lag("-4800", "7").lag_minutes, -480);
  EXPECT_EQ(lag("4800", "7").lag_calendar, LagCalendar::kPlanDefault);
  EXPECT_EQ(lag("14400", "8").lag_minutes, 1440);
  EXPECT_EQ(lag("14400", "8").lag_calendar, LagCalendar::kElapsed);
  EXPECT_EQ(lag("50", "19").lag_minutes, 1200);  // half of 40 hours
  EXPECT_EQ(lag("-25", "51").lag_minutes, -600);
  EXPECT_EQ(lag("50", "20").lag_calendar, LagCalendar::kElapsed);
  EXPECT_EQ(lag("50", "52").lag_minutes, 1200);
}

TEST(MspdiReader, LagsRunOnTheCalendarThatTheSuccessorHasOfItsOwn) {
  EXPECT_EQ(LinksOf(MspdiText::Link(1, 1), {{"CalendarUID", "1"}}).at(0).lag_calendar,
            LagCalendar::kSuccessor);
}

TEST(MspdiReader, LinksToOtherProjectsAreCounted) {
  const ReadResult result = Read(WithCalendar().Task(1).Task(
      2, {{"PredecessorLink", MspdiText::Link(1, 1, {{"CrossProject", "1"}})}}));
  EXPECT_THAT(result.plan.links, IsEmpty());
  EXPECT_EQ(CountOf(result, "links to tasks of other projects"), 1);
}

// Calendars of tasks.

std::string OnlyDay(int type) {
  std::string days;
  for (int day = 1; day <= 7; ++day) {
    days += day == type ? MspdiText::Day(day, {{"08:00:00", "16:00:00"}}) : MspdiText::Day(day, {});
  }
  return Xml({{"WeekDays", days}});
}

/// A plan with calendars 1 (standard), 2 (Saturdays) and 3 (Sundays), the last two of resources 22
/// and 33, and resource 11 on a copy of the standard calendar.
MspdiText WithResources() {
  MspdiText text = WithCalendar();
  text.Calendar(2, "Saturdays", OnlyDay(7), {{"IsBaseCalendar", "0"}});
  text.Calendar(3, "Sundays", OnlyDay(1), {{"IsBaseCalendar", "0"}});
  text.Calendar(4, "Crew", "", {{"IsBaseCalendar", "0"}, {"BaseCalendarUID", "1"}});
  return text.Resource(22, 2).Resource(33, 3).Resource(11, 4);
}

TEST(MspdiReader, ATaskMayHaveItsOwnCalendar) {
  const ReadResult result = Read(WithResources()
                                     .Task(1, {{"CalendarUID", "2"}})
                                     .Task(2, {{"CalendarUID", "-1"}})
                                     .Task(3, {{"CalendarUID", "99"}}));
  EXPECT_EQ(result.plan.FindCalendar(TaskOf(result.plan, "1").calendar)->name, "Saturdays");
  EXPECT_EQ(TaskOf(result.plan, "2").calendar, 0);
  EXPECT_EQ(TaskOf(result.plan, "3").calendar, 0);
  EXPECT_EQ(CountOf(result, "a calendar that is not in the file"), 1);
}

TEST(MspdiReader, ATaskIsWorkedOnWheneverOneOfItsResourcesIs) {
  const ReadResult result = Read(WithResources()
                                     .Task(1)
                                     .Task(2)
                                     .Task(3)
                                     .Assignment(1, 22)
                                     .Assignment(1, 33)
                                     .Assignment(2, 22)
                                     .Assignment(3, 11));
  const CalendarDefinition* both = result.plan.FindCalendar(TaskOf(result.plan, "1").calendar);
  ASSERT_NE(both, nullptr);
  EXPECT_EQ(both->name, "Saturdays + Sundays");
  EXPECT_THAT(both->week[4], IsEmpty());
  EXPECT_THAT(both->week[5], ElementsAre(Shift{480, 960}));
  EXPECT_THAT(both->week[6], ElementsAre(Shift{480, 960}));
  EXPECT_EQ(result.plan.FindCalendar(TaskOf(result.plan, "2").calendar)->name, "Saturdays");
  EXPECT_EQ(TaskOf(result.plan, "3").calendar, 0);  // the same work as the plan's calendar
  EXPECT_EQ(CountOf(result, "resource assignments"), 4);
}

TEST(MspdiReader, ATaskWithItsOwnCalendarIsWorkedOnWithinIt) {
  MspdiText text = WithResources();
  text.Calendar(5, "Six days", Xml({{"WeekDays", MspdiText::Day(7, {{"08:00:00", "12:00:00"}})}}));
  text.Task(1, {{"CalendarUID", "5"}}).Assignment(1, 22);
  text.Task(2, {{"CalendarUID", "5"}, {"IgnoreResourceCalendar", "1"}}).Assignment(2, 22);
  const Plan plan = Read(text).plan;
  const CalendarDefinition* within = plan.FindCalendar(TaskOf(plan, "1").calendar);
  ASSERT_NE(within, nullptr);
  EXPECT_THAT(within->week[0], IsEmpty());
  EXPECT_THAT(within->week[5], ElementsAre(Shift{480, 720}));
  EXPECT_EQ(plan.FindCalendar(TaskOf(plan, "2").calendar)->name, "Six days");
}

std::string Figure(const std::string& start, const std::string& finish, const std::string& value) {
  return Xml({{"TimephasedData",
               Xml({{"Type", "1"}, {"Start", start}, {"Finish", finish}, {"Value", value}})}});
}

TEST(MspdiReader, ThePausesOfASplitTaskArePartOfItsDuration) {
  const std::string course =
      Figure("2027-03-01T08:00:00", "2027-03-01T17:00:00", "PT8H0M0S") +
      Figure("2027-03-01T17:00:00", "2027-03-02T17:00:00", "PT0H0M0S") +
      Figure("2027-03-02T17:00:00", "2027-03-03T12:00:00", "PT0H0M0S") +
      Figure("2027-03-03T12:00:00", "2027-03-03T17:00:00", "PT4H0M0S") +
      Figure("2027-03-03T17:00:00", "2027-03-04T17:00:00", "PT0H0M0S");  // nothing comes after
  const ReadResult result = Read(WithCalendar()
                                     .Task(1, {{"RemainingDuration", "PT12H0M0S"}})
                                     .Task(2)
                                     .Assignment(1, -65535, course));
  // All of Tuesday and the morning of Wednesday are 12 hours.
  EXPECT_EQ(TaskOf(result.plan, "1").remaining_minutes, (12 + 12) * 60);
  EXPECT_EQ(TaskOf(result.plan, "1").original_minutes, (40 + 12) * 60);
  EXPECT_EQ(TaskOf(result.plan, "1").calendar, 0);
  EXPECT_EQ(TaskOf(result.plan, "2").remaining_minutes, 40 * 60);
  EXPECT_EQ(CountOf(result, "split tasks"), 1);
}

TEST(MspdiReader, PausesOfOneResourceAloneAreLeftOut) {
  const std::string split = Figure("2027-03-01T08:00:00", "2027-03-01T17:00:00", "PT8H0M0S") +
                            Figure("2027-03-02T08:00:00", "2027-03-02T17:00:00", "PT0H0M0S") +
                            Figure("2027-03-03T08:00:00", "2027-03-03T17:00:00", "PT8H0M0S");
  const std::string whole = Figure("2027-03-01T08:00:00", "2027-03-03T17:00:00", "PT24H0M0S");
  const ReadResult result =
      Read(WithResources().Task(1).Assignment(1, 11, split).Assignment(1, 11, whole));
  EXPECT_EQ(TaskOf(result.plan, "1").calendar, 0);
  EXPECT_EQ(CountOf(result, "pause at different times"), 1);
}

TEST(MspdiReader, WorkOnACalendarWithoutWorkingTimeIsRefused) {
  EXPECT_THAT(FailureOf(WithResources().Task(1, {{"CalendarUID", "2"}}).Assignment(1, 33)),
              HasSubstr("expected a calendar with working time for task 1, found \"Saturdays\" "
                        "without any"));
}

// What a plan cannot hold.

TEST(MspdiReader, WhatIsLeftOutIsCounted) {
  const ReadResult result = Read(OneTask({{"ExtendedAttribute", ""},
                                          {"ExtendedAttribute", ""},
                                          {"OutlineCode", ""},
                                          {"Baseline", ""}}));
  EXPECT_EQ(CountOf(result, "custom fields and outline codes"), 3);
  EXPECT_EQ(CountOf(result, "baselines of tasks"), 1);
}

}  // namespace
}  // namespace nimbrel::engine
