#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "engine/plan/plan.h"
#include "engine/risk/random.h"
#include "engine/risk/symmetric_matrix.h"

namespace nimbrel::engine {

/// A plan asks for a sampling that cannot be done. The text says what of it, and why.
class SamplingError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Turns independent standard normal numbers into correlated ones.
class Mixing {
 public:
  /// For `size` numbers with the correlation `rho`, -1 / (size - 1) to 1, between any two: by the
  /// symmetric square root of their matrix, (1 - rho) I + rho J, which takes O(size) a time.
  static Mixing Alike(std::size_t size, double rho);
  /// For numbers with the correlation matrix L L'.
  static Mixing ByFactor(SquareMatrix lower);

  std::size_t size() const { return size_; }
  /// Mixes size() numbers in place.
  void Mix(std::span<double> numbers) const;

 private:
  explicit Mixing(std::size_t size) : size_(size), lower_(0) {}

  std::size_t size_;
  double own_ = 1;     // without a factor: weight of a number itself
  double shared_ = 0;  // and of the sum of all
  SquareMatrix lower_;
};

/// Values of tasks that are drawn together, through a Gaussian copula: each value's own uniform
/// number becomes a normal one, the normal ones are mixed, and each goes back to a uniform one.
/// Every value so keeps its distribution.
struct TiedSet {
  struct Member {
    Uid task = 0;
    std::uint64_t stream = 0;
  };
  Purpose purpose = Purpose::kDuration;
  std::vector<Member> members;  // in the plan's order
  Mixing mixing;
};

/// A plan's correlation, made ready for sampling. No value is in two sets.
struct Correlation {
  std::vector<TiedSet> sets;
  /// What of it could not be followed to the letter, a line each: matrices that were repaired,
  /// members without anything to draw, calendars that are not there.
  std::vector<std::string> notes;
};

/// Tells which tasks of two calendars of a group go together. Empty: none.
using Together = std::function<bool(const Plan&, const Task&, const Task&)>;

/// Works out who goes with whom. The coefficient of a pair that two groups name is that of the
/// later group. Where the coefficients of values that hang together are no correlation matrix, the
/// nearest one takes their place. Raises SamplingError where overlapping groups tie more than
/// kMostEntangled values.
Correlation MakeCorrelation(const Plan& plan, const Together& together);

/// Values in one set whose pairs have different coefficients.
inline constexpr std::size_t kMostEntangled = 400;

/// The correlation of two normal numbers whose rank correlation is `coefficient`: 2 sin(pi / 6
/// coefficient).
double NormalCorrelation(double coefficient);

}  // namespace nimbrel::engine
