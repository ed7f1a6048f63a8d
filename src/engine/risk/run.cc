#include "engine/risk/run.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

#include "engine/risk/collect.h"
#include "engine/risk/date_file.h"
#include "engine/risk/run_board.h"
#include "engine/risk/run_failure.h"
#include "engine/risk/run_layout.h"
#include "engine/risk/run_worker.h"
#include "engine/risk/until.h"
#include "engine/risk/worker_group.h"

namespace nimbrel::engine {
namespace {

enum class Extent { kEverything, kFinishOnly };

/// Raises the error of the lowest iteration, if there is one.
void RaiseFirstFailure(const RunBoard& board) {
  const RunFailure* first = nullptr;
  for (std::int32_t worker = 0; worker < board.extent().workers; ++worker) {
    const RunFailure& failure = board.failure(worker);
    if (failure.kind != RunFailure::Kind::kNone &&
        (first == nullptr || failure.iteration < first->iteration)) {
      first = &failure;
    }
  }
  if (first != nullptr) {
    first->Raise();
  }
}

void ReportProgress(const RunContext& context) {
  if (context.inputs.wiring.progress) {
    context.inputs.wiring.progress(context.board.iterations_done(),
                                   context.inputs.options.iterations);
  }
}

/// Runs all iterations in processes of their own and waits for their end.
void RunInProcesses(const RunContext& context) {
  const RunWiring& wiring = context.inputs.wiring;
  WorkerGroup group(context.board.extent().workers,
                    [&context](std::int32_t number) { RunWorker(context, number).Work({}, {}); });
  // A person sees progress, and a stop is heard, within this time.
  constexpr int kWaitMilliseconds = 100;
  std::int32_t reported = 0;
  while (group.Wait(kWaitMilliseconds)) {
    if (!group.deaths().empty() || (wiring.cancelled && wiring.cancelled())) {
      context.board.Stop();
    }
    if (reported != context.board.iterations_done()) {
      reported = context.board.iterations_done();
      ReportProgress(context);
    }
  }
  if (!group.deaths().empty()) {
    const WorkerGroup::Death& death = group.deaths().front();
    throw WorkerError(
        death.signal != 0
            ? fmt::format("Worker {} was ended by signal {}.", death.worker + 1, death.signal)
            : fmt::format("Worker {} ended with status {}.", death.worker + 1, death.status));
  }
  ReportProgress(context);
}

RunResult RunOnce(const Plan& plan, const RunOptions& options, const RunWiring& wiring,
                  Extent extent) {
  const RunLayout layout = MakeRunLayout(plan, options, wiring);
  const auto tasks = static_cast<std::int32_t>(layout.tasks.size());
  const std::int32_t tiles = (options.iterations - 1) / kTileIterations + 1;
  RunBoard board({.iterations = options.iterations,
                  .workers = std::min({options.workers, tiles, kMaxWorkers}),
                  .tasks = tasks,
                  .calendars = static_cast<std::int32_t>(layout.calendars.size()),
                  .no_split = static_cast<std::int32_t>(layout.no_split.size()),
                  .targets = static_cast<std::int32_t>(layout.targets.size()),
                  .variants = static_cast<std::int32_t>(layout.variants.size())});
  if (options.until_days > 0) {
    board.LimitTiles(std::min(kFirstCheckTiles, tiles));
  }
  std::optional<DateFile> dates;
  if (extent == Extent::kEverything) {
    dates.emplace(tasks);
  }
  const RunContext context{.inputs = {plan, options, wiring, layout},
                           .board = board,
                           .dates = dates.has_value() ? &*dates : nullptr};
  if (board.extent().workers == 1) {
    RunWorker(context, 0).Work(wiring.cancelled, [&context] { ReportProgress(context); });
  } else {
    RunInProcesses(context);
  }
  RaiseFirstFailure(board);
  return Collect(context);
}

/// Finish with less finish without, for the iterations that both runs did.
std::vector<std::int64_t> DelaysOf(const RunResult& with, const RunResult& without) {
  std::vector<std::int64_t> delays;
  std::size_t other = 0;
  for (std::size_t i = 0; i < with.iteration_numbers.size(); ++i) {
    const std::int32_t number = with.iteration_numbers[i];
    while (other < without.iteration_numbers.size() && without.iteration_numbers[other] < number) {
      ++other;
    }
    if (other < without.iteration_numbers.size() && without.iteration_numbers[other] == number) {
      delays.push_back(with.finish_samples[i].Minutes() - without.finish_samples[other].Minutes());
    }
  }
  return delays;
}

}  // namespace

RunResult Run(const Plan& plan, const RunOptions& options, const RunWiring& wiring) {
  return RunOnce(plan, options, wiring, Extent::kEverything);
}

RunResult RunForFinish(const Plan& plan, const RunOptions& options, const RunWiring& wiring) {
  return RunOnce(plan, options, wiring, Extent::kFinishOnly);
}

ComparedResult RunWithAndWithout(const Plan& plan, const RunOptions& options,
                                 const RunWiring& wiring) {
  const auto progress_from = [&wiring](std::int32_t before) {
    return [&wiring, before](std::int32_t done, std::int32_t total) {
      if (wiring.progress) {
        wiring.progress(before + done, 2 * total);
      }
    };
  };
  ComparedResult result;
  // How many iterations an interval takes is for the run with weather to find.
  const bool with_first = options.until_days > 0;
  RunWiring with = wiring;
  with.progress = progress_from(with_first ? 0 : options.iterations);
  RunWiring without = wiring;
  without.attach = nullptr;
  without.progress = progress_from(with_first ? options.iterations : 0);
  RunOptions finish_only = options;
  finish_only.until_days = 0;
  finish_only.attribute = false;
  if (with_first) {
    result.with_weather = RunOnce(plan, options, with, Extent::kEverything);
    if (result.with_weather.stopped) {
      return result;
    }
    finish_only.iterations = result.with_weather.iterations();
    finish_only.strata = options.iterations;
  }
  result.without_weather = RunOnce(plan, finish_only, without, Extent::kFinishOnly);
  if (!with_first && result.without_weather.stopped) {
    result.with_weather.version = result.without_weather.version;
    result.with_weather.seed = options.seed;
    result.with_weather.iterations_asked = options.iterations;
    result.with_weather.stopped = true;
    result.with_weather.deterministic_finish = result.without_weather.deterministic_finish;
    return result;
  }
  if (!with_first) {
    result.with_weather = RunOnce(plan, options, with, Extent::kEverything);
  }
  result.delay_minutes = DelaysOf(result.with_weather, result.without_weather);
  result.delay = SummarizeMinutes(result.delay_minutes);
  return result;
}

}  // namespace nimbrel::engine
