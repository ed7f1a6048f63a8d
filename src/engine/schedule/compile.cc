#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <compare>
#include <cstdint>
#include <numeric>

#include "engine/schedule/calendar_set.h"
#include "engine/schedule/network.h"
#include "engine/schedule/topology.h"

namespace nimbrel::engine {
namespace {

/// Bounds the time and the memory that links between large summaries take.
constexpr std::size_t kMostSummaryEdges = 10'000'000;

/// Groups items by a key from 0 to `count` - 1, keeping their order.
template <class Item, class Source, class KeyOf, class Make>
Lists<Item> GroupBy(std::int32_t count, const std::vector<Source>& sources, const KeyOf& key_of,
                    const Make& make) {
  Lists<Item> lists;
  lists.first.assign(static_cast<std::size_t>(count) + 1, 0);
  for (const Source& source : sources) {
    ++lists.first[static_cast<std::size_t>(key_of(source)) + 1];
  }
  std::partial_sum(lists.first.begin(), lists.first.end(), lists.first.begin());
  lists.items.resize(sources.size());
  std::vector<std::int32_t> next(lists.first.begin(), lists.first.end() - 1);
  for (const Source& source : sources) {
    lists.items[static_cast<std::size_t>(next[static_cast<std::size_t>(key_of(source))]++)] =
        make(source);
  }
  return lists;
}

class Compiler {
 public:
  Compiler(const Plan& plan, const Scheduler::Participates& participates)
      : plan_(plan), calendars_(plan, FirstTableDay(plan), network_) {
    const std::size_t count = plan.tasks().size();
    network_.index_of = UidIndex(plan.next_uid(), count);
    network_.uids.reserve(count);
    network_.label_begin.reserve(count + 1);
    network_.labels.reserve(32 * count);
    network_.label_begin.push_back(0);
    tasks_.reserve(count);
    for (const Task& task : plan.tasks()) {
      if (participates(task)) {
        network_.index_of.Add(task.uid, static_cast<TaskIndex>(tasks_.size()));
        network_.uids.push_back(task.uid);
        AddLabel(task);
        tasks_.push_back(&task);
      }
    }
  }

  Network Compile() {
    network_.options = plan_.schedule;
    network_.status = plan_.StatusDate();
    FindMembers();
    FindEdges();
    AssignSlots();
    MakeFacts();
    MakeLinks();
    MakeNodes();
    MakeSpans();
    return std::move(network_);
  }

 private:
  const Task& TaskAt(TaskIndex index) const { return *tasks_[static_cast<std::size_t>(index)]; }
  Slot SlotOf(TaskIndex index) const { return network_.slot_of[static_cast<std::size_t>(index)]; }
  TaskIndex IndexOf(Uid uid) const { return network_.index_of.Find(uid); }
  void AddLabel(const Task& task) {
    network_.labels.append("Task ").append(task.id);
    if (!task.description.empty()) {
      network_.labels.append(" (").append(task.description).append(")");
    }
    network_.label_begin.push_back(network_.labels.size());
  }
  bool IsSpan(TaskIndex index) const {
    return TaskAt(index).kind == TaskKind::kSummary ||
           TaskAt(index).kind == TaskKind::kLevelOfEffort;
  }
  /// Whether what remains of the task goes its own way, whatever its predecessors do.
  bool IgnoresLinks(const Task& task) const {
    return task.IsFinished() ||
           (task.IsStarted() && plan_.schedule.progress != ProgressRule::kRetainedLogic);
  }
  static bool IsFromFinish(const Edge& edge) {
    return edge.link->type == LinkType::kFinishToStart ||
           edge.link->type == LinkType::kFinishToFinish;
  }
  static bool IsToFinish(const Edge& edge) {
    return edge.link->type == LinkType::kFinishToFinish ||
           edge.link->type == LinkType::kStartToFinish;
  }
  Lag LagOf(const Edge& edge) {
    return calendars_.LagOf(*edge.link, TaskAt(edge.from), TaskAt(edge.to));
  }

  void FindMembers();
  std::vector<TaskIndex> EndsOf(TaskIndex index) const;
  void FindEdges();
  void AddSummaryEdges(TaskIndex from, TaskIndex to, const Link& link, std::int32_t order);
  void AddEdge(TaskIndex from, TaskIndex to, const Link& link, std::int32_t order);
  void AssignSlots();
  void MakeFacts();
  TaskFacts FactsOf(const Task& task);
  void MakeLinks();
  std::int32_t OwnFloorOf(const Task& task, std::uint16_t table);
  void HoldFromActualDate(const Edge& edge);
  void HoldByActualDate(const Edge& edge);
  void MakeNodes();
  void MakeSpans();

