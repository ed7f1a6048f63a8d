#include "nimbrel/plan_facts.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <vector>

#include "nimbrel/command_line.h"
#include "nimbrel/wiring.h"

namespace nimbrel::cli {
namespace {

using engine::Plan;
using engine::Task;
using engine::TaskKind;
using engine::Uid;

void CountTask(const Task& task, PlanCounts& counts) {
  switch (task.kind) {
    case TaskKind::kTask:
      ++counts.tasks;
      break;
    case TaskKind::kStartMilestone:
    case TaskKind::kFinishMilestone:
      ++counts.milestones;
      break;
    case TaskKind::kSummary:
      ++counts.summaries;
      return;
    case TaskKind::kLevelOfEffort:
      ++counts.levels_of_effort;
      return;
  }
  counts.finished += task.IsFinished() ? 1 : 0;
  counts.started += task.IsStarted() && !task.IsFinished() ? 1 : 0;
  counts.constraints += task.constraint.type != engine::ConstraintType::kNone ||
                                task.second_constraint.type != engine::ConstraintType::kNone
                            ? 1
                            : 0;
  counts.ranges += task.range ? 1 : 0;
  counts.risks += task.risk ? 1 : 0;
}

}  // namespace

std::string TitleOf(const Plan& plan) {
  return plan.title.empty() || plan.title == plan.name ? plan.name : plan.name + ", " + plan.title;
}

PlanCounts CountPlan(const Plan& plan) {
  PlanCounts counts;
  for (const Task& task : plan.tasks()) {
    if (!CarriesWeather(task)) {
      CountTask(task, counts);
    }
  }
  counts.links =
      std::count_if(plan.links.begin(), plan.links.end(), [&plan](const engine::Link& link) {
        const Task* predecessor = plan.FindTask(link.predecessor);
        const Task* successor = plan.FindTask(link.successor);
        return predecessor != nullptr && successor != nullptr && !CarriesWeather(*predecessor) &&
               !CarriesWeather(*successor);
      });
  counts.calendars = static_cast<std::int64_t>(plan.calendars.size());
  return counts;
}

std::string CountsText(const PlanCounts& counts) {
  std::vector<std::string> parts = {Counted(counts.tasks, "task", "tasks")};
  const auto add = [&parts](std::int64_t count, const char* singular, const char* plural) {
    if (count > 0) {
      parts.push_back(Counted(count, singular, plural));
    }
  };
  add(counts.milestones, "milestone", "milestones");
  add(counts.summaries, "summary", "summaries");
  add(counts.levels_of_effort, "level of effort", "levels of effort");
  add(counts.links, "link", "links");
  add(counts.calendars, "calendar", "calendars");
  return fmt::format("{}", fmt::join(parts, ", "));
}

WeatherFacts CollectWeather(const Plan& plan) {
  WeatherFacts facts;
  facts.is_weather_plan = IsWeatherPlan(plan);
  std::vector<Uid> calendars;  // of facts.calendars
  for (const Task& task : plan.tasks()) {
    const std::string role = WeatherRole(task);
    if (role != "1" && role != "3") {
      continue;
    }
    (role == "1" ? facts.periods : facts.windows) += 1;
    const engine::CalendarDefinition* calendar = plan.FindCalendar(task.calendar);
    if (calendar == nullptr) {
      continue;
    }
    const std::string kind = role == "1" ? "event" : "window";
    auto at = std::find(calendars.begin(), calendars.end(), calendar->uid) - calendars.begin();
    if (at == std::ssize(calendars)) {
      calendars.push_back(calendar->uid);
      facts.calendars.push_back({calendar->name, kind, 0, 0});
    }
    WeatherCalendarFacts& one = facts.calendars[static_cast<std::size_t>(at)];
    one.kind = one.kind == kind ? kind : "event and window";
    ++one.items;
  }
  for (const Task& task : plan.tasks()) {
    if (CarriesWeather(task)) {
      continue;
    }
    facts.nosplit_tasks += IsNoSplit(task) ? 1 : 0;
    bool assigned = false;
    for (const engine::RiskAssignment& assignment : task.risk_calendars) {
      const engine::RiskCalendarDefinition* risk = plan.FindRiskCalendar(assignment.risk_calendar);
      const auto at = risk == nullptr
                          ? calendars.end()
                          : std::find(calendars.begin(), calendars.end(), risk->calendar);
      if (at != calendars.end()) {
        ++facts.calendars[static_cast<std::size_t>(at - calendars.begin())].tasks;
        assigned = true;
      }
    }
    facts.assigned_tasks += assigned ? 1 : 0;
  }
  return facts;
}

}  // namespace nimbrel::cli
