#include "engine/schedule/telling.h"

#include <algorithm>
#include <bit>

#include "engine/schedule/forward.h"

namespace nimbrel::engine {
namespace {

/// The slots at which the paths to a target end.
template <class Visit>
void VisitEnds(Network& network, TaskIndex target, const Visit& visit) {
  if (target >= 0) {
    if (const Slot slot = network.slot_of[static_cast<std::size_t>(target)]; network.IsOpen(slot)) {
      visit(slot);
    }
    return;
  }
  const std::int32_t finish = FinishOfPlan(network).packed();
  for (Slot slot = 0; slot < network.open_count; ++slot) {
    if (network.early[static_cast<std::size_t>(FinishOf(slot))] == finish) {
      visit(slot);
    }
  }
}

/// The moments before which links and constraints let a task neither start nor finish, packed.
struct Holds {
  std::int32_t start = kNoFloor;
  std::int32_t finish = kNoFloor;
};

Holds HoldsOn(Network& network, Slot slot) {
  const Node& node = network.nodes[static_cast<std::size_t>(slot)];
  Holds holds{node.floor, network.finish_floor[static_cast<std::size_t>(slot)]};
  if (!node.is_mandatory) {
    for (const InLink& link : network.in_links[slot]) {
      std::int32_t& held = link.to_finish ? holds.finish : holds.start;
      held = std::max(held, LagEnd(network, network.early[link.date], link.lag));
    }
  }
  return holds;
}

}  // namespace

void ScheduleTelling::SetHeld(const Scheduler& scheduler, std::span<const HeldTask> held) {
  held_.clear();
  for (const HeldTask& task : held) {
    held_.push_back(
        {scheduler.network().slot_of[static_cast<std::size_t>(task.task)], task.start_by_links});
  }
  std::sort(held_.begin(), held_.end(),
            [](const HeldSlot& a, const HeldSlot& b) { return a.slot < b.slot; });
}

bool ScheduleTelling::Drives(Network& network, Slot slot, const InLink& link) const {
  if (!held_.empty()) {
    const auto held =
        std::lower_bound(held_.begin(), held_.end(), slot,
                         [](const HeldSlot& each, Slot wanted) { return each.slot < wanted; });
    if (held != held_.end() && held->slot == slot) {
      return IsDrivingTo(network, slot, link, held->start_by_links);
    }
  }
  return IsDriving(network, slot, link);
}

void ScheduleTelling::DrivingPath(const Scheduler& scheduler, TaskIndex target,
                                  std::vector<TaskIndex>& path) {
  Network& network = scheduler.network();
  marked_.resize(network.dirty.size());
  const auto mark = [this](Slot slot) {
    marked_[static_cast<std::size_t>(slot) / 64] |= std::uint64_t{1}
                                                    << (static_cast<unsigned>(slot) % 64);
  };
  VisitEnds(network, target, mark);
  path.clear();
  // Predecessors come earlier in the order, so that one sweep back meets each task once.
  for (std::size_t word = marked_.size(); word-- > 0;) {
    while (marked_[word] != 0) {
      const unsigned bit = 63U - static_cast<unsigned>(std::countl_zero(marked_[word]));
      const Slot slot = static_cast<Slot>(word * 64 + bit);
      marked_[word] &= ~(std::uint64_t{1} << bit);
      path.push_back(network.index_at[static_cast<std::size_t>(slot)]);
      for (const InLink& link : network.in_links[slot]) {
        if (Drives(network, slot, link)) {
          mark(link.predecessor());
        }
      }
    }
  }
}

std::vector<TaskIndex> ScheduleTelling::OneDrivingPath(const Scheduler& scheduler,
                                                       TaskIndex target) const {
  Network& network = scheduler.network();
  TaskIndex last = -1;
  VisitEnds(network, target, [&](Slot slot) {
    const TaskIndex task = network.index_at[static_cast<std::size_t>(slot)];
    last = last < 0 ? task : std::min(last, task);
  });
  std::vector<TaskIndex> path;
  Slot slot = last < 0 ? -1 : network.slot_of[static_cast<std::size_t>(last)];
  while (slot >= 0) {
    path.push_back(network.index_at[static_cast<std::size_t>(slot)]);
    const Lists<InLink>::Range links = network.in_links[slot];
    const InLink* const driving = std::find_if(links.begin(), links.end(), [&](const InLink& link) {
      return Drives(network, slot, link);
    });
    slot = driving == links.end() ? -1 : driving->predecessor();
  }
  std::reverse(path.begin(), path.end());
  return path;
}

Instant ReadyMoment(const Scheduler& scheduler, TaskIndex task) {
  Network& network = scheduler.network();
  const Slot slot = network.slot_of[static_cast<std::size_t>(task)];
  return network.IsOpen(slot) ? ReadyMoment(network, slot) : Instant();
}

std::int32_t FirstDayUnderWay(const Scheduler& scheduler, TaskIndex task) {
  Network& network = scheduler.network();
  return FirstDayUnderWay(network, network.slot_of[static_cast<std::size_t>(task)]);
}

Instant ReadyMoment(Network& network, Slot slot) {
  const Node& node = network.nodes[static_cast<std::size_t>(slot)];
  const std::int32_t* const early = network.early.data();
  const Instant start = Instant::FromPacked(early[StartOf(slot)]);
  std::int32_t bound = node.floor;
  if (!node.is_general) {
    const std::int32_t end = network.nodes[static_cast<std::size_t>(slot) + 1].first_ref;
    for (std::int32_t ref = node.first_ref; ref < end; ++ref) {
      bound = std::max(bound, early[network.start_refs[static_cast<std::size_t>(ref)]]);
    }
    return Instant::FromPacked(std::min(bound, start.packed()));
  }
  const Holds holds = HoldsOn(network, slot);
  const Instant ready = Instant::FromPacked(holds.start);
  if (holds.start == kNoFloor || start < ready) {
    return start;
  }
  WorkTable& table = network.TableOf(slot);
  const bool is_held_at_finish =
      holds.finish != kNoFloor &&
      table.Position(Instant::FromPacked(holds.finish)) - node.minutes > table.Position(ready);
  return is_held_at_finish ? start : ready;
}

std::int32_t FirstDayUnderWay(Network& network, Slot slot) {
  const Instant ready = ReadyMoment(network, slot);
  const std::uint16_t table = network.facts[static_cast<std::size_t>(slot)].table;
  const CalendarIndex own = network.table_calendars[table].front();
  const WorkCalendar& calendar = network.calendars[static_cast<std::size_t>(own)];
  if (!calendar.open().Test(ready.day())) {
    return ready.day();
  }
  const DayHours& hours = calendar.HoursOn(ready.day());
  return ready.day() + (hours.worked_before()[ready.minute()] == hours.minutes() ? 1 : 0);
}

Instant StartUnder(const Scheduler& scheduler, TaskIndex task, const Constraint& constraint) {
  Network& network = scheduler.network();
  const auto slot = network.slot_of[static_cast<std::size_t>(task)];
  const auto place = static_cast<std::size_t>(slot);
  const Instant start = scheduler.early_start(task);
  const TaskFacts facts = network.facts[place];
  if (!network.IsOpen(slot) || facts.constraints[0] == constraint) {
    return start;
  }
  network.facts[place].constraints[0] = constraint;
  ApplyConstraints(network, slot);
  const Holds holds = HoldsOn(network, slot);
  network.facts[place] = facts;
  ApplyConstraints(network, slot);

  WorkTable& table = network.TableOf(slot);
  std::int32_t position = table.Position(Instant::FromPacked(holds.start));
  if (holds.finish != kNoFloor) {
    position = std::max(
        position, table.Position(Instant::FromPacked(holds.finish)) - network.nodes[place].minutes);
  }
  return std::min(table.StartAt(position), start);
}

const Constraint& ConstraintOf(const Scheduler& scheduler, TaskIndex task) {
  const Network& network = scheduler.network();
  const Slot slot = network.slot_of[static_cast<std::size_t>(task)];
  return network.facts[static_cast<std::size_t>(slot)].constraints[0];
}

const std::vector<CalendarIndex>& CalendarsOf(const Scheduler& scheduler, TaskIndex task) {
  const Network& network = scheduler.network();
  const Slot slot = network.slot_of[static_cast<std::size_t>(task)];
  return network.table_calendars[network.facts[static_cast<std::size_t>(slot)].table];
}

}  // namespace nimbrel::engine
