#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/schedule/small_plan.h"

namespace nimbrel::test {
namespace {

using engine::ConstraintType;
using engine::SchedulingError;
using ::testing::AllOf;
using ::testing::HasSubstr;

constexpr std::int32_t kMonday = SmallPlan::kMonday;

/// The text of the SchedulingError that the action raises.
template <class Action>
std::string ErrorOf(const Action& action) {
  try {
    action();
  } catch (const SchedulingError& error) {
    return error.what();
  }
  return "no error";
}

std::string ErrorOfScheduling(const SmallPlan& small) {
  return ErrorOf([&small] { Scheduled scheduled(small); });
}

TEST(SchedulingErrors, ALoopIsNamedTaskByTask) {
  SmallPlan small;
  for (const char* id : {"before", "A", "B", "C", "after"}) {
    small.Add(id, 1);
  }
  small.Join("before", "A");
  small.Join("A", "B");
  small.Join("B", "C");
  small.Join("C", "A");
  small.Join("C", "after");
  const std::string text = ErrorOfScheduling(small);
  EXPECT_TRUE(text == "The links form a loop: A -> B -> C -> A" ||
              text == "The links form a loop: B -> C -> A -> B" ||
              text == "The links form a loop: C -> A -> B -> C")
      << text;
}

TEST(SchedulingErrors, ALinkToItselfIsALoop) {
  SmallPlan small;
  small.Add("A", 1);
  small.Join("A", "A");
  EXPECT_EQ(ErrorOfScheduling(small), "The links form a loop: A -> A");
}

TEST(SchedulingErrors, ACalendarWithoutWorkingTimeIsNamed) {
  SmallPlan small;
  small.Add("A", 1).calendar = small.AddWeek("Never", 0, 8);
  EXPECT_THAT(ErrorOfScheduling(small), AllOf(HasSubstr("Never"), HasSubstr("A")));
}

TEST(SchedulingErrors, ACalendarWithoutWorkingTimeIsAllowedWhereNothingUsesIt) {
  SmallPlan small;
  small.AddWeek("Never", 0, 8);
  small.Add("A", 1);
  EXPECT_EQ(ErrorOfScheduling(small), "no error");
}

TEST(SchedulingErrors, RiskCalendarsThatLeaveNoDayAreNamedWithTheTask) {
  SmallPlan small;
  small.plan.risk_calendars = {{100, "Never", "", small.AddWeek("Never", 0, 8)}};
  small.Add("A", 1).risk_calendars = {{100, 0}};
  EXPECT_THAT(ErrorOfScheduling(small), HasSubstr("Task A has no working time"));
}

TEST(SchedulingErrors, ATaskWithoutACalendarIsNamed) {
  SmallPlan small;
  small.Add("A", 1).calendar = 4711;
  EXPECT_THAT(ErrorOfScheduling(small), HasSubstr("Task A has no calendar"));
  small.Get("A").calendar = 0;
  small.plan.default_calendar = 0;
  EXPECT_THAT(ErrorOfScheduling(small), HasSubstr("Task A has no calendar"));
}

TEST(SchedulingErrors, APlanWithoutAStartIsRefused) {
  SmallPlan small;
  small.plan.start = {};
  small.Add("A", 1);
  EXPECT_EQ(ErrorOfScheduling(small), "The plan has neither a start nor a data date");
}

TEST(SchedulingErrors, DatesBeyondTheCalendarsNameTheTask) {
  SmallPlan small;
  small.Add("A", 1);
  small.Add("B", 1000 * 250).description = "Endless";
  small.Join("A", "B");
  EXPECT_EQ(ErrorOfScheduling(small),
            "Task B (Endless) cannot be scheduled: its dates go beyond 2150-12-31, the last day "
            "that its calendars cover");
}

TEST(SchedulingErrors, DatesBeforeTheCalendarsNameTheTask) {
  SmallPlan small;
  small.Add("A", 1);
  small.Add("B", 1).constraint = {ConstraintType::kFinishNoLater, {18264 - 400, 480}};
  EXPECT_THAT(ErrorOfScheduling(small),
              AllOf(HasSubstr("Task B"), HasSubstr("go before"), HasSubstr("first day")));
}

TEST(SchedulingErrors, TheWholeHorizonTakenAwayIsAnErrorOfTheTaskThatMeetsIt) {
  SmallPlan small;
  small.Add("A", 1);
  Scheduled scheduled(small);
  scheduled.scheduler.TakeDays(0, 0, 200000);
  EXPECT_THAT(ErrorOf([&] { scheduled.scheduler.ScheduleForward(); }), HasSubstr("Task A"));
  // Given back, all is as it was: an error leaves nothing half done.
  scheduled.scheduler.GiveDays(0, 0, 200000);
  scheduled.scheduler.ScheduleChanged();
  EXPECT_EQ(scheduled.Early("A"), "2027-03-01T08:00 to 2027-03-01T17:00");
}

TEST(NextWorkStart, IsTheStartOfTheFirstDayWithWork) {
  SmallPlan small;
  small.Add("A", 1);
  Scheduled scheduled(small);
  scheduled.scheduler.TakeDays(0, kMonday + 7, kMonday + 8);
  const auto next = [&](std::int32_t day) {
    return ToIsoText(scheduled.scheduler.NextWorkStart(scheduled.At("A"), day));
  };
  EXPECT_EQ(next(kMonday + 4), "2027-03-05T08:00");
  EXPECT_EQ(next(kMonday + 5), "2027-03-10T08:00");
  EXPECT_TRUE(scheduled.scheduler.HasWorkOn(scheduled.At("A"), kMonday + 4));
  EXPECT_FALSE(scheduled.scheduler.HasWorkOn(scheduled.At("A"), kMonday + 5));
  EXPECT_FALSE(scheduled.scheduler.HasWorkOn(scheduled.At("A"), kMonday + 8));
  EXPECT_FALSE(scheduled.scheduler.IsWorkedDay(0, kMonday + 8));
  EXPECT_EQ(scheduled.scheduler.WorkedDays(0, kMonday, kMonday + 13), 8);
  EXPECT_THAT(ErrorOf([&] { next(95000); }), HasSubstr("Task A"));
}

}  // namespace
}  // namespace nimbrel::test
