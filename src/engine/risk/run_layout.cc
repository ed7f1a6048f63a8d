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
  if (options.strata != 0 &&
      (options.strata < options.iterations || options.strata > kMaxIterations)) {
    throw std::invalid_argument(fmt::format("A run of {} iterations has no {} strata.",
                                            options.iterations, options.strata));
  }
  if (!(options.until_days >= 0)) {
    throw std::invalid_argument(
        fmt::format("The width of an interval is 0 days or more, not {}.", options.until_days));
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
      calendars.push_back({.index = index, .kind = std::move(kind), .open = days.open()});
    }
  }
  return calendars;
}

/// The positions of tasks that were named. Raises std::invalid_argument for one without dates.
std::vector<TaskIndex> IndicesOf(const Plan& plan, const Scheduler& scheduler,
                                 const std::vector<Uid>& tasks) {
  std::vector<TaskIndex> indices;
  for (const Uid uid : tasks) {
    indices.push_back(scheduler.IndexOf(uid));
    if (indices.back() < 0) {
      const Task* task = plan.FindTask(uid);
      throw std::invalid_argument(task == nullptr ? fmt::format("The plan has no task {}.", uid)
                                                  : fmt::format("Task {} has no dates: it only "
                                                                "carries weather.",
                                                                task->id));
    }
  }
  return indices;
}

/// None, each alone, and all but each, without repeating one or all of them.
std::vector<Variant> MakeVariants(std::size_t calendars) {
  std::vector<Variant> variants = {{std::vector<bool>(calendars, false)}};
  if (calendars < 2) {
    return variants;
  }
  for (std::size_t i = 0; i < calendars; ++i) {
    variants.push_back(variants.front());
    variants.back().takes_effect[i] = true;
  }
  for (std::size_t i = 0; calendars > 2 && i < calendars; ++i) {
    variants.push_back({std::vector<bool>(calendars, true)});
    variants.back().takes_effect[i] = false;
  }
  return variants;
}

}  // namespace

std::int32_t RunLayout::VariantOf(std::size_t calendar, bool alone) const {
  std::vector<bool> wanted(calendars.size(), !alone);
  wanted[calendar] = alone;
  for (std::size_t i = 0; i < variants.size(); ++i) {
    if (variants[i].takes_effect == wanted) {
      return static_cast<std::int32_t>(i);
    }
  }
  return -1;
}

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
  layout.asked = IndicesOf(plan, scheduler, options.asked);
  layout.targets = IndicesOf(plan, scheduler, options.targets);
  layout.design = {options.seed, options.sampling,
                   options.strata > 0 ? options.strata : options.iterations};
  if (!plan.correlations.empty()) {
    Correlation correlation = MakeCorrelation(plan, wiring.together);
    layout.notes = correlation.notes;
    layout.tied.emplace(std::move(correlation), layout.design);
  }
  layout.calendars = FindWeatherCalendars(plan, wiring);
  if (options.attribute) {
    layout.variants = MakeVariants(layout.calendars.size());
  }
  return layout;
}

}  // namespace nimbrel::engine
