#include "tests/support/schedule/schedule_check.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "tests/support/schedule/plan_calendars.h"

namespace nimbrel::test {
namespace {

using engine::Constraint;
using engine::ConstraintType;
using engine::Instant;
using engine::Link;
using engine::LinkType;
using engine::Plan;
using engine::Scheduler;
using engine::Task;
using engine::TaskKind;

// Days that are looked at before the plan's first and after its last date: enough for leads and for
// the way to the next working time.
constexpr std::int32_t kMargin = 60;

/// A moment that a date of a task must not come before (early) or after (late).
struct Bound {
  std::int64_t moment = 0;
  bool on_finish = false;
  std::string cause;
};

class Checker {
 public:
  Checker(const Plan& plan, const Scheduler::Participates& participates, const Scheduler& scheduler)
      : plan_(plan), participates_(participates), scheduler_(scheduler) {}

  std::vector<std::string> Run(Checked checked) {
    FindWindow(checked);
    for (const Task& task : plan_.tasks()) {
      if (!participates_(task)) {
        Expect(scheduler_.IndexOf(task.uid) < 0, task, "takes part");
      } else if (task.kind == TaskKind::kSummary) {
        CheckSummary(task);
      } else if (task.IsFinished()) {
        CheckFinished(task);
      } else if (task.kind == TaskKind::kLevelOfEffort) {
        Expect(EarlyStart(task) <= EarlyFinish(task), task, "finishes before it starts");
      } else {
        CheckEarly(task);
        if (checked == Checked::kEarlyAndLate) {
          CheckLate(task);
          CheckFreeFloat(task);
        }
      }
    }
    CheckFinishOfPlan();
    return breaches_;
  }

 private:
  engine::TaskIndex IndexOf(const Task& task) const { return scheduler_.IndexOf(task.uid); }
  std::int64_t EarlyStart(const Task& task) const {
    return scheduler_.early_start(IndexOf(task)).Minutes();
  }
  std::int64_t EarlyFinish(const Task& task) const {
    return scheduler_.early_finish(IndexOf(task)).Minutes();
  }
  std::int64_t LateStart(const Task& task) const {
    return scheduler_.late_start(IndexOf(task)).Minutes();
  }
  std::int64_t LateFinish(const Task& task) const {
    return scheduler_.late_finish(IndexOf(task)).Minutes();
  }
  /// The work between a task's dates: what remains, or what its expected finish makes of it.
  std::int64_t WorkOf(const Task& task) {
    const std::int64_t remaining = task.kind == TaskKind::kTask ? plan_.LikelyMinutes(task) : 0;
    if (task.expected_finish.IsAbsent() || task.range || remaining == 0) {
      return remaining;
    }
    // What remains was found where the task and its predecessors stood before any was moved late.
    if (IsMovedLate(task) || FollowsMovedLate(task)) {
      return calendars_->OfTask(task).WorkBetween(EarlyStart(task), EarlyFinish(task));
    }
    std::int64_t start = std::numeric_limits<std::int64_t>::min();
    for (const Bound& bound : EarlyBounds(task)) {
      start = bound.on_finish ? start : std::max(start, bound.moment);
    }
    const std::int64_t work =
        calendars_->OfTask(task).WorkBetween(start, task.expected_finish.Minutes());
    return std::max<std::int64_t>(work, 0);
  }
  bool FollowsMovedLate(const Task& task) const {
    const std::vector<const Link*> links = HoldingLinks(task, true);
    return std::any_of(links.begin(), links.end(), [this](const Link* link) {
      return IsMovedLate(*plan_.FindTask(link->predecessor));
    });
  }
  bool IsOrdinary(const Task& task) const {
    return task.kind != TaskKind::kSummary && task.kind != TaskKind::kLevelOfEffort;
  }
  void Expect(bool holds, const Task& task, const std::string& breach) {
    if (!holds) {
      breaches_.push_back("task " + task.id + " " + breach);
    }
  }

