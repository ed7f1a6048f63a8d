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

bool IsMandatory(const Task& task) {
  return !ConstraintDates(task, {ConstraintType::kMandatoryFinish}).empty() ||
         (!task.IsStarted() && !ConstraintDates(task, {ConstraintType::kMandatoryStart}).empty());
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

std::int64_t NaiveSchedule::WorkOf(const Task& task) const {
  return task.kind == TaskKind::kTask ? plan_.LikelyMinutes(task) : 0;
}

std::vector<const Link*> NaiveSchedule::LinksInto(const Task& task) const {
  std::vector<const Link*> links;
  const bool follows =
      !task.IsStarted() || plan_.schedule.progress == engine::ProgressRule::kRetainedLogic;
  for (const Link& link : plan_.links) {
    if (follows && link.successor == task.uid && TakesPart(link.predecessor) &&
        !plan_.FindTask(link.predecessor)->IsFinished()) {
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

NaiveDates NaiveSchedule::FindUnmoved(const Task& task) {
  if (task.IsFinished()) {
    return {task.actual_start.Minutes(), task.actual_finish.Minutes()};
  }
  std::vector<std::int64_t> starts{plan_.StatusDate().Minutes()};
  std::vector<std::int64_t> finishes;
  if (task.IsStarted() && !task.resumed.IsAbsent()) {
    starts.push_back(task.resumed.Minutes());
  }
  const auto append = [](std::vector<std::int64_t>& to, const std::vector<std::int64_t>& from) {
    to.insert(to.end(), from.begin(), from.end());
  };
  if (IsMandatory(task)) {
    if (!task.IsStarted()) {
      append(starts, ConstraintDates(task, {ConstraintType::kMandatoryStart}));
    }
    append(finishes, ConstraintDates(task, {ConstraintType::kMandatoryFinish}));
  } else {
    append(starts, ConstraintDates(task, {ConstraintType::kStartOn, ConstraintType::kStartNoEarlier,
                                          ConstraintType::kMandatoryStart}));
    append(finishes,
           ConstraintDates(task, {ConstraintType::kFinishOn, ConstraintType::kFinishNoEarlier}));
  }
  if (!IsMandatory(task)) {
    for (const Link* link : LinksInto(task)) {
      const Task& predecessor = *plan_.FindTask(link->predecessor);
      const NaiveDates dates = Unmoved(link->predecessor);
      std::int64_t from = IsFromFinish(link->type) ? dates.finish : dates.start;
      if (!IsFromFinish(link->type) && predecessor.IsStarted() &&
          !plan_.schedule.lag_from_early_start) {
        from = predecessor.actual_start.Minutes();
      }
      (IsToFinish(link->type) ? finishes : starts).push_back(calendars_.LagEnd(*link, from));
    }
  }

  const MinuteCalendar& calendar = calendars_.OfTask(task);
  const std::int64_t work = WorkOf(task);
  if (work == 0) {
    append(starts, finishes);
    const std::int64_t moment =
        PlaceMoment(calendar, *std::max_element(starts.begin(), starts.end()), task.kind);
    return {moment, moment};
  }
  std::int64_t start = calendar.NextStart(*std::max_element(starts.begin(), starts.end()));
  for (const std::int64_t finish : finishes) {
    start = std::max(start, calendar.Before(finish, work));
  }
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
    std::int64_t limit = dates.start;
    if (IsToFinish(link->type) && WorkOf(successor) > 0) {
      limit = calendars_.OfTask(successor).NextStart(dates.finish);
    }
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
  if (!IsMandatory(task)) {
    ceilings = CeilingsFrom(task, &NaiveSchedule::Late);
    ceilings.finish = std::min(ceilings.finish, plan_.schedule.must_finish.IsAbsent()
                                                    ? Finish()
                                                    : plan_.schedule.must_finish.Minutes());
    start_types = {ConstraintType::kStartOn, ConstraintType::kStartNoLater};
    finish_types = {ConstraintType::kFinishOn, ConstraintType::kFinishNoLater};
  }
  if (!task.IsStarted()) {
    for (const auto date : ConstraintDates(task, start_types)) {
      ceilings.start = std::min(ceilings.start, date);
    }
  }
  for (const auto date : ConstraintDates(task, finish_types)) {
    ceilings.finish = std::min(ceilings.finish, date);
  }
  return LatestUnder(task, ceilings);
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
