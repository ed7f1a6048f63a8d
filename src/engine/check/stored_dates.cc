#include "engine/check/stored_dates.h"

#include <algorithm>
#include <cstdlib>
#include <unordered_map>
#include <unordered_set>

#include "fmt/format.h"

namespace nimbrel::engine {
namespace {

constexpr std::int32_t kLongestGap = 400;  // days without work that two equal instants may be apart

bool IsSameWorkInstant(const CalendarDefinition* calendar, Instant a, Instant b) {
  if (IsSameMoment(a, b)) {
    return true;
  }
  if (calendar == nullptr || std::abs(a.day() - b.day()) > kLongestGap) {
    return false;
  }
  return WorkBetween(*calendar, std::min(a, b), std::max(a, b)) == 0;
}

/// Compares one activity at a time and collects what differs.
class Comparer {
 public:
  Comparer(const Plan& plan, const Scheduler& scheduler) : plan_(plan), scheduler_(scheduler) {
    for (const Task& task : plan.tasks()) {
      AddToSummaries(task);
    }
  }

  void Compare(const Task& task) {
    const TaskIndex index = scheduler_.IndexOf(task.uid);
    // Where the data date holds nothing, summaries have dates that are no activity's.
    const bool is_summary = task.kind == TaskKind::kSummary;
    const bool is_from_data_date = plan_.schedule.remaining_from_data_date;
    if (index < 0 || task.IsFinished() || (is_summary && !is_from_data_date)) {
      return;
    }
    const StoredDates& stored = task.stored;
    const Span early = EarlySpanOf(task, index);
    DifferingActivity activity;
    activity.task = task.uid;
    compared_ = 0;
    calendar_ = plan_.FindCalendar(task.calendar != 0 ? task.calendar : plan_.default_calendar);
    CompareDate(activity, DateField::kEarlyStart, stored.early_start, early.start);
    CompareDate(activity, DateField::kEarlyFinish, stored.early_finish, early.finish);
    if (is_from_data_date || !task.IsStarted()) {  // else theirs is that of work done and left
      CompareDate(activity, DateField::kLateStart, stored.late_start, scheduler_.late_start(index));
    }
    CompareDate(activity, DateField::kLateFinish, stored.late_finish,
                scheduler_.late_finish(index));
    if (stored.total_float_minutes) {
      CompareFloat(activity, *stored.total_float_minutes, scheduler_.total_float(index));
    }
    if (compared_ == 0) {
      return;
    }
    ++report_.activities;
    if (activity.differences.empty()) {
      ++report_.equal;
    } else {
      report_.differing.push_back(std::move(activity));
    }
  }

  StoredDatesReport Take() { return std::move(report_); }

 private:
  struct Span {
    Instant start;
    Instant finish;
  };

  /// Widens the spans of the summaries above an unfinished task.
  void AddToSummaries(const Task& task) {
    const TaskIndex index = scheduler_.IndexOf(task.uid);
    if (index < 0 || task.IsFinished() || task.kind == TaskKind::kSummary) {
      return;
    }
    std::size_t depth = 0;
    for (const Task* above = plan_.FindTask(task.parent);
         above != nullptr && depth < plan_.tasks().size();
         above = plan_.FindTask(above->parent), ++depth) {
      Span& span = spans_[above->uid];
      const Instant start = scheduler_.early_start(index);
      span.start = span.start.IsAbsent() ? start : std::min(span.start, start);
      span.finish = std::max(span.finish, scheduler_.early_finish(index));
    }
  }

  /// The early dates in the sense of the stored ones: of what remains, or, in a plan whose data
  /// date holds nothing, of the whole activity.
  Span EarlySpanOf(const Task& task, TaskIndex index) const {
    if (task.kind == TaskKind::kSummary) {
      const auto span = spans_.find(task.uid);
      return span == spans_.end() ? Span{} : span->second;
    }
    const bool is_whole = !plan_.schedule.remaining_from_data_date && task.IsStarted();
    return {is_whole ? task.actual_start : scheduler_.early_start(index),
            scheduler_.early_finish(index)};
  }

