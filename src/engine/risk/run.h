#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "engine/objects/host.h"
#include "engine/plan/plan.h"
#include "engine/results/run_result.h"
#include "engine/risk/correlation.h"
#include "engine/risk/tied_numbers.h"

namespace nimbrel::engine {

/// The most iterations that a run can have.
inline constexpr std::int32_t kMaxIterations = 1'000'000;

struct RunOptions {
  std::int32_t iterations = 1000;  // 1 to kMaxIterations; with `until_days` the most there are
  std::uint64_t seed = 1;
  /// Processes that share the iterations; 1 runs in the calling process. No more are started than
  /// there is work for, nor more than kMaxWorkers. The result is the same for any number.
  std::int32_t workers = 1;
  /// Tasks whose dates are kept one by one; they must be scheduled ones.
  std::vector<Uid> asked = {};
  Sampling sampling = Sampling::kMonteCarlo;
  /// Above 0: the run ends when the 95% interval of the finish's P80 is at most so many days wide.
  /// That is looked at after fixed numbers of iterations, 256 the first time, so that the workers
  /// make no difference.
  double until_days = 0;
  /// Strata of a Latin hypercube; 0: as many as iterations. No less than those.
  std::int32_t strata = 0;
  /// Whether each iteration is scheduled again with calendars left out (see AttributionResult).
  bool attribute = false;
  /// Tasks whose drivers are worked out, as those of the plan's finish are; scheduled ones.
  std::vector<Uid> targets = {};
};

inline constexpr std::int32_t kMaxWorkers = 256;

/// How a run is joined to the rest of the program. Every function may be empty.
struct RunWiring {
  /// What the run's own host is made with. `carries_weather` also tells whose calendars are
  /// reported on.
  HostOptions host;
  /// Subscribes whoever is to hear the run's events; what it returns is let go after the last
  /// event, also after an error. Called once in each worker, before PlanBeforeRiskAnalysis. Without
  /// it the run has no weather.
  std::function<std::shared_ptr<void>(Host&)> attach;
  /// Tasks for which nosplit_pushed_days is measured.
  std::function<bool(const Task&)> no_split;
  /// Label of the calendar that a task which carries weather points at; an empty text leaves the
  /// decision to the calendar's next task. A calendar without a label is not reported on.
  std::function<std::string(const Plan&, const Task&)> calendar_kind;
  /// Tells which tasks of two correlated calendars go together (see CorrelationGroup).
  Together together;
  /// Told the iterations done and the iterations in all; always from the calling process. With one
  /// worker after every iteration, else a few times a second. A stopped run ends below the total.
  std::function<void(std::int32_t done, std::int32_t total)> progress;
  /// Asked in the calling process between iterations; true ends the run.
  std::function<bool()> cancelled;
};

/// A worker ended without saying why, by a signal for example.
class WorkerError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Runs a risk analysis on a copy of the plan.
///
/// Each iteration samples the tasks, raises PlanBeforeRiskIteration, schedules, raises
/// PlanAfterRiskIteration and takes the dates of the last scheduling. PlanBeforeRiskAnalysis comes
/// once before and PlanAfterRiskAnalysis once after, in each worker, which has a plan of its own.
/// For `attribute` PlanAfterRiskIteration comes again for each way of leaving calendars out, after
/// a scheduling on the days that are left, with the constraints that the tasks of `no_split` had
/// when it came first; the document keeps all taken days.
///
/// Raises std::invalid_argument for options outside their ranges and tasks asked for that are not
/// scheduled; SamplingError for correlation that cannot be followed; SchedulingError and
/// platform::RuntimeError with the number of the iteration in the text: always those of the lowest
/// iteration that fails; WorkerError; std::system_error where there is no room for a temporary file
/// or no process to be had; and whatever the functions of the wiring raise in this process. After
/// an error no worker is left. A dead worker is never waited for. Workers ignore SIGINT: it is for
/// the caller to answer `cancelled`.
RunResult Run(const Plan& plan, const RunOptions& options, const RunWiring& wiring);

/// Run for the plan's finish alone: the result is without tasks, calendars, targets and samples.
RunResult RunForFinish(const Plan& plan, const RunOptions& options, const RunWiring& wiring);

/// Runs the analysis first without weather (nobody is attached), then with it, on the same samples
/// of the ordinary tasks. Progress counts the iterations of both, so the total is twice
/// `iterations`. When it is stopped in the first run, the second one has no iterations.
ComparedResult RunWithAndWithout(const Plan& plan, const RunOptions& options,
                                 const RunWiring& wiring);

}  // namespace nimbrel::engine
