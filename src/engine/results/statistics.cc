#include "engine/results/statistics.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <utility>

#include "platform/vector_clones.h"

namespace nimbrel::engine {
namespace {

__extension__ using Uint128 = unsigned __int128;

/// Sums of lengths of time that are counted from a base, so that none is negative.
struct Sums {
  std::int64_t sum = 0;
  Uint128 squares = 0;
};

/// Standard deviation with N - 1 as divisor, of the exact sums.
double Deviation(const Sums& sums, std::int64_t count) {
  if (count < 2) {
    return 0.0;
  }
  const auto n = static_cast<Uint128>(count);
  const auto sum = static_cast<Uint128>(sums.sum);
  const Uint128 spread = n * sums.squares - sum * sum;
  return std::sqrt(static_cast<double>(spread) /
                   (static_cast<double>(count) * static_cast<double>(count - 1)));
}

/// Sums that stay within 64 bits.
struct ShortSums {
  std::uint64_t sum = 0;
  std::uint64_t squares = 0;
};

// Distances below 2^27 minutes (255 years): the squares of so many of them stay within 64 bits.
constexpr std::size_t kShortCount = 1024;

/// Sums over the samples' distances in minutes from the least of them, of kShortCount at most.
NIMBREL_VECTOR_CLONES
ShortSums SumShort(Instant least, const Instant* samples, std::size_t count) {
  ShortSums sums;
  const std::int32_t base = least.day() * kMinutesPerDay + least.minute();
  for (std::size_t i = 0; i < count; ++i) {
    const auto length =
        static_cast<std::uint32_t>(samples[i].day() * kMinutesPerDay + samples[i].minute() - base);
    sums.sum += length;
    sums.squares += std::uint64_t{length} * length;
  }
  return sums;
}

Sums SumFrom(Instant least, std::span<const Instant> samples) {
  Sums sums;
  for (std::size_t begin = 0; begin < samples.size(); begin += kShortCount) {
    const ShortSums part =
        SumShort(least, samples.data() + begin, std::min(kShortCount, samples.size() - begin));
    sums.sum += static_cast<std::int64_t>(part.sum);
    sums.squares += part.squares;
  }
  return sums;
}

/// Sums over the differences of the times from start to finish to the first one.
NIMBREL_VECTOR_CLONES
ShortSums SumElapsed(const Instant* starts, const Instant* finishes, std::size_t count,
                     std::int32_t base) {
  ShortSums sums;
  for (std::size_t i = 0; i < count; ++i) {
    const std::int32_t above = (finishes[i].day() - starts[i].day()) * kMinutesPerDay +
                               finishes[i].minute() - starts[i].minute() - base;
    const auto wide = std::int64_t{above};
    sums.sum += static_cast<std::uint64_t>(wide);
    sums.squares += static_cast<std::uint64_t>(wide * wide);
  }
  return sums;
}

double ToDays(std::int64_t minutes) {
  return static_cast<double>(minutes) / kMinutesPerDay;
}

constexpr std::array<int, 4> kPercents = {10, 50, 80, 90};

/// Where a percentile stands among the statistics of its samples.
template <class Statistics, class Value>
struct PercentileMembers {
  Value Statistics::*value;
  Value Statistics::*low;
  Value Statistics::*high;
};
constexpr std::array<PercentileMembers<DateStatistics, Instant>, 4> kDateMembers = {
    {{&DateStatistics::p10, &DateStatistics::p10_low, &DateStatistics::p10_high},
     {&DateStatistics::p50, &DateStatistics::p50_low, &DateStatistics::p50_high},
     {&DateStatistics::p80, &DateStatistics::p80_low, &DateStatistics::p80_high},
     {&DateStatistics::p90, &DateStatistics::p90_low, &DateStatistics::p90_high}}};
constexpr std::array<PercentileMembers<DayStatistics, double>, 4> kDayMembers = {
    {{&DayStatistics::p10, &DayStatistics::p10_low, &DayStatistics::p10_high},
     {&DayStatistics::p50, &DayStatistics::p50_low, &DayStatistics::p50_high},
     {&DayStatistics::p80, &DayStatistics::p80_low, &DayStatistics::p80_high},
     {&DayStatistics::p90, &DayStatistics::p90_low, &DayStatistics::p90_high}}};

template <class Statistics, class Value>
std::array<Percentile<Value>, 4> ListPercentiles(
    const Statistics& statistics,
    const std::array<PercentileMembers<Statistics, Value>, 4>& members) {
  std::array<Percentile<Value>, 4> percentiles;
  for (std::size_t i = 0; i < members.size(); ++i) {
    percentiles[i] = {kPercents[i], statistics.*members[i].value, statistics.*members[i].low,
                      statistics.*members[i].high};
  }
  return percentiles;
}

}  // namespace

std::int64_t PercentileRank(std::int64_t count, int percent) {
  return (count * percent + 99) / 100 - 1;
}

RankInterval QuantileInterval(std::int64_t count, int percent) {
  // Chances of each number of samples below the quantile, relative to that of the likeliest
  // number; each follows from its neighbour by one multiplication.
  const double odds = percent / (100.0 - percent);
  const std::int64_t mode = count * percent / 100;
  std::vector<double> below;  // of mode - 1, mode - 2, ...
  std::vector<double> from;   // of mode, mode + 1, ...
  constexpr double kNegligible = 1e-25;
  double chance = 1.0;
  for (std::int64_t k = mode; k <= count && chance > kNegligible; ++k) {
    from.push_back(chance);
    chance *= odds * static_cast<double>(count - k) / static_cast<double>(k + 1);
  }
  chance = 1.0;
  for (std::int64_t k = mode; k > 0; --k) {
    chance *= static_cast<double>(k) / (odds * static_cast<double>(count - k + 1));
    if (chance <= kNegligible) {
      break;
    }
    below.push_back(chance);
  }
  double total = 0.0;
  for (const double part : below) {
    total += part;
  }
  for (const double part : from) {
    total += part;
  }
  const double tail = 0.025 * total;
  const auto lowest = mode - static_cast<std::int64_t>(below.size());
  const auto highest = mode + static_cast<std::int64_t>(from.size()) - 1;
  const auto at = [&](std::int64_t k) {
    return k < mode ? below[static_cast<std::size_t>(mode - 1 - k)]
                    : from[static_cast<std::size_t>(k - mode)];
  };

  // The sums begin at the far ends, where the parts are smallest.
  std::int64_t low = lowest;
  double sum = at(low);
  while (sum <= tail) {  // then P(B < low + 1) is within the tail
    sum += at(++low);
  }
  std::int64_t high = highest + 1;
  sum = at(high - 1);
  while (sum <= tail) {  // then P(B >= high - 1) is within the tail
    sum += at(--high - 1);
  }
  return {std::max<std::int64_t>(low, 1) - 1, std::min(high, count) - 1};
}

/// The interval of one of kPercents.
const RankInterval& DateSummarizer::IntervalOf(std::int64_t count, std::size_t which) {
  if (interval_count_ != count) {
    for (std::size_t i = 0; i < kPercents.size(); ++i) {
      intervals_[i] = QuantileInterval(count, kPercents[i]);
    }
    interval_count_ = count;
  }
  return intervals_[which];
}

DateStatistics DateSummarizer::Summarize(std::span<const Instant> samples, bool as_finish) {
  DateStatistics result;
  result.count = static_cast<std::int64_t>(samples.size());
  if (result.count == 0) {
    return result;
  }
  // Select wants its ranks in order, and the intervals' places among the others depend on N.
  struct Wanted {
    std::int64_t rank;
    Instant DateStatistics::*member;
  };
  std::array<Wanted, 2 + 3 * kPercents.size()> wanted = {
      {{0, &DateStatistics::min}, {result.count - 1, &DateStatistics::max}}};
  for (std::size_t i = 0; i < kPercents.size(); ++i) {
    const RankInterval& interval = IntervalOf(result.count, i);
    const PercentileMembers<DateStatistics, Instant>& members = kDateMembers[i];
    wanted[2 + 3 * i] = {PercentileRank(result.count, kPercents[i]), members.value};
    wanted[3 + 3 * i] = {interval.low, members.low};
    wanted[4 + 3 * i] = {interval.high, members.high};
  }
  std::sort(wanted.begin(), wanted.end(),
            [](const Wanted& a, const Wanted& b) { return a.rank < b.rank; });
  std::array<std::int64_t, wanted.size()> ranks{};
  std::array<Instant, wanted.size()> values;
  std::transform(wanted.begin(), wanted.end(), ranks.begin(),
                 [](const Wanted& each) { return each.rank; });
  selector_.Select(samples, ranks, values);
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    result.*wanted[i].member = values[i];
  }