  void FindWindow(Checked checked) {
    std::int32_t first = plan_.StatusDate().day();
    std::int32_t last = first;
    const auto consider = [&first, &last](Instant moment) {
      if (!moment.IsAbsent()) {
        first = std::min(first, moment.day());
        last = std::max(last, moment.day());
      }
    };
    consider(plan_.schedule.must_finish);
    consider(plan_.start);
    for (const Task& task : plan_.tasks()) {
      if (participates_(task)) {
        consider(task.constraint.date);
        consider(task.second_constraint.date);
        consider(task.actual_start);
        consider(task.actual_finish);
        consider(task.expected_finish);
        consider(scheduler_.early_start(IndexOf(task)));
        consider(scheduler_.early_finish(IndexOf(task)));
        if (checked == Checked::kEarlyAndLate) {
          consider(scheduler_.late_start(IndexOf(task)));
          consider(scheduler_.late_finish(IndexOf(task)));
        }
      }
    }
    calendars_.emplace(plan_, first - kMargin, last - first + 2 * kMargin);
  }

  static bool OverridesLinks(const Constraint& constraint, const Task& task) {
    return constraint.type == ConstraintType::kMandatoryFinish ||
           (!task.IsStarted() && (constraint.type == ConstraintType::kMandatoryStart ||
                                  constraint.type == ConstraintType::kPlacedStart));
  }
  bool IsMandatory(const Task& task) const {
    return OverridesLinks(task.constraint, task) || OverridesLinks(task.second_constraint, task);
  }
  /// Whether its late dates are those of its mandatory ones.
  bool IsMandatoryLate(const Task& task) const {
    const auto is_late = [&](const Constraint& constraint) {
      return constraint.type != ConstraintType::kPlacedStart && OverridesLinks(constraint, task);
    };
    return is_late(task.constraint) || is_late(task.second_constraint);
  }

  bool IsMovedLate(const Task& task) const {
    const auto is_late = [](const Constraint& constraint) {
      return constraint.type == ConstraintType::kAsLateAsPossible;
    };
    return !task.IsStarted() && !IsMandatory(task) &&
           (is_late(task.constraint) || is_late(task.second_constraint));
  }

  /// Where the work of an unfinished task may go on at the earliest, by the plan's dates and its
  /// own.
  Bound OwnFloor(const Task& task) {
    if (plan_.schedule.remaining_from_data_date) {
      return {plan_.StatusDate().Minutes(), false, "the status date"};
    }
    if (!task.IsStarted()) {
      return {plan_.start.Minutes(), false, "the plan's start"};
    }
    if (!task.resumed.IsAbsent()) {
      return {task.resumed.Minutes(), false, "the date on which it is resumed"};
    }
    const std::int64_t done = std::max(task.original_minutes - task.remaining_minutes, 0);
    return {calendars_->OfTask(task).After(task.actual_start.Minutes(), done), false,
            "the end of the work done"};
  }

  /// Whether the task stands where its primary constraint to start or finish no later holds it,
  /// whatever its links say.
  bool IsHeldBack(const Task& task) {
    const bool on_start = task.constraint.type == ConstraintType::kStartNoLater;
    if (!plan_.schedule.no_later_holds_early || task.IsStarted() ||
        (!on_start && task.constraint.type != ConstraintType::kFinishNoLater)) {
      return false;
    }
    return calendars_->OfTask(task).WorkBetween(on_start ? EarlyStart(task) : EarlyFinish(task),
                                                task.constraint.date.Minutes()) == 0;
  }

  /// The links that hold between two unfinished tasks, of one task as predecessor or successor.
  std::vector<const Link*> HoldingLinks(const Task& task, bool as_successor) const {
    std::vector<const Link*> links;
    for (const Link& link : plan_.links) {
      if ((as_successor ? link.successor : link.predecessor) != task.uid) {
        continue;
      }
      const Task* from = plan_.FindTask(link.predecessor);
      const Task* to = plan_.FindTask(link.successor);
      const bool takes_part = from != nullptr && to != nullptr && participates_(*from) &&
                              participates_(*to) && IsOrdinary(*from) && IsOrdinary(*to) &&
                              (!from->IsFinished() || DrivesWhenFinished()) && !to->IsFinished();
      const bool is_overridden = takes_part && to->IsStarted() &&
                                 plan_.schedule.progress != engine::ProgressRule::kRetainedLogic;
      if (takes_part && !is_overridden) {
        links.push_back(&link);
      }
    }
    return links;
  }

