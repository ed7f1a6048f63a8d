#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "engine/objects/host.h"
#include "engine/plan/plan.h"
#include "platform/date.h"
#include "platform/ref.h"

namespace nimbrel::hostserver {

/// The embedded host with a plan that is made task by task, and risk runs on the open plan itself.
class TrialHost final : public platform::Object {
 public:
  TrialHost();

  /// Begins a plan that starts on Monday, 4 January 2027, on the calendar "STANDARD", Monday to
  /// Friday; it opens with OpenPlan. `time_unit` is 1, 24 or 96 units a day, `hours_per_day` at
  /// least 1. Raises error 5 for anything else.
  void NewPlan(std::int32_t time_unit, std::int32_t hours_per_day);
  /// A day that "STANDARD" does not work. Raises error 5 before NewPlan.
  void AddHoliday(platform::Date day);
  /// Durations are in plan units, the chance of occurrence in percent. `predecessors` are IDs with
  /// commas between them, each finish to start without lag; raises error 5 for one that is not
  /// there, and before NewPlan.
  void AddTask(std::string_view id, double minimum, double likely, double maximum,
               double probability, std::string_view predecessors);
  void OpenPlan();
  void ClosePlan();
  /// Runs an analysis of the open plan and raises its events. `seed` is a number from 0 up to 2^64,
  /// of which the whole part counts. Raises error 91 without a plan, error 5 for another seed, and
  /// whatever a receiver of the events lets out.
  void RunAnalysis(std::int32_t iterations, double seed);

  /// The mean of the plan's finish over the iterations of the last run; date zero before one.
  platform::Date mean_finish() const { return mean_finish_; }

  const platform::Ref<engine::Host>& host() const { return host_; }

 private:
  void RequireBegun() const;
  /// The finish of the plan's last task, as it is scheduled now.
  double LastFinish();

  platform::Ref<engine::Host> host_;
  engine::Plan plan_;
  platform::Date mean_finish_;
};

}  // namespace nimbrel::hostserver
