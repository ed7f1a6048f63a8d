#include "engine/risk/sampler.h"

#include <algorithm>
#include <cmath>

#include "platform/runtime_error.h"
#include "platform/vector_clones.h"

namespace nimbrel::engine {
namespace {

bool IsSampled(const Task& task) {
  return task.kind == TaskKind::kTask && !task.IsFinished();
}

}  // namespace

Sampler::Sampler(const Plan& plan, const SamplingDesign& design, const TiedNumbers* tied)
    : design_(design), tied_(tied), tied_uniform_(tied == nullptr ? 0 : tied->size()) {
  fixed_.reserve(plan.tasks().size());
  for (const Task& task : plan.tasks()) {
    const std::size_t position = fixed_.size();
    fixed_.push_back(plan.RemainingUnits(task));
    if (!IsSampled(task)) {
      continue;
    }
    try {
      AddTask(task, position);
    } catch (const platform::RuntimeError& error) {
      throw platform::RuntimeError(error.number(), "Task " + task.id + ": " + error.text());
    }
  }
}

void Sampler::AddTask(const Task& task, std::size_t position) {
  bool drawn = false;
  if (task.range.has_value()) {
    const Distribution distribution(*task.range, tables_);
    fixed_.back() = distribution.Sample(0.0);
    if (!distribution.IsConstant()) {
      AddDraw(task, position, distribution);
      drawn = true;
    }
  }
  if (DrawsOccurrence(task)) {
    risks_.push_back({.position = position,
                      .stream = task.stream,
                      .probability = std::max(task.risk->probability, 0.0) / 100.0,
                      .otherwise = fixed_.back(),
                      .has_distribution = drawn,
                      .key = StratumKey(design_.seed, task.stream, Purpose::kOccurrence),
                      .tied = TiedPlace(Purpose::kOccurrence, task)});
  }
}

std::int32_t Sampler::TiedPlace(Purpose purpose, const Task& task) const {
  return tied_ == nullptr ? -1 : tied_->PlaceOf(purpose, task.uid);
}

void Sampler::AddDraw(const Task& task, std::size_t position, const Distribution& distribution) {
  if (const std::int32_t place = TiedPlace(Purpose::kDuration, task); place >= 0) {
    tied_draws_.push_back({position, static_cast<std::size_t>(place), distribution});
  } else if (const Triangle* triangle = distribution.AsTriangle()) {
    const std::size_t at = AddToBatch(triangles_, task, position);
    Triangles& into = triangles_.back();
    into.split[at] = triangle->split;
    into.minimum[at] = triangle->minimum;
    into.rising_product[at] = triangle->rising_product;
    into.maximum[at] = triangle->maximum;
    into.falling_product[at] = triangle->falling_product;
  } else {
    AddToBatch(others_, task, position);
    others_.back().distributions.push_back(distribution);
  }
}

/// Adds a task's stream to the last batch, or to a new one, and gives its place there.
template <class Columns>
std::size_t Sampler::AddToBatch(std::vector<Columns>& batches, const Task& task,
                                std::size_t position) {
  if (batches.empty() || batches.back().count == kStreamsAtATime) {
    batches.emplace_back();
  }
  Columns& batch = batches.back();
  batch.stream_lower[batch.count] = static_cast<std::uint32_t>(task.stream);
  batch.stream_upper[batch.count] = static_cast<std::uint32_t>(task.stream >> 32);
  if (design_.sampling == Sampling::kLatinHypercube) {
    const PermutationKey key = StratumKey(design_.seed, task.stream, Purpose::kDuration);
    batch.key_lower[batch.count] = key.low;
    batch.key_upper[batch.count] = key.high;
  }
  batch.position[batch.count] = position;
  return batch.count++;
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

/// The uniform numbers of a batch's durations.
void Sampler::DrawBatch(const Batch& batch, std::int32_t iteration, double* uniform) const {
  UniformsAt(design_.seed, iteration, Purpose::kDuration, batch.stream_lower, batch.stream_upper,
             uniform);
  if (design_.sampling == Sampling::kLatinHypercube) {
    std::uint32_t places[kStreamsAtATime];
    PermutedAll(batch.key_lower, batch.key_upper, static_cast<std::uint32_t>(design_.iterations),
                static_cast<std::uint32_t>(iteration - 1), places);
    const auto count = static_cast<double>(design_.iterations);
    for (std::size_t i = 0; i < kStreamsAtATime; ++i) {
      uniform[i] = InStratum(places[i], uniform[i], count);
    }
  }
}

/// The uniform number of a task's occurrence.
double Sampler::DrawRisk(const Risk& risk, std::int32_t iteration) const {
  if (risk.tied >= 0) {
    return tied_uniform_[static_cast<std::size_t>(risk.tied)];
  }
  const double uniform = UniformAt(design_.seed, iteration, risk.stream, Purpose::kOccurrence);
  if (design_.sampling == Sampling::kMonteCarlo) {
    return uniform;
  }
  const auto count = static_cast<std::uint32_t>(design_.iterations);
  return InStratum(Permuted(risk.key, count, static_cast<std::uint32_t>(iteration - 1)), uniform,
                   static_cast<double>(count));
}

void Sampler::Sample(std::int32_t iteration, IterationSamples& samples) {
  double uniform[kStreamsAtATime];
  double drawn[kStreamsAtATime];
  for (const Triangles& batch : triangles_) {
    DrawBatch(batch, iteration, uniform);
    SampleTriangles(batch, uniform, drawn);
    for (std::size_t i = 0; i < batch.count; ++i) {
      samples.units[batch.position[i]] = drawn[i];
    }
  }
  for (const Others& batch : others_) {
    DrawBatch(batch, iteration, uniform);
    for (std::size_t i = 0; i < batch.count; ++i) {
      samples.units[batch.position[i]] = batch.distributions[i].Sample(uniform[i]);
    }
  }
  if (tied_ != nullptr) {
    tied_->Draw(iteration, tied_uniform_);
  }
  for (const TiedDraw& draw : tied_draws_) {
    samples.units[draw.position] = draw.distribution.Sample(tied_uniform_[draw.place]);
  }
  for (const Risk& risk : risks_) {
    const bool occurs = DrawRisk(risk, iteration) < risk.probability;
    samples.skipped[risk.position] = occurs ? 0 : 1;
    if (!occurs) {
      samples.units[risk.position] = 0.0;
    } else if (!risk.has_distribution) {
      samples.units[risk.position] = risk.otherwise;
    }
  }
}

void Sampler::Grade(std::int32_t iteration, std::span<double> grades) {
  std::fill(grades.begin(), grades.end(), 0.5);
  double uniform[kStreamsAtATime];
  const auto grade = [&](const Batch& batch) {
    DrawBatch(batch, iteration, uniform);
    for (std::size_t i = 0; i < batch.count; ++i) {
      grades[batch.position[i]] = uniform[i];
    }
  };
  std::for_each(triangles_.begin(), triangles_.end(), grade);
  std::for_each(others_.begin(), others_.end(), grade);
  if (tied_ != nullptr) {
    tied_->Draw(iteration, tied_uniform_);
  }
  for (const TiedDraw& draw : tied_draws_) {
    grades[draw.position] = tied_uniform_[draw.place];
  }
  for (const Risk& risk : risks_) {
    const double never = 1.0 - risk.probability;
    const double within = risk.has_distribution ? grades[risk.position] : 0.5;
    grades[risk.position] = DrawRisk(risk, iteration) < risk.probability
                                ? never + risk.probability * within
                                : never / 2.0;
  }
}

}  // namespace nimbrel::engine
