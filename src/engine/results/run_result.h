#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "engine/calendar/instant.h"
#include "engine/plan/plan.h"
#include "engine/results/statistics.h"

namespace nimbrel::engine {

/// One scheduled task over a run. Tasks that only carry weather have none.
struct TaskResult {
  Uid task = 0;
  Percentile<Instant> start;  // P50
  DateStatistics finish;
  double criticality = 0;  // share of the iterations in which it drove the plan's finish, 0 to 1
  /// How far weather pushed the start on average, in calendar days: from the first scheduling of an
  /// iteration to its last. 0 for tasks that may be split.
  double nosplit_pushed_days = 0;
  friend bool operator==(const TaskResult&, const TaskResult&) = default;
};

/// A calendar that weather takes days from.
struct CalendarResult {
  Uid calendar = 0;
  std::string name;
  std::string kind;         // as the caller labelled it
  DayStatistics lost_days;  // days made non-working in an iteration
  friend bool operator==(const CalendarResult&, const CalendarResult&) = default;
};

/// Dates of a task one by one, in the order of RunResult::iteration_numbers.
struct TaskSamples {
  Uid task = 0;
  std::vector<Instant> start;
  std::vector<Instant> finish;
  friend bool operator==(const TaskSamples&, const TaskSamples&) = default;
};

/// What a risk run says. The same plan, options and seed give the same result, whatever the number
/// of workers and the machine, unless the run was stopped.
struct RunResult {
  std::string version;                // of the program
  std::uint64_t seed = 0;             // what was asked for
  std::int32_t iterations_asked = 0;  // likewise
  bool stopped = false;               // by the caller; the result tells of the iterations done
  /// The iterations done, counted from 1, ascending: all of them unless the run was stopped, and
  /// then possibly with gaps where there was more than one worker.
  std::vector<std::int32_t> iteration_numbers;

  Instant deterministic_finish;         // of one scheduling on likely durations, without weather
  std::vector<Instant> finish_samples;  // the plan's finish, in the order of iteration_numbers
  DateStatistics finish;
  std::vector<TaskResult> tasks;          // in the plan's order
  std::vector<CalendarResult> calendars;  // in the order in which weather tasks point at them
  std::vector<TaskSamples> samples;       // of the tasks asked for, in that order

  std::int32_t iterations() const { return static_cast<std::int32_t>(iteration_numbers.size()); }
  friend bool operator==(const RunResult&, const RunResult&) = default;
};

/// The same iterations with weather and without.
struct ComparedResult {
  RunResult with_weather;
  RunResult without_weather;  // of the plan's finish alone: without tasks, calendars and samples
  /// Finish with less finish without, in minutes, for each iteration that both runs did.
  std::vector<std::int64_t> delay_minutes;
  DayStatistics delay;
};

}  // namespace nimbrel::engine
