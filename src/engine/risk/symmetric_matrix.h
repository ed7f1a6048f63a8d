#pragma once

#include <cstddef>
#include <optional>
#include <vector>

namespace nimbrel::engine {

/// A square matrix, row after row. Made for correlation matrices of up to some hundred rows.
class SquareMatrix {
 public:
  /// All zeros.
  explicit SquareMatrix(std::size_t size) : size_(size), cells_(size * size) {}

  std::size_t size() const { return size_; }
  double& At(std::size_t row, std::size_t column) { return cells_[row * size_ + column]; }
  double At(std::size_t row, std::size_t column) const { return cells_[row * size_ + column]; }
  double* Row(std::size_t row) { return cells_.data() + row * size_; }
  const double* Row(std::size_t row) const { return cells_.data() + row * size_; }

 private:
  std::size_t size_;
  std::vector<double> cells_;
};

/// Eigenvalues and eigenvectors of a symmetric matrix A: A = sum over i of values[i] v v', where v
/// is row i of `vectors`. In no order.
struct EigenSystem {
  std::vector<double> values;
  SquareMatrix vectors;
};

/// By Jacobi's rotations, each of which makes two cells off the diagonal zero, sweep after sweep
/// until they are all below 1e-14 of the greatest cell. With `close`, the rows of which are
/// orthonormal and nearly eigenvectors, one or two sweeps do.
EigenSystem FindEigenSystem(const SquareMatrix& symmetric, const SquareMatrix* close = nullptr);

/// The lower triangle L with L L' = A, or nothing unless A is positive semidefinite (to 1e-10). A
/// row that follows from those before it gets a zero on its diagonal.
std::optional<SquareMatrix> FactorLower(const SquareMatrix& symmetric);

/// The correlation matrix (positive semidefinite, ones on its diagonal) that is nearest to a
/// symmetric matrix by the sum of the squared differences of the cells.
///
/// Higham's alternating projections (2002) with Dykstra's correction: onto the positive
/// semidefinite matrices, by setting negative eigenvalues to zero, and onto those with ones on the
/// diagonal, in turns until neither moves a cell by 1e-9, or 500 times. What the last projection
/// leaves below zero is taken off by clipping and rescaling, so that the result is one in any case.
SquareMatrix NearestCorrelation(const SquareMatrix& symmetric);

}  // namespace nimbrel::engine
