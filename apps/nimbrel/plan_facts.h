#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "engine/plan/plan.h"

namespace nimbrel::cli {

/// The plan's name, and its title where that says more: "VESTDAL, Vestdal River Bridge".
std::string TitleOf(const engine::Plan& plan);

/// What a plan is made of. Tasks that only carry weather data count as weather alone.
struct PlanCounts {
  std::int64_t tasks = 0;
  std::int64_t milestones = 0;
  std::int64_t summaries = 0;
  std::int64_t levels_of_effort = 0;
  std::int64_t started = 0;   // of the tasks and milestones: under way
  std::int64_t finished = 0;  // likewise
  std::int64_t links = 0;     // between tasks that are scheduled
  std::int64_t calendars = 0;
  std::int64_t constraints = 0;  // tasks with one or two
  std::int64_t ranges = 0;       // tasks with a three-point estimate
  std::int64_t risks = 0;        // tasks that may not occur
};

PlanCounts CountPlan(const engine::Plan& plan);

/// "212 tasks, 12 milestones, ...": what there is, without what there is none of.
std::string CountsText(const PlanCounts& counts);

/// A calendar that periods or windows take days from.
struct WeatherCalendarFacts {
  std::string name;
  std::string kind;        // "event", "window", or "event and window"
  std::int64_t items = 0;  // periods and windows
  std::int64_t tasks = 0;  // ordinary tasks that it is assigned to
};

struct WeatherFacts {
  bool is_weather_plan = false;
  std::vector<WeatherCalendarFacts> calendars;  // in the order in which weather tasks name them
  std::int64_t periods = 0;
  std::int64_t windows = 0;
  std::int64_t assigned_tasks = 0;  // ordinary tasks with any weather calendar
  std::int64_t nosplit_tasks = 0;
};

WeatherFacts CollectWeather(const engine::Plan& plan);

}  // namespace nimbrel::cli
