// The recording host is a host: it passes what every host has to pass.

#include <memory>

#include "tests/conformance/host_suite.h"
#include "tests/support/host/recording_host.h"

namespace nimbrel::conformance {

namespace {

class RecordingHostUnderTest : public HostUnderTest {
 public:
  void Open(const PlanSpec& spec) override {
    auto plan = recording::MakePlanState();
    plan->time_unit = spec.time_unit;
    plan->hours_per_day = spec.hours_per_day;
    for (const platform::Date holiday : spec.holidays) {
      plan->Calendar("STANDARD").holidays.insert(static_cast<std::int32_t>(holiday.serial));
    }
    for (const TaskSpec& task : spec.tasks) {
      const auto added = plan->AddTask(task.id, task.likely);
      added->duration = {task.minimum, task.likely, task.maximum};
      if (task.probability < 100.0) {
        added->risk = {0, task.probability};
      }
      for (const std::string& predecessor : task.predecessors) {
        plan->Link(predecessor, task.id);
      }
    }
    host_.OpenPlan(plan);
  }
  Corvane8::Ref<Corvane8::Application> application() override { return host_.application(); }
  void RunAnalysis(std::int32_t iterations, std::uint64_t seed) override {
    host_.RunAnalysis(iterations, seed);
  }

 private:
  recording::RecordingHost host_;
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Recording, HostSuite,
                         ::testing::Values(HostFactory{
                             "Recording",
                             [] { return std::make_unique<RecordingHostUnderTest>(); }}));

}  // namespace nimbrel::conformance
