#include "engine/schedule/scheduler.h"

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <utility>

#include "engine/schedule/backward.h"
#include "engine/schedule/forward.h"
#include "engine/schedule/network.h"
#include "engine/schedule/spans.h"

namespace nimbrel::engine {

struct Scheduler::Compiled {
  Network network;
  std::vector<std::uint64_t> on_path;  // scratch of CountDriving, by slot

  Slot SlotOf(TaskIndex task) const { return network.slot_of[task]; }

  /// Visits the unfinished tasks that are on a driving path to the plan's finish, from the last one
  /// back, by one sweep over the forward pass.
  template <class Visit>
  void VisitDriving(const Visit& visit) {
    const std::int32_t finish = FinishOfPlan(network).packed();
    for (Slot slot = 0; slot < network.open_count; ++slot) {
      if (network.early[FinishOf(slot)] == finish) {
        on_path[slot >> 6] |= std::uint64_t{1} << (slot & 63);
      }
    }
    // Predecessors come earlier in the order, so that one sweep back meets each task once.
    for (auto word = static_cast<std::int32_t>(on_path.size()) - 1; word >= 0; --word) {
      while (on_path[word] != 0) {
        const std::int32_t bit = 63 - std::countl_zero(on_path[word]);
        const Slot slot = word * 64 + bit;
        on_path[word] &= ~(std::uint64_t{1} << bit);
        visit(slot);
        for (const InLink& link : network.in_links[slot]) {
          if (IsDriving(network, slot, link)) {
            const Slot from = link.predecessor();
            on_path[from >> 6] |= std::uint64_t{1} << (from & 63);
          }
        }
      }
    }
  }

