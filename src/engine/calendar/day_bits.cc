#include "engine/calendar/day_bits.h"

#include <bit>

namespace nimbrel::engine {

void DayBits::Add(std::int32_t first, std::int32_t last) {
  VisitWords(first, last, [this](std::int32_t word, std::uint64_t mask) { Word(word) |= mask; });
}

void DayBits::Remove(std::int32_t first, std::int32_t last) {
  VisitWords(first, last, [this](std::int32_t word, std::uint64_t mask) { Word(word) &= ~mask; });
}

std::int32_t DayBits::Count(std::int32_t first, std::int32_t last) const {
  std::int32_t count = 0;
  VisitWords(first, last, [this, &count](std::int32_t word, std::uint64_t mask) {
    count += std::popcount(Word(word) & mask);
  });
  return count;
}

}  // namespace nimbrel::engine
