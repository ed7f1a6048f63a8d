#pragma once

#include <span>

#include "engine/calendar/instant.h"
#include "engine/results/statistics.h"

namespace nimbrel::engine {

/// A percentile of the same iterations in two ways of looking at them.
struct PairedPercentiles {
  std::span<const Instant> samples;  // one an iteration, none absent
  Percentile<Instant> percentile;    // of them, with its interval
};

/// Half the width of the 95% interval of the difference of two percentiles, in calendar days: with
/// the half widths a and b of their own intervals, the square root of a^2 + b^2 - 2 r a b, where r
/// is the correlation, over the iterations, of being at most the one and at most the other
/// percentile. Sample quantiles are, in the first order, such shares over a density, so that r is
/// the correlation of their errors. 0 for two ways that are the same. The samples are of the same
/// number, 1 or more.
double HalfWidthOfDifference(const PairedPercentiles& of, const PairedPercentiles& less);

}  // namespace nimbrel::engine
