#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/schedule/small_plan.h"

// Dates are worked out by hand on the calendar of March 2027, whose first day is a Monday.
namespace nimbrel::test {
namespace {

using engine::ConstraintType;
using engine::FloatRule;
using engine::LinkType;
using engine::TaskKind;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr std::int32_t kMonday = SmallPlan::kMonday;

TEST(Summary, SpansAllTasksBelowIt) {
  SmallPlan small;
  const engine::Uid top = small.Add("top", 0, TaskKind::kSummary).uid;
  engine::Task& inner = small.Add("inner", 0, TaskKind::kSummary);
  inner.parent = top;
  const engine::Uid inner_uid = inner.uid;
  small.Add("A", 2).parent = top;
  small.Add("B", 3).parent = inner_uid;
  small.Join("A", "B");
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.Early("top"), "2027-03-01T08:00 to 2027-03-05T17:00");
  EXPECT_EQ(scheduled.Early("inner"), "2027-03-03T08:00 to 2027-03-05T17:00");
  EXPECT_EQ(scheduled.Late("inner"), "2027-03-03T08:00 to 2027-03-05T17:00");
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST(Summary, FollowsTheTasksBelowItAfterAChange) {
  SmallPlan small;
  const engine::Uid top = small.Add("top", 0, TaskKind::kSummary).uid;
  small.Add("A", 2).parent = top;
  Scheduled scheduled(small);
  EXPECT_EQ(scheduled.Early("top"), "2027-03-01T08:00 to 2027-03-02T17:00");
  scheduled.scheduler.SetRemaining(scheduled.At("A"), SmallPlan::kDay);
  scheduled.scheduler.ScheduleChanged();
  EXPECT_EQ(scheduled.Early("top"), "2027-03-01T08:00 to 2027-03-01T17:00");
}

TEST(Summary, TotalFloatFollowsTheRuleOfThePlan) {
  SmallPlan small;
  const engine::Uid top = small.Add("top", 0, TaskKind::kSummary).uid;
  small.Add("first", 1).parent = top;
  small.Add("last", 3).parent = top;
  small.Add("after", 2);
  small.Add("long", 7);
  small.Join("first", "after");
  // "first" may be 4 days late, for "after" may; "last" 4 too. Late: 5 to 9 and 5 to 7.
  EXPECT_EQ(Scheduled(small).TotalFloatDays("first"), 4);
  EXPECT_EQ(Scheduled(small).TotalFloatDays("last"), 4);
  small.Get("last").constraint = {ConstraintType::kFinishNoLater, {kMonday + 3, 1020}};
  // Now the late span is from Tuesday to Friday, the early one from Monday to Wednesday.
  for (const auto& [rule, days] :
       {std::pair{FloatRule::kStart, 1.0}, std::pair{FloatRule::kFinish, 2.0},
        std::pair{FloatRule::kSmaller, 1.0}}) {
    small.plan.schedule.total_float = rule;
    EXPECT_EQ(Scheduled(small).TotalFloatDays("top"), days);
  }
}

TEST(Summary, DoesNotCountForTheFinishAndHasNoFloatWhenAllIsDone) {
  SmallPlan small;
  const engine::Uid top = small.Add("top", 9, TaskKind::kSummary).uid;
  engine::Task& done = small.Add("done", 0);
  done.parent = top;
  done.actual_start = {kMonday - 7, 480};
  done.actual_finish = {kMonday - 5, 1020};
  small.Add("A", 1);
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.Early("top"), "2027-02-22T08:00 to 2027-02-24T17:00");
  EXPECT_EQ(scheduled.Late("top"), " to ");
  EXPECT_FALSE(scheduled.scheduler.is_critical(scheduled.At("top")));
  EXPECT_EQ(ToIsoText(scheduled.scheduler.finish()), "2027-03-01T17:00");
}

TEST(Summary, ALinkOfASummaryHoldsForEachTaskBelowIt) {
  SmallPlan small;
  const engine::Uid from = small.Add("from", 0, TaskKind::kSummary).uid;
  const engine::Uid to = small.Add("to", 0, TaskKind::kSummary).uid;
  small.Add("A", 1).parent = from;
  small.Add("B", 3).parent = from;
  small.Add("C", 1).parent = to;
  small.Add("D", 2).parent = to;
  small.Join("from", "to");
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.Early("C"), "2027-03-04T08:00 to 2027-03-04T17:00");
  EXPECT_EQ(scheduled.Early("D"), "2027-03-04T08:00 to 2027-03-05T17:00");
  EXPECT_EQ(scheduled.TotalFloatDays("A"), 2);
  EXPECT_THAT(scheduled.scheduler.warnings(), IsEmpty());
}

