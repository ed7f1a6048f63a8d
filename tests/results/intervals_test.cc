#include "engine/results/intervals.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

namespace nimbrel::engine {
namespace {

std::vector<Instant> Days(std::int32_t count) {
  std::vector<Instant> days;
  for (std::int32_t day = 0; day < count; ++day) {
    days.emplace_back(46000 + day, 1020);
  }
  return days;
}

// 0.8^16 = 2.8% and 0.8^17 = 2.3%; 0.5^5 = 3.1% and 0.5^6 = 1.6%; 0.9^35 = 2.50% (0.025032) and
// 0.9^36 = 2.3%.
TEST(Intervals, NeedSamplesOnBothSidesWithMoreThan95Percent) {
  EXPECT_FALSE(HasQuantileInterval(0, 80));
  EXPECT_FALSE(HasQuantileInterval(16, 80));
  EXPECT_TRUE(HasQuantileInterval(17, 80));
  EXPECT_FALSE(HasQuantileInterval(5, 50));
  EXPECT_TRUE(HasQuantileInterval(6, 50));
  for (const int percent : {10, 90}) {
    EXPECT_FALSE(HasQuantileInterval(35, percent));
    EXPECT_TRUE(HasQuantileInterval(36, percent));
  }
}

// By the sum of the binomial chances: order statistics 1 and N cover the p-quantile with
// 1 - p^N - (1 - p)^N.
TEST(Intervals, StandWhereTheFirstAndTheLastSampleHoldTheQuantileEnough) {
  for (std::int64_t count = 1; count < 60; ++count) {
    for (const int percent : {10, 50, 80, 90}) {
      const double p = percent / 100.0;
      const bool low = std::pow(1 - p, count) <= 0.025;
      const bool high = std::pow(p, count) <= 0.025;
      EXPECT_EQ(HasQuantileInterval(count, percent), low && high) << count << " " << percent;
    }
  }
}

TEST(Intervals, AreLeftOutOneByOne) {
  DateStatistics dates = DateSummarizer().Summarize(Days(20), true);
  LeaveOutIntervals(dates);
  EXPECT_TRUE(dates.p10_low.IsAbsent());
  EXPECT_FALSE(dates.p50_low.IsAbsent());
  EXPECT_FALSE(dates.p80_high.IsAbsent());
  EXPECT_TRUE(dates.p90_high.IsAbsent());
  EXPECT_FALSE(dates.p90.IsAbsent()) << "the percentile itself stays";

  const std::vector<std::int64_t> minutes(20, 1440);
  DayStatistics days = SummarizeMinutes(minutes);
  LeaveOutIntervals(days);
  EXPECT_TRUE(std::isnan(days.p10_low) && std::isnan(days.p90_high));
  EXPECT_EQ(days.p80_low, 1.0);

  Percentile<Instant> p50 = DateSummarizer().PercentileOf(Days(5), 50);
  LeaveOutInterval(5, p50);
  EXPECT_TRUE(p50.low.IsAbsent() && p50.high.IsAbsent());
}

}  // namespace
}  // namespace nimbrel::engine
