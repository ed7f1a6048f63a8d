#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "engine/plan/plan.h"

namespace nimbrel::cli {

/// Three points in percent of a task's remaining duration, 0 <= minimum <= likely <= maximum.
struct PercentRange {
  double minimum = 0;
  double likely = 0;
  double maximum = 0;
};

/// Reads "MIN,LIKELY,MAX", each a number from 0 to 1000. Raises CommandError (the command line is
/// wrong).
PercentRange ParsePercentRange(const std::string& text);

/// The shape called "triangular", "pert" or "uniform", in any case.
std::optional<engine::Shape> ParseShape(const std::string& text);

/// Sets the three points of each ordinary task that is not finished: not of milestones, summaries,
/// levels of effort and tasks that carry weather. Gives the number of tasks. Raises CommandError
/// (the input is bad), with the plan as it was, for a duration that becomes too long.
std::int64_t ApplyDefaultRanges(engine::Plan& plan, const PercentRange& percent,
                                engine::Shape shape);

/// Sets three points from CSV text with the columns id, min, likely, max and, if wanted, shape, in
/// any order, in days of the plan's HoursPerDay. The first row names the columns; fields may be in
/// quotes; empty rows are passed over; a row without a shape takes `shape`. Gives the number of
/// tasks. Raises CommandError (the input is bad), which names `file` and the row, with the plan as
/// it was: for whatever is no such row, and for tasks that have no range (see ApplyDefaultRanges).
std::int64_t ApplyRangesText(engine::Plan& plan, const std::string& text, const std::string& file,
                             engine::Shape shape);

/// ApplyRangesText with what is in a file. Raises CommandError also if it cannot be read.
std::int64_t ApplyRangesCsv(engine::Plan& plan, const std::string& path, engine::Shape shape);

}  // namespace nimbrel::cli
