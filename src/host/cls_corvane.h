#pragma once

#include <functional>

#include "host/corvane8.h"
#include "platform/ref.h"

namespace nimbrel::host {

/// What the events of a risk run are handed to. Each handler gets the plan of the event; an empty
/// one stands for a handler that is not there, and nothing is done.
struct RiskHandlers {
  using PlanHandler = std::function<void(const Corvane8::Ref<Corvane8::Plan>&)>;
  using IterationHandler =
      std::function<void(const Corvane8::Ref<Corvane8::Plan>&, Corvane8::Long)>;

  PlanHandler BeforeRiskAnalysis;
  IterationHandler BeforeRiskIteration;
  IterationHandler AfterRiskIteration;
  PlanHandler AfterRiskAnalysis;
};

/// The subscriber of the host's events: passes each event of a plan that is marked as a weather
/// plan on to its handler. Whether the plan is one is read from it at every event. An error of a
/// handler or of the host goes back to who raised the event.
class clsCorvane final : public platform::Object, private Corvane8::ApplicationEvents {
 public:
  explicit clsCorvane(RiskHandlers handlers);
  ~clsCorvane() override;

  /// Subscribes to the events of the process's application; started again, it is still subscribed
  /// once.
  void StartCorvane();
  /// Ends the subscription; without one it does nothing.
  void StopCorvane();

  void m_CorvyApp_PlanAfterRiskAnalysis(Corvane8::Ref<Corvane8::Plan> Plan);
  void m_CorvyApp_PlanAfterRiskIteration(Corvane8::Ref<Corvane8::Plan> Plan,
                                         Corvane8::Long Iteration);
  void m_CorvyApp_PlanBeforeRiskAnalysis(Corvane8::Ref<Corvane8::Plan> Plan);
  void m_CorvyApp_PlanBeforeRiskIteration(Corvane8::Ref<Corvane8::Plan> Plan,
                                          Corvane8::Long Iteration);

 private:
  void PlanBeforeRiskAnalysis(const Corvane8::Ref<Corvane8::Plan>& plan) override;
  void PlanBeforeRiskIteration(const Corvane8::Ref<Corvane8::Plan>& plan,
                               Corvane8::Long iteration) override;
  void PlanAfterRiskIteration(const Corvane8::Ref<Corvane8::Plan>& plan,
                              Corvane8::Long iteration) override;
  void PlanAfterRiskAnalysis(const Corvane8::Ref<Corvane8::Plan>& plan) override;

  RiskHandlers handlers_;
  /// The application while subscribed to it, else Nothing.
  Corvane8::Ref<Corvane8::Application> m_CorvyApp;
};

}  // namespace nimbrel::host
