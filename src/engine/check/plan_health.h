#pragma once

#include <string>
#include <vector>

#include "engine/plan/plan.h"
#include "engine/schedule/scheduler.h"

namespace nimbrel::engine {

/// One thing that a risk analyst looks at before a run, with the activities (or links, or
/// calendars) that it is found at.
struct HealthFinding {
  std::string key;    // "open_ends": for machines, never changes
  std::string title;  // "Open ends: activities without a predecessor or without a successor"
  std::vector<std::string> items;  // IDs, "A -> B" for links, names of calendars; in plan order
};

/// Limits from which something is worth a look.
struct HealthLimits {
  std::int32_t long_lag_minutes = 20 * 8 * 60;  // a longer lag hides work: 20 days of 8 hours
};

/// Looks a plan over. Finished activities, summaries, levels of effort and what `scheduler` leaves
/// out are no findings. `scheduler` must have made a forward and a backward pass over the plan.
/// Gives one finding for each thing looked at, also when nothing was found:
/// no_predecessor, no_successor, no_links, negative_float, hard_constraints, leads, long_lags,
/// out_of_sequence, calendars_without_work.
std::vector<HealthFinding> InspectPlan(const Plan& plan, const Scheduler& scheduler,
                                       const HealthLimits& limits = {});

}  // namespace nimbrel::engine
