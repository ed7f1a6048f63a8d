#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "engine/plan/plan.h"
#include "engine/schedule/scheduler.h"

namespace nimbrel::engine {

/// What a plan file may say of an activity that scheduling can confirm.
enum class DateField { kEarlyStart, kEarlyFinish, kLateStart, kLateFinish, kTotalFloat };
inline constexpr std::size_t kDateFieldCount = 5;

/// "early start" and so on.
std::string_view NameOf(DateField field);

/// How often a field was there to compare, and was the same.
struct FieldAgreement {
  std::int32_t compared = 0;
  std::int32_t equal = 0;
  /// equal / compared; 1 when nothing was there to compare.
  double Share() const;
};

struct DateDifference {
  DateField field = DateField::kEarlyStart;
  Instant stored, computed;                               // absent for total float
  std::int32_t stored_minutes = 0, computed_minutes = 0;  // of total float, else 0
};

/// An activity whose stored dates differ from the computed ones.
struct DifferingActivity {
  Uid task = 0;
  std::vector<DateDifference> differences;  // in the order of DateField
  std::string cause;                        // why, where it can be told; empty where it cannot
  bool inherited = false;  // all differences may come from linked activities that differ
};

struct StoredDatesReport {
  std::int32_t activities = 0;  // incomplete ones with any stored date
  std::int32_t equal = 0;       // of these, the ones without a difference
  std::array<FieldAgreement, kDateFieldCount> fields;
  std::vector<DifferingActivity> differing;  // in the plan's order
};

/// Holds the dates that came with the plan against the ones of `scheduler`, which must have made a
/// forward and a backward pass over the same plan. Finished activities and activities without
/// stored dates are left out. A summary counts as an activity if it has stored dates; its span is
/// that of the unfinished tasks below it. In plans whose data date holds nothing summaries are left
/// out, and a started activity has the dates of all of it, done or not; its late start is not
/// compared.
///
/// Dates are equal when no working time of the activity's own calendar lies between them: the end
/// of a working day and the start of the next one are the same instant of work. Floats are equal
/// when they differ by less than a minute.
StoredDatesReport CompareStoredDates(const Plan& plan, const Scheduler& scheduler);

/// Minutes of work in a calendar from one moment to a later one, by its patterns and exceptions.
std::int64_t WorkBetween(const CalendarDefinition& calendar, Instant from, Instant to);

}  // namespace nimbrel::engine