  /// The slot, with its early dates up to date.
  Slot Current(TaskIndex task) {
    const Slot slot = SlotOf(task);
    if (slot >= network.network_count) {
      FillEarlySpans(network);
    }
    return slot;
  }
};

Scheduler::Scheduler(const Plan& plan, const Participates& participates)
    : compiled_(std::make_unique<Compiled>()) {
  compiled_->network = CompileNetwork(plan, participates);
  compiled_->on_path.assign(compiled_->network.dirty.size(), 0);
}

Scheduler::~Scheduler() = default;
Scheduler::Scheduler(Scheduler&&) noexcept = default;
Scheduler& Scheduler::operator=(Scheduler&&) noexcept = default;

std::int32_t Scheduler::task_count() const {
  return compiled_->network.task_count;
}

TaskIndex Scheduler::IndexOf(Uid task) const {
  return compiled_->network.index_of.Find(task);
}

Uid Scheduler::TaskAt(TaskIndex task) const {
  return compiled_->network.uids[task];
}

const std::vector<std::string>& Scheduler::warnings() const {
  return compiled_->network.warnings;
}

void Scheduler::SetRemaining(TaskIndex task, std::int32_t minutes) {
  Network& network = compiled_->network;
  const Slot slot = compiled_->SlotOf(task);
  minutes = std::max(minutes, 0);
  if (!network.IsOpen(slot) || network.nodes[slot].is_milestone ||
      network.remaining[slot] == minutes) {
    return;
  }
  network.remaining[slot] = minutes;
  network.nodes[slot].minutes =
      minutes <= WorkTable::kAnyMinutes ? minutes : network.TableOf(slot).CapMinutes(minutes);
  network.MarkDirty(slot);
}

std::int32_t Scheduler::remaining(TaskIndex task) const {
  return compiled_->network.remaining[compiled_->SlotOf(task)];
}

void Scheduler::SetConstraint(TaskIndex task, const Constraint& constraint) {
  Network& network = compiled_->network;
  const Slot slot = compiled_->SlotOf(task);
  TaskFacts& facts = network.facts[slot];
  if (!network.IsOpen(slot) || facts.constraints[0] == constraint) {
    return;
  }
  const bool was_late = IsAsLateAsPossible(facts);
  facts.constraints[0] = constraint;
  const bool is_late = IsAsLateAsPossible(facts);
  network.late_tasks += (is_late ? 1 : 0) - (was_late ? 1 : 0);
  if (was_late && !is_late) {
    // Where it stands now says nothing of where its predecessors hold it.
    network.is_scheduled = false;
  }
  ApplyConstraints(network, slot);
  network.MarkDirty(slot);
}

void Scheduler::TakeDays(CalendarIndex calendar, std::int32_t first, std::int32_t last) {
  compiled_->network.calendars[calendar].TakeDays(first, last);
}

void Scheduler::GiveDays(CalendarIndex calendar, std::int32_t first, std::int32_t last) {
  compiled_->network.calendars[calendar].GiveDays(first, last);
}

std::int32_t Scheduler::WorkedDays(CalendarIndex calendar, std::int32_t first,
                                   std::int32_t last) const {
  return compiled_->network.calendars[calendar].worked().Count(first, last);
}

bool Scheduler::IsWorkedDay(CalendarIndex calendar, std::int32_t day) const {
  return compiled_->network.calendars[calendar].worked().Test(day);
}

void Scheduler::ScheduleForward() {
  RunForward(compiled_->network);
}

void Scheduler::ScheduleChanged() {
  RunChanged(compiled_->network);
}

void Scheduler::ScheduleBackward() {
  Network& network = compiled_->network;
  RunBackward(network);
  if (network.options.critical_by_longest_path) {
    network.on_longest_path.assign(static_cast<std::size_t>(network.task_count), false);
    compiled_->VisitDriving(
        [&network](Slot slot) { network.on_longest_path[static_cast<std::size_t>(slot)] = true; });
  }
}

Instant Scheduler::early_start(TaskIndex task) const {
  const Slot slot = compiled_->Current(task);
  return Instant::FromPacked(compiled_->network.early[StartOf(slot)]);
}

Instant Scheduler::early_finish(TaskIndex task) const {
  const Slot slot = compiled_->Current(task);
  return Instant::FromPacked(compiled_->network.early[FinishOf(slot)]);
}

void Scheduler::CopyEarlyDates(std::span<Instant> starts, std::span<Instant> finishes) const {
  Network& network = compiled_->network;
  if (network.task_count > network.network_count) {
    FillEarlySpans(network);
  }
  const std::int32_t* const early = network.early.data();
  for (TaskIndex task = 0; task < network.task_count; ++task) {
    const Slot slot = network.slot_of[task];
    starts[static_cast<std::size_t>(task)] = Instant::FromPacked(early[StartOf(slot)]);
    finishes[static_cast<std::size_t>(task)] = Instant::FromPacked(early[FinishOf(slot)]);
  }
}

Instant Scheduler::late_start(TaskIndex task) const {
  return Instant::FromPacked(compiled_->network.late[StartOf(compiled_->SlotOf(task))]);
}

Instant Scheduler::late_finish(TaskIndex task) const {
  return Instant::FromPacked(compiled_->network.late[FinishOf(compiled_->SlotOf(task))]);
}

std::int32_t Scheduler::total_float(TaskIndex task) const {
  return compiled_->network.total_float[compiled_->SlotOf(task)];
}

std::int32_t Scheduler::free_float(TaskIndex task) const {
  return compiled_->network.free_float[compiled_->SlotOf(task)];
}

bool Scheduler::is_critical(TaskIndex task) const {
  const Network& network = compiled_->network;
  if (late_finish(task).IsAbsent()) {
    return false;
  }
  return network.options.critical_by_longest_path
             ? bool{network.on_longest_path[static_cast<std::size_t>(compiled_->SlotOf(task))]}
             : total_float(task) <= network.options.critical_float_minutes;
}

Instant Scheduler::finish() const {
  return FinishOfPlan(compiled_->network);
}

std::vector<TaskIndex> Scheduler::DrivingPredecessors(TaskIndex task) const {
  Network& network = compiled_->network;
  const Slot slot = compiled_->SlotOf(task);
  std::vector<TaskIndex> driving;
  if (!network.IsOpen(slot)) {
    return driving;
  }
  for (const InLink& link : network.in_links[slot]) {
    const TaskIndex predecessor = network.index_at[link.predecessor()];
    if (IsDriving(network, slot, link) &&
        std::find(driving.begin(), driving.end(), predecessor) == driving.end()) {
      driving.push_back(predecessor);
    }
  }
  return driving;
}

void Scheduler::CountDriving(std::vector<std::uint32_t>& on_path) const {
  const std::vector<TaskIndex>& index_at = compiled_->network.index_at;
  compiled_->VisitDriving([&](Slot slot) { ++on_path[index_at[slot]]; });
}

bool Scheduler::HasWorkOn(TaskIndex task, std::int32_t day) const {
  const Slot slot = compiled_->SlotOf(task);
  const Network& network = compiled_->network;
  return !network.IsOpen(slot) || network.nodes[slot].is_mandatory ||
         network.tables[network.nodes[slot].table].IsWorked(day);
}

Network& Scheduler::network() const {
  return compiled_->network;
}

Instant Scheduler::NextWorkStart(TaskIndex task, std::int32_t day) const {
  const Network& network = compiled_->network;
  const Slot slot = compiled_->SlotOf(task);
  const WorkTable& table = network.tables[network.facts[slot].table];
  for (std::int32_t next = std::max(day, kFirstCoveredDay); next <= kLastCoveredDay; ++next) {
    if (table.IsWorked(next)) {
      return {next, table.HoursOn(next).minute_at()[0]};
    }
  }
  throw SchedulingError(fmt::format("{} has no working time from {} on", network.LabelOf(slot),
                                    ToIsoText({day, 0}).substr(0, 10)));
}

}  // namespace nimbrel::engine