  const Plan& plan_;
  Network network_;
  CalendarSet calendars_;
  std::vector<const Task*> tasks_;               // by TaskIndex
  std::vector<std::vector<TaskIndex>> members_;  // of summaries, all levels down; by TaskIndex
  std::vector<Edge> edges_;                      // between ordinary tasks
  std::vector<Edge> effort_edges_;               // with a level of effort at one end
  std::vector<Edge> open_edges_;                 // those of edges_ that can change dates
  std::size_t summary_edges_ = 0;                // that links of summaries stand for
};

void Compiler::FindMembers() {
  const std::vector<Task>& all = plan_.tasks();
  UidIndex position_of(plan_.next_uid(), all.size());
  for (std::size_t i = 0; i < all.size(); ++i) {
    position_of.Add(all[i].uid, static_cast<std::int32_t>(i));
  }
  members_.resize(tasks_.size());
  for (std::size_t i = 0; i < tasks_.size(); ++i) {
    if (tasks_[i]->kind == TaskKind::kSummary) {
      continue;
    }
    std::size_t depth = 0;
    for (Uid parent = tasks_[i]->parent; parent != 0;) {
      const std::int32_t position = position_of.Find(parent);
      if (position < 0) {
        break;
      }
      const Task& summary = all[static_cast<std::size_t>(position)];
      if (++depth > all.size()) {
        throw SchedulingError(fmt::format("Task {} is its own summary", summary.id));
      }
      if (const TaskIndex index = IndexOf(parent); index >= 0) {
        members_[static_cast<std::size_t>(index)].push_back(static_cast<TaskIndex>(i));
      }
      parent = summary.parent;
    }
  }
}

/// The tasks for which a link of this task stands: itself, or all below a summary.
std::vector<TaskIndex> Compiler::EndsOf(TaskIndex index) const {
  if (TaskAt(index).kind != TaskKind::kSummary) {
    return {index};
  }
  std::vector<TaskIndex> ends;
  const std::vector<TaskIndex>& members = members_[static_cast<std::size_t>(index)];
  std::copy_if(members.begin(), members.end(), std::back_inserter(ends),
               [this](TaskIndex member) { return !IsSpan(member); });
  return ends;
}

void Compiler::FindEdges() {
  edges_.reserve(plan_.links.size());
  for (std::size_t i = 0; i < plan_.links.size(); ++i) {
    const Link& link = plan_.links[i];
    const TaskIndex from = IndexOf(link.predecessor);
    const TaskIndex to = IndexOf(link.successor);
    const auto order = static_cast<std::int32_t>(i);
    if (from < 0 || to < 0) {
      continue;
    }
    if (TaskAt(from).kind == TaskKind::kSummary || TaskAt(to).kind == TaskKind::kSummary) {
      AddSummaryEdges(from, to, link, order);
    } else {
      AddEdge(from, to, link, order);
    }
  }
}

void Compiler::AddSummaryEdges(TaskIndex from, TaskIndex to, const Link& link, std::int32_t order) {
  const std::vector<TaskIndex> from_ends = EndsOf(from);
  const std::vector<TaskIndex> to_ends = EndsOf(to);
  std::vector<bool> is_from(tasks_.size(), false);
  for (const TaskIndex end : from_ends) {
    is_from[static_cast<std::size_t>(end)] = true;
  }
  if (std::any_of(to_ends.begin(), to_ends.end(),
                  [&](TaskIndex end) { return is_from[static_cast<std::size_t>(end)]; })) {
    network_.warnings.push_back(
        fmt::format("The link from {} to {} joins a summary to a task below it and is left out",
                    TaskAt(from).id, TaskAt(to).id));
    return;
  }
  summary_edges_ += from_ends.size() * to_ends.size();
  if (summary_edges_ > kMostSummaryEdges) {
    throw SchedulingError(
        fmt::format("The links of summaries stand for more than {} links between the tasks below "
                    "them: the one from {} to {} is one too many",
                    kMostSummaryEdges, TaskAt(from).id, TaskAt(to).id));
  }
  for (const TaskIndex from_end : from_ends) {
    for (const TaskIndex to_end : to_ends) {
      AddEdge(from_end, to_end, link, order);
    }
  }
}

void Compiler::AddEdge(TaskIndex from, TaskIndex to, const Link& link, std::int32_t order) {
  if (IsSpan(from) || IsSpan(to)) {
    effort_edges_.push_back({from, to, &link, order});
  } else {
    edges_.push_back({from, to, &link, order});
  }
}

/// Puts the tasks in order. Tasks of one level do not wait for each other; among them, tasks that
/// look alike stand together, so that the pass over them runs smoothly.
void Compiler::AssignSlots() {
  const auto count = static_cast<std::int32_t>(tasks_.size());
  const std::vector<std::int32_t> levels =
      LevelsOf(count, edges_, [this](std::int32_t index) { return TaskAt(index).id; });
  std::vector<std::int32_t> predecessors(tasks_.size(), 0);
  std::vector<bool> has_lag(tasks_.size(), false);
  for (const Edge& edge : edges_) {
    ++predecessors[static_cast<std::size_t>(edge.to)];
    if (edge.link->lag_minutes != 0) {
      has_lag[static_cast<std::size_t>(edge.to)] = true;
    }
  }
  const auto group_of = [this](TaskIndex index) {
    const Task& task = TaskAt(index);
    return task.kind == TaskKind::kSummary         ? 3
           : task.kind == TaskKind::kLevelOfEffort ? 2
           : task.IsFinished()                     ? 1
                                                   : 0;
  };
  struct Key {
    std::uint64_t order = 0;  // group, level, lags, predecessors
    std::uint64_t last = 0;   // calendar, index
    auto operator<=>(const Key&) const = default;
  };
  std::vector<Key> keys;
  keys.reserve(tasks_.size());
  for (TaskIndex index = 0; index < count; ++index) {
    const auto i = static_cast<std::size_t>(index);
    const auto group = static_cast<std::uint64_t>(group_of(index));
    const auto level = static_cast<std::uint64_t>(levels[i]);
    const auto links = static_cast<std::uint64_t>(std::min(predecessors[i], (1 << 20) - 1));
    keys.push_back({group << 53 | level << 21 | (has_lag[i] ? 1U : 0U) << 20 | links,
                    static_cast<std::uint64_t>(TaskAt(index).calendar) << 32 |
                        static_cast<std::uint64_t>(index)});
  }
  std::sort(keys.begin(), keys.end());
  network_.index_at.reserve(keys.size());
  for (const Key& key : keys) {
    network_.index_at.push_back(static_cast<TaskIndex>(key.last & 0xFFFFFFFFU));
  }

  network_.slot_of.resize(tasks_.size());
  std::array<Slot, 4> sizes{};
  for (Slot slot = 0; slot < count; ++slot) {
    const TaskIndex index = network_.index_at[static_cast<std::size_t>(slot)];
    network_.slot_of[static_cast<std::size_t>(index)] = slot;
    ++sizes[static_cast<std::size_t>(group_of(index))];
  }
  network_.open_count = sizes[0];
  network_.network_count = sizes[0] + sizes[1];
  network_.effort_count = network_.network_count + sizes[2];
  network_.task_count = count;
}

TaskFacts Compiler::FactsOf(const Task& task) {
  TaskFacts facts;
  facts.kind = task.kind;
  facts.is_started = task.IsStarted();
  facts.is_finished = task.IsFinished();
  facts.is_open_end = true;
  facts.table = calendars_.TableFor(task, !facts.is_finished && task.kind != TaskKind::kSummary);
  facts.constraints[0] = task.constraint;
  facts.constraints[1] = task.second_constraint;
  // A range says how long the task takes, not when it ends.
  if (!task.expected_finish.IsAbsent() && !task.range && task.kind == TaskKind::kTask) {
    facts.expected_finish = task.expected_finish.packed();
  }
  facts.own_floor = plan_.StatusDate().packed();
  if (!plan_.schedule.remaining_from_data_date) {
    facts.own_floor = OwnFloorOf(task, facts.table);
  } else if (facts.is_started && !task.resumed.IsAbsent()) {
    facts.own_floor = std::max(facts.own_floor, task.resumed.packed());
  }
  return facts;
}

/// Where work may go on at the earliest in a plan whose data date holds nothing: where it is
/// resumed, else where the work that is done ends.
std::int32_t Compiler::OwnFloorOf(const Task& task, std::uint16_t table) {
  if (!task.IsStarted() || task.IsFinished() || task.kind == TaskKind::kSummary) {
    return (plan_.start.IsAbsent() ? plan_.StatusDate() : plan_.start).packed();
  }
  if (!task.resumed.IsAbsent()) {
    return task.resumed.packed();
  }
  WorkTable& hours = network_.tables[table];
  const std::int32_t done = std::max(task.original_minutes - task.remaining_minutes, 0);
  try {
    const std::int32_t position = hours.Position(task.actual_start) + hours.CapMinutes(done);
    return (done > 0 ? hours.FinishAt(position) : task.actual_start).packed();
  } catch (const OutsideCalendars&) {
    throw SchedulingError(fmt::format(
        "Task {} cannot be scheduled: its dates go beyond what its calendar covers", task.id));
  }
}

void Compiler::MakeFacts() {
  if (plan_.StatusDate().IsAbsent() && network_.open_count > 0) {
    throw SchedulingError("The plan has neither a start nor a data date");
  }
  const auto count = static_cast<std::size_t>(network_.task_count);
  network_.early.assign(2 * count, plan_.StatusDate().packed());
  network_.late.assign(2 * count, Instant().packed());
  network_.total_float.assign(count, 0);
  network_.free_float.assign(count, 0);
  network_.facts.reserve(count);
  for (Slot slot = 0; slot < network_.task_count; ++slot) {
    const Task& task = TaskAt(network_.index_at[static_cast<std::size_t>(slot)]);
    network_.facts.push_back(FactsOf(task));
    const bool has_work = !task.IsFinished() &&
                          (task.kind == TaskKind::kTask || task.kind == TaskKind::kLevelOfEffort);
    network_.remaining.push_back(has_work ? std::max(plan_.LikelyMinutes(task), 0) : 0);
    if (task.IsFinished() && task.kind != TaskKind::kSummary) {
      network_.early[StartOf(slot)] =
          (task.IsStarted() ? task.actual_start : task.actual_finish).packed();
      network_.early[FinishOf(slot)] = task.actual_finish.packed();
      if (slot < network_.network_count) {
        network_.latest_actual = std::max(network_.latest_actual, task.actual_finish.packed());
      }
    }
  }
}

/// A link from the actual date of a task holds its successor at a date that no pass changes.
void Compiler::HoldFromActualDate(const Edge& edge) {
  const Task& from = TaskAt(edge.from);
  TaskFacts& facts = network_.facts[SlotOf(edge.to)];
  try {
    const Instant date = IsFromFinish(edge) ? from.actual_finish : from.actual_start;
    const std::int32_t bound = LagEnd(network_, date.packed(), LagOf(edge));
    std::int32_t& floor = IsToFinish(edge) ? facts.link_finish_floor : facts.link_floor;
    floor = std::max(floor, bound);
  } catch (const OutsideCalendars& error) {
    throw OutsideError(network_, SlotOf(edge.to), error);
  }
}

/// A link to the actual date of a task limits the late dates of its predecessor.
void Compiler::HoldByActualDate(const Edge& edge) {
  const Task& to = TaskAt(edge.to);
  const Instant date = IsToFinish(edge) ? to.actual_finish : to.actual_start;
  if (date.IsAbsent()) {
    return;
  }
  TaskFacts& facts = network_.facts[SlotOf(edge.from)];
  try {
    const std::int32_t bound = LagBegin(network_, date.packed(), LagOf(edge));
    std::int32_t& ceiling = IsFromFinish(edge) ? facts.link_finish_ceiling : facts.link_ceiling;
    ceiling = std::min(ceiling, bound);
  } catch (const OutsideCalendars& error) {
    throw OutsideError(network_, SlotOf(edge.from), error);
  }
}

void Compiler::MakeLinks() {
  for (const Edge& edge : edges_) {
    const Task& from = TaskAt(edge.from);
    const Task& to = TaskAt(edge.to);
    network_.facts[SlotOf(edge.from)].is_open_end = false;
    if (IgnoresLinks(to)) {
      if (!from.IsFinished() && plan_.schedule.progress == ProgressRule::kActualDates) {
        HoldByActualDate(edge);
      }
      continue;
    }
    if (from.IsFinished()) {
      // Finished work drives nothing past the data date, and before it nothing is held anyway.
      if (!plan_.schedule.remaining_from_data_date) {
        HoldFromActualDate(edge);
      }
    } else if (!IsFromFinish(edge) && from.IsStarted() && !plan_.schedule.lag_from_early_start) {
      HoldFromActualDate(edge);
    } else {
      open_edges_.push_back(edge);
    }
  }
  const auto make_in_link = [this](const Edge& edge) {
    const Slot from = SlotOf(edge.from);
    return InLink{IsFromFinish(edge) ? FinishOf(from) : StartOf(from), LagOf(edge),
                  IsToFinish(edge), edge.order};
  };
  const auto make_out_link = [this](const Edge& edge) {
    return OutLink{SlotOf(edge.to), LagOf(edge), IsFromFinish(edge), IsToFinish(edge)};
  };
  const auto to = [this](const Edge& edge) { return SlotOf(edge.to); };
  const auto from = [this](const Edge& edge) { return SlotOf(edge.from); };
  network_.in_links = GroupBy<InLink>(network_.open_count, open_edges_, to, make_in_link);
  network_.out_links = GroupBy<OutLink>(network_.open_count, open_edges_, from, make_out_link);
}

void Compiler::MakeNodes() {
  const Slot count = network_.open_count;
  network_.nodes.resize(static_cast<std::size_t>(count) + 1);
  network_.finish_floor.assign(static_cast<std::size_t>(count), kNoFloor);
  network_.dirty.assign(static_cast<std::size_t>(count) / 64 + 1, 0);
  Lists<InLink>& others = network_.other_links;
  others.first.push_back(0);
  std::vector<Slot> slots;
  for (Slot slot = 0; slot < count; ++slot) {
    const TaskFacts& facts = network_.facts[slot];
    Node& node = network_.nodes[slot];
    node.table = facts.table;
    node.minutes =
        network_.tables[facts.table].CapMinutes(network_.remaining[static_cast<std::size_t>(slot)]);
    node.is_milestone = facts.kind != TaskKind::kTask;
    node.first_ref = static_cast<std::int32_t>(network_.start_refs.size());
    for (const InLink& link : network_.in_links[slot]) {
      if (link.lag.minutes == 0 && !link.to_finish) {
        network_.start_refs.push_back(link.date);
      } else {
        others.items.push_back(link);
      }
    }
    others.first.push_back(static_cast<std::int32_t>(others.items.size()));
    slots.push_back(slot);
  }
  network_.nodes[count].first_ref = static_cast<std::int32_t>(network_.start_refs.size());
  for (Slot slot = 0; slot < count; ++slot) {
    ApplyConstraints(network_, slot);
    network_.late_tasks += IsAsLateAsPossible(network_.facts[slot]) ? 1 : 0;
  }
  network_.table_tasks = GroupBy<Slot>(
      static_cast<std::int32_t>(network_.tables.size()), slots,
      [this](Slot slot) { return std::int32_t{network_.facts[slot].table}; },
      [](Slot slot) { return slot; });
}

void Compiler::MakeSpans() {
  const Slot efforts = network_.effort_count - network_.network_count;
  // A link is there once at each of its ends that is a level of effort.
  std::vector<std::pair<TaskIndex, const Edge*>> ends;
  for (const Edge& edge : effort_edges_) {
    for (const TaskIndex end : {edge.from, edge.to}) {
      if (IsSpan(end)) {
        ends.emplace_back(end, &edge);
      }
    }
  }
  network_.span_links = GroupBy<SpanLink>(
      efforts, ends, [this](const auto& end) { return SlotOf(end.first) - network_.network_count; },
      [this](const auto& end) {
        const Edge& edge = *end.second;
        const bool other_comes_first = edge.to == end.first;
        return SpanLink{SlotOf(other_comes_first ? edge.from : edge.to), LagOf(edge),
                        other_comes_first, IsFromFinish(edge), IsToFinish(edge)};
      });
  network_.span_members.first.push_back(0);
  for (Slot slot = network_.effort_count; slot < network_.task_count; ++slot) {
    const Task& summary = TaskAt(network_.index_at[static_cast<std::size_t>(slot)]);
    for (const TaskIndex member :
         members_[static_cast<std::size_t>(network_.index_at[static_cast<std::size_t>(slot)])]) {
      network_.span_members.items.push_back(SlotOf(member));
    }
    network_.span_members.first.push_back(
        static_cast<std::int32_t>(network_.span_members.items.size()));
    if (summary.constraint.type != ConstraintType::kNone) {
      network_.warnings.push_back(
          fmt::format("The constraint of summary {} is left out: its dates are those of the tasks "
                      "below it",
                      summary.id));
    }
  }
}

}  // namespace

Network CompileNetwork(const Plan& plan, const Scheduler::Participates& participates) {
  return Compiler(plan, participates).Compile();
}

}  // namespace nimbrel::engine
