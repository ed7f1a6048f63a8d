// The component as a host uses it: registered, created by its programmatic identifier, started,
// with the events of a run, stopped, unregistered and unloaded.

#include <gmock/gmock.h>
#include <nimbrel.h>

#include <bit>
#include <cstdint>
#include <map>
#include <numeric>
#include <thread>

#include "com/com_error.h"
#include "com/com_text.h"
#include "com/registration.h"
#include "host/cls_nimbrel.h"
#include "host/mod_global.h"
#include "hostserver/trial_host.h"
#include "platform/win/wide_text.h"
#include "simulation/mod_weather_events.h"
#include "tests/com/com_test.h"
#include "tests/com/weather_trial.h"

namespace nimbrel::com {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr const wchar_t* kDll = L"Nimbrel.dll";
constexpr int kIterations = 12;
constexpr double kSeed = 7;

HRESULT CallExport(const char* name) {
  const HMODULE dll = LoadLibraryW(ProgramBeside(kDll).c_str());
  if (dll == nullptr) {
    return E_FAIL;
  }
  const auto function =
      reinterpret_cast<HRESULT(WINAPI*)()>(reinterpret_cast<void*>(GetProcAddress(dll, name)));
  const HRESULT result = function == nullptr ? E_NOINTERFACE : function();
  FreeLibrary(dll);
  return result;
}

bool IsLoaded() {
  return GetModuleHandleW(kDll) != nullptr;
}

std::wstring ClassOf(const wchar_t* identifier) {
  wchar_t id[64] = {};
  LONG size = sizeof(id);
  return RegQueryValueW(HKEY_CLASSES_ROOT, (std::wstring(identifier) + L"\\CLSID").c_str(), id,
                        &size) == ERROR_SUCCESS
             ? id
             : L"";
}

/// A window of this title, once there is one that is shown.
HWND WaitForWindow(const wchar_t* title) {
  HWND window = nullptr;
  while (window == nullptr || !IsWindowVisible(window)) {
    Sleep(20);
    window = FindWindowW(nullptr, title);
  }
  return window;
}

/// The registered component and the stand-in host.
class ComponentTest : public ::testing::Test {
 protected:
  ComponentTest() { EXPECT_EQ(CallExport("DllRegisterServer"), S_OK); }
  ~ComponentTest() override {
    nimbrel_ = nullptr;
    CoFreeUnusedLibrariesEx(0, 0);
    EXPECT_FALSE(IsLoaded());
    EXPECT_EQ(CallExport("DllUnregisterServer"), S_OK);
  }

  static Ref<AutomationObject> Create(const std::string& identifier) {
    return ComServers().CreateObject(identifier);
  }
  void OpenTrialPlan() {
    auto& control = program_.control();
    control.Call("NewPlan", {1, 8});
    control.Call("AddTask", {"A", 4.0, 6.0, 9.0, 100.0, ""});
    control.Call("AddTask", {"B", 3.0, 5.0, 6.0, 100.0, "A"});
    control.Call("AddTask", {"C", 8.0, 10.0, 16.0, 70.0, "A,B"});
    control.Call("OpenPlan");
    application_ = TrialProgram::Application();
    AddTrialWeather(application_->get_ActivePlan());
  }
  /// Runs with the recorder behind whoever is subscribed.
  DateRecorder Run() {
    DateRecorder recorder;
    application_->Subscribe(&recorder);
    program_.control().Call("RunAnalysis", {kIterations, kSeed});
    application_->Unsubscribe(&recorder);
    return recorder;
  }

