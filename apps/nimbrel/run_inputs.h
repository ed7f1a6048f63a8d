#pragma once

#include <vector>

#include "engine/plan/plan.h"
#include "engine/results/run_document.h"

namespace nimbrel::cli {

/// What goes into a run of the plan, as tables: the plan's facts, ranges and risks of tasks,
/// weather periods and windows, assignments, correlation. Without `weather` no weather.
std::vector<engine::InputTable> InputTables(const engine::Plan& plan, bool weather);

}  // namespace nimbrel::cli
