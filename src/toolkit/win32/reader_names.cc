#include "toolkit/win32/reader_names.h"

#include <initguid.h>  // before the headers whose identifiers are to be here
#include <oleacc.h>

namespace nimbrel::toolkit::win32 {
namespace {

constexpr auto kWhole = static_cast<DWORD>(OBJID_CLIENT);

}  // namespace

ReaderNames::ReaderNames() {
  void* made = nullptr;
  if (SUCCEEDED(::CoCreateInstance(CLSID_AccPropServices, nullptr, CLSCTX_INPROC_SERVER,
                                   IID_IAccPropServices, &made))) {
    services_ = static_cast<IAccPropServices*>(made);
  }
}

ReaderNames::~ReaderNames() {
  if (services_ != nullptr) {
    services_->Release();
  }
}

void ReaderNames::Name(HWND window, const std::wstring& name) {
  if (services_ != nullptr && !name.empty() &&
      SUCCEEDED(
          services_->SetHwndPropStr(window, kWhole, CHILDID_SELF, PROPID_ACC_NAME, name.c_str()))) {
    named_.push_back(window);
  }
}

void ReaderNames::Clear() {
  for (const HWND window : named_) {
    services_->ClearHwndProps(window, kWhole, CHILDID_SELF, &PROPID_ACC_NAME, 1);
  }
  named_.clear();
}

}  // namespace nimbrel::toolkit::win32
