#pragma once

#include <string>

#include "engine/plan/plan.h"
#include "engine/schedule/scheduler.h"
#include "tests/support/schedule/schedule_check.h"

namespace nimbrel::test {

/// A plan to write down in a few lines: it starts on Monday 1 March 2027 at 08:00 and has the
/// calendar "Office" as its default: Monday to Friday, 08:00 to 12:00 and 13:00 to 17:00.
class SmallPlan {
 public:
  static constexpr std::int32_t kMonday = 46447;
  static constexpr std::int32_t kDay = 480;  // minutes of work in a day of Office

  engine::Plan plan;

  SmallPlan() {
    plan.start = {kMonday, 480};
    plan.default_calendar = AddWeek("Office", 5, 8);
  }

  engine::Uid AddWeek(const std::string& name, int days, int hours) {
    return plan.AddCalendar(engine::MakeWeekCalendar(name, days, hours)).uid;
  }
  /// Adds a task of so many days of Office. Valid until the next task is added.
  engine::Task& Add(const std::string& id, double days,
                    engine::TaskKind kind = engine::TaskKind::kTask) {
    engine::Task task;
    task.id = id;
    task.kind = kind;
    task.remaining_minutes = static_cast<std::int32_t>(days * kDay);
    task.original_minutes = task.remaining_minutes;
    return plan.AddTask(task);
  }
  engine::Task& Get(const std::string& id) { return *plan.FindTask(std::string_view(id)); }
  engine::Link& Join(const std::string& from, const std::string& to,
                     engine::LinkType type = engine::LinkType::kFinishToStart,
                     double lag_days = 0) {
    engine::Link link;
    link.predecessor = Get(from).uid;
    link.successor = Get(to).uid;
    link.type = type;
    link.lag_minutes = static_cast<std::int32_t>(lag_days * kDay);
    plan.links.push_back(link);
    return plan.links.back();
  }
};

/// A plan's schedule, both passes, with dates as text. Checks itself.
class Scheduled {
 public:
  explicit Scheduled(const SmallPlan& small) : Scheduled(small.plan) {}
  explicit Scheduled(const engine::Plan& plan)
      : plan(plan), scheduler(plan, [](const engine::Task&) { return true; }) {
    scheduler.ScheduleForward();
    scheduler.ScheduleBackward();
  }

  /// What the checker finds wrong; empty if nothing.
  std::vector<std::string> Breaches() const {
    return CheckSchedule(
        plan, [](const engine::Task&) { return true; }, scheduler, Checked::kEarlyAndLate);
  }
  engine::TaskIndex At(const std::string& id) const {
    return scheduler.IndexOf(plan.FindTask(std::string_view(id))->uid);
  }
  /// "2027-03-01T08:00 to 2027-03-02T17:00".
  std::string Early(const std::string& id) const {
    return ToIsoText(scheduler.early_start(At(id))) + " to " +
           ToIsoText(scheduler.early_finish(At(id)));
  }
  std::string Late(const std::string& id) const {
    return ToIsoText(scheduler.late_start(At(id))) + " to " +
           ToIsoText(scheduler.late_finish(At(id)));
  }
  double TotalFloatDays(const std::string& id) const {
    return static_cast<double>(scheduler.total_float(At(id))) / SmallPlan::kDay;
  }
  double FreeFloatDays(const std::string& id) const {
    return static_cast<double>(scheduler.free_float(At(id))) / SmallPlan::kDay;
  }

  engine::Plan plan;
  engine::Scheduler scheduler;
};

}  // namespace nimbrel::test
