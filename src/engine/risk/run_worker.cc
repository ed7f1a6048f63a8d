#include "engine/risk/run_worker.h"

#include <unistd.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "engine/risk/run_failure.h"
#include "engine/risk/until.h"

namespace nimbrel::engine {

RunWorker::RunWorker(const RunContext& context, std::int32_t number)
    : context_(context),
      layout_(context.inputs.layout),
      number_(number),
      maker_(context.inputs),
      lost_(layout_),
      variants_(context.inputs),
      pushed_minutes_(layout_.no_split.size()) {}

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
  // An error before the first iteration is in front of all tiles.
  if (!Try(-1, RunFailure::kBeforeAll, [this] { Start(); })) {
    return;
  }
  RunBoard& board = context_.board;
  bool running = true;
  for (std::int32_t tile = NextTile(); running && tile >= 0; tile = NextTile()) {
    running = RunTile(tile, stop, done);
  }
  if (board.failure(number_).kind == RunFailure::Kind::kNone) {
    Try(board.tiles(), RunFailure::kAfterAll, [this] { Finish(); });
  }
}

void RunWorker::Start() {
  maker_.Start();
  if (context_.dates != nullptr) {
    tile_.emplace(*context_.dates);
  }
}

/// The next tile, once it may be begun; below 0 when there is none.
std::int32_t RunWorker::NextTile() {
  constexpr useconds_t kPauseMicroseconds = 200;
  std::int32_t tile = context_.board.ClaimTile();
  while (tile == RunBoard::kNotYet) {
    usleep(kPauseMicroseconds);  // another worker is about to decide
    tile = context_.board.ClaimTile();
  }
  return tile;
}

bool RunWorker::RunTile(std::int32_t tile, const std::function<bool()>& stop,
                        const std::function<void()>& done) {
  const std::int32_t first = tile * kTileIterations;
  const std::int32_t end = std::min(first + kTileIterations, context_.inputs.options.iterations);
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
  if (iteration == end && context_.board.FinishTile()) {
    DecideEnd();
  }
  return iteration == end;
}

void RunWorker::RunIteration(std::int32_t iteration) {
  maker_.Make(iteration + 1);
  TakeResults(iteration);
  maker_.End();
}

void RunWorker::TakeResults(std::int32_t iteration) {
  const Scheduler& scheduler = maker_.host().scheduler();
  if (static_cast<std::size_t>(scheduler.task_count()) != layout_.tasks.size()) {
    throw std::logic_error("The tasks that are scheduled changed during the run.");
  }
  context_.board.finish(iteration) = scheduler.finish();
  if (!tile_.has_value()) {
    return;
  }
  tile_->Add(scheduler);
  TakePushes(scheduler);
  TakeDriving(scheduler);
  TakeLostDays(scheduler, iteration);
  if (!layout_.variants.empty()) {
    variants_.UndoPushes(maker_);
    if (!ledger_.has_value()) {
      ledger_.emplace(layout_, scheduler);
    }
    ledger_->Look(scheduler, lost_, driving_);
    const Instant finish = context_.board.finish(iteration);
    const std::span<Instant> finishes = context_.board.variant_finishes(iteration);
    variants_.Schedule(maker_, iteration + 1, lost_, finish, finishes);
    ledger_->Book(lost_, finishes[RunLayout::kWithoutAny], finish, context_.board.ledger(number_));
  }
}

void RunWorker::TakePushes(const Scheduler& scheduler) {
  maker_.FindPushed(pushed_);
  telling_.SetHeld(scheduler, pushed_);
  // Both are in the layout's order.
  std::size_t place = 0;
  for (const HeldTask& pushed : pushed_) {
    while (layout_.no_split[place] != pushed.task) {
      ++place;
    }
    pushed_minutes_[place] +=
        scheduler.early_start(pushed.task).Minutes() - pushed.start_by_links.Minutes();
  }
}

void RunWorker::TakeDriving(const Scheduler& scheduler) {
  telling_.DrivingPath(scheduler, -1, driving_);
  const std::span<std::uint32_t> counts = context_.board.driving(number_);
  for (const TaskIndex task : driving_) {
    ++counts[static_cast<std::size_t>(task)];
  }
  for (std::size_t i = 0; i < layout_.targets.size(); ++i) {
    telling_.DrivingPath(scheduler, layout_.targets[i], path_);
    const std::span<std::uint32_t> target_counts = context_.board.target_driving(number_, i);
    for (const TaskIndex task : path_) {
      ++target_counts[static_cast<std::size_t>(task)];
    }
  }
}

void RunWorker::TakeLostDays(const Scheduler& scheduler, std::int32_t iteration) {
  lost_.Take(scheduler);
  const std::span<std::int32_t> counts = context_.board.lost_days(iteration);
  for (std::size_t i = 0; i < layout_.calendars.size(); ++i) {
    counts[i] = lost_.count(i);
    const std::span<std::uint32_t> by_day = context_.board.day_counts(number_, i);
    lost_.VisitDays(i, [&by_day](std::int32_t day) {
      ++by_day[static_cast<std::size_t>(day - kFirstCoveredDay)];
    });
  }
}

/// All iterations up to the limit are done: either they are enough, or there are to be more.
void RunWorker::DecideEnd() {
  RunBoard& board = context_.board;
  const std::int32_t tiles = board.tile_limit();
  const std::int32_t count = std::min(tiles * kTileIterations, board.extent().iterations);
  if (WidthOfP80({&board.finish(0), static_cast<std::size_t>(count)}) <=
      context_.inputs.options.until_days) {
    board.EndAtLimit();
  } else if (tiles < board.tiles()) {
    board.LimitTiles(NextCheck(tiles, board.tiles()));
  }
}

void RunWorker::Finish() {
  std::copy(pushed_minutes_.begin(), pushed_minutes_.end(),
            context_.board.pushed_minutes(number_).begin());
  maker_.Finish();
}

}  // namespace nimbrel::engine
