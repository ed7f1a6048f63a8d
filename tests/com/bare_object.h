#pragma once

#include "com/untyped_object.h"

namespace nimbrel::com {

/// An object of another program that has no members and tells nothing of itself; what derives from
/// it answers what its test asks for.
class BareObject : public UntypedObject {
 public:
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID /*id*/, LPOLESTR* /*names*/, UINT /*count*/,
                                          LCID /*locale*/, DISPID* /*ids*/) override {
    return DISP_E_UNKNOWNNAME;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID /*id*/, REFIID /*interface_id*/, LCID /*locale*/,
                                   WORD /*flags*/, DISPPARAMS* /*parameters*/, VARIANT* /*result*/,
                                   EXCEPINFO* /*exception*/, UINT* /*wrong*/) override {
    return DISP_E_MEMBERNOTFOUND;
  }

 protected:
  void* Find(REFIID id) override {
    return id == IID_IUnknown || id == IID_IDispatch ? static_cast<IDispatch*>(this) : nullptr;
  }
};

}  // namespace nimbrel::com
