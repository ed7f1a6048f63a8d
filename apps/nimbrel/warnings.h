#pragma once

#include <string>
#include <vector>

#include "engine/plan/plan.h"

namespace nimbrel::cli {

/// What a planner should know before trusting the plan's weather, a sentence or two each; empty
/// when there is nothing to say. Told are:
///
/// - weather data in a plan that is not marked as a weather plan, and so runs without weather;
///   nothing else is told then;
/// - in a plan counted in hours or quarters, periods below 100% and windows, whose lengths and
///   offsets the simulation takes in plan units as they stand;
/// - weather that cannot do anything: calendars of no task, without periods or windows, or with
///   none between the status date and the plan's finish;
/// - tasks that weather must not split and that are longer than any stretch that their calendars
///   leave whole, or can be expected to leave whole, until the plan's finish and for the length of
///   the task beyond it.
std::vector<std::string> WeatherWarnings(const engine::Plan& plan);

}  // namespace nimbrel::cli
