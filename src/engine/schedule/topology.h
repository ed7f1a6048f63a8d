#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "engine/plan/plan.h"

namespace nimbrel::engine {

/// A link between two scheduled tasks, by their positions among the scheduled ones, after links of
/// summaries were handed down to the tasks below.
struct Edge {
  std::int32_t from = 0;
  std::int32_t to = 0;
  const Link* link = nullptr;
  std::int32_t order = 0;  // of the link in the plan
};

/// For each of `count` tasks the number of links on the longest way to it. Raises SchedulingError
/// for a loop, with the names that `name_of` gives, in the order of the links.
std::vector<std::int32_t> LevelsOf(std::int32_t count, const std::vector<Edge>& edges,
                                   const std::function<std::string(std::int32_t)>& name_of);

}  // namespace nimbrel::engine
