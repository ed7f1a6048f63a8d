// The collections of the plan: keys, errors, adding and removing.

#include "tests/objects/support.h"

namespace nimbrel::engine {

using platform::kApplicationDefined;
using platform::kDuplicateKey;
using platform::kInvalidProcedureCall;
using platform::kObjectNotSet;
using platform::kSubscriptOutOfRange;
using platform::kTypeMismatch;
using platform::Variant;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

using CollectionsTest = ObjectsTest;

TEST_F(CollectionsTest, ANumberIsAPositionFromOneInThePlansOrder) {
  Open({{"B", 1}, {"A", 1}});
  calendars()->Add("NORTH SEA");
  risk_calendars()->Add("RIVER");
  EXPECT_EQ(tasks()->Item(1)->get_ID(), "B");
  EXPECT_EQ(tasks()->Item(2.0)->get_ID(), "A");
  EXPECT_EQ(calendars()->Item(2)->get_Name(), "NORTH SEA");
  EXPECT_EQ(risk_calendars()->Item(1)->get_Name(), "RIVER");
}

TEST_F(CollectionsTest, ATextOfDigitsIsAnIdAndNoPosition) {
  Open({{"2", 1}, {"1", 1}});
  EXPECT_EQ(tasks()->Item("2")->get_ID(), "2");
  EXPECT_EQ(tasks()->Item(2)->get_ID(), "1");
}

TEST_F(CollectionsTest, AMissingKeyIsErrorFiveAndIsNamed) {
  Open({{"A", 1}});
  EXPECT_EQ(ErrorOf([&] { tasks()->Item("X"); }), kInvalidProcedureCall);
  EXPECT_EQ(ErrorTextOf([&] { tasks()->Item("X"); }), "There is no task \"X\"");
  EXPECT_EQ(ErrorOf([&] { calendars()->Remove("X"); }), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([&] { risk_calendars()->Item("X"); }), kInvalidProcedureCall);
}

TEST_F(CollectionsTest, ANumberOutsideIsErrorNine) {
  Open({{"A", 1}});
  EXPECT_EQ(ErrorOf([&] { tasks()->Item(0); }), kSubscriptOutOfRange);
  EXPECT_EQ(ErrorOf([&] { tasks()->Item(2); }), kSubscriptOutOfRange);
  EXPECT_EQ(ErrorOf([&] { tasks()->Remove(-1); }), kSubscriptOutOfRange);
}

TEST_F(CollectionsTest, AKeyThatIsNeitherTextNorNumberIsErrorThirteen) {
  Open({{"A", 1}});
  EXPECT_EQ(ErrorOf([&] { tasks()->Item(Variant()); }), kTypeMismatch);
  EXPECT_EQ(ErrorOf([&] { tasks()->Item(true); }), kTypeMismatch);
  EXPECT_EQ(ErrorOf([&] { tasks()->Item(January(4)); }), kTypeMismatch);
}

TEST_F(CollectionsTest, ANameThatIsThereIsError457) {
  Open({{"A", 1}});
  EXPECT_EQ(ErrorOf([&] { calendars()->Add("standard"); }), kDuplicateKey);
  risk_calendars()->Add("RIVER");
  EXPECT_EQ(ErrorOf([&] { risk_calendars()->Add("River"); }), kDuplicateKey);
  plan()->get_CustomFields()->Add("Weather-start", 2);
  EXPECT_EQ(ErrorOf([&] { plan()->get_CustomFields()->Add("WEATHER-START", 3); }), kDuplicateKey);
}

TEST_F(CollectionsTest, AnEmptyNameIsErrorFive) {
  Open({{"A", 1}});
  EXPECT_EQ(ErrorOf([&] { calendars()->Add(""); }), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([&] { risk_calendars()->Add(""); }), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([&] { plan()->get_CustomFields()->Add("", 2); }), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([&] { TaskOf("A")->put_ID(""); }), kInvalidProcedureCall);
}

TEST_F(CollectionsTest, ElementsAreASnapshot) {
  Open({{"A", 1}, {"B", 1}});
  std::vector<std::string> seen;
  for (const auto& task : tasks()->Elements()) {
    seen.push_back(task->get_ID());
    tasks()->Remove(task->get_ID());
    tasks()->Add();
  }
  EXPECT_THAT(seen, ElementsAre("A", "B"));
  EXPECT_EQ(tasks()->Elements().size(), 2U);
}

TEST_F(CollectionsTest, AnAddedTaskIsOrdinaryEmptyAndLast) {
  Open({{"A", 1}});
  const auto added = tasks()->Add();
  EXPECT_EQ(tasks()->Item(2), added);
  const Task& stored = Stored(added->get_ID());
  EXPECT_EQ(stored.kind, TaskKind::kTask);
  EXPECT_EQ(stored.parent, 0);
  EXPECT_EQ(stored.remaining_minutes, 0);
  EXPECT_FALSE(stored.range || stored.risk);
  EXPECT_EQ(added->get_Calendar(), calendars()->Item("STANDARD"));
}

TEST_F(CollectionsTest, AnAddedCalendarWorksHoursPerDayOnEveryDay) {
  Plan document = MakePlan();
  document.hours_per_day = 10;
  Open(std::move(document));
  calendars()->Add("NORTH SEA");
  const CalendarDefinition& stored = *host_->document().FindCalendar("NORTH SEA");
  for (const DayPattern& pattern : stored.week) {
    EXPECT_EQ(MinutesOf(pattern), 600);
  }
}

TEST_F(CollectionsTest, TheIdOfATaskIsFreeForAnotherOnceItIsRenamed) {
  Open({{"A", 1}, {"B", 1}});
  EXPECT_EQ(ErrorOf([&] { TaskOf("B")->put_ID("a"); }), kDuplicateKey);
  TaskOf("A")->put_ID("C");
  TaskOf("B")->put_ID("A");
  EXPECT_EQ(tasks()->Item(2)->get_ID(), "A");
}

TEST_F(CollectionsTest, ARenamedTaskKeepsItsRandomStream) {
  Open({{"A", 1}});
  const std::uint64_t stream = Stored("A").stream;
  TaskOf("A")->put_ID("B");
  EXPECT_EQ(Stored("B").stream, stream);
}

TEST_F(CollectionsTest, ARemovedTaskGoesOnAnsweringFromACopy) {
  Open({{"A", 3}, {"B", 1}});
  const auto task = TaskOf("A");
  task->put_Description("Excavate");
  const auto duration = task->Duration(-1);
  const auto fields = task->get_UserFields();
  fields->SetValue(2, "weather", "nosplit", "True");
  tasks()->Remove("A");
  EXPECT_EQ(task->get_ID(), "A");
  EXPECT_EQ(task->get_Description(), "Excavate");
  EXPECT_EQ(task->get_SampledDuration(), 3);
  EXPECT_FALSE(task->get_SkipInIteration());
  EXPECT_EQ(duration->get_Likely(), 3.0);
  EXPECT_EQ(fields->GetValue(2, "weather", "nosplit", ""), "True");
  EXPECT_THAT(task->get_Children(), IsEmpty());
  EXPECT_TRUE(task->Parent(0).IsNothing());
  task->put_ID("B");
  task->put_Description("Fill");
  duration->put_Likely(5.0);
  task->get_Dates()->put_Constraint(3);
  task->get_Dates()->put_ConstraintDate(January(6));
  EXPECT_EQ(task->get_Description(), "Fill");
  EXPECT_EQ(host_->document().tasks().size(), 1U);
  EXPECT_EQ(Stored("B").description, "");
}

TEST_F(CollectionsTest, WhatNeedsThePlanFailsForARemovedTask) {
  Open({{"A", 3}, {"B", 1}});
  risk_calendars()->Add("RIVER");
  const auto task = TaskOf("A");
  tasks()->Remove("A");
  EXPECT_EQ(ErrorOf([&] { task->get_Dates()->get_Start(); }), kApplicationDefined);
  EXPECT_EQ(ErrorOf([&] { task->get_Dates()->get_Finish(); }), kApplicationDefined);
  EXPECT_EQ(ErrorOf([&] { task->NextWorkingDate(January(4), 0.0); }), kApplicationDefined);
  EXPECT_EQ(ErrorOf([&] { task->get_Critical(); }), kApplicationDefined);
  EXPECT_EQ(ErrorOf([&] { task->MoveUnder(0, TaskOf("B")); }), kApplicationDefined);
  EXPECT_EQ(ErrorOf([&] { TaskOf("B")->MoveUnder(0, task); }), kApplicationDefined);
  EXPECT_EQ(ErrorOf([&] { task->get_Links()->get_Successors()->Add("B", 2, 0, 0, 0); }),
            kApplicationDefined);
  EXPECT_EQ(ErrorOf([&] { task->get_RiskCalendars()->Add("RIVER"); }), kApplicationDefined);
  EXPECT_EQ(ErrorTextOf([&] { task->get_Critical(); }), "The task A is no longer in the plan");
}

TEST_F(CollectionsTest, ChildrenOfARemovedTaskMoveUpToItsParent) {
  Open({{"TOP", 0}, {"MIDDLE", 0}, {"CHILD", 1}});
  TaskOf("MIDDLE")->MoveUnder(0, TaskOf("TOP"));
  TaskOf("CHILD")->MoveUnder(0, TaskOf("MIDDLE"));
  tasks()->Remove("MIDDLE");
  EXPECT_EQ(TaskOf("CHILD")->Parent(0), TaskOf("TOP"));
}

TEST_F(CollectionsTest, TasksOfARemovedCalendarFallBackToTheDefaultOne) {
  Open({{"A", 1}});
  const auto calendar = calendars()->Add("NORTH SEA");
  TaskOf("A")->put_Calendar(calendar);
  EXPECT_EQ(TaskOf("A")->get_Calendar(), calendar);
  calendars()->Remove("NORTH SEA");
  EXPECT_EQ(TaskOf("A")->get_Calendar(), calendars()->Item("STANDARD"));
  EXPECT_EQ(Stored("A").calendar, 0);
}

TEST_F(CollectionsTest, ARiskCalendarWhoseCalendarWasRemovedTakesNoDays) {
  Open({{"A", 1}});
  AddWeather("NORTH SEA", "A")->SetDays(0, January(4), January(8));
  calendars()->Remove("NORTH SEA");
  EXPECT_EQ(TaskOf("A")->NextWorkingDate(January(4), 0.0), January(4));
}

TEST_F(CollectionsTest, TheDefaultCalendarCannotBeRemoved) {
  Open({{"A", 1}});
  EXPECT_EQ(ErrorOf([&] { calendars()->Remove("STANDARD"); }), kInvalidProcedureCall);
}

TEST_F(CollectionsTest, ARemovedCalendarGoesOnCountingByItself) {
  Open({{"A", 1}});
  const auto calendar = calendars()->Add("NORTH SEA");
  calendar->SetDays(0, January(5), kNoDate);
  calendars()->Remove("NORTH SEA");
  EXPECT_EQ(calendar->get_Name(), "NORTH SEA");
  EXPECT_EQ(calendar->WeekdayStatus(6, 1), 1);
  EXPECT_EQ(calendar->WorkingTime(January(4), January(8), 1), 4);
  calendar->SetDays(1, January(1), January(31));
  calendar->SetDays(0, January(7), January(8));
  EXPECT_EQ(calendar->WorkingTime(January(4), January(8), 1), 3);
  EXPECT_EQ(ErrorOf([&] { TaskOf("A")->put_Calendar(calendar); }), kInvalidProcedureCall);
}

TEST_F(CollectionsTest, RemovingARiskCalendarTakesItsAssignments) {
  Open({{"A", 1}});
  AddWeather("NORTH SEA", "A");
  const auto risk_calendar = risk_calendars()->Item("NORTH SEA");
  const auto assigned = TaskOf("A")->get_RiskCalendars()->Elements()[0];
  risk_calendars()->Remove("NORTH SEA");
  EXPECT_THAT(Stored("A").risk_calendars, IsEmpty());
  EXPECT_EQ(risk_calendar->get_Name(), "NORTH SEA");
  EXPECT_EQ(assigned->get_RiskCalendar(), risk_calendar);
  EXPECT_EQ(ErrorOf([&] { assigned->put_Value(1.0); }), kApplicationDefined);
}

TEST_F(CollectionsTest, ACalendarTakenOutFromBeforeAnotherLeavesThatOneItsDays) {
  Open({{"A", 1}});
  calendars()->Add("FIRST");
  const auto second = calendars()->Add("SECOND");
  second->SetDays(0, January(4), January(6));
  calendars()->Remove("FIRST");
  second->SetDays(0, January(7), January(7));
  EXPECT_EQ(second->WorkingTime(January(4), January(8), 1), 1);
  EXPECT_THAT(host_->document().FindCalendar("SECOND")->taken,
              ElementsAre(DayRange{JanuaryDay(4), JanuaryDay(7)}));
}

TEST_F(CollectionsTest, NothingWhereAnObjectIsNeededIsError91) {
  Open({{"A", 1}});
  EXPECT_EQ(ErrorOf([&] { TaskOf("A")->MoveUnder(0, nullptr); }), kObjectNotSet);
}

TEST_F(CollectionsTest, CustomFieldsHaveTheCodesTwoAndThree) {
  Open({{"A", 1}});
  EXPECT_FALSE(plan()->get_CustomFields()->Add("Weather-start", 2).IsNothing());
  EXPECT_FALSE(plan()->get_CustomFields()->Add("Weather-end", 3).IsNothing());
  EXPECT_EQ(ErrorOf([&] { plan()->get_CustomFields()->Add("Other", 1); }), kInvalidProcedureCall);
  EXPECT_THAT(host_->document().custom_fields,
              ElementsAre(CustomField{"Weather-start", 2}, CustomField{"Weather-end", 3}));
}

}  // namespace
}  // namespace nimbrel::engine
