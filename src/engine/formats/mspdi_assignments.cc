#include "engine/formats/mspdi_assignments.h"

#include <algorithm>

namespace nimbrel::engine {
namespace {

constexpr std::int64_t kWorkResource = 1;   // the others are materials and costs
constexpr std::int64_t kRemainingWork = 1;  // among the kinds of figures spread over time

bool SameSpans(const std::vector<TimeSpan>& a, const std::vector<TimeSpan>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](const TimeSpan& left, const TimeSpan& right) {
                      return left.begin == right.begin && left.end == right.end;
                    });
}

/// The stretches of zero work between stretches with work. A figure without a value says that the
/// time is no working time anyway. `has_figures` tells whether there were any.
std::vector<TimeSpan> ReadGaps(const XmlFile& file, pugi::xml_node assignment, bool& has_figures) {
  std::vector<TimeSpan> gaps;
  TimeSpan open;
  bool worked = false;
  for (const pugi::xml_node node : assignment.children("TimephasedData")) {
    const XmlElement figure(file, node);
    if (figure.Integer("Type", 0) != kRemainingWork || !figure.Has("Value")) {
      continue;
    }
    has_figures = true;
    const Instant begin = figure.Date("Start");
    const Instant end = figure.FinishDate("Finish");
    if (begin.IsAbsent() || end.IsAbsent()) {
      continue;
    }
    if (figure.Duration("Value").value_or(0) > 0) {
      if (!open.begin.IsAbsent() && open.begin < open.end) {
        gaps.push_back(open);
      }
      open = {};
      worked = true;
    } else if (worked) {
      open = {open.begin.IsAbsent() ? begin : open.begin, end};
    }
  }
  return gaps;
}

}  // namespace

MspdiAssignments::MspdiAssignments(const XmlFile& file, const MspdiCalendars& calendars,
                                   WarningList& warnings) {
  ReadResources(file, calendars);
  for (const pugi::xml_node node : file.root().child("Assignments").children("Assignment")) {
    ReadAssignment(file, XmlElement(file, node), warnings);
  }
}

void MspdiAssignments::ReadResources(const XmlFile& file, const MspdiCalendars& calendars) {
  for (const pugi::xml_node node : file.root().child("Resources").children("Resource")) {
    const XmlElement resource(file, node);
    const std::int64_t number = resource.Integer("UID", 0);
    const std::int64_t calendar = resource.Integer("CalendarUID", -1);
    if (number > 0 && resource.Integer("Type", kWorkResource) == kWorkResource &&
        calendars.Has(calendar)) {
      calendar_by_resource_[number] = calendar;
    }
  }
}

void MspdiAssignments::ReadAssignment(const XmlFile& file, const XmlElement& element,
                                      WarningList& warnings) {
  Work& work = work_by_task_[element.Integer("TaskUID", -1)];
  const std::int64_t resource = element.Integer("ResourceUID", 0);
  if (resource > 0) {
    warnings.Add("resource assignments: kept by the calendars of the resources only");
    const auto calendar = calendar_by_resource_.find(resource);
    if (calendar != calendar_by_resource_.end()) {
      work.calendars.push_back(calendar->second);
    }
  }
  bool has_figures = false;
  std::vector<TimeSpan> gaps = ReadGaps(file, element.node(), has_figures);
  if (!has_figures) {
    return;
  }
  if (!work.has_course) {
    work.gaps = std::move(gaps);
  } else if (!SameSpans(work.gaps, gaps)) {
    warnings.Add("tasks whose resources pause at different times: the pauses are left out");
    work.gaps.clear();
  }
  work.has_course = true;
}

const std::vector<std::int64_t>& MspdiAssignments::CalendarsOf(std::int64_t task) const {
  static const std::vector<std::int64_t> kNone;
  const auto found = work_by_task_.find(task);
  return found == work_by_task_.end() ? kNone : found->second.calendars;
}

const std::vector<TimeSpan>& MspdiAssignments::GapsOf(std::int64_t task) const {
  static const std::vector<TimeSpan> kNone;
  const auto found = work_by_task_.find(task);
  return found == work_by_task_.end() ? kNone : found->second.gaps;
}

}  // namespace nimbrel::engine
