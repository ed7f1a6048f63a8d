#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "engine/calendar/work_calendar.h"
#include "engine/calendar/work_table.h"
#include "engine/plan/plan.h"
#include "engine/schedule/scheduler.h"
#include "engine/schedule/uid_index.h"

namespace nimbrel::engine {

/// Where a task stands in a Network. Unfinished tasks come first, in topological order; then the
/// finished ones; then levels of effort; then summaries.
using Slot = std::int32_t;

/// Bounds that bind nothing, as packed moments.
inline constexpr std::int32_t kNoFloor = std::numeric_limits<std::int32_t>::min();
inline constexpr std::int32_t kNoCeiling = std::numeric_limits<std::int32_t>::max();

/// Index of a date in Network::early: of a task's start or finish.
constexpr std::int32_t StartOf(Slot slot) {
  return 2 * slot;
}
constexpr std::int32_t FinishOf(Slot slot) {
  return 2 * slot + 1;
}

/// What the forward pass reads of an unfinished task, packed to keep the pass in the cache.
struct Node {
  std::int32_t floor = kNoFloor;  // no start before this packed moment
  std::int32_t minutes = 0;       // of work that remain
  std::int32_t first_ref = 0;     // in Network::start_refs; the next node's is the end
  std::uint16_t table = 0;        // in Network::tables
  bool is_general : 1 = false;    // has more to it than `floor` and the dates in start_refs
  bool is_mandatory : 1 = false;  // its links do not hold
  bool has_end : 1 = false;       // is expected to finish at a date, or held back to one
  bool is_milestone : 1 = false;  // never has work
};

/// A lag to walk: on one of Network::lag_tables, or around the clock.
struct Lag {
  static constexpr std::int32_t kAroundTheClock = -1;
  std::int32_t minutes = 0;
  std::int32_t table = kAroundTheClock;
};

/// A link as its successor sees it.
struct InLink {
  std::int32_t date = 0;  // of the predecessor, in Network::early
  Lag lag;
  bool to_finish = false;
  std::int32_t order = 0;  // among the plan's links

  Slot predecessor() const { return date / 2; }
};

/// A link as its predecessor sees it.
struct OutLink {
  Slot successor = 0;
  Lag lag;
  bool from_finish = false;
  bool to_finish = false;
};

/// A link of a level of effort.
struct SpanLink {
  Slot other = 0;
  Lag lag;
  bool other_comes_first = false;  // it is the predecessor
  bool from_finish = false;        // of the predecessor
  bool to_finish = false;          // of the successor
};

/// What seldom changes about a task.
struct TaskFacts {
  TaskKind kind = TaskKind::kTask;
  bool is_started = false;
  bool is_finished = false;
  bool is_open_end = false;  // has no successor at all
  std::uint16_t table = 0;
  Constraint constraints[2];
  std::int32_t own_floor = kNoFloor;  // the status date, or when suspended work resumes
  // Of links from and to actual dates, which never change.
  std::int32_t link_floor = kNoFloor;
  std::int32_t link_finish_floor = kNoFloor;
  std::int32_t link_ceiling = kNoCeiling;
  std::int32_t link_finish_ceiling = kNoCeiling;
  std::int32_t expected_finish = kNoCeiling;
  // Moments after which a task may not start and finish, whatever holds it, if the plan says so.
  std::int32_t start_ceiling = kNoCeiling;
  std::int32_t finish_ceiling = kNoCeiling;

  bool IsHeldBack() const { return start_ceiling != kNoCeiling || finish_ceiling != kNoCeiling; }
};

/// Lists of different lengths, one after the other.
template <class Item>
struct Lists {
  std::vector<std::int32_t> first;  // of each list in `items`, and the end of the last
  std::vector<Item> items;

  struct Range {
    const Item* first;
    const Item* last;
    const Item* begin() const { return first; }
    const Item* end() const { return last; }
    bool empty() const { return first == last; }
  };
  Range operator[](std::int32_t list) const {
    return {items.data() + first[list], items.data() + first[list + 1]};
  }
};

/// A plan compiled for scheduling, with the state of its passes. The passes are in forward.h,
/// backward.h and spans.h.
struct Network {
  Network() = default;
  Network(const Network&) = delete;  // the tables point to the calendars
  Network& operator=(const Network&) = delete;
  Network(Network&&) = default;
  Network& operator=(Network&&) = default;

