#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "engine/calendar/instant.h"
#include "engine/results/rank_selector.h"

namespace nimbrel::engine {

/// Positions in a sorted column of `count` samples, from 0.

/// The p-percentile, 0 < p <= 100: the smallest sample that at least p percent of the samples do
/// not exceed, that is number ceil(p N / 100). `count` is 1 or more.
std::int64_t PercentileRank(std::int64_t count, int percent);

/// Two samples that hold the true p-quantile between them, both included, with a chance of at least
/// 95%, or the first and the last sample where there are too few for that.
struct RankInterval {
  std::int64_t low = 0;
  std::int64_t high = 0;
  friend bool operator==(const RankInterval&, const RankInterval&) = default;
};

/// By the binomial distribution: with B ~ Bin(N, p), the number of samples below the quantile, the
/// order statistics l and h (from 1) cover it with the chance P(l <= B < h). l is the greatest with
/// P(B < l) <= 2.5%, h the smallest with P(B >= h) <= 2.5%; where there is none, the first and the
/// last sample. `count` is 1 or more, 0 < percent < 100.
RankInterval QuantileInterval(std::int64_t count, int percent);

/// A percentile, and the 95% interval of the quantile that it estimates (see QuantileInterval). All
/// three are samples.
template <class Value>
struct Percentile {
  int percent = 0;
  Value value{};
  Value low{};
  Value high{};
  friend bool operator==(const Percentile&, const Percentile&) = default;
};

/// What the samples of a date say. All dates are samples, but for the mean.
struct DateStatistics {
  std::int64_t count = 0;  // 0: everything else is absent or 0
  Instant mean;            // rounded to the minute, half a minute up
  double sd_days = 0;      // calendar days, with N - 1 as divisor; 0 for one sample
  Instant min, max;
  Instant p10, p50, p80, p90;
  // Their 95% intervals.
  Instant p10_low, p10_high, p50_low, p50_high, p80_low, p80_high, p90_low, p90_high;
  friend bool operator==(const DateStatistics&, const DateStatistics&) = default;
};

/// Its percentiles with their intervals, in order.
std::array<Percentile<Instant>, 4> PercentilesOf(const DateStatistics& statistics);

/// Makes statistics of columns of dates, one after the other, with working memory of its own.
/// Samples may be in any order, and none may be absent; the order changes nothing.
class DateSummarizer {
 public:
  /// `as_finish` gives the mean in the form of a finish (24:00 of the day before where it falls on
  /// a midnight).
  DateStatistics Summarize(std::span<const Instant> samples, bool as_finish);

  /// The p-percentile, 0 < p <= 100, with its interval (the 100-percentile stands alone); absent
  /// dates for no samples.
  Percentile<Instant> PercentileOf(std::span<const Instant> samples, int percent);

 private:
  const RankInterval& IntervalOf(std::int64_t count, std::size_t which);

  RankSelector selector_;
  std::int64_t interval_count_ = 0;  // what intervals_ are for
  std::array<RankInterval, 4> intervals_;
};

/// Standard deviation of the times from start to finish in calendar days, with N - 1 as divisor; 0
/// for fewer than two. The spans are of the same length.
double ElapsedDeviation(std::span<const Instant> starts, std::span<const Instant> finishes);

/// What samples that are lengths of time say, in calendar days.
struct DayStatistics {
  std::int64_t count = 0;  // 0: everything else is 0
  double mean = 0;
  double sd = 0;  // with N - 1 as divisor; 0 for one sample
  double min = 0, max = 0;
  double p10 = 0, p50 = 0, p80 = 0, p90 = 0;
  // Their 95% intervals.
  double p10_low = 0, p10_high = 0, p50_low = 0, p50_high = 0;
  double p80_low = 0, p80_high = 0, p90_low = 0, p90_high = 0;
  friend bool operator==(const DayStatistics&, const DayStatistics&) = default;
};

/// Its percentiles with their intervals, in order.
std::array<Percentile<double>, 4> PercentilesOf(const DayStatistics& statistics);

/// Statistics of lengths of time in minutes, in any order; the same for any order.
DayStatistics SummarizeMinutes(std::span<const std::int64_t> minutes);

}  // namespace nimbrel::engine
