#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/schedule/telling.h"
#include "tests/support/schedule/small_plan.h"

// Dates are worked out by hand on the calendar of March 2027, whose first day is a Monday.
namespace nimbrel::test {
namespace {

using engine::ConstraintType;
using engine::Instant;
using engine::LinkType;
using engine::ProgressRule;
using engine::Task;
using engine::TaskIndex;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::int32_t kMonday = SmallPlan::kMonday;

/// The data date is the second Monday, 8 March.
class Progress : public ::testing::Test {
 protected:
  Progress() { small.plan.data_date = {kMonday + 7, 480}; }

  Task& AddStarted(const std::string& id, double remaining_days) {
    Task& task = small.Add(id, remaining_days);
    task.actual_start = {kMonday + 1, 480};
    return task;
  }
  Task& AddFinished(const std::string& id) {
    Task& task = small.Add(id, 0);
    task.actual_start = {kMonday, 480};
    task.actual_finish = {kMonday + 2, 1020};
    return task;
  }

  SmallPlan small;
};

TEST_F(Progress, WhatRemainsStartsOnTheDataDate) {
  AddStarted("A", 2);
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.Early("A"), "2027-03-08T08:00 to 2027-03-09T17:00");
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST_F(Progress, WhatRemainsOfSuspendedWorkStartsWhenItIsResumed) {
  Task& task = AddStarted("A", 2);
  task.suspended = {kMonday + 3, 480};
  task.resumed = {kMonday + 9, 780};
  EXPECT_EQ(Scheduled(small).Early("A"), "2027-03-10T13:00 to 2027-03-12T12:00");
}

TEST_F(Progress, FinishedTasksKeepTheirDatesAndHaveNoLateOnes) {
  AddFinished("A");
  small.Add("B", 1);
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.Early("A"), "2027-03-01T08:00 to 2027-03-03T17:00");
  EXPECT_EQ(scheduled.Late("A"), " to ");
  EXPECT_EQ(scheduled.TotalFloatDays("A"), 0);
  EXPECT_FALSE(scheduled.scheduler.is_critical(scheduled.At("A")));
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST_F(Progress, NothingIsSetOnAFinishedTask) {
  AddFinished("A");
  Scheduled scheduled(small);
  scheduled.scheduler.SetRemaining(scheduled.At("A"), 480);
  scheduled.scheduler.SetConstraint(scheduled.At("A"),
                                    {ConstraintType::kStartNoEarlier, {kMonday + 20, 480}});
  scheduled.scheduler.ScheduleForward();
  EXPECT_EQ(scheduled.scheduler.remaining(scheduled.At("A")), 0);
  EXPECT_EQ(scheduled.Early("A"), "2027-03-01T08:00 to 2027-03-03T17:00");
}

TEST_F(Progress, AFinishedPredecessorNeverDrivesPastTheDataDate) {
  AddFinished("A").actual_finish = {kMonday + 10, 1020};
  small.Add("B", 1);
  small.Join("A", "B", LinkType::kFinishToStart, 3);
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.Early("B"), "2027-03-08T08:00 to 2027-03-08T17:00");
  EXPECT_THAT(scheduled.scheduler.DrivingPredecessors(scheduled.At("B")), IsEmpty());
}

TEST_F(Progress, AFinishedSuccessorLimitsNoLateDate) {
  small.Add("A", 1);
  AddFinished("B");
  small.Add("long", 5);
  small.Join("A", "B");
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.TotalFloatDays("A"), 4);
  EXPECT_EQ(scheduled.FreeFloatDays("A"), 4);
}

TEST_F(Progress, RetainedLogicHoldsWhatRemainsForPredecessors) {
  small.Add("A", 3);
  AddStarted("B", 2);
  small.Join("A", "B");
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.Early("B"), "2027-03-11T08:00 to 2027-03-12T17:00");
  EXPECT_EQ(scheduled.TotalFloatDays("A"), 0);
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST_F(Progress, OverrideLetsWhatRemainGoAheadOfPredecessors) {
  small.plan.schedule.progress = ProgressRule::kProgressOverride;
  small.Add("A", 3);
  AddStarted("B", 2);
  small.Join("A", "B");
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.Early("B"), "2027-03-08T08:00 to 2027-03-09T17:00");
  EXPECT_EQ(scheduled.Late("A"), "2027-03-08T08:00 to 2027-03-10T17:00");
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST_F(Progress, ActualDatesLetWhatRemainsGoAheadAndLimitLateDates) {
  small.plan.schedule.progress = ProgressRule::kActualDates;
  small.Add("A", 3);
  AddStarted("B", 2);  // on Tuesday the 2nd
  small.Join("A", "B");
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.Early("B"), "2027-03-08T08:00 to 2027-03-09T17:00");
  // A should have finished on Monday the 1st for B to start when it did: seven days before it does.
  EXPECT_EQ(scheduled.Late("A"), "2027-02-25T08:00 to 2027-03-01T17:00");
  EXPECT_EQ(scheduled.TotalFloatDays("A"), -7);
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST_F(Progress, ActualDatesLimitLateDatesBySuccessorsThatAreDone) {
  small.plan.schedule.progress = ProgressRule::kActualDates;
  small.Add("A", 3);
  AddFinished("B");  // on Wednesday the 3rd
  small.Join("A", "B", LinkType::kFinishToFinish, 1);
  // One day before that is Tuesday evening, six days before A's Wednesday the 10th.
  EXPECT_EQ(Scheduled(small).TotalFloatDays("A"), -6);
}