TEST(Summary, WhatCannotBeFollowedIsNamed) {
  SmallPlan small;
  engine::Task& top = small.Add("top", 0, TaskKind::kSummary);
  top.constraint = {ConstraintType::kStartNoEarlier, {kMonday + 7, 480}};
  const engine::Uid uid = top.uid;
  small.Add("A", 1).parent = uid;
  small.Add("B", 1).parent = uid;
  small.Join("A", "top");
  EXPECT_THAT(Scheduled(small).scheduler.warnings(),
              ElementsAre(HasSubstr("from A to top"), HasSubstr("constraint of summary top")));
}

TEST(HasWorkOn, EveryDayIsWorkedForWhatCannotBeHeldBack) {
  SmallPlan small;
  const engine::Uid parent = small.Add("S", 0, TaskKind::kSummary).uid;
  small.Add("A", 10).parent = parent;
  small.Add("E", 10, TaskKind::kLevelOfEffort);
  small.Add("M", 10).second_constraint = {ConstraintType::kMandatoryStart,
                                          engine::Instant(kMonday, 480)};
  const Scheduled scheduled(small);
  const std::int32_t saturday = SmallPlan::kMonday + 5;
  EXPECT_TRUE(scheduled.scheduler.HasWorkOn(scheduled.At("S"), saturday));
  EXPECT_TRUE(scheduled.scheduler.HasWorkOn(scheduled.At("E"), saturday));
  EXPECT_TRUE(scheduled.scheduler.HasWorkOn(scheduled.At("M"), saturday));
  EXPECT_FALSE(scheduled.scheduler.HasWorkOn(scheduled.At("A"), saturday));
}

TEST(LevelOfEffort, StretchesFromItsPredecessorsToItsSuccessors) {
  SmallPlan small;
  small.Add("A", 1);
  small.Add("B", 3);
  small.Add("C", 1);
  small.Add("D", 2);
  small.Add("effort", 0, TaskKind::kLevelOfEffort);
  small.Join("A", "B");
  small.Join("B", "C");
  small.Join("C", "D");
  small.Join("B", "effort", LinkType::kStartToStart);
  small.Join("effort", "C", LinkType::kFinishToFinish);
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.Early("effort"), "2027-03-02T08:00 to 2027-03-05T17:00");
  EXPECT_EQ(scheduled.Late("effort"), "2027-03-02T08:00 to 2027-03-05T17:00");
  EXPECT_EQ(scheduled.TotalFloatDays("effort"), 0);
  EXPECT_THAT(scheduled.Breaches(), IsEmpty());
}

TEST(LevelOfEffort, HasAsMuchFloatAsItsSuccessorsLeaveIt) {
  SmallPlan small;
  small.Add("A", 2);
  small.Add("B", 3);
  small.Add("long", 9);
  small.Add("effort", 0, TaskKind::kLevelOfEffort);
  small.Join("A", "effort", LinkType::kStartToStart);
  small.Join("effort", "B", LinkType::kFinishToFinish, 1);
  const Scheduled scheduled(small);
  // B may end six days later, on Thursday the 11th; the effort a day before it, as long as it is.
  EXPECT_EQ(scheduled.Early("effort"), "2027-03-01T08:00 to 2027-03-02T17:00");
  EXPECT_EQ(scheduled.Late("effort"), "2027-03-09T08:00 to 2027-03-10T17:00");
  EXPECT_EQ(scheduled.TotalFloatDays("effort"), 6);
}

