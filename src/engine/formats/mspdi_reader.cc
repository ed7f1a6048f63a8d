#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "engine/formats/mspdi_assignments.h"
#include "engine/formats/mspdi_calendars.h"
#include "engine/formats/mspdi_project.h"
#include "engine/formats/mspdi_tasks.h"
#include "engine/formats/plan_reader.h"
#include "engine/formats/value_text.h"
#include "engine/formats/warning_list.h"
#include "engine/formats/xml_file.h"
#include "platform/text.h"

namespace nimbrel::engine {
namespace {

/// Puts the tasks of an MSPDI file into a plan, which has its dates and calendars already.
class PlanMaker {
 public:
  PlanMaker(const XmlFile& file, MspdiCalendars& calendars, const MspdiAssignments& assignments,
            Plan& plan, WarningList& warnings)
      : file_(file),
        calendars_(calendars),
        assignments_(assignments),
        plan_(plan),
        warnings_(warnings) {}

  void AddTasks(std::vector<MspdiTask>& tasks) {
    std::erase_if(tasks, [this](const MspdiTask& entry) {
      if (entry.is_left_out) {
        left_out_.insert(entry.number);
      }
      return entry.is_left_out;
    });
    MarkSummaries(tasks);
    const bool by_position = HaveUniquePositions(tasks);
    std::vector<std::pair<std::int64_t, Uid>> above;  // level and task, from the top down
    for (MspdiTask& entry : tasks) {
      while (!above.empty() && above.back().first >= entry.level) {
        above.pop_back();
      }
      Task& task = entry.task;
      task.id = std::to_string(by_position ? entry.position : entry.number);
      task.parent = above.empty() ? 0 : above.back().second;
      if (task.kind != TaskKind::kSummary) {
        task.calendar = CalendarOf(entry);
      }
      if (tasks_.contains(entry.number)) {
        Fail(entry.node,
             "expected a UID that no other task has, found " + std::to_string(entry.number));
      }
      const Uid uid = plan_.AddTask(std::move(task)).uid;
      tasks_.emplace(entry.number, Place{uid, entry.duration_minutes});
      above.emplace_back(entry.level, uid);
    }
  }

  void AddLinks(const std::vector<MspdiTask>& tasks) {
    for (const MspdiTask& entry : tasks) {
      for (const MspdiLink& link : entry.links) {
        AddLink(entry, link);
      }
    }
  }

 private:
  struct Place {
    Uid uid = 0;
    std::int32_t duration_minutes = 0;
  };

  [[noreturn]] void Fail(pugi::xml_node node, std::string_view message) const {
    throw FormatError(file_.name(), file_.LineOf(node), message);
  }

  /// Whether the numbers that users see are all there and tell the tasks apart.
  static bool HaveUniquePositions(const std::vector<MspdiTask>& tasks) {
    std::unordered_set<std::int64_t> seen;
    return std::all_of(tasks.begin(), tasks.end(), [&seen](const MspdiTask& entry) {
      return entry.position >= 0 && seen.insert(entry.position).second;
    });
  }

  /// What has tasks below it is a summary, whatever it is marked as.
  static void MarkSummaries(std::vector<MspdiTask>& tasks) {
    for (std::size_t i = 0; i + 1 < tasks.size(); ++i) {
      Task& task = tasks[i].task;
      if (tasks[i + 1].level > tasks[i].level && task.kind != TaskKind::kSummary) {
        Task summary;
        summary.description = task.description;
        summary.stored = task.stored;
        summary.kind = TaskKind::kSummary;
        task = std::move(summary);
      }
    }
  }

  /// The calendar of a task, 0 for the plan's own.
  Uid CalendarOf(MspdiTask& entry) {
    const Uid uid = CombinedCalendarOf(entry);
    AddPauses(entry, uid);
    if (!entry.task.IsFinished() && !calendars_.HasWork(uid)) {
      Fail(entry.node, "expected a calendar with working time for task " + entry.task.id +
                           ", found " + Quoted(plan_.FindCalendar(uid)->name) + " without any");
    }
    return uid == plan_.default_calendar ? 0 : uid;
  }

  /// The pauses of a split task move with it: they are as good as work of its own.
  void AddPauses(MspdiTask& entry, Uid calendar) {
    const std::vector<TimeSpan>& gaps = assignments_.GapsOf(entry.number);
    Task& task = entry.task;
    if (gaps.empty() || task.IsFinished() || task.remaining_minutes == 0) {
      return;
    }
    warnings_.Add("split tasks: their pauses are kept as part of their duration");
    const std::int64_t whole =
        task.remaining_minutes + calendars_.WorkWithin(calendar, gaps, plan_);
    if (whole > kLongestMinutes) {
      Fail(entry.node, "expected pauses of no more than 200 years, found more");
    }
    const std::int32_t pauses = static_cast<std::int32_t>(whole) - task.remaining_minutes;
    task.remaining_minutes += pauses;
    task.original_minutes = static_cast<std::int32_t>(
        std::min<std::int64_t>(std::int64_t{task.original_minutes} + pauses, kLongestMinutes));
  }

  Uid CombinedCalendarOf(const MspdiTask& entry) {
    if (entry.is_elapsed) {
      return calendars_.Elapsed(plan_);
    }
    std::int64_t own = entry.calendar;
    if (own >= 0 && !calendars_.Has(own)) {
      warnings_.Add("tasks on a calendar that is not in the file: on the plan's calendar");
      own = -1;
    }
    const std::vector<std::int64_t>& resources = assignments_.CalendarsOf(entry.number);
    const bool by_resources = !resources.empty() && (own < 0 || !entry.ignores_resources);
    if (by_resources && !entry.task.IsMilestone()) {
      return calendars_.OfResources(resources, own, plan_);
    }
    return own < 0 ? plan_.default_calendar : calendars_.UidOf(own, plan_);
  }

