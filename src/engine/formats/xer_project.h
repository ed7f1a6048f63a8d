#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/formats/xer_table.h"
#include "engine/plan/plan.h"

namespace nimbrel::engine {

/// A project that an XER file was written for.
struct XerProject {
  std::string id;          // the file's own key
  std::string short_name;  // what users call it
  std::int64_t line = 0;
};

/// The projects of the file, in its order: those that it marks as exported if it marks any, without
/// the nodes of the enterprise's structure.
std::vector<XerProject> XerProjects(const XerFile& file);

/// The project with a short name (without regard to case), or the only one. Raises FormatError that
/// lists the short names where there is no such project or a name is needed.
XerProject ChooseXerProject(const XerFile& file, const std::optional<std::string>& name);

/// What a project's rows say of its schedule beyond the plan's own fields.
struct XerScheduling {
  std::string default_calendar;     // the file's key of it, empty if it names none
  bool use_expected_finish = true;  // or leave expected finishes aside
  bool use_external_dates = true;   // of links to projects that are not in the file
  LagCalendar lag_calendar = LagCalendar::kPredecessor;
  /// When the last of the file's projects was to finish, if that is another one than this: where
  /// late dates start from if they do for all projects alike. Else absent.
  Instant latest_finish;
};

class WarningList;

/// Reads the project's dates and its scheduling options into the plan. Raises FormatError.
XerScheduling ReadXerScheduling(const XerFile& file, const XerProject& project, Plan& plan,
                                WarningList& warnings);

}  // namespace nimbrel::engine
