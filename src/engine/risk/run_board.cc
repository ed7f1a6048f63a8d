#include "engine/risk/run_board.h"

#include <sys/mman.h>

#include <cerrno>
#include <new>
#include <system_error>

namespace nimbrel::engine {

template <class T>
T* RunBoard::Place(std::size_t& offset, std::size_t count) const {
  constexpr std::size_t kAlignment = 64;  // nothing of two workers in one cache line
  offset = (offset + kAlignment - 1) / kAlignment * kAlignment;
  T* place = memory_ == nullptr ? nullptr
                                : reinterpret_cast<T*>(static_cast<std::byte*>(memory_) + offset);
  offset += count * sizeof(T);
  return place;
}

void RunBoard::PlaceAll(std::size_t& size) {
  const std::size_t workers = Index(extent_.workers);
  const std::size_t iterations = Index(extent_.iterations);
  control_ = Place<Control>(size, 1);
  tile_done_ = Place<std::int32_t>(size, Index(tiles()));
  finish_ = Place<Instant>(size, iterations);
  lost_days_ = Place<std::int32_t>(size, iterations * Index(extent_.calendars));
  variant_finishes_ = Place<Instant>(size, iterations * Index(extent_.variants));
  // Most of these pages are never touched.
  day_counts_ = Place<std::uint32_t>(size, workers * Index(extent_.calendars) * kCoveredDays);
  ledger_ = Place<LedgerResult>(size, workers * Index(extent_.calendars));
  target_driving_ =
      Place<std::uint32_t>(size, workers * Index(extent_.targets) * Index(extent_.tasks));
  driving_ = Place<std::uint32_t>(size, workers * Index(extent_.tasks));
  pushed_minutes_ = Place<std::int64_t>(size, workers * Index(extent_.no_split));
  failures_ = Place<RunFailure>(size, workers);
}

RunBoard::RunBoard(const Extent& extent) : extent_(extent) {
  PlaceAll(size_);
  // Pages come as zeros, which is how all but the control block begins; finishes are read only
  // where they were written.
  memory_ = mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory_ == MAP_FAILED) {
    throw std::system_error(errno, std::generic_category(), "No memory for the run's results");
  }
  std::size_t offset = 0;
  PlaceAll(offset);
  new (control_) Control;
}

RunBoard::~RunBoard() {
  munmap(memory_, size_);
}

std::int32_t RunBoard::ClaimTile() {
  if (control_->stop.load() || control_->ends_at_limit.load() ||
      control_->failed_tile.load() != std::numeric_limits<std::int32_t>::max()) {
    return kNone;
  }
  std::int32_t tile = control_->next_tile.load();
  do {
    if (tile >= tiles()) {
      return kNone;
    }
    if (tile >= control_->tile_limit.load()) {
      return kNotYet;
    }
  } while (!control_->next_tile.compare_exchange_weak(tile, tile + 1));
  return tile;
}

void RunBoard::Fail(std::int32_t worker, std::int32_t tile, const RunFailure& failure) {
  failures_[Index(worker)] = failure;
  std::int32_t lowest = control_->failed_tile.load();
  while (tile < lowest && !control_->failed_tile.compare_exchange_weak(lowest, tile)) {
  }
}

}  // namespace nimbrel::engine
