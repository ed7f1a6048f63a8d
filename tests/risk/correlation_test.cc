// Values that are drawn together.

#include "engine/risk/correlation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <numeric>
#include <set>
#include <string>
#include <vector>

#include "engine/risk/run.h"
#include "engine/risk/sampler.h"
#include "tests/risk/goodness_of_fit.h"
#include "tests/risk/weather_plan.h"

namespace nimbrel::engine {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// What the tasks of a plan get in each iteration.
class Draws {
 public:
  Draws(const WeatherPlan& plan, const SamplingDesign& design)
      : plan_(plan),
        correlation_(MakeCorrelation(plan.plan, WithoutAddIn().together)),
        notes(correlation_.notes) {
    const TiedNumbers tied(std::move(correlation_), design);
    Sampler sampler(plan.plan, design, &tied);
    samples_.resize(static_cast<std::size_t>(design.iterations));
    for (std::int32_t iteration = 1; iteration <= design.iterations; ++iteration) {
      IterationSamples& into = samples_[static_cast<std::size_t>(iteration - 1)];
      sampler.Prepare(into);
      sampler.Sample(iteration, into);
    }
  }

  std::vector<double> Units(const std::string& id) const {
    return Column(id, [](const IterationSamples& s, std::size_t i) { return s.units[i]; });
  }
  std::vector<double> Occurred(const std::string& id) const {
    return Column(id, [](const IterationSamples& s, std::size_t i) { return 1.0 - s.skipped[i]; });
  }

 private:
  template <class Value>
  std::vector<double> Column(const std::string& id, const Value& value) const {
    const auto position = static_cast<std::size_t>(plan_.plan.IndexOf(plan_.UidOf(id)));
    std::vector<double> column;
    for (const IterationSamples& each : samples_) {
      column.push_back(value(each, position));
    }
    return column;
  }

  const WeatherPlan& plan_;
  Correlation correlation_;
  std::vector<IterationSamples> samples_;

 public:
  std::vector<std::string> notes;
};

/// Spearman's, by ranking; no two values are equal.
double RankCorrelation(const std::vector<double>& a, const std::vector<double>& b) {
  const auto ranks = [](const std::vector<double>& values) {
    std::vector<std::size_t> order(values.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(),
              [&values](std::size_t x, std::size_t y) { return values[x] < values[y]; });
    std::vector<double> rank(values.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
      rank[order[i]] = static_cast<double>(i);
    }
    return rank;
  };
  const std::vector<double> x = ranks(a);
  const std::vector<double> y = ranks(b);
  double squares = 0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    squares += (x[i] - y[i]) * (x[i] - y[i]);
  }
  const auto n = static_cast<double>(x.size());
  return 1 - 6 * squares / (n * (n * n - 1));
}

constexpr std::int32_t kIterations = 8000;
// A correlation of n pairs has a standard deviation of about (1 - r^2) / sqrt(n); rank correlation
// of normal pairs up to 1.06 times that. 4.5 of them are missed with a chance of 7 in a million.
double Tolerance(double coefficient) {
  return 4.5 * 1.06 * (1 - coefficient * coefficient) / std::sqrt(kIterations) + 1e-9;
}

void Tie(WeatherPlan& plan, const std::vector<std::string>& tasks, double coefficient) {
  CorrelationGroup& group = plan.plan.correlations.emplace_back();
  group.coefficient = coefficient;
  for (const std::string& id : tasks) {
    group.tasks.push_back(plan.UidOf(id));
  }
}

WeatherPlan FourTasks() {
  WeatherPlan plan;
  plan.AddTask("A", {2, 5, 11});
  plan.AddTask("B", {10, 12, 30, Shape::kPert});
  plan.AddTask("C", {1, 2, 9, Shape::kUniform});
  plan.AddTask("D", {2, 5, 11});
  return plan;
}

class CorrelatedDurations : public ::testing::TestWithParam<Sampling> {};

TEST_P(CorrelatedDurations, HaveTheCoefficientThatWasAskedFor) {
  for (const double coefficient : {-0.4, 0.3, 0.8, 1.0}) {
    WeatherPlan plan = FourTasks();
    Tie(plan, {"A", "B", "C"}, coefficient);
    const Draws draws(plan, {3, GetParam(), kIterations});
    EXPECT_NEAR(RankCorrelation(draws.Units("A"), draws.Units("B")), coefficient,
                Tolerance(coefficient));
    EXPECT_NEAR(RankCorrelation(draws.Units("B"), draws.Units("C")), coefficient,
                Tolerance(coefficient));
    EXPECT_NEAR(RankCorrelation(draws.Units("A"), draws.Units("D")), 0, Tolerance(0));
    EXPECT_THAT(draws.notes, IsEmpty());
  }
}

