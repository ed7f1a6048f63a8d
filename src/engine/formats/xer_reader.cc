#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <unordered_set>
#include <utility>

#include "engine/formats/plan_reader.h"
#include "engine/formats/value_text.h"
#include "engine/formats/warning_list.h"
#include "engine/formats/xer_calendars.h"
#include "engine/formats/xer_lags.h"
#include "engine/formats/xer_project.h"
#include "engine/formats/xer_structure.h"
#include "engine/formats/xer_table.h"
#include "engine/formats/xer_tasks.h"

namespace nimbrel::engine {
namespace {

/// Tables whose rows are read, as far as they belong to the project.
constexpr std::array<std::string_view, 8> kReadTables = {
    "CALENDAR", "PROJECT", "PROJWBS", "RSRC", "SCHEDOPTIONS", "TASK", "TASKPRED", "TASKRSRC"};

struct LeftOut {
  std::string_view table;
  std::string_view what;
};

/// What rows of a project's other tables are, in users' words.
constexpr std::array<LeftOut, 8> kLeftOut = {{
    {"TASKACTV", "activity codes of activities: left out"},
    {"TASKMEMO", "notes on activities: left out"},
    {"TASKPROC", "steps of activities: left out"},
    {"TASKDOC", "documents of activities: left out"},
    {"UDFVALUE", "values of user-defined fields: left out"},
    {"PROJCOST", "expenses: left out"},
    {"WBSMEMO", "notes on nodes of the breakdown structure: left out"},
    {"PROJPCAT", "codes of projects: left out"},
}};

LinkType ReadLinkType(const XerRow& row) {
  const std::string_view type = row.Text("pred_type");
  if (type == "PR_FS" || type == "PR_FS1") {
    return LinkType::kFinishToStart;
  }
  if (type == "PR_SS") {
    return LinkType::kStartToStart;
  }
  if (type == "PR_FF") {
    return LinkType::kFinishToFinish;
  }
  if (type == "PR_SF") {
    return LinkType::kStartToFinish;
  }
  row.FailField("pred_type", "PR_FS, PR_SS, PR_FF or PR_SF");
}

/// Puts the links of a project into its plan.
class LinkReader {
 public:
  LinkReader(const XerFile& file, const XerTaskReader& reader, const std::vector<XerTask>& tasks,
             const XerScheduling& scheduling, XerCalendars& calendars, Plan& plan,
             WarningList& warnings)
      : file_(file),
        reader_(reader),
        tasks_(tasks),
        scheduling_(scheduling),
        calendars_(calendars),
        lags_(plan),
        plan_(plan),
        warnings_(warnings) {}

  void ReadAll() {
    file_.ForEach("TASKPRED", [this](const XerRow& row) { ReadRow(row); });
  }

 private:
  void ReadRow(const XerRow& row) {
    const std::int32_t successor = reader_.PositionOf(row.Required("task_id"));
    const std::int32_t predecessor = reader_.PositionOf(row.Required("pred_task_id"));
    if (successor < 0 && predecessor < 0) {
      return;  // between activities of other projects
    }
    if (successor == XerTaskReader::kUnknown || predecessor == XerTaskReader::kUnknown) {
      warnings_.Add("links to activities that are not in the file: left out");
      return;
    }
    if (successor == predecessor) {
      row.FailField("pred_task_id", "another activity than the link's own");
    }
    const LinkType type = ReadLinkType(row);
    const std::int32_t lag_minutes = row.Minutes("lag_hr_cnt", 0);
    if (successor < 0 || predecessor < 0) {
      const bool kept = scheduling_.use_external_dates &&
                        (successor < 0 ? HoldBefore(row, predecessor, type, lag_minutes)
                                       : HoldAfter(row, successor, type, lag_minutes));
      warnings_.Add(kept ? "links to activities of other projects: kept as constraints at their "
                           "dates in the file"
                         : "links to activities of other projects: left out");
      return;
    }
    plan_.links.push_back(
        {UidAt(predecessor), UidAt(successor), type, lag_minutes, scheduling_.lag_calendar});
  }

  Uid UidAt(std::int32_t position) const { return tasks_[static_cast<std::size_t>(position)].uid; }

  /// Holds a task of ours behind a predecessor in another project. One that is finished holds
  /// nothing past the data date.
  bool HoldAfter(const XerRow& row, std::int32_t successor, LinkType type, std::int32_t lag) {
    const XerOuterTask& outer = *reader_.FindOuter(row.Text("pred_task_id"));
    const Task& ours = *plan_.FindTask(UidAt(successor));
    const bool goes_ahead =
        ours.IsStarted() && plan_.schedule.progress != ProgressRule::kRetainedLogic;
    if (outer.is_finished || goes_ahead) {
      return true;
    }
    const bool from_finish = type == LinkType::kFinishToStart || type == LinkType::kFinishToFinish;
    const bool to_start = type == LinkType::kFinishToStart || type == LinkType::kStartToStart;
    const bool is_early = plan_.schedule.lag_from_early_start || outer.actual_start.IsAbsent();
    const Instant start = is_early ? outer.early_start : outer.actual_start;
    return Hold(
        successor, to_start ? ConstraintType::kStartNoEarlier : ConstraintType::kFinishNoEarlier,
        lags_.EndOf(from_finish ? outer.finish : start, lag, LagCalendarOf(outer, ours, true)));
  }

