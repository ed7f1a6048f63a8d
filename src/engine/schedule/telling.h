#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "engine/schedule/network.h"
#include "engine/schedule/scheduler.h"

namespace nimbrel::engine {

/// A task that waits for more than its links, and where these alone would let it start.
struct HeldTask {
  TaskIndex task = 0;
  Instant start_by_links;
};

/// What is told of a forward pass beyond its dates. Keeps working memory from call to call.
class ScheduleTelling {
 public:
  /// From now on paths go on behind these tasks: to the predecessors that would drive them if they
  /// did not wait for anything else. They replace those of an earlier call.
  void SetHeld(const Scheduler& scheduler, std::span<const HeldTask> held);

  /// The unfinished tasks on a driving path to a task's finish, from the last one back to the
  /// first: `path` is replaced. A target of -1 is the plan's finish, and all tasks that end with it
  /// are on the path. A finished task, a summary and a level of effort have no path.
  void DrivingPath(const Scheduler& scheduler, TaskIndex target, std::vector<TaskIndex>& path);

  /// One driving path to a target, first task first: behind each task the predecessor that drives
  /// it and comes first in the plan's order of links.
  std::vector<TaskIndex> OneDrivingPath(const Scheduler& scheduler, TaskIndex target) const;

 private:
  bool Drives(Network& network, Slot slot, const InLink& link) const;

  struct HeldSlot {
    Slot slot = 0;
    Instant start_by_links;
  };
  std::vector<HeldSlot> held_;         // by slot, ascending
  std::vector<std::uint64_t> marked_;  // by slot; all 0 between calls
};

/// The moment from which an unfinished task only waits for working time: links and constraints let
/// it start from here on. Where they hold its finish, so that it starts later, its early start.
/// Absent for tasks that are finished, summaries and levels of effort.
Instant ReadyMoment(const Scheduler& scheduler, TaskIndex task);

/// The first day on which an unfinished task with work is under way: that of its ready moment, or
/// the day after where no hours of its own calendar are left by then.
std::int32_t FirstDayUnderWay(const Scheduler& scheduler, TaskIndex task);

/// The same for a slot of an unfinished task.
Instant ReadyMoment(Network& network, Slot slot);
std::int32_t FirstDayUnderWay(Network& network, Slot slot);

/// Where a task with work would start in the schedule as it stands, if its primary constraint were
/// this one: held by its links and by what else is said of it; at the latest where it starts. The
/// schedule stays as it is.
Instant StartUnder(const Scheduler& scheduler, TaskIndex task, const Constraint& constraint);

/// A task's primary constraint as it stands.
const Constraint& ConstraintOf(const Scheduler& scheduler, TaskIndex task);

/// The calendars of a task's working time: its own first, then those behind its risk calendars.
const std::vector<CalendarIndex>& CalendarsOf(const Scheduler& scheduler, TaskIndex task);

}  // namespace nimbrel::engine
