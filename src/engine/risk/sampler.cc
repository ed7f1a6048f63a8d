#include "engine/risk/sampler.h"

#include <algorithm>
#include <cmath>

#include "engine/risk/vector_clones.h"
#include "platform/runtime_error.h"

namespace nimbrel::engine {
namespace {

bool IsSampled(const Task& task) {
  return task.kind == TaskKind::kTask && !task.IsFinished();
}

/// Adds a task's stream to the last batch, or to a new one, and gives its place there.
template <class Batch>
std::size_t AddToBatch(std::vector<Batch>& batches, std::uint64_t stream, std::size_t position) {
  if (batches.empty() || batches.back().count == kStreamsAtATime) {
    batches.emplace_back();
  }
  Batch& batch = batches.back();
  batch.stream_lower[batch.count] = static_cast<std::uint32_t>(stream);
  batch.stream_upper[batch.count] = static_cast<std::uint32_t>(stream >> 32);
  batch.position[batch.count] = position;
  return batch.count++;
}

}  // namespace

Sampler::Sampler(const Plan& plan) {
  fixed_.reserve(plan.tasks().size());
  for (const Task& task : plan.tasks()) {
    const std::size_t position = fixed_.size();
    fixed_.push_back(plan.RemainingUnits(task));
    if (!IsSampled(task)) {
      continue;
    }
    bool drawn = false;
    if (task.range.has_value()) {
      try {
        const Distribution distribution(*task.range, tables_);
        fixed_.back() = distribution.Sample(0.0);
        if (!distribution.IsConstant()) {
          AddDraw(task, position, distribution);
          drawn = true;
        }
      } catch (const platform::RuntimeError& error) {
        throw platform::RuntimeError(error.number(), "Task " + task.id + ": " + error.text());
      }
    }
    if (task.risk.has_value() && task.risk->probability < 100.0 && !task.IsStarted()) {
      risks_.push_back({.position = position,
                        .stream = task.stream,
                        .probability = std::max(task.risk->probability, 0.0) / 100.0,
                        .otherwise = fixed_.back(),
                        .has_distribution = drawn});
    }
  }
}

void Sampler::AddDraw(const Task& task, std::size_t position, const Distribution& distribution) {
  if (const Triangle* triangle = distribution.AsTriangle()) {
    const std::size_t place = AddToBatch(triangles_, task.stream, position);
    Triangles& into = triangles_.back();
    into.split[place] = triangle->split;
    into.minimum[place] = triangle->minimum;
    into.rising_product[place] = triangle->rising_product;
    into.maximum[place] = triangle->maximum;
    into.falling_product[place] = triangle->falling_product;
  } else {
    AddToBatch(others_, task.stream, position);
    others_.back().distributions.push_back(distribution);
  }
}

// Triangle::Sample, over columns.
NIMBREL_VECTOR_CLONES
void Sampler::SampleTriangles(const Triangles& triangles, const double* uniform, double* samples) {
  for (std::size_t i = 0; i < kStreamsAtATime; ++i) {
    const bool rising = uniform[i] < triangles.split[i];
    const double product = rising ? triangles.rising_product[i] : triangles.falling_product[i];
    const double tail = rising ? uniform[i] : 1.0 - uniform[i];
    const double reach = std::sqrt(product * tail);
    samples[i] = rising ? triangles.minimum[i] + reach : triangles.maximum[i] - reach;
  }
}

void Sampler::Prepare(IterationSamples& samples) const {
  samples.units = fixed_;
  samples.skipped.assign(fixed_.size(), 0);
}

void Sampler::Sample(std::uint64_t seed, std::int32_t iteration, IterationSamples& samples) const {
  double uniform[kStreamsAtATime];
  double drawn[kStreamsAtATime];
  for (const Triangles& batch : triangles_) {
    UniformsAt(seed, iteration, Purpose::kDuration, batch.stream_lower, batch.stream_upper,
               uniform);
    SampleTriangles(batch, uniform, drawn);
    for (std::size_t i = 0; i < batch.count; ++i) {
      samples.units[batch.position[i]] = drawn[i];
    }
  }
  for (const Others& batch : others_) {
    UniformsAt(seed, iteration, Purpose::kDuration, batch.stream_lower, batch.stream_upper,
               uniform);
    for (std::size_t i = 0; i < batch.count; ++i) {
      samples.units[batch.position[i]] = batch.distributions[i].Sample(uniform[i]);
    }
  }
  for (const Risk& risk : risks_) {
    const bool occurs =
        UniformAt(seed, iteration, risk.stream, Purpose::kOccurrence) < risk.probability;
    samples.skipped[risk.position] = occurs ? 0 : 1;
    if (!occurs) {
      samples.units[risk.position] = 0.0;
    } else if (!risk.has_distribution) {
      samples.units[risk.position] = risk.otherwise;
    }
  }
}

}  // namespace nimbrel::engine
