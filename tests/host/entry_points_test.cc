// The entry points, the bridge from the host's events, and its guards.

#include <gmock/gmock.h>

#include <memory>

#include "host/cls_corvane.h"
#include "host/cls_nimbrel.h"
#include "platform/runtime_error.h"
#include "tests/support/host/wired_test.h"

namespace nimbrel::host {
namespace {

using platform::MakeRef;
using platform::Ref;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class RecordingMessageBox final : public platform::MessageBox {
 public:
  void Show(const std::string& text, const std::string& title) override {
    shown.push_back(title + ": " + text);
  }
  std::vector<std::string> shown;
};

class EntryPointsTest : public recording::WiredTest {
 protected:
  EntryPointsTest() : nimbrel_(MakeRef<clsNimbrel>(MakeSeams())) {}

  void MakeWeatherPlan() { SetFlag("TRUE"); }
  void SetFlag(const std::string& value) {
    plan().options[{"NIMBRELMOD", "Options", "IsWeatherPlan"}] = value;
  }

  Seams MakeSeams() {
    Seams seams;
    seams.handlers.BeforeRiskAnalysis = [this](const auto& plan) {
      Handled("BeforeRiskAnalysis", plan);
    };
    seams.handlers.BeforeRiskIteration = [this](const auto& plan, Corvane8::Long iteration) {
      Handled("BeforeRiskIteration " + std::to_string(iteration), plan);
    };
    seams.handlers.AfterRiskIteration = [this](const auto& plan, Corvane8::Long iteration) {
      Handled("AfterRiskIteration " + std::to_string(iteration), plan);
    };
    seams.handlers.AfterRiskAnalysis = [this](const auto& plan) {
      Handled("AfterRiskAnalysis", plan);
    };
    seams.ShowWeatherDialog = [this] { ++dialogs_; };
    seams.message_box = &message_box_;
    return seams;
  }
  void Handled(const std::string& event, const Ref<Corvane8::Plan>& plan) {
    handled_.push_back(event + " of " + plan->get_Name());
    if (event == failing_) {
      throw platform::RuntimeError(1004, event);
    }
  }

