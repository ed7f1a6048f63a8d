#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace nimbrel::engine {

/// The days that calendars cover: 1 January 1950 to 31 December 2150. No work is done outside.
inline constexpr std::int32_t kFirstCoveredDay = 18264;
inline constexpr std::int32_t kLastCoveredDay = 91677;

/// A set of covered days, one bit a day. Days outside what calendars cover are never in it.
class DayBits {
 public:
  static constexpr std::int32_t kWords = (kLastCoveredDay - kFirstCoveredDay) / 64 + 1;

  bool Test(std::int32_t day) const {
    const auto index = static_cast<std::uint32_t>(day - kFirstCoveredDay);
    return index < kDays && (words_[index >> 6] >> (index & 63) & 1u) != 0;
  }
  /// Adds or removes the days from `first` to `last`, both included.
  void Add(std::int32_t first, std::int32_t last);
  void Remove(std::int32_t first, std::int32_t last);
  /// Number of days in the set from `first` to `last`, both included.
  std::int32_t Count(std::int32_t first, std::int32_t last) const;

  /// The bits of the days from kFirstCoveredDay + 64 * index on, lowest bit first.
  std::uint64_t Word(std::int32_t index) const { return words_[static_cast<std::size_t>(index)]; }
  std::uint64_t& Word(std::int32_t index) { return words_[static_cast<std::size_t>(index)]; }

 private:
  static constexpr std::uint32_t kDays = kLastCoveredDay - kFirstCoveredDay + 1;
  std::array<std::uint64_t, kWords> words_{};
};

/// Calls `visit(word index, mask of the days)` for the words that hold the covered days from
/// `first` to `last`, both included.
template <class Visit>
void VisitWords(std::int32_t first, std::int32_t last, Visit&& visit) {
  first = first < kFirstCoveredDay ? kFirstCoveredDay : first;
  last = last > kLastCoveredDay ? kLastCoveredDay : last;
  if (last < first) {
    return;
  }
  const std::int32_t from = first - kFirstCoveredDay;
  const std::int32_t to = last - kFirstCoveredDay;
  for (std::int32_t word = from >> 6; word <= to >> 6; ++word) {
    std::uint64_t mask = ~std::uint64_t{0};
    if (word == from >> 6) {
      mask &= ~std::uint64_t{0} << (from & 63);
    }
    if (word == to >> 6) {
      mask &= ~std::uint64_t{0} >> (63 - (to & 63));
    }
    visit(word, mask);
  }
}

}  // namespace nimbrel::engine
