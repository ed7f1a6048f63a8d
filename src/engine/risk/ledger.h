#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "engine/calendar/day_bits.h"
#include "engine/results/run_result.h"
#include "engine/risk/lost_days.h"
#include "engine/risk/run_layout.h"
#include "engine/schedule/network.h"
#include "engine/schedule/scheduler.h"

namespace nimbrel::engine {

/// Tells, iteration by iteration, where the lost days of each weather calendar go.
///
/// A task of a calendar is one that has it as its own calendar or behind a risk calendar, has work
/// left and is no summary or level of effort. It is under way from the day on which it only waits
/// for working time (see FirstDayUnderWay) to the day on which it finishes; a task that must not be
/// split and was pushed so waits from before the push. A lost day holds such a task up if the
/// task's own calendar works that day. Each lost day of a calendar then is one of
/// - off: no task of the calendar works that day by its own calendar;
/// - idle: some do, but it holds none up;
/// - moving: it holds up a task on a driving path to the plan's finish, and is one of the last of
///   these days, of all calendars together, as many as the finish is later than it would be without
///   any weather: in days that the task which ends last works by its own calendar;
/// - absorbed: it holds up other tasks only, or came while a driving task still had float.
class Ledger {
 public:
  /// `scheduler` has the plan's structure as in all iterations.
  Ledger(const RunLayout& layout, const Scheduler& scheduler);

  /// Looks at an iteration: the schedule as it stands, but with the constraints of before any push.
  /// `driving` are the tasks on the driving paths to the finish, of which the first ends last.
  void Look(const Scheduler& scheduler, const LostDays& lost, std::span<const TaskIndex> driving);
  /// Adds the iteration that was looked at last. `sums` has an entry for each calendar.
  void Book(const LostDays& lost, Instant finish_without_weather, Instant finish,
            std::span<LedgerResult> sums) const;

 private:
  /// The days on which a lost one of a calendar holds up a task, or one that drives the finish.
  struct HeldDays {
    std::uint64_t any = 0;
    std::uint64_t driving = 0;
  };
  HeldDays HeldDaysOf(std::size_t calendar, std::int32_t word) const;
  std::int32_t FirstMovingDay(const LostDays& lost, std::int32_t moved) const;

  /// Tasks that share one set of calendars.
  struct Table {
    DayBits own;                         // days that they work by their own calendar
    std::vector<std::size_t> calendars;  // weather calendars, as in the layout
    DayBits under_way;                   // days on which a task is, in the current iteration
    DayBits driving;                     // days on which one that drives the finish is
  };

  /// A task of a table.
  struct Entry {
    Slot slot = 0;
    std::uint32_t table = 0;
  };

  std::vector<Table> tables_;
  std::vector<Entry> entries_;  // in the order of the passes, so that memory is read in its order
  std::vector<std::vector<std::size_t>> tables_of_;  // by calendar
  std::vector<DayBits> ever_worked_;             // by calendar: days that one of its tasks works
  std::vector<bool> is_driving_;                 // by slot; all false between calls
  std::vector<bool> is_weather_;                 // by calendar of the plan
  const WorkCalendar* last_calendar_ = nullptr;  // of the task that ends last
  bool last_is_weather_ = false;                 // whether that one is a weather calendar
};

}  // namespace nimbrel::engine
