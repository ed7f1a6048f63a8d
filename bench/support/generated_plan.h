#pragma once

#include <cstdint>

#include "engine/plan/plan.h"

namespace nimbrel::bench {

/// What a generated plan looks like. The defaults are the plan that the speed figures are for.
struct GeneratorOptions {
  std::uint64_t seed = 1;
  std::int32_t tasks = 10000;  // without the weather's own tasks
  std::int32_t years = 10;     // about how long the plan takes without weather
  double links_per_task = 2.5;
  double lagged_links = 0.10;        // share of links with a lag (finish to start, start to start)
  double finish_links = 0.05;        // share of links finish to finish
  std::int32_t base_calendars = 5;   // 1 to 5
  std::int32_t event_calendars = 4;  // 0 for a plan without weather
  std::int32_t combinations = 20;    // of a base calendar and event calendars, on the tasks
  double likely_weather_days = 6;    // of each month's period
  double event_probability = 100;    // percent; below 100 the days of a period come in one block
  double no_split_share = 0;         // of the tasks: lifts that likely take 1 to 3 days
};

/// Makes a plan of layers of tasks in days of 8 hours from 1 March 2027 on, each task with a
/// triangular duration. Every event calendar has a period for each month of the plan's years,
/// under the task "WEATHER", and the plan is marked as one with weather. The same options give the
/// same plan on every machine.
engine::Plan GeneratePlan(const GeneratorOptions& options);

}  // namespace nimbrel::bench