  /// Holds a task of ours before a successor in another project.
  bool HoldBefore(const XerRow& row, std::int32_t predecessor, LinkType type, std::int32_t lag) {
    const XerOuterTask& outer = *reader_.FindOuter(row.Text("task_id"));
    const Task& ours = *plan_.FindTask(UidAt(predecessor));
    if (outer.is_finished) {
      return true;
    }
    const bool from_finish = type == LinkType::kFinishToStart || type == LinkType::kFinishToFinish;
    const bool to_start = type == LinkType::kFinishToStart || type == LinkType::kStartToStart;
    return Hold(predecessor,
                from_finish ? ConstraintType::kFinishNoLater : ConstraintType::kStartNoLater,
                lags_.BeginOf(to_start ? outer.late_start : outer.late_finish, lag,
                              LagCalendarOf(outer, ours, false)));
  }

  /// The calendar on which a lag between a task of ours and one of another project runs; 0 for the
  /// clock.
  Uid LagCalendarOf(const XerOuterTask& outer, const Task& ours, bool outer_comes_first) {
    const LagCalendar rule = scheduling_.lag_calendar;
    if (rule == LagCalendar::kElapsed) {
      return 0;
    }
    Uid calendar = 0;
    if (rule != LagCalendar::kPlanDefault) {
      const bool is_outer = (rule == LagCalendar::kPredecessor) == outer_comes_first;
      calendar = is_outer ? calendars_.UidOf(outer.calendar, plan_) : ours.calendar;
    }
    return calendar == 0 ? plan_.default_calendar : calendar;
  }

  bool Hold(std::int32_t position, ConstraintType type, Instant date) {
    const bool about_start =
        type == ConstraintType::kStartNoEarlier || type == ConstraintType::kStartNoLater;
    return IsPlanDate(date) && HoldToOuterDate(*plan_.FindTask(UidAt(position)), type,
                                               about_start ? date.AsStart() : date.AsFinish());
  }

  const XerFile& file_;
  const XerTaskReader& reader_;
  const std::vector<XerTask>& tasks_;
  const XerScheduling& scheduling_;
  XerCalendars& calendars_;
  XerLags lags_;
  Plan& plan_;
  WarningList& warnings_;
};

/// Counts what the file has and the plan does not hold.
void WarnOfLeftOut(const XerFile& file, const XerProject& project, WarningList& warnings) {
  if (!file.has_end_mark()) {
    warnings.Add("files without an end mark: something may be missing");
  }
  warnings.Add("other projects in the file: not read",
               static_cast<std::int64_t>(XerProjects(file).size()) - 1);
  warnings.Add("resource assignments: left out", file.CountRows("TASKRSRC", "proj_id", project.id));
  for (const LeftOut& entry : kLeftOut) {
    warnings.Add(entry.what, file.CountRows(entry.table, "proj_id", project.id));
  }
  for (const std::string_view table : file.TableNames()) {
    const bool is_read =
        std::find(kReadTables.begin(), kReadTables.end(), table) != kReadTables.end();
    const bool is_named = std::any_of(kLeftOut.begin(), kLeftOut.end(),
                                      [table](const auto& entry) { return entry.table == table; });
    if (!is_read && !is_named) {
      warnings.Add(fmt::format("rows of the table {}: left out", table),
                   file.CountRows(table, "proj_id", project.id));
    }
  }
}

}  // namespace

ReadResult ReadXer(std::string_view bytes, const std::string& name, const ReadOptions& options) {
  const XerFile file(bytes, name);
  const XerProject project = ChooseXerProject(file, options.project);
  WarningList warnings;
  ReadResult result;
  Plan& plan = result.plan;
  plan.name = project.short_name;
  plan.time_unit = options.time_unit;
  const XerScheduling scheduling = ReadXerScheduling(file, project, plan, warnings);
  XerCalendars calendars(file, warnings);
  calendars.AddShared(project.id, plan);
  calendars.SetDefault(scheduling.default_calendar, plan, warnings);
  XerTaskReader reader(file, project, scheduling, calendars, plan, warnings);
  std::vector<XerTask> tasks = reader.ReadAll();
  XerStructure structure(file, project, warnings);
  plan.title = structure.ProjectName();
  structure.AddTo(plan, tasks, reader.ids(), warnings);
  LinkReader(file, reader, tasks, scheduling, calendars, plan, warnings).ReadAll();
  WarnOfLeftOut(file, project, warnings);
  result.warnings = warnings.Take();
  return result;
}

}  // namespace nimbrel::engine
