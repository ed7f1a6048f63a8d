#include "engine/schedule/topology.h"

#include <algorithm>

#include "engine/schedule/scheduler.h"

namespace nimbrel::engine {
namespace {

/// Names a loop among the tasks that still wait for predecessors: every one of them has a
/// predecessor that waits too, so that going back from any of them ends in a loop.
std::string DescribeLoop(const std::vector<Edge>& edges, const std::vector<std::int32_t>& waiting,
                         const std::function<std::string(std::int32_t)>& name_of) {
  std::vector<std::int32_t> back(waiting.size(), -1);
  std::int32_t task = -1;
  for (const Edge& edge : edges) {
    if (waiting[static_cast<std::size_t>(edge.from)] > 0 &&
        waiting[static_cast<std::size_t>(edge.to)] > 0) {
      back[static_cast<std::size_t>(edge.to)] = edge.from;
      task = edge.to;
    }
  }
  std::vector<bool> seen(waiting.size(), false);
  while (!seen[static_cast<std::size_t>(task)]) {
    seen[static_cast<std::size_t>(task)] = true;
    task = back[static_cast<std::size_t>(task)];
  }
  std::vector<std::string> names{name_of(task)};
  for (std::int32_t at = back[static_cast<std::size_t>(task)]; at != task;
       at = back[static_cast<std::size_t>(at)]) {
    names.push_back(name_of(at));
  }
  std::string text = "The links form a loop: " + names.front();
  for (auto name = names.rbegin(); name != names.rend(); ++name) {
    text += " -> " + *name;
  }
  return text;
}

}  // namespace

std::vector<std::int32_t> LevelsOf(std::int32_t count, const std::vector<Edge>& edges,
                                   const std::function<std::string(std::int32_t)>& name_of) {
  const auto size = static_cast<std::size_t>(count);
  std::vector<std::int32_t> waiting(size, 0);
  std::vector<std::int32_t> first(size + 1, 0);
  for (const Edge& edge : edges) {
    ++waiting[static_cast<std::size_t>(edge.to)];
    ++first[static_cast<std::size_t>(edge.from) + 1];
  }
  for (std::size_t i = 0; i < size; ++i) {
    first[i + 1] += first[i];
  }
  std::vector<std::int32_t> successors(edges.size());
  std::vector<std::int32_t> next(first.begin(), first.end());
  for (const Edge& edge : edges) {
    successors[static_cast<std::size_t>(next[static_cast<std::size_t>(edge.from)]++)] = edge.to;
  }

  std::vector<std::int32_t> levels(size, 0);
  std::vector<std::int32_t> ready;
  for (std::int32_t task = 0; task < count; ++task) {
    if (waiting[static_cast<std::size_t>(task)] == 0) {
      ready.push_back(task);
    }
  }
  for (std::size_t done = 0; done < ready.size(); ++done) {
    const auto task = static_cast<std::size_t>(ready[done]);
    for (std::int32_t at = first[task]; at < first[task + 1]; ++at) {
      const auto successor = static_cast<std::size_t>(successors[static_cast<std::size_t>(at)]);
      levels[successor] = std::max(levels[successor], levels[task] + 1);
      if (--waiting[successor] == 0) {
        ready.push_back(static_cast<std::int32_t>(successor));
      }
    }
  }
  if (ready.size() != size) {
    throw SchedulingError(DescribeLoop(edges, waiting, name_of));
  }
  return levels;
}

}  // namespace nimbrel::engine
