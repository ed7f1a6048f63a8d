// What an in-process component exports.

#include <atomic>

#include "com/com_error.h"
#include "com/com_object.h"
#include "com/component.h"
#include "simulation/mod_weather_events.h"
#include "wiring.h"

namespace com = nimbrel::com;

namespace {

/// What a run has left behind are objects of the host. They go with the last object that the host
/// has of the component, on the thread that lets it go: once the DLL is unloaded, or on a thread
/// that only asks whether it may be, they could not be called any more.
void LetRunStateGo() {
  static std::atomic<bool> going = false;
  if (going.exchange(true)) {
    return;
  }
  // Who is called here may ask whether the DLL can be unloaded.
  com::Module::Enter();
  nimbrel::modWeatherEvents::ReleaseRunState();
  com::Module::Leave();
  going = false;
}

const nimbrel::host::Seams& Wired() {
  static const nimbrel::host::Seams seams = [] {
    com::Module::WhenAtRest(LetRunStateGo);
    return nimbrel::component::Wire();
  }();
  return seams;
}

/// The result of `attempt`, or of what it raises.
template <class Attempt>
HRESULT ResultOf(const Attempt& attempt) {
  HRESULT result = S_OK;
  const HRESULT outcome = com::Guarded([&] { result = attempt(); }, com::LeaveErrorInfo);
  return FAILED(outcome) ? outcome : result;
}

}  // namespace

extern "C" {

BOOL WINAPI DllMain(HINSTANCE /*instance*/, DWORD reason, void* /*reserved*/) {
  if (reason == DLL_PROCESS_DETACH) {
    com::g_references_abandoned = true;
  }
  return TRUE;
}

HRESULT WINAPI DllGetClassObject(REFCLSID class_id, REFIID id, void** object) {
  if (object == nullptr) {
    return E_POINTER;
  }
  *object = nullptr;
  return ResultOf([&] {
    const auto factory = com::ComponentFactory(class_id, Wired());
    return factory ? factory->QueryInterface(id, object) : CLASS_E_CLASSNOTAVAILABLE;
  });
}

HRESULT WINAPI DllCanUnloadNow() {
  return com::Module::count() == 0 ? S_OK : S_FALSE;
}

HRESULT WINAPI DllRegisterServer() {
  return ResultOf([] {
    return com::ForMachineOrUser(
        [](com::Scope scope) { return com::RegisterServer(com::ComponentEntry(), scope); });
  });
}

HRESULT WINAPI DllUnregisterServer() {
  // For whom it was registered is not written anywhere.
  return ResultOf([] {
    return com::ForUserAndMachine(
        [](com::Scope scope) { return com::UnregisterServer(com::ComponentEntry(), scope); });
  });
}

}  // extern "C"
