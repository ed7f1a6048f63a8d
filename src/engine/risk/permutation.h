#pragma once

#include <cstdint>

#include "engine/risk/random.h"

namespace nimbrel::engine {

/// What names a permutation: 64 random bits.
struct PermutationKey {
  std::uint32_t low = 0;
  std::uint32_t high = 0;
};

/// The place from 0 to `count` - 1 to which the key's permutation of these numbers takes `index`.
/// Every place is taken once: a Feistel network over the next power of two, walked on while it
/// leads beyond `count`. `count` is 1 to 2^30, `index` below it.
std::uint32_t Permuted(PermutationKey key, std::uint32_t count, std::uint32_t index);

/// Permuted for kStreamsAtATime keys, given by their lower and upper words.
void PermutedAll(const std::uint32_t* low, const std::uint32_t* high, std::uint32_t count,
                 std::uint32_t index, std::uint32_t* places);

/// The key of the permutation that belongs to a stream and a purpose under a seed.
PermutationKey StratumKey(std::uint64_t seed, std::uint64_t stream, Purpose purpose);

/// The number in stratum `place` of `count` equal ones of [0, 1) that `uniform` from [0, 1) stands
/// for: strictly between the stratum's bounds, on every machine the same. `count` is below 2^20.
inline double InStratum(std::uint32_t place, double uniform, double count) {
  // Stratum and fraction together take 53 bits, so that the sum is exact.
  const auto fraction = static_cast<double>(static_cast<std::int64_t>(uniform * 0x1p32));
  return (static_cast<double>(place) + (fraction + 0.5) * 0x1p-32) / count;
}

}  // namespace nimbrel::engine
