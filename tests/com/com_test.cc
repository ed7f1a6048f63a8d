#include "tests/com/com_test.h"

#include <memory>
#include <stdexcept>

#include "com/registration.h"
#include "platform/runtime_error.h"

namespace nimbrel::com {

std::wstring ProgramBeside(const std::wstring& name) {
  const std::wstring own = OwnPath();
  return own.substr(0, own.rfind(L'\\') + 1) + name;
}

namespace {

/// `output` null: the program has this one's.
DWORD Run(const std::wstring& command, HANDLE output) {
  std::wstring line = command;
  STARTUPINFOW start = {};
  start.cb = sizeof(start);
  if (output != nullptr) {
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = output;
    start.hStdError = output;
  }
  PROCESS_INFORMATION process = {};
  if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, output != nullptr, 0, nullptr, nullptr,
                     &start, &process) == FALSE) {
    throw std::runtime_error("a program cannot be started");
  }
  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD code = 0;
  GetExitCodeProcess(process.hProcess, &code);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return code;
}

}  // namespace

DWORD RunAndWait(const std::wstring& command) {
  return Run(command, nullptr);
}

std::string OutputOf(const std::wstring& command) {
  SECURITY_ATTRIBUTES inherited = {sizeof(inherited), nullptr, TRUE};
  const std::wstring path = ProgramBeside(L"output.txt");
  const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ,
                                  &inherited, CREATE_ALWAYS, FILE_FLAG_DELETE_ON_CLOSE, nullptr);
  Run(command, file);
  std::string text(GetFileSize(file, nullptr), '\0');
  SetFilePointer(file, 0, nullptr, FILE_BEGIN);
  DWORD read = 0;
  ReadFile(file, text.data(), static_cast<DWORD>(text.size()), &read, nullptr);
  CloseHandle(file);
  return text;
}

std::pair<std::int32_t, std::string> ErrorOf(const std::function<void()>& call) {
  try {
    call();
  } catch (const platform::RuntimeError& error) {
    return {error.number(), error.text()};
  }
  return {0, ""};
}

void RegisterTrialHost() {
  if (RunAndWait(L"\"" + ProgramBeside(L"NimbrelTrialHost.exe") + L"\" /RegServer") != 0) {
    throw std::runtime_error("the stand-in host cannot be registered");
  }
}

void UnregisterTrialHost() {
  RunAndWait(L"\"" + ProgramBeside(L"NimbrelTrialHost.exe") + L"\" /UnregServer");
}

TrialProgram::~TrialProgram() {
  platform::IgnoreErrors([this] { control_->Call("Quit"); });
}

namespace {

std::unique_ptr<TrialProgram> g_shared;

/// COM and the stand-in host for the whole program: each test would take a second to enter it.
class TrialEnvironment : public ::testing::Environment {
 public:
  void SetUp() override {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    RegisterTrialHost();
  }
  void TearDown() override {
    g_shared = nullptr;
    UnregisterTrialHost();
    CoUninitialize();
  }
};

const auto* const g_environment = ::testing::AddGlobalTestEnvironment(new TrialEnvironment);

}  // namespace

TrialProgram& SharedTrialProgram() {
  if (g_shared == nullptr) {
    g_shared = std::make_unique<TrialProgram>();
  }
  return *g_shared;
}

void EndSharedTrialProgram() {
  constexpr DWORD kPause = 20;  // milliseconds
  AutomationObject& control = SharedTrialProgram().control();
  control.Call("Quit");
  while (ErrorOf([&control] { control.Get("ObjectsHeld"); }).first == 0) {
    Sleep(kPause);
  }
  g_shared = nullptr;
}

}  // namespace nimbrel::com
