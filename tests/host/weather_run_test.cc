// The bridge and the simulation wired together, as a program does it.

#include <gmock/gmock.h>

#include "host/cls_nimbrel.h"
#include "simulation/mod_weather_events.h"
#include "tests/support/host/wired_test.h"

namespace nimbrel::host {
namespace {

using platform::MakeDate;
using platform::MakeRef;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class WeatherRunTest : public recording::WiredTest {
 protected:
  WeatherRunTest() {
    Seams seams;
    seams.handlers = {modWeatherEvents::BeforeRiskAnalysis, modWeatherEvents::BeforeRiskIteration,
                      modWeatherEvents::AfterRiskIteration, modWeatherEvents::AfterRiskAnalysis};
    nimbrel_ = MakeRef<clsNimbrel>(seams);
    nimbrel_->LaunchStartCorvane();
    plan().AddWeatherSummary();
    plan().AddTask("A", 3)->SetWeatherValue("nosplit", "True");
    plan().AddTask("B", 1);
    plan().Link("A", "B");
    // One of the days from Tuesday the 5th to Thursday the 7th.
    auto& period = *plan().AddPeriod("P", "NORTH SEA", MakeDate(2027, 1, 5), MakeDate(2027, 1, 7));
    period.risk = {0, 50.0};
    period.scripted_samples = {0, 1, 1};
    period.scripted_skips = {false};
    plan().Assign("A", "NORTH SEA");
    plan().scripted_random = {0.0, 0.75};
  }
  ~WeatherRunTest() override { modWeatherEvents::ReleaseRunState(); }

  void SetFlag(const std::string& value) {
    plan().options[{"NIMBRELMOD", "Options", "IsWeatherPlan"}] = value;
  }

  Corvane8::Ref<clsNimbrel> nimbrel_;
};

/// Notes when B starts in each iteration; to be subscribed behind the bridge.
class StartsOfB : public Corvane8::ApplicationEvents {
 public:
  explicit StartsOfB(recording::PlanState& plan) : plan_(plan) {}
  std::vector<int> days;

  void PlanBeforeRiskAnalysis(const Corvane8::Ref<Corvane8::Plan>& /*plan*/) override {}
  void PlanBeforeRiskIteration(const Corvane8::Ref<Corvane8::Plan>& /*plan*/,
                               Corvane8::Long /*iteration*/) override {}
  void PlanAfterRiskIteration(const Corvane8::Ref<Corvane8::Plan>& /*plan*/,
                              Corvane8::Long /*iteration*/) override {
    days.push_back(platform::ToCivil(plan_.Task("B").start).day);
  }
  void PlanAfterRiskAnalysis(const Corvane8::Ref<Corvane8::Plan>& /*plan*/) override {}

 private:
  recording::PlanState& plan_;
};

TEST_F(WeatherRunTest, EveryIterationFeelsItsOwnWeather) {
  SetFlag("TRUE");
  StartsOfB starts(plan());
  host_.application()->Subscribe(&starts);
  host_.RunAnalysis(3);
  // Clear: 4, 5, 6, so B on the 7th. Weather on the 5th: A is pushed to 6, 7, 8, so B on Monday.
  // Two spare days times 0.75 are 1.5, so weather on the 6th: A is pushed to 7, 8, 11.
  EXPECT_THAT(starts.days, ElementsAre(7, 11, 12));
}

TEST_F(WeatherRunTest, ARunLeavesCleanCalendarsAndNoConstraint) {
  SetFlag("TRUE");
  host_.RunAnalysis(3);
  EXPECT_THAT(plan().Calendar("NORTH SEA").weather, IsEmpty());
  EXPECT_EQ(plan().Task("A").constraint, 0);
  EXPECT_EQ(platform::ToCivil(plan().Task("B").start).day, 7);
}

TEST_F(WeatherRunTest, ARunOnAnyOtherPlanTouchesNeitherThePlanNorTheRunState) {
  SetFlag("TRUE");
  host_.RunAnalysis(1);
  const auto* no_split = modWeatherEvents::g_colNoSplit.get();
  plan().Task("A").constraint = 3;
  for (const char* flag : {"FALSE", "true"}) {
    SetFlag(flag);
    recorder().Clear();
    host_.RunAnalysis(2);
    EXPECT_EQ(calls().size(), 6U);
    EXPECT_THAT(calls(), Each(HasSubstr("Plan.GetOption")));
    EXPECT_EQ(modWeatherEvents::g_colNoSplit.get(), no_split);
    EXPECT_TRUE(modWeatherEvents::g_colCalendars.IsNothing());
    EXPECT_EQ(plan().Task("A").constraint, 3);
  }
}

TEST_F(WeatherRunTest, AStoppedBridgeLeavesTheRunToTheHost) {
  SetFlag("TRUE");
  nimbrel_->LaunchStopCorvane();
  recorder().Clear();
  host_.RunAnalysis(2);
  EXPECT_THAT(calls(), IsEmpty());
}

}  // namespace
}  // namespace nimbrel::host
