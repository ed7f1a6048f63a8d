#include "tests/support/schedule/random_plan.h"

#include <algorithm>
#include <string>

namespace nimbrel::test {
namespace {

using engine::CalendarDefinition;
using engine::Constraint;
using engine::ConstraintType;
using engine::DayPattern;
using engine::Instant;
using engine::Plan;
using engine::Task;
using engine::TaskKind;

constexpr std::int32_t kStartDay = 46447;  // 1 March 2027

Instant RandomMoment(Dice& dice, std::int32_t first_day, std::int32_t last_day) {
  constexpr std::int32_t kMinutes[] = {0, 360, 480, 485, 720, 750, 1020, 1200, 1440};
  return {dice.Between(first_day, last_day), kMinutes[dice.Below(9)]};
}

CalendarDefinition NamedWeek(const std::string& name, const DayPattern& weekday,
                             const DayPattern& saturday, const DayPattern& sunday) {
  CalendarDefinition calendar;
  calendar.name = name;
  calendar.week.fill(weekday);
  calendar.week[5] = saturday;
  calendar.week[6] = sunday;
  return calendar;
}

void AddCalendars(Dice& dice, Plan& plan) {
  const DayPattern office{{480, 720}, {780, 1020}};
  const DayPattern night{{0, 360}, {1320, 1440}};
  const DayPattern all_day{{0, 1440}};
  plan.AddCalendar(NamedWeek("Office", office, {}, {}));
  plan.AddCalendar(NamedWeek("Short Saturdays", office, {{480, 720}}, {}));
  plan.AddCalendar(NamedWeek("Nights", night, {}, night));
  plan.AddCalendar(NamedWeek("Around the clock", all_day, all_day, all_day));
  plan.AddCalendar(NamedWeek("Long days", {{360, 1200}}, {{360, 1200}}, {}));
  for (CalendarDefinition& calendar : plan.calendars) {
    for (std::int32_t i = dice.Below(4); i > 0; --i) {
      calendar.exceptions[kStartDay + dice.Between(-20, 60)] = {};
    }
    if (dice.OneIn(4)) {
      calendar.exceptions[kStartDay + dice.Between(-20, 60)] = {{600, 660}};
    }
  }
  plan.default_calendar = plan.calendars[0].uid;
}

void AddRiskCalendars(Dice& dice, Plan& plan) {
  for (const char* name : {"Rain", "Waves"}) {
    CalendarDefinition calendar = engine::MakeWeekCalendar(name, 7, 8);
    std::int32_t day = kStartDay - 5;
    for (std::int32_t i = dice.Below(8); i > 0; --i) {
      const std::int32_t first = day + dice.Between(1, 9);
      day = first + dice.Below(4);
      calendar.taken.push_back({first, day});
    }
    const engine::Uid uid = plan.AddCalendar(calendar).uid;
    plan.risk_calendars.push_back({plan.FreshUid(), name, "", uid});
  }
  plan.risk_calendars.push_back({plan.FreshUid(), "None yet", "", 0});
}

Constraint RandomConstraint(Dice& dice) {
  constexpr ConstraintType kTypes[] = {
      ConstraintType::kStartOn,          ConstraintType::kFinishOn,
      ConstraintType::kStartNoEarlier,   ConstraintType::kFinishNoEarlier,
      ConstraintType::kStartNoLater,     ConstraintType::kFinishNoLater,
      ConstraintType::kMandatoryStart,   ConstraintType::kMandatoryFinish,
      ConstraintType::kAsLateAsPossible, ConstraintType::kAsLateAsPossible,
      ConstraintType::kPlacedStart};
  Constraint constraint;
  constraint.type = kTypes[dice.Below(11)];
  if (constraint.type != ConstraintType::kAsLateAsPossible) {
    constraint.date = RandomMoment(dice, kStartDay - 5, kStartDay + 40);
  }
  return constraint;
}

void AddProgress(Dice& dice, Task& task) {
  const std::int32_t status = kStartDay + 14;
  if (dice.OneIn(4)) {
    task.actual_start = RandomMoment(dice, kStartDay - 3, status - 3);
    if (dice.OneIn(2)) {
      task.actual_finish = RandomMoment(dice, status - 3, status - 1);
      task.remaining_minutes = 0;
    } else if (dice.OneIn(3)) {
      task.suspended = {status - 2, 480};
      task.resumed = RandomMoment(dice, status - 2, status + 6);
    }
  }
}

void AddTask(Dice& dice, const RandomPlanOptions& options, Plan& plan) {
  Task task;
  task.id = "A" + std::to_string(plan.tasks().size() + 1);
  const std::int32_t kind = dice.Below(10);
  task.kind = kind == 0   ? TaskKind::kStartMilestone
              : kind == 1 ? TaskKind::kFinishMilestone
                          : TaskKind::kTask;
  task.calendar = dice.OneIn(6) ? 0 : plan.calendars[static_cast<std::size_t>(dice.Below(5))].uid;
  if (task.kind == TaskKind::kTask && !dice.OneIn(8)) {
    task.remaining_minutes = dice.OneIn(2) ? 240 * dice.Between(1, 12) : dice.Between(1, 3000);
    task.original_minutes = task.remaining_minutes + (dice.OneIn(2) ? 0 : dice.Between(-100, 2000));
    if (options.with_rules && dice.OneIn(4)) {
      task.expected_finish = RandomMoment(dice, kStartDay, kStartDay + 30);
    }
  }
  if (options.with_constraints && dice.OneIn(3)) {
    task.constraint = RandomConstraint(dice);
    if (dice.OneIn(3)) {
      task.second_constraint = RandomConstraint(dice);
    }
  }
  if (options.with_progress) {
    AddProgress(dice, task);
  }
  for (const engine::RiskCalendarDefinition& risk : plan.risk_calendars) {
    if (dice.OneIn(2)) {
      task.risk_calendars.push_back({risk.uid, 0});
    }
  }
  plan.AddTask(task);
}

void AddLinks(Dice& dice, Plan& plan) {
  const auto& tasks = plan.tasks();
  for (std::size_t to = 1; to < tasks.size(); ++to) {
    for (std::int32_t i = dice.Below(4); i > 0; --i) {
      engine::Link link;
      link.predecessor =
          tasks[static_cast<std::size_t>(dice.Below(static_cast<std::int32_t>(to)))].uid;
      link.successor = tasks[to].uid;
      link.type = static_cast<engine::LinkType>(dice.OneIn(2) ? 0 : dice.Below(4));
      if (dice.OneIn(2)) {
        link.lag_minutes = dice.OneIn(3) ? -dice.Between(1, 1500) : dice.Between(1, 3000);
        link.lag_calendar = static_cast<engine::LagCalendar>(dice.Below(4));
      }
      plan.links.push_back(link);
    }
  }
}

}  // namespace

std::int32_t Dice::Below(std::int32_t count) {
  std::uint64_t bits = state_ += 0x9E3779B97F4A7C15u;
  bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9u;
  bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EBu;
  return static_cast<std::int32_t>((bits ^ (bits >> 31)) % static_cast<std::uint64_t>(count));
}

Plan RandomPlan(std::uint64_t seed, const RandomPlanOptions& options) {
  Dice dice(seed);
  Plan plan;
  plan.start = {kStartDay, 480};
  AddCalendars(dice, plan);
  if (options.with_risk_calendars) {
    AddRiskCalendars(dice, plan);
  }
  if (options.with_progress) {
    plan.data_date = {kStartDay + 14, dice.OneIn(2) ? 480 : 600};
    plan.schedule.progress = static_cast<engine::ProgressRule>(dice.Below(3));
    plan.schedule.lag_from_early_start = dice.OneIn(2);
  }
  if (options.with_constraints && dice.OneIn(4)) {
    plan.schedule.must_finish = RandomMoment(dice, kStartDay + 10, kStartDay + 60);
    plan.schedule.critical_float_minutes = 240 * dice.Below(3);
  }
  if (options.with_rules) {
    plan.schedule.remaining_from_data_date = dice.OneIn(2);
    plan.schedule.no_later_holds_early = dice.OneIn(2);
    plan.schedule.open_ends_critical = dice.OneIn(3);
  }
  for (std::int32_t i = 0; i < options.tasks; ++i) {
    AddTask(dice, options, plan);
  }
  AddLinks(dice, plan);
  if (dice.OneIn(2)) {
    // The order of the tasks is not to give away the order of the links.
    Plan turned = plan;
    for (const Task& task : plan.tasks()) {
      turned.RemoveTask(task.uid);
    }
    for (auto task = plan.tasks().rbegin(); task != plan.tasks().rend(); ++task) {
      turned.AddTask(*task);
    }
    turned.links = plan.links;
    return turned;
  }
  return plan;
}

}  // namespace nimbrel::test