  TrialProgram& program_ = SharedTrialProgram();
  Ref<Corvane8::Application> application_;
  Ref<AutomationObject> nimbrel_;
};

/// The same run without COM, with or without the add-in.
DateRecorder RunInProcess(bool weather) {
  const auto trial = platform::MakeRef<hostserver::TrialHost>();
  trial->NewPlan(1, 8);
  trial->AddTask("A", 4, 6, 9, 100, "");
  trial->AddTask("B", 3, 5, 6, 100, "A");
  trial->AddTask("C", 8, 10, 16, 70, "A,B");
  trial->OpenPlan();
  AddTrialWeather(trial->host()->get_ActivePlan());
  modGlobal::Wire({.create_application = [&trial] { return trial->host(); }});
  host::Seams seams;
  seams.handlers = {modWeatherEvents::BeforeRiskAnalysis, modWeatherEvents::BeforeRiskIteration,
                    modWeatherEvents::AfterRiskIteration, modWeatherEvents::AfterRiskAnalysis};
  const auto nimbrel = platform::MakeRef<host::clsNimbrel>(seams);
  if (weather) {
    nimbrel->LaunchStartCorvane();
  }
  DateRecorder recorder;
  trial->host()->Subscribe(&recorder);
  trial->RunAnalysis(kIterations, kSeed);
  trial->host()->Unsubscribe(&recorder);
  nimbrel->LaunchStopCorvane();
  modWeatherEvents::ReleaseRunState();
  modGlobal::Wire({});
  return recorder;
}

std::vector<std::uint64_t> Bits(const std::vector<double>& values) {
  std::vector<std::uint64_t> bits;
  for (const double value : values) {
    bits.push_back(std::bit_cast<std::uint64_t>(value));
  }
  return bits;
}

TEST_F(ComponentTest, IsCreatedByItsProgrammaticIdentifier) {
  EXPECT_FALSE(IsLoaded());
  nimbrel_ = Create("Nimbrel.clsNimbrel");
  EXPECT_TRUE(IsLoaded());
  nimbrel_ = Create("nimbrel.CLSCORVANE");
}

TEST_F(ComponentTest, IsUnknownOnceItIsUnregistered) {
  EXPECT_NE(ClassOf(L"Nimbrel.clsNimbrel"), L"");
  ASSERT_EQ(CallExport("DllUnregisterServer"), S_OK);
  EXPECT_EQ(ClassOf(L"Nimbrel.clsNimbrel"), L"");
  EXPECT_EQ(ClassOf(L"Nimbrel.clsCorvane"), L"");
  EXPECT_EQ(ErrorOf([] { Create("Nimbrel.clsNimbrel"); }).first, 429);
}

bool HasClassesKey(const std::wstring& key) {
  HKEY opened = nullptr;
  const bool is_there =
      RegOpenKeyExW(HKEY_CLASSES_ROOT, key.c_str(), 0, KEY_READ, &opened) == ERROR_SUCCESS;
  RegCloseKey(opened);
  return is_there;
}

constexpr const wchar_t* kInterfaces[] = {L"Interface\\{5EBDCD03-0049-5C27-B43A-29E3ED1B75F9}",
                                          L"Interface\\{DA10606F-C100-5127-A18E-DBE46A7FC773}"};
const std::wstring kLibrary = L"TypeLib\\{74CDF0A1-027F-5FF5-8739-CA1D74C7F12E}";
const std::wstring kOwnWidth =
    kLibrary + (sizeof(void*) == 8 ? L"\\1.0\\0\\win64" : L"\\1.0\\0\\win32");
const std::wstring kOtherWidth =
    kLibrary + (sizeof(void*) == 8 ? L"\\1.0\\0\\win32" : L"\\1.0\\0\\win64");

TEST_F(ComponentTest, UnregisteredItLeavesNoInterfaceAndNoLibrary) {
  for (const wchar_t* key : kInterfaces) {
    EXPECT_TRUE(HasClassesKey(key));
  }
  EXPECT_TRUE(HasClassesKey(kOwnWidth));
  ASSERT_EQ(CallExport("DllUnregisterServer"), S_OK);
  for (const wchar_t* key : kInterfaces) {
    EXPECT_FALSE(HasClassesKey(key));
  }
  EXPECT_FALSE(HasClassesKey(kLibrary));
}

TEST_F(ComponentTest, UnregisteredItLeavesTheLibraryOfTheOtherWidth) {
  HKEY other = nullptr;
  ASSERT_EQ(RegCreateKeyW(HKEY_CLASSES_ROOT, kOtherWidth.c_str(), &other), ERROR_SUCCESS);
  RegCloseKey(other);
  ASSERT_EQ(CallExport("DllUnregisterServer"), S_OK);
  EXPECT_FALSE(HasClassesKey(kOwnWidth));
  EXPECT_TRUE(HasClassesKey(kOtherWidth));
  RegDeleteTreeW(HKEY_CLASSES_ROOT, kLibrary.c_str());
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
  const auto held = [this] {
    return program_.control().Get("ObjectsHeld").ToLong(platform::DefaultLocale());
  };
  const std::int32_t before = held();
  nimbrel_ = Create("Nimbrel.clsNimbrel");
  nimbrel_->Call("LaunchStartCorvane");
  program_.control().Call("RunAnalysis", {kIterations, kSeed});
  nimbrel_->Call("LaunchStopCorvane");
  nimbrel_ = nullptr;
  EXPECT_TRUE(IsLoaded());
  CoFreeUnusedLibrariesEx(0, 0);
  EXPECT_FALSE(IsLoaded());
  // What is never let go is the one reference to the application, whose members stand behind an
  // object of their own.
  EXPECT_EQ(held(), before + 1);
}

/// Blocks of memory that the process has in use.
std::ptrdiff_t BlocksInUse() {
  const HANDLE heap = GetProcessHeap();
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
    program_.control().Call("RunAnalysis", {kIterations, kSeed});
    nimbrel->Call("LaunchStopCorvane");
  };
  constexpr int kTimes = 10;
  once();
  once();
  const std::ptrdiff_t before = BlocksInUse();
  for (int i = 0; i < kTimes; ++i) {
    once();
  }
  // One block that is left behind each time would make as many.
  EXPECT_LT(BlocksInUse() - before, kTimes);
}

