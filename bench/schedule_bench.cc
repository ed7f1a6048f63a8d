#include <benchmark/benchmark.h>

#include <algorithm>
#include <vector>

#include "bench/support/generated_plan.h"
#include "engine/calendar/work_calendar.h"
#include "engine/calendar/work_table.h"
#include "engine/schedule/scheduler.h"

namespace nimbrel::bench {
namespace {

using engine::Plan;
using engine::Scheduler;
using engine::Task;
using engine::TaskIndex;

constexpr std::int32_t kFirstDay = 46447;  // 1 March 2027, the start of generated plans
constexpr std::int32_t kTenYears = 3652;

bool IsOrdinary(const Task& task) {
  return task.kind != engine::TaskKind::kSummary && task.parent == 0;
}

const Plan& GeneratedPlan() {
  static const Plan plan = GeneratePlan({});
  return plan;
}

void CountTasks(benchmark::State& state, std::int64_t tasks) {
  state.counters["per_task"] =
      benchmark::Counter(static_cast<double>(tasks * state.iterations()),
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

/// The least that a forward pass over the same links can be: whole numbers, no calendars, finish to
/// start and lags of its own unit only. What the other figures are ratios to.
void BM_MinimalForward(benchmark::State& state) {
  const Plan& plan = GeneratedPlan();
  const Scheduler scheduler(plan, IsOrdinary);
  const auto count = static_cast<std::size_t>(scheduler.task_count());
  std::vector<std::int32_t> first(count + 1, 0);
  for (const engine::Link& link : plan.links) {
    ++first[static_cast<std::size_t>(scheduler.IndexOf(link.successor)) + 1];
  }
  for (std::size_t i = 0; i < count; ++i) {
    first[i + 1] += first[i];
  }
  std::vector<std::int32_t> predecessors(plan.links.size());
  std::vector<std::int32_t> next(first.begin(), first.end());
  for (const engine::Link& link : plan.links) {
    const auto to = static_cast<std::size_t>(scheduler.IndexOf(link.successor));
    predecessors[static_cast<std::size_t>(next[to]++)] = scheduler.IndexOf(link.predecessor);
  }
  std::vector<std::int32_t> minutes;
  for (TaskIndex task = 0; task < scheduler.task_count(); ++task) {
    minutes.push_back(scheduler.remaining(task));
  }
  std::vector<std::int32_t> finish(count, 0);
  for (auto _ : state) {
    // Generated plans list predecessors before successors.
    for (std::size_t task = 0; task < count; ++task) {
      std::int32_t start = 0;
      for (std::int32_t at = first[task]; at < first[task + 1]; ++at) {
        start = std::max(
            start, finish[static_cast<std::size_t>(predecessors[static_cast<std::size_t>(at)])]);
      }
      finish[task] = start + minutes[task];
    }
    benchmark::DoNotOptimize(finish.data());
    benchmark::ClobberMemory();
  }
  CountTasks(state, static_cast<std::int64_t>(count));
}
BENCHMARK(BM_MinimalForward);

void BM_Forward(benchmark::State& state) {
  Scheduler scheduler(GeneratedPlan(), IsOrdinary);
  for (auto _ : state) {
    scheduler.ScheduleForward();
  }
  CountTasks(state, scheduler.task_count());
}
BENCHMARK(BM_Forward);

/// The calendars that have weather: those behind risk calendars.
std::vector<engine::CalendarIndex> EventCalendars(const Plan& plan) {
  std::vector<engine::CalendarIndex> calendars;
  for (std::size_t i = 0; i < plan.calendars.size(); ++i) {
    for (const auto& risk : plan.risk_calendars) {
      if (risk.calendar == plan.calendars[i].uid) {
        calendars.push_back(static_cast<engine::CalendarIndex>(i));
      }
    }
  }
  return calendars;
}

/// Takes about six scattered days a month from each event calendar, other ones each time.
void ScatterWeather(Scheduler& scheduler, const std::vector<engine::CalendarIndex>& calendars,
                    std::uint32_t& state) {
  for (const engine::CalendarIndex calendar : calendars) {
    scheduler.GiveDays(calendar, kFirstDay, kFirstDay + kTenYears);
    for (std::int32_t month = 0; month < 120; ++month) {
      for (std::int32_t i = 0; i < 6; ++i) {
        state = state * 1664525u + 1013904223u;
        const auto day = kFirstDay + month * 30 + static_cast<std::int32_t>(state >> 16) % 30;
        scheduler.TakeDays(calendar, day, day);
      }
    }
  }
}

void BM_ForwardWithWeather(benchmark::State& state) {
  const Plan& plan = GeneratedPlan();
  Scheduler scheduler(plan, IsOrdinary);
  const auto calendars = EventCalendars(plan);
  std::uint32_t random = 1;
  for (auto _ : state) {
    ScatterWeather(scheduler, calendars, random);
    scheduler.ScheduleForward();
  }
  CountTasks(state, scheduler.task_count());
}
BENCHMARK(BM_ForwardWithWeather);

/// New durations for all tasks in each pass, as in a risk run.
void BM_ForwardWithSampledDurations(benchmark::State& state) {
  Scheduler scheduler(GeneratedPlan(), IsOrdinary);
  std::vector<std::int32_t> likely;
  for (TaskIndex task = 0; task < scheduler.task_count(); ++task) {
    likely.push_back(scheduler.remaining(task));
  }
  std::uint32_t random = 1;
  for (auto _ : state) {
    for (TaskIndex task = 0; task < scheduler.task_count(); ++task) {
      random = random * 1664525u + 1013904223u;
      scheduler.SetRemaining(
          task, likely[static_cast<std::size_t>(task)] + static_cast<std::int32_t>(random >> 24));
    }
    scheduler.ScheduleForward();
  }
  CountTasks(state, scheduler.task_count());
}
BENCHMARK(BM_ForwardWithSampledDurations);

/// A twentieth of the tasks is asked for every day of its span, and a few are moved: one round of
/// what is done for tasks that must not be split.
void BM_NoSplitRound(benchmark::State& state) {
  Scheduler scheduler(GeneratedPlan(), IsOrdinary);
  scheduler.ScheduleForward();
  std::int32_t moved = 0;
  for (auto _ : state) {
    std::int32_t off = 0;
    for (TaskIndex task = 0; task < scheduler.task_count(); task += 20) {
      const std::int32_t last = scheduler.early_finish(task).day();
      for (std::int32_t day = scheduler.early_start(task).day(); day < last; ++day) {
        off += scheduler.HasWorkOn(task, day) ? 0 : 1;
      }
    }
    benchmark::DoNotOptimize(off);
    for (std::int32_t i = 0; i < 5; ++i) {
      moved = (moved + 1999) % scheduler.task_count();
      const std::int32_t day = scheduler.early_start(moved).day() + 1;
      scheduler.SetConstraint(moved, {engine::ConstraintType::kStartNoEarlier, {day, 0}});
    }
    scheduler.ScheduleChanged();
    state.PauseTiming();
    for (TaskIndex task = 0; task < scheduler.task_count(); ++task) {
      scheduler.SetConstraint(task, {});
    }
    scheduler.ScheduleChanged();
    state.ResumeTiming();
  }
}
BENCHMARK(BM_NoSplitRound);

void BM_RebuildTwentyTables(benchmark::State& state) {
  const Plan& plan = GeneratedPlan();
  std::vector<engine::WorkCalendar> calendars(plan.calendars.begin(), plan.calendars.end());
  std::vector<engine::WorkTable> tables;
  for (std::size_t base = 0; base < 5; ++base) {
    for (std::size_t event = 5; event < 9; ++event) {
      tables.emplace_back(calendars[base],
                          std::vector<const engine::DayBits*>{&calendars[base].worked(),
                                                              &calendars[event].worked()},
                          kFirstDay - 7000);
      tables.back().Position({kFirstDay + kTenYears, 480});
    }
  }
  for (auto _ : state) {
    for (engine::WorkTable& table : tables) {
      table.Rebuild(kFirstDay);
    }
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_RebuildTwentyTables);

void BM_Backward(benchmark::State& state) {
  Scheduler scheduler(GeneratedPlan(), IsOrdinary);
  scheduler.ScheduleForward();
  for (auto _ : state) {
    scheduler.ScheduleBackward();
  }
  CountTasks(state, scheduler.task_count());
}
BENCHMARK(BM_Backward);

void BM_CountDriving(benchmark::State& state) {
  Scheduler scheduler(GeneratedPlan(), IsOrdinary);
  scheduler.ScheduleForward();
  std::vector<std::uint32_t> on_path(static_cast<std::size_t>(scheduler.task_count()), 0);
  for (auto _ : state) {
    scheduler.CountDriving(on_path);
  }
}
BENCHMARK(BM_CountDriving);

void BM_Compile(benchmark::State& state) {
  for (auto _ : state) {
    Scheduler scheduler(GeneratedPlan(), IsOrdinary);
    benchmark::DoNotOptimize(scheduler.task_count());
  }
  CountTasks(state, static_cast<std::int64_t>(GeneratedPlan().tasks().size()));
}
BENCHMARK(BM_Compile);

}  // namespace
}  // namespace nimbrel::bench
