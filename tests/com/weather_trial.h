#pragma once

#include <vector>

#include "host/corvane8.h"

namespace nimbrel::com {

/// Puts weather into a plan that has the tasks A, B and C on "STANDARD", through the host's objects
/// alone: an event calendar with a certain and an uncertain period, a window, and a task that must
/// not be split. Makes it a weather plan.
void AddTrialWeather(const Corvane8::Ref<Corvane8::Plan>& plan);

/// Takes down the dates of all tasks after each iteration.
class DateRecorder final : public Corvane8::ApplicationEvents {
 public:
  /// Start and finish of each task of each iteration, as the host gives them.
  const std::vector<double>& dates() const { return dates_; }
  /// The events in their order: 1 to 4, as they stand in ApplicationEvents.
  const std::vector<int>& events() const { return events_; }

  void PlanBeforeRiskAnalysis(const Corvane8::Ref<Corvane8::Plan>& plan) override;
  void PlanBeforeRiskIteration(const Corvane8::Ref<Corvane8::Plan>& plan,
                               Corvane8::Long iteration) override;
  void PlanAfterRiskIteration(const Corvane8::Ref<Corvane8::Plan>& plan,
                              Corvane8::Long iteration) override;
  void PlanAfterRiskAnalysis(const Corvane8::Ref<Corvane8::Plan>& plan) override;

 private:
  std::vector<double> dates_;
  std::vector<int> events_;
};

}  // namespace nimbrel::com
