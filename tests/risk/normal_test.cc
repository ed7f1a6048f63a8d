// The normal distribution without a C library, and matrices.

#include "engine/risk/normal.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

#include "engine/risk/symmetric_matrix.h"

namespace nimbrel::engine {
namespace {

TEST(NormalCdf, AgreesWithTheErrorFunction) {
  for (double x = -8.5; x <= 8.5; x += 0.0625) {
    // Of the smaller tail, relatively: the C library's erfc is good to a few units there.
    const double expected = 0.5 * std::erfc(std::abs(x) / std::sqrt(2.0));
    const double tail = x < 0 ? NormalCdf(x) : 1.0 - NormalCdf(x);
    EXPECT_NEAR(tail, expected, 1e-15 + (x < 0 ? 1e-12 * expected : 0)) << x;
  }
  EXPECT_EQ(NormalCdf(-40), 0.0);
  EXPECT_EQ(NormalCdf(40), 1.0);
}

TEST(NormalTable, IsTheCdfWithinItsBound) {
  for (double x = -9.5; x <= 9.5; x += 0.00731) {
    EXPECT_NEAR(Normal().Cdf(x), NormalCdf(x), 1e-9) << x;
    EXPECT_GE(Normal().Cdf(x), 0.0);
    EXPECT_LT(Normal().Cdf(x), 1.0);
  }
}

TEST(NormalTable, QuantilesComeBackThroughTheExactCdf) {
  for (double tail = 0x1p-50; tail < 0.5; tail *= 1.07) {
    const double x = Normal().Quantile(tail);
    // A quantile that is off by d is off by density * d in probability, and the density is at most
    // (|x| + 1) times the tail out here.
    EXPECT_NEAR(NormalCdf(x) / tail, 1.0, 1e-7 * (std::abs(x) + 1.5)) << tail;
  }
  EXPECT_EQ(Normal().Quantile(0.5), 0.0);
  EXPECT_EQ(Normal().Quantile(0.25), -Normal().Quantile(0.75));
  EXPECT_EQ(Normal().Quantile(0.0), -Normal().Quantile(1.0));
  EXPECT_TRUE(std::isfinite(Normal().Quantile(0.0)));
}

SquareMatrix MakeMatrix(const std::vector<std::vector<double>>& rows) {
  SquareMatrix matrix(rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    for (std::size_t j = 0; j < rows.size(); ++j) {
      matrix.At(i, j) = rows[i][j];
    }
  }
  return matrix;
}

SquareMatrix RandomSymmetric(std::size_t size, unsigned seed) {
  std::mt19937_64 random(seed);
  std::uniform_real_distribution<double> cell(-1, 1);
  SquareMatrix matrix(size);
  for (std::size_t i = 0; i < size; ++i) {
    matrix.At(i, i) = 1;
    for (std::size_t j = 0; j < i; ++j) {
      matrix.At(i, j) = cell(random);
      matrix.At(j, i) = matrix.At(i, j);
    }
  }
  return matrix;
}

double LeastEigenvalue(const SquareMatrix& matrix) {
  const std::vector<double> values = FindEigenSystem(matrix).values;
  return *std::min_element(values.begin(), values.end());
}

TEST(EigenSystem, OfTwoRowsIsThatOfTheQuadraticFormula) {
  // [[2, 1], [1, 2]] has the values 1 and 3.
  std::vector<double> values = FindEigenSystem(MakeMatrix({{2, 1}, {1, 2}})).values;
  std::sort(values.begin(), values.end());
  EXPECT_NEAR(values[0], 1, 1e-14);
  EXPECT_NEAR(values[1], 3, 1e-14);
}

TEST(EigenSystem, MakesItsMatrixAgainWithOrthonormalVectors) {
  for (const std::size_t size : {1U, 2U, 7U, 40U}) {
    const SquareMatrix matrix = RandomSymmetric(size, 3);
    const EigenSystem found = FindEigenSystem(matrix);
    const EigenSystem again = FindEigenSystem(matrix, &found.vectors);
    for (const EigenSystem& system : {found, again}) {
      for (std::size_t i = 0; i < size; ++i) {
        for (std::size_t j = 0; j < size; ++j) {
          double cell = 0;
          double product = 0;
          for (std::size_t e = 0; e < size; ++e) {
            cell += system.values[e] * system.vectors.At(e, i) * system.vectors.At(e, j);
            product += system.vectors.At(i, e) * system.vectors.At(j, e);
          }
          EXPECT_NEAR(cell, matrix.At(i, j), 1e-12);
          EXPECT_NEAR(product, i == j ? 1 : 0, 1e-12);
        }
      }
    }
  }
}

TEST(FactorLower, MakesItsMatrixAgain) {
  const SquareMatrix matrix = MakeMatrix({{1, 0.5, 0.2}, {0.5, 1, -0.3}, {0.2, -0.3, 1}});
  const auto lower = FactorLower(matrix);
  ASSERT_TRUE(lower.has_value());
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      double cell = 0;
      for (std::size_t k = 0; k < 3; ++k) {
        cell += lower->At(i, k) * lower->At(j, k);
      }
      EXPECT_NEAR(cell, matrix.At(i, j), 1e-14);
    }
  }
  EXPECT_EQ(lower->At(0, 2), 0);
}

