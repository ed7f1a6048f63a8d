#include "engine/risk/paired.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "engine/risk/normal.h"

namespace nimbrel::engine {
namespace {

/// The correlation of being at most the percentile here and there; 0 where one of them is certain.
double CorrelationOfErrors(const PairedPercentiles& a, const PairedPercentiles& b) {
  double in_a = 0;
  double in_b = 0;
  double in_both = 0;
  for (std::size_t i = 0; i < a.samples.size(); ++i) {
    const bool is_in_a = a.samples[i].Minutes() <= a.percentile.value.Minutes();
    const bool is_in_b = b.samples[i].Minutes() <= b.percentile.value.Minutes();
    in_a += is_in_a ? 1 : 0;
    in_b += is_in_b ? 1 : 0;
    in_both += is_in_a && is_in_b ? 1 : 0;
  }
  const auto count = static_cast<double>(a.samples.size());
  const double spread = in_a * (count - in_a) * in_b * (count - in_b);
  return spread > 0 ? std::clamp((count * in_both - in_a * in_b) / std::sqrt(spread), -1.0, 1.0)
                    : 0.0;
}

/// The samples around a percentile, by how far away they are in standard deviations of its place.
class Neighbourhood {
 public:
  explicit Neighbourhood(const PairedPercentiles& of) {
    minutes_.reserve(of.samples.size());
    for (const Instant sample : of.samples) {
      minutes_.push_back(sample.Minutes());
    }
    const auto count = static_cast<std::int64_t>(minutes_.size());
    const double p = of.percentile.percent / 100.0;
    rank_ = PercentileRank(count, of.percentile.percent);
    deviation_ = std::sqrt(static_cast<double>(count) * p * (1.0 - p));
    // Of many samples only those that are asked for are put in order.
    const auto first = minutes_.begin() + PlaceOf(-kFarthest);
    const auto last = minutes_.begin() + PlaceOf(kFarthest);
    std::nth_element(minutes_.begin(), first, minutes_.end());
    std::nth_element(first, last, minutes_.end());
    std::sort(first, last);
  }

  /// `z` is at most kFarthest, either way.
  std::int64_t At(double z) const { return minutes_[static_cast<std::size_t>(PlaceOf(z))]; }

 private:
  /// More than two numbers at the ends of the steps below, put together, can make.
  static constexpr double kFarthest = 4.0;

  std::ptrdiff_t PlaceOf(double z) const {
    const std::int64_t rank = rank_ + std::llround(z * deviation_);
    return static_cast<std::ptrdiff_t>(
        std::clamp<std::int64_t>(rank, 0, static_cast<std::int64_t>(minutes_.size()) - 1));
  }

  std::vector<std::int64_t> minutes_;  // in order around the percentile
  std::int64_t rank_ = 0;
  double deviation_ = 0;
};

}  // namespace

DayInterval IntervalOfDifference(const PairedPercentiles& of, const PairedPercentiles& less) {
  const double r = CorrelationOfErrors(of, less);
  const double rest = std::sqrt(1.0 - r * r);
  const Neighbourhood ours(of);
  const Neighbourhood theirs(less);
  // All pairs of numbers that divide the normal distribution evenly.
  constexpr int kSteps = 80;
  constexpr std::size_t kTail = kSteps * kSteps / 40;  // 2.5% of them
  std::vector<double> normal;
  normal.reserve(kSteps);
  for (int i = 0; i < kSteps; ++i) {
    normal.push_back(Normal().Quantile((i + 0.5) / kSteps));
  }
  std::vector<std::int64_t> differences;
  differences.reserve(normal.size() * normal.size());
  for (const double a : normal) {
    const std::int64_t minutes = ours.At(a);
    for (const double b : normal) {
      differences.push_back(minutes - theirs.At(r * a + rest * b));
    }
  }
  const auto days_at = [&differences](std::size_t rank) {
    const auto place = differences.begin() + static_cast<std::ptrdiff_t>(rank);
    std::nth_element(differences.begin(), place, differences.end());
    return static_cast<double>(*place) / kMinutesPerDay;
  };
  return {days_at(kTail - 1), days_at(differences.size() - kTail)};
}

}  // namespace nimbrel::engine
