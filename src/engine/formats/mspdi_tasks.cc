#include "engine/formats/mspdi_tasks.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace nimbrel::engine {
namespace {

/// Deeper than any plan is; bounds what summaries of summaries cost.
constexpr std::int64_t kDeepestLevel = 200;

/// The file marks estimates by adding this to a unit.
constexpr std::int64_t kEstimated = 32;

/// Units of durations and lags that run around the clock: minutes to months, and percentages.
bool IsElapsedUnit(std::int64_t unit) {
  const std::int64_t plain = unit >= kEstimated + 3 ? unit - kEstimated : unit;
  return plain == 4 || plain == 6 || plain == 8 || plain == 10 || plain == 12 || plain == 20;
}

bool IsPercentUnit(std::int64_t unit) {
  const std::int64_t plain = unit >= kEstimated + 3 ? unit - kEstimated : unit;
  return plain == 19 || plain == 20;
}

const XmlNames& TaskNames() {
  static const XmlNames kNames = {"UID",
                                  "ID",
                                  "Name",
                                  "Active",
                                  "Manual",
                                  "IsNull",
                                  "OutlineLevel",
                                  "Start",
                                  "Finish",
                                  "Duration",
                                  "ManualStart",
                                  "ManualDuration",
                                  "DurationFormat",
                                  "Stop",
                                  "Resume",
                                  "Milestone",
                                  "Summary",
                                  "IsSubproject",
                                  "ExternalTask",
                                  "EarlyStart",
                                  "EarlyFinish",
                                  "LateStart",
                                  "LateFinish",
                                  "TotalSlack",
                                  "PercentComplete",
                                  "ActualStart",
                                  "ActualFinish",
                                  "RemainingDuration",
                                  "ConstraintType",
                                  "ConstraintDate",
                                  "CalendarUID",
                                  "Deadline",
                                  "LevelingDelay",
                                  "IgnoreResourceCalendar"};
  return kNames;
}

/// Reads one task.
class TaskReader {
 public:
  TaskReader(const XmlFile& file, const XmlElement& element, WarningList& warnings)
      : file_(file), element_(element), warnings_(warnings) {}

  MspdiTask Read() {
    ReadIdentity();
    if (activity_.is_left_out) {
      return std::move(activity_);
    }
    task_.description = element_.Text("Name");
    activity_.level = element_.Integer("OutlineLevel", 1);
    if (activity_.level > kDeepestLevel) {
      element_.FailChild("OutlineLevel", fmt::format("a number of at most {}", kDeepestLevel));
    }
    activity_.calendar = element_.Integer("CalendarUID", -1);
    activity_.ignores_resources = element_.Flag("IgnoreResourceCalendar", false);
    activity_.is_elapsed = IsElapsedUnit(element_.Integer("DurationFormat", 0));
    if (element_.Flag("Summary", false) && !element_.Flag("IsSubproject", false)) {
      task_.kind = TaskKind::kSummary;
    }
    ReadLinks();
    ReadDurations();
    ReadStoredDates();
    if (task_.kind != TaskKind::kSummary) {
      ReadProgress();
      ReadConstraints();
      HoldAtDates();
    }
    return std::move(activity_);
  }

 private:
  void ReadIdentity() {
    activity_.node = element_.node();
    activity_.number = element_.Integer("UID", -1);
    if (activity_.number < 0) {
      element_.FailChild("UID", "a number of 0 or more");
    }
    activity_.position = element_.Integer("ID", -1);
    if (element_.Flag("IsNull", false)) {
      activity_.is_left_out = true;
    } else if (!element_.Flag("Active", true)) {
      activity_.is_left_out = true;
      warnings_.Add("inactive tasks: left out");
    }
  }