TEST(FactorLower, TakesAMatrixAtTheEdgeAndNoneBeyondIt) {
  EXPECT_TRUE(FactorLower(MakeMatrix({{1, 1}, {1, 1}})).has_value());
  EXPECT_TRUE(
      FactorLower(MakeMatrix({{1, -0.5, -0.5}, {-0.5, 1, -0.5}, {-0.5, -0.5, 1}})).has_value());
  EXPECT_FALSE(
      FactorLower(MakeMatrix({{1, -0.6, -0.6}, {-0.6, 1, -0.6}, {-0.6, -0.6, 1}})).has_value());
  EXPECT_FALSE(FactorLower(MakeMatrix({{1, 1, 0}, {1, 1, 1}, {0, 1, 1}})).has_value());
}

TEST(NearestCorrelation, OfAChainOfOnesIsTheOneWorkedOutByHand) {
  // Both ends tied fully to the middle and not to each other. By symmetry the answer has a for the
  // first pairs and b for the ends, with b = 2 a^2 - 1 at the edge of what is possible. The sum of
  // squares 4 (1 - a)^2 + 2 (2 a^2 - 1)^2 is least where 4 a^3 - a - 1 = 0.
  double a = 0.76;
  for (int i = 0; i < 50; ++i) {
    a -= (4 * a * a * a - a - 1) / (12 * a * a - 1);
  }
  const SquareMatrix nearest = NearestCorrelation(MakeMatrix({{1, 1, 0}, {1, 1, 1}, {0, 1, 1}}));
  EXPECT_NEAR(nearest.At(0, 1), a, 1e-6);
  EXPECT_NEAR(nearest.At(1, 2), a, 1e-6);
  EXPECT_NEAR(nearest.At(0, 2), 2 * a * a - 1, 1e-6);
}

TEST(NearestCorrelation, OfEqualCoefficientsBelowTheLeastIsTheLeast) {
  const SquareMatrix nearest =
      NearestCorrelation(MakeMatrix({{1, -0.9, -0.9}, {-0.9, 1, -0.9}, {-0.9, -0.9, 1}}));
  EXPECT_NEAR(nearest.At(0, 1), -0.5, 1e-6);
  EXPECT_NEAR(nearest.At(1, 2), -0.5, 1e-6);
}

TEST(NearestCorrelation, IsACorrelationMatrixAndNoNeighbourIsNearer) {
  for (const unsigned seed : {1U, 2U, 3U}) {
    const SquareMatrix asked = RandomSymmetric(8, seed);
    ASSERT_LT(LeastEigenvalue(asked), -0.1);
    const SquareMatrix nearest = NearestCorrelation(asked);
    EXPECT_GE(LeastEigenvalue(nearest), -1e-9);
    // The set is convex: if a step towards any other member brings nothing, none is nearer. That
    // is, (asked - nearest) . (other - nearest) is at most 0.
    for (const unsigned other_seed : {11U, 12U, 13U, 14U, 15U}) {
      const SquareMatrix other = NearestCorrelation(RandomSymmetric(8, other_seed));
      double product = 0;
      for (std::size_t i = 0; i < 8; ++i) {
        EXPECT_EQ(nearest.At(i, i), 1.0);
        for (std::size_t j = 0; j < 8; ++j) {
          EXPECT_EQ(nearest.At(i, j), nearest.At(j, i));
          product += (asked.At(i, j) - nearest.At(i, j)) * (other.At(i, j) - nearest.At(i, j));
        }
      }
      EXPECT_LE(product, 1e-5);
    }
  }
}

TEST(NearestCorrelation, LeavesACorrelationMatrixAsItIs) {
  const SquareMatrix matrix = MakeMatrix({{1, 0.5, 0.2}, {0.5, 1, -0.3}, {0.2, -0.3, 1}});
  const SquareMatrix nearest = NearestCorrelation(matrix);
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      EXPECT_NEAR(nearest.At(i, j), matrix.At(i, j), 1e-12);
    }
  }
}

}  // namespace
}  // namespace nimbrel::engine
