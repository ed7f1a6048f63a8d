#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "engine/objects/host.h"
#include "engine/plan/plan.h"
#include "engine/risk/distributions.h"
#include "engine/risk/random.h"

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
  /// A task that may not occur.
  struct Risk {
    std::size_t position;
    std::uint64_t stream;
    double probability;  // 0 to 1
    double otherwise;    // the sample if it occurs, unless a distribution wrote it already
    bool has_distribution;
  };
  /// Draws that are made together. Beyond the last one stand streams that nobody takes.
  struct Batch {
    std::size_t count = 0;
    std::uint32_t stream_lower[kStreamsAtATime] = {};
    std::uint32_t stream_upper[kStreamsAtATime] = {};
    std::size_t position[kStreamsAtATime] = {};
  };
  /// The triangles of a batch, a column for each number.
  struct Triangles : Batch {
    double split[kStreamsAtATime] = {};
    double minimum[kStreamsAtATime] = {};
    double rising_product[kStreamsAtATime] = {};
    double maximum[kStreamsAtATime] = {};
    double falling_product[kStreamsAtATime] = {};
  };
  struct Others : Batch {
    std::vector<Distribution> distributions;
  };

  void AddDraw(const Task& task, std::size_t position, const Distribution& distribution);
  static void SampleTriangles(const Triangles& triangles, const double* uniform, double* samples);

  PertTables tables_;
  std::vector<double> fixed_;
  std::vector<Triangles> triangles_;
  std::vector<Others> others_;
  std::vector<Risk> risks_;
};

}  // namespace nimbrel::engine