TEST_P(CorrelatedDurations, OfOverlappingGroupsHaveTheCoefficientOfEachPair) {
  WeatherPlan plan = FourTasks();
  Tie(plan, {"A", "B", "C"}, 0.5);
  Tie(plan, {"C", "D"}, -0.3);
  Tie(plan, {"B", "A"}, 0.7);  // a pair named again has the later coefficient
  const Draws draws(plan, {4, GetParam(), kIterations});
  EXPECT_THAT(draws.notes, IsEmpty());
  EXPECT_NEAR(RankCorrelation(draws.Units("A"), draws.Units("B")), 0.7, Tolerance(0.7));
  EXPECT_NEAR(RankCorrelation(draws.Units("A"), draws.Units("C")), 0.5, Tolerance(0.5));
  EXPECT_NEAR(RankCorrelation(draws.Units("C"), draws.Units("D")), -0.3, Tolerance(0.3));
  EXPECT_NEAR(RankCorrelation(draws.Units("A"), draws.Units("D")), 0, Tolerance(0));
}

TEST_P(CorrelatedDurations, KeepTheirDistributions) {
  WeatherPlan plan = FourTasks();
  Tie(plan, {"A", "B", "C"}, 0.6);
  Tie(plan, {"C", "D"}, -0.4);
  const Draws draws(plan, {5, GetParam(), kIterations});
  PertTables tables;
  for (const char* id : {"A", "B", "C", "D"}) {
    const ThreePoint range = *plan.plan.FindTask(id)->range;
    const double width = range.maximum - range.minimum;
    const double mode = (range.likely - range.minimum) / width;
    const Beta beta(1 + 4 * mode, 5 - 4 * mode);
    const auto cdf = [&](double x) {
      const double t = (x - range.minimum) / width;
      switch (range.shape) {
        case Shape::kUniform:
          return t;
        case Shape::kPert:
          return beta.Cdf(t);
        default:
          return t < mode ? t * t / mode : 1 - (1 - t) * (1 - t) / (1 - mode);
      }
    };
    EXPECT_LT(KolmogorovDistance(draws.Units(id), cdf), kKolmogorovLimit) << id;
  }
}

INSTANTIATE_TEST_SUITE_P(Samplings, CorrelatedDurations,
                         ::testing::Values(Sampling::kMonteCarlo, Sampling::kLatinHypercube));

TEST(Correlation, KeepsTheStrataOfALatinHypercubeExactly) {
  WeatherPlan plan = FourTasks();
  Tie(plan, {"A", "B", "C"}, 0.6);
  const SamplingDesign design{7, Sampling::kLatinHypercube, 333};
  const TiedNumbers tied(MakeCorrelation(plan.plan, {}), design);
  Sampler sampler(plan.plan, design, &tied);
  std::vector<std::set<int>> strata(4);
  std::vector<double> grades(4);
  for (std::int32_t iteration = 1; iteration <= 333; ++iteration) {
    sampler.Grade(iteration, grades);
    for (std::size_t i = 0; i < 4; ++i) {
      strata[i].insert(static_cast<int>(grades[i] * 333));
    }
  }
  for (const std::set<int>& taken : strata) {
    EXPECT_EQ(taken.size(), 333U);
  }
}

TEST(Correlation, ChangesNothingForTasksOutsideItsGroups) {
  WeatherPlan plan = FourTasks();
  const Draws before(plan, {1, Sampling::kMonteCarlo, 50});
  Tie(plan, {"A", "B"}, 0.6);
  const Draws after(plan, {1, Sampling::kMonteCarlo, 50});
  EXPECT_EQ(after.Units("C"), before.Units("C"));
  EXPECT_EQ(after.Units("D"), before.Units("D"));
  EXPECT_NE(after.Units("A"), before.Units("A"));
}

TEST(Correlation, IsTheSameForAnyNumberOfWorkers) {
  WeatherPlan plan = FourTasks();
  Tie(plan, {"A", "B", "C"}, 0.6);
  for (const Sampling sampling : {Sampling::kMonteCarlo, Sampling::kLatinHypercube}) {
    RunOptions options{.iterations = 200, .sampling = sampling};
    const RunResult one = engine::Run(plan.plan, options, WithAddIn());
    options.workers = 2;
    EXPECT_EQ(engine::Run(plan.plan, options, WithAddIn()), one);
  }
}

TEST(Correlation, OfNoCorrelationMatrixIsRepairedAndSaidSo) {
  WeatherPlan plan = FourTasks();
  Tie(plan, {"A", "B", "C"}, -0.9);
  const Draws draws(plan, {1, Sampling::kMonteCarlo, kIterations});
  // Three normal numbers can have -1/2 with each other and no less, which is a rank correlation of
  // 6 / pi asin(-1/4).
  const double least = 6 / std::numbers::pi * std::asin(-0.25);
  EXPECT_NEAR(RankCorrelation(draws.Units("A"), draws.Units("B")), least, Tolerance(least));
  EXPECT_NEAR(RankCorrelation(draws.Units("A"), draws.Units("C")), least, Tolerance(least));
  EXPECT_THAT(draws.notes, ElementsAre(HasSubstr("A with B, -0.90 became -0.48")));
}

