#include "engine/risk/sensitivity.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace nimbrel::engine {
namespace {

// Grades are taken from 1/2, their mean, so that the sums stay small.
constexpr double kMiddle = 0.5;

struct Moments {
  double sum = 0;
  double squares = 0;

  /// The sum of the squared distances from the mean of so many values.
  double Spread(double count) const { return std::max(squares - sum * sum / count, 0.0); }
};

Moments MomentsOf(const std::vector<double>& grades) {
  Moments moments;
  for (const double grade : grades) {
    moments.sum += grade - kMiddle;
    moments.squares += (grade - kMiddle) * (grade - kMiddle);
  }
  return moments;
}

void AddProducts(std::span<const double> grades, double factor, std::span<double> products) {
  for (std::size_t i = 0; i < grades.size(); ++i) {
    products[i] += grades[i] * factor;
  }
}

}  // namespace

std::vector<double> GradesOf(std::span<const Instant> samples) {
  std::vector<std::uint32_t> order(samples.size());
  std::iota(order.begin(), order.end(), 0U);
  std::sort(order.begin(), order.end(), [samples](std::uint32_t a, std::uint32_t b) {
    return samples[a].packed() < samples[b].packed();
  });
  std::vector<double> grades(samples.size());
  for (std::size_t first = 0; first < order.size();) {
    std::size_t last = first;
    while (last < order.size() && samples[order[last]] == samples[order[first]]) {
      ++last;
    }
    const double grade =
        static_cast<double>(first + last) / (2.0 * static_cast<double>(samples.size()));
    for (; first < last; ++first) {
      grades[order[first]] = grade;
    }
  }
  return grades;
}

std::vector<std::vector<double>> GradeCorrelations(Sampler& sampler,
                                                   std::span<const std::int32_t> iterations,
                                                   std::span<const std::vector<double>> columns) {
  const std::size_t tasks = sampler.task_count();
  std::vector<double> grades(tasks);
  std::vector<double> sums(tasks);
  std::vector<double> squares(tasks);
  std::vector<std::vector<double>> products(columns.size(), std::vector<double>(tasks));
  for (std::size_t i = 0; i < iterations.size(); ++i) {
    sampler.Grade(iterations[i], grades);
    for (std::size_t task = 0; task < tasks; ++task) {
      grades[task] -= kMiddle;
      sums[task] += grades[task];
      squares[task] += grades[task] * grades[task];
    }
    for (std::size_t column = 0; column < columns.size(); ++column) {
      AddProducts(grades, columns[column][i] - kMiddle, products[column]);
    }
  }
  const auto count = static_cast<double>(iterations.size());
  // Rounding may leave this much of a spread that is none.
  const double negligible = 1e-12 * count;
  for (std::size_t column = 0; column < columns.size(); ++column) {
    const Moments of_column = MomentsOf(columns[column]);
    for (std::size_t task = 0; task < tasks; ++task) {
      const double spread = Moments{sums[task], squares[task]}.Spread(count);
      const double both = spread * of_column.Spread(count);
      double& product = products[column][task];
      product = spread <= negligible || of_column.Spread(count) <= negligible
                    ? 0.0
                    : std::clamp((product - sums[task] * of_column.sum / count) / std::sqrt(both),
                                 -1.0, 1.0);
    }
  }
  return products;
}

}  // namespace nimbrel::engine
