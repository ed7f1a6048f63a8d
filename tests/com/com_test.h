#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "com/com_ptr.h"
#include "com/dispatch_object.h"
#include "com/host_application.h"
#include "platform/automation.h"

namespace nimbrel::com {

using platform::AutomationObject;

/// A program that stands beside the test program, by its name.
std::wstring ProgramBeside(const std::wstring& name);
/// Runs a program and waits for its end. Gives its exit code.
DWORD RunAndWait(const std::wstring& command);
/// Runs a program and gives what it has written.
std::string OutputOf(const std::wstring& command);

/// The number and the text of the run-time error that a call raises; {0, ""} if it raises none.
std::pair<std::int32_t, std::string> ErrorOf(const std::function<void()>& call);

/// Enters the stand-in host in the registry, or takes it out.
void RegisterTrialHost();
void UnregisterTrialHost();

/// A process of the stand-in host, which must be registered. It ends with this.
class TrialProgram {
 public:
  TrialProgram() : control_(ComServers().CreateObject("Corvane8.TrialHost")) {}
  ~TrialProgram();
  TrialProgram(const TrialProgram&) = delete;
  TrialProgram& operator=(const TrialProgram&) = delete;

  /// What makes it do things.
  AutomationObject& control() { return *control_; }
  /// A new reference to its application.
  static Ref<Corvane8::Application> Application() { return CreateHostApplication(); }

 private:
  Ref<AutomationObject> control_;
};

/// The one that tests without needs of their own share. It is started when it is first asked for,
/// and ends with the test program.
TrialProgram& SharedTrialProgram();
/// Ends it, and returns when it is gone; references to it are void. Who asks next starts another
/// one.
void EndSharedTrialProgram();

}  // namespace nimbrel::com
