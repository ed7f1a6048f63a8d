// Samples by their place in sorted order, against sorting.

#include "engine/results/rank_selector.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "engine/results/statistics.h"

namespace nimbrel::engine {
namespace {

using Samples = std::vector<Instant>;

constexpr std::int32_t kDay = 46388;  // some day of 2027

/// Samples of `kinds` moments within `days` days.
Samples RandomSamples(std::mt19937& random, std::size_t count, int days, int kinds) {
  Samples moments;
  for (int i = 0; i < kinds; ++i) {
    moments.emplace_back(kDay + static_cast<std::int32_t>(random() % static_cast<unsigned>(days)),
                         static_cast<std::int32_t>(random() % 1441));
  }
  Samples samples;
  for (std::size_t i = 0; i < count; ++i) {
    samples.push_back(moments[random() % moments.size()]);
  }
  return samples;
}

void ExpectSameAsSorting(RankSelector& selector, std::mt19937& random, const Samples& samples) {
  Samples sorted = samples;
  std::sort(sorted.begin(), sorted.end(),
            [](Instant a, Instant b) { return a.packed() < b.packed(); });
  std::vector<std::int64_t> ranks;
  for (int i = 0; i < 14; ++i) {
    ranks.push_back(static_cast<std::int64_t>(random() % samples.size()));
  }
  ranks.push_back(0);
  ranks.push_back(static_cast<std::int64_t>(samples.size()) - 1);
  std::sort(ranks.begin(), ranks.end());
  Samples values(ranks.size());
  selector.Select(samples, ranks, values);
  for (std::size_t i = 0; i < ranks.size(); ++i) {
    ASSERT_EQ(values[i], sorted[static_cast<std::size_t>(ranks[i])])
        << samples.size() << " samples, place " << ranks[i];
  }
}

TEST(RankSelector, GivesWhatSortingGivesForAnyNumberAndSpreadOfSamples) {
  std::mt19937 random(7);
  RankSelector selector;  // one for all: what an earlier call left behind must not matter
  for (const std::size_t count : {1U, 2U, 3U, 15U, 64U, 137U, 1000U, 5001U, 20000U}) {
    for (const int days : {1, 3, 200, 50000}) {
      for (const int kinds : {1, 2, 30, 10000}) {
        ExpectSameAsSorting(selector, random, RandomSamples(random, count, days, kinds));
      }
    }
  }
}

TEST(ElapsedDeviation, IsThatOfTheTimesBetweenAlsoWhereAFinishIsBeforeItsStart) {
  std::mt19937 random(11);
  const Samples starts = RandomSamples(random, 3000, 400, 3000);
  const Samples finishes = RandomSamples(random, 3000, 900, 3000);
  double mean = 0;
  for (std::size_t i = 0; i < starts.size(); ++i) {
    mean += static_cast<double>(finishes[i].Minutes() - starts[i].Minutes()) / 1440 / 3000;
  }
  double squares = 0;
  for (std::size_t i = 0; i < starts.size(); ++i) {
    const double days = static_cast<double>(finishes[i].Minutes() - starts[i].Minutes()) / 1440;
    squares += (days - mean) * (days - mean);
  }
  EXPECT_NEAR(ElapsedDeviation(starts, finishes), std::sqrt(squares / 2999), 1e-9);
}

TEST(ElapsedDeviation, OfOneSampleIsZero) {
  EXPECT_EQ(ElapsedDeviation(Samples{{kDay, 480}}, Samples{{kDay, 960}}), 0.0);
}

}  // namespace
}  // namespace nimbrel::engine
