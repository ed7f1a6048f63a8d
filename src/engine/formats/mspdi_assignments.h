#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "engine/formats/calendar_algebra.h"
#include "engine/formats/mspdi_calendars.h"
#include "engine/formats/warning_list.h"
#include "engine/formats/xml_file.h"

namespace nimbrel::engine {

/// What the resource assignments of an MSPDI file say of when tasks are worked on.
class MspdiAssignments {
 public:
  /// Raises FormatError.
  MspdiAssignments(const XmlFile& file, const MspdiCalendars& calendars, WarningList& warnings);

  /// Numbers of the calendars of the people and machines that are assigned to a task.
  const std::vector<std::int64_t>& CalendarsOf(std::int64_t task) const;
  /// The stretches in which work that is still to be done on a task pauses.
  const std::vector<TimeSpan>& GapsOf(std::int64_t task) const;

 private:
  struct Work {
    std::vector<std::int64_t> calendars;
    std::vector<TimeSpan> gaps;
    bool has_course = false;  // an assignment told how the work is spread
  };

  void ReadResources(const XmlFile& file, const MspdiCalendars& calendars);
  void ReadAssignment(const XmlFile& file, const XmlElement& element, WarningList& warnings);

  std::unordered_map<std::int64_t, std::int64_t> calendar_by_resource_;
  std::unordered_map<std::int64_t, Work> work_by_task_;
};

}  // namespace nimbrel::engine
