#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <vector>

namespace nimbrel::engine {

/// Greatest distance between the samples' distribution and the Cdf, times the square root of their
/// number. By Kolmogorov's limit it exceeds kKolmogorovLimit with a chance of one in a thousand if
/// the samples do have this distribution.
inline double KolmogorovDistance(std::vector<double> samples,
                                 const std::function<double(double)>& cdf) {
  std::sort(samples.begin(), samples.end());
  const auto count = static_cast<double>(samples.size());
  double distance = 0.0;
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const double expected = cdf(samples[i]);
    distance = std::max({distance, expected - static_cast<double>(i) / count,
                         static_cast<double>(i + 1) / count - expected});
  }
  return distance * std::sqrt(count);
}

inline constexpr double kKolmogorovLimit = 1.95;

}  // namespace nimbrel::engine
