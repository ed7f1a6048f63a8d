#include "engine/risk/permutation.h"

#include <algorithm>
#include <bit>

#include "platform/vector_clones.h"

namespace nimbrel::engine {
namespace {

/// The two halves of a number that a network works on.
struct Halves {
  int shift;           // of the upper half
  std::uint32_t low;   // masks
  std::uint32_t high;  // as a small number
};

Halves HalvesFor(std::uint32_t count) {
  const int bits = std::max(2, static_cast<int>(std::bit_width(count - 1)));
  const int shift = bits / 2;
  return {shift, (std::uint32_t{1} << shift) - 1, (std::uint32_t{1} << (bits - shift)) - 1};
}

/// A number that depends on all bits of a half, the key and the round, the upper bits best.
inline std::uint32_t Stir(std::uint32_t half, std::uint32_t low, std::uint32_t high,
                          std::uint32_t round) {
  std::uint32_t bits = (half + low + round * 0x9E3779B9U) * 0xB5297A4DU;
  bits ^= bits >> 15;
  bits = (bits + (high ^ round * 0x68E31DA5U)) * 0x1B56C4E9U;
  return bits ^ bits >> 14;
}

/// One walk through the network: a permutation of all numbers of so many bits.
inline std::uint32_t Walk(std::uint32_t number, std::uint32_t low, std::uint32_t high,
                          Halves halves) {
  constexpr std::uint32_t kRounds = 10;
  std::uint32_t left = number >> halves.shift;
  std::uint32_t right = number & halves.low;
  for (std::uint32_t round = 0; round < kRounds; round += 2) {
    left ^= Stir(right, low, high, round) >> 7 & halves.high;
    right ^= Stir(left, low, high, round + 1) >> 7 & halves.low;
  }
  return left << halves.shift | right;
}

}  // namespace

std::uint32_t Permuted(PermutationKey key, std::uint32_t count, std::uint32_t index) {
  const Halves halves = HalvesFor(count);
  std::uint32_t place = index;
  do {
    place = Walk(place, key.low, key.high, halves);
  } while (place >= count);
  return place;
}

NIMBREL_VECTOR_CLONES
void PermutedAll(const std::uint32_t* low, const std::uint32_t* high, std::uint32_t count,
                 std::uint32_t index, std::uint32_t* places) {
  const Halves halves = HalvesFor(count);
  std::uint32_t current[kStreamsAtATime];
  for (std::size_t i = 0; i < kStreamsAtATime; ++i) {
    current[i] = Walk(index, low[i], high[i], halves);
  }
  std::uint32_t beyond = 1;
  while (beyond != 0) {
    beyond = 0;
    for (std::size_t i = 0; i < kStreamsAtATime; ++i) {
      const std::uint32_t next = Walk(current[i], low[i], high[i], halves);
      const std::uint32_t is_beyond = current[i] >= count ? 1 : 0;
      current[i] = is_beyond != 0 ? next : current[i];
      beyond |= is_beyond;
    }
  }
  std::copy_n(current, kStreamsAtATime, places);
}

PermutationKey StratumKey(std::uint64_t seed, std::uint64_t stream, Purpose purpose) {
  // Iterations count from 1, so that nothing else is drawn in iteration 0 under these purposes.
  const double first = UniformAt(seed, 0, stream, purpose, 0);
  const double second = UniformAt(seed, 0, stream, purpose, 1);
  return {static_cast<std::uint32_t>(first * 0x1p32), static_cast<std::uint32_t>(second * 0x1p32)};
}

}  // namespace nimbrel::engine
