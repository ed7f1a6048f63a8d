#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "engine/calendar/day_bits.h"
#include "engine/plan/plan.h"
#include "engine/risk/run.h"
#include "engine/risk/tied_numbers.h"
#include "engine/schedule/scheduler.h"

namespace nimbrel::engine {

/// A calendar whose lost days are counted.
struct WeatherCalendar {
  CalendarIndex index = 0;
  std::string kind;
  DayBits open;  // days with work as long as no day is taken
};

/// A way of leaving calendars out.
struct Variant {
  std::vector<bool> takes_effect;  // by RunLayout::calendars
};

/// What a run is about, worked out once before its first iteration: the same for all workers.
struct RunLayout {
  std::vector<Uid> tasks;  // by TaskIndex
  std::vector<WeatherCalendar> calendars;
  std::vector<TaskIndex> no_split;  // tasks whose pushes are measured
  std::vector<TaskIndex> asked;
  std::vector<TaskIndex> targets;
  Instant deterministic_finish;
  SamplingDesign design;
  std::optional<TiedNumbers> tied;  // where values are correlated
  std::vector<std::string> notes;
  /// With `attribute`: each way once.
  std::vector<Variant> variants;
  /// The place of the way in which no calendar takes effect.
  static constexpr std::size_t kWithoutAny = 0;

  /// Place of the variant in which a calendar alone takes effect, or all but it (`alone` false); -1
  /// where that is the run itself.
  std::int32_t VariantOf(std::size_t calendar, bool alone) const;
};

/// Checks the options and schedules the plan once. Raises as Run does.
RunLayout MakeRunLayout(const Plan& plan, const RunOptions& options, const RunWiring& wiring);

}  // namespace nimbrel::engine