  // Sizes: unfinished tasks; those and finished ones; those and levels of effort; all.
  Slot open_count = 0;
  Slot network_count = 0;
  Slot effort_count = 0;
  Slot task_count = 0;

  // Identity. A TaskIndex follows the plan's order.
  std::vector<Uid> uids;                 // by TaskIndex
  std::string labels;                    // of all tasks, one after the other
  std::vector<std::size_t> label_begin;  // of each, by TaskIndex, and the end of the last
  UidIndex index_of;
  std::vector<Slot> slot_of;        // by TaskIndex
  std::vector<TaskIndex> index_at;  // by slot
  std::vector<std::string> warnings;

  // Calendars. Tables refer to calendars, which therefore stay where they are.
  std::vector<WorkCalendar> calendars;                      // as in the plan
  std::vector<WorkTable> tables;                            // one for each combination in use
  std::vector<std::vector<CalendarIndex>> table_calendars;  // own first, then those of its risks
  std::vector<WorkTable> lag_tables;                        // for calendars that lags run on
  Lists<Slot> table_tasks;                                  // unfinished tasks of each table

  // Structure, by slot.
  std::vector<TaskFacts> facts;
  std::vector<std::int32_t> remaining;     // minutes, as they were set
  std::vector<Node> nodes;                 // of unfinished tasks, and one more
  std::vector<std::int32_t> finish_floor;  // of unfinished tasks
  std::vector<std::int32_t> start_refs;    // dates before which a task cannot start
  Lists<InLink> other_links;               // the links into unfinished tasks not in start_refs
  Lists<InLink> in_links;                  // all links into unfinished tasks, in the plan's order
  Lists<OutLink> out_links;                // of unfinished tasks
  Lists<SpanLink> span_links;              // of levels of effort, from slot network_count on
  Lists<Slot> span_members;                // of summaries, from slot effort_count on

  ScheduleOptions options;
  Instant status;
  std::int32_t latest_actual = kNoFloor;  // latest finish among finished tasks
  std::int32_t late_tasks = 0;            // tasks to be scheduled as late as possible

  // State of the passes, by slot: start and finish, packed.
  std::vector<std::int32_t> early;
  std::vector<std::int32_t> late;
  std::vector<std::int32_t> total_float;
  std::vector<std::int32_t> free_float;
  std::vector<std::uint64_t> dirty;   // unfinished tasks that changed since the last pass
  std::vector<bool> on_longest_path;  // by slot, where that is what is critical
  bool is_scheduled = false;          // `early` is that of a completed pass
  bool spans_are_current = false;
  std::int32_t finish = kNoFloor;  // kNoFloor: to be found again

  WorkTable& TableOf(Slot slot) { return tables[facts[slot].table]; }
  bool IsOpen(Slot slot) const { return slot < open_count; }
  void MarkDirty(Slot slot) { dirty[slot >> 6] |= std::uint64_t{1} << (slot & 63); }
  /// "Task A1000 (Excavate)".
  std::string LabelOf(Slot slot) const {
    const auto task = static_cast<std::size_t>(index_at[slot]);
    return labels.substr(label_begin[task], label_begin[task + 1] - label_begin[task]);
  }
};

/// Compiles the plan. Raises SchedulingError as the constructor of Scheduler does.
Network CompileNetwork(const Plan& plan, const Scheduler::Participates& participates);

/// Whether the task is moved to the latest dates that delay no other task.
bool IsAsLateAsPossible(const TaskFacts& facts);

/// Works out what the constraints of an unfinished task mean for the forward pass.
void ApplyConstraints(Network& network, Slot slot);

/// The error for a task whose dates leave what calendars cover.
SchedulingError OutsideError(const Network& network, Slot slot, const OutsideCalendars& error);

/// The end of a lag that begins at a packed moment: the first moment at which it has run off.
std::int32_t LagEnd(Network& network, std::int32_t moment, Lag lag);
/// The last moment at which a lag may begin that is to have run off at a packed moment.
std::int32_t LagBegin(Network& network, std::int32_t moment, Lag lag);

}  // namespace nimbrel::engine
