#include "engine/schedule/backward.h"

#include <algorithm>

#include "engine/schedule/forward.h"
#include "engine/schedule/spans.h"

namespace nimbrel::engine {
namespace {

/// The latest moments at which a task may start and may finish, packed.
struct Ceilings {
  std::int32_t start = kNoCeiling;
  std::int32_t finish = kNoCeiling;
};

Instant Unpack(std::int32_t packed) {
  return Instant::FromPacked(packed);
}

/// The latest moments that leave the successors of a task where they are: `limit_of` tells up to
/// when a predecessor may hold the start or the finish of a successor.
template <class LimitOf>
Ceilings CeilingsOfLinks(Network& network, Slot slot, const LimitOf& limit_of) {
  Ceilings ceilings;
  for (const OutLink& link : network.out_links[slot]) {
    const std::int32_t begin =
        LagBegin(network, limit_of(link.successor, link.to_finish), link.lag);
    std::int32_t& ceiling = link.from_finish ? ceilings.finish : ceilings.start;
    ceiling = std::min(ceiling, begin);
  }
  return ceilings;
}

/// As above, so that no early date of a successor moves.
Ceilings CeilingsOfEarlyDates(Network& network, Slot slot) {
  return CeilingsOfLinks(network, slot, [&network](Slot successor, bool to_finish) {
    return network.early[to_finish ? FinishOf(successor) : StartOf(successor)];
  });
}

/// Up to when the task's own constraints let it start and finish.
void AddConstraints(const Network& network, Slot slot, Ceilings& ceilings) {
  const TaskFacts& facts = network.facts[slot];
  for (const Constraint& constraint : facts.constraints) {
    if (constraint.date.IsAbsent()) {
      continue;
    }
    const std::int32_t date = constraint.date.packed();
    const bool limits_start = constraint.type == ConstraintType::kStartOn ||
                              constraint.type == ConstraintType::kStartNoLater;
    if (limits_start && !facts.is_started) {
      ceilings.start = std::min(ceilings.start, date);
    } else if (constraint.type == ConstraintType::kFinishOn ||
               constraint.type == ConstraintType::kFinishNoLater) {
      ceilings.finish = std::min(ceilings.finish, date);
    }
  }
}

/// Whether the late dates go by mandatory dates alone. A start at which a task was only placed says
/// nothing of how late it may come.
bool HasMandatoryLateDates(const Network& network, Slot slot) {
  const auto is_mandatory = [&network, slot](const Constraint& constraint) {
    return !constraint.date.IsAbsent() && (constraint.type == ConstraintType::kMandatoryFinish ||
                                           (constraint.type == ConstraintType::kMandatoryStart &&
                                            !network.facts[slot].is_started));
  };
  const TaskFacts& facts = network.facts[slot];
  return is_mandatory(facts.constraints[0]) || is_mandatory(facts.constraints[1]);
}

Ceilings MandatoryCeilings(const Network& network, Slot slot) {
  Ceilings ceilings;
  for (const Constraint& constraint : network.facts[slot].constraints) {
    if (constraint.date.IsAbsent()) {
      continue;
    }
    if (constraint.type == ConstraintType::kMandatoryStart && !network.facts[slot].is_started) {
      ceilings.start = std::min(ceilings.start, constraint.date.packed());
    } else if (constraint.type == ConstraintType::kMandatoryFinish) {
      ceilings.finish = std::min(ceilings.finish, constraint.date.packed());
    }
  }
  return ceilings;
}

/// The position at which the work of a task ends under its ceilings.
std::int32_t FinishPosition(WorkTable& table, std::int32_t minutes, Ceilings ceilings) {
  std::int32_t finish = kNoCeiling;
  if (ceilings.finish != kNoCeiling) {
    finish = table.Position(Unpack(ceilings.finish));
  }
  if (ceilings.start != kNoCeiling) {
    finish = std::min(finish, table.Position(Unpack(ceilings.start)) + minutes);
  }
  return finish;
}

/// The latest moment of a task without work that does not come after `ceiling`.
Instant LatestWithoutWork(WorkTable& table, Instant ceiling, TaskKind kind) {
  const std::int32_t position = table.Position(ceiling);
  const Instant start = table.StartAt(position);
  return kind == TaskKind::kStartMilestone || IsSameMoment(start, ceiling)
             ? start
             : table.FinishAt(position);
}

class LatePass {
 public:
  explicit LatePass(Network& network)
      : network_(network),
        plan_finish_(network.options.must_finish.IsAbsent() ? FinishOfPlan(network)
                                                            : network.options.must_finish) {}

