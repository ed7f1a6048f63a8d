#include "engine/schedule/spans.h"

#include <algorithm>
#include <vector>

#include "engine/schedule/forward.h"

namespace nimbrel::engine {
namespace {

Instant Unpack(std::int32_t packed) {
  return Instant::FromPacked(packed);
}

struct Span {
  std::int32_t start = kNoCeiling;
  std::int32_t finish = kNoFloor;
};

/// The dates of levels of effort that may follow each other: what one needs of another is only
/// there when that one has been placed.
class Efforts {
 public:
  explicit Efforts(Network& network)
      : network_(network),
        is_placed_(static_cast<std::size_t>(network.effort_count - network.network_count), false) {}

  // Twice through all of them: the second time each knows where those stand that it is linked to.
  void PlaceEarly(Slot& slot) {
    for (int sweep = 0; sweep < 2; ++sweep) {
      for (slot = network_.network_count; slot < network_.effort_count; ++slot) {
        if (!network_.facts[slot].is_finished) {
          Span span = StretchOf(slot);
          const std::int32_t floor = network_.facts[slot].own_floor;
          span.start = span.start == kNoCeiling ? floor : std::max(span.start, floor);
          Stretch(slot, span);
        }
        is_placed_[Index(slot)] = true;
      }
    }
  }

  void PlaceLate(Slot& slot) {
    for (int sweep = 0; sweep < 2; ++sweep) {
      for (slot = network_.effort_count - 1; slot >= network_.network_count; --slot) {
        if (!network_.facts[slot].is_finished) {
          SetLate(slot);
        }
        is_placed_[Index(slot)] = true;
      }
    }
  }

 private:
  std::size_t Index(Slot slot) const {
    return static_cast<std::size_t>(slot - network_.network_count);
  }
  bool IsKnown(Slot other) const {
    return other < network_.network_count || is_placed_[Index(other)];
  }

  Span StretchOf(Slot slot);
  void Stretch(Slot slot, Span span);
  void SetLate(Slot slot);

