// A program that other programs find as "Excel.Application". Beside the members of Excel its
// application has four of its own: TestLog is what was asked of it, one step a line; TestProcess
// is its process; TestFail makes the next step fail that has a text in it; TestRefuse has it refuse
// so many calls, as Excel does while a cell is being edited.

#include <string>
#include <utility>

#include "com/class_factory.h"
#include "com/registration.h"
#include "platform/locale.h"
#include "platform/text.h"
#include "tests/com/excel/served_automation.h"
#include "tests/support/automation/recording_excel.h"

namespace nimbrel::com {
namespace {

using platform::AutomationObject;
using platform::EqualsIgnoreCase;
using platform::Ref;
using platform::Variant;

constexpr CLSID kClass = {
    0x3c1d5a70, 0x94b2, 0x4e0f, {0x8b, 0x57, 0x21, 0x6a, 0xd0, 0xe3, 0x4c, 0x95}};

DWORD g_main_thread = 0;

class TestedApplication final : public AutomationObject {
 public:
  TestedApplication(recording::Recorder& recorder, Ref<AutomationObject> excel)
      : recorder_(recorder), excel_(std::move(excel)) {}

 protected:
  Variant DoGet(std::string_view member, std::span<const Variant> arguments) override {
    if (EqualsIgnoreCase(member, "TestProcess")) {
      return static_cast<std::int32_t>(GetCurrentProcessId());
    }
    if (EqualsIgnoreCase(member, "TestLog")) {
      std::string log;
      for (const std::string& step : recorder_.calls()) {
        log += step + "\n";
      }
      return log;
    }
    return GetFrom(*excel_, member, arguments);
  }
  void DoPut(std::string_view member, const Variant& value,
             std::span<const Variant> arguments) override {
    PutTo(*excel_, member, value, arguments);
  }
  Variant DoCall(std::string_view member, std::span<const Variant> arguments) override {
    if (EqualsIgnoreCase(member, "TestFail")) {
      recorder_.FailOn(*arguments[0].Get<std::string>());
      return {};
    }
    if (EqualsIgnoreCase(member, "TestRefuse")) {
      RefuseCalls(arguments[0].ToLong(platform::DefaultLocale()), "TestRefuse");
      return {};
    }
    return CallOn(*excel_, member, arguments);
  }

 private:
  recording::Recorder& recorder_;
  Ref<AutomationObject> excel_;
};

void Serve() {
  g_main_thread = GetCurrentThreadId();
  recording::Recorder recorder;
  recording::RecordingExcel excel(recorder);
  const auto factory = MakeCom<ClassFactory>([&] {
    return ServeAutomation(platform::MakeRef<TestedApplication>(
                               recorder, excel.CreateObject("Excel.Application")))
        .As<IUnknown>(IID_IUnknown);
  });
  DWORD cookie = 0;
  Check(CoRegisterClassObject(kClass, factory.get(), CLSCTX_LOCAL_SERVER, REGCLS_MULTIPLEUSE,
                              &cookie),
        "class");
  Module::WhenAtRest([] { PostThreadMessageW(g_main_thread, WM_QUIT, 0, 0); });
  MSG message;
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    DispatchMessageW(&message);
  }
  CoRevokeClassObject(cookie);
}

int RunProgram(std::string_view arguments) {
  const ServerEntry entry = {.path = OwnPath(),
                             .in_process = false,
                             .classes = {{kClass, L"Excel.Application", L"Stand-in for Excel"}}};
  HRESULT result = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  if (arguments == "/RegServer") {
    result = RegisterServer(entry, Scope::kMachine);
  } else if (arguments == "/UnregServer") {
    result = UnregisterServer(entry, Scope::kMachine);
  } else if (SUCCEEDED(result)) {
    result = Guarded(Serve, LeaveErrorInfo);
  }
  CoUninitialize();
  return FAILED(result) ? 1 : 0;
}

}  // namespace
}  // namespace nimbrel::com

int WINAPI WinMain(HINSTANCE /*instance*/, HINSTANCE /*previous*/, char* arguments, int /*show*/) {
  return nimbrel::com::RunProgram(nimbrel::platform::Trim(arguments));
}
