#pragma once

#include "com/com_object.h"

namespace nimbrel::com {

/// A COM object whose members no type library describes.
class UntypedObject : public ComObject<IDispatch> {
 public:
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT /*index*/, LCID /*locale*/,
                                        ITypeInfo** info) override {
    *info = nullptr;
    return DISP_E_BADINDEX;
  }
};

}  // namespace nimbrel::com