  static bool FromFinish(const Link& link) {
    return link.type == LinkType::kFinishToStart || link.type == LinkType::kFinishToFinish;
  }
  static bool ToFinish(const Link& link) {
    return link.type == LinkType::kFinishToFinish || link.type == LinkType::kStartToFinish;
  }
  bool DrivesWhenFinished() const { return !plan_.schedule.remaining_from_data_date; }
  bool CountsFromActualDate(const Link& link) const {
    const Task& from = *plan_.FindTask(link.predecessor);
    return from.IsFinished() ||
           (!FromFinish(link) && !plan_.schedule.lag_from_early_start && from.IsStarted());
  }

  std::vector<Bound> EarlyBounds(const Task& task) {
    std::vector<Bound> bounds{OwnFloor(task)};
    if (task.IsStarted() && !task.resumed.IsAbsent()) {
      bounds.push_back({task.resumed.Minutes(), false, "the date on which it is resumed"});
    }
    const bool mandatory = IsMandatory(task);
    for (const Constraint& constraint : {task.constraint, task.second_constraint}) {
      if (constraint.date.IsAbsent() || mandatory != OverridesLinks(constraint, task)) {
        continue;
      }
      switch (constraint.type) {
        case ConstraintType::kStartOn:
        case ConstraintType::kStartNoEarlier:
        case ConstraintType::kMandatoryStart:
        case ConstraintType::kPlacedStart:
          bounds.push_back({constraint.date.Minutes(), false, "its start constraint"});
          break;
        case ConstraintType::kFinishOn:
        case ConstraintType::kFinishNoEarlier:
        case ConstraintType::kMandatoryFinish:
          bounds.push_back({constraint.date.Minutes(), true, "its finish constraint"});
          break;
        default:
          break;
      }
    }
    if (mandatory) {
      return bounds;
    }
    for (const Link* link : HoldingLinks(task, true)) {
      const Task& from = *plan_.FindTask(link->predecessor);
      const Instant actual = FromFinish(*link) ? from.actual_finish : from.actual_start;
      const std::int64_t date = CountsFromActualDate(*link) ? actual.Minutes()
                                : FromFinish(*link)         ? EarlyFinish(from)
                                                            : EarlyStart(from);
      bounds.push_back(
          {calendars_->LagEnd(*link, date), ToFinish(*link), "the link from " + from.id});
    }
    return bounds;
  }

  void CheckEarly(const Task& task) {
    const MinuteCalendar& calendar = calendars_->OfTask(task);
    const std::int64_t start = EarlyStart(task);
    const std::int64_t finish = EarlyFinish(task);
    const bool has_work = WorkOf(task) > 0;
    CheckForm(task, scheduler_.early_start(IndexOf(task)), scheduler_.early_finish(IndexOf(task)));
    const bool is_held_back = IsHeldBack(task);
    bool is_held = IsMovedLate(task) || is_held_back;
    for (const Bound& bound : EarlyBounds(task)) {
      const std::int64_t date = bound.on_finish ? finish : start;
      // Work that ended just before the bound, with none in between, is not early.
      const bool is_early = bound.on_finish && has_work
                                ? calendar.WorkBetween(date, bound.moment) > 0
                                : date < bound.moment;
      Expect(!is_early || is_held_back, task, "comes before " + bound.cause + " lets it");
      is_held = is_held || calendar.WorkBetween(bound.moment, date) == 0;
    }
    Expect(is_held, task, "starts later than anything makes it");
  }

