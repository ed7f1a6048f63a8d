#include "engine/schedule/forward.h"

#include <algorithm>
#include <bit>

#include "engine/schedule/backward.h"

namespace nimbrel::engine {
namespace {

/// The earliest moments at which a task may start and may finish, packed.
struct EarlyBounds {
  std::int32_t start = kNoFloor;
  std::int32_t finish = kNoFloor;
};

EarlyBounds GatherBounds(Network& network, Slot slot) {
  const Node& node = network.nodes[slot];
  EarlyBounds bounds{node.floor, network.finish_floor[slot]};
  if (node.is_mandatory) {
    return bounds;
  }
  for (std::int32_t ref = node.first_ref; ref < network.nodes[slot + 1].first_ref; ++ref) {
    bounds.start = std::max(bounds.start, network.early[network.start_refs[ref]]);
  }
  for (const InLink& link : network.other_links[slot]) {
    const std::int32_t end = LagEnd(network, network.early[link.date], link.lag);
    std::int32_t& bound = link.to_finish ? bounds.finish : bounds.start;
    bound = std::max(bound, end);
  }
  return bounds;
}

/// The position at which the work of a task starts under its bounds.
std::int32_t StartPosition(WorkTable& table, std::int32_t minutes, EarlyBounds bounds) {
  std::int32_t start = table.Position(Instant::FromPacked(bounds.start));
  if (bounds.finish != kNoFloor) {
    start = std::max(start, table.Position(Instant::FromPacked(bounds.finish)) - minutes);
  }
  return start;
}

void SetEarly(Network& network, Slot slot, Instant start, Instant finish) {
  network.early[StartOf(slot)] = start.packed();
  network.early[FinishOf(slot)] = finish.packed();
}

/// Stretches or cuts what remains of a task so that it ends when it is expected to: nothing remains
/// if that has passed when it can start. No remaining work is expected to end at no time.
void MeetExpectedFinish(Network& network, Slot slot, EarlyBounds bounds) {
  if (network.remaining[slot] == 0) {
    return;
  }
  WorkTable& table = network.TableOf(slot);
  const std::int32_t minutes =
      table.Position(Instant::FromPacked(network.facts[slot].expected_finish)) -
      table.Position(Instant::FromPacked(bounds.start));
  network.nodes[slot].minutes = table.CapMinutes(std::max(minutes, 0));
}

/// Schedules a task whose start or finish may not come after a moment, if that is where it would
/// come. False if it is not.
bool ScheduleHeldBack(Network& network, Slot slot, EarlyBounds bounds) {
  const TaskFacts& facts = network.facts[slot];
  const std::int32_t minutes = network.nodes[slot].minutes;
  WorkTable& table = network.TableOf(slot);
  const std::int32_t free = StartPosition(table, minutes, bounds);
  std::int32_t held = free;
  if (facts.start_ceiling != kNoCeiling) {
    held = std::min(held, table.Position(Instant::FromPacked(facts.start_ceiling)));
  }
  if (facts.finish_ceiling != kNoCeiling) {
    held = std::min(held, table.Position(Instant::FromPacked(facts.finish_ceiling)) - minutes);
  }
  if (held == free) {
    return false;
  }
  if (minutes > 0) {
    SetEarly(network, slot, table.StartAt(held), table.FinishAt(held + minutes));
  } else {
    const Instant moment =
        facts.kind == TaskKind::kStartMilestone ? table.StartAt(held) : table.FinishAt(held);
    SetEarly(network, slot, moment, moment);
  }
  return true;
}

/// Schedules a task of any sort.
void ScheduleTask(Network& network, Slot slot) {
  const EarlyBounds bounds = GatherBounds(network, slot);
  WorkTable& table = network.TableOf(slot);
  if (network.nodes[slot].has_end) {
    const TaskFacts& facts = network.facts[slot];
    if (facts.expected_finish != kNoCeiling) {
      MeetExpectedFinish(network, slot, bounds);
    }
    if (facts.IsHeldBack() && ScheduleHeldBack(network, slot, bounds)) {
      return;
    }
  }
  const std::int32_t minutes = network.nodes[slot].minutes;
  if (minutes == 0) {
    const Instant moment =
        MomentWithoutWork(table, Instant::FromPacked(std::max(bounds.start, bounds.finish)),
                          network.facts[slot].kind);
    SetEarly(network, slot, moment, moment);
  } else if (bounds.finish == kNoFloor && table.is_uniform()) {
    const WorkTable::Span span = table.Place(bounds.start, minutes);
    network.early[StartOf(slot)] = span.start;
    network.early[FinishOf(slot)] = span.finish;
  } else {
    const std::int32_t start = StartPosition(table, minutes, bounds);
    SetEarly(network, slot, table.StartAt(start), table.FinishAt(start + minutes));
  }
}

/// Schedules a task with work that has only moments to wait for, on days of equal length.
void ScheduleSimpleTask(Network& network, Slot slot) {
  const Node& node = network.nodes[slot];
  const std::int32_t* const early = network.early.data();
  std::int32_t start = node.floor;
  const std::int32_t* ref = network.start_refs.data() + node.first_ref;
  const std::int32_t* const end = network.start_refs.data() + network.nodes[slot + 1].first_ref;
  for (; ref != end; ++ref) {
    start = std::max(start, early[*ref]);
  }
  const WorkTable::Span span = network.tables[node.table].Place(start, node.minutes);
  network.early[StartOf(slot)] = span.start;
  network.early[FinishOf(slot)] = span.finish;
}

void ScheduleSlot(Network& network, Slot slot) {
  const Node& node = network.nodes[slot];
  if (node.is_general || node.minutes == 0) {
    ScheduleTask(network, slot);
  } else {
    ScheduleSimpleTask(network, slot);
  }
}

/// Moves the tasks that are to be as late as possible, from the last one back, to where they delay
/// no early date.
void MoveLateTasks(Network& network, Slot& slot) {
  for (slot = network.open_count - 1; slot >= 0; --slot) {
    if (!IsAsLateAsPossible(network.facts[slot]) || network.nodes[slot].is_mandatory) {
      continue;
    }
    const LateDates dates = LatestWithoutDelay(network, slot);
    WorkTable& table = network.TableOf(slot);
    if (table.Position(dates.finish) >
        table.Position(Instant::FromPacked(network.early[FinishOf(slot)]))) {
      SetEarly(network, slot, dates.start, dates.finish);
    }
  }
}

/// Takes over the days that changed, and marks the tasks that they can touch if asked to.
void RefreshTables(Network& network, bool mark_tasks) {
  for (std::size_t table = 0; table < network.tables.size(); ++table) {
    std::int32_t first_changed = std::numeric_limits<std::int32_t>::max();
    for (const CalendarIndex calendar : network.table_calendars[table]) {
      first_changed = std::min(first_changed, network.calendars[calendar].first_changed());
    }
    if (first_changed == std::numeric_limits<std::int32_t>::max()) {
      continue;
    }
    network.tables[table].Rebuild(first_changed);
    if (mark_tasks) {
      for (const Slot slot : network.table_tasks[static_cast<std::int32_t>(table)]) {
        // Days after a task's last one cannot touch it, unless its finish is held: the finish
        // stands where work ends, and the moment that holds it may come days later.
        if (network.nodes[slot].is_general ||
            Instant::FromPacked(network.early[FinishOf(slot)]).day() >= first_changed) {
          network.MarkDirty(slot);
        }
      }
    }
  }
  for (WorkCalendar& calendar : network.calendars) {
    calendar.ForgetChanges();
  }
}

void RunDirty(Network& network, Slot& slot) {
  for (std::size_t word = 0; word < network.dirty.size(); ++word) {
    // A task can make later ones of the same word dirty.
    while (network.dirty[word] != 0) {
      slot = static_cast<Slot>(word) * 64 + std::countr_zero(network.dirty[word]);
      const std::int32_t start = network.early[StartOf(slot)];
      const std::int32_t finish = network.early[FinishOf(slot)];
      ScheduleSlot(network, slot);
      network.dirty[word] &= network.dirty[word] - 1;
      if (network.early[StartOf(slot)] != start || network.early[FinishOf(slot)] != finish) {
        for (const OutLink& link : network.out_links[slot]) {
          network.MarkDirty(link.successor);
        }
      }
    }
  }
}

}  // namespace

void RunForward(Network& network) {
  network.is_scheduled = false;
  network.spans_are_current = false;
  network.finish = kNoFloor;
  RefreshTables(network, false);
  Slot slot = 0;
  try {
    for (slot = 0; slot < network.open_count; ++slot) {
      ScheduleSlot(network, slot);
    }
    if (network.late_tasks > 0) {
      MoveLateTasks(network, slot);
    }
  } catch (const OutsideCalendars& error) {
    throw OutsideError(network, slot, error);
  }
  std::fill(network.dirty.begin(), network.dirty.end(), 0);
  network.is_scheduled = true;
}

void RunChanged(Network& network) {
  // Tasks that were moved late no longer stand where their predecessors hold them.
  if (!network.is_scheduled || network.late_tasks > 0) {
    RunForward(network);
    return;
  }
  network.is_scheduled = false;
  network.spans_are_current = false;
  network.finish = kNoFloor;
  RefreshTables(network, true);
  Slot slot = 0;
  try {
    RunDirty(network, slot);
  } catch (const OutsideCalendars& error) {
    throw OutsideError(network, slot, error);
  }
  network.is_scheduled = true;
}

Instant FinishOfPlan(Network& network) {
  if (network.finish == kNoFloor) {
    std::int32_t latest = network.latest_actual;
    for (Slot slot = 0; slot < network.open_count; ++slot) {
      latest = std::max(latest, network.early[FinishOf(slot)]);
    }
    network.finish = latest == kNoFloor ? network.status.packed() : latest;
  }
  return Instant::FromPacked(network.finish);
}

bool IsDriving(Network& network, Slot slot, const InLink& link) {
  return IsDrivingTo(network, slot, link, Instant::FromPacked(network.early[StartOf(slot)]));
}

bool IsDrivingTo(Network& network, Slot slot, const InLink& link, Instant start) {
  const Node& node = network.nodes[slot];
  if (node.is_mandatory) {
    return false;
  }
  const std::int32_t end = LagEnd(network, network.early[link.date], link.lag);
  WorkTable& table = network.TableOf(slot);
  if (node.minutes == 0) {
    return MomentWithoutWork(table, Instant::FromPacked(end), network.facts[slot].kind) == start;
  }
  return table.Position(Instant::FromPacked(end)) - (link.to_finish ? node.minutes : 0) ==
         table.Position(start);
}

Instant MomentWithoutWork(WorkTable& table, Instant moment, TaskKind kind) {
  const std::int32_t position = table.Position(moment);
  if (kind != TaskKind::kStartMilestone && position > 0) {
    const Instant finish = table.FinishAt(position);
    if (IsSameMoment(finish, moment)) {
      return finish;
    }
  }
  return table.StartAt(position);
}

}  // namespace nimbrel::engine
