#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "tests/com/com_test.h"
#include "tests/com/weather_trial.h"

namespace nimbrel::com {

inline constexpr const wchar_t* kDll = L"Nimbrel.dll";
inline constexpr int kIterations = 12;
inline constexpr double kSeed = 7;

/// Calls an export of the component that takes nothing. E_FAIL where the DLL cannot be loaded,
/// E_NOINTERFACE where it has no such export.
HRESULT CallExport(const char* name);
bool IsLoaded();
/// Unloads the component if nothing keeps it.
void UnloadUnused();

/// The registered component and the stand-in host.
class ComponentTest : public ::testing::Test {
 protected:
  ComponentTest();
  ~ComponentTest() override;

  static Ref<AutomationObject> Create(const std::string& identifier);
  void OpenTrialPlan();
  /// Runs with the recorder behind whoever is subscribed.
  DateRecorder Run();
  /// Objects of the stand-in host that others hold.
  std::int32_t HeldObjects() const;

  TrialProgram& program_ = SharedTrialProgram();
  Ref<Corvane8::Application> application_;
  Ref<AutomationObject> nimbrel_;
};

/// The same run without COM, with or without the add-in.
DateRecorder RunInProcess(bool weather);

/// What tells two numbers apart that compare as equal, too.
std::vector<std::uint64_t> Bits(const std::vector<double>& values);

}  // namespace nimbrel::com
