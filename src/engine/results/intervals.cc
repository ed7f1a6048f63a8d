#include "engine/results/intervals.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace nimbrel::engine {
namespace {

template <class Statistics, class Value>
void LeaveOut(Statistics& statistics, Value nothing) {
  struct Bounds {
    int percent;
    Value Statistics::*low;
    Value Statistics::*high;
  };
  for (const Bounds& bounds : {Bounds{10, &Statistics::p10_low, &Statistics::p10_high},
                               Bounds{50, &Statistics::p50_low, &Statistics::p50_high},
                               Bounds{80, &Statistics::p80_low, &Statistics::p80_high},
                               Bounds{90, &Statistics::p90_low, &Statistics::p90_high}}) {
    if (!HasQuantileInterval(statistics.count, bounds.percent)) {
      statistics.*bounds.low = nothing;
      statistics.*bounds.high = nothing;
    }
  }
}

}  // namespace

bool HasQuantileInterval(std::int64_t count, int percent) {
  // The rarer of the two: all samples on the same side of the quantile.
  const double side = std::max(percent, 100 - percent) / 100.0;
  return std::pow(side, static_cast<double>(count)) <= 0.025;
}

void LeaveOutIntervals(DateStatistics& statistics) {
  LeaveOut(statistics, Instant());
}

void LeaveOutIntervals(DayStatistics& statistics) {
  LeaveOut(statistics, std::numeric_limits<double>::quiet_NaN());
}

void LeaveOutInterval(std::int64_t count, Percentile<Instant>& percentile) {
  if (!HasQuantileInterval(count, percentile.percent)) {
    percentile.low = Instant();
    percentile.high = Instant();
  }
}

}  // namespace nimbrel::engine
