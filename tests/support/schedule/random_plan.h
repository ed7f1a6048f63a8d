#pragma once

#include <cstdint>

#include "engine/plan/plan.h"

namespace nimbrel::test {

/// The same numbers for the same seed, everywhere.
class Dice {
 public:
  explicit Dice(std::uint64_t seed) : state_(seed) {}
  /// A whole number from 0 to `count` - 1.
  std::int32_t Below(std::int32_t count);
  std::int32_t Between(std::int32_t least, std::int32_t most) {
    return least + Below(most - least + 1);
  }
  bool OneIn(std::int32_t count) { return Below(count) == 0; }

 private:
  std::uint64_t state_;
};

/// What a random plan may hold beyond tasks, milestones, calendars of all sorts, links and lags.
struct RandomPlanOptions {
  std::int32_t tasks = 8;
  bool with_constraints = false;
  bool with_progress = false;
  bool with_risk_calendars = false;
  /// Expected finishes, and the options that few plans have.
  bool with_rules = false;
};

/// A plan that starts on Monday 1 March 2027 at 08:00 and takes some weeks. Its calendars have days
/// of equal and of unequal length, night shifts, work around the clock and holidays.
engine::Plan RandomPlan(std::uint64_t seed, const RandomPlanOptions& options);

/// The days to look at for such a plan.
inline constexpr std::int32_t kRandomPlanFirstDay = 46447 - 110;
inline constexpr std::int32_t kRandomPlanDays = 420;

}  // namespace nimbrel::test
