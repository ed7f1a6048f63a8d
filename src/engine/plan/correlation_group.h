#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace nimbrel::engine {

/// Sampled values that go together, with one coefficient for each pair of them: their rank
/// correlation (Spearman's), from -1 to 1.
///
/// Either `tasks` or `calendars` has members, two or more. With `tasks` it is their durations that
/// go together. With `calendars` it is what is sampled of the tasks that stand on one calendar with
/// what is sampled of those that stand on another, for pairs of tasks that a run is told of (see
/// RunWiring): both whether they occur and how long they take.
struct CorrelationGroup {
  std::vector<std::int32_t> tasks;     // uids
  std::vector<std::string> calendars;  // names, which need not be those of calendars of the plan
  double coefficient = 0;
  friend bool operator==(const CorrelationGroup&, const CorrelationGroup&) = default;
};

}  // namespace nimbrel::engine
