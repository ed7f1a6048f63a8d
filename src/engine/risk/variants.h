#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "engine/risk/iteration_maker.h"
#include "engine/risk/lost_days.h"

namespace nimbrel::engine {

/// Schedules the iteration that a maker has made again with calendars left out.
class Variants {
 public:
  explicit Variants(const RunInputs& inputs);

  /// Gives the tasks that must not be split the constraints back that they had before they were
  /// pushed; schedules nothing.
  void UndoPushes(IterationMaker& maker) const;

  /// Writes the plan's finish in each of the layout's variants. `lost` are the days of the
  /// iteration as it was made, `finish` is its finish; pushes must have been undone. Afterwards the
  /// calendars are as before, and the schedule is that of some variant.
  void Schedule(IterationMaker& maker, std::int32_t number, const LostDays& lost, Instant finish,
                std::span<Instant> finishes);

 private:
  /// The finish of a variant that is the same as the iteration or as an earlier variant, since they
  /// differ in calendars only that have lost no day; null if it has to be scheduled. `losing` has a
  /// bit for each calendar that has lost days.
  const Instant* Known(std::size_t variant, std::uint64_t losing, const Instant& finish,
                       std::span<const Instant> finishes) const;
  void SetTaken(Scheduler& scheduler, std::size_t calendar, bool taken, const LostDays& lost);

  const RunInputs& inputs_;
  /// The calendars that take effect in each variant, a bit each; empty where there are too many.
  std::vector<std::uint64_t> masks_;
  std::vector<bool> taken_;  // by calendar, as they stand
};

}  // namespace nimbrel::engine
