#include "engine/schedule/calendar_set.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>

namespace nimbrel::engine {
namespace {

// Late dates of a plan that is far behind, and leads, go back beyond its earliest date.
constexpr std::int32_t kDaysBefore = 20 * 366;

}  // namespace

std::int32_t FirstTableDay(const Plan& plan) {
  std::int32_t first = std::numeric_limits<std::int32_t>::max();
  const auto consider = [&first](Instant moment) {
    if (!moment.IsAbsent() && moment.day() >= kFirstCoveredDay) {
      first = std::min(first, moment.day());
    }
  };
  consider(plan.start);
  consider(plan.data_date);
  consider(plan.schedule.must_finish);
  for (const Task& task : plan.tasks()) {
    consider(task.constraint.date);
    consider(task.second_constraint.date);
    consider(task.actual_start);
    consider(task.actual_finish);
  }
  return std::max(kFirstCoveredDay, first - kDaysBefore);
}

CalendarSet::CalendarSet(const Plan& plan, std::int32_t first_day, Network& network)
    : plan_(plan), first_day_(first_day), network_(network) {
  network.calendars.reserve(plan.calendars.size());
  plain_table_.assign(plan.calendars.size(), -1);
  index_of_ = UidIndex(plan.next_uid(), plan.tasks().size() + plan.calendars.size());
  for (const CalendarDefinition& definition : plan.calendars) {
    index_of_.Add(definition.uid, static_cast<CalendarIndex>(network.calendars.size()));
    network.calendars.emplace_back(definition);
  }
}

CalendarIndex CalendarSet::IndexOf(Uid calendar) const {
  return index_of_.Find(calendar);
}

CalendarIndex CalendarSet::CalendarOf(const Task& task) const {
  const CalendarIndex index = IndexOf(task.calendar == 0 ? plan_.default_calendar : task.calendar);
  if (index < 0) {
    throw SchedulingError(fmt::format(
        "Task {} has no calendar: {}", task.id,
        task.calendar == 0 ? "it is to use the plan's default, and there is none"
                           : fmt::format("the plan has none with the number {}", task.calendar)));
  }
  return index;
}

std::uint16_t CalendarSet::TableFor(const Task& task, bool needs_work) {
  // As a rule the task before was on the same calendar, and all of them on a few.
  const auto plain = static_cast<std::size_t>(CalendarOf(task));
  if (task.risk_calendars.empty() && plain_table_[plain] >= 0) {
    const auto table = static_cast<std::size_t>(plain_table_[plain]);
    if (!needs_work || has_work_[table]) {
      return static_cast<std::uint16_t>(table);
    }
  }
  const std::uint16_t table = TableOfCombination(task, needs_work);
  if (task.risk_calendars.empty()) {
    plain_table_[plain] = table;
  }
  return table;
}

std::uint16_t CalendarSet::TableOfCombination(const Task& task, bool needs_work) {
  std::vector<CalendarIndex> combination;
  for (const RiskAssignment& assignment : task.risk_calendars) {
    const RiskCalendarDefinition* risk = plan_.FindRiskCalendar(assignment.risk_calendar);
    const CalendarIndex index = risk == nullptr ? -1 : IndexOf(risk->calendar);
    if (index >= 0) {
      combination.push_back(index);
    }
  }
  std::sort(combination.begin(), combination.end());
  const CalendarIndex own = CalendarOf(task);
  std::erase(combination, own);
  combination.erase(std::unique(combination.begin(), combination.end()), combination.end());
  combination.insert(combination.begin(), own);

  const auto [known, is_new] =
      table_of_.emplace(combination, static_cast<std::uint16_t>(network_.tables.size()));
  if (is_new) {
    std::vector<const DayBits*> sources;
    for (const CalendarIndex calendar : combination) {
      sources.push_back(&network_.calendars[static_cast<std::size_t>(calendar)].worked());
    }
    network_.tables.emplace_back(network_.calendars[static_cast<std::size_t>(own)], sources,
                                 first_day_);
    network_.table_calendars.push_back(combination);
    has_work_.push_back(false);
  }
  if (needs_work && !has_work_[known->second]) {
    CheckHasWork(task, combination);
    has_work_[known->second] = true;
  }
  return known->second;
}

void CalendarSet::CheckHasWork(const Task& task,
                               const std::vector<CalendarIndex>& combination) const {
  const WorkCalendar& own = network_.calendars[static_cast<std::size_t>(combination.front())];
  if (!own.has_work()) {
    throw SchedulingError(
        fmt::format("Calendar {} has no working time, and task {} needs it", own.name(), task.id));
  }
  for (std::int32_t word = 0; word < DayBits::kWords; ++word) {
    std::uint64_t days = ~std::uint64_t{0};
    for (const CalendarIndex calendar : combination) {
      days &= network_.calendars[static_cast<std::size_t>(calendar)].worked().Word(word);
    }
    if (days != 0) {
      return;
    }
  }
  throw SchedulingError(fmt::format(
      "Task {} has no working time: its calendar {} and the calendars behind its risk calendars "
      "have no worked day in common",
      task.id, own.name()));
}

Lag CalendarSet::LagOf(const Link& link, const Task& predecessor, const Task& successor) {
  if (link.lag_minutes == 0 || link.lag_calendar == LagCalendar::kElapsed) {
    return {link.lag_minutes, Lag::kAroundTheClock};
  }
  CalendarIndex calendar = -1;
  switch (link.lag_calendar) {
    case LagCalendar::kSuccessor:
      calendar = CalendarOf(successor);
      break;
    case LagCalendar::kPlanDefault:
      calendar = IndexOf(plan_.default_calendar);
      break;
    case LagCalendar::kPredecessor:
    case LagCalendar::kElapsed:
      calendar = CalendarOf(predecessor);
      break;
  }
  if (calendar < 0 || !network_.calendars[static_cast<std::size_t>(calendar)].has_work()) {
    throw SchedulingError(
        fmt::format("The lag from task {} to task {} has no calendar with working time",
                    predecessor.id, successor.id));
  }
  const auto [known, is_new] =
      lag_table_of_.emplace(calendar, static_cast<std::int32_t>(network_.lag_tables.size()));
  if (is_new) {
    const WorkCalendar& hours = network_.calendars[static_cast<std::size_t>(calendar)];
    network_.lag_tables.emplace_back(hours, std::vector<const DayBits*>{&hours.open()}, first_day_);
  }
  const WorkTable& table = network_.lag_tables[static_cast<std::size_t>(known->second)];
  return {table.CapMinutes(link.lag_minutes), known->second};
}

}  // namespace nimbrel::engine
