#pragma once

#include "engine/schedule/network.h"

namespace nimbrel::engine {

/// Early dates of levels of effort and summaries from those of the other tasks. Raises
/// SchedulingError.
void FillEarlySpans(Network& network);
/// Late dates and floats of levels of effort and summaries. Raises SchedulingError.
void FillLateSpans(Network& network);

}  // namespace nimbrel::engine
