// Percentiles, moments and the interval of a quantile.

#include "engine/results/statistics.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

namespace nimbrel::engine {
namespace {

constexpr std::int32_t kDay = 46388;  // some day of 2027

Instant Noon(std::int32_t day) {
  return {kDay + day, 720};
}

std::vector<Instant> Noons(const std::vector<std::int32_t>& days) {
  std::vector<Instant> samples;
  for (const std::int32_t day : days) {
    samples.push_back(Noon(day));
  }
  return samples;
}

/// The rule itself: the smallest sample that at least `percent` percent do not exceed.
Instant PercentileByCounting(std::vector<Instant> samples, int percent) {
  std::sort(samples.begin(), samples.end());
  for (const Instant candidate : samples) {
    const auto within = std::count_if(samples.begin(), samples.end(),
                                      [&](Instant sample) { return sample <= candidate; });
    if (within * 100 >= static_cast<std::int64_t>(samples.size()) * percent) {
      return candidate;
    }
  }
  return {};
}

TEST(Percentile, OfOneSampleIsThatSample) {
  DateSummarizer summarizer;
  const auto samples = Noons({5});
  for (const int percent : {1, 10, 50, 80, 90, 99, 100}) {
    EXPECT_EQ(summarizer.PercentileOf(samples, percent).value, Noon(5)) << percent;
  }
}

TEST(Percentile, OfNoSampleIsAbsent) {
  EXPECT_TRUE(DateSummarizer().PercentileOf({}, 50).value.IsAbsent());
}

TEST(Percentile, IsTheSmallestSampleThatEnoughSamplesDoNotExceed) {
  // Of ten samples the 80th percentile is the eighth: 80% are enough, not more than 80%.
  const auto ten = Noons({10, 1, 9, 2, 8, 3, 7, 4, 6, 5});
  DateSummarizer summarizer;
  EXPECT_EQ(summarizer.PercentileOf(ten, 80).value, Noon(8));
  EXPECT_EQ(summarizer.PercentileOf(ten, 81).value, Noon(9));
  EXPECT_EQ(summarizer.PercentileOf(ten, 50).value, Noon(5));
  EXPECT_EQ(summarizer.PercentileOf(ten, 1).value, Noon(1));
  EXPECT_EQ(summarizer.PercentileOf(ten, 100).value, Noon(10));
}

TEST(Percentile, AgreesWithCountingForSamplesOfAllSizes) {
  std::mt19937_64 random(7);
  DateSummarizer summarizer;
  for (std::size_t size = 1; size < 140; ++size) {
    std::vector<Instant> samples;
    const std::uint64_t days = 1 + random() % 400;
    for (std::size_t i = 0; i < size; ++i) {
      samples.emplace_back(kDay + static_cast<std::int32_t>(random() % days),
                           static_cast<std::int32_t>(random() % 1441));
    }
    const DateStatistics statistics = summarizer.Summarize(samples, true);
    EXPECT_EQ(statistics.p10, PercentileByCounting(samples, 10)) << size;
    EXPECT_EQ(statistics.p50, PercentileByCounting(samples, 50)) << size;
    EXPECT_EQ(statistics.p80, PercentileByCounting(samples, 80)) << size;
    EXPECT_EQ(statistics.p90, PercentileByCounting(samples, 90)) << size;
    EXPECT_EQ(statistics.min, *std::min_element(samples.begin(), samples.end()));
    EXPECT_EQ(statistics.max, *std::max_element(samples.begin(), samples.end()));
    auto sorted = samples;
    std::sort(sorted.begin(), sorted.end());
    const RankInterval interval = QuantileInterval(static_cast<std::int64_t>(size), 80);
    EXPECT_EQ(statistics.p80_low, sorted[static_cast<std::size_t>(interval.low)]);
    EXPECT_EQ(statistics.p80_high, sorted[static_cast<std::size_t>(interval.high)]);
  }
}

TEST(DateStatistics, MeanAndDeviationAreInCalendarDays) {
  // Days 0, 2 and 7: mean 3, squares 9 + 1 + 16 = 26, divided by 2 gives 13.
  const DateStatistics statistics = DateSummarizer().Summarize(Noons({7, 0, 2}), true);
  EXPECT_EQ(statistics.mean, Noon(3));
  EXPECT_DOUBLE_EQ(statistics.sd_days, std::sqrt(13.0));
  EXPECT_EQ(statistics.count, 3);
}

TEST(DateStatistics, MeanIsRoundedToTheMinuteWithTheHalfGoingUp) {
  const std::vector<Instant> half = {{kDay, 10}, {kDay, 11}};
  EXPECT_EQ(DateSummarizer().Summarize(half, false).mean, Instant(kDay, 11));
  const std::vector<Instant> third = {{kDay, 10}, {kDay, 10}, {kDay, 11}};
  EXPECT_EQ(DateSummarizer().Summarize(third, false).mean, Instant(kDay, 10));
}

TEST(DateStatistics, AMeanAtMidnightIsAFinishOrAStart) {
  const std::vector<Instant> samples = {{kDay, 720}, {kDay + 1, 720}};
  EXPECT_EQ(DateSummarizer().Summarize(samples, true).mean, Instant(kDay, 1440));
  EXPECT_EQ(DateSummarizer().Summarize(samples, false).mean, Instant(kDay + 1, 0));
}

TEST(DateStatistics, OneSampleHasNoDeviationAndAllOfItsPercentiles) {
  const DateStatistics statistics = DateSummarizer().Summarize(Noons({4}), true);
  EXPECT_EQ(statistics.sd_days, 0.0);
  for (const Instant date :
       {statistics.mean, statistics.min, statistics.max, statistics.p10, statistics.p50,
        statistics.p80, statistics.p90, statistics.p80_low, statistics.p80_high}) {
    EXPECT_EQ(date, Noon(4));
  }
}

TEST(DateStatistics, OfNoSamplesHaveNoDates) {
  EXPECT_EQ(DateSummarizer().Summarize({}, true), DateStatistics{});
}

TEST(DateStatistics, AreTheSameBitsInAnyOrderOfTheSamples) {
  std::mt19937_64 random(11);
  std::vector<Instant> samples;
  for (int i = 0; i < 5000; ++i) {
    samples.emplace_back(kDay + static_cast<std::int32_t>(random() % 3000),
                         static_cast<std::int32_t>(random() % 1441));
  }
  DateSummarizer summarizer;
  const DateStatistics first = summarizer.Summarize(samples, true);
  std::shuffle(samples.begin(), samples.end(), random);
  EXPECT_EQ(summarizer.Summarize(samples, true), first);
}

TEST(DateStatistics, DeviationOfWideRangesDoesNotOverflow) {
  // Half of the samples 190 years later than the other half: with n samples the deviation is
  // 190 years / 2 * sqrt(n / (n - 1)).
  constexpr std::int32_t kYears = 190 * 365;
  constexpr int kHalf = 50'000;
  std::vector<Instant> samples(kHalf, Instant(20'000, 0));
  samples.resize(std::size_t{2} * kHalf, Instant(20'000 + kYears, 0));
  const DateStatistics statistics = DateSummarizer().Summarize(samples, false);
  const double expected = kYears / 2.0 * std::sqrt(2.0 * kHalf / (2.0 * kHalf - 1.0));
  EXPECT_NEAR(statistics.sd_days, expected, 1e-9 * expected);
}

TEST(DayStatistics, AreOfLengthsOfEitherSign) {
  // -1, 0, 0 and 5 days: mean 1, squares 4 + 1 + 1 + 16 = 22, divided by 3.
  const std::vector<std::int64_t> minutes = {0, 5 * 1440, -1440, 0};
  const DayStatistics statistics = SummarizeMinutes(minutes);
  EXPECT_DOUBLE_EQ(statistics.mean, 1.0);
  EXPECT_DOUBLE_EQ(statistics.sd, std::sqrt(22.0 / 3.0));
  EXPECT_EQ(statistics.min, -1.0);
  EXPECT_EQ(statistics.max, 5.0);
  EXPECT_EQ(statistics.p10, -1.0);
  EXPECT_EQ(statistics.p50, 0.0);
  EXPECT_EQ(statistics.p80, 5.0);
  EXPECT_EQ(statistics.p90, 5.0);
  EXPECT_EQ(statistics.count, 4);
}

TEST(DateStatistics, EveryPercentileHasTheIntervalOfItsQuantile) {
  std::vector<Instant> samples;
  for (int day = 1; day <= 137; ++day) {
    samples.push_back(Noon(day));
  }
  const DateStatistics dates = DateSummarizer().Summarize(samples, false);
  std::vector<std::int64_t> minutes;
  for (const Instant sample : samples) {
    minutes.push_back(sample.Minutes() - Noon(0).Minutes());
  }
  const DayStatistics days = SummarizeMinutes(minutes);
  for (std::size_t i = 0; i < 4; ++i) {
    const Percentile<Instant> date = PercentilesOf(dates)[i];
    const Percentile<double> length = PercentilesOf(days)[i];
    const RankInterval interval = QuantileInterval(137, date.percent);
    // The sample of rank r, from 0, is that of day r + 1.
    EXPECT_EQ(date.low, Noon(static_cast<int>(interval.low) + 1)) << date.percent;
    EXPECT_EQ(date.high, Noon(static_cast<int>(interval.high) + 1)) << date.percent;
    EXPECT_EQ(length.percent, date.percent);
    EXPECT_EQ(length.low, static_cast<double>(interval.low) + 1) << date.percent;
    EXPECT_EQ(length.high, static_cast<double>(interval.high) + 1) << date.percent;
    EXPECT_EQ(length.value, static_cast<double>(PercentileRank(137, date.percent)) + 1);
  }
}

TEST(DayStatistics, OfNoLengthsAreZero) {
  EXPECT_EQ(SummarizeMinutes({}), DayStatistics{});
}

__extension__ using Uint128 = unsigned __int128;

/// P(B = k) times 5^n for B ~ Bin(n, 4/5), exactly.
Uint128 ScaledChance(int n, int k) {
  Uint128 chance = 1;
  for (int i = 1; i <= k; ++i) {
    chance = chance * static_cast<Uint128>(n - k + i) / static_cast<Uint128>(i);
  }
  for (int i = 0; i < k; ++i) {
    chance *= 4;
  }
  return chance;
}

TEST(QuantileInterval, IsTheNarrowestWithinExactBinomialTails) {
  // Whole-number sums reach to n = 50: 40 times 5^50 is below 2^128.
  for (int n = 1; n <= 50; ++n) {
    Uint128 total = 1;
    for (int i = 0; i < n; ++i) {
      total *= 5;
    }
    const auto below = [n](int k) {  // P(B < k)
      Uint128 sum = 0;
      for (int i = 0; i < k; ++i) {
        sum += ScaledChance(n, i);
      }
      return sum;
    };
    const auto is_small = [total](Uint128 chance) { return chance * 40 <= total; };
    int low = 0;
    while (low < n && is_small(below(low + 1))) {
      ++low;
    }
    int high = n + 1;
    while (high > 1 && is_small(total - below(high - 1))) {
      --high;
    }
    const RankInterval expected = {std::max(low, 1) - 1, std::min(high, n) - 1};
    EXPECT_EQ(QuantileInterval(n, 80), expected) << n;
  }
}

TEST(QuantileInterval, CoversTheQuantileOfLargeSamplesByTheBinomialDistribution) {
  // The second method takes its chances from the gamma function.
  for (const std::int64_t n : {1000, 10'000, 1'000'000}) {
    const auto chance = [n](std::int64_t k) {
      const auto total = static_cast<double>(n);
      const auto part = static_cast<double>(k);
      return std::exp(std::lgamma(total + 1) - std::lgamma(part + 1) -
                      std::lgamma(total - part + 1) + part * std::log(0.8) +
                      (total - part) * std::log(0.2));
    };
    const auto sum = [&chance](std::int64_t first, std::int64_t last) {
      double total = 0;
      for (std::int64_t k = first; k <= last; ++k) {
        total += chance(k);
      }
      return total;
    };
    const RankInterval interval = QuantileInterval(n, 80);
    const std::int64_t low = interval.low + 1;  // order statistics count from 1
    const std::int64_t high = interval.high + 1;
    EXPECT_LE(sum(0, low - 1), 0.025) << n;
    EXPECT_GT(sum(0, low), 0.025) << n;
    EXPECT_LE(sum(high, n), 0.025) << n;
    EXPECT_GT(sum(high - 1, n), 0.025) << n;
  }
}

TEST(QuantileInterval, OfFewSamplesReachesToTheFirstAndTheLast) {
  EXPECT_EQ(QuantileInterval(1, 80), (RankInterval{0, 0}));
  EXPECT_EQ(QuantileInterval(2, 80), (RankInterval{0, 1}));
  // All of ten samples lie below the quantile with a chance of 0.8^10 = 11%.
  EXPECT_EQ(QuantileInterval(10, 80).high, 9);
}

}  // namespace
}  // namespace nimbrel::engine
