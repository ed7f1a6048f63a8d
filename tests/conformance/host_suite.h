#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "host/corvane8.h"

/// What the add-in expects of any host, as tests that every implementation of the object library
/// passes. A host's own test program links nimbrel_host_conformance and says
///
///   INSTANTIATE_TEST_SUITE_P(Embedded, HostSuite,
///                            ::testing::Values(HostFactory{"Embedded", MakeEmbeddedHost}));
///
/// with nimbrel::conformance's names in scope.
namespace nimbrel::conformance {

/// One ordinary task of a plan. Durations are in plan units; its distribution is of the host's
/// choice between the bounds.
struct TaskSpec {
  std::string id = {};
  double minimum = 0.0;
  double likely = 0.0;
  double maximum = 0.0;
  /// Chance of occurrence in percent; below 100 the task has a risk object.
  double probability = 100.0;
  /// IDs of tasks above it in the list, each finish to start without lag.
  std::vector<std::string> predecessors = {};
};

/// A plan that starts on Monday, 4 January 2027, which is its anchor date and its reference date.
/// It has the calendar "STANDARD", Monday to Friday with 8 hours a day but for the holidays, and
/// all tasks stand on it. It has no risk calendar, no custom field and no option.
struct PlanSpec {
  std::int32_t time_unit = 1;
  std::int32_t hours_per_day = 8;
  std::vector<platform::Date> holidays = {};
  std::vector<TaskSpec> tasks = {};
};

/// A host that the suite can make plans and runs with. All else goes through the object library.
class HostUnderTest {
 public:
  virtual ~HostUnderTest() = default;

  /// Makes the plan of `spec` and opens it as the active one.
  virtual void Open(const PlanSpec& spec) = 0;
  /// The application, the same one for the life of the host.
  virtual Corvane8::Ref<Corvane8::Application> application() = 0;
  /// Runs an analysis of the active plan, raising the application's events.
  virtual void RunAnalysis(std::int32_t iterations, std::uint64_t seed) = 0;
};

/// How a test makes a fresh host.
struct HostFactory {
  std::string name;
  std::function<std::unique_ptr<HostUnderTest>()> make;

  friend std::ostream& operator<<(std::ostream& out, const HostFactory& factory) {
    return out << factory.name;
  }
};

/// Hands each event to a function, if there is one.
class Listener : public Corvane8::ApplicationEvents {
 public:
  using PlanRef = Corvane8::Ref<Corvane8::Plan>;

  std::function<void(const PlanRef&)> before_analysis;
  std::function<void(const PlanRef&, std::int32_t)> before_iteration;
  std::function<void(const PlanRef&, std::int32_t)> after_iteration;
  std::function<void(const PlanRef&)> after_analysis;

  void PlanBeforeRiskAnalysis(const PlanRef& plan) override {
    if (before_analysis) {
      before_analysis(plan);
    }
  }
  void PlanBeforeRiskIteration(const PlanRef& plan, std::int32_t iteration) override {
    if (before_iteration) {
      before_iteration(plan, iteration);
    }
  }
  void PlanAfterRiskIteration(const PlanRef& plan, std::int32_t iteration) override {
    if (after_iteration) {
      after_iteration(plan, iteration);
    }
  }
  void PlanAfterRiskAnalysis(const PlanRef& plan) override {
    if (after_analysis) {
      after_analysis(plan);
    }
  }
};

class HostSuite : public ::testing::TestWithParam<HostFactory> {
 protected:
  void SetUp() override;

  /// Opens a plan; the tasks stand one behind the other where the test says so.
  void Open(const PlanSpec& spec);
  Corvane8::Ref<Corvane8::Plan> plan() const { return host_->application()->get_ActivePlan(); }
  Corvane8::Ref<Corvane8::Task> Task(const std::string& id) const {
    return plan()->get_Tasks()->Item(id);
  }
  Corvane8::Ref<Corvane8::Calendar> Calendar(const std::string& name) const {
    return plan()->get_Calendars()->Item(name);
  }
  /// Makes a calendar and its risk calendar, as the weather dialog does.
  Corvane8::Ref<Corvane8::Calendar> AddWeatherCalendar(const std::string& name) const;
  void Assign(const std::string& task, const std::string& calendar) const;
  /// Whether the call raises a run-time error.
  static bool Fails(const std::function<void()>& call);
  /// Days on which the task starts and ends, as midnights.
  platform::Date StartDay(const std::string& id) const;
  platform::Date FinishDay(const std::string& id) const;
  /// Runs with `listener` subscribed.
  void Run(Listener& listener, std::int32_t iterations, std::uint64_t seed = 1) const;

  std::unique_ptr<HostUnderTest> host_;
};

/// A day of January 2027: 2, 3, 9, 10 are weekend days.
platform::Date January(int day);

/// A task of the same duration in all iterations.
TaskSpec Certain(std::string id, double duration, std::vector<std::string> predecessors = {});

}  // namespace nimbrel::conformance
