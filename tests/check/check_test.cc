#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/check/plan_health.h"
#include "engine/check/stored_dates.h"
#include "engine/plan/plan.h"
#include "engine/schedule/scheduler.h"

namespace nimbrel::engine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int32_t kMonday = 46027;  // 5 January 2026
constexpr std::int32_t kDay = 480;

/// A plan on a five-day calendar of eight hours from a Monday on.
class PlanCheck : public testing::Test {
 protected:
  PlanCheck() {
    plan_.start = Instant(kMonday, 480);
    plan_.default_calendar = plan_.AddCalendar(MakeWeekCalendar("Works", 5, 8)).uid;
  }

  Task& Add(const std::string& id, int days) {
    Task task;
    task.id = id;
    task.remaining_minutes = days * kDay;
    return plan_.AddTask(task);
  }
  Uid UidOf(const std::string& id) const { return plan_.FindTask(id)->uid; }
  Link& Connect(const std::string& from, const std::string& to,
                LinkType type = LinkType::kFinishToStart, std::int32_t lag = 0) {
    return plan_.links.emplace_back(Link{UidOf(from), UidOf(to), type, lag});
  }
  Scheduler Schedule() const {
    Scheduler scheduler(plan_, [](const Task&) { return true; });
    scheduler.ScheduleForward();
    scheduler.ScheduleBackward();
    return scheduler;
  }
  StoredDatesReport Compare() const { return CompareStoredDates(plan_, Schedule()); }
  /// What one look at the plan finds.
  std::vector<std::string> Find(const std::string& key) const {
    for (const HealthFinding& finding : InspectPlan(plan_, Schedule())) {
      if (finding.key == key) {
        return finding.items;
      }
    }
    ADD_FAILURE() << "nothing looks at " << key;
    return {};
  }

  Plan plan_;
};

// --- Stored dates ---

TEST_F(PlanCheck, ADateAtTheEndOfADayEqualsTheStartOfTheNextWorkedDay) {
  Task& task = Add("A", 5);
  task.stored.early_finish = Instant(kMonday + 7, 480);  // the Monday after Friday 17:00
  const StoredDatesReport report = Compare();
  EXPECT_EQ(report.activities, 1);
  EXPECT_EQ(report.equal, 1);
  EXPECT_EQ(report.fields[static_cast<std::size_t>(DateField::kEarlyFinish)].compared, 1);
  EXPECT_EQ(report.fields[static_cast<std::size_t>(DateField::kEarlyStart)].compared, 0);
}

TEST_F(PlanCheck, ADateWithWorkInBetweenDiffers) {
  Task& task = Add("A", 5);
  task.stored.early_finish = Instant(kMonday + 7, 481);
  const StoredDatesReport report = Compare();
  ASSERT_EQ(report.differing.size(), 1u);
  EXPECT_EQ(report.differing[0].differences[0].field, DateField::kEarlyFinish);
  EXPECT_EQ(report.differing[0].differences[0].computed, Instant(kMonday + 4, 1020));
  EXPECT_EQ(report.equal, 0);
}

TEST_F(PlanCheck, ASummaryWithStoredDatesSpansWhatIsNotFinished) {
  Task& span = Add("S", 0);
  span.kind = TaskKind::kSummary;
  span.stored.early_start = Instant(kMonday, 480);
  span.stored.early_finish = Instant(kMonday + 2, 1020);
  const Uid summary = span.uid;
  Task& done = Add("done", 0);
  done.parent = summary;
  done.actual_start = Instant(kMonday - 7, 480);
  done.actual_finish = Instant(kMonday - 6, 1020);
  Add("A", 3).parent = summary;
  const StoredDatesReport report = Compare();
  EXPECT_EQ(report.activities, 1);
  EXPECT_EQ(report.equal, 1);
}

TEST_F(PlanCheck, WhereTheDataDateHoldsNothingAStartedActivityHasItsWholeDates) {
  plan_.schedule.remaining_from_data_date = false;
  Task& task = Add("A", 2);
  task.original_minutes = 5 * kDay;
  task.actual_start = Instant(kMonday, 480);
  task.stored.early_start = Instant(kMonday, 480);
  task.stored.early_finish = Instant(kMonday + 4, 1020);
  task.stored.late_start = Instant(kMonday + 1, 480);  // has another meaning: not compared
  const StoredDatesReport report = Compare();
  EXPECT_EQ(report.equal, 1);
  EXPECT_EQ(report.fields[static_cast<std::size_t>(DateField::kLateStart)].compared, 0);
}

