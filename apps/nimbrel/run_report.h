#pragma once

#include <string>

#include "engine/plan/plan.h"
#include "engine/results/run_document.h"
#include "engine/results/run_result.h"
#include "nimbrel/json_text.h"

namespace nimbrel::cli {

/// What a run has found, and how it was made.
struct RunReport {
  engine::ComparedResult results;  // `with_weather` is the run, also where it had no weather
  bool weather = false;            // whether weather was applied
  /// Whether the same iterations ran without weather too.
  bool compared = false;
  engine::RunDocument document;

  const engine::RunResult& run() const { return results.with_weather; }
};

/// Whether not all iterations were done that were asked for.
bool IsStopped(const RunReport& report);

/// The report as JSON, in keys that always stand in the same order: the same bytes for the same
/// plan, options and seed. Dates are local, to the minute; a date at midnight is written as 00:00
/// of the day that begins. Days are rounded to 2 decimals, shares to 4. Bounds of intervals for
/// which there are too few samples are null.
Json RunJson(const RunReport& report);

/// One line an iteration: its number, the plan's finish, start and finish of each task asked for,
/// and with a comparison the plan's finish without weather.
std::string RunSamplesCsv(const engine::Plan& plan, const RunReport& report);

}  // namespace nimbrel::cli
