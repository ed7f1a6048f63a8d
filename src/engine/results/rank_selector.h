#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "engine/calendar/instant.h"

namespace nimbrel::engine {

/// Finds single samples by their place in sorted order without sorting the others. Its buffers are
/// kept from one call to the next.
class RankSelector {
 public:
  /// Puts the samples with these places in sorted order, which ascend (equal ones are allowed) and
  /// lie between 0 and the number of samples less 1, into `values`. There is at least one sample.
  void Select(std::span<const Instant> samples, std::span<const std::int64_t> ranks,
              std::span<Instant> values);

 private:
  // A bucket is samples of about the same value; one in which a wanted rank falls is kept.
  void CountBuckets();
  void KeepBuckets(std::span<const std::int64_t> ranks);

  std::vector<std::uint16_t> bucket_of_;   // of each sample
  std::vector<std::int32_t> counts_;       // samples by bucket
  std::vector<std::int32_t> more_counts_;  // those of every second sample, until they are added
  std::vector<std::uint8_t> is_kept_;      // 1 or 0 by bucket
  std::vector<std::int32_t> kept_;         // packed samples of the buckets that are kept
  std::vector<std::int64_t> places_;       // of the ranks among the samples that are kept
};

}  // namespace nimbrel::engine