TEST_F(PlanCheck, EveryFieldIsComparedOnItsOwn) {
  Add("Long", 10);
  Task& task = Add("A", 5);
  task.stored.early_start = Instant(kMonday, 480);
  task.stored.late_start = Instant(kMonday + 7, 480);
  task.stored.late_finish = Instant(kMonday + 10, 1020);  // a Thursday: the finish is on Friday
  task.stored.total_float_minutes = 5 * kDay;
  const StoredDatesReport report = Compare();
  ASSERT_EQ(report.differing.size(), 1u);
  ASSERT_EQ(report.differing[0].differences.size(), 1u);
  EXPECT_EQ(report.differing[0].differences[0].field, DateField::kLateFinish);
  EXPECT_DOUBLE_EQ(report.fields[static_cast<std::size_t>(DateField::kTotalFloat)].Share(), 1.0);
  EXPECT_DOUBLE_EQ(report.fields[static_cast<std::size_t>(DateField::kLateFinish)].Share(), 0.0);
}

TEST_F(PlanCheck, ADifferenceInFloatTellsBothFloats) {
  Task& task = Add("A", 5);
  task.stored.total_float_minutes = kDay;
  const StoredDatesReport report = Compare();
  ASSERT_EQ(report.differing.size(), 1u);
  EXPECT_EQ(report.differing[0].differences[0].stored_minutes, kDay);
  EXPECT_EQ(report.differing[0].differences[0].computed_minutes, 0);
}

TEST_F(PlanCheck, FinishedActivitiesAndThoseWithoutDatesAreLeftOut) {
  Add("A", 5);
  Task& done = Add("B", 0);
  done.actual_start = Instant(kMonday, 480);
  done.actual_finish = Instant(kMonday, 1020);
  done.stored.early_start = Instant(kMonday + 3, 480);
  EXPECT_EQ(Compare().activities, 0);
}

TEST_F(PlanCheck, AnEarlyDifferenceIsTracedToThePredecessorThatHasOne) {
  Add("A", 5).stored.early_start = Instant(kMonday + 1, 480);
  Add("B", 5).stored.early_start = Instant(kMonday + 8, 480);
  Connect("A", "B");
  const StoredDatesReport report = Compare();
  ASSERT_EQ(report.differing.size(), 2u);
  EXPECT_FALSE(report.differing[0].inherited);
  EXPECT_TRUE(report.differing[1].inherited);
  EXPECT_EQ(report.differing[1].cause, "follows from predecessor A");
}

TEST_F(PlanCheck, AnActivitysOwnPeculiarityIsNamedFirst) {
  Task& task = Add("A", 5);
  task.stored.early_start = Instant(kMonday + 1, 480);
  task.constraint = {ConstraintType::kMandatoryStart, Instant(kMonday, 480)};
  EXPECT_EQ(Compare().differing.at(0).cause, "a mandatory date overrides its logic");
}

TEST_F(PlanCheck, LinksThatToolsReadDifferentlyAreNamed) {
  plan_.data_date = Instant(kMonday + 7, 480);
  Task& started = Add("A", 5);
  started.actual_start = Instant(kMonday, 480);
  Task& done = Add("B", 0);
  done.actual_start = Instant(kMonday, 480);
  done.actual_finish = Instant(kMonday + 4, 1020);
  for (const char* id : {"C", "D", "E"}) {
    Add(id, 1).stored.early_start = Instant(kMonday + 30, 480);
  }
  Task& late = Add("F", 1);
  late.actual_start = Instant(kMonday, 480);
  late.stored.late_finish = Instant(kMonday + 30, 1020);
  Connect("A", "C", LinkType::kStartToStart, kDay);
  Connect("F", "B", LinkType::kStartToStart, kDay);
  Connect("B", "D", LinkType::kFinishToStart, kDay);  // from Friday evening past Monday morning
  const StoredDatesReport report = Compare();
  ASSERT_EQ(report.differing.size(), 4u);
  EXPECT_EQ(report.differing[0].cause, "the lag from the start of A, which has started");
  EXPECT_EQ(report.differing[1].cause,
            "the lag behind B, which is finished, would reach past the data date");
  EXPECT_EQ(report.differing[2].cause, "");  // nothing about E is known
  EXPECT_EQ(report.differing[3].cause, "");  // B is finished: a link to it holds nothing
}

