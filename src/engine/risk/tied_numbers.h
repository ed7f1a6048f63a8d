#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <unordered_map>
#include <vector>

#include "engine/risk/correlation.h"
#include "engine/risk/random.h"

namespace nimbrel::engine {

enum class Sampling : std::int32_t { kMonteCarlo = 0, kLatinHypercube = 1 };

/// How the numbers of a run are drawn.
struct SamplingDesign {
  std::uint64_t seed = 1;
  Sampling sampling = Sampling::kMonteCarlo;
  /// Of the whole run. A Latin hypercube has as many strata: over all iterations each value takes
  /// a number from each stratum once, in an order that its own permutation makes.
  std::int32_t iterations = 1000;
};

/// Whether the task's duration, and whether its occurrence, is drawn at all.
bool DrawsDuration(const Task& task);
bool DrawsOccurrence(const Task& task);

/// A value's own uniform number in an iteration, tied to nothing.
double OwnUniform(const SamplingDesign& design, std::int32_t iteration, std::uint64_t stream,
                  Purpose purpose);

/// The uniform numbers of values that are drawn together, in the order of the correlation's sets.
class TiedNumbers {
 public:
  /// With a Latin hypercube this works out the whole run: the mixed numbers of each value are
  /// ranked over the iterations, and the ranks are its strata (after Iman and Conover), so that
  /// both the strata and the correlation hold. Raises SamplingError where that would be more than
  /// kMostRanks numbers. The correlation is not kept beyond this object's life.
  TiedNumbers(Correlation correlation, const SamplingDesign& design);

  static constexpr std::int64_t kMostRanks = 40'000'000;

  std::size_t size() const { return members_.size(); }
  /// Place of a task's value among the numbers, or -1 if it is not tied.
  std::int32_t PlaceOf(Purpose purpose, Uid task) const;
  /// Writes the numbers of an iteration, size() of them.
  void Draw(std::int32_t iteration, std::span<double> uniform) const;

 private:
  struct Member {
    std::uint64_t stream;
    Purpose purpose;
  };
  /// Correlated normal numbers of an iteration.
  void DrawNormal(std::int32_t iteration, std::span<double> normal) const;
  void RankAll();

  SamplingDesign design_;
  Correlation correlation_;
  std::vector<Member> members_;
  std::unordered_map<Uid, std::int32_t> durations_;
  std::unordered_map<Uid, std::int32_t> occurrences_;
  std::vector<std::uint32_t> ranks_;  // by iteration, member
};

}  // namespace nimbrel::engine