  /// Starts stand where work starts, finishes where it ends, with the task's work in between.
  void CheckForm(const Task& task, Instant start, Instant finish) {
    if (WorkOf(task) == 0) {
      Expect(start == finish, task, "takes time without work");
      return;
    }
    const MinuteCalendar& calendar = calendars_->OfTask(task);
    Expect(start.minute() < engine::kMinutesPerDay && calendar.Works(start.Minutes()), task,
           "does not start in working time");
    Expect(finish.minute() > 0 && calendar.Works(finish.Minutes() - 1), task,
           "does not finish in working time");
    Expect(calendar.WorkBetween(start.Minutes(), finish.Minutes()) == WorkOf(task), task,
           "does not have its work between its dates");
  }

  /// The links to what has happened already, where that limits late dates.
  void AddActualBounds(const Task& task, std::vector<Bound>& bounds) {
    for (const Link& link : plan_.links) {
      const Task* to = plan_.FindTask(link.successor);
      if (plan_.schedule.progress != engine::ProgressRule::kActualDates ||
          link.predecessor != task.uid || to == nullptr || !participates_(*to) ||
          !IsOrdinary(*to)) {
        continue;
      }
      const Instant actual = ToFinish(link) ? to->actual_finish : to->actual_start;
      if (!actual.IsAbsent()) {
        bounds.push_back({calendars_->LagBegin(link, actual.Minutes()), FromFinish(link),
                          "the actual date of " + to->id});
      }
    }
  }

  std::vector<Bound> LateBounds(const Task& task) {
    std::vector<Bound> bounds;
    const bool mandatory = IsMandatoryLate(task);
    for (const Constraint& constraint : {task.constraint, task.second_constraint}) {
      const ConstraintType start_type =
          mandatory ? ConstraintType::kMandatoryStart : ConstraintType::kStartNoLater;
      const ConstraintType finish_type =
          mandatory ? ConstraintType::kMandatoryFinish : ConstraintType::kFinishNoLater;
      const bool is_start = constraint.type == start_type ||
                            (!mandatory && constraint.type == ConstraintType::kStartOn);
      const bool is_finish = constraint.type == finish_type ||
                             (!mandatory && constraint.type == ConstraintType::kFinishOn);
      if ((is_start && !task.IsStarted()) || is_finish) {
        bounds.push_back({constraint.date.Minutes(), is_finish, "its constraint"});
      }
    }
    if (mandatory) {
      return bounds;
    }
    bounds.push_back({PlanFinish(), true, "the plan's finish"});
    AddActualBounds(task, bounds);
    if (plan_.schedule.open_ends_critical && IsOpenEnd(task)) {
      bounds.push_back({EarlyFinish(task), true, "its early finish at an open end"});
    }
    for (const Link* link : HoldingLinks(task, false)) {
      if (CountsFromActualDate(*link)) {
        continue;
      }
      const Task& to = *plan_.FindTask(link->successor);
      const std::int64_t limit = ToFinish(*link) ? LateFinish(to) : LateStart(to);
      bounds.push_back(
          {calendars_->LagBegin(*link, limit), FromFinish(*link), "the link to " + to.id});
    }
    if (IsMandatory(task)) {  // its start is given, whatever comes after it
      std::erase_if(bounds, [](const Bound& bound) { return !bound.on_finish; });
    }
    return bounds;
  }

  bool IsOpenEnd(const Task& task) const {
    return std::none_of(plan_.links.begin(), plan_.links.end(), [&](const Link& link) {
      const Task* to = plan_.FindTask(link.successor);
      return link.predecessor == task.uid && to != nullptr && participates_(*to) && IsOrdinary(*to);
    });
  }

  std::int64_t PlanFinish() const {
    return plan_.schedule.must_finish.IsAbsent() ? scheduler_.finish().Minutes()
                                                 : plan_.schedule.must_finish.Minutes();
  }

