// The embedded host under what the add-in expects of any host.

#include "engine/risk/random.h"
#include "engine/risk/sampler.h"
#include "tests/conformance/host_suite.h"
#include "tests/objects/support.h"

namespace nimbrel::conformance {
namespace {

/// The embedded host with the risk engine's samples, run in place: the suite looks into the plan
/// that is open, where a run of the program works on a copy.
class EmbeddedHostUnderTest : public HostUnderTest {
 public:
  void Open(const PlanSpec& spec) override {
    engine::Plan plan = engine::MakePlan(static_cast<engine::TimeUnit>(spec.time_unit));
    plan.hours_per_day = spec.hours_per_day;
    for (const platform::Date holiday : spec.holidays) {
      plan.calendars[0].exceptions[static_cast<std::int32_t>(holiday.serial)] = {};
    }
    for (const TaskSpec& task : spec.tasks) {
      AddTask(plan, task);
    }
    host_->Open(std::move(plan));
  }

  Corvane8::Ref<Corvane8::Application> application() override { return host_; }

  void RunAnalysis(std::int32_t iterations, std::uint64_t seed) override {
    engine::RunStream stream(seed);
    host_->SetRandomStream(&stream);
    host_->RaisePlanBeforeRiskAnalysis();
    engine::Sampler sampler(host_->document(), {.seed = seed});
    sampler.Prepare(host_->samples());
    for (std::int32_t iteration = 1; iteration <= iterations; ++iteration) {
      sampler.Sample(iteration, host_->samples());
      stream.Begin(iteration);
      host_->BeginIteration();
      host_->RaisePlanBeforeRiskIteration(iteration);
      host_->ScheduleIteration();
      host_->RaisePlanAfterRiskIteration(iteration);
      host_->EndIteration();
    }
    host_->RaisePlanAfterRiskAnalysis();
    host_->SetRandomStream(nullptr);
  }

 private:
  static void AddTask(engine::Plan& plan, const TaskSpec& spec) {
    engine::Task task;
    task.id = spec.id;
    task.remaining_minutes = static_cast<std::int32_t>(spec.likely * plan.MinutesPerUnit());
    task.original_minutes = task.remaining_minutes;
    task.range =
        engine::ThreePoint{spec.minimum, spec.likely, spec.maximum, engine::Shape::kTriangular};
    if (spec.probability < 100.0) {
      task.risk = engine::OccurrenceRisk{spec.probability, 0};
    }
    plan.AddTask(std::move(task));
    for (const std::string& predecessor : spec.predecessors) {
      engine::AddLink(plan, predecessor, spec.id);
    }
  }

  Corvane8::Ref<engine::Host> host_ = platform::MakeRef<engine::Host>(
      engine::HostOptions{.carries_weather = engine::CarriesWeather, .path = {}});
};

INSTANTIATE_TEST_SUITE_P(Embedded, HostSuite,
                         ::testing::Values(HostFactory{
                             "Embedded",
                             [] { return std::make_unique<EmbeddedHostUnderTest>(); }}));

}  // namespace
}  // namespace nimbrel::conformance
