// What Latin hypercube sampling promises.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "engine/risk/run.h"
#include "engine/risk/sampler.h"
#include "tests/risk/weather_plan.h"

namespace nimbrel::engine {
namespace {

SamplingDesign Hypercube(std::int32_t iterations, std::uint64_t seed = 1) {
  return {seed, Sampling::kLatinHypercube, iterations};
}

WeatherPlan PlanOfAllShapes() {
  WeatherPlan plan;
  for (int i = 0; i < 70; ++i) {  // more than are drawn together
    plan.AddTask("T" + std::to_string(i), {2, 5, 11, static_cast<Shape>(i % 3)});
  }
  return plan;
}

TEST(LatinHypercube, TakesANumberFromEachStratumOnceForEachTask) {
  const WeatherPlan plan = PlanOfAllShapes();
  for (const std::int32_t iterations : {1, 7, 64, 100}) {
    Sampler sampler(plan.plan, Hypercube(iterations));
    std::vector<std::set<int>> strata(sampler.task_count());
    std::vector<double> grades(sampler.task_count());
    for (std::int32_t iteration = 1; iteration <= iterations; ++iteration) {
      sampler.Grade(iteration, grades);
      for (std::size_t task = 0; task < grades.size(); ++task) {
        strata[task].insert(static_cast<int>(grades[task] * iterations));
      }
    }
    for (const std::set<int>& taken : strata) {
      EXPECT_EQ(taken.size(), static_cast<std::size_t>(iterations));
    }
  }
}

TEST(LatinHypercube, SamplesAreTheInversesOfTheStratifiedNumbers) {
  const WeatherPlan plan = PlanOfAllShapes();
  Sampler sampler(plan.plan, Hypercube(50, 3));
  IterationSamples samples;
  sampler.Prepare(samples);
  sampler.Sample(20, samples);
  std::vector<double> grades(sampler.task_count());
  sampler.Grade(20, grades);
  PertTables tables;
  for (std::size_t i = 0; i < grades.size(); ++i) {
    const Task& task = plan.plan.tasks()[i];
    EXPECT_EQ(samples.units[i], Distribution(*task.range, tables).Sample(grades[i]));
    EXPECT_EQ(grades[i], OwnUniform(Hypercube(50, 3), 20, task.stream, Purpose::kDuration));
  }
}

TEST(LatinHypercube, ATaskOccursAsOftenAsItsChanceSays) {
  WeatherPlan plan;
  plan.AddTask("A", 5);
  plan.plan.FindTask("A")->risk = {.probability = 30};
  Sampler sampler(plan.plan, Hypercube(200));
  IterationSamples samples;
  sampler.Prepare(samples);
  int occurred = 0;
  for (std::int32_t iteration = 1; iteration <= 200; ++iteration) {
    sampler.Sample(iteration, samples);
    occurred += samples.skipped[0] == 0 ? 1 : 0;
  }
  EXPECT_EQ(occurred, 60);
}

TEST(LatinHypercube, IsTheSameForAnyNumberOfWorkers) {
  WeatherPlan plan;
  plan.AddTask("A", {2, 5, 11});
  plan.AddTask("B", {2, 5, 11, Shape::kPert}, {"A"});
  plan.AddWeatherCalendar("SEA");
  plan.AddPeriod("SEA", 1, 20, {2, 4, 9}, 60);
  plan.Assign("A", "SEA");
  RunOptions options{.iterations = 300, .sampling = Sampling::kLatinHypercube};
  const RunResult one = engine::Run(plan.plan, options, WithAddIn());
  options.workers = 3;
  EXPECT_EQ(engine::Run(plan.plan, options, WithAddIn()), one);
}

TEST(LatinHypercube, AnotherTaskChangesNoSample) {
  WeatherPlan plan;
  plan.AddTask("A", {2, 5, 11});
  RunOptions options{.iterations = 80, .sampling = Sampling::kLatinHypercube};
  options.asked = {plan.UidOf("A")};
  const RunResult alone = engine::Run(plan.plan, options, WithoutAddIn());
  plan.AddTask("B", {1, 2, 3});
  EXPECT_EQ(engine::Run(plan.plan, options, WithoutAddIn()).samples, alone.samples);
}

/// The variance, over seeds, of the mean finish of a chain of tasks in minutes.
double VarianceOfMean(Sampling sampling) {
  WeatherPlan plan(TimeUnit::kDays, 24);
  std::vector<std::string> before;
  for (int i = 0; i < 6; ++i) {
    const std::string id = "T" + std::to_string(i);
    plan.AddTask(id, {5, 8 + i / 2.0, 20, i % 2 == 0 ? Shape::kTriangular : Shape::kPert}, before);
    before = {id};
  }
  constexpr int kSeeds = 100;
  std::vector<double> means;
  for (std::uint64_t seed = 1; seed <= kSeeds; ++seed) {
    const RunResult result = RunForFinish(
        plan.plan, {.iterations = 100, .seed = seed, .sampling = sampling}, WithoutAddIn());
    double sum = 0;
    for (const Instant finish : result.finish_samples) {
      sum += static_cast<double>(finish.Minutes() - plan.plan.start.Minutes());
    }
    means.push_back(sum / 100);
  }
  double mean = 0;
  double squares = 0;
  for (const double each : means) {
    mean += each / kSeeds;
  }
  for (const double each : means) {
    squares += (each - mean) * (each - mean) / (kSeeds - 1);
  }
  return squares;
}

TEST(LatinHypercube, MeanOfAChainVariesLessThanATenthOfMonteCarlos) {
  EXPECT_LT(VarianceOfMean(Sampling::kLatinHypercube), VarianceOfMean(Sampling::kMonteCarlo) / 10);
}

}  // namespace
}  // namespace nimbrel::engine
