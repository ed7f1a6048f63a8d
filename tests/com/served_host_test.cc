// A host's objects as they are offered to other programs: by the interfaces of the object library,
// with every value that a plan tells of itself, and in the plan's own unit.

#include <gmock/gmock.h>

#include <bit>
#include <cstdint>

#include "com/host_application.h"
#include "com/host_objects.h"
#include "com/served/served_application.h"
#include "host/cls_nimbrel.h"
#include "host/mod_global.h"
#include "hostserver/trial_host.h"
#include "simulation/mod_weather_events.h"
#include "tests/com/bare_object.h"
#include "tests/com/com_test.h"
#include "tests/com/weather_trial.h"
#include "tests/support/host/recording_host.h"

namespace nimbrel::com {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;

/// The recording host's objects, called through IDispatch.
class ServedHostTest : public ::testing::Test {
 protected:
  template <class Interface>
  static Ref<Interface> ThroughCom(const Ref<Interface>& object) {
    const ComVariant served = served::ToCaller(object);
    return FromHost<Ref<Interface>>(*served.get(), std::make_shared<MemberIds>());
  }
  Ref<Corvane8::Application> Application() const {
    const auto served = MakeCom<served::ServedApplication>(host_.application(), nullptr);
    return platform::MakeRef<HostApplication>(served.As<IDispatch>(IID_IDispatch), CLSID_NULL);
  }
  Ref<Corvane8::Plan> Plan() const { return ThroughCom(host_.plan_object()); }

  recording::RecordingHost host_;
};

TEST_F(ServedHostTest, TellsWhereItIsAndItsWindow) {
  EXPECT_EQ(Application()->get_Path(), "/opt/corvane");
  EXPECT_EQ(Application()->get_hWnd(), 4711);
}

TEST_F(ServedHostTest, TellsThePlansTitleFormatAndOption) {
  host_.plan().title = "Pier – Phase Ⅱ";
  host_.plan().date_format = 12;
  EXPECT_EQ(Plan()->get_Properties()->get_Title(), "Pier – Phase Ⅱ");
  EXPECT_EQ(Plan()->get_Display()->get_DateFormat(), 12);
  const auto options = Plan()->get_RiskAnalysis()->get_Options();
  EXPECT_FALSE(options->get_RecalculateAfterMove());
  host_.plan().recalculate_after_move = true;
  EXPECT_TRUE(options->get_RecalculateAfterMove());
}

TEST_F(ServedHostTest, TellsATasksKindAndHowFarItIs) {
  host_.plan().AddTask("A", 2);
  const auto task = Plan()->get_Tasks()->Item("A");
  EXPECT_FALSE(task->get_Critical());
  auto& state = host_.plan().Task("A");
  state.type = 4;
  state.progress = 37.5;
  state.critical = true;
  EXPECT_EQ(task->get_Type(), 4);
  EXPECT_EQ(task->get_Dates()->get_Progress(), 37.5);
  EXPECT_TRUE(task->get_Critical());
}

TEST_F(ServedHostTest, ItsWatchOfChangesIsSwitchedOffAndOn) {
  Plan()->get_ChangeMonitor()->put_Enabled(false);
  EXPECT_FALSE(host_.plan().monitor_enabled);
  Plan()->get_ChangeMonitor()->put_Enabled(true);
  EXPECT_TRUE(host_.plan().monitor_enabled);
}

/// Has the weather take part in a run through the objects that others see.
class WeatherThroughCom final : public Corvane8::ApplicationEvents {
 public:
  explicit WeatherThroughCom(Ref<Corvane8::Plan> plan) : plan_(std::move(plan)) {}

  void PlanBeforeRiskAnalysis(const Ref<Corvane8::Plan>& /*plan*/) override {
    modWeatherEvents::BeforeRiskAnalysis(plan_);
  }
  void PlanBeforeRiskIteration(const Ref<Corvane8::Plan>& /*plan*/, Long iteration) override {
    modWeatherEvents::BeforeRiskIteration(plan_, iteration);
  }
  void PlanAfterRiskIteration(const Ref<Corvane8::Plan>& /*plan*/, Long iteration) override {
    modWeatherEvents::AfterRiskIteration(plan_, iteration);
  }
  void PlanAfterRiskAnalysis(const Ref<Corvane8::Plan>& /*plan*/) override {
    modWeatherEvents::AfterRiskAnalysis(plan_);
  }

