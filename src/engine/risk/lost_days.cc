#include "engine/risk/lost_days.h"

#include <algorithm>

#include "engine/schedule/network.h"

namespace nimbrel::engine {

LostDays::LostDays(const RunLayout& layout)
    : layout_(layout), days_(layout.calendars.size()), counts_(layout.calendars.size()) {}

void LostDays::Take(const Scheduler& scheduler) {
  first_word_ = DayBits::kWords;
  last_word_ = -1;
  for (std::size_t i = 0; i < days_.size(); ++i) {
    const WeatherCalendar& calendar = layout_.calendars[i];
    const DayBits& worked =
        scheduler.network().calendars[static_cast<std::size_t>(calendar.index)].worked();
    std::int32_t count = 0;
    for (std::int32_t word = 0; word < DayBits::kWords; ++word) {
      const std::uint64_t lost = calendar.open.Word(word) & ~worked.Word(word);
      days_[i].Word(word) = lost;
      if (lost != 0) {
        count += std::popcount(lost);
        first_word_ = std::min(first_word_, word);
        last_word_ = std::max(last_word_, word);
      }
    }
    counts_[i] = count;
  }
}

}  // namespace nimbrel::engine