TEST(Correlation, OfEntangledGroupsIsRepairedAndSaidSo) {
  WeatherPlan plan = FourTasks();
  Tie(plan, {"A", "B"}, 0.9);
  Tie(plan, {"B", "C"}, 0.9);
  Tie(plan, {"A", "C"}, -0.9);
  const Draws draws(plan, {1, Sampling::kMonteCarlo, 100});
  EXPECT_THAT(draws.notes, ElementsAre(HasSubstr("of 3 tasks are no correlation matrix")));
  EXPECT_GT(RankCorrelation(draws.Units("A"), draws.Units("B")), 0.2);
  EXPECT_LT(RankCorrelation(draws.Units("A"), draws.Units("C")), 0.0);
}

TEST(Correlation, TellsOfMembersWithNothingToDraw) {
  WeatherPlan plan = FourTasks();
  plan.AddTask("FIXED", 4);
  Tie(plan, {"A", "FIXED", "B"}, 0.5);
  plan.plan.correlations.push_back({{}, {"SEA", "WIND"}, 0.5});
  EXPECT_THAT(MakeCorrelation(plan.plan, {}).notes,
              ElementsAre(HasSubstr("1 of the 3 tasks"), HasSubstr("no calendar \"SEA\""),
                          HasSubstr("no calendar \"WIND\"")));
}

TEST(Correlation, OfTooManyEntangledValuesIsRefused) {
  WeatherPlan plan;
  std::vector<std::string> ids;
  for (std::size_t i = 0; i <= kMostEntangled; ++i) {
    ids.push_back("T" + std::to_string(i));
    plan.AddTask(ids.back(), {2, 5, 11});
  }
  Tie(plan, ids, 0.5);
  EXPECT_NO_THROW(MakeCorrelation(plan.plan, {}));  // alike, and so any number
  Tie(plan, {"T0", "T1"}, 0.7);
  EXPECT_THROW(MakeCorrelation(plan.plan, {}), SamplingError);
}

/// Two calendars with a period each; the second one is on the first days of the year or late in it.
WeatherPlan TwoStorms(int second_from, double probability) {
  WeatherPlan plan;
  plan.AddWeatherCalendar("SEA");
  plan.AddWeatherCalendar("WIND");
  plan.AddPeriod("SEA", 1, 20, {2, 4, 9}, probability).description = "sea";
  plan.AddPeriod("WIND", second_from, second_from + 20, {1, 4, 12}, probability).description =
      "wind";
  plan.plan.RenameTask(plan.plan.tasks()[1].uid, "S");
  plan.plan.RenameTask(plan.plan.tasks()[2].uid, "W");
  plan.plan.correlations.push_back({{}, {"sea", "Wind"}, 0.7});
  return plan;
}

TEST(CorrelatedWeather, SharesOccurrenceAndLengthWhereSpansOverlap) {
  const WeatherPlan plan = TwoStorms(15, 50);
  const Draws draws(plan, {2, Sampling::kMonteCarlo, kIterations});
  const std::vector<double> sea = draws.Occurred("S");
  const std::vector<double> wind = draws.Occurred("W");
  double both = 0;
  std::vector<double> sea_lengths;
  std::vector<double> wind_lengths;
  for (std::size_t i = 0; i < sea.size(); ++i) {
    if (sea[i] > 0 && wind[i] > 0) {
      ++both;
      sea_lengths.push_back(draws.Units("S")[i]);
      wind_lengths.push_back(draws.Units("W")[i]);
    }
  }
  // Two normal numbers with the correlation rho are both below their median with the chance
  // 1/4 + asin(rho) / (2 pi), and rho is 2 sin(pi / 6 * 0.7).
  const double rho = 2 * std::sin(std::numbers::pi / 6 * 0.7);
  const double chance = 0.25 + std::asin(rho) / (2 * std::numbers::pi);
  EXPECT_NEAR(both / kIterations, chance, 4.5 * std::sqrt(chance * (1 - chance) / kIterations));
  EXPECT_NEAR(std::accumulate(sea.begin(), sea.end(), 0.0) / kIterations, 0.5,
              4.5 * 0.5 / std::sqrt(kIterations));
  EXPECT_NEAR(RankCorrelation(sea_lengths, wind_lengths), 0.7, 4.5 * 1.06 * 0.51 / std::sqrt(both));
}

TEST(CorrelatedWeather, SharesNothingWhereSpansDoNotOverlap) {
  const WeatherPlan plan = TwoStorms(21, 50);
  EXPECT_THAT(MakeCorrelation(plan.plan, WithoutAddIn().together).sets, IsEmpty());
}

TEST(CorrelatedWeather, OfCertainPeriodsSharesTheLengthAlone) {
  const WeatherPlan plan = TwoStorms(1, 100);
  const Correlation correlation = MakeCorrelation(plan.plan, WithoutAddIn().together);
  ASSERT_EQ(correlation.sets.size(), 1U);
  EXPECT_EQ(correlation.sets[0].purpose, Purpose::kDuration);
  EXPECT_EQ(correlation.sets[0].members.size(), 2U);
}

}  // namespace
}  // namespace nimbrel::engine