  RecordingMessageBox message_box_;
  int dialogs_ = 0;
  std::vector<std::string> handled_;
  std::string failing_;
  Ref<clsNimbrel> nimbrel_;
};

TEST_F(EntryPointsTest, MainWithoutAPlanSaysSoAndShowsNoDialogHoweverOften) {
  host_.ClosePlan();
  nimbrel_->Main();
  nimbrel_->Main();
  EXPECT_THAT(message_box_.shown, ElementsAre("Weather Modeling: There is no active plan.",
                                              "Weather Modeling: There is no active plan."));
  EXPECT_EQ(dialogs_, 0);
}

TEST_F(EntryPointsTest, MainShowsAFreshDialogAtEveryCall) {
  nimbrel_->Main();
  nimbrel_->Main();
  EXPECT_EQ(dialogs_, 2);
  EXPECT_THAT(message_box_.shown, IsEmpty());
  EXPECT_THAT(calls(), ElementsAre("Application.ActivePlan", "Application.ActivePlan"));
}

TEST_F(EntryPointsTest, MainWorksWhetherOrNotTheHooksAreStarted) {
  nimbrel_->LaunchStartCorvane();
  nimbrel_->Main();
  nimbrel_->LaunchStopCorvane();
  nimbrel_->Main();
  EXPECT_EQ(dialogs_, 2);
}

TEST_F(EntryPointsTest, MainLetsAnErrorOfTheHostOut) {
  recorder().FailOn("ActivePlan");
  EXPECT_EQ(ErrorOf([&] { nimbrel_->Main(); }), 1004);
  EXPECT_EQ(dialogs_, 0);
}

TEST_F(EntryPointsTest, NoEventArrivesBeforeTheStart) {
  MakeWeatherPlan();
  host_.RunAnalysis(1);
  EXPECT_THAT(handled_, IsEmpty());
}

TEST_F(EntryPointsTest, PassesEachEventOfAWeatherPlanToItsHandler) {
  MakeWeatherPlan();
  nimbrel_->LaunchStartCorvane();
  host_.RunAnalysis(2);
  EXPECT_THAT(handled_, ElementsAre("BeforeRiskAnalysis of Plan", "BeforeRiskIteration 1 of Plan",
                                    "AfterRiskIteration 1 of Plan", "BeforeRiskIteration 2 of Plan",
                                    "AfterRiskIteration 2 of Plan", "AfterRiskAnalysis of Plan"));
}

TEST_F(EntryPointsTest, TwoStartsMakeOneSubscriberAndOneStopEndsIt) {
  MakeWeatherPlan();
  nimbrel_->LaunchStartCorvane();
  nimbrel_->LaunchStartCorvane();
  EXPECT_THAT(calls(), ElementsAre("Application.Subscribe"));
  host_.RunAnalysis(0);
  EXPECT_THAT(handled_, ElementsAre("BeforeRiskAnalysis of Plan", "AfterRiskAnalysis of Plan"));
  nimbrel_->LaunchStopCorvane();
  host_.RunAnalysis(1);
  EXPECT_EQ(handled_.size(), 2U);
}

TEST_F(EntryPointsTest, AStopWithoutAStartIsHarmless) {
  nimbrel_->LaunchStopCorvane();
  nimbrel_->LaunchStopCorvane();
  EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(EntryPointsTest, AStartAfterAStopSubscribesAgain) {
  MakeWeatherPlan();
  nimbrel_->LaunchStartCorvane();
  nimbrel_->LaunchStopCorvane();
  nimbrel_->LaunchStartCorvane();
  host_.RunAnalysis(0);
  EXPECT_EQ(handled_.size(), 2U);
}

TEST_F(EntryPointsTest, TheEndOfTheEntryObjectEndsTheSubscription) {
  MakeWeatherPlan();
  nimbrel_->LaunchStartCorvane();
  nimbrel_ = nullptr;
  host_.RunAnalysis(1);
  EXPECT_THAT(handled_, IsEmpty());
}

TEST_F(EntryPointsTest, ARunOnAnyOtherPlanReachesNoHandler) {
  nimbrel_->LaunchStartCorvane();
  for (const char* flag : {"FALSE", "true", ""}) {
    SetFlag(flag);
    host_.RunAnalysis(1);
  }
  plan().options.clear();
  host_.RunAnalysis(1);
  EXPECT_THAT(handled_, IsEmpty());
}

TEST_F(EntryPointsTest, TheOptionIsReadTwiceInEveryIteration) {
  MakeWeatherPlan();
  nimbrel_->LaunchStartCorvane();
  host_.RunAnalysis(3);
  EXPECT_EQ(recorder().Containing({"GetOption"}).size(), 8U);  // and once at either end
}

TEST_F(EntryPointsTest, AFlagThatChangesDuringARunCountsFromTheNextEvent) {
  MakeWeatherPlan();
  const auto corvane = MakeRef<clsCorvane>(MakeSeams().handlers);
  corvane->m_CorvyApp_PlanBeforeRiskIteration(host_.plan_object(), 1);
  SetFlag("FALSE");
  corvane->m_CorvyApp_PlanAfterRiskIteration(host_.plan_object(), 1);
  EXPECT_THAT(handled_, ElementsAre("BeforeRiskIteration 1 of Plan"));
}

TEST_F(EntryPointsTest, AnEventWithoutAPlanIsPassedOver) {
  const auto corvane = MakeRef<clsCorvane>(MakeSeams().handlers);
  corvane->m_CorvyApp_PlanBeforeRiskAnalysis(nullptr);
  corvane->m_CorvyApp_PlanBeforeRiskIteration(nullptr, 1);
  corvane->m_CorvyApp_PlanAfterRiskIteration(nullptr, 1);
  corvane->m_CorvyApp_PlanAfterRiskAnalysis(nullptr);
  EXPECT_THAT(handled_, IsEmpty());
}

TEST_F(EntryPointsTest, AnErrorOfAHandlerGoesBackToTheHost) {
  MakeWeatherPlan();
  nimbrel_->LaunchStartCorvane();
  for (const char* event : {"BeforeRiskAnalysis", "BeforeRiskIteration 1", "AfterRiskIteration 1",
                            "AfterRiskAnalysis"}) {
    failing_ = event;
    EXPECT_EQ(ErrorOf([&] { host_.RunAnalysis(1); }), 1004) << event;
  }
}

TEST_F(EntryPointsTest, AnErrorInReadingTheOptionGoesBackToTheHost) {
  MakeWeatherPlan();
  nimbrel_->LaunchStartCorvane();
  recorder().FailOn("GetOption", 2, 57);
  EXPECT_EQ(ErrorOf([&] { host_.RunAnalysis(1); }), 57);
  EXPECT_THAT(handled_, ElementsAre("BeforeRiskAnalysis of Plan"));
}

TEST_F(EntryPointsTest, AFailedSubscriptionIsNotTriedAgainUntilAStop) {
  recorder().FailOn("Subscribe");
  EXPECT_EQ(ErrorOf([&] { nimbrel_->LaunchStartCorvane(); }), 1004);
  nimbrel_->LaunchStartCorvane();
  EXPECT_THAT(calls(), ElementsAre("Application.Subscribe"));
  nimbrel_->LaunchStopCorvane();
  nimbrel_->LaunchStartCorvane();
  EXPECT_EQ(recorder().Containing({"Application.Subscribe"}).size(), 2U);
}

TEST_F(EntryPointsTest, StartingASubscriberTwiceLeavesItSubscribedOnce) {
  MakeWeatherPlan();
  const auto corvane = MakeRef<clsCorvane>(MakeSeams().handlers);
  corvane->StartCorvane();
  corvane->StartCorvane();
  host_.RunAnalysis(0);
  EXPECT_EQ(handled_.size(), 2U);
  corvane->StopCorvane();
  host_.RunAnalysis(0);
  EXPECT_EQ(handled_.size(), 2U);
}

TEST_F(EntryPointsTest, AHandlerThatIsNotThereIsPassedOver) {
  MakeWeatherPlan();
  const auto corvane = MakeRef<clsCorvane>(RiskHandlers{});
  corvane->StartCorvane();
  host_.RunAnalysis(1);
  EXPECT_EQ(recorder().Containing({"GetOption"}).size(), 4U);
}

}  // namespace
}  // namespace nimbrel::host
