#include "engine/formats/xer_tasks.h"

#include <algorithm>
#include <array>
#include <unordered_set>
#include <utility>

namespace nimbrel::engine {
namespace {

struct ConstraintCode {
  std::string_view code;
  ConstraintType type;
};

constexpr std::array<ConstraintCode, 9> kConstraintCodes = {{
    {"CS_MSO", ConstraintType::kStartOn},
    {"CS_MEO", ConstraintType::kFinishOn},
    {"CS_MSOA", ConstraintType::kStartNoEarlier},
    {"CS_MEOA", ConstraintType::kFinishNoEarlier},
    {"CS_MSOB", ConstraintType::kStartNoLater},
    {"CS_MEOB", ConstraintType::kFinishNoLater},
    {"CS_MANDSTART", ConstraintType::kMandatoryStart},
    {"CS_MANDFIN", ConstraintType::kMandatoryFinish},
    {"CS_ALAP", ConstraintType::kAsLateAsPossible},
}};

bool IsAboutFinish(ConstraintType type) {
  return type == ConstraintType::kFinishOn || type == ConstraintType::kFinishNoEarlier ||
         type == ConstraintType::kFinishNoLater || type == ConstraintType::kMandatoryFinish;
}

double Share(double part, double whole) {
  return whole > 0 ? std::clamp(part / whole * 100.0, 0.0, 100.0) : 0.0;
}

/// A date from one field, or from another one where the first is empty.
Instant StoredDate(const XerRow& row, std::string_view name, std::string_view fallback) {
  return row.Date(row.Text(name).empty() ? fallback : name);
}

Instant AsFinish(Instant instant) {
  return instant.IsAbsent() ? instant : instant.AsFinish();
}

XerOuterTask ReadOuterTask(const XerRow& row) {
  XerOuterTask task;
  task.actual_start = row.Date("act_start_date");
  task.early_start = StoredDate(row, "early_start_date", "restart_date");
  task.is_finished = !row.Text("act_end_date").empty();
  task.calendar = row.Text("clndr_id");
  task.finish = AsFinish(StoredDate(row, "act_end_date", "early_end_date"));
  task.late_start = row.Date("late_start_date");
  task.late_finish = row.FinishDate("late_end_date");
  return task;
}

}  // namespace

bool HoldToOuterDate(Task& task, ConstraintType type, Instant date) {
  const bool is_earliest =
      type == ConstraintType::kStartNoEarlier || type == ConstraintType::kFinishNoEarlier;
  for (Constraint* constraint : {&task.constraint, &task.second_constraint}) {
    if (constraint->type == type) {
      constraint->date =
          is_earliest ? std::max(constraint->date, date) : std::min(constraint->date, date);
      return true;
    }
  }
  for (Constraint* constraint : {&task.constraint, &task.second_constraint}) {
    if (constraint->type == ConstraintType::kNone) {
      *constraint = {type, date};
      return true;
    }
  }
  return false;
}

XerTaskReader::XerTaskReader(const XerFile& file, const XerProject& project,
                             const XerScheduling& scheduling, XerCalendars& calendars, Plan& plan,
                             WarningList& warnings)
    : file_(file),
      project_(project),
      scheduling_(scheduling),
      calendars_(calendars),
      plan_(plan),
      warnings_(warnings) {}

std::vector<XerTask> XerTaskReader::ReadAll() {
  std::vector<XerTask> tasks;
  file_.ForEach("TASK", [&](const XerRow& row) {
    const bool ours = row.Required("proj_id") == project_.id;
    const std::int32_t position = ours ? static_cast<std::int32_t>(tasks.size()) : kOtherProject;
    if (!positions_.emplace(row.Required("task_id"), position).second) {
      row.FailField("task_id", "a key that no other activity has");
    }
    if (ours) {
      tasks.push_back(ReadRow(row));
    } else {
      outer_tasks_.emplace(row.Text("task_id"), ReadOuterTask(row));
    }
  });
  return tasks;
}

std::int32_t XerTaskReader::PositionOf(std::string_view key) const {
  const auto found = positions_.find(key);
  return found == positions_.end() ? kUnknown : found->second;
}

const XerOuterTask* XerTaskReader::FindOuter(std::string_view key) const {
  const auto found = outer_tasks_.find(key);
  return found == outer_tasks_.end() ? nullptr : &found->second;
}

XerTask XerTaskReader::ReadRow(const XerRow& row) {
  XerTask activity;
  Task& task = activity.task;
  task.id = row.Required("task_code");
  if (!ids_.Take(task.id)) {
    row.FailField("task_code", "an activity ID that no other activity of the project has");
  }
  task.description = row.Text("task_name");
  activity.wbs = row.Text("wbs_id");
  ReadKind(row, activity);
  ReadCalendar(row, task);
  ReadProgress(row, task);
  CheckCalendar(row, task);
  ReadDurations(row, task);
  ReadConstraints(row, task);
  ReadStoredDates(row, task);
  return activity;
}

void XerTaskReader::ReadKind(const XerRow& row, XerTask& activity) {
  const std::string_view type = row.Text("task_type");
  if (type == "TT_Mile") {
    activity.task.kind = TaskKind::kStartMilestone;
  } else if (type == "TT_FinMile") {
    activity.task.kind = TaskKind::kFinishMilestone;
  } else if (type == "TT_LOE") {
    activity.task.kind = TaskKind::kLevelOfEffort;
  } else if (type == "TT_WBS") {
    activity.task.kind = TaskKind::kSummary;
    activity.spans_its_node = true;
    warnings_.Add("activities that span a node of the breakdown structure: taken as summaries");
  } else if (!type.empty() && type != "TT_Task" && type != "TT_Rsrc") {
    row.FailField("task_type", "a type of activity");
  }
}

void XerTaskReader::ReadCalendar(const XerRow& row, Task& task) {
  std::string_view key = row.Text("clndr_id");
  if (row.Text("task_type") == "TT_Rsrc") {
    ReadResources();
    const auto of_resource = calendar_by_resource_.find(ResourceOf(row));
    if (of_resource != calendar_by_resource_.end() && !of_resource->second.empty()) {
      key = of_resource->second;
    } else {
      warnings_.Add("resource-dependent activities without a resource: on their own calendar");
    }
  }
  if (!key.empty()) {
    task.calendar = calendars_.UidOf(key, plan_);
    if (task.calendar == 0) {
      warnings_.Add("activities on a calendar that is not in the file: on the default calendar");
    }
  }
  if (task.calendar == plan_.default_calendar) {
    task.calendar = 0;
  }
}

void XerTaskReader::CheckCalendar(const XerRow& row, const Task& task) const {
  const Uid calendar = task.calendar == 0 ? plan_.default_calendar : task.calendar;
  if (!task.IsFinished() && !calendars_.HasWork(calendar)) {
    row.Fail("expected a calendar with working time for activity " + Quoted(task.id) + ", found " +
             Quoted(plan_.FindCalendar(calendar)->name) + " without any");
  }
}

void XerTaskReader::ReadResources() {
  if (resources_read_) {
    return;
  }
  resources_read_ = true;
  std::unordered_set<std::string_view> materials;  // these keep no hours
  file_.ForEach("RSRC", [&](const XerRow& row) {
    calendar_by_resource_.emplace(row.Required("rsrc_id"), row.Text("clndr_id"));
    if (row.Text("rsrc_type") == "RT_Mat") {
      materials.insert(row.Text("rsrc_id"));
    }
  });
  file_.ForEach("TASKRSRC", [&](const XerRow& row) {
    if (!materials.contains(row.Text("rsrc_id"))) {
      resource_by_task_.emplace(row.Required("task_id"), row.Text("rsrc_id"));
    }
  });
}

std::string_view XerTaskReader::ResourceOf(const XerRow& row) {
  const std::string_view primary = row.Text("rsrc_id");
  if (!primary.empty()) {
    return primary;
  }
  const auto assigned = resource_by_task_.find(row.Text("task_id"));
  return assigned == resource_by_task_.end() ? std::string_view() : assigned->second;
}

void XerTaskReader::ReadProgress(const XerRow& row, Task& task) {
  const std::string_view status = row.Text("status_code");
  if (status != "TK_NotStart" && status != "TK_Active" && status != "TK_Complete" &&
      !status.empty()) {
    row.FailField("status_code", "TK_NotStart, TK_Active or TK_Complete");
  }
  task.actual_start = row.Date("act_start_date");
  task.actual_finish = row.FinishDate("act_end_date");
  task.suspended = row.Date("suspend_date");
  task.resumed = row.Date("resume_date");
  if ((status == "TK_NotStart" && (task.IsStarted() || task.IsFinished())) ||
      (status == "TK_Active" && task.IsFinished())) {
    warnings_.Add("actual dates that an activity's status says have not come yet: left out");
    task.actual_start = status == "TK_Active" ? task.actual_start : Instant();
    task.actual_finish = {};
  }
  if (status == "TK_Complete" && !task.IsFinished()) {
    // A start milestone has no other date; anything else without one was done by the data date.
    if (!task.IsMilestone() || !task.IsStarted()) {
      warnings_.Add("complete activities without an actual finish: finished at the data date");
    }
    const Instant done =
        task.IsMilestone() && task.IsStarted() ? task.actual_start : plan_.StatusDate();
    task.actual_finish = std::max(done.AsFinish(), AsFinish(task.actual_start));
  }
  if (status == "TK_Active" && !task.IsStarted()) {
    warnings_.Add("activities in progress without an actual start: started at the data date");
    task.actual_start = plan_.StatusDate();
  }
  if (task.IsFinished() && !task.IsStarted()) {
    if (!task.IsMilestone()) {
      warnings_.Add("complete activities without an actual start: started when they finished");
    }
    task.actual_start = task.actual_finish.AsStart();
  }
  if (task.IsMilestone() && task.IsStarted() && !task.IsFinished()) {
    task.actual_finish = task.actual_start.AsFinish();
  }
  if (task.IsFinished() && task.actual_finish.Minutes() < task.actual_start.Minutes()) {
    warnings_.Add("activities that finished before they started: started when they finished");
    task.actual_start = task.actual_finish.AsStart();
  }
}

void XerTaskReader::ReadDurations(const XerRow& row, Task& task) {
  const std::int32_t original = row.Duration("target_drtn_hr_cnt", 0);
  const std::int32_t remaining = row.Duration("remain_drtn_hr_cnt", original);
  if (!task.IsMilestone() && task.kind != TaskKind::kSummary) {
    task.original_minutes = original;
    task.remaining_minutes = task.IsFinished() ? 0 : remaining;
  }
  const std::string_view percent_type = row.Text("complete_pct_type");
  if (task.IsFinished()) {
    task.percent_complete = 100;
  } else if (percent_type == "CP_Phys") {
    task.percent_complete = std::clamp(row.Number("phys_complete_pct", 0), 0.0, 100.0);
  } else if (percent_type == "CP_Units") {
    const double done = row.Number("act_work_qty", 0) + row.Number("act_equip_qty", 0);
    const double left = row.Number("remain_work_qty", 0) + row.Number("remain_equip_qty", 0);
    task.percent_complete = Share(done, done + left);
  } else if (task.IsStarted()) {
    task.percent_complete = Share(original - remaining, original);
  }
  const Instant expected = row.FinishDate("expect_end_date");
  if (scheduling_.use_expected_finish && !task.IsFinished()) {
    task.expected_finish = expected;
  }
}

Constraint XerTaskReader::ReadConstraint(const XerRow& row, std::string_view type,
                                         std::string_view date) {
  const std::string_view code = row.Text(type);
  if (code.empty()) {
    return {};
  }
  const auto known =
      std::find_if(kConstraintCodes.begin(), kConstraintCodes.end(),
                   [code](const ConstraintCode& candidate) { return candidate.code == code; });
  if (known == kConstraintCodes.end()) {
    row.FailField(type, "a type of constraint");
  }
  Constraint constraint{known->type, {}};
  if (constraint.type == ConstraintType::kAsLateAsPossible) {
    return constraint;
  }
  constraint.date = IsAboutFinish(known->type) ? row.FinishDate(date) : row.Date(date);
  if (constraint.date.IsAbsent()) {
    warnings_.Add("constraints without a date: left out");
    return {};
  }
  return constraint;
}

void XerTaskReader::ReadConstraints(const XerRow& row, Task& task) {
  task.constraint = ReadConstraint(row, "cstr_type", "cstr_date");
  task.second_constraint = ReadConstraint(row, "cstr_type2", "cstr_date2");
  if (task.constraint.type == ConstraintType::kNone) {
    std::swap(task.constraint, task.second_constraint);
  }
  DropPassedConstraints(task);
  if (scheduling_.use_external_dates) {
    AddOuterDate(task, ConstraintType::kStartNoEarlier, row.Date("external_early_start_date"));
    AddOuterDate(task, ConstraintType::kFinishNoLater, row.FinishDate("external_late_end_date"));
  }
}

void XerTaskReader::DropPassedConstraints(Task& task) {
  if (!task.IsStarted() || task.IsFinished()) {
    return;
  }
  for (Constraint* constraint : {&task.constraint, &task.second_constraint}) {
    if (constraint->type != ConstraintType::kNone && !IsAboutFinish(constraint->type)) {
      warnings_.Add("constraints on the start of activities that have started: left out");
      *constraint = {};
    }
  }
  if (task.constraint.type == ConstraintType::kNone) {
    std::swap(task.constraint, task.second_constraint);
  }
}

void XerTaskReader::AddOuterDate(Task& task, ConstraintType type, Instant date) {
  if (date.IsAbsent() || task.IsFinished()) {
    return;
  }
  warnings_.Add(HoldToOuterDate(task, type, date)
                    ? "dates from projects that are not in the file: kept as constraints"
                    : "dates from projects that are not in the file, beside two constraints: left "
                      "out");
}

void XerTaskReader::ReadStoredDates(const XerRow& row, Task& task) {
  StoredDates& stored = task.stored;
  stored.early_start = StoredDate(row, "early_start_date", "restart_date");
  stored.early_finish = AsFinish(StoredDate(row, "early_end_date", "reend_date"));
  stored.late_start = StoredDate(row, "late_start_date", "rem_late_start_date");
  stored.late_finish = AsFinish(StoredDate(row, "late_end_date", "rem_late_end_date"));
  if (!row.Text("total_float_hr_cnt").empty()) {
    stored.total_float_minutes = row.Minutes("total_float_hr_cnt", 0);
  }
}

}  // namespace nimbrel::engine
