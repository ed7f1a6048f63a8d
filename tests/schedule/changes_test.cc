#include <gtest/gtest.h>
#include <rapidcheck.h>

#include "engine/schedule/scheduler.h"
#include "tests/support/schedule/random_plan.h"
#include "tests/support/schedule/schedule_check.h"
#include "tests/support/schedule/small_plan.h"

namespace nimbrel::test {
namespace {

using engine::Constraint;
using engine::ConstraintType;
using engine::Plan;
using engine::Scheduler;
using engine::Task;
using engine::TaskIndex;

bool All(const Task&) {
  return true;
}

/// Makes the same random change to schedulers and to the plan that they were made from.
class Changes {
 public:
  Changes(Plan& plan, std::vector<Scheduler*> schedulers, Dice& dice)
      : plan_(plan),
        schedulers_(std::move(schedulers)),
        dice_(dice),
        moves_tasks_late_(dice.OneIn(4)) {}

  void MakeOne() {
    switch (dice_.Below(4)) {
      case 0:
        return SetRemaining();
      case 1:
        return SetConstraint();
      default:
        return SetDays();
    }
  }

 private:
  Task& AnyTask() {
    const auto count = static_cast<std::int32_t>(plan_.tasks().size());
    return *plan_.FindTask(plan_.tasks()[static_cast<std::size_t>(dice_.Below(count))].uid);
  }

  void SetRemaining() {
    Task& task = AnyTask();
    const std::int32_t minutes = dice_.Below(3000);
    for (Scheduler* scheduler : schedulers_) {
      scheduler->SetRemaining(scheduler->IndexOf(task.uid), minutes);
    }
    if (task.kind == engine::TaskKind::kTask && !task.IsFinished()) {
      task.remaining_minutes = minutes;
    }
  }

  void SetConstraint() {
    Task& task = AnyTask();
    constexpr ConstraintType kTypes[] = {ConstraintType::kNone, ConstraintType::kStartNoEarlier,
                                         ConstraintType::kFinishOn, ConstraintType::kMandatoryStart,
                                         ConstraintType::kAsLateAsPossible};
    Constraint constraint{kTypes[dice_.Below(moves_tasks_late_ ? 5 : 4)],
                          {kRandomPlanFirstDay + 110 + dice_.Below(40), 480}};
    for (Scheduler* scheduler : schedulers_) {
      scheduler->SetConstraint(scheduler->IndexOf(task.uid), constraint);
    }
    task.constraint = constraint;
  }

  void SetDays() {
    const auto calendar = dice_.Below(static_cast<std::int32_t>(plan_.calendars.size()));
    const std::int32_t first = kRandomPlanFirstDay + 110 + dice_.Below(60);
    const std::int32_t last = first + dice_.Between(-1, 4);
    const bool takes = !dice_.OneIn(3);
    for (Scheduler* scheduler : schedulers_) {
      if (takes) {
        scheduler->TakeDays(calendar, first, last);
      } else {
        scheduler->GiveDays(calendar, first, last);
      }
    }
    // Day by day, so that ranges stay in order and apart.
    auto& taken = plan_.calendars[static_cast<std::size_t>(calendar)].taken;
    std::vector<engine::DayRange> days;
    for (std::int32_t day = kRandomPlanFirstDay; day < kRandomPlanFirstDay + kRandomPlanDays;
         ++day) {
      const bool is_in_range = day >= first && day <= last;
      if (is_in_range ? takes : IsTaken(plan_.calendars[static_cast<std::size_t>(calendar)], day)) {
        days.push_back({day, day});
      }
    }
    taken = days;
  }

  Plan& plan_;
  std::vector<Scheduler*> schedulers_;
  Dice& dice_;
  bool moves_tasks_late_;  // such a task makes a scheduler start all over
};

void ExpectSameDates(const Plan& plan, const Scheduler& a, const Scheduler& b) {
  RC_ASSERT(a.finish() == b.finish());
  for (TaskIndex task = 0; task < a.task_count(); ++task) {
    RC_LOG() << "task " << plan.FindTask(a.TaskAt(task))->id << '\n';
    RC_ASSERT(a.early_start(task) == b.early_start(task));
    RC_ASSERT(a.early_finish(task) == b.early_finish(task));
  }
}

void ExpectSameAsFromScratch(const RandomPlanOptions& features) {
  EXPECT_TRUE(rc::check([features] {
    RandomPlanOptions options = features;
    Dice dice(*rc::gen::inRange<std::uint64_t>(0, 1'000'000'000));
    options.tasks = *rc::gen::inRange(1, 80);
    Plan plan = RandomPlan(static_cast<std::uint64_t>(dice.Below(1'000'000'000)), options);
    // Where the work that is done ends is found once, by the days that were worked until then.
    plan.schedule.remaining_from_data_date = true;
    Scheduler changed(plan, All);
    Scheduler forward(plan, All);
    Changes changes(plan, {&changed, &forward}, dice);
    for (std::int32_t round = 0; round < 12; ++round) {
      for (std::int32_t i = dice.Below(5); i > 0; --i) {
        changes.MakeOne();
      }
      changed.ScheduleChanged();
      forward.ScheduleForward();
      ExpectSameDates(plan, changed, forward);
    }
    // The plan with all changes in it, compiled anew, has these dates too.
    Scheduler anew(plan, All);
    anew.ScheduleForward();
    ExpectSameDates(plan, changed, anew);
    RC_ASSERT(CheckSchedule(plan, All, changed, Checked::kEarly) == std::vector<std::string>{});
  }));
}

TEST(ScheduleChanged, GivesTheDatesThatSchedulingAllOverGives) {
  ExpectSameAsFromScratch({.with_risk_calendars = true});
}

TEST(ScheduleChanged, GivesTheDatesThatSchedulingAllOverGivesInPlansWithEverything) {
  ExpectSameAsFromScratch({.with_constraints = true,
                           .with_progress = true,
                           .with_risk_calendars = true,
                           .with_rules = true});
}

TEST(ScheduleChanged, SeesADayGivenBackBetweenATasksFinishAndWhatHoldsIt) {
  SmallPlan small;
  small.Add("A", 8).calendar = small.AddWeek("Seven", 7, 8);  // to Monday the 8th
  small.Add("B", 1);
  small.Join("A", "B", engine::LinkType::kFinishToFinish);
  Scheduled scheduled(small);
  scheduled.scheduler.TakeDays(0, SmallPlan::kMonday + 7, SmallPlan::kMonday + 7);
  scheduled.scheduler.ScheduleChanged();
  EXPECT_EQ(scheduled.Early("B"), "2027-03-05T08:00 to 2027-03-05T17:00");
  scheduled.scheduler.GiveDays(0, SmallPlan::kMonday + 7, SmallPlan::kMonday + 7);
  scheduled.scheduler.ScheduleChanged();
  EXPECT_EQ(scheduled.Early("B"), "2027-03-08T08:00 to 2027-03-08T17:00");
}

}  // namespace
}  // namespace nimbrel::test
