#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "engine/objects/host.h"
#include "engine/plan/plan.h"
#include "engine/risk/distributions.h"
#include "engine/risk/permutation.h"
#include "engine/risk/random.h"
#include "engine/risk/tied_numbers.h"

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
  /// range that is not made of finite numbers. `tied`, if any, must outlive the sampler and be of
  /// the same design.
  explicit Sampler(const Plan& plan, const SamplingDesign& design = {},
                   const TiedNumbers* tied = nullptr);

  /// Number of tasks of the plan that was compiled.
  std::size_t task_count() const { return fixed_.size(); }

  /// Writes the samples of all tasks: makes the columns as long as the plan's tasks and fills in
  /// what is the same in every iteration.
  void Prepare(IterationSamples& samples) const;

  /// Writes what differs from iteration to iteration into prepared columns. What a task gets
  /// depends on the design, the iteration (1 to the design's iterations), its own stream and the
  /// values that it is tied to only.
  void Sample(std::int32_t iteration, IterationSamples& samples);

  /// Writes the grades of the sampled durations in an iteration, by task; 1/2 for tasks that are
  /// not sampled. The grade of a duration d is P(D < d) + P(D = d) / 2, D being the task's
  /// duration, 0 where it does not occur. `grades` has task_count() entries.
  void Grade(std::int32_t iteration, std::span<double> grades);

 private:
  /// A task that may not occur.
  struct Risk {
    std::size_t position;
    std::uint64_t stream;
    double probability;  // 0 to 1
    double otherwise;    // the sample if it occurs, unless a distribution wrote it already
    bool has_distribution;
    PermutationKey key;
    std::int32_t tied;  // place among the tied numbers, or -1
  };
  /// A task whose duration is tied to others.
  struct TiedDraw {
    std::size_t position;
    std::size_t place;  // among the tied numbers
    Distribution distribution;
  };
  /// Draws that are made together. Beyond the last one stand streams that nobody takes.
  struct Batch {
    std::size_t count = 0;
    std::uint32_t stream_lower[kStreamsAtATime] = {};
    std::uint32_t stream_upper[kStreamsAtATime] = {};
    std::uint32_t key_lower[kStreamsAtATime] = {};  // of the strata
    std::uint32_t key_upper[kStreamsAtATime] = {};
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

  void AddTask(const Task& task, std::size_t position);
  void AddDraw(const Task& task, std::size_t position, const Distribution& distribution);
  std::int32_t TiedPlace(Purpose purpose, const Task& task) const;
  template <class Columns>
  std::size_t AddToBatch(std::vector<Columns>& batches, const Task& task, std::size_t position);
  void DrawBatch(const Batch& batch, std::int32_t iteration, double* uniform) const;
  double DrawRisk(const Risk& risk, std::int32_t iteration) const;
  static void SampleTriangles(const Triangles& triangles, const double* uniform, double* samples);

  SamplingDesign design_;
  const TiedNumbers* tied_;
  PertTables tables_;
  std::vector<double> fixed_;
  std::vector<Triangles> triangles_;
  std::vector<Others> others_;
  std::vector<TiedDraw> tied_draws_;
  std::vector<Risk> risks_;
  std::vector<double> tied_uniform_;  // of the current iteration
};

}  // namespace nimbrel::engine
