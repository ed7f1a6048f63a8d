#include "tests/com/component_fixture.h"

#include <bit>

#include "host/cls_nimbrel.h"
#include "host/mod_global.h"
#include "hostserver/trial_host.h"
#include "simulation/mod_weather_events.h"

namespace nimbrel::com {

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

void UnloadUnused() {
  CoFreeUnusedLibrariesEx(0, 0);
}

ComponentTest::ComponentTest() {
  EXPECT_EQ(CallExport("DllRegisterServer"), S_OK);
}

ComponentTest::~ComponentTest() {
  nimbrel_ = nullptr;
  UnloadUnused();
  EXPECT_FALSE(IsLoaded());
  EXPECT_EQ(CallExport("DllUnregisterServer"), S_OK);
}

Ref<AutomationObject> ComponentTest::Create(const std::string& identifier) {
  return ComServers().CreateObject(identifier);
}

void ComponentTest::OpenTrialPlan() {
  auto& control = program_.control();
  control.Call("NewPlan", {1, 8});
  control.Call("AddTask", {"A", 4.0, 6.0, 9.0, 100.0, ""});
  control.Call("AddTask", {"B", 3.0, 5.0, 6.0, 100.0, "A"});
  control.Call("AddTask", {"C", 8.0, 10.0, 16.0, 70.0, "A,B"});
  control.Call("OpenPlan");
  application_ = TrialProgram::Application();
  AddTrialWeather(application_->get_ActivePlan());
}

DateRecorder ComponentTest::Run() {
  DateRecorder recorder;
  application_->Subscribe(&recorder);
  program_.control().Call("RunAnalysis", {kIterations, kSeed});
  application_->Unsubscribe(&recorder);
  return recorder;
}

std::int32_t ComponentTest::HeldObjects() const {
  return program_.control().Get("ObjectsHeld").ToLong(platform::DefaultLocale());
}

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

}  // namespace nimbrel::com
