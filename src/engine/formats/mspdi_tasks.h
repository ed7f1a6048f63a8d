#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "engine/formats/warning_list.h"
#include "engine/formats/xml_file.h"
#include "engine/plan/plan.h"

namespace nimbrel::engine {

/// A link as an MSPDI file gives it, at its successor.
struct MspdiLink {
  std::int64_t predecessor = 0;  // the file's number of the task
  LinkType type = LinkType::kFinishToStart;
  std::int32_t lag_minutes = 0;
  double lag_percent = 0;  // of the predecessor's duration, instead of minutes
  bool is_elapsed = false;
  pugi::xml_node node;  // where the file says so
};

/// A task of an MSPDI file that is not in the plan yet.
struct MspdiTask {
  Task task;                          // without ID, parent and calendar
  std::int64_t number = 0;            // the file's own key
  std::int64_t position = -1;         // the number that users see; -1 if the file gives none
  std::int64_t level = 0;             // in the outline, from 0
  std::int64_t calendar = -1;         // the file's number of the task's own calendar
  pugi::xml_node node;                // where the file says so
  std::int32_t duration_minutes = 0;  // also of summaries
  bool ignores_resources = false;     // their calendars do not count
  bool is_elapsed = false;            // the duration runs around the clock
  bool is_left_out = false;           // inactive, or an empty line
  std::vector<MspdiLink> links;
};

/// Reads the tasks of an MSPDI file, in the order of the outline. Raises FormatError.
///
/// A task that is held at its dates (scheduled by hand, or standing for another project) gets a
/// mandatory start; one that levelling has moved may not start earlier than where it was moved to.
std::vector<MspdiTask> ReadMspdiTasks(const XmlFile& file, WarningList& warnings);

}  // namespace nimbrel::engine
