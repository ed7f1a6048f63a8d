// Tasks: kinds and hierarchy, dates and constraints, what is stored on them.

#include <limits>

#include "tests/objects/support.h"

namespace nimbrel::engine {

using platform::kDuplicateKey;
using platform::kInvalidProcedureCall;
using platform::kOverflow;
using platform::kSubscriptOutOfRange;
using platform::kTypeMismatch;
using platform::Variant;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

constexpr double kMorning = 8.0 / 24.0;
constexpr double kEvening = 17.0 / 24.0;

class TaskObjectTest : public ObjectsTest {
 protected:
  Date Start(const std::string& id) { return TaskOf(id)->get_Dates()->get_Start(); }
  Date Finish(const std::string& id) { return TaskOf(id)->get_Dates()->get_Finish(); }
  std::vector<std::string> ChildrenOf(const std::string& id) {
    std::vector<std::string> ids;
    for (const auto& child : TaskOf(id)->get_Children()) {
      ids.push_back(child->get_ID());
    }
    return ids;
  }
};

// Kinds and hierarchy.

TEST_F(TaskObjectTest, TheTypeIsTheCodeThatPicturesGoBy) {
  Plan document = MakePlan();
  AddTask(document, "TASK", 1);
  AddTask(document, "START", 0).kind = TaskKind::kStartMilestone;
  AddTask(document, "FINISH", 0).kind = TaskKind::kFinishMilestone;
  AddTask(document, "EFFORT", 1).kind = TaskKind::kLevelOfEffort;
  AddTask(document, "SUM", 0);
  Open(std::move(document));
  EXPECT_EQ(TaskOf("TASK")->get_Type(), 0);
  EXPECT_EQ(TaskOf("START")->get_Type(), 2);
  EXPECT_EQ(TaskOf("FINISH")->get_Type(), 5);
  EXPECT_EQ(TaskOf("EFFORT")->get_Type(), 4);
  EXPECT_EQ(TaskOf("SUM")->get_Type(), 0);
  TaskOf("TASK")->MoveUnder(0, TaskOf("SUM"));
  EXPECT_EQ(TaskOf("SUM")->get_Type(), 1) << "what has tasks under it is a summary";
}

TEST_F(TaskObjectTest, ATaskIsPlacedBehindTheOtherChildren) {
  Open({{"A", 1}, {"B", 1}, {"C", 1}, {"SUM", 0}});
  for (const char* id : {"C", "A", "B"}) {
    TaskOf(id)->MoveUnder(0, TaskOf("SUM"));
  }
  EXPECT_THAT(ChildrenOf("SUM"), ElementsAre("C", "A", "B"));
  TaskOf("C")->MoveUnder(0, TaskOf("SUM"));
  EXPECT_THAT(ChildrenOf("SUM"), ElementsAre("A", "B", "C"));
  EXPECT_EQ(TaskOf("A")->Parent(0), TaskOf("SUM"));
}

TEST_F(TaskObjectTest, ATaskCannotBePlacedUnderItselfOrWhatIsUnderIt) {
  Open({{"A", 1}, {"B", 1}, {"C", 1}});
  TaskOf("B")->MoveUnder(0, TaskOf("A"));
  TaskOf("C")->MoveUnder(0, TaskOf("B"));
  EXPECT_EQ(ErrorOf([&] { TaskOf("A")->MoveUnder(0, TaskOf("A")); }), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([&] { TaskOf("A")->MoveUnder(0, TaskOf("C")); }), kInvalidProcedureCall);
  EXPECT_TRUE(TaskOf("A")->Parent(0).IsNothing());
}

TEST_F(TaskObjectTest, AMilestoneHasNoTasksUnderIt) {
  Plan document = MakePlan();
  AddTask(document, "START", 0).kind = TaskKind::kStartMilestone;
  AddTask(document, "A", 1);
  Open(std::move(document));
  EXPECT_EQ(ErrorOf([&] { TaskOf("A")->MoveUnder(0, TaskOf("START")); }), kInvalidProcedureCall);
}

TEST_F(TaskObjectTest, ReferencesFollowATaskThatChangesItsPlace) {
  Open({{"A", 1}, {"B", 2}, {"SUM", 0}});
  const auto a = TaskOf("A");
  const auto b = TaskOf("B");
  b->MoveUnder(0, TaskOf("SUM"));
  a->MoveUnder(0, TaskOf("SUM"));
  EXPECT_EQ(a->get_SampledDuration(), 1);
  EXPECT_EQ(b->get_SampledDuration(), 2);
  EXPECT_EQ(tasks()->Item(3), a);
}

TEST_F(TaskObjectTest, OnlyASummaryCanBeWithoutCalendar) {
  Open({{"A", 1}, {"SUM", 0}});
  TaskOf("SUM")->put_Calendar(nullptr);
  TaskOf("A")->put_Calendar(nullptr);
  EXPECT_EQ(TaskOf("SUM")->get_Calendar(), calendars()->Item("STANDARD"));
  TaskOf("A")->MoveUnder(0, TaskOf("SUM"));
  EXPECT_TRUE(TaskOf("SUM")->get_Calendar().IsNothing());
  EXPECT_EQ(TaskOf("A")->get_Calendar(), calendars()->Item("STANDARD"));
}

// Dates.

TEST_F(TaskObjectTest, DatesAreTheEarlyOnesAndEndWithTheWork) {
  Open({{"A", 2}});
  EXPECT_EQ(Start("A"), January(4) + kMorning);
  EXPECT_EQ(Finish("A"), January(5) + kEvening);
}

TEST_F(TaskObjectTest, AFinishAtTheEndOfADayIsTheMidnightThatFollows) {
  Plan document = MakePlan();
  document.AddCalendar(MakeWeekCalendar("AROUND THE CLOCK", 7, 24));
  AddTask(document, "A", 3);  // 24 hours
  Open(std::move(document));
  TaskOf("A")->put_Calendar(calendars()->Item("AROUND THE CLOCK"));
  EXPECT_EQ(Start("A"), January(4));
  EXPECT_EQ(Finish("A"), January(5));
}

TEST_F(TaskObjectTest, ReadingADateSchedulesWhatHasChanged) {
  Open({{"A", 2}});
  EXPECT_EQ(Finish("A"), January(5) + kEvening);
  TaskOf("A")->Duration(-1)->put_Likely(3.0);
  EXPECT_EQ(Finish("A"), January(6) + kEvening);
}

TEST_F(TaskObjectTest, WithAutoRecalculateOffDatesAreThoseOfTheLastScheduling) {
  Open({{"A", 2}});
  plan()->put_AutoRecalculate(false);
  EXPECT_EQ(Finish("A"), January(5) + kEvening) << "a plan never scheduled is scheduled";
  TaskOf("A")->Duration(-1)->put_Likely(3.0);
  EXPECT_EQ(Finish("A"), January(5) + kEvening);
  const auto added = tasks()->Add();
  EXPECT_EQ(Finish("A"), January(5) + kEvening);
  EXPECT_EQ(added->get_Dates()->get_Start(), January(4)) << "it was not there then";
  plan()->Recalculate();
  EXPECT_EQ(Finish("A"), January(6) + kEvening);
  TaskOf("A")->Duration(0)->put_Likely(4.0);
  plan()->put_AutoRecalculate(true);
  EXPECT_EQ(Finish("A"), January(7) + kEvening);
}

TEST_F(TaskObjectTest, TasksThatCarryWeatherStandAtTheStatusDateAndMoveNothing) {
  Open({{"A", 2}});
  const auto period = tasks()->Add();
  period->get_UserFields()->SetValue(2, "weather", "tasktype", "1");
  period->Duration(-1)->put_Likely(200.0);
  EXPECT_EQ(period->get_Dates()->get_Start(), January(4));
  EXPECT_EQ(period->get_Dates()->get_Finish(), January(4));
  EXPECT_FALSE(period->get_Critical());
  EXPECT_EQ(period->NextWorkingDate(January(9), 0.0), January(9));
  EXPECT_EQ(host_->scheduler().task_count(), 1);
  EXPECT_TRUE(TaskOf("A")->get_Critical());
}

TEST_F(TaskObjectTest, ATaskThatStopsCarryingWeatherTakesPartAgain) {
  Open({{"A", 2}});
  TaskOf("A")->get_UserFields()->SetValue(2, "weather", "tasktype", "1");
  EXPECT_FALSE(host_->Participates(Stored("A")));
  EXPECT_EQ(host_->scheduler().task_count(), 0);
  tasks()->Remove("A");
  const auto added = tasks()->Add();
  EXPECT_EQ(host_->scheduler().IndexOf(Stored(added->get_ID()).uid), 0);
}

TEST_F(TaskObjectTest, CriticalGoesByTheFloatOfThePlanAsItStands) {
  Open({{"LONG", 5}, {"SHORT", 2}});
  EXPECT_TRUE(TaskOf("LONG")->get_Critical());
  EXPECT_FALSE(TaskOf("SHORT")->get_Critical());
  TaskOf("SHORT")->Duration(-1)->put_Likely(9.0);
  EXPECT_FALSE(TaskOf("LONG")->get_Critical());
  EXPECT_TRUE(TaskOf("SHORT")->get_Critical());
}

TEST_F(TaskObjectTest, RecalculateFinishIsTheBackwardPass) {
  Open({{"LONG", 5}, {"SHORT", 2}});
  plan()->RecalculateFinish();
  Scheduler& scheduler = host_->scheduler();
  const TaskIndex index = scheduler.IndexOf(Stored("SHORT").uid);
  // Five days to Friday, less its own two.
  EXPECT_EQ(scheduler.total_float(index), 3 * 480);
  EXPECT_EQ(scheduler.late_finish(index), Instant(JanuaryDay(8), 17 * 60));
}

TEST_F(TaskObjectTest, ProgressIsThePercentageAndNeverZeroOnceBegun) {
  Plan document = MakePlan();
  AddTask(document, "NEW", 1);
  Task& begun = AddTask(document, "BEGUN", 1);
  begun.actual_start = Instant(JanuaryDay(4), 480);
  Task& half = AddTask(document, "HALF", 1);
  half.actual_start = Instant(JanuaryDay(4), 480);
  half.percent_complete = 50;
  Task& done = AddTask(document, "DONE", 0);
  done.actual_start = Instant(JanuaryDay(4), 480);
  done.actual_finish = Instant(JanuaryDay(4), 1020);
  Open(std::move(document));
  EXPECT_EQ(TaskOf("NEW")->get_Dates()->get_Progress(), 0.0);
  EXPECT_EQ(TaskOf("BEGUN")->get_Dates()->get_Progress(), 1.0);
  EXPECT_EQ(TaskOf("HALF")->get_Dates()->get_Progress(), 50.0);
  EXPECT_EQ(TaskOf("DONE")->get_Dates()->get_Progress(), 100.0);
}

TEST_F(TaskObjectTest, ACompletedTaskIsHeldUpByNothing) {
  Plan document = MakePlan();
  Task& done = AddTask(document, "DONE", 0);
  done.actual_start = Instant(JanuaryDay(4), 480);
  done.actual_finish = Instant(JanuaryDay(7), 1020);
  Open(std::move(document));
  AddWeather("NORTH SEA", "DONE")->SetDays(0, January(5), January(6));
  EXPECT_EQ(TaskOf("DONE")->NextWorkingDate(January(5), 0.0), January(5));
  EXPECT_EQ(Start("DONE"), January(4) + kMorning);
  EXPECT_EQ(Finish("DONE"), January(7) + kEvening);
}

TEST_F(TaskObjectTest, NextWorkingDateAsksForTheDayAndGivesTheStartOfTheNextOne) {
  Open({{"A", 2}});
  EXPECT_EQ(TaskOf("A")->NextWorkingDate(January(4) + 0.99, 0.0), January(4) + 0.99);
  EXPECT_EQ(TaskOf("A")->NextWorkingDate(January(9) + 0.5, 0.0), January(11) + kMorning);
}

// Constraints.

TEST_F(TaskObjectTest, TypeAndDateOfAConstraintCanBePutInEitherOrder) {
  Open({{"A", 2}, {"B", 2}});
  TaskOf("A")->get_Dates()->put_Constraint(3);
  TaskOf("A")->get_Dates()->put_ConstraintDate(January(6));
  TaskOf("B")->get_Dates()->put_ConstraintDate(January(6));
  TaskOf("B")->get_Dates()->put_Constraint(3);
  EXPECT_EQ(Start("A"), January(6) + kMorning);
  EXPECT_EQ(Start("B"), January(6) + kMorning);
  EXPECT_EQ(Stored("A").constraint, Stored("B").constraint);
}

TEST_F(TaskObjectTest, AConstraintWithoutDateHasNoEffectAndIsNotKept) {
  Open({{"A", 2}});
  TaskOf("A")->get_Dates()->put_Constraint(3);
  EXPECT_EQ(Start("A"), January(4) + kMorning);
  EXPECT_EQ(Stored("A").constraint, Constraint{});
}

TEST_F(TaskObjectTest, ANewDateGoesWithTheTypeThatIsThere) {
  Plan document = MakePlan();
  AddTask(document, "A", 1).constraint = {ConstraintType::kFinishOn, Instant(JanuaryDay(8), 1020)};
  Open(std::move(document));
  TaskOf("A")->get_Dates()->put_ConstraintDate(January(12) + kEvening);
  EXPECT_EQ(Stored("A").constraint,
            (Constraint{ConstraintType::kFinishOn, Instant(JanuaryDay(12), 1020)}));
}

TEST_F(TaskObjectTest, ConstraintsHaveTheCodesOfTheDocument) {
  Open({{"A", 1}});
  const auto dates = TaskOf("A")->get_Dates();
  dates->put_ConstraintDate(January(6));
  for (Long code = 1; code <= 8; ++code) {
    dates->put_Constraint(code);
    EXPECT_EQ(static_cast<Long>(Stored("A").constraint.type), code);
  }
  dates->put_Constraint(9);
  EXPECT_EQ(Stored("A").constraint, (Constraint{ConstraintType::kAsLateAsPossible, {}}));
  EXPECT_EQ(ErrorOf([&] { dates->put_Constraint(10); }), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([&] { dates->put_Constraint(-1); }), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([&] { dates->put_ConstraintDate(Date{1e9}); }), kOverflow);
}

// Estimate and risk.

TEST_F(TaskObjectTest, AnEstimateIsMadeFromWhatRemains) {
  Open({{"A", 3}});
  const auto task = TaskOf("A");
  EXPECT_TRUE(task->Duration(0).IsNothing());
  const auto duration = task->Duration(-1);
  EXPECT_EQ(duration->get_Minimum(), 3.0);
  EXPECT_EQ(duration->get_Likely(), 3.0);
  EXPECT_EQ(duration->get_Maximum(), 3.0);
  EXPECT_EQ(task->Duration(0), duration);
  EXPECT_EQ(Stored("A").range, (ThreePoint{3, 3, 3, Shape::kTriangular}));
}

TEST_F(TaskObjectTest, TheThreePointsMayBeOutOfOrderWhileTheyAreWritten) {
  Open({{"A", 3}});
  const auto duration = TaskOf("A")->Duration(-1);
  duration->put_Minimum(10.0);
  duration->put_Likely(-2.5);
  duration->put_Maximum(5.0);
  EXPECT_EQ(Stored("A").range, (ThreePoint{10, -2.5, 5, Shape::kTriangular}));
}

TEST_F(TaskObjectTest, ANegativeLikelyDurationIsScheduledAsNone) {
  Open({{"A", 3}});
  plan()->Recalculate();
  TaskOf("A")->Duration(-1)->put_Likely(-1.0);
  EXPECT_EQ(Finish("A"), Start("A"));
}

TEST_F(TaskObjectTest, ASingleValueThatIsSpreadBecomesTriangular) {
  Plan document = MakePlan();
  AddTask(document, "A", 3).range = ThreePoint{3, 3, 3, Shape::kSingle};
  Open(std::move(document));
  TaskOf("A")->Duration(0)->put_Maximum(5.0);
  EXPECT_EQ(Stored("A").range, (ThreePoint{3, 3, 5, Shape::kTriangular}));
}

TEST_F(TaskObjectTest, DurationsThatNoScheduleCanHoldAreRefused) {
  Open({{"A", 3}});
  const auto duration = TaskOf("A")->Duration(-1);
  EXPECT_EQ(ErrorOf([&] { duration->put_Likely(1e12); }), kOverflow);
  EXPECT_EQ(ErrorOf([&] { duration->put_Likely(std::numeric_limits<double>::quiet_NaN()); }),
            kOverflow);
  EXPECT_EQ(duration->get_Likely(), 3.0);
}

TEST_F(TaskObjectTest, ARiskIsMadeAtOneHundredPercent) {
  Open({{"A", 3}});
  EXPECT_EQ(TaskOf("A")->Risk(-1)->get_Probability(), 100.0);
  EXPECT_EQ(Stored("A").risk, (OccurrenceRisk{100.0, 0}));
}

TEST_F(TaskObjectTest, AHeldRiskIsCertainOnceItWasTakenAwayAndComesBackWithAWrite) {
  Open({{"A", 3}});
  const auto risk = TaskOf("A")->Risk(-1);
  risk->put_Probability(25.0);
  risk->put_Mode(1);
  EXPECT_EQ(Stored("A").risk, (OccurrenceRisk{25.0, 1}));
  EXPECT_TRUE(TaskOf("A")->Risk(1).IsNothing());
  EXPECT_FALSE(Stored("A").risk);
  EXPECT_EQ(risk->get_Probability(), 100.0);
  risk->put_Probability(10.0);
  EXPECT_EQ(TaskOf("A")->Risk(0), risk);
}

TEST_F(TaskObjectTest, AProbabilityIsKeptAsGivenAsLongAsItIsANumber) {
  Open({{"A", 1}});
  const Ref<Corvane8::TaskRisk> risk = TaskOf("A")->Risk(-1);
  // Whoever lets a user type 120% finds it again; the engine takes it for certain.
  risk->put_Probability(120.0);
  EXPECT_EQ(risk->get_Probability(), 120.0);
  EXPECT_EQ(ErrorOf([&] { risk->put_Probability(std::numeric_limits<double>::quiet_NaN()); }),
            kInvalidProcedureCall);
  EXPECT_EQ(risk->get_Probability(), 120.0);
}

TEST_F(TaskObjectTest, UnknownModesAreRefused) {
  Open({{"A", 3}});
  EXPECT_EQ(ErrorOf([&] { TaskOf("A")->Duration(1); }), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([&] { TaskOf("A")->Risk(2); }), kInvalidProcedureCall);
}

// Texts and custom fields.

TEST_F(TaskObjectTest, TextsAreFoundWithoutRegardToCase) {
  Open({{"A", 3}});
  const auto fields = TaskOf("A")->get_UserFields();
  fields->SetValue(2, "weather", "tasktype", "1");
  fields->SetValue(2, "Weather", "TaskType", "3");
  EXPECT_EQ(fields->GetValue(2, "WEATHER", "TASKTYPE", "0"), "3");
  EXPECT_THAT(Stored("A").user_values, ElementsAre(UserValue{"weather", "tasktype", "3"}));
}

TEST_F(TaskObjectTest, CustomFieldsKeepTheTypeOfTheirValue) {
  Open({{"A", 3}});
  plan()->get_CustomFields()->Add("Weather-start", 2);
  const auto fields = TaskOf("A")->get_UserFields();
  for (const Variant& value :
       {Variant(January(4)), Variant(46026.0), Variant(46026), Variant("4 January")}) {
    fields->SetCustom("weather-START", value);
    EXPECT_EQ(fields->GetCustom("Weather-start"), value);
  }
  EXPECT_THAT(Stored("A").custom_values, ElementsAre(CustomValue{"Weather-start", "4 January"}));
  fields->SetCustom("Weather-start", Variant());
  EXPECT_THAT(Stored("A").custom_values, IsEmpty());
}

TEST_F(TaskObjectTest, AFieldThatThePlanDoesNotHaveReadsEmptyAndCannotBeSet) {
  Open({{"A", 3}});
  const auto fields = TaskOf("A")->get_UserFields();
  EXPECT_TRUE(fields->GetCustom("Weather-start").IsEmpty());
  EXPECT_EQ(ErrorOf([&] { fields->SetCustom("Weather-start", January(4)); }),
            kInvalidProcedureCall);
}

// Links and risk calendars.

TEST_F(TaskObjectTest, LinkTypesGoByWhereTheyLeaveAndWhereTheyArrive) {
  Open({{"A", 1}, {"B", 1}});
  const auto successors = TaskOf("A")->get_Links()->get_Successors();
  const std::vector<LinkType> types = {LinkType::kStartToStart, LinkType::kStartToFinish,
                                       LinkType::kFinishToStart, LinkType::kFinishToFinish};
  for (Long code = 0; code < 4; ++code) {
    successors->Add("B", code, 0, 0, 0);
    EXPECT_EQ(host_->document().links.back().type, types[static_cast<std::size_t>(code)]);
    EXPECT_EQ(host_->document().links.back().lag_minutes, 0);
  }
}

TEST_F(TaskObjectTest, LinksThatCannotBeAreRefused) {
  Open({{"A", 1}, {"B", 1}});
  const auto successors = TaskOf("A")->get_Links()->get_Successors();
  EXPECT_EQ(ErrorOf([&] { successors->Add("X", 2, 0, 0, 0); }), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([&] { successors->Add("A", 2, 0, 0, 0); }), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([&] { successors->Add("B", 4, 0, 0, 0); }), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([&] { successors->Add("B", 2, 1, 0, 0); }), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([&] { successors->Add("B", 2, 0, 0, 1); }), kInvalidProcedureCall);
  EXPECT_THAT(host_->document().links, IsEmpty());
  successors->Add("B", 2, 0, 0, 0);
  EXPECT_EQ(ErrorOf([&] { successors->Add("B", 2, 0, 0, 0); }), kDuplicateKey);
}

TEST_F(TaskObjectTest, ALinkIsFoundByItsNumber) {
  Open({{"A", 1}, {"B", 1}, {"C", 1}});
  const auto successors = TaskOf("A")->get_Links()->get_Successors();
  const auto link = successors->Add("C", 2, 0, 0, 0);
  successors->Add("B", 2, 0, 0, 0);
  EXPECT_EQ(successors->Item(1), link);
  EXPECT_EQ(link->get_Task(), TaskOf("C"));
  EXPECT_EQ(successors->Item(2.0)->get_Task(), TaskOf("B"));
  EXPECT_EQ(ErrorOf([&] { successors->Item(3); }), kSubscriptOutOfRange);
  EXPECT_EQ(ErrorOf([&] { successors->Item("C"); }), kTypeMismatch);
}

TEST_F(TaskObjectTest, RiskCalendarsOfATaskAreFoundByNameOrNumber) {
  Open({{"A", 1}});
  AddWeather("NORTH SEA", "A");
  AddWeather("RIVER", "A");
  const auto assigned = TaskOf("A")->get_RiskCalendars();
  EXPECT_EQ(ErrorOf([&] { assigned->Add("north sea"); }), kDuplicateKey);
  EXPECT_EQ(ErrorOf([&] { assigned->Add("LAKE"); }), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([&] { assigned->Remove("LAKE"); }), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([&] { assigned->Remove(3); }), kSubscriptOutOfRange);
  assigned->Elements()[1]->put_Value(0.5);
  assigned->Remove(1);
  EXPECT_THAT(Stored("A").risk_calendars,
              ElementsAre(RiskAssignment{host_->document().FindRiskCalendar("RIVER")->uid, 0.5}));
}

}  // namespace
}  // namespace nimbrel::engine
