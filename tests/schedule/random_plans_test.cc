#include <gtest/gtest.h>
#include <rapidcheck.h>

#include "engine/schedule/scheduler.h"
#include "tests/support/schedule/naive_schedule.h"
#include "tests/support/schedule/random_plan.h"
#include "tests/support/schedule/schedule_check.h"

namespace nimbrel::test {
namespace {

using engine::Plan;
using engine::Scheduler;
using engine::Task;

bool All(const Task&) {
  return true;
}

/// Schedules a plan with the engine and with the naive scheduler and compares everything.
void ExpectAgreement(const Plan& plan) {
  Scheduler scheduler(plan, All);
  scheduler.ScheduleForward();
  scheduler.ScheduleBackward();
  RC_ASSERT(CheckSchedule(plan, All, scheduler, Checked::kEarlyAndLate) ==
            std::vector<std::string>{});

  NaiveSchedule naive(plan, All, kRandomPlanFirstDay, kRandomPlanDays);
  RC_ASSERT(scheduler.finish().Minutes() == naive.Finish());
  for (const Task& task : plan.tasks()) {
    const engine::TaskIndex index = scheduler.IndexOf(task.uid);
    RC_LOG() << "task " << task.id << '\n';
    RC_ASSERT(scheduler.early_start(index).Minutes() == naive.Early(task.uid).start);
    RC_ASSERT(scheduler.early_finish(index).Minutes() == naive.Early(task.uid).finish);
    if (!task.IsFinished()) {
      RC_ASSERT(scheduler.late_start(index).Minutes() == naive.Late(task.uid).start);
      RC_ASSERT(scheduler.late_finish(index).Minutes() == naive.Late(task.uid).finish);
      RC_ASSERT(scheduler.total_float(index) == naive.TotalFloat(task.uid));
      RC_ASSERT(scheduler.free_float(index) == naive.FreeFloat(task.uid));
    }
  }
}

void ExpectAgreementOfRandomPlans(RandomPlanOptions options) {
  EXPECT_TRUE(rc::check([&options] {
    options.tasks = *rc::gen::inRange(1, 10);
    ExpectAgreement(RandomPlan(*rc::gen::inRange<std::uint64_t>(0, 1'000'000'000), options));
  }));
}

TEST(RandomPlans, AgreeWithTheNaiveScheduler) {
  ExpectAgreementOfRandomPlans({});
}

TEST(RandomPlans, WithConstraintsAgreeWithTheNaiveScheduler) {
  ExpectAgreementOfRandomPlans({.with_constraints = true});
}

TEST(RandomPlans, WithProgressAgreeWithTheNaiveScheduler) {
  ExpectAgreementOfRandomPlans({.with_progress = true});
}

TEST(RandomPlans, WithRiskCalendarsAgreeWithTheNaiveScheduler) {
  ExpectAgreementOfRandomPlans({.with_risk_calendars = true});
}

TEST(RandomPlans, WithRulesThatFewPlansHaveAgreeWithTheNaiveScheduler) {
  ExpectAgreementOfRandomPlans({.with_rules = true});
  ExpectAgreementOfRandomPlans({.with_progress = true, .with_rules = true});
}

TEST(RandomPlans, WithEverythingAgreeWithTheNaiveScheduler) {
  ExpectAgreementOfRandomPlans({.with_constraints = true,
                                .with_progress = true,
                                .with_risk_calendars = true,
                                .with_rules = true});
}

}  // namespace
}  // namespace nimbrel::test