TEST(LevelOfEffort, WithoutSuccessorsMayLastUntilThePlanFinishes) {
  SmallPlan small;
  small.Add("A", 2);
  small.Add("long", 9);
  small.Add("effort", 0, TaskKind::kLevelOfEffort);
  small.Join("A", "effort", LinkType::kStartToStart);
  small.Join("A", "effort", LinkType::kFinishToFinish);
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.Early("effort"), "2027-03-01T08:00 to 2027-03-02T17:00");
  EXPECT_EQ(scheduled.Late("effort"), "2027-03-10T08:00 to 2027-03-11T17:00");
}

TEST(LevelOfEffort, InProgressHasWhatRemainsOfItFromTheDataDate) {
  SmallPlan small;
  small.plan.data_date = {kMonday + 7, 480};
  engine::Task& done = small.Add("done", 0);
  done.actual_start = {kMonday, 480};
  done.actual_finish = {kMonday + 1, 1020};
  small.Add("B", 3);
  small.Add("long", 4);
  small.Add("effort", 0, TaskKind::kLevelOfEffort).actual_start = {kMonday, 480};
  small.Join("done", "effort", LinkType::kStartToStart);
  small.Join("effort", "B", LinkType::kFinishToFinish);
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.Early("effort"), "2027-03-08T08:00 to 2027-03-10T17:00");
  EXPECT_EQ(scheduled.Late("effort"), "2027-03-09T08:00 to 2027-03-11T17:00");
}

TEST(LevelOfEffort, MayFollowAnother) {
  for (const bool first_is_first : {true, false}) {
    SmallPlan small;
    small.Add("A", 5);
    small.Add(first_is_first ? "E" : "F", 0, TaskKind::kLevelOfEffort);
    small.Add(first_is_first ? "F" : "E", 0, TaskKind::kLevelOfEffort);
    small.Join("A", "E", LinkType::kStartToStart, 1);
    small.Join("A", "E", LinkType::kFinishToFinish);
    small.Join("E", "F", LinkType::kStartToStart);
    small.Join("E", "F", LinkType::kFinishToFinish, 1);
    const Scheduled scheduled(small);
    EXPECT_EQ(scheduled.Early("E"), "2027-03-02T08:00 to 2027-03-05T17:00");
    EXPECT_EQ(scheduled.Early("F"), "2027-03-02T08:00 to 2027-03-08T17:00");
  }
}

TEST(LevelOfEffort, EndsBeforeASuccessorThatStartsAfterIt) {
  SmallPlan small;
  small.Add("A", 5);
  small.Add("B", 1);
  small.Add("effort", 0, TaskKind::kLevelOfEffort);
  small.Join("A", "B");
  small.Join("A", "effort", LinkType::kStartToStart);
  small.Join("effort", "B");
  EXPECT_EQ(Scheduled(small).Early("effort"), "2027-03-01T08:00 to 2027-03-05T17:00");
}

TEST(LevelOfEffort, OutlastsAPredecessorThatItFinishesWith) {
  SmallPlan small;
  small.Add("A", 5);
  small.Add("effort", 0, TaskKind::kLevelOfEffort);
  small.Join("A", "effort", LinkType::kStartToStart, 1);
  small.Join("A", "effort", LinkType::kFinishToFinish, 1);
  EXPECT_EQ(Scheduled(small).Early("effort"), "2027-03-02T08:00 to 2027-03-08T17:00");
}

TEST(LevelOfEffort, WithoutLinksHasItsOwnDuration) {
  SmallPlan small;
  small.Add("effort", 2, TaskKind::kLevelOfEffort);
  small.Add("A", 5);
  EXPECT_EQ(Scheduled(small).Early("effort"), "2027-03-01T08:00 to 2027-03-02T17:00");
}

TEST(LevelOfEffort, DrivesNothingAndDoesNotCountForTheFinish) {
  SmallPlan small;
  small.Add("A", 1);
  small.Add("B", 1);
  small.Add("effort", 9, TaskKind::kLevelOfEffort);
  small.Join("A", "effort");
  small.Join("effort", "B");
  const Scheduled scheduled(small);
  EXPECT_EQ(scheduled.Early("B"), "2027-03-01T08:00 to 2027-03-01T17:00");
  EXPECT_EQ(ToIsoText(scheduled.scheduler.finish()), "2027-03-01T17:00");
  EXPECT_THAT(scheduled.scheduler.DrivingPredecessors(scheduled.At("B")), IsEmpty());
}

}  // namespace
}  // namespace nimbrel::test
