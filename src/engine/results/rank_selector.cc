#include "engine/results/rank_selector.h"

#include <algorithm>
#include <cstddef>

#include "platform/vector_clones.h"

namespace nimbrel::engine {
namespace {

struct Bounds {
  std::int32_t least;
  std::int32_t greatest;
};

/// The least and the greatest of the packed samples.
NIMBREL_VECTOR_CLONES
Bounds BoundsOf(const Instant* samples, std::size_t count) {
  std::int32_t least = samples[0].packed();
  std::int32_t greatest = least;
  for (std::size_t i = 0; i < count; ++i) {
    const std::int32_t packed = samples[i].packed();
    least = packed < least ? packed : least;
    greatest = packed > greatest ? packed : greatest;
  }
  return {least, greatest};
}

/// Each sample's bucket: its distance from the least one, without the lowest bits.
NIMBREL_VECTOR_CLONES
void FindBuckets(const Instant* samples, std::size_t count, std::int32_t least, int shift,
                 std::uint16_t* buckets) {
  for (std::size_t i = 0; i < count; ++i) {
    buckets[i] = static_cast<std::uint16_t>(
        static_cast<std::uint32_t>(samples[i].packed() - least) >> shift);
  }
}

/// As many buckets as make them hold four samples on average, within bounds, as a power of two.
int BucketBits(std::size_t samples) {
  int bits = 4;
  while (bits < 12 && (samples >> (bits + 2)) != 0) {
    ++bits;
  }
  return bits;
}

}  // namespace

void RankSelector::Select(std::span<const Instant> samples, std::span<const std::int64_t> ranks,
                          std::span<Instant> values) {
  const auto [least, greatest] = BoundsOf(samples.data(), samples.size());
  if (least == greatest) {
    std::fill_n(values.begin(), ranks.size(), samples.front());
    return;
  }
  const int bits = BucketBits(samples.size());
  int shift = 0;
  while (static_cast<std::uint32_t>(greatest - least) >> shift >> bits != 0) {
    ++shift;
  }
  bucket_of_.resize(samples.size());
  FindBuckets(samples.data(), samples.size(), least, shift, bucket_of_.data());
  counts_.assign(std::size_t{1} << bits, 0);
  CountBuckets();
  KeepBuckets(ranks);

  // Each sample is written, and the place moves on behind those that are kept: no branch to guess.
  kept_.resize(samples.size() + 1);
  std::size_t kept = 0;
  for (std::size_t i = 0; i < samples.size(); ++i) {
    kept_[kept] = samples[i].packed();
    kept += is_kept_[bucket_of_[i]];
  }
  std::sort(kept_.begin(), kept_.begin() + static_cast<std::ptrdiff_t>(kept));
  for (std::size_t i = 0; i < ranks.size(); ++i) {
    values[i] = Instant::FromPacked(kept_[static_cast<std::size_t>(places_[i])]);
  }
}

/// Counts the samples by bucket: in two tables in turn, since equal samples often follow each
/// other, and a count would have to wait for the one before.
void RankSelector::CountBuckets() {
  more_counts_.assign(counts_.size(), 0);
  const std::size_t pairs = bucket_of_.size() / 2;
  for (std::size_t i = 0; i < pairs; ++i) {
    ++counts_[bucket_of_[2 * i]];
    ++more_counts_[bucket_of_[2 * i + 1]];
  }
  if (bucket_of_.size() % 2 != 0) {
    ++counts_[bucket_of_.back()];
  }
  for (std::size_t bucket = 0; bucket < counts_.size(); ++bucket) {
    counts_[bucket] += more_counts_[bucket];
  }
}

/// Marks the buckets in which the ranks fall, and finds the ranks' places among what they hold.
void RankSelector::KeepBuckets(std::span<const std::int64_t> ranks) {
  is_kept_.assign(counts_.size(), 0);
  places_.resize(ranks.size());
  std::int64_t before = 0;   // samples in the buckets in front
  std::int64_t skipped = 0;  // of these, in buckets that are not kept
  std::size_t next = 0;
  for (std::size_t bucket = 0; next < ranks.size(); ++bucket) {
    const std::int64_t end = before + counts_[bucket];
    is_kept_[bucket] = ranks[next] < end ? 1 : 0;
    for (; next < ranks.size() && ranks[next] < end; ++next) {
      places_[next] = ranks[next] - skipped;
    }
    skipped += is_kept_[bucket] != 0 ? 0 : counts_[bucket];
    before = end;
  }
}

}  // namespace nimbrel::engine
