#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/schedule/small_plan.h"

// Dates are worked out by hand on the calendar of March 2027, whose first day is a Monday.
namespace nimbrel::test {
namespace {

using engine::ConstraintType;
using engine::LinkType;
using engine::TaskKind;
using ::testing::IsEmpty;

constexpr std::int32_t kMonday = SmallPlan::kMonday;

/// A chain of a short and a long task beside each other: A or "long", then "end".
class Backward : public ::testing::Test {
 protected:
  Backward() {
    small.Add("A", 2);
    small.Add("long", 5);
    small.Add("end", 1);
    small.Join("A", "end");
    small.Join("long", "end");
  }
  SmallPlan small;
};

TEST_F(Backward, LateDatesAreTheLatestThatDelayNothing) {
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.Late("end"), "2027-03-08T08:00 to 2027-03-08T17:00");
  EXPECT_EQ(scheduled.Late("A"), "2027-03-04T08:00 to 2027-03-05T17:00");
  EXPECT_EQ(scheduled.TotalFloatDays("A"), 3);
  EXPECT_EQ(scheduled.FreeFloatDays("A"), 3);
  EXPECT_EQ(scheduled.TotalFloatDays("long"), 0);
  EXPECT_TRUE(scheduled.scheduler.is_critical(scheduled.At("long")));
  EXPECT_FALSE(scheduled.scheduler.is_critical(scheduled.At("A")));
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST_F(Backward, CriticalReachesUpToTheFloatThatThePlanNames) {
  small.plan.schedule.critical_float_minutes = 3 * SmallPlan::kDay;
  const Scheduled scheduled(small);
  EXPECT_TRUE(scheduled.scheduler.is_critical(scheduled.At("A")));
}

TEST_F(Backward, AMustFinishDateGivesFloatOrTakesIt) {
  small.plan.schedule.must_finish = {kMonday + 9, 1020};
  EXPECT_EQ(Scheduled(small).TotalFloatDays("end"), 2);
  small.plan.schedule.must_finish = {kMonday + 2, 1020};
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.TotalFloatDays("end"), -3);
  EXPECT_EQ(scheduled.TotalFloatDays("A"), 0);
  EXPECT_EQ(scheduled.FreeFloatDays("end"), 0);
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST_F(Backward, NoLaterAndOnConstraintsLimitLateDates) {
  for (const ConstraintType type : {ConstraintType::kFinishNoLater, ConstraintType::kFinishOn}) {
    small.Get("A").constraint = {type, {kMonday + 2, 1020}};
    EXPECT_EQ(Scheduled(small).Late("A"), "2027-03-02T08:00 to 2027-03-03T17:00");
  }
  for (const ConstraintType type : {ConstraintType::kStartNoLater, ConstraintType::kStartOn}) {
    small.Get("A").constraint = {type, {kMonday + 2, 480}};
    EXPECT_EQ(Scheduled(small).Late("A"), "2027-03-03T08:00 to 2027-03-04T17:00");
  }
}

TEST_F(Backward, ABrokenLimitGivesNegativeFloat) {
  small.Get("end").constraint = {ConstraintType::kFinishNoLater, {kMonday + 4, 1020}};
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.TotalFloatDays("long"), -1);
  EXPECT_TRUE(scheduled.scheduler.is_critical(scheduled.At("long")));
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST_F(Backward, MandatoryDatesAreLateDatesToo) {
  small.Get("A").constraint = {ConstraintType::kMandatoryStart, {kMonday + 1, 480}};
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.TotalFloatDays("A"), 0);
  EXPECT_EQ(scheduled.FreeFloatDays("A"), 2);
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST_F(Backward, AStartAtWhichATaskIsPlacedLeavesItItsFloat) {
  // A is placed on Wednesday, before "long", that it should wait for, has ended on Friday, and
  // "end" may be late. The late dates of "long" go by when A may start at the latest.
  small.Get("A").constraint = {ConstraintType::kPlacedStart, {kMonday + 2, 480}};
  small.Join("long", "A");
  small.plan.schedule.must_finish = {kMonday + 14, 1020};  // the third Monday
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.Early("A"), "2027-03-03T08:00 to 2027-03-04T17:00");
  EXPECT_EQ(scheduled.Late("A"), "2027-03-11T08:00 to 2027-03-12T17:00");
  EXPECT_EQ(scheduled.Late("long"), "2027-03-04T08:00 to 2027-03-10T17:00");
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST_F(Backward, LinksFromAStartAtWhichATaskIsPlacedLimitNothing) {
  small.Get("A").constraint = {ConstraintType::kPlacedStart, {kMonday, 480}};
  small.plan.links.front().type = engine::LinkType::kStartToStart;
  small.plan.links.front().lag_minutes = 2 * SmallPlan::kDay;
  // Only the plan's finish on the second Monday limits it, not that "end" starts on that day at the
  // latest.
  EXPECT_EQ(Scheduled(small).Late("A"), "2027-03-05T08:00 to 2027-03-08T17:00");
  small.Get("A").constraint = {};
  EXPECT_EQ(Scheduled(small).Late("A"), "2027-03-04T08:00 to 2027-03-05T17:00");
}

TEST_F(Backward, AConstraintWithoutADateHoldsNothing) {
  const std::string early = Scheduled(small).Early("A");
  const std::string late = Scheduled(small).Late("A");
  for (int type = 1; type <= 8; ++type) {
    small.Get("A").constraint = {static_cast<ConstraintType>(type), {}};
    const Scheduled scheduled(small);
    EXPECT_EQ(scheduled.Early("A"), early) << type;
    EXPECT_EQ(scheduled.Late("A"), late) << type;
  }
}

TEST_F(Backward, FloatIsCountedInTheTasksOwnWorkingTime) {
  small.Get("A").calendar = small.AddWeek("Seven", 7, 8);
  const Scheduled scheduled(small);
  // A may finish on Sunday the 7th: Wednesday to Sunday.
  EXPECT_EQ(scheduled.Late("A"), "2027-03-06T08:00 to 2027-03-07T17:00");
  EXPECT_EQ(scheduled.TotalFloatDays("A"), 5);
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST_F(Backward, TheFinishOfThePlanIsTakenInEachTasksOwnCalendar) {
  small.Add("side", 1).calendar = small.AddWeek("Half", 5, 4);  // 08:00 to 12:00
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.Late("side"), "2027-03-05T08:00 to 2027-03-08T12:00");
}

TEST_F(Backward, EachTypeOfLinkLimitsItsTwoDates) {
  struct Row {
    LinkType type;
    double lag_days;
    double total_float;
    double free_float;
  };
  // "before" takes 1 day from Monday the 1st; "end" stands on Monday the 8th, day 5 counted from 0.
  const Row rows[] = {{LinkType::kFinishToStart, 1, 3, 3},
                      {LinkType::kStartToStart, 1, 4, 4},
                      {LinkType::kFinishToFinish, 1, 4, 4},
                      // A start may come up to the finish on day 6; the plan's finish comes first.
                      {LinkType::kStartToFinish, 1, 5, 5}};
  for (const Row& row : rows) {
    SmallPlan copy = small;
    small.Add("before", 1);
    small.Join("before", "end", row.type, row.lag_days);
    const Scheduled scheduled(small);
    EXPECT_EQ(scheduled.TotalFloatDays("before"), row.total_float) << static_cast<int>(row.type);
    EXPECT_EQ(scheduled.FreeFloatDays("before"), row.free_float) << static_cast<int>(row.type);
    EXPECT_THAT(scheduled.Breaches(), IsEmpty());
    small = copy;
  }
}

TEST_F(Backward, AMilestoneWithoutFloatShowsItsEarlyDateAsItsLateOne) {
  small.Add("done", 0, TaskKind::kFinishMilestone);
  small.Add("open", 0, TaskKind::kStartMilestone);
  small.Join("long", "done");
  small.Join("done", "open");
  small.Join("open", "end");
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.Late("done"), "2027-03-05T17:00 to 2027-03-05T17:00");
  EXPECT_EQ(scheduled.Late("open"), "2027-03-08T08:00 to 2027-03-08T08:00");
  EXPECT_EQ(scheduled.TotalFloatDays("done"), 0);
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST_F(Backward, DrivingPredecessorsHoldTheStart) {
  const Scheduled scheduled(small);
  EXPECT_THAT(scheduled.scheduler.DrivingPredecessors(scheduled.At("end")),
              ::testing::ElementsAre(scheduled.At("long")));
  EXPECT_THAT(scheduled.scheduler.DrivingPredecessors(scheduled.At("long")), IsEmpty());
}

TEST_F(Backward, PredecessorsThatHoldTheStartAlikeDriveItTogether) {
  small.Add("tie", 3);
  small.Join("tie", "end", LinkType::kFinishToFinish, 3);
  small.Join("tie", "end", LinkType::kFinishToStart, 2);
  const Scheduled scheduled(small);
  EXPECT_THAT(scheduled.scheduler.DrivingPredecessors(scheduled.At("end")),
              ::testing::ElementsAre(scheduled.At("long"), scheduled.At("tie")));
}

TEST_F(Backward, NothingDrivesATaskThatItsConstraintHolds) {
  small.Get("end").constraint = {ConstraintType::kStartNoEarlier, {kMonday + 8, 480}};
  const Scheduled scheduled(small);
  EXPECT_THAT(scheduled.scheduler.DrivingPredecessors(scheduled.At("end")), IsEmpty());
}

TEST_F(Backward, CountDrivingMarksTheWaysToTheFinish) {
  small.Add("side", 6);   // ends with the plan
  small.Add("short", 1);  // does not
  Scheduled scheduled(small);
  std::vector<std::uint32_t> on_path(5, 0);
  scheduled.scheduler.CountDriving(on_path);
  EXPECT_THAT(on_path, ::testing::ElementsAre(0u, 1u, 1u, 1u, 0u));

  scheduled.scheduler.SetRemaining(scheduled.At("A"), 8 * SmallPlan::kDay);
  scheduled.scheduler.ScheduleChanged();
  scheduled.scheduler.CountDriving(on_path);
  EXPECT_THAT(on_path, ::testing::ElementsAre(1u, 1u, 2u, 1u, 0u));
}

}  // namespace
}  // namespace nimbrel::test
