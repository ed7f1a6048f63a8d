#pragma once

#include <span>

#include "engine/calendar/instant.h"
#include "engine/results/statistics.h"

namespace nimbrel::engine {

/// A percentile of the same iterations in two ways of looking at them.
struct PairedPercentiles {
  std::span<const Instant> samples;  // one an iteration, none absent
  Percentile<Instant> percentile;    // of them
};

/// In calendar days.
struct DayInterval {
  double low = 0;
  double high = 0;
};

/// The 95% interval of the difference of two percentiles.
///
/// How many of N samples lie below a true p-quantile is binomial, and for two ways of looking at
/// the same iterations the two numbers go together: with the correlation r, over the iterations, of
/// being at most the one and at most the other percentile. So each quantile is taken to be the
/// sample that lies z sqrt(N p (1 - p)) places from the percentile, with standard normal z whose
/// correlation is r; the interval is what the difference of the two samples keeps to with 95%. It
/// takes no density for granted: where finishes leave gaps, as they do at weekends, the interval
/// goes as far as the samples beyond them. The same samples twice give 0 to 0. The samples are of
/// the same number, 1 or more.
DayInterval IntervalOfDifference(const PairedPercentiles& of, const PairedPercentiles& less);

}  // namespace nimbrel::engine
