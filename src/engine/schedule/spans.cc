#include "engine/schedule/spans.h"

#include <algorithm>

namespace nimbrel::engine {
namespace {

Instant Unpack(std::int32_t packed) {
  return Instant::FromPacked(packed);
}

struct Span {
  std::int32_t start = kNoCeiling;
  std::int32_t finish = kNoFloor;
};

/// The moments between which a level of effort stretches: from the first that its predecessors let
/// it start to the last that keeps it to its successors, or to predecessors that it must outlast.
/// Only where no predecessor says when to start do successors that start with it. `dates` are early
/// or late ones.
Span StretchOf(Network& network, Slot slot, const std::vector<std::int32_t>& dates) {
  Span span;
  std::int32_t start_with_successor = kNoCeiling;
  for (const SpanLink& link : network.span_links[slot - network.network_count]) {
    const bool other_finish = link.other_comes_first ? link.from_finish : link.to_finish;
    // Finished tasks have no late dates: theirs do not change any more.
    const std::vector<std::int32_t>& known = network.IsOpen(link.other) ? dates : network.early;
    const std::int32_t date = known[2 * link.other + (other_finish ? 1 : 0)];
    if (link.other_comes_first) {
      const std::int32_t end = LagEnd(network, date, link.lag);
      if (link.to_finish) {
        span.finish = std::max(span.finish, end);
      } else {
        span.start = std::min(span.start, end);
      }
    } else {
      const std::int32_t begin = LagBegin(network, date, link.lag);
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
void PlaceEffort(Network& network, Slot slot, Span span, std::vector<std::int32_t>& dates) {
  if (span.start == kNoCeiling) {
    span.start = network.early[StartOf(slot)];
  }
  WorkTable& table = network.TableOf(slot);
  const std::int32_t start = table.Position(Unpack(span.start));
  const std::int32_t finish = span.finish == kNoFloor
                                  ? start + table.CapMinutes(network.remaining[slot])
                                  : table.Position(Unpack(span.finish));
  dates[StartOf(slot)] = table.StartAt(start).packed();
  dates[FinishOf(slot)] = finish > start ? table.FinishAt(finish).packed() : dates[StartOf(slot)];
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
    for (; slot < network.effort_count; ++slot) {
      if (network.facts[slot].is_finished) {
        continue;
      }
      Span span = StretchOf(network, slot, network.early);
      const std::int32_t floor = network.facts[slot].own_floor;
      span.start = span.start == kNoCeiling ? floor : std::max(span.start, floor);
      PlaceEffort(network, slot, span, network.early);
    }
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
    for (; slot < network.effort_count; ++slot) {
      if (network.facts[slot].is_finished) {
        continue;
      }
      PlaceEffort(network, slot, StretchOf(network, slot, network.late), network.late);
      network.total_float[slot] =
          SpanFloat(network, slot, {network.early[StartOf(slot)], network.early[FinishOf(slot)]},
                    {network.late[StartOf(slot)], network.late[FinishOf(slot)]});
    }
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
