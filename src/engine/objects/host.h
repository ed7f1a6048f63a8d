#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "engine/objects/random_source.h"
#include "engine/plan/plan.h"
#include "engine/schedule/scheduler.h"
#include "host/corvane8.h"

namespace nimbrel::engine {

class PlanSession;

/// What a host is wired with.
struct HostOptions {
  /// Tells which tasks only carry weather data: they are sampled, but never scheduled. None: no
  /// task does.
  std::function<bool(const Task&)> carries_weather;
  /// The folder of the installation, without a closing separator.
  std::string path;
  /// Tells the window that the user works in. None: the host has no window.
  std::function<Corvane8::Long()> window{};
};

/// What the risk engine has sampled for one iteration, by the task's position in Plan::tasks().
struct IterationSamples {
  std::vector<double> units;          // durations in plan units, unrounded
  std::vector<std::uint8_t> skipped;  // 1 for a task that does not occur in this iteration
};

/// Hears what the receivers of an iteration's events do, for those who tell its story. What it is
/// told is valid for the call.
class IterationWitness {
 public:
  virtual ~IterationWitness() = default;

  /// A task's SampledDuration was read.
  virtual void SampleRead(const Task& task) = 0;
  /// The days from `first` to `last` are about to be taken from a calendar.
  virtual void DaysTaken(CalendarIndex calendar, std::int32_t first, std::int32_t last) = 0;
};

/// The embedded host: the object model over one plan document, with its scheduler.
///
/// All objects of the model belong to the open plan, which lives as long as the host has it open or
/// a reference to any of them is held. The same task or calendar is always the same object. A risk
/// run goes, after RaisePlanBeforeRiskAnalysis, for each iteration: fill samples(), BeginIteration,
/// RaisePlanBeforeRiskIteration, ScheduleIteration, RaisePlanAfterRiskIteration, read results from
/// scheduler(), EndIteration; then RaisePlanAfterRiskAnalysis. Operations of the object model that
/// an iteration needs allocate nothing.
class Host final : public Corvane8::Application {
 public:
  explicit Host(HostOptions options);
  ~Host() override;

  platform::Ref<Corvane8::Plan> get_ActivePlan() override;
  std::string get_Path() override;
  /// 0 where there is no window.
  Corvane8::Long get_hWnd() override;
  void Subscribe(Corvane8::ApplicationEvents* events) override;
  void Unsubscribe(Corvane8::ApplicationEvents* events) override;

  /// Opens a plan in place of the one that is open. Subscriptions stay; references into the former
  /// plan stay valid and lead to that plan.
  void Open(Plan plan);
  /// Afterwards there is no active plan, and all that follows here raises error 91.
  void Close();

  /// The document as it stands now, days taken by SetDays included. Valid until the next change of
  /// the plan; copy it to keep it.
  const Plan& document();

  /// The scheduler, compiled anew if the plan's structure has changed since the last call (a
  /// reference from before is then no longer valid). Its results are those of the last pass, on
  /// whichever side it was asked for. Raises SchedulingError.
  Scheduler& scheduler();

  /// Whether the task is scheduled: whether it does not only carry weather.
  bool Participates(const Task& task) const;

  // A risk run.

  /// What Task.SampledDuration and Task.SkipInIteration tell and ApplySamples applies. Both columns
  /// have an entry for each task of the document, also after tasks were added or removed.
  IterationSamples& samples();
  /// From here to EndIteration the sampled values hold, reading dates schedules nothing by itself,
  /// and Plan.Recalculate schedules only what a change can reach. Raises SchedulingError if the
  /// plan must be compiled and cannot be.
  void BeginIteration();
  /// The next scheduling from outside an iteration goes by the likely durations again.
  void EndIteration();
  bool iteration_running();
  /// Hands the unrounded sample of each scheduled task to the scheduler, rounded to a minute (half
  /// to even); a task that is skipped or sampled below 0 gets 0 minutes.
  void ApplySamples();
  /// ApplySamples, then a whole forward pass. Raises SchedulingError.
  void ScheduleIteration();
  /// A whole forward pass on the samples, constraints and days as the scheduler has them now.
  /// Raises SchedulingError.
  void ScheduleAgain();
  /// Gives a task another primary constraint; schedules nothing.
  void SetConstraint(Uid task, const Constraint& constraint);
  /// Who hears what receivers do from now on; stays the caller's. Null: nobody.
  void SetWitness(IterationWitness* witness);
  /// Where RiskAnalysis.Rnd takes its numbers from, until the plan is closed or the host ends;
  /// stays the caller's. Null for the host's own stream: a fixed sequence that begins anew at each
  /// call with null, for use outside a run.
  void SetRandomStream(RandomStream* stream);

  // The events go to all subscribers in the order of their subscription. An error that one of them
  // lets out goes on to the caller, and those behind it do not receive the event. A subscriber may
  // end its subscription while it receives one.

  void RaisePlanBeforeRiskAnalysis();
  void RaisePlanBeforeRiskIteration(Corvane8::Long iteration);
  void RaisePlanAfterRiskIteration(Corvane8::Long iteration);
  void RaisePlanAfterRiskAnalysis();

 private:
  /// Raises error 91 if no plan is open.
  PlanSession& session() const;
  template <class Event>
  void Raise(const Event& event);

  HostOptions options_;
  platform::Ref<PlanSession> session_;
  std::vector<Corvane8::ApplicationEvents*> subscribers_;  // null: ended while an event is raised
  int raising_ = 0;                                        // events under way, one in another
};

/// Makes a host and opens a plan in it.
platform::Ref<Host> MakeHost(Plan plan, HostOptions options);

}  // namespace nimbrel::engine
