#include "engine/risk/run_worker.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "engine/calendar/day_bits.h"
#include "engine/risk/run_failure.h"

namespace nimbrel::engine {

RunWorker::RunWorker(const RunContext& context, std::int32_t number)
    : context_(context),
      number_(number),
      stream_(context.options.seed),
      first_starts_(context.layout.no_split.size()),
      pushed_minutes_(context.layout.no_split.size()),
      driving_(context.layout.tasks.size()) {}

/// Runs a step of the run; an error goes to the board, and the answer is then false.
template <class Step>
bool RunWorker::Try(std::int32_t tile, std::int32_t iteration, Step&& step) {
  try {
    step();
    return true;
  } catch (...) {
    context_.board.Fail(number_, tile, RunFailure::From(std::current_exception(), iteration));
    return false;
  }
}

void RunWorker::Work(const std::function<bool()>& stop, const std::function<void()>& done) {
  // Whoever is attached is let go after everything else, before the host.
  struct Release {
    std::shared_ptr<void>& attached;
    ~Release() { attached.reset(); }
  };
  const Release release{attached_};
  // An error before the first iteration is in front of all tiles.
  if (!Try(-1, RunFailure::kBeforeAll, [this] { Start(); })) {
    return;
  }
  RunBoard& board = context_.board;
  bool running = true;
  for (std::int32_t tile = board.ClaimTile(); running && tile >= 0; tile = board.ClaimTile()) {
    running = RunTile(tile, stop, done);
  }
  if (board.failure(number_).kind == RunFailure::Kind::kNone) {
    Try(board.tiles(), RunFailure::kAfterAll, [this] { Finish(); });
  }
}

void RunWorker::Start() {
  host_ = MakeHost(context_.plan, context_.wiring.host);
  if (context_.wiring.attach) {
    attached_ = context_.wiring.attach(*host_);
  }
  host_->SetRandomStream(&stream_);
  stream_.Begin(0);
  host_->RaisePlanBeforeRiskAnalysis();
  // Receivers may complete the plan before the first iteration, so it is read only now.
  sampler_.emplace(host_->document());
  sampler_->Prepare(host_->samples());
  if (context_.dates != nullptr) {
    tile_.emplace(*context_.dates);
  }
}

bool RunWorker::RunTile(std::int32_t tile, const std::function<bool()>& stop,
                        const std::function<void()>& done) {
  const std::int32_t first = tile * kTileIterations;
  const std::int32_t end = std::min(first + kTileIterations, context_.options.iterations);
  std::int32_t iteration = first;
  for (; iteration < end; ++iteration) {
    if (stop && stop()) {
      context_.board.Stop();
    }
    if (context_.board.ShouldLeave(tile)) {
      break;
    }
    if (!Try(tile, iteration + 1, [&] { RunIteration(iteration); })) {
      return false;
    }
    context_.board.CountIteration();
    if (done) {
      done();
    }
  }
  if (tile_.has_value() && iteration > first &&
      !Try(tile, iteration, [&] { tile_->Write(tile); })) {
    return false;
  }
  context_.board.done(tile) = iteration - first;
  return iteration == end;
}

void RunWorker::RunIteration(std::int32_t iteration) {
  const std::int32_t number = iteration + 1;
  IterationSamples& samples = host_->samples();
  if (samples.units.size() != sampler_->task_count()) {
    throw std::logic_error("Tasks were added to the plan or removed from it during the run.");
  }
  sampler_->Sample(context_.options.seed, number, samples);
  stream_.Begin(number);
  host_->BeginIteration();
  host_->RaisePlanBeforeRiskIteration(number);
  host_->ScheduleIteration();
  NoteStarts();
  host_->RaisePlanAfterRiskIteration(number);
  TakeResults(iteration);
  host_->EndIteration();
}

void RunWorker::NoteStarts() {
  const Scheduler& scheduler = host_->scheduler();
  const std::vector<TaskIndex>& tasks = context_.layout.no_split;
  for (std::size_t i = 0; i < tasks.size(); ++i) {
    first_starts_[i] = scheduler.early_start(tasks[i]);
  }
}

void RunWorker::TakeResults(std::int32_t iteration) {
  const Scheduler& scheduler = host_->scheduler();
  const RunLayout& layout = context_.layout;
  if (static_cast<std::size_t>(scheduler.task_count()) != layout.tasks.size()) {
    throw std::logic_error("The tasks that are scheduled changed during the run.");
  }
  context_.board.finish(iteration) = scheduler.finish();
  if (!tile_.has_value()) {
    return;
  }
  tile_->Add(scheduler);
  scheduler.CountDriving(driving_);
  for (std::size_t i = 0; i < layout.no_split.size(); ++i) {
    pushed_minutes_[i] +=
        scheduler.early_start(layout.no_split[i]).Minutes() - first_starts_[i].Minutes();
  }
  const std::span<std::int32_t> lost = context_.board.lost_days(iteration);
  for (std::size_t i = 0; i < layout.calendars.size(); ++i) {
    lost[i] = layout.calendars[i].open_days -
              scheduler.WorkedDays(layout.calendars[i].index, kFirstCoveredDay, kLastCoveredDay);
  }
}

void RunWorker::Finish() {
  std::copy(driving_.begin(), driving_.end(), context_.board.driving(number_).begin());
  std::copy(pushed_minutes_.begin(), pushed_minutes_.end(),
            context_.board.pushed_minutes(number_).begin());
  host_->RaisePlanAfterRiskAnalysis();
}

}  // namespace nimbrel::engine