  void Run() {
    try {
      for (slot_ = network_.open_count - 1; slot_ >= 0; --slot_) {
        FindLateDates();
        FindFreeFloat();
      }
    } catch (const OutsideCalendars& error) {
      throw OutsideError(network_, slot_, error);
    }
  }

 private:
  void FindLateDates() {
    Ceilings ceilings;
    if (network_.nodes[slot_].is_mandatory && HasMandatoryLateDates(network_, slot_)) {
      ceilings = MandatoryCeilings(network_, slot_);
    } else {
      ceilings = CeilingsOfLinks(network_, slot_, [this](Slot successor, bool to_finish) {
        return network_.late[to_finish ? FinishOf(successor) : StartOf(successor)];
      });
      const TaskFacts& facts = network_.facts[slot_];
      ceilings.start = std::min(ceilings.start, facts.link_ceiling);
      ceilings.finish =
          std::min({ceilings.finish, facts.link_finish_ceiling, plan_finish_.packed()});
      if (network_.options.open_ends_critical && facts.is_open_end) {
        ceilings.finish = std::min(ceilings.finish, network_.early[FinishOf(slot_)]);
      }
      AddConstraints(network_, slot_, ceilings);
      if (network_.nodes[slot_].is_mandatory) {
        ceilings.start = kNoCeiling;  // where the task was placed: links from there let it be
      }
    }
    WorkTable& table = network_.TableOf(slot_);
    const std::int32_t minutes = network_.nodes[slot_].minutes;
    const std::int32_t early_finish = table.Position(Unpack(network_.early[FinishOf(slot_)]));
    const std::int32_t finish = FinishPosition(table, minutes, ceilings);
    // What remains is the same amount of work early and late, so that the float counted on the
    // start and on the finish are one.
    network_.total_float[slot_] = finish - early_finish;
    if (minutes > 0) {
      SetLate(table.StartAt(finish - minutes), table.FinishAt(finish));
      return;
    }
    // Of the two moments of one position, the one that the early date has.
    const Instant moment = finish == early_finish ? Unpack(network_.early[FinishOf(slot_)])
                           : network_.facts[slot_].kind == TaskKind::kStartMilestone
                               ? table.StartAt(finish)
                               : table.FinishAt(finish);
    SetLate(moment, moment);
  }

  void SetLate(Instant start, Instant finish) {
    network_.late[StartOf(slot_)] = start.packed();
    network_.late[FinishOf(slot_)] = finish.packed();
  }

  void FindFreeFloat() {
    Ceilings ceilings = CeilingsOfEarlyDates(network_, slot_);
    if (network_.out_links[slot_].empty()) {
      ceilings.finish = plan_finish_.packed();
    }
    WorkTable& table = network_.TableOf(slot_);
    const std::int32_t latest = FinishPosition(table, network_.nodes[slot_].minutes, ceilings);
    network_.free_float[slot_] =
        std::max(0, latest - table.Position(Unpack(network_.early[FinishOf(slot_)])));
  }

  Network& network_;
  Instant plan_finish_;
  Slot slot_ = 0;
};

}  // namespace

LateDates LatestWithoutDelay(Network& network, Slot slot) {
  Ceilings ceilings = CeilingsOfEarlyDates(network, slot);
  ceilings.finish = std::min(ceilings.finish, FinishOfPlan(network).packed());
  AddConstraints(network, slot, ceilings);
  WorkTable& table = network.TableOf(slot);
  const std::int32_t minutes = network.nodes[slot].minutes;
  // A start that lies in a time without work would move on to where work goes on, which is too
  // late: then it is the minute of work before.
  if (minutes == 0) {
    const Instant ceiling = Unpack(std::min(ceilings.start, ceilings.finish));
    Instant latest = LatestWithoutWork(table, ceiling, network.facts[slot].kind);
    if (latest.Minutes() > ceiling.Minutes()) {
      latest = table.StartAt(table.Position(latest) - 1);
    }
    return {latest, latest};
  }
  std::int32_t finish = FinishPosition(table, minutes, ceilings);
  if (ceilings.start != kNoCeiling &&
      table.StartAt(finish - minutes).Minutes() > Unpack(ceilings.start).Minutes()) {
    --finish;
  }
  return {table.StartAt(finish - minutes), table.FinishAt(finish)};
}

void RunBackward(Network& network) {
  LatePass(network).Run();
  FillLateSpans(network);
}

}  // namespace nimbrel::engine
