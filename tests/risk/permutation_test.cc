// Permutations that are made from a key, and strata.

#include "engine/risk/permutation.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <set>
#include <vector>

namespace nimbrel::engine {
namespace {

std::vector<std::uint32_t> PermutationOf(PermutationKey key, std::uint32_t count) {
  std::vector<std::uint32_t> places;
  for (std::uint32_t index = 0; index < count; ++index) {
    places.push_back(Permuted(key, count, index));
  }
  return places;
}

TEST(Permutation, TakesEveryPlaceOnceForAnyCount) {
  for (std::uint32_t count = 1; count <= 300; ++count) {
    const PermutationKey key = StratumKey(count, 99, Purpose::kDuration);
    const std::vector<std::uint32_t> places = PermutationOf(key, count);
    const std::set<std::uint32_t> different(places.begin(), places.end());
    ASSERT_EQ(different.size(), count);
    EXPECT_EQ(*different.rbegin(), count - 1);
  }
}

TEST(Permutation, TakesEveryPlaceOnceForTheGreatestCount) {
  constexpr std::uint32_t kCount = 1'000'000;
  std::vector<bool> taken(kCount, false);
  for (std::uint32_t index = 0; index < kCount; ++index) {
    const std::uint32_t place = Permuted({17, 4}, kCount, index);
    ASSERT_LT(place, kCount);
    ASSERT_FALSE(taken[place]) << index;
    taken[place] = true;
  }
}

TEST(Permutation, OfManyKeysAtATimeIsThatOfEach) {
  std::array<std::uint32_t, kStreamsAtATime> low{};
  std::array<std::uint32_t, kStreamsAtATime> high{};
  std::array<std::uint32_t, kStreamsAtATime> places{};
  for (std::uint32_t i = 0; i < kStreamsAtATime; ++i) {
    const PermutationKey key = StratumKey(3, i, Purpose::kDuration);
    low[i] = key.low;
    high[i] = key.high;
  }
  for (const std::uint32_t count : {1U, 5U, 64U, 65U, 1000U}) {
    PermutedAll(low.data(), high.data(), count, count / 2, places.data());
    for (std::size_t i = 0; i < kStreamsAtATime; ++i) {
      EXPECT_EQ(places[i], Permuted({low[i], high[i]}, count, count / 2)) << count;
    }
  }
}

TEST(Permutation, TakesAnIndexToEachPlaceEquallyOftenOverTheKeys) {
  // Chi-squared over 10 x 10 cells of 4,000 keys: 81 degrees of freedom, since rows and columns
  // have fixed sums; above 81 + 4.5 sqrt(2 * 81) = 138 with a chance of some in a million.
  constexpr int kKeys = 4000;
  std::array<std::array<int, 10>, 10> counts{};
  for (std::uint64_t stream = 0; stream < kKeys; ++stream) {
    const auto places = PermutationOf(StratumKey(1, stream, Purpose::kOccurrence), 10);
    for (std::size_t index = 0; index < 10; ++index) {
      ++counts[index][places[index]];
    }
  }
  double chi_squared = 0;
  for (const auto& row : counts) {
    for (const int count : row) {
      chi_squared += (count - kKeys / 10.0) * (count - kKeys / 10.0) / (kKeys / 10.0);
    }
  }
  EXPECT_LT(chi_squared, 138);
}

TEST(Permutation, OfTwoKeysHaveNothingToDoWithEachOther) {
  // The correlation of the places of two permutations of n has the variance 1 / (n - 1).
  constexpr std::uint32_t kCount = 50;
  constexpr int kPairs = 1000;
  double squares = 0;
  double sum = 0;
  for (std::uint64_t pair = 0; pair < kPairs; ++pair) {
    const auto a = PermutationOf(StratumKey(5, 2 * pair, Purpose::kDuration), kCount);
    const auto b = PermutationOf(StratumKey(5, 2 * pair + 1, Purpose::kDuration), kCount);
    double product = 0;
    for (std::size_t i = 0; i < kCount; ++i) {
      product += (a[i] - (kCount - 1) / 2.0) * (b[i] - (kCount - 1) / 2.0);
    }
    const double correlation = product / (kCount * (kCount * kCount - 1.0) / 12.0);
    sum += correlation;
    squares += correlation * correlation;
  }
  EXPECT_NEAR(sum / kPairs, 0, 4.5 / std::sqrt((kCount - 1.0) * kPairs));
  // The squares' own relative deviation is about sqrt(2 / pairs).
  EXPECT_NEAR(squares / kPairs * (kCount - 1), 1.0, 4.5 * std::sqrt(2.0 / kPairs));
}

TEST(Stratum, HoldsEveryNumberThatIsPutIntoIt) {
  for (const double count : {1.0, 3.0, 49.0, 1000.0, 999'983.0, 1'000'000.0}) {
    for (const double place : {0.0, std::floor(count / 3), count - 1}) {
      for (const double uniform : {0.0, 0.5, 1.0 - 0x1p-53}) {
        const double number = InStratum(static_cast<std::uint32_t>(place), uniform, count);
        EXPECT_GT(number, place / count);
        EXPECT_LT(number, (place + 1) / count);
      }
    }
  }
}

}  // namespace
}  // namespace nimbrel::engine
