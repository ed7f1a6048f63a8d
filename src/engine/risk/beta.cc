#include "engine/risk/beta.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace nimbrel::engine {
namespace {

/// Integral of t^(a-1) (1-t)^(b-1) from 0 to x, for 0 < x <= 1/2: x^a (1-x)^b / a times a series of
/// positive terms (DLMF 8.17.8).
double LowerIntegral(double x, double a, double b) {
  double term = 1.0;
  double sum = 1.0;
  for (int k = 0; term > sum * 1e-17; ++k) {
    term *= x * (a + b + k) / (a + 1.0 + k);
    sum += term;
  }
  return PortableExp(a * PortableLog(x) + b * PortableLog(1.0 - x)) / a * sum;
}

/// Where the square root of the square root of a tail's probability ends: at one half.
double TailEnd() {
  return std::sqrt(std::sqrt(0.5));
}

}  // namespace

double PortableLog(double value) {
  int exponent = 0;
  double mantissa = std::frexp(value, &exponent);
  if (mantissa < std::numbers::sqrt2 / 2) {
    mantissa *= 2.0;
    --exponent;
  }
  // log m = 2 artanh((m - 1) / (m + 1)), the argument at most 0.1716.
  const double z = (mantissa - 1.0) / (mantissa + 1.0);
  const double square = z * z;
  double series = 0.0;
  for (int k = 23; k >= 1; k -= 2) {
    series = series * square + 1.0 / k;
  }
  return 2.0 * z * series + exponent * std::numbers::ln2;
}

double PortableExp(double value) {
  const double power = std::floor(value / std::numbers::ln2 + 0.5);
  // The product is exact with the first part of ln 2, whose last 21 bits are zero.
  constexpr double kLn2High = 0x1.62e42fee00000p-1;
  constexpr double kLn2Low = 0x1.a39ef35793c76p-33;
  const double rest = (value - power * kLn2High) - power * kLn2Low;
  double series = 1.0;
  for (int k = 16; k >= 1; --k) {
    series = 1.0 + series * rest / k;
  }
  return std::ldexp(series, static_cast<int>(power));
}

Beta::Beta(double alpha, double beta)
    : alpha_(alpha),
      beta_(beta),
      total_(LowerIntegral(0.5, alpha, beta) + LowerIntegral(0.5, beta, alpha)) {}

double Beta::Cdf(double x) const {
  if (x <= 0.0) {
    return 0.0;
  }
  if (x >= 1.0) {
    return 1.0;
  }
  return x <= 0.5 ? LowerIntegral(x, alpha_, beta_) / total_
                  : 1.0 - LowerIntegral(1.0 - x, beta_, alpha_) / total_;
}

double Beta::Density(double x) const {
  if (x <= 0.0 || x >= 1.0) {
    return 0.0;
  }
  return PortableExp((alpha_ - 1.0) * PortableLog(x) + (beta_ - 1.0) * PortableLog(1.0 - x)) /
         total_;
}

double Beta::InverseCdf(double u) const {
  if (u <= 0.0) {
    return 0.0;
  }
  if (u >= 1.0) {
    return 1.0;
  }
  double low = 0.0;
  double high = 1.0;
  // Near 0 the Cdf is x^alpha / (alpha B): exact in the tail and a fair start elsewhere.
  double x = PortableExp(PortableLog(u * alpha_ * total_) / alpha_);
  x = std::min(x, 0.5);
  for (int step = 0; step < 200; ++step) {
    const double excess = Cdf(x) - u;
    (excess > 0.0 ? high : low) = x;
    if (std::abs(excess) <= 1e-15 * u) {
      break;
    }
    const double density = Density(x);
    double next = density > 0.0 ? x - excess / density : (low + high) / 2;
    if (!(next > low && next < high)) {
      next = (low + high) / 2;
    }
    if (std::abs(next - x) <= 1e-16 * x) {
      break;
    }
    x = next;
  }
  return x;
}

double Beta::InverseUpper(double v) const {
  return Beta(beta_, alpha_).InverseCdf(v);
}

BetaTable::BetaTable(const Beta& beta) {
  const double step = TailEnd() / kPieces;
  const auto fill = [&](std::array<Piece, kPieces>& pieces, bool upper) {
    // Points and slopes by the fourth root s of the tail probability: du = 4 s^3 ds.
    const auto point = [&](double s) {
      const double tail = s * s * s * s;
      return upper ? beta.InverseUpper(tail) : beta.InverseCdf(tail);
    };
    const auto slope = [&](double s, double x) {
      const double density = beta.Density(upper ? 1.0 - x : x);
      return density > 0.0 ? 4.0 * s * s * s / density * step : 0.0;
    };
    double left = 0.0;
    double left_slope = 0.0;
    for (std::size_t i = 0; i < kPieces; ++i) {
      const double s = static_cast<double>(i + 1) * step;
      const double right = point(s);
      const double right_slope = slope(s, right);
      const double rise = right - left;
      // The slope at 0 need not exist; the secant's is as good as any within bounds. Slopes up to
      // three times the secant's keep a cubic piece monotone.
      const double from = std::min(i == 0 ? rise : left_slope, 3.0 * rise);
      const double to = std::min(right_slope, 3.0 * rise);
      const double sign = upper ? -1.0 : 1.0;
      pieces[i] = {.c0 = upper ? 1.0 - left : left,
                   .c1 = sign * from,
                   .c2 = sign * (3.0 * rise - 2.0 * from - to),
                   .c3 = sign * (from + to - 2.0 * rise)};
      left = right;
      left_slope = right_slope;
    }
  };
  fill(lower_, false);
  fill(upper_, true);
}

double BetaTable::At(double u) const {
  const bool upper = u >= 0.5;
  const double tail = upper ? 1.0 - u : u;
  const double position = std::sqrt(std::sqrt(tail)) * (kPieces / TailEnd());
  const std::size_t piece = std::min(static_cast<std::size_t>(position), kPieces - 1);
  const double t = position - static_cast<double>(piece);
  const Piece& cubic = (upper ? upper_ : lower_)[piece];
  return cubic.c0 + t * (cubic.c1 + t * (cubic.c2 + t * cubic.c3));
}

}  // namespace nimbrel::engine
