#include "engine/risk/random.h"

#include <Random123/philox.h>

#include "platform/vector_clones.h"

namespace nimbrel::engine {
namespace {

/// 53 bits of two 32-bit words as a multiple of 2^-53.
double ToUniform(std::uint32_t low, std::uint32_t high) {
  const std::uint64_t bits = (std::uint64_t{high} << 32) | low;
  return static_cast<double>(static_cast<std::int64_t>(bits >> 11)) * 0x1.0p-53;
}

/// Block `number` of a stream: the counter is made of all that the block belongs to.
r123::Philox4x32::ctr_type Block(std::uint64_t seed, std::int32_t iteration, std::uint64_t stream,
                                 Purpose purpose, std::uint32_t number) {
  const r123::Philox4x32::ctr_type counter = {
      {static_cast<std::uint32_t>(stream), static_cast<std::uint32_t>(stream >> 32),
       static_cast<std::uint32_t>(iteration),
       (static_cast<std::uint32_t>(purpose) << 24) | number}};
  const r123::Philox4x32::key_type key = {
      {static_cast<std::uint32_t>(seed), static_cast<std::uint32_t>(seed >> 32)}};
  return r123::Philox4x32()(counter, key);
}

}  // namespace

double UniformAt(std::uint64_t seed, std::int32_t iteration, std::uint64_t stream, Purpose purpose,
                 std::uint32_t index) {
  const auto block = Block(seed, iteration, stream, purpose, index / 2);
  return index % 2 == 0 ? ToUniform(block[0], block[1]) : ToUniform(block[2], block[3]);
}

// The rounds of Philox4x32-10, each over all streams, which compilers turn into vector code.
NIMBREL_VECTOR_CLONES
void UniformsAt(std::uint64_t seed, std::int32_t iteration, Purpose purpose,
                const std::uint32_t* lower, const std::uint32_t* upper, double* numbers) {
  std::uint32_t word0[kStreamsAtATime];
  std::uint32_t word1[kStreamsAtATime];
  std::uint32_t word2[kStreamsAtATime];
  std::uint32_t word3[kStreamsAtATime];
  for (std::size_t i = 0; i < kStreamsAtATime; ++i) {
    word0[i] = lower[i];
    word1[i] = upper[i];
    word2[i] = static_cast<std::uint32_t>(iteration);
    word3[i] = static_cast<std::uint32_t>(purpose) << 24;
  }
  auto key0 = static_cast<std::uint32_t>(seed);
  auto key1 = static_cast<std::uint32_t>(seed >> 32);
  for (int round = 0; round < 10; ++round) {
    for (std::size_t i = 0; i < kStreamsAtATime; ++i) {
      const std::uint64_t product0 = std::uint64_t{PHILOX_M4x32_0} * word0[i];
      const std::uint64_t product1 = std::uint64_t{PHILOX_M4x32_1} * word2[i];
      word0[i] = static_cast<std::uint32_t>(product1 >> 32) ^ word1[i] ^ key0;
      word1[i] = static_cast<std::uint32_t>(product1);
      word2[i] = static_cast<std::uint32_t>(product0 >> 32) ^ word3[i] ^ key1;
      word3[i] = static_cast<std::uint32_t>(product0);
    }
    key0 += PHILOX_W32_0;
    key1 += PHILOX_W32_1;
  }
  for (std::size_t i = 0; i < kStreamsAtATime; ++i) {
    // The 53 bits in two parts that 32-bit conversions take; both steps are exact.
    const auto high = static_cast<std::int32_t>(word1[i] >> 5);
    const auto low = static_cast<std::int32_t>((word1[i] & 31) << 21 | word0[i] >> 11);
    numbers[i] = (static_cast<double>(high) * 0x1p26 + static_cast<double>(low)) * 0x1p-53;
  }
}

void RunStream::Begin(std::int32_t iteration) {
  iteration_ = iteration;
  blocks_ = 0;
  position_ = kBuffered;
}

void RunStream::Fill() {
  for (std::size_t i = 0; i < kBuffered; i += 2) {
    // No task is behind these numbers, so the words of the task count the blocks.
    const auto block = Block(seed_, iteration_, blocks_++, Purpose::kHostStream, 0);
    buffer_[i] = ToUniform(block[0], block[1]);
    buffer_[i + 1] = ToUniform(block[2], block[3]);
  }
  position_ = 0;
}

}  // namespace nimbrel::engine
