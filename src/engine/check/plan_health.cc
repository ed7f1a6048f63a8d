#include "engine/check/plan_health.h"

#include <algorithm>
#include <functional>
#include <unordered_set>

#include "fmt/format.h"

namespace nimbrel::engine {
namespace {

/// The plan's open activities and how they are linked.
class Inspection {
 public:
  Inspection(const Plan& plan, const Scheduler& scheduler, const HealthLimits& limits)
      : plan_(plan), scheduler_(scheduler), limits_(limits) {
    for (const Link& link : plan.links) {
      has_predecessor_.insert(link.successor);
      has_successor_.insert(link.predecessor);
    }
  }

  std::vector<HealthFinding> Run() const {
    using Type = ConstraintType;
    return {
        Activities("no_predecessor", "Open starts: activities without a predecessor",
                   [this](const Task& task) { return !has_predecessor_.contains(task.uid); }),
        Activities("no_successor", "Open ends: activities without a successor",
                   [this](const Task& task) { return !has_successor_.contains(task.uid); }),
        Activities("no_links", "Activities without any link",
                   [this](const Task& task) {
                     return !has_predecessor_.contains(task.uid) &&
                            !has_successor_.contains(task.uid);
                   }),
        Activities("negative_float", "Negative total float",
                   [this](const Task& task) {
                     return scheduler_.total_float(scheduler_.IndexOf(task.uid)) < 0;
                   }),
        Activities("hard_constraints",
                   "Hard constraints: dates that hold an activity whatever its logic",
                   [](const Task& task) {
                     const auto hard = [](Type type) {
                       return type == Type::kStartOn || type == Type::kFinishOn ||
                              type == Type::kMandatoryStart || type == Type::kMandatoryFinish ||
                              type == Type::kPlacedStart;
                     };
                     return hard(task.constraint.type) || hard(task.second_constraint.type);
                   }),
        Links("leads", "Leads: links with a negative lag",
              [](const Link& link) { return link.lag_minutes < 0; }),
        Links("long_lags",
              fmt::format("Long lags: over {:g} hours", limits_.long_lag_minutes / 60.0),
              [this](const Link& link) { return link.lag_minutes > limits_.long_lag_minutes; }),
        Links("out_of_sequence",
              "Out-of-sequence progress: begun or finished before its predecessor allows",
              [this](const Link& link) { return IsOutOfSequence(link); }),
        CalendarsWithoutWork(),
    };
  }

 private:
  bool IsOpen(const Task& task) const {
    return !task.IsFinished() && task.kind != TaskKind::kSummary &&
           task.kind != TaskKind::kLevelOfEffort && scheduler_.IndexOf(task.uid) >= 0;
  }

  HealthFinding Activities(std::string key, std::string title,
                           const std::function<bool(const Task&)>& found) const {
    HealthFinding finding{std::move(key), std::move(title), {}};
    for (const Task& task : plan_.tasks()) {
      if (IsOpen(task) && found(task)) {
        finding.items.push_back(task.id);
      }
    }
    return finding;
  }

  HealthFinding Links(std::string key, std::string title,
                      const std::function<bool(const Link&)>& found) const {
    HealthFinding finding{std::move(key), std::move(title), {}};
    for (const Link& link : plan_.links) {
      const Task* predecessor = plan_.FindTask(link.predecessor);
      const Task* successor = plan_.FindTask(link.successor);
      if (predecessor != nullptr && successor != nullptr &&
          (IsOpen(*predecessor) || IsOpen(*successor)) && found(link)) {
        finding.items.push_back(fmt::format("{} -> {}", predecessor->id, successor->id));
      }
    }
    return finding;
  }

  /// Whether the successor has done what the link only allows after something that the predecessor
  /// has not done yet.
  bool IsOutOfSequence(const Link& link) const {
    const Task& predecessor = *plan_.FindTask(link.predecessor);
    const Task& successor = *plan_.FindTask(link.successor);
    const bool from_finish =
        link.type == LinkType::kFinishToStart || link.type == LinkType::kFinishToFinish;
    const bool to_start =
        link.type == LinkType::kFinishToStart || link.type == LinkType::kStartToStart;
    const bool released = from_finish ? predecessor.IsFinished() : predecessor.IsStarted();
    const bool done = to_start ? successor.IsStarted() : successor.IsFinished();
    return done && !released;
  }

  HealthFinding CalendarsWithoutWork() const {
    HealthFinding finding{"calendars_without_work", "Calendars without any working time", {}};
    for (const CalendarDefinition& calendar : plan_.calendars) {
      const auto works = [](const DayPattern& pattern) { return !pattern.empty(); };
      const bool any = std::any_of(calendar.week.begin(), calendar.week.end(), works) ||
                       std::any_of(calendar.exceptions.begin(), calendar.exceptions.end(),
                                   [&](const auto& entry) { return works(entry.second); });
      if (!any) {
        finding.items.push_back(calendar.name);
      }
    }
    return finding;
  }

  const Plan& plan_;
  const Scheduler& scheduler_;
  const HealthLimits& limits_;
  std::unordered_set<Uid> has_predecessor_;
  std::unordered_set<Uid> has_successor_;
};

}  // namespace

std::vector<HealthFinding> InspectPlan(const Plan& plan, const Scheduler& scheduler,
                                       const HealthLimits& limits) {
  return Inspection(plan, scheduler, limits).Run();
}

}  // namespace nimbrel::engine
