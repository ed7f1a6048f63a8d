#include "host/cls_corvane.h"

#include <utility>

#include "host/mod_global.h"
#include "platform/runtime_error.h"

namespace nimbrel::host {

using Corvane8::Long;
using Corvane8::Ref;

clsCorvane::clsCorvane(RiskHandlers handlers) : handlers_(std::move(handlers)) {}

clsCorvane::~clsCorvane() {
  // A host must not be left with a subscriber that has ended; an error has nowhere to go here.
  platform::IgnoreErrors([this] { StopCorvane(); });
}

void clsCorvane::StartCorvane() {
  const Ref<Corvane8::Application>& application = modGlobal::Application();
  StopCorvane();
  application->Subscribe(this);
  m_CorvyApp = application;
}

void clsCorvane::StopCorvane() {
  if (const Ref<Corvane8::Application> application = std::exchange(m_CorvyApp, nullptr)) {
    application->Unsubscribe(this);
  }
}

void clsCorvane::m_CorvyApp_PlanAfterRiskAnalysis(Ref<Corvane8::Plan> Plan) {
  const Ref<Corvane8::Plan> oPlan = std::move(Plan);
  if (modGlobal::IsWeatherPlan(oPlan) && handlers_.AfterRiskAnalysis) {
    handlers_.AfterRiskAnalysis(oPlan);
  }
}

void clsCorvane::m_CorvyApp_PlanAfterRiskIteration(Ref<Corvane8::Plan> Plan, Long Iteration) {
  const Ref<Corvane8::Plan> oPlan = std::move(Plan);
  if (modGlobal::IsWeatherPlan(oPlan) && handlers_.AfterRiskIteration) {
    handlers_.AfterRiskIteration(oPlan, Iteration);
  }
}

void clsCorvane::m_CorvyApp_PlanBeforeRiskAnalysis(Ref<Corvane8::Plan> Plan) {
  const Ref<Corvane8::Plan> oPlan = std::move(Plan);
  if (modGlobal::IsWeatherPlan(oPlan) && handlers_.BeforeRiskAnalysis) {
    handlers_.BeforeRiskAnalysis(oPlan);
  }
}

void clsCorvane::m_CorvyApp_PlanBeforeRiskIteration(Ref<Corvane8::Plan> Plan, Long Iteration) {
  const Ref<Corvane8::Plan> oPlan = std::move(Plan);
  if (modGlobal::IsWeatherPlan(oPlan) && handlers_.BeforeRiskIteration) {
    handlers_.BeforeRiskIteration(oPlan, Iteration);
  }
}

// A handler may end the subscription, and with it the last reference to its subscriber.

void clsCorvane::PlanBeforeRiskAnalysis(const Ref<Corvane8::Plan>& plan) {
  const Ref<clsCorvane> kept(this);
  m_CorvyApp_PlanBeforeRiskAnalysis(plan);
}

void clsCorvane::PlanBeforeRiskIteration(const Ref<Corvane8::Plan>& plan, Long iteration) {
  const Ref<clsCorvane> kept(this);
  m_CorvyApp_PlanBeforeRiskIteration(plan, iteration);
}

void clsCorvane::PlanAfterRiskIteration(const Ref<Corvane8::Plan>& plan, Long iteration) {
  const Ref<clsCorvane> kept(this);
  m_CorvyApp_PlanAfterRiskIteration(plan, iteration);
}

void clsCorvane::PlanAfterRiskAnalysis(const Ref<Corvane8::Plan>& plan) {
  const Ref<clsCorvane> kept(this);
  m_CorvyApp_PlanAfterRiskAnalysis(plan);
}

}  // namespace nimbrel::host
