#include "tests/support/schedule/naive_schedule.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

namespace nimbrel::test {

using engine::Constraint;
using engine::ConstraintType;
using engine::Link;
using engine::LinkType;
using engine::Task;
using engine::TaskKind;
using engine::Uid;

namespace {

constexpr std::int64_t kAnytime = std::numeric_limits<std::int64_t>::max();

bool IsFromFinish(LinkType type) {
  return type == LinkType::kFinishToStart || type == LinkType::kFinishToFinish;
}
bool IsToFinish(LinkType type) {
  return type == LinkType::kFinishToFinish || type == LinkType::kStartToFinish;
}

/// The date of a constraint of one of these types, if the task has one.
std::vector<std::int64_t> ConstraintDates(const Task& task, std::vector<ConstraintType> types) {
  std::vector<std::int64_t> dates;
  for (const Constraint& constraint : {task.constraint, task.second_constraint}) {
    if (std::find(types.begin(), types.end(), constraint.type) != types.end()) {
      dates.push_back(constraint.date.Minutes());
    }
  }
  return dates;
}

bool IsLate(const Task& task) {
  return !task.IsStarted() && (task.constraint.type == ConstraintType::kAsLateAsPossible ||
                               task.second_constraint.type == ConstraintType::kAsLateAsPossible);
}

bool HasMandatoryLateDates(const Task& task) {
  return !ConstraintDates(task, {ConstraintType::kMandatoryFinish}).empty() ||
         (!task.IsStarted() && !ConstraintDates(task, {ConstraintType::kMandatoryStart}).empty());
}

bool IsMandatory(const Task& task) {
  return HasMandatoryLateDates(task) ||
         (!task.IsStarted() && !ConstraintDates(task, {ConstraintType::kPlacedStart}).empty());
}

/// A moment without work: where work ends, unless that lies before `moment`; a start milestone
/// where work starts.
std::int64_t PlaceMoment(const MinuteCalendar& calendar, std::int64_t moment, TaskKind kind) {
  if (kind != TaskKind::kStartMilestone && calendar.Works(moment - 1)) {
    return moment;
  }
  return calendar.NextStart(moment);
}

}  // namespace

struct NaiveSchedule::Ceilings {
  std::int64_t start = kAnytime;
  std::int64_t finish = kAnytime;
};

NaiveSchedule::NaiveSchedule(const engine::Plan& plan, Participates participates,
                             std::int32_t first_day, std::int32_t days)
    : plan_(plan), participates_(std::move(participates)), calendars_(plan, first_day, days) {}

bool NaiveSchedule::TakesPart(Uid uid) const {
  const Task* task = plan_.FindTask(uid);
  return task != nullptr && participates_(*task) && task->kind != TaskKind::kSummary &&
         task->kind != TaskKind::kLevelOfEffort;
}

std::int64_t NaiveSchedule::WorkOf(const Task& task) {
  const std::int64_t remaining = task.kind == TaskKind::kTask ? plan_.LikelyMinutes(task) : 0;
  if (remaining == 0 || task.expected_finish.IsAbsent() || task.range) {
    return remaining;
  }
  const Floors floors = FloorsOf(task);
  const std::int64_t work = calendars_.OfTask(task).WorkBetween(
      *std::max_element(floors.starts.begin(), floors.starts.end()),
      task.expected_finish.Minutes());
  return std::max<std::int64_t>(work, 0);
}

std::vector<const Link*> NaiveSchedule::LinksInto(const Task& task) const {
  std::vector<const Link*> links;
  const bool follows =
      !task.IsStarted() || plan_.schedule.progress == engine::ProgressRule::kRetainedLogic;
  for (const Link& link : plan_.links) {
    if (follows && link.successor == task.uid && TakesPart(link.predecessor) &&
        (!plan_.FindTask(link.predecessor)->IsFinished() ||
         !plan_.schedule.remaining_from_data_date)) {
      links.push_back(&link);
    }
  }
  return links;
}

std::vector<const Link*> NaiveSchedule::LinksOutOf(const Task& task) const {
  std::vector<const Link*> links;
  for (const Link& link : plan_.links) {
    if (link.predecessor != task.uid || !TakesPart(link.successor)) {
      continue;
    }
    const Task& successor = *plan_.FindTask(link.successor);
    const auto into = LinksInto(successor);
    // A lag that was counted from an actual start no longer depends on the predecessor.
    const bool is_settled =
        task.IsStarted() && !plan_.schedule.lag_from_early_start && !IsFromFinish(link.type);
    if (!successor.IsFinished() && !is_settled &&
        std::find(into.begin(), into.end(), &link) != into.end()) {
      links.push_back(&link);
    }
  }
  return links;
}

NaiveDates NaiveSchedule::Unmoved(Uid uid) {
  const auto known = unmoved_.find(uid);
  if (known != unmoved_.end()) {
    return known->second;
  }
  return unmoved_[uid] = FindUnmoved(*plan_.FindTask(uid));
}

/// Where the dates of the plan and of the task itself let what remains of it begin.
std::vector<std::int64_t> NaiveSchedule::OwnFloors(const Task& task) {
  std::vector<std::int64_t> floors;
  if (plan_.schedule.remaining_from_data_date) {
    floors.push_back(plan_.StatusDate().Minutes());
  } else if (!task.IsStarted()) {
    floors.push_back(plan_.start.Minutes());
  } else if (task.resumed.IsAbsent()) {
    floors.push_back(calendars_.OfTask(task).After(task.actual_start.Minutes(),
                                                   task.original_minutes - task.remaining_minutes));
  }
  if (task.IsStarted() && !task.resumed.IsAbsent()) {
    floors.push_back(task.resumed.Minutes());
  }
  return floors;
}

NaiveSchedule::Floors NaiveSchedule::FloorsOf(const Task& task) {
  Floors floors{OwnFloors(task), {}};
  std::vector<std::int64_t>& starts = floors.starts;
  std::vector<std::int64_t>& finishes = floors.finishes;
  const auto append = [](std::vector<std::int64_t>& to, const std::vector<std::int64_t>& from) {
    to.insert(to.end(), from.begin(), from.end());
  };
  if (IsMandatory(task)) {
    if (!task.IsStarted()) {
      append(starts, ConstraintDates(
                         task, {ConstraintType::kMandatoryStart, ConstraintType::kPlacedStart}));
    }
    append(finishes, ConstraintDates(task, {ConstraintType::kMandatoryFinish}));
  } else {
    append(starts,
           ConstraintDates(task, {ConstraintType::kStartOn, ConstraintType::kStartNoEarlier,
                                  ConstraintType::kMandatoryStart, ConstraintType::kPlacedStart}));
    append(finishes,
           ConstraintDates(task, {ConstraintType::kFinishOn, ConstraintType::kFinishNoEarlier}));
  }
  if (!IsMandatory(task)) {
    for (const Link* link : LinksInto(task)) {
      const Task& predecessor = *plan_.FindTask(link->predecessor);
      const NaiveDates dates = Unmoved(link->predecessor);  // actual ones if it is finished
      std::int64_t from = IsFromFinish(link->type) ? dates.finish : dates.start;
      if (!IsFromFinish(link->type) && predecessor.IsStarted() &&
          !plan_.schedule.lag_from_early_start) {
        from = predecessor.actual_start.Minutes();
      }
      (IsToFinish(link->type) ? finishes : starts).push_back(calendars_.LagEnd(*link, from));
    }
  }
  return floors;
}

NaiveDates NaiveSchedule::FindUnmoved(const Task& task) {
  if (task.IsFinished()) {
    return {task.actual_start.Minutes(), task.actual_finish.Minutes()};
  }
  const Floors floors = FloorsOf(task);
  const MinuteCalendar& calendar = calendars_.OfTask(task);
  const std::int64_t work = WorkOf(task);
  const std::int64_t first = *std::max_element(floors.starts.begin(), floors.starts.end());
  NaiveDates dates;
  if (work == 0) {
    dates.start = first;
    for (const std::int64_t finish : floors.finishes) {
      dates.start = std::max(dates.start, finish);
    }
    dates.start = PlaceMoment(calendar, dates.start, task.kind);
    dates.finish = dates.start;
  } else {
    dates.start = calendar.NextStart(first);
    for (const std::int64_t finish : floors.finishes) {
      dates.start = std::max(dates.start, calendar.Before(finish, work));
    }
    dates.finish = calendar.After(dates.start, work);
  }
  return HeldBack(task, dates);
}

/// Back from where the task would stand to where its primary constraint wants it at the latest.
NaiveDates NaiveSchedule::HeldBack(const Task& task, NaiveDates dates) {
  const bool on_start = task.constraint.type == ConstraintType::kStartNoLater;
  const bool on_finish = task.constraint.type == ConstraintType::kFinishNoLater;
  if (!plan_.schedule.no_later_holds_early || task.IsStarted() || (!on_start && !on_finish)) {
    return dates;
  }
  const MinuteCalendar& calendar = calendars_.OfTask(task);
  const std::int64_t work = WorkOf(task);
  const std::int64_t latest = task.constraint.date.Minutes();
  if (calendar.WorkBetween(latest, on_start ? dates.start : dates.finish) <= 0) {
    return dates;
  }
  if (work == 0) {
    const std::int64_t moment = task.kind == TaskKind::kStartMilestone
                                    ? calendar.NextStart(latest)
                                    : calendar.LastFinish(latest);
    return {moment, moment};
  }
  const std::int64_t start = on_start ? calendar.NextStart(latest) : calendar.Before(latest, work);
  return {start, calendar.After(start, work)};
}

std::int64_t NaiveSchedule::Finish() {
  std::int64_t finish = std::numeric_limits<std::int64_t>::min();
  for (const Task& task : plan_.tasks()) {
    if (TakesPart(task.uid)) {
      finish = std::max(finish, Unmoved(task.uid).finish);
    }
  }
  return finish == std::numeric_limits<std::int64_t>::min() ? plan_.StatusDate().Minutes() : finish;
}

NaiveSchedule::Ceilings NaiveSchedule::CeilingsFrom(const Task& task, DatesOf dates_of) {
  Ceilings ceilings;
  for (const Link* link : LinksOutOf(task)) {
    const Task& successor = *plan_.FindTask(link->successor);
    const NaiveDates dates = (this->*dates_of)(successor.uid);
    const std::int64_t limit = IsToFinish(link->type) ? dates.finish : dates.start;
    std::int64_t& ceiling = IsFromFinish(link->type) ? ceilings.finish : ceilings.start;
    ceiling = std::min(ceiling, calendars_.LagBegin(*link, limit));
  }
  return ceilings;
}

/// The latest dates under ceilings: as a minute of work that ends, for a start ceiling as the work
/// that begins there.
NaiveDates NaiveSchedule::LatestUnder(const Task& task, const Ceilings& ceilings) {
  const MinuteCalendar& calendar = calendars_.OfTask(task);
  const std::int64_t work = WorkOf(task);
  if (work == 0) {
    const std::int64_t ceiling = std::min(ceilings.start, ceilings.finish);
    const bool starts_work = task.kind == TaskKind::kStartMilestone || calendar.Works(ceiling);
    const std::int64_t moment =
        starts_work ? calendar.NextStart(ceiling) : calendar.LastFinish(ceiling);
    return {moment, moment};
  }
  std::int64_t finish = kAnytime;
  if (ceilings.finish != kAnytime) {
    finish = calendar.LastFinish(ceilings.finish);
  }
  if (ceilings.start != kAnytime) {
    finish = std::min(finish, calendar.After(ceilings.start, work));
  }
  return {calendar.Before(finish, work), finish};
}

NaiveDates NaiveSchedule::Early(Uid uid) {
  const auto known = early_.find(uid);
  if (known != early_.end()) {
    return known->second;
  }
  return early_[uid] = FindMoved(*plan_.FindTask(uid));
}

NaiveDates NaiveSchedule::FindMoved(const Task& task) {
  const NaiveDates unmoved = Unmoved(task.uid);
  if (!IsLate(task) || IsMandatory(task) || task.IsFinished()) {
    return unmoved;
  }
  Ceilings ceilings = CeilingsFrom(task, &NaiveSchedule::Early);
  ceilings.finish = std::min(ceilings.finish, Finish());
  for (const auto date :
       ConstraintDates(task, {ConstraintType::kStartOn, ConstraintType::kStartNoLater})) {
    ceilings.start = std::min(ceilings.start, date);
  }
  for (const auto date :
       ConstraintDates(task, {ConstraintType::kFinishOn, ConstraintType::kFinishNoLater})) {
    ceilings.finish = std::min(ceilings.finish, date);
  }
  NaiveDates moved = LatestUnder(task, ceilings);
  const bool starts_too_late =
      moved.start >
      (WorkOf(task) == 0 ? std::min(ceilings.start, ceilings.finish) : ceilings.start);
  if (starts_too_late) {
    const MinuteCalendar& calendar = calendars_.OfTask(task);
    moved.start = calendar.Before(moved.start, 1);
    moved.finish = WorkOf(task) == 0 ? moved.start : calendar.After(moved.start, WorkOf(task));
  }
  return calendars_.OfTask(task).WorkBetween(unmoved.finish, moved.finish) > 0 ? moved : unmoved;
}

NaiveDates NaiveSchedule::Late(Uid uid) {
  const auto known = late_.find(uid);
  if (known != late_.end()) {
    return known->second;
  }
  return late_[uid] = FindLate(*plan_.FindTask(uid));
}

NaiveDates NaiveSchedule::FindLate(const Task& task) {
  Ceilings ceilings;
  std::vector<ConstraintType> start_types{ConstraintType::kMandatoryStart};
  std::vector<ConstraintType> finish_types{ConstraintType::kMandatoryFinish};
  if (!HasMandatoryLateDates(task)) {
    ceilings = CeilingsFrom(task, &NaiveSchedule::Late);
    ceilings.finish = std::min(ceilings.finish, plan_.schedule.must_finish.IsAbsent()
                                                    ? Finish()
                                                    : plan_.schedule.must_finish.Minutes());
    AddActualCeilings(task, ceilings);
    if (plan_.schedule.open_ends_critical && IsOpenEnd(task)) {
      ceilings.finish = std::min(ceilings.finish, Early(task.uid).finish);
    }
    start_types = {ConstraintType::kStartOn, ConstraintType::kStartNoLater};
    finish_types = {ConstraintType::kFinishOn, ConstraintType::kFinishNoLater};
  }
  if (!task.IsStarted()) {
    for (const auto date : ConstraintDates(task, start_types)) {
      ceilings.start = std::min(ceilings.start, date);
    }
  }
  if (IsMandatory(task) && !HasMandatoryLateDates(task)) {
    ceilings.start = kAnytime;  // its start is given, whatever comes after it
  }
  for (const auto date : ConstraintDates(task, finish_types)) {
    ceilings.finish = std::min(ceilings.finish, date);
  }
  if (WorkOf(task) > 0) {
    return LatestUnder(task, ceilings);
  }
  // Of the two moments with no work between them, a start is where work starts and anything else
  // where it ends, unless the early date shows that it has to be the other one.
  const MinuteCalendar& calendar = calendars_.OfTask(task);
  const std::int64_t ceiling = std::min(ceilings.start, ceilings.finish);
  const std::int64_t moment = task.kind == TaskKind::kStartMilestone ? calendar.NextStart(ceiling)
                                                                     : calendar.LastFinish(ceiling);
  const std::int64_t early = Early(task.uid).finish;
  return calendar.WorkBetween(early, moment) == 0 ? NaiveDates{early, early}
                                                  : NaiveDates{moment, moment};
}

/// With actual dates, what has happened limits the late dates of what comes before it.
void NaiveSchedule::AddActualCeilings(const Task& task, Ceilings& ceilings) {
  for (const Link& link : plan_.links) {
    if (plan_.schedule.progress != engine::ProgressRule::kActualDates ||
        link.predecessor != task.uid || !TakesPart(link.successor)) {
      continue;
    }
    const Task& successor = *plan_.FindTask(link.successor);
    const engine::Instant actual =
        IsToFinish(link.type) ? successor.actual_finish : successor.actual_start;
    if (!actual.IsAbsent()) {
      std::int64_t& ceiling = IsFromFinish(link.type) ? ceilings.finish : ceilings.start;
      ceiling = std::min(ceiling, calendars_.LagBegin(link, actual.Minutes()));
    }
  }
}

bool NaiveSchedule::IsOpenEnd(const Task& task) const {
  return std::none_of(plan_.links.begin(), plan_.links.end(), [&](const Link& link) {
    return link.predecessor == task.uid && TakesPart(link.successor);
  });
}

std::int64_t NaiveSchedule::TotalFloat(Uid uid) {
  return calendars_.OfTask(*plan_.FindTask(uid)).WorkBetween(Early(uid).finish, Late(uid).finish);
}

std::int64_t NaiveSchedule::FreeFloat(Uid uid) {
  const Task& task = *plan_.FindTask(uid);
  Ceilings ceilings = CeilingsFrom(task, &NaiveSchedule::Early);
  if (LinksOutOf(task).empty()) {
    ceilings.finish =
        plan_.schedule.must_finish.IsAbsent() ? Finish() : plan_.schedule.must_finish.Minutes();
  }
  const NaiveDates latest = LatestUnder(task, ceilings);
  return std::max<std::int64_t>(
      0, calendars_.OfTask(task).WorkBetween(Early(uid).finish, latest.finish));
}

}  // namespace nimbrel::test
