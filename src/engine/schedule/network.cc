#include "engine/schedule/network.h"

#include <fmt/format.h>

#include <algorithm>

namespace nimbrel::engine {
namespace {

std::int32_t AddMinutes(std::int32_t moment, std::int32_t minutes) {
  const std::int64_t sum = Instant::FromPacked(moment).Minutes() + minutes;
  if (sum < std::int64_t{kFirstCoveredDay} * kMinutesPerDay) {
    throw OutsideCalendars(true);
  }
  if (sum > std::int64_t{kLastCoveredDay + 1} * kMinutesPerDay) {
    throw OutsideCalendars(false);
  }
  return Instant::FromMinutes(sum).packed();
}

bool IsMandatory(const Constraint& constraint, bool is_started) {
  // A started task has its start already: only what remains can still be held.
  return !constraint.date.IsAbsent() &&
         (constraint.type == ConstraintType::kMandatoryFinish ||
          (!is_started && (constraint.type == ConstraintType::kMandatoryStart ||
                           constraint.type == ConstraintType::kPlacedStart)));
}

bool HoldsStart(ConstraintType type) {
  return type == ConstraintType::kStartOn || type == ConstraintType::kStartNoEarlier ||
         type == ConstraintType::kMandatoryStart || type == ConstraintType::kPlacedStart;
}

bool HoldsFinish(ConstraintType type) {
  return type == ConstraintType::kFinishOn || type == ConstraintType::kFinishNoEarlier ||
         type == ConstraintType::kMandatoryFinish;
}

/// The moments up to which the primary constraint holds the early dates of a task that has not
/// started, where the plan says that it does.
void FindEarlyCeilings(const Network& network, TaskFacts& facts) {
  facts.start_ceiling = kNoCeiling;
  facts.finish_ceiling = kNoCeiling;
  const Constraint& constraint = facts.constraints[0];
  if (!network.options.no_later_holds_early || constraint.date.IsAbsent() || facts.is_started) {
    return;
  }
  if (constraint.type == ConstraintType::kStartNoLater) {
    facts.start_ceiling = constraint.date.packed();
  } else if (constraint.type == ConstraintType::kFinishNoLater) {
    facts.finish_ceiling = constraint.date.packed();
  }
}

}  // namespace

bool IsAsLateAsPossible(const TaskFacts& facts) {
  const auto is_late = [](const Constraint& constraint) {
    return constraint.type == ConstraintType::kAsLateAsPossible;
  };
  return !facts.is_started && (is_late(facts.constraints[0]) || is_late(facts.constraints[1]));
}

void ApplyConstraints(Network& network, Slot slot) {
  TaskFacts& facts = network.facts[slot];
  Node& node = network.nodes[slot];
  node.floor = facts.own_floor;
  std::int32_t finish_floor = kNoFloor;
  node.is_mandatory = IsMandatory(facts.constraints[0], facts.is_started) ||
                      IsMandatory(facts.constraints[1], facts.is_started);
  for (const Constraint& constraint : facts.constraints) {
    // Of the constraints of a task, those that override the links override the others too.
    if (constraint.date.IsAbsent() ||
        (node.is_mandatory && !IsMandatory(constraint, facts.is_started))) {
      continue;
    }
    if (HoldsStart(constraint.type)) {
      node.floor = std::max(node.floor, constraint.date.packed());
    } else if (HoldsFinish(constraint.type)) {
      finish_floor = std::max(finish_floor, constraint.date.packed());
    }
  }
  if (!node.is_mandatory) {
    node.floor = std::max(node.floor, facts.link_floor);
    finish_floor = std::max(finish_floor, facts.link_finish_floor);
  }
  // Nothing finishes before it starts, and a date that calendars do not reach cannot be converted.
  if (finish_floor <= node.floor) {
    finish_floor = kNoFloor;
  }
  network.finish_floor[slot] = finish_floor;
  FindEarlyCeilings(network, facts);
  node.has_end = facts.IsHeldBack() || facts.expected_finish != kNoCeiling;
  node.is_general = node.is_mandatory || node.has_end || finish_floor != kNoFloor ||
                    !network.tables[node.table].is_uniform() || !network.other_links[slot].empty();
}

SchedulingError OutsideError(const Network& network, Slot slot, const OutsideCalendars& error) {
  const WorkTable& table = network.tables[network.facts[slot].table];
  const std::int32_t day = error.is_before() ? table.first_day() : table.last_day();
  return SchedulingError(
      fmt::format("{} cannot be scheduled: its dates go {} {}, the {} day that its calendars cover",
                  network.LabelOf(slot), error.is_before() ? "before" : "beyond",
                  ToIsoText({day, 0}).substr(0, 10), error.is_before() ? "first" : "last"));
}

std::int32_t LagEnd(Network& network, std::int32_t moment, Lag lag) {
  if (lag.table == Lag::kAroundTheClock) {
    return lag.minutes == 0 ? moment : AddMinutes(moment, lag.minutes);
  }
  WorkTable& table = network.lag_tables[lag.table];
  return table.FinishAt(table.Position(Instant::FromPacked(moment)) + lag.minutes).packed();
}

std::int32_t LagBegin(Network& network, std::int32_t moment, Lag lag) {
  if (lag.table == Lag::kAroundTheClock) {
    return lag.minutes == 0 ? moment : AddMinutes(moment, -lag.minutes);
  }
  WorkTable& table = network.lag_tables[lag.table];
  return table.StartAt(table.Position(Instant::FromPacked(moment)) - lag.minutes).packed();
}

}  // namespace nimbrel::engine
