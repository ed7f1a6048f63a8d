#pragma once

#include <array>
#include <cstddef>

namespace nimbrel::engine {

// The standard normal distribution, with additions, multiplications, divisions and square roots
// alone, so that every machine computes the same bits.

/// P(X <= x), to about 1e-15 absolute. Slow: a series of positive terms.
double NormalCdf(double x);

/// Both ways between a standard normal number and its probability, by tables, for sampling.
class NormalTable {
 public:
  NormalTable();

  /// P(X <= x), within 1e-9; 0 <= result < 1, so that it can be sampled with.
  double Cdf(double x) const;
  /// The x with P(X <= x) = u for 0 <= u <= 1, within 1e-7 for u from 2^-50 to 1 - 2^-50; closer to
  /// 0 and 1 it is the value at 2^-54 at the most. Odd: Quantile(1 - u) = -Quantile(u) for exact
  /// 1 - u.
  double Quantile(double u) const;

 private:
  /// c0 + t (c1 + t (c2 + t c3)), t from 0 to 1 within the piece.
  struct Piece {
    double c0 = 0, c1 = 0, c2 = 0, c3 = 0;
    double At(double t) const { return c0 + t * (c1 + t * (c2 + t * c3)); }
  };
  static Piece Join(double from, double to, double slope_from, double slope_to);

  static constexpr int kPiecesPerUnit = 64;
  static constexpr int kReach = 9;  // beyond, a probability differs from 0 by less than 2^-53
  static constexpr int kOctaves = 54;
  static constexpr int kPiecesPerOctave = 32;

  std::array<Piece, static_cast<std::size_t>(kReach* kPiecesPerUnit)> upper_;  // of 1 - Cdf
  // Of the quantile of a lower tail, one octave of probabilities after the other from 1/2 down.
  std::array<Piece, static_cast<std::size_t>(kOctaves* kPiecesPerOctave)> tail_;
};

/// The one table of the program.
const NormalTable& Normal();

}  // namespace nimbrel::engine
