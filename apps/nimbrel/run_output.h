#pragma once

#include <string>
#include <vector>

#include "engine/plan/plan.h"
#include "engine/results/run_result.h"
#include "nimbrel/console.h"

namespace nimbrel::cli {

/// What a run has found, and how it was made.
struct RunReport {
  engine::RunResult main;  // with weather, unless `weather` is false
  bool weather = false;    // whether weather was applied
  /// The same iterations without weather, where the two were compared.
  bool compared = false;
  engine::RunResult without_weather;
  std::vector<std::int64_t> delay_minutes;  // by iteration
  engine::DayStatistics delay;
  std::vector<std::string> warnings;
};

/// Whether not all iterations were done that were asked for.
bool IsStopped(const RunReport& report);

/// The report as JSON, with a line break at its end. The same bytes for the same plan, options and
/// seed. Dates are local, to the minute; a date at midnight is written as 00:00 of the day that
/// begins. Days are rounded to 2 decimals, shares to 4.
std::string RunJson(const engine::Plan& plan, const RunReport& report);

/// One line an iteration: its number, the plan's finish, start and finish of each task asked for,
/// and with a comparison the plan's finish without weather.
std::string RunSamplesCsv(const engine::Plan& plan, const RunReport& report);

/// The report for people. Without `chart` the finishes are not drawn. `asked` are the tasks to
/// list.
std::string RunText(const engine::Plan& plan, const RunReport& report,
                    const std::vector<engine::Uid>& asked, bool chart, const Terminal& terminal);

}  // namespace nimbrel::cli
