#pragma once

#include <utility>

#include "com/com_error.h"
#include "com/com_object.h"

namespace nimbrel::com {

/// A COM object with one dual interface: called by names or by positions. Its operations run in
/// Run, so that every failure leaves an error object.
template <class Interface>
class DualObject : public ComObject<Interface, ISupportErrorInfo> {
 public:
  /// `info` describes the interface as its type library does.
  DualObject(REFIID interface_id, ComPtr<ITypeInfo> info)
      : interface_id_(interface_id), info_(std::move(info)) {}

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = 1;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID /*locale*/, ITypeInfo** info) override {
    if (info == nullptr) {
      return E_POINTER;
    }
    *info = index == 0 ? ComPtr<ITypeInfo>(info_).Detach() : nullptr;
    return index == 0 ? S_OK : DISP_E_BADINDEX;
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID /*id*/, LPOLESTR* names, UINT count,
                                          LCID /*locale*/, DISPID* ids) override {
    return info_->GetIDsOfNames(names, count, ids);
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID /*interface_id*/, LCID /*locale*/, WORD flags,
                                   DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                                   UINT* wrong) override {
    // The caller may let this go, and with it the description that the call goes through.
    const ComPtr<Interface> kept(this);
    SetErrorInfo(0, nullptr);
    return info_->Invoke(static_cast<Interface*>(this), id, flags, parameters, result, exception,
                         wrong);
  }
  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID id) override {
    return id == interface_id_ ? S_OK : S_FALSE;
  }

 protected:
  template <class Operation>
  HRESULT Run(const Operation& operation) {
    // The caller may let this go while it runs.
    const ComPtr<Interface> kept(this);
    // What an earlier call has left is no error of this one.
    SetErrorInfo(0, nullptr);
    return Guarded(operation, LeaveErrorInfo);
  }

 private:
  void* Find(REFIID id) override {
    if (id == IID_IUnknown || id == IID_IDispatch || id == interface_id_) {
      return static_cast<Interface*>(this);
    }
    return id == IID_ISupportErrorInfo ? static_cast<ISupportErrorInfo*>(this) : nullptr;
  }

  IID interface_id_;
  ComPtr<ITypeInfo> info_;
};

}  // namespace nimbrel::com
