#include "engine/risk/sampler.h"

#include <algorithm>

#include "engine/risk/random.h"
#include "platform/runtime_error.h"

namespace nimbrel::engine {
namespace {

bool IsSampled(const Task& task) {
  return task.kind == TaskKind::kTask && !task.IsFinished();
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
          draws_.push_back({position, task.stream, distribution});
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

void Sampler::Prepare(IterationSamples& samples) const {
  samples.units = fixed_;
  samples.skipped.assign(fixed_.size(), 0);
}

void Sampler::Sample(std::uint64_t seed, std::int32_t iteration, IterationSamples& samples) const {
  for (const Draw& draw : draws_) {
    samples.units[draw.position] =
        draw.distribution.Sample(UniformAt(seed, iteration, draw.stream, Purpose::kDuration));
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
