// The component as a host uses it: registered, created by its programmatic identifier, started,
// with the events of a run, stopped, unregistered and unloaded.

#include <nimbrel.h>

#include <algorithm>
#include <thread>
#include <vector>

#include "com/com_error.h"
#include "com/com_text.h"
#include "platform/win/wide_text.h"
#include "tests/com/bare_object.h"
#include "tests/com/component_fixture.h"

namespace nimbrel::com {
namespace {

/// A window of this title, once there is one that is shown.
HWND WaitForWindow(const wchar_t* title) {
  HWND window = nullptr;
  while (window == nullptr || !IsWindowVisible(window)) {
    Sleep(20);
    window = FindWindowW(nullptr, title);
  }
  return window;
}

TEST_F(ComponentTest, IsCreatedByItsProgrammaticIdentifier) {
  EXPECT_FALSE(IsLoaded());
  nimbrel_ = Create("Nimbrel.clsNimbrel");
  EXPECT_TRUE(IsLoaded());
  nimbrel_ = Create("nimbrel.CLSCORVANE");
}

TEST_F(ComponentTest, ARunThroughComGivesTheSameDatesBitForBit) {
  OpenTrialPlan();
  nimbrel_ = Create("Nimbrel.clsNimbrel");
  nimbrel_->Call("LaunchStartCorvane");
  const DateRecorder through_com = Run();
  nimbrel_->Call("LaunchStopCorvane");
  const DateRecorder in_process = RunInProcess(true);
  EXPECT_EQ(through_com.events(), in_process.events());
  EXPECT_EQ(through_com.dates().size(), 6U * kIterations);
  EXPECT_EQ(Bits(through_com.dates()), Bits(in_process.dates()));
  // The comparison says something: without weather the dates are others.
  EXPECT_NE(Bits(RunInProcess(false).dates()), Bits(in_process.dates()));
}

TEST_F(ComponentTest, NoEventReachesItAfterTheStop) {
  OpenTrialPlan();
  nimbrel_ = Create("Nimbrel.clsNimbrel");
  nimbrel_->Call("LaunchStartCorvane");
  nimbrel_->Call("LaunchStopCorvane");
  EXPECT_EQ(Bits(Run().dates()), Bits(RunInProcess(false).dates()));
}

TEST_F(ComponentTest, StartedTwiceItHearsEachEventOnce) {
  OpenTrialPlan();
  nimbrel_ = Create("Nimbrel.clsNimbrel");
  nimbrel_->Call("LaunchStartCorvane");
  nimbrel_->Call("LaunchStartCorvane");
  EXPECT_EQ(Bits(Run().dates()), Bits(RunInProcess(true).dates()));
  nimbrel_->Call("LaunchStopCorvane");
  EXPECT_EQ(Bits(Run().dates()), Bits(RunInProcess(false).dates()));
}

TEST_F(ComponentTest, StoppedWithoutAStartItDoesNothing) {
  nimbrel_ = Create("Nimbrel.clsNimbrel");
  nimbrel_->Call("LaunchStopCorvane");
}

TEST_F(ComponentTest, TheSubscriberCanBeDrivenByTheHostItself) {
  OpenTrialPlan();
  nimbrel_ = Create("Nimbrel.clsCorvane");
  nimbrel_->Call("StartCorvane");
  EXPECT_EQ(Bits(Run().dates()), Bits(RunInProcess(true).dates()));
  nimbrel_->Call("StopCorvane");
  EXPECT_EQ(Bits(Run().dates()), Bits(RunInProcess(false).dates()));
}

/// Calls the receivers of the component's subscriber by their names.
class CallsByName final : public Corvane8::ApplicationEvents {
 public:
  CallsByName(AutomationObject& corvane, AutomationObject& application)
      : corvane_(corvane), application_(application) {}

