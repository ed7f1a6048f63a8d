// From the bytes of a large file to its dates: what a user of the command line waits for.

#include <benchmark/benchmark.h>

#include "bench/support/generated_xer.h"
#include "engine/formats/plan_reader.h"
#include "engine/schedule/scheduler.h"

namespace nimbrel::bench {
namespace {

constexpr std::int32_t kActivities = 100'000;

const std::string& LargeFile() {
  static const std::string text = GenerateXer(kActivities);
  return text;
}

void BM_ReadLargeXer(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(engine::ReadXer(LargeFile(), "large.xer", {}));
  }
  state.counters["MB"] = static_cast<double>(LargeFile().size()) / 1e6;
}
BENCHMARK(BM_ReadLargeXer)->Unit(benchmark::kMillisecond);

/// Compiling the plan, both passes, and all dates and floats of them.
void BM_ScheduleLargePlan(benchmark::State& state) {
  const engine::Plan plan = engine::ReadXer(LargeFile(), "large.xer", {}).plan;
  for (auto _ : state) {
    engine::Scheduler scheduler(plan, [](const engine::Task&) { return true; });
    scheduler.ScheduleForward();
    scheduler.ScheduleBackward();
    benchmark::DoNotOptimize(scheduler.finish());
  }
}
BENCHMARK(BM_ScheduleLargePlan)->Unit(benchmark::kMillisecond);

void BM_CompileLargePlan(benchmark::State& state) {
  const engine::Plan plan = engine::ReadXer(LargeFile(), "large.xer", {}).plan;
  for (auto _ : state) {
    engine::Scheduler scheduler(plan, [](const engine::Task&) { return true; });
    benchmark::DoNotOptimize(scheduler.task_count());
  }
}
BENCHMARK(BM_CompileLargePlan)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace nimbrel::bench
