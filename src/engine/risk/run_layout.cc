#include "engine/risk/run_layout.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

#include "engine/calendar/day_bits.h"
#include "engine/calendar/work_calendar.h"

namespace nimbrel::engine {
namespace {

void CheckOptions(const RunOptions& options) {
  if (options.iterations < 1 || options.iterations > kMaxIterations) {
    throw std::invalid_argument(
        fmt::format("A run has 1 to {} iterations, not {}.", kMaxIterations, options.iterations));
  }
  if (options.workers < 1) {
    throw std::invalid_argument(
        fmt::format("A run has at least one worker, not {}.", options.workers));
  }
}

CalendarIndex PositionOf(const Plan& plan, Uid calendar) {
  const auto found = std::find_if(plan.calendars.begin(), plan.calendars.end(),
                                  [&](const CalendarDefinition& c) { return c.uid == calendar; });
  return found == plan.calendars.end() ? -1
                                       : static_cast<CalendarIndex>(found - plan.calendars.begin());
}

std::vector<WeatherCalendar> FindWeatherCalendars(const Plan& plan, const RunWiring& wiring) {
  std::vector<WeatherCalendar> calendars;
  if (!wiring.host.carries_weather || !wiring.calendar_kind) {
    return calendars;
  }
  for (const Task& task : plan.tasks()) {
    if (!wiring.host.carries_weather(task)) {
      continue;
    }
    const CalendarIndex index = PositionOf(plan, task.calendar);
    const bool known = std::any_of(calendars.begin(), calendars.end(),
                                   [index](const WeatherCalendar& c) { return c.index == index; });
    if (index < 0 || known) {
      continue;
    }
    if (std::string kind = wiring.calendar_kind(plan, task); !kind.empty()) {
      const WorkCalendar days(plan.calendars[static_cast<std::size_t>(index)]);
      calendars.push_back({.index = index,
                           .kind = std::move(kind),
                           .open_days = days.open().Count(kFirstCoveredDay, kLastCoveredDay)});
    }
  }
  return calendars;
}

}  // namespace

RunLayout MakeRunLayout(const Plan& plan, const RunOptions& options, const RunWiring& wiring) {
  CheckOptions(options);
  const auto& carries_weather = wiring.host.carries_weather;
  Scheduler scheduler(plan, [&carries_weather](const Task& task) {
    return !carries_weather || !carries_weather(task);
  });
  scheduler.ScheduleForward();

  RunLayout layout;
  layout.deterministic_finish = scheduler.finish();
  for (TaskIndex task = 0; task < scheduler.task_count(); ++task) {
    layout.tasks.push_back(scheduler.TaskAt(task));
    if (wiring.no_split && wiring.no_split(*plan.FindTask(layout.tasks.back()))) {
      layout.no_split.push_back(task);
    }
  }
  for (const Uid uid : options.asked) {
    layout.asked.push_back(scheduler.IndexOf(uid));
    if (layout.asked.back() < 0) {
      const Task* task = plan.FindTask(uid);
      throw std::invalid_argument(task == nullptr ? fmt::format("The plan has no task {}.", uid)
                                                  : fmt::format("Task {} has no dates: it only "
                                                                "carries weather.",
                                                                task->id));
    }
  }
  layout.calendars = FindWeatherCalendars(plan, wiring);
  return layout;
}

}  // namespace nimbrel::engine
