#include "engine/risk/variants.h"

#include <algorithm>

#include "engine/calendar/day_bits.h"
#include "engine/schedule/telling.h"

namespace nimbrel::engine {

Variants::Variants(const RunInputs& inputs)
    : inputs_(inputs), taken_(inputs.layout.calendars.size(), true) {}

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

void Variants::Schedule(IterationMaker& maker, std::int32_t number, const LostDays& lost,
                        std::span<Instant> finishes) {
  Host& host = maker.host();
  for (std::size_t v = 0; v < finishes.size(); ++v) {
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