 private:
  Ref<Corvane8::Plan> plan_;
};

TEST_F(ServedHostTest, AMovedTaskIsFollowedByTheFurtherStepWhereThePlanWantsIt) {
  modGlobal::Wire({.create_application = [this] { return Application(); }});
  host_.plan().AddTask("A", 6);
  host_.plan().AddTask("B", 9);
  host_.plan().AddTask("C", 10);
  host_.plan().Link("A", "B");
  AddTrialWeather(Plan());
  for (const bool wanted : {false, true}) {
    host_.plan().recalculate_after_move = wanted;
    host_.recorder().Clear();
    WeatherThroughCom weather(Plan());
    host_.application()->Subscribe(&weather);
    host_.RunAnalysis(20);
    host_.application()->Unsubscribe(&weather);
    EXPECT_THAT(host_.recorder().calls(), Contains(HasSubstr("RecalculateAfterMove")))
        << "a task was moved";
    if (wanted) {
      EXPECT_THAT(host_.recorder().calls(), Contains(HasSubstr("RecalculateFinish")));
    } else {
      EXPECT_THAT(host_.recorder().calls(), Not(Contains(HasSubstr("RecalculateFinish"))));
    }
  }
  modWeatherEvents::ReleaseRunState();
  modGlobal::Wire({});
}

/// A receiver of events that does what its test wants.
class Receiver final : public BareObject {
 public:
  Receiver(REFIID events, std::function<void()> hear) : events_(events), hear_(std::move(hear)) {}

  HRESULT STDMETHODCALLTYPE Invoke(DISPID /*id*/, REFIID /*interface_id*/, LCID /*locale*/,
                                   WORD /*flags*/, DISPPARAMS* /*parameters*/, VARIANT* /*result*/,
                                   EXCEPINFO* /*exception*/, UINT* /*wrong*/) override {
    hear_();
    return S_OK;
  }

 private:
  void* Find(REFIID id) override { return id == events_ ? this : BareObject::Find(id); }

  IID events_;
  std::function<void()> hear_;
};

TEST(ServedApplication, LetGoInAnEventItIsThereUntilAllHaveHeardIt) {
  const auto trial = platform::MakeRef<hostserver::TrialHost>();
  trial->NewPlan(1, 8);
  trial->OpenPlan();
  auto application = MakeCom<served::ServedApplication>(trial->host(), nullptr);
  IID events = {};
  ASSERT_EQ(application->GetConnectionInterface(&events), S_OK);
  int heard = 0;
  const auto first = MakeCom<Receiver>(events, [&] {
    ++heard;
    application = nullptr;
  });
  const auto second = MakeCom<Receiver>(events, [&] { ++heard; });
  DWORD cookie = 0;
  ASSERT_EQ(application->Advise(first.get(), &cookie), S_OK);
  ASSERT_EQ(application->Advise(second.get(), &cookie), S_OK);
  trial->host()->RaisePlanBeforeRiskAnalysis();
  EXPECT_EQ(heard, 2);
  trial->host()->RaisePlanBeforeRiskAnalysis();
  EXPECT_EQ(heard, 2) << "it has gone";
}

TEST(TrialHost, RefusesWhatItCannotDo) {
  const auto trial = platform::MakeRef<hostserver::TrialHost>();
  const auto refusal = [](const std::function<void()>& call) { return ErrorOf(call).first; };
  EXPECT_EQ(refusal([&] { trial->AddHoliday(platform::MakeDate(2027, 1, 6)); }), 5);
  EXPECT_EQ(refusal([&] { trial->AddTask("A", 1, 1, 1, 100, ""); }), 5);
  EXPECT_EQ(refusal([&] { trial->NewPlan(2, 8); }), 5);
  EXPECT_EQ(refusal([&] { trial->RunAnalysis(1, 1); }), 91);
  trial->NewPlan(1, 8);
  trial->AddHoliday(platform::MakeDate(2027, 1, 6));
  trial->AddTask("A", 1, 1, 1, 100, "");
  trial->OpenPlan();
  EXPECT_EQ(refusal([&] { trial->RunAnalysis(1, -1); }), 5);
  EXPECT_EQ(refusal([&] { trial->RunAnalysis(1, 0x1p64); }), 5);
  EXPECT_EQ(refusal([&] { trial->RunAnalysis(1, std::nan("")); }), 5);
  EXPECT_EQ(refusal([&] { trial->RunAnalysis(1, 0); }), 0);
}

/// A run with weather in a unit of 1/units_a_day days, through COM and without.
class RunInAnotherUnit : public ::testing::TestWithParam<std::int32_t> {
 protected:
  static constexpr std::int32_t kHours = 8;
  static constexpr int kIterations = 8;
  static constexpr double kSeed = 11;

