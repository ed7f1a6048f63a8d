#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <vector>

#include "engine/plan/plan.h"
#include "tests/support/schedule/plan_calendars.h"

namespace nimbrel::test {

/// Dates in minutes since the midnight of day 0.
struct NaiveDates {
  std::int64_t start = 0;
  std::int64_t finish = 0;
  friend bool operator==(const NaiveDates&, const NaiveDates&) = default;
};

/// Schedules a plan by walking from minute to minute and asking each task in turn for what it needs
/// of its neighbours: no order, no tables, nothing kept between plans. For ordinary tasks and
/// milestones; summaries and levels of effort take no part. Durations are Plan::LikelyMinutes.
class NaiveSchedule {
 public:
  using Participates = std::function<bool(const engine::Task&)>;

  /// `plan` must outlive the schedule. It reaches from `first_day` on for `days`.
  NaiveSchedule(const engine::Plan& plan, Participates participates, std::int32_t first_day,
                std::int32_t days);

  /// Early dates, after tasks that are to be as late as possible were moved.
  NaiveDates Early(engine::Uid task);
  NaiveDates Late(engine::Uid task);
  std::int64_t TotalFloat(engine::Uid task);
  std::int64_t FreeFloat(engine::Uid task);
  /// Latest early finish of all tasks.
  std::int64_t Finish();

 private:
  using DatesOf = NaiveDates (NaiveSchedule::*)(engine::Uid);
  struct Ceilings;
  struct Floors {
    std::vector<std::int64_t> starts;
    std::vector<std::int64_t> finishes;
  };

  NaiveDates Unmoved(engine::Uid task);
  NaiveDates FindUnmoved(const engine::Task& task);
  std::vector<std::int64_t> OwnFloors(const engine::Task& task);
  Floors FloorsOf(const engine::Task& task);
  NaiveDates HeldBack(const engine::Task& task, NaiveDates dates);
  NaiveDates FindMoved(const engine::Task& task);
  NaiveDates FindLate(const engine::Task& task);
  NaiveDates LatestUnder(const engine::Task& task, const Ceilings& ceilings);
  void AddActualCeilings(const engine::Task& task, Ceilings& ceilings);
  bool IsOpenEnd(const engine::Task& task) const;
  Ceilings CeilingsFrom(const engine::Task& task, DatesOf dates_of);
  std::vector<const engine::Link*> LinksInto(const engine::Task& task) const;
  std::vector<const engine::Link*> LinksOutOf(const engine::Task& task) const;
  bool TakesPart(engine::Uid task) const;
  std::int64_t WorkOf(const engine::Task& task);

  const engine::Plan& plan_;
  Participates participates_;
  PlanCalendars calendars_;
  std::map<engine::Uid, NaiveDates> unmoved_;
  std::map<engine::Uid, NaiveDates> early_;
  std::map<engine::Uid, NaiveDates> late_;
};

}  // namespace nimbrel::test
