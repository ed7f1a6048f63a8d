#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "engine/formats/unique_names.h"
#include "engine/formats/warning_list.h"
#include "engine/formats/xer_calendars.h"
#include "engine/formats/xer_project.h"
#include "engine/formats/xer_table.h"
#include "engine/plan/plan.h"

namespace nimbrel::engine {

/// An activity of an XER file as a task that is not in the plan yet.
struct XerTask {
  Task task;
  std::string_view wbs;         // the file's key of the node that it is in
  bool spans_its_node = false;  // stretches over everything else in its node
  Uid uid = 0;                  // in the plan, once it is there
};

/// Where an activity of another project stands, by its actual dates or those last computed.
struct XerOuterTask {
  Instant actual_start, early_start, finish, late_start, late_finish;
  bool is_finished = false;
  std::string_view calendar;  // the file's key
};

/// Holds a task to a date from outside, as a constraint of the type: in one of the same type, which
/// then has the date that binds more, else in a place that is free. False if there is none.
bool HoldToOuterDate(Task& task, ConstraintType type, Instant date);

/// Reads the activities of one project.
class XerTaskReader {
 public:
  /// All must live as long as the reader; the plan has its dates and default calendar already.
  XerTaskReader(const XerFile& file, const XerProject& project, const XerScheduling& scheduling,
                XerCalendars& calendars, Plan& plan, WarningList& warnings);

  /// The project's activities in the file's order. Raises FormatError.
  std::vector<XerTask> ReadAll();

  /// Where an activity is that has the file's key: its position in what ReadAll gave, -1 if it
  /// belongs to another project, -2 if the file has no such activity.
  std::int32_t PositionOf(std::string_view key) const;
  static constexpr std::int32_t kOtherProject = -1;
  static constexpr std::int32_t kUnknown = -2;

  /// An activity of another project that has the file's key; null if there is none.
  const XerOuterTask* FindOuter(std::string_view key) const;

  UniqueNames& ids() { return ids_; }

 private:
  XerTask ReadRow(const XerRow& row);
  void ReadKind(const XerRow& row, XerTask& activity);
  void ReadCalendar(const XerRow& row, Task& task);
  /// Raises FormatError if the task is to be worked on but its calendar has no working time.
  void CheckCalendar(const XerRow& row, const Task& task) const;
  void ReadProgress(const XerRow& row, Task& task);
  void ReadDurations(const XerRow& row, Task& task);
  void ReadConstraints(const XerRow& row, Task& task);
  /// Takes out the constraints on the start of a task that has started: they have had their time.
  void DropPassedConstraints(Task& task);
  void ReadStoredDates(const XerRow& row, Task& task);
  Constraint ReadConstraint(const XerRow& row, std::string_view type, std::string_view date);
  void AddOuterDate(Task& task, ConstraintType type, Instant date);
  /// The resource whose calendar drives an activity; empty if it has none.
  std::string_view ResourceOf(const XerRow& row);
  void ReadResources();

  const XerFile& file_;
  const XerProject& project_;
  const XerScheduling& scheduling_;
  XerCalendars& calendars_;
  Plan& plan_;
  WarningList& warnings_;
  UniqueNames ids_;
  std::unordered_map<std::string_view, std::int32_t> positions_;
  std::unordered_map<std::string_view, XerOuterTask> outer_tasks_;
  bool resources_read_ = false;
  std::unordered_map<std::string_view, std::string_view> calendar_by_resource_;
  std::unordered_map<std::string_view, std::string_view> resource_by_task_;
};

}  // namespace nimbrel::engine