  void PlanBeforeRiskAnalysis(const Ref<Corvane8::Plan>& /*plan*/) override {
    corvane_.Call("m_CorvyApp_PlanBeforeRiskAnalysis", {Plan()});
  }
  void PlanBeforeRiskIteration(const Ref<Corvane8::Plan>& /*plan*/,
                               Corvane8::Long iteration) override {
    corvane_.Call("m_CorvyApp_PlanBeforeRiskIteration", {Plan(), iteration});
  }
  void PlanAfterRiskIteration(const Ref<Corvane8::Plan>& /*plan*/,
                              Corvane8::Long iteration) override {
    corvane_.Call("m_CorvyApp_PlanAfterRiskIteration", {Plan(), iteration});
  }
  void PlanAfterRiskAnalysis(const Ref<Corvane8::Plan>& /*plan*/) override {
    corvane_.Call("m_CorvyApp_PlanAfterRiskAnalysis", {Plan()});
  }

 private:
  platform::Variant Plan() { return application_.Get("ActivePlan"); }

  AutomationObject& corvane_;
  AutomationObject& application_;
};

TEST_F(ComponentTest, AHostCanCallTheReceiversItself) {
  OpenTrialPlan();
  nimbrel_ = Create("Nimbrel.clsCorvane");
  const Ref<AutomationObject> application = Create("Corvane8.Application");
  CallsByName host(*nimbrel_.get(), *application.get());
  application_->Subscribe(&host);
  EXPECT_EQ(Bits(Run().dates()), Bits(RunInProcess(true).dates()));
  application_->Unsubscribe(&host);
}

TEST_F(ComponentTest, ASubscriberThatIsStartedTwiceHearsEachEventOnce) {
  OpenTrialPlan();
  nimbrel_ = Create("Nimbrel.clsCorvane");
  nimbrel_->Call("StartCorvane");
  nimbrel_->Call("StartCorvane");
  EXPECT_EQ(Bits(Run().dates()), Bits(RunInProcess(true).dates()));
  nimbrel_->Call("StopCorvane");
  EXPECT_EQ(Bits(Run().dates()), Bits(RunInProcess(false).dates()));
}

TEST_F(ComponentTest, LetGoWhileItIsStartedItHearsNothingMore) {
  OpenTrialPlan();
  for (const auto& [identifier, start] : {std::pair("Nimbrel.clsNimbrel", "LaunchStartCorvane"),
                                          std::pair("Nimbrel.clsCorvane", "StartCorvane")}) {
    nimbrel_ = Create(identifier);
    nimbrel_->Call(start);
    nimbrel_ = nullptr;
    EXPECT_EQ(Bits(Run().dates()), Bits(RunInProcess(false).dates())) << identifier;
  }
}

TEST_F(ComponentTest, AHostThatHasEndedFailsTheNextStartAndNotTheStop) {
  nimbrel_ = Create("Nimbrel.clsNimbrel");
  nimbrel_->Call("LaunchStartCorvane");
  EndSharedTrialProgram();
  nimbrel_->Call("LaunchStopCorvane");
  EXPECT_EQ(ErrorOf([this] { nimbrel_->Call("LaunchStartCorvane"); }).first, 462);
}

TEST_F(ComponentTest, GivesBackEveryObjectOfTheHostAndGoes) {
  OpenTrialPlan();
  application_ = nullptr;
  const std::int32_t before = HeldObjects();
  nimbrel_ = Create("Nimbrel.clsNimbrel");
  nimbrel_->Call("LaunchStartCorvane");
  program_.control().Call("RunAnalysis", {kIterations, kSeed});
  nimbrel_->Call("LaunchStopCorvane");
  // What the run has found in the plan stays as long as the component has an object.
  EXPECT_GT(HeldObjects(), before + 1);
  nimbrel_ = nullptr;
  // With the last one it goes, before anybody asks whether the DLL can be unloaded. What is never
  // let go is the one reference to the application, whose members stand behind an object of their
  // own.
  EXPECT_TRUE(IsLoaded());
  EXPECT_EQ(HeldObjects(), before + 1);
  UnloadUnused();
  EXPECT_FALSE(IsLoaded());
  EXPECT_EQ(HeldObjects(), before + 1);
}

TEST_F(ComponentTest, AQuestionFromAnotherThreadTakesNothingAway) {
  OpenTrialPlan();
  nimbrel_ = Create("Nimbrel.clsNimbrel");
  nimbrel_->Call("LaunchStartCorvane");
  program_.control().Call("RunAnalysis", {kIterations, kSeed});
  const std::int32_t held = HeldObjects();
  HRESULT answer = E_FAIL;
  std::thread([&answer] { answer = CallExport("DllCanUnloadNow"); }).join();
  EXPECT_EQ(answer, S_FALSE);
  EXPECT_EQ(HeldObjects(), held);
  nimbrel_ = nullptr;
  std::thread([&answer] { answer = CallExport("DllCanUnloadNow"); }).join();
  EXPECT_EQ(answer, S_OK);
}

/// The heaps of the process: that of the system's libraries, that of the runtime of C++, others.
std::vector<HANDLE> Heaps() {
  std::vector<HANDLE> heaps(GetProcessHeaps(0, nullptr));
  heaps.resize(std::min<std::size_t>(
      heaps.size(), GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data())));
  return heaps;
}

/// Blocks of a heap that are in use.
std::ptrdiff_t BlocksInUse(HANDLE heap) {
  std::ptrdiff_t blocks = 0;
  PROCESS_HEAP_ENTRY entry = {};
  HeapLock(heap);
  while (HeapWalk(heap, &entry) != FALSE) {
    blocks += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? 1 : 0;
  }
  HeapUnlock(heap);
  return blocks;
}

TEST_F(ComponentTest, StartsRunsAndStopsLeaveNoMemoryBehind) {
  OpenTrialPlan();
  const Ref<AutomationObject> keeps_it_loaded = Create("Nimbrel.clsNimbrel");
  const auto once = [this] {
    const Ref<AutomationObject> nimbrel = Create("Nimbrel.clsNimbrel");
    nimbrel->Call("LaunchStartCorvane");
    program_.control().Call("RunAnalysis", {3, kSeed});
    nimbrel->Call("LaunchStopCorvane");
  };
  once();
  // A block that is left behind each time makes as many in every part, and so in the middle one. In
  // the heap of the system's libraries dozens come and go, in one part or another.
  constexpr std::size_t kParts = 5;
  constexpr int kTimes = 5;
  const std::vector<HANDLE> heaps = Heaps();
  ASSERT_GE(heaps.size(), 2U);
  std::vector<std::ptrdiff_t> before(heaps.size());
  std::vector growth(heaps.size(), std::vector<std::ptrdiff_t>(kParts));
  for (std::size_t part = 0; part < kParts; ++part) {
    std::transform(heaps.begin(), heaps.end(), before.begin(), BlocksInUse);
    for (int i = 0; i < kTimes; ++i) {
      once();
    }
    for (std::size_t heap = 0; heap < heaps.size(); ++heap) {
      growth[heap][part] = BlocksInUse(heaps[heap]) - before[heap];
    }
  }
  for (std::vector<std::ptrdiff_t>& of_heap : growth) {
    std::sort(of_heap.begin(), of_heap.end());
    EXPECT_LT(of_heap[kParts / 2], kTimes) << ::testing::PrintToString(growth);
  }
}

TEST_F(ComponentTest, IsNotUnloadedWhileAnObjectOfItIsHeld) {
  nimbrel_ = Create("Nimbrel.clsNimbrel");
  UnloadUnused();
  EXPECT_TRUE(IsLoaded());
}

TEST_F(ComponentTest, AnErrorInAHandlerReachesTheHostWithItsNumberAndText) {
  OpenTrialPlan();
  application_->get_ActivePlan()->get_Tasks()->Remove("WEATHER");
  nimbrel_ = Create("Nimbrel.clsNimbrel");
  nimbrel_->Call("LaunchStartCorvane");
  const auto expected =
      ErrorOf([this] { application_->get_ActivePlan()->get_Tasks()->Item("WEATHER"); });
  ASSERT_NE(expected.first, 0);
  const auto raised = ErrorOf([this] {
    program_.control().Call("RunAnalysis", {kIterations, kSeed});
  });
  EXPECT_EQ(raised, expected);
  nimbrel_->Call("LaunchStopCorvane");
}

TEST_F(ComponentTest, LeavesAnErrorObjectForCallersByPosition) {
  // The host is not there, so that the start fails.
  UnregisterTrialHost();
  ComPtr<IDispatch> nimbrel = CreateByIdentifier("Nimbrel.clsNimbrel");
  const auto by_position = nimbrel.As<_clsNimbrel>(IID__clsNimbrel);
  ASSERT_TRUE(by_position);
  EXPECT_EQ(by_position->LaunchStartCorvane(), ToHResult(platform::RuntimeError(429, "")));
  ComPtr<IErrorInfo> error;
  ASSERT_EQ(GetErrorInfo(0, error.Receive()), S_OK);
  BSTR text = nullptr;
  ASSERT_EQ(error->GetDescription(&text), S_OK);
  EXPECT_EQ(TakeText(text), "Cannot create the object Corvane8.Application");
  ASSERT_EQ(error->GetSource(&text), S_OK);
  EXPECT_EQ(TakeText(text), "Nimbrel");
  // What an earlier call has left is not taken for an error of the next one.
  ASSERT_EQ(SetErrorInfo(0, error.get()), S_OK);
  EXPECT_EQ(by_position->LaunchStopCorvane(), S_OK);
  EXPECT_EQ(GetErrorInfo(0, error.Receive()), S_FALSE);
  const auto support = nimbrel.As<ISupportErrorInfo>(IID_ISupportErrorInfo);
  ASSERT_TRUE(support);
  ComPtr<ITypeInfo> info;
  ASSERT_EQ(nimbrel->GetTypeInfo(0, 0, info.Receive()), S_OK);
  TYPEATTR* attributes = nullptr;
  ASSERT_EQ(info->GetTypeAttr(&attributes), S_OK);
  EXPECT_EQ(support->InterfaceSupportsErrorInfo(attributes->guid), S_OK);
  EXPECT_EQ(support->InterfaceSupportsErrorInfo(IID_IDispatch), S_FALSE);
  info->ReleaseTypeAttr(attributes);
  RegisterTrialHost();
}

/// Calls an operation without arguments by its name, as IDispatch has it.
HRESULT InvokeByName(IDispatch& object, const wchar_t* name, EXCEPINFO& exception) {
  auto* text = const_cast<wchar_t*>(name);
  DISPID id = DISPID_UNKNOWN;
  const HRESULT found = object.GetIDsOfNames(IID_NULL, &text, 1, 0, &id);
  DISPPARAMS none = {};
  return FAILED(found)
             ? found
             : object.Invoke(id, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, &exception, nullptr);
}

TEST_F(ComponentTest, FillsTheExceptionRecordForCallersByName) {
  UnregisterTrialHost();
  const ComPtr<IDispatch> nimbrel = CreateByIdentifier("Nimbrel.clsNimbrel");
  EXCEPINFO exception = {};
  EXPECT_EQ(InvokeByName(*nimbrel.get(), L"LaunchStartCorvane", exception), DISP_E_EXCEPTION);
  EXPECT_EQ(static_cast<std::uint32_t>(exception.scode), 0x800A0000U + 429U);
  EXPECT_EQ(TakeText(exception.bstrDescription), "Cannot create the object Corvane8.Application");
  EXPECT_EQ(TakeText(exception.bstrSource), "Nimbrel");
  SysFreeString(exception.bstrHelpFile);
  RegisterTrialHost();
}

TEST_F(ComponentTest, AfterAFailedStartTheNextOneDoesNothingUntilAStop) {
  OpenTrialPlan();
  UnregisterTrialHost();
  nimbrel_ = Create("Nimbrel.clsNimbrel");
  EXPECT_EQ(ErrorOf([this] { nimbrel_->Call("LaunchStartCorvane"); }).first, 429);
  RegisterTrialHost();
  nimbrel_->Call("LaunchStartCorvane");
  EXPECT_EQ(Bits(Run().dates()), Bits(RunInProcess(false).dates()));
  nimbrel_->Call("LaunchStopCorvane");
  nimbrel_->Call("LaunchStartCorvane");
  EXPECT_EQ(Bits(Run().dates()), Bits(RunInProcess(true).dates()));
}

TEST_F(ComponentTest, AReceiverThatIsCalledByPositionLeavesItsError) {
  OpenTrialPlan();
  application_->get_ActivePlan()->get_Tasks()->Remove("WEATHER");
  const auto expected =
      ErrorOf([this] { application_->get_ActivePlan()->get_Tasks()->Item("WEATHER"); });
  ASSERT_NE(expected.first, 0);
  const Dispatch application(CreateByIdentifier("Corvane8.Application"), "", nullptr);
  const ComVariant plan = application.Get("ActivePlan");
  const auto corvane = CreateByIdentifier("Nimbrel.clsCorvane").As<_clsCorvane>(IID__clsCorvane);
  ASSERT_TRUE(corvane);
  const HRESULT result = corvane->m_CorvyApp_PlanBeforeRiskAnalysis(plan.get()->pdispVal);
  EXPECT_EQ(ErrorOf([&] { Check(result, "PlanBeforeRiskAnalysis"); }), expected);
  // A plan without members is none; Nothing is one without weather.
  const auto mute = MakeCom<BareObject>();
  EXPECT_EQ(corvane->m_CorvyApp_PlanAfterRiskIteration(mute.get(), 1),
            ToHResult(platform::RuntimeError(438, "")));
  EXPECT_EQ(corvane->m_CorvyApp_PlanBeforeRiskIteration(nullptr, 1), S_OK);
  EXPECT_EQ(corvane->m_CorvyApp_PlanAfterRiskAnalysis(nullptr), S_OK);
}

TEST_F(ComponentTest, MainWithoutAPlanTellsTheUserSo) {
  program_.control().Call("ClosePlan");
  nimbrel_ = Create("Nimbrel.clsNimbrel");
  std::wstring text(100, L'\0');
  for (int call = 0; call < 2; ++call) {
    std::thread user([&text] {
      const HWND box = WaitForWindow(L"Weather Modeling");
      constexpr int kText = 0xFFFF;
      text.resize(static_cast<std::size_t>(
          GetDlgItemTextW(box, kText, text.data(), static_cast<int>(text.size()))));
      PostMessageW(box, WM_COMMAND, IDOK, 0);
    });
    nimbrel_->Call("Main");
    user.join();
    EXPECT_EQ(platform::ToUtf8(text), "There is no active plan.");
    text.resize(100);
  }
}

TEST_F(ComponentTest, MainShowsTheDialogUntilItIsClosed) {
  OpenTrialPlan();
  nimbrel_ = Create("Nimbrel.clsNimbrel");
  bool was_shown = false;
  std::thread user([&was_shown] {
    const HWND window = WaitForWindow(L"Weather Modeling");
    was_shown = IsWindowVisible(window) != FALSE;
    PostMessageW(window, WM_CLOSE, 0, 0);
  });
  nimbrel_->Call("Main");
  user.join();
  EXPECT_TRUE(was_shown);
}

TEST_F(ComponentTest, TheExampleRuns) {
  const std::string output =
      OutputOf(L"cscript //nologo \"Z:" + platform::ToWide(NIMBREL_SOURCE_DIR) +
               L"/examples/windows/weather_run.vbs\"");
  EXPECT_EQ(output, "Weather moves the finish.\r\nStopped, it moves nothing.\r\n");
}

}  // namespace
}  // namespace nimbrel::com
