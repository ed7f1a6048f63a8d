#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "engine/risk/date_file.h"
#include "engine/risk/iteration_maker.h"
#include "engine/risk/ledger.h"
#include "engine/risk/lost_days.h"
#include "engine/risk/run_board.h"
#include "engine/risk/variants.h"
#include "engine/schedule/telling.h"

namespace nimbrel::engine {

/// What all workers of a run are given; nothing of it is kept beyond the run.
struct RunContext {
  RunInputs inputs;
  RunBoard& board;
  DateFile* dates = nullptr;  // null: only the plan's finish is wanted
};

/// One worker's share of a run, from the first event to the last, with a host and a plan of its
/// own. The results go to the board and to the file of dates.
class RunWorker {
 public:
  RunWorker(const RunContext& context, std::int32_t number);

  /// Takes tiles until there are none. `stop` is asked before each iteration, `done` is told after
  /// each; both may be empty. An error of the run is left on the board; what `stop` and `done`
  /// raise goes to the caller.
  void Work(const std::function<bool()>& stop, const std::function<void()>& done);

 private:
  void Start();
  std::int32_t NextTile();
  /// False when the run ended within the tile.
  bool RunTile(std::int32_t tile, const std::function<bool()>& stop,
               const std::function<void()>& done);
  void RunIteration(std::int32_t iteration);
  void TakeResults(std::int32_t iteration);
  void TakePushes(const Scheduler& scheduler);
  void TakeDriving(const Scheduler& scheduler);
  void TakeLostDays(const Scheduler& scheduler, std::int32_t iteration);
  void DecideEnd();
  void Finish();
  template <class Step>
  bool Try(std::int32_t tile, std::int32_t iteration, Step&& step);

  const RunContext& context_;
  const RunLayout& layout_;
  std::int32_t number_;
  IterationMaker maker_;
  std::optional<TileWriter> tile_;
  ScheduleTelling telling_;
  LostDays lost_;
  Variants variants_;
  std::optional<Ledger> ledger_;
  std::vector<TaskIndex> driving_;  // on a path to the plan's finish, in the current iteration
  std::vector<TaskIndex> path_;     // to a target
  std::vector<HeldTask> pushed_;    // in the current iteration
  std::vector<std::int64_t> pushed_minutes_;  // by task, summed over the iterations
};

}  // namespace nimbrel::engine
