#include "engine/risk/variants.h"

#include <algorithm>

#include "engine/calendar/day_bits.h"
#include "engine/schedule/telling.h"

namespace nimbrel::engine {

Variants::Variants(const RunInputs& inputs)
    : inputs_(inputs), taken_(inputs.layout.calendars.size(), true) {
  constexpr std::size_t kBits = 64;
  if (taken_.size() > kBits) {
    return;
  }
  for (const Variant& variant : inputs.layout.variants) {
    std::uint64_t& mask = masks_.emplace_back(0);
    for (std::size_t i = 0; i < taken_.size(); ++i) {
      mask |= std::uint64_t{variant.takes_effect[i]} << i;
    }
  }
}

void Variants::UndoPushes(IterationMaker& maker) const {
  const std::vector<TaskIndex>& tasks = inputs_.layout.no_split;
  Host& host = maker.host();
  for (std::size_t i = 0; i < tasks.size(); ++i) {
    if (ConstraintOf(host.scheduler(), tasks[i]) != maker.first_constraints()[i]) {
      host.SetConstraint(inputs_.layout.tasks[static_cast<std::size_t>(tasks[i])],
                         maker.first_constraints()[i]);
    }
  }
}

const Instant* Variants::Known(std::size_t variant, std::uint64_t losing, const Instant& finish,
                               std::span<const Instant> finishes) const {
  if (masks_.empty()) {
    return nullptr;
  }
  const std::uint64_t wanted = masks_[variant] & losing;
  if (wanted == losing) {
    return &finish;
  }
  for (std::size_t earlier = 0; earlier < variant; ++earlier) {
    if ((masks_[earlier] & losing) == wanted) {
      return &finishes[earlier];
    }
  }
  return nullptr;
}

void Variants::Schedule(IterationMaker& maker, std::int32_t number, const LostDays& lost,
                        Instant finish, std::span<Instant> finishes) {
  Host& host = maker.host();
  std::uint64_t losing = 0;
  for (std::size_t i = 0; i < taken_.size() && !masks_.empty(); ++i) {
    losing |= std::uint64_t{lost.count(i) != 0} << i;
  }
  for (std::size_t v = 0; v < finishes.size(); ++v) {
    if (const Instant* const known = Known(v, losing, finish, finishes); known != nullptr) {
      finishes[v] = *known;
      continue;
    }
    const Variant& variant = inputs_.layout.variants[v];
    for (std::size_t i = 0; i < taken_.size(); ++i) {
      SetTaken(host.scheduler(), i, variant.takes_effect[i], lost);
    }
    host.ScheduleAgain();
    host.RaisePlanAfterRiskIteration(number);
    finishes[v] = host.scheduler().finish();
    UndoPushes(maker);
  }
  for (std::size_t i = 0; i < taken_.size(); ++i) {
    SetTaken(host.scheduler(), i, true, lost);
  }
}

/// Takes a calendar's lost days again or gives them back.
void Variants::SetTaken(Scheduler& scheduler, std::size_t calendar, bool taken,
                        const LostDays& lost) {
  if (taken_[calendar] == taken || lost.count(calendar) == 0) {
    return;
  }
  taken_[calendar] = taken;
  const CalendarIndex index = inputs_.layout.calendars[calendar].index;
  if (!taken) {
    scheduler.GiveDays(index, kFirstCoveredDay, kLastCoveredDay);
    return;
  }
  // As runs of days.
  std::int32_t first = 0;
  std::int32_t last = -1;
  lost.VisitDays(calendar, [&](std::int32_t day) {
    if (day == last + 1) {
      last = day;
      return;
    }
    scheduler.TakeDays(index, first, last);
    first = day;
    last = day;
  });
  scheduler.TakeDays(index, first, last);
}

}  // namespace nimbrel::engine
