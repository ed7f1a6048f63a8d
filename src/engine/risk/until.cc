#include "engine/risk/until.h"

#include <algorithm>

#include "engine/results/statistics.h"

namespace nimbrel::engine {

std::int32_t NextCheck(std::int32_t tiles, std::int32_t all) {
  return std::min(tiles + std::max(tiles / 8, 1), all);
}

double WidthOfP80(std::span<const Instant> finishes) {
  const Percentile<Instant> p80 = DateSummarizer().PercentileOf(finishes, 80);
  return finishes.empty()
             ? 0.0
             : static_cast<double>(p80.high.Minutes() - p80.low.Minutes()) / kMinutesPerDay;
}

}  // namespace nimbrel::engine