  FieldAgreement& Field(DateField field) { return report_.fields[static_cast<std::size_t>(field)]; }

  void CompareDate(DifferingActivity& activity, DateField field, Instant stored, Instant computed) {
    if (stored.IsAbsent()) {
      return;
    }
    ++compared_;
    ++Field(field).compared;
    if (!computed.IsAbsent() && IsSameWorkInstant(calendar_, stored, computed)) {
      ++Field(field).equal;
      return;
    }
    activity.differences.push_back({field, stored, computed, 0, 0});
  }

  void CompareFloat(DifferingActivity& activity, std::int32_t stored, std::int32_t computed) {
    ++compared_;
    ++Field(DateField::kTotalFloat).compared;
    if (stored == computed) {
      ++Field(DateField::kTotalFloat).equal;
      return;
    }
    activity.differences.push_back({DateField::kTotalFloat, {}, {}, stored, computed});
  }

  const Plan& plan_;
  const Scheduler& scheduler_;
  std::unordered_map<Uid, Span> spans_;  // of summaries
  const CalendarDefinition* calendar_ = nullptr;
  int compared_ = 0;
  StoredDatesReport report_;
};

bool HasEarly(const DifferingActivity& activity) {
  return activity.differences.front().field == DateField::kEarlyStart ||
         activity.differences.front().field == DateField::kEarlyFinish;
}

bool HasLate(const DifferingActivity& activity) {
  return std::any_of(activity.differences.begin(), activity.differences.end(),
                     [](const DateDifference& difference) {
                       return difference.field != DateField::kEarlyStart &&
                              difference.field != DateField::kEarlyFinish;
                     });
}

/// What the activity itself has that makes tools disagree; empty if nothing.
std::string OwnCause(const Task& task) {
  if (task.kind == TaskKind::kLevelOfEffort) {
    return "level of effort: its dates follow those of the activities around it";
  }
  if (task.kind == TaskKind::kSummary) {
    return "spans a node: its dates are those of the activities in it";
  }
  if (!task.suspended.IsAbsent()) {
    return "suspended, or resumed after a suspension";
  }
  if (!task.expected_finish.IsAbsent()) {
    return "an expected finish sets its remaining duration";
  }
  const auto is = [&task](ConstraintType type) {
    return task.constraint.type == type || task.second_constraint.type == type;
  };
  if (is(ConstraintType::kAsLateAsPossible)) {
    return "scheduled as late as possible";
  }
  if (is(ConstraintType::kMandatoryStart) || is(ConstraintType::kMandatoryFinish)) {
    return "a mandatory date overrides its logic";
  }
  if (is(ConstraintType::kPlacedStart)) {
    return "placed at its start whatever its links";
  }
  return {};
}

/// What links have that makes tools disagree about the early dates of their successors and the late
/// dates of their predecessors.
class LinkCauses {
 public:
  explicit LinkCauses(const Plan& plan) : plan_(plan) {
    for (const Link& link : plan.links) {
      const Task* from = plan.FindTask(link.predecessor);
      const Task* to = plan.FindTask(link.successor);
      if (from != nullptr && to != nullptr) {
        Add(link, *from, *to);
      }
    }
  }

  /// Empty if no link of the task has anything.
  std::string Of(Uid task, bool is_early) const {
    const auto& causes = is_early ? early_ : late_;
    const auto found = causes.find(task);
    return found == causes.end() ? std::string() : found->second;
  }

 private:
  void Add(const Link& link, const Task& from, const Task& to) {
    if (to.IsFinished()) {
      return;
    }
    const bool from_finish =
        link.type == LinkType::kFinishToStart || link.type == LinkType::kFinishToFinish;
    if (from.IsStarted() && !from.IsFinished() && !from_finish && link.lag_minutes != 0) {
      const std::string cause =
          fmt::format("the lag from the start of {}, which has started", from.id);
      early_.emplace(to.uid, cause);
      late_.emplace(from.uid, cause);
    } else if (from.IsFinished() && LagReachesPastStatus(link, from)) {
      early_.emplace(to.uid, fmt::format("the lag behind {}, which is finished, would reach past "
                                         "the data date",
                                         from.id));
    }
  }

