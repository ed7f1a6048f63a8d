#include "engine/results/paired.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace nimbrel::engine {
namespace {

double HalfWidth(const Percentile<Instant>& percentile) {
  return static_cast<double>(percentile.high.Minutes() - percentile.low.Minutes()) /
         (2.0 * kMinutesPerDay);
}

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
  return spread > 0 ? (count * in_both - in_a * in_b) / std::sqrt(spread) : 0;
}

}  // namespace

double HalfWidthOfDifference(const PairedPercentiles& of, const PairedPercentiles& less) {
  const double a = HalfWidth(of.percentile);
  const double b = HalfWidth(less.percentile);
  const double r = std::clamp(CorrelationOfErrors(of, less), -1.0, 1.0);
  return std::sqrt(std::max(a * a + b * b - 2 * r * a * b, 0.0));
}

}  // namespace nimbrel::engine
