#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "engine/plan/plan.h"

namespace nimbrel::engine {

/// A plan cannot be scheduled: a loop of links, a calendar without working time, a date outside
/// what calendars cover. The text names the activities or the calendar.
class SchedulingError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Position of a task among those that are scheduled, from 0; the order is the plan's.
using TaskIndex = std::int32_t;
/// Position of a calendar in Plan::calendars.
using CalendarIndex = std::int32_t;

struct Network;

/// Schedules one plan, again and again: forward pass, backward pass, and what changed only.
///
/// The plan is compiled once, into flat arrays in topological order; a change of its structure
/// (tasks, links, calendars, assignments) needs a new Scheduler. What an iteration changes
/// (remaining durations, primary constraints, days taken from calendars) is set here and costs no
/// allocation. The plan itself is never written.
class Scheduler {
 public:
  /// Tells which tasks are scheduled at all; the others take part in nothing.
  using Participates = std::function<bool(const Task&)>;

  /// Compiles the plan, which is not kept. Durations start as Plan::LikelyMinutes. Raises
  /// SchedulingError for a loop (named task by task) or a calendar in use without working time.
  Scheduler(const Plan& plan, const Participates& participates);
  ~Scheduler();
  Scheduler(Scheduler&&) noexcept;
  Scheduler& operator=(Scheduler&&) noexcept;

  std::int32_t task_count() const;
  /// The task's position, or -1 if it is not scheduled.
  TaskIndex IndexOf(Uid task) const;
  Uid TaskAt(TaskIndex task) const;
  /// What of the plan's logic is not followed, one line each: links and constraints left out.
  const std::vector<std::string>& warnings() const;

  // What an iteration changes. None of these schedules by itself.

  /// Sets what remains of a task in minutes of its own working time, 0 or more. Ignored for
  /// finished tasks, milestones, summaries and levels of effort. A task without a range that is
  /// expected to finish at a date ends then, however much of it this says remains.
  void SetRemaining(TaskIndex task, std::int32_t minutes);
  std::int32_t remaining(TaskIndex task) const;
  /// Sets the primary constraint. For a started task a start constraint holds what remains.
  void SetConstraint(TaskIndex task, const Constraint& constraint);

  /// Makes the days from `first` to `last` (both included) non-working; nothing if last < first.
  /// Lags go on as the pattern and the exceptions say. Days outside the years 1950 to 2150 are
  /// never worked: taking them changes nothing.
  void TakeDays(CalendarIndex calendar, std::int32_t first, std::int32_t last);
  /// Gives back all days in the range that are taken: by TakeDays, or in the plan's calendar when
  /// it was compiled.
  void GiveDays(CalendarIndex calendar, std::int32_t first, std::int32_t last);
  /// Worked days from `first` to `last`, both included, as the calendar stands now; 0 if last <
  /// first.
  std::int32_t WorkedDays(CalendarIndex calendar, std::int32_t first, std::int32_t last) const;
  bool IsWorkedDay(CalendarIndex calendar, std::int32_t day) const;

  // Passes.

  /// Schedules everything forward. Raises SchedulingError where a date leaves what calendars cover.
  void ScheduleForward();
  /// Schedules forward what the changes since the last pass can reach. The same dates as
  /// ScheduleForward.
  void ScheduleChanged();
  /// Late dates and floats from the early dates of the last forward pass.
  void ScheduleBackward();

  // Results of the last passes.

  /// Early dates. A finished task has its actual dates; a started one starts where what remains of
  /// it starts.
  Instant early_start(TaskIndex task) const;
  Instant early_finish(TaskIndex task) const;
  /// The early dates of all tasks; both columns have task_count() entries.
  void CopyEarlyDates(std::span<Instant> starts, std::span<Instant> finishes) const;
  /// Late dates and floats, after ScheduleBackward. Floats are minutes of the task's own working
  /// time. Absent and 0 for finished tasks.
  Instant late_start(TaskIndex task) const;
  Instant late_finish(TaskIndex task) const;
  std::int32_t total_float(TaskIndex task) const;
  std::int32_t free_float(TaskIndex task) const;
  /// Whether the task has no more float than is critical, or is on the longest path where the plan
  /// goes by that.
  bool is_critical(TaskIndex task) const;
  /// Latest early finish of all tasks (summaries and levels of effort aside); the status date if
  /// there are none.
  Instant finish() const;
  /// Predecessors whose link determines the task's early start, in the plan's order of links.
  std::vector<TaskIndex> DrivingPredecessors(TaskIndex task) const;
  /// Marks the tasks that are on a driving path to the plan's finish: `on_path` gets a count more
  /// at each of them. By one sweep backwards over the forward pass; `on_path` has task_count()
  /// entries.
  void CountDriving(std::vector<std::uint32_t>& on_path) const;

  /// Whether the task has any working time on the day: by its own calendar and its risk calendars.
  /// Every day counts as worked for a finished task, a summary, a level of effort and a task with a
  /// mandatory date: nothing is left of the first, the next two follow other tasks, and the last
  /// stays where it is, so that holding one of them back would never bring it past a day off.
  bool HasWorkOn(TaskIndex task, std::int32_t day) const;
  /// The start of the task's working time on the first day from `day` on that has any. Raises
  /// SchedulingError where there is none within what calendars cover.
  Instant NextWorkStart(TaskIndex task, std::int32_t day) const;

  /// The compiled plan with the state of its passes, for what is told of a schedule beyond its
  /// dates (see telling.h). Nothing of it is to be changed but by reading: tables grow when they
  /// are read.
  Network& network() const;

 private:
  struct Compiled;
  std::unique_ptr<Compiled> compiled_;
};

}  // namespace nimbrel::engine
