#include "engine/risk/tied_numbers.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>
#include <utility>

#include "engine/risk/normal.h"
#include "engine/risk/permutation.h"

namespace nimbrel::engine {

bool DrawsDuration(const Task& task) {
  if (task.kind != TaskKind::kTask || task.IsFinished() || !task.range.has_value()) {
    return false;
  }
  return task.range->shape != Shape::kSingle && task.range->minimum != task.range->maximum;
}

bool DrawsOccurrence(const Task& task) {
  return task.kind == TaskKind::kTask && !task.IsStarted() && !task.IsFinished() &&
         task.risk.has_value() && task.risk->probability < 100.0;
}

double OwnUniform(const SamplingDesign& design, std::int32_t iteration, std::uint64_t stream,
                  Purpose purpose) {
  const double uniform = UniformAt(design.seed, iteration, stream, purpose);
  if (design.sampling == Sampling::kMonteCarlo) {
    return uniform;
  }
  const auto count = static_cast<std::uint32_t>(design.iterations);
  const auto index = static_cast<std::uint32_t>(iteration - 1);
  return InStratum(Permuted(StratumKey(design.seed, stream, purpose), count, index), uniform,
                   static_cast<double>(count));
}

TiedNumbers::TiedNumbers(Correlation correlation, const SamplingDesign& design)
    : design_(design), correlation_(std::move(correlation)) {
  for (const TiedSet& set : correlation_.sets) {
    auto& places = set.purpose == Purpose::kDuration ? durations_ : occurrences_;
    for (const TiedSet::Member& member : set.members) {
      places.emplace(member.task, static_cast<std::int32_t>(members_.size()));
      members_.push_back({member.stream, set.purpose});
    }
  }
  if (design.sampling == Sampling::kLatinHypercube && !members_.empty()) {
    RankAll();
  }
}

std::int32_t TiedNumbers::PlaceOf(Purpose purpose, Uid task) const {
  const auto& places = purpose == Purpose::kDuration ? durations_ : occurrences_;
  const auto found = places.find(task);
  return found == places.end() ? -1 : found->second;
}

void TiedNumbers::DrawNormal(std::int32_t iteration, std::span<double> normal) const {
  const NormalTable& table = Normal();
  for (std::size_t i = 0; i < members_.size(); ++i) {
    normal[i] =
        table.Quantile(OwnUniform(design_, iteration, members_[i].stream, members_[i].purpose));
  }
  std::size_t first = 0;
  for (const TiedSet& set : correlation_.sets) {
    set.mixing.Mix(normal.subspan(first, set.members.size()));
    first += set.members.size();
  }
}

void TiedNumbers::RankAll() {
  const std::size_t count = members_.size();
  const auto iterations = static_cast<std::size_t>(design_.iterations);
  if (static_cast<std::int64_t>(count * iterations) > kMostRanks) {
    throw SamplingError(
        fmt::format("a Latin hypercube of {} iterations with {} values that are correlated takes "
                    "more than {} numbers; use Monte Carlo sampling, or fewer iterations",
                    iterations, count, kMostRanks));
  }
  std::vector<double> mixed(count * iterations);  // by iteration, member
  for (std::size_t i = 0; i < iterations; ++i) {
    DrawNormal(static_cast<std::int32_t>(i) + 1, std::span(mixed).subspan(i * count, count));
  }
  ranks_.resize(count * iterations);
  std::vector<std::uint32_t> order(iterations);
  for (std::size_t member = 0; member < count; ++member) {
    std::iota(order.begin(), order.end(), 0U);
    const auto value = [&](std::uint32_t i) { return mixed[i * count + member]; };
    std::sort(order.begin(), order.end(), [&value](std::uint32_t a, std::uint32_t b) {
      return value(a) != value(b) ? value(a) < value(b) : a < b;
    });
    for (std::size_t rank = 0; rank < iterations; ++rank) {
      ranks_[order[rank] * count + member] = static_cast<std::uint32_t>(rank);
    }
  }
}

void TiedNumbers::Draw(std::int32_t iteration, std::span<double> uniform) const {
  if (ranks_.empty()) {
    DrawNormal(iteration, uniform);
    const NormalTable& table = Normal();
    for (double& number : uniform) {
      number = table.Cdf(number);
    }
    return;
  }
  const std::uint32_t* const ranks =
      ranks_.data() + static_cast<std::size_t>(iteration - 1) * members_.size();
  for (std::size_t i = 0; i < members_.size(); ++i) {
    uniform[i] = InStratum(
        ranks[i], UniformAt(design_.seed, iteration, members_[i].stream, members_[i].purpose),
        static_cast<double>(design_.iterations));
  }
}

}  // namespace nimbrel::engine
