#include "engine/formats/xer_project.h"

#include <algorithm>

#include "engine/formats/warning_list.h"
#include "platform/text.h"

namespace nimbrel::engine {
namespace {

/// "A, B and 3 more".
std::string NamesOf(const std::vector<XerProject>& projects) {
  constexpr std::size_t kMostNamed = 50;
  std::string names;
  for (std::size_t i = 0; i < projects.size() && i < kMostNamed; ++i) {
    names += (i == 0 ? "" : ", ") + projects[i].short_name;
  }
  if (projects.size() > kMostNamed) {
    names += " and " + std::to_string(projects.size() - kMostNamed) + " more";
  }
  return names;
}

LagCalendar ReadLagCalendar(const XerRow& row, WarningList& warnings) {
  const std::string_view value = row.Text("sched_calendar_on_relationship_lag");
  if (value == "rcal_Successor") {
    return LagCalendar::kSuccessor;
  }
  if (value == "rcal_ProjDefault") {
    return LagCalendar::kPlanDefault;
  }
  if (value == "rcal_24Hour") {
    return LagCalendar::kElapsed;
  }
  if (!value.empty() && value != "rcal_Predecessor") {
    warnings.Add("unknown calendars of lags: the predecessor's is taken");
  }
  return LagCalendar::kPredecessor;
}

FloatRule ReadFloatRule(const XerRow& row, WarningList& warnings) {
  const std::string_view value = row.Text("sched_float_type");
  if (value == "FT_SF" || value == "FT_SS") {
    return FloatRule::kStart;
  }
  if (value == "FT_MIN") {
    return FloatRule::kSmaller;
  }
  if (!value.empty() && value != "FT_FF") {
    warnings.Add("unknown kinds of total float: it is counted on the finish");
  }
  return FloatRule::kFinish;
}

ProgressRule ReadProgressRule(const XerRow& row) {
  if (row.Flag("sched_progress_override", false)) {
    return ProgressRule::kProgressOverride;
  }
  return row.Flag("sched_retained_logic", true) ? ProgressRule::kRetainedLogic
                                                : ProgressRule::kActualDates;
}

void ReadProjectRow(const XerRow& row, Plan& plan, XerScheduling& scheduling) {
  plan.data_date = row.Date("last_recalc_date");
  plan.start = row.Date("plan_start_date");
  if (plan.start.IsAbsent()) {
    plan.start = plan.data_date;
  }
  if (plan.start.IsAbsent()) {
    row.FailField("plan_start_date", "a date here or in last_recalc_date");
  }
  plan.schedule.must_finish = row.FinishDate("plan_end_date");
  plan.schedule.critical_float_minutes = row.Minutes("critical_drtn_hr_cnt", 0);
  plan.schedule.critical_by_longest_path = row.Text("critical_path_type") == "CT_DrivPath";
  scheduling.default_calendar = row.Text("clndr_id");
}

void ReadOptionsRow(const XerRow& row, Plan& plan, XerScheduling& scheduling,
                    WarningList& warnings) {
  plan.schedule.progress = ReadProgressRule(row);
  plan.schedule.total_float = ReadFloatRule(row, warnings);
  plan.schedule.lag_from_early_start = row.Flag("sched_lag_early_start_flag", true);
  plan.schedule.open_ends_critical = row.Flag("sched_open_critical_flag", false);
  if (!row.Flag("sched_use_project_end_date_for_float", true)) {
    plan.schedule.must_finish = scheduling.latest_finish;
  }
  scheduling.use_expected_finish = row.Flag("sched_use_expect_end_flag", true);
  scheduling.use_external_dates = row.Text("sched_outer_depend_type") != "SD_None";
  scheduling.lag_calendar = ReadLagCalendar(row, warnings);
}

}  // namespace

std::vector<XerProject> XerProjects(const XerFile& file) {
  std::vector<XerProject> projects;
  std::vector<XerProject> exported;
  file.ForEach("PROJECT", [&](const XerRow& row) {
    if (!row.Flag("project_flag", true)) {
      return;
    }
    const XerProject project{std::string(row.Required("proj_id")),
                             std::string(row.Required("proj_short_name")), row.line()};
    projects.push_back(project);
    if (row.Flag("export_flag", false)) {
      exported.push_back(project);
    }
  });
  return exported.empty() ? projects : exported;
}

XerProject ChooseXerProject(const XerFile& file, const std::optional<std::string>& name) {
  const std::vector<XerProject> projects = XerProjects(file);
  if (projects.empty()) {
    throw FormatError(file.name(), file.line_count(), "expected a project, found none");
  }
  if (name) {
    const auto found =
        std::find_if(projects.begin(), projects.end(), [&name](const XerProject& project) {
          return platform::EqualsIgnoreCase(project.short_name, *name);
        });
    if (found == projects.end()) {
      throw FormatError(file.name(), projects.front().line,
                        "expected the project " + Quoted(*name) + ", found " + NamesOf(projects));
    }
    return *found;
  }
  if (projects.size() > 1) {
    throw FormatError(file.name(), projects[1].line,
                      "expected one project or the name of one, found " + NamesOf(projects));
  }
  return projects.front();
}

XerScheduling ReadXerScheduling(const XerFile& file, const XerProject& project, Plan& plan,
                                WarningList& warnings) {
  XerScheduling scheduling;
  Instant own_finish;
  Instant other_finish;
  file.ForEach("PROJECT", [&](const XerRow& row) {
    const Instant finish = row.FinishDate("scd_end_date");
    if (row.Text("proj_id") == project.id) {
      ReadProjectRow(row, plan, scheduling);
      own_finish = finish;
    } else if (!finish.IsAbsent()) {
      other_finish = other_finish.IsAbsent() ? finish : std::max(other_finish, finish);
    }
  });
  if (!other_finish.IsAbsent() && !own_finish.IsAbsent() && other_finish > own_finish) {
    scheduling.latest_finish = other_finish;
  }
  file.ForEach("SCHEDOPTIONS", [&](const XerRow& row) {
    if (row.Text("proj_id") == project.id) {
      ReadOptionsRow(row, plan, scheduling, warnings);
    }
  });
  return scheduling;
}

}  // namespace nimbrel::engine
