#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "engine/calendar/calendar_definition.h"
#include "engine/calendar/instant.h"
#include "engine/plan/plan.h"
#include "engine/results/statistics.h"

namespace nimbrel::engine {

/// Everything that outputs tell of a run, in the words that they tell it with: IDs and names in
/// place of identities, shares from 0 to 1, lengths of time in calendar days, days counted as in
/// Instant. Outputs (JSON, CSV, text, report) read this and nothing else, so that they cannot
/// differ. Texts come from the plan as they are and may hold any UTF-8, markup included.
///
/// An interval that the sample is too small for (HasQuantileInterval) has absent dates, or bounds
/// that are not a number, for its bounds.
///
/// MakeRunDocument (engine/risk/run_document_maker.h) fills in all of it but `inputs`, the options
/// of `chain` and `warnings`, which the program adds, because what weather is and how it is stored
/// is known there alone.

/// The share of the iterations that have finished by the end of a day.
struct CurvePoint {
  std::int32_t day = 0;
  double share = 0;
  friend bool operator==(const CurvePoint&, const CurvePoint&) = default;
};

/// Iterations that finish from the beginning of one day to the end of another, both included. A
/// finish at a midnight counts to the day before.
struct HistogramBar {
  DayRange days;
  std::int64_t count = 0;
  friend bool operator==(const HistogramBar&, const HistogramBar&) = default;
};

/// When the plan finishes, over the iterations.
struct FinishDistribution {
  DateStatistics statistics;  // with each percentile's interval; see PercentilesOf
  /// Ascending; from the day before the first finish (share 0) to the day of the last one (share
  /// 1), at most some 200 points. Between two points the share is to be drawn as a straight line.
  std::vector<CurvePoint> curve;
  /// Bars of equal width without gaps, at most 40. With and without weather they stand on the same
  /// days, so that some at the ends may be empty.
  std::vector<HistogramBar> histogram;
};

/// A run that is to go on until an interval is narrow enough has at least so many iterations: of
/// fewer, the width itself says little.
inline constexpr std::int32_t kLeastUntilIterations = 200;

/// How exact the run was asked to be.
struct UntilOutcome {
  double days = 0;        // the width that was asked for, of the 95% interval of P80
  double width_days = 0;  // the width at the end of the run; not a number without an interval
  bool met = false;       // after kLeastUntilIterations or more
};

/// How the run was made.
struct RunChoices {
  std::uint64_t seed = 0;
  std::int32_t iterations_asked = 0;
  std::int32_t iterations = 0;  // done; statistics rest on these
  bool stopped = false;         // by the user
  std::string sampling;         // "mc" or "lhs"
  std::optional<UntilOutcome> until;
  bool weather = false;
};

/// Days at the mean and at percentiles. Of a difference between two ways in which the same
/// iterations finish: the difference of the two means, of the two P50s and so on.
struct DayFigures {
  double mean = 0, p50 = 0, p80 = 0, p90 = 0;
  // Their 95% intervals: see IntervalOfDifference.
  double p50_low = 0, p50_high = 0, p80_low = 0, p80_high = 0, p90_low = 0, p90_high = 0;
  friend bool operator==(const DayFigures&, const DayFigures&) = default;
};

/// Its percentiles with their intervals, in order.
std::array<Percentile<double>, 3> PercentilesOf(const DayFigures& figures);

/// What one weather calendar does to the plan's finish.
struct CalendarAttribution {
  std::string name;
  std::string kind;           // "event" or "window"
  DateStatistics left_out;    // the finish with all weather but this calendar's
  DateStatistics alone;       // the finish with this calendar's weather only
  DayFigures cost;            // finish with all weather, less `left_out`
  DayFigures cost_alone;      // `alone`, less the finish without any weather
  DayStatistics delay;        // as `cost`, iteration by iteration
  DayStatistics delay_alone;  // as `cost_alone`, iteration by iteration
};

/// What the weather costs: the same samples and placements, with calendars that take no effect on
/// any task.
struct Attribution {
  DateStatistics all;                          // the finish with all weather, that of the run
  DateStatistics none;                         // without any
  DayFigures cost;                             // `all` less `none`
  DayStatistics delay;                         // as `cost`, iteration by iteration
  std::vector<CalendarAttribution> calendars;  // in the order of RunDocument::calendars
};

/// Where a weather calendar's lost days go, in mean days an iteration. The last four add up to
/// `lost`.
struct LedgerRow {
  std::string name;
  std::string kind;
  double lost = 0;         // made non-working on the calendar
  double off = 0;          // no task of the calendar works on such a day anyway
  double idle = 0;         // tasks work on such a day, but none of the calendar's was under way
  double absorbed = 0;     // held up tasks that had float, or had it still
  double moving = 0;       // held up a task that drives the finish, and moved it
  std::int64_t tasks = 0;  // that the calendar is assigned to; without any, all days are `off`
  friend bool operator==(const LedgerRow&, const LedgerRow&) = default;
};

/// How a task bears on a target. docs/results.md has the formulas.
struct TaskDrive {
  std::string id;
  std::string name;
  double criticality = 0;  // share of the iterations in which it was on a driving path; 0 to 1
  double sensitivity = 0;  // grade correlation of its duration with the target's finish; -1 to 1
  double cruciality = 0;   // criticality times the sensitivity's absolute value; 0 to 1
  double ssi = 0;          // schedule sensitivity index: 0 or more
  friend bool operator==(const TaskDrive&, const TaskDrive&) = default;
};

/// What drives the plan's finish or a milestone.
struct Sensitivity {
  std::string id;                // of the milestone; empty for the plan's finish
  std::string name;              // likewise
  std::vector<TaskDrive> tasks;  // those with any figure above 0, the greatest cruciality first
};

/// Mean days that a calendar loses in a month: the sum of the month's chances.
struct MonthLoss {
  std::string month;  // "YYYY-MM"
  double days = 0;
};

/// The chance that a calendar loses each day: one figure a day from `first_day` on, up to the last
/// day that any iteration loses. Empty for a calendar that loses none. Every open day that is
/// lost counts, whether or not a task works on it.
struct HeatMap {
  std::string name;
  std::string kind;
  std::int32_t first_day = 0;
  std::vector<double> chance;
  std::vector<MonthLoss> months;  // from the first to the last month of `chance`
};

/// A milestone or task, over the iterations.
struct DatedTask {
  std::string id;
  std::string name;
  bool is_milestone = false;
  bool is_finished = false;
  Percentile<Instant> start;  // P50
  DateStatistics finish;
  double criticality = 0;
  double nosplit_pushed_days = 0;  // mean; see TaskResult
};

/// A weather calendar's days.
struct CalendarLoss {
  std::string name;
  std::string kind;
  DayStatistics lost_days;  // made non-working in an iteration
};

/// A task of a driving path as it was in one iteration.
struct ChainTask {
  std::string id;
  std::string name;
  bool is_milestone = false;
  Instant start, finish;
  bool is_pushed = false;  // held back as a task that must not be split
  /// Days that weather kept it from working: from the first day on which it waited, which may lie
  /// before its start, to its finish.
  std::vector<DayRange> lost;
  std::vector<std::string> causes;  // calendars that took any of these days
};

/// The driving path of one iteration, from its first task to the one that finishes last. The next
/// task begins or ends by the one before it.
struct CriticalChain {
  std::int32_t iteration = 0;  // its number; the one whose finish is nearest to the P80
  Instant finish;
  std::vector<ChainTask> tasks;
  std::string options;  // of the run, on which the iteration depends, as on a command line
};

/// What went in, as tables for people.
struct InputTable {
  std::string title;
  std::vector<std::string> columns;
  std::vector<std::vector<std::string>> rows;  // as many cells as there are columns
};

struct RunDocument {
  std::string version;  // of the program
  std::string plan;     // the plan's short name
  std::string title;    // may be empty
  TimeUnit time_unit = TimeUnit::kDays;
  Instant data_date;
  RunChoices choices;

  Instant deterministic_finish;    // on likely durations, without weather
  double deterministic_share = 0;  // of the iterations that finish by then
  FinishDistribution finish;       // with weather, unless choices.weather is false
  std::optional<FinishDistribution> without_weather;  // with --compare or --attribute
  std::optional<DayStatistics> weather_delay;         // likewise; finish less finish without

  std::vector<CalendarLoss> calendars;     // in the order in which weather tasks point at them
  std::optional<Attribution> attribution;  // with --attribute
  std::vector<LedgerRow> ledger;           // with --attribute
  std::vector<HeatMap> heat_maps;          // one a calendar
  std::vector<Sensitivity> sensitivities;  // of the plan's finish, then of chosen milestones
  std::vector<DatedTask> milestones;       // in the plan's order
  std::vector<DatedTask> tasks;            // all that are scheduled, milestones included
  CriticalChain chain;                     // of the iteration nearest to the P80; may be empty

  std::vector<InputTable> inputs;
  std::vector<std::string> warnings;
};

}  // namespace nimbrel::engine
