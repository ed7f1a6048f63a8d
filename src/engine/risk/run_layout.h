#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "engine/plan/plan.h"
#include "engine/risk/run.h"
#include "engine/schedule/scheduler.h"

namespace nimbrel::engine {

/// A calendar whose lost days are counted.
struct WeatherCalendar {
  CalendarIndex index = 0;
  std::string kind;
  std::int32_t open_days = 0;  // days with work as long as no day is taken
};

/// What a run is about, worked out once before its first iteration: the same for all workers.
struct RunLayout {
  std::vector<Uid> tasks;  // by TaskIndex
  std::vector<WeatherCalendar> calendars;
  std::vector<TaskIndex> no_split;  // tasks whose pushes are measured
  std::vector<TaskIndex> asked;
  Instant deterministic_finish;
};

/// Checks the options and schedules the plan once. Raises as Run does.
RunLayout MakeRunLayout(const Plan& plan, const RunOptions& options, const RunWiring& wiring);

}  // namespace nimbrel::engine
