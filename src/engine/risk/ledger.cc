#include "engine/risk/ledger.h"

#include <algorithm>
#include <bit>
#include <map>

#include "engine/schedule/network.h"
#include "engine/schedule/telling.h"

namespace nimbrel::engine {
namespace {

/// Adds the days from `first` to `last`, as far as they fall into some words.
void AddDays(DayBits& bits, std::int32_t first, std::int32_t last, std::int32_t first_word,
             std::int32_t last_word) {
  first = std::max(first, kFirstCoveredDay + first_word * 64);
  last = std::min(last, kFirstCoveredDay + last_word * 64 + 63);
  VisitWords(first, last,
             [&bits](std::int32_t word, std::uint64_t mask) { bits.Word(word) |= mask; });
}

std::int64_t CountBits(std::uint64_t word) {
  return std::popcount(word);
}

}  // namespace

Ledger::Ledger(const RunLayout& layout, const Scheduler& scheduler)
    : tables_of_(layout.calendars.size()),
      ever_worked_(layout.calendars.size()),
      is_driving_(layout.tasks.size()) {
  const Network& network = scheduler.network();
  std::map<std::uint16_t, std::size_t> place_of;  // by the network's tables
  const auto weather_of = [&layout](CalendarIndex index) {
    return std::find_if(layout.calendars.begin(), layout.calendars.end(),
                        [index](const WeatherCalendar& c) { return c.index == index; });
  };
  for (Slot slot = 0; slot < network.open_count; ++slot) {
    if (network.nodes[static_cast<std::size_t>(slot)].is_milestone) {
      continue;
    }
    const std::uint16_t number = network.facts[static_cast<std::size_t>(slot)].table;
    const auto [known, is_new] = place_of.emplace(number, tables_.size());
    if (is_new) {
      Table& table = tables_.emplace_back();
      const std::vector<CalendarIndex>& calendars = network.table_calendars[number];
      for (const CalendarIndex calendar : calendars) {
        if (const auto weather = weather_of(calendar); weather != layout.calendars.end()) {
          table.calendars.push_back(static_cast<std::size_t>(weather - layout.calendars.begin()));
        }
      }
      const auto own = static_cast<std::size_t>(calendars.front());
      const bool is_weather = weather_of(calendars.front()) != layout.calendars.end();
      table.own = is_weather ? network.calendars[own].open() : network.calendars[own].worked();
    }
    if (!tables_[known->second].calendars.empty()) {
      entries_.push_back({slot, static_cast<std::uint32_t>(known->second)});
    }
  }
  for (std::size_t i = 0; i < tables_.size(); ++i) {
    for (const std::size_t calendar : tables_[i].calendars) {
      tables_of_[calendar].push_back(i);
      for (std::int32_t word = 0; word < DayBits::kWords; ++word) {
        ever_worked_[calendar].Word(word) |= tables_[i].own.Word(word);
      }
    }
  }
}

void Ledger::Add(const Scheduler& scheduler, const LostDays& lost,
                 std::span<const TaskIndex> driving, std::span<LedgerResult> sums) {
  const std::int32_t first = lost.first_word();
  const std::int32_t last = lost.last_word();
  if (first > last) {
    return;
  }
  Network& network = scheduler.network();
  const auto mark_driving = [&](bool is_driving) {
    for (const TaskIndex task : driving) {
      const Slot slot = network.slot_of[static_cast<std::size_t>(task)];
      is_driving_[static_cast<std::size_t>(slot)] = is_driving;
    }
  };
  mark_driving(true);
  for (Table& table : tables_) {
    for (std::int32_t word = first; word <= last; ++word) {
      table.under_way.Word(word) = 0;
      table.driving.Word(word) = 0;
    }
  }
  for (const Entry& entry : entries_) {
    Table& table = tables_[entry.table];
    const std::int32_t from = FirstDayUnderWay(network, entry.slot);
    const std::int32_t finish = network.early[static_cast<std::size_t>(FinishOf(entry.slot))];
    const std::int32_t to = Instant::FromPacked(finish).day();
    AddDays(table.under_way, from, to, first, last);
    if (is_driving_[static_cast<std::size_t>(entry.slot)]) {
      AddDays(table.driving, from, to, first, last);
    }
  }
  mark_driving(false);
  for (std::size_t calendar = 0; calendar < sums.size(); ++calendar) {
    LedgerResult& sum = sums[calendar];
    for (std::int32_t word = first; word <= last; ++word) {
      const std::uint64_t days = lost.days(calendar).Word(word);
      std::uint64_t held = 0;
      std::uint64_t moving = 0;
      for (const std::size_t i : tables_of_[calendar]) {
        held |= tables_[i].under_way.Word(word) & tables_[i].own.Word(word);
        moving |= tables_[i].driving.Word(word) & tables_[i].own.Word(word);
      }
      const std::uint64_t worked = ever_worked_[calendar].Word(word);
      sum.lost += CountBits(days);
      sum.off += CountBits(days & ~worked);
      sum.idle += CountBits(days & worked & ~held);
      sum.absorbed += CountBits(days & held & ~moving);
      sum.moving += CountBits(days & moving);
    }
  }
}

}  // namespace nimbrel::engine
