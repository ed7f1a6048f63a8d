#pragma once

#include "engine/schedule/network.h"

namespace nimbrel::engine {

/// Late dates and floats of all tasks from the early dates. Raises SchedulingError.
void RunBackward(Network& network);

struct LateDates {
  Instant start;
  Instant finish;
};

/// The latest dates of an unfinished task that delay the early dates of no other task, do not put
/// off the plan's finish and keep to the task's own constraints.
LateDates LatestWithoutDelay(Network& network, Slot slot);

}  // namespace nimbrel::engine
