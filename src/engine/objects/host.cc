#include "engine/objects/host.h"

#include <algorithm>
#include <utility>

#include "engine/objects/plan_object.h"
#include "engine/objects/session.h"

namespace nimbrel::engine {

using Corvane8::ApplicationEvents;
using Corvane8::Long;
using platform::Ref;

Host::Host(HostOptions options) : options_(std::move(options)) {}

Host::~Host() {
  Close();
}

Ref<Host> MakeHost(Plan plan, HostOptions options) {
  auto host = platform::MakeRef<Host>(std::move(options));
  host->Open(std::move(plan));
  return host;
}

Ref<Corvane8::Plan> Host::get_ActivePlan() {
  return session_.IsNothing() ? nullptr : session_->plan_object().Share();
}

std::string Host::get_Path() {
  return options_.path;
}

Long Host::get_hWnd() {
  return options_.window ? options_.window() : 0;
}

void Host::Open(Plan plan) {
  Close();
  session_ = platform::MakeRef<PlanSession>(
      std::move(plan), [carries_weather = options_.carries_weather](const Task& task) {
        return !carries_weather || !carries_weather(task);
      });
}

void Host::Close() {
  if (session_) {
    // Objects of the plan may be held for longer than the stream lives.
    session_->SetRandomStream(nullptr);
    session_->SetWitness(nullptr);
    session_ = nullptr;
  }
}

PlanSession& Host::session() const {
  return *session_;
}

const Plan& Host::document() {
  return session().Document();
}

Scheduler& Host::scheduler() {
  return session().Compiled();
}

bool Host::Participates(const Task& task) const {
  return session().Participates(task);
}

// A risk run.

IterationSamples& Host::samples() {
  return session().samples();
}

void Host::BeginIteration() {
  session().BeginIteration();
}

void Host::EndIteration() {
  session().EndIteration();
}

bool Host::iteration_running() {
  return session().in_iteration();
}

void Host::ApplySamples() {
  session().ApplySamples();
}

void Host::ScheduleIteration() {
  session().ScheduleIteration();
}

void Host::ScheduleAgain() {
  session().ScheduleAgain();
}

void Host::SetConstraint(Uid task, const Constraint& constraint) {
  session().SetConstraint(task, constraint);
}

void Host::SetWitness(IterationWitness* witness) {
  session().SetWitness(witness);
}

void Host::SetRandomStream(RandomStream* stream) {
  session().SetRandomStream(stream);
}

// Events.

void Host::Subscribe(ApplicationEvents* events) {
  subscribers_.push_back(events);
}

void Host::Unsubscribe(ApplicationEvents* events) {
  // The last one: subscriptions of one receiver cannot be told apart but by their age.
  const auto found = std::find(subscribers_.rbegin(), subscribers_.rend(), events);
  if (events == nullptr || found == subscribers_.rend()) {
    return;
  }
  if (raising_ > 0) {
    *found = nullptr;  // the walk over the subscribers goes on
  } else {
    subscribers_.erase(std::next(found).base());
  }
}

template <class Event>
void Host::Raise(const Event& event) {
  struct Raising {
    Host& host;
    explicit Raising(Host& raiser) : host(raiser) { ++host.raising_; }
    ~Raising() {
      if (--host.raising_ == 0) {
        std::erase(host.subscribers_, nullptr);
      }
    }
    Raising(const Raising&) = delete;
    Raising& operator=(const Raising&) = delete;
  };
  const Ref<Corvane8::Plan> plan = session().plan_object().Share();
  const Raising raising(*this);
  // Who subscribes while the event is raised hears the next one.
  const std::size_t count = subscribers_.size();
  for (std::size_t i = 0; i < count; ++i) {
    if (subscribers_[i] != nullptr) {
      event(*subscribers_[i], plan);
    }
  }
}

void Host::RaisePlanBeforeRiskAnalysis() {
  Raise([](ApplicationEvents& events, const auto& plan) { events.PlanBeforeRiskAnalysis(plan); });
}

void Host::RaisePlanBeforeRiskIteration(Long iteration) {
  Raise([iteration](ApplicationEvents& events, const auto& plan) {
    events.PlanBeforeRiskIteration(plan, iteration);
  });
}

void Host::RaisePlanAfterRiskIteration(Long iteration) {
  Raise([iteration](ApplicationEvents& events, const auto& plan) {
    events.PlanAfterRiskIteration(plan, iteration);
  });
}

void Host::RaisePlanAfterRiskAnalysis() {
  Raise([](ApplicationEvents& events, const auto& plan) { events.PlanAfterRiskAnalysis(plan); });
}

}  // namespace nimbrel::engine
