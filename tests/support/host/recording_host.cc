#include "tests/support/host/recording_host.h"

#include <algorithm>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/host/faces.h"

namespace nimbrel::recording {

using Corvane8::Ref;

class RecordingHost::ApplicationFace : public Corvane8::Application {
 public:
  explicit ApplicationFace(std::shared_ptr<Recorder> recorder) : recorder_(std::move(recorder)) {}

  Ref<Corvane8::Plan> get_ActivePlan() override {
    recorder_->Call("Application", "ActivePlan");
    return plan_ ? MakePlanFace({recorder_, plan_}) : nullptr;
  }
  std::string get_Path() override {
    recorder_->Call("Application", "Path");
    return "/opt/corvane";
  }
  Corvane8::Long get_hWnd() override {
    recorder_->Call("Application", "hWnd");
    return 4711;
  }
  void Subscribe(Corvane8::ApplicationEvents* events) override {
    recorder_->Call("Application", "Subscribe");
    subscribers_.push_back(events);
  }
  void Unsubscribe(Corvane8::ApplicationEvents* events) override {
    recorder_->Call("Application", "Unsubscribe");
    const auto found = std::find(subscribers_.begin(), subscribers_.end(), events);
    if (found != subscribers_.end()) {
      subscribers_.erase(found);
    }
  }

  void Open(std::shared_ptr<PlanState> plan) { plan_ = std::move(plan); }

  void Raise(const std::function<void(Corvane8::ApplicationEvents&)>& event) const {
    const std::vector<Corvane8::ApplicationEvents*> receivers = subscribers_;
    for (Corvane8::ApplicationEvents* receiver : receivers) {
      event(*receiver);
    }
  }

 private:
  std::shared_ptr<Recorder> recorder_;
  std::shared_ptr<PlanState> plan_;
  std::vector<Corvane8::ApplicationEvents*> subscribers_;
};

RecordingHost::RecordingHost()
    : recorder_(std::make_shared<Recorder>()),
      face_(new ApplicationFace(recorder_)),
      application_(face_) {
  OpenPlan(MakePlanState());
}

Ref<Corvane8::Plan> RecordingHost::plan_object() const {
  return MakePlanFace({recorder_, plan_});
}

void RecordingHost::ClosePlan() {
  OpenPlan(nullptr);
}

void RecordingHost::OpenPlan(std::shared_ptr<PlanState> plan) {
  plan_ = std::move(plan);
  face_->Open(plan_);
}

Ref<Corvane8::Task> RecordingHost::TaskObject(std::string_view id) const {
  return MakeTaskFace({recorder_, plan_}, plan_->FindTask(id));
}

Ref<Corvane8::Calendar> RecordingHost::CalendarObject(std::string_view name) const {
  return MakeCalendarFace({recorder_, plan_}, plan_->FindCalendar(name));
}

void RecordingHost::RunAnalysis(std::int32_t iterations, std::uint64_t seed) {
  struct EndOfRun {
    PlanState& plan;
    ~EndOfRun() { plan.in_iteration = false; }
  };
  PlanState& plan = *plan_;
  const Ref<Corvane8::Plan> object = plan_object();
  plan.random_state = seed;
  plan.random_reads = 0;
  const EndOfRun end{plan};
  face_->Raise([&](Corvane8::ApplicationEvents& events) { events.PlanBeforeRiskAnalysis(object); });
  for (std::int32_t iteration = 1; iteration <= iterations; ++iteration) {
    plan.in_iteration = true;
    plan.Sample(static_cast<std::size_t>(iteration - 1));
    face_->Raise([&](Corvane8::ApplicationEvents& events) {
      events.PlanBeforeRiskIteration(object, iteration);
    });
    plan.Schedule();
    face_->Raise([&](Corvane8::ApplicationEvents& events) {
      events.PlanAfterRiskIteration(object, iteration);
    });
  }
  plan.in_iteration = false;
  face_->Raise([&](Corvane8::ApplicationEvents& events) { events.PlanAfterRiskAnalysis(object); });
}

}  // namespace nimbrel::recording
