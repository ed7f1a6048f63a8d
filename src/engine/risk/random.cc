#include "engine/risk/random.h"

#include <Random123/philox.h>

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