  const std::int64_t base = result.min.Minutes();
  const Sums sums = SumFrom(result.min, samples);
  const Instant mean =
      Instant::FromMinutes(base + (2 * sums.sum + result.count) / (2 * result.count));
  result.mean = as_finish ? mean.AsFinish() : mean;
  result.sd_days = Deviation(sums, result.count) / kMinutesPerDay;
  return result;
}

Percentile<Instant> DateSummarizer::PercentileOf(std::span<const Instant> samples, int percent) {
  Percentile<Instant> result{percent, {}, {}, {}};
  if (samples.empty()) {
    return result;
  }
  const auto count = static_cast<std::int64_t>(samples.size());
  const auto known = std::find(kPercents.begin(), kPercents.end(), percent);
  RankInterval interval{count - 1, count - 1};  // of the greatest
  if (known != kPercents.end()) {
    interval = IntervalOf(count, static_cast<std::size_t>(known - kPercents.begin()));
  } else if (percent < 100) {
    interval = QuantileInterval(count, percent);
  }
  const std::array<std::int64_t, 3> ranks = {interval.low, PercentileRank(count, percent),
                                             interval.high};
  std::array<Instant, 3> values;
  selector_.Select(samples, ranks, values);
  result.low = values[0];
  result.value = values[1];
  result.high = values[2];
  return result;
}