  void ReadLinks() {
    for (const pugi::xml_node node : element_.node().children("PredecessorLink")) {
      const XmlElement link(file_, node);
      if (link.Flag("CrossProject", false)) {
        warnings_.Add("links to tasks of other projects: left out");
        continue;
      }
      MspdiLink read;
      read.node = node;
      read.predecessor = link.Integer("PredecessorUID", -1);
      read.type = ReadLinkType(link);
      const std::int64_t unit = link.Integer("LagFormat", 7);
      read.is_elapsed = IsElapsedUnit(unit);
      if (IsPercentUnit(unit)) {
        read.lag_percent = link.Number("LinkLag", 0);
      } else {
        read.lag_minutes = link.Tenths("LinkLag").value_or(0);
      }
      activity_.links.push_back(read);
    }
  }

  static LinkType ReadLinkType(const XmlElement& link) {
    switch (link.Integer("Type", 1)) {
      case 0:
        return LinkType::kFinishToFinish;
      case 1:
        return LinkType::kFinishToStart;
      case 2:
        return LinkType::kStartToFinish;
      case 3:
        return LinkType::kStartToStart;
      default:
        link.FailChild("Type", "a number from 0 to 3");
    }
  }

  void ReadDurations() {
    const std::optional<std::int32_t> duration = element_.Duration("Duration");
    activity_.duration_minutes =
        duration ? *duration : element_.Duration("ManualDuration").value_or(0);
    if (task_.kind == TaskKind::kSummary) {
      return;
    }
    const std::int64_t percent = element_.Integer("PercentComplete", 0);
    task_.percent_complete = static_cast<double>(std::clamp<std::int64_t>(percent, 0, 100));
    if (activity_.duration_minutes == 0 && element_.Flag("Milestone", false)) {
      // One that follows others is where they end, be it the evening before work goes on.
      const bool follows =
          std::any_of(activity_.links.begin(), activity_.links.end(), [](const MspdiLink& link) {
            return link.type == LinkType::kFinishToStart || link.type == LinkType::kFinishToFinish;
          });
      task_.kind = follows ? TaskKind::kFinishMilestone : TaskKind::kStartMilestone;
    }
    task_.original_minutes = activity_.duration_minutes;
    const std::optional<std::int32_t> remaining = element_.Duration("RemainingDuration");
    task_.remaining_minutes = remaining.value_or(static_cast<std::int32_t>(
        std::lround(activity_.duration_minutes * (1.0 - task_.percent_complete / 100.0))));
    if (task_.IsMilestone()) {
      task_.remaining_minutes = 0;
    }
  }

  void ReadStoredDates() {
    StoredDates& stored = task_.stored;
    stored.early_start = element_.Date(element_.Has("EarlyStart") ? "EarlyStart" : "Start");
    stored.early_finish =
        element_.FinishDate(element_.Has("EarlyFinish") ? "EarlyFinish" : "Finish");
    stored.late_start = element_.Date("LateStart");
    stored.late_finish = element_.FinishDate("LateFinish");
    stored.total_float_minutes = element_.Tenths("TotalSlack");
  }

  void ReadProgress() {
    task_.actual_start = element_.Date("ActualStart");
    task_.actual_finish = element_.FinishDate("ActualFinish");
    if (task_.percent_complete >= 100 && !task_.IsFinished()) {
      task_.actual_finish = element_.FinishDate("Finish");
    }
    if ((task_.percent_complete > 0 || task_.IsFinished()) && !task_.IsStarted()) {
      task_.actual_start = element_.Date("Start");
    }
    if (task_.IsFinished() && !task_.IsStarted()) {
      task_.actual_start = task_.actual_finish.AsStart();
    }
    if (task_.IsFinished()) {
      if (task_.actual_finish.Minutes() < task_.actual_start.Minutes()) {
        warnings_.Add("tasks that finished before they started: started when they finished");
        task_.actual_start = task_.actual_finish.AsStart();
      }
      task_.remaining_minutes = 0;
      task_.percent_complete = 100;
      return;
    }
    if (task_.IsStarted()) {
      task_.suspended = element_.Date("Stop");
      task_.resumed = element_.Date(element_.Has("Resume") ? "Resume" : "Stop");
    }
  }