TEST(WorkBetween, CountsTheWorkOfTheDaysBetween) {
  const CalendarDefinition calendar = MakeWeekCalendar("Works", 5, 8);
  // From Friday 16:00 to Monday 09:00: an hour on each of the two days.
  EXPECT_EQ(WorkBetween(calendar, Instant(kMonday + 4, 960), Instant(kMonday + 7, 540)), 120);
  EXPECT_EQ(WorkBetween(calendar, Instant(kMonday + 4, 1020), Instant(kMonday + 7, 480)), 0);
}

// --- Health ---

TEST_F(PlanCheck, OpenEndsAreActivitiesWithoutPredecessorOrSuccessor) {
  Add("A", 1);
  Add("B", 1);
  Add("C", 1);
  Connect("A", "B");
  EXPECT_THAT(Find("no_predecessor"), ElementsAre("A", "C"));
  EXPECT_THAT(Find("no_successor"), ElementsAre("B", "C"));
  EXPECT_THAT(Find("no_links"), ElementsAre("C"));
}

TEST_F(PlanCheck, NegativeFloatIsFound) {
  Add("A", 5).constraint = {ConstraintType::kFinishNoLater, Instant(kMonday + 2, 1020)};
  Add("B", 9);
  EXPECT_THAT(Find("negative_float"), ElementsAre("A"));
}

TEST_F(PlanCheck, HardConstraintsAreThoseThatHoldADateWhateverTheLogic) {
  Add("On", 1).constraint = {ConstraintType::kStartOn, Instant(kMonday, 480)};
  Add("Must", 1).second_constraint = {ConstraintType::kMandatoryFinish, Instant(kMonday, 1020)};
  Add("Soft", 1).constraint = {ConstraintType::kStartNoEarlier, Instant(kMonday, 480)};
  EXPECT_THAT(Find("hard_constraints"), ElementsAre("On", "Must"));
}

TEST_F(PlanCheck, LeadsAndLongLagsAreFoundByTheirLinks) {
  Add("A", 1);
  Add("B", 1);
  Add("C", 1);
  Connect("A", "B", LinkType::kFinishToStart, -60);
  Connect("B", "C", LinkType::kFinishToStart, 20 * kDay + 1);
  Connect("A", "C", LinkType::kStartToStart, 20 * kDay);
  EXPECT_THAT(Find("leads"), ElementsAre("A -> B"));
  EXPECT_THAT(Find("long_lags"), ElementsAre("B -> C"));
}

TEST_F(PlanCheck, ProgressBeforeThePredecessorAllowsItIsOutOfSequence) {
  plan_.data_date = Instant(kMonday + 2, 480);
  Add("A", 5).actual_start = Instant(kMonday, 480);
  Add("B", 5).actual_start = Instant(kMonday + 1, 480);
  Add("C", 5);
  Connect("A", "B");
  Connect("A", "B", LinkType::kStartToStart);  // A has begun: this one is kept
  Connect("B", "C");
  EXPECT_THAT(Find("out_of_sequence"), ElementsAre("A -> B"));
}

TEST_F(PlanCheck, CalendarsWithoutAnyWorkAreNamed) {
  CalendarDefinition idle;
  idle.name = "Idle";
  plan_.AddCalendar(idle);
  CalendarDefinition once;
  once.name = "One Sunday";
  once.exceptions[kMonday + 6] = {{480, 960}};
  plan_.AddCalendar(once);
  EXPECT_THAT(Find("calendars_without_work"), ElementsAre("Idle"));
}

TEST_F(PlanCheck, FinishedActivitiesAreNoFindings) {
  Task& done = Add("A", 0);
  done.actual_start = Instant(kMonday, 480);
  done.actual_finish = Instant(kMonday, 1020);
  EXPECT_THAT(Find("no_links"), IsEmpty());
}

}  // namespace
}  // namespace nimbrel::engine