double ElapsedDeviation(std::span<const Instant> starts, std::span<const Instant> finishes) {
  if (starts.size() < 2) {
    return 0.0;
  }
  const auto base =
      static_cast<std::int32_t>(finishes.front().Minutes() - starts.front().Minutes());
  std::int64_t sum = 0;
  Uint128 squares = 0;
  for (std::size_t begin = 0; begin < starts.size(); begin += kShortCount) {
    const ShortSums part = SumElapsed(starts.data() + begin, finishes.data() + begin,
                                      std::min(kShortCount, starts.size() - begin), base);
    sum += static_cast<std::int64_t>(part.sum);
    squares += part.squares;
  }
  // The deviation takes no notice of the sign of all distances.
  return Deviation({std::abs(sum), squares}, static_cast<std::int64_t>(starts.size())) /
         kMinutesPerDay;
}

std::array<Percentile<Instant>, 4> PercentilesOf(const DateStatistics& statistics) {
  return ListPercentiles(statistics, kDateMembers);
}

std::array<Percentile<double>, 4> PercentilesOf(const DayStatistics& statistics) {
  return ListPercentiles(statistics, kDayMembers);
}

DayStatistics SummarizeMinutes(std::span<const std::int64_t> minutes) {
  DayStatistics result;
  result.count = static_cast<std::int64_t>(minutes.size());
  if (result.count == 0) {
    return result;
  }
  std::vector<std::int64_t> sorted(minutes.begin(), minutes.end());
  std::sort(sorted.begin(), sorted.end());
  const auto sample = [&](std::int64_t rank) {
    return ToDays(sorted[static_cast<std::size_t>(rank)]);
  };
  Sums sums;
  for (const std::int64_t length : sorted) {
    const std::int64_t above = length - sorted.front();
    sums.sum += above;
    sums.squares += static_cast<Uint128>(above) * static_cast<Uint128>(above);
  }
  result.mean = ToDays(sorted.front()) +
                static_cast<double>(sums.sum) / static_cast<double>(result.count) / kMinutesPerDay;
  result.sd = Deviation(sums, result.count) / kMinutesPerDay;
  result.min = ToDays(sorted.front());
  result.max = ToDays(sorted.back());
  for (std::size_t i = 0; i < kPercents.size(); ++i) {
    const RankInterval interval = QuantileInterval(result.count, kPercents[i]);
    result.*kDayMembers[i].value = sample(PercentileRank(result.count, kPercents[i]));
    result.*kDayMembers[i].low = sample(interval.low);
    result.*kDayMembers[i].high = sample(interval.high);
  }
  return result;
}

}  // namespace nimbrel::engine
