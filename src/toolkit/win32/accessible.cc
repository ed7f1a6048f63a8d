#include "toolkit/win32/accessible.h"

#include <initguid.h>  // before the headers whose identifiers are to be here
#include <oleacc.h>

namespace nimbrel::toolkit::win32 {

void NameForReaders(HWND window, const std::wstring& name) {
  if (name.empty()) {
    return;
  }
  void* made = nullptr;
  if (FAILED(::CoCreateInstance(CLSID_AccPropServices, nullptr, CLSCTX_INPROC_SERVER,
                                IID_IAccPropServices, &made))) {
    return;
  }
  auto* const services = static_cast<IAccPropServices*>(made);
  services->SetHwndPropStr(window, static_cast<DWORD>(OBJID_CLIENT), CHILDID_SELF, PROPID_ACC_NAME,
                           name.c_str());
  services->Release();
}

}  // namespace nimbrel::toolkit::win32
