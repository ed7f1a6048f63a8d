#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <unordered_set>
#include <utility>

#include "engine/formats/plan_reader.h"
#include "engine/formats/warning_list.h"
#include "engine/formats/xer_calendars.h"
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

/// Reads the links between the project's activities.
void ReadLinks(const XerFile& file, const XerTaskReader& reader, const std::vector<XerTask>& tasks,
               LagCalendar lag_calendar, Plan& plan, WarningList& warnings) {
  file.ForEach("TASKPRED", [&](const XerRow& row) {
    const std::int32_t successor = reader.PositionOf(row.Required("task_id"));
    const std::int32_t predecessor = reader.PositionOf(row.Required("pred_task_id"));
    if (successor < 0 && predecessor < 0) {
      return;  // between activities of other projects
    }
    if (successor == XerTaskReader::kUnknown || predecessor == XerTaskReader::kUnknown) {
      warnings.Add("links to activities that are not in the file: left out");
      return;
    }
    if (successor < 0 || predecessor < 0) {
      warnings.Add("links to activities of other projects: left out");
      return;
    }
    if (successor == predecessor) {
      row.FailField("pred_task_id", "another activity than the link's own");
    }
    Link link;
    link.predecessor = tasks[static_cast<std::size_t>(predecessor)].uid;
    link.successor = tasks[static_cast<std::size_t>(successor)].uid;
    link.type = ReadLinkType(row);
    link.lag_minutes = row.Minutes("lag_hr_cnt", 0);
    link.lag_calendar = lag_calendar;
    plan.links.push_back(link);
  });
}

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
  ReadLinks(file, reader, tasks, scheduling.lag_calendar, plan, warnings);
  WarnOfLeftOut(file, project, warnings);
  result.warnings = warnings.Take();
  return result;
}

}  // namespace nimbrel::engine
