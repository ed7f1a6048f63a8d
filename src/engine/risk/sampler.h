#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "engine/objects/host.h"
#include "engine/plan/plan.h"
#include "engine/risk/distributions.h"

namespace nimbrel::engine {

/// Samples the tasks of a plan, those that carry weather like any other.
///
/// - A finished task, a milestone, a summary and a level of effort are not sampled: their sample is
///   what remains of them.
/// - A task without a range always takes its remaining duration. A range is that of the remaining
///   duration, whether or not the task has started.
/// - A task with a risk of occurrence below 100% that has not started happens with that chance;
///   otherwise it is skipped and its sample is 0.
class Sampler {
 public:
  /// Compiles the plan, which is not kept. Raises platform::RuntimeError, naming the task, for a
  /// range that is not made of finite numbers.
  explicit Sampler(const Plan& plan);

  /// Number of tasks of the plan that was compiled.
  std::size_t task_count() const { return fixed_.size(); }

  /// Writes the samples of all tasks: makes the columns as long as the plan's tasks and fills in
  /// what is the same in every iteration.
  void Prepare(IterationSamples& samples) const;

  /// Writes what differs from iteration to iteration into prepared columns. What a task gets
  /// depends on the seed, the iteration and its own stream only.
  void Sample(std::uint64_t seed, std::int32_t iteration, IterationSamples& samples) const;

 private:
  struct Risk {
    std::size_t position;
    std::uint64_t stream;
    double probability;  // 0 to 1
    double otherwise;    // the sample if it occurs, unless a distribution wrote it already
    bool has_distribution;
  };
  struct Draw {
    std::size_t position;
    std::uint64_t stream;
    Distribution distribution;
  };

  PertTables tables_;
  std::vector<double> fixed_;
  std::vector<Draw> draws_;
  std::vector<Risk> risks_;
};

}  // namespace nimbrel::engine
