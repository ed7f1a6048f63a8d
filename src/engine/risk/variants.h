#pragma once

#include <cstddef>
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
  /// iteration as it was made; pushes must have been undone. Afterwards the calendars are as
  /// before, and the schedule is that of the last variant.
  void Schedule(IterationMaker& maker, std::int32_t number, const LostDays& lost,
                std::span<Instant> finishes);

 private:
  void SetTaken(Scheduler& scheduler, std::size_t calendar, bool taken, const LostDays& lost);

  const RunInputs& inputs_;
  std::vector<bool> taken_;  // by calendar, as they stand
};

}  // namespace nimbrel::engine
