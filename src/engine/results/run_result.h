#pragma once

#include <cstdint>
#include <optional>
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
  /// How far weather pushed its start on average, in calendar days: from where its links would let
  /// it start in an iteration's last schedule. What it waits for predecessors that were pushed
  /// themselves is theirs. 0 for tasks that may be split.
  double nosplit_pushed_days = 0;
  /// Standard deviation of the time from its start to its finish, in calendar days.
  double elapsed_sd_days = 0;
  /// Grade correlation of its sampled duration with the plan's finish, -1 to 1: see
  /// GradeCorrelation. 0 for tasks whose duration is always the same.
  double sensitivity = 0;
  friend bool operator==(const TaskResult&, const TaskResult&) = default;
};

/// A calendar that weather takes days from.
struct CalendarResult {
  Uid calendar = 0;
  std::string name;
  std::string kind;         // as the caller labelled it
  DayStatistics lost_days;  // days made non-working in an iteration
  /// In how many iterations each day was made non-working: from `first_day` to the last such day.
  std::int32_t first_day = 0;
  std::vector<std::uint32_t> day_counts;
  friend bool operator==(const CalendarResult&, const CalendarResult&) = default;
};

/// Dates of a task one by one, in the order of RunResult::iteration_numbers.
struct TaskSamples {
  Uid task = 0;
  std::vector<Instant> start;
  std::vector<Instant> finish;
  friend bool operator==(const TaskSamples&, const TaskSamples&) = default;
};

/// How the tasks bear on a task other than the plan's finish, in the order of RunResult::tasks.
struct TargetResult {
  struct Drive {
    double criticality = 0;  // share of the iterations in which it was on a driving path to it
    double sensitivity = 0;  // as that of TaskResult, with the target's finish
    friend bool operator==(const Drive&, const Drive&) = default;
  };
  Uid task = 0;
  std::vector<Drive> drives;
  friend bool operator==(const TargetResult&, const TargetResult&) = default;
};

/// Where a calendar's lost days went, summed over the iterations. The last four add up to the
/// first.
struct LedgerResult {
  std::int64_t lost = 0;
  std::int64_t off = 0;       // days that no task of the calendar works anyway
  std::int64_t idle = 0;      // worked by tasks none of which was under way
  std::int64_t absorbed = 0;  // held up tasks whose float was enough
  std::int64_t moving = 0;    // held up a task that drove the plan's finish, and moved it
  friend bool operator==(const LedgerResult&, const LedgerResult&) = default;
};

/// The plan's finish in each iteration with calendars that take no effect on any task, on the same
/// samples and the same lost days: their days count as worked in the schedule only. Tasks that must
/// not be split are pushed anew, from their first scheduling on the days that are left. By the
/// order of RunResult::iteration_numbers.
struct AttributionResult {
  std::vector<Instant> none;                   // no calendar takes effect
  std::vector<std::vector<Instant>> left_out;  // all but each calendar
  std::vector<std::vector<Instant>> alone;     // each calendar only
  std::vector<LedgerResult> ledger;            // of each calendar
  friend bool operator==(const AttributionResult&, const AttributionResult&) = default;
};

/// What became of the wish for an interval of P80.
struct UntilResult {
  double days = 0;        // as asked for; 0: no such wish
  double width_days = 0;  // of the interval at the end
  bool met = false;
  friend bool operator==(const UntilResult&, const UntilResult&) = default;
};

/// What a risk run says. The same plan, options and seed give the same result, whatever the number
/// of workers and the machine, unless the run was stopped.
struct RunResult {
  std::string version;                // of the program
  std::uint64_t seed = 0;             // what was asked for
  std::int32_t iterations_asked = 0;  // likewise
  bool latin_hypercube = false;       // likewise
  UntilResult until;
  bool stopped = false;  // by the caller; the result tells of the iterations done
  /// The iterations done, counted from 1, ascending: all of them, or the first ones where an
  /// interval was wished for and met; of a stopped run possibly with gaps, where there was more
  /// than one worker.
  std::vector<std::int32_t> iteration_numbers;

  Instant deterministic_finish;         // of one scheduling on likely durations, without weather
  std::vector<Instant> finish_samples;  // the plan's finish, in the order of iteration_numbers
  DateStatistics finish;
  std::vector<TaskResult> tasks;          // in the plan's order
  std::vector<CalendarResult> calendars;  // in the order in which weather tasks point at them
  std::vector<TaskSamples> samples;       // of the tasks asked for, in that order
  std::vector<TargetResult> targets;      // likewise of the targets
  std::optional<AttributionResult> attribution;
  std::vector<std::string> notes;  // of what could not be done as the plan says, a line each

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
