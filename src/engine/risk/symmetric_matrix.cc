#include "engine/risk/symmetric_matrix.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace nimbrel::engine {
namespace {

/// Turns `matrix` in the plane of p and q so that the cell (p, q) becomes zero, and the vectors
/// with it.
void Rotate(SquareMatrix& matrix, SquareMatrix& vectors, std::size_t p, std::size_t q) {
  const double off = matrix.At(p, q);
  const double theta = (matrix.At(q, q) - matrix.At(p, p)) / (2.0 * off);
  const double tangent =
      (theta < 0 ? -1.0 : 1.0) / (std::abs(theta) + std::sqrt(theta * theta + 1.0));
  const double cosine = 1.0 / std::sqrt(tangent * tangent + 1.0);
  const double sine = tangent * cosine;
  const auto turn = [cosine, sine](double& a, double& b) {
    const double first = a;
    a = cosine * first - sine * b;
    b = sine * first + cosine * b;
  };
  for (std::size_t k = 0; k < matrix.size(); ++k) {
    turn(matrix.At(p, k), matrix.At(q, k));
  }
  for (std::size_t k = 0; k < matrix.size(); ++k) {
    turn(matrix.At(k, p), matrix.At(k, q));
    turn(vectors.At(p, k), vectors.At(q, k));
  }
}

double GreatestCell(const SquareMatrix& matrix) {
  double greatest = 0.0;
  for (std::size_t i = 0; i < matrix.size(); ++i) {
    for (std::size_t j = 0; j < matrix.size(); ++j) {
      greatest = std::max(greatest, std::abs(matrix.At(i, j)));
    }
  }
  return greatest;
}

SquareMatrix Identity(std::size_t size) {
  SquareMatrix matrix(size);
  for (std::size_t i = 0; i < size; ++i) {
    matrix.At(i, i) = 1.0;
  }
  return matrix;
}

/// V A V', the cells of A as seen along the rows of V.
SquareMatrix SeenAlong(const SquareMatrix& vectors, const SquareMatrix& matrix) {
  const std::size_t size = matrix.size();
  SquareMatrix half(size);
  for (std::size_t i = 0; i < size; ++i) {
    for (std::size_t k = 0; k < size; ++k) {
      const double factor = vectors.At(i, k);
      for (std::size_t j = 0; j < size; ++j) {
        half.At(i, j) += factor * matrix.At(k, j);
      }
    }
  }
  SquareMatrix seen(size);
  for (std::size_t i = 0; i < size; ++i) {
    for (std::size_t j = 0; j <= i; ++j) {
      double sum = 0.0;
      for (std::size_t k = 0; k < size; ++k) {
        sum += half.At(i, k) * vectors.At(j, k);
      }
      seen.At(i, j) = sum;
      seen.At(j, i) = sum;
    }
  }
  return seen;
}

/// The nearest positive semidefinite matrix: without the parts of negative eigenvalues.
SquareMatrix Clipped(const SquareMatrix& matrix, const EigenSystem& system) {
  const std::size_t size = matrix.size();
  SquareMatrix clipped = matrix;
  for (std::size_t e = 0; e < size; ++e) {
    if (system.values[e] >= 0) {
      continue;
    }
    const double* const v = system.vectors.Row(e);
    for (std::size_t i = 0; i < size; ++i) {
      const double factor = system.values[e] * v[i];
      for (std::size_t j = 0; j < size; ++j) {
        clipped.At(i, j) -= factor * v[j];
      }
    }
  }
  return clipped;
}

/// Ones on the diagonal by the same factors for rows and columns: positive semidefinite as before.
void Rescale(SquareMatrix& matrix) {
  std::vector<double> factors(matrix.size());
  for (std::size_t i = 0; i < matrix.size(); ++i) {
    factors[i] = 1.0 / std::sqrt(std::max(matrix.At(i, i), 1e-300));
  }
  for (std::size_t i = 0; i < matrix.size(); ++i) {
    matrix.At(i, i) = 1.0;
    for (std::size_t j = 0; j < i; ++j) {
      matrix.At(i, j) = std::clamp(matrix.At(i, j) * factors[i] * factors[j], -1.0, 1.0);
      matrix.At(j, i) = matrix.At(i, j);
    }
  }
}

}  // namespace

EigenSystem FindEigenSystem(const SquareMatrix& symmetric, const SquareMatrix* close) {
  const std::size_t size = symmetric.size();
  SquareMatrix matrix = close == nullptr ? symmetric : SeenAlong(*close, symmetric);
  EigenSystem system{std::vector<double>(size), close == nullptr ? Identity(size) : *close};
  const double negligible = 1e-14 * GreatestCell(matrix);
  constexpr int kMostSweeps = 60;
  bool turned = true;
  for (int sweep = 0; turned && sweep < kMostSweeps; ++sweep) {
    turned = false;
    for (std::size_t p = 0; p < size; ++p) {
      for (std::size_t q = p + 1; q < size; ++q) {
        if (std::abs(matrix.At(p, q)) > negligible) {
          Rotate(matrix, system.vectors, p, q);
          turned = true;
        }
      }
    }
  }
  for (std::size_t i = 0; i < size; ++i) {
    system.values[i] = matrix.At(i, i);
  }
  return system;
}

std::optional<SquareMatrix> FactorLower(const SquareMatrix& symmetric) {
  constexpr double kTolerance = 1e-10;
  const std::size_t size = symmetric.size();
  SquareMatrix lower(size);
  for (std::size_t j = 0; j < size; ++j) {
    for (std::size_t i = j; i < size; ++i) {
      double rest = symmetric.At(i, j);
      for (std::size_t k = 0; k < j; ++k) {
        rest -= lower.At(i, k) * lower.At(j, k);
      }
      if (i == j) {
        if (rest < -kTolerance) {
          return std::nullopt;
        }
        lower.At(j, j) = rest > kTolerance ? std::sqrt(rest) : 0.0;
      } else if (lower.At(j, j) > 0) {
        lower.At(i, j) = rest / lower.At(j, j);
      } else if (std::abs(rest) > std::sqrt(kTolerance)) {
        return std::nullopt;
      }
    }
  }
  return lower;
}

SquareMatrix NearestCorrelation(const SquareMatrix& symmetric) {
  constexpr double kStill = 1e-9;
  constexpr int kMostTurns = 500;
  const std::size_t size = symmetric.size();
  SquareMatrix current = symmetric;
  SquareMatrix correction(size);
  SquareMatrix vectors = Identity(size);
  for (int turn = 0; turn < kMostTurns; ++turn) {
    SquareMatrix corrected(size);
    for (std::size_t i = 0; i < size; ++i) {
      for (std::size_t j = 0; j < size; ++j) {
        corrected.At(i, j) = current.At(i, j) - correction.At(i, j);
      }
    }
    EigenSystem system = FindEigenSystem(corrected, &vectors);
    const SquareMatrix clipped = Clipped(corrected, system);
    vectors = std::move(system.vectors);
    double moved = 0.0;
    for (std::size_t i = 0; i < size; ++i) {
      for (std::size_t j = 0; j < size; ++j) {
        correction.At(i, j) = clipped.At(i, j) - corrected.At(i, j);
        const double next = i == j ? 1.0 : clipped.At(i, j);
        moved =
            std::max({moved, std::abs(next - current.At(i, j)), std::abs(next - clipped.At(i, j))});
        current.At(i, j) = next;
      }
    }
    if (moved < kStill) {
      break;
    }
  }
  SquareMatrix nearest = Clipped(current, FindEigenSystem(current, &vectors));
  Rescale(nearest);
  return nearest;
}

}  // namespace nimbrel::engine
