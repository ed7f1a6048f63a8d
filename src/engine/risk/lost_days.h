#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "engine/calendar/day_bits.h"
#include "engine/risk/run_layout.h"
#include "engine/schedule/scheduler.h"

namespace nimbrel::engine {

/// The days that each weather calendar has lost in the current iteration: that it would work by its
/// pattern and exceptions, and does not.
class LostDays {
 public:
  explicit LostDays(const RunLayout& layout);

  /// Takes them from the scheduler as its calendars stand.
  void Take(const Scheduler& scheduler);

  const DayBits& days(std::size_t calendar) const { return days_[calendar]; }
  std::int32_t count(std::size_t calendar) const { return counts_[calendar]; }
  /// The words of DayBits in which any calendar has lost a day; first > last if there are none.
  std::int32_t first_word() const { return first_word_; }
  std::int32_t last_word() const { return last_word_; }

  /// Calls `visit(day)` for each lost day of a calendar, in order.
  template <class Visit>
  void VisitDays(std::size_t calendar, const Visit& visit) const {
    for (std::int32_t word = first_word_; word <= last_word_; ++word) {
      for (std::uint64_t rest = days_[calendar].Word(word); rest != 0; rest &= rest - 1) {
        visit(kFirstCoveredDay + word * 64 + std::countr_zero(rest));
      }
    }
  }

 private:
  const RunLayout& layout_;
  std::vector<DayBits> days_;
  std::vector<std::int32_t> counts_;
  std::int32_t first_word_ = 0;
  std::int32_t last_word_ = -1;
};

}  // namespace nimbrel::engine
