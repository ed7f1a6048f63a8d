#pragma once

#include <string>
#include <vector>

#include "engine/plan/plan.h"

namespace nimbrel::cli {

/// Reads the text of a file of correlation groups for a plan:
///
///   { "durations": [ { "tasks": ["A1010"], "match": "*pile*", "coefficient": 0.6 } ],
///     "weather": [ { "calendars": ["NORTH SEA", "WEST SEA"], "coefficient": 0.8 } ] }
///
/// A coefficient is the rank correlation of each pair of a group, from -1 to 1. `match` picks
/// ordinary tasks as in a weather file. A group has two members or more. Raises CommandError (the
/// input is bad), which names `file` and the JSON path: for unknown tasks, tasks that carry
/// weather, unknown calendars, calendars that are no event calendars, members named twice.
std::vector<engine::CorrelationGroup> ParseCorrelations(const std::string& text,
                                                        const std::string& file,
                                                        const engine::Plan& plan);

}  // namespace nimbrel::cli
