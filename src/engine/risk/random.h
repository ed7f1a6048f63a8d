#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "engine/objects/random_source.h"

namespace nimbrel::engine {

/// What a random number is for. Numbers of different purposes are independent.
enum class Purpose : std::uint32_t {
  kDuration = 0,
  kOccurrence = 1,
  kHostStream = 2,  // RiskAnalysis.Rnd
};

/// The number from 0 up to but not including 1, a multiple of 2^-53, that belongs to these five
/// and to nothing else: block (stream, iteration, purpose, index / 2) of Philox4x32-10 under the
/// key `seed`, its first or second half. `index` is below 2^25.
double UniformAt(std::uint64_t seed, std::int32_t iteration, std::uint64_t stream, Purpose purpose,
                 std::uint32_t index = 0);

/// Streams whose numbers are made together by UniformsAt.
inline constexpr std::size_t kStreamsAtATime = 32;

/// UniformAt with index 0 for kStreamsAtATime streams, given by their lower and upper words.
void UniformsAt(std::uint64_t seed, std::int32_t iteration, Purpose purpose,
                const std::uint32_t* lower, const std::uint32_t* upper, double* numbers);

/// The stream behind RiskAnalysis.Rnd: one for each iteration of a seed.
class RunStream final : public RandomStream {
 public:
  explicit RunStream(std::uint64_t seed) : seed_(seed) {}

  /// Goes to the beginning of an iteration's stream.
  void Begin(std::int32_t iteration);

  double Next() override {
    if (position_ == kBuffered) {
      Fill();
    }
    return buffer_[position_++];
  }

 private:
  static constexpr std::size_t kBuffered = 64;

  void Fill();

  std::uint64_t seed_;
  std::int32_t iteration_ = 0;
  std::uint64_t blocks_ = 0;  // of two numbers each, taken so far
  std::size_t position_ = kBuffered;
  std::array<double, kBuffered> buffer_{};
};

}  // namespace nimbrel::engine
