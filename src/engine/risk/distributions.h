#pragma once

#include <cmath>
#include <cstdint>
#include <map>
#include <memory>

#include "engine/plan/plan.h"
#include "engine/risk/beta.h"

namespace nimbrel::engine {

/// The PERT tables of a run, one for each place that the mode has in its range.
class PertTables {
 public:
  /// The table of the beta distribution with alpha = 1 + 4 r and beta = 5 - 4 r, where r from 0 to
  /// 1 is (mode - minimum) / (maximum - minimum). It lives as long as this object.
  const BetaTable& For(double relative_mode);

 private:
  std::map<double, std::unique_ptr<BetaTable>> tables_;
};

/// The inverse Cdf of a triangular distribution: the rising side up to the mode, the falling side
/// behind it.
struct Triangle {
  double split = 0;                         // the Cdf at the mode
  double minimum = 0, rising_product = 0;   // width * (mode - minimum)
  double maximum = 0, falling_product = 0;  // width * (maximum - mode)

  double Sample(double u) const {
    const bool rising = u < split;
    const double reach =
        std::sqrt((rising ? rising_product : falling_product) * (rising ? u : 1.0 - u));
    return rising ? minimum + reach : maximum - reach;
  }
};

/// A three-point estimate as an inverse Cdf: one uniform number gives one sample, and a greater one
/// never gives a smaller one.
///
/// - kTriangular: mean (a + m + b) / 3;
/// - kUniform: from a to b, the mode is not looked at;
/// - kPert: beta of weight 4 on the mode: mean (a + 4 m + b) / 6;
/// - kSingle: always m.
///
/// Points that are out of order are put in order first: of minimum and maximum the smaller is the
/// minimum, and a mode outside them is moved to the nearer one.
class Distribution {
 public:
  /// Raises platform::RuntimeError (number 6) for a point that is no finite number. `tables` must
  /// outlive the distribution.
  Distribution(const ThreePoint& range, PertTables& tables);

  /// Whether every sample is the same.
  bool IsConstant() const { return kind_ == Kind::kConstant; }

  /// The sample for 0 <= u < 1. The same bits on every machine.
  double Sample(double u) const;

  /// The triangle, if the distribution is one, else null.
  const Triangle* AsTriangle() const { return kind_ == Kind::kTriangle ? &triangle_ : nullptr; }

 private:
  enum class Kind : std::uint8_t { kConstant, kLine, kTriangle, kPert };

  Kind kind_ = Kind::kConstant;
  double base_ = 0;   // the constant; the minimum
  double width_ = 0;  // maximum less minimum
  Triangle triangle_;
  const BetaTable* table_ = nullptr;
};

}  // namespace nimbrel::engine
