#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/objects/host.h"
#include "engine/objects/random_source.h"
#include "engine/plan/plan.h"
#include "engine/schedule/scheduler.h"
#include "platform/ref.h"
#include "platform/runtime_error.h"

namespace nimbrel::engine {

class CalendarObject;
class PlanObject;
class RiskCalendarObject;
class TaskObject;

/// The stream of RiskAnalysis.Rnd outside a run: a counter through the finaliser of SplitMix64.
class DefaultRandomStream final : public RandomStream {
 public:
  double Next() override;

 private:
  std::uint64_t counter_ = 0;
};

/// One open plan: the document, the scheduler that was compiled from it, and the objects over both.
///
/// Every object of the plan shares the session while someone holds the object, and the session
/// keeps the objects of what was removed, so that no reference ever leads into nothing.
class PlanSession final : public platform::Object {
 public:
  /// `participates` tells which tasks are scheduled.
  PlanSession(Plan plan, Scheduler::Participates participates);

  // The document.

  /// The document to read and change in place; only its CalendarDefinition::taken may be behind.
  Plan& plan() { return plan_; }
  /// The document with everything in it.
  const Plan& Document();
  /// Changes whenever pointers into the document and positions become invalid.
  std::uint32_t generation() const { return generation_; }
  bool Participates(const Task& task) const { return participates_(task); }

  // What was changed in the document. All but ValuesChanged need a new compilation.

  void ValuesChanged() { changed_ = true; }
  void StructureChanged();
  /// A task's likely duration was changed.
  void LikelyChanged(const Task& task, std::int32_t position);
  void ConstraintChanged(const Task& task, std::int32_t position);
  void DaysTaken(CalendarIndex calendar, std::int32_t first, std::int32_t last);
  void DaysGiven(CalendarIndex calendar, std::int32_t first, std::int32_t last);
  TaskObject& AddTask();
  void RemoveTask(std::int32_t position);
  /// Puts a task behind all others in the plan's order.
  void MoveToEnd(std::int32_t position);
  CalendarObject& AddCalendar(CalendarDefinition definition);
  void RemoveCalendar(std::int32_t position);
  RiskCalendarObject& AddRiskCalendar(RiskCalendarDefinition definition);
  void RemoveRiskCalendar(std::int32_t position);

  // Objects, by position in the document. They live as long as the session.

  PlanObject& plan_object() { return *plan_object_; }
  TaskObject& TaskAt(std::int32_t position);
  CalendarObject& CalendarAt(std::int32_t position);
  RiskCalendarObject& RiskCalendarAt(std::int32_t position);
  /// Null if the plan has no such calendar.
  CalendarObject* FindCalendar(Uid uid);
  RiskCalendarObject* FindRiskCalendar(Uid uid);
  /// Position of the calendar, or -1.
  std::int32_t CalendarPosition(Uid uid) const;

  // Scheduling. All that schedule or compile raise SchedulingError.

  /// The scheduler if nothing in the plan's structure has changed since it was compiled, else null.
  Scheduler* FreshScheduler() { return compiled_ ? &*scheduler_ : nullptr; }
  /// The scheduler, compiled if it must be.
  Scheduler& Compiled() {
    if (!compiled_) {
      Compile();
    }
    return *scheduler_;
  }
  /// The task's index in the fresh scheduler, -1 if it is not scheduled.
  TaskIndex IndexAt(std::int32_t position) const {
    return index_of_position_[static_cast<std::size_t>(position)];
  }
  /// Schedules now: in an iteration what changed, otherwise everything.
  void Recalculate();
  void RecalculateFinish();
  void set_auto_recalculate(bool value) { auto_recalculate_ = value; }
  /// The scheduler with the dates that a reader is to see: schedules if the plan has never been
  /// scheduled, or has changed and schedules by itself. It need not be fresh.
  Scheduler& WithDates();
  /// As WithDates, with late dates and floats too.
  Scheduler& WithLateDates();
  /// The task's index in WithDates().
  TaskIndex DatesIndex(const Task& task, std::int32_t position) const {
    return compiled_ ? IndexAt(position) : scheduler_->IndexOf(task.uid);
  }

  // A risk run; see Host.

  IterationSamples& samples();
  void BeginIteration();
  void EndIteration();
  bool in_iteration() const { return in_iteration_; }
  void ApplySamples();
  void ScheduleIteration();
  void ScheduleAgain() { Schedule(false); }
  void SetConstraint(Uid task, const Constraint& constraint);
  void SetWitness(IterationWitness* witness) { witness_ = witness; }
  /// Null unless someone wants to hear.
  IterationWitness* witness() const { return witness_; }
  void SetRandomStream(RandomStream* stream);
  RandomStream& random() { return random_ != nullptr ? *random_ : default_random_; }
  /// False outside an iteration and for a task that is not in the plan (position -1).
  bool IsSkipped(std::int32_t position) const {
    return in_iteration_ && position >= 0 &&
           samples_.skipped[static_cast<std::size_t>(position)] != 0;
  }
  /// Duration in the running iteration in plan units; the likely one outside an iteration and for
  /// a task that is not in the plan.
  double SampledUnits(const Task& task, std::int32_t position) const;

 private:
  ~PlanSession() override;
  void Compile();
  void Schedule(bool only_changed);
  void RestoreLikely();
  std::int32_t LikelyMinutes(const Task& task) const;

  Plan plan_;
  Scheduler::Participates participates_;
  std::uint32_t generation_ = 1;

  std::optional<Scheduler> scheduler_;
  std::vector<TaskIndex> index_of_position_;
  bool compiled_ = false;      // scheduler_ has the plan's structure as it is
  bool scheduled_ = false;     // scheduler_ has made a forward pass
  bool changed_ = false;       // something has changed since its last forward pass
  bool late_current_ = false;  // its backward pass belongs to its last forward pass
  bool auto_recalculate_ = true;

  IterationSamples samples_;
  bool in_iteration_ = false;
  bool sampled_ = false;  // scheduler_ has the durations of an iteration
  RandomStream* random_ = nullptr;
  IterationWitness* witness_ = nullptr;
  DefaultRandomStream default_random_;

  // By position in the document; an object is made when it is first asked for.
  std::unique_ptr<PlanObject> plan_object_;
  std::vector<std::unique_ptr<TaskObject>> tasks_;
  std::vector<std::unique_ptr<CalendarObject>> calendars_;
  std::vector<std::unique_ptr<RiskCalendarObject>> risk_calendars_;
  // Of what was removed from the plan.
  std::vector<std::unique_ptr<TaskObject>> removed_tasks_;
  std::vector<std::unique_ptr<CalendarObject>> removed_calendars_;
  std::vector<std::unique_ptr<RiskCalendarObject>> removed_risk_calendars_;
};

/// Runs what may schedule, on behalf of `subject` ("Task A100"): a SchedulingError leaves as a
/// RuntimeError that names it.
template <class Operation>
decltype(auto) Guarded(const Task& subject, Operation&& operation) {
  try {
    return operation();
  } catch (const SchedulingError& error) {
    throw platform::RuntimeError(platform::kApplicationDefined,
                                 "Task " + subject.id + ": " + error.what());
  }
}

}  // namespace nimbrel::engine
