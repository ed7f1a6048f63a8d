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

/// Processor time of a run, in seconds.
double SecondsOf(const Plan& plan, const engine::RunOptions& options,
                 const engine::RunWiring& wiring) {
  const double begin = ProcessorSeconds();
  benchmark::DoNotOptimize(engine::Run(plan, options, wiring));
  return ProcessorSeconds() - begin;
}

/// How many times as long as a plain run a run with these options takes: the shortest of some tries
/// of each, which take turns, so that they find the machine alike.
double TimesAsLong(benchmark::State& state, const Plan& plan, engine::RunOptions options) {
  const engine::RunWiring wiring = cli::MakeRunWiring(true);
  double plain = 1e9;
  double whole = 1e9;
  for (auto _ : state) {
    plain = std::min(plain, SecondsOf(plan, {.iterations = options.iterations}, wiring));
    whole = std::min(whole, SecondsOf(plan, options, wiring));
  }
  return whole / plain;
}

enum Lifts { kWithoutLifts, kWithLifts };

/// What leaving calendars out takes: `allowed` is 1 + 0.6 (k + 1) runs for k calendars.
void BM_Attribution(benchmark::State& state) {
  GeneratorOptions generator;
  generator.event_calendars = static_cast<std::int32_t>(state.range(0));
  generator.no_split_share = state.range(1) == kWithLifts ? 0.05 : 0;
  state.counters["runs"] =
      TimesAsLong(state, GeneratePlan(generator), {.iterations = 200, .attribute = true});
  state.counters["allowed"] = 1 + 0.6 * (static_cast<double>(state.range(0)) + 1);
}
BENCHMARK(BM_Attribution)
    ->ArgNames({"calendars", "lifts"})
    ->Args({2, kWithoutLifts})
    ->Args({4, kWithoutLifts})
    ->Args({4, kWithLifts})
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);

/// Latin hypercube sampling, as a multiple of Monte Carlo.
void BM_LatinHypercube(benchmark::State& state) {
  state.counters["runs"] = TimesAsLong(
      state, GeneratePlan({}), {.iterations = 500, .sampling = engine::Sampling::kLatinHypercube});
}
BENCHMARK(BM_LatinHypercube)->Iterations(3)->Unit(benchmark::kMillisecond);

/// What statistics and sensitivities add to the iterations: `added` is the time from the last one
/// to the end of the run, as a share of the time until then.
void BM_Statistics(benchmark::State& state) {
  const Plan plan = GeneratePlan({});
  engine::RunWiring wiring = cli::MakeRunWiring(true);
  double last = 0;
  wiring.progress = [&last](std::int32_t, std::int32_t) { last = ProcessorSeconds(); };
  double added = 1e9;
  for (auto _ : state) {
    const double begin = ProcessorSeconds();
    benchmark::DoNotOptimize(
        engine::Run(plan, {.iterations = static_cast<std::int32_t>(state.range(0))}, wiring));
    added = std::min(added, (ProcessorSeconds() - last) / (last - begin));
  }
  state.counters["added"] = added;
  state.counters["peak_MB"] = PeakMegabytes();
}
BENCHMARK(BM_Statistics)->Arg(1000)->Arg(10'000)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace nimbrel::bench

BENCHMARK_MAIN();
