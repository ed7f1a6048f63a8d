#pragma once

#include <string>
#include <vector>

#include "engine/plan/plan.h"

namespace nimbrel::cli {

/// What a planner should know before trusting the plan's weather, a sentence each; empty when there
/// is nothing to say. Told are:
///
/// - weather data in a plan that is not marked as a weather plan, and so runs without weather;
/// - in a plan counted in hours or quarters, periods below 100% and windows, whose lengths and
///   offsets the simulation takes in plan units as they stand;
/// - tasks that weather must not split and that are longer than any stretch that their calendars
///   leave whole;
/// - weather that cannot do anything: calendars of no task, and periods and windows that end before
///   the plan's status date.
std::vector<std::string> WeatherWarnings(const engine::Plan& plan);

}  // namespace nimbrel::cli