  Network& network_;
  std::vector<bool> is_placed_;
};

/// The moments between which a level of effort stretches: from the first that its predecessors let
/// it start to the last that keeps it to its successors, or to predecessors that it must outlast.
/// Only where no predecessor says when to start do successors that start with it.
Span Efforts::StretchOf(Slot slot) {
  Span span;
  std::int32_t start_with_successor = kNoCeiling;
  for (const SpanLink& link : network_.span_links[slot - network_.network_count]) {
    if (!IsKnown(link.other)) {
      continue;
    }
    const bool other_finish = link.other_comes_first ? link.from_finish : link.to_finish;
    const std::int32_t date = network_.early[2 * link.other + (other_finish ? 1 : 0)];
    if (link.other_comes_first) {
      const std::int32_t end = LagEnd(network_, date, link.lag);
      if (link.to_finish) {
        span.finish = std::max(span.finish, end);
      } else {
        span.start = std::min(span.start, end);
      }
    } else {
      const std::int32_t begin = LagBegin(network_, date, link.lag);
      if (link.from_finish) {
        span.finish = std::max(span.finish, begin);
      } else {
        start_with_successor = std::min(start_with_successor, begin);
      }
    }
  }
  if (span.start == kNoCeiling) {
    span.start = start_with_successor;
  }
  return span;
}

/// Puts a level of effort into its own working time; without a link that says how long it is, it
/// has its own duration.
void Efforts::Stretch(Slot slot, Span span) {
  WorkTable& table = network_.TableOf(slot);
  const std::int32_t start = table.Position(Unpack(span.start));
  const std::int32_t finish = span.finish == kNoFloor
                                  ? start + table.CapMinutes(network_.remaining[slot])
                                  : table.Position(Unpack(span.finish));
  network_.early[StartOf(slot)] = table.StartAt(start).packed();
  network_.early[FinishOf(slot)] =
      finish > start ? table.FinishAt(finish).packed() : network_.early[StartOf(slot)];
}

/// Late dates of a level of effort: as long as it is early, and as late as the plan's finish and
/// its successors let it be. Those it comes after say nothing of that.
void Efforts::SetLate(Slot slot) {
  WorkTable& table = network_.TableOf(slot);
  const std::int32_t early_start = table.Position(Unpack(network_.early[StartOf(slot)]));
  const std::int32_t early_finish = table.Position(Unpack(network_.early[FinishOf(slot)]));
  const std::int32_t minutes = early_finish - early_start;
  std::int32_t finish =
      table.Position(network_.options.must_finish.IsAbsent() ? FinishOfPlan(network_)
                                                             : network_.options.must_finish);
  if (network_.options.must_finish.IsAbsent()) {
    finish = std::max(finish, early_finish);  // nor does the plan's finish wait for it
  }
  for (const SpanLink& link : network_.span_links[slot - network_.network_count]) {
    const bool has_late_dates = link.other < network_.open_count ||
                                (link.other >= network_.network_count && IsKnown(link.other) &&
                                 !network_.facts[link.other].is_finished);
    if (link.other_comes_first || !has_late_dates) {
      continue;
    }
    const std::int32_t date = network_.late[2 * link.other + (link.to_finish ? 1 : 0)];
    const std::int32_t latest = table.Position(Unpack(LagBegin(network_, date, link.lag)));
    finish = std::min(finish, link.from_finish ? latest : latest + minutes);
  }
  network_.total_float[slot] = finish - early_finish;
  const Instant start = table.StartAt(finish - minutes);
  network_.late[StartOf(slot)] = start.packed();
  network_.late[FinishOf(slot)] = (minutes > 0 ? table.FinishAt(finish) : start).packed();
}

/// The dates of a summary are those of the tasks below it, of levels of effort too.
Span SpanOfMembers(const Network& network, Slot slot, const std::vector<std::int32_t>& dates,
                   bool unfinished_only) {
  Span span;
  for (const Slot member : network.span_members[slot - network.effort_count]) {
    if (unfinished_only && network.facts[member].is_finished) {
      continue;
    }
    span.start = std::min(span.start, dates[StartOf(member)]);
    span.finish = std::max(span.finish, dates[FinishOf(member)]);
  }
  return span;
}

/// Float of a span, whose length may differ early and late.
std::int32_t SpanFloat(Network& network, Slot slot, Span early, Span late) {
  WorkTable& table = network.TableOf(slot);
  const std::int32_t on_start =
      table.Position(Unpack(late.start)) - table.Position(Unpack(early.start));
  const std::int32_t on_finish =
      table.Position(Unpack(late.finish)) - table.Position(Unpack(early.finish));
  switch (network.options.total_float) {
    case FloatRule::kStart:
      return on_start;
    case FloatRule::kSmaller:
      return std::min(on_start, on_finish);
    case FloatRule::kFinish:
      break;
  }
  return on_finish;
}

}  // namespace

void FillEarlySpans(Network& network) {
  if (network.spans_are_current) {
    return;
  }
  Slot slot = network.network_count;
  try {
    Efforts(network).PlaceEarly(slot);
  } catch (const OutsideCalendars& error) {
    throw OutsideError(network, slot, error);
  }
  for (; slot < network.task_count; ++slot) {
    const Span span = SpanOfMembers(network, slot, network.early, false);
    const bool is_empty = span.finish == kNoFloor;
    network.early[StartOf(slot)] = is_empty ? network.status.packed() : span.start;
    network.early[FinishOf(slot)] = is_empty ? network.status.packed() : span.finish;
  }
  network.spans_are_current = true;
}

void FillLateSpans(Network& network) {
  FillEarlySpans(network);
  Slot slot = network.network_count;
  try {
    Efforts(network).PlaceLate(slot);
    slot = network.effort_count;
    for (; slot < network.task_count; ++slot) {
      const Span late = SpanOfMembers(network, slot, network.late, true);
      if (late.finish == kNoFloor) {
        network.late[StartOf(slot)] = Instant().packed();
        network.late[FinishOf(slot)] = Instant().packed();
        network.total_float[slot] = 0;
        continue;
      }
      network.late[StartOf(slot)] = late.start;
      network.late[FinishOf(slot)] = late.finish;
      network.total_float[slot] =
          SpanFloat(network, slot, SpanOfMembers(network, slot, network.early, true), late);
    }
  } catch (const OutsideCalendars& error) {
    throw OutsideError(network, slot, error);
  }
}

}  // namespace nimbrel::engine
