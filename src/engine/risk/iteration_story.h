#pragma once

#include <cstdint>
#include <vector>

#include "engine/calendar/calendar_definition.h"
#include "engine/calendar/instant.h"
#include "engine/plan/plan.h"
#include "engine/risk/run.h"

namespace nimbrel::engine {

/// What happened in one iteration of a run. Days are ranges in order, each of them lost by weather:
/// made non-working on a calendar in this iteration.
struct IterationStory {
  /// A task that carries weather, as it was sampled.
  struct Draw {
    Uid task = 0;
    bool occurred = true;
    double units = 0;             // sampled, in plan units; 0 if it did not occur
    std::vector<DayRange> taken;  // worked days that its calendar lost to it
  };
  /// A task that lost days by which it could have worked.
  struct Hold {
    Uid task = 0;
    std::int32_t first_day = 0;  // on which it waited or worked; see FirstDayUnderWay
    Instant start, finish;
    std::vector<DayRange> lost;  // days from `first_day` to its finish that its own calendar works
    std::int32_t lost_days = 0;  // how many these are
    std::vector<Uid> calendars;  // those that lost any of them
  };
  /// A task that must not be split, moved by whoever heard of the iteration to later than its links
  /// alone would hold it. What it waits for predecessors that were moved is theirs.
  struct Push {
    Uid task = 0;
    Instant first_start;  // where it would start had it not been pushed itself
    Instant start;
    std::vector<DayRange> past;  // lost days of its own from the one start to the other
  };
  /// A task of the driving path.
  struct Step {
    Uid task = 0;
    Instant start, finish;
  };

  std::int32_t iteration = 0;
  Instant finish;            // of the plan
  std::vector<Draw> draws;   // in the plan's order
  std::vector<Hold> held;    // likewise
  std::vector<Push> pushed;  // likewise
  std::vector<Step> path;    // one driving path, from its first task to one that finishes last
};

/// Makes an iteration of a run again and tells it: the same one that Run makes with these options,
/// however many workers it has. Raises std::invalid_argument for an iteration that the run does not
/// have, and as Run does.
IterationStory TellIteration(const Plan& plan, const RunOptions& options, const RunWiring& wiring,
                             std::int32_t iteration);

}  // namespace nimbrel::engine
