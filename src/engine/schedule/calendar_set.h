#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "engine/plan/plan.h"
#include "engine/schedule/network.h"

namespace nimbrel::engine {

/// Makes the calendars and working-time tables of a network while it is compiled.
class CalendarSet {
 public:
  /// Makes all calendars of the plan. `first_day`: the first day that tables have to cover.
  CalendarSet(const Plan& plan, std::int32_t first_day, Network& network);

  /// The task's own calendar. Raises SchedulingError if it has none.
  CalendarIndex CalendarOf(const Task& task) const;
  /// The table for the task's own calendar without the days off of its risk calendars. One table
  /// serves all tasks with the same combination. Raises SchedulingError if the task needs work to
  /// be done in it and no working time is left.
  std::uint16_t TableFor(const Task& task, bool needs_work);
  /// The lag of a link between two tasks.
  Lag LagOf(const Link& link, const Task& predecessor, const Task& successor);

 private:
  CalendarIndex IndexOf(Uid calendar) const;
  std::uint16_t TableOfCombination(const Task& task, bool needs_work);
  void CheckHasWork(const Task& task, const std::vector<CalendarIndex>& combination) const;

  const Plan& plan_;
  std::int32_t first_day_;
  Network& network_;
  UidIndex index_of_;
  std::vector<std::int32_t> plain_table_;  // of tasks without risk calendars, by calendar; or -1
  std::map<std::vector<CalendarIndex>, std::uint16_t> table_of_;
  std::map<CalendarIndex, std::int32_t> lag_table_of_;
  std::vector<bool> has_work_;  // by table: it was checked
};

/// The first day that tables for this plan cover: early enough for late dates and leads.
std::int32_t FirstTableDay(const Plan& plan);

}  // namespace nimbrel::engine
