// What an in-process component exports.

#include "com/com_error.h"
#include "com/com_object.h"
#include "com/component.h"
#include "simulation/mod_weather_events.h"
#include "wiring.h"

namespace com = nimbrel::com;

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
  com::ComPtr<IClassFactory> factory;
  const HRESULT result = com::Guarded(
      [&] {
        static const nimbrel::host::Seams seams = nimbrel::component::Wire();
        factory = com::ComponentFactory(class_id, seams);
      },
      com::LeaveErrorInfo);
  if (FAILED(result)) {
    return result;
  }
  return factory ? factory->QueryInterface(id, object) : CLASS_E_CLASSNOTAVAILABLE;
}

HRESULT WINAPI DllCanUnloadNow() {
  if (com::Module::count() != 0) {
    return S_FALSE;
  }
  // What a run has left behind are objects of the host, which may not be let go any more while the
  // DLL is unloaded.
  nimbrel::modWeatherEvents::ReleaseRunState();
  return S_OK;
}

HRESULT WINAPI DllRegisterServer() {
  return com::ForMachineOrUser(
      [](com::Scope scope) { return com::RegisterServer(com::ComponentEntry(), scope); });
}

HRESULT WINAPI DllUnregisterServer() {
  // For whom it was registered is not written anywhere.
  return com::ForUserAndMachine(
      [](com::Scope scope) { return com::UnregisterServer(com::ComponentEntry(), scope); });
}

}  // extern "C"
