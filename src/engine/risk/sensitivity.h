#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "engine/calendar/instant.h"
#include "engine/risk/sampler.h"

namespace nimbrel::engine {

/// The grades of samples among themselves: of each the share of samples below it, and half of the
/// share of those that are equal to it.
std::vector<double> GradesOf(std::span<const Instant> samples);

/// The grade correlation of each task's sampled duration with some columns of dates.
///
/// That is Pearson's correlation of the grades of both: of the dates among themselves, and of the
/// durations by their distributions, which the sampler knows without any sorting (see
/// Sampler::Grade). For ever more iterations it becomes Spearman's rank correlation. The samples
/// are made again, so that it takes no memory but a few numbers a task.
///
/// `iterations` are the numbers of the iterations, in the order of the columns' grades. The result
/// is by column, and by task as in the sampler; 0 for durations and columns that never change.
std::vector<std::vector<double>> GradeCorrelations(Sampler& sampler,
                                                   std::span<const std::int32_t> iterations,
                                                   std::span<const std::vector<double>> columns);

}  // namespace nimbrel::engine
