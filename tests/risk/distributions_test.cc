// The shapes of three-point estimates and the beta distribution behind PERT.

#include "engine/risk/distributions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <vector>

#include "engine/risk/beta.h"
#include "engine/risk/random.h"
#include "platform/runtime_error.h"
#include "tests/risk/goodness_of_fit.h"

namespace nimbrel::engine {
namespace {

/// Binomial sum for whole parameters with alpha + beta = 6 (DLMF 8.17.5).
double WholeBetaCdf(double x, int alpha) {
  constexpr double kChoose[] = {1, 5, 10, 10, 5, 1};
  double sum = 0;
  for (int j = alpha; j <= 5; ++j) {
    sum += kChoose[j] * std::pow(x, j) * std::pow(1 - x, 5 - j);
  }
  return sum;
}

/// Simpson's rule over the density.
double IntegratedBetaCdf(double x, double alpha, double beta) {
  const auto density = [&](double t) {
    return std::pow(t, alpha - 1) * std::pow(1 - t, beta - 1) *
           std::exp(std::lgamma(alpha + beta) - std::lgamma(alpha) - std::lgamma(beta));
  };
  constexpr int kSteps = 20'000;
  const double h = x / kSteps;
  double sum = density(0) + density(x);
  for (int i = 1; i < kSteps; ++i) {
    sum += (i % 2 == 1 ? 4 : 2) * density(i * h);
  }
  return sum * h / 3;
}

TEST(PortableFunctions, AgreeWithTheCLibrary) {
  for (int power = -299; power < 300; ++power) {
    const double x = 1.7 * std::pow(10.0, power);
    EXPECT_NEAR(PortableLog(x), std::log(x), 1e-15 * std::max(1.0, std::abs(std::log(x))));
  }
  for (int i = 500; i < 2000; ++i) {
    const double x = i / 1000.0;
    EXPECT_NEAR(PortableLog(x), std::log(x), 3e-16);
  }
  for (int i = -1890; i < 1890; ++i) {
    const double x = i * 0.37;
    EXPECT_NEAR(PortableExp(x) / std::exp(x), 1.0, 1e-15);
  }
}

TEST(Beta, CdfMeetsTheBinomialSumForWholeParameters) {
  for (int alpha = 1; alpha <= 5; ++alpha) {
    const Beta beta(alpha, 6 - alpha);
    for (int i = 0; i <= 256; ++i) {
      const double x = i / 256.0;
      EXPECT_NEAR(beta.Cdf(x), WholeBetaCdf(x, alpha), 1e-13) << alpha << " " << x;
    }
  }
}

TEST(Beta, CdfMeetsTheIntegralOfTheDensity) {
  for (const double alpha : {2.6, 3.0, 3.7, 4.9}) {
    const Beta beta(alpha, 8 - alpha);
    for (int i = 1; i < 20; ++i) {
      const double x = i / 20.0;
      // The rule's error is that of the fourth derivative, which is unbounded at 0 for small alpha.
      EXPECT_NEAR(beta.Cdf(x), IntegratedBetaCdf(x, alpha, 8 - alpha), 1e-9) << alpha << " " << x;
    }
  }
}

TEST(Beta, InverseMeetsTheCdf) {
  for (int i = 4; i <= 20; ++i) {
    const double alpha = i / 4.0;
    const Beta beta(alpha, 6 - alpha);
    for (const double u : {1e-12, 1e-7, 1e-3, 0.1, 0.25, 0.5, 0.75, 0.9, 0.999}) {
      const double x = beta.InverseCdf(u);
      EXPECT_NEAR(beta.Cdf(x), u, 1e-12 * std::max(u, 1e-2)) << alpha << " " << u;
      if (u > 1e-4) {  // below, too few digits are left in 1 - u
        EXPECT_NEAR(beta.InverseUpper(1 - u), 1 - x, 1e-10) << alpha << " " << u;
      }
    }
    EXPECT_EQ(beta.InverseCdf(0.0), 0.0);
    EXPECT_EQ(beta.InverseCdf(1.0), 1.0);
  }
}

TEST(BetaTable, IsAsNearToTheInverseAsItSays) {
  for (int i = 0; i <= 20; ++i) {
    const double relative_mode = i / 20.0;
    const Beta beta(1 + 4 * relative_mode, 5 - 4 * relative_mode);
    const BetaTable table(beta);
    for (int k = 0; k < 730; ++k) {
      const double u = 1e-4 + k * 0.00137;
      EXPECT_NEAR(table.At(u), beta.InverseCdf(u), 2e-6) << relative_mode << " " << u;
      EXPECT_NEAR(beta.Cdf(table.At(u)), u, 3e-7) << relative_mode << " " << u;
    }
    for (int k = 0; k < 96; ++k) {
      const double tail = 1e-15 * std::pow(1.3, k);
      EXPECT_NEAR(beta.Cdf(table.At(tail)), tail, 3e-7) << relative_mode << " " << tail;
      EXPECT_NEAR(beta.Cdf(table.At(1 - tail)), 1 - tail, 3e-7) << relative_mode << " " << tail;
    }
  }
}

TEST(BetaTable, NeverFallsAndStaysBetweenZeroAndOne) {
  for (const double relative_mode : {0.0, 0.01, 0.3, 0.5, 0.77, 1.0}) {
    const BetaTable table(Beta(1 + 4 * relative_mode, 5 - 4 * relative_mode));
    double last = 0;
    for (int i = 0; i <= 200'000; ++i) {
      const double x = table.At(i / 200'001.0);
      ASSERT_GE(x, last - 1e-15) << relative_mode << " " << i;
      last = x;
    }
    EXPECT_EQ(table.At(0.0), 0.0);
    EXPECT_LE(table.At(std::nextafter(1.0, 0.0)), 1.0);
  }
}

struct Moments {
  double mean = 0;
  double variance = 0;
};

/// Of the inverse Cdf by the midpoint rule over u.
Moments Integrate(const Distribution& distribution) {
  constexpr int kSteps = 100'000;
  Moments moments;
  double squares = 0;
  for (int i = 0; i < kSteps; ++i) {
    const double x = distribution.Sample((i + 0.5) / kSteps);
    moments.mean += x / kSteps;
    squares += x * x / kSteps;
  }
  moments.variance = squares - moments.mean * moments.mean;
  return moments;
}

std::vector<double> Draw(const Distribution& distribution, int count) {
  std::vector<double> samples;
  for (std::int32_t i = 1; i <= count; ++i) {
    samples.push_back(distribution.Sample(UniformAt(3, i, 17, Purpose::kDuration)));
  }
  return samples;
}

// The midpoint rule over 100,000 steps is good for 1e-4 of a range of 10 to 40, the square roots at
// the ends included.

TEST(Distribution, ATriangleHasItsMomentsAndFits) {
  PertTables tables;
  struct Case {
    double a, m, b;
  };
  for (const auto& [a, m, b] : {Case{10, 20, 50}, Case{0, 0, 12}, Case{3, 9, 9}}) {
    const Distribution triangle({a, m, b, Shape::kTriangular}, tables);
    const Moments moments = Integrate(triangle);
    EXPECT_NEAR(moments.mean, (a + m + b) / 3, 1e-4);
    EXPECT_NEAR(moments.variance, (a * a + m * m + b * b - a * m - a * b - m * b) / 18, 1e-3);
    const auto cdf = [a = a, m = m, b = b](double x) {
      return x < m ? (x - a) * (x - a) / ((b - a) * (m - a))
                   : 1 - (b - x) * (b - x) / ((b - a) * (b - m));
    };
    if (m < b) {
      EXPECT_LT(KolmogorovDistance(Draw(triangle, 20'000), cdf), kKolmogorovLimit);
    }
  }
}

TEST(Distribution, AUniformRangeHasItsMomentsAndFits) {
  PertTables tables;
  const Distribution uniform({5, 6, 25, Shape::kUniform}, tables);
  const Moments moments = Integrate(uniform);
  EXPECT_NEAR(moments.mean, 15, 1e-4);
  EXPECT_NEAR(moments.variance, 20.0 * 20.0 / 12, 1e-3);
  EXPECT_LT(KolmogorovDistance(Draw(uniform, 20'000), [](double x) { return (x - 5) / 20; }),
            kKolmogorovLimit);
}

TEST(Distribution, APertRangeHasItsMomentsAndFits) {
  PertTables tables;
  for (int alpha = 1; alpha <= 5; ++alpha) {
    const double a = 10;
    const double b = 30;
    const double m = a + (b - a) * (alpha - 1) / 4;
    const Distribution pert({a, m, b, Shape::kPert}, tables);
    const Moments moments = Integrate(pert);
    EXPECT_NEAR(moments.mean, (a + 4 * m + b) / 6, 1e-4) << alpha;
    // Variance of a beta distribution: alpha beta / ((alpha + beta)^2 (alpha + beta + 1)).
    EXPECT_NEAR(moments.variance, alpha * (6.0 - alpha) / (36 * 7) * (b - a) * (b - a), 1e-3);
    EXPECT_LT(KolmogorovDistance(Draw(pert, 20'000),
                                 [=](double x) { return WholeBetaCdf((x - a) / (b - a), alpha); }),
              kKolmogorovLimit)
        << alpha;
  }
}

TEST(Distribution, ASingleValueIsTheMostLikelyOne) {
  PertTables tables;
  const Distribution single({1, 7, 9, Shape::kSingle}, tables);
  EXPECT_TRUE(single.IsConstant());
  EXPECT_EQ(single.Sample(0.0), 7.0);
  EXPECT_EQ(single.Sample(0.99), 7.0);
}

TEST(Distribution, ThreeEqualPointsAreOneValueInEveryShape) {
  PertTables tables;
  for (const Shape shape : {Shape::kTriangular, Shape::kUniform, Shape::kPert, Shape::kSingle}) {
    const Distribution point({4, 4, 4, shape}, tables);
    EXPECT_TRUE(point.IsConstant());
    EXPECT_EQ(point.Sample(0.3), 4.0);
  }
}

TEST(Distribution, PointsOutOfOrderArePutInOrder) {
  PertTables tables;
  for (const Shape shape : {Shape::kTriangular, Shape::kUniform, Shape::kPert}) {
    const Distribution in_order({2, 2, 9, shape}, tables);
    const Distribution swapped({9, 1, 2, shape}, tables);
    for (const double u : {0.0, 0.2, 0.7, 0.999}) {
      EXPECT_EQ(swapped.Sample(u), in_order.Sample(u));
    }
  }
}

TEST(Distribution, AGreaterNumberNeverGivesASmallerSample) {
  PertTables tables;
  for (const Shape shape : {Shape::kTriangular, Shape::kUniform, Shape::kPert}) {
    const Distribution distribution({-5, 3, 40, shape}, tables);
    double last = -5;
    for (int i = 0; i < 10'000; ++i) {
      const double sample = distribution.Sample(i / 10'000.0);
      EXPECT_GE(sample, last - 1e-12);
      EXPECT_LE(sample, 40);
      last = sample;
    }
  }
}

TEST(Distribution, RefusesWhatIsNoFiniteNumber) {
  PertTables tables;
  for (const double bad :
       {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
    EXPECT_THROW(Distribution({bad, 1, 2}, tables), platform::RuntimeError);
    EXPECT_THROW(Distribution({0, bad, 2}, tables), platform::RuntimeError);
    EXPECT_THROW(Distribution({0, 1, bad}, tables), platform::RuntimeError);
  }
  EXPECT_THROW(Distribution({-1.7e308, 0, 1.7e308}, tables), platform::RuntimeError);
}

}  // namespace
}  // namespace nimbrel::engine
