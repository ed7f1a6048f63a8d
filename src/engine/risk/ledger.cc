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
      is_driving_(layout.tasks.size()),
      is_weather_(scheduler.network().calendars.size()) {
  const Network& network = scheduler.network();
  for (const WeatherCalendar& calendar : layout.calendars) {
    is_weather_[static_cast<std::size_t>(calendar.index)] = true;
  }
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

void Ledger::Look(const Scheduler& scheduler, const LostDays& lost,
                  std::span<const TaskIndex> driving) {
  last_calendar_ = nullptr;
  if (!driving.empty()) {
    const CalendarIndex own = CalendarsOf(scheduler, driving.front()).front();
    last_calendar_ = &scheduler.network().calendars[static_cast<std::size_t>(own)];
    last_is_weather_ = is_weather_[static_cast<std::size_t>(own)];
  }
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
}

Ledger::HeldDays Ledger::HeldDaysOf(std::size_t calendar, std::int32_t word) const {
  HeldDays held;
  for (const std::size_t i : tables_of_[calendar]) {
    held.any |= tables_[i].under_way.Word(word) & tables_[i].own.Word(word);
    held.driving |= tables_[i].driving.Word(word) & tables_[i].own.Word(word);
  }
  return held;
}

/// The first of the last `moved` days on which a calendar held up a driving task.
std::int32_t Ledger::FirstMovingDay(const LostDays& lost, std::int32_t moved) const {
  for (std::int32_t word = lost.last_word(); moved > 0 && word >= lost.first_word(); --word) {
    std::uint64_t days = 0;
    for (std::size_t calendar = 0; calendar < tables_of_.size(); ++calendar) {
      days |= lost.days(calendar).Word(word) & HeldDaysOf(calendar, word).driving;
    }
    for (; days != 0; --moved) {
      const int bit = 63 - std::countl_zero(days);
      if (moved == 1) {
        return kFirstCoveredDay + 64 * word + bit;
      }
      days &= ~(std::uint64_t{1} << bit);
    }
  }
  return moved > 0 ? kFirstCoveredDay : kLastCoveredDay + 1;
}

void Ledger::Book(const LostDays& lost, Instant finish_without_weather, Instant finish,
                  std::span<LedgerResult> sums) const {
  std::int32_t moved = 0;
  if (last_calendar_ != nullptr && finish_without_weather.Minutes() < finish.Minutes()) {
    const DayBits& works = last_is_weather_ ? last_calendar_->open() : last_calendar_->worked();
    // What ends as a day's work begins has not used that day.
    const auto unused = [&](Instant end) {
      return works.Test(end.day()) &&
                     last_calendar_->HoursOn(end.day()).worked_before()[end.minute()] == 0
                 ? 1
                 : 0;
    };
    moved = works.Count(finish_without_weather.day() + 1, finish.day()) - unused(finish) +
            unused(finish_without_weather);
  }
  const std::int32_t first = lost.first_word();
  const std::int32_t last = lost.last_word();
  DayBits can_move;
  can_move.Add(FirstMovingDay(lost, moved), kLastCoveredDay);
  for (std::size_t calendar = 0; calendar < sums.size(); ++calendar) {
    LedgerResult& sum = sums[calendar];
    for (std::int32_t word = first; word <= last; ++word) {
      const std::uint64_t days = lost.days(calendar).Word(word);
      const HeldDays held = HeldDaysOf(calendar, word);
      const std::uint64_t moving = held.driving & can_move.Word(word);
      const std::uint64_t worked = ever_worked_[calendar].Word(word);
      sum.lost += CountBits(days);
      sum.off += CountBits(days & ~worked);
      sum.idle += CountBits(days & worked & ~held.any);
      sum.absorbed += CountBits(days & held.any & ~moving);
      sum.moving += CountBits(days & moving);
    }
  }
}

}  // namespace nimbrel::engine
