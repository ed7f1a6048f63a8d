// A host to try the component with. /RegServer and /UnregServer enter it in the registry and take
// it out; COM starts it with -Embedding, and it ends with the last object that it has handed out.

#include <corvane8.h>

#include <array>
#include <string>

#include "com/class_factory.h"
#include "com/registration.h"
#include "com/served/served_application.h"
#include "com/served/served_object.h"
#include "hostserver/trial_host.h"
#include "platform/text.h"
#include "platform/win/wide_text.h"

namespace nimbrel::hostserver {
namespace {

namespace served = com::served;
using com::ComPtr;
using platform::Ref;

DWORD g_main_thread = 0;

void EndProgram() {
  PostThreadMessageW(g_main_thread, WM_QUIT, 0, 0);
}

com::ServerEntry Entry() {
  return {.path = com::OwnPath(),
          .in_process = false,
          .library = LIBID_Corvane8,
          .classes = {{CLSID_Application, L"Corvane8.Application", L"Stand-in host"},
                      {CLSID_TrialHost, L"Corvane8.TrialHost", L"Trials of the stand-in host"}}};
}

/// What a trial is made with, as others see it: the host's operations and those of the program.
class Trial final : public platform::Object {
 public:
  explicit Trial(Ref<TrialHost> host) : host_(std::move(host)) {}

  void NewPlan(std::int32_t time_unit, std::int32_t hours) { host_->NewPlan(time_unit, hours); }
  void AddHoliday(platform::Date day) { host_->AddHoliday(day); }
  void AddTask(std::string_view id, double minimum, double likely, double maximum,
               double probability, std::string_view predecessors) {
    host_->AddTask(id, minimum, likely, maximum, probability, predecessors);
  }
  void OpenPlan() { host_->OpenPlan(); }
  void ClosePlan() { host_->ClosePlan(); }
  void RunAnalysis(std::int32_t iterations, double seed) { host_->RunAnalysis(iterations, seed); }
  std::int32_t get_ObjectsHeld() { return served::ObjectsHeld(); }
  void Quit() { EndProgram(); }
  platform::Date get_MeanFinish() { return host_->mean_finish(); }

 private:
  Ref<TrialHost> host_;
};

constexpr std::array kTrialMembers = {
    served::Method<&Trial::NewPlan>("NewPlan"),
    served::Method<&Trial::AddHoliday>("AddHoliday"),
    served::Method<&Trial::AddTask>("AddTask"),
    served::Method<&Trial::OpenPlan>("OpenPlan"),
    served::Method<&Trial::ClosePlan>("ClosePlan"),
    served::Method<&Trial::RunAnalysis>("RunAnalysis"),
    served::Get<&Trial::get_ObjectsHeld>("ObjectsHeld"),
    served::Method<&Trial::Quit>("Quit"),
    served::Get<&Trial::get_MeanFinish>("MeanFinish"),
};
constexpr served::ClassTable kTrialTable = {"TrialHost", kTrialMembers, nullptr, nullptr};

/// A class that others can make objects of while this lives.
class OfferedClass {
 public:
  OfferedClass(REFCLSID id, com::ClassFactory::Make make)
      : factory_(com::MakeCom<com::ClassFactory>(std::move(make))) {
    com::Check(CoRegisterClassObject(id, factory_.get(), CLSCTX_LOCAL_SERVER, REGCLS_MULTIPLEUSE,
                                     &cookie_),
               "class");
  }
  ~OfferedClass() { CoRevokeClassObject(cookie_); }
  OfferedClass(const OfferedClass&) = delete;
  OfferedClass& operator=(const OfferedClass&) = delete;

 private:
  ComPtr<com::ClassFactory> factory_;
  DWORD cookie_ = 0;
};

ComPtr<ITypeInfo> ApplicationClass() {
  ComPtr<ITypeLib> library;
  ComPtr<ITypeInfo> info;
  com::Check(LoadTypeLibEx(com::OwnPath().c_str(), REGKIND_NONE, library.Receive()), "library");
  com::Check(library->GetTypeInfoOfGuid(CLSID_Application, info.Receive()), "library");
  return info;
}

void Serve() {
  g_main_thread = GetCurrentThreadId();
  const auto host = platform::MakeRef<TrialHost>();
  const ComPtr<ITypeInfo> application_class = ApplicationClass();
  const OfferedClass application(CLSID_Application, [&] {
    return com::MakeCom<served::ServedApplication>(host->host(), application_class)
        .As<IUnknown>(IID_IUnknown);
  });
  const OfferedClass trial(CLSID_TrialHost, [&] {
    return served::Serve(platform::MakeRef<Trial>(host), kTrialTable).As<IUnknown>(IID_IUnknown);
  });
  com::Module::WhenAtRest(EndProgram);
  MSG message;
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

int RunProgram(std::string_view arguments) {
  const auto asks = [arguments](std::string_view option) {
    return platform::EqualsIgnoreCase(platform::Trim(arguments), option);
  };
  HRESULT result = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  if (SUCCEEDED(result)) {
    if (asks("/RegServer")) {
      result = com::ForMachineOrUser(
          [](com::Scope scope) { return com::RegisterServer(Entry(), scope); });
    } else if (asks("/UnregServer")) {
      result = com::ForUserAndMachine(
          [](com::Scope scope) { return com::UnregisterServer(Entry(), scope); });
    } else {
      result = com::Guarded(Serve, com::LeaveErrorInfo);
    }
    CoUninitialize();
  }
  return FAILED(result) ? 1 : 0;
}

}  // namespace
}  // namespace nimbrel::hostserver

int WINAPI WinMain(HINSTANCE /*instance*/, HINSTANCE /*previous*/, char* arguments, int /*show*/) {
  return nimbrel::hostserver::RunProgram(arguments);
}