  void AddLink(const MspdiTask& successor, const MspdiLink& link) {
    const auto predecessor = tasks_.find(link.predecessor);
    if (predecessor == tasks_.end()) {
      warnings_.Add(left_out_.contains(link.predecessor)
                        ? "links to tasks that were left out: left out too"
                        : "links to tasks that are not in the file: left out");
      return;
    }
    if (link.predecessor == successor.number) {
      Fail(link.node, "expected another task than the link's own in PredecessorUID, found " +
                          std::to_string(link.predecessor));
    }
    Link made;
    made.predecessor = predecessor->second.uid;
    made.successor = tasks_.at(successor.number).uid;
    made.type = link.type;
    made.lag_minutes = link.lag_minutes + PercentLag(link, predecessor->second.duration_minutes);
    // Lags run on the calendar that the successor has of its own, not on that of its resources.
    made.lag_calendar = link.is_elapsed           ? LagCalendar::kElapsed
                        : successor.calendar >= 0 ? LagCalendar::kSuccessor
                                                  : LagCalendar::kPlanDefault;
    plan_.links.push_back(made);
  }

  /// A percentage of the predecessor's duration, in minutes.
  std::int32_t PercentLag(const MspdiLink& link, std::int32_t duration_minutes) const {
    const std::optional<std::int32_t> minutes =
        HoursToMinutes(link.lag_percent / 100.0 * duration_minutes / 60.0);
    if (!minutes) {
      Fail(link.node, "expected a LinkLag of no more than 200 years, found more");
    }
    return *minutes;
  }

  const XmlFile& file_;
  MspdiCalendars& calendars_;
  const MspdiAssignments& assignments_;
  Plan& plan_;
  WarningList& warnings_;
  std::unordered_map<std::int64_t, Place> tasks_;  // by the file's number
  std::unordered_set<std::int64_t> left_out_;
};

/// The start of the first task, absent if no task has one.
Instant FirstStart(const std::vector<MspdiTask>& tasks) {
  Instant first;
  for (const MspdiTask& entry : tasks) {
    const Instant start = entry.task.stored.early_start;
    if (first.IsAbsent() || (!start.IsAbsent() && start < first)) {
      first = start;
    }
  }
  return first;
}

/// The latest moment of which the tasks' progress tells, absent if there is none.
Instant LatestProgress(const std::vector<MspdiTask>& tasks) {
  Instant latest;
  for (const MspdiTask& entry : tasks) {
    for (const Instant moment :
         {entry.task.actual_start, entry.task.suspended, entry.task.actual_finish}) {
      latest = moment.IsAbsent() ? latest : std::max(latest, moment.AsStart());
    }
  }
  return latest;
}

/// Fills in the plan's start and data date where the project does not give them.
void SettleDates(const XmlFile& file, const std::vector<MspdiTask>& tasks, Plan& plan) {
  if (plan.start.IsAbsent()) {
    plan.start = FirstStart(tasks);
  }
  if (plan.start.IsAbsent()) {
    throw FormatError(file.name(), file.LineOf(file.root()),
                      "expected a StartDate, found none in the project and its tasks");
  }
  const Instant progress = LatestProgress(tasks);
  if (plan.data_date.IsAbsent() && !progress.IsAbsent()) {
    plan.data_date = std::max(progress, plan.start);
  }
}

/// Counts what the file has and the plan does not hold.
void WarnOfLeftOut(const XmlFile& file, WarningList& warnings) {
  std::int64_t fields = 0;
  std::int64_t baselines = 0;
  for (const pugi::xml_node task : file.root().child("Tasks").children("Task")) {
    for (const pugi::xml_node child : task.children()) {
      const std::string_view name = child.name();
      fields += name == "ExtendedAttribute" || name == "OutlineCode" ? 1 : 0;
      baselines += name == "Baseline" ? 1 : 0;
    }
  }
  warnings.Add("values of custom fields and outline codes: left out", fields);
  warnings.Add("baselines of tasks: left out", baselines);
}

}  // namespace

ReadResult ReadMspdi(std::string_view bytes, const std::string& name, const ReadOptions& options) {
  const XmlFile file(bytes, name);
  WarningList warnings;
  ReadResult result;
  Plan& plan = result.plan;
  plan.time_unit = options.time_unit;
  ReadMspdiProject(file, plan, warnings);
  const XmlElement project = MspdiProject(file);
  if (options.project && !platform::EqualsIgnoreCase(*options.project, plan.name)) {
    project.Fail("expected the project " + Quoted(*options.project) + ", found " + plan.name);
  }
  MspdiCalendars calendars(file, warnings);
  calendars.AddShared(project.Integer("CalendarUID", -1), plan, warnings);
  const MspdiAssignments assignments(file, calendars, warnings);
  std::vector<MspdiTask> tasks = ReadMspdiTasks(file, warnings);
  SettleDates(file, tasks, plan);
  PlanMaker maker(file, calendars, assignments, plan, warnings);
  maker.AddTasks(tasks);
  maker.AddLinks(tasks);
  WarnOfLeftOut(file, warnings);
  result.warnings = warnings.Take();
  return result;
}

}  // namespace nimbrel::engine
