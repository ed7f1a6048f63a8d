#include "tests/conformance/host_suite.h"

#include <utility>

#include "platform/runtime_error.h"

namespace nimbrel::conformance {

void HostSuite::SetUp() {
  host_ = GetParam().make();
}

void HostSuite::Open(const PlanSpec& spec) {
  host_->Open(spec);
}

Corvane8::Ref<Corvane8::Calendar> HostSuite::AddWeatherCalendar(const std::string& name) const {
  auto calendar = plan()->get_Calendars()->Add(name);
  const auto risk_calendar = plan()->get_RiskCalendars()->Add(name);
  risk_calendar->put_Calendar(calendar);
  risk_calendar->put_Description("Weather calendar");
  return calendar;
}

void HostSuite::Assign(const std::string& task, const std::string& calendar) const {
  Task(task)->get_RiskCalendars()->Add(calendar)->put_Value(0.0);
}

bool HostSuite::Fails(const std::function<void()>& call) {
  try {
    call();
  } catch (const platform::RuntimeError&) {
    return true;
  }
  return false;
}

platform::Date HostSuite::StartDay(const std::string& id) const {
  return platform::DayOf(Task(id)->get_Dates()->get_Start());
}

platform::Date HostSuite::FinishDay(const std::string& id) const {
  return platform::DayOf(Task(id)->get_Dates()->get_Finish());
}

void HostSuite::Run(Listener& listener, std::int32_t iterations, std::uint64_t seed) const {
  struct Subscription {
    Corvane8::Ref<Corvane8::Application> application;
    Listener* listener;
    ~Subscription() { application->Unsubscribe(listener); }
  };
  const Subscription subscription{host_->application(), &listener};
  subscription.application->Subscribe(&listener);
  host_->RunAnalysis(iterations, seed);
}

platform::Date January(int day) {
  return platform::MakeDate(2027, 1, day);
}

TaskSpec Certain(std::string id, double duration, std::vector<std::string> predecessors) {
  return {std::move(id), duration, duration, duration, 100.0, std::move(predecessors)};
}

}  // namespace nimbrel::conformance
