#include "engine/formats/mspdi_project.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "engine/formats/value_text.h"
#include "platform/text.h"

namespace nimbrel::engine {
namespace {

constexpr std::string_view kNamespace = "http://schemas.microsoft.com/project";

std::string WithoutEnding(std::string_view name) {
  const std::size_t dot = name.rfind('.');
  return std::string(dot == std::string_view::npos || dot == 0 ? name : name.substr(0, dot));
}

void ReadHours(const XmlElement& project, Plan& plan, WarningList& warnings) {
  const double hours = project.Number("MinutesPerDay", 480) / 60.0;
  plan.hours_per_day = static_cast<std::int32_t>(std::clamp(std::round(hours), 1.0, 24.0));
  if (plan.hours_per_day != hours) {
    warnings.Add("plans whose hours a day are no whole number from 1 to 24: rounded");
  }
}

void ReadScheduling(const XmlElement& project, Plan& plan, WarningList& warnings) {
  ScheduleOptions& schedule = plan.schedule;
  schedule.progress = project.Flag("SplitsInProgressTasks", true) ? ProgressRule::kRetainedLogic
                                                                  : ProgressRule::kProgressOverride;
  schedule.total_float = FloatRule::kSmaller;
  // Dates that hold tasks hold them against their links; the flag on that has come to say the
  // opposite in files of some versions, so that it is of no use.
  schedule.no_later_holds_early = true;
  schedule.remaining_from_data_date = false;
  schedule.lag_from_early_start = false;
  schedule.open_ends_critical = project.Flag("MultipleCriticalPaths", false);
  const std::optional<std::int32_t> limit =
      HoursToMinutes(project.Number("CriticalSlackLimit", 0) * plan.hours_per_day);
  if (!limit) {
    project.FailChild("CriticalSlackLimit", "days of no more than 200 years");
  }
  schedule.critical_float_minutes = *limit;
  if (!project.Flag("ScheduleFromStart", true)) {
    warnings.Add("plans scheduled from their finish: the finish is where late dates start from");
    schedule.must_finish = project.FinishDate("FinishDate");
  }
}

}  // namespace

XmlElement MspdiProject(const XmlFile& file) {
  const pugi::xml_node root = file.root();
  if (std::string_view(root.name()) != "Project") {
    throw FormatError(file.name(), file.LineOf(root),
                      "expected the element Project, found " + Quoted(root.name()));
  }
  const std::string_view given = root.attribute("xmlns").value();
  if (!given.empty() && !given.starts_with(kNamespace)) {
    throw FormatError(file.name(), file.LineOf(root),
                      "expected a project of the namespace " + std::string(kNamespace) +
                          ", found one of " + Quoted(given));
  }
  return {file, root};
}

std::string MspdiProjectName(const XmlFile& file) {
  const XmlElement project = MspdiProject(file);
  std::string name = WithoutEnding(project.Text("Name"));
  return name.empty() ? WithoutEnding(file.name()) : name;
}

void ReadMspdiProject(const XmlFile& file, Plan& plan, WarningList& warnings) {
  const XmlElement project = MspdiProject(file);
  plan.name = MspdiProjectName(file);
  plan.title = project.Has("Title") ? std::string(project.Text("Title")) : plan.name;
  plan.start = project.Date("StartDate");
  plan.data_date = project.Date("StatusDate");
  ReadHours(project, plan, warnings);
  ReadScheduling(project, plan, warnings);
}

}  // namespace nimbrel::engine
