#pragma once

#include <cstdint>

#include "engine/results/statistics.h"

namespace nimbrel::engine {

/// Whether so many samples are enough for a 95% interval of the p-quantile between two of them: the
/// quantile lies below the first sample, and above the last one, with a chance of at most 2.5%
/// each. For P50 these are 6 samples, for P80 17, for P10 and P90 36. `count` is 0 or more,
/// 0 < percent < 100.
bool HasQuantileInterval(std::int64_t count, int percent);

/// Makes the bounds of intervals absent for which there are too few samples.
void LeaveOutIntervals(DateStatistics& statistics);

/// Makes the bounds of intervals no numbers (NaN) for which there are too few samples.
void LeaveOutIntervals(DayStatistics& statistics);

/// Makes its bounds absent if `count` samples are too few.
void LeaveOutInterval(std::int64_t count, Percentile<Instant>& percentile);

}  // namespace nimbrel::engine
