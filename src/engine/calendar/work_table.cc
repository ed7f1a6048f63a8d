#include "engine/calendar/work_table.h"

#include <algorithm>
#include <array>
#include <utility>

namespace nimbrel::engine {
namespace {

// How far a table grows beyond what was asked for, in days: enough that a run seldom comes back.
constexpr std::int32_t kGrowth = 256;

/// For each set of eight days, as bits: how many are in it before each day, which they are, and
/// how many there are. Eight days are then filled in by two vector additions.
struct EightDays {
  std::array<std::array<std::uint16_t, 8>, 256> before{};
  std::array<std::array<std::uint16_t, 8>, 256> members{};
  std::array<std::uint8_t, 256> count{};
};

constexpr EightDays MakeEightDays() {
  EightDays table;
  for (std::uint32_t bits = 0; bits < 256; ++bits) {
    std::uint8_t count = 0;
    for (std::uint16_t day = 0; day < 8; ++day) {
      table.before[bits][day] = count;
      if ((bits >> day & 1u) != 0) {
        table.members[bits][count] = day;
        ++count;
      }
    }
    table.count[bits] = count;
  }
  return table;
}

constexpr EightDays kEightDays = MakeEightDays();

}  // namespace

WorkTable::WorkTable(const WorkCalendar& hours, std::vector<const DayBits*> sources,
                     std::int32_t first_day)
    : hours_(&hours), sources_(std::move(sources)), uniform_(hours.is_uniform()) {
  first_day = std::clamp(first_day, kFirstCoveredDay, kLastCoveredDay);
  first_day_ = first_day - (first_day - kFirstCoveredDay) % 8;
  // Counts of days are kept in 16 bits.
  limit_ = std::min(kLastCoveredDay + 1 - first_day_, 65528);
  if (uniform_ && hours.has_work()) {
    const DayHours& day = hours.HoursOn(first_day_);
    minutes_per_day_ = day.minutes();
    worked_before_ = day.worked_before();
    minute_at_ = day.minute_at();
  }
  // Exact for positions below 2^27, since the days have less than 2^11 minutes.
  reciprocal_ = (std::uint64_t{1} << 40) / static_cast<std::uint64_t>(minutes_per_day_) + 1;
}

void WorkTable::Rebuild(std::int32_t first_changed) {
  const std::int32_t from = std::max(first_changed - first_day_, 0);
  if (from < covered_) {
    Fill(from);
  }
}

std::int32_t WorkTable::PositionOfUnequal(Instant moment) {
  const std::int32_t at = moment.day() - first_day_;
  if (at < 0 || at >= covered_) {
    ExtendToDay(at);
  }
  const std::int32_t minutes = minutes_before_[at];
  return minutes_before_[at + 1] == minutes
             ? minutes
             : minutes + hours_->HoursOn(moment.day()).worked_before()[moment.minute()];
}

Instant WorkTable::MinuteAt(std::int32_t position) {
  if (position < 0) {
    throw OutsideCalendars(true);
  }
  if (uniform_) {
    const std::int32_t days = Quotient(position);
    if (days >= worked_) {
      ExtendToPosition(position);
    }
    return {day_of_[days] + first_day_, minute_at_[position - days * minutes_per_day_]};
  }
  if (position >= worked_) {
    ExtendToPosition(position);
  }
  const auto after =
      std::upper_bound(minutes_before_.begin(), minutes_before_.begin() + covered_, position);
  const auto at = static_cast<std::int32_t>(after - minutes_before_.begin()) - 1;
  const std::int32_t day = at + first_day_;
  return {day, hours_->HoursOn(day).minute_at()[position - minutes_before_[at]]};
}

void WorkTable::ExtendToDay(std::int32_t day) {
  if (day < 0 || day >= limit_) {
    throw OutsideCalendars(day < 0);
  }
  Extend(day + 1);
}

void WorkTable::ExtendToPosition(std::int32_t position) {
  const auto is_beyond = [this, position] {
    return position >= (uniform_ ? worked_ * minutes_per_day_ : worked_);
  };
  while (is_beyond()) {
    if (covered_ >= limit_) {
      throw OutsideCalendars(false);
    }
    Extend(covered_ + 1);
  }
}

void WorkTable::Extend(std::int32_t days) {
  const std::int32_t from = covered_;
  // Whole groups of eight days: those after the last covered day have no work.
  covered_ = std::min(days + kGrowth, limit_) + 7;
  covered_ -= covered_ % 8;
  Fill(from);
}

void WorkTable::Fill(std::int32_t from) {
  if (uniform_) {
    FillDays(from);
  } else {
    FillMinutes(from);
  }
}

std::uint64_t WorkTable::Word(std::int32_t index) const {
  std::uint64_t word = sources_.front()->Word(index);
  for (std::size_t i = 1; i < sources_.size(); ++i) {
    word &= sources_[i]->Word(index);
  }
  return word;
}

void WorkTable::FillDays(std::int32_t from) {
  if (days_before_.size() < static_cast<std::size_t>(covered_) + 8) {
    days_before_.resize(static_cast<std::size_t>(covered_) + 8);
    day_of_.resize(static_cast<std::size_t>(covered_) + 8);
  }
  from -= from % 8;
  std::uint16_t* const before = days_before_.data();
  std::uint16_t* const day_of = day_of_.data();
  std::uint32_t count = from == 0 ? 0 : before[from];
  const std::int32_t offset = first_day_ - kFirstCoveredDay;
  for (std::int32_t at = from; at < covered_;) {
    const std::int32_t index = at + offset;
    std::uint64_t word = Word(index >> 6) >> (index & 63);
    const std::int32_t end = std::min(covered_, at + 64 - (index & 63));
    for (; at < end; at += 8, word >>= 8) {
      const auto bits = static_cast<std::size_t>(word & 255u);
      for (std::size_t day = 0; day < 8; ++day) {
        before[at + static_cast<std::int32_t>(day)] =
            static_cast<std::uint16_t>(count + kEightDays.before[bits][day]);
      }
      for (std::size_t day = 0; day < 8; ++day) {
        day_of[count + day] = static_cast<std::uint16_t>(static_cast<std::uint32_t>(at) +
                                                         kEightDays.members[bits][day]);
      }
      count += kEightDays.count[bits];
    }
  }
  before[covered_] = static_cast<std::uint16_t>(count);
  worked_ = static_cast<std::int32_t>(count);
}

void WorkTable::FillMinutes(std::int32_t from) {
  minutes_before_.resize(static_cast<std::size_t>(covered_) + 1);
  std::int32_t minutes = from == 0 ? 0 : minutes_before_[static_cast<std::size_t>(from)];
  const std::int32_t offset = first_day_ - kFirstCoveredDay;
  for (std::int32_t at = from; at < covered_; ++at) {
    minutes_before_[static_cast<std::size_t>(at)] = minutes;
    const std::int32_t index = at + offset;
    if ((Word(index >> 6) >> (index & 63) & 1u) != 0) {
      minutes += hours_->HoursOn(at + first_day_).minutes();
    }
  }
  minutes_before_[static_cast<std::size_t>(covered_)] = minutes;
  worked_ = minutes;
}

}  // namespace nimbrel::engine
