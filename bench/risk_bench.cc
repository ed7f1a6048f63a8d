// Whole risk runs of a large plan through the add-in's own events, in one process.
//
// Every figure is given as processor time a task and iteration, and as a ratio to a minimal forward
// pass over the same network without calendars, which is measured in the same process.

#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstdint>
#include <ctime>
#include <unordered_map>
#include <vector>

#include "bench/support/generated_plan.h"
#include "engine/risk/run.h"
#include "nimbrel/wiring.h"

namespace nimbrel::bench {
namespace {

using engine::Plan;

/// The least that a forward pass can do: durations and finish to start links in flat arrays, no
/// calendars, no other kinds of links.
class MinimalPass {
 public:
  explicit MinimalPass(const Plan& plan) {
    std::unordered_map<engine::Uid, std::int32_t> position;
    for (const engine::Task& task : plan.tasks()) {
      if (!cli::CarriesWeather(task)) {
        position.emplace(task.uid, static_cast<std::int32_t>(durations_.size()));
        durations_.push_back(task.remaining_minutes);
      }
    }
    std::vector<std::vector<std::int32_t>> predecessors(durations_.size());
    for (const engine::Link& link : plan.links) {
      predecessors[static_cast<std::size_t>(position.at(link.successor))].push_back(
          position.at(link.predecessor));
    }
    first_.push_back(0);
    for (const auto& of_task : predecessors) {  // the generated plan is in topological order
      links_.insert(links_.end(), of_task.begin(), of_task.end());
      first_.push_back(static_cast<std::int32_t>(links_.size()));
    }
    finish_.resize(durations_.size());
  }

  std::size_t tasks() const { return durations_.size(); }

  std::int32_t Pass() {
    std::int32_t last = 0;
    for (std::size_t task = 0; task < durations_.size(); ++task) {
      std::int32_t start = 0;
      for (std::int32_t i = first_[task]; i < first_[task + 1]; ++i) {
        start =
            std::max(start, finish_[static_cast<std::size_t>(links_[static_cast<std::size_t>(i)])]);
      }
      finish_[task] = start + durations_[task];
      last = std::max(last, finish_[task]);
    }
    return last;
  }

 private:
  std::vector<std::int32_t> durations_;
  std::vector<std::int32_t> first_;
  std::vector<std::int32_t> links_;
  std::vector<std::int32_t> finish_;
};

/// Seconds of the processor since some moment: what a loaded machine disturbs least.
double ProcessorSeconds() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// Nanoseconds a task that a minimal pass takes: the best of some hundred passes.
double MinimalNanoseconds(MinimalPass& pass) {
  double best = 1;
  for (int i = 0; i < 300; ++i) {
    const double begin = ProcessorSeconds();
    benchmark::DoNotOptimize(pass.Pass());
    best = std::min(best, ProcessorSeconds() - begin);
  }
  return best * 1e9 / static_cast<double>(pass.tasks());
}

void BM_MinimalForwardPass(benchmark::State& state) {
  MinimalPass pass(GeneratePlan({}));
  for (auto _ : state) {
    benchmark::DoNotOptimize(pass.Pass());
  }
  state.counters["ns_a_task"] = MinimalNanoseconds(pass);
}
BENCHMARK(BM_MinimalForwardPass)->Unit(benchmark::kMicrosecond);

double PeakMegabytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024;
}

enum Weather { kNone, kEvents, kBlocks, kEventsAndLifts };

/// A run of so many iterations, preparation and statistics included.
void BM_RiskRun(benchmark::State& state) {
  const auto weather = static_cast<Weather>(state.range(0));
  const auto iterations = static_cast<std::int32_t>(state.range(1));
  GeneratorOptions generator;
  generator.event_probability = weather == kBlocks ? 80 : 100;
  generator.no_split_share = weather == kEventsAndLifts ? 0.05 : 0;
  const Plan plan = GeneratePlan(generator);
  const engine::RunWiring wiring = cli::MakeRunWiring(weather != kNone);
  const double begin = ProcessorSeconds();
  for (auto _ : state) {
    benchmark::DoNotOptimize(engine::Run(plan, {.iterations = iterations}, wiring));
  }
  const double seconds = ProcessorSeconds() - begin;
  MinimalPass pass(plan);
  const double work =
      static_cast<double>(pass.tasks()) * iterations * static_cast<double>(state.iterations());
  state.counters["ns_a_task"] = seconds * 1e9 / work;
  state.counters["ratio"] = seconds * 1e9 / work / MinimalNanoseconds(pass);
  state.counters["peak_MB"] = PeakMegabytes();
}
BENCHMARK(BM_RiskRun)
    ->ArgNames({"weather", "iterations"})
    ->Args({kNone, 1000})
    ->Args({kEvents, 1000})
    ->Args({kBlocks, 1000})
    ->Args({kEventsAndLifts, 1000})
    ->Args({kEvents, 10'000})  // memory does not grow with the iterations
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace nimbrel::bench

BENCHMARK_MAIN();