  /// What a type of constraint means here; "must" overrides the links.
  Constraint ReadConstraint() {
    switch (element_.Integer("ConstraintType", 0)) {
      case 0:
        return {};
      case 1:
        return {ConstraintType::kAsLateAsPossible, {}};
      case 2:
        return {ConstraintType::kMandatoryStart, element_.Date("ConstraintDate")};
      case 3:
        return {ConstraintType::kMandatoryFinish, element_.FinishDate("ConstraintDate")};
      case 4:
        return {ConstraintType::kStartNoEarlier, element_.Date("ConstraintDate")};
      case 5:
        return {ConstraintType::kStartNoLater, element_.Date("ConstraintDate")};
      case 6:
        return {ConstraintType::kFinishNoEarlier, element_.FinishDate("ConstraintDate")};
      case 7:
        return {ConstraintType::kFinishNoLater, element_.FinishDate("ConstraintDate")};
      default:
        element_.FailChild("ConstraintType", "a number from 0 to 7");
    }
  }

  static bool IsAboutFinish(ConstraintType type) {
    return type == ConstraintType::kFinishNoEarlier || type == ConstraintType::kFinishNoLater ||
           type == ConstraintType::kMandatoryFinish;
  }

  void ReadConstraints() {
    task_.constraint = ReadConstraint();
    if (task_.IsStarted() && !task_.IsFinished() && !IsAboutFinish(task_.constraint.type)) {
      task_.constraint = {};  // it has had its time
    }
    if (task_.constraint.date.IsAbsent() && task_.constraint.type != ConstraintType::kNone &&
        task_.constraint.type != ConstraintType::kAsLateAsPossible) {
      warnings_.Add("constraints without a date: left out");
      task_.constraint = {};
    }
    const Instant deadline = element_.FinishDate("Deadline");
    if (!deadline.IsAbsent()) {
      task_.second_constraint = {ConstraintType::kFinishNoLater, deadline};
    }
  }

  void HoldAtDates() {
    if (task_.IsStarted()) {
      return;
    }
    const Instant start = element_.Date(element_.Has("Start") ? "Start" : "ManualStart");
    const bool is_manual = element_.Flag("Manual", false);
    const bool is_outside =
        element_.Flag("ExternalTask", false) || element_.Flag("IsSubproject", false);
    if (is_manual && start.IsAbsent()) {
      warnings_.Add("manually scheduled tasks without a date: scheduled by their links");
    } else if (is_manual) {
      warnings_.Add("manually scheduled tasks: held at their start");
    } else if (is_outside && !start.IsAbsent()) {
      warnings_.Add("tasks that stand for other projects: held at their start");
    }
    if ((is_manual || is_outside) && !start.IsAbsent()) {
      task_.constraint = {ConstraintType::kPlacedStart, start};
    } else if (element_.Number("LevelingDelay", 0) > 0 && !start.IsAbsent() &&
               task_.constraint.type == ConstraintType::kNone) {
      warnings_.Add("tasks moved by levelling: may not start earlier than they were moved to");
      task_.constraint = {ConstraintType::kStartNoEarlier, start};
    }
  }

  const XmlFile& file_;
  const XmlElement& element_;
  WarningList& warnings_;
  MspdiTask activity_;
  Task& task_ = activity_.task;
};

}  // namespace

std::vector<MspdiTask> ReadMspdiTasks(const XmlFile& file, WarningList& warnings) {
  std::vector<MspdiTask> tasks;
  for (const pugi::xml_node node : file.root().child("Tasks").children("Task")) {
    const XmlElement element(file, node, TaskNames());
    tasks.push_back(TaskReader(file, element, warnings).Read());
  }
  const bool all_placed = std::all_of(tasks.begin(), tasks.end(),
                                      [](const MspdiTask& task) { return task.position >= 0; });
  if (all_placed) {
    std::stable_sort(tasks.begin(), tasks.end(), [](const MspdiTask& a, const MspdiTask& b) {
      return a.position < b.position;
    });
  }
  return tasks;
}

}  // namespace nimbrel::engine