  void CheckLate(const Task& task) {
    const MinuteCalendar& calendar = calendars_->OfTask(task);
    CheckForm(task, scheduler_.late_start(IndexOf(task)), scheduler_.late_finish(IndexOf(task)));
    bool is_held = false;
    for (const Bound& bound : LateBounds(task)) {
      const std::int64_t date = bound.on_finish ? LateFinish(task) : LateStart(task);
      const std::int64_t spare = calendar.WorkBetween(date, bound.moment);
      Expect(spare >= 0, task, "has late dates after what " + bound.cause + " lets it");
      is_held = is_held || spare == 0;
    }
    Expect(is_held, task, "has late dates earlier than anything makes it");
    Expect(scheduler_.total_float(IndexOf(task)) ==
               calendar.WorkBetween(EarlyFinish(task), LateFinish(task)),
           task, "has a total float other than the work between its early and late finish");
    Expect(plan_.schedule.critical_by_longest_path ||
               scheduler_.is_critical(IndexOf(task)) ==
                   (scheduler_.total_float(IndexOf(task)) <= plan_.schedule.critical_float_minutes),
           task, "is critical against its float");
  }

  void CheckFreeFloat(const Task& task) {
    const MinuteCalendar& calendar = calendars_->OfTask(task);
    std::optional<std::int64_t> least;
    for (const Link* link : HoldingLinks(task, false)) {
      if (CountsFromActualDate(*link)) {
        continue;
      }
      const Task& to = *plan_.FindTask(link->successor);
      const std::int64_t limit = ToFinish(*link) ? EarlyFinish(to) : EarlyStart(to);
      const std::int64_t spare =
          calendar.WorkBetween(FromFinish(*link) ? EarlyFinish(task) : EarlyStart(task),
                               calendars_->LagBegin(*link, limit));
      least = std::min(least.value_or(spare), spare);
    }
    const std::int64_t expected =
        least.value_or(calendar.WorkBetween(EarlyFinish(task), PlanFinish()));
    Expect(scheduler_.free_float(IndexOf(task)) == std::max<std::int64_t>(0, expected), task,
           "has a free float other than what its successors leave it");
  }

  void CheckFinished(const Task& task) {
    Expect(scheduler_.early_finish(IndexOf(task)) == task.actual_finish, task,
           "is finished and does not have its actual finish");
    Expect(
        task.actual_start.IsAbsent() || scheduler_.early_start(IndexOf(task)) == task.actual_start,
        task, "is finished and does not have its actual start");
  }

  bool IsBelow(const Task& task, const Task& summary) const {
    const Task* above = plan_.FindTask(task.parent);
    return above != nullptr && (above->uid == summary.uid || IsBelow(*above, summary));
  }

  void CheckSummary(const Task& summary) {
    std::int64_t start = std::numeric_limits<std::int64_t>::max();
    std::int64_t finish = std::numeric_limits<std::int64_t>::min();
    for (const Task& task : plan_.tasks()) {
      if (participates_(task) && task.kind != TaskKind::kSummary && IsBelow(task, summary)) {
        start = std::min(start, EarlyStart(task));
        finish = std::max(finish, EarlyFinish(task));
      }
    }
    if (start <= finish) {
      Expect(EarlyStart(summary) == start && EarlyFinish(summary) == finish, summary,
             "does not span the tasks below it");
    }
  }

  void CheckFinishOfPlan() {
    std::int64_t finish = std::numeric_limits<std::int64_t>::min();
    for (const Task& task : plan_.tasks()) {
      if (participates_(task) && IsOrdinary(task)) {
        finish = std::max(finish, EarlyFinish(task));
      }
    }
    if (finish == std::numeric_limits<std::int64_t>::min()) {
      finish = plan_.StatusDate().Minutes();
    }
    if (scheduler_.finish().Minutes() != finish) {
      breaches_.push_back("the plan does not finish with its last task");
    }
  }

  const Plan& plan_;
  const Scheduler::Participates& participates_;
  const Scheduler& scheduler_;
  std::optional<PlanCalendars> calendars_;
  std::vector<std::string> breaches_;
};

}  // namespace

std::vector<std::string> CheckSchedule(const Plan& plan,
                                       const Scheduler::Participates& participates,
                                       const Scheduler& scheduler, Checked checked) {
  return Checker(plan, participates, scheduler).Run(checked);
}

}  // namespace nimbrel::test