  /// A duration in the plan's units.
  static double Days(double days) { return days * kHours * GetParam() / 24.0; }

  static DateRecorder RunOf(const Ref<Corvane8::Application>& application,
                            const std::function<void()>& run) {
    AddTrialWeather(application->get_ActivePlan());
    modGlobal::Wire({.create_application = [&application] { return application; }});
    host::Seams seams;
    seams.handlers = {modWeatherEvents::BeforeRiskAnalysis, modWeatherEvents::BeforeRiskIteration,
                      modWeatherEvents::AfterRiskIteration, modWeatherEvents::AfterRiskAnalysis};
    const auto nimbrel = platform::MakeRef<host::clsNimbrel>(seams);
    nimbrel->LaunchStartCorvane();
    DateRecorder recorder;
    application->Subscribe(&recorder);
    run();
    application->Unsubscribe(&recorder);
    nimbrel->LaunchStopCorvane();
    modWeatherEvents::ReleaseRunState();
    modGlobal::Wire({});
    return recorder;
  }
};

TEST_P(RunInAnotherUnit, GivesTheSameDatesThroughComBitForBit) {
  auto& control = SharedTrialProgram().control();
  control.Call("NewPlan", {GetParam(), kHours});
  control.Call("AddTask", {"A", Days(4), Days(6), Days(9), 100.0, ""});
  control.Call("AddTask", {"B", Days(3), Days(5), Days(6), 100.0, "A"});
  control.Call("AddTask", {"C", Days(8), Days(10), Days(16), 70.0, "A,B"});
  control.Call("OpenPlan");
  const DateRecorder through_com = RunOf(TrialProgram::Application(), [&] {
    control.Call("RunAnalysis", {std::int32_t{kIterations}, double{kSeed}});
  });
  const auto trial = platform::MakeRef<hostserver::TrialHost>();
  trial->NewPlan(GetParam(), kHours);
  trial->AddTask("A", Days(4), Days(6), Days(9), 100, "");
  trial->AddTask("B", Days(3), Days(5), Days(6), 100, "A");
  trial->AddTask("C", Days(8), Days(10), Days(16), 70, "A,B");
  trial->OpenPlan();
  const DateRecorder in_process =
      RunOf(trial->host(), [&] { trial->RunAnalysis(kIterations, kSeed); });

  ASSERT_EQ(through_com.dates().size(), 6U * kIterations);
  ASSERT_EQ(in_process.dates().size(), 6U * kIterations);
  for (std::size_t i = 0; i < in_process.dates().size(); ++i) {
    EXPECT_EQ(std::bit_cast<std::uint64_t>(through_com.dates()[i]),
              std::bit_cast<std::uint64_t>(in_process.dates()[i]))
        << i;
  }
}

INSTANTIATE_TEST_SUITE_P(HoursAndQuarters, RunInAnotherUnit, ::testing::Values(24, 96));

}  // namespace
}  // namespace nimbrel::com