  bool LagReachesPastStatus(const Link& link, const Task& from) const {
    const CalendarDefinition* calendar =
        plan_.FindCalendar(from.calendar != 0 ? from.calendar : plan_.default_calendar);
    const Instant status = plan_.StatusDate();
    const bool is_close = calendar != nullptr && plan_.schedule.remaining_from_data_date &&
                          link.lag_minutes > 0 && from.actual_finish <= status &&
                          status.day() - from.actual_finish.day() <= kLongestGap;
    return is_close && WorkBetween(*calendar, from.actual_finish, status) < link.lag_minutes;
  }

  const Plan& plan_;
  std::unordered_map<Uid, std::string> early_;
  std::unordered_map<Uid, std::string> late_;
};

/// An early difference may come from a predecessor that has one, a late one from a successor.
void TellCauses(const Plan& plan, StoredDatesReport& report) {
  if (report.differing.empty()) {
    return;
  }
  std::unordered_set<Uid> early;
  std::unordered_set<Uid> late;
  for (const DifferingActivity& activity : report.differing) {
    if (HasEarly(activity)) {
      early.insert(activity.task);
    }
    if (HasLate(activity)) {
      late.insert(activity.task);
    }
  }
  std::unordered_map<Uid, Uid> from_predecessor;
  std::unordered_map<Uid, Uid> from_successor;
  for (const Link& link : plan.links) {
    if (early.contains(link.predecessor)) {
      from_predecessor.emplace(link.successor, link.predecessor);
    }
    if (late.contains(link.successor)) {
      from_successor.emplace(link.predecessor, link.successor);
    }
  }
  const LinkCauses links(plan);
  for (DifferingActivity& activity : report.differing) {
    const bool is_early = HasEarly(activity);
    const auto& sources = is_early ? from_predecessor : from_successor;
    const auto source = sources.find(activity.task);
    activity.inherited = source != sources.end();
    activity.cause = OwnCause(*plan.FindTask(activity.task));
    if (activity.cause.empty()) {
      activity.cause = links.Of(activity.task, is_early);
    }
    if (activity.cause.empty() && activity.inherited) {
      activity.cause = fmt::format("follows from {} {}", is_early ? "predecessor" : "successor",
                                   plan.FindTask(source->second)->id);
    }
  }
}

/// Work of one day between two minutes of it.
std::int64_t WorkOfDay(const DayPattern& pattern, std::int32_t from, std::int32_t to) {
  std::int64_t minutes = 0;
  for (const Shift& shift : pattern) {
    minutes += std::max(
        0, std::min<std::int32_t>(shift.end, to) - std::max<std::int32_t>(shift.begin, from));
  }
  return minutes;
}

}  // namespace

std::string_view NameOf(DateField field) {
  constexpr std::array<std::string_view, kDateFieldCount> kNames = {
      "early start", "early finish", "late start", "late finish", "total float"};
  return kNames[static_cast<std::size_t>(field)];
}

double FieldAgreement::Share() const {
  return compared == 0 ? 1.0 : static_cast<double>(equal) / compared;
}

StoredDatesReport CompareStoredDates(const Plan& plan, const Scheduler& scheduler) {
  Comparer comparer(plan, scheduler);
  for (const Task& task : plan.tasks()) {
    comparer.Compare(task);
  }
  StoredDatesReport report = comparer.Take();
  TellCauses(plan, report);
  return report;
}

std::int64_t WorkBetween(const CalendarDefinition& calendar, Instant from, Instant to) {
  std::int64_t minutes = 0;
  for (std::int32_t day = from.day(); day <= to.day(); ++day) {
    minutes += WorkOfDay(PatternOn(calendar, day), day == from.day() ? from.minute() : 0,
                         day == to.day() ? to.minute() : kMinutesPerDay);
  }
  return minutes;
}

}  // namespace nimbrel::engine
