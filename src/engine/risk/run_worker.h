#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "engine/objects/host.h"
#include "engine/risk/date_file.h"
#include "engine/risk/random.h"
#include "engine/risk/run.h"
#include "engine/risk/run_board.h"
#include "engine/risk/run_layout.h"
#include "engine/risk/sampler.h"

namespace nimbrel::engine {

/// What all workers of a run are given; nothing of it is kept beyond the run.
struct RunContext {
  const Plan& plan;
  const RunOptions& options;
  const RunWiring& wiring;
  const RunLayout& layout;
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
  /// False when the run ended within the tile.
  bool RunTile(std::int32_t tile, const std::function<bool()>& stop,
               const std::function<void()>& done);
  void RunIteration(std::int32_t iteration);
  void NoteStarts();
  void TakeResults(std::int32_t iteration);
  void Finish();
  template <class Step>
  bool Try(std::int32_t tile, std::int32_t iteration, Step&& step);

  const RunContext& context_;
  std::int32_t number_;
  platform::Ref<Host> host_;
  std::shared_ptr<void> attached_;
  RunStream stream_;
  std::optional<Sampler> sampler_;
  std::optional<TileWriter> tile_;
  std::vector<Instant> first_starts_;  // of the no-split tasks, before they are pushed
  std::vector<std::int64_t> pushed_minutes_;
  std::vector<std::uint32_t> driving_;
};

}  // namespace nimbrel::engine
