#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "engine/calendar/instant.h"
#include "engine/risk/run_board.h"
#include "engine/schedule/scheduler.h"

namespace nimbrel::engine {

/// The start and the finish of every task in every iteration, in a file without a name in the
/// folder for temporary files, so that memory stays bounded however long a run is. Laid out by
/// tile, task, start or finish, iteration. Processes may write different tiles at the same time.
class DateFile {
 public:
  /// Raises std::system_error where no file can be made.
  explicit DateFile(std::int32_t tasks);
  ~DateFile();
  DateFile(const DateFile&) = delete;
  DateFile& operator=(const DateFile&) = delete;

  std::int32_t tasks() const { return tasks_; }

  /// Writes a whole tile, tasks() * 2 * kTileIterations dates. Raises std::system_error, for a full
  /// disk for example.
  void WriteTile(std::int32_t tile, std::span<const Instant> dates);
  /// Reads `count` tasks of a tile from `first` on: count * 2 * kTileIterations dates.
  void ReadTile(std::int32_t tile, TaskIndex first, std::int32_t count,
                std::span<Instant> dates) const;

 private:
  int file_ = -1;
  std::int32_t tasks_;
};

/// One worker's dates of the tile that it is at.
class TileWriter {
 public:
  explicit TileWriter(DateFile& file);

  /// Takes the dates of the tile's next iteration from the scheduler.
  void Add(const Scheduler& scheduler);
  /// Writes the iterations added so far, and begins a new tile.
  void Write(std::int32_t tile);

 private:
  // Dates come one iteration after the other and are kept one task after the other. They are turned
  // over in batches as wide as a cache line.
  static constexpr std::int32_t kBatch = 16;

  void TurnOver();

  DateFile& file_;
  std::int32_t added_ = 0;
  std::vector<Instant> rows_;   // batch iteration, start or finish, task
  std::vector<Instant> dates_;  // task, start or finish, tile iteration
};

}  // namespace nimbrel::engine
