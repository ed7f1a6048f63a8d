// What the add-in expects of any host, through COM: in one process, where every call goes through
// IDispatch, and to the stand-in host in a process of its own.

#include <memory>

#include "com/host_application.h"
#include "com/served/served_application.h"
#include "hostserver/trial_host.h"
#include "tests/com/com_test.h"
#include "tests/conformance/host_suite.h"

namespace nimbrel::conformance {
namespace {

std::string Joined(const std::vector<std::string>& ids) {
  std::string text;
  for (const std::string& id : ids) {
    text += (text.empty() ? "" : ",") + id;
  }
  return text;
}

/// The stand-in host's program.
class RemoteHostUnderTest : public HostUnderTest {
 public:
  void Open(const PlanSpec& spec) override {
    auto& control = com::SharedTrialProgram().control();
    control.Call("NewPlan", {spec.time_unit, spec.hours_per_day});
    for (const platform::Date holiday : spec.holidays) {
      control.Call("AddHoliday", {holiday});
    }
    for (const TaskSpec& task : spec.tasks) {
      control.Call("AddTask", {task.id, task.minimum, task.likely, task.maximum, task.probability,
                               Joined(task.predecessors)});
    }
    control.Call("OpenPlan");
  }
  Corvane8::Ref<Corvane8::Application> application() override { return application_; }
  void RunAnalysis(std::int32_t iterations, std::uint64_t seed) override {
    com::SharedTrialProgram().control().Call("RunAnalysis",
                                             {iterations, static_cast<double>(seed)});
  }

 private:
  Corvane8::Ref<Corvane8::Application> application_ = com::TrialProgram::Application();
};

/// Objects of this process that are called through IDispatch all the same.
class DispatchedHostUnderTest : public HostUnderTest {
 public:
  void Open(const PlanSpec& spec) override {
    trial_->NewPlan(spec.time_unit, spec.hours_per_day);
    for (const platform::Date holiday : spec.holidays) {
      trial_->AddHoliday(holiday);
    }
    for (const TaskSpec& task : spec.tasks) {
      trial_->AddTask(task.id, task.minimum, task.likely, task.maximum, task.probability,
                      Joined(task.predecessors));
    }
    trial_->OpenPlan();
  }
  Corvane8::Ref<Corvane8::Application> application() override { return application_; }
  void RunAnalysis(std::int32_t iterations, std::uint64_t seed) override {
    trial_->RunAnalysis(iterations, static_cast<double>(seed));
  }

 private:
  static Corvane8::Ref<Corvane8::Application> Dispatched(
      const Corvane8::Ref<Corvane8::Application>& application) {
    com::ComPtr<ITypeLib> library;
    com::ComPtr<ITypeInfo> info;
    LoadTypeLibEx(com::ProgramBeside(L"NimbrelTrialHost.exe").c_str(), REGKIND_NONE,
                  library.Receive());
    CLSID id = {};
    for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
      TYPEATTR* attributes = nullptr;
      library->GetTypeInfo(i, info.Receive());
      info->GetTypeAttr(&attributes);
      const bool is_class = attributes->typekind == TKIND_COCLASS;
      id = attributes->guid;
      info->ReleaseTypeAttr(attributes);
      if (is_class) {
        break;
      }
    }
    const auto served = com::MakeCom<com::served::ServedApplication>(application, info);
    return platform::MakeRef<com::HostApplication>(served.As<IDispatch>(IID_IDispatch), id);
  }

  Corvane8::Ref<hostserver::TrialHost> trial_ = platform::MakeRef<hostserver::TrialHost>();
  Corvane8::Ref<Corvane8::Application> application_ = Dispatched(trial_->host());
};

INSTANTIATE_TEST_SUITE_P(Dispatched, HostSuite,
                         ::testing::Values(HostFactory{
                             "Dispatched",
                             [] { return std::make_unique<DispatchedHostUnderTest>(); }}));
INSTANTIATE_TEST_SUITE_P(Remote, HostSuite,
                         ::testing::Values(HostFactory{
                             "Remote", [] { return std::make_unique<RemoteHostUnderTest>(); }}));

}  // namespace
}  // namespace nimbrel::conformance