TEST_F(ComponentTest, IsNotUnloadedWhileAnObjectOfItIsHeld) {
  nimbrel_ = Create("Nimbrel.clsNimbrel");
  CoFreeUnusedLibrariesEx(0, 0);
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

/// Where the operations stand in the table of the interface, in the order of their numbers.
std::vector<std::size_t> PlacesOf(ITypeInfo& info) {
  std::map<MEMBERID, std::size_t> places;
  FUNCDESC* function = nullptr;
  for (UINT i = 0; SUCCEEDED(info.GetFuncDesc(i, &function)); ++i) {
    // Those of IDispatch have numbers above.
    if (function->memid < 0x10000) {
      places[function->memid] = static_cast<std::size_t>(function->oVft) / sizeof(void*);
    }
    info.ReleaseFuncDesc(function);
  }
  std::vector<std::size_t> in_order;
  for (const auto& [id, place] : places) {
    in_order.push_back(place);
  }
  return in_order;
}

std::vector<std::size_t> PlacesFrom(std::size_t first, std::size_t count) {
  std::vector<std::size_t> places(count);
  std::iota(places.begin(), places.end(), first);
  return places;
}

TEST_F(ComponentTest, HasItsOperationsInTheirOrder) {
  const auto names_of = [](const std::string& identifier) {
    const ComPtr<IDispatch> object = CreateByIdentifier(identifier);
    ComPtr<ITypeInfo> info;
    EXPECT_EQ(object->GetTypeInfo(0, 0, info.Receive()), S_OK);
    std::vector<std::string> names;
    for (DISPID id = 1; id <= 6; ++id) {
      BSTR name = nullptr;
      UINT count = 0;
      if (SUCCEEDED(info->GetNames(id, &name, 1, &count)) && count == 1) {
        names.push_back(platform::ToUtf8(name));
        SysFreeString(name);
      }
    }
    // Behind the seven of IDispatch.
    EXPECT_EQ(PlacesOf(*info.get()), PlacesFrom(7, names.size())) << identifier;
    return names;
  };
  EXPECT_THAT(names_of("Nimbrel.clsNimbrel"),
              ElementsAre("Main", "LaunchStartCorvane", "LaunchStopCorvane"));
  EXPECT_THAT(names_of("Nimbrel.clsCorvane"),
              ElementsAre("StartCorvane", "StopCorvane", "m_CorvyApp_PlanAfterRiskAnalysis",
                          "m_CorvyApp_PlanAfterRiskIteration", "m_CorvyApp_PlanBeforeRiskAnalysis",
                          "m_CorvyApp_PlanBeforeRiskIteration"));
}

TEST_F(ComponentTest, ExportsTheFourFunctionsUndecoratedAndNothingElse) {
  const HMODULE dll = LoadLibraryW(ProgramBeside(kDll).c_str());
  ASSERT_NE(dll, nullptr);
  const auto* base = reinterpret_cast<const BYTE*>(dll);
  const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
  const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
  const auto* exports = reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(
      base + headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT].VirtualAddress);
  const auto* offsets = reinterpret_cast<const DWORD*>(base + exports->AddressOfNames);
  std::vector<std::string> names;
  for (DWORD i = 0; i < exports->NumberOfNames; ++i) {
    names.emplace_back(reinterpret_cast<const char*>(base + offsets[i]));
  }
  EXPECT_EQ(exports->NumberOfFunctions, 4U);
  EXPECT_THAT(names, ElementsAre("DllCanUnloadNow", "DllGetClassObject", "DllRegisterServer",
                                 "DllUnregisterServer"));
  FreeLibrary(dll);
}

}  // namespace
}  // namespace nimbrel::com
