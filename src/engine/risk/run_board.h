#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>

#include "engine/calendar/day_bits.h"
#include "engine/calendar/instant.h"
#include "engine/results/run_result.h"
#include "engine/risk/run_failure.h"

namespace nimbrel::engine {

/// Iterations that a worker takes at a time.
inline constexpr std::int32_t kTileIterations = 64;

/// What the processes of a run share: which iterations are to be done next, and all results but the
/// dates of the single tasks. Memory that stays shared across fork; what belongs to a worker or to
/// an iteration is written by one process only, and read by the others when that one has ended.
class RunBoard {
 public:
  struct Extent {
    std::int32_t iterations = 0;
    std::int32_t workers = 0;
    std::int32_t tasks = 0;
    std::int32_t calendars = 0;
    std::int32_t no_split = 0;
    std::int32_t targets = 0;
    std::int32_t variants = 0;
  };

  /// Raises std::system_error if there is no memory to be had.
  explicit RunBoard(const Extent& extent);
  ~RunBoard();
  RunBoard(const RunBoard&) = delete;
  RunBoard& operator=(const RunBoard&) = delete;

  const Extent& extent() const { return extent_; }
  std::int32_t tiles() const { return (extent_.iterations - 1) / kTileIterations + 1; }

  // Who does what.

  /// No tile: the run ends, or the tiles that may be begun have all been claimed.
  static constexpr std::int32_t kNone = -1;
  static constexpr std::int32_t kNotYet = -2;

  /// The next tile that no worker has, from 0, or one of the above.
  std::int32_t ClaimTile();
  /// Holds workers back from tiles from `tiles` on. At first there is no limit.
  void LimitTiles(std::int32_t tiles) { control_->tile_limit.store(tiles); }
  std::int32_t tile_limit() const { return control_->tile_limit.load(); }
  /// Notes that all iterations of a tile are done. True for the one call after which all tiles
  /// below the limit are: the results of all their iterations can then be read, and the limit
  /// moved.
  bool FinishTile() {
    return control_->tiles_finished.fetch_add(1) + 1 == control_->tile_limit.load();
  }
  /// Ends the run with the tiles below the limit, as one that has all that was wished for.
  void EndAtLimit() { control_->ends_at_limit.store(true); }
  /// Iterations that the run has if nothing stops it, as far as that is settled.
  std::int32_t iterations_planned() const {
    return control_->ends_at_limit.load()
               ? std::min(control_->tile_limit.load() * kTileIterations, extent_.iterations)
               : extent_.iterations;
  }
  /// Ends the run after the iterations that are under way.
  void Stop() { control_->stop.store(true); }
  /// Whether a worker that has `tile` is to leave the rest of it: the run was stopped, or an
  /// iteration in front of the tile has failed.
  bool ShouldLeave(std::int32_t tile) const {
    return control_->stop.load() || control_->failed_tile.load() < tile;
  }
  /// From now on no tile is claimed; those before the failed one are finished, so that the error
  /// of the lowest iteration is found.
  void Fail(std::int32_t worker, std::int32_t tile, const RunFailure& failure);

  void CountIteration() { control_->iterations_done.fetch_add(1); }
  /// Iterations done so far.
  std::int32_t iterations_done() const { return control_->iterations_done.load(); }

  // Results.

  /// How many iterations of the tile are done: the first ones.
  std::int32_t& done(std::int32_t tile) { return tile_done_[Index(tile)]; }
  /// The plan's finish in an iteration, from 0.
  Instant& finish(std::int32_t iteration) { return finish_[Index(iteration)]; }
  /// Days lost on each calendar in an iteration, from 0.
  std::span<std::int32_t> lost_days(std::int32_t iteration) {
    return {lost_days_ + Index(iteration) * Index(extent_.calendars), Index(extent_.calendars)};
  }
  /// The plan's finish in the variants of an iteration, from 0.
  std::span<Instant> variant_finishes(std::int32_t iteration) {
    return {variant_finishes_ + Index(iteration) * Index(extent_.variants),
            Index(extent_.variants)};
  }
  /// In how many iterations a calendar lost each covered day, of one worker.
  std::span<std::uint32_t> day_counts(std::int32_t worker, std::size_t calendar) {
    return {day_counts_ + (Index(worker) * Index(extent_.calendars) + calendar) * kCoveredDays,
            kCoveredDays};
  }
  /// Where the lost days of each calendar went, of one worker.
  std::span<LedgerResult> ledger(std::int32_t worker) {
    return {ledger_ + Index(worker) * Index(extent_.calendars), Index(extent_.calendars)};
  }
  /// How often each task drove a target, of one worker.
  std::span<std::uint32_t> target_driving(std::int32_t worker, std::size_t target) {
    return {
        target_driving_ + (Index(worker) * Index(extent_.targets) + target) * Index(extent_.tasks),
        Index(extent_.tasks)};
  }
  /// How often each task drove the plan's finish, of one worker.
  std::span<std::uint32_t> driving(std::int32_t worker) {
    return {driving_ + Index(worker) * Index(extent_.tasks), Index(extent_.tasks)};
  }
  /// Minutes that each no-split task was pushed, summed over the iterations of one worker.
  std::span<std::int64_t> pushed_minutes(std::int32_t worker) {
    return {pushed_minutes_ + Index(worker) * Index(extent_.no_split), Index(extent_.no_split)};
  }
  const RunFailure& failure(std::int32_t worker) const { return failures_[Index(worker)]; }

 private:
  struct Control {
    std::atomic<std::int32_t> next_tile{0};
    std::atomic<std::int32_t> iterations_done{0};
    std::atomic<std::int32_t> failed_tile{std::numeric_limits<std::int32_t>::max()};
    std::atomic<std::int32_t> tile_limit{std::numeric_limits<std::int32_t>::max()};
    std::atomic<std::int32_t> tiles_finished{0};
    std::atomic<bool> ends_at_limit{false};
    std::atomic<bool> stop{false};
  };
  static constexpr std::size_t kCoveredDays = kLastCoveredDay - kFirstCoveredDay + 1;
  static_assert(std::atomic<std::int32_t>::is_always_lock_free);

  static std::size_t Index(std::int32_t number) { return static_cast<std::size_t>(number); }
  template <class T>
  T* Place(std::size_t& offset, std::size_t count) const;
  void PlaceAll(std::size_t& size);

  Extent extent_;
  void* memory_ = nullptr;
  std::size_t size_ = 0;
  Control* control_ = nullptr;
  std::int32_t* tile_done_ = nullptr;
  Instant* finish_ = nullptr;
  std::int32_t* lost_days_ = nullptr;
  Instant* variant_finishes_ = nullptr;
  std::uint32_t* day_counts_ = nullptr;
  LedgerResult* ledger_ = nullptr;
  std::uint32_t* target_driving_ = nullptr;
  std::uint32_t* driving_ = nullptr;
  std::int64_t* pushed_minutes_ = nullptr;
  RunFailure* failures_ = nullptr;
};

}  // namespace nimbrel::engine
