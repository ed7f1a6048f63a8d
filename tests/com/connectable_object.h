#pragma once

#include "com/com_object.h"

namespace nimbrel::com {

/// A host's application without members, with a connection point that keeps whoever connects last,
/// also when that has disconnected.
class ConnectableObject final
    : public ComObject<IDispatch, IConnectionPointContainer, IConnectionPoint> {
 public:
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT /*index*/, LCID /*locale*/,
                                        ITypeInfo** /*info*/) override {
    return DISP_E_BADINDEX;
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID /*id*/, LPOLESTR* /*names*/, UINT /*count*/,
                                          LCID /*locale*/, DISPID* /*ids*/) override {
    return DISP_E_UNKNOWNNAME;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID /*id*/, REFIID /*interface_id*/, LCID /*locale*/,
                                   WORD /*flags*/, DISPPARAMS* /*parameters*/, VARIANT* /*result*/,
                                   EXCEPINFO* /*exception*/, UINT* /*wrong*/) override {
    return DISP_E_MEMBERNOTFOUND;
  }

  HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints** /*points*/) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID /*id*/, IConnectionPoint** point) override {
    *point = ComPtr<IConnectionPoint>(this).Detach();
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* /*id*/) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE
  GetConnectionPointContainer(IConnectionPointContainer** /*container*/) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD* cookie) override {
    sink_ = ComPtr<IUnknown>(sink).As<IDispatch>(IID_IDispatch);
    *cookie = 1;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Unadvise(DWORD /*cookie*/) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections** /*connections*/) override {
    return E_NOTIMPL;
  }

  const ComPtr<IDispatch>& sink() const { return sink_; }
  void LetSinkGo() { sink_ = nullptr; }

 private:
  void* Find(REFIID id) override {
    if (id == IID_IConnectionPoint) {
      return static_cast<IConnectionPoint*>(this);
    }
    if (id == IID_IConnectionPointContainer) {
      return static_cast<IConnectionPointContainer*>(this);
    }
    return id == IID_IUnknown || id == IID_IDispatch ? static_cast<IDispatch*>(this) : nullptr;
  }

  ComPtr<IDispatch> sink_;
};

}  // namespace nimbrel::com