TEST_F(Progress, AnExpectedFinishSetsWhatRemains) {
  AddStarted("A", 2).expected_finish = {kMonday + 11, 1020};  // Friday the 12th: five days
  small.Add("B", 1);
  small.Join("A", "B");
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.Early("A"), "2027-03-08T08:00 to 2027-03-12T17:00");
  EXPECT_EQ(scheduled.Late("A"), "2027-03-08T08:00 to 2027-03-12T17:00");
  EXPECT_EQ(scheduled.Early("B"), "2027-03-15T08:00 to 2027-03-15T17:00");
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST_F(Progress, NothingRemainsOfATaskWhoseExpectedFinishHasPassed) {
  AddStarted("A", 2).expected_finish = {kMonday + 4, 1020};
  small.Add("B", 1);
  small.Join("A", "B");
  const Scheduled scheduled(small);
  // Friday evening and Monday morning are one instant of work.
  EXPECT_EQ(scheduled.Early("A"), "2027-03-08T08:00 to 2027-03-08T08:00");
  EXPECT_EQ(scheduled.Early("B"), "2027-03-08T08:00 to 2027-03-08T17:00");
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST_F(Progress, AFinishedTaskDrivesNothingWhateverHasStillToComeBeforeIt) {
  AddStarted("A", 3);  // to Wednesday the 10th
  AddFinished("B");
  small.Add("C", 1);
  small.Join("A", "B");
  small.Join("B", "C", LinkType::kFinishToStart, 5);  // would take Wednesday the 3rd to the 10th
  for (const LinkType type : {LinkType::kFinishToStart, LinkType::kFinishToFinish}) {
    small.plan.links.front().type = type;
    for (const ProgressRule rule : {ProgressRule::kRetainedLogic, ProgressRule::kProgressOverride,
                                    ProgressRule::kActualDates}) {
      small.plan.schedule.progress = rule;
      const Scheduled scheduled(small);
      EXPECT_EQ(scheduled.Early("A"), "2027-03-08T08:00 to 2027-03-10T17:00");
      EXPECT_EQ(scheduled.Early("B"), "2027-03-01T08:00 to 2027-03-03T17:00");
      EXPECT_EQ(scheduled.Early("C"), "2027-03-08T08:00 to 2027-03-08T17:00");
      EXPECT_EQ(scheduled.TotalFloatDays("C"), 2);
      EXPECT_EQ(scheduled.scheduler.finish(), (Instant{kMonday + 9, 1020}));
      EXPECT_THAT(scheduled.Breaches(), IsEmpty());
    }
  }
}

TEST_F(Progress, LateDatesDoNotGoBackThroughFinishedTasks) {
  small.Add("A", 1);
  AddFinished("B1");
  AddFinished("B2");
  small.Add("C", 1).constraint = {engine::ConstraintType::kFinishNoLater, {kMonday + 8, 1020}};
  small.Add("D", 5);  // to Friday the 12th
  small.Join("A", "B1", LinkType::kFinishToStart, 1);
  small.Join("B1", "B2", LinkType::kStartToStart, 8);
  small.Join("B2", "C");
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.Early("C"), "2027-03-08T08:00 to 2027-03-08T17:00");
  EXPECT_EQ(scheduled.Late("C"), "2027-03-09T08:00 to 2027-03-09T17:00");
  EXPECT_EQ(scheduled.Late("A"), "2027-03-12T08:00 to 2027-03-12T17:00");
  EXPECT_EQ(scheduled.TotalFloatDays("A"), 4);
  EXPECT_EQ(scheduled.Late("B1"), " to ");
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST_F(Progress, ADrivingPathBeginsBehindFinishedTasks) {
  small.Add("A", 3);
  AddFinished("B");
  small.Add("C", 1);
  small.Join("A", "B");
  small.Join("B", "C");
  const Scheduled scheduled(small);
  const TaskIndex a = scheduled.At("A");
  const TaskIndex c = scheduled.At("C");
  EXPECT_THAT(scheduled.scheduler.DrivingPredecessors(c), IsEmpty());
  std::vector<std::uint32_t> on_path(3, 0);
  scheduled.scheduler.CountDriving(on_path);
  EXPECT_THAT(on_path, ElementsAre(1, 0, 0));
  std::vector<TaskIndex> path;
  engine::ScheduleTelling telling;
  telling.DrivingPath(scheduled.scheduler, -1, path);
  EXPECT_THAT(path, ElementsAre(a));
  EXPECT_THAT(telling.OneDrivingPath(scheduled.scheduler, c), ElementsAre(c));
}

TEST_F(Progress, WhatAnExpectedFinishSetIsKeptWhereALinkHoldsTheFinishBehindIt) {
  // B could start behind A on Tuesday the 9th and is expected to end on Wednesday: two days. It is
  // C that makes it end on Friday the 19th, and A, as late as possible, then moves up to it.
  small.Add("A", 1).constraint.type = ConstraintType::kAsLateAsPossible;
  small.Add("B", 5).expected_finish = {kMonday + 9, 1020};
  small.Add("C", 10);
  small.Join("A", "B");
  small.Join("C", "B", LinkType::kFinishToFinish);
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.Early("B"), "2027-03-18T08:00 to 2027-03-19T17:00");
  EXPECT_EQ(scheduled.Early("A"), "2027-03-17T08:00 to 2027-03-17T17:00");
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST_F(Progress, ARangeGoesBeforeAnExpectedFinish) {
  Task& task = AddStarted("A", 2);
  task.expected_finish = {kMonday + 11, 1020};
  task.range = {1, 3, 4, engine::Shape::kTriangular};
  EXPECT_EQ(Scheduled(small).Early("A"), "2027-03-08T08:00 to 2027-03-10T17:00");
}

TEST_F(Progress, APlanWhoseDataDateHoldsNothingStartsWorkAtItsOwnStart) {
  small.plan.schedule.remaining_from_data_date = false;
  small.Add("A", 1);
  AddStarted("B", 3).original_minutes = 5 * SmallPlan::kDay;  // two days done from Tuesday on
  AddStarted("C", 1).resumed = {kMonday + 9, 480};
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.Early("A"), "2027-03-01T08:00 to 2027-03-01T17:00");
  EXPECT_EQ(scheduled.Early("B"), "2027-03-04T08:00 to 2027-03-08T17:00");
  EXPECT_EQ(scheduled.Early("C"), "2027-03-10T08:00 to 2027-03-10T17:00");
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST_F(Progress, APlanWhoseDataDateHoldsNothingIsDrivenByWhatIsFinished) {
  small.plan.schedule.remaining_from_data_date = false;
  AddFinished("A");  // from Monday the 1st to Wednesday the 3rd
  small.Add("B", 1);
  small.Add("C", 1);
  small.Join("A", "B", LinkType::kFinishToStart, 5);
  small.Join("A", "C", LinkType::kStartToStart, 1);
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.Early("B"), "2027-03-11T08:00 to 2027-03-11T17:00");
  EXPECT_EQ(scheduled.Early("C"), "2027-03-02T08:00 to 2027-03-02T17:00");
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST_F(Progress, AStartConstraintHoldsWhatRemainsOfAStartedTask) {
  for (const ConstraintType type : {ConstraintType::kStartOn, ConstraintType::kStartNoEarlier,
                                    ConstraintType::kMandatoryStart}) {
    SmallPlan copy = small;
    AddStarted("A", 2).constraint = {type, {kMonday + 9, 480}};
    const Scheduled scheduled(small);
    EXPECT_EQ(scheduled.Early("A"), "2027-03-10T08:00 to 2027-03-11T17:00");
    EXPECT_THAT(scheduled.Breaches(), IsEmpty());
    small = copy;
  }
}

TEST_F(Progress, AStartNoLaterConstraintIsKeptByATaskThatStarted) {
  AddStarted("A", 2).constraint = {ConstraintType::kStartNoLater, {kMonday + 1, 480}};
  EXPECT_EQ(Scheduled(small).TotalFloatDays("A"), 0);
}

TEST_F(Progress, ALagFromAStartedPredecessorCountsFromItsEarlyOrItsActualStart) {
  AddStarted("A", 3);  // started on Tuesday the 2nd
  small.Add("B", 1);
  small.Join("A", "B", LinkType::kStartToStart, 6);
  EXPECT_EQ(Scheduled(small).Early("B"), "2027-03-16T08:00 to 2027-03-16T17:00");
  small.plan.schedule.lag_from_early_start = false;
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.Early("B"), "2027-03-10T08:00 to 2027-03-10T17:00");
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST_F(Progress, EveryDayCountsAsWorkedForAFinishedTask) {
  AddFinished("A");
  AddStarted("B", 1);
  const Scheduled scheduled(small);
  EXPECT_TRUE(scheduled.scheduler.HasWorkOn(scheduled.At("A"), kMonday + 5));
  EXPECT_FALSE(scheduled.scheduler.HasWorkOn(scheduled.At("B"), kMonday + 5));
}

}  // namespace
}  // namespace nimbrel::test
