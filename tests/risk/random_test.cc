// Counter-based random numbers.

#include "engine/risk/random.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <set>
#include <vector>

#include "tests/risk/goodness_of_fit.h"

namespace nimbrel::engine {
namespace {

/// The upper 53 of 64 bits as a fraction.
double Fraction(std::uint64_t high, std::uint64_t low) {
  return static_cast<double>(((high << 32) | low) >> 11) / 9007199254740992.0;
}

// The generator's published test vectors (counter, key, result), laid over the words of a draw.

TEST(UniformAt, MeetsTheKnownAnswerForZeros) {
  // 6627e8d5 e169c58d bc57ac4c 9b00dbd8
  EXPECT_EQ(UniformAt(0, 0, 0, Purpose::kDuration, 0), Fraction(0xe169c58d, 0x6627e8d5));
  EXPECT_EQ(UniformAt(0, 0, 0, Purpose::kDuration, 1), Fraction(0x9b00dbd8, 0xbc57ac4c));
}

TEST(UniformAt, MeetsTheKnownAnswerForOnes) {
  // 408f276d 41c83b0e a20bc7c6 6d5451fd
  constexpr std::uint64_t kOnes = ~std::uint64_t{0};
  constexpr auto kPurpose = static_cast<Purpose>(0xff);
  EXPECT_EQ(UniformAt(kOnes, -1, kOnes, kPurpose, 2 * 0xffffff), Fraction(0x41c83b0e, 0x408f276d));
  EXPECT_EQ(UniformAt(kOnes, -1, kOnes, kPurpose, 2 * 0xffffff + 1),
            Fraction(0x6d5451fd, 0xa20bc7c6));
}

TEST(UniformAt, MeetsTheKnownAnswerForTheDigitsOfPi) {
  // 243f6a88 85a308d3 13198a2e 03707344 under a4093822 299f31d0 gives
  // d16cfe09 94fdcceb 5001e420 24126ea1
  constexpr auto kPurpose = static_cast<Purpose>(0x03);
  EXPECT_EQ(UniformAt(0x299f31d0a4093822, 0x13198a2e, 0x85a308d3243f6a88, kPurpose, 2 * 0x707344),
            Fraction(0x94fdcceb, 0xd16cfe09));
  EXPECT_EQ(
      UniformAt(0x299f31d0a4093822, 0x13198a2e, 0x85a308d3243f6a88, kPurpose, 2 * 0x707344 + 1),
      Fraction(0x24126ea1, 0x5001e420));
}

TEST(UniformAt, EachThingThatANumberBelongsToChangesIt) {
  std::set<double> numbers;
  for (const std::uint64_t seed : {1, 2}) {
    for (const std::int32_t iteration : {1, 2}) {
      for (const std::uint64_t stream : {std::uint64_t{1}, std::uint64_t{1} << 32}) {
        for (const Purpose purpose : {Purpose::kDuration, Purpose::kOccurrence}) {
          for (const std::uint32_t index : {0U, 1U, 2U}) {
            numbers.insert(UniformAt(seed, iteration, stream, purpose, index));
          }
        }
      }
    }
  }
  EXPECT_EQ(numbers.size(), 2U * 2 * 2 * 2 * 3);
}

TEST(UniformAt, IsUniformOverIterationsAndOverStreams) {
  std::vector<double> over_iterations;
  std::vector<double> over_streams;
  for (std::int32_t i = 1; i <= 20'000; ++i) {
    over_iterations.push_back(UniformAt(1, i, 99, Purpose::kDuration));
    over_streams.push_back(UniformAt(1, 99, static_cast<std::uint64_t>(i), Purpose::kDuration));
  }
  const auto identity = [](double x) { return x; };
  EXPECT_LT(KolmogorovDistance(over_iterations, identity), kKolmogorovLimit);
  EXPECT_LT(KolmogorovDistance(over_streams, identity), kKolmogorovLimit);
}

TEST(UniformsAt, GivesWhatUniformAtGives) {
  std::uint32_t lower[kStreamsAtATime];
  std::uint32_t upper[kStreamsAtATime];
  for (std::size_t i = 0; i < kStreamsAtATime; ++i) {
    lower[i] = static_cast<std::uint32_t>(i * 2654435761U);
    upper[i] = static_cast<std::uint32_t>(~i * 40503U);
  }
  for (const std::uint64_t seed : {std::uint64_t{0}, ~std::uint64_t{0}, std::uint64_t{12345}}) {
    for (const std::int32_t iteration : {1, 77, 1'000'000}) {
      for (const Purpose purpose : {Purpose::kDuration, Purpose::kOccurrence}) {
        double numbers[kStreamsAtATime];
        UniformsAt(seed, iteration, purpose, lower, upper, numbers);
        for (std::size_t i = 0; i < kStreamsAtATime; ++i) {
          const std::uint64_t stream = (std::uint64_t{upper[i]} << 32) | lower[i];
          EXPECT_EQ(numbers[i], UniformAt(seed, iteration, stream, purpose));
        }
      }
    }
  }
}

std::vector<double> Read(RunStream& stream, std::int32_t iteration, int count) {
  stream.Begin(iteration);
  std::vector<double> numbers;
  numbers.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    numbers.push_back(stream.Next());
  }
  return numbers;
}

TEST(RunStream, GivesEachIterationItsOwnNumbersWhateverWasReadBefore) {
  RunStream stream(5);
  const auto first = Read(stream, 1, 300);
  const auto second = Read(stream, 2, 7);
  EXPECT_EQ(Read(stream, 1, 300), first);
  RunStream another(5);
  EXPECT_EQ(Read(another, 2, 7), second);
  EXPECT_NE(Read(another, 1, 7), second);
}

TEST(RunStream, RepeatsNoNumberAndIsUniform) {
  RunStream stream(1);
  const auto numbers = Read(stream, 1, 20'000);
  EXPECT_EQ(std::set<double>(numbers.begin(), numbers.end()).size(), numbers.size());
  EXPECT_LT(KolmogorovDistance(numbers, [](double x) { return x; }), kKolmogorovLimit);
}

}  // namespace
}  // namespace nimbrel::engine
