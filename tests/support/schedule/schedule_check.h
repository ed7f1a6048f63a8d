#pragma once

#include <string>
#include <vector>

#include "engine/plan/plan.h"
#include "engine/schedule/scheduler.h"

namespace nimbrel::test {

/// Which passes there are results of.
enum class Checked { kEarly, kEarlyAndLate };

/// Checks a schedule against what every schedule must fulfil: working time, links, constraints,
/// progress, that no task stands later than something makes it, floats. Gives a line for each
/// breach; none if all is well.
///
/// `plan` is the plan as the scheduler saw it in its last pass: with the durations, constraints
/// and taken days that were set on the scheduler since. Summaries and levels of effort are checked
/// for their span only.
std::vector<std::string> CheckSchedule(const engine::Plan& plan,
                                       const engine::Scheduler::Participates& participates,
                                       const engine::Scheduler& scheduler, Checked checked);

}  // namespace nimbrel::test
