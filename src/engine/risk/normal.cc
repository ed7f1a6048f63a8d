#include "engine/risk/normal.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <numbers>

#include "engine/risk/beta.h"

namespace nimbrel::engine {
namespace {

double Density(double x) {
  return PortableExp(-0.5 * x * x) * std::numbers::inv_sqrtpi / std::numbers::sqrt2;
}

/// 1 - Cdf(x) for x from 0 on, to about 1e-14 relative.
double UpperTail(double x) {
  if (x < 3.0) {
    // Cdf(x) - 1/2 = density (x + x^3 / 3 + x^5 / (3 * 5) + ...).
    double term = x;
    double sum = x;
    for (int k = 3; term > sum * 1e-18; k += 2) {
      term *= x * x / k;
      sum += term;
    }
    return 0.5 - Density(x) * sum;
  }
  // density / (x + 1 / (x + 2 / (x + 3 / ...))), from far enough behind.
  double fraction = x;
  for (int k = 120; k >= 1; --k) {
    fraction = x + k / fraction;
  }
  return Density(x) / fraction;
}

/// The x from 0 on with UpperTail(x) = p, for 2^-60 < p <= 1/2, by Newton's method on the logarithm
/// of the tail. That is concave, so that a step from below goes too far, and those from above come
/// nearer and nearer.
double QuantileOfTail(double p) {
  constexpr double kFarthest = 9.5;
  const double target = PortableLog(p);
  double x = 0.0;
  for (int i = 0; i < 60; ++i) {
    const double tail = UpperTail(x);
    const double step = (PortableLog(tail) - target) * tail / Density(x);
    x = std::clamp(x + step, 0.0, kFarthest);
    if (std::abs(step) < 1e-15 * (1.0 + x)) {
      break;
    }
  }
  return x;
}

}  // namespace

double NormalCdf(double x) {
  if (x > 38.0 || x < -38.0) {
    return x > 0 ? 1.0 : 0.0;
  }
  return x < 0 ? UpperTail(-x) : 1.0 - UpperTail(x);
}

/// A cubic with these values and slopes (a piece's width times the derivative) at its ends.
NormalTable::Piece NormalTable::Join(double from, double to, double slope_from, double slope_to) {
  const double rise = to - from;
  return {from, slope_from, 3.0 * rise - 2.0 * slope_from - slope_to,
          slope_from + slope_to - 2.0 * rise};
}

NormalTable::NormalTable() {
  constexpr double kWidth = 1.0 / kPiecesPerUnit;
  for (std::size_t i = 0; i < upper_.size(); ++i) {
    const double from = static_cast<double>(i) * kWidth;
    const double to = from + kWidth;
    upper_[i] =
        Join(UpperTail(from), UpperTail(to), -Density(from) * kWidth, -Density(to) * kWidth);
  }
  for (int octave = 0; octave < kOctaves; ++octave) {
    // Probabilities from 2^-(octave + 2) to 2^-(octave + 1).
    const double least = std::ldexp(1.0, -(octave + 2));
    const double width = least / kPiecesPerOctave;
    double from = QuantileOfTail(least);
    for (int i = 0; i < kPiecesPerOctave; ++i) {
      const double to = QuantileOfTail(least + (i + 1) * width);
      tail_[static_cast<std::size_t>(octave * kPiecesPerOctave + i)] =
          Join(from, to, -width / Density(from), -width / Density(to));
      from = to;
    }
  }
}

double NormalTable::Cdf(double x) const {
  const double place = std::abs(x) * kPiecesPerUnit;
  double tail = 0.0;
  if (place < static_cast<double>(upper_.size())) {
    const auto piece = static_cast<std::size_t>(place);
    tail = std::max(upper_[piece].At(place - static_cast<double>(piece)), 0.0);
  }
  return x < 0 ? tail : std::min(1.0 - tail, 1.0 - 0x1p-53);
}

double NormalTable::Quantile(double u) const {
  const bool is_lower = u < 0.5;
  const double p = std::max(is_lower ? u : 1.0 - u, 0x1p-54);
  if (p >= 0.5) {
    return 0.0;
  }
  // p = 2^-(octave + 2) (1 + fraction): both stand in its bits.
  const auto bits = std::bit_cast<std::uint64_t>(p);
  const int octave = 1021 - static_cast<int>(bits >> 52);
  const double fraction =
      std::bit_cast<double>((bits & 0xFFFFFFFFFFFFFU) | 0x3FF0000000000000U) - 1.0;
  const double place = fraction * kPiecesPerOctave;
  const int piece = static_cast<int>(place);
  const double x =
      tail_[static_cast<std::size_t>(octave * kPiecesPerOctave + piece)].At(place - piece);
  return is_lower ? -x : x;
}

const NormalTable& Normal() {
  static const NormalTable table;
  return table;
}

}  // namespace nimbrel::engine
